// What desktops and screen readers are told of the program's windows with today's manners: a title
// in UTF-8, what kind of window it is, a picture, which process on which machine it belongs to.
#pragma once

#include <X11/Xlib.h>

#include <string>

namespace gromlit {

enum class WindowKind { kNormal, kDialog };

// Sets _NET_WM_NAME, _NET_WM_WINDOW_TYPE, _NET_WM_PID, WM_CLIENT_MACHINE and, where the pictures
// have been made, _NET_WM_ICON. A title that is no UTF-8 counts as Latin-1. WM_NAME stays as it is.
// Round trips for the names.
void DescribeWindow(Window window, const std::string& title, WindowKind kind);

}  // namespace gromlit
