#include "app/symbols/symbol_editor.h"

#include <initializer_list>

#include "app/symbols/symbol_editor_buttons.h"
#include "app/symbols/symbol_editor_steps.h"
#include "app/symbols/symbol_library.h"
#include "app/windows/top_level.h"
#include "core/symbol_files.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"

namespace gromlit {

namespace {

constexpr int kWidth = 560;
constexpr int kHeight = 454;
constexpr int kMargin = 16;
constexpr int kNameWidth = 280;
constexpr int kIconX = 312;
constexpr int kIconY = 340;
constexpr int kListY = 135;
constexpr int kListWidth = 256;
constexpr int kListHeight = 243;
constexpr int kScrollX = 280;
constexpr int kScrollY = 136;

constexpr const char* kWindowTitle = "Gromlit: Symbol Editor";
constexpr const char* kBannerTitle = "S y m b o l    E d i t o r";

void ShowPicked(void* arg, const char* item) {
  TextEditorUpdate(static_cast<TextEditor*>(arg), item);
}

void ScrollLines(void* arg, int offset) {
  ListScrollUp(static_cast<XTextList*>(arg), offset);
}

// The list of names below the name field: picking a line copies it into the field.
void MakeNameList(SymbolEditor* editor) {
  editor->sbar = MakeScrollbar(editor->window, kScrollX, kScrollY, kListHeight);
  XMapWindow(dpy, editor->sbar->window);
  editor->lst = MakeTextList(editor->window, kMargin, kListY, kListWidth, kListHeight, txtFontinfo);
  editor->lst->select = ShowPicked;
  editor->lst->selectarg = editor->txt;
  editor->lst->sb = editor->sbar;
  editor->sbar->scroll = ScrollLines;
  editor->sbar->scrollarg = editor->lst;
  XMapWindow(dpy, editor->lst->window);
}

}  // namespace

SymbolEditor* MakeSymbolEditor() {
  auto* editor = new SymbolEditor{};
  editor->width = kWidth;
  editor->height = kHeight;
  editor->window = MakeEditorWindow({.title = kWindowTitle,
                                     .icontitle = kWindowTitle,
                                     .name = "SymbolEditor",
                                     .width = kWidth,
                                     .height = kHeight});
  editor->gc = MakeWindowGC(editor->window, txtFont);
  editor->wobj = AllocTopLevelObj(editor->window, editor);
  On<Expose, DrawSymbolEditor>(editor);
  editor->logo =
      MakeLogo(editor->window, kMargin, kMargin, kWidth - 2 * kMargin, nullptr, kBannerTitle);
  return editor;
}

void CreateSymbolEditor() {
  SymbolEditor* editor = MakeSymbolEditor();
  MakeSymbolEditorButtons(editor);

  editor->wsym = MakeSymWindow(editor->window, kSymbolWorkX, kSymbolWorkY);
  editor->wsym->sym = &editor->sym;
  editor->wsym->owner = editor;
  XMapWindow(dpy, editor->wsym->window);

  editor->txt =
      MakeTextEditor(editor->window, kSymbolWorkX, kSymbolWorkY, kNameWidth, kEditorHeight);
  editor->txt->complete = txtSaveSymbol;
  editor->txt->limit = kNameSize - 1;
  editor->txt->owner = editor;
  XMapWindow(dpy, editor->txt->window);

  editor->icon = MakeIconWindow(editor->window, kIconX, kIconY, &editor->sym, nullptr);
  XMapWindow(dpy, editor->icon->window);

  MakeNameList(editor);
  editor->select = MakeTextSelect(root, 0, 0, 128, 200);
  sed = editor;
  LoadSymbols();
  RefreshSymbolNames(editor);
}

void SymInit(SymbolEditor* editor, const GromlitSymbol* sym) {
  if (editor == nullptr) return;
  GromlitSymbol opened{};
  if (sym != nullptr) {
    // The whole record, so that all of it is there to be saved again; but the cached features
    // belong to the record that they were computed for, and this shape is going to change.
    opened = *sym;
    DisownFeatures(&opened);
  }
  editor->sym = opened;
  editor->state = sym != nullptr ? kSymComplete : kSymEmpty;
  ResetSymWindow(editor->wsym);
  editor->bprev->state = kButtonInactive;
  editor->brestart->state = kButtonInactive;
  for (const Window hidden : {editor->bfinish->window, editor->bsave->window, editor->icon->window,
                              editor->txt->window, editor->sbar->window, editor->lst->window}) {
    XUnmapWindow(dpy, hidden);
  }
  XMapWindow(dpy, editor->bnext->window);
  XMapWindow(dpy, editor->wsym->window);
  // One that is open stays: unmapped and mapped at once it would go from the screen.
  ShowTopLevelAnew(editor->window);
}

void txtSaveSymbol(TextEditor* txt) {
  symSave(txt->owner);
}

}  // namespace gromlit
