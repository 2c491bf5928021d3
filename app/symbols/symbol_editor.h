// The symbol editor put together, opened on a symbol, and saved by the Return key.
#pragma once

#include "app/symbols/sym_window.h"
#include "app/symbols/symbol_editor_record.h"
#include "core/gromlit.h"

namespace gromlit {

// Makes the editor, not shown, and loads the symbol library (LoadSymbols). Needs colours, fonts,
// cursors, images, atoms and GromlitPath.
void CreateSymbolEditor();

// Its first step: the window and the banner.
SymbolEditor* MakeSymbolEditor();

// Opens the editor on a copy of `sym`, or on an empty symbol when that is null. What was being
// edited is dropped. Does nothing when there is no editor yet.
void SymInit(SymbolEditor* editor, const GromlitSymbol* sym);

// Return in the name field: saves as the "Save" button does.
void txtSaveSymbol(TextEditor* txt);

}  // namespace gromlit
