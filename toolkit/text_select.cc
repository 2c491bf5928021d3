#include "toolkit/text_select.h"

#include "display/colours.h"
#include "display/display.h"
#include "toolkit/child_window.h"

namespace gromlit {
namespace {

constexpr int kMargin = 4;

void ShowPicked(void* arg, const char* item) {
  TextEditorUpdate(static_cast<TextEditor*>(arg), item);
}

void ScrollLines(void* arg, int offset) {
  ListScrollUp(static_cast<XTextList*>(arg), offset);
}

}  // namespace

TextSelect* MakeTextSelect(Window parent, int x, int y, int width, int height) {
  auto* ts = new TextSelect{};
  ts->width = width;
  ts->height = height;
  ts->margin = kMargin;
  XSetWindowAttributes more{};
  more.backing_store = BackingStoreOfScreen(dpy, screen);
  ts->window =
      MakeChildWindow(parent, x, y, width, height, lgrey.pixel, ExposureMask, CWBackingStore, more);
  ts->gc = MakeWindowGC(ts->window, txtFont);
  ts->wobj = AllocWindowObj(ts->window, ts);
  On<Expose, DrawTextSelect>(ts);

  ts->txt = MakeTextEditor(ts->window, kMargin, kMargin, width - 2 * kMargin, kEditorHeight);
  ts->txt->owner = ts;
  XMapWindow(dpy, ts->txt->window);

  const int listy = 2 * kMargin + kEditorHeight;
  const int listheight = height - kEditorHeight - 3 * kMargin;
  ts->sbar =
      MakeScrollbar(ts->window, width - kScrollbarWidth - kMargin - 1, listy + 1, listheight);
  XMapWindow(dpy, ts->sbar->window);
  ts->lst = MakeTextList(ts->window, kMargin, listy, width - 24, listheight, txtFontinfo);
  XMapWindow(dpy, ts->lst->window);

  ts->lst->select = ShowPicked;
  ts->lst->selectarg = ts->txt;
  ts->lst->sb = ts->sbar;
  ts->sbar->scroll = ScrollLines;
  ts->sbar->scrollarg = ts->lst;
  return ts;
}

void DrawTextSelect(TextSelect* ts, XEvent*) {
  XClearWindow(dpy, ts->window);
}

}  // namespace gromlit
