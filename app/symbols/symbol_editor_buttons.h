// The symbol editor's buttons and what they do; the argument of each is the editor (SymbolEditor*).
// In which states a button changes what is in the table of app/symbols/symbol_editor_record.h.
#pragma once

#include "app/symbols/symbol_editor_record.h"

namespace gromlit {

inline constexpr const char* GromlitSymbolHelpFile = "help/symbol_editor.html";

// Makes them, those of step 1 shown.
void MakeSymbolEditorButtons(SymbolEditor* editor);

void symHelp(void* arg);
void symClear(void* arg);
void symRestart(void* arg);
void symPrev(void* arg);
void symNext(void* arg);
void symFinish(void* arg);
void symSave(void* arg);
void symCancel(void* arg);

}  // namespace gromlit
