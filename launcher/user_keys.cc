#include "launcher/user_keys.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "core/gromlit.h"
#include "core/plugin_image.h"

namespace gromlit {
namespace {

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

struct ContextRelease {
  void operator()(xkb_context* context) const { xkb_context_unref(context); }
};

// A plug-in with all that it owns.
struct OwnedPlugin {
  ~OwnedPlugin() {
    for (GromlitAction* action : plugin->actions) {
      if (action == nullptr) break;
      for (GromlitCmd* cmd : action->cmds) {
        if (cmd == nullptr) break;
        std::free(cmd->text);
        delete cmd;
      }
      delete action;
    }
  }
  const std::unique_ptr<GromlitPlugin> plugin = std::make_unique<GromlitPlugin>();
};

void TakeKeys(xkb_keymap* map, GromlitCmd* cmd) {
  if (cmd->type != kHotKey || cmd->nkeys != 1 || cmd->text == nullptr) return;
  const std::optional<KeyStroke> stroke =
      FindKeyStroke(map, std::string_view(cmd->text, cmd->ntext));
  if (!stroke.has_value()) return;
  cmd->keycode[0] = stroke->keycode;
  cmd->keystate[0] = stroke->state;
}

}  // namespace

Keymap KeymapOfDisplay(const char* display) {
  const std::unique_ptr<xcb_connection_t, Disconnect> server(xcb_connect(display, nullptr));
  if (server == nullptr || xcb_connection_has_error(server.get()) != 0) return nullptr;
  if (xkb_x11_setup_xkb_extension(
          server.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
          XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 0)
    return nullptr;
  const int32_t keyboard = xkb_x11_get_core_keyboard_device_id(server.get());
  if (keyboard < 0) return nullptr;
  const std::unique_ptr<xkb_context, ContextRelease> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
  if (context == nullptr) return nullptr;
  return Keymap(xkb_x11_keymap_new_from_device(context.get(), server.get(), keyboard,
                                               XKB_KEYMAP_COMPILE_NO_FLAGS));
}

std::vector<std::byte> WithKeysOf(xkb_keymap* map, std::span<const std::byte> file) {
  std::vector<std::byte> as_it_is(file.begin(), file.end());
  const OwnedPlugin owned;
  GromlitPlugin* plugin = owned.plugin.get();
  if (DecodePluginFile(file, plugin) != PluginPart::kNothing) return as_it_is;
  if (EncodePluginRecords(*plugin) != as_it_is) return as_it_is;
  for (int i = 0; i < plugin->nactions; i++) {
    for (uint32_t j = 0; j < plugin->actions[i]->ncmds; j++)
      TakeKeys(map, plugin->actions[i]->cmds[j]);
  }
  return EncodePluginRecords(*plugin);
}

}  // namespace gromlit
