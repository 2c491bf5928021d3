// gromlit-tool: the data files and the recognition from the command line, without a display.
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
#include "tools/file_calls.h"
#include "tools/file_formats.h"
#include "tools/picture_calls.h"
#include "tools/recognition_calls.h"
#include "tools/sharing_calls.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

int Main(int argc, char** argv) {
  CLI::App app{"The data files and the stroke recognition of Gromlit from the command line.",
               "gromlit-tool"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "gromlit-tool " GROMLIT_VERSION);
  app.footer(
      "Status: 0 success; 1 no action matches, problems were found, something was left out;\n"
      "2 wrong usage, unreadable or damaged input.");
  int status = kSuccess;

  std::vector<std::string> files;
  CLI::App* show = app.add_subcommand("show", "Print symbol, plug-in or options files as JSON");
  show->add_option("FILE", files, "Files to print")->required();
  show->callback([&] { status = ShowFiles(files); });

  std::string document;
  std::string output;
  CLI::App* pack = app.add_subcommand("pack", "Make a data file from a JSON document");
  pack->add_option("JSON", document, "The document; - reads standard input")->required();
  pack->add_option("-o,--output", output, "File to write")->required();
  pack->callback([&] { status = PackDocument(document, output); });

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
  explain->add_option("STROKE", stroke,
                      "Strokes as for match --each; standard input when absent or -");
  explain->add_option("--tolerance", tolerance, tolerance_help)->check(CLI::Range(1, 5));
  explain->callback([&] { status = ExplainStrokes(plugin, stroke, tolerance); });

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
    status = CheckDirectory(dir, shape, given->count() != 0 ? tolerance : kOptionsTolerance);
  });

  CLI::App* exporting =
      app.add_subcommand("export", "Put symbols, plug-ins and options into one document");
  exporting
      ->add_option("DIR|FILE", files, "Installation directories (all that they hold) and files")
      ->required();
  exporting->add_option("-o,--output", output, "File to write; - is the standard output")
      ->required();
  exporting->callback([&] { status = ExportFiles(files, output); });

  Existing existing = Existing::kKeep;
  bool dry_run = false;
  CLI::App* importing =
      app.add_subcommand("import", "Put what a document holds into an installation directory");
  importing->add_option("JSON", document, "The document; - reads standard input")->required();
  importing->add_option("DIR", dir, "The installation directory")->required();
  importing->add_flag("--dry-run", dry_run, "Only say what would be done");
  CLI::Option* merge = importing->add_flag_callback(
      "--merge", [&] { existing = Existing::kMerge; },
      "Add to plug-ins that are there the actions that they do not have");
  importing
      ->add_flag_callback(
          "--replace", [&] { existing = Existing::kReplace; },
          "Replace what is there, options too; it goes to replaced/ in DIR")
      ->excludes(merge);
  importing->callback([&] { status = ImportFiles(document, dir, existing, dry_run); });

  CLI::App* icon = app.add_subcommand("icon", "Draw a symbol's icon or its stroke");
  icon->add_option("FILE", document, "The symbol file")->required();
  icon->add_option("-o,--output", output, "FILE.png: the icon; FILE.svg: the stroke")->required();
  icon->callback([&] { status = DrawIcon(document, output); });

  SheetForm form;
  CLI::App* sheet = app.add_subcommand("sheet", "Make a cheat sheet of all gestures");
  sheet->add_option("DIR", dir, "The installation directory")->required();
  sheet->add_option("-o,--output", output, "File to write: FILE.html or FILE.svg")->required();
  sheet->add_flag("--part", form.part, "Of HTML only the sections, for a page of your own");
  sheet->add_option("--paper", form.paper, "Of SVG only this sheet of A4 paper, from 1")
      ->check(CLI::Range(1, 10000));
  sheet->callback([&] { status = MakeSheet(dir, output, form); });

  app.add_subcommand("formats", "Print the description of the file formats")->callback([&] {
    Write(FileFormats());
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

// What else is thrown is a mistake of the program, and ends it where it is.
// NOLINTNEXTLINE(bugprone-exception-escape)
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
