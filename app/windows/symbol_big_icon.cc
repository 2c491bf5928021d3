#include "app/windows/symbol_big_icon.h"

#include "toolkit/icon_window.h"

namespace gromlit {

void DrawSymbolBigIcon(Window window, GC gc, const GromlitSymbol* sym, int x, int y) {
  DrawSymbolIcon(window, gc, sym, x, y);
}

}  // namespace gromlit
