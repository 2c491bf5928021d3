#include "toolkit/text_list.h"

#include <X11/keysym.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string_view>

#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/list_keys.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

constexpr int kInset = 4;  // pixels from the edges to the lines
constexpr int kTextX = 6;
constexpr long kEvents = ExposureMask | ButtonPressMask | KeyPressMask | KeyReleaseMask;

int VisibleLines(const XTextList* tl) {
  return tl->itemheight > 0 ? std::max(tl->height - 2 * kInset, 0) / tl->itemheight : 0;
}

// Highlights the line in `row` of the window, or takes the highlight away.
void InvertRow(XTextList* tl, int row) {
  InvertRectangle(tl->window, tl->gc, kInset, row * tl->itemheight + kInset, tl->width - 6,
                  tl->itemheight + 2);
}

void SetCount(XTextList* tl, int n) {
  tl->nitems = std::max(n, 0);
  tl->top = std::clamp(tl->top, 0, tl->nitems);
  if (tl->selected >= tl->nitems) tl->selected = -1;
}

void TurnListWheel(XTextList* tl, int rows) {
  if (tl->sb != nullptr) ScrollRows(tl->sb, rows);
}

// Lets the list have keys, or no more, as the manners are now.
void FollowManners(XTextList* tl) {
  const int before = tl->keys;
  AskForKeys(tl->window, kEvents, &tl->keys);
  if (tl->keys == before) return;
  if (tl->keys != 0) {
    On<KeyPress, TextListKeyPress>(tl);
    On<FocusIn, TextListFocus>(tl);
    On<FocusOut, TextListFocus>(tl);
  } else {
    SetHandler(tl->wobj, KeyPress, NoHandler);
    SetHandler(tl->wobj, FocusIn, NoHandler);
  }
}

// Selects a line and shows that.
void PickLine(XTextList* tl, int picked) {
  if (picked >= tl->nitems || picked == tl->selected) return;
  const int former = tl->selected - tl->top;
  if (former >= 0 && former < tl->visible && tl->selected < tl->nitems) InvertRow(tl, former);
  tl->selected = picked;
  const int row = picked - tl->top;
  if (row >= 0 && row < tl->visible) InvertRow(tl, row);
  if (tl->select != nullptr) tl->select(tl->selectarg, tl->items[picked]);
}

void Refresh(XTextList* tl) {
  if (tl->sb != nullptr) {
    tl->sb->row = tl->itemheight;
    const int64_t range = static_cast<int64_t>(tl->nitems) * tl->itemheight;
    UpdateScrollbarRange(tl->sb, static_cast<int>(std::min<int64_t>(range, INT_MAX)));
  }
  DrawTextList(tl);
}

}  // namespace

XTextList* MakeTextList(Window parent, int x, int y, int width, int height, XFontStruct* fontinfo) {
  auto* tl = new XTextList{};
  tl->width = width;
  tl->height = height;
  tl->selected = -1;
  tl->fontinfo = fontinfo;
  tl->itemheight = fontinfo->max_bounds.ascent + fontinfo->max_bounds.descent;
  tl->window = MakeChildWindow(parent, x, y, width, height, white.pixel, kEvents);
  tl->gc = MakeWindowGC(tl->window, fontinfo->fid);
  tl->wobj = AllocWindowObj(tl->window, tl);
  On<Expose, DrawTextList>(tl);
  On<ButtonPress, TextListClick>(tl);
  SetTabStop(tl->wobj, nullptr);
  OnWheel<TurnListWheel>(tl);
  return tl;
}

void SetListItems(XTextList* tl, const char* const* items, int n) {
  tl->items = items;
  SetCount(tl, items != nullptr ? n : 0);
  tl->visible = VisibleLines(tl);
  Refresh(tl);
}

void SetListCount(XTextList* tl, int n) {
  SetCount(tl, tl->items != nullptr ? n : 0);
  Refresh(tl);
}

void SetTextListTop(XTextList* tl, int top) {
  if (top >= 0 && top <= tl->nitems) tl->top = top;
  DrawTextList(tl);
}

void ListScrollUp(XTextList* tl, int ypos) {
  SetTextListTop(tl, tl->itemheight > 0 ? ypos / tl->itemheight : 0);
}

void DrawTextList(XTextList* tl, XEvent*) {
  FollowManners(tl);
  FillRectangle(tl->window, tl->gc, white.pixel, 0, 0, tl->width, tl->height);
  DrawOutline(tl->window, tl->gc, lgrey.pixel, 0, 0, tl->width, tl->height);
  XDrawBevel(kSunken, tl->window, tl->gc, 1, 1, tl->width - 1, tl->height - 1);
  if (tl->focused != 0 && ModernManners()) {
    DrawOutline(tl->window, tl->gc, dgrey.pixel, kInset, kInset - 1, tl->width - 2 * kInset,
                tl->height - 2 * kInset + 1);
  }
  XSetForeground(dpy, tl->gc, black.pixel);
  const int rows = std::min(tl->visible, tl->nitems - tl->top);
  for (int row = 0; row < rows; row++) {
    const char* item = tl->items[tl->top + row];
    if (item != nullptr) {
      DrawText(tl->window, tl->gc, kTextX, (row + 1) * tl->itemheight + 2, item);
    }
    if (tl->top + row == tl->selected) InvertRow(tl, row);
  }
}

void TextListClick(XTextList* tl, XEvent* event) {
  if (tl->itemheight <= 0) return;
  FollowManners(tl);
  if (tl->keys != 0) TakeFocus(tl->window);
  const int row = (event->xbutton.y - kInset) / tl->itemheight;
  // Above the list, or in the strip at the bottom that is too low for another line.
  if (row < 0 || row >= tl->visible) return;
  const int picked = tl->top + row;
  PickLine(tl, picked);
}

void TextListKeyPress(XTextList* tl, XEvent* event) {
  if (!ModernManners()) return;
  char bytes[32];
  KeySym key;
  const int count = LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  const ListGrid lines = {tl->nitems, 1, tl->visible, tl->top};
  int to = MovedByKey(key, tl->selected, lines);
  if (to < 0 && TakeLetter(&tl->ahead, event->xkey, {bytes, static_cast<size_t>(count)})) {
    to = FirstTyped(tl->ahead, tl->nitems, [&](int i) {
      return std::string_view(tl->items[i] != nullptr ? tl->items[i] : "");
    });
    if (to < 0) return;
  }
  if (to < 0) {
    HandKeyUp(tl->window, event);
    return;
  }
  if (const int rows = RowsToSee(to, lines); rows != 0) {
    if (tl->sb != nullptr) {
      ScrollRows(tl->sb, rows);
    } else {
      SetTextListTop(tl, tl->top + rows);
    }
  }
  PickLine(tl, to);
}

void TextListFocus(XTextList* tl, XEvent* event) {
  if (event->type == FocusOut) FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  tl->focused = event->type == FocusIn ? 1 : 0;
  DrawTextList(tl);
}

void ListKeyPress(XTextList*, XEvent* event) {
  char bytes[32];
  KeySym key;
  LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  noprintf("list key: %s\n", key == XK_Up ? "up" : key == XK_Down ? "down" : "other");
}

}  // namespace gromlit
