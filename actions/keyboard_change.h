// The keyboard's meaning while the program runs.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// To be told of every MappingNotify that the server sent, after Xlib: what is known of the keys is
// read anew, now or when it is used next.
void KeyboardChanged(const XMappingEvent& event);

}  // namespace gromlit
