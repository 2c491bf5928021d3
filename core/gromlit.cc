#include "core/gromlit.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/strings.h"

namespace gromlit {

GromlitPlugin* DefaultPlugin = nullptr;
GromlitPlugin* ExecutingPlugin = nullptr;
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

void DisownFeatures(GromlitSymbol* sym) {
  sym->signature = nullptr;
  sym->shape = nullptr;
}

void ReleaseFeatures(GromlitSymbol* sym) {
  std::free(sym->signature);
  // Plain numbers (recognition/shape_match.cc holds it to that), whose memory is all there is.
  ::operator delete(static_cast<void*>(sym->shape));
  DisownFeatures(sym);
}

}  // namespace gromlit
