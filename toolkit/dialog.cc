#include "toolkit/dialog.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <string>

#include "core/strings.h"
#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/dialog_hands.h"
#include "toolkit/image.h"
#include "toolkit/manners.h"
#include "toolkit/menu.h"
#include "toolkit/pointer_hold.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

constexpr int kMargin = 8;                              // around the banner, and of the buttons
constexpr int kButtonStep = kButtonWidth + kMargin;     // from one button to the next
constexpr int kButtonBottom = kButtonHeight + kMargin;  // from their upper edge to the dialog's end
constexpr int kSideMargin = 32;                         // beside the widest line, both together
constexpr int kLineGap = 2;                             // between two lines

void SetTitle(XDialog* dlog, const char* title) {
  if (title == dlog->title) return;  // owners pop a dialog up with the title it has
  CopyText(dlog->title, title != nullptr ? title : "");
}

void PressYes(void* arg) {
  auto* dlog = static_cast<XDialog*>(arg);
  if (dlog->yesfn != nullptr) dlog->yesfn(dlog);
}

void PressNo(void* arg) {
  DialogNo(static_cast<XDialog*>(arg));
}

XButton* MakeDialogButton(XDialog* dlog, const char* label, void (*func)(void* arg), int place) {
  XButton* button =
      MakeButtonSized(dlog, dlog->window, label, func, dlog->width - place * kButtonStep,
                      dlog->height - kButtonBottom, kButtonWidth);
  button->arg = dlog;
  return button;
}

// Everything but the buttons.
XDialog* MakeEmptyDialog(const char* title, const char* const* msgs, int wd, int ht) {
  auto* dlog = new XDialog{};
  dlog->width = kSideMargin;
  dlog->height = logoImage->height + txtCharht + 48;
  if (wd != 0) {
    dlog->width += wd;
    dlog->height += ht;
  } else if (msgs != nullptr) {
    int widest = 0;
    for (const char* const* line = msgs; *line != nullptr; line++) {
      widest = std::max(widest, TextWidth(txtFontinfo, *line));
      dlog->height += txtCharht + kLineGap;
    }
    dlog->width += widest;
  }
  XSetWindowAttributes more{};
  more.override_redirect = True;
  more.save_under = True;
  dlog->window = MakeChildWindow(root, 0, 0, dlog->width, dlog->height, lgrey.pixel, kDialogEvents,
                                 CWOverrideRedirect | CWSaveUnder, more);
  // No window manager looks at this window, but a click that the capture hands on goes to the
  // application that a class hint names: without one, no button could be clicked with the mouse
  // button that draws.
  char name[] = "Dialog";
  char classpart[] = "Gromlit";
  XClassHint hint{name, classpart};
  XSetClassHint(dpy, dlog->window, &hint);
  dlog->gc = txtgc;
  dlog->msgs = msgs;
  SetTitle(dlog, title);
  dlog->wobj = AllocWindowObj(dlog->window, dlog);
  On<Expose, DrawDialog>(dlog);
  On<ButtonRelease, DialogButtonUp>(dlog);
  On<KeyPress, DialogKeyPress>(dlog);
  SetHandler(dlog->wobj, KeyRelease, NoteKeyRelease);
  On<FocusIn, DialogFocus>(dlog);
  On<FocusOut, DialogFocus>(dlog);
  On<MapNotify, DialogMapped>(dlog);
  On<PropertyNotify, DialogStamped>(dlog);
  On<ClientMessage, DialogMessage>(dlog);
  return dlog;
}

// Where a dialog of `size` pixels begins that is to be centred on `centre`.
int Place(int centre, int size, int screensize) {
  return std::min(std::max(centre - size / 2, 0), screensize - size);
}

}  // namespace

XDialog* MakeDialogLabeled(const char* title, const char* const* msgs, void (*yesfn)(XDialog* dlog),
                           int wd, int ht, const char* ylabel, const char* nlabel) {
  XDialog* dlog = MakeEmptyDialog(title, msgs, wd, ht);
  dlog->yesfn = yesfn;
  dlog->no = MakeDialogButton(dlog, nlabel, PressNo, 1);
  dlog->yes = MakeDialogButton(dlog, ylabel, PressYes, 2);
  dlog->yes->ready = DialogTakesKey;
  return dlog;
}

