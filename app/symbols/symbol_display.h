// The symbol chooser: a grid of all symbols, each with its icon and its name, of which one may be
// selected.
//
//   press            on                        selected       then
//   1, single        the selected symbol       -1             -
//   1, single        another symbol            that symbol    -
//   1, double        a symbol                  that symbol    `done`, at the release
//   1                beside the symbols        as before      -
//   2..5             anywhere                  as before      -
//
// A press is double when it comes within half a second of the one before, of whichever button.
// `done`, which is the OK of the dialog around the chooser, waits for the release, as the OK button
// does: a release that comes when the dialog is gone would go to the widget below it.
//
// With today's manners it is worked by keys, too: arrows, Home, End and the page keys move the
// selection, the first letters of a name select it, Return on the selected symbol is `done`. A
// press gives it the keyboard, as Tab does, and the dialog around it when it comes up.
//
// When the library holds more symbols than can be listed, a row behind the last one says how many
// are missing.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/scrollbar.h"
#include "toolkit/type_ahead.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XMenu;

inline constexpr int kChooserSymbols = 512;  // as many are listed; further ones are counted

// INV-CHOOSER-1: 0 <= count <= kChooserSymbols, and nothing at or beyond syms[count] is read.
// INV-CHOOSER-2: when the library changes, the selection stays with its symbol or is dropped; it
// never passes to another one.
struct SymbolDisplay {
  WindowObj* wobj;
  Window window;
  GC gc;      // black on white, text font
  int width;  // pixels, as is height
  int height;
  int border;      // inset of the white field, pixels
  int count;       // symbols listed
  int iconheight;  // of a cell's icon area, pixels
  int iconwidth;
  int ncols;  // cells shown
  int nrows;
  int top;                               // index of the first symbol shown, a multiple of ncols
  int selected;                          // index of the selected symbol; -1 for none
  void* arg;                             // free for the owner
  GromlitSymbol* syms[kChooserSymbols];  // not owned; in the order of allSymbols
  XScrollbar* sbar;
  XMenu* popup;             // not used
  int chosen;               // 1 from the second press of a double click on a symbol to its release
  int unlisted;             // symbols of the library beyond those listed
  void (*done)(void* arg);  // called when a symbol was chosen by a double click
  void* donearg;
  int measuring;  // 1 while the scrollbar learns its range, so that its callback does not draw
  TypeAhead ahead;
  int keys;     // whether it asks for keys; see AskForKeys
  int focused;  // whether it has the keyboard, which a frame shows
};

// Server time of the last press in the chooser, milliseconds, as the 32 bits of it.
extern int SymLastClick;

// Makes the chooser, not mapped, at (x, y) of its parent. A double click on a symbol calls
// done(donearg).
SymbolDisplay* MakeSymbolDisplay(Window parent, int x, int y, void (*done)(void* arg),
                                 void* donearg);

// Reads the list of symbols again and draws everything; an Expose handler that does not look at its
// event. No round trips.
void DrawSymbolDisplay(SymbolDisplay* sd, XEvent* event = nullptr);

// The scrollbar's callback: pos pixels of the grid lie above the window.
void ScrollSymbolDisplay(SymbolDisplay* sd, int pos);

// Handlers.
void SymbolDisplayButtonPress(SymbolDisplay* sd, XEvent* event);
void SymbolDisplayButtonRelease(SymbolDisplay* sd, XEvent* event);
void SymbolDisplayKeyPress(SymbolDisplay* sd, XEvent* event);
void SymbolDisplayFocus(SymbolDisplay* sd, XEvent* event);

// The selected symbol; null when none is.
GromlitSymbol* SelectedSymbol(const SymbolDisplay* sd);

// Height of a cell, pixels; its width is iconwidth + 8.
int SymbolCellHeight(const SymbolDisplay* sd);

}  // namespace gromlit
