#include "actions/typing.h"

#include <unistd.h>

#include <algorithm>
#include <array>

#include "actions/delivery.h"
#include "core/files.h"

namespace gromlit {
namespace {

// Of a file that is typed, bytes at a time.
constexpr size_t kFileBlock = 16384;

}  // namespace

void SendKeyPairs(const InputPlace& place, const GromlitCmd* cmd) {
  const KeyWay& way = ChosenKeyWay();
  // A menu command of many letters counts more keys than the record has pairs.
  const int n = std::min<int>(cmd->nkeys, kMaxKeys);
  for (int i = 0; i < n; i++) way.stroke(place, cmd->keycode[i], cmd->keystate[i]);
}

void TypeText(const InputPlace& place, const char* text, size_t length) {
  ChosenKeyWay().text(place, {text, length}, false);
}

void TypeFile(const InputPlace& place, const char* fname) {
  const KeyWay& way = ChosenKeyWay();
  const int fd = OpenRegular(fname);
  if (fd > 0) {
    std::array<char, kFileBlock> block;
    size_t kept = 0;  // bytes at the beginning of the block that wait for what follows them
    for (;;) {
      const ssize_t n = read(fd, block.data() + kept, block.size() - kept);
      const size_t length = kept + static_cast<size_t>(std::max<ssize_t>(n, 0));
      const size_t taken = way.text(place, {block.data(), length}, n > 0);
      if (n < 1) break;
      kept = length - taken;
      std::copy_n(block.begin() + static_cast<ptrdiff_t>(taken), kept, block.begin());
    }
  }
  // Descriptor 0 (standard input was closed) does not count as opened, but must not stay taken.
  if (fd >= 0) close(fd);
}

}  // namespace gromlit
