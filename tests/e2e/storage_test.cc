#include "tests/e2e/shell_run.h"

#include <sys/stat.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Conditions;
using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::ReadText;
using testing::WriteText;

constexpr size_t kPluginFile = 13 + 1164;  // of a plug-in without actions

// What a new, empty default plug-in looks like on disk.
std::string EmptyDefault() {
  std::string file(kPluginFile, '\0');
  file.replace(0, 13, "GromlitPlugin");
  file.replace(13, 7, "Default");
  file.replace(13 + 64, 7, "Default");
  return file;
}

class StorageTest : public testing::ShellRun {
 protected:
  std::string Default() const { return *install / "plugins/Default.sla"; }
  std::string Damaged(const std::string& name = "Default.sla") const {
    return *install / "damaged/" + name;
  }
  void SetUp() override {
    ShellRun::SetUp();
    DesktopTouches("acted");
    // Where children may write even when the installation directory cannot be written.
    fs::create_directory(*install / "marks");
    fs::permissions(*install / "marks", fs::perms::all);
  }
  void TearDown() override {
    MakeWritable();
    ShellRun::TearDown();
  }
  // Takes the permission to write from everything but the marks.
  Conditions ReadOnly() {
    WritePlugin("Desktop", {{"right", kRight, {{kRun, "touch " + (*install / "marks/acted")}}}});
    return MakeReadOnly();
  }
  void ExpectNothingWritten(const std::vector<std::string>& plugins) {
    EXPECT_EQ(NamesIn(*install / "plugins"), plugins);
    EXPECT_EQ(NamesIn(install->path()),
              (std::vector<std::string>{"gromlit.log", "gromlit.out", "marks", "options", "plugins",
                                        "symbols"}));
  }
};

// --- The default plug-in -----------------------------------------------------------------------

