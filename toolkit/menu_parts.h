// What the handlers of menus share, below toolkit/menu.h; for toolkit/menu*.cc alone.
#pragma once

#include "toolkit/menu.h"

namespace gromlit {

// The menu that has the pointer, or null (INV-MENU-1), and how it gets and loses it. EndMenuGrab
// does nothing for a menu that has it not.
XMenu* MenuWithPointer();
bool GrabPointerFor(XMenu* menu, long events);
void EndMenuGrab(const XMenu* menu);

// Hands the record of who has the pointer over without giving it back; for whoever has grabbed it
// anew. Null: no menu.
void PassMenuGrab(XMenu* menu);

// Maps a menu at its place, above everything, without a highlight or a submenu.
void ShowMenu(XMenu* menu);

// Closes the submenu of a menu, if one is open.
void CloseSubmenu(XMenu* menu);

// Draws the bevel around a row of the window, or takes it away (kFlat).
void DrawMenuHighlight(XMenu* menu, int up, int row);

// Gives the pointer back, runs the highlighted items of an open menu and of its submenus, the
// deepest one's first, and closes them.
void RunMenu(XMenu* menu);

}  // namespace gromlit
