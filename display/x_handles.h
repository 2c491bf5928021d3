// Owners for what Xlib hands out inside a function.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <memory>

namespace gromlit {

struct XFreeDeleter {
  void operator()(void* data) const {
    if (data != nullptr) XFree(data);
  }
};

// A block that XFree releases.
template <typename T>
using XData = std::unique_ptr<T, XFreeDeleter>;

}  // namespace gromlit
