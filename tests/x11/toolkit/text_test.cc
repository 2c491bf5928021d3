// Names beyond ASCII, shown by their letters where a font has them.

// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <X11/keysym.h>

#include "app/windows/icon_name.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"
#include "toolkit/image.h"
#include "toolkit/text.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

constexpr const char* kName =
    "Gr\xc3\xbc\xc3\x9f"
    "e \xd0\x96\xe2\x82\xac";  // Grüße Ж€

class TextTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    gc = MakeWindowGC(top, txtFont);
    XSetBackground(dpy, gc, lgrey.pixel);
  }
  void TearDown() override {
    if (dpy != nullptr) XFreeGC(dpy, gc);
    WidgetFixture::TearDown();
  }

  // What `draw` leaves on an empty ground.
  template <typename Draw>
  Picture Drawn(Draw draw) {
    XClearWindow(dpy, top);
    draw();
    return Take(top, 0, 0, 200, 40);
  }
  // The letters drawn by the server itself, from a font of all languages.
  Picture Letters(const std::vector<unsigned>& letters, const char* font) {
    XFontStruct* wide = XLoadQueryFont(dpy, font);
    if (wide == nullptr) {
      ADD_FAILURE() << font;
      return Picture(0, 0, 0);
    }
    std::vector<XChar2b> text;
    for (const unsigned letter : letters) {
      text.push_back({static_cast<unsigned char>(letter >> 8), static_cast<unsigned char>(letter)});
    }
    widewidth = XTextWidth16(wide, text.data(), static_cast<int>(text.size()));
    const GC pen = MakeWindowGC(top, wide->fid);
    Picture picture = Drawn(
        [&] { XDrawString16(dpy, top, pen, 10, 20, text.data(), static_cast<int>(text.size())); });
    XFreeGC(dpy, pen);
    XFreeFont(dpy, wide);
    return picture;
  }
  static constexpr const char* kFixed =
      "-misc-fixed-medium-r-semicondensed--13-120-75-75-c-60-iso10646-1";

  GC gc = nullptr;
  int widewidth = 0;
};

TEST_F(TextTest, PlainAsciiIsDrawnAsItLies) {
  const std::string text = "Plain text ~!";
  const Picture expected =
      Drawn([&] { XDrawString(dpy, top, gc, 10, 20, text.data(), static_cast<int>(text.size())); });
  EXPECT_EQ(Drawn([&] { DrawText(top, gc, 10, 20, text); }), expected);
  EXPECT_EQ(TextWidth(txtFontinfo, text), XTextWidth(txtFontinfo, text.data(), 13));
  EXPECT_EQ(CostOf([&] { DrawText(top, gc, 10, 20, text); }), (Cost{1, 0}));
}

TEST_F(TextTest, UtfEightIsDrawnByItsLetters) {
  const Picture expected = Letters({'G', 'r', 0xfc, 0xdf, 'e', ' ', 0x416, 0x20ac}, kFixed);
  EXPECT_EQ(Drawn([&] { DrawText(top, gc, 10, 20, kName); }), expected);
  EXPECT_EQ(TextWidth(txtFontinfo, kName), widewidth);
  // The context has its own font again.
  const Picture plain = Drawn([&] { XDrawString(dpy, top, gc, 10, 20, "abc", 3); });
  EXPECT_EQ(Drawn([&] { DrawText(top, gc, 10, 20, "abc"); }), plain);
  EXPECT_EQ(CostOf([&] { DrawText(top, gc, 10, 20, kName); }).roundtrips, 0u);
}

TEST_F(TextTest, SoItIsInTheFontOfButtons) {
  const Picture expected = Letters(
      {0xdc, 'b', 'e', 'r'}, "-adobe-helvetica-medium-r-normal--12-120-75-75-p-67-iso10646-1");
  const GC pen = MakeWindowGC(top, labelFont);
  EXPECT_EQ(Drawn([&] {
              DrawText(top, pen, 10, 20,
                       "\xc3\x9c"
                       "ber");
            }),
            expected);
  EXPECT_EQ(TextWidth(labelFontinfo,
                      "\xc3\x9c"
                      "ber"),
            widewidth);
  XFreeGC(dpy, pen);
}

