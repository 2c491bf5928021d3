// The program's private memory once every window has been on the screen, beside that of clocks and
// terminals of the same run. Opens the windows as a user does, with the hands of the tests of the
// whole program, so it is a test program, too; scripts/bench reads its lines "name value", in
// kilobytes.
#include "tests/e2e/front_end.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace gromlit {
namespace {

using testing::Process;
using testing::Title;
using testing::WaitFor;

void Put(const char* name, double value) {
  std::printf("%s %.10g\n", name, value);
}

double PrivateKilobytes(pid_t pid) {
  const std::string text = testing::ReadText("/proc/" + std::to_string(pid) + "/smaps_rollup");
  double sum = 0;
  for (const char* word : {"Private_Clean:", "Private_Dirty:"}) {
    const size_t at = text.find(word);
    if (at != std::string::npos) sum += std::strtod(text.c_str() + at + 14, nullptr);
  }
  return sum;
}

class WindowsMemory : public testing::FrontEnd {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    if (HasFatalFailure()) return;
    WriteOptions();
    WritePlugin("Default", {{"right", testing::kRight, {{kHotKey, "", 38}}}});
    LaunchInstalled();
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  // Opens a window and puts it where it leaves the main window free.
  void Open(const char* name, Title title, int row) {
    Choose(title, row);
    const Window window = WaitShown(name);
    XMoveWindow(player->display(), window, 600, 300);
    EXPECT_TRUE(WaitFor([&] { return OriginOf(window).x > 560; }));
  }
  void Rest() { std::this_thread::sleep_for(std::chrono::seconds(1)); }
  double Of(const std::vector<std::string>& command) {
    const size_t before = testing::ChildrenOf(player->display(), player->root()).size();
    Process process(command, "/dev/null");
    EXPECT_TRUE(WaitFor(
        [&] { return testing::ChildrenOf(player->display(), player->root()).size() > before; }));
    Rest();
    return PrivateKilobytes(process.pid());
  }
};

TEST_F(WindowsMemory, WithAllWindows) {
  Rest();
  Put("windows_started", PrivateKilobytes(gromlit->pid()));
  Open("SymbolEditor", Title::kSymbol, testing::kSymbolNew);
  Open("ActionEditor", Title::kAction, testing::kActionNew);
  Open("Preferences", Title::kOptions, testing::kPreferences);
  Choose(Title::kHelp, testing::kHelpAbout);
  ASSERT_NE(WaitDialog(), Window{0});
  DialogRight();
  Rest();
  Put("windows_opened", PrivateKilobytes(gromlit->pid()));
  Put("windows_xclock", Of({"xclock"}));
  Put("windows_xterm", Of({"xterm", "-e", "sleep", "60"}));
}

}  // namespace
}  // namespace gromlit
