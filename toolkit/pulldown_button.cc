#include "toolkit/pulldown_button.h"

#include <X11/keysym.h>

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/manners.h"
#include "toolkit/menu_hand.h"
#include "toolkit/tab_order.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

constexpr int kMarkWidth = 16;
constexpr int kMarkRight = 8;  // pixels from the mark to the button's right edge

// Below the mark, and nowhere near the pointer.
void OpenByHand(XButton* button, const XButtonEvent* press) {
  int x;
  int y;
  ScaledTranslate(button->window, root, 0, 0, &x, &y);
  OpenMenuByHand(button->menu, {x, y, button->width - kMarkRight, button->height, true}, press);
}

}  // namespace

XButton* MakePulldownButton(void* owner, Window parent, const char* label, int x, int y, int width,
                            XMenu* menu) {
  // No action: it would belong to a release inside the pressed button.
  XButton* button = MakeButtonSized(owner, parent, label, nullptr, x, y, width);
  SetPulldownMenu(button, menu);
  return button;
}

void SetPulldownMenu(XButton* button, XMenu* menu) {
  if (button->menu != nullptr && button->menu->pulldown == button) {
    button->menu->pulldown = nullptr;
  }
  button->menu = menu;
  if (menu != nullptr) menu->pulldown = button;
  On<Expose, DrawPulldownButton>(button);
  On<ButtonPress, PulldownButtonPress>(button);
  On<KeyPress, PulldownButtonKeyPress>(button);
  On<FocusIn, PulldownButtonFocus>(button);
  On<FocusOut, PulldownButtonFocus>(button);
  SetTabStop(button->wobj, [](void* obj) {
    const auto* pulldown = static_cast<XButton*>(obj);
    return pulldown->menu != nullptr && pulldown->state != kButtonInactive;
  });
}

void UpdatePulldownButton(XButton* button, const char* label) {
  SetButtonLabel(button, label);
  DrawPulldownButton(button);
}

void DrawPulldownButton(XButton* button, XEvent*) {
  DrawButton(button);
  XDrawBevel(kRaised, button->window, button->gc, button->width - kMarkRight - kMarkWidth,
             button->height / 2 - 4, kMarkWidth, 8);
}

void PulldownButtonPress(XButton* button, XEvent* event) {
  if (button->menu == nullptr || button->state == kButtonInactive) return;
  if (ModernManners()) {
    OpenByHand(button, &event->xbutton);
    return;
  }
  int x;
  int y;
  ScaledTranslate(button->window, root, 0, 0, &x, &y);
  PopUpMenuGrabbed(x, y, button->menu);
}

void PulldownButtonKeyPress(XButton* button, XEvent* event) {
  if (!ModernManners()) return;
  char bytes[32];
  KeySym key = NoSymbol;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  key = PlainKey(key);
  const bool plain = (event->xkey.state & (ControlMask | Mod1Mask | Mod4Mask)) == 0;
  const bool opens = key == XK_space || key == XK_Return || key == XK_Down;
  if (plain && opens && button->menu != nullptr && button->state != kButtonInactive) {
    OpenByHand(button, nullptr);
  } else {
    HandKeyUp(button->window, event);
  }
}

void PulldownButtonFocus(XButton* button, XEvent* event) {
  ButtonFocus(button, event);
  DrawPulldownButton(button);
}

}  // namespace gromlit
