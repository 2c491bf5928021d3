// A plug-in for an application that has none, on the built program: picked with the pointer, or
// offered at the first stroke.
#include "tests/e2e/front_end.h"

#include "tests/e2e/stored_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::Exists;
using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::ShowFile;
using testing::Title;
using testing::WaitFor;

constexpr unsigned long kWhite = 0xffffff;

// The parameter is the window manager; empty for none.
class NewPluginTest : public testing::FrontEnd, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    if (*GetParam() != '\0') StartWindowManager(GetParam());
    WritePlugin("Default", {{"right", kRight, {Touch("default")}}});
    upper_ = Client({"--class", "Probe", "probe", "--geometry", "340x300+880+80", "--child",
                     "100x80+20+20", "--child", "100x80+200+180"});
    lower_ = Client({"--class", "Other", "other", "--geometry", "340x200+880+500"});
  }
  void TearDown() override {
    if (HasFailure()) Picture("failed");
    FrontEnd::TearDown();
  }
  void Picture(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      testing::SaveScreen(player->display(), std::string(directory) + "/new-" + name + ".png");
  }
  std::unique_ptr<ProbeClient> Client(std::vector<std::string> options) {
    return std::make_unique<ProbeClient>(install->path(), std::move(options));
  }
  void Open() {
    LaunchInstalled({.environment = {"RECORDER_FILE=" + *install / "recorded"}});
    ASSERT_NE(WaitShown("Application"), Window{0});
  }

  // A point of a window, on the screen.
  Point In(Window window, int x, int y) {
    const Point origin = OriginOf(window);
    return {origin.x + x, origin.y + y};
  }
  bool LabelAt(Point at) {
    return WaitFor([&] {
      const Window label = PickLabel();
      return label != 0 && OriginOf(label) == at;
    });
  }
  // How often the label was placed so far; it is drawn with its text each time.
  int Placed(Window label) {
    int times = 0;
    XSync(player->display(), False);
    XEvent event;
    while (XCheckTypedEvent(player->display(), ConfigureNotify, &event))
      times += event.xconfigure.window == label ? 1 : 0;
    return times;
  }
  // Where the click goes now; returns when the pick has ended.
  void Click() {
    player->Click(1);
    EXPECT_TRUE(WaitFor([this] { return PickLabel() == 0; })) << "the label stays";
    EXPECT_TRUE(PointerBecomesFree());
  }
  std::vector<std::string> Plugins() { return NamesIn(*install / "plugins"); }
  bool Stored(const std::vector<std::string>& names) {
    return WaitFor([&] { return Plugins() == names; });
  }

  std::unique_ptr<ProbeClient> upper_;
  std::unique_ptr<ProbeClient> lower_;
};

TEST_P(NewPluginTest, TheLabelIsPlacedOnceForTheWindowsOfAnApplicationAndGoesOnToAnother) {
  Open();
  StartPicking();
  const Window label = PickLabel();
  XSelectInput(player->display(), player->root(), SubstructureNotifyMask);
  Placed(label);

  const Point first = In(upper_->window(), 4, 4);
  Go(first);
  ASSERT_TRUE(LabelAt(first));
  const Box box = BoxOf(label);
  EXPECT_EQ(box.width, TextWidth("Probe.probe") + 8);
  EXPECT_EQ(box.height, TextHeight() + 4);
  // The name in black between the light and the dark edge.
  const auto pixel = [&](int x, int y) { return player->Pixel(first.x + x, first.y + y); };
  EXPECT_TRUE(WaitFor([&] { return pixel(0, 0) == kWhite; }));
  EXPECT_LT(pixel(box.width - 1, box.height - 1), 0xc0c0c0UL);
  EXPECT_TRUE(WaitFor([&] { return Look(label).find(std::string(3, '\0')) != std::string::npos; }));
  const std::string look = Look(label);
  Picture("label");

  for (const Point& at : {Point{60, 60}, {110, 120}, {250, 220}, {330, 290}, {150, 150}})
    Go(In(upper_->window(), at.x, at.y));
  const Point second = In(lower_->window(), 100, 100);
  Go(second);
  ASSERT_TRUE(LabelAt(second));
  EXPECT_EQ(Placed(label), 2) << "once for each application";
  EXPECT_EQ(BoxOf(label).width, TextWidth("Other.other") + 8);
  EXPECT_TRUE(WaitFor([&] { return Look(label) != look; }));
  // Back again it says the same as before, at the new place.
  Go(In(upper_->window(), 150, 150));
  ASSERT_TRUE(LabelAt(In(upper_->window(), 150, 150)));
  EXPECT_TRUE(WaitFor([&] { return Look(label) == look; })) << "not the same label";

  Click();
  EXPECT_TRUE(Stored({"Default.sla", "Probe.probe.sla"}));
  const nlohmann::json shown = ShowFile(PluginFile("Probe.probe"));
  EXPECT_EQ(shown["appname"], "Probe.probe");
  EXPECT_EQ(shown["classname"], "Probe.probe");
  EXPECT_TRUE(shown["actions"].empty());
  EXPECT_TRUE(upper_->Lines("Button").empty()) << "the click went to the application";
}

