// The pointer after a press that closed the menus: kept from everybody until that button goes up
// (INV-HAND-2 of toolkit/menu_hand.h).
#pragma once

namespace gromlit {

// Takes the pointer for a window that cannot be seen, until the release or EndLeaving. Returns
// false when the server refuses.
bool KeepPointerFromAll();

// Whether a press that closed menus still waits for its release, which holds the pointer; and how
// that is given back, nothing otherwise.
bool HandIsLeaving();
void EndLeaving();

}  // namespace gromlit
