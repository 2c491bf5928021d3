// A client that shows windows as it is told to and writes down every event that they get.
//
// Tests and the demo look at the program from outside with it: what another client's window is
// asked, sent and given. It prints "ready WINDOWID" on standard output when its main window is
// viewable, and before that one line "window NAME WINDOWID" for each of its windows. An event is
// one line, flushed at once:
//
//   KeyPress window=main keycode=38 state=4 x=10 y=20 x_root=110 y_root=220 send_event=1
//
// Windows are called main, child1, child2, ... in the order of the command line. Times are left
// out, so that two runs with the same input give the same lines.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace gromlit {
namespace {

constexpr long kDefaultEvents = KeyPressMask | KeyReleaseMask | ButtonPressMask |
                                ButtonReleaseMask | FocusChangeMask | EnterWindowMask |
                                LeaveWindowMask;

constexpr const char* kUsage =
    "usage: probe [OPTION...]\n"
    "  --display NAME        X server to contact\n"
    "  --class CLASS NAME    class hint; an empty word leaves that part empty\n"
    "  --title TEXT          WM_NAME of type STRING\n"
    "  --title-utf8 TEXT     WM_NAME of type UTF8_STRING\n"
    "  --geometry WxH+X+Y    main window (300x200+100+100)\n"
    "  --events MASK         event mask of the main window (keys, buttons, focus, crossing)\n"
    "  --override-redirect   keep the window manager's hands off the main window\n"
    "  --child WxH+X+Y[,MASK[,PARENT]]\n"
    "                        a window in the main one, or in child number PARENT (from 1)\n"
    "  --focus               take the keyboard focus once viewable\n"
    "  --no-input            tell the window manager that the keyboard is not wanted\n"
    "  --output FILE         events go to this file instead of standard output\n"
    "Masks are numbers as in X.h, 0x allowed.\n";

[[noreturn]] void Usage() {
  std::fputs(kUsage, stderr);
  std::exit(2);
}

struct Child {
  std::string geometry;
  long events = kDefaultEvents;
  size_t parent = 0;  // 0 is the main window
};

struct Options {
  const char* display = nullptr;
  bool hint = false;
  std::string classpart;
  std::string namepart;
  std::string title;
  bool titled = false;
  bool utf8 = false;
  std::string geometry = "300x200+100+100";
  long events = kDefaultEvents;
  bool override_redirect = false;
  bool focus = false;
  bool input = true;
  const char* output = nullptr;
  std::vector<Child> children;
};

long Number(const std::string& text) {
  char* end = nullptr;
  const long value = std::strtol(text.c_str(), &end, 0);
  if (text.empty() || *end != '\0') Usage();
  return value;
}

Child ParseChild(const std::string& text) {
  Child child;
  const size_t comma = text.find(',');
  child.geometry = text.substr(0, comma);
  if (comma == std::string::npos) return child;
  const size_t second = text.find(',', comma + 1);
  child.events = Number(text.substr(comma + 1, second - comma - 1));
  if (second != std::string::npos)
    child.parent = static_cast<size_t>(Number(text.substr(second + 1)));
  return child;
}

Options ParseOptions(int argc, char** argv) {
  Options options;
  int at = 1;
  const auto value = [&]() -> const char* {
    if (at >= argc) Usage();
    return argv[at++];
  };
  while (at < argc) {
    const std::string name = argv[at++];
    if (name == "--display") {
      options.display = value();
    } else if (name == "--class") {
      options.hint = true;
      options.classpart = value();
      options.namepart = value();
    } else if (name == "--title" || name == "--title-utf8") {
      options.titled = true;
      options.utf8 = name == "--title-utf8";
      options.title = value();
    } else if (name == "--geometry") {
      options.geometry = value();
    } else if (name == "--events") {
      options.events = Number(value());
    } else if (name == "--override-redirect") {
      options.override_redirect = true;
    } else if (name == "--child") {
      options.children.push_back(ParseChild(value()));
      if (options.children.back().parent >= options.children.size()) Usage();
    } else if (name == "--focus") {
      options.focus = true;
    } else if (name == "--no-input") {
      options.input = false;
    } else if (name == "--output") {
      options.output = value();
    } else {
      Usage();
    }
  }
  return options;
}

struct Geometry {
  int x = 0;
  int y = 0;
  unsigned width = 0;
  unsigned height = 0;
};

Geometry ParseGeometry(const std::string& text) {
  Geometry g;
  const int needed = WidthValue | HeightValue | XValue | YValue;
  if ((XParseGeometry(text.c_str(), &g.x, &g.y, &g.width, &g.height) & needed) != needed ||
      g.width == 0 || g.height == 0) {
    Usage();
  }
  return g;
}

const char* TypeName(int type) {
  static const char* const kNames[] = {
      "Error",          "Reply",          "KeyPress",         "KeyRelease",
      "ButtonPress",    "ButtonRelease",  "MotionNotify",     "EnterNotify",
      "LeaveNotify",    "FocusIn",        "FocusOut",         "KeymapNotify",
      "Expose",         "GraphicsExpose", "NoExpose",         "VisibilityNotify",
      "CreateNotify",   "DestroyNotify",  "UnmapNotify",      "MapNotify",
      "MapRequest",     "ReparentNotify", "ConfigureNotify",  "ConfigureRequest",
      "GravityNotify",  "ResizeRequest",  "CirculateNotify",  "CirculateRequest",
      "PropertyNotify", "SelectionClear", "SelectionRequest", "SelectionNotify",
      "ColormapNotify", "ClientMessage",  "MappingNotify",    "GenericEvent"};
  const auto index = static_cast<size_t>(type);
  return type >= 0 && index < sizeof kNames / sizeof *kNames ? kNames[index] : "Unknown";
}

class Probe {
 public:
  explicit Probe(const Options& options) : options_(options) {}

