#include "toolkit/line_edit.h"

#include <algorithm>
#include <vector>

#include "core/letters.h"
#include "core/utf8.h"

namespace gromlit {
namespace {

enum class Sign { kBlank, kWord, kOther };

Sign SignAt(std::string_view text, size_t at) {
  const auto c = static_cast<unsigned char>(text[at]);
  if (c == ' ') return Sign::kBlank;
  const bool word = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                    c == '_' || c >= 0x80;
  return word ? Sign::kWord : Sign::kOther;
}

size_t LeftOf(const std::string& text, size_t at) {
  return at == 0 ? 0 : LetterStart(text, at - 1);
}

size_t RightOf(const std::string& text, size_t at) {
  return at == text.size() ? at : LetterEnd(text, at);
}

// Over the blanks that lie there, and the word behind them.
size_t WordLeft(std::string_view text, size_t at) {
  while (at > 0 && SignAt(text, at - 1) == Sign::kBlank) at--;
  return at == 0 ? 0 : WordAt(text, at - 1).from;
}

size_t WordRight(std::string_view text, size_t at) {
  if (at < text.size() && SignAt(text, at) != Sign::kBlank) at = WordAt(text, at).to;
  while (at < text.size() && SignAt(text, at) == Sign::kBlank) at++;
  return at;
}

size_t Target(const LineEdit& line, LineStep step) {
  switch (step) {
    case LineStep::kLeft:
      return LeftOf(line.text, line.caret);
    case LineStep::kRight:
      return RightOf(line.text, line.caret);
    case LineStep::kWordLeft:
      return WordLeft(line.text, line.caret);
    case LineStep::kWordRight:
      return WordRight(line.text, line.caret);
    case LineStep::kHome:
      return 0;
    case LineStep::kEnd:
      return line.text.size();
  }
  return line.caret;
}

void AppendUtf8(std::string* out, char32_t letter) {
  const auto byte = [&](char32_t value) { out->push_back(static_cast<char>(value)); };
  if (letter < 0x80) {
    byte(letter);
  } else if (letter < 0x800) {
    byte(0xc0 | (letter >> 6));
    byte(0x80 | (letter & 0x3f));
  } else if (letter < 0x10000) {
    byte(0xe0 | (letter >> 12));
    byte(0x80 | ((letter >> 6) & 0x3f));
    byte(0x80 | (letter & 0x3f));
  } else {
    byte(0xf0 | (letter >> 18));
    byte(0x80 | ((letter >> 12) & 0x3f));
    byte(0x80 | ((letter >> 6) & 0x3f));
    byte(0x80 | (letter & 0x3f));
  }
}

// The letters of a text, what is none left out.
std::vector<char32_t> Decoded(std::string_view bytes) {
  std::vector<char32_t> letters;
  for (;;) {
    size_t taken = 0;
    if (DecodeUtf8(bytes, &letters, &taken) != Utf8::kNot) return letters;
    bytes.remove_prefix(std::min(taken + 1, bytes.size()));
  }
}

std::string LineOf(const std::vector<char32_t>& letters) {
  std::string line;
  bool returned = false;  // behind a carriage return, of which a line feed is a part
  size_t lineends = 0;    // blanks at the end that were line ends
  for (const char32_t letter : letters) {
    const bool pair = returned && letter == '\n';
    returned = letter == '\r';
    if (pair) continue;
    if (letter == '\n' || letter == '\r' || letter == 0x2028 || letter == 0x2029) {
      line += ' ';
      lineends++;
      continue;
    }
    if (letter != '\t' && (letter < ' ' || (letter >= 0x7f && letter < 0xa0))) continue;
    lineends = 0;
    AppendUtf8(&line, letter == '\t' ? U' ' : letter);
  }
  line.resize(line.size() - lineends);
  return line;
}

bool IsUtf8(std::string_view text) {
  std::vector<char32_t> letters;
  size_t taken = 0;
  return DecodeUtf8(text, &letters, &taken) == Utf8::kWhole;
}

std::vector<char32_t> Widened(std::string_view bytes) {
  std::vector<char32_t> letters;
  for (const char c : bytes) letters.push_back(static_cast<unsigned char>(c));
  return letters;
}

}  // namespace

LineSpan SelectedSpan(const LineEdit& line) {
  return {std::min(line.caret, line.anchor), std::max(line.caret, line.anchor)};
}

std::string_view SelectedText(const LineEdit& line) {
  const LineSpan span = SelectedSpan(line);
  return std::string_view(line.text).substr(span.from, span.to - span.from);
}

void MoveCaret(LineEdit* line, LineStep step, bool selecting) {
  const LineSpan span = SelectedSpan(*line);
  if (!selecting && span.from != span.to && step == LineStep::kLeft) {
    line->caret = span.from;
  } else if (!selecting && span.from != span.to && step == LineStep::kRight) {
    line->caret = span.to;
  } else {
    line->caret = Target(*line, step);
  }
  if (!selecting) line->anchor = line->caret;
}

void PutCaret(LineEdit* line, size_t at, bool selecting) {
  line->caret = LetterStart(line->text, at);
  if (!selecting) line->anchor = line->caret;
}

LineSpan WordAt(std::string_view text, size_t at) {
  if (text.empty()) return {0, 0};
  // At the end it is the last one.
  LineSpan span{std::min(at, text.size() - 1), 0};
  const Sign sign = SignAt(text, span.from);
  span.to = span.from;
  while (span.from > 0 && SignAt(text, span.from - 1) == sign) span.from--;
  while (span.to < text.size() && SignAt(text, span.to) == sign) span.to++;
  return span;
}

void SelectWord(LineEdit* line, size_t at) {
  const LineSpan span = WordAt(line->text, at);
  line->anchor = span.from;
  line->caret = span.to;
}

void SelectAll(LineEdit* line) {
  line->anchor = 0;
  line->caret = line->text.size();
}

bool RemoveSelected(LineEdit* line) {
  const LineSpan span = SelectedSpan(*line);
  if (span.from == span.to) return false;
  line->text.erase(span.from, span.to - span.from);
  line->caret = line->anchor = span.from;
  return true;
}

void RemoveStep(LineEdit* line, LineStep step) {
  if (RemoveSelected(line)) return;
  line->anchor = line->caret;
  line->caret = Target(*line, step);
  RemoveSelected(line);
}

void InsertText(LineEdit* line, std::string_view text, size_t limit) {
  RemoveSelected(line);
  const size_t room = limit - std::min(limit, line->text.size());
  if (text.size() > room) text = text.substr(0, LetterStart(text, room));
  line->text.insert(line->caret, text);
  line->caret += text.size();
  line->anchor = line->caret;
}

std::string LineOfUtf8(std::string_view bytes) {
  return LineOf(Decoded(bytes));
}

std::string LineOfLatin1(std::string_view bytes) {
  return LineOf(Widened(bytes));
}

std::string Latin1Of(std::string_view text, bool* whole) {
  if (whole != nullptr) *whole = true;
  if (!IsUtf8(text)) return std::string(text);
  std::string latin1;
  for (const char32_t letter : Decoded(text)) {
    if (letter > 0xff && whole != nullptr) *whole = false;
    latin1 += letter > 0xff ? '?' : static_cast<char>(letter);
  }
  return latin1;
}

std::string Utf8Of(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string utf8;
  for (const char32_t letter : Widened(text)) AppendUtf8(&utf8, letter);
  return utf8;
}

}  // namespace gromlit
