#include "core/action_copy.h"

#include <algorithm>
#include <cstdlib>

#include "core/strings.h"

namespace gromlit {

void CopyAction(GromlitAction* dst, const GromlitAction* src) {
  *dst = *src;
  DisownFeatures(&dst->sym);
  dst->ncmds = std::min<uint32_t>(src->ncmds, kMaxCommands);
  std::fill_n(dst->cmds, kMaxCommands, nullptr);
  for (uint32_t i = 0; i < dst->ncmds; i++) {
    dst->cmds[i] = new GromlitCmd(*src->cmds[i]);
    dst->cmds[i]->text = StrDup(src->cmds[i]->text);
  }
}

void ReleaseActionContents(GromlitAction* action) {
  for (uint32_t i = 0; i < action->ncmds; i++) {
    std::free(action->cmds[i]->text);
    delete action->cmds[i];
    action->cmds[i] = nullptr;
  }
  action->ncmds = 0;
  ReleaseFeatures(&action->sym);
}

}  // namespace gromlit
