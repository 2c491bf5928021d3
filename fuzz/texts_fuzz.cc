// Texts: strokes as people write them and as the program logs them, through the calls of the tool
// that read them; pictures in XPM; and the small readers and writers of letters.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "core/letters.h"
#include "core/plugin_image.h"
#include "core/printable.h"
#include "core/strings.h"
#include "core/utf8.h"
#include "display/display.h"
#include "display/scale.h"
#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "recognition/stroke_log.h"
#include "toolkit/image.h"
#include "toolkit/line_edit.h"
#include "toolkit/text.h"
#include "tools/data_file.h"
#include "tools/recognition_calls.h"
#include "tools/stroke_input.h"
#include "tools/tool_io.h"

namespace gromlit::fuzz {
namespace {

bool Same(const Stroke& one, const Stroke& other) {
  return one.count == other.count && std::equal(one.x, one.x + one.count, other.x) &&
         std::equal(one.y, one.y + one.count, other.y);
}

std::string Written(const Stroke& stroke) {
  std::string text;
  for (int i = 0; i < stroke.count; i++)
    text += std::to_string(stroke.x[i]) + " " + std::to_string(stroke.y[i]) + "\n";
  return text;
}

void CheckStrokes(const std::string& text) {
  FreshInstallation();
  std::string error;
  Stroke stroke;
  const bool one = ParseStroke(text, &stroke, &error);
  Require(one || error.starts_with("line "));
  Require(stroke.count >= 0 && stroke.count <= kMaxStrokePoints);
  std::vector<Stroke> strokes;
  const bool several = ParseStrokes(text, &strokes, &error);
  Require(one == several);
  for (const Stroke& each : strokes) {
    Require(each.count > 0 && each.count <= kMaxStrokePoints);
    Stroke again;
    Require(ParseStroke(Written(each), &again, &error) && Same(each, again));
    Require(ReadLogPoints(LogPoints(each), &again) && Same(each, again));
  }
  const bool nul = text.find('\0') != text.npos;
  PutFile("stroke", text);
  Require((SignatureOfStroke("stroke") == kSuccess) == (one && !nul));
  const int learned = LearnSymbol("learned", "learned.sls", {"stroke"});
  if (learned != kSuccess) return;
  Require(SignatureOfSymbol("learned.sls") == kSuccess);
  // A plug-in whose only action is what was learned.
  DataFile symbol;
  Require(ReadDataFile("learned.sls", &symbol, &error) && symbol.damage.empty());
  DataFile plugin;
  plugin.kind = Kind::kPlugin;
  plugin.plugin.nactions = 1;
  plugin.plugin.actions[0] = new GromlitAction{};
  CopyGromlitSymbol(&plugin.plugin.actions[0]->sym, &symbol.symbol);
  const std::vector<std::byte> image = FileImage(plugin);
  PutFile("plugin.sla", {reinterpret_cast<const char*>(image.data()), image.size()});
  Require(ExplainStrokes("plugin.sla", "stroke", 3) == kSuccess);
  Require(MatchStrokes("plugin.sla", "stroke", {kByShape, 5}, true) == kSuccess);
  Require(MatchStrokes("plugin.sla", "stroke", {kBySignature, 5}, false) != kTrouble);
}

void CheckLog(const std::string& text) {
  FreshInstallation();
  PutFile("log", text);
  PrintLoggedStrokes("log", 3);
  PutFile("headed", StrokeLogHeader() + text);
  PrintLoggedStrokes("headed", -1);
  const std::string field = EscapeLogField(text);
  Require(UnescapeLogField(field) == text);
  Require(std::none_of(field.begin(), field.end(),
                       [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }));
  Stroke stroke;
  if (ReadLogPoints(text, &stroke)) {
    Stroke again;
    Require(ReadLogPoints(LogPoints(stroke), &again) && Same(stroke, again));
  }
}

void CheckPicture(FuzzedDataProvider* data, const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line) && lines.size() < 400;) lines.push_back(line);
  std::vector<const char*> pointers;
  for (const std::string& line : lines) pointers.push_back(line.c_str());
  UseScale(data->ConsumeIntegralInRange(1, 2));
  static GC const gc = XCreateGC(dpy, kRoot, 0, nullptr);
  // Lines of a picture are as long as the header says or shorter; the picture itself may be large.
  int width = 0;
  int height = 0;
  const bool small = lines.empty() ||
                     std::sscanf(lines[0].c_str(), " %d %d", &width, &height) != 2 ||
                     (width <= 2000 && height <= 2000);
  if (small) {
    XImage* image = XpmToPixmap(pointers);
    PutImage(kRoot, gc, image, 3, 4);
    if (image != nullptr) {
      Require(image->width >= 1 && image->height >= 1);
      Require(static_cast<size_t>(image->height) < lines.size());
      XDestroyImage(image);
    }
  }
  UseScale(1);
}

