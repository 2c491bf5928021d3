// A text field over a list with a scrollbar: picking a line puts its text into the field.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/scrollbar.h"
#include "toolkit/text_editor.h"
#include "toolkit/text_list.h"
#include "toolkit/window_object.h"

namespace gromlit {

struct TextSelect {
  WindowObj* wobj;
  Window window;
  GC gc;      // its own
  int width;  // pixels, as are the two below
  int height;
  int margin;  // around the parts; always 4
  TextEditor* txt;
  XScrollbar* sbar;
  XTextList* lst;
};

// Makes the compound, not mapped, with its parts mapped in it.
TextSelect* MakeTextSelect(Window parent, int x, int y, int width, int height);

// Expose handler: only clears, since the parts draw themselves.
void DrawTextSelect(TextSelect* ts, XEvent* event = nullptr);

}  // namespace gromlit
