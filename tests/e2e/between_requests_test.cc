// Other clients that act between any two requests of the program: the application under a gesture
// goes, moves, changes or loses what it is called, grabs what it can, while the gesture is captured
// and while its action is carried out. Whatever happens to that gesture, the pointer and the
// keyboard are free after it, nothing is held down, and the next gesture works.
//
// GROMLIT_EVERY_REQUEST=1 attacks in each way at each request that a gesture takes, 3 at every
// third; else, for the suite, at one that the seed chooses (GROMLIT_TEST_SEED). GROMLIT_ATTACK
// names the only one that is tried.
#include "tests/e2e/gromlit_run.h"

#include "tests/support/x_proxy.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <random>
#include <thread>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::kClickToRaise;
using testing::kRight;
using testing::kUp;
using testing::Point;
using testing::ProbeClient;
using testing::WaitFor;
using testing::XProxy;
using testing::XRequest;

constexpr int kKeyA = 38;  // of the usual keymap
constexpr int kKeyB = 56;
constexpr const char* kOthersKey = "KeyPress window=main keycode=56 state=0";

struct Scene {
  Display* display;  // a client of its own
  Window top;        // of the application under the gesture
  Window frame;      // what lies on the root window: the same without a window manager
  Window other;      // another application
};

// What happens, and what ends it where it lasts.
struct Attack {
  const char* name;
  void (*begin)(const Scene& scene);
  void (*end)(const Scene& scene) = nullptr;
};

void DeleteProperties(Display* display, Window window) {
  int count = 0;
  Atom* properties = XListProperties(display, window, &count);
  for (int i = 0; i < count; i++) XDeleteProperty(display, window, properties[i]);
  if (properties != nullptr) XFree(properties);
}

