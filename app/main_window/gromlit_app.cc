#include "app/main_window/gromlit_app.h"

#include <X11/keysym.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "app/windows/icon_name.h"
#include "app/windows/symbol_big_icon.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/list_keys.h"
#include "toolkit/manners.h"
#include "toolkit/menu.h"
#include "toolkit/menu_bar.h"
#include "toolkit/press_time.h"
#include "toolkit/scrollbar.h"
#include "toolkit/text_editor.h"

namespace gromlit {

GromlitApp* app = nullptr;
int AppLastClick = 0;

namespace {

constexpr int kCellGap = 8;      // pixels that a cell is larger than what it shows, both ways
constexpr int kCellMargin = 8;   // from the top of the grid to its first icons
constexpr int kIconX = 16;       // from the left of a cell to its icon
constexpr int kHighlightUp = 2;  // pixels that the highlight begins above the icon
constexpr uint32_t kDoubleClickTime = 499;  // milliseconds

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
    draw(gromlit->plugin->actions[i],
         gromlit->iconx + cell % gromlit->ncols * GridCellWidth(gromlit),
         gromlit->icony + kCellMargin + cell / gromlit->ncols * GridCellHeight(gromlit));
  }
}

// Inverts the highlight of an action, when it is visible.
void InvertHighlight(const GromlitApp* gromlit, int action) {
  const int cell = action - gromlit->icontop;
  if (action < 0 || cell < 0 || cell >= gromlit->ncols * gromlit->nrows) return;
  InvertRectangle(
      gromlit->window, gromlit->gc, gromlit->iconx + cell % gromlit->ncols * GridCellWidth(gromlit),
      gromlit->icony + cell / gromlit->ncols * GridCellHeight(gromlit) + kCellMargin - kHighlightUp,
      gromlit->iconwidth, gromlit->iconheight + 2 * kHighlightUp);
}

// --- Clicks -----------------------------------------------------------------------------------

// The action at a point of the window; -1 for none. Division rounds towards zero, so that what is
// left of or above the grid has to be told apart first.
int ActionAt(const GromlitApp* gromlit, int x, int y) {
  if (x < gromlit->iconx || y < gromlit->icony) return -1;
  const int col = (x - gromlit->iconx) / GridCellWidth(gromlit);
  const int row = (y - gromlit->icony) / GridCellHeight(gromlit);
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

// --- Keys -------------------------------------------------------------------------------------

// The popup in the middle of the selected action's icon; without one at the grid's beginning.
void PopUpByKey(GromlitApp* gromlit) {
  const int cell = gromlit->selected - gromlit->icontop;
  const bool seen = gromlit->selected >= 0 && cell >= 0 && cell < gromlit->ncols * gromlit->nrows;
  const int at = seen ? cell : 0;
  int x;
  int y;
  ScaledTranslate(
      gromlit->window, root,
      gromlit->iconx + at % gromlit->ncols * GridCellWidth(gromlit) + gromlit->iconwidth / 2,
      gromlit->icony + at / gromlit->ncols * GridCellHeight(gromlit) + kCellMargin +
          gromlit->iconheight / 2,
      &x, &y);
  PopUpMenuGrabbed(x, y, gromlit->popup);
}

// False when the key does not move the selection.
bool MoveSelection(GromlitApp* gromlit, KeySym key) {
  const ListGrid grid = {std::min(gromlit->nicons, CountActions(gromlit->plugin)), gromlit->ncols,
                         gromlit->nrows, gromlit->icontop};
  const int to = MovedByKey(key, gromlit->selected, grid);
  if (to < 0) return false;
  if (const int rows = RowsToSee(to, grid); rows != 0) ScrollRows(gromlit->sbar, rows);
  if (to != gromlit->selected) ClickAction(gromlit, to, false);
  return true;
}

}  // namespace

int GridCellWidth(const GromlitApp* gromlit) {
  return gromlit->iconwidth + kCellGap;
}

int GridCellHeight(const GromlitApp* gromlit) {
  return gromlit->iconheight + 2 * txtCharht + kCellGap;
}

int GridLength(const GromlitApp* gromlit) {
  const int rows = (CountActions(gromlit->plugin) - 1 + gromlit->ncols) / gromlit->ncols;
  return rows * GridCellHeight(gromlit);
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

void UpdateGromlitScrollRange() {
  if (app != nullptr) UpdateScrollbarRange(app->sbar, GridLength(app));
}

void GromlitIconScroll(GromlitApp* gromlit, int ypos) {
  const int top = std::max(ypos, 0) / GridCellHeight(gromlit) * gromlit->ncols;
  if (top == gromlit->icontop) return;
  gromlit->icontop = top;
  DrawGromlitApp(gromlit);
}

void FollowMannersInApp(GromlitApp* gromlit) {
  AskForKeys(gromlit->window, kGromlitAppEvents, &gromlit->keys);
}

void GromlitAppKeyPress(GromlitApp* gromlit, XEvent* event) {
  if (!ModernManners()) return;
  char bytes[32];
  KeySym key;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  const bool shifted = (event->xkey.state & ShiftMask) != 0;
  const bool altered = (event->xkey.state & (ControlMask | Mod1Mask)) != 0;
  if (altered) {
    gromlit->otherkeys(gromlit, event);
    return;
  }
  if (key == XK_F10 && !shifted) {
    MenuBarOpenByHand(gromlit->mbar, 0, nullptr);
    return;
  }
  if (gromlit->drawn != gromlit->plugin) {
    // As for a press: nothing is done to what the user does not see.
    DrawGromlitApp(gromlit);
    return;
  }
  if (key == XK_Menu || key == XK_F10) {
    PopUpByKey(gromlit);
  } else if (IsChoosingKey(key) && gromlit->selected >= 0) {
    gromlit->edit(nullptr, gromlit);
  } else if (!MoveSelection(gromlit, key)) {
    gromlit->otherkeys(gromlit, event);
  }
}

void ExposeGromlitApp(GromlitApp* gromlit, XEvent* event) {
  FollowMannersInApp(gromlit);
  if (event->xexpose.count == 0) DrawGromlitApp(gromlit);
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
    if (twice) gromlit->edit(nullptr, gromlit);
  } else if (press.button == Button3) {
    PopUpMenuGrabbed(press.x_root, press.y_root, gromlit->popup, &press);
  }
}

void GromlitAppEnter(GromlitApp* gromlit, XEvent*) {
  FollowMannersInApp(gromlit);
}

void GromlitAppLeave(GromlitApp* gromlit, XEvent*) {
  FollowMannersInApp(gromlit);
}

// The window asks for these events for traces only.
void GromlitAppButtonRelease(GromlitApp*, XEvent*) {}
void GromlitAppMotionNotify(GromlitApp*, XEvent*) {}
void GromlitAppResizeNotify(GromlitApp*, XEvent*) {}

}  // namespace gromlit
