#include "tests/e2e/hostile_run.h"

#include <array>
#include <cstdlib>

#include "core/option_files.h"
#include "core/strings.h"

namespace gromlit::testing {
namespace {

// What the action on "Other" sends.
constexpr int kOthersKey = 56;
constexpr const char* kOthersPress = "KeyPress window=main keycode=56 state=0";

constexpr auto kAttackLasts = std::chrono::milliseconds(30);

// Windows of one client share the upper bits of their ids.
bool OfOneClient(Window a, Window b) {
  return a >> 21 == b >> 21;
}

}  // namespace

unsigned long AttackStep() {
  const char* given = std::getenv("GROMLIT_EVERY_REQUEST");
  return given != nullptr ? std::strtoul(given, nullptr, 10) : 0;
}

void HostileRun::SetUp() {
  FrontEnd::SetUp();
  const char* given = std::getenv("GROMLIT_TEST_SEED");
  seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                           : std::random_device()();
  RecordProperty("seed", std::to_string(seed_));
  std::printf("seed %u\n", seed_);
  random_.seed(seed_);
  intruder_ = XOpenDisplay(server->name().c_str());
  ASSERT_NE(intruder_, nullptr);
  proxy_ = std::make_unique<XProxy>(server->name());
  display_name = proxy_->name();
  WritePlugin("Other.other", {{"key", kUp, {{kHotKey, "b", kOthersKey, 0}}}});
  WritePlugin("Default", {});
}

void HostileRun::TearDown() {
  if (proxy_ != nullptr) proxy_->BeforeRequest(nullptr);
  other_.reset();
  if (intruder_ != nullptr) XCloseDisplay(intruder_);
  FrontEnd::TearDown();
  proxy_.reset();
}

void HostileRun::WriteChoices(int delivery, int choices) {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.temp1 = delivery;
  options.temp2 = choices;
  CopyText(options.urlcmd, "recorder url %s");
  CopyText(options.sndcmd, "recorder sound %s");
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
}

void HostileRun::Arm(const Scene& scene, const Attack& attack, int connection,
                     unsigned long number) {
  Arm(scene, attack, [connection, number](const XRequest& request) {
    return request.connection == connection && request.number == number;
  });
}

void HostileRun::Arm(const Scene& scene, const Attack& attack, const XProxy::Wanted& wanted) {
  fired_ = false;
  proxy_->BeforeRequest(
      [this, &scene, &attack](const XRequest&) {
        if (fired_.exchange(true)) return;
        attack.begin(scene);
        XSync(scene.display, False);
        if (attack.end == nullptr) return;
        ending_ = std::thread([&scene, &attack] {
          std::this_thread::sleep_for(kAttackLasts);
          attack.end(scene);
          XSync(scene.display, False);
        });
      },
      wanted);
}

bool HostileRun::Disarm() {
  proxy_->BeforeRequest(nullptr);
  if (ending_.joinable()) ending_.join();
  return fired_;
}

int HostileRun::Sweep(const Attack& attack, unsigned long usual, unsigned long most,
                      const std::function<bool(unsigned long number)>& attacked) {
  const unsigned long step = AttackStep();
  const unsigned long last = step != 0 ? most : 1;
  int attacks = 0;
  for (unsigned long n = step > 1 ? Pick(step) : 0; n < last; n += std::max(step, 1UL)) {
    const unsigned long number = 1 + (step != 0 ? n : Pick(usual));
    attacks += attacked(number) ? 1 : 0;
    ExpectAllIsWell(attack.name == std::string("take draw button"));
    if (HasFailure()) {
      ADD_FAILURE() << attack.name << " before request " << number << ", seed " << seed_;
      break;
    }
  }
  return attacks;
}

void HostileRun::StartAll() {
  other_ = std::make_unique<ProbeClient>(
      install->path(),
      std::vector<std::string>{"--class", "Other", "other", "--geometry", "300x300+700+100"});
  StartAgain();
}

void HostileRun::StartAgain() {
  StartGromlit();
  main_ = HideMainWindow();
  Settle();
  quiet_ = GromlitOutput().size();
}

std::vector<Window> HostileRun::ShownBelow(Window window, int depth) {
  std::vector<Window> found;
  for (const Window child : ChildrenOf(player->display(), window)) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(player->display(), child, &attributes) == 0 ||
        attributes.map_state != IsViewable || attributes.width > 1000)
      continue;
    if (OfOneClient(child, main_)) {
      found.push_back(child);
    } else if (depth > 1) {
      const std::vector<Window> more = ShownBelow(child, depth - 1);
      found.insert(found.end(), more.begin(), more.end());
    }
  }
  return found;
}

