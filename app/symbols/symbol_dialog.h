// The dialog in which a symbol is chosen. Whoever shows it says what its OK does; the chosen symbol
// is ChosenSymbol().
#pragma once

#include "app/symbols/symbol_display.h"
#include "core/gromlit.h"
#include "toolkit/dialog.h"

namespace gromlit {

inline constexpr const char* labelSelectSymbol = "Select Symbol";

// The one dialog; null before MakeSymbolSelect. Its `arg` is the chooser (SymbolDisplay).
extern XDialog* symselect;

// Makes the dialog with the chooser in it, not mapped. `yesfn` is what OK does until the dialog is
// shown for something else.
void MakeSymbolSelect(void (*yesfn)(XDialog* dlog));

// Shows the dialog at the pointer, with this title and this OK. False before MakeSymbolSelect.
bool ShowSymbolSelect(const char* title, void (*yesfn)(XDialog* dlog));

// Closes the dialog if this is what its OK does.
void CloseSymbolSelect(void (*yesfn)(XDialog* dlog));

// The chooser of symselect; null before MakeSymbolSelect.
SymbolDisplay* SymbolChooser();

// The symbol selected in it; null when none is, or before MakeSymbolSelect.
GromlitSymbol* ChosenSymbol();

}  // namespace gromlit
