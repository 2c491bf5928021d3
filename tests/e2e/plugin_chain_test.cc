// The menus of many plug-ins on the built program: how they are cut, how one leads to the next, and
// how many plug-ins can be reached.
#include "tests/e2e/front_end.h"

#include "core/plugin_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::kRight;
using testing::Title;
using testing::WaitFor;

constexpr int kPage = 20;  // items of a menu

class PluginChainTest : public testing::FrontEnd {
 protected:
  void SetUp() override {
    server = std::make_unique<testing::XServer>("1920x1080x24");
    FrontEnd::SetUp();
  }
  void TearDown() override {
    if (HasFailure()) Picture("failed");
    FrontEnd::TearDown();
  }
  void Picture(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      testing::SaveScreen(player->display(), std::string(directory) + "/chain-" + name + ".png");
  }

  // Starts the program with so many plug-ins, the default one among them. Each has a name of its
  // own that begins with `prefix`, and each but the default has an action.
  void Open(int count, const std::string& prefix = "Application ") {
    WritePlugin("Default", {});
    for (int i = 1; i < count; i++) {
      const std::string number = std::to_string(1000 + i).substr(1);
      WritePlugin("Class" + number, {{"right", kRight, {Touch("right")}}}, prefix + number);
    }
    // The order of the directory is that of the menus.
    for (const auto& entry : fs::directory_iterator(*install / "plugins"))
      files_.push_back(entry.path().filename());
    ASSERT_EQ(files_.size(), static_cast<size_t>(count));
    LaunchInstalled();
    ASSERT_NE(WaitShown("Application"), Window{0});
    ASSERT_EQ(OriginOf(MainWindow()).x, 1) << "the frame's one pixel";
  }

  // Goes down "more..." as far as there is room on the screen, with the button held; the menus.
  std::vector<Window> OpenChain() {
    std::vector<Window> chain = {PressPulldown(PluginButton())};
    for (int plugins = Rows(chain[0]); plugins < static_cast<int>(files_.size());) {
      const testing::Box box = BoxOf(chain.back());
      if (box.x + box.width >= kScreen - 1) break;  // the next one is not on the screen
      GoToRow(chain.back(), 0);
      Window next = 0;
      EXPECT_TRUE(WaitFor([&] { return (next = MenuBeside(chain.back())) != 0; }))
          << "nothing behind menu " << chain.size();
      if (next == 0) break;
      chain.push_back(next);
      plugins += Rows(next) - 1;  // one item of the menu before leads here
    }
    return chain;
  }
  std::vector<int> RowsOf(const std::vector<Window>& chain) {
    std::vector<int> rows;
    rows.reserve(chain.size());
    for (const Window menu : chain) rows.push_back(Rows(menu));
    return rows;
  }
  // Plug-ins of the chain's menus; all but the last one of 200 have an item that leads on.
  int Reachable(const std::vector<Window>& chain) {
    int plugins = 0;
    for (const Window menu : chain) plugins += Rows(menu) - 1;
    return plugins + (chain.size() == 11 ? 1 : 0);
  }
  void LetGoBeside() {
    Go({1900, 1000});
    player->Release(1);
    EXPECT_TRUE(WaitFor([this] { return Menu() == 0; }));
  }
  // The file of the plug-in in this row of this menu of the chain.
  const std::string& FileAt(size_t menu, int row, bool last) {
    return files_[menu * (kPage - 1) + static_cast<size_t>(last ? row : row - 1)];
  }
  static std::string Appname(const std::string& file) {
    GromlitPlugin plugin{};
    EXPECT_NE(ReadPluginHeader(file.c_str(), &plugin), nullptr) << file;
    return plugin.appname;
  }
  // Asserts that the main window shows this file's plug-in: a rename goes to no other.
  void ExpectShown(const std::string& file) {
    EXPECT_TRUE(WaitFor([this] { return HasName(0); })) << "no action is shown";
    const std::string former = Appname(file);
    Choose(Title::kPlugIn, testing::kPlugInEdit);
    Replace(DialogField(), "Chosen");
    DialogLeft();
    EXPECT_TRUE(WaitFor([&] { return Appname(file) == "Chosen"; }))
        << "another plug-in than " << former << " is shown";
  }
  // Chooses in the last of these menus.
  void ChooseIn(const std::vector<Window>& chain, int row) {
    GoToRow(chain.back(), row);
    player->Release(1);
    EXPECT_TRUE(WaitFor([this] { return Menu() == 0; })) << "a menu stays open";
  }

  static constexpr int kScreen = 1920;
  // The widest name with which all of 200 plug-ins can be reached, pixels.
  static constexpr int kNarrow = 175;
  std::vector<std::string> files_;
};

