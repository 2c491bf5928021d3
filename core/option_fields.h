// The fields of the options: the one table of their places, names, kinds, meanings and defaults.
// The options file, the tool's documents and the defaults are made from it. A further field is a
// row here, a member of the record and whatever shows it.
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
  size_t member;        // offset in GromlitUserOptions
  const char* meaning;  // for docs/file-formats.md; its named values: core/value_names.h
  OptionDefault fallback = {};
};

inline constexpr const char* defaultURLcmd = "netscape %s";
inline constexpr const char* defaultSoundcmd = "play %s";

// In the order of the file.
#define GROMLIT_OPTION(offset, name, kind)                             \
  {offset, sizeof(GromlitUserOptions::name)}, #name, OptionKind::kind, \
      offsetof(GromlitUserOptions, name)
inline constexpr OptionField kOptionFields[] = {
    {GROMLIT_OPTION(0, button, kNumber),
     "mouse button that draws, 1..5; any other value acts as 3",
     {true, 3}},
    {GROMLIT_OPTION(4, sensitivity, kNumber),
     "pixels that a press must move to be a stroke",
     {true, 4}},
    {GROMLIT_OPTION(8, tolerance, kNumber),
     "how near is near enough by shape, 1 very low .. 5 very high",
     {true, 3}},
    {GROMLIT_OPTION(12, splash, kNumber), "not 0: a window at the start", {true, 1}},
    {GROMLIT_OPTION(16, showactions, kNumber),
     "not 0: the actions are shown while drawing",
     {true, 1}},
    {GROMLIT_OPTION(20, temp1, kNumber), "how keys and clicks reach an application"},
    {GROMLIT_OPTION(24, temp2, kNumber), "behaviour"},
    {GROMLIT_OPTION(28, temp3, kNumber), "how a stroke is compared with symbols"},
    {GROMLIT_OPTION(32, temp4, kNumber), "how windows answer to hands"},
    {GROMLIT_OPTION(36, urlcmd, kText),
     "command line that opens an address, which is put in the place of its first `%s`",
     {true, 0, defaultURLcmd}},
    {GROMLIT_OPTION(164, sndcmd, kText), "the same for a sound file", {true, 0, defaultSoundcmd}},
    {GROMLIT_OPTION(228, charspare2, kRaw), "reserved, kept"},
};
#undef GROMLIT_OPTION

// Every byte of the image belongs to one field that says what it holds, and numbers are numbers.
constexpr bool OptionFieldsFit() {
  size_t end = 0;
  for (const OptionField& field : kOptionFields) {
    if (field.at.offset != end || *field.meaning == '\0') return false;
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
