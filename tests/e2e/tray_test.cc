// The tray icon in a tray that people use, which is killed and started again.
#include "tests/e2e/front_end.h"

#include <csignal>

namespace gromlit {
namespace {

using testing::kRight;
using testing::Point;
using testing::ProbeClient;
using testing::Process;
using testing::WaitFor;

class TrayRun : public testing::FrontEnd {
 protected:
  enum Row { kShowOrHide, kPauseOrResume, kHandsOff };

  void SetUp() override {
    FrontEnd::SetUp();
    WriteOptions();
    WritePlugin("Default", {{"Stroke", kRight, {Touch("stroke")}}});
    WritePlugin("Probe.probe", {{"Own", kRight, {Touch("own")}}}, "Prober");
  }
  void TearDown() override {
    tray_.reset();
    FrontEnd::TearDown();
  }

  void StartTray() {
    tray_ = std::make_unique<Process>(
        std::vector<std::string>{"trayer", "--edge", "bottom", "--align", "right", "--widthtype",
                                 "request", "--heighttype", "pixel", "--height", "32"},
        *install / "tray.log");
  }
  // The icon, once it is in the tray.
  Window WaitIcon() {
    Window icon = 0;
    EXPECT_TRUE(WaitFor([&] {
      icon = testing::FindClient(player->display(), "Gromlit.Tray");
      return icon != 0 && testing::ParentOf(player->display(), icon) != player->root();
    })) << "no icon in the tray: "
        << testing::ReadText(*install / "tray.log");
    return icon;
  }
  // The tray's own layout may still move the icon.
  void ClickIcon(int button) {
    const Window icon = WaitIcon();
    EXPECT_TRUE(WaitFor([&] {
      if (!Over(icon, 5, 5)) return false;
      const Point at = OriginOf(icon);
      const auto pointer = player->Where();
      return pointer.x == at.x + 5 && pointer.y == at.y + 5;
    }));
    player->Click(button);
  }
  Window OpenMenu() {
    ClickIcon(3);
    Window menu = 0;
    EXPECT_TRUE(WaitFor([&] { return (menu = Menu()) != 0; })) << "no menu";
    return menu;
  }
  // Chooses a row that reads like this.
  void ChooseItem(Row row, const std::string& label) {
    const Window menu = OpenMenu();
    EXPECT_TRUE(WaitFor([&] { return Reads(menu, label); })) << label;
    GoToRow(menu, row);
    player->Click(1);
    EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); })) << "the menu stays open";
  }

  std::unique_ptr<Process> tray_;
};

TEST_F(TrayRun, KilledAndStartedAgainTheTrayHasTheIconAgain) {
  StartTray();
  StartGromlit();
  const Window main = MainWindow();
  ClickIcon(1);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(main); }));
  for (const int signal : {SIGKILL, SIGTERM}) {
    tray_->Kill(signal);
    tray_->Wait();
    EXPECT_TRUE(WaitFor([&] {
      return testing::FindClient(player->display(), "Gromlit.Tray", false) == 0;
    })) << "the icon is left on the screen";
    StartTray();
    ClickIcon(1);
    EXPECT_TRUE(WaitFor([&] { return Viewable(main); }));
    ClickIcon(1);
    EXPECT_TRUE(WaitFor([&] { return !Viewable(main); }));
  }
  EXPECT_TRUE(gromlit->Running());
}

TEST_F(TrayRun, ItsMenuPausesGesturesAndTurnsThemOffOverAnApplication) {
  ProbeClient probe(install->path(),
                    {"--class", "Probe", "probe", "--geometry", "400x300+600+100"});
  StartGromlit();
  StartTray();
  WaitIcon();
  const std::vector<Point> stroke = {{700, 200}, {900, 200}};
  Draw(stroke);
  EXPECT_TRUE(Appears("own"));

  ChooseItem(kPauseOrResume, "Pause gestures");
  Go({700, 200});
  player->Click(3);
  probe.Wait(1, "ButtonPress");
  ChooseItem(kPauseOrResume, "Resume gestures");

  Go({700, 200});
  ChooseItem(kHandsOff, "No gestures in Prober");
  Go({700, 200});
  player->Click(3);
  for (const std::string& line : probe.Wait(2, "ButtonPress")) {
    EXPECT_NE(line.find("send_event=0"), std::string::npos) << line;
  }
  ChooseItem(kHandsOff, "Gestures in Prober again");
  EXPECT_EQ(std::remove(MarkFile("own").c_str()), 0);
  Draw(stroke);
  EXPECT_TRUE(Appears("own"));
  EXPECT_EQ(probe.Lines("ButtonPress").size(), 2u);
}

}  // namespace
}  // namespace gromlit
