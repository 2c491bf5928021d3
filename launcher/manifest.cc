#include "launcher/manifest.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <string_view>
#include <vector>

#include "core/files.h"

namespace gromlit {
namespace {

constexpr std::string_view kFirstLine = "gromlit-manifest 1";
constexpr std::string_view kMade = "state made";
constexpr std::string_view kMaking = "state making";
constexpr std::string_view kChoices = "choices ";
constexpr std::string_view kSum = "sum ";
constexpr std::string_view kOwn = "----------------";
constexpr size_t kDigits = 16;
constexpr size_t kMaxManifest = size_t{16} << 20;

std::string Hex(uint64_t number) {
  std::array<char, kDigits + 1> text;
  std::snprintf(text.data(), text.size(), "%016" PRIx64, number);
  return text.data();
}

bool FromHex(std::string_view text, uint64_t* number) {
  if (text.size() != kDigits) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + kDigits, *number, 16);
  return error == std::errc() && end == text.data() + kDigits;
}

uint64_t ChecksumOf(std::string_view text) {
  return Checksum(std::as_bytes(std::span(text)));
}

// The next line without its end; false when there is no complete one.
bool TakeLine(std::string_view* text, std::string_view* line) {
  const size_t end = text->find('\n');
  if (end == std::string_view::npos) return false;
  *line = text->substr(0, end);
  text->remove_prefix(end + 1);
  return true;
}

bool ReadEntry(std::string_view line, Manifest* manifest) {
  constexpr size_t kPath = 2 * (kDigits + 1);
  if (line.size() <= kPath || line[kDigits] != ' ' || line[kPath - 1] != ' ') return false;
  ManifestEntry entry;
  if (!FromHex(line.substr(0, kDigits), &entry.source)) return false;
  const std::string_view written = line.substr(kDigits + 1, kDigits);
  if (written != kOwn) {
    uint64_t sum = 0;
    if (!FromHex(written, &sum)) return false;
    entry.written = sum;
  }
  return manifest->files.emplace(line.substr(kPath), entry).second;
}

bool Parse(std::string_view text, Manifest* manifest) {
  // The sum first: behind it nothing else can be wrong but by a hand that made the sum, too.
  const size_t sum = text.size() - std::min(text.size(), kSum.size() + kDigits + 1);
  const std::string_view last = text.substr(sum);
  uint64_t stated = 0;
  if (!last.starts_with(kSum) || !last.ends_with('\n')) return false;
  if (!FromHex(last.substr(kSum.size(), kDigits), &stated)) return false;
  text = text.substr(0, sum);
  if (ChecksumOf(text) != stated) return false;

  std::string_view line;
  if (!TakeLine(&text, &line) || line != kFirstLine) return false;
  if (!TakeLine(&text, &line) || (line != kMade && line != kMaking)) return false;
  manifest->made = line == kMade;
  if (!TakeLine(&text, &line) || !line.starts_with(kChoices)) return false;
  line.remove_prefix(kChoices.size());
  const auto [end, error] =
      std::from_chars(line.data(), line.data() + line.size(), manifest->choices);
  if (error != std::errc() || end != line.data() + line.size()) return false;
  while (TakeLine(&text, &line))
    if (!ReadEntry(line, manifest)) return false;
  return text.empty();
}

}  // namespace

uint64_t Checksum(std::span<const std::byte> bytes) {
  uint64_t sum = 0xcbf29ce484222325;
  for (const std::byte byte : bytes) {
    sum ^= std::to_integer<uint64_t>(byte);
    sum *= 0x100000001b3;
  }
  return sum;
}

ManifestState ReadManifest(const std::string& directory, Manifest* manifest) {
  *manifest = Manifest();
  std::vector<std::byte> file;
  if (!ReadFile((directory + "/" + kManifestFile).c_str(), kMaxManifest, &file))
    return errno == ENOENT                      ? ManifestState::kAbsent
           : errno == EISDIR || errno == EINVAL ? ManifestState::kDamaged
                                                : ManifestState::kUnreadable;
  if (Parse({reinterpret_cast<const char*>(file.data()), file.size()}, manifest))
    return ManifestState::kSound;
  *manifest = Manifest();
  return ManifestState::kDamaged;
}

bool WriteManifest(const std::string& directory, const Manifest& manifest) {
  std::string text(kFirstLine);
  text += "\n";
  text += manifest.made ? kMade : kMaking;
  text += "\n" + std::string(kChoices) + std::to_string(manifest.choices) + "\n";
  for (const auto& [path, entry] : manifest.files) {
    text += Hex(entry.source) + " " +
            (entry.written.has_value() ? Hex(*entry.written) : std::string(kOwn)) + " " + path +
            "\n";
  }
  text += std::string(kSum) + Hex(ChecksumOf(text)) + "\n";
  return SaveFile((directory + "/" + kManifestFile).c_str(), std::as_bytes(std::span(text)));
}

}  // namespace gromlit
