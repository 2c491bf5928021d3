// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include "core/option_files.h"
#include "display/scale.h"
#include "display/scale_choice.h"
#include "display/scaled_fonts.h"
#include "toolkit/button.h"
#include "toolkit/check_box.h"
#include "toolkit/dialog.h"
#include "toolkit/icon_window.h"
#include "toolkit/logo.h"
#include "toolkit/menu_hand.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/scrollbar.h"
#include "toolkit/tab_bar.h"
#include "toolkit/text.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::CostOf;
using testing::Picture;
using testing::Place;

TEST(ScaleChoice, CallerThenEnvironmentThenDesktop) {
  EXPECT_EQ(ChooseScale(0, nullptr, ""), 1);
  EXPECT_EQ(ChooseScale(2, nullptr, ""), 2);
  EXPECT_EQ(ChooseScale(1, "2", "192"), 1);
  EXPECT_EQ(ChooseScale(0, "2", "96"), 2);
  EXPECT_EQ(ChooseScale(0, "1", "192"), 1);
  EXPECT_EQ(ChooseScale(0, nullptr, "192"), 2);
}

TEST(ScaleChoice, OtherValuesOfTheEnvironmentAreIgnored) {
  for (const char* value : {"", "0", "3", "1.5", "2 ", " 2", "-2", "two", "22"}) {
    EXPECT_EQ(ChooseScale(0, value, ""), 1) << value;
    EXPECT_EQ(ChooseScale(0, value, "192"), 2) << value;
  }
}

TEST(ScaleChoice, DesktopsOf144DotsPerInchAreSharp) {
  for (const char* dpi : {"144", "144.0", "192", "288", "1e3"})
    EXPECT_EQ(ChooseScale(0, nullptr, dpi), 2) << dpi;
  for (const char* dpi : {"96", "143.9", "0", "-192", "nan", "x192", ""})
    EXPECT_EQ(ChooseScale(0, nullptr, dpi), 1) << dpi;
}

TEST(ScaledFonts, NearestToTwiceTheSizeThatIsLarger) {
  const char* const names[] = {
      "-a-f-medium-r-normal--0-0-75-75-c-0-iso8859-1",       // the server would stretch it
      "-a-f-medium-r-normal--26-120-100-100-c-0-iso8859-1",  // as with this one
      "-a-f-medium-r-normal--10-100-75-75-c-60-iso8859-1",
      "-a-f-medium-r-normal--20-200-75-75-c-100-iso8859-1",
      "-a-f-medium-r-normal--24-170-75-75-c-240-iso8859-1",
      "-b-f-medium-r-normal--24-170-75-75-c-120-iso8859-1",
      "fixed",
  };
  EXPECT_EQ(NearestDouble(names, 7, 13, 60), names[5]);
  EXPECT_EQ(NearestDouble(names, 7, 10, 50), names[3]);
  EXPECT_EQ(NearestDouble(names, 7, 24, 120), "") << "none is larger";
  EXPECT_EQ(NearestDouble(nullptr, 0, 13, 60), "");
}

// A picture with every pixel doubled both ways.
Picture Doubled(const Picture& picture) {
  Picture twice(2 * picture.width, 2 * picture.height, 0);
  for (int y = 0; y < twice.height; y++) {
    for (int x = 0; x < twice.width; x++) twice.At(x, y) = picture.At(x / 2, y / 2);
  }
  return twice;
}

// Everything is made at scale 2. Places that begin with "device" are pixels of the screen.
class DoubleSizeTest : public testing::MenuFixture {
 protected:
  void SetUp() override {
    UseScale(2);
    server = std::make_unique<testing::XServer>("2560x1440x24");
    MenuFixture::SetUp();
  }
  void TearDown() override {
    MenuFixture::TearDown();
    UseScale(1);
  }

