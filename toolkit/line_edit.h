// Editing one line of text with a caret and a selection, by letters and words: what a text field
// does with today's manners, without a display.
//
// INV-LINE-1: caret and anchor are at most text.size() and lie where letters begin or end.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gromlit {

struct LineEdit {
  std::string text;
  size_t caret = 0;   // before the byte of this index
  size_t anchor = 0;  // the selection's other end; where the caret is when nothing is selected
};

struct LineSpan {  // bytes from..to, to not included
  size_t from;
  size_t to;
  bool operator==(const LineSpan&) const = default;
};

enum class LineStep { kLeft, kRight, kWordLeft, kWordRight, kHome, kEnd };

// The selected bytes; from == to when nothing is selected.
LineSpan SelectedSpan(const LineEdit& line);

// The selected text.
std::string_view SelectedText(const LineEdit& line);

// Moves the caret, with the selection's end when `selecting`. Otherwise the selection goes, and a
// step of one letter leads to that end of it.
void MoveCaret(LineEdit* line, LineStep step, bool selecting);

// Puts the caret before the letter that the byte at `at` belongs to.
// REQUIRES: at <= line->text.size().
void PutCaret(LineEdit* line, size_t at, bool selecting);

// Select the word at a place, or the run of blanks or of other signs that is there; and everything.
void SelectWord(LineEdit* line, size_t at);
void SelectAll(LineEdit* line);

// The word at a place, as SelectWord finds it.
LineSpan WordAt(std::string_view text, size_t at);

// Takes the selected text out; false when there is none.
bool RemoveSelected(LineEdit* line);

// Take out what a step to the left or right passes over, or the selection when there is one.
void RemoveStep(LineEdit* line, LineStep step);

// Puts a text in the place of the selection, as much of it as a line of `limit` bytes has room for;
// never a part of a letter. A line that is longer already takes nothing.
void InsertText(LineEdit* line, std::string_view text, size_t limit);

// The text that other programs call UTF8_STRING as a line takes it: every line end or tab is a
// blank, other control characters and what is no UTF-8 are left out. Blanks at its end go when they
// were line ends. From Latin-1 (STRING) the same, as UTF-8.
std::string LineOfUtf8(std::string_view bytes);
std::string LineOfLatin1(std::string_view bytes);

// A text in Latin-1, which is what STRING means; a letter that it has not is "?". A text that is no
// UTF-8 stays as it is. *whole, unless null, tells whether every letter was there.
std::string Latin1Of(std::string_view text, bool* whole = nullptr);

// A text as UTF-8: one that is none counts as Latin-1.
std::string Utf8Of(std::string_view text);

}  // namespace gromlit
