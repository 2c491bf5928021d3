// Other clients on a test's screen: finding their windows, a window manager, a home for them.
#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace gromlit::testing {

// The windows right below this one, bottom-most first; none when it is gone.
std::vector<Window> ChildrenOf(Display* display, Window window);

// 0 when the window is gone.
Window ParentOf(Display* display, Window window);

// Whether a window is this one or below it.
bool IsInside(Display* display, Window window, Window ancestor);

// Whether a window is on the screen, as are all above it.
bool IsShown(Display* display, Window window);

// Whether the keyboard goes to this window or one in it.
bool HasFocus(Display* display, Window window);

// The first window, from the root downward, with this class text ("Class.name", from its class
// hint); of those that are on the screen, if only they count. 0 when there is none. Windows that go
// meanwhile are no X error.
Window FindClient(Display* display, const std::string& classtext, bool shown = true);

// The configuration with which StartManager runs twm: it places windows by itself, moves them by
// their titles, and has keys, as nobody but its user can close a window: F7 closes and F8 iconifies
// the one under the pointer.
extern const char* const kTwmConfiguration;

// The command that runs a window manager with this configuration, written below `directory`; empty:
// its own, that of twm kTwmConfiguration.
std::vector<std::string> ManagerCommand(const std::string& name, const std::string& directory,
                                        const std::string& configuration);

// Starts a window manager and waits until it manages the screen; null when it does not. Its
// configuration, that of twm above or the manager's own when empty, and what it prints go to files
// in `directory`.
std::unique_ptr<Process> StartManager(Display* display, const std::string& name,
                                      const std::string& directory,
                                      const std::string& configuration = "",
                                      const std::vector<std::string>& environment = {});

// Makes a home directory, and gives what a client's environment says of it, so that neither the
// user's settings nor an earlier run changes what the client does.
std::vector<std::string> MakeHome(const std::string& home);

}  // namespace gromlit::testing
