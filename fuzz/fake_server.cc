#include "fuzz/fake_server.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

#include "display/display.h"
#include "display/fonts.h"
#include "fuzz/require.h"

namespace gromlit::fuzz {
namespace {

constexpr Window kFirstWindow = 0x200;
Window nextwindow = kFirstWindow;

using DisplayRecord = std::remove_pointer_t<_XPrivDisplay>;

// What macros and functions that need no connection read of a display.
Display* MakeDisplay() {
  constexpr size_t kRoom = 16384;  // more than all of Xlib's own record
  auto* record = static_cast<DisplayRecord*>(std::calloc(1, kRoom));
  static Visual visual{nullptr, 0x21, TrueColor, 0xff0000, 0xff00, 0xff, 8, 256};
  static Depth depth{24, 1, &visual};
  static ScreenFormat formats[] = {{nullptr, 1, 1, 32}, {nullptr, 24, 32, 32}};
  static Screen screens[1]{};
  screens[0].display = reinterpret_cast<Display*>(record);
  screens[0].root = kRoot;
  screens[0].width = kScreenWidth;
  screens[0].height = kScreenHeight;
  screens[0].ndepths = 1;
  screens[0].depths = &depth;
  screens[0].root_depth = 24;
  screens[0].root_visual = &visual;
  screens[0].cmap = 0x20;
  screens[0].white_pixel = 0xffffff;
  record->fd = -1;
  record->byte_order = LSBFirst;
  record->bitmap_unit = record->bitmap_pad = 32;
  record->bitmap_bit_order = LSBFirst;
  record->nformats = 2;
  record->pixmap_format = formats;
  record->nscreens = 1;
  record->screens = screens;
  record->min_keycode = 8;
  record->max_keycode = 255;
  record->display_name = strdup(":fuzz");
  return reinterpret_cast<Display*>(record);
}

void Detach(Window window) {
  const auto it = Server().windows.find(window);
  if (it == Server().windows.end()) return;
  const auto parent = Server().windows.find(it->second.parent);
  if (parent != Server().windows.end()) std::erase(parent->second.children, window);
}

}  // namespace

FakeServer& Server() {
  static auto* const server = new FakeServer;
  return *server;
}

void ResetServer() {
  static Display* const display = MakeDisplay();
  Server() = FakeServer{};
  nextwindow = kFirstWindow;
  FakeWindow rootwindow;
  rootwindow.width = kScreenWidth;
  rootwindow.height = kScreenHeight;
  Server().windows[kRoot] = rootwindow;
  dpy = display;
  screen = 0;
  root = kRoot;
  cmap = 0x20;
  screenwidth = kScreenWidth;
  screenheight = kScreenHeight;
  if (wm_delete != None) return;
  MakeAtoms();
  LoadFonts();
}

Window AddWindow(Window parent, const FakeWindow& window) {
  const Window id = nextwindow++;
  FakeWindow& added = Server().windows[id] = window;
  added.parent = parent;
  added.children.clear();
  const auto it = Server().windows.find(parent);
  if (it != Server().windows.end()) it->second.children.push_back(id);
  return id;
}

void RemoveWindow(Window window) {
  const auto it = Server().windows.find(window);
  if (it == Server().windows.end() || window == kRoot) return;
  Detach(window);
  const std::vector<Window> children = it->second.children;
  Server().windows.erase(it);
  for (const Window child : children) RemoveWindow(child);
  std::erase_if(Server().selections, [=](const auto& item) { return item.second == window; });
}

FakeWindow* Ask(Window window) {
  FakeServer& server = Server();
  const int number = server.questions++;
  for (auto it = server.doomed.begin(); it != server.doomed.end() && it->first <= number;
       it = server.doomed.begin()) {
    RemoveWindow(it->second);
    server.doomed.erase(it);
  }
  const auto it = server.windows.find(window);
  return it == server.windows.end() ? nullptr : &it->second;
}

FakeWindow* Demand(Window window) {
  FakeWindow* found = Ask(window);
  if (found == nullptr && Server().handler != nullptr) {
    XErrorEvent error{};
    error.error_code = BadWindow;
    error.resourceid = window;
    Server().handler(dpy, &error);
  }
  return found;
}

bool Viewable(Window window) {
  for (auto it = Server().windows.find(window); it != Server().windows.end();
       it = Server().windows.find(it->second.parent)) {
    if (!it->second.mapped) return false;
    if (it->first == kRoot) return true;
  }
  return false;
}

void Origin(Window window, int* x, int* y) {
  *x = *y = 0;
  for (auto it = Server().windows.find(window); it != Server().windows.end() && it->first != kRoot;
       it = Server().windows.find(it->second.parent)) {
    *x += it->second.x + it->second.border;
    *y += it->second.y + it->second.border;
  }
}

void Touch(const void* bytes, size_t size) {
  const auto* at = static_cast<const volatile unsigned char*>(bytes);
  for (size_t i = 0; i < size; i++) (void)at[i];
}

}  // namespace gromlit::fuzz

