// The record of a text field; see text_editor.h.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/window_object.h"

namespace gromlit {

inline constexpr int kEditorBuffer = 128;  // bytes of the text, its NUL included
inline constexpr int kEditorTyped = 64;    // no key makes the text longer than this
inline constexpr int kEditorHeight = 24;   // pixels; the drawing assumes it
inline constexpr int kEditorTextX = 4;     // pixels; where the text begins

// What a field is told of. FocusChange tells of the focus that is lost because a window was
// unmapped (see focus.h).
inline constexpr long kEditorEvents = ExposureMask | EnterWindowMask | LeaveWindowMask |
                                      ButtonPressMask | KeyPressMask | FocusChangeMask;

enum EditorCaret {
  kHollowCaret = 0,
  kSolidCaret = 1,
};

struct TextEditor {
  WindowObj* wobj;
  void* owner;  // who made it; not read here
  Window window;
  GC gc;                              // its own
  int width;                          // pixels
  char buffer[kEditorBuffer];         // the first len bytes are the text; see TextEditorText
  int len;                            // bytes of text
  int index;                          // caret: before the byte of this index
  int keystate;                       // modifier state and key code of a recorded hot key, for
  int keycode;                        // owners with a key handler of their own
  void (*complete)(TextEditor* txt);  // Return or End was pressed; never null
  int inside;                         // 1 while the pointer is in the field
  EditorCaret caret;                  // what is drawn, and at which x
  int caretx;
  int focused;      // 1 while the field has the keyboard
  int recordskeys;  // 1: an owner's key handler fills the field; no caret is put, nothing pasted

  // With today's manners.
  int limit;                        // bytes that the text may have: what the record behind it holds
  int first;                        // byte that is shown leftmost
  int anchor;                       // the selection's other end; index when nothing is selected
  int clicks;                       // presses in one place so far, 1..3; 0: none
  Time clicktime;                   // of the last one, server time
  int clickx;                       // and its place, pixels
  void (*redraw)(TextEditor* txt);  // RedrawTextEditorLine
  int draggable;                    // 1: told of drags
  int dragging;                     // 1 while button 1 is down that was pressed here
};

}  // namespace gromlit
