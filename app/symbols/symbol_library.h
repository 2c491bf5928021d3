// Changes of the symbol library, together with the windows that show it.
#pragma once

#include "app/symbols/symbol_editor_record.h"
#include "core/gromlit.h"

namespace gromlit {

inline constexpr const char* labelSymbolSaved = "Symbol Saved";
inline constexpr const char* labelReplaceSymbol = "Replace Symbol";

// The line of SaveOrAsk's question, ended by a null pointer.
extern const char* const ConfirmEmptySymbolMsg[];

// Stores the editor's working symbol under `name`, cut to the record's name field, and closes the
// editor. Returns 1, after a notice when the chooser cannot list every symbol any more or does not
// list this one; or 0 when the save failed: file and library are as they were, the editor stays
// open with the work in it, and a dialog gives the reason.
int SaveSymbol(SymbolEditor* editor, const char* name);

// What "Save" does: SaveSymbol; but first asks whether a symbol of the library is to be replaced by
// one without points, which no stroke could ever be. Yes saves what the question was about, and
// nothing when the editor holds something else or is closed by then.
void SaveOrAsk(SymbolEditor* editor, const char* name);

// Deletes the file of the symbol `fname` and takes this very record out of the library. Returns 1;
// or 0, with nothing changed and the reason in a dialog.
int RemoveSymbol(const GromlitSymbol* sym, const char* fname);

// Gives the library's names, sorted, to the editor's list, and has the symbol chooser drawn anew
// when it is shown.
void RefreshSymbolNames(SymbolEditor* editor);

}  // namespace gromlit
