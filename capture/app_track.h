// Following the pointer: the main window shows the plug-in of the application entered last.
#pragma once

#include <X11/Xlib.h>

#include "display/target.h"

namespace gromlit {

// Starts following: the default window object gets the crossing events of other clients' windows,
// the root window reports new top-level windows, and every top-level window that is there now and
// is not the program's own reports crossings.
void CreateAppTrack();

// Asks which windows there are without waiting for the answer, which CreateAppTrack takes in.
void AskForWindows();

// Whether a position belongs to one of the program's own windows, in whatever frame; the icon lies
// in the system tray's. That needs the window for clicks (FindTargets).
bool IsOwnTarget(const Target& target);

// EnterNotify: shows the plug-in of the application that was entered. Nothing while an action is
// being edited, for crossings that a grab causes or another client sent, and for the program's own
// windows.
void GromlitAppTrackEnter(void* obj, XEvent* event);

// CreateNotify: asks for crossings of another client's new top-level window. Nothing when another
// client sent it.
void GromlitAppTrackCreate(void* obj, XEvent* event);

// UnmapNotify, of any window: the frame of one of the program's windows may go later than the
// window. Nothing when another client sent it.
void GromlitAppTrackUnmap(void* obj, XEvent* event);

}  // namespace gromlit
