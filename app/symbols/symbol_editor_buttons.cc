#include "app/symbols/symbol_editor_buttons.h"

#include <algorithm>
#include <iterator>

#include "actions/launch.h"
#include "app/symbols/sym_window.h"
#include "app/symbols/symbol_editor_steps.h"
#include "app/symbols/symbol_library.h"
#include "app/windows/top_level.h"
#include "display/display.h"
#include "recognition/signature_match.h"
#include "recognition/symbol_icon.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

constexpr int kButtonsY = 414;

SymbolEditor* Editor(void* arg) {
  return static_cast<SymbolEditor*>(arg);
}

void Enable(XButton* button, bool enabled) {
  button->state = enabled ? kButtonActive : kButtonInactive;
  DrawButton(button);
}

void Show(Window window, bool shown) {
  if (shown) {
    XMapWindow(dpy, window);
  } else {
    XUnmapWindow(dpy, window);
  }
}

// The windows of step 3.
void ShowNaming(SymbolEditor* editor, bool shown) {
  Show(editor->bsave->window, shown);
  Show(editor->txt->window, shown);
  Show(editor->sbar->window, shown);
  Show(editor->lst->window, shown);
}

// The windows of step 2 but the drawing area, which step 1 has too.
void ShowPainting(SymbolEditor* editor, bool shown) {
  Show(editor->bfinish->window, shown);
  Show(editor->icon->window, shown);
}

void EnterState(SymbolEditor* editor, SymbolEditorState state) {
  editor->state = state;
  DrawSymbolEditor(editor);
  DrawSymWindow(editor->wsym);
}

bool IconIsEmpty(const GromlitSymbol& sym) {
  return std::all_of(std::begin(sym.icon), std::end(sym.icon),
                     [](uint32_t row) { return row == 0; });
}

void RedrawIcon(SymbolEditor* editor) {
  DrawSymWindow(editor->wsym);
  DrawIconWindow(editor->icon);
}

XButton* MakeEditorButton(SymbolEditor* editor, const char* label, void (*func)(void* arg), int x) {
  XButton* button = MakeButton(editor, editor->window, label, func, x, kButtonsY);
  button->arg = editor;
  return button;
}

}  // namespace

void MakeSymbolEditorButtons(SymbolEditor* editor) {
  editor->bhelp = MakeEditorButton(editor, "Help", symHelp, 16);
  editor->bclear = MakeEditorButton(editor, "Clear", symClear, 144);
  editor->brestart = MakeEditorButton(editor, "Restart", symRestart, 224);
  editor->bprev = MakeEditorButton(editor, "Prev", symPrev, 320);
  editor->bnext = MakeEditorButton(editor, "Next", symNext, 400);
  editor->bfinish = MakeEditorButton(editor, "Finish", symFinish, 400);
  editor->bsave = MakeEditorButton(editor, "Save", symSave, 400);
  editor->bcancel = MakeEditorButton(editor, "Cancel", symCancel, 480);
  editor->bprev->state = kButtonInactive;
  editor->brestart->state = kButtonInactive;
  XUnmapWindow(dpy, editor->bfinish->window);
  XUnmapWindow(dpy, editor->bsave->window);
}

void symHelp(void*) {
  LaunchGromlitFileURL(GromlitSymbolHelpFile);
}

void symClear(void* arg) {
  SymbolEditor* editor = Editor(arg);
  if (editor->state == kSymBitmap) {
    std::fill(std::begin(editor->sym.icon), std::end(editor->sym.icon), 0U);
    RedrawIcon(editor);
    return;
  }
  const bool naming = editor->state == kSymName;
  editor->sym.npoints = 0;
  ForgetSignature(&editor->sym);
  editor->state = kSymEmpty;
  ResetSymWindow(editor->wsym);
  DrawSymWindow(editor->wsym);
  if (naming) DrawSymbolEditor(editor);
}

void symRestart(void* arg) {
  SymbolEditor* editor = Editor(arg);
  if (editor->state != kSymBitmap) return;
  VectorToBitmap(&editor->sym);
  RedrawIcon(editor);
}

void symPrev(void* arg) {
  SymbolEditor* editor = Editor(arg);
  if (editor->state == kSymName) {
    Show(editor->bnext->window, false);
    ShowNaming(editor, false);
    ShowPainting(editor, true);
    Show(editor->wsym->window, true);
    EnterState(editor, kSymBitmap);
  } else if (editor->state == kSymBitmap) {
    Enable(editor->bprev, false);
    Enable(editor->brestart, false);
    Show(editor->bnext->window, true);
    ShowPainting(editor, false);
    EnterState(editor, editor->sym.npoints > 0 ? kSymComplete : kSymEmpty);
  }
}

void symNext(void* arg) {
  SymbolEditor* editor = Editor(arg);
  if (editor->state > kSymDragging) return;
  Show(editor->bnext->window, false);
  Enable(editor->bprev, true);
  Enable(editor->brestart, true);
  if (IconIsEmpty(editor->sym)) VectorToBitmap(&editor->sym);
  ResetSymWindow(editor->wsym);
  EnterState(editor, kSymBitmap);
  ShowPainting(editor, true);
}

void symFinish(void* arg) {
  SymbolEditor* editor = Editor(arg);
  if (editor->state != kSymBitmap) return;
  TextEditorInit(editor->txt, editor->sym.name);
  // A line picked for an earlier symbol could not be picked again while it is the selected one.
  editor->lst->selected = -1;
  ShowPainting(editor, false);
  Show(editor->wsym->window, false);
  ShowNaming(editor, true);
  EnterState(editor, kSymName);
}

void symSave(void* arg) {
  SymbolEditor* editor = Editor(arg);
  SaveOrAsk(editor, TextEditorText(editor->txt));
}

void symCancel(void* arg) {
  HideTopLevel(Editor(arg)->window);
}

}  // namespace gromlit
