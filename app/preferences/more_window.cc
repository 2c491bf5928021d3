#include "app/preferences/more_window.h"

#include <algorithm>
#include <cerrno>
#include <string>

#include "actions/launch.h"
#include "app/windows/dialogs.h"
#include "app/windows/top_level.h"
#include "core/choices.h"
#include "core/option_files.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "places/autostart.h"
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
constexpr const char* kAutostart = "Start with the Desktop";
constexpr const char* kAutostartSentence = "Gromlit is there as soon as you have logged in.";
constexpr const char* kNotSaved = "The choices hold until Gromlit ends, but were not saved.";

int RowHeight() {
  return 2 * txtCharht + kRowGap;
}

int RowY(int row) {
  return kFirstRow + row * RowHeight();
}

void SetBox(XCheckBox* box, bool on) {
  const int wanted = on ? 1 : 0;
  if (box->state == wanted) return;
  box->state = wanted;
  DrawCheckBox(box);
}

// Sets the boxes to what these options, or nobody's, would have; draws those that change.
template <typename State>
void SetBoxes(MoreOptions* options, State state) {
  const auto choices = Choices();
  for (size_t i = 0; i < choices.size(); i++) SetBox(options->boxes[i], state(choices[i]));
}

void TakeOver(const MoreOptions* options, GromlitUserOptions* into) {
  const auto choices = Choices();
  for (size_t i = 0; i < choices.size(); i++)
    TurnChoice(into, choices[i], options->boxes[i]->state != 0);
}

// False after a dialog with the reason.
bool TellDesktop(bool start) {
  std::string error;
  if (AutostartChosen() == start || ChooseAutostart(start, GromlitPath, &error)) return true;
  ShowFailure(((start ? "Gromlit will not start with the desktop:\n"
                      : "Gromlit still starts with the desktop:\n") +
               error)
                  .c_str());
  return false;
}

// One caption and its sentence, and what a press on them turns.
void DrawRow(const MoreOptions* options, XCheckBox* box, int row, const char* caption,
             const char* sentence) {
  const int top = RowY(row);
  const int y = top + txtCharht - kCaptionRise;
  const int wider = std::max(TextWidth(txtFontinfo, caption), TextWidth(txtFontinfo, sentence));
  PlaceCaption(box, kCaptionX + wider, top, top + RowHeight() - kRowGap);
  DrawText(options->window, options->gc, kCaptionX, y, caption);
  DrawText(options->window, options->gc, kCaptionX, y + txtCharht + 2, sentence);
}

}  // namespace

void CreateMoreOptions(GromlitUserOptions* working) {
  more = new MoreOptions{};
  more->working = working;
  more->width = kWidth;
  const int rows = static_cast<int>(Choices().size());
  more->height = RowY(rows + 1) + kButtonRoom;
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
  more->autostart = MakeCheckBox(more, more->window, nullptr, kMargin, RowY(rows));
  const int y = more->height - 40;
  more->bhelp = MakeButton(more, more->window, "Help", moreClickHelp, kMargin, y);
  more->brecommended = MakeButtonSized(more, more->window, "Recommended", moreClickRecommended,
                                       more->width - 272, y, 96);
  more->bsave = MakeButton(more, more->window, "OK", moreClickSave, more->width - 160, y);
  more->bcancel = MakeButton(more, more->window, "Cancel", moreClickCancel, more->width - 80, y);
}

void moreClickOpen(void*) {
  SetBoxes(more, [](const Choice& choice) { return IsOn(*user, choice); });
  SetBox(more->autostart, AutostartChosen());
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
  if (!TellDesktop(more->autostart->state != 0)) return;
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
  int row = 0;
  for (const Choice& choice : Choices()) {
    XCheckBox* box = options->boxes[static_cast<size_t>(row)];
    DrawRow(options, box, row++, choice.caption, choice.sentence);
  }
  DrawRow(options, options->autostart, row, kAutostart, kAutostartSentence);
}

}  // namespace gromlit
