// What other clients may say and send: texts of any size and type where a class or a name is
// expected, trees of windows of any depth, floods, and sent events of every type with random
// contents. The program reads what it can, and goes on.
//
// GROMLIT_HOSTILE_ROUNDS says how long; the suite has time for a few rounds only.
#include "tests/e2e/hostile_run.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::kRight;
using testing::Point;
using testing::Sanitized;
using testing::WaitFor;
using testing::XProxy;
using testing::XRequest;

int Rounds(int usual) {
  const char* given = std::getenv("GROMLIT_HOSTILE_ROUNDS");
  return given != nullptr ? std::atoi(given) : usual;
}

class HostileClientsTest : public testing::HostileRun {
 protected:
  void SetUp() override {
    HostileRun::SetUp();
    victims_ = XOpenDisplay(server->name().c_str());
    ASSERT_NE(victims_, nullptr);
    WriteChoices(kRealInput, kActivateFirst);
    WritePlugin("Victim.victim", {{"act", kRight, {{kHotKey, "a", 38, 0}}}});
  }
  void TearDown() override {
    if (victims_ != nullptr) XCloseDisplay(victims_);
    HostileRun::TearDown();
  }

  Window root() const { return DefaultRootWindow(victims_); }
  Window MakeWindow(Window parent, int x, int y, int width, int height) {
    const Window window = XCreateSimpleWindow(victims_, parent, x, y, static_cast<unsigned>(width),
                                              static_cast<unsigned>(height), 0, 0, 0x80c080);
    return window;
  }
  void SetText(Window window, Atom name, Atom type, int format, const std::string& bytes) {
    XChangeProperty(victims_, window, name, type, format, PropModeReplace, Bytes(bytes, format),
                    static_cast<int>(bytes.size()) * 8 / format);
  }
  // Passes into a window's upper left corner and draws there to the right.
  void Stroke(int x, int y) {
    player->MoveTo(1270, 1000);
    player->MoveTo(x, y);
    player->Press(3);
    for (int k = 1; k <= 7; k++) player->MoveTo(x + 20 * k, y);
    player->Release(3);
  }
  void Click(int x, int y) {
    player->MoveTo(x, y);
    player->Click(3);
  }

  Display* victims_ = nullptr;

 private:
  // As Xlib wants them: units of 32 bits are longs.
  const unsigned char* Bytes(const std::string& bytes, int format) {
    if (format != 32) return reinterpret_cast<const unsigned char*>(bytes.data());
    longs_.assign(bytes.size() / 4 + 1, 0);
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
      uint32_t unit;
      std::memcpy(&unit, bytes.data() + i, 4);
      longs_[i / 4] = unit;
    }
    return reinterpret_cast<const unsigned char*>(longs_.data());
  }
  std::vector<unsigned long> longs_;
};

// --- Texts -----------------------------------------------------------------------------------

