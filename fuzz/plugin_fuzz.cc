// Any bytes behind a plug-in file's header give a plug-in within its limits, every action of it
// complete; and what was read, written and read again is written the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "core/plugin_image.h"
#include "core/record_codec.h"
#include "core/strings.h"
#include "fuzz/require.h"

namespace gromlit {
namespace {

// Records are long and mostly zero, which a fuzzer does not find by itself: a zero byte stands for
// as many times four zeros as the byte behind it says, every other byte for itself.
void Expand(std::span<const uint8_t> input, std::vector<std::byte>* file) {
  constexpr size_t kMaxFile = size_t{1} << 20;
  for (size_t i = 0; i < input.size() && file->size() < kMaxFile; i++) {
    if (input[i] != 0 || i + 1 == input.size())
      file->push_back(static_cast<std::byte>(input[i]));
    else
      file->resize(file->size() + size_t{4} * input[++i]);
  }
}

void ReleaseActions(GromlitPlugin* pin) {
  for (int i = 0; i < pin->nactions; i++) {
    for (uint32_t j = 0; j < pin->actions[i]->ncmds; j++) {
      std::free(pin->actions[i]->cmds[j]->text);
      delete pin->actions[i]->cmds[j];
    }
    delete pin->actions[i];
  }
}

void CheckLimits(const GromlitPlugin& pin) {
  Require(pin.nactions <= kMaxActions);
  Require(pin.appname[kTextSize - 1] == '\0' && pin.classname[kTextSize - 1] == '\0');
  for (int i = 0; i < kMaxActions; i++) {
    Require((pin.actions[i] != nullptr) == (i < pin.nactions));
    if (i >= pin.nactions) continue;
    const GromlitAction& action = *pin.actions[i];
    Require(action.ncmds <= kMaxCommands && action.sym.npoints <= kMaxPoints);
    for (uint32_t j = 0; j < action.ncmds; j++) {
      const GromlitCmd* cmd = action.cmds[j];
      Require(cmd != nullptr && (cmd->text == nullptr) == (cmd->ntext == 0));
      if (cmd->text != nullptr) Require(cmd->text[cmd->ntext] == '\0');
    }
  }
}

}  // namespace
}  // namespace gromlit

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace gromlit;
  // The header and an empty plug-in record are given, so that every input reaches the actions: its
  // first byte is their count, the rest describes what follows the record.
  if (size < 1) return 0;
  std::vector<std::byte> file(kHeaderSize + kPluginImageSize);
  PutHeader(file, kPluginHeader);
  PutU8(file, kHeaderSize + 650, data[0]);
  Expand({data + 1, size - 1}, &file);

  auto pin = std::make_unique<GromlitPlugin>();
  const PluginPart missing = DecodePluginFile(file, pin.get());
  Require(missing != PluginPart::kRecord);
  CheckLimits(*pin);

  const std::vector<std::byte> once = EncodePluginFile(pin.get());
  auto again = std::make_unique<GromlitPlugin>();
  Require(DecodePluginFile(once, again.get()) == PluginPart::kNothing);
  CheckLimits(*again);
  Require(EncodePluginFile(again.get()) == once);
  ReleaseActions(pin.get());
  ReleaseActions(again.get());
  return 0;
}
