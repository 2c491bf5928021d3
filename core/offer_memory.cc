#include "core/offer_memory.h"

#include "core/strings.h"

namespace gromlit {

RememberFindNew* RememberFindNewList = nullptr;

bool IsRememberedClass(const char* classname) {
  for (const auto* node = RememberFindNewList; node != nullptr; node = node->next)
    if (StrCmp(node->classname, classname) == 0) return true;
  return false;
}

int RememberClass(const char* classname) {
  if (IsRememberedClass(classname)) return 1;
  RememberFindNewList = new RememberFindNew{StrDup(classname), 0, RememberFindNewList};
  return 0;
}

}  // namespace gromlit
