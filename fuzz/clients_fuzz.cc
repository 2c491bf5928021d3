// Windows of other clients, nested and named in any way, and what is made of the names.
//
// The client, the application, its class text and its windows for clicks and keys are those that a
// walk finds which asks for one thing after another (tests/x11/display/literal_target.h). Where
// windows go between two questions something is found that was there, or nothing. A class text, cut
// to its buffer, finds, makes and names plug-ins without leaving their directory. What window
// managers and the desktop tell is read whatever its type, format and length.
#include <X11/Xatom.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "actions/activate.h"
#include "actions/launch.h"
#include "actions/spare_keys.h"
#include "actions/window_actions.h"
#include "core/offer_memory.h"
#include "core/plugin_files.h"
#include "core/printable.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/scale_choice.h"
#include "display/target.h"
#include "display/window_manager.h"
#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "tests/x11/display/literal_target.h"
#include "toolkit/text.h"
#include "tools/markup.h"

namespace gromlit::fuzz {
namespace {

FakeProperty AnyProperty(FuzzedDataProvider* data) {
  FakeProperty property;
  property.type = data->PickValueInArray<Atom>({XA_STRING, XA_ATOM, XA_CARDINAL, XA_WINDOW, 77});
  property.format = data->PickValueInArray({8, 16, 32});
  property.bytes = data->ConsumeRandomLengthString(400);
  if (data->ConsumeIntegralInRange(0, 30) == 0) property.bytes.append(40'000, 'a');
  const auto unit = static_cast<size_t>(property.format) / 8;
  property.bytes.resize(property.bytes.size() / unit * unit);
  return property;
}

// A name as most clients have one.
void Name(FuzzedDataProvider* data, FakeWindow* window) {
  switch (data->ConsumeIntegralInRange(0, 5)) {
    case 0:
      window->properties[XA_WM_CLASS] = {XA_STRING, 8, data->ConsumeRandomLengthString(120)};
      break;
    case 1:
      window->properties[XA_WM_NAME] = {XA_STRING, 8, data->ConsumeRandomLengthString(120)};
      break;
    case 2:
      window->properties[data->ConsumeBool() ? XA_WM_CLASS : XA_WM_NAME] = AnyProperty(data);
      break;
    default:
      break;
  }
}

std::vector<Window> MakeWindows(FuzzedDataProvider* data) {
  std::vector<Window> windows = {kRoot};
  const Atom state = AtomOf("WM_STATE");
  for (int n = data->ConsumeIntegralInRange(1, 40); n > 0; n--) {
    FakeWindow window;
    window.x = data->ConsumeIntegralInRange(-100, 300);
    window.y = data->ConsumeIntegralInRange(-100, 300);
    window.width = data->ConsumeIntegralInRange(1, 500);
    window.height = data->ConsumeIntegralInRange(1, 500);
    window.border = data->ConsumeIntegralInRange(0, 3);
    window.mapped = data->ConsumeIntegralInRange(0, 4) > 0;
    window.allevents = data->PickValueInArray<long>(
        {0, ButtonPressMask, ButtonReleaseMask, KeyPressMask, ButtonPressMask | ButtonReleaseMask});
    if (data->ConsumeBool()) window.properties[state] = AnyProperty(data);
    Name(data, &window);
    const size_t last = windows.size() - 1;
    const size_t back = data->ConsumeIntegralInRange<size_t>(0, std::min<size_t>(last, 5));
    windows.push_back(AddWindow(windows[last - back], window));
  }
  return windows;
}

void CheckAgainstJudge(Window top) {
  const int x = Server().pointerx;
  const int y = Server().pointery;
  const testing::LiteralTarget wanted = testing::LiteralTargets(dpy, top, x, y);
  const Target found = FindTargets(top, x, y);
  Require(found.client == wanted.client);
  Require(found.app == wanted.app);
  Require(std::string(found.cname.data()) ==
          std::string(wanted.cname.c_str()).substr(0, kClassBuffer - 1));
  if (found.app <= 1) return;
  Require(found.click == wanted.click && found.key == wanted.key);
  if (found.click != None || found.key != None)
    Require(found.winx == wanted.winx && found.winy == wanted.winy);
  std::array<char, kClassBuffer> cname{};
  Require(GetXApp(found.client, cname) == found.app);
  int winx = 0;
  int winy = 0;
  Require(GetXAppClick(found.app, x, y, &winx, &winy) == found.click);
  Require(GetXAppKey(found.app, x, y, &winx, &winy) == found.key);
}

// With windows that go meanwhile.
void CheckVanishing(FuzzedDataProvider* data, const std::vector<Window>& windows, Window top) {
  for (int n = data->ConsumeIntegralInRange(1, 4); n > 0; n--) {
    const size_t i = data->ConsumeIntegralInRange<size_t>(0, windows.size() - 1);
    Server().doomed[Server().questions + data->ConsumeIntegralInRange(0, 80)] = windows[i];
  }
  const Target found = FindTargets(top, Server().pointerx, Server().pointery);
  Require(std::memchr(found.cname.data(), '\0', found.cname.size()) != nullptr);
  Require(found.named || found.cname[0] == '\0');
  Require(found.app > 1 || (found.click == None && found.key == None));
}

void UseClass(FuzzedDataProvider* data, const std::string& classname) {
  const std::string& home = FreshInstallation();
  LoadPlugins();
  bool saved = false;
  GromlitPlugin* made = CreatePlugin(classname.c_str(), classname.c_str(), &saved);
  Require(made != nullptr && FindPlugin(classname.c_str()) == made);
  const Files files = FilesBelow(home);
  Require(files.size() == (saved ? 1 : 0));
  for (const auto& [name, bytes] : files) {
    Require(name.starts_with("plugins/") && name.ends_with(".sla"));
    Require(name.find('/', 8) == name.npos);
  }
  ReleaseLists();
  Require(LoadPlugins() == (saved ? 1 : 0));
  if (saved) {
    const std::string stored(FieldText(allPlugins->plugin->classname));
    Require(stored == classname.substr(0, kTextSize - 1));
    Require(FindPlugin(classname.c_str()) == allPlugins->plugin);
  }
  RememberClass(classname.c_str());
  Require(IsRememberedClass(classname.c_str()));
  while (RememberFindNewList != nullptr) {
    RememberFindNew* node = RememberFindNewList;
    RememberFindNewList = node->next;
    std::free(node->classname);
    delete node;
  }
  const std::string shown = Printable(classname);
  Require(shown.find_first_of("\n\r\x1b\t") == shown.npos);
  const std::string markup = Markup(classname);
  Require(markup.find_first_of("<>\"'\x1b") == markup.npos);
  static GC const gc = XCreateGC(dpy, kRoot, 0, nullptr);
  DrawText(kRoot, gc, 0, 0,
           FittingText(txtFontinfo, classname, data->ConsumeIntegralInRange(0, 99)));
  ReleaseLists();
  CheckOutside();
}

void AskTheManager(FuzzedDataProvider* data, const std::vector<Window>& windows) {
  static constexpr const char* kNames[] = {"_NET_SUPPORTING_WM_CHECK",
                                           "_NET_SUPPORTED",
                                           "_NET_NUMBER_OF_DESKTOPS",
                                           "_NET_CURRENT_DESKTOP",
                                           "_NET_WM_DESKTOP",
                                           "_NET_WM_STATE",
                                           "WM_PROTOCOLS",
                                           "_GROMLIT_SPARE_KEYS"};
  const Window client = windows[windows.size() - 1];
  const bool sound = data->ConsumeBool();
  for (const Window window : {kRoot, client}) {
    FakeWindow& win = Server().windows[window];
    for (const char* name : kNames) {
      if (data->ConsumeBool()) win.properties[AtomOf(name)] = AnyProperty(data);
    }
    if (!sound) continue;
    // A manager that is alive and knows everything.
    const long check[] = {static_cast<long>(client)};
    std::vector<long> known;
    for (const char* name : {"_NET_CLOSE_WINDOW", "_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN",
                             "_NET_WM_STATE_ABOVE", "_NET_CURRENT_DESKTOP", "_NET_WM_DESKTOP",
                             "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_ACTIVE_WINDOW"})
      known.push_back(static_cast<long>(AtomOf(name)));
    XChangeProperty(dpy, window, AtomOf(kNames[0]), XA_WINDOW, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(check), 1);
    XChangeProperty(dpy, window, AtomOf(kNames[1]), XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(known.data()),
                    static_cast<int>(known.size()));
    win.allevents |= SubstructureRedirectMask;
  }
  for (const char* name : kNames) Numbers(client, name);
  currentStroke.client = data->ConsumeBool() ? client : kRoot;
  for (const char* keyword :
       {"system:minimize", "system:maximize", "system:close", "system:fullscreen", "system:above",
        "system:desktop-next", "system:desktop-previous", "system:window-to-desktop-next",
        "system:window-to-desktop-previous"})
    Require(RunWindowAction(keyword));
  Activate(client);
  ReturnKeysOfTheDead();
  currentStroke = {};
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  Server().pointerx = data->ConsumeIntegralInRange(0, 600);
  Server().pointery = data->ConsumeIntegralInRange(0, 600);
  const std::vector<Window> windows = MakeWindows(data);
  const std::vector<Window> tops = Server().windows[kRoot].children;
  std::string classname = AnyText(data, 200);
  for (const Window top : tops) {
    CheckAgainstJudge(top);
    const Target target = FindApplication(top, Server().pointerx, Server().pointery);
    if (target.named) classname = target.cname.data();
  }
  UseClass(data, classname);
  Server().resources = AnyText(data, 300);
  const int scale = ChooseScale(0, nullptr, DpiOfDesktop());
  Require(scale == 1 || scale == 2);
  AskTheManager(data, windows);
  CheckVanishing(data, windows, tops[data->ConsumeIntegralInRange<size_t>(0, tops.size() - 1)]);
}

}  // namespace gromlit::fuzz