TEST_F(HostileClientsTest, TextsOfAnySizeTypeAndContentAreReadOrLeft) {
  StartAll();
  constexpr size_t kSizes[] = {0,   1,    2,    3,    98,    99,    100,   101,   255,   256,
                               257, 1020, 1024, 1028, 32767, 32768, 32772, 65535, 65536, 200000};
  static constexpr const char* kTexts[] = {
      "a",       "/",    ".",  "\n",     "\033[31m\033]0;x\a", "%s%n%d", "../../../../tmp/",
      "\xff",    "\xc3", "\t", "$(id)`", "Victim.victim",      "\"';&|", "\xe2\x82\xac",
      "\x80\x9b"};
  const Atom names[] = {XA_WM_CLASS,
                        XA_WM_NAME,
                        XInternAtom(victims_, "WM_STATE", False),
                        XInternAtom(victims_, "WM_PROTOCOLS", False),
                        XInternAtom(victims_, "_NET_WM_NAME", False),
                        XInternAtom(victims_, "_NET_WM_STATE", False),
                        XInternAtom(victims_, "_XEMBED_INFO", False)};
  const Atom types[] = {XA_STRING,
                        XA_STRING,
                        XA_STRING,
                        XInternAtom(victims_, "UTF8_STRING", False),
                        XInternAtom(victims_, "COMPOUND_TEXT", False),
                        XA_ATOM,
                        XA_INTEGER,
                        XA_WINDOW,
                        None};
  constexpr int kFormats[] = {8, 8, 8, 16, 32};
  const int rounds = Rounds(40);
  for (int round = 0; round < rounds; round++) {
    const Window top = MakeWindow(root(), 100, 100, 300, 300);
    const Window inner = MakeWindow(top, 0, 0, 300, 300);
    XSelectInput(victims_, inner, ButtonPressMask | KeyPressMask);
    XMapWindow(victims_, inner);
    std::string said = "round " + std::to_string(round) + ", seed " + std::to_string(seed_) + ":";
    for (int i = 0; i < 3; i++) {
      const size_t size = kSizes[Pick(std::size(kSizes))];
      const std::string piece = kTexts[Pick(std::size(kTexts))];
      std::string text;
      while (text.size() < size) text += piece;
      text.resize(size);
      // The class hint has its two parts.
      if (size > 0 && Pick(2) == 0) text[Pick(size)] = '\0';
      if (size > 0 && Pick(2) == 0) text[size - 1] = '\0';
      const Atom name = names[i == 0 ? 0 : Pick(std::size(names))];
      const int format = kFormats[Pick(std::size(kFormats))];
      SetText(Pick(3) == 0 ? inner : top, name, types[Pick(std::size(types))], format, text);
      said += " " + std::to_string(name) + ":" + std::to_string(size);
    }
    XMapRaised(victims_, top);
    XSync(victims_, False);
    Stroke(150, 150);
    EXPECT_TRUE(Settle()) << said << WhereItStands();
    Click(150, 150);
    EXPECT_TRUE(Settle()) << said << WhereItStands();
    // What the offer of a plug-in shows.
    CloseAll();
    XDestroyWindow(victims_, top);
    XSync(victims_, True);
    ASSERT_FALSE(HasFailure()) << said;
    ASSERT_TRUE(gromlit->Running()) << said << GromlitOutput();
  }
  ExpectAllIsWell();
}

