#include "app/symbol_library.h"

#include <cerrno>
#include <memory>

#include "app/dialogs.h"
#include "app/symbol_dialog.h"
#include "core/symbol_files.h"
#include "display/display.h"

namespace gromlit {

int SaveSymbol(SymbolEditor* editor, const char* name) {
  if (StoreSymbol(&editor->sym, name) == 0) {
    ShowSaveFailure("The symbol was not saved.", errno);
    return 0;
  }
  XUnmapWindow(dpy, editor->window);
  RefreshSymbolNames(editor);
  return 1;
}

int RemoveSymbol(const GromlitSymbol* sym, const char* fname) {
  if (DropSymbol(sym, fname) == 0) {
    ShowSaveFailure("The symbol was not deleted.", errno);
    return 0;
  }
  if (sed != nullptr) RefreshSymbolNames(sed);
  return 1;
}

void RefreshSymbolNames(SymbolEditor* editor) {
  int count = 0;
  const std::unique_ptr<GromlitSymbol*[]> sorted(UpdateSymbols(&count));
  auto** names = new const char*[static_cast<size_t>(count)];
  for (int i = 0; i < count; i++) names[i] = sorted[static_cast<size_t>(i)]->name;
  // The selected line would be another name's.
  editor->lst->selected = -1;
  SetListItems(editor->lst, names, count);
  SetListItems(editor->select->lst, names, count);
  delete[] editor->names;
  editor->names = names;
  editor->nnames = count;
  // Draws nothing while the chooser is hidden; an Expose comes when it is shown.
  if (symselect != nullptr) XClearArea(dpy, SymbolChooser()->window, 0, 0, 0, 0, True);
}

}  // namespace gromlit
