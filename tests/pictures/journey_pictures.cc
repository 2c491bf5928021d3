// A user's first gestures, from a new symbol to changed preferences: the pictures of the help page
// about them, and those of the symbol editor, the picker and the trail.
#include "tests/pictures/studio.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>

namespace gromlit {
namespace {

using testing::Box;
using testing::Exists;
using testing::kDrawEll;
using testing::kDrawTick;
using testing::kEditorClass;
using testing::kTick;
using testing::Picture;
using testing::Point;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;

constexpr const char* kGreeting = "Kind regards, Ada";

class JourneyPictures : public testing::Studio {
 public:
  void MakeTheSymbol();
  void MakeThePlugIn();
  void MakeTheAction();
  void DrawTheStroke();
  void ChangeOrderAndSymbol();
  void DeleteAndExit();

  Box TheLetter() { return Framed(editor->window()); }
  // Whether something dark stands where the letter's last, empty line begins.
  bool CaretIsAtTheEnd() {
    const Point origin = OriginOf(editor->window());
    const Picture place = testing::Take(player->display(), {origin.x + 1, origin.y + 104, 6, 12});
    return std::any_of(place.pixels.begin(), place.pixels.end(),
                       [](uint32_t pixel) { return (pixel & 0xff) < 0x40; });
  }
  // Whether the editor's title says that the file is not saved.
  bool HasStar() {
    char* name = nullptr;
    if (XFetchName(player->display(), editor->window(), &name) == 0) return false;
    const bool star = name[0] == '*';
    XFree(name);
    return star;
  }
  bool Saved() { return ReadText(editor->file()).find(kGreeting) != std::string::npos; }
  // Where the chooser has a symbol of the library: the new symbol comes first, then the others as
  // their directory gives them.
  int PlaceOf(const std::string& name) {
    int place = 1;
    for (const auto& entry : std::filesystem::directory_iterator(*install / "symbols")) {
      const std::string stem = entry.path().stem().string();
      if (stem == name) break;
      if (stem != "Tick") place++;
    }
    return place;
  }
  void Ok(Window window) { ClickChild(window, 560 - 160, BoxOf(window).height - 40); }
};

void JourneyPictures::MakeTheSymbol() {
  // The head of an arrow for the icon, which says the way of the pen.
  const std::vector<Point> dots = {{26, 3}, {27, 3}, {28, 3}, {29, 3},
                                   {30, 5}, {30, 6}, {30, 7}, {30, 8}};
  MakeSymbol("Tick", kTick, dots, [this](int step) {
    const Window window = Editor("SymbolEditor");
    const char* const names[] = {"vector", "bitmap", "name"};
    const Picture picture = Still(Framed(window));
    ForBoth(std::string("symbol-editor-") + names[step - 1], picture);
  });
  EXPECT_TRUE(Exists(SymbolFile("Tick")));
}

void JourneyPictures::MakeThePlugIn() {
  StartPicking();
  ASSERT_TRUE(Over(editor->window(), 150, 200));
  // The label says the class as soon as the pointer has moved there.
  ASSERT_TRUE(WaitFor([this] { return PickLabel() != 0 && Reads(PickLabel(), kEditorClass); }));
  const Picture picture = Still(TheLetter());
  ForDocs("picker-label", picture);
  ForHelp("new-plugin", picture);
  player->Click(1);
  ASSERT_TRUE(WaitFor([this] { return Exists(PluginFile(kEditorClass)); }));

  const Window button = PluginButton();
  EXPECT_TRUE(PassOver(editor->window(), [this] { return !HasIcon(0); }));
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  const Window dialog = WaitDialog();
  Replace(DialogField(), "Mousepad");
  ForHelp("journey-name", Still(Bare(dialog)));
  const Picture former = Still(Bare(button));
  DialogLeft();
  EXPECT_TRUE(WaitFor([&] { return testing::Take(player->display(), Bare(button)) != former; }));
  ForHelp("journey-plugin", Still(Framed(MainWindow())));
}

void JourneyPictures::MakeTheAction() {
  Choose(Title::kAction, testing::kActionNew);
  const Window window = Editor("ActionEditor");
  AddCommand(window, kHotKey, "s");
  AddCommand(window, kText, kGreeting);
  const int width = BoxOf(TabBar(window)).width;
  Replace(WaitChild(window, width + 28, 100), "Sign");
  ClickIn(WaitChild(window, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(0);  // the symbol made last comes first
  ForHelp("journey-action", Still(Framed(window)));
  Ok(window);
  ASSERT_TRUE(WaitHidden("ActionEditor"));
}

void JourneyPictures::DrawTheStroke() {
  editor->TakeFocus();
  EXPECT_TRUE(WaitFor([this] {
    Chord(XK_Control_L, XK_End);
    return WaitFor([this] { return CaretIsAtTheEnd(); }, std::chrono::seconds(2));
  }));
  Go(kDrawTick[0]);
  player->Press(3);
  Trace(kDrawTick);
  ForBoth("stroke", Still(TheLetter()));
  player->Release(3);
  EXPECT_TRUE(TrailIsGone());
  EXPECT_TRUE(PointerBecomesFree());
  EXPECT_TRUE(WaitFor([this] { return HasStar(); }));
  const Picture typed = Still(TheLetter());
  ForHelp("journey-typed", typed);
  ForDocs("stroke-done", typed);
  // The file was saved before the text was typed.
  EXPECT_FALSE(Saved());
}

void JourneyPictures::ChangeOrderAndSymbol() {
  EXPECT_TRUE(PassOver(editor->window(), [this] { return HasIcon(0); }));
  SelectCell(0);
  ForHelp("journey-selected", Still(Framed(MainWindow())));
  Choose(Title::kAction, testing::kActionEdit);
  const Window window = Editor("ActionEditor");
  const int width = BoxOf(TabBar(window)).width;
  ClickCommand(window, 1);
  ClickChild(window, width - 168, BoxOf(window).height - 40);  // Move Up
  ClickIn(WaitChild(window, width + 128 + 48, 100), 20, 20);
  ChooseSymbol(PlaceOf("L"));
  ForHelp("journey-order", Still(Framed(window)));
  Ok(window);
  ASSERT_TRUE(WaitHidden("ActionEditor"));

  // The first greeting is taken away by hand.
  editor->TakeFocus();
  for (const char* c = kGreeting; *c != '\0'; c++) player->Type(XK_BackSpace);
  Draw(kDrawEll);
  EXPECT_TRUE(WaitFor([this] { return Saved() && !HasStar(); })) << ReadText(editor->file());
  ForHelp("journey-saved", Still(TheLetter()));
}

void JourneyPictures::DeleteAndExit() {
  EXPECT_TRUE(PassOver(editor->window(), [this] { return HasIcon(0); }));
  SelectCell(0);
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupPaste);
  EXPECT_TRUE(WaitFor([this] { return HasIcon(1); }));
  ForHelp("journey-copied", Still(Framed(MainWindow())));
  Choose(Title::kAction, testing::kActionDelete);
  EXPECT_TRUE(WaitFor([this] { return !HasIcon(1); }));
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  ForHelp("dialog-delete-plug-in", Still(Bare(WaitDialog())));
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return !Exists(PluginFile(kEditorClass)); }));
  Choose(Title::kSymbol, testing::kSymbolDelete);
  ChooseSymbol(0);
  ASSERT_TRUE(WaitFor([this] { return Dialog() != 0; }));
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return !Exists(SymbolFile("Tick")); }));
  Choose(Title::kPlugIn, testing::kExit);
  const Box box = BoxOf(WaitDialog());
  ClickChild(WaitDialog(), box.width - 144, box.height - 32);
  EXPECT_EQ(gromlit->Wait(), 0);
}

TEST_F(JourneyPictures, FromANewSymbolToStrokesThatAct) {
  StartEditor();
  Open();
  using Step = void (JourneyPictures::*)();
  for (const Step step :
       {&JourneyPictures::MakeTheSymbol, &JourneyPictures::MakeThePlugIn,
        &JourneyPictures::MakeTheAction, &JourneyPictures::DrawTheStroke,
        &JourneyPictures::ChangeOrderAndSymbol, &JourneyPictures::DeleteAndExit}) {
    (this->*step)();
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace gromlit