TEST_F(TextTest, LettersThatTheFontLacksAreMarked) {
  // A face, beyond what the protocol can draw, and a letter that the font has.
  EXPECT_EQ(Drawn([&] { DrawText(top, gc, 10, 20, "\xf0\x9f\x98\x80\xc3\xbc"); }),
            Letters({0xfffd, 0xfc}, kFixed));
}

TEST_F(TextTest, WhatIsNotUtfEightIsDrawnByItsBytes) {
  const std::string text =
      "Gr\xfc\xdf"
      "e";
  const Picture expected =
      Drawn([&] { XDrawString(dpy, top, gc, 10, 20, text.data(), static_cast<int>(text.size())); });
  EXPECT_EQ(Drawn([&] { DrawText(top, gc, 10, 20, text); }), expected);
}

TEST_F(TextTest, ShorteningKeepsLettersWhole) {
  std::string text;
  for (int i = 0; i < 30; i++) text += "\xc3\xbc";
  for (int room = 20; room < 200; room++) {
    const std::string fits = FittingText(txtFontinfo, text, room);
    ASSERT_LE(TextWidth(txtFontinfo, fits), room);
    if (fits == text) continue;
    EXPECT_EQ(fits.size() % 2, 1u) << "three dots behind letters of two bytes";
    EXPECT_GT(TextWidth(txtFontinfo, fits) + 6, room - 6);
  }
  EXPECT_EQ(FittingText(txtFontinfo, "abc", 18), "abc");
  EXPECT_EQ(FittingText(txtFontinfo, "abc", 17), "...") << "no letter and the dots have room";
  EXPECT_EQ(FittingText(nullptr, "abc", 0), "abc");
}

TEST_F(TextTest, ANameOfTwoLinesIsSplitBetweenLetters) {
  std::string name = "a";
  for (int i = 0; i < 14; i++) name += "\xc3\xbc";
  ASSERT_EQ(name.size() / 2 % 2, 0u) << "the middle lies within a letter";
  const IconNamePlace place{.centre = 100, .splitcentre = 100, .baseline = 12, .limit = 64};
  const Picture shown = Drawn([&] { DrawIconName(top, gc, name, place); });
  const size_t half = name.size() / 2 - 1;
  const Picture expected = Drawn([&] {
    for (const auto& [part, baseline] :
         {std::pair(name.substr(0, half), 12), std::pair(name.substr(half), 12 + txtCharht)}) {
      DrawText(top, gc, 100 - TextWidth(txtFontinfo, part) / 2, baseline, part);
    }
  });
  EXPECT_EQ(shown, expected);
}

TEST_F(TextTest, AFieldShowsAndEditsWholeLetters) {
  MakeImages();
  TextEditor* field = MakeTextEditor(top, 10, 10, 200, kEditorHeight);
  XMapWindow(dpy, field->window);
  TextEditorInit(field, kName);
  MoveTo(20, 20);
  Pump();
  ASSERT_EQ(field->inside, 1);
  EXPECT_EQ(field->caretx, TextWidth(txtFontinfo, kName) + 3);
  const auto type = [&](KeySym key) {
    player->Type(key);
    Pump();
    return std::string(TextEditorText(field));
  };
  EXPECT_EQ(type(XK_BackSpace), std::string(kName).substr(0, 10)) << "the euro sign goes whole";
  type(XK_Left);
  EXPECT_EQ(field->index, 8);
  type(XK_Left);
  type(XK_Left);
  type(XK_Left);
  EXPECT_EQ(field->index, 4) << "before the second of two letters of two bytes";
  EXPECT_EQ(type(XK_Delete),
            "Gr\xc3\xbc"
            "e \xd0\x96");
  EXPECT_EQ(type(XK_s),
            "Gr\xc3\xbc"
            "se \xd0\x96");
  type(XK_Right);
  type(XK_Right);
  EXPECT_EQ(field->index, 7);
  type(XK_Right);
  EXPECT_EQ(field->index, 9);
}

}  // namespace
}  // namespace gromlit
