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
#include "tools/check.h"
#include "tools/data_file.h"
#include "tools/output_file.h"
#include "tools/recognition_calls.h"
#include "tools/record_json.h"
#include "tools/text_input.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

// --- The calls ----------------------------------------------------------------------------------

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

int Check(const std::string& dir, bool shape, int32_t tolerance) {
  struct stat info;
  if (stat(dir.c_str(), &info) != 0) return Complain(dir, std::strerror(errno));
  if (!S_ISDIR(info.st_mode)) return Complain(dir, std::strerror(ENOTDIR));
  const std::vector<std::string> problems = CheckInstallation(dir, {shape, tolerance});
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

  const char* const stroke_help = "One \"x y\" pair per line; standard input when absent or -";
  const char* const tolerance_help = "How near is near enough: 1 very low .. 5 very high";
  std::string plugin;
  int32_t tolerance = 3;
  bool shape = false;
  bool each = false;
  CLI::App* match = app.add_subcommand("match", "Print which action of a plug-in a stroke runs");
  match->add_option("PLUGIN", plugin, "The plug-in file")->required();
  match->add_option("STROKE", stroke, stroke_help);
  CLI::Option* shape_option = match->add_flag("--shape", shape, "Match by shape, not by signature");
  match->add_option("--tolerance", tolerance, tolerance_help)
      ->check(CLI::Range(1, 5))
      ->needs(shape_option);
  match->add_flag("--each", each,
                  "Several strokes, separated by empty lines: a line of answer each, - for none");
  match->callback([&] {
    status = MatchStrokes(plugin, stroke, {shape ? kByShape : kBySignature, tolerance}, each);
  });

  CLI::App* explain = app.add_subcommand("explain", "Print why each action runs or not");
  explain->add_option("PLUGIN", plugin, "The plug-in file")->required();
  explain->add_option("STROKE", stroke, stroke_help);
  explain->add_option("--tolerance", tolerance, tolerance_help)->check(CLI::Range(1, 5));
  explain->callback([&] { status = ExplainStroke(plugin, stroke, tolerance); });

  std::string name;
  std::vector<std::string> strokes;
  CLI::App* learn = app.add_subcommand("learn", "Make a symbol from drawn strokes");
  learn->add_option("--name", name, "Name of the symbol")->required()->check([](const auto& text) {
    return text.empty() ? std::string("a name is needed") : std::string();
  });
  learn->add_option("-o,--output", output, "File to write")->required();
  learn
      ->add_option("STROKE", strokes,
                   "Strokes as for match, several in a file separated by empty lines")
      ->required();
  learn->callback([&] { status = LearnSymbol(name, output, strokes); });

  std::string log;
  int last = -1;
  CLI::App* logged = app.add_subcommand("strokes", "Print the strokes of a log with points");
  logged->add_option("LOG", log, "The log; - reads standard input")->required();
  logged->add_option("-n", last, "Only the last so many; all when absent")
      ->check(CLI::NonNegativeNumber);
  logged->callback([&] { status = PrintLoggedStrokes(log, last); });

  std::string dir;
  CLI::App* check = app.add_subcommand("check", "List the problems of an installation directory");
  check->add_option("DIR", dir, "The installation directory")->required();
  CLI::Option* pairs = check->add_flag(
      "--shape", shape, "Name pairs of actions that matching by shape can hardly keep apart, too");
  CLI::Option* given = check->add_option("--tolerance", tolerance, tolerance_help)
                           ->check(CLI::Range(1, 5))
                           ->needs(pairs);
  check->callback([&, given] {
    status = Check(dir, shape, given->count() != 0 ? tolerance : kOptionsTolerance);
  });

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
