#include "app/main_window/gromlit_app.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "app/main_window/action_commands.h"
#include "app/main_window/main_menu.h"
#include "app/windows/icon_name.h"
#include "app/windows/symbol_big_icon.h"
#include "app/windows/wm_properties.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/image.h"
#include "toolkit/logo.h"
#include "toolkit/menu.h"
#include "toolkit/menu_bar.h"
#include "toolkit/press_time.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/scrollbar.h"

namespace gromlit {

GromlitApp* app = nullptr;
int AppLastClick = 0;

namespace {

constexpr int kBorder = 4;
constexpr int kIconWidth = 64;
constexpr int kCellGap = 8;      // pixels that a cell is larger than what it shows, both ways
constexpr int kCellMargin = 8;   // from the top of the grid to its first icons
constexpr int kIconX = 16;       // from the left of a cell to its icon
constexpr int kHighlightUp = 2;  // pixels that the highlight begins above the icon
constexpr uint32_t kDoubleClickTime = 499;  // milliseconds

int CellWidth(const GromlitApp* gromlit) {
  return gromlit->iconwidth + kCellGap;
}

int CellHeight(const GromlitApp* gromlit) {
  return gromlit->iconheight + 2 * txtCharht + kCellGap;
}

int CountActions(const GromlitPlugin* plugin) {
  return plugin != nullptr ? std::min<int>(plugin->nactions, kMaxActions) : 0;
}

// --- Drawing ----------------------------------------------------------------------------------

// Calls draw(action, x, y) for every visible action with the top-left corner of its cell.
template <typename Draw>
void ForVisibleActions(const GromlitApp* gromlit, Draw draw) {
  const int end = std::min(gromlit->nicons, gromlit->icontop + gromlit->ncols * gromlit->nrows);
  for (int i = gromlit->icontop; i < end; i++) {
    const int cell = i - gromlit->icontop;
    draw(gromlit->plugin->actions[i], gromlit->iconx + cell % gromlit->ncols * CellWidth(gromlit),
         gromlit->icony + kCellMargin + cell / gromlit->ncols * CellHeight(gromlit));
  }
}

// Inverts the highlight of an action, when it is visible.
void InvertHighlight(const GromlitApp* gromlit, int action) {
  const int cell = action - gromlit->icontop;
  if (action < 0 || cell < 0 || cell >= gromlit->ncols * gromlit->nrows) return;
  InvertRectangle(
      gromlit->window, gromlit->gc, gromlit->iconx + cell % gromlit->ncols * CellWidth(gromlit),
      gromlit->icony + cell / gromlit->ncols * CellHeight(gromlit) + kCellMargin - kHighlightUp,
      gromlit->iconwidth, gromlit->iconheight + 2 * kHighlightUp);
}

// The last event of an exposure stands for all of it: everything is drawn anew.
void ExposeGromlitApp(GromlitApp* gromlit, XEvent* event) {
  if (event->xexpose.count == 0) DrawGromlitApp(gromlit);
}

// --- Construction -----------------------------------------------------------------------------

void MakeWindow(GromlitApp* gromlit, int argc, char** argv) {
  gromlit->window =
      CreateTopLevel(gromlit->width, gromlit->height,
                     ExposureMask | EnterWindowMask | LeaveWindowMask | ButtonPressMask);
  gromlit->mbar = MakeGromlitMenuBar(gromlit, gromlit->window, 0, 0, gromlit->width);
  XMapWindow(dpy, gromlit->mbar->window);
  gromlit->height += gromlit->mbar->height;
  XResizeWindow(dpy, gromlit->window, static_cast<unsigned>(gromlit->width),
                static_cast<unsigned>(gromlit->height));
  SetWindowManagerProperties(gromlit->window, {.title = "Gromlit",
                                               .icontitle = nullptr,
                                               .name = "Application",
                                               .width = gromlit->width,
                                               .height = gromlit->height,
                                               .argc = argc,
                                               .argv = argv});
  gromlit->gc = MakeWindowGC(gromlit->window, txtFont);
}

// The parts of the window, from top to bottom.
void MakeParts(GromlitApp* gromlit) {
  const int border = gromlit->border;
  const int inside = gromlit->width - 2 * border;
  const int top = gromlit->mbar->height;
  gromlit->logo = MakeLogo(gromlit->window, border, top, inside, nullptr, nullptr);

  const int buttony = border + top + logoImage->height + 2;
  gromlit->txt =
      MakeButtonSized(gromlit, gromlit->window, "", appClickPlugins, border, buttony, inside);
  SetPulldownMenu(gromlit->txt, nullptr);

  gromlit->iconx = border + 4;
  gromlit->icony = buttony + 26;
  const int below = gromlit->height - (border + gromlit->icony);
  // Names are cut at the edge of the grid.
  XRectangle grid = {static_cast<short>(border), static_cast<short>(gromlit->icony),
                     static_cast<unsigned short>(inside), static_cast<unsigned short>(below)};
  XSetClipRectangles(dpy, gromlit->gc, 0, 0, &grid, 1, YXBanded);

  gromlit->sbar = MakeScrollbar(gromlit->window, gromlit->width - kScrollbarWidth - border,
                                gromlit->icony, below);
  gromlit->sbar->range = gromlit->nrows * CellHeight(gromlit);
  gromlit->sbar->scrollarg = gromlit;
  gromlit->sbar->scroll = [](void* arg, int offset) {
    GromlitIconScroll(static_cast<GromlitApp*>(arg), offset);
  };
  XMapWindow(dpy, gromlit->sbar->window);
}

XMenu* MakePopup(GromlitApp* gromlit) {
  XMenuItem* items[] = {
      MakeMenuItem("Cut", popCutAction, gromlit),
      MakeMenuItem("Copy", popCopyAction, gromlit),
      MakeMenuItem("Paste", popPasteAction, gromlit),
      MakeMenuItem("Delete", popDeleteAction, gromlit),
      MakeMenuItem("Edit", popEditAction, gromlit),
      MakeMenuItem("Export", popExportAction, gromlit),
      MakeMenuItem("New", popNewAction, gromlit),
      MakeMenuItem("Edit Symbol", popEditSymbol, gromlit),
  };
  return MakeMenu(root, 0, 0, labelFontinfo, items, static_cast<int>(std::size(items)));
}

// --- Showing a plug-in ------------------------------------------------------------------------

// Length of all rows of the shown plug-in, pixels.
int ScrollRange(const GromlitApp* gromlit) {
  const int rows = (CountActions(gromlit->plugin) - 1 + gromlit->ncols) / gromlit->ncols;
  return rows * CellHeight(gromlit);
}

// Makes a plug-in, or none, the shown one.
void ShowPlugin(GromlitApp* gromlit, GromlitPlugin* plugin, int* updated) {
  // Caption and range are compared even if the plug-in stays: it may have got another name, and
  // start-up makes the default plug-in the shown one by itself.
  const char* caption = plugin != nullptr ? plugin->appname : "";
  if (StrCmp(gromlit->txt->label, caption) != 0) UpdatePulldownButton(gromlit->txt, caption);
  if (gromlit->plugin != plugin) {
    gromlit->plugin = plugin;
    gromlit->selected = -1;
    if (updated != nullptr) *updated = 1;
  }
  const int range = ScrollRange(gromlit);
  if (gromlit->sbar->range != range) UpdateScrollbarRange(gromlit->sbar, range);
}

// --- Clicks -----------------------------------------------------------------------------------

// The action at a point of the window; -1 for none. Division rounds towards zero, so that what is
// left of or above the grid has to be told apart first.
int ActionAt(const GromlitApp* gromlit, int x, int y) {
  if (x < gromlit->iconx || y < gromlit->icony) return -1;
  const int col = (x - gromlit->iconx) / CellWidth(gromlit);
  const int row = (y - gromlit->icony) / CellHeight(gromlit);
  if (col >= gromlit->ncols || row >= gromlit->nrows) return -1;
  const int n = gromlit->icontop + col + row * gromlit->ncols;
  // As many as are drawn, and no more than there still are.
  return n < std::min(gromlit->nicons, CountActions(gromlit->plugin)) ? n : -1;
}

// Selects an action, or takes the selection of the selected one back, and moves the highlight.
void ClickAction(GromlitApp* gromlit, int n, bool twice) {
  const int before = gromlit->selected;
  if (before == n && twice) return;
  gromlit->selected = before == n ? -1 : n;
  InvertHighlight(gromlit, before);
  InvertHighlight(gromlit, gromlit->selected);
}

}  // namespace

GromlitApp* MakeGromlitApp(int ncols, int nrows, int argc, char** argv) {
  auto* gromlit = new GromlitApp{};
  gromlit->border = kBorder;
  gromlit->iconwidth = kIconWidth;
  gromlit->iconheight = kIconSize;
  gromlit->ncols = ncols;
  gromlit->nrows = nrows;
  gromlit->selected = -1;
  gromlit->width = ncols * CellWidth(gromlit) + 36;
  gromlit->height = nrows * CellHeight(gromlit) + 36 + logoImage->height + 4;
  MakeWindow(gromlit, argc, argv);
  MakeParts(gromlit);
  gromlit->popup = MakePopup(gromlit);

  gromlit->wobj = AllocWindowObj(gromlit->window, gromlit);
  On<Expose, ExposeGromlitApp>(gromlit);
  On<EnterNotify, GromlitAppEnter>(gromlit);
  On<LeaveNotify, GromlitAppLeave>(gromlit);
  On<ButtonPress, GromlitAppButtonPress>(gromlit);
  On<MotionNotify, GromlitAppMotionNotify>(gromlit);
  On<ResizeRequest, GromlitAppResizeNotify>(gromlit);
  SetHandler(gromlit->wobj, ClientMessage, WMClientMessage);
  showWindow = gromlit->window;
  return gromlit;
}

void DrawGromlitApp(GromlitApp* gromlit) {
  const int width = gromlit->width - 2 * gromlit->border;
  const int height = gromlit->height - (gromlit->border + gromlit->icony);
  XClearWindow(dpy, gromlit->window);
  FillRectangle(gromlit->window, gromlit->gc, white.pixel, gromlit->border, gromlit->icony, width,
                height);
  gromlit->drawn = gromlit->plugin;
  gromlit->nicons = CountActions(gromlit->plugin);
  // All of one colour and then all of the other: every change of colour is a request.
  XSetForeground(dpy, gromlit->gc, blue.pixel);
  ForVisibleActions(gromlit, [&](const GromlitAction* action, int x, int y) {
    DrawSymbolBigIcon(gromlit->window, gromlit->gc, &action->sym, x + kIconX, y);
  });
  XSetForeground(dpy, gromlit->gc, black.pixel);
  ForVisibleActions(gromlit, [&](const GromlitAction* action, int x, int y) {
    const int centre = x + gromlit->iconwidth / 2;
    DrawIconName(gromlit->window, gromlit->gc, FieldText(action->name),
                 {.centre = centre,
                  .splitcentre = centre,
                  .baseline = y + txtCharht + gromlit->iconheight,
                  .limit = gromlit->iconwidth});
  });
  // Last, because a long name reaches over the edge.
  XDrawBevel(kSunken, gromlit->window, gromlit->gc, gromlit->border, gromlit->icony, width, height);
  InvertHighlight(gromlit, gromlit->selected);
}

void RefreshGromlitApp() {
  if (app != nullptr) DrawGromlitApp(app);
}

GromlitPluginList* UpdateGromlitApp(GromlitApp* gromlit, const char* classname, int* updated) {
  GromlitPluginList* node = FindPluginNode(classname);
  ShowPlugin(gromlit, node != nullptr ? node->plugin : DefaultPlugin, updated);
  return node;
}

void KeepShownPlugin() {
  if (app != nullptr) app->lifted = NextRequest(dpy);
}

void UpdateGromlitScrollRange() {
  if (app != nullptr) UpdateScrollbarRange(app->sbar, ScrollRange(app));
}

void GromlitIconScroll(GromlitApp* gromlit, int ypos) {
  const int top = std::max(ypos, 0) / CellHeight(gromlit) * gromlit->ncols;
  if (top == gromlit->icontop) return;
  gromlit->icontop = top;
  DrawGromlitApp(gromlit);
}

void GromlitAppButtonPress(GromlitApp* gromlit, XEvent* event) {
  const XButtonEvent& press = event->xbutton;
  if (gromlit->drawn != gromlit->plugin) {
    // A stroke over an application shows its plug-in without drawing it when that is switched off:
    // the user has clicked on an action of another one, and sees the true ones first.
    DrawGromlitApp(gromlit);
    return;
  }
  // Server times are 32 bits wide and start again at 0 after 49 days.
  const uint32_t now = PressTime(press);
  const bool twice = now - static_cast<uint32_t>(AppLastClick) <= kDoubleClickTime;
  AppLastClick = static_cast<int>(now);
  if (press.button == Button1) {
    const int n = ActionAt(gromlit, press.x, press.y);
    if (n < 0) return;
    ClickAction(gromlit, n, twice);
    if (twice) popEditAction(nullptr, gromlit);
  } else if (press.button == Button3) {
    PopUpMenuGrabbed(press.x_root, press.y_root, gromlit->popup);
  }
}

// The window asks for these events for traces only.
void GromlitAppButtonRelease(GromlitApp*, XEvent*) {}
void GromlitAppMotionNotify(GromlitApp*, XEvent*) {}
void GromlitAppEnter(GromlitApp*, XEvent*) {}
void GromlitAppLeave(GromlitApp*, XEvent*) {}
void GromlitAppResizeNotify(GromlitApp*, XEvent*) {}

void appClickPlugins(void*) {}

}  // namespace gromlit
