#include "toolkit/text_editor_hands.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/letters.h"
#include "display/display.h"
#include "toolkit/focus.h"
#include "toolkit/key_lookup.h"
#include "toolkit/line_edit.h"
#include "toolkit/manners.h"
#include "toolkit/selection.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

constexpr Time kMultiClick = 400;  // milliseconds between the presses of a double click at most
constexpr int kSamePlace = 4;      // pixels between them, at most

LineEdit LineOf(const TextEditor* txt) {
  return {std::string(txt->buffer, static_cast<size_t>(txt->len)), static_cast<size_t>(txt->index),
          static_cast<size_t>(txt->anchor)};
}

void Store(TextEditor* txt, const LineEdit& line) {
  const size_t length = std::min<size_t>(line.text.size(), kEditorBuffer - 1);
  std::memcpy(txt->buffer, line.text.data(), length);
  std::memset(txt->buffer + length, 0, kEditorBuffer - length);
  txt->len = static_cast<int>(length);
  txt->index = static_cast<int>(std::min(line.caret, length));
  txt->anchor = static_cast<int>(std::min(line.anchor, length));
}

// Makes what is selected PRIMARY.
void OwnSelected(const LineEdit& line, Time time) {
  const std::string_view selected = SelectedText(line);
  if (!selected.empty()) OwnSelection(XA_PRIMARY, std::string(selected), time);
}

void Copy(const LineEdit& line, Time time) {
  const std::string_view selected = SelectedText(line);
  if (!selected.empty()) OwnSelection(ClipboardAtom(), std::string(selected), time);
}

void Pasted(void* arg, const std::string& text) {
  auto* txt = static_cast<TextEditor*>(arg);
  if (txt->recordskeys != 0 || text.empty()) return;
  LineEdit line = LineOf(txt);
  InsertText(&line, text, static_cast<size_t>(txt->limit));
  Store(txt, line);
  txt->redraw(txt);
}

// The step that a key makes the caret take; false when it is none.
bool StepOf(KeySym key, bool control, LineStep* step) {
  switch (key) {
    case XK_Left:
      *step = control ? LineStep::kWordLeft : LineStep::kLeft;
      return true;
    case XK_Right:
      *step = control ? LineStep::kWordRight : LineStep::kRight;
      return true;
    case XK_Home:
      *step = LineStep::kHome;
      return true;
    case XK_End:
      *step = LineStep::kEnd;
      return true;
    default:
      return false;
  }
}

enum class Edited { kNo, kMoved, kYes };

// Keys with Control that are letters, and Insert.
Edited EditWithControl(TextEditor* txt, LineEdit* line, KeySym key, Time time) {
  switch (key) {
    case XK_a:
      SelectAll(line);
      return Edited::kMoved;
    case XK_b:
      MoveCaret(line, LineStep::kLeft, false);
      return Edited::kMoved;
    case XK_e:
      MoveCaret(line, LineStep::kEnd, false);
      return Edited::kMoved;
    case XK_f:
      MoveCaret(line, LineStep::kRight, false);
      return Edited::kMoved;
    case XK_d:
      RemoveStep(line, LineStep::kRight);
      return Edited::kYes;
    case XK_k:
      RemoveSelected(line);
      RemoveStep(line, LineStep::kEnd);
      return Edited::kYes;
    case XK_BackSpace:
      RemoveStep(line, LineStep::kWordLeft);
      return Edited::kYes;
    case XK_Delete:
      RemoveStep(line, LineStep::kWordRight);
      return Edited::kYes;
    case XK_c:
    case XK_Insert:
      Copy(*line, time);
      return Edited::kNo;
    case XK_x:
      Copy(*line, time);
      return RemoveSelected(line) ? Edited::kYes : Edited::kNo;
    case XK_v:
      AskForSelection(ClipboardAtom(), time, Pasted, txt);
      return Edited::kNo;
    default:
      return Edited::kNo;
  }
}

Edited EditWithKey(TextEditor* txt, LineEdit* line, const XKeyEvent& press, KeySym key,
                   const char* bytes, int count) {
  const bool control = (press.state & ControlMask) != 0;
  const bool shift = (press.state & ShiftMask) != 0;
  LineStep step;
  if (StepOf(key, control, &step)) {
    MoveCaret(line, step, shift);
    return Edited::kMoved;
  }
  if (control) {
    KeySym lower;
    KeySym upper;
    XConvertCase(key, &lower, &upper);
    return EditWithControl(txt, line, lower, press.time);
  }
  switch (key) {
    case XK_BackSpace:
      RemoveStep(line, LineStep::kLeft);
      return Edited::kYes;
    case XK_Delete:
      if (shift) return EditWithControl(txt, line, XK_x, press.time);
      RemoveStep(line, LineStep::kRight);
      return Edited::kYes;
    case XK_Insert:
      if (shift) return EditWithControl(txt, line, XK_v, press.time);
      return Edited::kNo;
    case XK_Clear:
      SelectAll(line);
      RemoveSelected(line);
      return Edited::kYes;
    default:
      break;
  }
  // The eighth bit makes a byte negative.
  if (count != 1 || static_cast<signed char>(bytes[0]) < ' ' || bytes[0] == 0x7f) {
    return Edited::kNo;
  }
  InsertText(line, {bytes, 1}, static_cast<size_t>(txt->limit));
  return Edited::kYes;
}

