// Records that have left their list but must stay alive.
#pragma once

namespace gromlit {

// Keeps a heap record reachable for the rest of the run: editors and windows may still hold
// pointers to a record that was replaced or deleted, so it is never released, and this is what
// tells leak checkers that it is not lost. A null record is ignored.
void Retire(void* record);

}  // namespace gromlit