void SetLongNames(Display* display, Window window) {
  const std::string text(60000, '/');
  for (const Atom name :
       {Atom{XA_WM_CLASS}, Atom{XA_WM_NAME}, XInternAtom(display, "WM_STATE", 0),
        XInternAtom(display, "WM_PROTOCOLS", 0), XInternAtom(display, "_NET_WM_STATE", 0),
        XInternAtom(display, "_NET_WM_DESKTOP", 0)})
    XChangeProperty(display, window, name, XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
}

constexpr Attack kAttacks[] = {
    {"nothing", [](const Scene&) {}},
    {"destroy", [](const Scene& s) { XDestroyWindow(s.display, s.top); }},
    {"destroy children", [](const Scene& s) { XDestroySubwindows(s.display, s.top); }},
    {"kill", [](const Scene& s) { XKillClient(s.display, s.top); }},
    {"unmap", [](const Scene& s) { XUnmapWindow(s.display, s.top); }},
    {"unmap frame", [](const Scene& s) { XUnmapWindow(s.display, s.frame); }},
    {"reparent", [](const Scene& s) { XReparentWindow(s.display, s.top, s.other, 0, 0); }},
    {"lose properties", [](const Scene& s) { DeleteProperties(s.display, s.top); }},
    {"rename", [](const Scene& s) { testing::SetClass(s.display, s.top, "Other", "other"); }},
    {"long names", [](const Scene& s) { SetLongNames(s.display, s.top); }},
    {"move", [](const Scene& s) { XMoveWindow(s.display, s.frame, 3000, 3000); }},
    {"shrink", [](const Scene& s) { XResizeWindow(s.display, s.top, 1, 1); }},
    {"lower", [](const Scene& s) { XLowerWindow(s.display, s.frame); }},
    {"focus", [](const Scene& s) { XSetInputFocus(s.display, None, RevertToNone, CurrentTime); }},
    {"grab pointer",
     [](const Scene& s) {
       XGrabPointer(s.display, DefaultRootWindow(s.display), False, ButtonPressMask, GrabModeAsync,
                    GrabModeAsync, None, None, CurrentTime);
     },
     [](const Scene& s) { XUngrabPointer(s.display, CurrentTime); }},
    {"grab keyboard",
     [](const Scene& s) {
       XGrabKeyboard(s.display, DefaultRootWindow(s.display), False, GrabModeAsync, GrabModeAsync,
                     CurrentTime);
     },
     [](const Scene& s) { XUngrabKeyboard(s.display, CurrentTime); }},
    {"grab keyboard and freeze",
     [](const Scene& s) {
       XGrabKeyboard(s.display, DefaultRootWindow(s.display), False, GrabModeSync, GrabModeSync,
                     CurrentTime);
     },
     [](const Scene& s) { XUngrabKeyboard(s.display, CurrentTime); }},
    {"grab server", [](const Scene& s) { XGrabServer(s.display); },
     [](const Scene& s) { XUngrabServer(s.display); }},
    {"take draw button",
     [](const Scene& s) {
       XGrabButton(s.display, Button3, 0, DefaultRootWindow(s.display), False, ButtonPressMask,
                   GrabModeAsync, GrabModeAsync, None, None);
     },
     [](const Scene& s) { XUngrabButton(s.display, Button3, 0, DefaultRootWindow(s.display)); }},
};

enum class Gesture { kStroke, kClick };

struct Setting {
  const char* name;
  Gesture gesture;
  int delivery;
  int choices;
  const char* manager;
};

constexpr Setting kSettings[] = {
    {"SentStroke", Gesture::kStroke, kSentEvents, 0, ""},
    {"MadeStroke", Gesture::kStroke, kRealInput, kActivateFirst, ""},
    {"SentClick", Gesture::kClick, kSentEvents, 0, ""},
    {"MadeClick", Gesture::kClick, kRealInput, 0, ""},
    {"ManagedSentStroke", Gesture::kStroke, kSentEvents, kActivateFirst, "openbox"},
    {"ManagedMadeStroke", Gesture::kStroke, kRealInput, kActivateFirst, "openbox"},
};

void PrintTo(const Setting& setting, std::ostream* out) {
  *out << setting.name;
}

// From one request that is attacked at to the next; 0: one is enough.
unsigned long Step() {
  const char* given = std::getenv("GROMLIT_EVERY_REQUEST");
  return given != nullptr ? std::strtoul(given, nullptr, 10) : 0;
}

class BetweenRequestsTest : public testing::GromlitRun,
                            public ::testing::WithParamInterface<Setting> {
 protected:
  void SetUp() override {
    GromlitRun::SetUp();
    const char* given = std::getenv("GROMLIT_TEST_SEED");
    seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                             : std::random_device()();
    std::printf("seed %u\n", seed_);
    random_.seed(seed_);
    intruder_ = XOpenDisplay(server->name().c_str());
    ASSERT_NE(intruder_, nullptr);
    proxy_ = std::make_unique<XProxy>(server->name());
    display_name = proxy_->name();
    if (*GetParam().manager != '\0') StartWindowManager(GetParam().manager, kClickToRaise);
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = GetParam().delivery;
    options.temp2 = GetParam().choices;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    WritePlugin("Victim.victim", {{"all",
                                   kRight,
                                   {{kHotKey, "a", kKeyA, ShiftMask | ControlMask},
                                    {kText, "Hi"},
                                    {kRun, "system:maximize"},
                                    {kRun, "system:close"},
                                    {kHotKey, "a", kKeyA, 0}}}});
    WritePlugin("Other.other", {{"key", kUp, {{kHotKey, "b", kKeyB, 0}}}});
    WritePlugin("Default", {});
    other_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Other", "other", "--geometry", "300x300+700+100"});
    StartGromlit();
    main_ = HideMainWindow();
    Settle();
    quiet_ = GromlitOutput();
  }
  void TearDown() override {
    if (proxy_ != nullptr) proxy_->BeforeRequest(nullptr);
    victim_.reset();
    other_.reset();
    if (intruder_ != nullptr) XCloseDisplay(intruder_);
    GromlitRun::TearDown();
    proxy_.reset();
  }

  // Waits until the program has done all that it had to do: it answers a question, which it does
  // between two events only.
  bool Settle() {
    Display* asker = player->display();
    if (question_ == None) {
      question_ = XCreateSimpleWindow(asker, player->root(), -5, -5, 1, 1, 0, 0, 0);
    }
    XConvertSelection(asker, XInternAtom(asker, "_GROMLIT_S0", False),
                      XInternAtom(asker, "TIMESTAMP", False), XInternAtom(asker, "ANSWER", False),
                      question_, CurrentTime);
    XFlush(asker);
    return WaitFor([&] {
      XEvent event;
      return XCheckTypedWindowEvent(asker, question_, SelectionNotify, &event) != 0;
    });
  }

  // A new application under the coming gesture.
  void NewVictim() {
    victim_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Victim", "victim", "--geometry", "300x300+100+100",
                                 "--child", "200x200+20+20", "--child", "100x100+20+20,0x4,1"});
    scene_ = {intruder_, victim_->window(), victim_->window(), other_->window()};
    while (testing::ParentOf(player->display(), scene_.frame) != player->root())
      scene_.frame = testing::ParentOf(player->display(), scene_.frame);
  }
  Point OriginOf(Window window) {
    Point at{};
    Window child;
    XTranslateCoordinates(player->display(), window, player->root(), 0, 0, &at.x, &at.y, &child);
    return at;
  }

  // One gesture on a new application, with something happening before its request `number`, from
  // 1. Returns whether the gesture came to that request.
  bool Attacked(const Attack& attack, unsigned long number) {
    NewVictim();
    Go({1270, 1000});
    if (manager == nullptr)
      XSetInputFocus(player->display(), PointerRoot, RevertToPointerRoot, CurrentTime);
    EXPECT_TRUE(Settle());
    const Point at = OriginOf(victim_->window());
    const unsigned long before = proxy_->Counts(0).requests;
    const unsigned long first = before + number;
    fired_ = false;
    proxy_->BeforeRequest([&, first](const XRequest& request) {
      if (request.connection != 0 || request.number != first) return;
      fired_ = true;
      attack.begin(scene_);
      XSync(intruder_, False);
      if (attack.end != nullptr) EndLater(attack);
    });
    player->MoveTo(at.x + 80, at.y + 80);
    player->Press(3);
    if (GetParam().gesture == Gesture::kStroke)
      for (int x = 100; x <= 240; x += 20) player->MoveTo(at.x + x, at.y + 80);
    player->Release(3);
    const bool settled = Settle();
    proxy_->BeforeRequest(nullptr);
    if (ending_.joinable()) ending_.join();
    EXPECT_TRUE(settled) << WhereItStands();
    requests_ = proxy_->Counts(0).requests - before;
    if (attack.name == kAttacks[0].name) ExpectActedOn();
    victim_.reset();
    CloseDialogs();
    return fired_;
  }
  // What the gesture does when nobody interferes; else nothing here would be attacked.
  void ExpectActedOn() {
    // The hot key and the two letters; of the click the window wants the press only.
    if (GetParam().gesture == Gesture::kStroke) {
      EXPECT_GE(victim_->Wait(6, "Key").size(), 6u);
    } else {
      EXPECT_GE(victim_->Wait(1, "ButtonPress").size(), 1u);
    }
  }
  // The program offers a plug-in for what has lost its name, once.
  void CloseDialogs() {
    Display* user = player->display();
    const Atom protocols = XInternAtom(user, "WM_PROTOCOLS", False);
    const Atom close = XInternAtom(user, "WM_DELETE_WINDOW", False);
    EXPECT_TRUE(WaitFor([&] {
      const std::vector<Window> dialogs = DialogsBelow(player->root(), 2);
      for (const Window dialog : dialogs) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = dialog;
        event.xclient.message_type = protocols;
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(close);
        XSendEvent(user, dialog, False, NoEventMask, &event);
      }
      return dialogs.empty();
    })) << "a dialog stays";
  }
  // The program's windows that are on the screen, but for the trail.
  std::vector<Window> DialogsBelow(Window window, int depth) {
    std::vector<Window> found;
    for (const Window child : testing::ChildrenOf(player->display(), window)) {
      XWindowAttributes attributes{};
      if (XGetWindowAttributes(player->display(), child, &attributes) == 0 ||
          attributes.map_state != IsViewable || attributes.width > 1000)
        continue;
      if (child >> 21 == main_ >> 21) {
        found.push_back(child);
      } else if (depth > 1) {
        const std::vector<Window> more = DialogsBelow(child, depth - 1);
        found.insert(found.end(), more.begin(), more.end());
      }
    }
    return found;
  }
  // Lasting attacks end by themselves soon: what is frozen must not stay so on their account.
  void EndLater(const Attack& attack) {
    ending_ = std::thread([this, &attack] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      attack.end(scene_);
      XSync(intruder_, False);
    });
  }

  // Everything is as it was, and a gesture on another application is acted on.
  void ExpectAllIsWell(bool taken = false) {
    ASSERT_TRUE(gromlit->Running()) << GromlitOutput();
    ASSERT_TRUE(Settle()) << WhereItStands();
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); })) << "the trail stays";
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
    const size_t before = other_->Lines(kOthersKey).size();
    XSetInputFocus(user, other_->window(), RevertToPointerRoot, CurrentTime);
    const Point at = OriginOf(other_->window());
    // Again only for a while after another client has had the draw button.
    EXPECT_TRUE(WaitFor([&] {
      player->MoveTo(at.x + 150, at.y + 250);
      player->Press(3);
      for (int y = 230; y >= 90; y -= 20) player->MoveTo(at.x + 150, at.y + y);
      player->Release(3);
      EXPECT_TRUE(Settle());
      return WaitFor([&] { return other_->Lines(kOthersKey).size() > before; },
                     std::chrono::milliseconds(taken ? 100 : 9000));
    })) << "the next stroke is not acted on\n"
        << WhereItStands();
    EXPECT_TRUE(Settle());
    ExpectQuiet();
  }
  // Nothing is said on account of other clients, but what cannot be done here.
  void ExpectQuiet() {
    std::string said = GromlitOutput().substr(quiet_.size());
    for (const char* allowed : {"The window manager cannot do system:maximize.\n",
                                "The window manager cannot do system:close.\n",
                                "Drawing Button used by another application.\n"}) {
      for (size_t at; (at = said.find(allowed)) != std::string::npos;)
        said.erase(at, std::string(allowed).size());
    }
    EXPECT_EQ(said, "");
  }

  unsigned long requests_ = 0;  // of the last gesture
  unsigned seed_ = 0;
  std::mt19937 random_;
  std::unique_ptr<XProxy> proxy_;
  Display* intruder_ = nullptr;
  Window question_ = None;
  std::string quiet_;
  std::unique_ptr<ProbeClient> victim_;
  std::unique_ptr<ProbeClient> other_;
  Scene scene_{};
  Window main_ = None;
  std::atomic<bool> fired_{false};
  std::thread ending_;
};

