// The log of strokes that the environment asks for, as the built program writes it.
#include "tests/e2e/gromlit_run.h"

#include <X11/extensions/XTest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/option_files.h"
#include "recognition/stroke_log.h"

namespace gromlit::testing {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  if (!text.empty() && text.back() == separator) parts.emplace_back();
  return parts;
}

class StrokeLogTest : public GromlitRun {
 protected:
  void SetUp() override {
    GromlitRun::SetUp();
    if (HasFatalFailure()) return;
    WriteOptions();
    WritePlugin("Default", {});
    WritePlugin("Probe.probe", {{"Mark", kRight, {Touch("mark")}}});
    path_ = *install / "strokes.log";
    setenv("GROMLIT_LOG", path_.c_str(), 1);
  }
  void TearDown() override {
    unsetenv("GROMLIT_LOG");
    unsetenv("GROMLIT_LOG_POINTS");
    GromlitRun::TearDown();
  }

  void Start() {
    StartGromlit();
    probe_ = std::make_unique<ProbeClient>(
        install->path(),
        std::vector<std::string>{"--class", "Probe", "probe", "--geometry", "600x400+300+200"});
    Go({400, 300});
  }

  // The lines behind the header, each in its columns.
  std::vector<std::vector<std::string>> Logged() const {
    std::vector<std::string> lines = Split(ReadText(path_), '\n');
    std::vector<std::vector<std::string>> logged;
    EXPECT_FALSE(lines.empty());
    if (lines.empty()) return logged;
    EXPECT_EQ(lines[0] + "\n", StrokeLogHeader());
    for (size_t i = 1; i < lines.size(); i++)
      if (!lines[i].empty()) logged.push_back(Split(lines[i], '\t'));
    for (const auto& columns : logged) EXPECT_EQ(columns.size(), static_cast<size_t>(kLogColumns));
    return logged;
  }

  std::string path_;
  std::unique_ptr<ProbeClient> probe_;
};