TEST_P(NewPluginTest, AReleaseWithoutMotionTakesTheWindowUnderThePointer) {
  Open();
  Choose(Title::kPlugIn, testing::kPlugInNew);
  const Window dialog = WaitDialog();
  const Box box = BoxOf(dialog);
  // Between the dialog and the main window there is one that shows when the dialog goes.
  const auto below = Client({"--class", "Below", "below", "--override-redirect", "--geometry",
                             std::to_string(box.width) + "x" + std::to_string(box.height) + "+" +
                                 std::to_string(box.x) + "+" + std::to_string(box.y)});
  Window order[] = {dialog, below->window()};
  XRestackWindows(player->display(), order, 2);
  DialogLeft();
  ASSERT_TRUE(WaitFor([this] { return PickLabel() != 0; }));
  Click();
  EXPECT_TRUE(Stored({"Below.below.sla", "Default.sla"}));
}

TEST_P(NewPluginTest, AReleaseOverTheBareRootMakesTheDesktops) {
  Open();
  StartPicking();
  Go({1200, 1000});
  ASSERT_TRUE(LabelAt({1200, 1000}));
  Click();
  ASSERT_TRUE(Stored({"Default.sla", "Desktop.sla"}));
  EXPECT_EQ(ShowFile(PluginFile("Desktop"))["classname"], "Desktop");
}

TEST_P(NewPluginTest, AReleaseWhereNothingIsFoundTakesWhatTheLabelSaysOrAnEmptyClass) {
  const auto nameless = Client({"--geometry", "200x100+700+600"});
  Open();
  StartPicking();
  ASSERT_TRUE(Over(nameless->window(), 50, 50));
  Click();
  ASSERT_TRUE(Stored({".sla", "Default.sla"}));
  EXPECT_EQ(ShowFile(PluginFile(""))["classname"], "");
  // It is a plug-in like any other.
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogLeft();
  ASSERT_TRUE(Stored({"Default.sla"}));

  StartPicking();
  const Point at = In(upper_->window(), 150, 150);
  Go(at);
  ASSERT_TRUE(LabelAt(at));
  ASSERT_TRUE(Over(nameless->window(), 50, 50));
  Click();
  EXPECT_TRUE(Stored({"Default.sla", "Probe.probe.sla"}));
}

TEST_P(NewPluginTest, AClassWithSlashesStaysInTheDirectoryOfPlugIns) {
  const auto evil =
      Client({"--class", "../../Evil", "x/y", "--geometry", "200x100+700+600", "--title", "Evil"});
  Open();
  StartPicking();
  ASSERT_TRUE(Over(evil->window(), 50, 50));
  Click();
  const std::string file = ".._.._Evil.x_y.sla";
  ASSERT_TRUE(Stored({file, "Default.sla"}));
  EXPECT_EQ(ShowFile(*install / "plugins/" + file)["classname"], "../../Evil.x/y");
  // Nowhere else, nor after a rename.
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  Replace(DialogField(), "Tamed");
  DialogLeft();
  EXPECT_TRUE(
      WaitFor([&] { return ShowFile(*install / "plugins/" + file)["appname"] == "Tamed"; }));
  EXPECT_TRUE(Stored({file, "Default.sla"}));
  EXPECT_FALSE(Exists(*install / "Evil.x"));
  EXPECT_FALSE(Exists(fs::path(install->path()).parent_path() / "Evil.x"));
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogLeft();
  EXPECT_TRUE(Stored({"Default.sla"}));
}

TEST_P(NewPluginTest, AnApplicationThatHasAPlugInKeepsItAndShowsIt) {
  WritePlugin("Other.other", {{"right", kRight, {Touch("other")}}}, "Mine");
  Open();
  const std::string before = ReadText(PluginFile("Other.other"));
  ASSERT_TRUE(PassOver(upper_->window(), [this] { return HasName(0); })) << "the default's";
  const std::string look = Look(PluginButton());
  StartPicking();
  ASSERT_TRUE(Over(lower_->window(), 50, 50));
  Click();
  EXPECT_TRUE(WaitFor([&] { return Look(PluginButton()) != look; }));
  EXPECT_EQ(ReadText(PluginFile("Other.other")), before);
  EXPECT_TRUE(Stored({"Default.sla", "Other.other.sla"}));
  Draw({In(lower_->window(), 40, 120), In(lower_->window(), 240, 120)});
  EXPECT_TRUE(Appears("other"));
}

TEST_P(NewPluginTest, TheOfferIsMadeOncePerClassAndRun) {
  Open();
  const auto draw_over = [&](const ProbeClient& client) {
    fs::remove(MarkFile("default"));
    Draw({In(client.window(), 40, 120), In(client.window(), 240, 120)});
  };
  const auto offered = [&](const ProbeClient& client) {
    draw_over(client);
    EXPECT_NE(WaitDialog(), Window{0});
    Picture("offer");
    DialogRight();
    EXPECT_FALSE(Exists(MarkFile("default"))) << "the stroke acts beside the offer";
  };
  const auto served = [&](const ProbeClient& client) {
    draw_over(client);
    EXPECT_TRUE(Appears("default"));
    EXPECT_EQ(Dialog(), Window{0}) << "offered again";
  };
  offered(*upper_);
  served(*upper_);
  offered(*lower_);
  served(*lower_);
  served(*upper_);
  StopGromlit();
  Open();
  offered(*upper_);
  EXPECT_TRUE(Stored({"Default.sla"}));
}

INSTANTIATE_TEST_SUITE_P(Alone, NewPluginTest, ::testing::Values(""));
INSTANTIATE_TEST_SUITE_P(Openbox, NewPluginTest, ::testing::Values("openbox"));
INSTANTIATE_TEST_SUITE_P(Twm, NewPluginTest, ::testing::Values("twm"));

}  // namespace
}  // namespace gromlit
