#include "tests/e2e/random_user.h"

#include <X11/keysym.h>

#include <algorithm>
#include <iterator>

#include "core/strings.h"
#include "core/symbol_files.h"

namespace gromlit::testing {

void RandomUser::SetUp() {
  FrontEnd::SetUp();
  const char* given = std::getenv("GROMLIT_TEST_SEED");
  seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                           : std::random_device()();
  std::printf("seed %u\n", seed_);
  RecordProperty("seed", std::to_string(seed_));
  random_.seed(seed_);
}

void RandomUser::WriteLibrary() {
  for (int i = 0; i < 22; i++)
    WritePlugin("Class" + std::to_string(i), {{"right", kRight, {{kRun, "system:sync"}}}});
  for (const char* name : {"A", "B", "C", "D", "E", "F"}) {
    GromlitSymbol sym{};
    CopyText(sym.name, name);
    sym.npoints = 2;
    for (int k = 1; k <= 2; k++) sym.x[k] = sym.y[k] = static_cast<int16_t>(16 + 240 * (k - 1));
    ASSERT_NE(UnLoadSymbol(&sym, name, GromlitSymbolFileExt), nullptr);
  }
  WritePlugin("Probe.probe", {{"right", kRight, {{kRun, "system:sync"}}},
                              {"down and right", kEll, {{kText, "text"}}},
                              {"up", kUp, {{kRun, "system:showgromlit"}}}});
  WritePlugin("Default", {{"left", kLeft, {{kRun, "system:showgromlit"}}},
                          {"down", kDown, {{kHotKey, "a", 38, 0}}}});
}

void RandomUser::Open(const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {"-path", install->path()};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Launch(all);
  // Who has the keyboard is up to a window manager that may just be starting.
  ASSERT_TRUE(
      WaitFor([this] { return (main_ = Shown("Application")) != 0; }, std::chrono::seconds(60)))
      << "no main window";
  bar_ = WaitChild(main_, 0, 0);
}

std::vector<Window> RandomUser::OwnWindows() {
  constexpr int kClientBits = 21;  // of a window's number that tell the windows of a client apart
  std::vector<Window> own;
  std::vector<Window> left = Children(player->root());
  while (!left.empty()) {
    const Window window = left.back();
    left.pop_back();
    if (window >> kClientBits == main_ >> kClientBits && Viewable(window)) own.push_back(window);
    const std::vector<Window> inner = Children(window);
    left.insert(left.end(), inner.begin(), inner.end());
  }
  return own;
}

Point RandomUser::Inside(Window window) {
  const Box box = BoxOf(window);
  const Point origin = OriginOf(window);
  // Windows come and go meanwhile.
  return {origin.x + Pick(std::max(box.width, 1)), origin.y + Pick(std::max(box.height, 1))};
}

Window RandomUser::AnyOf(const std::vector<Window>& windows) {
  return windows[static_cast<size_t>(Pick(static_cast<int>(windows.size())))];
}

Point RandomUser::Somewhere(const std::vector<Window>& windows) {
  const Box screen = Screen();
  if (windows.empty() || Pick(12) == 0) return {Pick(screen.width), Pick(screen.height)};
  return Inside(AnyOf(windows));
}

void RandomUser::Drag(const std::vector<Window>& windows, int button) {
  player->Press(button);
  for (int i = Pick(4); i >= 0; i--) {
    const std::vector<Window> overlays = Overlays();
    MoveTo(overlays.empty() || Pick(4) == 0 ? Somewhere(windows) : Inside(AnyOf(overlays)));
  }
  player->Release(button);
}

void RandomUser::DoSomething(const std::vector<Window>& windows) {
  constexpr KeySym kKeys[] = {XK_a,      XK_b,    XK_c,     XK_1,    XK_slash,  XK_BackSpace,
                              XK_Delete, XK_Left, XK_Right, XK_Home, XK_Return, XK_Tab,
                              XK_Up,     XK_Down, XK_End,   XK_F10,  XK_Escape, XK_Menu};
  // Most ways begin in the menu bar.
  if (Pick(4) == 0) {
    MoveTo(Inside(bar_));
    Drag(windows, 1);
  }
  MoveTo(Somewhere(windows));
  switch (Pick(8)) {
    case 0:
    case 1:
    case 2:
      player->Click(1);
      break;
    case 3:
      player->Click(1);
      player->Click(1);
      break;
    case 4:
      player->Click(Pick(3) == 0 ? 1 + Pick(5) : 3);
      break;
    case 5:
      Drag(windows, Pick(4) == 0 ? 3 : 1);
      break;
    case 6:
      for (int i = Pick(6); i >= 0; i--)
        player->Type(kKeys[static_cast<size_t>(Pick(static_cast<int>(std::size(kKeys))))]);
      break;
    default:
      constexpr KeySym kChords[] = {XK_a, XK_k, XK_c, XK_v, XK_x, XK_Right};
      Chord(XK_Control_L, kChords[static_cast<size_t>(Pick(static_cast<int>(std::size(kChords))))]);
  }
}

bool RandomUser::LetsThePointerGo() {
  for (int i = 0; i < 20; i++) {
    const Box screen = Screen();
    MoveTo({screen.width - 1, screen.height - 1 - i});
    player->Click(1);
    if (WaitFor([this] { return player->CanGrabPointer(); }, std::chrono::milliseconds(500)))
      return true;
    if (!gromlit->Running()) return true;
  }
  return false;
}

}  // namespace gromlit::testing
