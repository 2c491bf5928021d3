#include "display/monitors.h"

#include <X11/extensions/Xrandr.h>

#include <memory>

#include "display/display.h"

namespace gromlit {
namespace {

XRectangle AreaOf(const XRRMonitorInfo& monitor) {
  return {static_cast<short>(monitor.x), static_cast<short>(monitor.y),
          static_cast<unsigned short>(monitor.width), static_cast<unsigned short>(monitor.height)};
}

// Version 1.5 of the extension has monitors.
bool HasMonitors() {
  int event;
  int error;
  int major = 0;
  int minor = 0;
  return XRRQueryExtension(dpy, &event, &error) != 0 && XRRQueryVersion(dpy, &major, &minor) != 0 &&
         (major > 1 || (major == 1 && minor >= 5));
}

}  // namespace

XRectangle MonitorAt(int x, int y) {
  const XRectangle whole = {0, 0, static_cast<unsigned short>(screenwidth),
                            static_cast<unsigned short>(screenheight)};
  if (!HasMonitors()) return whole;
  int count = 0;
  const std::unique_ptr<XRRMonitorInfo, void (*)(XRRMonitorInfo*)> monitors(
      XRRGetMonitors(dpy, root, True, &count), XRRFreeMonitors);
  if (monitors == nullptr || count < 1) return whole;
  for (int i = 0; i < count; i++) {
    const XRectangle area = AreaOf(monitors.get()[i]);
    if (Contains(area, x, y)) return area;
  }
  return AreaOf(monitors.get()[0]);
}

bool Contains(const XRectangle& area, int x, int y) {
  return x >= area.x && x < area.x + area.width && y >= area.y && y < area.y + area.height;
}

}  // namespace gromlit
