#include "tools/file_calls.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "tools/check.h"
#include "tools/data_file.h"
#include "tools/output_file.h"
#include "tools/record_json.h"
#include "tools/text_input.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

void ReadDocument(const Json& document, DataFile* file) {
  const std::string kind = KindOf(document);
  if (kind == "symbol") {
    file->kind = Kind::kSymbol;
    ReadSymbolDocument(document, &file->symbol);
  } else if (kind == "plugin") {
    file->kind = Kind::kPlugin;
    ReadPluginDocument(document, &file->plugin);
  } else {
    file->kind = Kind::kOptions;
    ReadOptionsDocument(document, &file->options);
  }
}

}  // namespace

int ShowFiles(const std::vector<std::string>& paths) {
  int status = kSuccess;
  for (const std::string& path : paths) {
    DataFile file;
    std::string error;
    if (!ReadDataFile(path.c_str(), &file, &error)) {
      status = Complain(path, error);
      continue;
    }
    switch (file.kind) {
      case Kind::kSymbol:
        Write(PrintJson(SymbolDocument(file.symbol)));
        break;
      case Kind::kPlugin:
        Write(PrintJson(PluginDocument(file.plugin)));
        break;
      case Kind::kOptions:
        Write(PrintJson(OptionsDocument(file.options)));
        break;
    }
    if (WarnOfDamage(path, file) != kSuccess) status = kTrouble;
  }
  return status;
}

int PackDocument(const std::string& input, const std::string& output) {
  const std::string name = InputName(input);
  std::string text;
  std::string error;
  if (!ReadTextInput(input, kMaxDocument, &text, &error)) return Complain(name, error);
  DataFile file;
  try {
    ReadDocument(ParseJson(text), &file);
  } catch (const JsonError& e) {
    return Complain(name, e.what());
  }
  const std::vector<std::byte> image = FileImage(file);
  if (image.empty()) return Complain(name, "the file would be larger than 64 MB");
  if (!WriteOutputFile(output, image)) return Complain(output, std::strerror(errno));
  return kSuccess;
}

int CheckDirectory(const std::string& dir, bool shape, int32_t tolerance) {
  struct stat info;
  if (stat(dir.c_str(), &info) != 0) return Complain(dir, std::strerror(errno));
  if (!S_ISDIR(info.st_mode)) return Complain(dir, std::strerror(ENOTDIR));
  const std::vector<std::string> problems = CheckInstallation(dir, {shape, tolerance});
  for (const std::string& line : problems) Write(line + "\n");
  return problems.empty() ? kSuccess : kNegative;
}

}  // namespace gromlit