TEST_P(BetweenRequestsTest, WhateverOtherClientsDoTheNextGestureWorks) {
  Attacked(kAttacks[0], 0);
  ExpectAllIsWell();
  const unsigned long usual = requests_;
  const unsigned long step = Step();
  int attacks = 0;
  const char* only = std::getenv("GROMLIT_ATTACK");
  for (const Attack& attack : kAttacks) {
    if (only != nullptr && std::string(attack.name) != only) continue;
    // Some gestures take a few requests more.
    const unsigned long last = step != 0 ? usual + usual / 8 : 1;
    for (unsigned long n = step > 1 ? random_() % step : 0; n < last; n += std::max(step, 1UL)) {
      const unsigned long number = 1 + (step != 0 ? n : random_() % usual);
      attacks += Attacked(attack, number) ? 1 : 0;
      ExpectAllIsWell(attack.name == std::string("take draw button"));
      ASSERT_FALSE(HasFailure()) << attack.name << " before request " << number << ", seed "
                                 << seed_;
    }
  }
  std::printf("%d attacks, a gesture has %lu requests\n", attacks, usual);
}

INSTANTIATE_TEST_SUITE_P(In, BetweenRequestsTest, ::testing::ValuesIn(kSettings),
                         [](const auto& setting) { return std::string(setting.param.name); });

}  // namespace
}  // namespace gromlit