// What window managers and desktops say on the root window, said by somebody else.
TEST_F(HostileClientsTest, RootWindowMaySayAnything) {
  WritePlugin("Victim.victim", {{"act",
                                 kRight,
                                 {{kRun, "system:maximize"},
                                  {kRun, "system:above"},
                                  {kRun, "system:desktop-next"},
                                  {kRun, "system:window-to-desktop-previous"},
                                  {kRun, "system:minimize"},
                                  {kRun, "system:close"},
                                  {kHotKey, "a", 38, 0}}}});
  StartAll();
  constexpr const char* kNames[] = {"RESOURCE_MANAGER",
                                    "_XKB_RULES_NAMES",
                                    "_GROMLIT_SPARE_KEYS",
                                    "_NET_SUPPORTED",
                                    "_NET_SUPPORTING_WM_CHECK",
                                    "_NET_NUMBER_OF_DESKTOPS",
                                    "_NET_CURRENT_DESKTOP",
                                    "_NET_WORKAREA",
                                    "_NET_WM_DESKTOP",
                                    "_NET_WM_STATE",
                                    "WM_PROTOCOLS"};
  constexpr size_t kSizes[] = {0, 1, 3, 4, 8, 40, 400, 16384, 16388, 150000};
  constexpr int kFormats[] = {8, 16, 32, 32, 32};
  const Atom types[] = {XA_STRING, XA_CARDINAL, XA_CARDINAL, XA_ATOM, XA_WINDOW, XA_INTEGER};
  for (int round = 0; round < Rounds(4); round++) {
    gromlit->Kill(SIGTERM);
    gromlit->Wait();
    const Window top = MakeWindow(root(), 100, 500, 300, 300);
    SetText(top, XA_WM_CLASS, XA_STRING, 8, std::string("victim\0Victim\0", 14));
    XSelectInput(victims_, top, ButtonPressMask | KeyPressMask);
    XMapRaised(victims_, top);
    // Some of it looks right: a manager's window, and what it can.
    const Window windows[] = {root(), top};
    const Atom check = XInternAtom(victims_, "_NET_SUPPORTING_WM_CHECK", False);
    for (const char* name : kNames) {
      std::string bytes(kSizes[Pick(std::size(kSizes))], '\0');
      for (char& byte : bytes) byte = static_cast<char>(Pick(3) == 0 ? Pick(256) : Pick(4));
      const Window window = windows[Pick(std::size(windows))];
      SetText(window, XInternAtom(victims_, name, False), types[Pick(std::size(types))],
              kFormats[Pick(std::size(kFormats))], bytes);
    }
    if (Pick(2) == 0) {
      for (const Window window : windows) {
        XChangeProperty(victims_, window, check, XA_WINDOW, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&top), 1);
      }
      std::vector<Atom> all;
      for (const char* name :
           {"_NET_ACTIVE_WINDOW", "_NET_WM_STATE", "_NET_WM_STATE_ABOVE", "_NET_CURRENT_DESKTOP",
            "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_DESKTOP", "_NET_CLOSE_WINDOW"})
        all.push_back(XInternAtom(victims_, name, False));
      XChangeProperty(victims_, root(), XInternAtom(victims_, "_NET_SUPPORTED", False), XA_ATOM, 32,
                      PropModeReplace, reinterpret_cast<const unsigned char*>(all.data()),
                      static_cast<int>(all.size()));
    }
    XSync(victims_, False);
    StartAgain();
    Stroke(150, 650);
    EXPECT_TRUE(Settle()) << WhereItStands();
    CloseAll();
    XDestroyWindow(victims_, top);
    for (const char* name : kNames)
      XDeleteProperty(victims_, root(), XInternAtom(victims_, name, False));
    XSync(victims_, True);
    quiet_ = GromlitOutput().size();  // what cannot be done here
    ExpectAllIsWell();
    ASSERT_FALSE(HasFailure()) << "round " << round << ", seed " << seed_;
  }
}

// A plug-in for an application of any name is a file of its own in its place, which is found again.
TEST_F(HostileClientsTest, PickedClassesOfAnyTextStayInTheirDirectory) {
  StartAll();
  XMapRaised(player->display(), main_);
  ASSERT_TRUE(WaitFor([this] { return Viewable(main_); }));
  const auto files = [this](bool plugins) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(install->path())) {
      const std::string path = entry.path().string();
      if (entry.is_regular_file() && (path.find("/plugins/") != std::string::npos) == plugins &&
          path.find("/probe") == std::string::npos)
        found.push_back(path);
    }
    std::sort(found.begin(), found.end());
    return found;
  };
  const std::vector<std::string> others = files(false);
  std::vector<std::string> names = {
      "../../../escape", "/absolute", "..",  ".",       "new\nline",          "\033[31m", ".sla",
      "\xff\xfe",        "a\\b",      "-rf", "sp ace ", std::string(150, 'n')};
  std::shuffle(names.begin(), names.end(), random_);
  names.resize(std::min<size_t>(names.size(), static_cast<size_t>(Rounds(4))));
  for (const std::string& name : names) {
    const Window top = MakeWindow(root(), 1050, 500, 200, 200);
    // A class hint with a name alone: the class text is that name.
    SetText(top, XA_WM_CLASS, XA_STRING, 8, name);
    XMapRaised(victims_, top);
    XSync(victims_, False);
    const size_t before = files(true).size();
    StartPicking();
    player->MoveTo(1140, 600);
    player->MoveTo(1150, 600);
    player->Click(1);
    EXPECT_TRUE(WaitFor([this] { return PickLabel() == 0; }));
    EXPECT_TRUE(Settle());
    EXPECT_EQ(files(true).size(), before + 1) << name;
    EXPECT_EQ(files(false), others) << name;
    XDestroyWindow(victims_, top);
    XSync(victims_, True);
    ASSERT_FALSE(HasFailure()) << name << ", seed " << seed_;
  }
  testing::Process check({testing::Built("gromlit-tool"), "check", install->path()},
                         *install / "probe-check");
  EXPECT_EQ(check.Wait(), 0) << testing::ReadText(*install / "probe-check");
  gromlit->Kill(SIGTERM);
  gromlit->Wait();
  StartAgain();
  ExpectAllIsWell();
}

