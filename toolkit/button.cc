#include "toolkit/button.h"

#include <string>

#include "core/strings.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/menu.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

constexpr int kPulldownRoom = 16;  // pixels that a pulldown button's mark takes from the caption
constexpr int kPulldownEnds =
    32;                       // pixels that a pulldown button is wider than its caption at least
constexpr int kBaseline = 4;  // of the caption, pixels below the middle

// The button that holds the pointer (INV-BUTTON-1).
XButton* holder = nullptr;

}  // namespace

XButton* MakeButtonSized(void* owner, Window parent, const char* label, void (*func)(void* arg),
                         int x, int y, int width) {
  auto* button = new XButton{};
  button->owner = owner;
  button->action = func;
  button->width = width;
  button->height = kButtonHeight;
  button->window = MakeChildWindow(parent, x, y, width, kButtonHeight, lgrey.pixel,
                                   ExposureMask | ButtonPressMask | ButtonReleaseMask);
  button->gc = buttongc;
  button->state = kButtonActive;
  button->arg = button;
  SetButtonLabel(button, label);
  button->wobj = AllocWindowObj(button->window, button);
  On<Expose, DrawButton>(button);
  On<ButtonPress, ButtonDown>(button);
  On<ButtonRelease, ButtonUp>(button);
  XMapWindow(dpy, button->window);
  return button;
}

XButton* MakeButton(void* owner, Window parent, const char* label, void (*func)(void* arg), int x,
                    int y) {
  return MakeButtonSized(owner, parent, label, func, x, y, kButtonWidth);
}

void SetButtonLabel(XButton* button, const char* label) {
  CopyText(button->label, label);
  button->label_width = TextWidth(labelFontinfo, button->label);
}

void DrawButton(XButton* button, XEvent*) {
  XClearWindow(dpy, button->window);
  if (button->state < kButtonInactive || button->state > kButtonPressed) return;
  XDrawBevel(button->state == kButtonPressed ? kSunken : kRaised, button->window, button->gc, 0, 0,
             button->width, button->height);
  XSetForeground(dpy, button->gc, button->state == kButtonInactive ? dgrey.pixel : black.pixel);
  const int baseline = button->height / 2 + kBaseline;
  if (button->menu == nullptr) {
    DrawCentredText(button->window, button->gc, 0, button->width, baseline, button->label,
                    button->label_width);
    return;
  }
  // It may be the name of an application, as long as its maker liked.
  const int room = button->width - kPulldownEnds;
  const std::string caption = button->label_width > room
                                  ? FittingText(labelFontinfo, button->label, room)
                                  : std::string(button->label);
  DrawCentredText(button->window, button->gc, 0, button->width, baseline, caption,
                  TextWidth(labelFontinfo, caption) + kPulldownRoom);
}

void ButtonDown(XButton* button, XEvent*) {
  if (button->state != kButtonActive) return;
  // Taken away from a menu, the pointer would leave it open on the screen.
  if (MenuHoldsPointer()) return;
  if (XGrabPointer(dpy, button->window, False, ButtonReleaseMask | ButtonMotionMask, GrabModeAsync,
                   GrabModeAsync, None, None, CurrentTime) != GrabSuccess) {
    // Without the grab the release might never come back here.
    return;
  }
  holder = button;
  button->state = kButtonPressed;
  DrawButton(button);
}

void ButtonUp(XButton* button, XEvent* event) {
  if (holder == button) {
    holder = nullptr;
    // A press that was read late may have opened a menu meanwhile, which has the pointer now.
    if (!MenuHoldsPointer()) XUngrabPointer(dpy, CurrentTime);
  }
  if (button->state != kButtonPressed) return;
  const int x = event->xbutton.x;
  const int y = event->xbutton.y;
  const bool inside = 0 < x && x < button->width && 0 < y && y < button->height;
  button->state = kButtonActive;
  // Before the drawing, which then shows what the callback made of the button.
  if (inside && button->action != nullptr) button->action(button->arg);
  DrawButton(button);
}

void ReleaseHiddenButton() {
  if (holder == nullptr || CanBeSeen(holder->window)) return;
  if (holder->state == kButtonPressed) holder->state = kButtonActive;
  holder = nullptr;
}

}  // namespace gromlit