TEST_F(PluginChainTest, TwentyPlugInsAreOneMenuWithoutMore) {
  Open(20);
  const std::vector<Window> chain = OpenChain();
  EXPECT_EQ(RowsOf(chain), std::vector<int>{20});
  // No item opens anything, not even the first.
  GoToRow(chain[0], 0);
  GoToRow(chain[0], 1);
  EXPECT_EQ(MenuBeside(chain[0]), Window{0});
  const int row = FileAt(0, 19, true) == "Default.sla" ? 18 : 19;
  ChooseIn(chain, row);
  ExpectShown(FileAt(0, row, true));
}

TEST_F(PluginChainTest, TwentyOnePlugInsAreNineteenAndTwo) {
  Open(21);
  const std::vector<Window> chain = OpenChain();
  EXPECT_EQ(RowsOf(chain), (std::vector<int>{20, 2}));
  Picture("21");
  // Back to a plug-in of the first menu the second one closes.
  GoToRow(chain[0], 7);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(chain[1]); }));
  LetGoBeside();
  const std::vector<Window> again = OpenChain();
  const int row = FileAt(1, 1, true) == "Default.sla" ? 0 : 1;
  ChooseIn(again, row);
  ExpectShown(FileAt(1, row, true));
}

TEST_F(PluginChainTest, ThirtyNinePlugInsAreNineteenAndTwenty) {
  Open(39);
  const std::vector<Window> chain = OpenChain();
  EXPECT_EQ(RowsOf(chain), (std::vector<int>{20, 20}));
  const int row = FileAt(1, 0, true) == "Default.sla" ? 1 : 0;
  ChooseIn(chain, row);
  ExpectShown(FileAt(1, row, true));
}

TEST_F(PluginChainTest, FortyPlugInsAreNineteenNineteenAndTwo) {
  Open(40);
  std::vector<Window> chain = OpenChain();
  EXPECT_EQ(RowsOf(chain), (std::vector<int>{20, 20, 2}));
  Picture("40");
  // Of the second menu, whose first item leads on.
  chain.pop_back();
  const int row = FileAt(1, 4, false) == "Default.sla" ? 5 : 4;
  ChooseIn(chain, row);
  ExpectShown(FileAt(1, row, false));
}

TEST_F(PluginChainTest, AllOfTwoHundredPlugInsWithUsualNamesCanBeReached) {
  Open(200);
  std::vector<Window> chain = OpenChain();
  EXPECT_EQ(RowsOf(chain), (std::vector<int>{20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 10}));
  Picture("200");
  const int row = FileAt(10, 9, true) == "Default.sla" ? 8 : 9;
  ChooseIn(chain, row);
  ExpectShown(FileAt(10, row, true));
}

// What these measure stands in the help, in README.md and in app/plugins/plugin_menu.h.

TEST_F(PluginChainTest, AllOfTwoHundredNamesOfAHundredSeventyFivePixelsCanBeReached) {
  std::string prefix;
  while (LabelWidth(prefix + "000") < kNarrow) prefix += 'l';
  while (LabelWidth(prefix + "000") > kNarrow) prefix.pop_back();
  ASSERT_GE(LabelWidth(prefix + "000"), kNarrow - 3);
  Open(200, prefix);
  const std::vector<Window> chain = OpenChain();
  EXPECT_EQ(Reachable(chain), 200);
  RecordProperty("reachable_of_200_at_175_pixels", Reachable(chain));
  Picture("200-narrow");
  const int row = FileAt(10, 9, true) == "Default.sla" ? 8 : 9;
  ChooseIn(chain, row);
  ExpectShown(FileAt(10, row, true));
}

TEST_F(PluginChainTest, OfTwoHundredWiderNamesAllButTheLastMenusCanBeReached) {
  std::string prefix;
  while (LabelWidth(prefix + "000") <= kNarrow) prefix += 'l';
  Open(200, prefix);
  EXPECT_EQ(Reachable(OpenChain()), 190);
  LetGoBeside();
}

TEST_F(PluginChainTest, OfTwoHundredNamesOfSixtyThreeWideLettersFiftySevenCanBeReached) {
  Open(200, std::string(60, 'W'));
  const std::vector<Window> chain = OpenChain();
  EXPECT_EQ(Reachable(chain), 57);
  RecordProperty("reachable_of_200_with_the_widest_names", Reachable(chain));
  Picture("200-wide");
  const int row = FileAt(2, 19, false) == "Default.sla" ? 18 : 19;
  ChooseIn(chain, row);
  ExpectShown(FileAt(2, row, false));
}

}  // namespace
}  // namespace gromlit