TEST_F(HostileClientsTest, ClassThatChangesAllTheTimeIsReadOnce) {
  StartAll();
  const Window top = MakeWindow(root(), 100, 100, 300, 300);
  XSelectInput(victims_, top, ButtonPressMask | KeyPressMask);
  SetText(top, XA_WM_CLASS, XA_STRING, 8, std::string("victim\0Victim\0", 14));
  XMapRaised(victims_, top);
  XSync(victims_, False);
  // Before every second request it is another one, sometimes so long that it is read in two pieces.
  unsigned changes = 0;
  proxy_->BeforeRequest(
      [&](const XRequest&) {
        const std::string text = changes % 3 == 0   ? std::string("victim\0Victim\0", 14)
                                 : changes % 3 == 1 ? std::string(70000, 'v')
                                                    : std::string(2000, 'n') + '\0' + "Other";
        XChangeProperty(intruder_, top, XA_WM_CLASS, XA_STRING, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<int>(text.size()));
        XSync(intruder_, False);
        changes++;
      },
      [](const XRequest& request) { return request.connection == 0 && request.number % 2 == 0; });
  for (int i = 0; i < Rounds(10); i++) {
    Stroke(150, 150);
    EXPECT_TRUE(Settle()) << WhereItStands();
    CloseAll();
  }
  proxy_->BeforeRequest(nullptr);
  EXPECT_GT(changes, 20u);
  ExpectAllIsWell();
}

// --- Trees -----------------------------------------------------------------------------------

TEST_F(HostileClientsTest, WideAndDeepTreesAreSearchedEvenWhileTheyAreDestroyed) {
  StartAll();
  for (int round = 0; round < Rounds(4); round++) {
    const Window top = MakeWindow(root(), 100, 100, 400, 400);
    SetText(top, XA_WM_CLASS, XA_STRING, 8, std::string("victim\0Victim\0", 14));
    std::vector<Window> windows = {top};
    Window parent = top;
    if (round % 2 == 0) {
      for (int i = 0; i < 100; i++) windows.push_back(parent = MakeWindow(parent, 1, 1, 390, 390));
    }
    for (int i = 0; i < 2000; i++)
      windows.push_back(MakeWindow(windows[Pick(windows.size())], static_cast<int>(Pick(300)),
                                   static_cast<int>(Pick(300)), 50, 50));
    for (const Window window : windows) {
      if (Pick(10) == 0) XSelectInput(victims_, window, ButtonPressMask | KeyPressMask);
      XMapWindow(victims_, window);
    }
    XSync(victims_, False);
    int destroyed = 0;
    if (round > 1) {
      const unsigned every = 1 + static_cast<unsigned>(Pick(400));
      std::vector<Window> doomed = windows;
      std::shuffle(doomed.begin() + 1, doomed.end(), random_);
      if (round % 3 == 0) std::swap(doomed[0], doomed[doomed.size() / 2]);
      proxy_->BeforeRequest(
          [this, doomed, &destroyed](const XRequest&) mutable {
            for (int i = 0; i < 20 && doomed.size() > 1; i++) {
              XDestroyWindow(intruder_, doomed.back());
              doomed.pop_back();
              destroyed++;
            }
            XSync(intruder_, False);
          },
          [every](const XRequest& request) {
            return request.connection == 0 && request.number % every == 0;
          });
    }
    Stroke(200, 200);
    EXPECT_TRUE(Settle()) << WhereItStands();
    Click(250, 250);
    EXPECT_TRUE(Settle()) << WhereItStands();
    proxy_->BeforeRequest(nullptr);
    CloseAll();
    XDestroyWindow(victims_, top);
    XSync(victims_, True);
    EXPECT_TRUE(round < 2 || destroyed > 0);
    ASSERT_TRUE(gromlit->Running()) << GromlitOutput();
    ExpectAllIsWell();
    ASSERT_FALSE(HasFailure()) << "round " << round << ", seed " << seed_;
  }
}

