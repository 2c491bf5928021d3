// What the window manager is asked, by the conventions that all of them share (ICCCM, EWMH).
#pragma once

#include <X11/Xlib.h>

#include <array>
#include <vector>

namespace gromlit {

// Whether a window manager is at work. One round trip.
bool HasWindowManager();

// Whether the window manager that is at work now obeys this message or keeps this property, such as
// "_NET_ACTIVE_WINDOW". Some round trips.
bool ManagerSupports(const char* name);

// A window's property of numbers (cardinals, atoms, windows); empty when it has none.
std::vector<unsigned long> Numbers(Window window, const char* name);

// Asks the manager for something about a window: a client message to the root window. Nothing is
// flushed.
void AskManager(Window about, const char* name, const std::array<long, 5>& data);

// The same to the window itself.
void TellWindow(Window window, const char* name, const std::array<long, 5>& data);

Atom AtomOf(const char* name);

}  // namespace gromlit