  int Run() {
    if (!Open()) return 1;
    MakeWindows();
    bool ready = false;
    for (;;) {
      XEvent event;
      XNextEvent(display_, &event);
      if (!ready && event.type == MapNotify && event.xmap.window == windows_[0]) {
        ready = true;
        Announce();
      }
      if (!Close(event)) {
        Write(event);
        continue;
      }
      Write(event);
      XCloseDisplay(display_);
      return 0;
    }
  }

 private:
  bool Open() {
    display_ = XOpenDisplay(options_.display);
    if (display_ == nullptr) {
      std::fprintf(stderr, "probe: cannot open display %s\n", XDisplayName(options_.display));
      return false;
    }
    out_ = options_.output == nullptr ? stdout : std::fopen(options_.output, "w");
    if (out_ == nullptr) {
      std::perror(options_.output);
      return false;
    }
    return true;
  }

  Window MakeWindow(Window parent, const std::string& geometry, long events) {
    const Geometry g = ParseGeometry(geometry);
    // Shades, so that a picture shows which window is which.
    const unsigned long shade = 0xe0e8f0UL - 0x182018UL * windows_.size();
    const Window window = XCreateSimpleWindow(display_, parent, g.x, g.y, g.width, g.height, 0, 0,
                                              windows_.size() < 6 ? shade : 0x808080UL);
    XSelectInput(display_, window, events);
    windows_.push_back(window);
    return window;
  }

  void MakeWindows() {
    const Window main = MakeWindow(DefaultRootWindow(display_), options_.geometry,
                                   options_.events | StructureNotifyMask);
    for (const Child& child : options_.children) {
      XMapWindow(display_, MakeWindow(windows_[child.parent], child.geometry, child.events));
    }
    if (options_.override_redirect) {
      XSetWindowAttributes attributes{};
      attributes.override_redirect = True;
      XChangeWindowAttributes(display_, main, CWOverrideRedirect, &attributes);
    }
    if (options_.hint) {
      // Both parts are always in the property; an empty one is an empty string.
      std::string name = options_.namepart;
      std::string type = options_.classpart;
      XClassHint hint{name.data(), type.data()};
      XSetClassHint(display_, main, &hint);
    }
    if (options_.titled) {
      const Atom type =
          options_.utf8 ? XInternAtom(display_, "UTF8_STRING", False) : Atom{XA_STRING};
      XChangeProperty(display_, main, XA_WM_NAME, type, 8, PropModeReplace,
                      reinterpret_cast<const unsigned char*>(options_.title.data()),
                      static_cast<int>(options_.title.size()));
    }
    const Geometry g = ParseGeometry(options_.geometry);
    XSizeHints size{};
    size.flags = USPosition | USSize;
    size.x = g.x;
    size.y = g.y;
    size.width = static_cast<int>(g.width);
    size.height = static_cast<int>(g.height);
    XSetWMNormalHints(display_, main, &size);
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = options_.input ? True : False;
    XSetWMHints(display_, main, &hints);
    protocols_ = XInternAtom(display_, "WM_PROTOCOLS", False);
    delete_ = XInternAtom(display_, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display_, main, &delete_, 1);
    XMapWindow(display_, main);
  }