TEST_F(StrokeLogTest, EveryStrokeIsALineThatOnlyItsUserMayRead) {
  Start();
  Draw({{400, 300}, {600, 300}});
  ASSERT_TRUE(Appears("mark"));
  Draw({{400, 300}, {400, 500}});
  const auto logged = Logged();
  ASSERT_EQ(logged.size(), 2u);
  EXPECT_EQ(logged[0][1], "Probe.probe");
  EXPECT_EQ(logged[0][2], "aaaa");
  EXPECT_EQ(logged[0][3], "signature");
  EXPECT_EQ(logged[0][4], "Mark");
  EXPECT_EQ(logged[0][5], "");
  EXPECT_GE(std::stoll(logged[0][7]), 0);
  EXPECT_LT(std::stoll(logged[0][7]), 10'000'000);
  EXPECT_EQ(logged[0][kLogPoints], "");
  EXPECT_EQ(logged[1][2], "cccc");
  EXPECT_EQ(logged[1][4], kLogNone);
  struct stat status {};
  ASSERT_EQ(stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(StrokeLogTest, WithPointsTheStrokeCanBeDrawnAgain) {
  setenv("GROMLIT_LOG_POINTS", "1", 1);
  Start();
  Draw({{400, 300}, {600, 300}});
  const auto logged = Logged();
  ASSERT_EQ(logged.size(), 1u);
  const auto points = Split(logged[0][kLogPoints], ' ');
  ASSERT_GE(points.size(), 8u);
  EXPECT_EQ(points.size() % 2, 0u);
  EXPECT_EQ(points[0], "400");
  EXPECT_EQ(points[1], "300");
  EXPECT_EQ(points[points.size() - 2], "600");
  EXPECT_EQ(points.back(), "300");
}

// A hand whose mouse tells of a motion every millisecond, from a press that has been answered on.
// The server makes the way by its own clock, however busy the machine is.
class QuickHandTest : public StrokeLogTest {
 protected:
  void PressAndBegin() {
    setenv("GROMLIT_LOG_POINTS", "1", 1);
    Start();
    player->Press(3);
    way_ = "400 300";
    MoveOn(410, 0);
    EXPECT_TRUE(WaitFor([this] { return player->Where().x == 410; }));
  }
  void MoveOn(int x, unsigned long delay) {
    const int y = 300 + x % 3;
    XTestFakeMotionEvent(player->display(), -1, x, y, delay);
    XFlush(player->display());
    way_ += " " + std::to_string(x) + " " + std::to_string(y);
  }
  void Button(int button, bool down) {
    XTestFakeButtonEvent(player->display(), static_cast<unsigned>(button), down ? True : False, 0);
  }
  std::vector<std::string> Ways(size_t n) {
    WaitFor([&] { return Logged().size() >= n; });
    std::vector<std::string> ways;
    for (const auto& columns : Logged()) ways.push_back(columns[kLogPoints]);
    return ways;
  }

  std::string way_;  // as a log has it
};

TEST_F(QuickHandTest, EveryMotionUpToTheReleaseIsInTheStroke) {
  PressAndBegin();
  for (int x = 411; x <= 640; x++) MoveOn(x, 1);
  Button(3, false);
  XSync(player->display(), False);
  EXPECT_EQ(Ways(1), std::vector<std::string>{way_});
  EXPECT_TRUE(Appears("mark"));
}

TEST_F(QuickHandTest, AHandThatIsSlowAndQuickByTurnsLosesNothingEither) {
  PressAndBegin();
  for (int x = 411; x <= 640; x++) MoveOn(x, x % 40 == 0 ? 15 : x % 40 < 25 ? 1 : 0);
  Button(3, false);
  XSync(player->display(), False);
  EXPECT_EQ(Ways(1), std::vector<std::string>{way_});
}

TEST_F(QuickHandTest, AnotherButtonAmongTheMotionsEndsTheStroke) {
  PressAndBegin();
  for (int x = 411; x <= 500; x++) MoveOn(x, 1);
  Button(1, true);
  for (int x = 501; x <= 600; x++) MoveOn(x, 1);
  Button(1, false);
  Button(3, false);
  XSync(player->display(), False);
  EXPECT_TRUE(PointerBecomesFree());
  // The next one has nothing of it.
  Go({400, 300});
  Draw({{400, 300}, {600, 300}});
  ASSERT_TRUE(Appears("mark"));
  const auto ways = Ways(1);
  ASSERT_EQ(ways.size(), 1u);
  EXPECT_EQ(ways[0].find(way_.substr(0, 24)), std::string::npos);
  EXPECT_EQ(ways[0].substr(0, 8), "400 300 ");
}

TEST_F(StrokeLogTest, ALogIsContinued) {
  Start();
  Draw({{400, 300}, {600, 300}});
  gromlit.reset();
  // Until the server has seen its end, the one that was would be taken for the next.
  ASSERT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  StartGromlit();
  Go({400, 300});
  Draw({{400, 300}, {400, 500}});
  EXPECT_EQ(Logged().size(), 2u);
}

TEST_F(StrokeLogTest, AStrokeThatDefaultAnswersIsLoggedWithItsAction) {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.temp2 = kFallBack;
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  WritePlugin("Default", {{"Never", kRight, {Touch("never")}}, {"Down", kDown, {Touch("down")}}});
  Start();
  Draw({{400, 300}, {400, 500}});
  ASSERT_TRUE(Appears("down"));
  Draw({{400, 300}, {600, 300}});
  ASSERT_TRUE(Appears("mark"));
  const auto logged = Logged();
  ASSERT_EQ(logged.size(), 2u);
  EXPECT_EQ(logged[0][1], "Probe.probe");
  EXPECT_EQ(logged[0][4], "Down");
  EXPECT_EQ(logged[1][4], "Mark");
  EXPECT_NE(access(MarkFile("never").c_str(), F_OK), 0) << "the own plug-in's action ran alone";
}

TEST_F(StrokeLogTest, AClickIsNoLine) {
  Start();
  player->Press(3);
  player->Release(3);
  probe_->Wait(1, "ButtonRelease");
  EXPECT_EQ(Logged().size(), 0u);
}

TEST_F(StrokeLogTest, AFileThatHoldsSomethingElseIsLeftAlone) {
  std::ofstream(path_) << "precious\n";
  Start();
  Draw({{400, 300}, {600, 300}});
  ASSERT_TRUE(Appears("mark"));
  EXPECT_EQ(ReadText(path_), "precious\n");
  EXPECT_NE(GromlitOutput().find("the file holds something else"), std::string::npos)
      << GromlitOutput();
}

TEST_F(StrokeLogTest, OnlyARegularFileIsALog) {
  const std::string fifo = *install / "fifo";
  const std::string target = *install / "target";
  const std::string link = *install / "link";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  WriteText(target, "");
  ASSERT_EQ(chmod(target.c_str(), 0644), 0);
  ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
  for (const std::string& path : {fifo, link, std::string("/dev/full")}) {
    SCOPED_TRACE(path);
    setenv("GROMLIT_LOG", path.c_str(), 1);
    Start();
    Draw({{400, 300}, {600, 300}});
    ASSERT_TRUE(Appears("mark"));
    EXPECT_NE(GromlitOutput().find(path + ": no log of strokes: not a regular file"),
              std::string::npos)
        << GromlitOutput();
    std::filesystem::remove(MarkFile("mark"));
    probe_.reset();
    gromlit.reset();
    ASSERT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  }
  EXPECT_EQ(ReadText(target), "");
  struct stat status {};
  ASSERT_EQ(stat(target.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0644u) << "what a link leads to is left alone";
}

// A disk that was full in the middle of a line costs that line and no other.
TEST_F(StrokeLogTest, ALogWhoseLastLineWasCutIsContinuedOnALineOfItsOwn) {
  const std::string cut = StrokeLogHeader() + "2026-11-20T10:00:00.000Z\tProbe.pro";
  WriteText(path_, cut);
  Start();
  Draw({{400, 300}, {600, 300}});
  ASSERT_TRUE(Appears("mark"));
  const std::vector<std::string> lines = Split(ReadText(path_), '\n');
  ASSERT_EQ(lines.size(), 4u) << ReadText(path_);
  EXPECT_EQ(lines[0] + "\n" + lines[1], cut);
  EXPECT_EQ(Split(lines[2], '\t')[kLogAction], "Mark");
}

TEST_F(StrokeLogTest, ByShapeTheScoresOfTheTwoNearestAreInIt) {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  options.temp3 = kByShape;
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  WritePlugin("Probe.probe",
              {{"Ell", kEll, {Touch("ell")}}, {"Ma\trk\\", kRight, {Touch("mark")}}});
  Start();
  Draw({{400, 300}, {600, 300}});
  ASSERT_TRUE(Appears("mark"));
  const auto logged = Logged();
  ASSERT_EQ(logged.size(), 1u);
  EXPECT_EQ(logged[0][kLogWay], "shape");
  EXPECT_EQ(logged[0][kLogAction], "Ma\\x09rk\\x5c");
  EXPECT_GT(std::stod(logged[0][kLogScore]), 0.99);
  EXPECT_LE(std::stod(logged[0][kLogScore]), 1);
  EXPECT_GT(std::stod(logged[0][kLogRunnerUp]), 0.5);
  EXPECT_LT(std::stod(logged[0][kLogRunnerUp]), 0.95);
}

}  // namespace
}  // namespace gromlit::testing