  // The user goes to a device pixel of a window.
  void GoTo(Window window, int devicex, int devicey) {
    XSync(dpy, False);
    int x = 0;
    int y = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, devicex, devicey, &x, &y, &child);
    player->MoveTo(x, y);
    Pump();
  }
  void PressAt(Window window, int devicex, int devicey) {
    GoTo(window, devicex, devicey);
    player->Press(1);
    Pump();
  }
  void ReleaseAt(Window window, int devicex, int devicey) {
    GoTo(window, devicex, devicey);
    player->Release(1);
    Pump();
  }

  // Has `draw` draw in a fresh window of w x h logical pixels, at each scale; what it draws at
  // scale 2 must be the picture of scale 1 with its pixels doubled.
  template <typename Draw>
  void ExpectDoubled(int w, int h, Draw draw) {
    Picture at[2];
    for (const int scale : {1, 2}) {
      UseScale(scale);
      MakeImages();
      const Window paper = MakeChildWindow(top, 0, 0, w, h, lgrey.pixel, 0);
      const GC gc = MakeWindowGC(paper);
      XMapRaised(dpy, paper);
      draw(paper, gc);
      at[scale - 1] = Take(paper, 0, 0, scale * w, scale * h);
      XFreeGC(dpy, gc);
      XDestroyWindow(dpy, paper);
    }
    EXPECT_NE(at[0], Picture(w, h, kLightGrey)) << "nothing was drawn";
    EXPECT_TRUE(Doubled(at[0]) == at[1]) << at[0] << '\n' << at[1];
  }
  // The same of a window that `make` makes in the paper, after its exposure.
  template <typename Make>
  void ExpectWidgetDoubled(int w, int h, Make make) {
    ExpectDoubled(w, h, [&](Window paper, GC) {
      XMapWindow(dpy, make(paper));
      Pump();
    });
  }
};

TEST_F(DoubleSizeTest, BevelsAreThoseOfScale1Doubled) {
  for (const int up : {kSunken, kRaised}) {
    for (const int size : {1, 2, 3, 4, 5, 9, 30}) {
      ExpectDoubled(40, 40,
                    [&](Window paper, GC gc) { XDrawBevel(up, paper, gc, 3, 4, size, size + 2); });
    }
  }
}

TEST_F(DoubleSizeTest, RectanglesPointsAndLinesAreDoubled) {
  ExpectDoubled(60, 40, [&](Window paper, GC gc) {
    FillRectangle(paper, gc, white.pixel, 2, 3, 20, 10);
    DrawOutline(paper, gc, black.pixel, 30, 3, 12, 9);
    DrawOutline(paper, gc, black.pixel, 48, 3, 1, 1);
    InvertRectangle(paper, gc, 5, 5, 30, 20);
    InvertOutline(paper, gc, 4, 4, 40, 30);
    const XPoint points[] = {{1, 1}, {59, 39}, {20, 30}, {21, 31}};
    ScaledDrawPoints(paper, gc, points, 4);
    ScaledDrawLine(paper, gc, 10, 35, 50, 35);
    ScaledDrawLine(paper, gc, 55, 38, 55, 20);
    ScaledSetClipRectangle(gc, 24, 24, 5, 6);
    FillRectangle(paper, gc, blue.pixel, 0, 0, 60, 40);
  });
}

TEST_F(DoubleSizeTest, SlantingLinesAreTwoPixelsWideAndGoAwayAgain) {
  const GC gc = MakeWindowGC(top);
  {
    const Inverting inverting(gc);
    ScaledDrawLine(top, gc, 10, 10, 50, 30);
    const Picture seen = Take(top, 0, 0, 120, 80);
    const int inverted = 120 * 80 - seen.Count(kLightGrey, 0, 0, 120, 80);
    EXPECT_GE(inverted, 2 * 80);
    EXPECT_LE(inverted, 3 * 84);
    EXPECT_NE(seen.At(21, 21), kLightGrey) << "from the middle of the first pixel";
    EXPECT_NE(seen.At(101, 61), kLightGrey) << "to the middle of the last";
    ScaledDrawLine(top, gc, 10, 10, 50, 30);
  }
  EXPECT_EQ(Take(top, 0, 0, 120, 80), Picture(120, 80, kLightGrey));
  XFreeGC(dpy, gc);
}

TEST_F(DoubleSizeTest, WidgetsAreThoseOfScale1Doubled) {
  ExpectWidgetDoubled(20, 140, [](Window paper) {
    XScrollbar* sb = MakeScrollbar(paper, 2, 3, 126);
    sb->range = 400;
    sb->pos = 10;
    return sb->window;
  });
  for (const int state : {0, 1}) {
    ExpectWidgetDoubled(30, 30, [=](Window paper) {
      XCheckBox* box = MakeCheckBox(nullptr, paper, nullptr, 4, 5);
      box->state = state;
      return box->window;
    });
  }
  ExpectWidgetDoubled(
      90, 40, [](Window paper) { return MakeButton(nullptr, paper, "", nullptr, 5, 6)->window; });
  ExpectWidgetDoubled(120, 40, [](Window paper) {
    return MakePulldownButton(nullptr, paper, "", 5, 6, 100, nullptr)->window;
  });
  GromlitSymbol sym{};
  for (unsigned row = 0; row < kIconSize; row++) sym.icon[row] = 0x80010001U << row % 3;
  ExpectWidgetDoubled(
      50, 50, [&](Window paper) { return MakeIconWindow(paper, 3, 4, &sym, &sym)->window; });
  ExpectWidgetDoubled(
      50, 50, [&](Window paper) { return MakeIconWindow(paper, 3, 4, &sym, nullptr)->window; });
  ExpectDoubled(100, 40, [](Window paper, GC gc) {
    XDrawTabBevel(kRaised, paper, gc, 10, 5, 40, 20, 90);
    PutImage(paper, gc, downscrollImage, 60, 8);
  });
}

