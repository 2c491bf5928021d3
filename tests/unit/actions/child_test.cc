#include "actions/child.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/captured.h"
#include "tests/support/process.h"
#include "tests/support/recording.h"
#include "tests/support/temp_install.h"

namespace gromlit {
namespace {

using testing::Captured;
using testing::Recording;
using testing::RecordOf;
using testing::WaitFor;

constexpr const char* kPrefix = "Error in System Command";

int ExitStatus(pid_t child) {
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  return WEXITSTATUS(status);
}

// The disposition of SIGCHLD and the signal mask as they were, whatever the test did to them.
class ChildTest : public ::testing::Test {
 protected:
  void SetUp() override {
    sigaction(SIGCHLD, nullptr, &chld_);
    sigprocmask(SIG_SETMASK, nullptr, &mask_);
  }
  void TearDown() override {
    sigaction(SIGCHLD, &chld_, nullptr);
    sigprocmask(SIG_SETMASK, &mask_, nullptr);
  }

 private:
  struct sigaction chld_ {};
  sigset_t mask_{};
};

// --- Expanding a command ------------------------------------------------------------------------

TEST(ExpandCommand, FirstPlaceholderIsReplaced) {
  EXPECT_EQ(ExpandCommand("play %s", "a.wav"), "play a.wav");
  EXPECT_EQ(ExpandCommand("%s", "a.wav"), "a.wav");
  EXPECT_EQ(ExpandCommand("play -v2 %s -q", "a.wav"), "play -v2 a.wav -q");
  EXPECT_EQ(ExpandCommand("a%sb", ""), "ab");
}

TEST(ExpandCommand, SecondPlaceholderGivesNothing) {
  EXPECT_EQ(ExpandCommand("x %s %s %s.", "u"), "x u  .");
}

TEST(ExpandCommand, WithoutPlaceholderTheArgumentIsDropped) {
  EXPECT_EQ(ExpandCommand("netscape", "http://u"), "netscape");
  EXPECT_EQ(ExpandCommand("", "http://u"), "");
}

TEST(ExpandCommand, DoubledPercentSignIsOne) {
  EXPECT_EQ(ExpandCommand("a%%b %s", "u"), "a%b u");
  EXPECT_EQ(ExpandCommand("%%s %s", "u"), "%s u");
  EXPECT_EQ(ExpandCommand("%%%s%%", "u"), "%u%");
}

TEST(ExpandCommand, OtherConversionsAreLiteral) {
  EXPECT_EQ(ExpandCommand("%n %d %x %10s %-s %", "u"), "%n %d %x %10s %-s %");
}

TEST(ExpandCommand, PlaceholderInTheArgumentIsLiteral) {
  EXPECT_EQ(ExpandCommand("x %s %s", "%s%%"), "x %s%% ");
}

TEST(ExpandCommand, LengthIsUnbounded) {
  const std::string argument(100'000, 'u');
  EXPECT_EQ(ExpandCommand("x %s", argument), "x " + argument);
}

// --- Starting a program -------------------------------------------------------------------------

TEST_F(ChildTest, ProgramGetsTheWordsOfTheLine) {
  const Recording record;
  const pid_t child = StartCommandLine("  recorder -a\tb  \"c d\" \n e'f ", kPrefix);
  EXPECT_EQ(ExitStatus(child), 0);
  EXPECT_EQ(record.Lines(),
            std::vector<std::string>{RecordOf({"recorder", "-a", "b", "\"c", "d\"", "e'f"})});
}

TEST_F(ChildTest, ReturnedIdIsTheProgramsOwn) {
  const Recording record(true);
  const pid_t child = StartCommandLine("recorder", kPrefix);
  EXPECT_EQ(ExitStatus(child), 0);
  EXPECT_NE(record.Wait(1)[0].find("\"pid\":" + std::to_string(child) + ","), std::string::npos);
}

TEST_F(ChildTest, WordsOfAnyLengthAndNumber) {
  const Recording record;
  std::vector<std::string> words{"recorder", std::string(5000, 'w')};
  for (int i = 0; i < 1000; i++) words.push_back("w" + std::to_string(i));
  std::string line;
  for (const std::string& word : words) line += word + " ";
  EXPECT_EQ(ExitStatus(StartCommandLine(line.c_str(), kPrefix)), 0);
  EXPECT_EQ(record.Lines(), std::vector<std::string>{RecordOf(words)});
}

TEST_F(ChildTest, ProgramThatIsMissingIsReportedByTheChild) {
  const Captured error(STDERR_FILENO);
  const pid_t child = StartCommandLine("/nonexistent/program a b", kPrefix);
  ASSERT_GT(child, 0);
  EXPECT_EQ(ExitStatus(child), 255);
  EXPECT_EQ(error.Text(), "Error in System Command: No such file or directory\n");
}

TEST_F(ChildTest, FileThatIsNoProgramIsReportedByTheChild) {
  const testing::TempInstall directory;
  testing::WriteText(directory / "file", "text");
  const Captured error(STDERR_FILENO);
  EXPECT_EQ(ExitStatus(StartCommandLine((directory / "file").c_str(), "Prefix")), 255);
  EXPECT_EQ(error.Text(), "Prefix: Permission denied\n");
}

TEST_F(ChildTest, LineTooLongForTheSystemIsReportedByTheChild) {
  const Captured error(STDERR_FILENO);
  const std::string line = "true " + std::string(4'000'000, 'x');
  EXPECT_EQ(ExitStatus(StartCommandLine(line.c_str(), kPrefix)), 255);
  EXPECT_EQ(error.Text(), "Error in System Command: Argument list too long\n");
}

TEST_F(ChildTest, FailedExecLeavesTheParentsBuffersAlone) {
  // Text waiting in a buffer of the parent must not be written a second time by the child's end.
  const testing::TempInstall directory;
  const Captured error(STDERR_FILENO);
  FILE* file = std::fopen((directory / "buffered").c_str(), "w");
  ASSERT_NE(file, nullptr);
  std::fputs("once", file);
  EXPECT_EQ(ExitStatus(StartCommandLine("/nonexistent/program", kPrefix)), 255);
  std::fclose(file);
  EXPECT_EQ(testing::ReadText(directory / "buffered"), "once");
}

TEST_F(ChildTest, EmptyAndBlankLinesStartNothingAndSaySo) {
  for (const char* line : {"", " ", " \t\n "}) {
    const Captured error(STDERR_FILENO);
    EXPECT_EQ(StartCommandLine(line, kPrefix), -1);
    EXPECT_EQ(error.Text(), "Error in System Command: No such file or directory\n");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
  }
}

TEST_F(ChildTest, ForkThatFailsLosesTheCommand) {
  // In a process of its own, which gives up the right to exceed the limit.
  const pid_t tester = fork();
  if (tester == 0) {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_NPROC, &none) != 0) _exit(10);
    if (geteuid() == 0 && setuid(65534) != 0) _exit(11);
    _exit(StartCommandLine("true", kPrefix) == -1 ? 0 : 12);
  }
  EXPECT_EQ(ExitStatus(tester), 0);
}

TEST_F(ChildTest, ChildStartsWithDefaultDispositionsAndEmptyMask) {
  struct sigaction former[3]{};
  const int ignored[] = {SIGPIPE, SIGXFSZ, SIGUSR1};
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  for (size_t i = 0; i < 3; i++) sigaction(ignored[i], &ignore, &former[i]);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigaddset(&blocked, SIGALRM);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);

