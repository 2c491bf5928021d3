// INV-SAVE-1 under attack: a save that is killed, lied to or interrupted at any of its system
// calls, and a power failure at any time, leave the whole old or the whole new contents; a save
// that fails says so and changes nothing.
//
// Each save runs in a child that is stopped before and after each of its system calls, once for
// every stop and fault.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "core/files.h"
#include "tests/support/built.h"
#include "tests/support/captured.h"
#include "tests/support/disk_model.h"
#include "tests/support/syscalls.h"
#include "tests/unit/core/save_kinds.h"

namespace gromlit {
namespace {

using namespace gromlit::testing;

bool IsTemporary(const std::string& name) {
  return name.find(".gromlit-save-") != std::string::npos;
}

Tree WithoutTemporaries(const Tree& tree) {
  Tree rest;
  for (const auto& entry : tree)
    if (!IsTemporary(entry.first)) rest.insert(entry);
  return rest;
}

int attacks = 0;  // saves disturbed and disks looked at by the tests of a suite

// A kind of save with what it starts from and what it leads to.
class Attack {
 public:
  explicit Attack(const SaveKind& kind) : kind_(kind) {
    CaptureStderr();
    kind_.prepare(install_);
    EXPECT_EQ(GetCapturedStderr(), "");
    old_ = TreeOf(install_.path());
    const Ending ending = Run([](Stop&) {});
    calls_ = ending.calls;
    wanted_ = TreeOf(install_.path());
    said_ = ending.report;
    EXPECT_EQ(ending.how, Ending::kReturned) << ending.report << ending.printed;
    EXPECT_TRUE(said_.starts_with("saved 0 ")) << said_ << ending.printed;
    EXPECT_NE(old_, wanted_);
    EXPECT_EQ(wanted_, WithoutTemporaries(wanted_));
    MakeTree(install_.path(), old_);
    before_ = Run([](Stop&) {}, false).report;
  }

  // The save from the old tree; in its report success, the error and the lists in memory.
  Ending Run(const std::function<void(Stop&)>& at_stop, bool save = true) {
    attacks++;
    MakeTree(install_.path(), old_);
    return RunTraced(
        [&] {
          if (chdir(install_.path().c_str()) != 0) return;
          LoadSymbols();
          LoadPlugins();
          if (kind_.before) kind_.before();
        },
        [&] {
          if (!save) return Lists();
          errno = 0;
          const bool saved = kind_.save();
          return std::string(saved ? "saved 0 " : "failed " + std::to_string(errno) + " ") +
                 Lists();
        },
        [&](Stop& stop) {
          if (kind_.always) kind_.always(stop);
          at_stop(stop);
        });
  }

  // What is on the disk now is the old, the new or a sound state between, and a start finds it.
  void ExpectSound(const std::string& where) {
    const Tree all = TreeOf(install_.path());
    const Tree tree = WithoutTemporaries(all);
    is_new_ = tree == wanted_;
    EXPECT_TRUE(is_new_ || tree == old_ || IsBetween(tree)) << where;
    for (const auto& [name, contents] : all)
      EXPECT_TRUE(!IsTemporary(name) || name.find('/') == std::string::npos)
          << where << ": " << name;
    // The temporary is no data to a start, which takes it away.
    const std::string loaded = Loaded();
    RemoveStaleTemporaries();
    EXPECT_EQ(TreeOf(install_.path()), tree) << where;
    if (all == tree) return;
    EXPECT_EQ(loaded, Loaded()) << where;
    left_temporary_++;
  }

  bool IsBetween(const Tree& tree) const {
    return kind_.between && kind_.between(tree, old_, wanted_);
  }
  static std::string Loaded() {
    CaptureStdout();
    std::string text = FreshLoad();
    return text + GetCapturedStdout();
  }

