// gromlit-tool: the data files and the recognition from the command line, without a display.
#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "core/printable.h"
#include "core/strings.h"
#include "recognition/find_action.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"
#include "tools/check.h"
#include "tools/data_file.h"
#include "tools/output_file.h"
#include "tools/record_json.h"
#include "tools/stroke_input.h"
#include "tools/text_input.h"

namespace gromlit {
namespace {

// Exit statuses.
constexpr int kSuccess = 0;
constexpr int kNegative = 1;  // no action matches; problems were found
constexpr int kTrouble = 2;   // wrong usage, input that cannot be read, output that fails

int Complain(const std::string& name, const std::string& what) {
  std::fprintf(stderr, "gromlit-tool: %s: %s\n", Printable(name).c_str(), Printable(what).c_str());
  return kTrouble;
}

// How messages call an input.
std::string InputName(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

void Write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

// --- The calls ----------------------------------------------------------------------------------

int WarnOfDamage(const std::string& path, const DataFile& file) {
  for (const std::string& damage : file.damage) Complain(path, damage);
  return file.damage.empty() ? kSuccess : kTrouble;
}

int Show(const std::vector<std::string>& paths) {
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

int Pack(const std::string& input, const std::string& output) {
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

// Reads a stroke; false after a message.
bool ReadStroke(const std::string& path, Stroke* stroke) {
  std::string text;
  std::string error;
  if (ReadTextInput(path, kMaxStrokeText, &text, &error) && ParseStroke(text, stroke, &error))
    return true;
  Complain(InputName(path), error);
  return false;
}

// Reads a file that the program would have to be able to use; false after a message.
bool ReadUsable(const std::string& path, Kind kind, const char* what, DataFile* file) {
  std::string error;
  if (!ReadDataFile(path.c_str(), file, &error)) {
    Complain(path, error);
    return false;
  }
  if (file->kind != kind) {
    Complain(path, what);
    return false;
  }
  WarnOfDamage(path, *file);
  return !file->unusable;
}

int SignatureOfSymbol(const std::string& path) {
  DataFile file;
  if (!ReadUsable(path, Kind::kSymbol, "no symbol file", &file)) return kTrouble;
  Write(std::string(SymbolSignature(&file.symbol)) + "\n");
  return file.damage.empty() ? kSuccess : kTrouble;
}

int SignatureOfStroke(const std::string& path) {
  Stroke stroke;
  if (!ReadStroke(path, &stroke)) return kTrouble;
  char letters[kDrawnSignatureSize];
  StrokeSignature(letters, stroke.count, stroke.x, stroke.y);
  Write(std::string(letters) + "\n");
  return kSuccess;
}

int Match(const std::string& plugin, const std::string& path) {
  DataFile file;
  if (!ReadUsable(plugin, Kind::kPlugin, "no plug-in file", &file)) return kTrouble;
  Stroke stroke;
  if (!ReadStroke(path, &stroke)) return kTrouble;
  const int index = FindAction(&file.plugin, stroke, {kBySignature, 0});
  if (index >= 0) {
    const std::string_view name = FieldText(file.plugin.actions[index]->name);
    Write(std::to_string(index) + "\t" + Printable(name) + "\n");
  }
  if (!file.damage.empty()) return kTrouble;
  return index >= 0 ? kSuccess : kNegative;
}

int Check(const std::string& dir) {
  struct stat info;
  if (stat(dir.c_str(), &info) != 0) return Complain(dir, std::strerror(errno));
  if (!S_ISDIR(info.st_mode)) return Complain(dir, std::strerror(ENOTDIR));
  const std::vector<std::string> problems = CheckInstallation(dir);
  for (const std::string& line : problems) Write(line + "\n");
  return problems.empty() ? kSuccess : kNegative;
}

int Main(int argc, char** argv) {
  CLI::App app{"The data files and the stroke recognition of Gromlit from the command line.",
               "gromlit-tool"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "gromlit-tool " GROMLIT_VERSION);
  app.footer(
      "Status: 0 success; 1 no action matches, or problems were found;\n"
      "2 wrong usage, unreadable or damaged input.");
  int status = kSuccess;

  std::vector<std::string> files;
  CLI::App* show = app.add_subcommand("show", "Print symbol, plug-in or options files as JSON");
  show->add_option("FILE", files, "Files to print")->required();
  show->callback([&] { status = Show(files); });

  std::string document;
  std::string output;
  CLI::App* pack = app.add_subcommand("pack", "Make a data file from a JSON document");
  pack->add_option("JSON", document, "The document; - reads standard input")->required();
  pack->add_option("-o,--output", output, "File to write")->required();
  pack->callback([&] { status = Pack(document, output); });

  std::string symbol;
  std::string stroke = "-";
  CLI::App* signature = app.add_subcommand("signature", "Print the signature of a stroke");
  CLI::Option* stroke_option = signature->add_option(
      "STROKE", stroke, "One \"x y\" pair per line; standard input when absent or -");
  signature->add_option("--symbol", symbol, "Print the signature of this symbol file instead")
      ->excludes(stroke_option);
  signature->callback([&] {
    status =
        signature->count("--symbol") != 0 ? SignatureOfSymbol(symbol) : SignatureOfStroke(stroke);
  });

  std::string plugin;
  CLI::App* match = app.add_subcommand("match", "Print which action of a plug-in a stroke runs");
  match->add_option("PLUGIN", plugin, "The plug-in file")->required();
  match->add_option("STROKE", stroke, "One \"x y\" pair per line; standard input when absent or -");
  match->callback([&] { status = Match(plugin, stroke); });

  std::string dir;
  CLI::App* check = app.add_subcommand("check", "List the problems of an installation directory");
  check->add_option("DIR", dir, "The installation directory")->required();
  check->callback([&] { status = Check(dir); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // Its own statuses tell the kinds of wrong usage apart; here they are one. Help is no error.
    std::ostringstream out;
    std::ostringstream err;
    const bool wrong = app.exit(e, out, err) != 0;
    Write(out.str());
    // The words of the command line are in it.
    std::istringstream lines(err.str());
    for (std::string line; std::getline(lines, line);)
      std::fprintf(stderr, "%s\n", Printable(line).c_str());
    if (wrong) return kTrouble;
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    return Complain("standard output", std::strerror(errno));
  return status;
}

}  // namespace
}  // namespace gromlit

int main(int argc, char** argv) {
  // A limit on the size of files is then the error of one write, which takes its temporary away.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return gromlit::Main(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fputs("gromlit-tool: out of memory\n", stderr);
    return 2;
  }
}
