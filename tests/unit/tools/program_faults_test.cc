// The programs that write files of the user, gromlit-tool and the launcher: killed, lied to, or
// without power at any of the system calls that touch what they write. What was there stays or is
// replaced whole, and the next run finishes the work and clears away what the first one left.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "core/files.h"
#include "core/gromlit.h"
#include "tests/support/built.h"
#include "tests/support/disk_model.h"
#include "tests/support/files.h"
#include "tests/support/syscalls.h"
#include "tests/unit/tools/run_tool.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using namespace gromlit::testing;

struct ProgramCase {
  std::string name;
  // Makes what there is before, below `root`, and further things below `aside`.
  std::function<void(const TempDir& root, const TempDir& aside)> prepare;
  std::function<std::vector<std::string>(const TempDir& root, const TempDir& aside)> argv;
};

void PrintTo(const ProgramCase& program, std::ostream* out) {
  *out << program.name;
}

void WriteSkeleton(const TempDir& aside, const std::string& word) {
  for (const char* name : {"skeleton", "skeleton/help", "skeleton/help/pictures",
                           "skeleton/symbols", "skeleton/plugins"})
    fs::create_directory(aside / name);
  WriteText(aside / "skeleton/help/pictures/a.png", "picture " + word);
  WriteBytes(aside / "skeleton/symbols/L.sls", GoldenSymbolFile());
  WriteBytes(aside / "skeleton/plugins/X.sla", GoldenPluginFile());
}

int Run(const std::vector<std::string>& argv);

std::vector<std::string> Prepare(const TempDir& root, const TempDir& aside) {
  return {Built("gromlit-session"), "-path",    root / "gromlit", "--skeleton",
          aside / "skeleton",       "--prepare"};
}

std::vector<ProgramCase> Programs() {
  const auto tool = Built("gromlit-tool");
  std::vector<ProgramCase> programs;
  programs.push_back({"export_over_an_older_document",
                      [](const TempDir& root, const TempDir& aside) {
                        WriteText(root / "gestures.json", "an older document");
                        WriteBytes(aside / "L.sls", GoldenSymbolFile());
                      },
                      [tool](const TempDir& root, const TempDir& aside) {
                        return std::vector<std::string>{tool, "export", "-o",
                                                        root / "gestures.json", aside / "L.sls"};
                      }});
  programs.push_back({"first_start",
                      [](const TempDir&, const TempDir& aside) { WriteSkeleton(aside, "one"); },
                      Prepare});
  programs.push_back({"newer_starter_library",
                      [](const TempDir& root, const TempDir& aside) {
                        WriteSkeleton(aside, "one");
                        EXPECT_EQ(Run(Prepare(root, aside)), 0);
                        WriteSkeleton(aside, "two");
                        fs::create_directory(aside / "skeleton/help/films");
                        WriteText(aside / "skeleton/help/films/new.html", "new");
                      },
                      Prepare});
  programs.push_back(
      {"autostart",
       [](const TempDir& root, const TempDir&) {
         fs::create_directory(root / "autostart");
         WriteText(root / "autostart/gromlit.desktop", "an older entry");
       },
       [](const TempDir&, const TempDir&) {
         return std::vector<std::string>{Built("gromlit-session"), "--autostart", "on"};
       }});
  return programs;
}

void SetEnvironment(const TempDir& root) {
  unsetenv("DISPLAY");
  setenv("XDG_CONFIG_HOME", root.path().c_str(), 1);
  setenv("HOME", root.path().c_str(), 1);
  // A traced process cannot be searched for leaks.
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
}

[[noreturn]] void Become(const std::vector<std::string>& argv) {
  std::vector<char*> words;
  for (const std::string& word : argv) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  execv(words[0], words.data());
  _exit(126);
}

int Run(const std::vector<std::string>& argv) {
  const Ending ending = RunTraced(
      [] {
        unsetenv("DISPLAY");
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
      },
      [&]() -> std::string { Become(argv); }, [](Stop& stop) { stop.LetGo(); });
  return ending.how == Ending::kExited ? ending.status : -1;
}

bool IsTemporary(const std::string& name) {
  return name.find(".gromlit-save-") != std::string::npos;
}

// Undecided steps of which all choices are tried: a first start has many steps.
constexpr size_t kChoices = 5;

class ProgramFaults : public ::testing::TestWithParam<ProgramCase> {
 protected:
  void SetUp() override {
    if (const std::string why = WhyNotTraced(); !why.empty()) GTEST_SKIP() << why;
    GetParam().prepare(root_, aside_);
    argv_ = GetParam().argv(root_, aside_);
    old_ = TreeOf(root_.path());
    int calls = 0;
    const Ending ending = Undisturbed([&](Stop& stop) { calls += Touches(stop) ? 1 : 0; });
    ASSERT_EQ(ending.status, 0) << ending.printed;
    calls_ = calls;
    wanted_ = TreeOf(root_.path());
    ASSERT_NE(old_, wanted_);
  }