TEST_F(DoubleSizeTest, TheLogoIsDrawnAsLargeAndFine) {
  const GC gc = MakeWindowGC(top);
  PutImage(top, gc, logoImage, 10, 10);
  const int w = logoImage->width;
  const int h = logoImage->height;
  const Picture seen = Take(top, 20, 20, 2 * w, 2 * h);
  int odd = 0;  // blocks of four that are not of one colour
  for (int y = 0; y < 2 * h; y += 2) {
    for (int x = 0; x < 2 * w; x += 2) odd += seen.At(x, y) != seen.At(x + 1, y + 1) ? 1 : 0;
  }
  EXPECT_GT(odd, 300);
  EXPECT_EQ(PixelOf(top, 20 + 2 * w, 20), kLightGrey) << "no wider than twice";
  EXPECT_EQ(PixelOf(top, 20, 20 + 2 * h), kLightGrey);
  EXPECT_EQ(PixelOf(top, 20 + 2 * w - 1, 20), kWhite);
  XFreeGC(dpy, gc);
}

TEST_F(DoubleSizeTest, ImagesOfOthersAreDoubledEachTime) {
  const char* const dots[] = {"2 2 2 1", "a c #ff0000", "b c #00ff00", "ab", "ba"};
  XImage* image = XpmToPixmap(dots);
  const GC gc = MakeWindowGC(top);
  PutImage(top, gc, image, 3, 4);
  Picture small(2, 2, 0xff0000);
  small.At(1, 0) = small.At(0, 1) = 0x00ff00;
  EXPECT_EQ(Take(top, 6, 8, 4, 4), Doubled(small));
  XDestroyImage(image);
  XFreeGC(dpy, gc);
}

TEST_F(DoubleSizeTest, DrawingCostsWhatItCostsAtScale1) {
  XButton* button = MakeButton(nullptr, top, "Apply", nullptr, 10, 10);
  XScrollbar* sb = MakeScrollbar(top, 200, 10, 126);
  XMapWindow(dpy, sb->window);
  Pump();
  DrawButton(button);
  DrawScrollbar(sb);
  EXPECT_EQ(CostOf([&] { DrawButton(button); }), (testing::Cost{7, 0}));
  EXPECT_EQ(CostOf([&] { DrawScrollbar(sb); }), (testing::Cost{14, 0}));
}

TEST_F(DoubleSizeTest, FontsAreTwiceAsLargeOnTheLinesOfScale1) {
  // Of scale 1, as they are loaded there.
  for (const auto& [name, info] :
       {std::pair{txtFontname, txtFontinfo}, std::pair{buttonFontname, labelFontinfo},
        std::pair{logoFontname, logoFontinfo}}) {
    XFontStruct* small = XLoadQueryFont(dpy, name);
    ASSERT_NE(small, nullptr);
    const std::string text = "Hamburgefonstiv 0123";
    const int smallwidth = XTextWidth(small, text.c_str(), static_cast<int>(text.size()));
    const int width = XTextWidth(info, text.c_str(), static_cast<int>(text.size()));
    EXPECT_GT(width, 1.6 * smallwidth) << name;
    EXPECT_LT(width, 2.2 * smallwidth) << name;
    EXPECT_EQ(TextWidth(info, text), (width + 1) / 2);
    EXPECT_GE(info->ascent, small->ascent);
    EXPECT_LE(info->ascent, small->ascent + 2) << "logical pixels";
    EXPECT_LE(info->max_bounds.descent, small->max_bounds.descent + 2);
    XFreeFont(dpy, small);
  }
  EXPECT_EQ(txtCharht, txtFontinfo->ascent + txtFontinfo->descent);
}

