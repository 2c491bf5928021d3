#include <gmock/gmock.h>

#include "tests/x11/app/command_fixture.h"

#include "app/plugins/new_plugin.h"

#include <X11/keysym.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>

#include "actions/launch.h"
#include "app/main_window/find_new_plugin.h"
#include "app/plugins/class_picker.h"

namespace gromlit::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// --- The offer to download --------------------------------------------------------------------

class DownloadOffer : public CommandFixture {};

TEST_F(DownloadOffer, IsMadeAtTheStrokeWithTheClassAsItsTitle) {
  EXPECT_EQ(FindNewPlugin(app, "XTerm.xterm", 600, 400), 0);
  Pump();
  ASSERT_TRUE(Viewable(app->dlog->window));
  EXPECT_STREQ(app->dlog->title, "XTerm.xterm");
  EXPECT_STREQ(static_cast<char*>(app->dlog->arg), "XTerm.xterm");
  const XPoint middle = Middle(app->dlog->window);
  EXPECT_NEAR(middle.x, 600, 1);
  EXPECT_NEAR(middle.y, 400, 1);
  Shoot("dialog-offer");
}

TEST_F(DownloadOffer, AfterNoIsNotMadeAgainForTheSameApplication) {
  EXPECT_EQ(FindNewPlugin(app, "XTerm.xterm", 600, 400), 0);
  Pump();
  ClickOn(app->dlog->no->window);
  EXPECT_FALSE(Viewable(app->dlog->window));
  EXPECT_EQ(FindNewPlugin(app, "XTerm.xterm", 600, 400), 1) << "the default plug-in is asked";
  Pump();
  EXPECT_FALSE(Viewable(app->dlog->window));
  EXPECT_EQ(FindNewPlugin(app, "Other.other", 600, 400), 0) << "each class is asked about once";
  Pump();
  EXPECT_TRUE(Viewable(app->dlog->window));
}

TEST_F(DownloadOffer, ForAnotherClassTakesOverAnOpenDialog) {
  FindNewPlugin(app, "A.a", 600, 400);
  FindNewPlugin(app, "B.b", 600, 400);
  FindNewPlugin(app, "A.a", 600, 400);  // was asked about: changes nothing
  Pump();
  EXPECT_STREQ(app->dlog->title, "B.b");
  ClickOn(app->dlog->yes->window);
  EXPECT_TRUE(Opened(std::string(GromlitDownloadURLprefix) + "B.b"));
}

TEST_F(DownloadOffer, CopiesTheClass) {
  char name[] = "XTerm.xterm";
  FindNewPlugin(app, name, 600, 400);
  CopyText(name, "gone");
  EXPECT_STREQ(static_cast<char*>(app->dlog->arg), "XTerm.xterm");
  EXPECT_EQ(FindNewPlugin(app, "XTerm.xterm", 600, 400), 1);
}

TEST_F(DownloadOffer, YesOpensThePageOfTheClassAndClosesTheDialog) {
  FindNewPlugin(app, "XTerm.xterm", 600, 400);
  Pump();
  ClickOn(app->dlog->yes->window);
  EXPECT_FALSE(Viewable(app->dlog->window));
  EXPECT_TRUE(Opened(std::string(GromlitDownloadURLprefix) + "XTerm.xterm"));
}

TEST_F(DownloadOffer, EndsTheAddressAtItsLongestLength) {
  const std::string name(300, 'c');
  FindNewPlugin(app, name.c_str(), 600, 400);
  Pump();
  EXPECT_EQ(app->dlog->title, std::string(63, 'c'));
  Shoot("dialog-offer-long");
  ClickOn(app->dlog->yes->window);
  EXPECT_TRUE(Opened((GromlitDownloadURLprefix + name).substr(0, 179)));
}

TEST_F(DownloadOffer, WithoutADialogIsOnlyRemembered) {
  app->dlog = nullptr;
  EXPECT_EQ(FindNewPlugin(app, "XTerm.xterm", 600, 400), 0);
  EXPECT_EQ(FindNewPlugin(app, "XTerm.xterm", 600, 400), 1);
}

// --- A plug-in for the application that is clicked on -----------------------------------------

// The user while the program waits for the click, on a connection and a thread of his own.
class Picker {
 public:
  explicit Picker(const std::string& display) : player(display) {
    XSelectInput(player.display(), player.root(), SubstructureNotifyMask);
  }

