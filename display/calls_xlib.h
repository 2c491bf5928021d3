// Where a call by a pointer is one of Xlib's own functions.
#pragma once

// For a function of the program that calls by pointers which Xlib filled in, and by no others: what
// scripts/check-cfi builds would end the program there, for of Xlib's functions, which were not
// compiled so, it does not know the types. Beside calls that the code shows, these are the macros
//   XGetPixel, XPutPixel, XDestroyImage (by the picture's pointers),
//   LockDisplay, UnlockDisplay, SyncHandle (by the connection's).
// Functions that are only handed to Xlib need nothing: it is Xlib that calls them.
#ifdef __clang__
#define GROMLIT_CALLS_XLIB __attribute__((no_sanitize("cfi-icall")))
#else
#define GROMLIT_CALLS_XLIB
#endif
