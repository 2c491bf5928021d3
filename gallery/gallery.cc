#include "gallery/gallery.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "app/windows/splash.h"
#include "display/display.h"
#include "recognition/symbol_icon.h"
#include "toolkit/bevel.h"
#include "toolkit/button.h"
#include "toolkit/check_box.h"
#include "toolkit/child_window.h"
#include "toolkit/dialog.h"
#include "toolkit/icon_window.h"
#include "toolkit/image.h"
#include "toolkit/logo.h"
#include "toolkit/menu.h"
#include "toolkit/menu_bar.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/scrollbar.h"
#include "toolkit/tab_bar.h"
#include "toolkit/text.h"
#include "toolkit/text_editor.h"
#include "toolkit/text_list.h"
#include "toolkit/text_select.h"

namespace gromlit {
namespace {

constexpr int kLeft = 16;  // x of the three columns
constexpr int kMiddle = 312;
constexpr int kRight = 608;
constexpr int kColumn = 280;  // their width

struct Caption {
  int x;
  int y;  // baseline
  const char* text;
};

constexpr Caption kHeadings[] = {
    {kLeft, 52, "Buttons"},      {kLeft, 138, "Check boxes"},  {kLeft, 196, "Symbol tiles"},
    {kLeft, 284, "Text fields"}, {kLeft, 404, "Bevels"},       {kLeft, 488, "Pictures"},
    {kLeft, 612, "Banners"},     {kMiddle, 52, "Menu bar"},    {kMiddle, 118, "Menu and submenu"},
    {kMiddle, 270, "Tabs"},      {kMiddle, 420, "Scrollbars"}, {kRight, 52, "Text select"},
    {kRight, 266, "Dialogs"},
};

constexpr Caption kLabels[] = {
    {kLeft + 20, 157, "checked"},  {kLeft + 120, 157, "unchecked"}, {kLeft, 258, "clickable"},
    {kLeft + 120, 258, "passive"}, {kLeft, 464, "raised"},          {kLeft + 70, 464, "sunken"},
    {kLeft + 140, 464, "flat"},    {kLeft + 210, 464, "inverted"},
};

struct ScrollbarPose {
  const char* label;  // below the scrollbar
  int range;
  int pos;
};

constexpr int kScrollHeight = 140;
constexpr ScrollbarPose kScrollbars[] = {{"top", 3 * kScrollHeight, 0},
                                         {"middle", 3 * kScrollHeight, 38},
                                         {"end", 8 * kScrollHeight, kScrollHeight},
                                         {"all shown", 1, 0}};
constexpr int kScrollStep = kColumn / static_cast<int>(std::size(kScrollbars));

// The record that callbacks without an argument of their own report to.
Gallery* shown = nullptr;

void DrawStatus(Gallery* gallery) {
  FillRectangle(gallery->window, gallery->gc, lgrey.pixel, 6, kGalleryHeight - 24,
                kGalleryWidth - 12, 18);
  XDrawBevel(kSunken, gallery->window, gallery->gc, 4, kGalleryHeight - 26, kGalleryWidth - 8, 22);
  XSetForeground(dpy, gallery->gc, black.pixel);
  DrawText(gallery->window, gallery->gc, 12, kGalleryHeight - 11, gallery->status);
}

void Report(const char* what, const char* detail) {
  shown->ncalls++;
  std::snprintf(shown->status, sizeof shown->status, "%s: %s", what, detail);
  DrawStatus(shown);
}

void DrawGallery(Gallery* gallery, XEvent* event) {
  // All is drawn anew, so only the last of several exposures counts.
  if (event->xexpose.count > 0) return;
  const Window win = gallery->window;
  const GC gc = gallery->gc;
  XClearWindow(dpy, win);
  XSetForeground(dpy, gc, blue.pixel);
  for (const Caption& heading : kHeadings) DrawText(win, gc, heading.x, heading.y, heading.text);
  XSetForeground(dpy, gc, black.pixel);
  for (const Caption& label : kLabels) DrawText(win, gc, label.x, label.y, label.text);
  int left = kMiddle;
  for (const ScrollbarPose& bar : kScrollbars) {
    DrawCentredText(win, gc, left, kScrollStep, 586, bar.label,
                    TextWidth(labelFontinfo, bar.label));
    left += kScrollStep;
  }
  XDrawBevel(kRaised, win, gc, kLeft, 412, 60, 36);
  XDrawBevel(kSunken, win, gc, kLeft + 70, 412, 60, 36);
  // On the light grey ground it would not be seen.
  FillRectangle(win, gc, white.pixel, kLeft + 140, 412, 60, 36);
  XDrawBevel(kFlat, win, gc, kLeft + 140, 412, 60, 36);
  FillRectangle(win, gc, white.pixel, kLeft + 210, 412, 60, 36);
  InvertRectangle(win, gc, kLeft + 220, 420, 40, 20);
  PutImage(win, gc, smImage, kLeft, 498);
  PutImage(win, gc, logoImage, kLeft, 534);
  PutImage(win, gc, upscrollImage, kLeft + 180, 506);
  PutImage(win, gc, downscrollImage, kLeft + 200, 506);
  PutImage(win, gc, rightmenuImage, kLeft + 220, 506);
  DrawStatus(gallery);
}

void CloseGallery(Gallery* gallery, XEvent* event) {
  WMClientMessage(gallery, event);
  if (event->xclient.message_type == wm_protocols &&
      static_cast<Atom>(event->xclient.data.l[0]) == wm_delete) {
    gallery->closed = 1;
  }
}

// --- Callbacks ---------------------------------------------------------------------------------

void ButtonClicked(void* arg) {
  Report("Button", static_cast<XButton*>(arg)->label);
}

void AskClicked(void*) {
  Report("Button", "Ask...");
  MousePopUpDialog(shown->popup, "Question");
}

void SplashClicked(void*) {
  Report("Button", "Splash");
  if (user != nullptr) DoSplash();
}

void BoxClicked(void*, int state) {
  Report("Check box", state != 0 ? "checked" : "unchecked");
}

int TileClicked(void* arg) {
  Report("Tile", static_cast<GromlitSymbol*>(arg)->name);
  return 0;
}

void ItemChosen(XMenu* menu, void* arg) {
  const auto* label = static_cast<const char*>(arg);
  Report("Menu", label);
  if (menu->pulldown != nullptr) UpdatePulldownButton(menu->pulldown, label);
}

void ParentChosen(XMenu*, void*) {}

void TabChosen(XTabBar* tbar, void* arg, int flag) {
  // The page: its name, drawn in the panel.
  const int top = tbar->itemheight + 6;
  FillRectangle(tbar->window, tbar->gc, lgrey.pixel, 6, top, tbar->width - 12,
                tbar->height - top - 6);
  XSetForeground(dpy, tbar->gc, black.pixel);
  DrawText(tbar->window, tbar->gc, 16, top + 30, static_cast<const char*>(arg));
  if (flag == kTabSelected) Report("Tab", static_cast<const char*>(arg));
}

void TextCompleted(TextEditor* txt) {
  Report("Text", TextEditorText(txt));
}

void Scrolled(void*, int offset) {
  char text[32];
  std::snprintf(text, sizeof text, "offset %d", offset);
  Report("Scrollbar", text);
}

void AnsweredYes(XDialog*) {
  Report("Dialog", "yes");
}

void PopupYes(XDialog* dlog) {
  Report("Dialog", "yes");
  DialogYes(dlog);
}

// --- Making the widgets ------------------------------------------------------------------------

XMenuItem* Item(const char* label, XMenu* submenu = nullptr) {
  XMenuItem* item =
      MakeMenuItem(label, submenu != nullptr ? ParentChosen : ItemChosen, const_cast<char*>(label));
  item->submenu = submenu;
  return item;
}

template <size_t kCount>
XMenu* MakeMenuOf(Window parent, XMenuItem* const (&items)[kCount]) {
  XMenuItem** array = MakeMenuItemArray(static_cast<int>(kCount));
  for (size_t i = 0; i < kCount; i++) array[i] = items[i];
  XMenu* menu = MakeMenu(parent, 0, 0, labelFontinfo, array, static_cast<int>(kCount));
  delete[] array;
  return menu;
}

XMenuBar* MakeBar(Window parent, int x, int y, int width, XMenu* first, XMenu* second,
                  XMenu* third) {
  XPulldown** titles = MakePulldownArray(3);
  titles[0] = MakePulldown("Gromlit", first);
  titles[1] = MakePulldown("Symbols", second);
  titles[2] = MakePulldown("Help", third);
  XMenuBar* bar = MakeMenuBar(parent, x, y, width, labelFontinfo, titles, 3);
  delete[] titles;
  XMapWindow(dpy, bar->window);
  return bar;
}

void MakeMenus(Gallery* gallery) {
  // On the screen and usable.
  XMenu* sort = MakeMenuOf(root, {Item("By name"), Item("By use")});
  XMenu* file = MakeMenuOf(root, {Item("New"), Item("Sort", sort), Item("Exit")});
  XMenu* symbols = MakeMenuOf(root, {Item("Edit"), Item("Delete")});
  XMenu* help = MakeMenuOf(root, {Item("Contents"), Item("About")});
  MakeBar(gallery->window, 0, 0, kGalleryWidth, file, symbols, help);
  // In the window and open; titles without a menu can be shown open without covering anything.
  gallery->bar = MakeBar(gallery->window, kMiddle, 62, kColumn, nullptr, nullptr, nullptr);
  gallery->submenu =
      MakeMenuOf(gallery->window, {Item("Circle"), Item("Check mark"), Item("Question mark")});
  gallery->menu =
      MakeMenuOf(gallery->window, {Item("New"), Item("Rename..."), Item("Export"),
                                   Item("Insert symbol", gallery->submenu), Item("Delete")});
}

void MakeButtons(Gallery* gallery) {
  const Window win = gallery->window;
  MakeButton(gallery, win, "Active", ButtonClicked, kLeft, 62);
  XButton* inactive = MakeButton(gallery, win, "Inactive", ButtonClicked, kLeft + 72, 62);
  inactive->state = kButtonInactive;
  XButton* pressed = MakeButton(gallery, win, "Pressed", ButtonClicked, kLeft + 144, 62);
  pressed->state = kButtonPressed;
  MakeButton(gallery, win, "Splash", SplashClicked, kLeft + 216, 62);
  XMenu* values =
      MakeMenuOf(root, {Item("Right button"), Item("Middle button"), Item("Left button")});
  MakePulldownButton(gallery, win, "Right button", kLeft, 92, 136, values);
  MakeButton(gallery, win, "Ask...", AskClicked, kLeft + 144, 92);
  XButton* off = MakePulldownButton(gallery, win, "Off", kLeft + 216, 92, kButtonWidth,
                                    MakeMenuOf(root, {Item("Off"), Item("On")}));
  off->state = kButtonInactive;

  MakeCheckBox(gallery, win, BoxClicked, kLeft, 147);
  MakeCheckBox(gallery, win, BoxClicked, kLeft + 100, 147)->state = 0;
}

void MakeTiles(Gallery* gallery) {
  struct Shape {
    const char* name;
    int npoints;
    uint16_t points[5][2];
  };
  constexpr Shape kShapes[] = {
      {"L", 3, {{64, 32}, {64, 248}, {224, 248}}},
      {"Check", 3, {{40, 152}, {112, 232}, {240, 48}}},
      {"Square", 5, {{48, 48}, {232, 48}, {232, 232}, {48, 232}, {48, 48}}},
      {"Z", 4, {{48, 48}, {232, 48}, {48, 232}, {232, 232}}},
  };
  static_assert(std::size(kShapes) == std::size(Gallery{}.syms));
  for (size_t i = 0; i < std::size(kShapes); i++) {
    GromlitSymbol* sym = &gallery->syms[i];
    std::snprintf(sym->name, sizeof sym->name, "%s", kShapes[i].name);
    sym->npoints = static_cast<uint8_t>(kShapes[i].npoints);
    for (int p = 0; p < kShapes[i].npoints; p++) {
      sym->x[p + 1] = kShapes[i].points[p][0];
      sym->y[p + 1] = kShapes[i].points[p][1];
    }
    VectorToBitmap(sym);
    const bool clickable = i < 2;
    const int x = kLeft + static_cast<int>(i % 2) * 48 + (clickable ? 0 : 120);
    IconWindow* tile = MakeIconWindow(gallery->window, x, 204, sym, clickable ? sym : nullptr);
    tile->action = TileClicked;
    XMapWindow(dpy, tile->window);
  }
}

TextEditor* MakeField(Gallery* gallery, int y, const char* text) {
  TextEditor* txt = MakeTextEditor(gallery->window, kLeft, y, kColumn - 8, kEditorHeight);
  txt->owner = gallery;
  txt->complete = TextCompleted;
  TextEditorInit(txt, text);
  XMapWindow(dpy, txt->window);
  return txt;
}

void MakeTabs(Gallery* gallery) {
  constexpr const char* kTabs[] = {"Hot key", "Menu", "Text", "Sound", "Run"};
  XTabItem** items = MakeTabItemArray(static_cast<int>(std::size(kTabs)));
  for (size_t i = 0; i < std::size(kTabs); i++) {
    items[i] = MakeTabItem(kTabs[i], TabChosen, const_cast<char*>(kTabs[i]));
  }
  XTabBar* bar = MakeTabBar(gallery->window, kMiddle, 280, kColumn, 110, labelFontinfo, items,
                            static_cast<int>(std::size(kTabs)));
  delete[] items;
  bar->selected = 2;
  XMapWindow(dpy, bar->window);
}

void MakeScrollbars(Gallery* gallery) {
  int x = kMiddle + (kScrollStep - kScrollbarWidth) / 2;
  for (const ScrollbarPose& bar : kScrollbars) {
    XScrollbar* sb = MakeScrollbar(gallery->window, x, 430, kScrollHeight);
    x += kScrollStep;
    sb->range = bar.range;
    sb->pos = bar.pos;
    sb->scroll = Scrolled;
    XMapWindow(dpy, sb->window);
  }
}

void MakeTextSelection(Gallery* gallery) {
  static constexpr const char* kLines[] = {"Arrow down", "Arrow left", "Arrow right", "Arrow up",
                                           "Check",      "Circle",     "Cross",       "Letter L",
                                           "Letter S",   "Letter Z",   "Square",      "Triangle"};
  TextSelect* select = MakeTextSelect(gallery->window, kRight, 62, kColumn, 176);
  SetListItems(select->lst, kLines, static_cast<int>(std::size(kLines)));
  select->lst->selected = 2;
  TextEditorInit(select->txt, kLines[2]);
  select->txt->complete = TextCompleted;
  XMapWindow(dpy, select->window);
}

void MakeDialogs(Gallery* gallery) {
  static constexpr const char* kQuestion[] = {"Applications of this kind have no plug-in",
                                              "yet. Make one from the default plug-in?", nullptr};
  static constexpr const char* kMessage[] = {"The symbol is saved in the symbol library", nullptr};
  gallery->question = MakeDialog("Confirm", kQuestion, AnsweredYes, 0, 0);
  gallery->message = MakeMsgDialog("Gromlit", kMessage, 0, 0);
  gallery->popup = MakeDialog("Question", kQuestion, PopupYes, 0, 0);
  // Two stay in the window, where they can be looked at beside the rest.
  XReparentWindow(dpy, gallery->question->window, gallery->window, 0, 0);
  XReparentWindow(dpy, gallery->message->window, gallery->window, 0, 0);
}

void TrackAt(int x, int y, XEvent* event) {
  *event = XEvent{};
  event->type = MotionNotify;
  event->xmotion.x = x;
  event->xmotion.y = y;
}

}  // namespace

Gallery* MakeGallery() {
  auto* gallery = new Gallery{};
  shown = gallery;
  gallery->window =
      MakeChildWindow(root, 0, 0, kGalleryWidth, kGalleryHeight, lgrey.pixel, ExposureMask);
  XStoreName(dpy, gallery->window, "Toolkit gallery");
  XSetWMProtocols(dpy, gallery->window, &wm_delete, 1);
  gallery->gc = MakeWindowGC(gallery->window, labelFont);
  gallery->wobj = AllocWindowObj(gallery->window, gallery);
  On<Expose, DrawGallery>(gallery);
  On<ClientMessage, CloseGallery>(gallery);

  MakeMenus(gallery);
  MakeButtons(gallery);
  MakeTiles(gallery);
  MakeField(gallery, 294, "without the keyboard");
  gallery->focused = MakeField(gallery, 326, "with the keyboard");
  MakeField(gallery, 358, "a text that is longer than the field is wide, so that its end is cut");
  MakeTabs(gallery);
  MakeScrollbars(gallery);
  MakeTextSelection(gallery);
  MakeDialogs(gallery);
  MakeLogo(gallery->window, kLeft, 620, kColumn, nullptr, "Editor");
  MakeLogo(gallery->window, kMiddle, 620, kColumn + 22, smImage, nullptr);
  return gallery;
}

void PoseGallery(Gallery* gallery) {
  XEvent event;
  PopUpMenu(kMiddle, 128, gallery->menu);
  // The fourth item opens the submenu, whose second one is highlighted then.
  TrackAt(10, 3 * gallery->menu->itemheight + 8, &event);
  MenuTrackMouse(gallery->menu, &event);
  TrackAt(10, gallery->submenu->itemheight + 8, &event);
  MenuTrackMouse(gallery->submenu, &event);
  TrackAt(gallery->bar->itemx[1] + 2, 8, &event);
  MenuBarTrackMouse(gallery->bar, &event);
  TextEditorEnter(gallery->focused, nullptr);
  PopUpDialog(gallery->question, "New Plugin", kRight + gallery->question->width / 2,
              276 + gallery->question->height / 2);
  PopUpDialog(gallery->message, "Saved", kRight + gallery->message->width / 2,
              276 + gallery->question->height + 14 + gallery->message->height / 2);
  // Scrollbars call back when they are first drawn, which nobody asked to hear of.
  std::snprintf(gallery->status, sizeof gallery->status, "Click on anything.");
  DrawStatus(gallery);
}

}  // namespace gromlit