  // The label's window once it is shown.
  Window Label() {
    Window found = None;
    WaitFor([&] {
      Window rootwin;
      Window parent;
      Window* list = nullptr;
      unsigned count = 0;
      XQueryTree(player.display(), player.root(), &rootwin, &parent, &list, &count);
      for (unsigned i = 0; i < count; i++) {
        XWindowAttributes one;
        if (XGetWindowAttributes(player.display(), list[i], &one) != 0 && one.override_redirect &&
            one.map_state == IsViewable && one.height == txtCharht + 4) {
          found = list[i];
        }
      }
      if (list != nullptr) XFree(list);
      return found != None;
    });
    return found;
  }

  // Waits until the label lies at (x, y).
  bool LabelAt(int x, int y) {
    const Window label = Label();
    return WaitFor([&] {
      is = {};
      XGetWindowAttributes(player.display(), label, &is);
      return is.x == x && is.y == y;
    });
  }

  // How often the label was moved or resized so far.
  int Moves(Window label) {
    int moves = 0;
    XSync(player.display(), False);
    XEvent event;
    while (XCheckTypedEvent(player.display(), ConfigureNotify, &event)) {
      moves += event.xconfigure.window == label ? 1 : 0;
    }
    return moves;
  }

  Player player;
  XWindowAttributes is{};  // of the label, as LabelAt saw it last
};

class NewPlugin : public CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    if (HasFatalFailure()) return;
    Choose(0, 0);
    ASSERT_TRUE(Viewable(app->newdlog->window));
  }

  void TearDown() override {
    EXPECT_EQ(Labels(), 0) << "a label was left";
    CommandFixture::TearDown();
  }

  // Windows that look like the label, shown or not.
  static int Labels() {
    Window rootwin;
    Window parent;
    Window* list = nullptr;
    unsigned count = 0;
    XQueryTree(dpy, root, &rootwin, &parent, &list, &count);
    int labels = 0;
    for (unsigned i = 0; i < count; i++) {
      XWindowAttributes is;
      if (XGetWindowAttributes(dpy, list[i], &is) == 0) continue;
      labels += is.height == txtCharht + 4 ? 1 : 0;
    }
    if (list != nullptr) XFree(list);
    return labels;
  }

  // The user says yes, and does `work` once the label is there; then clicks where he is unless
  // `work` ended the pick.
  void Pick(const std::function<void(Picker&)>& work, bool click = true) {
    PressOn(app->newdlog->yes->window);
    std::thread hand([&] {
      Picker picker(server->name());
      if (picker.Label() == None) ADD_FAILURE() << "no label";
      work(picker);
      if (click) picker.player.Click(1);
    });
    player->Release(1);
    Pump();  // until the pick has ended
    hand.join();
    Pump();
  }

  // The plug-in of a class as its file says, read by nobody before.
  std::string NameInFile(const std::string& file) {
    GromlitPlugin stored{};
    if (ReadPluginHeader(file.c_str(), &stored) == nullptr) return "no file";
    return stored.appname;
  }
};

TEST_F(NewPlugin, IsMadeForTheApplicationThatIsClickedOn) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([](Picker& picker) {
    picker.player.MoveTo(800, 400);
    EXPECT_TRUE(picker.LabelAt(800, 400));
  });
  EXPECT_FALSE(Viewable(app->newdlog->window));
  const GromlitPlugin* plugin = FindPlugin("XTerm.xterm");
  ASSERT_NE(plugin, nullptr);
  EXPECT_STREQ(plugin->appname, "XTerm.xterm");
  EXPECT_EQ(plugin->nactions, 0);
  EXPECT_EQ(NameInFile("XTerm.xterm.sla"), "XTerm.xterm");
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_STREQ(app->txt->label, "XTerm.xterm");
  EXPECT_THAT(Menu(), ElementsAre("XTerm.xterm", "Default"));
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(NewPlugin, WithoutAnyMotionIsMadeForTheWindowUnderTheRelease) {
  // The dialog hides it until yes is said.
  const XPoint at = Middle(app->newdlog->yes->window);
  const Window client = Client(at.x - 50, at.y - 50, 100, 100, "XTerm", "xterm");
  XLowerWindow(player->display(), client);
  XLowerWindow(dpy, app->window);
  XSync(player->display(), False);
  Pick([](Picker&) {});
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
}

