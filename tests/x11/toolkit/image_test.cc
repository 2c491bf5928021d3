// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <set>
#include <string>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/image.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;

class ImageTest : public testing::WidgetFixture {};

// The image of a picture, released with the test; its pixels without what a depth leaves unused.
class Made {
 public:
  explicit Made(std::initializer_list<const char*> lines)
      : image_(XpmToPixmap(std::span(lines.begin(), lines.size()))) {}
  ~Made() {
    if (image_ != nullptr) XDestroyImage(image_);
  }
  Made(const Made&) = delete;
  Made& operator=(const Made&) = delete;
  XImage* get() const { return image_; }
  unsigned long At(int x, int y) const { return XGetPixel(image_, x, y) & 0xffffff; }

 private:
  XImage* image_;
};

TEST_F(ImageTest, OneCharacterPerPixel) {
  const Made image{
      "  3    2        3            1", "  c #102030", "# c #ffffff", "a c #000079", " #a", "a# "};
  ASSERT_NE(image.get(), nullptr);
  EXPECT_EQ(image.get()->width, 3);
  EXPECT_EQ(image.get()->height, 2);
  EXPECT_EQ(image.At(0, 0), 0x102030U);
  EXPECT_EQ(image.At(1, 0), 0xffffffU);
  EXPECT_EQ(image.At(2, 0), 0x000079U);
  EXPECT_EQ(image.At(0, 1), 0x000079U);
  EXPECT_EQ(image.At(1, 1), 0xffffffU);
  EXPECT_EQ(image.At(2, 1), 0x102030U);
}

TEST_F(ImageTest, TwoCharactersPerPixel) {
  const Made image{"2 1 2 2", "ab c #010203", "ba c #a0b0c0", "baab"};
  ASSERT_NE(image.get(), nullptr);
  EXPECT_EQ(image.At(0, 0), 0xa0b0c0U);
  EXPECT_EQ(image.At(1, 0), 0x010203U);
}

TEST_F(ImageTest, KeysAboveTheSeventhBitAreUnsigned) {
  const Made one{"1 1 1 1", "\xe9 c #123456", "\xe9"};
  ASSERT_NE(one.get(), nullptr);
  EXPECT_EQ(one.At(0, 0), 0x123456U);
  const Made two{"1 1 1 2", "\xff\xfe c #123456", "\xff\xfe"};
  ASSERT_NE(two.get(), nullptr);
  EXPECT_EQ(two.At(0, 0), 0x123456U);
}

TEST_F(ImageTest, ThreeCharactersPerPixelAreRefused) {
  EXPECT_EQ((Made{"1 1 1 3", "aaa c #ffffff", "aaa"}).get(), nullptr);
}

