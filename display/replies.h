// Questions to the server whose answers are waited for later, so that many share one round trip.
#pragma once

#include <X11/Xlib-xcb.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

#include "display/display.h"

namespace gromlit {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

// The answer to a question, null where it was an error. `reply` is XCB's function for its kind.
template <typename R, typename Cookie>
Reply<R> AnswerTo(R* (*reply)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) {
  xcb_generic_error_t* error = nullptr;
  Reply<R> answer(reply(XGetXCBConnection(dpy), cookie, &error));
  std::free(error);
  return answer;
}

// The code of the error that a checked request ended with, or Success. Waits for the server, unless
// it has answered something later already.
inline int ErrorOf(xcb_void_cookie_t request) {
  const Reply<xcb_generic_error_t> error(xcb_request_check(XGetXCBConnection(dpy), request));
  return error != nullptr ? error->error_code : Success;
}

}  // namespace gromlit
