#include "core/retired.h"

#include <vector>

namespace gromlit {

void Retire(void* record) {
  // Never destroyed, so that it still holds its records when leaks are looked for.
  static auto* const records = new std::vector<void*>;
  if (record != nullptr) records->push_back(record);
}

}  // namespace gromlit