TEST_F(DoubleSizeTest, TextStandsOnItsBaseline) {
  const GC gc = MakeWindowGC(top, labelFont);
  DrawText(top, gc, 30, 40, "HHH");
  const Picture seen = Take(top, 0, 0, 200, 120);
  EXPECT_GT(seen.Count(kBlack, 60, 78, 100, 2), 0) << "the last two rows above it";
  EXPECT_EQ(seen.Count(kBlack, 0, 80, 200, 40), 0) << "nothing below";
  EXPECT_EQ(seen.Count(kBlack, 0, 0, 60, 120), 0) << "nothing left of its start";
  const int rows = 80 - 2 * labelFontinfo->ascent;
  EXPECT_EQ(seen.Count(kBlack, 0, 0, 200, rows), 0);
  EXPECT_GT(seen.Count(kBlack, 60, 80 - 16, 100, 16), 3 * 2 * 2 * 10) << "letters of double height";
  // Letters that the larger font itself has not got.
  EXPECT_GT(TextWidth(txtFontinfo, "\u0416\u0416"), 2 * 4);
  XFreeGC(dpy, gc);
}

TEST_F(DoubleSizeTest, EventsReachHandlersInLogicalPixels) {
  struct Seen {
    WindowObj* wobj;
    XButtonEvent press;
    XExposeEvent exposed;
  } seen{};
  const Window window = MakeChildWindow(top, 10, 10, 50, 50, white.pixel, 0);
  seen.wobj = AllocWindowObj(window, &seen);
  SetHandler(seen.wobj, ButtonPress,
             [](void* obj, XEvent* event) { static_cast<Seen*>(obj)->press = event->xbutton; });
  SetHandler(seen.wobj, Expose,
             [](void* obj, XEvent* event) { static_cast<Seen*>(obj)->exposed = event->xexpose; });
  const auto press = [&] {
    XEvent event{};
    event.xbutton.type = ButtonPress;
    event.xbutton.window = window;
    event.xbutton.button = Button1;
    event.xbutton.x = 41;
    event.xbutton.y = -1;
    event.xbutton.x_root = 300;
    event.xbutton.y_root = -4;
    DispatchEvent(&event);
  };
  press();
  EXPECT_EQ(seen.press.x, 20);
  EXPECT_EQ(seen.press.y, -1) << "left of and above the window stays there";
  EXPECT_EQ(seen.press.x_root, 150);
  EXPECT_EQ(seen.press.y_root, -2);
  XEvent event{};
  event.xexpose.type = Expose;
  event.xexpose.window = window;
  event.xexpose.x = 3;
  event.xexpose.y = 4;
  event.xexpose.width = 4;
  event.xexpose.height = 2;
  DispatchEvent(&event);
  EXPECT_EQ(seen.exposed.x, 1);
  EXPECT_EQ(seen.exposed.width, 3) << "every pixel that has a part of it";
  EXPECT_EQ(seen.exposed.y, 2);
  EXPECT_EQ(seen.exposed.height, 1);
  // The windows of strokes, clicks and trays count in device pixels.
  seen.wobj->device = true;
  press();
  EXPECT_EQ(seen.press.x, 41);
  EXPECT_EQ(seen.press.x_root, 300);
  XDestroyWindow(dpy, window);
}

TEST_F(DoubleSizeTest, AButtonIsPressedUpToItsLastDevicePixel) {
  int pressed = 0;
  XButton* button = MakeButton(
      nullptr, top, "Apply", [](void* arg) { ++*static_cast<int*>(arg); }, 30, 40);
  button->arg = &pressed;
  Pump();
  EXPECT_EQ(PlaceOf(button->window), (Place{60, 80, 2 * kButtonWidth, 2 * kButtonHeight}));
  PressAt(button->window, 2 * kButtonWidth - 1, 2 * kButtonHeight - 1);
  EXPECT_EQ(button->state, kButtonPressed);
  ReleaseAt(button->window, 2 * kButtonWidth - 1, 2 * kButtonHeight - 1);
  EXPECT_EQ(pressed, 1);
  PressAt(button->window, 20, 20);
  ReleaseAt(button->window, 2 * kButtonWidth, 20);
  EXPECT_EQ(pressed, 1) << "let go beside it";
}

