#include "display/window_questions.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <string_view>

#include "display/display.h"
#include "display/replies.h"

namespace gromlit {
namespace {

// Of a property, units of four bytes. Of a name no more than a class text can hold is of use; a
// class hint has its name part first, and the class part may be behind a long one.
constexpr uint32_t kNameLength = (kClassBuffer + 3) / 4;
constexpr uint32_t kHintLength = 256;
constexpr uint32_t kWholeHintLength = 8192;

using PropertyReply = Reply<xcb_get_property_reply_t>;

xcb_window_t Id(Window window) {
  return static_cast<xcb_window_t>(window);
}

xcb_get_property_cookie_t AskProperty(Window window, Atom property, Atom type, uint32_t length) {
  return xcb_get_property(XGetXCBConnection(dpy), 0, Id(window), static_cast<xcb_atom_t>(property),
                          static_cast<xcb_atom_t>(type), 0, length);
}

PropertyReply PropertyOf(xcb_get_property_cookie_t cookie) {
  return AnswerTo(xcb_get_property_reply, cookie);
}

std::string_view BytesOf(const xcb_get_property_reply_t& property) {
  return {static_cast<const char*>(xcb_get_property_value(&property)),
          static_cast<size_t>(xcb_get_property_value_length(&property))};
}

std::vector<Window> ChildrenOf(xcb_query_tree_cookie_t cookie) {
  const auto tree = AnswerTo(xcb_query_tree_reply, cookie);
  if (tree == nullptr) return {};
  const xcb_window_t* list = xcb_query_tree_children(tree.get());
  return {list, list + xcb_query_tree_children_length(tree.get())};
}

// The question where a position lies in the first of the windows.
class PositionQuestion {
 public:
  PositionQuestion(std::span<const Window> windows, int rootx, int rooty, WindowPosition* answer)
      : answer_(windows.empty() ? nullptr : answer) {
    if (answer_ == nullptr) return;
    cookie_ = xcb_translate_coordinates(XGetXCBConnection(dpy), Id(root), Id(windows[0]),
                                        static_cast<int16_t>(rootx), static_cast<int16_t>(rooty));
  }
  void Answer() {
    if (answer_ == nullptr) return;
    *answer_ = {};
    const auto reply = AnswerTo(xcb_translate_coordinates_reply, cookie_);
    if (reply != nullptr && reply->same_screen) {
      *answer_ = {true, reply->dst_x, reply->dst_y, reply->child};
    }
  }

 private:
  WindowPosition* answer_;
  xcb_translate_coordinates_cookie_t cookie_{};
};

// Class text of a WM_CLASS property: name part, NUL, class part, either of which may be missing.
std::string ClassText(std::string_view bytes) {
  const std::string_view name = bytes.substr(0, bytes.find('\0'));
  std::string_view classpart = bytes.substr(std::min(bytes.size(), name.size() + 1));
  classpart = classpart.substr(0, classpart.find('\0'));
  std::string text(classpart);
  if (!text.empty()) text += '.';
  return text.append(name);
}

WindowName NameFrom(const PropertyReply& hint, const PropertyReply& name) {
  WindowName result;
  if (hint != nullptr && hint->type == XA_STRING && hint->format == 8) {
    result.kind = WindowName::kClassHint;
    result.text = ClassText(BytesOf(*hint));
    result.cut = hint->bytes_after > 0;
  } else if (name != nullptr && name->type != XCB_ATOM_NONE) {
    const bool plain = name->type == XA_STRING && name->format == 8;
    result.kind = plain ? WindowName::kPlainName : WindowName::kOtherName;
    if (plain) result.text = BytesOf(*name);
  }
  return result;
}

}  // namespace

std::vector<WindowFacts> AskFacts(std::span<const Window> windows, Atom wmstate, int rootx,
                                  int rooty, WindowPosition* first) {
  struct Questions {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_property_cookie_t state;
    xcb_query_tree_cookie_t tree;
  };
  xcb_connection_t* connection = XGetXCBConnection(dpy);
  std::vector<Questions> questions(windows.size());
  PositionQuestion position(windows, rootx, rooty, first);
  for (size_t i = 0; i < windows.size(); i++) {
    const xcb_window_t window = Id(windows[i]);
    questions[i].attributes = xcb_get_window_attributes(connection, window);
    questions[i].geometry = xcb_get_geometry(connection, window);
    if (wmstate != None) questions[i].state = AskProperty(windows[i], wmstate, AnyPropertyType, 0);
    questions[i].tree = xcb_query_tree(connection, window);
  }
  std::vector<WindowFacts> facts(windows.size());
  for (size_t i = 0; i < windows.size(); i++) {
    const auto attributes = AnswerTo(xcb_get_window_attributes_reply, questions[i].attributes);
    const auto geometry = AnswerTo(xcb_get_geometry_reply, questions[i].geometry);
    const auto state = wmstate != None ? PropertyOf(questions[i].state) : nullptr;
    std::vector<Window> children = ChildrenOf(questions[i].tree);
    if (attributes == nullptr || geometry == nullptr) continue;
    facts[i] = {true,
                attributes->map_state == XCB_MAP_STATE_VIEWABLE,
                state != nullptr && state->type != XCB_ATOM_NONE,
                attributes->all_event_masks,
                geometry->x,
                geometry->y,
                geometry->width,
                geometry->height,
                geometry->border_width,
                std::move(children)};
  }
  position.Answer();
  return facts;
}

std::vector<WindowName> AskNames(std::span<const Window> windows, int rootx, int rooty,
                                 WindowPosition* first) {
  struct Questions {
    xcb_get_property_cookie_t hint;
    xcb_get_property_cookie_t name;
    xcb_query_tree_cookie_t tree;
  };
  std::vector<Questions> questions(windows.size());
  PositionQuestion position(windows, rootx, rooty, first);
  for (size_t i = 0; i < windows.size(); i++) {
    questions[i].hint = AskProperty(windows[i], XA_WM_CLASS, XA_STRING, kHintLength);
    questions[i].name = AskProperty(windows[i], XA_WM_NAME, AnyPropertyType, kNameLength);
    questions[i].tree = xcb_query_tree(XGetXCBConnection(dpy), Id(windows[i]));
  }
  std::vector<WindowName> names;
  names.reserve(windows.size());
  for (const Questions& asked : questions) {
    const PropertyReply hint = PropertyOf(asked.hint);
    const PropertyReply name = PropertyOf(asked.name);
    names.push_back(NameFrom(hint, name));
    names.back().children = ChildrenOf(asked.tree);
  }
  position.Answer();
  return names;
}

WindowName AskWholeName(Window window) {
  return NameFrom(PropertyOf(AskProperty(window, XA_WM_CLASS, XA_STRING, kWholeHintLength)),
                  nullptr);
}

void UpdateRequestCount() {
  // Xlib takes the connection back, and with it the number of the last request.
  XFlush(dpy);
}

}  // namespace gromlit
