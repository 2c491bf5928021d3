#include "app/symbols/symbol_dialog.h"

#include "toolkit/image.h"

namespace gromlit {
namespace {

// A double click in the chooser: as OK.
void ChooseShown(void* dlog) {
  auto* shown = static_cast<XDialog*>(dlog);
  if (shown->yesfn != nullptr) shown->yesfn(shown);
}

}  // namespace

XDialog* symselect = nullptr;

void MakeSymbolSelect(void (*yesfn)(XDialog* dlog)) {
  symselect = MakeDialogLabeled(labelSelectSymbol, nullptr, yesfn, 300, 500, labelOK, labelCancel);
  SymbolDisplay* sd =
      MakeSymbolDisplay(symselect->window, 4, logoImage->height + 8, ChooseShown, symselect);
  ResizeDialog(symselect, sd->width, sd->height);
  symselect->show = sd->window;
  symselect->arg = sd;
}

bool ShowSymbolSelect(const char* title, void (*yesfn)(XDialog* dlog)) {
  if (symselect == nullptr) return false;
  symselect->yesfn = yesfn;
  MousePopUpDialog(symselect, title);
  return true;
}

void CloseSymbolSelect(void (*yesfn)(XDialog* dlog)) {
  if (symselect != nullptr && symselect->yesfn == yesfn) DialogNo(symselect);
}

SymbolDisplay* SymbolChooser() {
  return symselect != nullptr ? static_cast<SymbolDisplay*>(symselect->arg) : nullptr;
}

GromlitSymbol* ChosenSymbol() {
  const SymbolDisplay* sd = SymbolChooser();
  return sd != nullptr ? SelectedSymbol(sd) : nullptr;
}

}  // namespace gromlit
