#include "core/symbol_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "core/directory_files.h"
#include "core/files.h"
#include "core/record_codec.h"
#include "core/report.h"
#include "core/retired.h"
#include "core/strings.h"

namespace gromlit {

GromlitSymbolList* allSymbols = nullptr;

namespace {

constexpr size_t kFileSize = kHeaderSize + kSymbolImageSize;

static_assert(std::string_view(GromlitSymbolFileHeaderString).size() == kHeaderSize);
static_assert(kFileSize == 441);

std::string SymbolPath(const char* fname, const char* ext) {
  return DataPath(symbolDirectory, fname) + ext;
}

// A list that was never loaded is an empty one.
void EnsureList() {
  if (allSymbols == nullptr) allSymbols = new GromlitSymbolList();
}

// The symbol in a file's bytes; null when they are none.
GromlitSymbol* NewSymbol(std::span<const std::byte> file) {
  if (file.size() < kFileSize || !HasHeader(file, GromlitSymbolFileHeaderString)) return nullptr;
  auto* sym = new GromlitSymbol();
  DecodeSymbol(std::span(file).subspan(kHeaderSize), sym);
  return sym;
}

}  // namespace

GromlitSymbol* LoadSymbol(const char* fname, const char* ext) {
  std::vector<std::byte> file;
  if (!ReadFile(SymbolPath(fname, ext).c_str(), kFileSize, &file)) return nullptr;
  return NewSymbol(file);
}

GromlitSymbol* UnLoadSymbol(GromlitSymbol* sym, const char* fname, const char* ext) {
  std::array<std::byte, kFileSize> file;
  PutHeader(file, GromlitSymbolFileHeaderString);
  EncodeSymbol(*sym, std::span(file).subspan(kHeaderSize));
  if (SaveFile(SymbolPath(fname, ext).c_str(), file)) return sym;
  ReportSystemError("Save Symbol");
  return nullptr;
}

int LoadSymbols() {
  Retire(allSymbols);
  allSymbols = new GromlitSymbolList();
  DirectoryFiles files(std::string(GromlitPath) + "/" + symbolDirectory);
  std::array<std::byte, kFileSize> file;
  int count = 0;
  GromlitSymbolList* sentinel = allSymbols;
  while (const char* name = files.Next()) {
    GromlitSymbol* sym = NewSymbol(files.Read(file));
    if (sym == nullptr) continue;
    count++;
    sentinel->filename = StrDup(name);
    sentinel->sym = sym;
    sentinel->next = new GromlitSymbolList();
    sentinel = sentinel->next;
  }
  return count;
}

GromlitSymbol** UpdateSymbols(int* n) {
  *n = 0;
  EnsureList();
  for (const auto* node = allSymbols; node->sym != nullptr; node = node->next) ++*n;
  auto** sorted = new GromlitSymbol*[static_cast<size_t>(*n)];
  GromlitSymbol** slot = sorted;
  for (const auto* node = allSymbols; node->sym != nullptr; node = node->next) *slot++ = node->sym;
  SortSymNames(sorted, *n);
  return sorted;
}

void SortSymNames(GromlitSymbol** names, int n) {
  std::sort(names, names + n, [](const GromlitSymbol* a, const GromlitSymbol* b) {
    return FieldText(a->name) < FieldText(b->name);
  });
}

int StoreSymbol(GromlitSymbol* working, const char* name) {
  CopyText(working->name, name);
  if (UnLoadSymbol(working, working->name, GromlitSymbolFileExt) == nullptr) return 0;
  GromlitSymbol* stored = LoadSymbol(working->name, GromlitSymbolFileExt);
  if (stored == nullptr) {
    // Gone again already. A node without a record would end the list there and hide every symbol
    // behind it, so the list gets what was written.
    stored = new GromlitSymbol(*working);
    DisownFeatures(stored);
  }
  EnsureList();
  for (auto* node = allSymbols; node->sym != nullptr; node = node->next) {
    if (FieldText(node->sym->name) != FieldText(working->name)) continue;
    Retire(node->sym);
    node->sym = stored;
    return 1;
  }
  allSymbols = new GromlitSymbolList{StrDup(working->name), stored, allSymbols};
  return 1;
}

int DropSymbol(const GromlitSymbol* sym, const char* fname) {
  // Relative to the working directory, unlike every other path: what starts the program changes to
  // the installation directory first.
  const std::string path = std::string(symbolDirectory) + "/" + fname + GromlitSymbolFileExt;
  if (!RemoveFile(path.c_str())) {
    ReportSystemError("Remove Symbol");
    return 0;
  }
  EnsureList();
  for (GromlitSymbolList** link = &allSymbols; (*link)->sym != nullptr; link = &(*link)->next) {
    if ((*link)->sym != sym) continue;
    Retire(*link);
    *link = (*link)->next;
    break;
  }
  return 1;
}

}  // namespace gromlit
