// Other clients that act between any two requests of the program: the application under a gesture
// goes, moves, changes or loses what it is called, grabs what it can, while the gesture is captured
// and while its action is carried out, or while the user works in the program's own windows.
// Whatever happens to that gesture, the pointer and the keyboard are free after it, nothing is held
// down, and the next gesture works.
//
// GROMLIT_EVERY_REQUEST=1 attacks in each way at each request that a gesture takes, 3 at every
// third; else, for the suite, at one that the seed chooses (GROMLIT_TEST_SEED). GROMLIT_ATTACK
// names the only one that is tried, GROMLIT_MANAGER another window manager than openbox.
#include "tests/e2e/hostile_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <signal.h>

#include <cstdlib>
#include <cstring>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::Attack;
using testing::AttackStep;
using testing::kClickToRaise;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Scene;
using testing::WaitFor;
using testing::XRequest;

constexpr int kKeyA = 38;  // of the usual keymap

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
    {"destroy the trail",
     [](const Scene& s) {
       for (const Window window : testing::ChildrenOf(s.display, DefaultRootWindow(s.display))) {
         XWindowAttributes attributes{};
         if (XGetWindowAttributes(s.display, window, &attributes) != 0 &&
             attributes.override_redirect && attributes.width > 1000)
           XDestroyWindow(s.display, window);
       }
     }},
    {"take draw button",
     [](const Scene& s) {
       XGrabButton(s.display, Button3, 0, DefaultRootWindow(s.display), False, ButtonPressMask,
                   GrabModeAsync, GrabModeAsync, None, None);
     },
     [](const Scene& s) { XUngrabButton(s.display, Button3, 0, DefaultRootWindow(s.display)); }},
};

// Where there is a window manager.
constexpr Attack kKillManager = {"kill the window manager",
                                 [](const Scene& s) { kill(s.manager, SIGKILL); }};

// Symbols of the keyboard, two for each code, beginning with the lowest code.
std::vector<KeySym> Keyboard(Display* display) {
  int first;
  int last;
  XDisplayKeycodes(display, &first, &last);
  int width = 0;
  KeySym* symbols =
      XGetKeyboardMapping(display, static_cast<KeyCode>(first), last - first + 1, &width);
  std::vector<KeySym> found;
  for (int code = first; code <= last; code++) {
    for (int level = 0; level < 2; level++) {
      found.push_back(symbols[(code - first) * width + level]);
    }
  }
  XFree(symbols);
  return found;
}

void SetSpareKeys(Display* display, KeySym from, KeySym to) {
  int first;
  int last;
  XDisplayKeycodes(display, &first, &last);
  const std::vector<KeySym> keys = Keyboard(display);
  for (int code = first; code <= last; code++) {
    const auto at = static_cast<size_t>(code - first) * 2;
    if (keys[at] != from || keys[at + 1] != from) continue;
    KeySym symbols[] = {to, to};
    XChangeKeyboardMapping(display, code, 2, symbols, 1);
  }
}

// Where keys are lent characters that the keyboard does not have.
constexpr Attack kKeyboardAttacks[] = {
    {"tell of the keyboard",
     [](const Scene& s) {
       KeySym symbols[] = {XK_a, XK_A};
       XChangeKeyboardMapping(s.display, kKeyA, 2, symbols, 1);
     }},
    {"take spare keys", [](const Scene& s) { SetSpareKeys(s.display, NoSymbol, XK_F35); },
     [](const Scene& s) { SetSpareKeys(s.display, XK_F35, NoSymbol); }},
};

enum class Gesture { kStroke, kClick };

struct Setting {
  const char* name;
  Gesture gesture;
  int delivery;
  int choices;
  const char* manager;
  const char* text = "Hi";
};

constexpr Setting kSettings[] = {
    {"SentStroke", Gesture::kStroke, kSentEvents, 0, ""},
    {"MadeStroke", Gesture::kStroke, kRealInput, kActivateFirst, ""},
    {"MadeText", Gesture::kStroke, kRealInput, 0, "", "H\u00e9\u20ac\u65e5\u672c\u8a9e"},
    {"SentClick", Gesture::kClick, kSentEvents, 0, ""},
    {"MadeClick", Gesture::kClick, kRealInput, 0, ""},
    {"ManagedSentStroke", Gesture::kStroke, kSentEvents, kActivateFirst, "openbox"},
    {"ManagedMadeStroke", Gesture::kStroke, kRealInput, kActivateFirst, "openbox"},
};

