// The questions about windows that go by XCB, answered in blocks of exactly their size.
#include <X11/Xlib-xcb.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <map>

#include "fuzz/fake_server.h"
#include "fuzz/require.h"

using namespace gromlit;
using namespace gromlit::fuzz;

namespace {

struct PropertyQuestion {
  Window window;
  Atom name;
  Atom type;
  uint32_t length;
};
struct PlaceQuestion {
  Window to;
  int x;
  int y;
};

// By number, until the answer is taken; each must be taken once.
struct Questions {
  unsigned next = 1;
  std::map<unsigned, PropertyQuestion> properties;
  std::map<unsigned, Window> windows;
  std::map<unsigned, PlaceQuestion> places;
};
Questions& Asked() {
  static auto* const asked = new Questions;
  return *asked;
}

unsigned NoteWindow(xcb_window_t window) {
  Asked().windows[Asked().next] = window;
  return Asked().next++;
}

// The window that was asked about; `window` is its number.
FakeWindow* TakeWindow(unsigned number, Window* window = nullptr) {
  const auto it = Asked().windows.find(number);
  Require(it != Asked().windows.end());
  const Window asked = it->second;
  Asked().windows.erase(it);
  if (window != nullptr) *window = asked;
  return Ask(asked);
}

template <typename Reply>
Reply* NewReply(size_t more = 0) {
  return static_cast<Reply*>(std::calloc(1, sizeof(Reply) + more));
}

void Refuse(xcb_generic_error_t** error) {
  *error = NewReply<xcb_generic_error_t>();
}

}  // namespace

