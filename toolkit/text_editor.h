// The text field: one line of plain 7-bit text with a block caret. The pointer's entering gives it
// the keyboard; there is nothing to click. With today's manners there is: see text_editor_hands.h;
// the text is scrolled so that the caret is seen, and the frame stays with the keyboard.
//
//   caret     event                       next     function
//   hollow    pointer enters              solid    TextEditorEnter, which takes the focus
//   solid     pointer leaves              hollow   TextEditorLeave; the focus stays
//   any       a key that is acted upon    solid    TextEditorKeyPress
//   any       exposed, updated            hollow   DrawTextEditor, the pointer is outside
//   any       exposed, updated            solid    DrawTextEditor, the pointer is inside
//
// The focus frame is there while the pointer is inside.
//
// INV-EDITOR-1: 0 <= index <= len < kEditorBuffer.
// INV-EDITOR-3: first, anchor and index lie where letters begin; with plain manners first is 0 and
// anchor is index.
// INV-EDITOR-2: caret and caretx tell what is on the screen, so that inverting it once more always
// removes exactly that.
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
  int limit;       // bytes that the text may have: what the record behind it holds
  int first;       // byte that is shown leftmost
  int anchor;      // the selection's other end; index when nothing is selected
  int clicks;      // presses in one place so far, 1..3; 0: none
  Time clicktime;  // of the last one, server time
  int clickx;      // and its place, pixels
  int draggable;   // 1: told of drags
  int dragging;    // 1 while button 1 is down that was pressed here
};

// Makes a field, not mapped, with no text and txtNoComplete. Owners use kEditorHeight.
TextEditor* MakeTextEditor(Window parent, int x, int y, int width, int height);

// Sets the text, cut to kEditorBuffer - 1 bytes, with the caret at its end (null: no text).
// TextEditorInit also forgets the recorded key and leaves the drawing to the Expose that follows
// when the field is mapped; TextEditorUpdate draws at once.
void TextEditorInit(TextEditor* txt, const char* name);
void TextEditorUpdate(TextEditor* txt, const char* name);

// The text as a string, in the field's buffer; valid until the next key or update. Some control
// keys shorten the text without ending it in the buffer, so whoever reads the text outside
// `complete` takes it from here.
const char* TextEditorText(TextEditor* txt);

// Draws the text and a solid caret without clearing the frame, as after a key; for owners with a
// key handler of their own.
void RedrawTextEditorLine(TextEditor* txt);

// Handlers; only those of keys and of the focus look at their event.
void DrawTextEditor(TextEditor* txt, XEvent* event = nullptr);
void TextEditorEnter(TextEditor* txt, XEvent* event);
void TextEditorLeave(TextEditor* txt, XEvent* event);
void TextEditorKeyPress(TextEditor* txt, XEvent* event);
void TextEditorFocusIn(TextEditor* txt, XEvent* event);
void TextEditorFocusOut(TextEditor* txt, XEvent* event);

// The completion of a field whose owner set none: nothing.
void txtNoComplete(TextEditor* txt);

// XLookupString for events that anybody may have sent: the bytes of a key press, at most `size`,
// and its keysym. 0 bytes and NoSymbol for a key code that the keyboard does not have. The first
// call, and the first after a change of the keyboard mapping, take round trips.
int LookupKey(XKeyEvent* event, char* bytes, int size, KeySym* key);

}  // namespace gromlit
