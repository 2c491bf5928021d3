// Symbol files: GromlitPath/symbols/NAME.sls, one symbol each, and the list of all symbols.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

inline constexpr const char* symbolDirectory = "symbols";
inline constexpr const char* GromlitSymbolFileExt = ".sls";
inline constexpr const char* GromlitSymbolFileHeaderString = "GromlitSymbol";

// Reads GromlitPath/symbols/`fname``ext` into a new record. Null, silently, when it cannot be
// opened, is not a regular file, has a wrong header or is too short. `signature` is null.
GromlitSymbol* LoadSymbol(const char* fname, const char* ext);

// Writes sym to GromlitPath/symbols/`fname``ext` (safe saving: core/files.h). Returns sym; or null
// after reporting "Save Symbol" with the system error, the old file left as it was and errno the
// reason.
GromlitSymbol* UnLoadSymbol(GromlitSymbol* sym, const char* fname, const char* ext);

// Builds allSymbols from the symbol directory, in directory order and without a filter on the
// extension. Returns the number of symbols; a missing directory gives an empty list.
int LoadSymbols();

// New array (heap, owned by the caller) of the symbols of allSymbols, sorted by name; *n is their
// number. Never null.
GromlitSymbol** UpdateSymbols(int* n);

// Sorts symbol pointers in place by name, bytewise ascending.
void SortSymNames(GromlitSymbol** names, int n);

// File-and-list half of saving from the symbol editor: cuts `name` to the record's field, writes
// `working` under it and puts the reloaded record into allSymbols: in the place of the symbol of
// that name, else as a new head. Returns 1; 0 when the save failed (reported as in UnLoadSymbol),
// file and list as they were and errno the reason.
int StoreSymbol(GromlitSymbol* working, const char* name);

// File-and-list half of removing: deletes symbols/`fname`.sls relative to the working directory and
// unlinks the node that holds this very record. Returns 1; 0 after reporting "Remove Symbol" with
// the system error, the list as it was and errno the reason.
int DropSymbol(const GromlitSymbol* sym, const char* fname);

}  // namespace gromlit
