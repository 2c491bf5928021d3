// The label that names the action while a stroke is drawn, with the built program.
#include "tests/e2e/gromlit_run.h"

#include <X11/Xutil.h>

#include <algorithm>

#include "core/option_files.h"

namespace gromlit::testing {
namespace {

class StrokeLabelTest : public GromlitRun {
 protected:
  void Start(int32_t behaviour) {
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp2 = behaviour;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    WritePlugin("Default", {{"Back", kLeft, {Touch("back")}}});
    WritePlugin("Probe.probe",
                {{"Forward", kRight, {Touch("started"), {kRun, "system:wait"}, Touch("ended")}}});
    StartGromlit();
    // Above the main window.
    probe_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Probe", "probe", "--geometry", "600x400+300+200"});
    Go({400, 300});
  }
  // The label's window; 0 while there is none.
  Window Label() {
    for (const Window window : Overlays()) {
      XWindowAttributes at{};
      if (XGetWindowAttributes(player->display(), window, &at) != 0 && at.y < 20 &&
          at.height < 60 && at.width < 500) {
        return window;
      }
    }
    return 0;
  }
  // What the label looks like.
  std::vector<unsigned long> Look(Window label) {
    XWindowAttributes at{};
    std::vector<unsigned long> pixels;
    if (XGetWindowAttributes(player->display(), label, &at) == 0) return pixels;
    XImage* image =
        XGetImage(player->display(), player->root(), at.x, at.y, static_cast<unsigned>(at.width),
                  static_cast<unsigned>(at.height), AllPlanes, ZPixmap);
    if (image == nullptr) return pixels;
    for (int y = 0; y < at.height; y++)
      for (int x = 0; x < at.width; x++) pixels.push_back(XGetPixel(image, x, y));
    XDestroyImage(image);
    return pixels;
  }

  std::unique_ptr<ProbeClient> probe_;
};

TEST_F(StrokeLabelTest, NamesWhatTheStrokeWouldDoAndIsGoneAtTheRelease) {
  Start(kNameWhileDrawing | kFallBack);
  player->Press(3);
  Trace({{400, 300}, {402, 300}});
  EXPECT_EQ(Label(), 0u) << "too short for a stroke";
  Trace({{402, 300}, {600, 300}});
  Window label = 0;
  ASSERT_TRUE(WaitFor([&] { return (label = Label()) != 0; }));
  const auto forward = Look(label);
  // With a corner it is nothing that anybody knows.
  Trace({{600, 300}, {600, 500}});
  EXPECT_TRUE(WaitFor([&] { return Look(label) != forward; }));
  player->Release(3);
  EXPECT_TRUE(WaitFor([&] { return MappedOverlays().empty(); }));
  EXPECT_EQ(Label(), 0u);

  Go({400, 300});
  player->Press(3);
  Trace({{400, 300}, {600, 300}});
  ASSERT_TRUE(WaitFor([&] { return Label() != 0; }));
  EXPECT_TRUE(WaitFor([&] { return Look(Label()) == forward; }));
  player->Release(3);
  ASSERT_TRUE(Appears("started"));
  EXPECT_EQ(Label(), 0u) << "before the action";
  EXPECT_TRUE(Appears("ended"));
  EXPECT_TRUE(WaitFor([&] { return MappedOverlays().empty(); }));
  EXPECT_TRUE(probe_->Lines("Button").empty());
}

TEST_F(StrokeLabelTest, WithoutTheChoiceThereIsNone) {
  Start(0);
  player->Press(3);
  Trace({{400, 300}, {600, 300}});
  EXPECT_TRUE(WaitFor([&] { return !MappedOverlays().empty(); }));
  EXPECT_EQ(Label(), 0u);
  player->Release(3);
  ASSERT_TRUE(Appears("ended"));
  EXPECT_TRUE(WaitFor([&] { return MappedOverlays().empty(); }));
}

}  // namespace
}  // namespace gromlit::testing
