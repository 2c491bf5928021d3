// What the program asks the server for in two steps, so that several questions share a round trip:
// fonts, the keyboard, owners of selections. Of extensions that are asked for by hand there is
// none.
#include <X11/Xlib.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <utility>

#include "display/display.h"
#include "display/extension_question.h"
#include "display/font_question.h"
#include "fuzz/require.h"

namespace gromlit {
namespace {

// Names of the fonts, and selections, that were asked for and are not answered yet.
std::map<unsigned, std::string>& FontNames() {
  static auto* const names = new std::map<unsigned, std::string>;
  return *names;
}
std::map<unsigned, Atom>& Selections() {
  static auto* const selections = new std::map<unsigned, Atom>;
  return *selections;
}
unsigned next = 1;

// Zeros, with room behind the reply, to be freed by who asked.
template <typename T>
T* Zeros(size_t more = 0) {
  void* const block = std::calloc(1, sizeof(T) + more);
  Require(block != nullptr);
  return new (block) T{};
}

}  // namespace

FontQuestion AskForFont(const char* name) {
  FontNames()[next] = name;
  return {next++, {}, {}};
}

XFontStruct* FontOf(const FontQuestion& question) {
  const auto name = FontNames().extract(question.font);
  Require(!name.empty());
  return XLoadQueryFont(dpy, name.mapped().c_str());
}

bool HasExtension(xcb_extension_t*) {
  return false;
}

ExtensionQuestion AskExtension(xcb_extension_t*, uint8_t, std::span<uint8_t>) {
  return {};
}

Reply<uint8_t> AnswerOf(ExtensionQuestion) {
  return nullptr;
}

extern "C" {

xcb_get_modifier_mapping_cookie_t xcb_get_modifier_mapping(xcb_connection_t*) {
  return {next++};
}
xcb_get_modifier_mapping_reply_t* xcb_get_modifier_mapping_reply(xcb_connection_t*,
                                                                 xcb_get_modifier_mapping_cookie_t,
                                                                 xcb_generic_error_t**) {
  XModifierKeymap* const map = XGetModifierMapping(dpy);
  const auto width = static_cast<size_t>(map->max_keypermod);
  auto* const reply = Zeros<xcb_get_modifier_mapping_reply_t>(8 * width);
  reply->keycodes_per_modifier = static_cast<uint8_t>(width);
  std::copy_n(map->modifiermap, 8 * width, reinterpret_cast<KeyCode*>(reply + 1));
  XFreeModifiermap(map);
  return reply;
}

xcb_query_keymap_cookie_t xcb_query_keymap(xcb_connection_t*) {
  return {next++};
}
xcb_query_keymap_reply_t* xcb_query_keymap_reply(xcb_connection_t*, xcb_query_keymap_cookie_t,
                                                 xcb_generic_error_t**) {
  auto* const reply = Zeros<xcb_query_keymap_reply_t>();
  XQueryKeymap(dpy, reinterpret_cast<char*>(reply->keys));
  return reply;
}

xcb_get_selection_owner_cookie_t xcb_get_selection_owner(xcb_connection_t*, xcb_atom_t selection) {
  Selections()[next] = selection;
  return {next++};
}
xcb_get_selection_owner_reply_t* xcb_get_selection_owner_reply(
    xcb_connection_t*, xcb_get_selection_owner_cookie_t cookie, xcb_generic_error_t**) {
  const auto selection = Selections().extract(cookie.sequence);
  Require(!selection.empty());
  auto* const reply = Zeros<xcb_get_selection_owner_reply_t>();
  reply->owner = static_cast<xcb_window_t>(XGetSelectionOwner(dpy, selection.mapped()));
  return reply;
}

}  // extern "C"
}  // namespace gromlit