TEST_F(NewPlugin, LabelMovesOnceForAllWindowsOfOneApplication) {
  const Window client = Client(700, 300, 200, 200, "XTerm", "xterm");
  Display* display = player->display();
  for (int i = 0; i < 2; i++) {
    XMapWindow(display, XCreateSimpleWindow(display, client, 10, 10 + 60 * i, 100, 40, 0, 0, 0));
  }
  Client(1000, 300, 100, 100, "Other", "other");
  Pick([](Picker& picker) {
    const Window label = picker.Label();
    picker.Moves(label);
    picker.player.MoveTo(703, 303);
    EXPECT_TRUE(picker.LabelAt(703, 303));
    for (int y = 310; y < 480; y += 10) picker.player.MoveTo(750, y);
    picker.player.MoveTo(1050, 350);
    EXPECT_TRUE(picker.LabelAt(1050, 350));
    EXPECT_EQ(picker.Moves(label), 2) << "one for each application";
  });
  EXPECT_NE(FindPlugin("Other.other"), nullptr);
}

TEST_F(NewPlugin, LabelNamesTheApplication) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([&](Picker& picker) {
    picker.player.MoveTo(800, 400);
    EXPECT_TRUE(picker.LabelAt(800, 400));
    const int width = TextWidth(txtFontinfo, "XTerm.xterm") + 8;
    EXPECT_EQ(picker.is.width, width);
    EXPECT_EQ(picker.is.height, txtCharht + 4);
    EXPECT_TRUE(picker.is.override_redirect);
    Player& user_ = picker.player;
    EXPECT_TRUE(WaitFor([&] { return user_.Pixel(800 + width - 1, 405) == kDarkGrey; }));
    EXPECT_EQ(user_.Pixel(800, 405), kWhite) << "raised";
    int ink = 0;
    int firstx = 800 + width;
    int firsty = 400 + txtCharht;
    for (int x = 802; x < 800 + width - 2; x++) {
      for (int y = 402; y < 400 + txtCharht + 2; y++) {
        if (user_.Pixel(x, y) != kBlack) continue;
        ink++;
        firstx = std::min(firstx, x);
        firsty = std::min(firsty, y);
      }
    }
    EXPECT_GT(ink, 50) << "text";
    int direction;
    int ascent;
    int descent;
    XCharStruct text;
    XTextExtents(txtFontinfo, "XTerm.xterm", 11, &direction, &ascent, &descent, &text);
    EXPECT_EQ(firstx, 800 + 3 + text.lbearing);
    EXPECT_EQ(firsty, 400 + ascent + 2 - text.ascent);
    const char* directory = std::getenv("PICTURES");
    if (directory != nullptr) {
      SaveScreen(user_.display(), std::string(directory) + "/label.png");
    }
  });
}

TEST_F(NewPlugin, LabelDoesNotHideTheApplicationBelowIt) {
  // Narrower than the label of its neighbour, which is shown first.
  Client(700, 300, 20, 200, "AnApplicationWithALongName", "left");
  Client(720, 300, 200, 200, "Right", "right");
  Pick([](Picker& picker) {
    picker.player.MoveTo(710, 400);
    EXPECT_TRUE(picker.LabelAt(710, 400));
    picker.player.MoveTo(740, 405);  // on the label, over the other application
    EXPECT_TRUE(picker.LabelAt(740, 405)) << "seen through the label";
  });
  EXPECT_NE(FindPlugin("Right.right"), nullptr);
  EXPECT_EQ(FindPlugin("AnApplicationWithALongName.left"), nullptr);
}

TEST_F(NewPlugin, ClickOnTheLabelIsAClickOnTheApplicationBelowIt) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([](Picker& picker) {
    picker.player.MoveTo(800, 400);
    EXPECT_TRUE(picker.LabelAt(800, 400));
    picker.player.MoveTo(805, 404);
  });
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
}

TEST_F(NewPlugin, FrameOfAWindowManagerIsSeenThrough) {
  const Window frame = Client(700, 300, 200, 200);
  Display* display = player->display();
  const Window inner = XCreateSimpleWindow(display, frame, 5, 25, 190, 170, 0, 0, 0xffffff);
  testing::SetClass(display, inner, "XTerm", "xterm");
  XMapWindow(display, inner);
  XSync(display, False);
  Pick([](Picker& picker) { picker.player.MoveTo(720, 310); });  // on the frame's title
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
}