TEST_F(ImageTest, OnlyTheColourKeyIsUnderstood) {
  EXPECT_EQ((Made{"1 1 1 1", "a m #ffffff", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 1 1", "a s #ffffff", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 1 2", "aa m #ffffff", "aa"}).get(), nullptr);
}

TEST_F(ImageTest, NamedAndTransparentColoursAreRefused) {
  EXPECT_EQ((Made{"1 1 1 1", "a c red", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 1 1", "a c None", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 1 1", "a c #ff", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 1 1", "", "a"}).get(), nullptr);
}

TEST_F(ImageTest, TheKeyOfTwoBytes255IsNoKey) {
  const Made image{"2 1 2 2", "\xff\xff c #ffffff", "aa c #112233",
                   "\xff\xff"
                   "aa"};
  ASSERT_NE(image.get(), nullptr);
  EXPECT_EQ(image.At(0, 0), 0U);
  EXPECT_EQ(image.At(1, 0), 0x112233U);
}

TEST_F(ImageTest, DamagedHeadersAreRefused) {
  for (const char* header :
       {"", "3", "3 2 1", "a b c d", "0 1 1 1", "1 0 1 1", "-1 1 1 1", "1 -1 1 1", "1 1 -1 1",
        "1 1 1 0", "1 1 1 -1", "40000 1 1 1", "1 40000 1 1"}) {
    EXPECT_EQ((Made{header, "a c #ffffff", "a"}).get(), nullptr) << header;
  }
  EXPECT_EQ((Made{}).get(), nullptr);
}

TEST_F(ImageTest, NumbersThatFitNowhereAreRefused) {
  // Each of them is 1 when its upper bits are lost.
  for (const char* header : {"4294967297 1 1 1", "1 4294967297 1 1", "1 1 4294967297 1",
                             "1 1 1 4294967297", "1 1 1 18446744073709551617"}) {
    EXPECT_EQ((Made{header, "a c #ffffff", "a"}).get(), nullptr) << header;
  }
}

TEST_F(ImageTest, ColoursWithoutTwoDigitsEachAreRefused) {
  for (const char* colour : {"a c #-1-1-1", "a c #+1+1+1", "a c # 1 1 1", "a c #fffff"}) {
    EXPECT_EQ((Made{"1 1 1 1", colour, "a"}).get(), nullptr) << colour;
  }
}

TEST_F(ImageTest, FewerLinesThanTheHeaderSaysAreRefused) {
  EXPECT_EQ((Made{"1 2 1 1", "a c #ffffff", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 2 1", "a c #ffffff", "a"}).get(), nullptr);
  EXPECT_EQ((Made{"1 1 2147483647 1", "a c #ffffff", "a"}).get(), nullptr);
}

TEST_F(ImageTest, ShortRowsAndUnknownKeysGivePixelZero) {
  const Made one{"3 2 1 1", "a c #ffffff", "a", "xaax"};
  ASSERT_NE(one.get(), nullptr);
  EXPECT_EQ(one.At(0, 0), 0xffffffU);
  EXPECT_EQ(one.At(1, 0), 0U);
  EXPECT_EQ(one.At(2, 0), 0U);
  EXPECT_EQ(one.At(0, 1), 0U);
  EXPECT_EQ(one.At(2, 1), 0xffffffU);
  const Made two{"2 1 1 2", "aa c #ffffff", "aaa"};  // half a key at the end
  ASSERT_NE(two.get(), nullptr);
  EXPECT_EQ(two.At(0, 0), 0xffffffU);
  EXPECT_EQ(two.At(1, 0), 0U);
}

TEST_F(ImageTest, PixelsAreThoseThatTheServerAllocates) {
  const Made image{"4 1 4 1", "a c #000000", "b c #7f8081", "c c #fefffd", "d c #123456", "abcd"};
  ASSERT_NE(image.get(), nullptr);
  const unsigned values[][3] = {{0, 0, 0}, {0x7f, 0x80, 0x81}, {0xfe, 0xff, 0xfd}, {18, 52, 86}};
  for (int i = 0; i < 4; i++) {
    XColor colour{};
    colour.red = static_cast<unsigned short>(values[i][0] * 257);
    colour.green = static_cast<unsigned short>(values[i][1] * 257);
    colour.blue = static_cast<unsigned short>(values[i][2] * 257);
    ASSERT_TRUE(XAllocColor(dpy, cmap, &colour));
    EXPECT_EQ(XGetPixel(image.get(), i, 0), colour.pixel);
  }
}

TEST_F(ImageTest, FormatIsThatOfTheRootWindow) {
  XImage* read = XGetImage(dpy, root, 0, 0, 11, 11, 0xffffff, ZPixmap);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(upscrollImage->depth, read->depth);
  EXPECT_EQ(upscrollImage->format, read->format);
  EXPECT_EQ(upscrollImage->bits_per_pixel, read->bits_per_pixel);
  EXPECT_EQ(upscrollImage->bytes_per_line, read->bytes_per_line);
  EXPECT_EQ(upscrollImage->bitmap_pad, read->bitmap_pad);
  EXPECT_EQ(upscrollImage->byte_order, read->byte_order);
  EXPECT_EQ(upscrollImage->red_mask, read->red_mask);
  XDestroyImage(read);
}

std::set<unsigned long> ColoursOf(XImage* image) {
  std::set<unsigned long> colours;
  for (int y = 0; y < image->height; y++) {
    for (int x = 0; x < image->width; x++) colours.insert(XGetPixel(image, x, y) & 0xffffff);
  }
  return colours;
}

TEST_F(ImageTest, TheLogoHasItsSizeAndFortyEightColours) {
  ASSERT_NE(logoImage, nullptr);
  EXPECT_EQ(logoImage->width, 125);
  EXPECT_EQ(logoImage->height, 57);
  const auto colours = ColoursOf(logoImage);
  EXPECT_EQ(colours.size(), 48U);
  EXPECT_TRUE(colours.contains(0xffffff));
  EXPECT_TRUE(colours.contains(0x000079));
  EXPECT_TRUE(colours.contains(0x282c28));
}

TEST_F(ImageTest, TheWordmarkHasThirtyEvenGreys) {
  ASSERT_NE(smImage, nullptr);
  EXPECT_EQ(smImage->width, 163);
  EXPECT_EQ(smImage->height, 29);
  const auto colours = ColoursOf(smImage);
  EXPECT_EQ(colours.size(), 30U);
  EXPECT_EQ(*colours.begin(), 0x000000U);
  EXPECT_EQ(*colours.rbegin(), 0xf8fcf8U);
  unsigned long before = 0;
  for (const unsigned long colour : colours) {
    if (colour == 0) continue;
    const unsigned long step = (colour >> 8 & 0xff) - (before >> 8 & 0xff);
    EXPECT_GE(step, 8U) << std::hex << colour;
    EXPECT_LE(step, 9U) << std::hex << colour;
    before = colour;
  }
}

TEST_F(ImageTest, TheArrowsHaveTheirSizesAndColours) {
  const std::set<unsigned long> scroll = {0x707070, 0xa8a8a8, 0xc0c0c0, 0xffffff};
  for (XImage* image : {upscrollImage, downscrollImage}) {
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 11);
    EXPECT_EQ(image->height, 11);
    EXPECT_EQ(ColoursOf(image), scroll);
  }
  ASSERT_NE(rightmenuImage, nullptr);
  EXPECT_EQ(rightmenuImage->width, 11);
  EXPECT_EQ(rightmenuImage->height, 11);
  EXPECT_EQ(ColoursOf(rightmenuImage), (std::set<unsigned long>{0x707070, 0xc0c0c0, 0xe8e8e8}));
}

TEST_F(ImageTest, MakingAllFiveAsksTheServerNothing) {
  EXPECT_EQ(CostOf([] { MakeImages(); }), (Cost{0, 0}));
}

TEST_F(ImageTest, DrawingShowsThePixelsInOneRequest) {
  GC gc = MakeWindowGC(top);
  PutImage(top, gc, logoImage, 20, 30);
  EXPECT_EQ(CostOf([&] { PutImage(top, gc, logoImage, 20, 30); }), (Cost{1, 0}));
  const testing::Picture shown = Take(top, 20, 30, logoImage->width, logoImage->height);
  for (int y = 0; y < logoImage->height; y++) {
    for (int x = 0; x < logoImage->width; x++) {
      ASSERT_EQ(shown.At(x, y), XGetPixel(logoImage, x, y) & 0xffffff) << x << ", " << y;
    }
  }
  EXPECT_EQ(CostOf([&] { PutImage(top, gc, nullptr, 0, 0); }), (Cost{0, 0}));
  XFreeGC(dpy, gc);
}

// A screen smaller than the pictures, and screens whose colours have to be asked for.
class OtherScreenTest : public testing::XFixture {
 protected:
  void Use(const std::string& name, std::vector<std::string> more = {}) {
    server = std::make_unique<testing::XServer>(name, std::move(more));
    XFixture::SetUp();
  }
  void SetUp() override {}
};

TEST_F(OtherScreenTest, AScreenSmallerThanThePictures) {
  Use("64x48x24");
  ASSERT_NE(logoImage, nullptr);
  EXPECT_EQ(logoImage->width, 125);
  EXPECT_EQ(ColoursOf(logoImage).size(), 48U);
}

TEST_F(OtherScreenTest, AScreenOfSixteenBitsPerPixel) {
  Use("640x480x16");
  ASSERT_NE(upscrollImage, nullptr);
  XColor colour{};
  colour.red = colour.green = colour.blue = 0x7070;
  ASSERT_TRUE(XAllocColor(dpy, cmap, &colour));
  bool found = false;
  for (int i = 0; i < 121; i++) {
    found = found || XGetPixel(upscrollImage, i % 11, i / 11) == colour.pixel;
  }
  EXPECT_TRUE(found);
}

TEST_F(OtherScreenTest, AScreenWithAColourMapOfItsOwn) {
  Use("640x480x8");
  ASSERT_NE(logoImage, nullptr);
  EXPECT_EQ(logoImage->depth, 8);
  EXPECT_EQ(logoImage->bits_per_pixel, 8);
}

}  // namespace
}  // namespace gromlit
