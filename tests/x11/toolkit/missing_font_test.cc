// Servers without the program's fonts: the widgets use the font that there is, and its metrics.

// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/menu_fixture.h"

#include <filesystem>

#include "tests/support/captured.h"
#include "toolkit/button.h"
#include "toolkit/dialog.h"
#include "toolkit/menu_bar.h"
#include "toolkit/tab_bar.h"
#include "toolkit/text_select.h"

namespace gromlit {
namespace {

using testing::Picture;

class MissingFontTest : public testing::MenuFixture {
 protected:
  // Loads the fonts anew, from a font path of this one element.
  void LoadFontsFrom(const std::string& element) {
    char* path[] = {const_cast<char*>(element.c_str())};
    XSetFontPath(player->display(), path, 1);
    XSync(player->display(), False);
    for (GC gc : {buttongc, logogc, txtgc}) XFreeGC(dpy, gc);
    for (XFontStruct* font : {txtFontinfo, labelFontinfo, logoFontinfo}) XFreeFont(dpy, font);
    txtFont = labelFont = logoFont = None;
    testing::CaptureStdout();
    LoadFonts();
    messages = testing::GetCapturedStdout();
    MakeContexts();
    ih = RowHeight(labelFontinfo);
  }

  void TearDown() override {
    // The metrics of a font without an id cannot be closed on the server.
    for (XFontStruct** font : {&txtFontinfo, &labelFontinfo, &logoFontinfo}) {
      if (*font == nullptr || (*font)->fid != None) continue;
      XFreeFontInfo(nullptr, *font, 1);
      *font = nullptr;
    }
    MenuFixture::TearDown();
  }

  // Whether something black was drawn in a window that has only text in that colour.
  bool HasText(Window window, int w, int h) {
    return Take(window, 0, 0, w, h).Count(kBlack, 0, 0, w, h) > 5;
  }

  void ExpectWidgetsLaidOutByTheirFont() {
    ASSERT_NE(txtFontinfo, nullptr);
    ASSERT_NE(labelFontinfo, nullptr);
    const int rowheight = labelFontinfo->max_bounds.ascent + labelFontinfo->max_bounds.descent + 6;
    const int width = XTextWidth(labelFontinfo, "Caption", 7);

    const XButton* button = MakeButton(nullptr, top, "Caption", nullptr, 10, 10);
    EXPECT_EQ(button->label_width, width);
    XMenu* menu = Menu({Item("Caption"), Item("x")});
    EXPECT_EQ(menu->width, width + 16);
    EXPECT_EQ(menu->height, 2 * rowheight + 6);
    const auto titles = std::unique_ptr<XPulldown*[]>(MakePulldownArray(1));
    titles[0] = MakePulldown("Caption", nullptr);
    const XMenuBar* bar = MakeMenuBar(top, 10, 50, 0, labelFontinfo, titles.get(), 1);
    EXPECT_EQ(bar->width, width + 24);
    const auto tabs = std::unique_ptr<XTabItem*[]>(MakeTabItemArray(1));
    tabs[0] = MakeTabItem("Caption", nullptr, nullptr);
    const XTabBar* tbar = MakeTabBar(top, 10, 100, 0, 60, labelFontinfo, tabs.get(), 1);
    EXPECT_EQ(tbar->itemheight, rowheight);
    TextSelect* select = MakeTextSelect(top, 200, 10, 200, 162);
    const char* const lines[] = {"Caption"};
    TextEditorInit(select->txt, "Caption");
    SetListItems(select->lst, lines, 1);
    EXPECT_EQ(select->lst->itemheight,
              txtFontinfo->max_bounds.ascent + txtFontinfo->max_bounds.descent);
    const char* const message[] = {"Caption", nullptr};
    XDialog* dlog = MakeMsgDialog("Title", message, 0, 0);
    EXPECT_EQ(dlog->width, XTextWidth(txtFontinfo, "Caption", 7) + 32);

    for (const Window window : {bar->window, tbar->window, select->window}) XMapWindow(dpy, window);
    PopUpMenu(500, 600, menu);
    PopUpDialog(dlog, "Title", 900, 800);
    Pump();
    EXPECT_TRUE(HasText(button->window, 64, 24));
    EXPECT_TRUE(HasText(menu->window, menu->width, menu->height));
    EXPECT_TRUE(HasText(bar->window, bar->width, bar->height));
    EXPECT_TRUE(HasText(tbar->window, tbar->width, tbar->height));
    EXPECT_TRUE(HasText(select->lst->window, 100, 60));
    EXPECT_TRUE(HasText(select->txt->window, 40, 24));
    PopDownMenu(menu);
    Remake(menu, {Item("Other")});
    EXPECT_EQ(menu->width, XTextWidth(labelFontinfo, "Other", 5) + 16);
  }

  std::string messages;
};

TEST_F(MissingFontTest, WithTheFixedFontOnly) {
  LoadFontsFrom("built-ins");
  EXPECT_EQ(messages,
            "Text font -*-helvetica-medium-r-normal--12-*1 not found, using fixed."
            "Text font -*-helvetica-bold-r-normal--18-*1 not found, using fixed.");
  EXPECT_NE(labelFontinfo->fid, static_cast<Font>(None));
  ExpectWidgetsLaidOutByTheirFont();
}

// What is left is the font of the server's default graphics context, which has no name.
TEST_F(MissingFontTest, WithoutAnyFontThatCanBeLoaded) {
  const std::string empty = *install / "fonts";
  std::filesystem::create_directory(empty);
  testing::WriteText(empty + "/fonts.dir", "0\n");
  LoadFontsFrom(empty);
  EXPECT_EQ(labelFontinfo->fid, static_cast<Font>(None));
  EXPECT_GT(txtCharht, 0);
  ExpectWidgetsLaidOutByTheirFont();
}

}  // namespace
}  // namespace gromlit
