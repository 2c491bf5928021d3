// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <cstring>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"
#include "toolkit/image.h"
#include "toolkit/logo.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

class LogoTest : public testing::WidgetFixture {
 protected:
  static constexpr int kWidth = 360;

  Picture TakeLogo(const XLogo* logo) {
    return Take(logo->window, 0, 0, logo->width, logo->height);
  }

  // What every banner has: the frame, and the logo over it.
  Picture Plain() {
    Picture picture(kWidth, 61, kWhite);
    picture.Bevel(kDarkGrey, kWhite, 0, 0, kWidth, 61);
    Place(&picture, logoImage, 6, 2);
    return picture;
  }
  void Place(Picture* picture, XImage* image, int x, int y) {
    for (int row = 0; row < image->height; row++) {
      for (int column = 0; column < image->width; column++) {
        picture->At(x + column, y + row) = XGetPixel(image, column, row) & 0xffffff;
      }
    }
  }
};

TEST_F(LogoTest, TheRecordAndWindowOfABanner) {
  const char* const title = "Title";
  const XLogo* logo = MakeLogo(top, 16, 16, kWidth, smImage, title);
  EXPECT_EQ(logo->width, kWidth);
  EXPECT_EQ(logo->height, 61);
  EXPECT_EQ(logo->mid, smImage);
  EXPECT_EQ(logo->left, nullptr);
  EXPECT_EQ(logo->right, nullptr);
  EXPECT_EQ(logo->title, title);
  EXPECT_EQ(logo->gc, logogc);
  ASSERT_NE(logo->wobj, nullptr);
  EXPECT_EQ(logo->wobj->window, logo->window);
  EXPECT_EQ(logo->wobj->obj, logo);
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(dpy, logo->window, &is));
  EXPECT_EQ(is.x, 16);
  EXPECT_EQ(is.y, 16);
  EXPECT_EQ(is.width, kWidth);
  EXPECT_EQ(is.height, 61);
  EXPECT_EQ(is.border_width, 0);
  EXPECT_EQ(is.map_state, IsViewable);
  EXPECT_EQ(is.backing_store, WhenMapped);
  EXPECT_EQ(is.your_event_mask, ExposureMask | ButtonPressMask | ButtonReleaseMask);
}

TEST_F(LogoTest, WithNeitherPictureNorTitleItShowsTheLogoInASunkenFrame) {
  const XLogo* logo = MakeLogo(top, 16, 16, kWidth, nullptr, nullptr);
  Pump();
  EXPECT_EQ(TakeLogo(logo), Plain());
}

TEST_F(LogoTest, ThePictureIsCentredRightOfTheLogo) {
  const XLogo* logo = MakeLogo(top, 16, 16, kWidth, smImage, nullptr);
  Pump();
  Picture expected = Plain();
  Place(&expected, smImage, 125 + (kWidth - 8 - 125 - 163) / 2 + 6, (61 - 29) / 2);
  EXPECT_EQ(TakeLogo(logo), expected);
}

TEST_F(LogoTest, TheTitleIsCentredRightOfTheLogo) {
  const char* const title = "Symbol Editor";
  const XLogo* logo = MakeLogo(top, 16, 16, kWidth, nullptr, title);
  Pump();
  const Picture shown = TakeLogo(logo);
  // The same title drawn by hand on white.
  GC gc = MakeWindowGC(top, logoFont);
  FillRectangle(top, gc, white.pixel, 16, 200, kWidth, 61);
  XSetForeground(dpy, gc, black.pixel);
  const int length = static_cast<int>(std::strlen(title));
  const int width = XTextWidth(logoFontinfo, title, length);
  XDrawString(dpy, top, gc, 16 + 125 + (kWidth - 8 - 125 - width) / 2 + 6,
              200 + 57 / 2 + logoCharht / 2, title, length);
  EXPECT_EQ(Take(logo->window, 132, 2, kWidth - 134, 57),
            Take(top, 16 + 132, 202, kWidth - 134, 57));
  EXPECT_GT(shown.Count(kBlack, 132, 2, kWidth - 134, 57), 100);
  XFreeGC(dpy, gc);
}

TEST_F(LogoTest, ClicksOnTheBannerGoNowhere) {
  static int reached;
  reached = 0;
  WindowObj* behind = AllocWindowObj(top, this);
  SetHandler(behind, ButtonPress, [](void*, XEvent*) { reached++; });
  SetHandler(behind, ButtonRelease, [](void*, XEvent*) { reached++; });
  XSelectInput(dpy, top, ButtonPressMask | ButtonReleaseMask);
  const XLogo* logo = MakeLogo(top, 16, 16, kWidth, nullptr, nullptr);
  Pump();
  ClickAt(40, 40);
  EXPECT_EQ(reached, 0);
  ClickAt(40, 300);
  EXPECT_EQ(reached, 2);
  EXPECT_EQ(TakeLogo(logo), Plain());
}

TEST_F(LogoTest, Costs) {
  XEvent event{};
  XLogo* logo = nullptr;
  EXPECT_EQ(CostOf([&] { logo = MakeLogo(top, 16, 16, kWidth, smImage, "Title"); }), (Cost{2, 0}));
  Pump();
  DrawLogo(logo);
  EXPECT_EQ(CostOf([&] { DrawLogo(logo, &event); }), (Cost{9, 0}));
  XLogo* plain = MakeLogo(top, 16, 100, kWidth, nullptr, nullptr);
  Pump();
  DrawLogo(plain);
  EXPECT_EQ(CostOf([&] { DrawLogo(plain, &event); }), (Cost{6, 0}));
}

}  // namespace
}  // namespace gromlit
