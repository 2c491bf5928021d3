// A plug-in with as many actions as it can hold, in the built program: what would add another one
// says so and changes nothing.
#include "tests/e2e/grid_run.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Exists;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;
using testing::WriteText;

class FullPluginTest : public testing::GridRun {
 protected:
  static constexpr int kFull = 128;

  void Open(int count) {
    OpenWith(Numbered(count));
    ASSERT_TRUE(ShowsSoon(Names(0, 18)));
    bytes_ = DesktopBytes();
    written_ = fs::last_write_time(PluginFile(kDesktop));
  }
  bool ScrollToTheEnd(const std::vector<std::string>& names) {
    return HoldArrow(true, [&] { return Shows(names); });
  }
  // A notice says that there is no room; nothing was written.
  void ExpectFull() {
    EXPECT_TRUE(Tells({"This plug-in holds 128 actions already.", "Nothing was added."}));
    CloseNotice();
    EXPECT_TRUE(DesktopBytes() == bytes_) << "the file has changed";
    EXPECT_EQ(fs::last_write_time(PluginFile(kDesktop)), written_);
  }
  // Chooses from the popup with the button held down until then. While the action editor is open
  // the press goes to the main window by itself, so that the release of a click would end the
  // popup.
  void DragPopup(int cell, int row) {
    const testing::Point at = Cell(cell);
    if (!Over(main_, at.x, at.y)) return;
    player->Press(3);
    Window menu = 0;
    ASSERT_TRUE(WaitFor([&] { return (menu = Menu()) != 0; })) << "no popup";
    ReleaseOnRow(menu, row, 0, 3);
  }
  bool StrokeActs() {
    fs::remove(MarkFile("acted"));
    return DesktopActs("acted");
  }

  std::string bytes_;
  fs::file_time_type written_;
};

TEST_F(FullPluginTest, PasteTakesTheLastPlaceAndThenSaysThatThereIsNone) {
  Open(kFull - 1);
  json actions = DesktopFile()["actions"];
  SelectCell(2);
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupPaste);
  actions.push_back(actions[2]);
  ExpectStored(actions);
  bytes_ = DesktopBytes();
  written_ = fs::last_write_time(PluginFile(kDesktop));
  for (int i = 0; i < 2; i++) {
    ChoosePopup(0, testing::kPopupPaste);
    if (i == 0) Picture("full");
    ExpectFull();
  }
  EXPECT_TRUE(StrokeActs());
  ClickCell(2);
  std::vector<std::string> end = Names(114, 127);
  end.push_back("A2");
  EXPECT_TRUE(ScrollToTheEnd(end));
  Picture("128-actions-end");

  // Room for one again.
  SelectCell(13);
  Choose(Title::kAction, testing::kActionDelete);
  actions.erase(127);
  ExpectStored(actions);
  ChoosePopup(0, testing::kPopupPaste);
  actions.push_back(actions[2]);
  ExpectStored(actions);
  EXPECT_EQ(Err(), "");
}

TEST_F(FullPluginTest, NewSaysThatThereIsNoRoomAndOpensNoEditor) {
  Open(kFull);
  Choose(Title::kAction, testing::kActionNew);
  ExpectFull();
  ChoosePopup(3, testing::kPopupNew);
  ExpectFull();
  EXPECT_EQ(Shown("ActionEditor"), Window{0});
  EXPECT_TRUE(StrokeActs());
}

TEST_F(FullPluginTest, EditStillChangesAnActionInItsPlace) {
  Open(kFull);
  json actions = DesktopFile()["actions"];
  EXPECT_TRUE(ScrollToTheEnd(Names(114, 128)));
  DoubleClick(13);
  NameIt("Last");
  LeaveByOk();
  actions[127]["name"] = "Last";
  ExpectStored(actions);
}

TEST_F(FullPluginTest, OkKeepsTheEditorWithItsWorkWhenThePlugInHasFilledUpMeanwhile) {
  Open(kFull - 1);
  json actions = DesktopFile()["actions"];
  SelectCell(4);
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupNew);
  const Window editor = Editor();
  // Beside the main window, where a user would move it.
  XMoveWindow(player->display(), editor, 600, 100);
  AddCommand(editor, kRun, "true new");
  NameIt("Late");
  DragPopup(0, testing::kPopupPaste);
  actions.push_back(actions[4]);
  ExpectStored(actions);
  bytes_ = DesktopBytes();
  written_ = fs::last_write_time(PluginFile(kDesktop));
  for (int i = 0; i < 2; i++) {
    ClickOk();
    ExpectFull();
    EXPECT_NE(Shown("ActionEditor"), Window{0});
  }
  // Once there is room the work goes where it was meant to go.
  SelectCell(4);
  Choose(Title::kAction, testing::kActionDelete);
  actions.erase(4);
  ExpectStored(actions);
  LeaveByOk();
  const json added = DesktopFile()["actions"].back();
  EXPECT_EQ(added["name"], "Late");
  ASSERT_EQ(added["commands"].size(), 1u);
  EXPECT_EQ(added["commands"][0]["text"], "true new");
  actions.push_back(added);
  ExpectStored(actions);
  EXPECT_TRUE(StrokeActs());
}

TEST_F(FullPluginTest, OfAFileWithMoreActionsTheFirstOnesAreShownAndNoneIsAdded) {
  WritePlugin("Default", {});
  WritePlugin("Other", Numbered(1));
  WritePlugin(kDesktop, Numbered(kFull));
  // The record of the other plug-in's only action, 72 times more.
  std::string file = DesktopBytes();
  const std::string record = ReadText(PluginFile("Other")).substr(13 + 1164);
  for (int i = 0; i < 72; i++) file += record;
  file[kActionCount] = static_cast<char>(kFull + 72);
  WriteText(PluginFile(kDesktop), file);
  LaunchInstalled();
  FindMain();
  ShowDesktop(Name(0));
  bytes_ = DesktopBytes();
  written_ = fs::last_write_time(PluginFile(kDesktop));
  EXPECT_TRUE(bytes_ == file) << "the start has changed the file";
  SelectCell(0);
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupPaste);
  ExpectFull();
  Choose(Title::kAction, testing::kActionNew);
  ExpectFull();
  ClickCell(0);
  EXPECT_TRUE(ScrollToTheEnd(Names(114, 128)));
  // The first change keeps a copy of what was there.
  EXPECT_FALSE(Exists(*install / "damaged"));
  SelectCell(13);
  Choose(Title::kAction, testing::kActionDelete);
  EXPECT_TRUE(WaitFor([&] { return DesktopBytes() != file; }));
  EXPECT_EQ(DesktopFile()["actions"].size(), 127u);
  EXPECT_TRUE(ReadText(*install / "damaged/Desktop.sla") == file);
  EXPECT_EQ(Out(), "Error reading Plugin Actions\n");
  EXPECT_EQ(Err(), "");
  EXPECT_TRUE(StrokeActs());
}

}  // namespace
}  // namespace gromlit
