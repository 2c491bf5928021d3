#include "app/preferences/user_options_window.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include "actions/launch.h"
#include "app/preferences/more_window.h"
#include "app/windows/dialogs.h"
#include "app/windows/top_level.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/manners.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/text.h"

namespace gromlit {

UserOptions* opt = nullptr;
void (*drawButtonChanged)() = nullptr;

namespace {

constexpr int kWidth = 560;
constexpr int kHeight = 364;
constexpr int kMargin = 16;
constexpr int kPulldownWidth = 96;
constexpr int kPulldownY = 100;
constexpr int kSensitivityWidth = 32;
constexpr int kCommandWidth = 300;
constexpr int kHelpLinesX = 332;

constexpr const char* kSplashCaption = "Enable Gromlit Splash Screen";
constexpr const char* kHelpFile = "help/preferences.html";
constexpr const char* kNotSaved = "The preferences hold until Gromlit ends, but were not saved.";

const char* const UserOptionMsgs[] = {
    "Select your options for drawing.",    "When specifying a sound command, ",
    "a %s is replaced by the sound file.", "When specifying a browser command, ",
    "a %s is replaced by the url.",
};

// The record's commands fit into a field whole. A command that were shown cut would lose its rest
// with every OK.
static_assert(kUrlCmdSize <= kEditorBuffer && kTextSize <= kEditorBuffer);

// A value that a pulldown offers.
struct Choice {
  const char* label;
  int value;
};

constexpr int kDefaultChoice = 3;
constexpr Choice kButtons[] = {{"Right", 3}, {"Middle", 2}, {"Left", 1}};
constexpr Choice kTolerances[] = {{"Low", 2}, {"Medium", 3}, {"High", 4}};

// The choice with this value, else the default one.
template <size_t n>
const Choice& ChoiceOf(const Choice (&choices)[n], int value) {
  const auto has = [&](int wanted) {
    return std::find_if(choices, choices + n,
                        [&](const Choice& choice) { return choice.value == wanted; });
  };
  const Choice* found = has(value);
  return found != choices + n ? *found : *has(kDefaultChoice);
}

// A menu of the choices, each of which calls kChoose with its value.
template <void (*kChoose)(XMenu*, int), size_t n>
XMenu* MakeChoiceMenu(const Choice (&choices)[n]) {
  XMenuItem* items[n];
  std::transform(choices, choices + n, items, [](const Choice& choice) {
    const auto choose = [](XMenu* menu, void* arg) {
      kChoose(menu, static_cast<const Choice*>(arg)->value);
    };
    // Menus hand their argument on as it is; it is only read.
    return MakeMenuItem(choice.label, choose, const_cast<Choice*>(&choice));
  });
  return MakeMenu(root, 0, 0, labelFontinfo, items, static_cast<int>(n));
}

int TolerancePulldownX() {
  return kPulldownWidth + 48;
}

UserOptions* MakeUserOptions() {
  auto* options = new UserOptions{};
  options->width = kWidth;
  options->height = kHeight;
  options->window = MakeEditorWindow({.title = "Gromlit: Preferences",
                                      .icontitle = "Gromlit: Preferences",
                                      .name = "Preferences",
                                      .width = kWidth,
                                      .height = kHeight});
  options->gc = MakeWindowGC(options->window, txtFont);
  options->wobj = AllocTopLevelObj(options->window, options);
  On<Expose, DrawUserOptions>(options);
  options->logo = MakeLogo(options->window, kMargin, kMargin, kWidth - 2 * kMargin, nullptr,
                           "P r e f e r e n c e s");
  return options;
}

void MakeUserOptionsButtons(UserOptions* options) {
  const int y = options->height - 40;
  const auto make = [&](const char* label, void (*func)(void*), int x) {
    return MakeButton(options, options->window, label, func, x, y);
  };
  options->bhelp = make("Help", optClickHelp, kMargin);
  options->bdefaults = make("Defaults", optClickDefaults, options->width - 240);
  options->bsave = make("OK", optClickSave, options->width - 160);
  options->bcancel = make("Cancel", optClickCancel, options->width - 80);
  options->bmore = MakeButton(options, options->window, "More...", moreClickOpen,
                              options->width - 80, kPulldownY);
}

XButton* MakeDrawButtonPulldown(int x, int y) {
  return MakePulldownButton(opt, opt->window, "Right", x, y, kPulldownWidth,
                            MakeChoiceMenu<optcmdButton>(kButtons));
}

XButton* MakeDrawTolerancePulldown(int x, int y) {
  return MakePulldownButton(opt, opt->window, "Medium", x, y, kPulldownWidth,
                            MakeChoiceMenu<optcmdTolerance>(kTolerances));
}

TextEditor* MakeField(UserOptions* options, int y, int width) {
  TextEditor* field = MakeTextEditor(options->window, kMargin, y, width, kEditorHeight);
  field->owner = options;
  // End completes with plain manners, too.
  field->complete = [](TextEditor*) {
    if (ModernManners()) optClickSave(nullptr);
  };
  XMapWindow(dpy, field->window);
  return field;
}

// The number that a text begins with, 0 for none; one that is out of range gives the nearest int.
int NumberIn(const char* text) {
  return static_cast<int>(std::clamp<long>(std::strtol(text, nullptr, 10), INT_MIN, INT_MAX));
}

// Takes over what the fields hold, cut to what the record holds.
void ReadFields(UserOptions* options) {
  options->usr.sensitivity = NumberIn(TextEditorText(options->txt));
  CopyText(options->usr.urlcmd, TextEditorText(options->url));
  CopyText(options->usr.sndcmd, TextEditorText(options->snd));
}

// Makes the working copy the options in force, but for a draw button that cannot be had. Returns
// whether the button can.
bool PutInForce(const GromlitUserOptions& usr) {
  const int former = GrabbedDrawButton();
  const int wanted = EffectiveButton(&usr);
  const bool granted = former == wanted || GrabDrawButton(wanted);
  const int kept = user->button;
  *user = usr;
  if (!granted) user->button = kept;
  RenewDrawLocks();
  if (granted && former != wanted && drawButtonChanged != nullptr) drawButtonChanged();
  return granted;
}

}  // namespace

void CreateUserOptions() {
  opt = MakeUserOptions();
  MakeUserOptionsButtons(opt);
  opt->button = MakeDrawButtonPulldown(kMargin, kPulldownY);
  opt->tolerance = MakeDrawTolerancePulldown(TolerancePulldownX(), kPulldownY);
  opt->txt = MakeField(opt, txtCharht + 140, kSensitivityWidth);
  opt->dosplash = MakeCheckBox(opt, opt->window, optClickDoSplash, kMargin, txtCharht + 180);
  opt->snd = MakeField(opt, 3 * txtCharht + 196, kCommandWidth);
  opt->url = MakeField(opt, 3 * txtCharht + 244, kCommandWidth);
  opt->snd->limit = sizeof(GromlitUserOptions::sndcmd) - 1;
  CreateMoreOptions(&opt->usr);
}

void UpdateUserOptions(const GromlitUserOptions* usr) {
  opt->dosplash->state = usr->splash;
  DrawCheckBox(opt->dosplash);
  optcmdButton(nullptr, usr->button);
  optcmdTolerance(nullptr, usr->tolerance);
  char number[16];
  std::snprintf(number, sizeof number, "%d", usr->sensitivity);
  TextEditorUpdate(opt->txt, number);
  TextEditorUpdate(opt->snd, usr->sndcmd);
  TextEditorUpdate(opt->url, usr->urlcmd);
}

void mbPrefDraw(XMenu*, void*) {
  opt->usr = *user;
  UpdateUserOptions(&opt->usr);
  ShowTopLevel(opt->window);
}

void mbPrefMisc(XMenu* menu, void* arg) {
  mbPrefDraw(menu, arg);
}

void mbPrefAdvanced(XMenu* menu, void* arg) {
  mbPrefDraw(menu, arg);
}

void optcmdButton(XMenu*, int value) {
  const Choice& choice = ChoiceOf(kButtons, value);
  opt->usr.button = choice.value;
  UpdatePulldownButton(opt->button, choice.label);
}

void optcmdTolerance(XMenu*, int value) {
  const Choice& choice = ChoiceOf(kTolerances, value);
  opt->usr.tolerance = choice.value;
  UpdatePulldownButton(opt->tolerance, choice.label);
}

void optClickDoSplash(void*, int state) {
  opt->usr.splash = state;
}

void optClickSave(void*) {
  ReadFields(opt);
  const bool granted = PutInForce(opt->usr);
  if (!granted) {
    std::printf("%s\n", kDrawButtonTaken);
    std::fflush(stdout);
  }
  const bool saved = SaveUserOptions(user, defaultOptionFile) != 0;
  const int error = errno;
  if (saved && granted) {
    HideTopLevel(opt->window);
    return;
  }
  std::string told;
  if (!granted) told = kDrawButtonTaken;
  if (saved) {
    ShowFailure(told.c_str());
    return;
  }
  if (!told.empty()) told += '\n';
  told += kNotSaved;
  ShowSaveFailure(told.c_str(), error);
}

void optClickCancel(void*) {
  HideTopLevel(opt->window);
}

void optClickDefaults(void*) {
  DefaultUserOptions(&opt->usr);
  UpdateUserOptions(&opt->usr);
  ShowTopLevelAnew(opt->window);
}

void optClickHelp(void*) {
  LaunchGromlitFileURL(kHelpFile);
}

void DrawUserOptions(UserOptions* options, XEvent*) {
  const Window window = options->window;
  const GC gc = options->gc;
  const int line = txtCharht;
  XClearWindow(dpy, window);
  XSetForeground(dpy, gc, black.pixel);
  DrawText(window, gc, kMargin, 96, "Draw Button:");
  DrawText(window, gc, TolerancePulldownX(), 96, "Symbol Match Tolerance:");
  DrawText(window, gc, kMargin, line + 136, "Draw Sensitivity Pixels:");
  DrawText(window, gc, 34, 2 * line + 176, kSplashCaption);
  PlaceCaption(options->dosplash, 34 + TextWidth(txtFontinfo, kSplashCaption), line + 176,
               2 * line + 180);
  DrawText(window, gc, kMargin, 3 * line + 192, "Play Sound Command:");
  DrawText(window, gc, kMargin, 5 * line + 216, "Browser Command Line:");
  int y = 2 * line + 148;
  for (const char* text : UserOptionMsgs) {
    DrawText(window, gc, kHelpLinesX, y, text);
    y += line;
  }
}

void CopyUserOptions(GromlitUserOptions* dst, const GromlitUserOptions* src) {
  dst->button = src->button;
  dst->sensitivity = src->sensitivity;
  dst->tolerance = src->tolerance;
  dst->showactions = src->showactions;
  std::copy(std::begin(src->urlcmd), std::end(src->urlcmd), dst->urlcmd);
  std::copy(std::begin(src->sndcmd), std::end(src->sndcmd), dst->sndcmd);
}

}  // namespace gromlit
