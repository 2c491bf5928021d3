#include "tests/support/process.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include "tests/support/captured.h"
#include "tests/support/files.h"

namespace gromlit::testing {
namespace {

TEST(ProcessTest, StreamsEnvironmentAndDirectoryAreWhatTheStartSays) {
  const TempDir files;
  WriteText(files / "in", "typed");
  setenv("PROCESS_TEST", "here", 1);
  Process shell({.argv = {"sh", "-c",
                          "cat; echo \"${PROCESS_TEST-gone} $NEW $(pwd)\"; echo wrong >&2; exit 3"},
                 .input = files / "in",
                 .output = files / "out",
                 .error = files / "err",
                 .environment = {"PROCESS_TEST", "NEW=new"},
                 .directory = files.path()});
  EXPECT_EQ(shell.Wait(), 3);
  EXPECT_FALSE(shell.Running());
  EXPECT_EQ(ReadText(files / "out"), "typedgone new " + files.path() + "\n");
  EXPECT_EQ(ReadText(files / "err"), "wrong\n");
  unsetenv("PROCESS_TEST");
}

TEST(ProcessTest, StatusTellsSignalsMissingProgramsAndTheDeadline) {
  Process sleeper({"sleep", "1000"});
  EXPECT_EQ(sleeper.Wait(std::chrono::milliseconds(20)), -1);
  EXPECT_TRUE(sleeper.Running());
  sleeper.Kill(SIGTERM);
  EXPECT_EQ(sleeper.Wait(), 128 + SIGTERM);
  EXPECT_EQ(Process({"/no/such/program"}).Wait(), 127);
  EXPECT_EQ(Process({"true"}, "/no/such/directory/out").Wait(), 126);
}

TEST(ProcessTest, EndsWithItsObjectAndWithTheTest) {
  pid_t pid = 0;
  {
    const Process sleeper({"sleep", "1000"});
    pid = sleeper.pid();
    EXPECT_EQ(kill(pid, 0), 0);
  }
  EXPECT_NE(kill(pid, 0), 0);

  // A test that is killed, with a process of its own.
  const TempDir files;
  const pid_t test = fork();
  if (test == 0) {
    const Process sleeper({"sleep", "1000"});
    WriteText(files / "pid", std::to_string(sleeper.pid()) + "\n");
    for (;;) pause();
  }
  const auto started = [&] { return ReadText(files / "pid").ends_with("\n"); };
  ASSERT_TRUE(WaitFor(started));
  pid = std::stoi(ReadText(files / "pid"));
  EXPECT_EQ(kill(pid, 0), 0);
  kill(test, SIGKILL);
  const auto state = [&] {
    const std::string stat = ReadText("/proc/" + std::to_string(pid) + "/stat");
    const size_t name = stat.rfind(") ");
    return name == std::string::npos ? 'X' : stat[name + 2];
  };
  EXPECT_TRUE(WaitFor([&] { return state() == 'X' || state() == 'Z'; }));
}

TEST(WaitForTest, LooksAtLeastOnceAndUntilTheDeadline) {
  EXPECT_TRUE(WaitFor([] { return true; }, std::chrono::milliseconds(0)));
  int looks = 0;
  EXPECT_FALSE(WaitFor([&] { return ++looks < 0; }, std::chrono::milliseconds(30)));
  EXPECT_GT(looks, 1);
  looks = 0;
  EXPECT_TRUE(WaitFor([&] { return ++looks == 3; }));
}

TEST(CapturedTest, HoldsWhatThisProcessAndItsChildrenWrite) {
  std::string text;
  {
    const Captured error(STDERR_FILENO);
    std::fputs("one ", stderr);
    EXPECT_EQ(Process({"sh", "-c", "echo two >&2"}).Wait(), 0);
    text = error.Text();
  }
  EXPECT_EQ(text, "one two\n");
  CaptureStdout();
  std::fputs("three", stdout);
  EXPECT_THROW(CaptureStdout(), std::logic_error);
  EXPECT_EQ(GetCapturedStdout(), "three");
  EXPECT_THROW(GetCapturedStdout(), std::logic_error);
}

}  // namespace
}  // namespace gromlit::testing