TEST_F(NewPlugin, LabelStaysOnTheScreen) {
  Client(1180, 924, 100, 100, "XTerm", "xterm");
  Pick([](Picker& picker) {
    picker.player.MoveTo(1275, 1020);
    EXPECT_TRUE(
        picker.LabelAt(1280 - TextWidth(txtFontinfo, "XTerm.xterm") - 8, 1024 - txtCharht - 4));
  });
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
}

TEST_F(NewPlugin, BesideAllWindowsIsMadeForTheDesktop) {
  Pick([](Picker& picker) {
    picker.player.MoveTo(1200, 1000);
    EXPECT_TRUE(picker.LabelAt(1200, 1000));
  });
  EXPECT_NE(FindPlugin("Desktop"), nullptr);
}

TEST_F(NewPlugin, OverAWindowWithoutAClassIsMadeForWhatTheLabelSays) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Client(950, 300, 200, 200);
  Pick([](Picker& picker) {
    picker.player.MoveTo(800, 400);
    EXPECT_TRUE(picker.LabelAt(800, 400));
    picker.player.MoveTo(890, 400);
    picker.player.MoveTo(1000, 400);
  });
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
  EXPECT_EQ(FindPlugin(""), nullptr);
}

TEST_F(NewPlugin, OverAWindowWithoutAClassAtOnceHasAnEmptyClass) {
  const XPoint at = Middle(app->newdlog->yes->window);
  const Window client = Client(at.x - 50, at.y - 50, 100, 100);
  XLowerWindow(player->display(), client);
  XLowerWindow(dpy, app->window);
  XSync(player->display(), False);
  Pick([](Picker&) {});
  const GromlitPlugin* plugin = FindPlugin("");
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_TRUE(Exists(*install / "plugins/.sla"));
}

TEST_F(NewPlugin, OfALongClassIsCutToItsField) {
  const std::string name(80, 'n');
  Client(700, 300, 200, 200, "Class", name);
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  const std::string stored = ("Class." + name).substr(0, 63);
  const GromlitPlugin* plugin = FindPlugin(stored.c_str());
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(plugin->classname, stored);
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_EQ(NameInFile(stored + ".sla"), stored);
}

TEST_F(NewPlugin, OfAClassWithASlashStaysInItsDirectory) {
  Client(700, 300, 200, 200, "../Evil", "x/y");
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  EXPECT_NE(FindPlugin("../Evil.x/y"), nullptr);
  EXPECT_TRUE(Exists(*install / "plugins/.._Evil.x_y.sla"));
}

TEST_F(NewPlugin, ForAnApplicationThatHasOneShowsIt) {
  GromlitPlugin* plugin = Plugin("Terminal", "XTerm.xterm", 3);
  const std::vector<std::byte> before = ReadBytes(FileOf(plugin));
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  EXPECT_EQ(app->plugin, plugin);
  EXPECT_STREQ(plugin->appname, "Terminal");
  EXPECT_EQ(ReadBytes(FileOf(plugin)), before);
  EXPECT_THAT(Menu(), ElementsAre("Terminal", "Default"));
}

TEST_F(NewPlugin, AnyButtonPicks) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick(
      [](Picker& picker) {
        picker.player.MoveTo(800, 400);
        picker.player.Click(3);
      },
      false);
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
}

TEST_F(NewPlugin, NotchesOfTheWheelPickNothing) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([](Picker& picker) {
    picker.player.MoveTo(1100, 900);
    EXPECT_TRUE(picker.LabelAt(1100, 900));
    for (const int button : {4, 5, 6, 7}) picker.player.Click(button);
    // Still at it, and clicked at last.
    picker.player.MoveTo(800, 400);
    EXPECT_TRUE(picker.LabelAt(800, 400));
  });
  EXPECT_EQ(FindPlugin("Desktop"), nullptr);
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
}