  void Announce() {
    // A window manager maps the window before its frame: wait until it can be seen.
    XWindowAttributes attributes{};
    do {
      if (XGetWindowAttributes(display_, windows_[0], &attributes) == 0) return;
    } while (attributes.map_state != IsViewable);
    if (options_.focus) {
      XSetInputFocus(display_, windows_[0], RevertToPointerRoot, CurrentTime);
      XSync(display_, False);
    }
    for (size_t i = 0; i < windows_.size(); i++) {
      std::printf("window %s 0x%lx\n", Name(windows_[i]).c_str(), windows_[i]);
    }
    std::printf("ready 0x%lx\n", windows_[0]);
    std::fflush(stdout);
  }

  bool Close(const XEvent& event) const {
    return event.type == ClientMessage && event.xclient.message_type == protocols_ &&
           static_cast<Atom>(event.xclient.data.l[0]) == delete_;
  }

  std::string Name(Window window) const {
    for (size_t i = 0; i < windows_.size(); i++) {
      if (windows_[i] == window) return i == 0 ? "main" : "child" + std::to_string(i);
    }
    return "other";
  }

  void Write(const XEvent& event) {
    const char* type = TypeName(event.type);
    const std::string name = Name(event.xany.window);
    std::fprintf(out_, "%s window=%s", type, name.c_str());
    switch (event.type) {
      case KeyPress:
      case KeyRelease: {
        const XKeyEvent& key = event.xkey;
        std::fprintf(out_, " keycode=%u state=%u x=%d y=%d x_root=%d y_root=%d", key.keycode,
                     key.state, key.x, key.y, key.x_root, key.y_root);
        break;
      }
      case ButtonPress:
      case ButtonRelease: {
        const XButtonEvent& button = event.xbutton;
        std::fprintf(out_, " button=%u state=%u x=%d y=%d x_root=%d y_root=%d", button.button,
                     button.state, button.x, button.y, button.x_root, button.y_root);
        break;
      }
      case MotionNotify: {
        const XMotionEvent& motion = event.xmotion;
        std::fprintf(out_, " state=%u x=%d y=%d x_root=%d y_root=%d", motion.state, motion.x,
                     motion.y, motion.x_root, motion.y_root);
        break;
      }
      case EnterNotify:
      case LeaveNotify: {
        const XCrossingEvent& crossing = event.xcrossing;
        std::fprintf(out_, " mode=%d detail=%d state=%u x=%d y=%d x_root=%d y_root=%d",
                     crossing.mode, crossing.detail, crossing.state, crossing.x, crossing.y,
                     crossing.x_root, crossing.y_root);
        break;
      }
      case FocusIn:
      case FocusOut:
        std::fprintf(out_, " mode=%d detail=%d", event.xfocus.mode, event.xfocus.detail);
        break;
      case ConfigureNotify: {
        const XConfigureEvent& configure = event.xconfigure;
        std::fprintf(out_, " x=%d y=%d width=%d height=%d", configure.x, configure.y,
                     configure.width, configure.height);
        break;
      }
      default:
        break;
    }
    std::fprintf(out_, " send_event=%d\n", event.xany.send_event != 0 ? 1 : 0);
    std::fflush(out_);
  }

  const Options& options_;
  Display* display_ = nullptr;
  FILE* out_ = nullptr;
  Atom protocols_ = None;
  Atom delete_ = None;
  std::vector<Window> windows_;
};

}  // namespace
}  // namespace gromlit

int main(int argc, char** argv) {
  const gromlit::Options options = gromlit::ParseOptions(argc, argv);
  return gromlit::Probe(options).Run();
}
