#include "app/windows/dialogs.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "core/strings.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/image.h"
#include "toolkit/text.h"

namespace gromlit {

XDialog* about = nullptr;
XDialog* confirm = nullptr;
XDialog* editname = nullptr;
XDialog* notice = nullptr;

namespace {

constexpr char kProduct[] = "Gromlit, version " GROMLIT_VERSION;

}  // namespace

const char* const AboutGromlitMsgs[] = {kProduct, "Mouse gestures for the X Window System",
                                        "(c) 2026 The Gromlit developers. MIT licensed.",
                                        "Feedback: feedback@gromlit.localhost", nullptr};
const char* const ConfirmDeleteSymbolMsg[] = {"Sure you want to delete this Symbol?", nullptr};
const char* const ConfirmDeletePluginMsg[] = {"Really Delete Plugin? ", nullptr};
const char* const ConfirmExitMsg[] = {"Really Exit Gromlit? ", nullptr};
const char* const EditPluginNameMsg[] = {"Name of the Plugin:", nullptr};

namespace {

constexpr const char* labelFailure = "Not Done";
constexpr size_t kNoticeLines = 6;
constexpr size_t kNoticeLine = 101;  // bytes of a line, its NUL included

// What the notice shows: its dialog keeps the lines by reference.
std::array<std::array<char, kNoticeLine>, kNoticeLines> noticelines;
std::array<const char*, kNoticeLines + 1> noticemsgs;

void SplitLines(std::string_view text) {
  size_t count = 0;
  while (!text.empty() && count < kNoticeLines) {
    const size_t end = std::min(text.find('\n'), text.size());
    CopyText(noticelines[count], text.substr(0, end));
    noticemsgs[count] = noticelines[count].data();
    count++;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  // cppcheck-suppress containerOutOfBounds  ; there is one place more than there are lines
  noticemsgs[count] = nullptr;
}

// Gives the notice the size that a dialog made for its lines would have, and room for its title.
void FitNotice(const char* title) {
  constexpr int kMargins = 24;  // ResizeDialog adds 8 more
  constexpr int kLineGap = 2;
  int width = logoImage->width + TextWidth(labelFontinfo, title);
  int height = txtCharht;
  for (const char* const* line = noticemsgs.data(); *line != nullptr; line++) {
    width = std::max(width, TextWidth(txtFontinfo, *line));
    height += txtCharht + kLineGap;
  }
  ResizeDialog(notice, width + kMargins, height);
}

}  // namespace

void MakeAboutDialog() {
  about = MakeMsgDialog(labelAboutGromlit, AboutGromlitMsgs, 300, 50);
  noticemsgs[0] = nullptr;
  notice = MakeMsgDialog(labelFailure, noticemsgs.data(), 0, 0);
}

void MakeConfirmDialog() {
  confirm = MakeDialog("Confirm", ConfirmDeleteSymbolMsg, DialogYes, 0, 0);
  confirm->careful = 1;
}

void MakeEditNameDialog(void (*yesfn)(XDialog* dlog)) {
  editname =
      MakeDialogLabeled("Plugin Update", EditPluginNameMsg, yesfn, 300, 50, labelOK, labelCancel);
  TextEditor* txt = MakeTextEditor(editname->window, 50, logoImage->height + txtCharht + 16 + 8,
                                   200, kEditorHeight);
  editname->child = txt;
  txt->limit = sizeof(GromlitPlugin::appname) - 1;
  XMapWindow(dpy, txt->window);
}

void ShowNotice(const char* title, const char* what) {
  if (notice == nullptr) {
    std::fprintf(stderr, "%s\n", what);
    return;
  }
  SplitLines(what);
  FitNotice(title);
  MousePopUpDialog(notice, title);
}

void ShowFailure(const char* what) {
  ShowNotice(labelFailure, what);
}

void ShowSaveFailure(const char* what, int error) {
  ShowFailure((std::string(what) + "\n" + std::strerror(error) + ".").c_str());
}

}  // namespace gromlit
