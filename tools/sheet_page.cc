// The cheat sheet in HTML.
#include "tools/drawing.h"
#include "tools/markup.h"
#include "tools/sheet.h"

namespace gromlit {
namespace {

constexpr size_t kShownObject = 120;  // characters of a command line or a text
constexpr double kOne = 64;           // pixels of a drawing that is alone, and of one of several
constexpr double kOneOfSeveral = 48;

// One file: it is printed, sent and read without a network. Dark where the reader's desk is.
constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Gestures</title>
<style>
:root { color-scheme: light dark; --ink: #1a1a1a; --paper: #fff; --faint: #5c5c5c;
  --line: #c4c4c4; --key: #eee; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e8e8e8; --paper: #16181c; --faint: #a4a8ae; --line: #454a52; --key: #2a2e35; }
}
body { max-width: 62em; margin: 0 auto; padding: 1em 1.5em 3em; color: var(--ink);
  background: var(--paper); font: 1em/1.35 Helvetica, Arial, sans-serif; }
h1 { margin: 0.4em 0 0.2em; font-size: 1.7em; }
h2 { margin: 1.6em 0 0.1em; padding-top: 0.5em; border-top: 2px solid var(--line);
  font-size: 1.25em; break-after: avoid; }
p { margin: 0.2em 0; }
.where { color: var(--faint); break-after: avoid; }
.gestures { display: grid; grid-template-columns: repeat(auto-fill, minmax(17em, 1fr));
  gap: 0.4em 1.2em; margin: 0.6em 0; padding: 0; list-style: none; }
.gestures li { display: flex; flex-wrap: wrap; align-items: center; min-width: 0;
  break-inside: avoid; }
.gestures svg { flex: none; margin: 0.15em 0.3em 0.15em 0; }
.gestures p { flex: 1; min-width: 8em; margin-left: 0.4em; overflow-wrap: anywhere; }
kbd, code { padding: 0 0.25em; background: var(--key); border: 1px solid var(--line);
  border-radius: 3px; font: 0.9em monospace; }
@media print {
  :root { --ink: #000; --paper: #fff; --faint: #444; --line: #999; --key: #fff; }
  body { max-width: none; padding: 0; font-size: 9pt; }
  .gestures { grid-template-columns: repeat(3, 1fr); }
  .gestures svg { width: 40pt; height: 40pt; }
  .gestures li svg:not(:only-of-type) { width: 28pt; height: 28pt; }
}
</style>
</head>
<body>
<main>
<h1>Gestures</h1>
<p class="where">Hold the draw button, begin at the dot and let go at the arrow.</p>
)";

std::string Does(const CommandWords& words) {
  std::string out = Markup(words.verb);
  if (words.object.empty()) return out;
  const std::string object = Escaped(Shortened(Characters(words.object), kShownObject));
  const char* const tag = words.keys ? "kbd" : "code";
  return out + (out.empty() ? "" : " ") + "<" + tag + ">" + object + "</" + tag + ">";
}

std::string Entry(const SheetEntry& entry) {
  const double side = entry.drawings.size() == 1 ? kOne : kOneOfSeveral;
  std::string out = "<li>";
  for (size_t i = 0; i < ShownDrawings(entry); i++)
    out += SymbolDrawing(*entry.drawings[i], side, "class=\"stroke\"") + "\n";
  out += "<p><strong>" + Markup(entry.name) + "</strong>";
  for (const CommandWords& words : entry.does) out += "<br>" + Does(words);
  if (const std::string others = OtherDrawings(entry); !others.empty())
    out += "<br><em>" + others + "</em>";
  return out + "</p></li>\n";
}

}  // namespace

std::string SheetSections(const std::vector<SheetSection>& sections) {
  std::string out;
  for (const SheetSection& section : sections) {
    out += "<h2>" + Markup(section.title) + "</h2>\n<p class=\"where\">Over " +
           Markup(section.where) + ".</p>\n";
    if (section.entries.empty()) continue;
    out += "<ul class=\"gestures\">\n";
    for (const SheetEntry& entry : section.entries) out += Entry(entry);
    out += "</ul>\n";
  }
  return out;
}

std::string SheetPage(const std::vector<SheetSection>& sections) {
  return kHead + SheetSections(sections) + "</main>\n</body>\n</html>\n";
}

}  // namespace gromlit
