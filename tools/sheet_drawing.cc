// The cheat sheet in SVG: rows of entries, one below the other on a long drawing or on sheets of
// paper. SVG breaks no lines, so the width of a text is estimated from its number of characters.
#include <algorithm>
#include <cmath>

#include "tools/drawing.h"
#include "tools/markup.h"
#include "tools/sheet.h"

namespace gromlit {
namespace {

// Points, 1/72 inch; A4.
constexpr double kWidth = 595;
constexpr double kHeight = 842;
constexpr double kMargin = 36;
constexpr int kColumns = 3;
constexpr double kColumn = (kWidth - 2 * kMargin) / kColumns;
constexpr double kOne = 42;      // a drawing that is alone
constexpr double kSeveral = 56;  // the square of several
constexpr double kGap = 8;       // between drawings and text, and to the next column
constexpr double kTitleSize = 18;
constexpr double kHeadingSize = 12;
constexpr double kNameSize = 9;
constexpr double kSmallSize = 7.5;
constexpr double kLeading = 1.3;
constexpr double kLetter = 0.56;  // a wide average of a letter's width, of its size
constexpr size_t kLines = 4;      // of what an entry does
constexpr double kHeadingHeight = 44;
constexpr double kTitleHeight = 44;

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.5g", v);
  return text;
}

std::string Text(double x, double y, double size, const char* attributes, const std::string& text) {
  return "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" font-size=\"" + Number(size) +
         "\"" + attributes + ">" + text + "</text>\n";
}

size_t Fitting(double width, double size) {
  return static_cast<size_t>(std::max(4.0, width / (size * kLetter)));
}

// Lines of at most so many characters, broken at blanks where there are any.
std::vector<std::u32string> Broken(std::u32string text, size_t limit) {
  std::vector<std::u32string> lines;
  while (text.size() > limit) {
    size_t end = text.rfind(U' ', limit);
    if (end == text.npos || end == 0) end = limit;
    lines.push_back(text.substr(0, end));
    text.erase(0, text[end] == U' ' ? end + 1 : end);
  }
  lines.push_back(text);
  return lines;
}

struct Block {
  double height = 0;
  bool keep = false;     // stays with the next one
  std::string contents;  // drawn from y = 0
};

// An entry with its corner at x, 0.
Block EntryBlock(const SheetEntry& entry, double x) {
  const size_t count = ShownDrawings(entry);
  const auto across = static_cast<size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
  const double side = count == 1 ? kOne : kSeveral / static_cast<double>(across);
  Block block;
  for (size_t i = 0; i < count; i++) {
    const size_t row = i / across;
    const std::string place = "x=\"" + Number(x + static_cast<double>(i % across) * side) +
                              "\" y=\"" + Number(static_cast<double>(row) * side) + "\"";
    block.contents += SymbolDrawing(*entry.drawings[i], side, place) + "\n";
  }
  const double left = x + static_cast<double>(across) * side + kGap;
  const double width = x + kColumn - kGap - left;
  double y = kNameSize + 6;
  block.contents +=
      Text(left, y, kNameSize, " font-weight=\"bold\"",
           Escaped(Shortened(Characters(entry.name), Fitting(width, kNameSize * 1.08))));
  std::vector<std::u32string> lines;
  for (const CommandWords& words : entry.does) {
    std::u32string text = Characters(words.verb);
    if (!text.empty() && !words.object.empty()) text += U' ';
    // More than can be shown is not broken into lines first.
    text += Shortened(Characters(words.object), kLines * Fitting(width, kSmallSize));
    // cppcheck-suppress accessMoved  ; a loop's range is made once, before its first round
    for (std::u32string& line : Broken(std::move(text), Fitting(width, kSmallSize)))
      lines.push_back(std::move(line));
  }
  if (const std::string others = OtherDrawings(entry); !others.empty())
    lines.push_back(Characters(others));
  if (lines.size() > kLines) {
    lines.resize(kLines);
    lines.back() = U"...";
  }
  for (const std::u32string& line : lines) {
    y += kSmallSize * kLeading;
    block.contents += Text(left, y, kSmallSize, "", Escaped(line));
  }
  const double rows = std::ceil(static_cast<double>(count) / static_cast<double>(across));
  block.height = std::max(rows * side, y + 4) + 4;
  return block;
}

std::vector<Block> Blocks(const std::vector<SheetSection>& sections) {
  std::vector<Block> blocks = {
      {kTitleHeight, true,
       Text(kMargin, kTitleSize, kTitleSize, " font-weight=\"bold\"", "Gestures") +
           Text(kMargin, kTitleSize + 14, kNameSize, "",
                "Hold the draw button, begin at the dot and let go at the arrow.")}};
  for (const SheetSection& section : sections) {
    const size_t title = Fitting(kWidth - 2 * kMargin, kHeadingSize);
    const size_t where = Fitting(kWidth - 2 * kMargin, kSmallSize);
    blocks.push_back(
        {kHeadingHeight, !section.entries.empty(),
         "<path stroke=\"currentColor\" stroke-width=\"0.7\" d=\"M" + Number(kMargin) + " 6H" +
             Number(kWidth - kMargin) + "\"/>\n" +
             Text(kMargin, 22, kHeadingSize, " font-weight=\"bold\"",
                  Escaped(Shortened(Characters(section.title), title))) +
             Text(kMargin, 34, kSmallSize, "",
                  "Over " + Escaped(Shortened(Characters(section.where), where - 5)))});
    for (size_t i = 0; i < section.entries.size(); i += kColumns) {
      Block row;
      for (size_t j = i; j < std::min(i + kColumns, section.entries.size()); j++) {
        const Block entry =
            EntryBlock(section.entries[j], kMargin + static_cast<double>(j - i) * kColumn);
        row.contents += entry.contents;
        row.height = std::max(row.height, entry.height);
      }
      blocks.push_back(std::move(row));
    }
  }
  return blocks;
}

std::string Placed(const Block& block, double y) {
  return "<g transform=\"translate(0 " + Number(y) + ")\">\n" + block.contents + "</g>\n";
}

// `head` is the style and the paper's colour.
std::string Drawing(double height, const std::string& head, const std::string& contents) {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + Number(kWidth) + "pt\" height=\"" +
         Number(height) + "pt\" viewBox=\"0 0 " + Number(kWidth) + " " + Number(height) +
         "\" font-family=\"Helvetica, Arial, sans-serif\">\n" + head + contents + "</svg>\n";
}

constexpr const char* kScreenHead =
    "<style>svg { color: #1a1a1a; fill: #1a1a1a; } .paper { fill: #fff; }\n"
    "@media (prefers-color-scheme: dark) { svg { color: #e8e8e8; fill: #e8e8e8; }\n"
    ".paper { fill: #16181c; } }</style>\n"
    "<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n";

}  // namespace