TEST_F(DoubleSizeTest, AScrollbarFollowsThePointer) {
  XScrollbar* sb = MakeScrollbar(top, 50, 40, 126);
  sb->range = 400;
  int last = -1;
  sb->scrollarg = &last;
  struct Hand {
    testing::Player* player;
    int steps;
  };
  static Hand hand;
  hand = {player.get(), 0};
  static const Window window = sb->window;
  sb->scroll = [](void* arg, int offset) {
    *static_cast<int*>(arg) = offset;
    // The press that is handled ends here, where the thumb has come to the pointer.
    if (offset == 20 * 4 && hand.steps++ == 0) hand.player->Release(1);
  };
  XMapWindow(dpy, window);
  Pump();
  ASSERT_EQ(sb->size, 25);
  EXPECT_EQ(PlaceOf(window), (Place{100, 80, 2 * kScrollbarWidth, 252}));
  GoTo(window, 14, 2 * 20);  // on the thumb
  player->Press(1);
  player->MoveTo(2 * (kTopX + 50) + 14, 2 * (kTopY + 40 + 20) + 40);
  Pump();
  EXPECT_EQ(sb->pos, 20) << "40 device pixels";
  EXPECT_EQ(last, 80);
}

TEST_F(DoubleSizeTest, ACheckBoxTakesAClickInItsLastCorner) {
  XCheckBox* box = MakeCheckBox(nullptr, top, nullptr, 20, 30);
  Pump();
  PressAt(box->window, 2 * kCheckBoxSize - 1, 2 * kCheckBoxSize - 1);
  player->Release(1);
  EXPECT_EQ(box->state, 0);
  PressAt(top, 2 * (20 + kCheckBoxSize), 2 * 30);
  player->Release(1);
  Pump();
  EXPECT_EQ(box->state, 0) << "beside it";
}

TEST_F(DoubleSizeTest, ATextFieldTakesTextAndPutsItsCaretBehind) {
  TextEditor* txt = MakeTextEditor(top, 20, 30, 200, kEditorHeight);
  XMapWindow(dpy, txt->window);
  Pump();
  GoTo(txt->window, 100, 20);
  for (const char c : std::string("wide")) player->Type(static_cast<KeySym>(c));
  ASSERT_TRUE(PumpUntil([&] { return std::string(TextEditorText(txt)) == "wide"; }));
  EXPECT_EQ(txt->caretx, TextWidth(txtFontinfo, "wide") + 3);
  const Picture seen = Take(txt->window, 0, 0, 400, 2 * kEditorHeight);
  EXPECT_EQ(seen.At(2 * txt->caretx + 2, 20), kBlack) << "a solid caret where the text ends";
  EXPECT_EQ(seen.At(2 * txt->caretx + 20, 20), kWhite);
  EXPECT_GT(seen.Count(kBlack, 8, 8, 2 * txt->caretx - 8, 30), 60) << "letters";
}

TEST_F(DoubleSizeTest, AMenuOpensAndIsChosenFrom) {
  XMenu* menu = Menu({Item("New"), Item("Open"), Item("Close")});
  ASSERT_TRUE(PopUpMenuGrabbed(300, 200, menu));
  Pump();
  EXPECT_EQ(PlaceOf(menu->window), (Place{600, 400, 2 * menu->width, 2 * menu->height}));
  PressAt(menu->window, menu->width, 2 * (4 + menu->itemheight) + menu->itemheight);
  EXPECT_EQ(menu->selected, 1);
  ReleaseAt(menu->window, menu->width, 2 * (4 + 2 * menu->itemheight) + menu->itemheight);
  EXPECT_EQ(calls, std::vector<std::string>{"Close"});
}

TEST_F(DoubleSizeTest, ASubmenuLiesBesideItsMenuAndIsFollowed) {
  XMenu* sub = Menu({Item("First"), Item("Second")});
  XMenu* menu = Menu({Item("One"), Item("More", sub)});
  ASSERT_TRUE(PopUpMenuGrabbed(300, 200, menu));
  GoTo(menu->window, menu->width, 2 * (4 + menu->itemheight) + menu->itemheight);
  ASSERT_TRUE(PumpUntil([&] { return Mapped(sub); }));
  EXPECT_EQ(PlaceOf(sub->window).x, 600 + 2 * menu->width);
  GoTo(sub->window, sub->width, 2 * (4 + sub->itemheight) + sub->itemheight);
  EXPECT_EQ(sub->selected, 1);
  player->Press(1);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, (std::vector<std::string>{"Second", "More"}));
}

