#include "tools/file_formats.h"

#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>

#include "core/command_types.h"
#include "core/option_fields.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/plugin_image.h"
#include "core/record_layout.h"
#include "core/symbol_files.h"
#include "core/value_names.h"
#include "recognition/stroke_log.h"

namespace gromlit {
namespace {

// What a field is made of: its name in the tables and its size in bytes.
struct Type {
  std::string_view name;
  size_t size;
};
constexpr Type kText{"text", 1};
constexpr Type kBytes{"bytes", 1};
constexpr Type kGap{"gap", 1};
constexpr Type kSlot{"slot", 4};
constexpr Type kU8{"u8", 1};
constexpr Type kU16{"u16", 2};
constexpr Type kU32{"u32", 4};
constexpr Type kI32{"i32", 4};

struct Row {
  Field at;
  std::string_view name;
  Type type;
  std::string_view meaning;
};

constexpr Row kSymbolRows[] = {
    {symbol_layout::kName, "name", kText, "also the name of its file"},
    {symbol_layout::kNpoints, "npoints", kU8, "corner points, 0..64; more is read as 64"},
    {symbol_layout::kGap, "", kGap, ""},
    {symbol_layout::kX, "x", kU16,
     "x of each point, the first one at index 1; index 0 is no point. Editor pixels: multiples of "
     "8 "
     "from 16 to 264"},
    {symbol_layout::kY, "y", kU16,
     "y of each point, downwards, numbered alike. Index 0 is the x of point 64 while there are 64 "
     "points"},
    {symbol_layout::kY64, "y[64]", kU16, "y of point 64 while there are 64 points, else a gap"},
    {symbol_layout::kIcon, "icon", kU32, "a row of the icon each, top first; bit c is column c"},
    {symbol_layout::kSpare, "spare", kU32, "reserved, kept"},
    {symbol_layout::kSignatureSlot, "", kSlot, ""},
};

constexpr Row kCommandRows[] = {
    {cmd_layout::kType, "type", kU8, "see below; any other value does nothing and is kept"},
    {cmd_layout::kNkeys, "nkeys", kU8, "key pairs in use; at most 8 are sent"},
    {cmd_layout::kKeycode, "keycode", kU16, "X key code of each key"},
    {cmd_layout::kKeystate, "keystate", kU16, "X modifier state of each key"},
    {cmd_layout::kButtons, "buttons", kU8, "reserved, kept"},
    {cmd_layout::kFlag, "flag", kU8, "reserved, kept"},
    {cmd_layout::kChecked, "checked", kU8, "the check box of the command's type"},
    {cmd_layout::kGap, "", kGap, ""},
    {cmd_layout::kSpare, "spare", kI32, "reserved, kept"},
    {cmd_layout::kNtext, "ntext", kU32,
     "bytes of text that follow this record, without a NUL behind them"},
    {cmd_layout::kTextSlot, "", kSlot, ""},
};

constexpr Row kActionRows[] = {
    {action_layout::kSym, "sym", kBytes, "the action's symbol, a record as in a symbol file"},
    {action_layout::kName, "name", kText, "what the user sees"},
    {action_layout::kSpare, "spare", kI32, "reserved, kept"},
    {action_layout::kNcmds, "ncmds", kU32, "commands that follow this record, 0..128"},
    {action_layout::kCmdSlots, "", kSlot, ""},
};

constexpr Row kPluginRows[] = {
    {plugin_layout::kAppname, "appname", kText, "what the user sees"},
    {plugin_layout::kClassname, "classname", kText, "class text of the windows that it serves"},
    {plugin_layout::kSpare3, "spare3", kI32, "reserved, kept"},
    {plugin_layout::kSpare4, "spare4", kI32, "reserved, kept"},
    {plugin_layout::kSpare1, "spare1", kU8, "how this application is treated"},
    {plugin_layout::kSpare2, "spare2", kU8, "reserved, kept"},
    {plugin_layout::kChars1, "chars1", kBytes, "reserved, kept"},
    {plugin_layout::kChars2, "chars2", kBytes, "reserved, kept"},
    {plugin_layout::kChars3, "chars3", kBytes, "reserved, kept"},
    {plugin_layout::kChars4, "chars4", kBytes, "reserved, kept"},
    {plugin_layout::kChars5, "chars5", kBytes, "reserved, kept"},
    {plugin_layout::kChars6, "chars6", kBytes, "reserved, kept"},
    {plugin_layout::kChars7, "chars7", kBytes, "reserved, kept"},
    {plugin_layout::kChars8, "chars8", kBytes, "reserved, kept"},
    {plugin_layout::kNactions, "nactions", kU8, "actions that follow this record, 0..128"},
    {plugin_layout::kGap, "", kGap, ""},
    {plugin_layout::kActionSlots, "", kSlot, ""},
};

// What a name stands for, where that is not in the table of the options itself.
struct Meaning {
  std::string_view name;
  std::string_view meaning;
};

constexpr Meaning kLogMeanings[] = {
    {"time", "UTC, such as `2026-01-31T12:00:00.007Z`"},
    {"class", "class text of the window"},
    {"signature", "of the stroke"},
    {"way", "how it was compared: `signature` or `shape`"},
    {"action", "the action that ran, or `none`"},
    {"score", "by shape, of the action that is most alike, 1 for the same; empty without one"},
    {"runnerup", "the same of the next one"},
    {"microseconds", "from the release of the button to the start of the action"},
    {"points", "`x y x y ...` in pixels of the screen; empty unless points are asked for"},
};

constexpr std::string_view MeaningOf(std::span<const Meaning> meanings, std::string_view name) {
  for (const Meaning& row : meanings)
    if (row.name == name) return row.meaning;
  return "";
}

// --- What is wrong with a table does not compile
// ---------------------------------------------------

// Every byte of the record belongs to one row, and whole values fill each.
constexpr bool Covers(std::span<const Row> rows, size_t size) {
  size_t end = 0;
  for (const Row& row : rows) {
    if (row.at.offset != end || row.at.size % row.type.size != 0) return false;
    end = row.at.end();
  }
  return end == size;
}
static_assert(Covers(kSymbolRows, kSymbolImageSize));
static_assert(Covers(kCommandRows, kCmdImageSize));
static_assert(Covers(kActionRows, kActionImageSize));
static_assert(Covers(kPluginRows, kPluginImageSize));
static_assert(symbol_layout::kX64.offset == symbol_layout::kY.offset);

template <typename Named, typename NameOf>
constexpr bool AllExplained(const Named& rows, std::span<const Meaning> meanings, NameOf name) {
  for (const auto& row : rows)
    if (MeaningOf(meanings, name(row)).empty()) return false;
  return std::size(rows) == meanings.size();
}
static_assert(AllExplained(kStrokeLogColumns, kLogMeanings,
                           [](const char* name) { return std::string_view(name); }));

// --- The text
// -------------------------------------------------------------------------------------

std::string TypeText(const Row& row) {
  const std::string name(row.type.name);
  const size_t count = row.at.size / row.type.size;
  return count == 1 ? name : name + "[" + std::to_string(count) + "]";
}

std::string Code(std::string_view text) {
  return text.empty() ? "" : "`" + std::string(text) + "`";
}

// The named values of a field, for the end of its meaning.
std::string ValuesText(std::string_view field) {
  std::string text;
  for (const ValueName& value : kValueNames) {
    if (value.field != field) continue;
    text +=
        (text.empty() ? "" : ", ") + std::to_string(value.value) + " " + std::string(value.name);
  }
  return NamingOf(field) == Naming::kBits ? "bits " + text : text;
}

std::string Together(std::string_view meaning, const std::string& values) {
  return std::string(meaning) + (meaning.empty() || values.empty() ? "" : ": ") + values;
}

// A table of rows. With `in_file` a column tells where the field lies in a file whose first record
// this is.
std::string Table(std::span<const Row> rows, bool in_file) {
  std::string text = in_file ? "| in file | in record | bytes | field | type | holds |\n"
                               "|---|---|---|---|---|---|\n"
                             : "| in record | bytes | field | type | holds |\n"
                               "|---|---|---|---|---|\n";
  for (const Row& row : rows) {
    if (in_file) text += "| " + std::to_string(kHeaderSize + row.at.offset) + " ";
    text += "| " + std::to_string(row.at.offset) + " | " + std::to_string(row.at.size) + " | " +
            Code(row.name) + " | " + TypeText(row) + " | " +
            Together(row.meaning, ValuesText(row.name)) + " |\n";
  }
  return text;
}

std::string OptionsTable() {
  std::string text =
      "| in file | in record | bytes | field | type | default | holds |\n"
      "|---|---|---|---|---|---|---|\n";
  for (const OptionField& field : kOptionFields) {
    const bool number = field.kind == OptionKind::kNumber;
    const Row row = {field.at, field.name,
                     number                            ? kI32
                     : field.kind == OptionKind::kText ? kText
                                                       : kBytes,
                     ""};
    std::string fallback;
    if (field.fallback.given)
      fallback = number ? std::to_string(field.fallback.number) : Code(field.fallback.text);
    text += "| " + std::to_string(kHeaderSize + field.at.offset) + " | " +
            std::to_string(field.at.offset) + " | " + std::to_string(field.at.size) + " | " +
            Code(field.name) + " | " + TypeText(row) + " | " + fallback + " | " +
            Together(field.meaning, ValuesText(field.name)) + " |\n";
  }
  return text;
}

std::string CommandTypesTable() {
  std::string text = "| type | name | does |\n|---|---|---|\n";
  for (const CommandTypeInfo& type : kCommandTypes)
    text += "| " + std::to_string(type.type) + " | " + type.name + " | " + type.does + " |\n";
  return text;
}

std::string LogTable() {
  std::string text = "| column | name | holds |\n|---|---|---|\n";
  int column = 1;
  for (const char* name : kStrokeLogColumns)
    text += "| " + std::to_string(column++) + " | " + Code(name) + " | " +
            std::string(MeaningOf(kLogMeanings, name)) + " |\n";
  return text;
}

// A heading with the files that it is about.
std::string Heading(const char* title, const std::string& files) {
  return "\n## " + std::string(title) + "\n\n" + files;
}

std::string Header(std::string_view header, size_t size) {
  return "Header " + Code(header) + ", then one record of " + std::to_string(size) + " bytes";
}

}  // namespace

std::string FileFormats() {
  std::string text =
      "# File formats\n"
      "\n"
      "<!-- Made by \"gromlit-tool formats\" from the tables of the sources: not to be edited.\n"
      "     scripts/check-docs --renew makes it again. -->\n"
      "\n"
      "Symbols, plug-ins and options are records of fixed size behind a header of " +
      std::to_string(kHeaderSize) +
      " bytes, the\nheader's text without a NUL. Offsets count bytes from 0. Numbers are "
      "little-endian: `u8`, `u16` and\n`u32` without, `i32` with a sign. A `text` ends at its "
      "first "
      "NUL, at the latest at the last byte of its\nfield; names are UTF-8. `bytes` are kept whole. "
      "A "
      "`gap` and a `slot` hold nothing: they are ignored when\nread and zero when written, as are "
      "the "
      "bytes behind a text's NUL. Reserved fields are written back as\nthey were read.\n"
      "\n"
      "Nothing in a file is believed. A file that is too short for its first record, or has "
      "another "
      "header, is no\nfile at all; what lies behind the last record is ignored. `gromlit-tool "
      "show` "
      "prints a file, and `pack`\nmakes one.\n";

  text += Heading("Symbol: symbols/NAME", Header(GromlitSymbolFileHeaderString, kSymbolImageSize) +
                                              ".\nThe name ends in `" + GromlitSymbolFileExt +
                                              "`.\n\n") +
          Table(kSymbolRows, true);

  text +=
      Heading(
          "Plug-in: plugins/CLASS",
          Header(GromlitPluginFileHeaderString, kPluginImageSize) + ", then " + Code("nactions") +
              " times: an\naction's record and its commands, each a command's record and " +
              Code("ntext") + " bytes of text. At most\n" + std::to_string(kMaxPluginFile >> 20) +
              " MB are read. Of a file that ends early the complete actions are used. The "
              "name ends in `" +
              GromlitPluginFileExt + "`.\n\n") +
      Table(kPluginRows, true);
  text += "\n### Action: " + std::to_string(kActionImageSize) + " bytes\n\n" +
          Table(kActionRows, false);
  text += "\n### Command: " + std::to_string(kCmdImageSize) + " bytes, then its text\n\n" +
          Table(kCommandRows, false) + "\n" + CommandTypesTable();

  text +=
      Heading("Options: options/default.user",
              Header(GromlitOptionFileHeaderString, kOptionsImageSize) +
                  ".\nWithout the file the defaults hold; a field without one is 0 or empty, "
                  "and 0 is the\nbehaviour without a choice. Unknown values act as 0, unknown bits "
                  "do nothing, all are kept.\n\n") +
      OptionsTable();

  text +=
      Heading("Log of strokes: the file that GROMLIT_LOG names",
              "Text. The first line holds the names of the columns, each further line is a "
              "stroke. Tabs separate the\ncolumns; in them a control character and `\\` stand as "
              "`\\xNN`.\n\n") +
      LogTable();
  return text;
}

}  // namespace gromlit
