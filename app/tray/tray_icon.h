// The icon in the system tray: it shows that the program runs, and brings the hidden main window
// back.
//
// A tray is whatever client owns the selection _NET_SYSTEM_TRAY_Sn of screen n. It is looked for at
// start, and says itself when it comes later. It gets the icon's window as a child, says the size,
// and may be gone at any time.
//
//   state    event                             next     function
//   none     start, with a tray on the screen  asked    WatchForTrays
//   any      a tray says that it has come      asked    NoteTray; an icon in another one goes first
//   asked    the icon is put into a window     docked   TrayIconMoved
//   docked   the icon is put on the root       none     TrayIconMoved: the tray let go of it
//   docked   the icon's window is gone         none     TrayIconGone: it went with the tray's
//   asked,   the tray's window is gone         none     NoteTrayGone
//   docked
//
//   none: there is no tray, and no window; asked: the tray has been asked to take the icon.
//
// Without a tray nothing is made. The messages of the XEMBED protocol that a tray sends its icons
// need no answer: they tell who has the keyboard, which the icon never takes.
#pragma once

#include <X11/Xlib.h>

#include "app/tray/tray_record.h"
#include "display/sent_input.h"

namespace gromlit {

// Looks for a tray, and again whenever one comes. To be called once, when the root window and the
// default window object have their entries and the root's events are selected. One or two round
// trips where there is no tray.
void WatchForTrays();

// Asks for a tray without waiting for the answer, which WatchForTrays takes in.
void AskForTrays();

// Whether a window is the icon's, and in a tray. False for None.
bool IsTrayIcon(Window window);

// Clicks on the icon in the user's place, where the draw button's press and release were taken by
// the capture. `place` is where it was; its window is the icon's. The tray, which listens to the
// icon's window for other things, does not hear of it: there are trays that end when they do.
void ClickTrayIcon(const InputPlace& place, unsigned button);

// Shows the mode that gestures are in. To be called when it has changed.
void RefreshTrayIcon();

// Handlers of the root window's and of the default entry.
void NoteTray(void* obj, XEvent* event);
void NoteTrayGone(void* obj, XEvent* event);

// Handlers of the icon. A click counts when press and release were on it.
void DrawTrayIcon(TrayIcon* icon, XEvent* event);
void TrayIconResized(TrayIcon* icon, XEvent* event);
void TrayIconMoved(TrayIcon* icon, XEvent* event);
void TrayIconGone(TrayIcon* icon, XEvent* event);
void TrayIconPress(TrayIcon* icon, XEvent* event);
void TrayIconRelease(TrayIcon* icon, XEvent* event);

}  // namespace gromlit
