#include "app/symbols/drawn_symbol.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "app/symbols/sym_window.h"
#include "app/symbols/symbol_editor_record.h"
#include "recognition/learn_symbol.h"

namespace gromlit {

bool TakeDrawnSymbol(Window window, const Stroke& stroke) {
  if (sed == nullptr || window != sed->wsym->window || sed->state != kSymEmpty) return false;
  // The icon is the next step's, which draws it anew only where there is none: one that was painted
  // stays, as when the points are clicked.
  std::array<uint32_t, kIconSize> icon;
  std::copy(std::begin(sed->sym.icon), std::end(sed->sym.icon), icon.begin());
  if (!SimplifyStroke(stroke, &sed->sym)) return false;
  std::copy(icon.begin(), icon.end(), std::begin(sed->sym.icon));
  sed->state = kSymComplete;
  ResetSymWindow(sed->wsym);
  DrawSymWindow(sed->wsym);
  return true;
}

}  // namespace gromlit
