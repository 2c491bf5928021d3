// A text field's keys and buttons with today's manners; with plain ones text_editor.cc answers.
//
//   key                                what it does
//   Left, Right; with Control          one letter; one word
//   Home, End, Control-E               to the ends
//   Shift with these                   selects
//   Control-A, C, X, V                 everything selected; CLIPBOARD copied, cut, pasted
//   Control-Insert, Shift-Insert,
//   Shift-Delete                       the same as Control-C, V, X
//   Control-B, D, F, K                 left, delete, right, delete to the end
//   Return                             completion; without one it goes to the window
//   Tab, Escape, function keys         go to the window
//   Control, Alt or Super with others  nothing
//
//   button 1        caret; dragged or with Shift it selects; twice a word, three times everything
//   button 2        pastes PRIMARY at the place
//
// What is selected is PRIMARY.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/text_editor_record.h"

namespace gromlit {

// Acts on a key press; `completes`: Return is the completion. Returns whether the line has to be
// drawn again.
bool EditWithModernKey(TextEditor* txt, XEvent* event, bool completes);

// Handlers. Nothing happens with plain manners, or in a field that records keys.
void TextEditorButtonDown(TextEditor* txt, XEvent* event);
void TextEditorDrag(TextEditor* txt, XEvent* event);
void TextEditorButtonUp(TextEditor* txt, XEvent* event);

// Has the field told of drags and releases; the server keeps the pointer for it from press to
// release. One request, once.
void SelectDrags(TextEditor* txt);

// What was asked to be pasted into this field is not any more: its text is another one.
void ForgetPaste(TextEditor* txt);

}  // namespace gromlit
