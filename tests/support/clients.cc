#include "tests/support/clients.h"

#include <X11/Xutil.h>

#include <filesystem>

#include "tests/support/files.h"

namespace gromlit::testing {
namespace {

// Windows come and go while the tree is searched; what has just gone is no reason to end.
class ErrorsIgnored {
 public:
  ErrorsIgnored() : former_(XSetErrorHandler([](Display*, XErrorEvent*) { return 0; })) {}
  ~ErrorsIgnored() { XSetErrorHandler(former_); }
  ErrorsIgnored(const ErrorsIgnored&) = delete;
  ErrorsIgnored& operator=(const ErrorsIgnored&) = delete;

 private:
  XErrorHandler former_;
};

struct Relatives {
  Window parent = 0;
  std::vector<Window> children;
};

Relatives RelativesOf(Display* display, Window window) {
  Relatives found;
  Window root;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(display, window, &root, &found.parent, &list, &count) == 0) return {};
  // cppcheck-suppress nullPointerArithmeticRedundantCheck  ; no windows are a null pointer and 0
  found.children.assign(list, list + count);
  if (list != nullptr) XFree(list);
  return found;
}

bool HasClass(Display* display, Window window, const std::string& classtext) {
  XClassHint hint{};
  if (XGetClassHint(display, window, &hint) == 0) return false;
  const bool same = hint.res_class != nullptr && hint.res_name != nullptr &&
                    classtext == std::string(hint.res_class) + "." + hint.res_name;
  XFree(hint.res_class);
  XFree(hint.res_name);
  return same;
}

// NOLINTNEXTLINE(misc-no-recursion): the depth is that of the window tree.
Window Search(Display* display, Window window, const std::string& classtext, bool shown) {
  if (HasClass(display, window, classtext) && (!shown || IsShown(display, window))) return window;
  for (const Window child : ChildrenOf(display, window))
    if (const Window found = Search(display, child, classtext, shown)) return found;
  return 0;
}

bool RedirectsTheRoot(Display* display) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(display, DefaultRootWindow(display), &attributes);
  return (attributes.all_event_masks & SubstructureRedirectMask) != 0;
}

// Whether a new window comes up within a moment.
bool BringsUp(Display* display) {
  const Window trial =
      XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 50, 50, 0, 0, 0);
  XSizeHints place{};
  place.flags = USPosition | USSize;  // twm asks the user for the place of any other window
  XSetWMNormalHints(display, trial, &place);
  XMapWindow(display, trial);
  const bool up = WaitFor([&] { return IsShown(display, trial); }, std::chrono::milliseconds(300));
  XDestroyWindow(display, trial);
  XSync(display, False);
  return up;
}

}  // namespace

std::vector<Window> ChildrenOf(Display* display, Window window) {
  return RelativesOf(display, window).children;
}

Window ParentOf(Display* display, Window window) {
  return RelativesOf(display, window).parent;
}

bool IsInside(Display* display, Window window, Window ancestor) {
  while (window != 0 && window != ancestor) window = ParentOf(display, window);
  return window == ancestor;
}

bool IsShown(Display* display, Window window) {
  XWindowAttributes attributes{};
  return XGetWindowAttributes(display, window, &attributes) != 0 &&
         attributes.map_state == IsViewable;
}

bool HasFocus(Display* display, Window window) {
  Window focus = 0;
  int revert;
  XGetInputFocus(display, &focus, &revert);
  return focus > PointerRoot && IsInside(display, focus, window);
}

Window FindClient(Display* display, const std::string& classtext, bool shown) {
  const ErrorsIgnored ignored;
  return Search(display, DefaultRootWindow(display), classtext, shown);
}

// A grabbed server would hold up the test, too, and a second move soon after the first would go
// along one axis only.
const char* const kTwmConfiguration = R"(RandomPlacement
NoGrabServer
OpaqueMove
ConstrainedMoveTime 0
Button1 = : title : f.move
Button1 = : icon : f.iconify
"F7" = : window | title | frame | icon | root : f.delete
"F8" = : window | title | frame | icon | root : f.iconify
)";

std::vector<std::string> ManagerCommand(const std::string& name, const std::string& directory,
                                        const std::string& configuration) {
  std::vector<std::string> argv = {name};
  const bool twm = name == "twm";
  if (!twm && configuration.empty()) return argv;
  const std::string file = directory + "/manager.rc";
  WriteText(file, configuration.empty() ? kTwmConfiguration : configuration);
  const char* option = twm ? "-f" : name == "openbox" ? "--config-file" : "-c";
  argv.insert(argv.end(), {option, file});
  return argv;
}

std::unique_ptr<Process> StartManager(Display* display, const std::string& name,
                                      const std::string& directory,
                                      const std::string& configuration,
                                      const std::vector<std::string>& environment) {
  auto manager = std::make_unique<Process>(ManagerCommand(name, directory, configuration),
                                           directory + "/manager.log", environment);
  // It is there when it redirects the root window's substructure, and ready when it brings a window
  // up: a request to map one that arrives in the middle of its start-up may be overlooked.
  if (!WaitFor([&] { return RedirectsTheRoot(display); }) ||
      !WaitFor([&] { return BringsUp(display); }, std::chrono::seconds(20)))
    return nullptr;
  return manager;
}

std::vector<std::string> MakeHome(const std::string& home) {
  namespace fs = std::filesystem;
  fs::create_directories(home + "/run");
  fs::permissions(home + "/run", fs::perms::owner_all);
  return {"HOME=" + home,
          "XDG_RUNTIME_DIR=" + home + "/run",
          "XDG_CONFIG_HOME=" + home + "/config",
          "XDG_CACHE_HOME=" + home + "/cache",
          "XDG_DATA_HOME=" + home + "/data",
          "GSETTINGS_BACKEND=keyfile",
          "QT_QPA_PLATFORM=xcb",
          "GDK_BACKEND=x11",
          "NO_AT_BRIDGE=1"};
}

}  // namespace gromlit::testing
