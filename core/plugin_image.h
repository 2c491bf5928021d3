// A whole plug-in file in memory: the plug-in record, its actions and their commands.
//
// Plug-ins are shared between strangers, so nothing in such a file is believed: no count is used
// and nothing is allocated before the bytes that it speaks of are known to be there.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "core/gromlit.h"

namespace gromlit {

inline constexpr std::string_view kPluginHeader = "GromlitPlugin";

// What of a plug-in file could not be read or written.
enum class PluginPart { kNothing, kRecord, kAction, kCommand, kText };

// Largest plug-in file that is read or written, in bytes; a full plug-in whose commands have texts
// of 4,000 bytes fits. What lies behind this in a larger file is treated as missing.
inline constexpr size_t kMaxPluginFile = size_t{64} << 20;

// Reads the plug-in record alone. False, pin untouched, when the header is wrong or the record is
// not complete. nactions is 0 and all actions are null: there is nothing to follow before
// DecodePluginFile.
bool DecodePluginRecord(std::span<const std::byte> file, GromlitPlugin* pin);

// Reads a whole file into pin. What pin held before is overwritten, not released, and may be
// uninitialised.
// Returns kNothing when all of it was read; kRecord, pin untouched, when header or record are bad;
// else the kind of the first record that is not there, with nactions = the actions before it, every
// one of them complete. A count above kMaxActions or kMaxCommands is damage: reading ends as if the
// file did at the first record beyond the limit.
PluginPart DecodePluginFile(std::span<const std::byte> file, GromlitPlugin* pin);

// The whole file of this plug-in. Sets each command's ntext to the length of its text (0 for a null
// text), nactions and ncmds to the records that are really there.
// Empty when it would exceed kMaxPluginFile.
std::vector<std::byte> EncodePluginFile(GromlitPlugin* pin);

// The same with the counts as they are, for records whose texts hold NULs. REQUIRES: nactions,
// ncmds and ntext are not larger than what the record holds.
std::vector<std::byte> EncodePluginRecords(const GromlitPlugin& pin);

// Which part of this plug-in's file lies at a file offset; kNothing behind the end.
PluginPart PluginPartAt(const GromlitPlugin& pin, size_t offset);

}  // namespace gromlit
