#include "toolkit/list_keys.h"

#include <X11/keysym.h>

#include <algorithm>

#include "display/display.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"

namespace gromlit {
namespace {

// How many items a key moves by; 0 for a key that moves by none.
int StepOf(KeySym key, const ListGrid& grid) {
  switch (key) {
    case XK_Left:
    case XK_KP_Left:
      return grid.columns > 1 ? -1 : 0;
    case XK_Right:
    case XK_KP_Right:
      return grid.columns > 1 ? 1 : 0;
    case XK_Up:
    case XK_KP_Up:
      return -grid.columns;
    case XK_Down:
    case XK_KP_Down:
      return grid.columns;
    case XK_Page_Up:
    case XK_KP_Page_Up:
      return -grid.columns * std::max(grid.rows, 1);
    case XK_Page_Down:
    case XK_KP_Page_Down:
      return grid.columns * std::max(grid.rows, 1);
    default:
      return 0;
  }
}

}  // namespace

int MovedByKey(KeySym key, int selected, const ListGrid& grid) {
  if (grid.count <= 0) return -1;
  const int last = grid.count - 1;
  if (key == XK_Home || key == XK_KP_Home) return 0;
  if (key == XK_End || key == XK_KP_End) return last;
  const int step = StepOf(key, grid);
  if (step == 0) return -1;
  if (selected < 0) return std::clamp(grid.first, 0, last);
  const int to = std::min(selected, last) + step;
  if (step == 1 || step == -1) return std::clamp(to, 0, last);
  // Within the column. Down into a last row that is not full: its last item.
  const int column = selected % grid.columns;
  if (to < 0) return column;
  if (to <= last) return to;
  const int row = std::min(to / grid.columns, last / grid.columns);
  return std::min(row * grid.columns + column, last);
}

int RowsToSee(int item, const ListGrid& grid) {
  const int row = item / grid.columns;
  const int first = grid.first / grid.columns;
  if (row < first) return row - first;
  return std::max(row - first - std::max(grid.rows, 1) + 1, 0);
}

bool IsChoosingKey(KeySym key) {
  return key == XK_Return || key == XK_KP_Enter || key == XK_ISO_Enter;
}

void AskForKeys(Window window, long events, int* asked) {
  const int wanted = ModernManners() ? 1 : 0;
  if (wanted == *asked) return;
  *asked = wanted;
  if (wanted != 0) {
    SelectKeys(window);
  } else {
    XSelectInput(dpy, window, events);
  }
}

}  // namespace gromlit