extern "C" {

xcb_connection_t* XGetXCBConnection(Display*) {
  static char connection;
  return reinterpret_cast<xcb_connection_t*>(&connection);
}

xcb_get_property_cookie_t xcb_get_property(xcb_connection_t*, uint8_t, xcb_window_t window,
                                           xcb_atom_t name, xcb_atom_t type, uint32_t offset,
                                           uint32_t length) {
  Require(offset == 0);
  Asked().properties[Asked().next] = {window, name, type, length};
  return {Asked().next++};
}

xcb_get_property_reply_t* xcb_get_property_reply(xcb_connection_t*,
                                                 xcb_get_property_cookie_t cookie,
                                                 xcb_generic_error_t** error) {
  const auto it = Asked().properties.find(cookie.sequence);
  Require(it != Asked().properties.end());
  const PropertyQuestion question = it->second;
  Asked().properties.erase(it);
  const FakeWindow* win = Ask(question.window);
  if (win == nullptr) {
    Refuse(error);
    return nullptr;
  }
  const auto found = win->properties.find(question.name);
  if (found == win->properties.end()) return NewReply<xcb_get_property_reply_t>();
  const FakeProperty& property = found->second;
  const bool fits = question.type == AnyPropertyType || question.type == property.type;
  const size_t n = fits ? std::min(property.bytes.size(), size_t{4} * question.length) : 0;
  auto* reply = NewReply<xcb_get_property_reply_t>(n);
  reply->type = static_cast<xcb_atom_t>(property.type);
  reply->format = static_cast<uint8_t>(property.format);
  reply->bytes_after = static_cast<uint32_t>(property.bytes.size() - n);
  reply->value_len = static_cast<uint32_t>(n / (static_cast<size_t>(property.format) / 8));
  std::memcpy(reply + 1, property.bytes.data(), n);
  return reply;
}

void* xcb_get_property_value(const xcb_get_property_reply_t* reply) {
  return const_cast<xcb_get_property_reply_t*>(reply) + 1;
}
int xcb_get_property_value_length(const xcb_get_property_reply_t* reply) {
  return static_cast<int>(reply->value_len * (reply->format / 8U));
}

xcb_query_tree_cookie_t xcb_query_tree(xcb_connection_t*, xcb_window_t window) {
  return {NoteWindow(window)};
}
xcb_query_tree_reply_t* xcb_query_tree_reply(xcb_connection_t*, xcb_query_tree_cookie_t cookie,
                                             xcb_generic_error_t** error) {
  const FakeWindow* win = TakeWindow(cookie.sequence);
  if (win == nullptr) {
    Refuse(error);
    return nullptr;
  }
  const size_t n = win->children.size();
  auto* reply = NewReply<xcb_query_tree_reply_t>(4 * n);
  reply->root = kRoot;
  reply->parent = static_cast<xcb_window_t>(win->parent);
  reply->children_len = static_cast<uint16_t>(n);
  auto* list = reinterpret_cast<xcb_window_t*>(reply + 1);
  for (size_t i = 0; i < n; i++) list[i] = static_cast<xcb_window_t>(win->children[i]);
  return reply;
}
xcb_window_t* xcb_query_tree_children(const xcb_query_tree_reply_t* reply) {
  return reinterpret_cast<xcb_window_t*>(const_cast<xcb_query_tree_reply_t*>(reply) + 1);
}
int xcb_query_tree_children_length(const xcb_query_tree_reply_t* reply) {
  return reply->children_len;
}

xcb_get_window_attributes_cookie_t xcb_get_window_attributes(xcb_connection_t*,
                                                             xcb_window_t window) {
  return {NoteWindow(window)};
}
xcb_get_window_attributes_reply_t* xcb_get_window_attributes_reply(
    xcb_connection_t*, xcb_get_window_attributes_cookie_t cookie, xcb_generic_error_t** error) {
  Window window = None;
  const FakeWindow* win = TakeWindow(cookie.sequence, &window);
  if (win == nullptr) {
    Refuse(error);
    return nullptr;
  }
  auto* reply = NewReply<xcb_get_window_attributes_reply_t>();
  reply->map_state = Viewable(window) ? XCB_MAP_STATE_VIEWABLE : XCB_MAP_STATE_UNMAPPED;
  reply->all_event_masks = static_cast<uint32_t>(win->allevents);
  return reply;
}

xcb_get_geometry_cookie_t xcb_get_geometry(xcb_connection_t*, xcb_drawable_t window) {
  return {NoteWindow(window)};
}
xcb_get_geometry_reply_t* xcb_get_geometry_reply(xcb_connection_t*,
                                                 xcb_get_geometry_cookie_t cookie,
                                                 xcb_generic_error_t** error) {
  const FakeWindow* win = TakeWindow(cookie.sequence);
  if (win == nullptr) {
    Refuse(error);
    return nullptr;
  }
  auto* reply = NewReply<xcb_get_geometry_reply_t>();
  reply->x = static_cast<int16_t>(win->x);
  reply->y = static_cast<int16_t>(win->y);
  reply->width = static_cast<uint16_t>(win->width);
  reply->height = static_cast<uint16_t>(win->height);
  reply->border_width = static_cast<uint16_t>(win->border);
  return reply;
}

xcb_translate_coordinates_cookie_t xcb_translate_coordinates(xcb_connection_t*, xcb_window_t,
                                                             xcb_window_t to, int16_t x,
                                                             int16_t y) {
  Asked().places[Asked().next] = {to, x, y};
  return {Asked().next++};
}
xcb_translate_coordinates_reply_t* xcb_translate_coordinates_reply(
    xcb_connection_t*, xcb_translate_coordinates_cookie_t cookie, xcb_generic_error_t** error) {
  const auto it = Asked().places.find(cookie.sequence);
  Require(it != Asked().places.end());
  const PlaceQuestion question = it->second;
  Asked().places.erase(it);
  const FakeWindow* win = Ask(question.to);
  if (win == nullptr) {
    Refuse(error);
    return nullptr;
  }
  int left;
  int top;
  Origin(question.to, &left, &top);
  const int x = question.x - left;
  const int y = question.y - top;
  auto* reply = NewReply<xcb_translate_coordinates_reply_t>();
  reply->same_screen = 1;
  reply->dst_x = static_cast<int16_t>(x);
  reply->dst_y = static_cast<int16_t>(y);
  for (const Window child : win->children) {
    const auto it2 = Server().windows.find(child);
    if (it2 == Server().windows.end() || !it2->second.mapped) continue;
    const FakeWindow& c = it2->second;
    if (x >= c.x && y >= c.y && x < c.x + c.width + 2 * c.border &&
        y < c.y + c.height + 2 * c.border) {
      reply->child = static_cast<xcb_window_t>(child);
    }
  }
  return reply;
}

}  // extern "C"
