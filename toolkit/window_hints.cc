#include "toolkit/window_hints.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <vector>

#include "display/calls_xlib.h"
#include "display/colours.h"
#include "display/display.h"
#include "display/window_manager.h"
#include "toolkit/image.h"
#include "toolkit/line_edit.h"

namespace gromlit {
namespace {

constexpr int kIcon = 48;  // pixels, as is its height

void SetNumbers(Window window, const char* name, Atom type, const std::vector<long>& values) {
  XChangeProperty(dpy, window, AtomOf(name), type, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(values.data()),
                  static_cast<int>(values.size()));
}

void SetBytes(Window window, Atom property, Atom type, const std::string& bytes) {
  XChangeProperty(dpy, window, property, type, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(bytes.data()),
                  static_cast<int>(bytes.size()));
}

// The letter that the logo begins with, a square of its height: width, height and the pixels, of
// which the upper eight bits say how much is seen.
GROMLIT_CALLS_XLIB std::vector<long> IconData() {
  constexpr unsigned long kOpaque = 0xff000000;
  std::vector<long> data = {kIcon, kIcon};
  for (int y = 0; y < kIcon; y++) {
    for (int x = 0; x < kIcon; x++) {
      const unsigned long pixel =
          XGetPixel(logoImage, x * logoImage->height / kIcon, y * logoImage->height / kIcon);
      data.push_back(static_cast<long>(kOpaque | RgbOfPixel(dpy, screen, pixel)));
    }
  }
  return data;
}

}  // namespace

void DescribeWindow(Window window, const std::string& title, WindowKind kind) {
  SetBytes(window, AtomOf("_NET_WM_NAME"), AtomOf("UTF8_STRING"), Utf8Of(title));
  const char* type =
      kind == WindowKind::kDialog ? "_NET_WM_WINDOW_TYPE_DIALOG" : "_NET_WM_WINDOW_TYPE_NORMAL";
  SetNumbers(window, "_NET_WM_WINDOW_TYPE", XA_ATOM, {static_cast<long>(AtomOf(type))});
  SetNumbers(window, "_NET_WM_PID", XA_CARDINAL, {static_cast<long>(getpid())});
  char host[256];
  if (gethostname(host, sizeof host) == 0) {
    host[sizeof host - 1] = '\0';
    SetBytes(window, XA_WM_CLIENT_MACHINE, XA_STRING, host);
  }
  // Such a screen has the colours in the pixel.
  if (logoImage != nullptr && DefaultVisual(dpy, screen)->c_class == TrueColor) {
    SetNumbers(window, "_NET_WM_ICON", XA_CARDINAL, IconData());
  }
}

}  // namespace gromlit