TEST_F(DoubleSizeTest, TheResourceOfTheDesktopIsRead) {
  EXPECT_EQ(DpiOfDesktop(), "");
  const std::string resources = "Xft.antialias:\t1\nXft.dpi:\t192\n*background: grey\n";
  XChangeProperty(player->display(), player->root(), XA_RESOURCE_MANAGER, XA_STRING, 8,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(resources.data()),
                  static_cast<int>(resources.size()));
  XSync(player->display(), False);
  // It comes with the connection.
  Display* const former = dpy;
  dpy = XOpenDisplay(server->name().c_str());
  ASSERT_NE(dpy, nullptr);
  const unsigned long before = NextRequest(dpy);
  EXPECT_EQ(DpiOfDesktop(), "192");
  EXPECT_EQ(NextRequest(dpy), before) << "something was asked for it";
  XCloseDisplay(dpy);
  dpy = former;
}

// The same with today's manners.
class ModernDoubleSizeTest : public DoubleSizeTest {
 protected:
  void SetUp() override {
    options.temp4 = kModernManners;
    user = &options;
    DoubleSizeTest::SetUp();
  }
  void TearDown() override {
    CloseGrabbedMenu();
    Pump();
    DoubleSizeTest::TearDown();
    user = nullptr;
  }
  GromlitUserOptions options{};
};

TEST_F(ModernDoubleSizeTest, MenusStayOnTheScreenAndAreScrolledThere) {
  XMenu* menu = Menu({Item("New"), Item("Open")});
  ASSERT_TRUE(PopUpMenuGrabbed(1275, 718, menu));
  Pump();
  const Place corner = PlaceOf(menu->window);
  EXPECT_EQ(corner.x, 2 * menu->x);
  EXPECT_LE(corner.x + corner.width, 2560);
  EXPECT_LE(corner.y + corner.height, 1440);
  PopDownMenu(menu);

  std::vector<XMenuItem*> items;
  for (int i = 0; i < 100; i++) items.push_back(Item("Plug-in"));
  menu = Menu(items);
  ASSERT_TRUE(PopUpMenuGrabbed(600, 300, menu));
  Pump();
  const Place tall = PlaceOf(menu->window);
  EXPECT_GE(tall.y, 0);
  EXPECT_LE(tall.y + tall.height, 1440);
  EXPECT_EQ(tall.height, 2 * menu->height);
  // The arrow at its lower end, which leads to the rows that are left.
  const int arrow = 2 * (4 + (menu->visible + 1) * menu->itemheight) + menu->itemheight;
  const Picture seen = Take(menu->window, 0, arrow - menu->itemheight, tall.width, 30);
  EXPECT_GT(seen.Count(kBlack, 0, 0, tall.width, 30), 60);
  GoTo(menu->window, menu->width, arrow);
  ASSERT_TRUE(PumpUntil([&] {
    ScrollRestedMenu();
    return menu->top > 0;
  }));
}

TEST_F(ModernDoubleSizeTest, AClickPutsTheCaretWhereItIs) {
  TextEditor* txt = MakeTextEditor(top, 20, 30, 200, kEditorHeight);
  TextEditorInit(txt, "abcdef");
  XMapWindow(dpy, txt->window);
  Pump();
  const int third = 2 * (4 + TextWidth(txtFontinfo, "abc"));
  PressAt(txt->window, third + 1, 24);
  player->Release(1);
  Pump();
  EXPECT_EQ(txt->index, 3);
  PressAt(txt->window, third - 10, 24);
  player->Release(1);
  Pump();
  EXPECT_EQ(txt->index, 2);
}

TEST_F(ModernDoubleSizeTest, DialogsTellTheirSizeInPixelsOfTheScreen) {
  static const char* const kQuestion[] = {"Is this the question?", nullptr};
  XDialog* dlog = MakeDialog("Ask", kQuestion, nullptr, 0, 0);
  player->MoveTo(1500, 700);
  Pump();
  MousePopUpDialog(dlog, "Ask");
  ASSERT_TRUE(PumpUntil([&] { return dlog->shown != 0; }));
  const Place at = PlaceOf(dlog->window);
  EXPECT_EQ(at.width, 2 * dlog->width);
  EXPECT_NEAR(at.x + at.width / 2, 1500, 2);
  XSizeHints hints{};
  long given;
  ASSERT_NE(XGetWMNormalHints(dpy, dlog->window, &hints, &given), 0);
  EXPECT_EQ(hints.max_width, at.width);
  EXPECT_EQ(hints.min_height, at.height);
  EXPECT_EQ(hints.x, at.x);
}

}  // namespace
}  // namespace gromlit
