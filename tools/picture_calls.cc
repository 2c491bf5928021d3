#include "tools/picture_calls.h"

#include <cerrno>
#include <cstring>
#include <span>
#include <string_view>

#include "tools/drawing.h"
#include "tools/installation.h"
#include "tools/output_file.h"
#include "tools/sheet.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

constexpr double kIconSide = 256;  // pixels of a drawn stroke

bool EndsIn(const std::string& path, std::string_view ending) {
  return path.ends_with(ending);
}

int WriteOut(const std::string& output, const std::string& text) {
  if (!WriteOutputFile(output, std::as_bytes(std::span(text))))
    return Complain(output, std::strerror(errno));
  return kSuccess;
}

// A drawing as a file of its own, in a colour that is seen on the reader's desk.
std::string Standalone(const GromlitSymbol& sym) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"256\" height=\"256\">\n"
         "<style>svg { color: #1a1a1a; }\n"
         "@media (prefers-color-scheme: dark) { svg { color: #e8e8e8; } }</style>\n" +
         SymbolDrawing(sym, kIconSide, "") + "\n</svg>\n";
}

}  // namespace

int DrawIcon(const std::string& symbol, const std::string& output) {
  const bool png = EndsIn(output, ".png");
  if (!png && !EndsIn(output, ".svg")) return Complain(output, "ends neither in .png nor in .svg");
  DataFile file;
  if (!ReadUsable(symbol, Kind::kSymbol, "no symbol file", &file)) return kTrouble;
  const std::string image = png ? IconPng(file.symbol) : Standalone(file.symbol);
  if (image.empty()) return Complain(output, "the picture could not be made");
  const int status = WriteOut(output, image);
  return file.damage.empty() ? status : kTrouble;
}

int MakeSheet(const std::string& dir, const std::string& output, SheetForm form) {
  const bool html = EndsIn(output, ".html");
  if (!html && !EndsIn(output, ".svg"))
    return Complain(output, "ends neither in .html nor in .svg");
  if (html ? form.paper != 0 : form.part)
    return Complain(output, html ? "--paper is for .svg" : "--part is for .html");
  Installation found;
  std::string error;
  if (!ReadInstallation(dir, &found, &error)) return Complain(dir, error);
  int status = kSuccess;
  const std::string below = dir + "/";
  for (const auto& [name, why] : found.strangers) status = Complain(below + name, why);
  for (const FoundFile& file : found.plugins)
    if (WarnOfDamage(below + file.name, *file.file) != kSuccess) status = kTrouble;
  const std::vector<SheetSection> sections = SheetOf(&found);
  if (sections.empty()) return Complain(dir, "holds no plug-in");
  std::string text;
  if (html) {
    text = form.part ? SheetSections(sections) : SheetPage(sections);
  } else if (form.paper == 0) {
    text = SheetDrawing(sections);
  } else {
    const std::vector<std::string> papers = SheetPapers(sections);
    const auto index = static_cast<size_t>(form.paper) - 1;
    if (index >= papers.size()) return kNegative;
    text = papers[index];
  }
  const int written = WriteOut(output, text);
  return written == kSuccess ? status : written;
}

}  // namespace gromlit