TEST_F(NewPlugin, EscapeGivesUp) {
  const Window client = Client(700, 300, 200, 200, "XTerm", "xterm");
  XSetInputFocus(dpy, client, RevertToPointerRoot, CurrentTime);
  XSelectInput(player->display(), client, KeyPressMask);
  XSync(player->display(), False);
  XSync(dpy, False);
  Pick(
      [](Picker& picker) {
        picker.player.MoveTo(800, 400);
        EXPECT_TRUE(picker.LabelAt(800, 400));
        picker.player.Type(XK_a);  // any other key is nobody's
        picker.player.Type(XK_Escape);
      },
      false);
  EXPECT_THAT(Menu(), ElementsAre("Default"));
  EXPECT_TRUE(player->CanGrabPointer());
  EXPECT_EQ(XGrabKeyboard(player->display(), player->root(), False, GrabModeAsync, GrabModeAsync,
                          CurrentTime),
            GrabSuccess);
  XUngrabKeyboard(player->display(), CurrentTime);
  XSync(player->display(), False);
  XEvent event;
  EXPECT_FALSE(XCheckWindowEvent(player->display(), client, KeyPressMask, &event));
}

TEST_F(NewPlugin, GoesOnWithoutAKeyboardThatCannotBeHad) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Display* other = player->display();
  ASSERT_EQ(XGrabKeyboard(other, player->root(), False, GrabModeAsync, GrabModeAsync, CurrentTime),
            GrabSuccess);
  Pick([](Picker& picker) {
    picker.player.MoveTo(800, 400);
    EXPECT_TRUE(picker.LabelAt(800, 400));
    picker.player.Type(XK_Escape);
  });
  EXPECT_NE(FindPlugin("XTerm.xterm"), nullptr);
  XUngrabKeyboard(other, CurrentTime);
  XSync(other, False);
}

TEST_F(NewPlugin, ClickDoesNotReachTheApplication) {
  const Window client = Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  XSync(player->display(), False);
  XEvent event;
  EXPECT_FALSE(XCheckWindowEvent(player->display(), client, ButtonPressMask, &event));
}

TEST_F(NewPlugin, NothingIsMadeWhenThePointerCannotBeHad) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Display* other = player->display();
  ASSERT_EQ(XGrabPointer(other, player->root(), False, ButtonPressMask, GrabModeAsync,
                         GrabModeAsync, None, None, CurrentTime),
            GrabSuccess);
  player->MoveTo(800, 400);
  YesNewPlugin(app->newdlog);
  Pump();
  EXPECT_FALSE(Viewable(app->newdlog->window));
  EXPECT_THAT(Menu(), ElementsAre("Default"));
  XUngrabPointer(other, CurrentTime);
  XSync(other, False);
}

TEST_F(NewPlugin, ThatCannotBeSavedIsToldToTheUser) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  const std::string directory = *install / "plugins";
  ASSERT_EQ(std::rename(directory.c_str(), (directory + ".away").c_str()), 0);
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  EXPECT_THAT(ShownFailure(), HasSubstr("The new plug-in could not be saved./No such file"));
  EXPECT_THAT(Menu(), Contains("XTerm.xterm")) << "there until the program ends";
  ASSERT_EQ(std::rename((directory + ".away").c_str(), directory.c_str()), 0);
}

// --- While picking ----------------------------------------------------------------------------

// A window of the program that counts how often it is drawn, and can give the pointer back then.
struct Painted {
  WindowObj* wobj;
  Window window;
  std::atomic<int> drawn{0};
  bool ungrab = false;
};

void DrawPainted(Painted* painted, XEvent*) {
  painted->drawn++;
  if (painted->ungrab) XUngrabPointer(dpy, CurrentTime);
}

class WhilePicking : public NewPlugin {
 protected:
  void SetUp() override {
    NewPlugin::SetUp();
    if (HasFatalFailure()) return;
    XSetWindowAttributes more{};
    more.override_redirect = True;
    painted.window = MakeChildWindow(root, 900, 100, 100, 100, white.pixel, ExposureMask,
                                     CWOverrideRedirect, more);
    painted.wobj = AllocWindowObj(painted.window, &painted);
    On<Expose, DrawPainted>(&painted);
    XMapWindow(dpy, painted.window);
    Pump();
    painted.drawn = 0;
    cover = Client(880, 80, 200, 200);
  }
  void TearDown() override {
    painted.wobj->window = 1;  // no window: the record goes
    NewPlugin::TearDown();
  }

  Painted painted{};
  Window cover = None;
};

