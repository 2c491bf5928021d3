// The stored images of the records, byte for byte (offsets: core/record_layout.h).
//
// Every integer is little-endian. Decoders never trust what they read: counts are cut to their
// limits and strings to their fields, except where a comment leaves a count to the caller.
// Encoders zero gaps, bytes after a NUL and pointer slots, so that equal records give equal files.
// Reserved text fields (chars1..chars8, charspare2) are raw bytes and pass through whole.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "core/bytes.h"
#include "core/gromlit.h"
#include "core/record_layout.h"

namespace gromlit {

// True when the file begins with this header. REQUIRES: header.size() == kHeaderSize.
bool HasHeader(std::span<const std::byte> file, std::string_view header);

// Writes the header to the first kHeaderSize bytes. REQUIRES: file.size() >= kHeaderSize.
void PutHeader(std::span<std::byte> file, std::string_view header);

// REQUIRES (all of the following): image.size() is the record's image size.

// `signature` becomes null; npoints above kMaxPoints becomes kMaxPoints. Coordinates are kept as
// they are, also off the grid.
void DecodeSymbol(std::span<const std::byte> image, GromlitSymbol* sym);
void EncodeSymbol(const GromlitSymbol& sym, std::span<std::byte> image);

// `text` becomes null; ntext is what the image says, to be checked against what follows.
void DecodeCmd(std::span<const std::byte> image, GromlitCmd* cmd);
void EncodeCmd(const GromlitCmd& cmd, std::span<std::byte> image);

// `cmds` are null; ncmds is what the image says, to be checked against kMaxCommands.
void DecodeAction(std::span<const std::byte> image, GromlitAction* action);
void EncodeAction(const GromlitAction& action, std::span<std::byte> image);

// `actions` and `damagedfile` are null, `storedfile` is empty; nactions is what the image says, to
// be checked against kMaxActions.
void DecodePlugin(std::span<const std::byte> image, GromlitPlugin* plugin);
void EncodePlugin(const GromlitPlugin& plugin, std::span<std::byte> image);

void DecodeOptions(std::span<const std::byte> image, GromlitUserOptions* options);
void EncodeOptions(const GromlitUserOptions& options, std::span<std::byte> image);

}  // namespace gromlit
