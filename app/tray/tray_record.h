// What the icon in the system tray and its menu share.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <array>
#include <string>

#include "core/gromlit.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XMenu;

struct TrayIcon {
  WindowObj* wobj;  // null before the first tray
  Window window;    // None while there is none
  Window tray;      // who was asked to take it: the window that owns the selection; else None
  int docked;       // non-zero while it is in the tray
  int width;        // of the window, pixels, as is height
  int height;
  GC gc;
  XImage* picture;   // for this size and mode; null: has to be made
  unsigned pressed;  // button that went down on the icon and is not up yet; 0 for none

  XMenu* menu;                             // null before it was opened first
  std::string handsofflabel;               // of its item, which borrows it
  std::array<char, kClassBuffer> offered;  // class text that the item is about
  std::array<char, kClassBuffer> entered;  // of the application that the pointer entered last; ""
                                           // where it has none
  std::array<char, kClassBuffer> holder;   // of the one that holds the icon; "" while not known
};

// There is one, which lives as long as the program; null before WatchForTrays.
inline TrayIcon* trayicon = nullptr;

}  // namespace gromlit
