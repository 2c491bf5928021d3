// Which options are in force after a start: the file's, or the defaults.
#include "tests/e2e/shell_run.h"

#include <sys/stat.h>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::ReadText;
using testing::WaitFor;
using testing::WriteText;

class OptionsTest : public testing::ShellRun {
 protected:
  std::string File() const { return *install / "options/default.user"; }

  // Options that differ from the defaults in the draw button.
  void WriteButtonOne() { WriteOptions(1); }
  // Which button draws: 1, or 3 as in the defaults; -1 when neither does.
  int DrawButton() {
    WritePlugin("Desktop", {{"right", kRight, {Touch("by1")}}, {"down", kDown, {Touch("by3")}}});
    LaunchInstalled();
    Drag({{800, 900}, {1100, 900}}, 1);
    Drag({{900, 700}, {900, 1000}}, 3);
    // Only one button is grabbed, so only one of the strokes can act.
    EXPECT_TRUE(WaitFor([this] { return Exists(MarkFile("by1")) || Exists(MarkFile("by3")); }));
    return Exists(MarkFile("by1")) ? 1 : Exists(MarkFile("by3")) ? 3 : -1;
  }
};

TEST_F(OptionsTest, CompleteFileIsInForce) {
  WriteButtonOne();
  EXPECT_EQ(fs::file_size(File()), 305u);
  EXPECT_EQ(DrawButton(), 1);
}

TEST_F(OptionsTest, BytesAfterTheRecordAreIgnored) {
  WriteButtonOne();
  WriteText(File(), ReadText(File()) + "more");
  EXPECT_EQ(DrawButton(), 1);
}

TEST_F(OptionsTest, FileThatIsOneByteShortIsAsGoodAsNone) {
  WriteButtonOne();
  fs::resize_file(File(), 304);
  const std::string before = ReadText(File());
  EXPECT_EQ(DrawButton(), 3);
  EXPECT_EQ(ReadText(File()), before);
}

TEST_F(OptionsTest, FileWithAnotherHeaderIsAsGoodAsNone) {
  WriteButtonOne();
  const std::string before = "gromlitOption" + ReadText(File()).substr(13);
  WriteText(File(), before);
  EXPECT_EQ(DrawButton(), 3);
  EXPECT_EQ(ReadText(File()), before);
}

TEST_F(OptionsTest, MissingFileMeansTheDefaultsAndIsNotMade) {
  fs::remove(File());
  EXPECT_EQ(DrawButton(), 3);
  EXPECT_FALSE(Exists(File()));
}

TEST_F(OptionsTest, MissingDirectoryMeansTheDefaultsAndIsNotMade) {
  fs::remove_all(*install / "options");
  EXPECT_EQ(DrawButton(), 3);
  EXPECT_FALSE(Exists(*install / "options"));
}

TEST_F(OptionsTest, PipeInTheFilesPlaceDoesNotBlockTheStart) {
  fs::remove(File());
  ASSERT_EQ(mkfifo(File().c_str(), 0666), 0);
  EXPECT_EQ(DrawButton(), 3);
}

}  // namespace
}  // namespace gromlit
