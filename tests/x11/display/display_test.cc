#include "tests/support/x_fixture.h"

#include <cstdlib>
#include <utility>

#include "display/display.h"

namespace gromlit {
namespace {

using DisplayTest = testing::XFixture;

TEST_F(DisplayTest, DefaultsOfTheServerAreUsed) {
  EXPECT_EQ(screen, DefaultScreen(dpy));
  EXPECT_EQ(root, player->root());
  EXPECT_EQ(cmap, DefaultColormap(dpy, screen));
}

TEST_F(DisplayTest, ColoursAreAllocatedAndWhiteAndBlackAreTheScreensOwn) {
  EXPECT_EQ(white.pixel, WhitePixel(dpy, screen));
  EXPECT_EQ(black.pixel, BlackPixel(dpy, screen));
  const struct {
    unsigned long pixel;
    unsigned long rgb;
  } colours[] = {{white.pixel, 0xffffff}, {black.pixel, 0},       {lgrey.pixel, 0xc0c0c0},
                 {dgrey.pixel, 0x707070}, {grey.pixel, 0xa8a8a8}, {blue.pixel, 0x000079}};
  for (const auto& colour : colours) {
    XColor is{};
    is.pixel = colour.pixel;
    XQueryColor(dpy, cmap, &is);
    EXPECT_EQ((is.red >> 8U) << 16U | (is.green >> 8U) << 8U | is.blue >> 8U, colour.rgb);
  }
}

TEST_F(DisplayTest, ContextsAreBlackOnLightGreyInTheirFonts) {
  const std::pair<GC, Font> contexts[] = {
      {buttongc, labelFont}, {logogc, logoFont}, {txtgc, txtFont}};
  for (const auto& [gc, font] : contexts) {
    XGCValues values{};
    ASSERT_NE(XGetGCValues(dpy, gc, GCForeground | GCBackground | GCFont, &values), 0);
    EXPECT_EQ(values.foreground, black.pixel);
    EXPECT_EQ(values.background, lgrey.pixel);
    EXPECT_EQ(values.font, font);
  }
}

TEST_F(DisplayTest, LineHeightIsAscentAndDescent) {
  EXPECT_EQ(txtCharht, txtFontinfo->ascent + txtFontinfo->descent);
  EXPECT_EQ(labelCharht, labelFontinfo->ascent + labelFontinfo->descent);
  EXPECT_EQ(logoCharht, logoFontinfo->ascent + logoFontinfo->descent);
  EXPECT_EQ(txtFont, txtFontinfo->fid);
}

TEST_F(DisplayTest, HandCursorsBitmapsAre32By32) {
  for (const Pixmap bitmap : {handcursorImage, handcursorMaskImage}) {
    Window rootwin;
    int x;
    int y;
    unsigned width = 0;
    unsigned height = 0;
    unsigned border;
    unsigned depth = 0;
    XGetGeometry(dpy, bitmap, &rootwin, &x, &y, &width, &height, &border, &depth);
    EXPECT_EQ(width, 32u);
    EXPECT_EQ(height, 32u);
    EXPECT_EQ(depth, 1u);
  }
  for (const Cursor cursor :
       {xCursor, ptCursor, txtCursor, targetCursor, gromlitCursor, handCursor}) {
    EXPECT_NE(cursor, 0u);
  }
}

TEST_F(DisplayTest, AtomsAreMadeWhereNoWindowManagerHasMadeThem) {
  EXPECT_NE(wm_delete, 0u);
  EXPECT_EQ(wm_delete, XInternAtom(player->display(), "WM_DELETE_WINDOW", True));
  EXPECT_EQ(wm_protocols, XInternAtom(player->display(), "WM_PROTOCOLS", True));
}

// A server with 256 colours, all of which other clients keep to themselves.
class FullColourMapTest : public testing::XFixture {
 protected:
  void SetUp() override {
    server = std::make_unique<testing::XServer>("640x480x8");
    other_ = XOpenDisplay(server->name().c_str());
    ASSERT_NE(other_, nullptr);
    const Colormap map = DefaultColormap(other_, DefaultScreen(other_));
    unsigned long pixel = 0;
    while (XAllocColorCells(other_, map, False, nullptr, 0, &pixel, 1) != 0) taken_++;
    XFixture::SetUp();
  }
  void TearDown() override {
    if (other_ != nullptr) XCloseDisplay(other_);
    XFixture::TearDown();
  }

  Display* other_ = nullptr;
  int taken_ = 0;
};

TEST_F(FullColourMapTest, ColoursThatCannotBeHadAreTheNearestThatAreShared) {
  EXPECT_GT(taken_, 100);
  XColor wanted{};
  wanted.red = 0x1234;
  EXPECT_EQ(XAllocColor(dpy, cmap, &wanted), 0) << "the map is not full";
  EXPECT_EQ(white.pixel, WhitePixel(dpy, screen));
  EXPECT_EQ(black.pixel, BlackPixel(dpy, screen));
  for (const XColor& colour : {lgrey, grey, dgrey, blue}) {
    XColor is{};
    is.pixel = colour.pixel;
    XQueryColor(dpy, cmap, &is);
    const auto near = [](unsigned short one, unsigned short other) {
      return std::abs(one - other) < 0x3000;
    };
    EXPECT_TRUE(near(is.red, colour.red) && near(is.green, colour.green) &&
                near(is.blue, colour.blue))
        << std::hex << is.red << ", " << is.green << ", " << is.blue << " for " << colour.red
        << ", " << colour.green << ", " << colour.blue;
    // The owner of a cell may change it at any time; this one can be had.
    EXPECT_NE(XAllocColor(dpy, cmap, &is), 0);
    EXPECT_EQ(is.pixel, colour.pixel);
  }
  EXPECT_NE(lgrey.pixel, black.pixel);
  EXPECT_EQ(errors, 0);
}

}  // namespace
}  // namespace gromlit
