#include "display/pointer_click.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>

#include <array>
#include <memory>
#include <span>
#include <string_view>

#include "display/display.h"
#include "display/draw_button.h"
#include "display/input_extension.h"

namespace gromlit {
namespace {

constexpr std::string_view kTestPointer = "XTEST pointer";

// What a button becomes: entry i is for button i + 1, 0 for one that is switched off.
struct Mapping {
  std::array<unsigned char, 256> to{};
  int count = 0;

  int Of(int button) const {
    return button >= 1 && button <= count ? to[static_cast<size_t>(button - 1)] : 0;
  }
};

Mapping CoreMapping() {
  Mapping mapping;
  mapping.count = XGetPointerMapping(dpy, mapping.to.data(), static_cast<int>(mapping.to.size()));
  return mapping;
}

bool HasXInput2() {
  int opcode;
  int major = 2;
  int minor = 0;
  return FindInputExtension(&opcode) && XIQueryVersion(dpy, &major, &minor) == Success;
}

// The test pointer that moves this program's pointer; 0 when it cannot be told.
int TestPointer() {
  int master = 0;
  if (!HasXInput2() || XIGetClientPointer(dpy, None, &master) == 0) return 0;
  int count = 0;
  const std::unique_ptr<XIDeviceInfo, decltype(&XIFreeDeviceInfo)> devices(
      XIQueryDevice(dpy, XIAllDevices, &count), XIFreeDeviceInfo);
  if (devices == nullptr) return 0;
  for (const XIDeviceInfo& device : std::span(devices.get(), static_cast<size_t>(count))) {
    if (device.use == XISlavePointer && device.attachment == master &&
        std::string_view(device.name).ends_with(kTestPointer)) {
      return device.deviceid;
    }
  }
  return 0;
}

// A server that cannot tell has no mappings of devices: each button stays what it is.
Mapping TestMapping() {
  Mapping mapping;
  if (const int id = TestPointer(); id != 0) {
    // Not opened: opening asks the server for more than the number, and closing gives up grabs.
    XDevice device{};
    device.device_id = static_cast<XID>(id);
    mapping.count = XGetDeviceButtonMapping(dpy, &device, mapping.to.data(),
                                            static_cast<unsigned>(mapping.to.size()));
    if (mapping.count > 0) return mapping;
  }
  mapping.count = static_cast<int>(mapping.to.size()) - 1;
  for (int i = 0; i < mapping.count; i++) {
    mapping.to[static_cast<size_t>(i)] = static_cast<unsigned char>(i + 1);
  }
  return mapping;
}

// Where the pointer is, on the root window.
struct Place {
  int x;
  int y;
  bool known;
};

Place PointerPlace() {
  Window rootwin;
  Window child;
  Place place{};
  int winx;
  int winy;
  unsigned state;
  place.known =
      XQueryPointer(dpy, root, &rootwin, &child, &place.x, &place.y, &winx, &winy, &state) != 0;
  return place;
}

}  // namespace

int TestButton(int button) {
  const Mapping core = CoreMapping();
  const Mapping test = TestMapping();
  // The button itself before others that become the same.
  if (core.Of(test.Of(button)) == button) return button;
  for (int i = 1; i <= test.count; i++) {
    if (core.Of(test.Of(i)) == button) return i;
  }
  return 0;
}

bool ClickAt(int x, int y, int button) {
  int opcode;
  int error;
  int major;
  int minor;
  if (!XTestQueryExtension(dpy, &opcode, &error, &major, &minor)) return false;
  const int pressed = TestButton(button);
  if (pressed == 0) return false;
  // The grab would catch this click as it caught the one that it stands for.
  const DrawButtonLifted lifted;
  const Place former = PointerPlace();
  const bool moved = former.known && (former.x != x || former.y != y);
  if (moved) XTestFakeMotionEvent(dpy, screen, x, y, CurrentTime);
  XTestFakeButtonEvent(dpy, static_cast<unsigned>(pressed), True, CurrentTime);
  XTestFakeButtonEvent(dpy, static_cast<unsigned>(pressed), False, CurrentTime);
  if (moved) XTestFakeMotionEvent(dpy, screen, former.x, former.y, CurrentTime);
  return true;
}

}  // namespace gromlit