// The place in the text that is nearest to x.
size_t PlaceAt(const TextEditor* txt, int x) {
  const std::string_view text(txt->buffer, static_cast<size_t>(txt->len));
  const auto first = static_cast<size_t>(txt->first);
  if (x < kEditorTextX) return first == 0 ? 0 : LetterStart(text, first - 1);
  int left = 0;
  for (size_t at = first; at < text.size();) {
    const size_t end = LetterEnd(text, at);
    const int right = TextWidth(txtFontinfo, text.substr(first, end - first));
    if (x - kEditorTextX < (left + right + 1) / 2) return at;
    left = right;
    at = end;
  }
  return text.size();
}

int CountClick(TextEditor* txt, const XButtonEvent& press) {
  const bool again = press.time - txt->clicktime <= kMultiClick && txt->clicks > 0 &&
                     std::abs(press.x - txt->clickx) < kSamePlace;
  txt->clicks = again ? txt->clicks % 3 + 1 : 1;
  txt->clicktime = press.time;
  txt->clickx = press.x;
  return txt->clicks;
}

}  // namespace

bool EditWithModernKey(TextEditor* txt, XEvent* event, bool completes) {
  XKeyEvent* press = &event->xkey;
  char bytes[32];
  KeySym key = NoSymbol;
  const int count = LookupKey(press, bytes, sizeof bytes, &key);
  key = PlainKey(key);
  const WindowKey meaning = WindowKeyOf(key, press->state);
  if (meaning == WindowKey::kConfirm && completes) {
    if (IsKeyRepeat(*press)) return false;
    txt->complete(txt);
    return true;
  }
  const bool function = key >= XK_F1 && key <= XK_F35;
  if (meaning != WindowKey::kNone || function || key == XK_Menu) {
    HandKeyUp(txt->window, event);
    return false;
  }
  if ((press->state & (Mod1Mask | Mod4Mask)) != 0) return false;
  LineEdit line = LineOf(txt);
  const Edited edited = EditWithKey(txt, &line, *press, key, bytes, count);
  if (edited == Edited::kNo) return false;
  Store(txt, line);
  if (edited == Edited::kMoved) OwnSelected(line, press->time);
  return true;
}

void TextEditorButtonDown(TextEditor* txt, XEvent* event) {
  if (!ModernManners() || txt->recordskeys != 0) return;
  const XButtonEvent& press = event->xbutton;
  if (press.button != Button1 && press.button != Button2) return;
  TakeFocus(txt->window);
  txt->dragging = 0;
  LineEdit line = LineOf(txt);
  const size_t at = PlaceAt(txt, press.x);
  if (press.button == Button2) {
    txt->clicks = 0;
    PutCaret(&line, at, false);
    AskForSelection(XA_PRIMARY, press.time, Pasted, txt);
  } else {
    const int clicks = CountClick(txt, press);
    if (clicks == 1) {
      PutCaret(&line, at, (press.state & ShiftMask) != 0);
      txt->dragging = 1;
    } else if (clicks == 2) {
      SelectWord(&line, at);
    } else {
      SelectAll(&line);
    }
    OwnSelected(line, press.time);
  }
  Store(txt, line);
  txt->redraw(txt);
}

void TextEditorDrag(TextEditor* txt, XEvent* event) {
  if (txt->dragging == 0 || !ModernManners()) return;
  LineEdit line = LineOf(txt);
  PutCaret(&line, PlaceAt(txt, event->xmotion.x), true);
  if (static_cast<int>(line.caret) == txt->index) return;
  Store(txt, line);
  txt->redraw(txt);
}

void TextEditorButtonUp(TextEditor* txt, XEvent* event) {
  if (txt->dragging == 0 || event->xbutton.button != Button1) return;
  txt->dragging = 0;
  if (ModernManners()) OwnSelected(LineOf(txt), event->xbutton.time);
}

void SelectDrags(TextEditor* txt) {
  if (txt->draggable != 0) return;
  txt->draggable = 1;
  XSelectInput(dpy, txt->window,
               kEditorEvents | KeyReleaseMask | ButtonReleaseMask | Button1MotionMask);
}

void ForgetPaste(TextEditor* txt) {
  ForgetSelection(txt);
}

}  // namespace gromlit
