// What the launcher wrote into an installation directory: the file "manifest" there. By it an
// upgrade tells what the user changed or deleted from what is as it was written.
//
//   gromlit-manifest 1
//   state made
//   choices 6
//   9c5e4b2a01d3f687 9c5e4b2a01d3f687 help/index.html
//   6f0d3c1b5a49e827 ---------------- plugins/Default.sla
//   sum 04c1be30f7a9d852
//
// A line for each file: the checksum of the starter file, the checksum of what was written from it,
// or dashes for a file that is the user's own. The last line is the checksum of all before it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace gromlit {

inline constexpr const char* kManifestFile = "manifest";

struct ManifestEntry {
  uint64_t source = 0;
  std::optional<uint64_t> written = {};  // none: the user's own, or deleted
  bool operator==(const ManifestEntry&) const = default;
};

struct Manifest {
  bool made = false;  // false while the directory is filled for the first time
  int choices = 0;    // recommended choices that the user was told of, or got
  std::map<std::string, ManifestEntry> files = {};  // by path relative to the directory
  bool operator==(const Manifest&) const = default;
};

enum class ManifestState { kAbsent, kDamaged, kSound, kUnreadable };

// Tells contents apart; no protection against somebody who means harm (FNV-1a, 64 bits).
uint64_t Checksum(std::span<const std::byte> bytes);

// Reads the manifest of a directory. *manifest is empty unless the result is kSound. kUnreadable
// with errno set when the system does not let it be read now: it may be sound. What is no regular
// file counts as damaged.
ManifestState ReadManifest(const std::string& directory, Manifest* manifest);

// Writes it (safe saving: core/files.h). False with errno set, the old one still there.
// REQUIRES: GromlitPath is the directory.
bool WriteManifest(const std::string& directory, const Manifest& manifest);

}  // namespace gromlit