// --- Floods ----------------------------------------------------------------------------------

TEST_F(HostileClientsTest, FloodsHoldNothingUpAndLeaveNoMemoryBehind) {
  StartAll();
  const auto flood = [&](int kind) {
    const int count = 3000;
    const Window window = MakeWindow(root(), 100, 500, 200, 200);
    XMapWindow(victims_, window);
    const Atom atom = XInternAtom(victims_, "_NET_WORKAREA", False);
    for (int i = 0; i < count; i++) {
      const long value = i;
      XEvent event{};
      event.type = ClientMessage;
      event.xclient.window = root();
      event.xclient.message_type = atom;
      event.xclient.format = 32;
      switch (kind) {
        case 0:
          XChangeProperty(victims_, root(), atom, XA_CARDINAL, 32, PropModeReplace,
                          reinterpret_cast<const unsigned char*>(&value), 1);
          break;
        case 1:
          XMoveResizeWindow(victims_, window, i % 500, 500, static_cast<unsigned>(1 + i % 300),
                            200);
          break;
        case 2:
          XSendEvent(victims_, root(), False, SubstructureNotifyMask | StructureNotifyMask, &event);
          break;
        case 3:
          (i % 2 == 0 ? XUnmapWindow : XMapWindow)(victims_, window);
          break;
        default:
          XDestroyWindow(victims_, MakeWindow(root(), i % 1000, 500, 20, 20));
      }
    }
    XSync(victims_, False);
    XDestroyWindow(victims_, window);
    XSync(victims_, True);
  };
  for (int kind = 0; kind < 5; kind++) flood(kind);
  ASSERT_TRUE(Settle());
  const long before = Resident();
  for (int round = 0; round < Rounds(3); round++) {
    for (int kind = 0; kind < 5; kind++) {
      flood(kind);
      ASSERT_TRUE(StrokeActs()) << "kind " << kind;
    }
  }
  ExpectAllIsWell();
  EXPECT_TRUE(Sanitized() || Resident() - before < 1500) << before << " kB before";
}

// --- Sent events -----------------------------------------------------------------------------