void PrintTo(const Setting& setting, std::ostream* out) {
  *out << setting.name;
}

class BetweenRequestsTest : public testing::HostileRun,
                            public ::testing::WithParamInterface<Setting> {
 protected:
  void SetUp() override {
    HostileRun::SetUp();
    if (*GetParam().manager != '\0') {
      const char* const chosen = std::getenv("GROMLIT_MANAGER");
      const std::string name = chosen != nullptr ? chosen : GetParam().manager;
      setenv("HOME", install->path().c_str(), 1);  // its configuration is the default one
      StartWindowManager(name, name == "openbox" ? kClickToRaise : "");
    }
    WriteChoices(GetParam().delivery, GetParam().choices);
    WritePlugin("Victim.victim", {{"all",
                                   kRight,
                                   {{kHotKey, "a", kKeyA, ShiftMask | ControlMask},
                                    {kText, GetParam().text},
                                    {kRun, "system:maximize"},
                                    {kRun, "system:close"},
                                    {kHotKey, "a", kKeyA, 0}}}});
    StartAll();
  }
  void TearDown() override {
    victim_.reset();
    HostileRun::TearDown();
  }

  // A new application under the coming gesture.
  void NewVictim() {
    victim_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Victim", "victim", "--geometry", "300x300+100+100",
                                 "--child", "200x200+20+20", "--child", "100x100+20+20,0x4,1"});
    scene_ = {intruder_, victim_->window(), victim_->window(), other_->window(),
              manager != nullptr ? manager->pid() : 0};
    for (Window parent = scene_.frame; parent != None && parent != player->root();) {
      scene_.frame = parent;
      parent = testing::ParentOf(player->display(), parent);
    }
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
    Arm(scene_, attack, 0, before + number);
    player->MoveTo(at.x + 80, at.y + 80);
    player->Press(3);
    if (GetParam().gesture == Gesture::kStroke)
      for (int x = 100; x <= 240; x += 20) player->MoveTo(at.x + x, at.y + 80);
    player->Release(3);
    const bool settled = Settle();
    const bool fired = Disarm();
    EXPECT_TRUE(settled) << WhereItStands();
    requests_ = proxy_->Counts(0).requests - before;
    if (attack.name == kAttacks[0].name) ExpectActedOn();
    victim_.reset();
    // What is shown while a manager that was killed is not gone yet would never be.
    if (fired && attack.name == kKillManager.name) {
      EXPECT_TRUE(WaitFor([this] { return !manager->Running(); }));
    }
    KeepManager();
    CloseAll();  // the offer of a plug-in for what has lost its name
    return fired;
  }
  // One that was killed is started again, and has found its windows.
  void KeepManager() {
    if (manager == nullptr || manager->Running()) return;
    RestartWindowManager();
    EXPECT_TRUE(WaitFor([this] {
      return testing::ParentOf(player->display(), other_->window()) != player->root();
    }));
    // Each one puts its frame where the window was, and the window lower by the title.
    XMoveWindow(player->display(), other_->window(), 700, 100);
    EXPECT_TRUE(WaitFor([this] { return OriginOf(other_->window()).y < 150; }));
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
  unsigned long requests_ = 0;  // of the last gesture
  std::unique_ptr<ProbeClient> victim_;
  Scene scene_{};
};

TEST_P(BetweenRequestsTest, WhateverOtherClientsDoTheNextGestureWorks) {
  const bool lends = std::string(GetParam().name) == "MadeText";
  const std::vector<KeySym> keyboard = Keyboard(player->display());
  Attacked(kAttacks[0], 0);
  ExpectAllIsWell();
  EXPECT_EQ(Keyboard(player->display()) != keyboard, lends);
  const unsigned long usual = requests_;
  int attacks = 0;
  const char* only = std::getenv("GROMLIT_ATTACK");
  std::vector<Attack> tried(std::begin(kAttacks), std::end(kAttacks));
  if (manager != nullptr) tried.push_back(kKillManager);
  if (lends) tried.insert(tried.end(), std::begin(kKeyboardAttacks), std::end(kKeyboardAttacks));
  for (const Attack& attack : tried) {
    if (only != nullptr && std::string(attack.name) != only) continue;
    // Those with a window manager take longest.
    if (AttackStep() == 0 && manager != nullptr && Pick(2) == 0) continue;
    // Some gestures take a few requests more.
    attacks += Sweep(attack, usual, usual + usual / 8,
                     [&](unsigned long number) { return Attacked(attack, number); });
    if (HasFailure()) return;
  }
  EXPECT_TRUE(WaitFor([&] { return Keyboard(player->display()) == keyboard; }))
      << "keys are not given back";
  std::printf("%d attacks, a gesture has %lu requests\n", attacks, usual);
}

