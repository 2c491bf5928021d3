// The main window's commands on the built program where the disk does not take what they save: the
// file stays as it was, the program's memory with it, the user is told, and work goes on.
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <fstream>

#include "tests/e2e/grid_run.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Conditions;
using testing::Exists;
using testing::kEll;
using testing::Point;
using testing::ProbeClient;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

constexpr const char* kApplication = "Probe.probe";

enum class Trouble {
  kReadOnly,   // nothing below the installation directory may be written
  kSizeLimit,  // a file may not grow beyond a limit: it breaks off in the middle
  kFullDisk,   // a file system of its own without room
};

std::string NameOf(const ::testing::TestParamInfo<Trouble>& info) {
  switch (info.param) {
    case Trouble::kReadOnly:
      return "ReadOnly";
    case Trouble::kSizeLimit:
      return "SizeLimit";
    case Trouble::kFullDisk:
      return "FullDisk";
  }
  return "";
}

class FailedSavesTest : public testing::GridRun, public ::testing::WithParamInterface<Trouble> {
 protected:
  void SetUp() override {
    GridRun::SetUp();
    outside_ = install->path() + ".outside";
    fs::create_directory(outside_);
    fs::permissions(outside_, fs::perms::all);
    if (GetParam() == Trouble::kFullDisk && !MountDisk())
      GTEST_SKIP() << "no file system can be mounted here";
    // What the program prints and what its children make must not fail with the saves.
    fs::create_symlink(outside_ + "/err", ErrFile());
    fs::create_symlink(outside_ + "/out", OutFile());
    fs::create_symlink(outside_, *install / "marks");
    WritePlugin("Default", {});
    WritePlugin("Other", {{"B0", kEll, {}}, {"B1", kEll, {}}});
  }
  void TearDown() override {
    MakeWritable();
    const std::string path = install->path();
    GridRun::TearDown();
    if (mounted_) {
      umount2(path.c_str(), MNT_DETACH);
      fs::remove_all(path);
    }
    fs::remove_all(outside_);
  }

  // Starts the program with three actions of the desktop, and then the trouble. No file may become
  // larger than `limit` bytes then, where a limit is the trouble.
  void Open(rlim_t limit = 2048) {
    WritePlugin(kDesktop, Numbered(3, "marks/acted"));
    actions_ = DesktopFile()["actions"];
    order_ = MenuOrder();
    Conditions conditions;
    if (GetParam() == Trouble::kReadOnly) conditions = MakeReadOnly();
    LaunchInstalled(conditions);
    FindMain();
    ShowDesktop("A0");
    ASSERT_TRUE(ShowsSoon(Names(0, 3)));
    if (GetParam() == Trouble::kSizeLimit) LimitSize(limit);
    if (GetParam() == Trouble::kFullDisk) {
      std::ofstream filler(*install / "filler");
      const std::string page(4096, 'x');
      while ((filler << page).flush()) {
      }
    }
    before_ = Everything();
  }
  void EndTheTrouble() {
    if (GetParam() == Trouble::kReadOnly) MakeWritable();
    if (GetParam() == Trouble::kSizeLimit) LimitSize(RLIM_INFINITY);
    if (GetParam() == Trouble::kFullDisk) fs::remove(*install / "filler");
  }

  std::string Reason() const {
    switch (GetParam()) {
      case Trouble::kReadOnly:
        return "Permission denied";
      case Trouble::kSizeLimit:
        return "File too large";
      case Trouble::kFullDisk:
        return "No space left on device";
    }
    return "";
  }
  // A notice says what was not done and why, the standard error has the line for it, and nothing
  // has changed on the disk.
  void ExpectTold(const std::string& what, const std::string& prefix = "Save Plugin") {
    EXPECT_TRUE(Tells({what, Reason() + "."})) << what;
    CloseNotice();
    err_.append(prefix).append(": ").append(Reason()).append("\n");
    EXPECT_EQ(Err(), err_);
    EXPECT_EQ(Everything(), before_);
  }
  // Standard output tells for every save which part of the file it was that had no room.
  void ExpectPrinted(int saves) {
    std::string lines;
    if (GetParam() == Trouble::kSizeLimit)
      for (int i = 0; i < saves; i++) lines += "Error writing Plugin Actions\n";
    EXPECT_EQ(Out(), lines);
  }
  bool StrokeActs() {
    fs::remove(MarkFile("marks/acted"));
    return DesktopActs("marks/acted");
  }
  int RowOf(const std::string& classname) {
    const auto place = std::find(order_.begin(), order_.end(), classname);
    EXPECT_NE(place, order_.end());
    return static_cast<int>(place - order_.begin());
  }
  bool Has(const std::string& classname) { return Exists(PluginFile(classname)); }

  nlohmann::json actions_;  // of the desktop's plug-in as it was
  std::string outside_;     // a directory that has no trouble

