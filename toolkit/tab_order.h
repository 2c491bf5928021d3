// Keys in a window with today's manners: Tab and Shift-Tab lead from field to field and from button
// to button, in the order in which the eye finds them, row by row; what a field or a button has no
// use for goes to the window that it lies in.
//
// With plain manners nothing of this is asked for.
#pragma once

#include <X11/Xlib.h>

#include <vector>

#include "toolkit/window_object.h"

namespace gromlit {

// Makes a widget a stop of Tab, while `ready` says so of its owner; null: always.
void SetTabStop(WindowObj* entry, bool (*ready)(void* obj));

// What a key means to a window as a whole.
enum class WindowKey { kNone, kNext, kBack, kConfirm, kRefuse };
WindowKey WindowKeyOf(KeySym key, unsigned state);

// The keysym of a key press, that of the keypad as the plain one: XK_KP_Left is XK_Left,
// XK_KP_Enter is XK_Return. Keypad keys that type, as with Num Lock, stay.
KeySym PlainKey(KeySym key);

// Whether a key presses what has the keyboard: Space or Return, without Control, Alt or Super.
bool IsPressingKey(XKeyEvent* press);

// The outermost window of the program that a window lies in. A round trip for each level.
Window TopOf(Window window);

// The windows on the screen in `top` that take the keyboard: rows from top to bottom, in a row from
// left to right. Inactive buttons are none. Two round trips for each window in it.
std::vector<Window> TabStops(Window top);

// KeyRelease handler of what acts on keys only when a hand pressed them, and whether a press was
// the keyboard's, of a key that is held: it follows a release at the same moment.
void NoteKeyRelease(void* obj, XEvent* event);
bool IsKeyRepeat(const XKeyEvent& press);

// Has a window told of keys and of the focus, beside what it is told of already. A round trip.
void SelectKeys(Window window);

// Gives the keyboard to a window that has keys selected for it here.
void TakeKeys(Window window);

// Gives the keyboard to the stop behind `from` in the same top-level window, or before it; round at
// the ends. From a window that is no stop it goes to the first or last.
void FocusNext(Window from, bool back);

// A key that `window` has no use for: Tab moves the focus, anything else goes to the handler of the
// window of the program that it lies in.
void HandKeyUp(Window window, XEvent* event);

// KeyPress handler of top-level windows, for Tab; the owner is not looked at.
void TopLevelKeyPress(void* obj, XEvent* event);

}  // namespace gromlit
