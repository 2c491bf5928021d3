// Whole actions: their commands and texts belong to them.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

// Copies an action into a record, commands and their texts included; what dst held is overwritten,
// not released. The copied symbol has no signature (INV-SYMBOL-1).
void CopyAction(GromlitAction* dst, const GromlitAction* src);

// Releases the commands of an action, their texts, and the signature of its symbol; ncmds is 0
// afterwards. REQUIRES: nobody else points to them.
void ReleaseActionContents(GromlitAction* action);

}  // namespace gromlit
