// Documents of strangers, as people exchange them: a text that is taken at all gives records within
// their limits, and written, read and written again it is the same. What packs also imports, into a
// directory that is sound afterwards, and a refused document changes nothing.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "tools/check.h"
#include "tools/collection.h"
#include "tools/file_calls.h"
#include "tools/picture_calls.h"
#include "tools/record_json.h"
#include "tools/sharing_calls.h"
#include "tools/tool_io.h"

namespace gromlit::fuzz {
namespace {

void CheckFile(const DataFile& file) {
  if (file.kind == Kind::kSymbol) CheckSymbol(file.symbol);
  if (file.kind == Kind::kPlugin) CheckPlugin(file.plugin);
  const std::vector<std::byte> image = FileImage(file);
  Require(!image.empty());
  PutFile("one", {reinterpret_cast<const char*>(image.data()), image.size()});
  DataFile again;
  std::string error;
  Require(ReadDataFile("one", &again, &error));
  Require(again.kind == file.kind && again.damage.empty() && !again.unusable);
  Require(FileImage(again) == image);
}

// Whether the text is a document.
bool CheckCollection(const std::string& text) {
  Collection collection;
  std::string once;
  try {
    ReadCollection(text, &collection);
    once = CollectionText(collection);
  } catch (const JsonError& error) {
    Require(*error.what() != '\0');
    return false;
  }
  for (const auto& file : collection.symbols) CheckFile(*file);
  for (const auto& file : collection.plugins) CheckFile(*file);
  if (collection.options != nullptr) CheckFile(*collection.options);
  Collection again;
  ReadCollection(once, &again);
  Require(CollectionText(again) == once);
  return true;
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  const std::string& home = FreshInstallation();
  const auto existing =
      data->PickValueInArray({Existing::kKeep, Existing::kMerge, Existing::kReplace});
  const bool twice = data->ConsumeBool();
  const int paper = data->ConsumeIntegralInRange(0, 3);
  const std::string second = data->ConsumeRandomLengthString(1000);
  const std::string text = data->ConsumeRemainingBytesAsString();
  if (text.find('\0') == text.npos) CheckCollection(text);
  PutFile("document", text);
  const int packed = PackDocument("document", "packed");
  if (packed == kSuccess) {
    Require(ShowFiles({"packed"}) == kSuccess);
    DrawIcon("packed", "icon.svg");
    DrawIcon("packed", "icon.png");
  }
  const Files before = FilesBelow(home);
  Require(ImportFiles("document", home, existing, true) == kTrouble || FilesBelow(home) == before);
  const int imported = ImportFiles("document", home, existing, false);
  if (imported != kSuccess) {
    Require(FilesBelow(home) == before);
  } else if (twice) {
    PutFile("second", second);
    ImportFiles("second", home, existing, false);
    // All of the first again: with what is kept there is nothing to do.
    const Files after = FilesBelow(home);
    ImportFiles("document", home, Existing::kKeep, false);
    Require(FilesBelow(home) == after);
  }
  for (const auto& [name, bytes] : FilesBelow(home)) Require(!name.starts_with(".gromlit-save-"));
  CheckInstallation(home, {.on = true});
  if (imported == kSuccess) {
    Require(ExportFiles({home}, "exported") == kSuccess);
    Require(CheckCollection(FileBytes("exported")));
    MakeSheet(home, "sheet.html", {});
    MakeSheet(home, "sheet.svg", {.paper = paper});
  }
  CheckOutside();
}

}  // namespace gromlit::fuzz
