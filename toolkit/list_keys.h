// Keys that move a selection in a list or a grid, with today's manners, and how its window gets
// keys at all.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// Items in rows of `columns`, from left to right, of which `rows` rows are seen at once.
struct ListGrid {
  int count;
  int columns;
  int rows;
  int first;  // the first one that is seen
};

// The item that a key leads to from the selected one (-1 for none); -1 when the key moves nothing,
// or there is nothing to move to. Arrows stay in the grid: Left and Right go on in the next row, Up
// and Down end in the first and last one. Home and End are the first and the last item, Page_Up and
// Page_Down go as many rows as are seen. Without a selection an arrow leads to the first item seen.
int MovedByKey(KeySym key, int selected, const ListGrid& grid);

// Rows to scroll by until an item is seen; 0 when it is.
int RowsToSee(int item, const ListGrid& grid);

// Whether a key means "choose this one": Return or Enter.
bool IsChoosingKey(KeySym key);

// Has a window of the program told of `events`, and with today's manners of its keys and of the
// focus, too. `asked` remembers which of both is in force; 0 at first. One request and one round
// trip for a change.
void AskForKeys(Window window, long events, int* asked);

}  // namespace gromlit
