#include "app/main_window/main_window.h"

#include <iterator>

#include "app/main_window/action_menu.h"
#include "app/main_window/main_menu.h"
#include "app/main_window/shown_plugin.h"
#include "app/windows/top_level.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/scale.h"
#include "display/window_manager.h"
#include "toolkit/child_window.h"
#include "toolkit/dialog.h"
#include "toolkit/image.h"
#include "toolkit/logo.h"
#include "toolkit/menu.h"
#include "toolkit/menu_bar.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/scrollbar.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

constexpr int kBorder = 4;
constexpr int kIconWidth = 64;

void MakeWindow(GromlitApp* gromlit) {
  gromlit->window = CreateTopLevel(gromlit->width, gromlit->height, kGromlitAppEvents);
  showWindow = gromlit->window;
  gromlit->mbar = MakeGromlitMenuBar(gromlit, gromlit->window, 0, 0, gromlit->width);
  XMapWindow(dpy, gromlit->mbar->window);
  gromlit->height += gromlit->mbar->height;
  ScaledResizeWindow(gromlit->window, gromlit->width, gromlit->height);
  SetWindowManagerProperties(gromlit->window, {.title = "Gromlit",
                                               .icontitle = nullptr,
                                               .name = "Application",
                                               .width = gromlit->width,
                                               .height = gromlit->height});
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
  ScaledSetClipRectangle(gromlit->gc, border, gromlit->icony, inside, below);

  gromlit->sbar = MakeScrollbar(gromlit->window, gromlit->width - kScrollbarWidth - border,
                                gromlit->icony, below);
  gromlit->sbar->range = gromlit->nrows * GridCellHeight(gromlit);
  gromlit->sbar->row = GridCellHeight(gromlit);
  gromlit->sbar->scrollarg = gromlit;
  gromlit->sbar->scroll = [](void* arg, int offset) {
    GromlitIconScroll(static_cast<GromlitApp*>(arg), offset);
  };
  XMapWindow(dpy, gromlit->sbar->window);
}

void TurnGridWheel(GromlitApp* gromlit, int rows) {
  ScrollRows(gromlit->sbar, rows);
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

}  // namespace

GromlitApp* MakeGromlitApp(int ncols, int nrows) {
  auto* gromlit = new GromlitApp{};
  gromlit->border = kBorder;
  gromlit->iconwidth = kIconWidth;
  gromlit->iconheight = kIconSize;
  gromlit->ncols = ncols;
  gromlit->nrows = nrows;
  gromlit->selected = -1;
  gromlit->width = ncols * GridCellWidth(gromlit) + 36;
  gromlit->height = nrows * GridCellHeight(gromlit) + 36 + logoImage->height + 4;
  MakeWindow(gromlit);
  MakeParts(gromlit);
  gromlit->popup = MakePopup(gromlit);
  gromlit->edit = popEditAction;
  gromlit->view = MakePluginView(gromlit->txt);
  pluginview = &gromlit->view;
  beforehiding = KeepShownPlugin;

  gromlit->wobj = AllocTopLevelObj(gromlit->window, gromlit);
  On<Expose, ExposeGromlitApp>(gromlit);
  On<EnterNotify, GromlitAppEnter>(gromlit);
  On<LeaveNotify, GromlitAppLeave>(gromlit);
  On<ButtonPress, GromlitAppButtonPress>(gromlit);
  On<MotionNotify, GromlitAppMotionNotify>(gromlit);
  On<ResizeRequest, GromlitAppResizeNotify>(gromlit);
  gromlit->otherkeys = gromlit->wobj->eh[KeyPress];
  On<KeyPress, GromlitAppKeyPress>(gromlit);
  // The bar asks for keys, so that those pressed over it come to it.
  gromlit->mbar->keyarg = gromlit;
  gromlit->mbar->key = [](void* arg, XEvent* event) {
    GromlitAppKeyPress(static_cast<GromlitApp*>(arg), event);
  };
  OnWheel<TurnGridWheel>(gromlit);
  return gromlit;
}

bool GromlitIsShown() {
  return app != nullptr && CanBeSeen(app->window);
}

void ShowGromlit() {
  if (app == nullptr) return;
  XWindowAttributes attributes;
  const bool elsewhere = XGetWindowAttributes(dpy, app->window, &attributes) != 0 &&
                         attributes.map_state == IsUnviewable;
  ShowTopLevel(app->window);
  // Mapped, but on a desktop that is not shown: only the window manager can bring it here.
  constexpr long kFromAUser = 2;
  if (elsewhere) AskManager(app->window, "_NET_ACTIVE_WINDOW", {kFromAUser, CurrentTime, 0, 0, 0});
}

void HideGromlit() {
  if (app != nullptr) HideTopLevel(app->window);
}

void appClickPlugins(void*) {}

}  // namespace gromlit
