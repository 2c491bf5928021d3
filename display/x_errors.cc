#include "display/x_errors.h"

#include "display/display.h"

namespace gromlit {
namespace {

int firsterror = Success;

int RememberError(Display*, XErrorEvent* error) {
  if (firsterror == Success) firsterror = error->error_code;
  return 0;
}

}  // namespace

int GromlitXErrorHandler(Display*, XErrorEvent*) {
  return 0;
}

ErrorTrap::ErrorTrap() {
  XSync(dpy, False);  // errors of earlier requests belong to the former handler
  firsterror = Success;
  former_ = XSetErrorHandler(RememberError);
}

ErrorTrap::~ErrorTrap() {
  XSync(dpy, False);
  XSetErrorHandler(former_);
}

int ErrorTrap::Finish() {
  XSync(dpy, False);
  return firsterror;
}

}  // namespace gromlit
