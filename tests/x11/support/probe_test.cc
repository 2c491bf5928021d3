// The probe is what other tests measure with, so it is measured here.
#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include "tests/support/built.h"
#include "tests/support/temp_install.h"
#include "tests/support/x_server.h"

namespace gromlit::testing {
namespace {

class ProbeTest : public ::testing::Test {
 protected:
  // Starts a probe with these options and waits until it is ready; its window in `window`.
  void Start(std::vector<std::string> options) {
    options.insert(options.begin(), testing::Built("tests/probe"));
    options.insert(options.end(), {"--output", files / "events"});
    probe = std::make_unique<Process>(options, files / "output");
    ASSERT_TRUE(WaitFor([this] { return Output().find("ready ") != std::string::npos; }))
        << Output();
    const std::string output = Output();
    window = std::stoul(output.substr(output.find("ready ") + 6), nullptr, 16);
  }

  std::string Output() { return Exists(files / "output") ? ReadText(files / "output") : ""; }
  std::string Events() { return Exists(files / "events") ? ReadText(files / "events") : ""; }
  bool Gets(const std::string& line) {
    return WaitFor([&] { return Events().find(line + "\n") != std::string::npos; });
  }
  Display* display() { return player.display(); }

  TempInstall files;
  XServer server;
  Player player{server.name()};
  std::unique_ptr<Process> probe;
  Window window = None;
};

TEST_F(ProbeTest, SaysReadyWhenItsWindowIsViewableWhereItWasTold) {
  Start({"--geometry", "120x80+30+40"});
  XWindowAttributes attributes{};
  ASSERT_NE(XGetWindowAttributes(display(), window, &attributes), 0);
  EXPECT_EQ(attributes.map_state, IsViewable);
  EXPECT_EQ(attributes.x, 30);
  EXPECT_EQ(attributes.y, 40);
  EXPECT_EQ(attributes.width, 120);
  EXPECT_EQ(attributes.height, 80);
  EXPECT_EQ(attributes.override_redirect, False);
}

TEST_F(ProbeTest, TellsRealEventsFromSentOnes) {
  Start({"--geometry", "100x100+0+0"});
  player.MoveTo(20, 30);
  player.Click(3);
  EXPECT_TRUE(
      Gets("ButtonPress window=main button=3 state=0 x=20 y=30 x_root=20 y_root=30 "
           "send_event=0"));
  EXPECT_TRUE(
      Gets("ButtonRelease window=main button=3 state=1024 x=20 y=30 x_root=20 y_root=30 "
           "send_event=0"));
  XEvent event{};
  event.xkey.type = KeyPress;
  event.xkey.window = window;
  event.xkey.root = player.root();
  event.xkey.keycode = 38;
  event.xkey.state = 5;
  event.xkey.x = 1;
  event.xkey.y = 2;
  event.xkey.x_root = 3;
  event.xkey.y_root = 4;
  XSendEvent(display(), window, True, 0xffffff, &event);
  XSync(display(), False);
  EXPECT_TRUE(
      Gets("KeyPress window=main keycode=38 state=5 x=1 y=2 x_root=3 y_root=4 send_event=1"));
}

TEST_F(ProbeTest, HasTheClassHintItWasTold) {
  Start({"--class", "Class", "name"});
  XClassHint hint{};
  ASSERT_NE(XGetClassHint(display(), window, &hint), 0);
  EXPECT_STREQ(hint.res_class, "Class");
  EXPECT_STREQ(hint.res_name, "name");
  XFree(hint.res_class);
  XFree(hint.res_name);
}

TEST_F(ProbeTest, HasNeitherHintNorNameUnlessTold) {
  Start({});
  XClassHint hint{};
  EXPECT_EQ(XGetClassHint(display(), window, &hint), 0);
  XTextProperty name{};
  EXPECT_EQ(XGetWMName(display(), window, &name), 0);
}

TEST_F(ProbeTest, NamesItselfInTheEncodingItWasTold) {
  Start({"--title", "plain"});
  XTextProperty name{};
  ASSERT_NE(XGetWMName(display(), window, &name), 0);
  EXPECT_EQ(name.encoding, Atom{XA_STRING});
  EXPECT_STREQ(reinterpret_cast<const char*>(name.value), "plain");
  XFree(name.value);
  Process other({testing::Built("tests/probe"), "--title-utf8", "other"}, files / "second");
  ASSERT_TRUE(WaitFor([this] {
    return Exists(files / "second") &&
           ReadText(files / "second").find("ready ") != std::string::npos;
  }));
  const std::string output = ReadText(files / "second");
  const Window second = std::stoul(output.substr(output.find("ready ") + 6), nullptr, 16);
  ASSERT_NE(XGetWMName(display(), second, &name), 0);
  EXPECT_EQ(name.encoding, XInternAtom(display(), "UTF8_STRING", False));
  XFree(name.value);
}

TEST_F(ProbeTest, ChildrenGetEventsByTheirOwnMasksAndTheRestGoesToTheirParent) {
  // child2 lies in child1; child3 selects nothing, so that its press propagates to the main window.
  Start({"--geometry", "200x100+0+0", "--child", "100x100+0+0", "--child", "50x50+10+10,0x4,1",
         "--child", "50x50+150+0,0"});
  EXPECT_NE(Output().find("window child3 "), std::string::npos);
  player.MoveTo(20, 20);
  player.Click(1);
  EXPECT_TRUE(
      Gets("ButtonPress window=child2 button=1 state=0 x=10 y=10 x_root=20 y_root=20 "
           "send_event=0"));
  player.MoveTo(80, 80);
  player.Click(1);
  EXPECT_TRUE(
      Gets("ButtonPress window=child1 button=1 state=0 x=80 y=80 x_root=80 y_root=80 "
           "send_event=0"));
  player.MoveTo(160, 10);
  player.Click(1);
  EXPECT_TRUE(
      Gets("ButtonPress window=main button=1 state=0 x=160 y=10 x_root=160 y_root=10 "
           "send_event=0"));
}

TEST_F(ProbeTest, TakesTheFocusWhenTold) {
  Start({"--focus"});
  Window focus = None;
  int revert;
  XGetInputFocus(display(), &focus, &revert);
  EXPECT_EQ(focus, window);
}

TEST_F(ProbeTest, StaysOutOfTheWindowManagersHandsWhenTold) {
  Start({"--override-redirect"});
  XWindowAttributes attributes{};
  ASSERT_NE(XGetWindowAttributes(display(), window, &attributes), 0);
  EXPECT_EQ(attributes.override_redirect, True);
}

TEST_F(ProbeTest, EndsWhenItIsAskedToClose) {
  Start({});
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display(), "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display(), "WM_DELETE_WINDOW", False));
  XSendEvent(display(), window, False, NoEventMask, &event);
  XSync(display(), False);
  EXPECT_EQ(probe->Wait(), 0);
}

TEST_F(ProbeTest, RefusesOptionsThatItDoesNotKnow) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--nonsense"}, {"--class", "one"}, {"--geometry", "12"}, {"--child", "10x10+0+0,1,2"}};
  for (std::vector<std::string> words : wrong) {
    words.insert(words.begin(), testing::Built("tests/probe"));
    Process refused(words, files / "usage");
    EXPECT_EQ(refused.Wait(), 2) << words[1];
  }
}

}  // namespace
}  // namespace gromlit::testing
