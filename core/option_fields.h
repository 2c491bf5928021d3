// The fields of the options: the one table of their places, names, kinds and defaults. The options
// file, the tool's documents and the defaults are made from it. A further field is a row here, a
// member of the record and whatever shows it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/bytes.h"
#include "core/gromlit.h"
#include "core/record_layout.h"

namespace gromlit {

enum class OptionKind {
  kNumber,  // int32_t, little-endian in the file
  kText,    // NUL-terminated within its field
  kRaw,     // bytes that pass through whole
};

// What DefaultUserOptions stores. A reserved field has no default: it stays as it is.
struct OptionDefault {
  bool given = false;
  int32_t number = 0;
  const char* text = "";
};

struct OptionField {
  Field at;          // in the stored image
  const char* name;  // as in the record and in documents
  OptionKind kind;
  size_t member;  // offset in GromlitUserOptions
  OptionDefault fallback = {};
};

inline constexpr const char* defaultURLcmd = "netscape %s";
inline constexpr const char* defaultSoundcmd = "play %s";

// In the order of the file.
#define GROMLIT_OPTION(offset, name, kind)                             \
  {offset, sizeof(GromlitUserOptions::name)}, #name, OptionKind::kind, \
      offsetof(GromlitUserOptions, name)
inline constexpr OptionField kOptionFields[] = {
    {GROMLIT_OPTION(0, button, kNumber), {true, 3}},
    {GROMLIT_OPTION(4, sensitivity, kNumber), {true, 4}},
    {GROMLIT_OPTION(8, tolerance, kNumber), {true, 3}},
    {GROMLIT_OPTION(12, splash, kNumber), {true, 1}},
    {GROMLIT_OPTION(16, showactions, kNumber), {true, 1}},
    {GROMLIT_OPTION(20, temp1, kNumber)},
    {GROMLIT_OPTION(24, temp2, kNumber)},
    {GROMLIT_OPTION(28, temp3, kNumber)},
    {GROMLIT_OPTION(32, temp4, kNumber)},
    {GROMLIT_OPTION(36, urlcmd, kText), {true, 0, defaultURLcmd}},
    {GROMLIT_OPTION(164, sndcmd, kText), {true, 0, defaultSoundcmd}},
    {GROMLIT_OPTION(228, charspare2, kRaw)},
};
#undef GROMLIT_OPTION

// Every byte of the image belongs to one field, and numbers are numbers.
constexpr bool OptionFieldsFit() {
  size_t end = 0;
  for (const OptionField& field : kOptionFields) {
    if (field.at.offset != end) return false;
    if (field.kind == OptionKind::kNumber && field.at.size != sizeof(int32_t)) return false;
    end = field.at.end();
  }
  return end == kOptionsImageSize;
}
static_assert(OptionFieldsFit());

// The member of a record. REQUIRES: the field is a number; is none, respectively.
int32_t& OptionNumber(GromlitUserOptions* options, const OptionField& field);
int32_t OptionNumber(const GromlitUserOptions& options, const OptionField& field);
std::span<char> OptionBytes(GromlitUserOptions* options, const OptionField& field);
std::span<const char> OptionBytes(const GromlitUserOptions& options, const OptionField& field);

}  // namespace gromlit
