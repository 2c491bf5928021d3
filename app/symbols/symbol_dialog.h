// The dialog in which a symbol is chosen, and what its OK does for editing and for deleting one.
//
// Whoever shows the dialog sets its yesfn first. The chosen symbol is ChosenSymbol().
#pragma once

#include "app/symbols/symbol_display.h"
#include "core/gromlit.h"
#include "toolkit/dialog.h"

namespace gromlit {

inline constexpr const char* labelSelectSymbol = "Select Symbol";
inline constexpr const char* labelDeleteSymbol = "Delete Symbol";

// The one dialog; null before MakeSymbolSelect. Its `arg` is the chooser (SymbolDisplay).
extern XDialog* symselect;

// Makes the dialog with the chooser in it, not mapped.
void MakeSymbolSelect();

// The chooser of symselect; null before MakeSymbolSelect.
SymbolDisplay* SymbolChooser();

// The symbol selected in it; null when none is, or before MakeSymbolSelect.
GromlitSymbol* ChosenSymbol();

// OK for editing: closes the dialog and opens the editor on a copy of the chosen symbol, or on an
// empty one when none is chosen.
void YesEditSymbol(XDialog* dlog);

// OK for deleting: closes the dialog and asks whether to delete the chosen symbol; asks nothing
// when none is chosen.
void YesDeleteSymbol(XDialog* dlog);

// "Yes" to that question: closes it, removes the symbol that it was asked about (confirm's `arg`),
// also when it was saved anew in the meantime, and clears the chooser's selection. Nothing more
// when the symbol is gone already.
void ConfirmDeleteSymbol(XDialog* dlog);

}  // namespace gromlit
