#include "toolkit/button.h"

#include <X11/keysym.h>

#include <string>

#include "core/strings.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/key_lookup.h"
#include "toolkit/manners.h"
#include "toolkit/menu.h"
#include "toolkit/pointer_hold.h"
#include "toolkit/release_watch.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

constexpr int kPulldownRoom = 16;  // pixels that a pulldown button's mark takes from the caption
constexpr int kPulldownEnds =
    32;                         // pixels that a pulldown button is wider than its caption at least
constexpr int kBaseline = 4;    // of the caption, pixels below the middle
constexpr int kFocusInset = 4;  // of the frame that shows the keyboard, from each edge

// The button that holds the pointer (INV-BUTTON-1).
XButton* holder = nullptr;

// The button comes up by itself; nothing was chosen.
void LoseRelease() {
  XButton* button = holder;
  if (button == nullptr) return;
  holder = nullptr;
  if (!MenuHoldsPointer()) GivePointerBack();
  if (button->state != kButtonPressed) return;
  button->state = kButtonActive;
  DrawButton(button, nullptr);
}

// KeyPress handler. Entries of buttons are known by it.
void ButtonKeyPress(void* obj, XEvent* event) {
  auto* button = static_cast<XButton*>(obj);
  if (!ModernManners()) return;
  if (!IsPressingKey(&event->xkey)) {
    HandKeyUp(button->window, event);
    return;
  }
  if (button->state != kButtonActive || IsKeyRepeat(event->xkey)) return;
  if (button->ready != nullptr && !button->ready(button->owner, event->xkey)) return;
  if (button->action != nullptr) button->action(button->arg);
}

// Not one that does nothing, or opens a menu.
bool IsStop(void* obj) {
  const auto* button = static_cast<XButton*>(obj);
  return button->state != kButtonInactive && button->menu == nullptr;
}

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
  On<FocusIn, ButtonFocus>(button);
  On<FocusOut, ButtonFocus>(button);
  SetHandler(button->wobj, KeyPress, ButtonKeyPress);
  SetHandler(button->wobj, KeyRelease, NoteKeyRelease);
  SetTabStop(button->wobj, IsStop);
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
  if (button->focused != 0 && ModernManners()) {
    DrawOutline(button->window, button->gc, dgrey.pixel, kFocusInset, kFocusInset,
                button->width - 2 * kFocusInset - 1, button->height - 2 * kFocusInset - 1);
    XSetForeground(dpy, button->gc, button->state == kButtonInactive ? dgrey.pixel : black.pixel);
  }
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
  // Without the grab the release might never come back here.
  if (!HoldPointer(button->window, ButtonReleaseMask | ButtonMotionMask)) return;
  holder = button;
  AwaitRelease(LoseRelease);
  button->state = kButtonPressed;
  DrawButton(button);
}

void ButtonUp(XButton* button, XEvent* event) {
  if (holder == button) {
    holder = nullptr;
    ForgetRelease();
    // A press that was read late may have opened a menu meanwhile, which has the pointer now.
    if (!MenuHoldsPointer()) GivePointerBack();
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

void ButtonFocus(XButton* button, XEvent* event) {
  if (event->type == FocusOut) FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  button->focused = event->type == FocusIn ? 1 : 0;
  DrawButton(button);
}

XButton* ButtonOf(const WindowObj* entry) {
  return entry->eh[KeyPress] == ButtonKeyPress ? static_cast<XButton*>(entry->obj) : nullptr;
}

void ReleaseHiddenButton() {
  if (holder == nullptr || CanBeSeen(holder->window)) return;
  if (holder->state == kButtonPressed) holder->state = kButtonActive;
  holder = nullptr;
  ForgetRelease();
}

}  // namespace gromlit
