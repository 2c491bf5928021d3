#include "core/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "core/gromlit.h"
#include "tests/support/temp_install.h"
#include "tests/unit/core/child.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::BecomeOrdinaryUser;
using testing::Exists;
using testing::LimitFileSize;
using testing::ReadText;
using testing::RunInChild;
using testing::TempInstall;
using testing::WriteText;

std::span<const std::byte> AsBytes(const std::string& text) {
  return std::as_bytes(std::span(text));
}

bool Save(const std::string& path, const std::string& text) {
  return SaveFile(path.c_str(), AsBytes(text));
}

mode_t ModeOf(const std::string& path) {
  struct stat st {};
  EXPECT_EQ(stat(path.c_str(), &st), 0) << path;
  return st.st_mode & 07777;
}

ino_t InodeOf(const std::string& path) {
  struct stat st {};
  EXPECT_EQ(stat(path.c_str(), &st), 0) << path;
  return st.st_ino;
}

std::set<std::string> Entries(const std::string& directory) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory))
    names.insert(entry.path().filename().string());
  return names;
}

const std::set<std::string> kCleanInstall = {"options", "plugins", "symbols"};

class Files : public ::testing::Test {
 protected:
  // For children that give up their privileges.
  void OpenToEverybody() {
    for (const char* name : {"", "symbols", "plugins", "options"})
      ASSERT_EQ(chmod((install_ / name).c_str(), 0777), 0);
  }
  // Rights of the installation directory itself; others come back for the clean-up.
  void MakeInstallationReadOnly() { ASSERT_EQ(chmod(install_.path().c_str(), 0555), 0); }
  void TearDown() override { chmod(install_.path().c_str(), 0755); }

  TempInstall install_;
};

// --- Reading ---

TEST_F(Files, ReadTakesAWholeFileAndNoMoreThanTheLimit) {
  const std::string text(10000, 't');
  WriteText(install_ / "file", text);
  std::vector<std::byte> out(3);
  ASSERT_TRUE(ReadFile((install_ / "file").c_str(), 1 << 20, &out));
  EXPECT_EQ(out.size(), 10000u);
  ASSERT_TRUE(ReadFile((install_ / "file").c_str(), 10000, &out));
  EXPECT_EQ(out.size(), 10000u);
  ASSERT_TRUE(ReadFile((install_ / "file").c_str(), 441, &out));
  EXPECT_EQ(out.size(), 441u);
  WriteText(install_ / "empty", "");
  ASSERT_TRUE(ReadFile((install_ / "empty").c_str(), 441, &out));
  EXPECT_TRUE(out.empty());
}

TEST_F(Files, ReadGetsAllOfAFileThatClaimsToBeEmpty) {
  std::vector<std::byte> out;
  struct stat st {};
  ASSERT_EQ(stat("/proc/self/maps", &st), 0);
  ASSERT_EQ(st.st_size, 0);
  ASSERT_TRUE(ReadFile("/proc/self/maps", 1 << 20, &out));
  EXPECT_GT(out.size(), 500u);
}

TEST_F(Files, ReadRefusesWhatIsNoRegularFileAtOnce) {
  const std::string fifo = install_ / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0666), 0);
  fs::create_symlink("/dev/zero", install_ / "zero");
  fs::create_symlink("loop", install_ / "loop");
  std::vector<std::byte> out;
  for (const char* name : {"fifo", "zero", "symbols", "loop", "missing"}) {
    EXPECT_FALSE(ReadFile((install_ / name).c_str(), 1 << 20, &out)) << name;
    EXPECT_NE(errno, 0) << name;
    EXPECT_TRUE(out.empty()) << name;
  }
}