INSTANTIATE_TEST_SUITE_P(In, BetweenRequestsTest, ::testing::ValuesIn(kSettings),
                         [](const auto& setting) { return std::string(setting.param.name); });

// --- While the user works in the program's own windows -----------------------------------------

struct Work {
  const char* name;
  bool picking;             // an application is to be picked
  std::vector<Point> way;   // of the first button: pressed, moved and released; in the main window
  std::vector<Point> then;  // clicks, on the screen
};

const Work kWorks[] = {
    {"menu bar", false, {{20, 10}, {30, 30}, {30, 60}, {90, 10}, {100, 40}, {500, 500}}, {}},
    {"popup", false, {{40, 180}, {41, 180}}, {{620, 600}}},
    {"pick", true, {}, {{1150, 600}}},
};

class WorkBetweenRequestsTest : public testing::HostileRun {
 protected:
  bool WorkAttacked(const Work& work, const Attack& attack, unsigned long number) {
    const std::string name = "Victim" + std::to_string(victims_++);
    const auto victim = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", name, name, "--geometry", "200x200+1050+500"});
    scene_ = {intruder_, victim->window(), victim->window(), other_->window(), 0};
    if (work.picking) StartPicking();
    EXPECT_TRUE(work.picking || Settle());
    const int connection = proxy_->connections() - 1;
    const unsigned long before = proxy_->Counts(connection).requests;
    Arm(scene_, attack, connection, before + number);
    const Point at = OriginOf(main_);
    for (size_t i = 0; i < work.way.size(); i++) {
      player->MoveTo(at.x + work.way[i].x, at.y + work.way[i].y);
      if (i == 0) player->Press(1);
    }
    player->Release(1);
    EXPECT_TRUE(work.picking || Settle());  // what it has opened is open
    for (const Point& point : work.then) {
      player->MoveTo(point.x - 20, point.y);
      player->MoveTo(point.x, point.y);
      player->Click(1);
    }
    // An attack may have kept the pick from hearing of it.
    if (work.picking && !WaitFor([this] { return PickLabel() == 0; }, kPickTime)) player->Click(1);
    EXPECT_TRUE(Settle()) << WhereItStands();
    const bool fired = Disarm();
    requests_ = proxy_->Counts(connection).requests - before;
    // The user gives up whatever is left.
    player->MoveTo(1270, 1000);
    player->Click(1);
    player->Type(XK_Escape);
    EXPECT_TRUE(Settle()) << WhereItStands();
    // Closed from outside, the action editor leaves gestures off until it has been left by Cancel.
    if (Shown("ActionEditor") != None) {
      gromlit->Kill(SIGTERM);
      gromlit->Wait();
      StartAgain();
    }
    CloseAll();
    ShowMain();
    return fired;
  }

  void ShowMain() {
    XMapRaised(player->display(), main_);
    EXPECT_TRUE(WaitFor([this] { return Viewable(main_); }));
  }

  static constexpr auto kPickTime = std::chrono::seconds(2);
  Scene scene_{};
  int victims_ = 0;
  unsigned long requests_ = 0;
};

TEST_F(WorkBetweenRequestsTest, WhateverOtherClientsDoTheProgramsWindowsLetGo) {
  WriteChoices(kSentEvents, 0);
  StartAll();
  ShowMain();
  for (const Work& work : kWorks) {
    WorkAttacked(work, kAttacks[0], 0);
    const unsigned long usual = requests_;
    int attacks = 0;
    for (const Attack& attack : kAttacks) {
      if (AttackStep() == 0 && Pick(3) != 0) continue;
      attacks += Sweep(attack, usual, usual,
                       [&](unsigned long number) { return WorkAttacked(work, attack, number); });
      if (HasFailure()) {
        ADD_FAILURE() << "while in " << work.name;
        return;
      }
    }
    std::printf("%s: %d attacks, %lu requests\n", work.name, attacks, usual);
  }
}

}  // namespace
}  // namespace gromlit
