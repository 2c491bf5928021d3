// Symbol and options files of strangers, under any names: listed, drawn, matched, stored under
// other names, removed and read again.
//
// Whatever lies there: records are within their limits, a save touches the file of its name alone,
// leaves no temporary and reads back the same, and nothing beside the directory changes.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/choices.h"
#include "core/option_files.h"
#include "core/record_codec.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "fuzz/fake_server.h"
#include "fuzz/fake_system.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "recognition/shape_match.h"
#include "recognition/signature_match.h"

namespace gromlit::fuzz {
namespace {

// A file behind its header: whatever the fuzzer has, the rest zero; sometimes cut or too long.
std::string MakeImage(FuzzedDataProvider* data, const char* header, size_t size) {
  std::string file = data->ConsumeBool() ? header : data->ConsumeRandomLengthString(13);
  file += data->ConsumeRandomLengthString(size);
  file.resize(13 + size, data->ConsumeBool() ? '\0' : '\xff');
  if (data->ConsumeBool())
    file.resize(data->ConsumeIntegralInRange<size_t>(0, 2 * file.size()), 'x');
  return file;
}

std::string MakeSymbolFile(FuzzedDataProvider* data) {
  if (data->ConsumeBool()) return MakeImage(data, "GromlitSymbol", kSymbolImageSize);
  GromlitSymbol sym{};
  FillSymbol(data, &sym);
  std::array<std::byte, kHeaderSize + kSymbolImageSize> file;
  PutHeader(file, "GromlitSymbol");
  EncodeSymbol(sym, std::span(file).subspan(kHeaderSize));
  return {reinterpret_cast<const char*>(file.data()), file.size()};
}

std::string MakeName(FuzzedDataProvider* data, const char* instead) {
  std::string name = AnyText(data, 255);
  std::erase(name, '/');
  return name.empty() || name == "." || name == ".." ? instead : name;
}

void FillDirectory(FuzzedDataProvider* data, const std::string& home) {
  for (int n = data->ConsumeIntegralInRange(0, 6); n > 0; n--) {
    const std::string path = home + "/symbols/" + MakeName(data, "L.sls");
    switch (data->ConsumeIntegralInRange(0, 9)) {
      case 0:
        mkdir(path.c_str(), 0700);
        break;
      case 1:
        mkfifo(path.c_str(), 0600);
        break;
      default:
        PutFile(path, MakeSymbolFile(data));
    }
  }
  if (data->ConsumeBool())
    PutFile(home + "/options/default.user", MakeImage(data, "GromlitOption", kOptionsImageSize));
}

// Nothing but the file of this name has changed.
void CheckOthers(const Files& before, const Files& after, const std::string& name) {
  for (const auto& [other, bytes] : before) {
    const auto now = after.find(other);
    Require(other == name || (now != after.end() && now->second == bytes));
  }
  for (const auto& [other, bytes] : after) Require(other == name || before.contains(other));
}

void UseSymbol(GromlitSymbol* sym, const Stroke& stroke) {
  CheckSymbol(*sym);
  DrawSymbol(*sym);
  const char* signature = SymbolSignature(sym);
  Require(std::strspn(signature, "abcd-") == std::strlen(signature));
  if (*signature != '\0') Require(SymbolMatch(sym, signature) == 1);
  const Shape drawn = ShapeOfPoints(stroke.count, stroke.x, stroke.y);
  const float score = ShapeScore(drawn, *SymbolShape(sym));
  Require(score >= -1 && score <= 1.001F);
  // What replaces it in the list leaves the record to itself.
  ReleaseFeatures(sym);
}

void Store(FuzzedDataProvider* data, const std::string& home) {
  GromlitSymbol working{};
  FillSymbol(data, &working);
  const std::string name = MakeName(data, "New");
  const Files before = FilesBelow(home);
  // Some are saved in place.
  const TemporariesRefused refused(name.size() % 4 == 3);
  if (StoreSymbol(&working, name.c_str()) == 0) {
    Require(FilesBelow(home) == before);
    return;
  }
  const std::string file = "symbols/" + std::string(working.name) + ".sls";
  CheckOthers(before, FilesBelow(home), file);
  auto* again = LoadSymbol(working.name, ".sls");
  Require(again != nullptr);
  std::array<std::byte, kSymbolImageSize> once;
  std::array<std::byte, kSymbolImageSize> twice;
  EncodeSymbol(working, once);
  EncodeSymbol(*again, twice);
  Require(once == twice);
  delete again;
}

void CheckOptions(FuzzedDataProvider* data, const std::string& home) {
  GromlitUserOptions* options = GetUserOptions();
  Require(options->urlcmd[kUrlCmdSize - 1] == '\0' && options->sndcmd[kTextSize - 1] == '\0');
  Require(EffectiveButton(options) >= 1 && EffectiveButton(options) <= 5);
  DeliveryOf(options);
  MatchingWayOf(options);
  MannersOf(options);
  for (const Choice& choice : Choices()) {
    const bool on = data->ConsumeBool();
    TurnChoice(options, choice, on);
    Require(IsOn(*options, choice) == on);
  }
  if (data->ConsumeBool()) ChooseRecommended(options);
  const Files before = FilesBelow(home);
  Require(SaveUserOptions(options, defaultOptionFile) == 1);
  CheckOthers(before, FilesBelow(home), "options/default.user");
  GromlitUserOptions* again = LoadUserOptions(defaultOptionFile);
  Require(again != nullptr);
  std::array<std::byte, kOptionsImageSize> once;
  std::array<std::byte, kOptionsImageSize> twice;
  EncodeOptions(*options, once);
  EncodeOptions(*again, twice);
  Require(once == twice);
  delete again;
  delete options;
  user = nullptr;
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  const std::string& home = FreshInstallation();
  FillDirectory(data, home);
  const Files before = FilesBelow(home);
  LoadSymbols();
  const Stroke stroke = MakeAnyStroke(data);
  for (auto* node = allSymbols; node->sym != nullptr; node = node->next)
    UseSymbol(node->sym, stroke);
  Require(FilesBelow(home) == before);
  for (int n = data->ConsumeIntegralInRange(0, 4); n > 0; n--) Store(data, home);
  int count = 0;
  GromlitSymbol** sorted = UpdateSymbols(&count);
  for (int i = 1; i < count; i++)
    Require(FieldText(sorted[i - 1]->name) <= FieldText(sorted[i]->name));
  if (count > 0 && data->ConsumeBool()) {
    GromlitSymbol* gone = sorted[data->ConsumeIntegralInRange(0, count - 1)];
    auto* node = allSymbols;
    while (node->sym != gone) node = node->next;
    char* filename = node->filename;
    const std::string file = "symbols/" + std::string(FieldText(gone->name)) + ".sls";
    const Files there = FilesBelow(home);
    if (DropSymbol(gone, gone->name) != 0) {
      CheckOthers(there, FilesBelow(home), file);
      ReleaseFeatures(gone);
      delete gone;
      std::free(filename);
    }
  }
  delete[] sorted;
  CheckOptions(data, home);
  ReleaseLists();
  CheckOutside();
}

}  // namespace gromlit::fuzz
