// The push button.
//
//   state         event                        next   function
//   0 inactive    press, release               0      -
//   1 active      press, pointer grabbed       2      ButtonDown
//   1 active      press, grab refused          1      ButtonDown
//   2 pressed     release strictly inside      1      ButtonUp, which calls back
//   2 pressed     release elsewhere            1      ButtonUp
//   2 pressed     its window is hidden         1      ReleaseHiddenButton
//   2 pressed     no button is down any more   1      LoseRelease
//
// INV-BUTTON-1: the release that follows a press gives the pointer back, whatever an owner did to
// `state` in between; where the release is lost, the button gives the pointer back by itself.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/window_object.h"

namespace gromlit {

struct XMenu;

inline constexpr int kButtonHeight = 24;
inline constexpr int kButtonWidth = 64;      // unless the maker says otherwise
inline constexpr int kButtonLabelSize = 64;  // bytes of a caption, its NUL included

enum ButtonState {
  kButtonInactive = 0,
  kButtonActive = 1,
  kButtonPressed = 2,
};

struct XButton {
  WindowObj* wobj;
  void* owner;  // who made it; not read here
  Window window;
  GC gc;                         // buttongc
  char label[kButtonLabelSize];  // NUL-terminated
  int label_width;               // pixels in labelFontinfo
  int width;                     // pixels, as is height
  int height;
  int state;                  // ButtonState; owners set 0 or 1 and call DrawButton
  void (*action)(void* arg);  // or null
  void* arg;                  // the button itself unless the owner replaces it
  XMenu* menu;                // of a pulldown button, else null
  int focused;                // 1 while it has the keyboard
  bool (*ready)(void* owner, const XKeyEvent& press);  // whether a key may press it; null: always
};

// Makes and maps a button, kButtonHeight high. The label is copied, cut to what the field holds.
XButton* MakeButtonSized(void* owner, Window parent, const char* label, void (*func)(void* arg),
                         int x, int y, int width);
XButton* MakeButton(void* owner, Window parent, const char* label, void (*func)(void* arg), int x,
                    int y);

// Copies a caption, cut to what the field holds, and measures it; does not draw.
void SetButtonLabel(XButton* button, const char* label);

// Handlers; the drawing does not look at its event.
void DrawButton(XButton* button, XEvent* event = nullptr);
void ButtonDown(XButton* button, XEvent* event);
void ButtonUp(XButton* button, XEvent* event);

// Today's manners: a button that Tab led to shows it, and Space or Return presses it. Where a key
// means nothing to it, it goes to the window.
void ButtonFocus(XButton* button, XEvent* event);

// The button whose window an entry is for; null when it is for something else.
XButton* ButtonOf(const WindowObj* entry);

// Lets the button that is held come up if its window has gone from the screen: the server has taken
// the pointer from it, and the release goes elsewhere. Round trips only while one is held.
void ReleaseHiddenButton();

}  // namespace gromlit
