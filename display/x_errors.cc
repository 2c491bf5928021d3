#include "display/x_errors.h"

#include "display/calls_xlib.h"
#include "display/display.h"

namespace gromlit {
namespace {

// Of the trap that is set.
int firsterror = Success;
unsigned long begin = 0;  // number of its first request
XErrorHandler former = nullptr;

GROMLIT_CALLS_XLIB int RememberError(Display* display, XErrorEvent* error) {
  // Errors of earlier requests belong to the former handler.
  if (error->serial < begin) return former != nullptr ? former(display, error) : 0;
  if (firsterror == Success) firsterror = error->error_code;
  return 0;
}

}  // namespace

int GromlitXErrorHandler(Display*, XErrorEvent*) {
  return 0;
}

ErrorTrap::ErrorTrap() {
  XFlush(dpy);  // Xlib's count is old where others have used the connection
  firsterror = Success;
  begin = answered_ = NextRequest(dpy);
  former = XSetErrorHandler(RememberError);
}

ErrorTrap::~ErrorTrap() {
  Finish();
  XSetErrorHandler(former);
}

int ErrorTrap::Finish() {
  if (NextRequest(dpy) != answered_) {
    XSync(dpy, False);
    answered_ = NextRequest(dpy);
  }
  return firsterror;
}

}  // namespace gromlit