TEST_F(WhilePicking, WindowsOfTheProgramAreDrawn) {
  Pick([&](Picker& picker) {
    XUnmapWindow(picker.player.display(), cover);
    XSync(picker.player.display(), False);
    EXPECT_TRUE(WaitFor([&] { return painted.drawn > 0; }));
    picker.player.MoveTo(1200, 1000);
  });
  EXPECT_NE(FindPlugin("Desktop"), nullptr);
}

TEST_F(WhilePicking, LosingThePointerEndsThePick) {
  painted.ungrab = true;
  Pick(
      [&](Picker& picker) {
        XUnmapWindow(picker.player.display(), cover);
        XSync(picker.player.display(), False);
        EXPECT_TRUE(WaitFor([&] { return painted.drawn > 0; }));
        EXPECT_TRUE(WaitFor([&] { return picker.player.CanGrabPointer(); }));
        picker.player.MoveTo(1200, 1000);
      },
      false);
  EXPECT_THAT(Menu(), ElementsAre("Default"));
}

TEST_F(WhilePicking, LabelIsDrawnAgainWhenItWasCovered) {
  Pick([&](Picker& picker) {
    Player& hand = picker.player;
    const int width = TextWidth(txtFontinfo, "Desktop") + 8;
    hand.MoveTo(1100, 900);
    EXPECT_TRUE(picker.LabelAt(1100, 900));
    const auto drawn = [&] { return hand.Pixel(1100 + width - 1, 905) == kDarkGrey; };
    EXPECT_TRUE(WaitFor(drawn));
    XMoveWindow(hand.display(), cover, 1090, 890);
    XRaiseWindow(hand.display(), cover);
    XSync(hand.display(), False);
    EXPECT_FALSE(drawn());
    XUnmapWindow(hand.display(), cover);
    XSync(hand.display(), False);
    EXPECT_TRUE(WaitFor(drawn));
  });
}

TEST_F(WhilePicking, PressOfTheDrawingButtonAfterLosingThePointerEndsThePick) {
  // Its passive grab freezes the pointer until the stroke's handler runs, which the pick holds up.
  XGrabButton(dpy, 3, 0, root, False, ButtonReleaseMask | Button3MotionMask, GrabModeSync,
              GrabModeAsync, None, None);
  painted.ungrab = true;
  Pick(
      [&](Picker& picker) {
        XUnmapWindow(picker.player.display(), cover);
        XSync(picker.player.display(), False);
        EXPECT_TRUE(WaitFor([&] { return picker.player.CanGrabPointer(); }));
        picker.player.Press(3);
      },
      false);
  player->Release(3);
  Pump();
  EXPECT_TRUE(player->CanGrabPointer()) << "frozen for nobody";
  XUngrabButton(dpy, 3, 0, root);
  EXPECT_THAT(Menu(), ElementsAre("Default"));
}

// Windows of strangers that the root window reported.
struct Strangers {
  WindowObj* wobj;
  int labels;
};
Strangers strangers;

void CountStranger(Strangers* all, XEvent* event) {
  const XCreateWindowEvent& made = event->xcreatewindow;
  if (made.height == txtCharht + 4 && !IsOwnWindow(made.window)) all->labels++;
}

TEST_F(NewPlugin, LabelIsNotTakenForAnApplicationsWindow) {
  strangers = {AllocWindowObj(root, &strangers), 0};
  On<CreateNotify, CountStranger>(&strangers);
  XSelectInput(dpy, root, SubstructureNotifyMask);
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  EXPECT_EQ(strangers.labels, 0) << "events about it are read when it is gone";
  XDestroyWindow(player->display(), Client(700, 300, 20, txtCharht + 4));
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(strangers.labels, 1) << "others are seen";
  XSelectInput(dpy, root, NoEventMask);
  strangers.wobj->window = 1;
}

TEST_F(NewPlugin, HundredPicksTakeNoFurtherTableEntries) {
  Client(700, 300, 200, 200, "XTerm", "xterm");
  Pick([](Picker& picker) { picker.player.MoveTo(800, 400); });
  const int before = nWindowObjects;
  std::atomic<bool> done{false};
  std::thread hand([&] {
    Player clicker(server->name());
    while (!done) clicker.Click(1);
  });
  for (int i = 0; i < 100; i++) YesNewPlugin(app->newdlog);
  done = true;
  hand.join();
  Pump();
  EXPECT_EQ(nWindowObjects, before);
}

}  // namespace
}  // namespace gromlit::testing