  const Recording record(true);
  EXPECT_EQ(ExitStatus(StartCommandLine("recorder", kPrefix)), 0);
  const std::string line = record.Wait(1)[0];
  EXPECT_NE(line.find("\"ignored\":[],\"blocked\":[],"), std::string::npos) << line;

  // The program itself keeps its own.
  sigset_t mask;
  sigprocmask(SIG_SETMASK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGTERM), 1);
  EXPECT_EQ(sigismember(&mask, SIGALRM), 1);
  EXPECT_EQ(sigismember(&mask, SIGINT), 0);
  for (size_t i = 0; i < 3; i++) {
    struct sigaction now {};
    sigaction(ignored[i], &former[i], &now);
    EXPECT_EQ(now.sa_handler, SIG_IGN);
  }
}

TEST_F(ChildTest, ChildKeepsTheWorkingDirectory) {
  const Recording record(true);
  EXPECT_EQ(ExitStatus(StartCommandLine("recorder", kPrefix)), 0);
  const std::string here = std::filesystem::current_path();
  EXPECT_NE(record.Wait(1)[0].find("\"cwd\":\"" + here + "\""), std::string::npos);
}

// --- Finished children --------------------------------------------------------------------------

TEST_F(ChildTest, FinishedChildrenLeaveNoZombies) {
  ReapChildrenSilently();
  const Recording record(true);
  constexpr size_t kChildren = 20;
  std::vector<pid_t> children;
  for (size_t i = 0; i < kChildren; i++) children.push_back(StartCommandLine("recorder", kPrefix));
  record.Wait(kChildren);
  // A zombie would still be there for kill; a child that the system has reaped is not.
  for (const pid_t child : children) {
    ASSERT_GT(child, 0);
    EXPECT_TRUE(WaitFor([child] { return kill(child, 0) != 0; })) << "child " << child << " stays";
  }
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(ChildTest, FinishedChildDoesNotInterruptAWait) {
  ReapChildrenSilently();
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const pid_t child = StartCommandLine("true", kPrefix);
  ASSERT_GT(child, 0);
  pollfd nothing{ends[0], POLLIN, 0};
  EXPECT_EQ(poll(&nothing, 1, 500), 0) << "woken by the child's end";
  EXPECT_EQ(kill(child, 0), -1) << "the child did not end within the wait";
  close(ends[0]);
  close(ends[1]);
}

TEST_F(ChildTest, ChildrenOfChildrenAreReapedAsUsual) {
  // The setting must not reach the started program: a shell waits for its own children.
  ReapChildrenSilently();
  const testing::TempInstall directory;
  testing::WriteText(directory / "script", "sh -c 'exit 7'\necho $? > " + (directory / "status"));
  const pid_t child = StartCommandLine(("sh " + (directory / "script")).c_str(), kPrefix);
  ASSERT_GT(child, 0);
  EXPECT_TRUE(WaitFor([child] { return kill(child, 0) != 0; }));
  EXPECT_EQ(testing::ReadText(directory / "status"), "7\n");
}

}  // namespace
}  // namespace gromlit
