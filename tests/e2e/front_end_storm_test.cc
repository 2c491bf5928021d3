// A user who presses everything: random clicks, drags and keys over all windows of the built
// program. Nothing ends it but its own Exit, the pointer always comes back, no file is damaged.
#include "tests/e2e/random_user.h"

#include <map>

#include "core/option_files.h"
#include "tests/e2e/stored_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Point;
using testing::ProbeClient;
using testing::Sanitized;
using testing::Title;
using testing::WaitFor;

struct Desk {
  const char* manager;  // window manager; empty for none
  int32_t manners;      // of menus, fields and dialogs
};

void PrintTo(const Desk& desk, std::ostream* out) {
  *out << (*desk.manager != '\0' ? desk.manager : "no manager")
       << (desk.manners == kModernManners ? ", today's manners" : "");
}

class FrontEndStormTest : public testing::RandomUser, public ::testing::WithParamInterface<Desk> {
 protected:
  void SetUp() override {
    RandomUser::SetUp();
    const Desk desk = GetParam();
    if (*desk.manager != '\0') StartWindowManager(desk.manager, testing::kClickToRaise);
    if (desk.manners != kPlainManners) {
      GromlitUserOptions options{};
      DefaultUserOptions(&options);
      options.temp4 = desk.manners;
      ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    }
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--events", "0"});
    WriteLibrary();
    Open();
    ASSERT_FALSE(HasFatalFailure());
    // Out of the way of the main window's menus.
    PutAside("SymbolEditor", Title::kSymbol, testing::kSymbolNew, {600, 440});
    PutAside("Preferences", Title::kOptions, testing::kPreferences, {20, 480});
    PutAside("ActionEditor", Title::kAction, testing::kActionNew, {500, 300});
  }
  void PutAside(const char* name, Title title, int row, Point place) {
    Choose(title, row);
    const Window window = WaitShown(name);
    XMoveWindow(player->display(), window, place.x, place.y);
    EXPECT_TRUE(WaitFor([&] { return OriginOf(window).y > 200; }));
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/front-end-storm.png");
    }
    RandomUser::TearDown();
  }

  void TakeNote() {
    for (const char* name : {"SymbolEditor", "ActionEditor", "Preferences"})
      if (Shown(name) != 0) seen_[name]++;
    if (Dialog() != 0) seen_["a dialog"]++;
  }

  // Whether the program still runs or was told to exit; starts it again then.
  ::testing::AssertionResult GoesOn() {
    if (gromlit->Running()) return ::testing::AssertionSuccess();
    const int status = gromlit->Wait();
    if (status != 0) return ::testing::AssertionFailure() << "status " << status << "\n" << Err();
    Open();
    exits_++;
    return ::testing::AssertionSuccess();
  }

  int exits_ = 0;
  std::map<std::string, int> seen_;  // how often a window was there when it was looked for
  std::unique_ptr<ProbeClient> probe_;
};

TEST_P(FrontEndStormTest, RandomClicksAndKeysEndNothingAndDamageNoFile) {
  const char* wanted = std::getenv("GROMLIT_ROUNDS");
  const int rounds = wanted != nullptr ? std::atoi(wanted) : Sanitized() ? 10 : 20;
  for (int round = 0; round < rounds; round++) {
    SCOPED_TRACE("round " + std::to_string(round) + ", seed " + std::to_string(seed_));
    std::vector<Window> windows;
    for (int i = 0; i < 25; i++) {
      if (i % 5 == 0) windows = OwnWindows();
      if (i % 10 == 4) TakeNote();
      DoSomething(windows);
    }
    ASSERT_TRUE(LetsThePointerGo());
    ASSERT_TRUE(GoesOn());
    // A hidden main window is brought back by some stroke of the day; the storm does not wait.
    if (!Viewable(main_)) XMapWindow(player->display(), main_);
  }
  // What the program has yet to work off may open another menu, which wants another click.
  EXPECT_TRUE(WaitFor([this] {
    return LetsThePointerGo() &&
           !WaitFor([this] { return !player->CanGrabPointer(); }, std::chrono::seconds(1));
  })) << "the pointer does not stay free";
  // Whatever was stored can be read, whole.
  for (const char* part : {"symbols", "plugins", "options"})
    for (const std::string& name : NamesIn(*install / part))
      EXPECT_FALSE(testing::ShowFile(*install / part + "/" + name).is_null()) << name;
  int total = 0;
  for (const char* name : {"SymbolEditor", "ActionEditor", "Preferences", "a dialog"}) {
    std::printf("%s seen %d times\n", name, seen_[name]);
    total += seen_[name];
  }
  EXPECT_GE(total, 10) << "the storm did not get far";
  std::printf("%zu symbols, %zu plug-ins, %d exits\n", NamesIn(*install / "symbols").size(),
              NamesIn(*install / "plugins").size(), exits_);
}

constexpr Desk kDesks[] = {{"", kPlainManners},
                           {"openbox", kPlainManners},
                           {"", kModernManners},
                           {"openbox", kModernManners}};
INSTANTIATE_TEST_SUITE_P(Desks, FrontEndStormTest, ::testing::ValuesIn(kDesks));

}  // namespace
}  // namespace gromlit
