// INV-SAVE-1: a program killed at any point of a save leaves the whole old or the whole new file.
//
// The save runs in a child that is stopped at the entry and at the exit of each of its system
// calls. It is killed at the first stop, then (a new child) at the second, and so on until a child
// gets through.
#include <gtest/gtest.h>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

#include "core/files.h"
#include "core/gromlit.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "tests/support/temp_install.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::ReadText;
using testing::TempInstall;
using testing::WriteText;

enum class End { kKilled, kCompleted, kBroken };

// Runs body in a child and kills it at its k-th stop (from 1).
End KillAtStop(int k, const std::function<bool()>& body) {
  std::fflush(nullptr);  // or the child prints it again
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(2);
    raise(SIGSTOP);
    _exit(body() ? 0 : 1);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return End::kBroken;
  if (ptrace(PTRACE_SETOPTIONS, child, nullptr,
             reinterpret_cast<void*>(PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD)) != 0) {
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return End::kBroken;
  }
  for (int stop = 1;; stop++) {
    if (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) != 0) return End::kBroken;
    if (waitpid(child, &status, 0) != child) return End::kBroken;
    if (WIFEXITED(status)) return WEXITSTATUS(status) == 0 ? End::kCompleted : End::kBroken;
    if (!WIFSTOPPED(status) || WSTOPSIG(status) != (SIGTRAP | 0x80)) return End::kBroken;
    if (stop < k) continue;
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return End::kKilled;
  }
}

struct Tally {
  int stops = 0;
  int saw_old = 0;
  int saw_new = 0;
  int left_temporary = 0;
};

bool HasTemporary(const TempInstall& install) {
  for (const auto& entry : fs::directory_iterator(install.path()))
    if (!entry.is_directory()) return true;
  return false;
}

// For every stop: prepare(), save() killed there, then the file must be as before or as wanted.
// `wanted` is found by one undisturbed save. check() looks at what else must hold.
Tally KillEverywhere(
    const TempInstall& install, const std::string& path, const std::function<void()>& prepare,
    const std::function<bool()>& save,
    const std::function<void(bool is_new)>& check = [](bool) {}) {
  Tally tally;
  prepare();
  const bool existed = Exists(path);
  const std::string before = ReadText(path);
  EXPECT_EQ(KillAtStop(1 << 20, save), End::kCompleted);
  const std::string wanted = ReadText(path);
  EXPECT_FALSE(wanted.empty());
  EXPECT_NE(before, wanted);
  for (int k = 1;; k++) {
    prepare();
    const End end = KillAtStop(k, save);
    EXPECT_NE(end, End::kBroken) << "stop " << k;
    const std::string now = ReadText(path);
    const bool is_new = now == wanted;
    if (is_new)
      tally.saw_new++;
    else
      tally.saw_old++;
    EXPECT_TRUE(is_new || (now == before && Exists(path) == existed)) << "stop " << k;
    EXPECT_TRUE(is_new || end != End::kCompleted);
    check(is_new);
    if (HasTemporary(install)) tally.left_temporary++;
    RemoveStaleTemporaries();
    EXPECT_FALSE(HasTemporary(install)) << "stop " << k;
    if (end != End::kKilled || ::testing::Test::HasFailure()) return tally;
    tally.stops = k;
  }
}

void ExpectThorough(const Tally& tally) {
  // open, make, lock, write, owner, bits, sync, rename, open, sync: each entered and left.
  EXPECT_GE(tally.stops, 20);
  EXPECT_GE(tally.saw_old, 10) << "some kills came before the rename";
  EXPECT_GE(tally.saw_new, 2) << "and some after it";
  EXPECT_GE(tally.left_temporary, 4) << "some left a temporary to be removed";
}

TEST(KilledSave, SymbolIsTheOldOrTheNewOne) {
  const TempInstall install;
  GromlitSymbol sym{};
  CopyText(sym.name, "L");
  sym.npoints = 2;
  ExpectThorough(KillEverywhere(
      install, install / "symbols/L.sls",
      [&] { WriteText(install / "symbols/L.sls", std::string(441, 'o')); },
      [&] { return UnLoadSymbol(&sym, "L", ".sls") != nullptr; }));
}

TEST(KilledSave, NewSymbolIsThereWholeOrNotAtAll) {
  const TempInstall install;
  GromlitSymbol sym{};
  CopyText(sym.name, "L");
  ExpectThorough(KillEverywhere(
      install, install / "symbols/L.sls", [&] { fs::remove(install / "symbols/L.sls"); },
      [&] { return UnLoadSymbol(&sym, "L", ".sls") != nullptr; }));
}

TEST(KilledSave, OptionsAreTheOldOrTheNewOnes) {
  const TempInstall install;
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  ExpectThorough(KillEverywhere(
      install, install / "options/default.user",
      [&] { WriteText(install / "options/default.user", "old options"); },
      [&] { return SaveUserOptions(&options, "default.user") == 1; }));
}

TEST(KilledSave, DamagedPluginIsNeverWithoutItsCopyOnceOverwritten) {
  const TempInstall install;
  const std::string path = install / "plugins/Class.sla";
  GromlitPlugin sound{};
  CopyText(sound.classname, "Class");
  GromlitAction action{};
  sound.actions[0] = &action;
  sound.nactions = 1;
  ASSERT_NE(UnLoadPlugin(&sound, "Class"), nullptr);
  const std::string damaged = ReadText(path).substr(0, 1500);

  const auto holds_copy = [&] {
    if (!Exists(install / "damaged")) return false;
    for (const auto& entry : fs::directory_iterator(install / "damaged"))
      if (ReadText(entry.path().string()) == damaged) return true;
    return false;
  };
  ExpectThorough(KillEverywhere(
      install, path,
      [&] {
        fs::remove_all(install / "damaged");
        WriteText(path, damaged);
      },
      [&] {
        GromlitPlugin plugin{};
        (void)!freopen("/dev/null", "w", stdout);
        if (ReadPluginActions("Class.sla", &plugin) != nullptr) return false;
        return UnLoadPlugin(&plugin, "Class") != nullptr;
      },
      [&](bool is_new) {
        EXPECT_TRUE(!is_new || holds_copy());
        if (!Exists(install / "damaged")) return;
        for (const auto& entry : fs::directory_iterator(install / "damaged"))
          EXPECT_EQ(ReadText(entry.path().string()), damaged) << "no half copies";
      }));
}

}  // namespace
}  // namespace gromlit