using namespace gromlit;
using namespace gromlit::fuzz;

namespace {

struct Atoms {
  std::map<std::string, Atom> byname = {{"PRIMARY", XA_PRIMARY},   {"STRING", XA_STRING},
                                        {"ATOM", XA_ATOM},         {"CARDINAL", XA_CARDINAL},
                                        {"WM_CLASS", XA_WM_CLASS}, {"WM_NAME", XA_WM_NAME}};
  Atom next = XA_LAST_PREDEFINED + 1;
};
Atoms& TheAtoms() {
  static auto* const atoms = new Atoms;
  return *atoms;
}

}  // namespace

extern "C" {

Atom XInternAtom(Display*, const char* name, Bool existing) {
  auto& atoms = TheAtoms();
  const auto it = atoms.byname.find(name);
  if (it != atoms.byname.end()) return it->second;
  return existing ? None : atoms.byname[name] = atoms.next++;
}

Status XInternAtoms(Display* display, char** names, int count, Bool existing, Atom* atoms) {
  for (int i = 0; i < count; i++) atoms[i] = XInternAtom(display, names[i], existing);
  return 1;
}

// INV-REAL-1: what leaves for the server leaves no key down.
int XSync(Display*, Bool) {
  Require(Server().down.empty());
  return 1;
}
int XFlush(Display*) {
  Require(Server().down.empty());
  return 1;
}
int XGrabServer(Display*) {
  return 1;
}
int XUngrabServer(Display*) {
  return 1;
}

XErrorHandler XSetErrorHandler(XErrorHandler handler) {
  return std::exchange(Server().handler, handler);
}

char* XResourceManagerString(Display*) {
  return Server().resources.empty() ? nullptr : Server().resources.data();
}

Bool XQueryExtension(Display*, const char*, int* major, int* event, int* error) {
  *major = *event = *error = 0;
  return False;
}

// --- Properties -----------------------------------------------------------------------------

int XGetWindowProperty(Display*, Window window, Atom name, long offset, long length, Bool take,
                       Atom wanted, Atom* type, int* format, unsigned long* count,
                       unsigned long* after, unsigned char** data) {
  Require(offset >= 0 && length >= 0);
  FakeWindow* win = Demand(window);
  *type = None;
  *format = 0;
  *count = *after = 0;
  *data = nullptr;
  if (win == nullptr) return BadWindow;
  const auto it = win->properties.find(name);
  if (it == win->properties.end()) return Success;
  const FakeProperty& property = it->second;
  *type = property.type;
  *format = property.format;
  const size_t size = property.bytes.size();
  if (wanted != AnyPropertyType && wanted != property.type) {
    *after = size;
    return Success;
  }
  const size_t begin = 4 * static_cast<size_t>(offset);
  if (begin > size) return BadValue;
  const size_t n = std::min(size - begin, 4 * static_cast<size_t>(length));
  *after = size - begin - n;
  const size_t unit = static_cast<size_t>(property.format) / 8;
  *count = n / unit;
  const size_t held = property.format == 32 ? sizeof(long) : unit;
  // Xlib's own answer has one byte more, a NUL.
  *data = static_cast<unsigned char*>(std::calloc(1, *count * held + 1));
  for (size_t i = 0; i < *count; i++) {
    const char* from = property.bytes.data() + begin + i * unit;
    if (property.format == 32) {
      int32_t number;
      std::memcpy(&number, from, 4);
      const long extended = number;
      std::memcpy(*data + i * held, &extended, held);
    } else {
      std::memcpy(*data + i * held, from, unit);
    }
  }
  if (take && *after == 0) win->properties.erase(it);
  return Success;
}

int XChangeProperty(Display*, Window window, Atom name, Atom type, int format, int mode,
                    const unsigned char* data, int count) {
  Require(count >= 0 && (format == 8 || format == 16 || format == 32));
  FakeProperty property{type, format, {}};
  for (int i = 0; i < count; i++) {
    if (format == 32) {
      const auto number = static_cast<int32_t>(reinterpret_cast<const long*>(data)[i]);
      property.bytes.append(reinterpret_cast<const char*>(&number), 4);
    } else {
      const size_t unit = static_cast<size_t>(format) / 8;
      property.bytes.append(reinterpret_cast<const char*>(data) + static_cast<size_t>(i) * unit,
                            unit);
    }
  }
  FakeWindow* win = Demand(window);
  if (win == nullptr) return 1;
  if (mode == PropModeReplace) {
    win->properties[name] = property;
  } else {
    win->properties[name].bytes += property.bytes;
  }
  return 1;
}

int XDeleteProperty(Display*, Window window, Atom name) {
  if (FakeWindow* win = Demand(window)) win->properties.erase(name);
  return 1;
}

Status XGetWMProtocols(Display*, Window window, Atom** protocols, int* count) {
  Atom type;
  int format;
  unsigned long n;
  unsigned long after;
  unsigned char* data = nullptr;
  const int status = XGetWindowProperty(dpy, window, XInternAtom(dpy, "WM_PROTOCOLS", False), 0,
                                        1000000, False, XA_ATOM, &type, &format, &n, &after, &data);
  if (status != Success || type != XA_ATOM || format != 32) {
    if (data != nullptr) XFree(data);
    return 0;
  }
  *protocols = reinterpret_cast<Atom*>(data);
  *count = static_cast<int>(n);
  return 1;
}

// --- Selections and events ------------------------------------------------------------------

Window XGetSelectionOwner(Display*, Atom selection) {
  Ask(kRoot);
  const auto it = Server().selections.find(selection);
  return it == Server().selections.end() ? Window{None} : it->second;
}

int XSetSelectionOwner(Display*, Atom selection, Window owner, Time) {
  Server().selections[selection] = owner;
  return 1;
}

int XConvertSelection(Display*, Atom, Atom, Atom property, Window requestor, Time) {
  Require(property != None && requestor != None);
  return 1;
}

Status XSendEvent(Display*, Window, Bool, long, XEvent* event) {
  Touch(event, sizeof *event);
  Server().sent.push_back(*event);
  return 1;
}

int XPending(Display*) {
  return static_cast<int>(Server().queue.size());
}
int XEventsQueued(Display*, int) {
  return static_cast<int>(Server().queue.size());
}

static Bool Take(XEvent* event, bool (*fits)(const XEvent&, const void*), const void* arg) {
  auto& queue = Server().queue;
  const auto it =
      std::find_if(queue.begin(), queue.end(), [&](const XEvent& e) { return fits(e, arg); });
  if (it == queue.end()) return False;
  *event = *it;
  queue.erase(it);
  return True;
}

Bool XCheckTypedEvent(Display*, int type, XEvent* event) {
  return Take(
      event, [](const XEvent& e, const void* t) { return e.type == *static_cast<const int*>(t); },
      &type);
}

Bool XCheckTypedWindowEvent(Display*, Window window, int type, XEvent* event) {
  const std::pair<Window, int> wanted{window, type};
  return Take(
      event,
      [](const XEvent& e, const void* w) {
        const auto& [of, kind] = *static_cast<const std::pair<Window, int>*>(w);
        return e.xany.window == of && e.type == kind;
      },
      &wanted);
}

Bool XCheckIfEvent(Display*, XEvent*, Bool (*)(Display*, XEvent*, XPointer), XPointer) {
  return False;
}

// News of the change by which the program asks for the time.
Bool XCheckWindowEvent(Display*, Window window, long, XEvent* event) {
  *event = {};
  event->type = PropertyNotify;
  event->xproperty.window = window;
  event->xproperty.time = 1000;
  return True;
}

int XRefreshKeyboardMapping(XMappingEvent*) {
  return 1;
}

// --- Windows --------------------------------------------------------------------------------

Status XGetWindowAttributes(Display*, Window window, XWindowAttributes* attributes) {
  const FakeWindow* win = Demand(window);
  if (win == nullptr) return 0;
  *attributes = {};
  attributes->x = win->x;
  attributes->y = win->y;
  attributes->width = win->width;
  attributes->height = win->height;
  attributes->border_width = win->border;
  attributes->map_state = Viewable(window) ? IsViewable : win->mapped ? IsUnviewable : IsUnmapped;
  attributes->all_event_masks = win->allevents | win->ownevents;
  attributes->your_event_mask = win->ownevents;
  attributes->root = kRoot;
  attributes->depth = 24;
  attributes->screen = DefaultScreenOfDisplay(dpy);
  attributes->visual = DefaultVisual(dpy, 0);
  return 1;
}

Status XQueryTree(Display*, Window window, Window* rootwin, Window* parent, Window** children,
                  unsigned* count) {
  const FakeWindow* win = Demand(window);
  if (win == nullptr) return 0;
  *rootwin = kRoot;
  *parent = win->parent;
  *count = static_cast<unsigned>(win->children.size());
  *children = nullptr;
  if (*count > 0) {
    *children = static_cast<Window*>(std::calloc(*count, sizeof(Window)));
    std::copy(win->children.begin(), win->children.end(), *children);
  }
  return 1;
}

int XGetInputFocus(Display*, Window* focus, int* revert) {
  Ask(kRoot);
  *focus = Server().focus;
  *revert = RevertToParent;
  return 1;
}

int XSetInputFocus(Display*, Window window, int, Time) {
  if (Demand(window) != nullptr) Server().focus = window;
  return 1;
}

Bool XQueryPointer(Display*, Window window, Window* rootwin, Window* child, int* rootx, int* rooty,
                   int* x, int* y, unsigned* state) {
  *rootwin = kRoot;
  *child = None;
  *rootx = *x = Server().pointerx;
  *rooty = *y = Server().pointery;
  *state = 0;
  if (Demand(window) == nullptr) return False;
  int left;
  int top;
  Origin(window, &left, &top);
  *x -= left;
  *y -= top;
  return True;
}

Bool XTranslateCoordinates(Display*, Window from, Window to, int fromx, int fromy, int* x, int* y,
                           Window* child) {
  *child = None;
  *x = *y = 0;
  if (Demand(from) == nullptr || Demand(to) == nullptr) return False;
  int left;
  int top;
  Origin(from, &left, &top);
  *x = fromx + left;
  *y = fromy + top;
  Origin(to, &left, &top);
  *x -= left;
  *y -= top;
  return True;
}

int XSelectInput(Display*, Window window, long mask) {
  if (FakeWindow* win = Demand(window)) win->ownevents = mask;
  return 1;
}

Window XCreateWindow(Display*, Window parent, int x, int y, unsigned width, unsigned height,
                     unsigned border, int, unsigned, Visual*, unsigned long,
                     XSetWindowAttributes*) {
  Require(width >= 1 && height >= 1 && width <= 65535 && height <= 65535);
  FakeWindow window;
  window.x = x;
  window.y = y;
  window.width = static_cast<int>(width);
  window.height = static_cast<int>(height);
  window.border = static_cast<int>(border);
  window.own = true;
  return AddWindow(parent, window);
}

int XDestroyWindow(Display*, Window window) {
  if (Demand(window) != nullptr) RemoveWindow(window);
  return 1;
}

int XMapRaised(Display*, Window) {
  return 1;
}
int XMapWindow(Display*, Window) {
  return 1;
}
int XUnmapWindow(Display*, Window) {
  return 1;
}
Status XIconifyWindow(Display*, Window, int) {
  return 1;
}
void XSetWMNormalHints(Display*, Window, XSizeHints* hints) {
  Touch(hints, sizeof *hints);
}

}  // extern "C"
