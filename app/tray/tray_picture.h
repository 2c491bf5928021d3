// The picture of the tray icon.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace gromlit {

// The letter at the front of the logo in a square, `side` pixels wide and high, in the format of
// the root window; paused, in grey and with a bar across. To be released with XDestroyImage. Null
// when memory runs out or there is no logo. REQUIRES: side is positive.
XImage* MakeTrayPicture(int side, bool paused);

}  // namespace gromlit
