#include "display/keyboard_state.h"

#include <X11/Xlib.h>
#include <X11/Xmd.h>
#include <X11/extensions/XKB.h>
#include <X11/extensions/XKBproto.h>

#include <array>
#include <cstring>

#include "display/display.h"
#include "display/extension_question.h"

namespace gromlit {
namespace {

xcb_extension_t keyboard = {XkbName, 0};

ExtensionQuestion AskState() {
  if (!HasExtension(&keyboard)) return {};
  std::array<uint8_t, sz_xkbGetStateReq> request{};
  const uint16_t device = XkbUseCoreKbd;
  std::memcpy(request.data() + 4, &device, sizeof device);
  return AskExtension(&keyboard, X_kbGetState, request);
}

}  // namespace

void PrepareKeyboardState() {
  HasExtension(&keyboard);
}

KeyboardState ReadKeyboardState() {
  KeyboardState state{};
  xcb_connection_t* const connection = XGetXCBConnection(dpy);
  const ExtensionQuestion locks = AskState();
  const ModifierMapQuestion map = AskForModifierMap();
  const xcb_query_keymap_cookie_t down = xcb_query_keymap(connection);
  state.map = ModifierMapOf(map);
  if (const auto answer = AnswerOf(locks)) {
    xkbGetStateReply reply;
    std::memcpy(&reply, answer.get(), sizeof reply);
    state.latched = reply.latchedMods;
    state.locked = reply.lockedMods;
    state.lockedgroup = reply.lockedGroup;
  }
  if (const auto answer = AnswerTo(xcb_query_keymap_reply, down)) {
    for (size_t code = 0; code < kKeyCodes; code++)
      state.down.set(code, (answer->keys[code / 8] & 1U << code % 8) != 0);
  }
  XFlush(dpy);  // Xlib's count is old where others have used the connection
  const unsigned long next = NextRequest(dpy);
  // Its number is that of XCB, of which the cookie has the lower half.
  state.serial = next - static_cast<uint32_t>(next - down.sequence);
  return state;
}

}  // namespace gromlit
