#include "actions/users_keys.h"

#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string_view>

#include "display/display.h"
#include "display/input_extension.h"

namespace gromlit {
namespace {

// So many of its own keys the program waits to hear of.
constexpr size_t kMostExpected = 10'000;

constexpr std::string_view kTestKeyboard = "XTEST keyboard";  // the end of its name

}  // namespace

void UsersKeys::Prepare() {
  if (asked_ == dpy) return;
  asked_ = dpy;
  if (!FindInputExtension(&opcode_)) return;
  // From this version on these events come while another client has grabbed the keyboard, too.
  int major = 2;
  int minor = 1;
  if (XIQueryVersion(dpy, &major, &minor) != Success || (major == 2 && minor < 1)) {
    opcode_ = 0;
    return;
  }
  own_.clear();
  FindTesters();
  if (testers_.none()) opcode_ = 0;
  if (opcode_ != 0) Select(false);
}

void UsersKeys::FindTesters() {
  testers_.reset();
  int count = 0;
  const std::unique_ptr<XIDeviceInfo, decltype(&XIFreeDeviceInfo)> devices(
      XIQueryDevice(dpy, XIAllDevices, &count), XIFreeDeviceInfo);
  if (devices == nullptr) return;
  for (const XIDeviceInfo& device : std::span(devices.get(), static_cast<size_t>(count))) {
    const auto number = static_cast<size_t>(device.deviceid);
    if (number < testers_.size() && device.use == XISlaveKeyboard &&
        std::string_view(device.name).ends_with(kTestKeyboard)) {
      testers_.set(number);
    }
  }
}

void UsersKeys::Own(int keycode, bool press) {
  if (!Known()) return;
  own_.push_back({NextRequest(dpy) - 1, keycode, press});
  if (own_.size() > kMostExpected) own_.pop_front();
}

void UsersKeys::Listen() {
  Prepare();
  if (opcode_ != 0) Select(true);
}

void UsersKeys::StopListening() {
  if (opcode_ == 0) return;
  Select(false);
  Poll();
}

void UsersKeys::Select(bool on) const {
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
  if (on) {
    XISetMask(bits.data(), XI_RawKeyPress);
    XISetMask(bits.data(), XI_RawKeyRelease);
  }
  XIEventMask mask{XIAllMasterDevices, static_cast<int>(bits.size()), bits.data()};
  XISelectEvents(dpy, root, &mask, 1);
}

bool UsersKeys::Take(XEvent* event, Change* change) const {
  XGenericEventCookie* cookie = &event->xcookie;
  if (cookie->extension != opcode_ || cookie->serial < since_) return false;
  if (!XGetEventData(dpy, cookie)) return false;
  const bool press = cookie->evtype == XI_RawKeyPress;
  const auto* const raw = static_cast<const XIRawEvent*>(cookie->data);
  *change = {cookie->serial, raw->detail, press, raw->sourceid};
  const bool ofkey = (press || cookie->evtype == XI_RawKeyRelease) && change->keycode < kKeyCodes;
  XFreeEventData(dpy, cookie);
  return ofkey;
}

bool UsersKeys::IsTester(int device) const {
  const auto number = static_cast<size_t>(device);
  return number < testers_.size() && testers_[number];
}

// The server keeps their order, and tells of none before it has begun the request. Those before it
// that have not come had no effect, such as the press of a key that was down: releases all have.
bool UsersKeys::IsOwn(const Change& change) {
  const auto own = std::ranges::find_if(own_, [&](const Change& made) {
    return made.keycode == change.keycode && made.press == change.press;
  });
  if (own == own_.end() || own->serial > change.serial) return false;
  if (!IsTester(change.device) && !looked_) {
    // Each keyboard that a client makes for a further pointer has one of its own, and the program's
    // keys come from that when the program is given that pointer.
    looked_ = true;
    FindTesters();
  }
  if (!IsTester(change.device)) return false;
  own_.erase(own_.begin(), own + 1);
  return true;
}

Keys UsersKeys::Late() const {
  Keys late;
  for (const Change& own : own_) {
    if (!own.press && own.serial < polled_) late.set(static_cast<size_t>(own.keycode));
  }
  return late;
}

std::vector<KeyChange> UsersKeys::Poll() {
  told_ = false;
  looked_ = false;
  polled_ = NextRequest(dpy);
  XSync(dpy, False);
  std::vector<KeyChange> users;
  XEvent event;
  while (opcode_ != 0 && XCheckTypedEvent(dpy, GenericEvent, &event)) {
    Change change;
    if (!Take(&event, &change)) continue;
    if (IsOwn(change)) {
      told_ = true;
    } else {
      users.push_back({change.keycode, change.press});
    }
  }
  return users;
}

}  // namespace gromlit
