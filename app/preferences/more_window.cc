#include "app/preferences/more_window.h"

#include <algorithm>
#include <cerrno>

#include "actions/launch.h"
#include "app/preferences/choices.h"
#include "app/windows/dialogs.h"
#include "app/windows/top_level.h"
#include "core/option_files.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/text.h"

namespace gromlit {

MoreOptions* more = nullptr;

namespace {

constexpr int kWidth = 560;
constexpr int kMargin = 16;
constexpr int kFirstRow = 96;    // y of the first check box
constexpr int kCaptionX = 34;    // as in the preferences
constexpr int kCaptionRise = 4;  // that a caption's base line lies above a line below the box's top
constexpr int kRowGap = 14;      // below the two lines of a choice
constexpr int kButtonRoom = 48;  // for the buttons, below the last row

constexpr const char* kTitle = "Gromlit: More Preferences";
constexpr const char* kHelpFile = "help/preferences.html";
constexpr const char* kNotSaved = "The choices hold until Gromlit ends, but were not saved.";

int RowHeight() {
  return 2 * txtCharht + kRowGap;
}

int RowY(int row) {
  return kFirstRow + row * RowHeight();
}

// Sets the boxes to what these options, or nobody's, would have; draws those that change.
template <typename State>
void SetBoxes(MoreOptions* options, State state) {
  const auto choices = Choices();
  for (size_t i = 0; i < choices.size(); i++) {
    const int wanted = state(choices[i]) ? 1 : 0;
    if (options->boxes[i]->state == wanted) continue;
    options->boxes[i]->state = wanted;
    DrawCheckBox(options->boxes[i]);
  }
}

void TakeOver(const MoreOptions* options, GromlitUserOptions* into) {
  const auto choices = Choices();
  for (size_t i = 0; i < choices.size(); i++)
    TurnChoice(into, choices[i], options->boxes[i]->state != 0);
}

}  // namespace

void CreateMoreOptions(GromlitUserOptions* working) {
  more = new MoreOptions{};
  more->working = working;
  more->width = kWidth;
  more->height = RowY(static_cast<int>(Choices().size())) + kButtonRoom;
  more->window = MakeEditorWindow({.title = kTitle,
                                   .icontitle = kTitle,
                                   .name = "MorePreferences",
                                   .width = more->width,
                                   .height = more->height});
  more->gc = MakeWindowGC(more->window, txtFont);
  more->wobj = AllocTopLevelObj(more->window, more);
  On<Expose, DrawMoreOptions>(more);
  more->logo = MakeLogo(more->window, kMargin, kMargin, kWidth - 2 * kMargin, nullptr, "M o r e");
  for (size_t i = 0; i < Choices().size(); i++)
    more->boxes.push_back(
        MakeCheckBox(more, more->window, nullptr, kMargin, RowY(static_cast<int>(i))));
  const int y = more->height - 40;
  more->bhelp = MakeButton(more, more->window, "Help", moreClickHelp, kMargin, y);
  more->brecommended = MakeButtonSized(more, more->window, "Recommended", moreClickRecommended,
                                       more->width - 272, y, 96);
  more->bsave = MakeButton(more, more->window, "OK", moreClickSave, more->width - 160, y);
  more->bcancel = MakeButton(more, more->window, "Cancel", moreClickCancel, more->width - 80, y);
}

void moreClickOpen(void*) {
  SetBoxes(more, [](const Choice& choice) { return IsOn(*user, choice); });
  ShowTopLevel(more->window);
}

void moreClickRecommended(void*) {
  SetBoxes(more, [](const Choice& choice) { return choice.recommended; });
}

void moreClickSave(void*) {
  TakeOver(more, user);
  TakeOver(more, more->working);
  RenewDrawLocks();
  if (more->changed != nullptr) more->changed();
  if (SaveUserOptions(user, defaultOptionFile) == 0) {
    ShowSaveFailure(kNotSaved, errno);
    return;
  }
  HideTopLevel(more->window);
}

void moreClickCancel(void*) {
  HideTopLevel(more->window);
}

void moreClickHelp(void*) {
  LaunchGromlitFileURL(kHelpFile);
}

void DrawMoreOptions(MoreOptions* options, XEvent*) {
  XClearWindow(dpy, options->window);
  XSetForeground(dpy, options->gc, black.pixel);
  size_t row = 0;
  for (const Choice& choice : Choices()) {
    const int top = RowY(static_cast<int>(row));
    const int y = top + txtCharht - kCaptionRise;
    const int wider =
        std::max(TextWidth(txtFontinfo, choice.caption), TextWidth(txtFontinfo, choice.sentence));
    PlaceCaption(options->boxes[row++], kCaptionX + wider, top, top + RowHeight() - kRowGap);
    DrawText(options->window, options->gc, kCaptionX, y, choice.caption);
    DrawText(options->window, options->gc, kCaptionX, y + txtCharht + 2, choice.sentence);
  }
}

}  // namespace gromlit
