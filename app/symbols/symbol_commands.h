// What the OK of the symbol dialog does for editing a symbol and for deleting one.
#pragma once

#include "toolkit/dialog.h"

namespace gromlit {

inline constexpr const char* labelDeleteSymbol = "Delete Symbol";

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
