#include "toolkit/text_editor.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "core/letters.h"
#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/key_lookup.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"
#include "toolkit/text.h"
#include "toolkit/text_editor_hands.h"

namespace gromlit {
namespace {

constexpr int kTextX = kEditorTextX;
constexpr int kBaseline = 16;
constexpr int kCaretY = 4;
constexpr int kCaretWidth = 7;
constexpr int kCaretHeight = 16;
constexpr int kCaretRoom = 15;  // pixels of the field's width that are not for text before a caret
constexpr int kTextRoom = 8;    // and those that are not for text

enum ControlKey {
  kCtrlA = 1,
  kCtrlB = 2,
  kCtrlD = 4,
  kCtrlE = 5,
  kCtrlF = 6,
  kCtrlK = 11,
};

std::string_view TextOf(const TextEditor* txt) {
  return {txt->buffer, static_cast<size_t>(txt->len)};
}

// Width of the text between two of its bytes.
int WidthOf(const TextEditor* txt, int from, int to) {
  return TextWidth(txtFontinfo,
                   TextOf(txt).substr(static_cast<size_t>(from), static_cast<size_t>(to - from)));
}

int LetterBefore(const TextEditor* txt, int at) {
  return static_cast<int>(LetterStart(TextOf(txt), static_cast<size_t>(at) - 1));
}

int LetterBehind(const TextEditor* txt, int at) {
  return static_cast<int>(LetterEnd(TextOf(txt), static_cast<size_t>(at)));
}

// Scrolls as little as it takes to have the caret in view, and back where there is room.
void ScrollToCaret(TextEditor* txt) {
  const int room = txt->width - kCaretRoom;
  txt->first = std::min(txt->first, txt->index);
  while (txt->first < txt->index && WidthOf(txt, txt->first, txt->index) > room) {
    txt->first = LetterBehind(txt, txt->first);
  }
  while (txt->first > 0) {
    const int before = LetterBefore(txt, txt->first);
    if (WidthOf(txt, before, txt->len) > room) return;
    txt->first = before;
  }
}

// Owners with a key handler of their own write to len and index.
void KeepBounds(TextEditor* txt) {
  txt->len = std::clamp(txt->len, 0, kEditorBuffer - 1);
  txt->index = std::clamp(txt->index, 0, txt->len);
  if (!ModernManners()) {
    txt->first = 0;
    txt->anchor = txt->index;
    return;
  }
  const auto within = [&](int at) {
    at = std::clamp(at, 0, txt->len);
    return static_cast<int>(LetterStart(TextOf(txt), static_cast<size_t>(at)));
  };
  txt->index = within(txt->index);
  txt->anchor = txt->recordskeys != 0 ? txt->index : within(txt->anchor);
  txt->first = within(txt->first);
  ScrollToCaret(txt);
}

// What is seen of the text: with plain manners all of it, as far as it goes.
std::string_view ShownText(const TextEditor* txt) {
  if (!ModernManners()) return TextOf(txt);
  int end = txt->len;
  while (end > txt->first && WidthOf(txt, txt->first, end) > txt->width - kTextRoom) {
    end = LetterBefore(txt, end);
  }
  return TextOf(txt).substr(static_cast<size_t>(txt->first), static_cast<size_t>(end - txt->first));
}

int CaretX(const TextEditor* txt) {
  return WidthOf(txt, txt->first, txt->index) + 3;
}

// The text, and what is selected of it inverted.
void DrawLine(TextEditor* txt) {
  XSetForeground(dpy, txt->gc, black.pixel);
  const std::string_view shown = ShownText(txt);
  DrawTextOnGround(txt->window, txt->gc, kTextX, kBaseline, shown);
  if (txt->anchor == txt->index) return;
  const int end = txt->first + static_cast<int>(shown.size());
  const auto place = [&](int at) {
    return kTextX + WidthOf(txt, txt->first, std::clamp(at, txt->first, end));
  };
  const int left = place(std::min(txt->anchor, txt->index));
  const int right = place(std::max(txt->anchor, txt->index));
  InvertRectangle(txt->window, txt->gc, left, kCaretY, right - left, kCaretHeight);
}

// Turns a hollow caret solid, and the other way round: an outline and a filled rectangle, both
// inverted, take the one away and leave the other.
void ToggleCaret(TextEditor* txt) {
  const Inverting inverting(txt->gc);
  ScaledDrawRectangle(txt->window, txt->gc, txt->caretx, kCaretY, kCaretWidth, kCaretHeight);
  ScaledFillRectangle(txt->window, txt->gc, txt->caretx, kCaretY, kCaretWidth, kCaretHeight);
  txt->caret = txt->caret == kHollowCaret ? kSolidCaret : kHollowCaret;
}

void SetCaret(TextEditor* txt, EditorCaret caret) {
  if (txt->caret != caret) ToggleCaret(txt);
}

void DrawFrame(TextEditor* txt, unsigned long pixel) {
  DrawOutline(txt->window, txt->gc, pixel, 0, 0, txt->width, kEditorHeight - 1);
}

// Whether the field shows that it has the keyboard, wherever the pointer is.
bool ShowsFocus(const TextEditor* txt) {
  return txt->focused != 0 && ModernManners();
}

void SetText(TextEditor* txt, const char* name) {
  // The text may be the field's own.
  const size_t length = name != nullptr ? strnlen(name, kEditorBuffer - 1) : 0;
  if (length > 0) std::memmove(txt->buffer, name, length);
  std::memset(txt->buffer + length, 0, kEditorBuffer - length);
  txt->len = static_cast<int>(length);
  txt->index = txt->len;
  txt->anchor = txt->index;
  txt->first = 0;
  ForgetPaste(txt);
}

// One letter to the left and to the right. None is typed that has more than one byte, but a name
// that is shown may have them.
void Left(TextEditor* txt) {
  if (txt->index == 0) return;
  txt->index = static_cast<int>(LetterStart(TextOf(txt), static_cast<size_t>(txt->index) - 1));
}

void Right(TextEditor* txt) {
  if (txt->index == txt->len) return;
  txt->index = static_cast<int>(LetterEnd(TextOf(txt), static_cast<size_t>(txt->index)));
}

// Takes the letter at the caret out, if there is one.
void Remove(TextEditor* txt) {
  if (txt->index >= txt->len) return;
  const auto end = static_cast<int>(LetterEnd(TextOf(txt), static_cast<size_t>(txt->index)));
  std::memmove(txt->buffer + txt->index, txt->buffer + end, static_cast<size_t>(txt->len - end));
  txt->len -= end - txt->index;
}

void Insert(TextEditor* txt, char c) {
  if (txt->len >= kEditorTyped) return;
  char* caret = txt->buffer + txt->index;
  std::memmove(caret + 1, caret, static_cast<size_t>(txt->len - txt->index));
  *caret = c;
  txt->len++;
  txt->index++;
  txt->buffer[txt->len] = '\0';
}

// The keys that have a name. Returns false for any other.
bool EditByKeysym(TextEditor* txt, KeySym key) {
  switch (key) {
    case XK_BackSpace:
      if (txt->index < 1) return true;
      Left(txt);
      Remove(txt);
      txt->buffer[txt->len] = '\0';
      return true;
    case XK_Clear:
      txt->index = 0;
      txt->len = 0;
      return true;
    case XK_Return:
    case XK_End:
      txt->buffer[txt->len] = '\0';
      txt->complete(txt);
      KeepBounds(txt);
      return true;
    case XK_Left:
      Left(txt);
      return true;
    case XK_Right:
      Right(txt);
      return true;
    case XK_Delete:
      if (txt->index >= txt->len) return true;
      Remove(txt);
      txt->buffer[txt->len] = '\0';
      return true;
    default:
      return false;
  }
}

// Control keys and characters. Returns false for a byte that means nothing; the eighth bit makes it
// negative, so that those bytes are among them.
bool EditByByte(TextEditor* txt, signed char c) {
  switch (c) {
    case kCtrlA:
      txt->index = 0;
      return true;
    case kCtrlB:
      Left(txt);
      return true;
    case kCtrlD:
      Remove(txt);
      return true;
    case kCtrlE:
      txt->index = txt->len;
      return true;
    case kCtrlF:
      Right(txt);
      return true;
    case kCtrlK:
      txt->len = txt->index;
      return true;
    default:
      if (c < ' ') return false;
      Insert(txt, static_cast<char>(c));
      return true;
  }
}

}  // namespace

TextEditor* MakeTextEditor(Window parent, int x, int y, int width, int height) {
  auto* txt = new TextEditor{};
  txt->width = width;
  txt->complete = txtNoComplete;
  txt->limit = kEditorBuffer - 1;
  txt->redraw = RedrawTextEditorLine;
  txt->caretx = CaretX(txt);
  XSetWindowAttributes more{};
  more.cursor = txtCursor;
  txt->window =
      MakeChildWindow(parent, x, y, width, height, white.pixel, kEditorEvents, CWCursor, more);
  if (txtCursor == None) UseCursor(txt->window, &txtCursor);
  txt->gc = MakeWindowGC(txt->window, txtFont);
  txt->wobj = AllocWindowObj(txt->window, txt);
  On<Expose, DrawTextEditor>(txt);
  On<EnterNotify, TextEditorEnter>(txt);
  On<LeaveNotify, TextEditorLeave>(txt);
  On<KeyPress, TextEditorKeyPress>(txt);
  On<FocusIn, TextEditorFocusIn>(txt);
  On<FocusOut, TextEditorFocusOut>(txt);
  On<ButtonPress, TextEditorButtonDown>(txt);
  On<MotionNotify, TextEditorDrag>(txt);
  On<ButtonRelease, TextEditorButtonUp>(txt);
  SetHandler(txt->wobj, KeyRelease, NoteKeyRelease);
  SetTabStop(txt->wobj, nullptr);
  return txt;
}

void TextEditorInit(TextEditor* txt, const char* name) {
  SetText(txt, name);
  txt->keystate = 0;
  txt->keycode = 0;
}

void TextEditorUpdate(TextEditor* txt, const char* name) {
  SetText(txt, name);
  DrawTextEditor(txt);
}

const char* TextEditorText(TextEditor* txt) {
  KeepBounds(txt);
  txt->buffer[txt->len] = '\0';
  return txt->buffer;
}

void RedrawTextEditorLine(TextEditor* txt) {
  KeepBounds(txt);
  FillRectangle(txt->window, txt->gc, white.pixel, 3, 3, txt->width, kEditorHeight - 4);
  DrawLine(txt);
  txt->caretx = CaretX(txt);
  InvertRectangle(txt->window, txt->gc, txt->caretx, kCaretY, kCaretWidth, kCaretHeight);
  txt->caret = kSolidCaret;
}

void DrawTextEditor(TextEditor* txt, XEvent*) {
  KeepBounds(txt);
  XClearWindow(dpy, txt->window);
  DrawOutline(txt->window, txt->gc, lgrey.pixel, 0, 0, txt->width - 1, kEditorHeight - 1);
  XDrawBevel(kSunken, txt->window, txt->gc, 1, 1, txt->width - 1, kEditorHeight - 1);
  DrawLine(txt);
  txt->caretx = CaretX(txt);
  InvertOutline(txt->window, txt->gc, txt->caretx, kCaretY, kCaretWidth, kCaretHeight);
  txt->caret = kHollowCaret;
  if (txt->inside == 0 && !ShowsFocus(txt)) return;
  // Something that lay over the field went away, or the text was replaced, under the pointer.
  DrawFrame(txt, black.pixel);
  SetCaret(txt, kSolidCaret);
}

void TextEditorEnter(TextEditor* txt, XEvent*) {
  TakeFocus(txt->window);
  if (ModernManners()) SelectDrags(txt);
  txt->inside = 1;
  DrawFrame(txt, black.pixel);
  SetCaret(txt, kSolidCaret);
}

void TextEditorLeave(TextEditor* txt, XEvent*) {
  txt->inside = 0;
  if (ShowsFocus(txt)) return;
  DrawFrame(txt, lgrey.pixel);
  XSetForeground(dpy, txt->gc, black.pixel);
  SetCaret(txt, kHollowCaret);
}

void TextEditorKeyPress(TextEditor* txt, XEvent* event) {
  KeepBounds(txt);
  if (ModernManners()) {
    if (EditWithModernKey(txt, event, txt->complete != txtNoComplete)) RedrawTextEditorLine(txt);
    return;
  }
  char bytes[32];
  KeySym key = NoSymbol;
  const int count = LookupKey(&event->xkey, bytes, sizeof bytes, &key);
  if (!EditByKeysym(txt, key)) {
    if (count < 1) return;
    if (!EditByByte(txt, static_cast<signed char>(bytes[0]))) return;
  }
  RedrawTextEditorLine(txt);
}

void TextEditorFocusIn(TextEditor* txt, XEvent* event) {
  if (!IsFocusMove(event->xfocus)) return;
  txt->focused = 1;
  if (!ModernManners() || txt->inside != 0) return;
  DrawFrame(txt, black.pixel);
  SetCaret(txt, kSolidCaret);
}

void TextEditorFocusOut(TextEditor* txt, XEvent* event) {
  FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  txt->focused = 0;
  if (!ModernManners() || txt->inside != 0) return;
  DrawFrame(txt, lgrey.pixel);
  XSetForeground(dpy, txt->gc, black.pixel);
  SetCaret(txt, kHollowCaret);
}

void txtNoComplete(TextEditor*) {}

}  // namespace gromlit
