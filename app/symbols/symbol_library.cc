#include "app/symbols/symbol_library.h"

#include <cerrno>
#include <memory>
#include <string>
#include <string_view>

#include "app/symbols/symbol_dialog.h"
#include "app/windows/dialogs.h"
#include "app/windows/top_level.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "display/display.h"
#include "toolkit/window_object.h"

namespace gromlit {

const char* const ConfirmEmptySymbolMsg[] = {"Replace this Symbol by an empty one?", nullptr};

namespace {

// The name that the question is about, cut as it is stored.
std::string askedname;

bool IsListed(std::string_view name) {
  const auto* node = allSymbols;
  for (int i = 0; i < kChooserSymbols && node != nullptr && node->sym != nullptr;
       i++, node = node->next) {
    if (FieldText(node->sym->name) == name) return true;
  }
  return false;
}

// What of a name is stored.
std::string_view StoredPart(std::string_view name) {
  return name.substr(0, kNameSize - 1);
}

// Whether a save under this name takes the place of a symbol: one of the library or, with another
// name in it, one in a file that somebody made.
bool Replaces(std::string_view name) {
  for (const auto* node = allSymbols; node != nullptr && node->sym != nullptr; node = node->next)
    if (FieldText(node->sym->name) == name) return true;
  const std::unique_ptr<GromlitSymbol> stored(
      LoadSymbol(std::string(name).c_str(), GromlitSymbolFileExt));
  return stored != nullptr;
}

void YesReplaceSymbol(XDialog* dlog) {
  DialogYes(dlog);
  auto* editor = static_cast<SymbolEditor*>(dlog->arg);
  const char* name = TextEditorText(editor->txt);
  XWindowAttributes is{};
  const bool open =
      XGetWindowAttributes(dpy, editor->window, &is) != 0 && is.map_state != IsUnmapped;
  if (open && editor->sym.npoints == 0 && StoredPart(name) == askedname) SaveSymbol(editor, name);
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
  HideTopLevel(editor->window);
  RefreshSymbolNames(editor);
  TellOfUnlisted(editor->nnames, FieldText(editor->sym.name), allSymbols != head);
  return 1;
}

void SaveOrAsk(SymbolEditor* editor, const char* name) {
  if (editor->sym.npoints > 0 || !Replaces(StoredPart(name))) {
    SaveSymbol(editor, name);
    return;
  }
  askedname = StoredPart(name);
  confirm->msgs = ConfirmEmptySymbolMsg;
  confirm->arg = editor;
  confirm->yesfn = YesReplaceSymbol;
  MousePopUpDialog(confirm, labelReplaceSymbol);
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
