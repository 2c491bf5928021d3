#include "app/symbols/symbol_display.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "app/windows/icon_name.h"
#include "app/windows/symbol_big_icon.h"
#include "core/strings.h"
#include "display/colours.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/list_keys.h"
#include "toolkit/manners.h"
#include "toolkit/press_time.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"
#include "toolkit/text_editor.h"

namespace gromlit {

int SymLastClick = 0;

namespace {

constexpr int kBorder = 4;
constexpr int kGridX = 8;  // of the first cell, as is kGridY
constexpr int kGridY = 8;
constexpr int kColumns = 4;
constexpr int kRows = 4;
constexpr int kIconHeight = 32;
constexpr int kIconWidth = 64;
constexpr int kCellGap = 8;
constexpr int kBitmapX = 24;            // from the left edge of a column to the icon
constexpr uint32_t kDoubleClick = 500;  // milliseconds
constexpr long kEvents = ExposureMask | ButtonPressMask | ButtonReleaseMask;

int CellWidth(const SymbolDisplay* sd) {
  return sd->iconwidth + kCellGap;
}

bool Listed(const SymbolDisplay* sd, int index) {
  return 0 <= index && index < sd->count;
}

int IndexOf(const SymbolDisplay* sd, const GromlitSymbol* sym) {
  const auto* end = sd->syms + sd->count;
  const auto* found = std::find(sd->syms, end, sym);
  return found != end ? static_cast<int>(found - sd->syms) : -1;
}

// A symbol that was saved again has a new record under its old name.
int IndexOfName(const SymbolDisplay* sd, std::string_view name) {
  for (int i = 0; i < sd->count; i++) {
    if (FieldText(sd->syms[i]->name) == name) return i;
  }
  return -1;
}

void ReadSymbols(SymbolDisplay* sd) {
  // Records stay alive after they have left the library.
  const GromlitSymbol* chosen = SelectedSymbol(sd);
  sd->count = 0;
  sd->unlisted = 0;
  for (const auto* node = allSymbols; node != nullptr && node->sym != nullptr; node = node->next) {
    if (sd->count < kChooserSymbols) {
      sd->syms[sd->count++] = node->sym;
    } else {
      sd->unlisted++;
    }
  }
  sd->selected = -1;
  if (chosen == nullptr) return;
  sd->selected = IndexOf(sd, chosen);
  if (sd->selected < 0) sd->selected = IndexOfName(sd, FieldText(chosen->name));
}

// Inverts the cell of a symbol when it is visible: highlights it, or takes that away.
void InvertCell(SymbolDisplay* sd, int index) {
  const int cell = index - sd->top;
  if (cell < 0 || cell / sd->ncols >= sd->nrows) return;
  InvertRectangle(sd->window, sd->gc, kGridX + CellWidth(sd) * (cell % sd->ncols),
                  cell / sd->ncols * SymbolCellHeight(sd) + 6, sd->iconwidth, sd->iconheight + 4);
}

void DrawSymbols(SymbolDisplay* sd) {
  const int end = std::min(sd->count, sd->top + sd->ncols * sd->nrows);
  for (int i = sd->top; i < end; i++) {
    const int cell = i - sd->top;
    const int x = CellWidth(sd) * (cell % sd->ncols);
    const int y = kGridY + SymbolCellHeight(sd) * (cell / sd->ncols);
    XSetForeground(dpy, sd->gc, blue.pixel);
    DrawSymbolBigIcon(sd->window, sd->gc, sd->syms[i], x + kBitmapX, y);
    XSetForeground(dpy, sd->gc, black.pixel);
    DrawIconName(sd->window, sd->gc, FieldText(sd->syms[i]->name),
                 {.centre = x + kGridX + CellWidth(sd) / 2,
                  .splitcentre = x + kGridX + sd->iconwidth / 2,
                  .baseline = y + txtCharht + sd->iconheight,
                  .limit = CellWidth(sd)});
  }
}

// Rows of the whole grid. The notice of what is missing takes one of its own.
int GridRows(const SymbolDisplay* sd) {
  return (sd->count - 1 + sd->nrows) / sd->nrows + (sd->unlisted > 0 ? 1 : 0);
}

void DrawUnlisted(SymbolDisplay* sd) {
  const int row = (sd->count - sd->top) / sd->ncols;
  if (sd->unlisted == 0 || row >= sd->nrows) return;
  const std::string much =
      sd->unlisted == 1 ? "1 more symbol is" : std::to_string(sd->unlisted) + " more symbols are";
  const int y = kGridY + SymbolCellHeight(sd) * row + sd->iconheight;
  const int centre = kGridX + CellWidth(sd) * sd->ncols / 2 - kCellGap / 2;
  XSetForeground(dpy, sd->gc, black.pixel);
  int baseline = y;
  for (const std::string& line :
       {much + " not shown.", std::string("Delete symbols to see the others.")}) {
    DrawCentredText(sd->window, sd->gc, centre, 0, baseline, line, TextWidth(txtFontinfo, line));
    baseline += txtCharht;
  }
}

// The frame on the border that shows that keys come here, or takes it away.
void DrawFocus(SymbolDisplay* sd) {
  DrawOutline(sd->window, sd->gc, sd->focused != 0 && ModernManners() ? dgrey.pixel : lgrey.pixel,
              1, 1, sd->width - 3, sd->height - 3);
}

void DrawGrid(SymbolDisplay* sd) {
  XClearWindow(dpy, sd->window);
  FillRectangle(sd->window, sd->gc, white.pixel, kBorder, kBorder, sd->width - 2 * kBorder,
                sd->height - 2 * kBorder);
  XDrawBevel(kSunken, sd->window, sd->gc, kBorder, kBorder, sd->width - 2 * kBorder,
             sd->height - 2 * kBorder);
  DrawSymbols(sd);
  DrawUnlisted(sd);
  if (sd->focused != 0) DrawFocus(sd);
  if (sd->selected >= 0) InvertCell(sd, sd->selected);
}

// The symbol at a position in the window; -1 for none.
int SymbolAt(const SymbolDisplay* sd, int x, int y) {
  // Before the division, which would round towards the first row and column.
  if (x < kGridX || y < kGridY) return -1;
  const int column = (x - kGridX) / CellWidth(sd);
  const int row = (y - kGridY) / SymbolCellHeight(sd);
  if (column >= sd->ncols || row >= sd->nrows) return -1;
  const int index = sd->top + column + row * sd->ncols;
  return Listed(sd, index) ? index : -1;
}

void TurnDisplayWheel(SymbolDisplay* sd, int rows) {
  ScrollRows(sd->sbar, rows);
}

// Moves the highlight to another symbol.
void SelectCell(SymbolDisplay* sd, int index) {
  if (sd->selected >= 0) InvertCell(sd, sd->selected);
  sd->selected = index;
  InvertCell(sd, index);
}

void ScrollGrid(void* arg, int offset) {
  ScrollSymbolDisplay(static_cast<SymbolDisplay*>(arg), offset);
}

// False when the chooser has no use for the key.
bool TakeKey(SymbolDisplay* sd, XKeyEvent* key) {
  char bytes[32];
  KeySym sym;
  const int count = LookupKey(key, bytes, sizeof bytes, &sym);
  if (IsChoosingKey(sym)) {
    if (SelectedSymbol(sd) == nullptr) return false;
    sd->done(sd->donearg);
    return true;
  }
  const ListGrid cells = {sd->count, sd->ncols, sd->nrows, sd->top};
  int to = MovedByKey(sym, sd->selected, cells);
  if (to < 0) {
    if (!TakeLetter(&sd->ahead, *key, {bytes, static_cast<size_t>(count)})) return false;
    to = FirstTyped(sd->ahead, sd->count, [&](int i) { return FieldText(sd->syms[i]->name); });
  }
  if (to < 0 || to == sd->selected) return true;
  if (const int rows = RowsToSee(to, cells); rows != 0) ScrollRows(sd->sbar, rows);
  SelectCell(sd, to);
  return true;
}

}  // namespace

int SymbolCellHeight(const SymbolDisplay* sd) {
  return sd->iconheight + 2 * txtCharht + kCellGap;
}

GromlitSymbol* SelectedSymbol(const SymbolDisplay* sd) {
  return Listed(sd, sd->selected) ? sd->syms[sd->selected] : nullptr;
}

SymbolDisplay* MakeSymbolDisplay(Window parent, int x, int y, void (*done)(void* arg),
                                 void* donearg) {
  auto* sd = new SymbolDisplay{};
  sd->done = done;
  sd->donearg = donearg;
  sd->border = kBorder;
  sd->iconheight = kIconHeight;
  sd->iconwidth = kIconWidth;
  sd->ncols = kColumns;
  sd->nrows = kRows;
  sd->selected = -1;
  sd->width = CellWidth(sd) * kColumns + 23;
  sd->height = SymbolCellHeight(sd) * kRows + 8;
  XSetWindowAttributes more{};
  more.backing_store = BackingStoreOfScreen(dpy, screen);
  sd->window = MakeChildWindow(parent, x, y, sd->width, sd->height, lgrey.pixel, kEvents,
                               CWBackingStore, more);
  sd->gc = MakeWindowGC(sd->window, txtFont);
  sd->wobj = AllocWindowObj(sd->window, sd);
  sd->sbar = MakeScrollbar(sd->window, sd->width - kScrollbarWidth - kBorder, kBorder,
                           sd->height - 2 * kBorder);
  sd->sbar->range = 5 * SymbolCellHeight(sd);
  sd->sbar->row = SymbolCellHeight(sd);
  sd->sbar->scroll = ScrollGrid;
  sd->sbar->scrollarg = sd;
  XMapWindow(dpy, sd->sbar->window);
  On<Expose, DrawSymbolDisplay>(sd);
  On<ButtonPress, SymbolDisplayButtonPress>(sd);
  On<ButtonRelease, SymbolDisplayButtonRelease>(sd);
  On<KeyPress, SymbolDisplayKeyPress>(sd);
  SetHandler(sd->wobj, KeyRelease, NoteKeyRelease);
  SetTabStop(sd->wobj, nullptr);
  On<FocusIn, SymbolDisplayFocus>(sd);
  On<FocusOut, SymbolDisplayFocus>(sd);
  OnWheel<TurnDisplayWheel>(sd);
  return sd;
}

void DrawSymbolDisplay(SymbolDisplay* sd, XEvent*) {
  AskForKeys(sd->window, kEvents, &sd->keys);
  ReadSymbols(sd);
  // The scrollbar may find that less is left to scroll and bring another top, which has to be known
  // before anything is drawn: a highlight drawn twice is gone.
  sd->measuring = 1;
  UpdateScrollbarRange(sd->sbar, GridRows(sd) * SymbolCellHeight(sd));
  sd->measuring = 0;
  DrawGrid(sd);
}

void ScrollSymbolDisplay(SymbolDisplay* sd, int pos) {
  const int top = std::max(pos, 0) / SymbolCellHeight(sd) * sd->ncols;
  if (top == sd->top) return;
  sd->top = top;
  // The scrollbar, which called this, is not drawn once more.
  if (sd->measuring == 0) DrawGrid(sd);
}

void SymbolDisplayButtonPress(SymbolDisplay* sd, XEvent* event) {
  // Server times are 32 bits and wrap; so does their difference.
  const uint32_t now = PressTime(event->xbutton);
  const bool twice = now - static_cast<uint32_t>(SymLastClick) < kDoubleClick;
  SymLastClick = static_cast<int>(now);
  AskForKeys(sd->window, kEvents, &sd->keys);
  if (sd->keys != 0) TakeFocus(sd->window);
  sd->chosen = 0;
  if (event->xbutton.button != Button1) return;
  const int index = SymbolAt(sd, event->xbutton.x, event->xbutton.y);
  if (index < 0) return;
  if (index != sd->selected) {
    SelectCell(sd, index);
  } else if (!twice) {
    sd->selected = -1;
    InvertCell(sd, index);
  }
  sd->chosen = twice ? 1 : 0;
}

void SymbolDisplayButtonRelease(SymbolDisplay* sd, XEvent* event) {
  if (sd->chosen == 0 || event->xbutton.button != Button1) return;
  sd->chosen = 0;
  sd->done(sd->donearg);
}

void SymbolDisplayKeyPress(SymbolDisplay* sd, XEvent* event) {
  if (ModernManners() && !TakeKey(sd, &event->xkey)) HandKeyUp(sd->window, event);
}

void SymbolDisplayFocus(SymbolDisplay* sd, XEvent* event) {
  if (event->type == FocusOut) FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  sd->focused = event->type == FocusIn ? 1 : 0;
  DrawFocus(sd);
}

}  // namespace gromlit
