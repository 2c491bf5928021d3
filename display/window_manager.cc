#include "display/window_manager.h"

#include <algorithm>

#include "display/display.h"
#include "display/x_handles.h"

namespace gromlit {
namespace {

constexpr long kMaxNumbers = 4096;

void SendMessage(Window to, long mask, Window about, const char* name,
                 const std::array<long, 5>& data) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = about;
  event.xclient.message_type = AtomOf(name);
  event.xclient.format = 32;
  std::copy(data.begin(), data.end(), event.xclient.data.l);
  XSendEvent(dpy, to, False, mask, &event);
}

}  // namespace

bool HasWindowManager() {
  XWindowAttributes attributes;
  return XGetWindowAttributes(dpy, root, &attributes) != 0 &&
         (attributes.all_event_masks & SubstructureRedirectMask) != 0;
}

Atom AtomOf(const char* name) {
  return XInternAtom(dpy, name, False);  // Xlib remembers it
}

std::vector<unsigned long> Numbers(Window window, const char* name) {
  Atom type;
  int format;
  unsigned long count;
  unsigned long left;
  unsigned char* data = nullptr;
  if (XGetWindowProperty(dpy, window, AtomOf(name), 0, kMaxNumbers, False, AnyPropertyType, &type,
                         &format, &count, &left, &data) != Success) {
    return {};
  }
  const XData<unsigned char> owner(data);
  if (format != 32) return {};
  const auto* numbers = reinterpret_cast<const unsigned long*>(data);
  std::vector<unsigned long> values(numbers, numbers + count);
  // Xlib extends the sign of what is 32 bits wide.
  for (unsigned long& value : values) value &= 0xFFFFFFFF;
  return values;
}

bool ManagerSupports(const char* name) {
  // A manager that was killed has left its properties; its window is gone.
  const auto check = Numbers(root, "_NET_SUPPORTING_WM_CHECK");
  if (check.empty() || Numbers(check[0], "_NET_SUPPORTING_WM_CHECK") != check) return false;
  const auto supported = Numbers(root, "_NET_SUPPORTED");
  return std::ranges::find(supported, AtomOf(name)) != supported.end();
}

void AskManager(Window about, const char* name, const std::array<long, 5>& data) {
  SendMessage(root, SubstructureNotifyMask | SubstructureRedirectMask, about, name, data);
}

void TellWindow(Window window, const char* name, const std::array<long, 5>& data) {
  SendMessage(window, NoEventMask, window, name, data);
}

}  // namespace gromlit
