// The symbol editor: a window that leads through drawing a symbol, painting its icon and naming it.
// Here is what its parts share: the record and the states.
//
// It works on a copy; the symbol library changes only when the copy is saved. `state` is one of
// SymbolEditorState:
//
//   state           event                                     next     function
//   0 empty         press in the drawing area                 1        SymWindowButtonPress
//   0 empty         stroke over the drawing area               2        TakeDrawnSymbol
//   1 capturing     press beside the last point, < 64 points  1        SymWindowButtonPress
//   1 capturing     press within 3 pixels of the last point   2        SymWindowButtonPress
//   1 capturing     motion                                    1        SymWindowMotionNotify
//   2 complete      motion: which point is under the pointer  2        SymWindowMotionNotify
//   2 complete      press on a point, pointer grabbed         3        SymWindowButtonPress
//   2 complete      press on a point, grab refused            2        SymWindowButtonPress
//   3 dragging      motion with a button down: point moves    3        SymWindowMotionNotify
//   3 dragging      motion without: the release was missed    2        SymWindowMotionNotify
//   3 dragging      release                                   2        SymWindowButtonRelease
//   0..3 (step 1)   "Next"                                    4        symNext
//   4 bitmap        press in the drawing area: toggles a bit  4        SymWindowButtonPress
//   4 bitmap        "Clear", "Restart"                        4        symClear, symRestart
//   4 bitmap        "Finish"                                  5        symFinish
//   4 bitmap        "Prev", the symbol has points             2        symPrev
//   4 bitmap        "Prev", it has none                       0        symPrev
//   5 name          "Prev"                                    4        symPrev
//   all but 4       "Clear": the points are dropped           0        symClear
//   any             "Save", Return in the name field          hidden   symSave, txtSaveSymbol
//   any             "Save", the save fails                    as it was
//   any             "Cancel", close by the window manager     hidden   symCancel, WMClientMessage
//   hidden or not   SymInit                                   2 or 0   SymInit
//
// "Clear" in step 3 leaves the name widgets shown: what is saved from there is an empty vector.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"
#include "toolkit/button.h"
#include "toolkit/icon_window.h"
#include "toolkit/logo.h"
#include "toolkit/scrollbar.h"
#include "toolkit/text_editor.h"
#include "toolkit/text_list.h"
#include "toolkit/text_select.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct SymWindow;

enum SymbolEditorState {
  kSymEmpty = 0,      // step 1, no point yet
  kSymCapturing = 1,  // step 1, each press adds a point
  kSymComplete = 2,   // step 1, points may be dragged
  kSymDragging = 3,   // step 1, the pointer is grabbed for point `onpt`
  kSymBitmap = 4,     // step 2
  kSymName = 5,       // step 3
};

struct SymbolEditor {
  WindowObj* wobj;
  Window window;
  GC gc;      // black on white, text font
  int width;  // pixels, as is height
  int height;
  GromlitSymbol sym;  // the working copy; its signature stays null (INV-SYMBOL-1)
  int state;          // SymbolEditorState
  XButton* bhelp;
  XButton* bprev;
  XButton* bnext;
  XButton* bcancel;
  XButton* bclear;
  XButton* bfinish;
  XButton* bsave;
  XButton* brestart;
  XLogo* logo;
  TextEditor* txt;   // the name
  XScrollbar* sbar;  // of the list
  XTextList* lst;    // names of the existing symbols
  SymWindow* wsym;
  IconWindow* icon;    // the icon in its real size
  TextSelect* select;  // never shown
  const char** names;  // the list's lines: heap, nnames of them; the texts are the symbols' own
  int nnames;
};

// The one editor; null before CreateSymbolEditor.
inline SymbolEditor* sed = nullptr;

}  // namespace gromlit
