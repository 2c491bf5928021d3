// One window with every widget in every state. All of them are live: what is clicked calls back
// and says so at the bottom of the window.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XButton;
struct XDialog;
struct XMenu;
struct XMenuBar;
struct XTabBar;
struct TextEditor;

struct Gallery {
  WindowObj* wobj;
  Window window;
  GC gc;
  char status[128];       // what called back last, NUL-terminated
  int ncalls;             // callbacks so far
  int closed;             // non-zero once the window manager has asked to close
  GromlitSymbol syms[4];  // shown by the tiles
  XMenu* menu;            // shown open, with a highlight and a submenu
  XMenu* submenu;
  XMenuBar* bar;        // shown with a title open
  TextEditor* focused;  // shown with the keyboard
  XDialog* question;    // shown in the window
  XDialog* message;
  XDialog* popup;  // opened by a button
};

inline constexpr int kGalleryWidth = 920;  // pixels
inline constexpr int kGalleryHeight = 716;

// Makes the window, not mapped. Needs everything of start-up down to the atoms, and the images.
Gallery* MakeGallery();

// Brings the widgets into the states that only a user's hand brings about: open menus, the
// keyboard in a text field, dialogs on the screen. The window must be on the screen.
void PoseGallery(Gallery* gallery);

}  // namespace gromlit