class SentEventsStormTest : public HostileClientsTest {
 protected:
  void SetUp() override {
    HostileClientsTest::SetUp();
    connection_ = xcb_connect(server->name().c_str(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(connection_), 0);
    for (const char* name :
         {"WM_PROTOCOLS", "MANAGER", "_XEMBED", "_NET_SYSTEM_TRAY_OPCODE", "_NET_ACTIVE_WINDOW",
          "WM_STATE", "INCR", "TARGETS", "CLIPBOARD", "UTF8_STRING", "GROMLIT_TAKEN_0",
          "_NET_SYSTEM_TRAY_S0", "_GROMLIT_S0", "_GROMLIT_REMOTE"})
      numbers_.push_back(static_cast<uint32_t>(XInternAtom(victims_, name, False)));
  }
  void TearDown() override {
    if (connection_ != nullptr) xcb_disconnect(connection_);
    HostileClientsTest::TearDown();
  }

  uint32_t Number(const std::vector<Window>& windows) {
    switch (Pick(5)) {
      case 0:
        return static_cast<uint32_t>(random_());
      case 1:
        return static_cast<uint32_t>(windows[Pick(windows.size())]);
      case 2:
        return static_cast<uint32_t>(player->root());
      case 3:
        return numbers_[Pick(numbers_.size())];
      default:
        return static_cast<uint32_t>(Pick(300)) - 20;
    }
  }
  // To each window of the program, one event of each type, those of extensions included. Buttons
  // and keys are what a user does there.
  void Storm(bool input) {
    std::vector<Window> windows = OwnWindows();
    ASSERT_GT(windows.size(), 20u);
    for (const Window window : windows) {
      for (int type = 2; type < 128; type++) {
        if (!input && type <= ButtonRelease) continue;
        // Of extensions, whose types depend on the server, one in ten.
        if (type > 35 && Pick(10) != 0) continue;
        std::array<uint32_t, 8> event;
        for (uint32_t& word : event) word = Number(windows);
        auto* bytes = reinterpret_cast<uint8_t*>(event.data());
        bytes[0] = static_cast<uint8_t>(type);
        // Which window an event is about, stands in the second word of most.
        if (Pick(4) != 0) event[type <= LeaveNotify ? 3 : 1] = static_cast<uint32_t>(window);
        if (type == ClientMessage) {
          constexpr uint8_t kFormats[] = {8, 16, 32, 32, 32, 0, 255};
          bytes[1] = kFormats[Pick(std::size(kFormats))];
        }
        xcb_send_event(connection_, 0, static_cast<uint32_t>(window), 0,
                       reinterpret_cast<const char*>(event.data()));
      }
    }
    free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* connection_ = nullptr;
  std::vector<uint32_t> numbers_;
};

TEST_F(SentEventsStormTest, EventsOfEveryTypeChangeNothing) {
  StartAll();
  for (int round = 0; round < Rounds(4); round++) {
    Storm(false);
    ASSERT_TRUE(Settle()) << "round " << round << ", seed " << seed_ << WhereItStands();
    ASSERT_TRUE(gromlit->Running()) << "round " << round << ", seed " << seed_ << GromlitOutput();
    CloseAll();
    ASSERT_TRUE(StrokeActs()) << "round " << round << ", seed " << seed_ << WhereItStands();
  }
}

// Buttons and keys open menus and windows, which stay until their user closes them; anything may
// have been chosen there, the end of the program, too.
TEST_F(SentEventsStormTest, InputOfOtherClientsCrashesAndHoldsNothing) {
  StartAll();
  int ended = 0;
  for (int round = 0; round < Rounds(8); round++) {
    XMapRaised(player->display(), main_);
    Storm(true);
    Settle();  // what is open now, is open
    for (int i = 0; i < 4 && gromlit->Running(); i++) {
      player->MoveTo(1270, 1010);
      player->Click(1);
      player->Type(XK_Escape);
    }
    const bool settled = Settle();
    if (!gromlit->Running()) {
      ASSERT_EQ(gromlit->Wait(), 0) << "round " << round << ", seed " << seed_ << GromlitOutput();
      ended++;
      StartAgain();
      continue;
    }
    ASSERT_TRUE(settled) << "round " << round << ", seed " << seed_ << WhereItStands();
    ASSERT_TRUE(PointerBecomesFree()) << "round " << round << ", seed " << seed_ << WhereItStands();
    CloseAll();
    ASSERT_FALSE(HasFailure()) << "round " << round << ", seed " << seed_;
  }
  gromlit->Kill(SIGTERM);
  gromlit->Wait();
  StartAgain();
  ExpectAllIsWell();
  std::printf("the program was ended %d times\n", ended);
}

}  // namespace
}  // namespace gromlit