TEST_F(Files, OpenRegularTellsWhyAndClosesOnExec) {
  EXPECT_EQ(OpenRegular((install_ / "missing").c_str()), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(OpenRegular((install_ / "symbols").c_str()), -1);
  EXPECT_EQ(errno, EISDIR);
  EXPECT_EQ(OpenRegular("/dev/null"), -1);
  EXPECT_EQ(errno, EINVAL);
  WriteText(install_ / "file", "x");
  const int fd = OpenRegular((install_ / "file").c_str());
  ASSERT_GE(fd, 0);
  EXPECT_NE(fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_NE(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
  close(fd);
}

TEST_F(Files, ReadFollowsALinkToARegularFile) {
  WriteText(install_ / "file", "contents");
  fs::create_symlink("file", install_ / "link");
  std::vector<std::byte> out;
  ASSERT_TRUE(ReadFile((install_ / "link").c_str(), 100, &out));
  EXPECT_EQ(out.size(), 8u);
}

TEST(DataPath, JoinsInstallationDirectoryAndName) {
  const char* former = GromlitPath;
  GromlitPath = "/where";
  EXPECT_EQ(DataPath("symbols", "L.sls"), "/where/symbols/L.sls");
  GromlitPath = former;
}

// --- Saving ---

TEST_F(Files, SaveCreatesReplacesAndLeavesNoTemporary) {
  const std::string path = install_ / "symbols/a.sls";
  ASSERT_TRUE(Save(path, "first"));
  EXPECT_EQ(ReadText(path), "first");
  ASSERT_TRUE(Save(path, "second, longer"));
  EXPECT_EQ(ReadText(path), "second, longer");
  ASSERT_TRUE(Save(path, ""));
  EXPECT_EQ(ReadText(path), "");
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
  EXPECT_EQ(Entries(install_ / "symbols"), std::set<std::string>{"a.sls"});
}

TEST_F(Files, ReplacingIsDoneByRename) {
  const std::string path = install_ / "symbols/a.sls";
  WriteText(path, "first");
  const int reader = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(reader, 0);
  ASSERT_TRUE(Save(path, "other"));
  char buffer[16];
  EXPECT_EQ(read(reader, buffer, sizeof buffer), 5);
  EXPECT_EQ(std::string(buffer, 5), "first") << "who reads the old file goes on reading it";
  close(reader);
}

TEST_F(Files, NewFilesObeyTheMaskAndOldBitsAreKept) {
  const mode_t former = umask(027);
  ASSERT_TRUE(Save(install_ / "symbols/new", "x"));
  EXPECT_EQ(ModeOf(install_ / "symbols/new"), 0640u);
  EXPECT_EQ(umask(former), 027u) << "saving leaves the mask alone";
  for (const mode_t mode : {0600u, 0444u | 0200u, 0666u, 0755u}) {
    ASSERT_EQ(chmod((install_ / "symbols/new").c_str(), mode), 0);
    ASSERT_TRUE(Save(install_ / "symbols/new", "y"));
    EXPECT_EQ(ModeOf(install_ / "symbols/new"), mode);
  }
}

TEST_F(Files, OwnerIsKeptWhereTheSystemAllowsIt) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
  const std::string path = install_ / "symbols/a";
  WriteText(path, "old");
  ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
  ASSERT_TRUE(Save(path, "new"));
  struct stat st {};
  ASSERT_EQ(stat(path.c_str(), &st), 0);
  EXPECT_EQ(st.st_uid, 1234u);
  EXPECT_EQ(st.st_gid, 2345u);
}

TEST_F(Files, LinkStaysALinkAndItsTargetIsReplaced) {
  fs::create_directory(install_ / "elsewhere");
  WriteText(install_ / "elsewhere/real", "old");
  fs::create_symlink("../elsewhere/hop", install_ / "symbols/link");
  fs::create_symlink("real", install_ / "elsewhere/hop");
  const ino_t before = InodeOf(install_ / "elsewhere/real");
  ASSERT_TRUE(Save(install_ / "symbols/link", "new"));
  EXPECT_TRUE(fs::is_symlink(install_ / "symbols/link"));
  EXPECT_TRUE(fs::is_symlink(install_ / "elsewhere/hop"));
  EXPECT_EQ(ReadText(install_ / "elsewhere/real"), "new");
  EXPECT_NE(InodeOf(install_ / "elsewhere/real"), before) << "replaced, not written in place";
}

TEST_F(Files, LinkThatLeadsNowhereCreatesItsTarget) {
  fs::create_symlink("later", install_ / "symbols/link");
  ASSERT_TRUE(Save(install_ / "symbols/link", "new"));
  EXPECT_TRUE(fs::is_symlink(install_ / "symbols/link"));
  EXPECT_EQ(ReadText(install_ / "symbols/later"), "new");
}

TEST_F(Files, LinkIsFollowedFromADirectoryWithANameOfOneLetter) {
  const fs::path former = fs::current_path();
  fs::create_directory(install_ / "d");
  fs::create_symlink("real", install_ / "d/link");
  fs::current_path(install_.path());
  EXPECT_TRUE(Save("d/link", "new"));
  fs::current_path(former);
  EXPECT_TRUE(fs::is_symlink(install_ / "d/link"));
  EXPECT_EQ(ReadText(install_ / "d/real"), "new");
}

TEST_F(Files, LinkLoopFails) {
  fs::create_symlink("loop", install_ / "symbols/loop");
  EXPECT_FALSE(Save(install_ / "symbols/loop", "new"));
  EXPECT_EQ(errno, ELOOP);
  EXPECT_TRUE(fs::is_symlink(install_ / "symbols/loop"));
}

TEST_F(Files, MissingDirectoryFails) {
  EXPECT_FALSE(Save(install_ / "nowhere/a", "new"));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
}

TEST_F(Files, DirectoryInTheFilesPlaceFails) {
  fs::create_directory(install_ / "symbols/a");
  EXPECT_FALSE(Save(install_ / "symbols/a", "new"));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_TRUE(fs::is_directory(install_ / "symbols/a"));
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
}

TEST_F(Files, NameTooLongFails) {
  EXPECT_FALSE(Save(install_ / ("symbols/" + std::string(300, 'n')), "new"));
  EXPECT_EQ(errno, ENAMETOOLONG);
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
}

TEST_F(Files, FifoThatNobodyReadsIsRefusedInsteadOfSwallowingTheData) {
  const std::string fifo = install_ / "symbols/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0666), 0);
  EXPECT_FALSE(Save(fifo, "new"));
  EXPECT_EQ(errno, ENXIO);
  EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST_F(Files, DeviceIsWrittenInPlace) {
  fs::create_symlink("/dev/null", install_ / "symbols/null");
  EXPECT_TRUE(Save(install_ / "symbols/null", "new"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_TRUE(fs::is_symlink(install_ / "symbols/null"));
}

TEST_F(Files, ReadOnlyFileFailsAndKeepsItsContents) {
  OpenToEverybody();
  const std::string path = install_ / "symbols/a";
  WriteText(path, "old");
  ASSERT_EQ(chmod(path.c_str(), 0444), 0);
  const auto result = RunInChild([&] {
    if (!BecomeOrdinaryUser()) return 2;
    return Save(path, "new") ? 1 : errno == EACCES ? 0 : 3;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ReadText(path), "old");
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
}

TEST_F(Files, FileSizeLimitFailsAndKeepsTheOldContents) {
  const std::string path = install_ / "symbols/a";
  WriteText(path, "old");
  const auto result = RunInChild([&] {
    if (!LimitFileSize(10)) return 2;
    size_t wrote = 0;
    const std::string text(100, 'n');
    if (SaveFile(path.c_str(), AsBytes(text), &wrote)) return 1;
    if (errno != EFBIG) return 3;
    return wrote == 10 ? 0 : 4;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ReadText(path), "old");
  EXPECT_EQ(Entries(install_.path()), kCleanInstall) << "the temporary is gone";
}

// --- Saving where no temporary can be made ---

TEST_F(Files, UnwritableInstallationDirectoryIsNoObstacle) {
  OpenToEverybody();
  WriteText(install_ / "symbols/long", "a long old text");
  WriteText(install_ / "symbols/short", "s");
  ASSERT_EQ(chmod((install_ / "symbols/long").c_str(), 0666), 0);
  ASSERT_EQ(chmod((install_ / "symbols/short").c_str(), 0666), 0);
  const ino_t before = InodeOf(install_ / "symbols/long");
  MakeInstallationReadOnly();
  const auto result = RunInChild([&] {
    if (!BecomeOrdinaryUser()) return 2;
    umask(022);
    if (!Save(install_ / "symbols/long", "new")) return 3;
    if (!Save(install_ / "symbols/short", "a longer new text")) return 4;
    return Save(install_ / "symbols/fresh", "fresh") ? 0 : 5;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ReadText(install_ / "symbols/long"), "new");
  EXPECT_EQ(ReadText(install_ / "symbols/short"), "a longer new text");
  EXPECT_EQ(ReadText(install_ / "symbols/fresh"), "fresh");
  EXPECT_EQ(ModeOf(install_ / "symbols/fresh"), 0644u);
  EXPECT_EQ(InodeOf(install_ / "symbols/long"), before) << "written in place";
}

TEST_F(Files, WritableFileInAReadOnlyDirectoryIsWrittenInPlace) {
  OpenToEverybody();
  WriteText(install_ / "symbols/a", "old");
  ASSERT_EQ(chmod((install_ / "symbols/a").c_str(), 0666), 0);
  ASSERT_EQ(chmod((install_ / "symbols").c_str(), 0555), 0);
  const auto result = RunInChild([&] {
    if (!BecomeOrdinaryUser()) return 2;
    return Save(install_ / "symbols/a", "new") ? 0 : 1;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ReadText(install_ / "symbols/a"), "new");
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
}

TEST_F(Files, WriteInPlaceThatFailsKeepsTheOldContents) {
  OpenToEverybody();
  const std::string old(50, 'o');
  WriteText(install_ / "symbols/a", old);
  ASSERT_EQ(chmod((install_ / "symbols/a").c_str(), 0666), 0);
  MakeInstallationReadOnly();
  // The limit falls behind the old end, into the old contents, and on a file that does not exist.
  for (const rlim_t limit : {60u, 50u, 20u, 0u}) {
    const auto result = RunInChild([&] {
      if (!BecomeOrdinaryUser() || !LimitFileSize(limit)) return 2;
      size_t wrote = 0;
      const std::string text(100, 'n');
      if (SaveFile((install_ / "symbols/a").c_str(), AsBytes(text), &wrote)) return 1;
      if (errno != EFBIG || wrote > 100) return 3;
      if (Save(install_ / "symbols/fresh", text)) return 4;
      return errno == EFBIG ? 0 : 5;
    });
    EXPECT_EQ(result.status, 0) << limit;
    EXPECT_EQ(ReadText(install_ / "symbols/a"), old) << limit;
    EXPECT_FALSE(Exists(install_ / "symbols/fresh")) << limit;
  }
}

TEST_F(Files, ShorterWriteInPlaceThatFailsKeepsTheOldContents) {
  OpenToEverybody();
  std::string old;
  for (int i = 0; i < 200; i++) old += static_cast<char>('a' + i % 26);
  WriteText(install_ / "symbols/a", old);
  ASSERT_EQ(chmod((install_ / "symbols/a").c_str(), 0666), 0);
  MakeInstallationReadOnly();
  const auto result = RunInChild([&] {
    if (!BecomeOrdinaryUser() || !LimitFileSize(40)) return 2;
    return Save(install_ / "symbols/a", std::string(100, 'n')) ? 1 : errno == EFBIG ? 0 : 3;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ReadText(install_ / "symbols/a"), old);
}

TEST_F(Files, OtherFileSystemIsWrittenInPlace) {
  struct stat here {
  }, there{};
  ASSERT_EQ(stat(install_.path().c_str(), &here), 0);
  if (stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev || access("/dev/shm", W_OK) != 0)
    GTEST_SKIP() << "no second file system to write to";
  std::string pattern = "/dev/shm/gromlit-test-XXXXXX";
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  WriteText(pattern + "/real", "old contents");
  fs::create_symlink(pattern + "/real", install_ / "symbols/link");
  EXPECT_TRUE(Save(install_ / "symbols/link", "new"));
  EXPECT_EQ(ReadText(pattern + "/real"), "new");
  EXPECT_TRUE(fs::is_symlink(install_ / "symbols/link"));
  EXPECT_EQ(Entries(install_.path()), kCleanInstall);
  fs::remove_all(pattern);
}

// --- Stale temporaries ---

TEST_F(Files, StaleTemporariesGoAndNothingElse) {
  WriteText(install_ / ".gromlit-save-aB3xYz", "stale");
  WriteText(install_ / ".gromlit-save-", "no temporary");
  WriteText(install_ / ".gromlit-save-longername", "no temporary");
  WriteText(install_ / "notes", "the user's");
  WriteText(install_ / "symbols/.gromlit-save-aB3xYz", "not there");
  fs::create_directory(install_ / ".gromlit-save-folder");
  RemoveStaleTemporaries();
  EXPECT_EQ(
      Entries(install_.path()),
      (std::set<std::string>{".gromlit-save-", ".gromlit-save-folder", ".gromlit-save-longername",
                             "notes", "options", "plugins", "symbols"}));
  EXPECT_TRUE(Exists(install_ / "symbols/.gromlit-save-aB3xYz"));
}

TEST_F(Files, TemporaryOfARunningSaveStays) {
  WriteText(install_ / ".gromlit-save-aB3xYz", "busy");
  const int busy = open((install_ / ".gromlit-save-aB3xYz").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(busy, LOCK_EX | LOCK_NB), 0);
  RemoveStaleTemporaries();
  EXPECT_TRUE(Exists(install_ / ".gromlit-save-aB3xYz"));
  close(busy);
  RemoveStaleTemporaries();
  EXPECT_FALSE(Exists(install_ / ".gromlit-save-aB3xYz"));
}

TEST(StaleTemporaries, MissingInstallationDirectoryIsNoError) {
  const char* former = GromlitPath;
  GromlitPath = "/nonexistent/installation";
  RemoveStaleTemporaries();
  GromlitPath = former;
  EXPECT_FALSE(Exists("/nonexistent"));
}

}  // namespace
}  // namespace gromlit