void CheckLetters(FuzzedDataProvider* data, const std::string& text) {
  std::vector<char32_t> letters;
  size_t length = 0;
  const Utf8 how = DecodeUtf8(text, &letters, &length);
  Require(length <= text.size() && (how != Utf8::kWhole || length == text.size()));
  Require(letters.size() <= length);
  for (const char32_t c : letters) Require(c <= 0x10ffff && (c < 0xd800 || c > 0xdfff));
  // Each looks at the whole text, which is a field's.
  for (size_t at = 0; at <= std::min<size_t>(text.size(), 300); at++) {
    const size_t start = LetterStart(text, at);
    Require(start <= at);
    if (at < text.size()) Require(LetterEnd(text, at) > at && LetterEnd(text, at) <= text.size());
  }
  const std::string shown = Printable(text);
  for (const char c : shown) Require(static_cast<unsigned char>(c) >= ' ' && c != '\x7f');
  const std::string utf8 = Utf8Of(text);
  letters.clear();
  Require(DecodeUtf8(utf8, &letters, &length) == Utf8::kWhole);
  Latin1Of(text);
  static GC const gc = XCreateGC(dpy, kRoot, 0, nullptr);
  DrawText(kRoot, gc, 3, 4, text);
  DrawTextOnGround(kRoot, gc, 3, 4, text);
  Require(TextWidth(txtFontinfo, FittingText(txtFontinfo, text, 60)) <= 60);
  const int size = data->ConsumeIntegralInRange(4, 80);
  const std::string plain = text.substr(0, text.find('\0'));
  char* cut = MaxStrCopy(plain.c_str(), size);
  Require(std::string_view(cut).size() < static_cast<size_t>(size));
  std::free(cut);
}

// INV-LINE-1 whatever is typed, pasted and selected.
void CheckLine(FuzzedDataProvider* data) {
  LineEdit line;
  for (int n = data->ConsumeIntegralInRange(0, 40); n > 0; n--) {
    const auto step = static_cast<LineStep>(data->ConsumeIntegralInRange(0, 5));
    const size_t at = data->ConsumeIntegralInRange<size_t>(0, line.text.size());
    switch (data->ConsumeIntegralInRange(0, 7)) {
      case 0:
        MoveCaret(&line, step, data->ConsumeBool());
        break;
      case 1:
        PutCaret(&line, at, data->ConsumeBool());
        break;
      case 2:
        SelectWord(&line, at);
        break;
      case 3:
        SelectAll(&line);
        break;
      case 4:
        RemoveSelected(&line);
        break;
      case 5:
        RemoveStep(&line, step);
        break;
      case 6:
        InsertText(&line, data->ConsumeRandomLengthString(30), 63);
        break;
      default:
        InsertText(&line, LineOfUtf8(data->ConsumeRandomLengthString(60)), 63);
    }
    Require(line.text.size() <= 63 && line.caret <= line.text.size());
    Require(line.anchor <= line.text.size());
    Require(LetterStart(line.text, line.caret) == line.caret);
    Require(LetterStart(line.text, line.anchor) == line.anchor);
    Require(SelectedSpan(line).from <= SelectedSpan(line).to);
  }
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  const int what = data->ConsumeIntegralInRange(0, 4);
  if (what == 4) return CheckLine(data);
  const int number = data->ConsumeIntegralInRange(0, 255);
  const std::string text = data->ConsumeRemainingBytesAsString();
  const uint8_t byte = static_cast<uint8_t>(number);
  FuzzedDataProvider rest(&byte, 1);
  switch (what) {
    case 0:
      return CheckStrokes(text);
    case 1:
      return CheckLog(text);
    case 2:
      return CheckPicture(&rest, text);
    default:
      return CheckLetters(&rest, text);
  }
}

}  // namespace gromlit::fuzz
