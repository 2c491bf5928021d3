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

#include "toolkit/key_lookup.h"  // for owners with a key handler of their own
#include "toolkit/text_editor_record.h"

namespace gromlit {

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

}  // namespace gromlit
