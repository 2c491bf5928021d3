#include "core/gromlit.h"

#include <algorithm>
#include <cstring>

#include "core/strings.h"

namespace gromlit {

GromlitPlugin* DefaultPlugin = nullptr;
GromlitUserOptions* user = nullptr;
const char* GromlitPath = ".";

void CopyGromlitSymbol(GromlitSymbol* dst, const GromlitSymbol* src) {
  if (dst == src) return;
  CopyText(dst->name, FieldText(src->name));
  dst->npoints = src->npoints;
  std::copy_n(src->x, kMaxPoints + 1, dst->x);
  std::copy_n(src->y, kMaxPoints, dst->y);
  std::copy_n(src->icon, kIconSize, dst->icon);
}

}  // namespace gromlit
