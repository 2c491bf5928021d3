// For tests that start the program under conditions that need a shell: limits, closed descriptors,
// another user, outputs kept apart.
#pragma once

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "tests/e2e/gromlit_run.h"

namespace gromlit::testing {

struct Conditions {
  // Shell commands that run before the program takes the shell's place, each ended by ";".
  std::string before = {};
  // Words in front of the program: one that changes something and then becomes the program.
  std::string through = {};
  // Where the outputs go; $OUT and $ERR name the files that Out() and Err() read.
  std::string redirection = ">\"$OUT\" 2>\"$ERR\"";
  // Working directory; the installation directory when empty.
  std::string directory = {};
  std::vector<std::string> environment = {};
};

class ShellRun : public GromlitRun {
 protected:
  static std::string Binary() { return Built("gromlit"); }

  // What the running or ended program has printed. Its standard error lies where GromlitOutput()
  // looks, so that a sanitizer's report is found at the end.
  std::string OutFile() const { return *install / "gromlit.out"; }
  std::string ErrFile() const { return *install / "gromlit.log"; }
  std::string Out() const { return ReadText(OutFile()); }
  std::string Err() const { return ReadText(ErrFile()); }

  std::unique_ptr<Process> Start(const std::vector<std::string>& arguments,
                                 const Conditions& conditions = {}) {
    std::vector<std::string> argv = {"sh", "-c",
                                     conditions.before + " exec " + conditions.through +
                                         " \"$0\" \"$@\" " + conditions.redirection,
                                     Binary()};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    const char* path = std::getenv("PATH");
    std::vector<std::string> environment = {
        "OUT=" + OutFile(), "ERR=" + ErrFile(),
        "PATH=" + Built("tests") + ":" + (path != nullptr ? path : "")};
    environment.insert(environment.end(), conditions.environment.begin(),
                       conditions.environment.end());
    return std::make_unique<Process>(
        argv, "", environment,
        conditions.directory.empty() ? install->path() : conditions.directory);
  }

  // Starts the program and waits until it follows the pointer.
  void Launch(const std::vector<std::string>& arguments, const Conditions& conditions = {}) {
    gromlit = Start(arguments, conditions);
    ASSERT_TRUE(WaitFor([this] { return GromlitIsReady() || !gromlit->Running(); },
                        std::chrono::seconds(60)));
    ASSERT_TRUE(gromlit->Running()) << "status " << gromlit->Wait() << "\n" << Out() << Err();
  }
  void LaunchInstalled(const Conditions& conditions = {}) {
    Launch({"-path", install->path()}, conditions);
  }

  struct Ending {
    int status;
    std::string out;
    std::string err;
  };
  // Runs the program to its end; status -1 when it does not end.
  Ending RunToEnd(const std::vector<std::string>& arguments, const Conditions& conditions = {}) {
    const auto process = Start(arguments, conditions);
    const int status = process->Wait(std::chrono::seconds(60));
    return {status, Out(), Err()};
  }

  void StopGromlit() {
    gromlit->Kill(SIGTERM);
    gromlit->Wait(std::chrono::seconds(60));
    EXPECT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
  }

  // Moves the pointer with a button down, whoever gets it, and returns with the release.
  void Drag(const std::vector<Point>& corners, int button = 3) {
    Go(corners[0]);
    player->Press(button);
    Trace(corners);
    player->Release(button);
  }
  // Waits for the end of a stroke's action. Until then the draw button is left to the applications
  // and a further stroke would not be seen.
  bool TrailIsGone() {
    return WaitFor([this] { return MappedOverlays().empty(); });
  }
  // Draws to the right over the bare root window, away from the main window.
  void DrawOnDesktop() { Draw({{800, 900}, {1100, 900}}); }
  // Whether the program draws, matches and acts: a stroke on the desktop makes the file NAME, as
  // the plug-in that DesktopTouches wrote says.
  void DesktopTouches(const std::string& name) {
    WritePlugin("Desktop", {{"right", kRight, {Touch(name)}}});
  }
  bool DesktopActs(const std::string& name) {
    DrawOnDesktop();
    return Appears(name) && TrailIsGone();
  }

  // Takes the permission to write from the installation directory, its parts and their files. The
  // superuser is not kept out by permissions: the program is then to be started as another user, by
  // the conditions that come back.
  Conditions MakeReadOnly() {
    using std::filesystem::perms;
    const perms read = perms::owner_read | perms::group_read | perms::others_read;
    const perms enter = perms::owner_exec | perms::group_exec | perms::others_exec;
    // What the program prints goes into files that are there already.
    for (const std::string& file : {OutFile(), ErrFile()}) WriteText(file, "");
    for (const char* part : {"plugins", "symbols", "options"})
      for (const auto& file : std::filesystem::directory_iterator(*install / part))
        if (file.is_regular_file()) std::filesystem::permissions(file.path(), read);
    for (const char* name : {"plugins", "symbols", "options", ""})
      std::filesystem::permissions(*install / name, read | enter);
    Conditions conditions;
    if (geteuid() == 0) conditions.through = "setpriv --reuid=65534 --regid=65534 --clear-groups";
    return conditions;
  }
  // Gives it to everybody.
  void MakeWritable() {
    using std::filesystem::perms;
    const perms everybody = perms::owner_all | perms::group_all | perms::others_all;
    for (const char* name : {"", "plugins", "symbols", "options"}) {
      if (!Exists(*install / name)) continue;
      std::filesystem::permissions(*install / name, everybody);
      for (const auto& file : std::filesystem::directory_iterator(*install / name))
        if (file.is_regular_file()) std::filesystem::permissions(file.path(), everybody);
    }
  }

  // Makes an empty installation directory with this name below the fixture's own.
  std::string MakeDirectory(const std::string& name) {
    for (const char* part : {"symbols", "plugins", "options"})
      std::filesystem::create_directories(*install / name + "/" + part);
    return *install / name;
  }
  // Names in a directory, sorted.
  static std::vector<std::string> NamesIn(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

}  // namespace gromlit::testing
