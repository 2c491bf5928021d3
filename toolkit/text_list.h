// A list of text lines of which one may be selected. With today's manners it can be typed at: the
// first letters of a line select it, arrows, Home, End and the page keys move the selection, and a
// click gives the list the keyboard. Plain ones have no keyboard control.
//
// INV-LIST-1: 0 <= top <= nitems and -1 <= selected, visible >= 0. Nothing at or beyond nitems is
// ever read; a selected line beyond it, which owners may set before they raise the count, is not
// shown.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/scrollbar.h"
#include "toolkit/type_ahead.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct XTextList {
  WindowObj* wobj;
  Window window;
  int width;  // pixels, as is height
  int height;
  GC gc;                     // its own, in the list's font
  XScrollbar* sb;            // scrolls it; set by the owner; or null
  int nitems;                // lines
  int top;                   // index of the first line shown
  int visible;               // whole lines that fit
  int selected;              // index of the highlighted line; -1: none
  const char* const* items;  // nitems lines, the owner's, neither copied nor kept in order here
  int itemheight;            // pixels
  XFontStruct* fontinfo;
  void* selectarg;                              // the owner's
  void (*select)(void* arg, const char* item);  // another line was picked; or null
  TypeAhead ahead;
  int keys;     // whether it asks for its focus, too; see AskForKeys
  int focused;  // whether it has the keyboard, which a dark frame shows
};

// Makes an empty list, not mapped.
XTextList* MakeTextList(Window parent, int x, int y, int width, int height, XFontStruct* fontinfo);

// Set the lines, or only their number, adjust the scrollbar and draw. The array must have n lines
// and stay until it is replaced; a null line is drawn as nothing. A selection beyond the new end is
// dropped.
void SetListItems(XTextList* tl, const char* const* items, int n);
void SetListCount(XTextList* tl, int n);

// Makes `top` the first line shown, unless it lies beyond the end, and draws in either case.
void SetTextListTop(XTextList* tl, int top);

// The scrollbar's callback: ypos pixels of the content lie above the list.
void ListScrollUp(XTextList* tl, int ypos);

// Handlers; the drawing does not look at its event. Every press counts, of any mouse button.
void DrawTextList(XTextList* tl, XEvent* event = nullptr);
void TextListClick(XTextList* tl, XEvent* event);

// Keys with today's manners; one that the list has no use for goes to the window that it lies in.
void TextListKeyPress(XTextList* tl, XEvent* event);
void TextListFocus(XTextList* tl, XEvent* event);

// Recognises Up and Down and does nothing with them; installed on no list.
void ListKeyPress(XTextList* tl, XEvent* event);

}  // namespace gromlit