 private:
  // Puts a small file system of its own in the place of the installation directory, for this
  // process and its children only.
  bool MountDisk() {
    static const bool apart =
        unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    if (!apart) return false;
    mounted_ = mount("none", install->path().c_str(), "tmpfs", 0, "size=256k,mode=0755") == 0;
    if (!mounted_) return false;
    for (const char* part : {"symbols", "plugins", "options"})
      fs::create_directory(*install / part);
    WriteOptions();
    return true;
  }
  void LimitSize(rlim_t bytes) {
    const rlimit limit{bytes, RLIM_INFINITY};
    ASSERT_EQ(prlimit(gromlit->pid(), RLIMIT_FSIZE, &limit, nullptr), 0);
  }
  // Every stored file and every leftover of a save, with a number that stands for its bytes.
  std::map<std::string, size_t> Everything() {
    std::map<std::string, size_t> all;
    for (const std::string& name : NamesIn(install->path())) {
      if (name.starts_with('.')) all[name] = 0;
      if (fs::is_symlink(*install / name) || !fs::is_directory(*install / name)) continue;
      for (const std::string& file : NamesIn(*install / name))
        all[name + "/" + file] = std::hash<std::string>()(ReadText(*install / name + "/" + file));
    }
    return all;
  }

  bool mounted_ = false;
  std::vector<std::string> order_;  // of the pulldown's menu
  std::string err_;
  std::map<std::string, size_t> before_;
};

TEST_P(FailedSavesTest, AnActionThatCannotBeDeletedOrCutStays) {
  Open();
  SelectCell(1);
  Choose(Title::kAction, testing::kActionDelete);
  ExpectTold("The action was not deleted.");
  EXPECT_TRUE(ShowsSoon(Names(0, 3), 1));
  ChoosePopup(0, testing::kPopupCut);
  ExpectTold("The action was not deleted.");
  EXPECT_TRUE(ShowsSoon(Names(0, 3), 1));
  ExpectPrinted(2);
  EXPECT_TRUE(StrokeActs());

  // What was cut is in the clipboard all the same, and the program has all three.
  EndTheTrouble();
  ChoosePopup(0, testing::kPopupPaste);
  json actions = actions_;
  actions.push_back(actions[1]);
  ExpectStored(actions);
  Choose(Title::kAction, testing::kActionDelete);
  actions.erase(1);
  ExpectStored(actions);
}

TEST_P(FailedSavesTest, AnActionThatCannotBePastedIsNotThere) {
  Open();
  SelectCell(2);
  ChoosePopup(0, testing::kPopupCopy);
  for (int i = 0; i < 2; i++) {
    ChoosePopup(0, testing::kPopupPaste);
    if (i == 0) Picture("not-added");
    ExpectTold("The action was not added.");
    EXPECT_TRUE(ShowsSoon(Names(0, 3), 2));
  }
  ExpectPrinted(2);
  EXPECT_TRUE(StrokeActs());
  EndTheTrouble();
  ChoosePopup(0, testing::kPopupPaste);
  json actions = actions_;
  actions.push_back(actions[2]);
  ExpectStored(actions);
}

TEST_P(FailedSavesTest, AnEditedActionThatCannotBeSavedIsAsItWasAndTheEditorKeepsTheWork) {
  Open();
  DoubleClick(1);
  AddCommand(Editor(), kText, "more");
  NameIt("Changed");
  ClickOk();
  ExpectTold("The action was not saved.");
  ASSERT_NE(Shown("ActionEditor"), Window{0});
  LeaveByCancel();
  EXPECT_TRUE(ShowsSoon(Names(0, 3), 1));
  EXPECT_TRUE(StrokeActs());

  DoubleClick(1);
  NameIt("Changed");
  AddCommand(Editor(), kText, "more");
  ClickOk();
  ExpectTold("The action was not saved.");
  ExpectPrinted(2);
  EndTheTrouble();
  LeaveByOk();
  json actions = DesktopFile()["actions"];
  EXPECT_EQ(actions[1]["name"], "Changed");
  ASSERT_EQ(actions[1]["commands"].size(), 2u) << "only what was added this time";
  EXPECT_EQ(actions[1]["commands"][1]["text"], "more");
  actions[1]["name"] = "A1";
  actions[1]["commands"].erase(1);
  EXPECT_EQ(actions, actions_);
  EXPECT_TRUE(ShowsSoon({"A0", "Changed", "A2"}, 1));
}

TEST_P(FailedSavesTest, ANewActionThatCannotBeSavedIsNotThereAndTheEditorKeepsTheWork) {
  Open();
  Choose(Title::kAction, testing::kActionNew);
  AddCommand(Editor(), kRun, "true new");
  NameIt("Added");
  ClickOk();
  ExpectTold("The action was not added.");
  ASSERT_NE(Shown("ActionEditor"), Window{0});
  LeaveByCancel();
  EXPECT_TRUE(ShowsSoon(Names(0, 3)));
  EXPECT_TRUE(StrokeActs());

  Choose(Title::kAction, testing::kActionNew);
  AddCommand(Editor(), kRun, "true new");
  NameIt("Added");
  ClickOk();
  ExpectTold("The action was not added.");
  ExpectPrinted(2);
  EndTheTrouble();
  LeaveByOk();
  json actions = DesktopFile()["actions"];
  ASSERT_EQ(actions.size(), 4u);
  EXPECT_EQ(actions[3]["name"], "Added");
  ASSERT_EQ(actions[3]["commands"].size(), 1u);
  EXPECT_EQ(actions[3]["commands"][0]["text"], "true new");
  actions.erase(3);
  EXPECT_EQ(actions, actions_);
  EXPECT_TRUE(ShowsSoon({"A0", "A1", "A2", "Added"}));
}