  const TempInstall install_;
  const SaveKind& kind_;
  Tree old_;
  Tree wanted_;
  std::string said_;    // of a save that succeeds
  std::string before_;  // the lists before it
  int calls_ = 0;
  bool is_new_ = false;
  int left_temporary_ = 0;
};

class SaveFaults : public ::testing::TestWithParam<SaveKind> {
 protected:
  static void SetUpTestSuite() { attacks = 0; }
  static void TearDownTestSuite() { std::printf("  %d attacks\n", attacks); }
  void SetUp() override {
    if (const std::string why = WhyNotTraced(); !why.empty()) GTEST_SKIP() << why;
  }
};

std::string NameOf(const ::testing::TestParamInfo<SaveKind>& info) {
  std::string name = info.param.name;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

// --- Killed and interrupted -------------------------------------------------------------------

class KilledSave : public SaveFaults {};

// Before each call by SIGKILL, after it by a signal that ends a program that does not expect it.
TEST_P(KilledSave, IsTheOldOrTheNewOne) {
  constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGXFSZ, SIGQUIT, SIGKILL};
  Attack attack(GetParam());
  int saw_old = 0;
  int saw_new = 0;
  bool killed = true;
  for (int at = 0; killed && !HasFailure(); at += Sanitized() ? 3 : 1) {
    int stops = 0;
    int number = SIGKILL;
    std::string where = "at the end";
    const Ending ending = attack.Run([&](Stop& stop) {
      if (stops++ != at) return;
      if (!stop.entering) number = kSignals[static_cast<size_t>(at / 2) % std::size(kSignals)];
      where = stop.Name() + " by signal " + std::to_string(number);
      stop.Signal(number);
      stop.LetGo();
    });
    killed = ending.how == Ending::kSignalled;
    EXPECT_TRUE(!killed || ending.status == number) << where;
    attack.ExpectSound("killed " + where);
    EXPECT_TRUE(killed || attack.is_new_) << where;
    (attack.is_new_ ? saw_new : saw_old)++;
  }
  EXPECT_GE(saw_old, 1) << "some kills come before the change";
  EXPECT_GE(saw_new, 1) << "and some behind it";
  const int temporaries = GetParam().name.ends_with("removed") ? 0 : Sanitized() ? 1 : 4;
  EXPECT_GE(attack.left_temporary_, temporaries) << "some leave a temporary to be removed";
}

TEST_P(KilledSave, SucceedsWhenSignalsAreHandledAtEachCall) {
  static volatile sig_atomic_t caught;
  Attack attack(GetParam());
  // As the program does it: the system calls are not restarted.
  struct sigaction action {};
  struct sigaction former {};
  action.sa_handler = [](int) { caught = caught + 1; };
  sigaction(SIGTERM, &action, &former);
  const Ending ending = attack.Run([&](Stop& stop) {
    if (stop.OnFiles()) stop.Signal(SIGTERM);
  });
  sigaction(SIGTERM, &former, nullptr);
  EXPECT_EQ(ending.how, Ending::kReturned);
  EXPECT_EQ(ending.report, attack.said_);
  EXPECT_EQ(TreeOf(attack.install_.path()), attack.wanted_);
}

INSTANTIATE_TEST_SUITE_P(All, KilledSave, ::testing::ValuesIn(SaveKinds()), NameOf);

// --- Lied to ------------------------------------------------------------------------------------

class FailingSave : public SaveFaults {};

// A fault that the save has to live with: it is made all the same.
void ExpectSaved(Attack* attack, const Ending& ending, const std::string& where) {
  EXPECT_EQ(ending.report, attack->said_) << where << ": " << ending.printed;
  EXPECT_EQ(TreeOf(attack->install_.path()), attack->wanted_) << where;
}

// Success with the new contents, or failure with the old ones, its reason told.
void ExpectSavedOrFailed(Attack* attack, const Ending& ending, int error,
                         const std::string& where) {
  EXPECT_EQ(ending.how, Ending::kReturned) << where;
  const Tree tree = TreeOf(attack->install_.path());
  if (ending.report.starts_with("saved")) {
    ExpectSaved(attack, ending, where);
    return;
  }
  const std::string failed = "failed " + std::to_string(error) + " ";
  EXPECT_TRUE(ending.report.starts_with(failed)) << where << ": " << ending.report;
  EXPECT_TRUE(tree == attack->old_ || attack->IsBetween(tree)) << where;
  if (attack->kind_.always == nullptr) {  // which is SaveFile alone, and reports to its caller
    EXPECT_NE(ending.printed.find(std::strerror(error)), std::string::npos)
        << where << ": " << ending.printed;
  }
  const std::string lists = ending.report.substr(std::min(failed.size(), ending.report.size()));
  EXPECT_TRUE(lists == attack->before_ || attack->kind_.kept) << where << ": " << lists;
}

TEST_P(FailingSave, FailsWhollyOrNotAtAll) {
  constexpr int kErrors[] = {ENOSPC, EIO, EDQUOT, EACCES, EMFILE};
  const bool thorough = std::getenv("GROMLIT_THOROUGH") != nullptr;
  Attack attack(GetParam());
  int failures = 0;
  for (int at = 0; at < attack.calls_ && !HasFailure(); at++) {
    for (size_t i = 0; i < std::size(kErrors) && !HasFailure(); i++) {
      // Two errors a call, one under the sanitizers, where a child costs ten times as much.
      const size_t turn = (i + static_cast<size_t>(at)) % std::size(kErrors);
      if (turn >= (thorough ? std::size(kErrors) : Sanitized() ? 1 : 2)) continue;
      std::string where;
      const Ending ending = attack.Run([&](Stop& stop) {
        if (stop.index != at || !stop.entering || !stop.OnFiles()) return;
        where = stop.Name() + ": " + std::strerror(kErrors[i]);
        stop.Fail(kErrors[i]);
        if (!GetParam().always) stop.LetGo();
      });
      if (where.empty()) break;  // no call of the save
      ExpectSavedOrFailed(&attack, ending, kErrors[i], where);
      failures += ending.report.starts_with("failed") ? 1 : 0;
    }
  }
  EXPECT_GE(failures, 1);
}

TEST_P(FailingSave, SucceedsWhenEachCallIsInterrupted) {
  Attack attack(GetParam());
  int interrupted = 0;
  std::string last;
  const Ending ending = attack.Run([&](Stop& stop) {
    if (!stop.entering || !stop.OnFiles()) return;
    // Once each: what follows is the same call again.
    const std::string name = stop.Name();
    const std::string call = name.substr(0, name.find("/.gromlit-save-"));
    if (call == last) {
      last.clear();
      return;
    }
    last = call;
    interrupted++;
    stop.Fail(EINTR);
  });
  ExpectSaved(&attack, ending, "at last " + last);
  EXPECT_GE(interrupted, 1);
}

TEST_P(FailingSave, SucceedsWhenLessIsWrittenOrReadThanAskedFor) {
  Attack attack(GetParam());
  for (const uint64_t limit : {1000, 1}) {
    const Ending ending = attack.Run([&](Stop& stop) {
      const std::string name = stop.Name();
      const bool moves = name.starts_with("before write") || name.starts_with("before pwrite") ||
                         name.starts_with("before read /") || name.starts_with("before pread");
      // The first 20 calls byte by byte.
      if (!moves || !stop.OnFiles() || stop.arguments[2] <= limit) return;
      if (limit > 1 || stop.index < 40) stop.Count(limit);
    });
    ExpectSaved(&attack, ending, "at most " + std::to_string(limit) + " bytes a call");
  }
}

std::vector<SaveKind> AllKinds() {
  std::vector<SaveKind> kinds = SaveKinds();
  for (SaveKind& kind : SavesInPlace()) kinds.push_back(std::move(kind));
  return kinds;
}
INSTANTIATE_TEST_SUITE_P(All, FailingSave, ::testing::ValuesIn(AllKinds()), NameOf);

// --- The power fails
// ------------------------------------------------------------------------------

class PowerLoss : public SaveFaults {};

TEST_P(PowerLoss, LeavesTheOldOrTheNewOne) {
  Attack attack(GetParam());
  MakeTree(attack.install_.path(), attack.old_);
  DiskModel disk(attack.install_.path());
  attack.Run([&](Stop& stop) { disk.Note(stop); });
  ASSERT_EQ(disk.Everything(), attack.wanted_) << "the model follows the save";
  EXPECT_GE(disk.steps(), 1);
  int outcomes = 0;
  int lost = 0;
  disk.ForEachOutcome([&](const Tree& all, bool complete) {
    if (HasFailure()) return;
    outcomes++;
    attacks++;
    MakeTree(attack.install_.path(), all);
    attack.ExpectSound("after " + std::to_string(outcomes) + " outcomes");
    EXPECT_TRUE(attack.is_new_ || !complete) << "what was said to be saved is";
    lost += attack.is_new_ ? 0 : 1;
  });
  EXPECT_GE(outcomes, 2);
  EXPECT_GE(lost, 1);
}

INSTANTIATE_TEST_SUITE_P(All, PowerLoss, ::testing::ValuesIn(SaveKinds()), NameOf);

// The model itself tells a careless save from a careful one.
TEST(DiskModel, KnowsWhatASaveWithoutSynchronisingMayLose) {
  if (const std::string why = WhyNotTraced(); !why.empty()) GTEST_SKIP() << why;
  const TempDir directory;
  WriteText(directory / "file", "old contents");
  DiskModel disk(directory.path());
  const Ending ending = RunTraced([] {},
                                  [&] {
                                    WriteText(directory / "new", "new contents");
                                    std::filesystem::rename(directory / "new", directory / "file");
                                    return std::string();
                                  },
                                  [&](Stop& stop) { disk.Note(stop); });
  ASSERT_EQ(ending.how, Ending::kReturned);
  std::set<std::string> found;
  disk.ForEachOutcome([&](const Tree& tree, bool complete) {
    if (complete && tree.contains("file")) found.insert(tree.at("file"));
  });
  EXPECT_EQ(found, (std::set<std::string>{"", "new co", "new contents", "old contents"}));
}

}  // namespace
}  // namespace gromlit
