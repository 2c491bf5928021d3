#include "core/plugin_image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/record_codec.h"

namespace gromlit {
namespace {

constexpr size_t kRecordEnd = kHeaderSize + kPluginImageSize;

// The bytes of a file that have not been read yet.
class Cursor {
 public:
  explicit Cursor(std::span<const std::byte> rest) : rest_(rest) {}

  // Takes the next n bytes; false, nothing taken, when fewer are left.
  bool Take(size_t n, std::span<const std::byte>* bytes) {
    if (n > rest_.size()) return false;
    *bytes = rest_.first(n);
    rest_ = rest_.subspan(n);
    return true;
  }

 private:
  std::span<const std::byte> rest_;
};

PluginPart DecodeText(Cursor* file, GromlitCmd* cmd) {
  if (cmd->ntext == 0) return PluginPart::kNothing;
  std::span<const std::byte> bytes;
  if (!file->Take(cmd->ntext, &bytes)) return PluginPart::kText;
  cmd->text = static_cast<char*>(std::malloc(bytes.size() + 1));
  if (cmd->text == nullptr) return PluginPart::kText;
  std::memcpy(cmd->text, bytes.data(), bytes.size());
  cmd->text[bytes.size()] = '\0';
  return PluginPart::kNothing;
}

// Reads one action with its commands. The caller owns what was read, also after a failure: the
// commands then end at the first null.
PluginPart DecodeActionAndCommands(Cursor* file, GromlitAction* action) {
  std::span<const std::byte> image;
  if (!file->Take(kActionImageSize, &image)) return PluginPart::kAction;
  DecodeAction(image, action);
  for (uint32_t j = 0; j < action->ncmds; j++) {
    if (j == kMaxCommands || !file->Take(kCmdImageSize, &image)) return PluginPart::kCommand;
    auto* cmd = new (std::nothrow) GromlitCmd();
    if (cmd == nullptr) return PluginPart::kCommand;
    action->cmds[j] = cmd;
    DecodeCmd(image, cmd);
    const PluginPart missing = DecodeText(file, cmd);
    if (missing != PluginPart::kNothing) return missing;
  }
  return PluginPart::kNothing;
}

// Releases an action that was read in part and never handed out.
void ReleaseAction(GromlitAction* action) {
  for (GromlitCmd* cmd : action->cmds) {
    if (cmd == nullptr) break;
    std::free(cmd->text);
    delete cmd;
  }
  delete action;
}

// Calls visit(part, size) for every stretch of the file in order until it returns false.
template <typename Visit>
void ForEachPart(const GromlitPlugin& pin, Visit visit) {
  if (!visit(PluginPart::kRecord, kRecordEnd)) return;
  for (int i = 0; i < pin.nactions; i++) {
    const GromlitAction& action = *pin.actions[i];
    if (!visit(PluginPart::kAction, kActionImageSize)) return;
    for (uint32_t j = 0; j < action.ncmds; j++) {
      if (!visit(PluginPart::kCommand, kCmdImageSize)) return;
      if (!visit(PluginPart::kText, static_cast<size_t>(action.cmds[j]->ntext))) return;
    }
  }
}

// Brings every count in line with what the record holds, so that what is written can be read.
void SettleCounts(GromlitPlugin* pin) {
  const auto stop = [](auto* const* first, uint32_t n) {
    return static_cast<uint32_t>(std::find(first, first + n, nullptr) - first);
  };
  constexpr uint32_t kActions = kMaxActions;
  constexpr uint32_t kCommands = kMaxCommands;
  pin->nactions =
      static_cast<uint8_t>(stop(pin->actions, std::min<uint32_t>(pin->nactions, kActions)));
  for (int i = 0; i < pin->nactions; i++) {
    GromlitAction* action = pin->actions[i];
    action->ncmds = stop(action->cmds, std::min(action->ncmds, kCommands));
    for (uint32_t j = 0; j < action->ncmds; j++) {
      GromlitCmd* cmd = action->cmds[j];
      const size_t length = cmd->text == nullptr ? 0 : std::strlen(cmd->text);
      cmd->ntext = static_cast<uint32_t>(std::min<size_t>(length, UINT32_MAX));
    }
  }
}

}  // namespace

bool DecodePluginRecord(std::span<const std::byte> file, GromlitPlugin* pin) {
  if (file.size() < kRecordEnd || !HasHeader(file, kPluginHeader)) return false;
  DecodePlugin(file.subspan(kHeaderSize, kPluginImageSize), pin);
  pin->nactions = 0;
  return true;
}

PluginPart DecodePluginFile(std::span<const std::byte> file, GromlitPlugin* pin) {
  if (!DecodePluginRecord(file, pin)) return PluginPart::kRecord;
  GromlitPlugin stored;
  DecodePlugin(file.subspan(kHeaderSize, kPluginImageSize), &stored);
  Cursor rest(file.subspan(kRecordEnd));
  for (int i = 0; i < stored.nactions; i++) {
    if (i == kMaxActions) return PluginPart::kAction;
    auto* action = new (std::nothrow) GromlitAction();
    if (action == nullptr) return PluginPart::kAction;
    const PluginPart missing = DecodeActionAndCommands(&rest, action);
    if (missing != PluginPart::kNothing) {
      ReleaseAction(action);
      return missing;
    }
    pin->actions[i] = action;
    pin->nactions = static_cast<uint8_t>(i + 1);
  }
  return PluginPart::kNothing;
}

std::vector<std::byte> EncodePluginFile(GromlitPlugin* pin) {
  SettleCounts(pin);
  return EncodePluginRecords(*pin);
}

std::vector<std::byte> EncodePluginRecords(const GromlitPlugin& pin) {
  size_t size = 0;
  ForEachPart(pin, [&size](PluginPart, size_t n) {
    size += n;
    return size <= kMaxPluginFile;
  });
  if (size > kMaxPluginFile) return {};

  std::vector<std::byte> file(size);
  std::span<std::byte> rest(file);
  const auto take = [&rest](size_t n) {
    const std::span<std::byte> bytes = rest.first(n);
    rest = rest.subspan(n);
    return bytes;
  };
  PutHeader(take(kHeaderSize), kPluginHeader);
  EncodePlugin(pin, take(kPluginImageSize));
  for (int i = 0; i < pin.nactions; i++) {
    const GromlitAction& action = *pin.actions[i];
    EncodeAction(action, take(kActionImageSize));
    for (uint32_t j = 0; j < action.ncmds; j++) {
      const GromlitCmd& cmd = *action.cmds[j];
      EncodeCmd(cmd, take(kCmdImageSize));
      if (cmd.ntext != 0) std::memcpy(take(cmd.ntext).data(), cmd.text, cmd.ntext);
    }
  }
  return file;
}

PluginPart PluginPartAt(const GromlitPlugin& pin, size_t offset) {
  PluginPart found = PluginPart::kNothing;
  size_t end = 0;
  ForEachPart(pin, [&](PluginPart part, size_t n) {
    end += n;
    if (offset < end) found = part;
    return found == PluginPart::kNothing;
  });
  return found;
}

}  // namespace gromlit
