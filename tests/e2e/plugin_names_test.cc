// Plug-in files under names that their users gave them: a download, a backup.
#include "tests/e2e/front_end.h"

#include <filesystem>

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::kDown;
using testing::kRight;
using testing::ProbeClient;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

constexpr const char* kClass = "Probe.probe";

class PluginNamesTest : public testing::FrontEnd {
 protected:
  std::string Path(const std::string& name) const { return *install / "plugins/" + name; }

  // A plug-in of the probe's class in a file of this name, with one action that makes `mark`.
  void WriteAs(const std::string& name, const std::string& mark) {
    WritePlugin(kClass, {{mark, kRight, {Touch(mark)}}});
    if (name != std::string(kClass) + ".sla")
      fs::rename(Path(std::string(kClass) + ".sla"), Path(name));
  }
  void Open() {
    StartWindowManager();
    probe_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Probe", "probe", "--geometry",
                                                  "340x300+880+80", "--title", "Probe"});
    LaunchInstalled();
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  void Show() {
    ASSERT_TRUE(PassOver(probe_->window(), [this] { return HasName(0); }));
  }

  std::unique_ptr<ProbeClient> probe_;
};

TEST_F(PluginNamesTest, DownloadIsChangedAndDeletedInItsOwnFile) {
  WriteAs("download (1).sla", "right");
  Open();
  Show();
  SelectCell(0);
  Choose(Title::kAction, testing::kActionDelete);
  EXPECT_TRUE(WaitFor([&] { return !HasName(0); }));
  EXPECT_TRUE(WaitFor([&] { return fs::file_size(Path("download (1).sla")) == 1177; }))
      << "saved without the action";
  EXPECT_FALSE(Exists(Path("Probe.probe.sla")));

  Choose(Title::kPlugIn, testing::kPlugInDelete);
  WaitDialog();
  DialogLeft();
  EXPECT_TRUE(WaitFor([&] { return !Exists(Path("download (1).sla")); }));
  EXPECT_EQ(Notice(), Window{0});
}

TEST_F(PluginNamesTest, OfTwoFilesTheOneWithTheClassesNameServesAndTheUserIsTold) {
  WriteAs("Backup.sla", "backup");
  WriteAs("Probe.probe.sla", "right");
  const std::string backup = ReadText(Path("Backup.sla"));
  Open();
  const Window notice = WaitNotice();
  EXPECT_TRUE(Reads(notice, "Not used: Backup.sla"));
  EXPECT_TRUE(Reads(notice, "but: Probe.probe.sla"));
  CloseNotice();
  Show();
  Draw({{920, 200}, {1120, 200}});
  EXPECT_TRUE(Appears("right"));
  EXPECT_FALSE(Exists(MarkFile("backup")));
  EXPECT_EQ(ReadText(Path("Backup.sla")), backup);
}

}  // namespace
}  // namespace gromlit
