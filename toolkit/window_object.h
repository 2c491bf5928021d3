// Which record owns a window, and which function handles each of its events.
//
// Every window that the program wants events for has an entry in one table: the owner and one
// handler per event type. The main loop finds the entry of an event's window and calls the handler
// of the event's type with the owner. Every widget record begins with `wobj`, its entry, so that it
// can change its handlers later.
//
// To make a widget: create the window, allocate the record, AllocWindowObj, store the entry in
// `wobj`, then On<Type, Handler>(widget) for each event type, and select the matching event masks.
#pragma once

#include <X11/Xlib.h>

#include <type_traits>

namespace gromlit {

inline constexpr int kWindowObjects = 128;  // entries of the first block of the table
inline constexpr int kEventTypes = 35;      // slots 0 and 1 are never used
inline constexpr int kFirstEvent = KeyPress;
inline constexpr int kLastEvent = MappingNotify;

// Buttons 1, 2 and 3 press; what is above are the notches of a wheel, which come as a press and a
// release each, and the buttons at the side of a mouse. A hand that turns the wheel means nothing
// that lies under the pointer; with today's manners, it scrolls what that is part of.
inline constexpr unsigned kLastPressingButton = Button3;

using EventHandler = void (*)(void* obj, XEvent* event);
// `rows` is 1 for a notch towards the hand, which shows what is further down, and -1 for one away.
using WheelHandler = void (*)(void* obj, int rows);

struct WindowObj {
  Window window;                 // whose events this entry receives; 0 in a free entry
  void* obj;                     // the owner, handed to every handler
  EventHandler eh[kEventTypes];  // eh[t] handles event type t; never null in an entry handed out
  WheelHandler wheel;            // takes the notches of a wheel over it; or null
  bool device;                   // its handlers count in device pixels (display/scale.h)
};

// The first block. When it is full the table goes on in further blocks of the same size; entries
// keep their addresses for the whole run.
extern WindowObj WindowObjects[kWindowObjects];
extern int nWindowObjects;           // entries handed out, over all blocks
extern WindowObj* defaultWindowObj;  // for events whose window is in no entry; null until set

// Is told of every change of the keyboard or the pointer's buttons after Xlib; null until set.
extern void (*keyboardChanged)(const XMappingEvent& event);

// A new entry for window and owner, every handler NoHandler. Each call takes a new entry, also for
// a window that has one already.
WindowObj* AllocWindowObj(Window window, void* obj);

// Stores a handler. A type outside 2..34 is ignored.
void SetHandler(WindowObj* entry, int type, EventHandler handler);

// The first entry of the window, or null. The unused entries of the last block take part, so that
// window 0 gives the first free one.
WindowObj* HasWindowObj(Window window);

// Counts a window that gets no events of its own, such as a trail window, as one of the program's.
void ClaimWindow(Window window);
void DisclaimWindow(Window window);

// Whether a window is one of the program's own: it has an entry or was claimed. The pointer is not
// followed over those.
bool IsOwnWindow(Window window);

// Entry that gets the events of the window: the last one made for it, else defaultWindowObj.
WindowObj* FindWindowObj(Window window);

// Hands an event to its entry's handler, and lets Xlib know of a changed keyboard mapping first
// (one round trip). Places in it become logical pixels before, in the event itself; those of the
// root window, of windows of others and of entries that say so stay device pixels. An event of a
// type outside 2..34 prints "Unknown event type N" on standard output and goes to the handler and
// owner of the event before it. Presses and releases of buttons above kLastPressingButton go no
// further, for every window but the root: the owners need not ask, and no release of one ends what
// another button began. With ModernManners() a press of Button4 or Button5 goes to the wheel
// handler of its window. A press that was reported to a window because that held the pointer still
// goes to what it is on (toolkit/pointer_hold.h).
void DispatchEvent(XEvent* event);

// The handler of every slot that was not set: nothing.
void NoHandler(void* obj, XEvent* event);

// Name of an event type 2..34, for traces; "Unknown" for any other.
const char* EventName(int type);

// Swallows debug traces.
void noprintf(const char* format, ...);

// The window of the program whose key or button the user pressed last; None before the first. What
// is asked next comes of it. Written by DispatchEvent.
inline Window lastpressed = None;

// Takes a window from the screen: the one way for all top-level windows and dialogs of the program.
// Menus, which close as part of what the pointer does, have their own.
void HideWindow(Window window);

// Told right before a window is hidden; null: nobody is. What the pointer is on afterwards it has
// not gone to.
inline void (*beforehiding)() = nullptr;

// ClientMessage handler of top-level windows: the window manager's close request unmaps the window.
void WMClientMessage(void* obj, XEvent* event);

// Installs a typed wheel handler, void(Owner*, int rows); see WheelHandler.
template <auto kHandler, typename Owner>
void OnWheel(Owner* owner) {
  static_assert(std::is_same_v<decltype(kHandler), void (*)(Owner*, int)>,
                "the handler belongs to another kind of owner");
  owner->wobj->wheel = [](void* obj, int rows) { kHandler(static_cast<Owner*>(obj), rows); };
}

// Installs a typed handler, void(Owner*, XEvent*), for one event type of a widget. The owner's type
// is checked at compile time; this is the only cast between owners and table slots.
template <int kType, auto kHandler, typename Owner>
void On(Owner* owner) {
  static_assert(kType >= kFirstEvent && kType <= kLastEvent, "no such event type");
  static_assert(std::is_same_v<decltype(kHandler), void (*)(Owner*, XEvent*)>,
                "the handler belongs to another kind of owner");
  SetHandler(owner->wobj, kType,
             [](void* obj, XEvent* event) { kHandler(static_cast<Owner*>(obj), event); });
}

}  // namespace gromlit
