// The symbol chooser, the action editor and the preferences.
#include "tests/pictures/studio.h"

namespace gromlit {
namespace {

using testing::Box;
using testing::Picture;
using testing::Point;
using testing::Take;
using testing::Title;
using testing::WaitFor;

class EditorPictures : public testing::Studio {
 protected:
  // Clicks on an arrow of the command list's scrollbar, and waits until the list has moved.
  void Scroll(Window window, bool down) {
    const Window list = WaitChild(window, 16, BoxOf(TabBar(window)).height + 124);
    const Box box = BoxOf(list);
    Window bar = 0;
    for (const Window child : Children(window)) {
      const Box at = BoxOf(child);
      if (at.y == box.y && at.x >= box.x + box.width && at.width < 30) bar = child;
    }
    ASSERT_NE(bar, Window{0});
    const Picture before = Still(Bare(list));
    ClickIn(bar, 7, down ? BoxOf(bar).height - 7 : 7);
    ASSERT_TRUE(WaitFor([&] { return Take(player->display(), Bare(list)) != before; }));
  }
};

constexpr const char* kTabNames[] = {"hotkey", "menu", "text", "sound", "run", "internet"};

TEST_F(EditorPictures, TheActionEditorWithACommandOfEachKind) {
  Open();
  Choose(Title::kAction, testing::kActionNew);
  const Window window = Editor("ActionEditor");
  AddCommand(window, kHotKey, "s");
  AddCommand(window, kMenu, "f");
  AddCommand(window, kText, "Kind regards,");
  AddCommand(window, kSound, "done.wav");
  AddCommand(window, kRun, "xclock -digital");
  AddCommand(window, kInternet, "www.wikipedia.org");
  Replace(WaitChild(window, BoxOf(TabBar(window)).width + 28, 100), "Everything");
  Scroll(window, false);
  std::vector<Picture> tabs;
  for (int type = 0; type <= kInternet; type++) {
    // A click on a line shows its tab with what the line holds. The list shows five lines.
    if (type == kInternet) Scroll(window, true);
    const Picture former = Still(Framed(window));
    ClickCommand(window, type == kInternet ? type - 1 : type);
    ASSERT_TRUE(WaitFor([&] { return Take(player->display(), Framed(window)) != former; }));
    const Picture whole = Still(Framed(window));
    ForDocs(std::string("action-editor-") + kTabNames[type], whole);
    if (type == kText) ForHelp("action-editor", whole);
    tabs.push_back(Still(Bare(TabBar(window))));
  }
  ForHelp("action-editor-tabs", testing::Sheet(tabs, 2, 12));
  Cancel("ActionEditor");
}

TEST_F(EditorPictures, TheSymbolChooser) {
  Open();
  Choose(Title::kSymbol, testing::kSymbolEdit);
  const Window dialog = WaitDialog();
  const Window chooser = WaitChild(dialog, 4, 57 + 8);
  const Box before = Bare(chooser);
  const Picture plain = Still(before);
  ClickIn(chooser, 8 + 72 + 36, 8 + 16);
  ASSERT_TRUE(testing::WaitFor([&] { return testing::Take(player->display(), before) != plain; }));
  ForHelp("symbol-chooser", Still(Bare(dialog)));
  ForDocs("chooser", Still(Bare(dialog)));
  DialogRight();
}

TEST_F(EditorPictures, ThePreferences) {
  Open();
  Choose(Title::kOptions, testing::kPreferences);
  const Window window = Editor("Preferences");
  // The box is checked unless somebody does not want the splash, as these pictures do not.
  ClickIn(WaitChild(window, 16, TextHeight() + 180), 6, 6);
  ForBoth("preferences", Still(Framed(window)));
  ClickChild(window, BoxOf(window).width - 80, 100);  // More...
  const Window more = Editor("MorePreferences");
  Place(more, 40, 400);  // it is higher than the others
  ClickChild(more, BoxOf(more).width - 272, BoxOf(more).height - 40);  // Recommended
  ForBoth("more-preferences", Still(Framed(more)));
  Cancel("MorePreferences");
  Cancel("Preferences");
}

// The tick again, as a stroke of the draw button: in its middle, and what it becomes.
TEST_F(EditorPictures, ASymbolDrawnWithOneStroke) {
  Open();
  Choose(Title::kSymbol, testing::kSymbolNew);
  const Window window = Editor("SymbolEditor");
  const Window area = WaitChild(window, 16, 100);
  const Point origin = OriginOf(area);
  std::vector<Point> stroke = {{40, 150},  {60, 168},  {80, 190},  {104, 222},
                               {120, 196}, {150, 150}, {184, 104}, {226, 62}};
  for (Point& point : stroke) point = {origin.x + point.x, origin.y + point.y};
  Go(stroke[0]);
  player->Press(3);
  Trace(stroke);
  const Picture drawing = Still(Bare(area));
  player->Release(3);
  EXPECT_TRUE(WaitFor([&] { return Take(player->display(), Bare(area)) != drawing; }));
  ForBoth("symbol-editor-stroke", testing::Sheet({drawing, Still(Bare(area))}, 2, 12));
  Cancel("SymbolEditor");
}

}  // namespace
}  // namespace gromlit