std::string SheetDrawing(const std::vector<SheetSection>& sections) {
  double y = kMargin;
  std::string contents;
  for (const Block& block : Blocks(sections)) {
    contents += Placed(block, y);
    y += block.height;
  }
  return Drawing(y + kMargin, kScreenHead, contents);
}

std::vector<std::string> SheetPapers(const std::vector<SheetSection>& sections) {
  const std::vector<Block> blocks = Blocks(sections);
  std::vector<std::string> papers = {""};
  double y = kMargin;
  for (size_t i = 0; i < blocks.size(); i++) {
    double needed = blocks[i].height;
    for (size_t j = i; blocks[j].keep && j + 1 < blocks.size(); j++) needed += blocks[j + 1].height;
    if (y + needed > kHeight - kMargin && !papers.back().empty()) {
      papers.emplace_back();
      y = kMargin;
    }
    papers.back() += Placed(blocks[i], y);
    y += blocks[i].height;
  }
  const std::string count = std::to_string(papers.size());
  for (size_t i = 0; i < papers.size(); i++) {
    const std::string number = std::to_string(i + 1) + " / " + count;
    papers[i] = Drawing(kHeight, "",
                        papers[i] + Text(kWidth / 2, kHeight - kMargin / 2, kSmallSize,
                                         " text-anchor=\"middle\"", number));
  }
  return papers;
}

}  // namespace gromlit