TEST_F(StorageTest, MissingDefaultPluginIsMade) {
  LaunchInstalled({.before = "umask 026;"});
  EXPECT_EQ(ReadText(Default()), EmptyDefault());
  struct stat st {};
  ASSERT_EQ(stat(Default().c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 07777, 0640u);
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(NamesIn(install->path()),
            (std::vector<std::string>{"acted", "gromlit.log", "gromlit.out", "marks", "options",
                                      "plugins", "symbols"}))
      << "no temporary stays behind";
}

TEST_F(StorageTest, DefaultPluginThatIsThereIsLeftAlone) {
  WritePlugin("Default", {{"right", kRight, {Touch("by-default")}}});
  struct stat before {};
  ASSERT_EQ(stat(Default().c_str(), &before), 0);
  const std::string contents = ReadText(Default());
  LaunchInstalled();
  StopGromlit();
  LaunchInstalled();
  struct stat after {};
  ASSERT_EQ(stat(Default().c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
  EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
  EXPECT_EQ(ReadText(Default()), contents);
}

TEST_F(StorageTest, DefaultPluginIsFoundUnderAnyFileName) {
  WritePlugin("Default", {{"right", kRight, {Touch("by-default")}}});
  fs::rename(Default(), *install / "plugins/everything else");
  LaunchInstalled();
  EXPECT_FALSE(Exists(Default()));
  // It serves an application without a plug-in of its own, from the second stroke on.
  const testing::ProbeClient stranger(
      install->path(), {"--class", "Stranger", "stranger", "--geometry", "300x200+800+600"});
  Draw({{850, 700}, {1050, 700}});
  EXPECT_TRUE(TrailIsGone());
  Draw({{850, 700}, {1050, 700}});
  EXPECT_TRUE(Appears("by-default"));
}

TEST_F(StorageTest, DefaultPluginThatCannotBeReadIsSetAsideBeforeANewOneIsMade) {
  WritePlugin("Default", {{"right", kRight, {Touch("by-default")}}});
  const std::string whole = ReadText(Default());
  for (const std::string& damaged :
       {std::string(), std::string("GromlitPlugin"), whole.substr(0, kPluginFile - 1),
        "gromlitPlugin" + whole.substr(13), std::string("my notes\n")}) {
    SCOPED_TRACE(damaged.size());
    WriteText(Default(), damaged);
    fs::permissions(Default(), fs::perms::owner_read | fs::perms::owner_write);
    LaunchInstalled();
    ASSERT_TRUE(Exists(Damaged()));
    EXPECT_EQ(ReadText(Damaged()), damaged);
    EXPECT_EQ(NamesIn(*install / "damaged"), std::vector<std::string>{"Default.sla"});
    struct stat st {};
    ASSERT_EQ(stat(Damaged().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0600u) << "as private as it was";
    EXPECT_EQ(ReadText(Default()), EmptyDefault());
    EXPECT_EQ(Out() + Err(), "");
    EXPECT_TRUE(DesktopActs("acted"));
    StopGromlit();
    fs::remove_all(*install / "damaged");
  }
}

TEST_F(StorageTest, EarlierCopyIsKeptBesideALaterOne) {
  fs::create_directory(*install / "damaged");
  WriteText(Damaged(), "an earlier one");
  WriteText(Default(), "a later one");
  LaunchInstalled();
  EXPECT_EQ(ReadText(Damaged()), "an earlier one");
  EXPECT_EQ(ReadText(Damaged("Default.sla.2")), "a later one");
  EXPECT_EQ(ReadText(Default()), EmptyDefault());
}

TEST_F(StorageTest, DamagedDefaultPluginStaysWhenItCannotBeSetAside) {
  WriteText(*install / "damaged", "a file in the directory's place");
  WriteText(Default(), "my notes\n");
  LaunchInstalled();
  EXPECT_EQ(ReadText(Default()), "my notes\n");
  EXPECT_EQ(ReadText(*install / "damaged"), "a file in the directory's place");
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(Err(), "Save Plugin: Not a directory\n");
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StorageTest, DefaultPluginWithTruncatedActionsIsNotTouchedByTheStart) {
  WritePlugin("Default",
              {{"right", kRight, {Touch("by-default")}}, {"down", kDown, {Touch("never")}}});
  fs::resize_file(Default(), fs::file_size(Default()) - 1);
  const std::string damaged = ReadText(Default());
  LaunchInstalled();
  EXPECT_EQ(ReadText(Default()), damaged);
  EXPECT_FALSE(Exists(*install / "damaged")) << "nothing was written, nothing had to be set aside";
  EXPECT_EQ(Out(), "Error reading plugin command text\n");
  EXPECT_EQ(Err(), "");
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StorageTest, DirectoryInTheDefaultPluginsPlaceIsReported) {
  fs::create_directory(Default());
  LaunchInstalled();
  EXPECT_EQ(Err(), "Save Plugin: Is a directory\n");
  EXPECT_TRUE(fs::is_directory(Default()));
  EXPECT_TRUE(fs::is_empty(Default()));
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StorageTest, PipeInTheDefaultPluginsPlaceIsReported) {
  ASSERT_EQ(mkfifo(Default().c_str(), 0666), 0);
  LaunchInstalled();
  EXPECT_EQ(Err(), "Save Plugin: No such device or address\n");
  EXPECT_TRUE(fs::is_fifo(Default()));
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StorageTest, LinkToTheDefaultPluginIsFollowed) {
  fs::create_directory(*install / "marks/elsewhere");
  fs::create_symlink("../marks/elsewhere/Default.sla", Default());
  LaunchInstalled();
  EXPECT_TRUE(fs::is_symlink(Default()));
  EXPECT_EQ(ReadText(*install / "marks/elsewhere/Default.sla"), EmptyDefault());
}

// --- Places that cannot be written -------------------------------------------------------------

TEST_F(StorageTest, ReadOnlyDirectoryWithADefaultPluginIsAsGoodAsAny) {
  WritePlugin("Default", {{"right", kRight, {}}});
  LaunchInstalled(ReadOnly());
  DrawOnDesktop();
  EXPECT_TRUE(Appears("marks/acted"));
  EXPECT_EQ(Out() + Err(), "");
  ExpectNothingWritten({"Default.sla", "Desktop.sla"});
}

TEST_F(StorageTest, ReadOnlyDirectoryWithoutADefaultPluginIsReported) {
  LaunchInstalled(ReadOnly());
  DrawOnDesktop();
  EXPECT_TRUE(Appears("marks/acted"));
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(Err(), "Save Plugin: Permission denied\n");
  ExpectNothingWritten({"Desktop.sla"});
}

TEST_F(StorageTest, DamagedDefaultPluginInAReadOnlyDirectoryStays) {
  WriteText(Default(), "my notes\n");
  LaunchInstalled(ReadOnly());
  DrawOnDesktop();
  EXPECT_TRUE(Appears("marks/acted"));
  EXPECT_EQ(Err(), "Save Plugin: Permission denied\n");
  EXPECT_EQ(ReadText(Default()), "my notes\n");
  ExpectNothingWritten({"Default.sla", "Desktop.sla"});
}

TEST_F(StorageTest, FullDiskLeavesNoHalfFile) {
  // A limit of 512 bytes stands for the disk; the messages still fit.
  LaunchInstalled({.before = "ulimit -f 1;"});
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(Err(), "Save Plugin: File too large\n");
  DrawOnDesktop();
  EXPECT_TRUE(Appears("acted"));
  fs::remove(MarkFile("acted"));
  ExpectNothingWritten({"Desktop.sla"});
}

TEST_F(StorageTest, FullDiskLeavesADamagedFileWhereItIs) {
  const std::string notes(2000, 'n');
  WriteText(Default(), notes);
  LaunchInstalled({.before = "ulimit -f 1;"});
  EXPECT_EQ(Err(), "Save Plugin: File too large\n");
  EXPECT_EQ(ReadText(Default()), notes);
  EXPECT_TRUE(!Exists(*install / "damaged") || fs::is_empty(*install / "damaged"));
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(StorageTest, MissingSymbolDirectoryIsSurvived) {
  fs::remove_all(*install / "symbols");
  LaunchInstalled();
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(Out() + Err(), "");
  EXPECT_FALSE(Exists(*install / "symbols"));
}

TEST_F(StorageTest, DamagedSymbolsArePassedOver) {
  const std::string symbols = *install / "symbols/";
  WriteText(symbols + "Empty.sls", "");
  WriteText(symbols + "Header.sls", "GromlitSymbol");
  WriteText(symbols + "Short.sls", "GromlitSymbol" + std::string(427, '\xff'));
  WriteText(symbols + "Wild.sls", "GromlitSymbol" + std::string(428, '\xff'));
  fs::create_directory(symbols + "Directory.sls");
  ASSERT_EQ(mkfifo((symbols + "Pipe.sls").c_str(), 0666), 0);
  const std::vector<std::string> before = NamesIn(*install / "symbols");
  LaunchInstalled();
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(Out() + Err(), "");
  EXPECT_EQ(NamesIn(*install / "symbols"), before);
}

}  // namespace
}  // namespace gromlit
