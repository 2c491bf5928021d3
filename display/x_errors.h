// X protocol errors: silent while the program runs, caught where an answer depends on them.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Does nothing: windows of other clients may vanish between any two requests.
int GromlitXErrorHandler(Display* display, XErrorEvent* error);

// Catches the errors of the requests made during its lifetime and gives the former handler back.
// Not to be nested.
class ErrorTrap {
 public:
  ErrorTrap();
  ~ErrorTrap();
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

  // Waits for the server, unless nothing was requested since it was last waited for, and returns
  // the code of the first error since construction, or Success.
  int Finish();

 private:
  unsigned long answered_;  // all requests before this one
};

}  // namespace gromlit
