// Fixture for the tests of menus and of the widgets that open them.
//
// Every test ends with the proof of INV-MENU-1: another client can grab the pointer.
#pragma once

#include "tests/x11/toolkit/widget_fixture.h"

#include <memory>
#include <string>
#include <vector>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/bevel.h"
#include "toolkit/image.h"
#include "toolkit/menu.h"
#include "toolkit/title_row.h"

namespace gromlit::testing {

class MenuFixture : public WidgetFixture {
 protected:
  static constexpr int kScreen = 1280;  // width, pixels

  void SetUp() override {
    WidgetFixture::SetUp();
    if (HasFatalFailure()) return;
    MakeImages();
    calls.clear();
    ih = RowHeight(labelFontinfo);
  }

  void TearDown() override {
    for (int button = 1; button <= 3; button++) player->Release(button);
    Pump();
    EXPECT_TRUE(player->CanGrabPointer()) << "the pointer was left grabbed";
    WidgetFixture::TearDown();
  }

  // Appends the text that arg points to.
  static void Log(XMenu*, void* arg) { calls.emplace_back(static_cast<const char*>(arg)); }

  static XMenuItem* Item(const char* label, XMenu* submenu = nullptr) {
    XMenuItem* item = MakeMenuItem(label, Log, const_cast<char*>(label));
    item->submenu = submenu;
    return item;
  }

  static std::unique_ptr<XMenuItem* []> Array(const std::vector<XMenuItem*>& items) {
    std::unique_ptr<XMenuItem*[]> array(MakeMenuItemArray(static_cast<int>(items.size())));
    std::copy(items.begin(), items.end(), array.get());
    return array;
  }

  static XMenu* Menu(const std::vector<XMenuItem*>& items) {
    return MakeMenu(root, 0, 0, labelFontinfo, Array(items).get(), static_cast<int>(items.size()));
  }

  static void Remake(XMenu* menu, const std::vector<XMenuItem*>& items) {
    RemakeMenu(menu, labelFontinfo, Array(items).get(), static_cast<int>(items.size()));
  }

  static XWindowAttributes Attributes(Window window) {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, window, &attributes);
    return attributes;
  }

  static bool Mapped(const XMenu* menu) { return Attributes(menu->window).map_state == IsViewable; }

  // The user moves to a point of an open menu, or to the middle of one of its rows.
  void MoveIn(const XMenu* menu, int x, int y) {
    player->MoveTo(menu->x + x, menu->y + y);
    Pump();
  }
  void MoveToItem(const XMenu* menu, int i) {
    MoveIn(menu, menu->width / 2, 4 + i * menu->itemheight + menu->itemheight / 2);
  }

  // What a menu without a highlight looks like: its captions and arrows drawn one by one, and the
  // frame of the window.
  Picture Look(const XMenu* menu) {
    const Window paper = MakeChildWindow(top, 0, 0, menu->width, menu->height, lgrey.pixel, 0);
    XMapRaised(dpy, paper);
    const GC pen = MakeWindowGC(paper, labelFont);
    for (int i = 0; i < menu->nitems; i++) {
      const std::string text = menu->items[i]->label;
      XDrawString(dpy, paper, pen, 6, ih * (i + 1) - 3, text.c_str(),
                  static_cast<int>(text.size()));
      if (menu->items[i]->submenu == nullptr) continue;
      XPutImage(dpy, paper, pen, rightmenuImage, 0, 0, menu->width - 15, ih * i + 3 + (ih - 11) / 2,
                11, 11);
    }
    Picture look = Take(paper, 0, 0, menu->width, menu->height);
    look.Bevel(kWhite, kDarkGrey, 0, 0, menu->width, menu->height);
    XFreeGC(dpy, pen);
    XDestroyWindow(dpy, paper);
    return look;
  }

  void Highlight(Picture* look, const XMenu* menu, int i) const {
    look->Bevel(kWhite, kDarkGrey, 2, ih * i + 2, menu->width - 4, ih + 2);
  }

  Picture Shown(const XMenu* menu) { return Take(menu->window, 0, 0, menu->width, menu->height); }

  static inline std::vector<std::string> calls;
  int ih = 0;  // height of a row in the label font
};

}  // namespace gromlit::testing