  // A call on something below the root.
  bool Touches(const Stop& stop) const {
    return stop.OnFiles() && stop.Path().starts_with(root_.path());
  }
  Ending Undisturbed(const std::function<void(Stop&)>& at_stop) {
    return RunTraced([&] { SetEnvironment(root_); }, [&]() -> std::string { Become(argv_); },
                     at_stop);
  }
  Ending Disturbed(const std::function<void(Stop&)>& at_stop) {
    MakeTree(root_.path(), old_);
    return Undisturbed(at_stop);
  }

  // From one call that is disturbed to the next one: each has two stops. Under the sanitizers a
  // long run is disturbed less often, not at a multiple of the errors that take turns.
  int Step() const { return Sanitized() ? std::clamp(calls_ / 20 * 2, 2, 8) : 2; }

  // Each file is the old, the new or not there yet, and none is lost.
  void ExpectWhole(const std::string& where) {
    const Tree tree = TreeOf(root_.path());
    for (const auto& [name, contents] : tree) {
      if (IsTemporary(name)) continue;
      const auto before = old_.find(name);
      const auto after = wanted_.find(name);
      const bool whole = (before != old_.end() && before->second == contents) ||
                         (after != wanted_.end() && after->second == contents) ||
                         name.ends_with("manifest");
      EXPECT_TRUE(whole) << where << ": " << name;
    }
    for (const auto& [name, contents] : old_) EXPECT_TRUE(tree.contains(name)) << where << name;
  }
  // The next run brings what was wanted, and leaves nothing else but what the next start of the
  // program clears away.
  void ExpectHealed(const std::string& where) {
    const Ending ending = Undisturbed([](Stop& stop) { stop.LetGo(); });
    EXPECT_EQ(ending.status, 0) << where << ": " << ending.printed;
    const std::string installation = root_ / "gromlit";
    const char* former = GromlitPath;
    GromlitPath = installation.c_str();
    RemoveStaleTemporaries();
    GromlitPath = former;
    EXPECT_EQ(TreeOf(root_.path()), wanted_) << where;
  }

  const TempDir root_;
  const TempDir aside_;
  std::vector<std::string> argv_;
  Tree old_;
  Tree wanted_;
  int calls_ = 0;
};

TEST_P(ProgramFaults, KilledAnywhereIsFinishedByTheNextRun) {
  // Behind each call, which is the same as before the next one.
  const int step = Step();
  constexpr int kSignals[] = {SIGKILL, SIGTERM, SIGINT, SIGHUP, SIGKILL};
  for (int at = 1; at < calls_ && !HasFailure(); at += step) {
    std::string where;
    int calls = 0;
    const int number = kSignals[static_cast<size_t>(at / 2) % std::size(kSignals)];
    const Ending ending = Disturbed([&](Stop& stop) {
      if (!Touches(stop) || calls++ != at) return;
      where = stop.Name();
      stop.Signal(number);
      stop.LetGo();
    });
    if (where.empty()) break;
    EXPECT_EQ(ending.how, Ending::kSignalled) << where;
    ExpectWhole(where);
    ExpectHealed(where);
  }
}

TEST_P(ProgramFaults, AFailingCallIsToldAndMadeGoodByTheNextRun) {
  constexpr int kErrors[] = {ENOSPC, EIO, EINTR, EDQUOT, EMFILE};
  const int step = Step();
  int failed = 0;
  for (int at = 0; at < calls_ && !HasFailure(); at += step) {
    std::string where;
    int calls = 0;
    const int error = kErrors[static_cast<size_t>(at / 2) % std::size(kErrors)];
    const Ending ending = Disturbed([&](Stop& stop) {
      if (!Touches(stop) || calls++ != at || !stop.entering) return;
      where = stop.Name() + ": " + std::strerror(error);
      stop.Fail(error);
      stop.LetGo();
    });
    if (where.empty()) continue;
    ASSERT_EQ(ending.how, Ending::kExited) << where;
    ExpectWhole(where);
    if (ending.status == 0) {
      EXPECT_EQ(TreeOf(root_.path()), wanted_) << where << ": " << ending.printed;
    } else {
      EXPECT_NE(error, EINTR) << where << ": " << ending.printed;
      EXPECT_NE(ending.printed.find(std::strerror(error)), std::string::npos)
          << where << ": " << ending.printed;
      failed++;
    }
    for (const auto& [name, contents] : TreeOf(root_.path())) EXPECT_FALSE(IsTemporary(name));
    ExpectHealed(where);
  }
  EXPECT_GE(failed, 1);
}

TEST_P(ProgramFaults, PowerLossAnywhereIsMadeGoodByTheNextRun) {
  MakeTree(root_.path(), old_);
  DiskModel disk(root_.path());
  Undisturbed([&](Stop& stop) { disk.Note(stop); });
  ASSERT_EQ(disk.Everything(), wanted_) << "the model follows the program";
  const int step = Sanitized() ? 40 : 8;
  int outcomes = 0;
  disk.ForEachOutcome(
      [&](const Tree& tree, bool complete) {
        outcomes++;
        if (HasFailure() || (outcomes % step != 0 && !complete)) return;
        const std::string where = "outcome " + std::to_string(outcomes);
        MakeTree(root_.path(), tree);
        ExpectWhole(where);
        ExpectHealed(where);
      },
      kChoices);
  EXPECT_GE(outcomes, 5);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramFaults, ::testing::ValuesIn(Programs()),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace gromlit