TEST_P(FailedSavesTest, APlugInWhoseNewNameCannotBeSavedKeepsItsOldOne) {
  Open();
  const std::string name = Look(PluginButton());
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  const Window dialog = WaitDialog();
  Replace(DialogField(), "Renamed");
  const Point ok = {BoxOf(dialog).width - 144, BoxOf(dialog).height - 32};
  ClickChild(dialog, ok.x, ok.y);
  ExpectTold("The plug-in's new name was not saved.");
  // The dialog keeps what was typed.
  EXPECT_TRUE(Viewable(dialog));
  ClickChild(dialog, ok.x, ok.y);
  ExpectTold("The plug-in's new name was not saved.");
  DialogRight();
  EXPECT_TRUE(WaitFor([&] { return Look(PluginButton()) == name; }));
  EXPECT_TRUE(ShowsSoon(Names(0, 3)));
  ExpectPrinted(2);
  EXPECT_TRUE(StrokeActs());

  // A later save does not bring the name in by the way.
  EndTheTrouble();
  SelectCell(2);
  Choose(Title::kAction, testing::kActionDelete);
  json actions = actions_;
  actions.erase(2);
  ExpectStored(actions);
  EXPECT_EQ(DesktopFile()["appname"], "Desktop");
  EXPECT_EQ(DesktopFile()["classname"], "Desktop");
}

TEST_P(FailedSavesTest, ANewPlugInThatCannotBeSavedIsListedAndSavedWithItsFirstAction) {
  const ProbeClient probe(install->path(), {"--class", "Probe", "probe", "--geometry",
                                            "340x300+700+80", "--title", "Probe"});
  Open(512);
  StartPicking();
  ClickIn(probe.window(), 150, 150);
  ExpectTold("The new plug-in could not be saved.");
  EXPECT_FALSE(Has(kApplication));
  EXPECT_TRUE(ShowsSoon({}));
  EXPECT_EQ(Out(), "");
  // It is the first one of the menu, before those of the directory.
  ChoosePulldown(PluginButton(), RowOf("Other") + 1);
  EXPECT_TRUE(ShowsSoon({"B0", "B1"}));
  ChoosePulldown(PluginButton(), 0);
  EXPECT_TRUE(ShowsSoon({}));
  EXPECT_TRUE(StrokeActs());

  EndTheTrouble();
  EXPECT_TRUE(PassOver(probe.window(), [this] { return Shows({}); }));
  Choose(Title::kAction, testing::kActionNew);
  NameIt("First");
  LeaveByOk();
  ASSERT_TRUE(Has(kApplication));
  const json file = testing::ShowFile(PluginFile(kApplication));
  EXPECT_EQ(file["classname"], kApplication);
  EXPECT_EQ(file["appname"], kApplication);
  ASSERT_EQ(file["actions"].size(), 1u);
  EXPECT_EQ(file["actions"][0]["name"], "First");
}

TEST_P(FailedSavesTest, APlugInThatCannotBeDeletedStaysInTheListAndDeletingNeedsNoRoom) {
  Open();
  ChoosePulldown(PluginButton(), RowOf("Other"));
  EXPECT_TRUE(ShowsSoon({"B0", "B1"}));
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  DialogLeft();
  if (GetParam() == Trouble::kReadOnly) {
    ExpectTold("The plug-in was not deleted.", "Delete Plugin");
    EXPECT_TRUE(ShowsSoon({"B0", "B1"}));
    ChoosePulldown(PluginButton(), RowOf("Default"));
    EXPECT_TRUE(ShowsSoon({}));
    ChoosePulldown(PluginButton(), RowOf("Other"));
    EXPECT_TRUE(ShowsSoon({"B0", "B1"}));
    EXPECT_TRUE(StrokeActs());
    EndTheTrouble();
    player->MoveTo(1, 1);
    ChoosePulldown(PluginButton(), RowOf("Other"));
    EXPECT_TRUE(ShowsSoon({"B0", "B1"}));
    Choose(Title::kPlugIn, testing::kPlugInDelete);
    DialogLeft();
  }
  EXPECT_TRUE(WaitFor([this] { return !Has("Other"); }));
  EXPECT_TRUE(ShowsSoon({})) << "the default plug-in is shown";
  EXPECT_EQ(Notice(), Window{0});
  EXPECT_TRUE(Has("Default"));
  EXPECT_TRUE(Has(kDesktop));
  EXPECT_EQ(Out(), "");
  EXPECT_TRUE(StrokeActs());
}

INSTANTIATE_TEST_SUITE_P(Of, FailedSavesTest,
                         ::testing::Values(Trouble::kReadOnly, Trouble::kSizeLimit,
                                           Trouble::kFullDisk),
                         NameOf);

}  // namespace
}  // namespace gromlit