std::vector<Window> HostileRun::OwnWindows() {
  std::vector<Window> found = {player->root()};
  for (size_t i = 0; i < found.size(); i++) {
    for (const Window child : ChildrenOf(player->display(), found[i]))
      if (OfOneClient(child, main_)) found.push_back(child);
  }
  found.erase(found.begin());
  return found;
}

void HostileRun::CloseAll() {
  Display* user = player->display();
  const Atom protocols = XInternAtom(user, "WM_PROTOCOLS", False);
  const Atom close = XInternAtom(user, "WM_DELETE_WINDOW", False);
  EXPECT_TRUE(WaitFor([&] {
    const std::vector<Window> shown = ShownBelow(player->root(), 2);
    for (const Window window : shown) {
      XEvent event{};
      event.xclient.type = ClientMessage;
      event.xclient.window = window;
      event.xclient.message_type = protocols;
      event.xclient.format = 32;
      event.xclient.data.l[0] = static_cast<long>(close);
      XSendEvent(user, window, False, NoEventMask, &event);
    }
    return shown.empty();
  })) << "a window stays";
  EXPECT_TRUE(Settle()) << "what was asked more than once has been read, too";
}

bool HostileRun::StrokeActs(std::chrono::milliseconds deadline) {
  const size_t before = other_->Lines(kOthersPress).size();
  XSetInputFocus(player->display(), other_->window(), RevertToPointerRoot, CurrentTime);
  const Point at = OriginOf(other_->window());
  player->MoveTo(at.x + 150, at.y + 250);
  player->Press(3);
  for (int y = 230; y >= 90; y -= 20) player->MoveTo(at.x + 150, at.y + y);
  player->Release(3);
  EXPECT_TRUE(Settle()) << WhereItStands();
  return WaitFor([&] { return other_->Lines(kOthersPress).size() > before; }, deadline);
}

void HostileRun::ExpectAllIsWell(bool taken) {
  ASSERT_TRUE(gromlit->Running()) << GromlitOutput();
  ASSERT_TRUE(Settle()) << WhereItStands();
  // A window manager may have windows that look like a trail.
  EXPECT_TRUE(WaitFor([this] {
    const std::vector<Window> shown = MappedOverlays();
    return std::none_of(shown.begin(), shown.end(),
                        [this](Window window) { return OfOneClient(window, main_); });
  })) << "the trail stays";
  ASSERT_TRUE(PointerBecomesFree()) << WhereItStands();
  Display* user = player->display();
  EXPECT_TRUE(WaitFor([&] {
    const int status =
        XGrabKeyboard(user, player->root(), False, GrabModeAsync, GrabModeAsync, CurrentTime);
    if (status == GrabSuccess) XUngrabKeyboard(user, CurrentTime);
    XSync(user, False);
    return status == GrabSuccess;
  })) << "the keyboard stays grabbed";
  std::array<char, 32> down{};
  EXPECT_TRUE(WaitFor([&] {
    XQueryKeymap(user, down.data());
    return std::all_of(down.begin(), down.end(), [](char byte) { return byte == 0; });
  })) << "a key stays down";
  EXPECT_EQ(player->Where().state, 0u) << "a button or modifier stays down";
  const std::chrono::milliseconds deadline(taken ? 100 : 9000);
  EXPECT_TRUE(WaitFor([&] { return StrokeActs(deadline); })) << "the next stroke is not acted on\n"
                                                             << WhereItStands();
  EXPECT_TRUE(Settle());
  ExpectQuiet();
}

// Nothing is said on account of other clients, but what cannot be done here.
void HostileRun::ExpectQuiet() {
  std::string said = GromlitOutput().substr(quiet_);
  for (const char* allowed : {"The window manager cannot do system:maximize.\n",
                              "The window manager cannot do system:close.\n",
                              "Drawing Button used by another application.\n"}) {
    for (size_t at; (at = said.find(allowed)) != std::string::npos;)
      said.erase(at, std::string(allowed).size());
  }
  EXPECT_EQ(said, "");
}

}  // namespace gromlit::testing
