// The stored images of the records, byte for byte.
//
// Every integer is little-endian. Decoders never trust what they read: counts are cut to their
// limits and strings to their fields. Encoders zero gaps, bytes after a NUL and pointer slots, so
// that equal records give equal files.
#pragma once

#include <cstddef>
#include <span>

#include "core/bytes.h"
#include "core/gromlit.h"

namespace gromlit {

inline constexpr size_t kHeaderSize = 13;  // every file begins with one, without a NUL

inline constexpr size_t kSymbolImageSize = 428;
inline constexpr size_t kCmdImageSize = 56;
inline constexpr size_t kActionImageSize = 1012;
inline constexpr size_t kPluginImageSize = 1164;
inline constexpr size_t kOptionsImageSize = 292;

// REQUIRES (all): image.size() is the record's image size.

// `signature` becomes null; npoints above kMaxPoints becomes kMaxPoints.
void DecodeSymbol(std::span<const std::byte> image, GromlitSymbol* sym);
void EncodeSymbol(const GromlitSymbol& sym, std::span<std::byte> image);

// `text` becomes null; ntext is what the image says, to be checked against what follows.
void DecodeCmd(std::span<const std::byte> image, GromlitCmd* cmd);
void EncodeCmd(const GromlitCmd& cmd, std::span<std::byte> image);

// `cmds` are null; ncmds is what the image says, to be checked against kMaxCommands.
void DecodeAction(std::span<const std::byte> image, GromlitAction* action);
void EncodeAction(const GromlitAction& action, std::span<std::byte> image);

// `actions` are null; nactions is what the image says, to be checked against kMaxActions.
void DecodePlugin(std::span<const std::byte> image, GromlitPlugin* plugin);
void EncodePlugin(const GromlitPlugin& plugin, std::span<std::byte> image);

void DecodeOptions(std::span<const std::byte> image, GromlitUserOptions* options);
void EncodeOptions(const GromlitUserOptions& options, std::span<std::byte> image);

}  // namespace gromlit
