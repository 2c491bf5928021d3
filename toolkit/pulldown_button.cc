#include "toolkit/pulldown_button.h"

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"

namespace gromlit {

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
}

void UpdatePulldownButton(XButton* button, const char* label) {
  SetButtonLabel(button, label);
  DrawPulldownButton(button);
}

void DrawPulldownButton(XButton* button, XEvent*) {
  DrawButton(button);
  XDrawBevel(kRaised, button->window, button->gc, button->width - 24, button->height / 2 - 4, 16,
             8);
}

void PulldownButtonPress(XButton* button, XEvent*) {
  if (button->menu == nullptr || button->state == kButtonInactive) return;
  int x;
  int y;
  ScaledTranslate(button->window, root, 0, 0, &x, &y);
  PopUpMenuGrabbed(x, y, button->menu);
}

}  // namespace gromlit
