#include "app/symbols/symbol_library.h"

#include <cerrno>
#include <memory>
#include <string>
#include <string_view>

#include "app/symbols/symbol_dialog.h"
#include "app/windows/dialogs.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "display/display.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

bool IsListed(std::string_view name) {
  const auto* node = allSymbols;
  for (int i = 0; i < kChooserSymbols && node->sym != nullptr; i++, node = node->next) {
    if (FieldText(node->sym->name) == name) return true;
  }
  return false;
}

// Says after a save that the chooser cannot list all of the library's `count` symbols. A new
// symbol comes first in the chooser and puts the last one out of it; with the next start the
// order of the directory decides. One that replaced a symbol stands where that one stood.
void TellOfUnlisted(int count, std::string_view name, bool added) {
  if (count <= kChooserSymbols || (!added && IsListed(name))) return;
  const std::string limit = std::to_string(kChooserSymbols);
  ShowNotice(labelSymbolSaved, ("The symbol was saved, but there are " + std::to_string(count) +
                                " symbols now,\nand the choice of symbols shows only the first " +
                                limit + ".\nDelete symbols that you do not need to see the others.")
                                   .c_str());
}

}  // namespace

int SaveSymbol(SymbolEditor* editor, const char* name) {
  const GromlitSymbolList* head = allSymbols;
  if (StoreSymbol(&editor->sym, name) == 0) {
    ShowSaveFailure("The symbol was not saved.", errno);
    return 0;
  }
  HideWindow(editor->window);
  RefreshSymbolNames(editor);
  TellOfUnlisted(editor->nnames, FieldText(editor->sym.name), allSymbols != head);
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
