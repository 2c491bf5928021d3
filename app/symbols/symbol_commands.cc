#include "app/symbols/symbol_commands.h"

#include "app/symbols/symbol_dialog.h"
#include "app/symbols/symbol_editor.h"
#include "app/symbols/symbol_library.h"
#include "app/windows/dialogs.h"
#include "core/strings.h"

namespace gromlit {
namespace {

// The library's record of a symbol: the same one or, when it was saved anew in the meantime, the
// one that took its name. Null when it is gone.
const GromlitSymbol* InLibrary(const GromlitSymbol* sym) {
  const GromlitSymbol* namesake = nullptr;
  for (const auto* node = allSymbols; node != nullptr && node->sym != nullptr; node = node->next) {
    if (node->sym == sym) return sym;
    if (namesake == nullptr && FieldText(node->sym->name) == FieldText(sym->name)) {
      namesake = node->sym;
    }
  }
  return namesake;
}

}  // namespace

void YesEditSymbol(XDialog* dlog) {
  DialogYes(dlog);
  SymInit(sed, ChosenSymbol());
}

void YesDeleteSymbol(XDialog* dlog) {
  DialogYes(dlog);
  GromlitSymbol* sym = ChosenSymbol();
  if (sym == nullptr) return;
  confirm->msgs = ConfirmDeleteSymbolMsg;
  confirm->arg = sym;
  confirm->yesfn = ConfirmDeleteSymbol;
  MousePopUpDialog(confirm, labelDeleteSymbol);
}

void ConfirmDeleteSymbol(XDialog* dlog) {
  DialogYes(dlog);
  if (dlog->arg == nullptr) return;
  // A record that is no longer listed would lose its file and stay in the library under its name.
  const GromlitSymbol* sym = InLibrary(static_cast<GromlitSymbol*>(dlog->arg));
  if (sym == nullptr) return;
  RemoveSymbol(sym, sym->name);
  SymbolDisplay* sd = SymbolChooser();
  if (sd != nullptr) sd->selected = -1;
}

}  // namespace gromlit