XDialog* MakeDialog(const char* title, const char* const* msgs, void (*yesfn)(XDialog* dlog),
                    int wd, int ht) {
  return MakeDialogLabeled(title, msgs, yesfn, wd, ht, labelYes, labelNo);
}

XDialog* MakeMsgDialog(const char* title, const char* const* msgs, int wd, int ht) {
  XDialog* dlog = MakeEmptyDialog(title, msgs, wd, ht);
  dlog->no = MakeDialogButton(dlog, labelOK, PressNo, 1);
  return dlog;
}

void PopUpDialog(XDialog* dlog, const char* title, int px, int py) {
  SetTitle(dlog, title);
  const int x = Place(px, dlog->width, LogicalScreenWidth());
  const int y = Place(py, dlog->height, LogicalScreenHeight());
  if (ModernManners()) {
    ShowDialogWithHands(dlog, x, y, false);
    return;
  }
  if (dlog->hands != 0) TakeHandsOff(dlog);
  // A dialog that is shown already would keep the picture of its old title. On an unmapped window
  // this does nothing.
  XClearArea(dpy, dlog->window, 0, 0, 0, 0, True);
  ScaledMoveWindow(dlog->window, x, y);
  XMapRaised(dpy, dlog->window);
}

void MousePopUpDialog(XDialog* dlog, const char* title) {
  Window childwin;
  int rootx;
  int rooty;
  unsigned state;
  ScaledQueryPointer(root, &rootx, &rooty, &state, &childwin);
  if (!ModernManners()) {
    PopUpDialog(dlog, title, rootx, rooty);
    return;
  }
  SetTitle(dlog, title);
  int x = Place(rootx, dlog->width, LogicalScreenWidth());
  int y = Place(rooty, dlog->height, LogicalScreenHeight());
  PlaceBeside(dlog, childwin, &x, &y);
  ShowDialogWithHands(dlog, x, y, true);
}

void DialogYes(XDialog* dlog) {
  HideWindow(dlog->window);
}

void DialogNo(XDialog* dlog) {
  HideWindow(dlog->window);
}

void ResizeDialog(XDialog* dlog, int width, int height) {
  dlog->width = std::max(width + 8, 1);
  dlog->height = std::max(logoImage->height + 8 + height + 40, 1);
  ScaledResizeWindow(dlog->window, dlog->width, dlog->height);
  const int y = dlog->height - kButtonBottom;
  ScaledMoveWindow(dlog->no->window, dlog->width - kButtonStep, y);
  if (dlog->yes != nullptr) {
    ScaledMoveWindow(dlog->yes->window, dlog->width - 2 * kButtonStep, y);
  }
}

void DrawDialog(XDialog* dlog, XEvent*) {
  const int logowidth = logoImage->width;
  const int logoheight = logoImage->height;
  const int banner = dlog->width - 2 * kMargin;
  XClearWindow(dpy, dlog->window);
  FillRectangle(dlog->window, dlog->gc, white.pixel, kMargin, kMargin, banner, logoheight);
  XDrawBevel(kRaised, dlog->window, dlog->gc, 0, 0, dlog->width, dlog->height);
  PutImage(dlog->window, dlog->gc, logoImage, kMargin, kMargin);
  XDrawBevel(kSunken, dlog->window, dlog->gc, kMargin, kMargin, banner, logoheight);

  // A class can be longer than any text that the program chose itself.
  const std::string title = FittingText(labelFontinfo, dlog->title, banner - logowidth - kMargin);
  const int titlewidth = TextWidth(labelFontinfo, title);
  XSetForeground(dpy, buttongc, black.pixel);
  DrawText(dlog->window, buttongc, (dlog->width - (logowidth + titlewidth)) / 2 + logowidth,
           txtCharht + logoheight / 2, title);

  if (dlog->show != None) {
    XMapWindow(dpy, dlog->show);
    return;
  }
  if (dlog->msgs == nullptr) return;
  XSetForeground(dpy, dlog->gc, black.pixel);
  int baseline = logoheight + 24;
  for (const char* const* line = dlog->msgs; *line != nullptr; line++) {
    DrawCentredText(dlog->window, dlog->gc, 0, dlog->width, baseline, *line,
                    TextWidth(txtFontinfo, *line));
    baseline += txtCharht + kLineGap;
  }
}

void DialogButtonUp(XDialog*, XEvent*) {
  CloseGrabbedMenu();
  GivePointerBack();
}

}  // namespace gromlit
