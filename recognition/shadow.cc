#include "recognition/shadow.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "recognition/signature_match.h"

namespace gromlit {
namespace {

constexpr std::string_view kStraight[] = {"aaa-", "bbb-", "ccc-", "ddd-"};

bool IsStraight(std::string_view s) {
  return std::find(std::begin(kStraight), std::end(kStraight), s) != std::end(kStraight);
}

// --- What a pen can draw ------------------------------------------------------------------------
//
// In one direction the pen is in one of three bands, divided by two lines. Crossing a line changes
// the band. A single step from the last band to the first writes the letters of both lines in the
// order first line, second line: after the first of them the pen is "on its way", and the second
// must follow at once.

enum Band : unsigned { kFirst = 1, kMiddle = 2, kLast = 4, kOnTheWay = 8 };  // as sets of bands

// The bands that the pen can be in after the letter of the first line (second = false) or of the
// second line, coming from one of `bands`.
unsigned Cross(unsigned bands, bool second) {
  unsigned next = 0;
  if (second) {
    if ((bands & kMiddle) != 0) next |= kLast;
    if ((bands & kLast) != 0) next |= kMiddle;
    if ((bands & kOnTheWay) != 0) next |= kFirst;
  } else {
    if ((bands & kFirst) != 0) next |= kMiddle;
    if ((bands & kMiddle) != 0) next |= kFirst;
    if ((bands & kLast) != 0) next |= kOnTheWay;
  }
  return next;
}

constexpr unsigned kAnyBand = kFirst | kMiddle | kLast;

struct Pen {
  unsigned rows = kAnyBand;     // divided by a and b
  unsigned columns = kAnyBand;  // divided by c and d
};

// Takes one more letter a..d; false when no pen can write it here.
bool Write(char letter, Pen* pen) {
  const bool row = letter == 'a' || letter == 'b';
  unsigned& moved = row ? pen->rows : pen->columns;
  unsigned& kept = row ? pen->columns : pen->rows;
  // A letter of the other direction: whoever was on the way should have arrived.
  kept &= kAnyBand;
  moved = Cross(moved, letter == 'b' || letter == 'd');
  return moved != 0 && kept != 0;
}

bool CanEnd(const Pen& pen) {
  return (pen.rows & kAnyBand) != 0 && (pen.columns & kAnyBand) != 0;
}

// --- Following a match from left to right -------------------------------------------------------
//
// Exchanges at neighbouring positions p..q of the drawn signature, done from the last to the first,
// carry the letter at q + 1 to p and move the others one place right. Read from the left with the
// symbol's signature at hand: where exchanges begin, the symbol's letter is put on hold and the
// drawn letter has to be the symbol's next one; where they end, the drawn letter is the held one.
// What has to be remembered is which letters may be on hold now: one bit each, and one more bit for
// none. A letter stays on hold from i to i + 1 only when position i is one of the drawn signature's
// first ten that allow an exchange.

constexpr unsigned kNoHold = 1U << 4;

unsigned LetterBit(char letter) {
  return 1U << static_cast<unsigned>(letter - 'a');
}

// The possible holds after the drawn letter at position i, coming from those before it.
unsigned Follow(std::string_view symbol, size_t i, unsigned holds, char drawn) {
  unsigned next = 0;
  const bool next_fits = i + 1 < symbol.size() && drawn == symbol[i + 1];
  if ((holds & kNoHold) != 0) {
    if (drawn == symbol[i]) next |= kNoHold;
    if (next_fits) next |= LetterBit(symbol[i]);
  }
  if ((holds & LetterBit(drawn)) != 0) next |= kNoHold;
  if (next_fits) next |= holds & ~kNoHold;
  return next;
}

// All that decides how a drawn signature that has been read up to position `i` can go on.
struct State {
  size_t i = 0;
  char last = '\0';  // its latest letter
  int swaps = 0;     // positions before it that allow an exchange; kMaxSwaps + 1 for more
  unsigned earlier = kNoHold;
  unsigned later = kNoHold;
  Pen pen;
  auto Key() const { return std::tie(i, last, swaps, earlier, later, pen.rows, pen.columns); }
  bool operator<(const State& other) const { return Key() < other.Key(); }
};

// Adds a letter; false when the result can no longer become a drawable match of `later`.
bool Step(std::string_view earlier, std::string_view later, char letter, State* s) {
  if (!Write(letter, &s->pen)) return false;
  if (s->i > 0) {
    const char pair[] = {s->last, letter, '\0'};
    const bool swap = CanSwap(0, pair) != 0;
    if (swap && s->swaps <= kMaxSwaps) s->swaps++;
    if (!swap || s->swaps > kMaxSwaps) {
      s->earlier &= kNoHold;
      s->later &= kNoHold;
    }
  }
  s->earlier = Follow(earlier, s->i, s->earlier, letter);
  s->later = Follow(later, s->i, s->later, letter);
  s->last = letter;
  s->i++;
  return s->later != 0;
}

}  // namespace

bool CanBeDrawn(std::string_view signature) {
  if (signature.find('-') != signature.npos) return IsStraight(signature);
  Pen pen;
  return std::all_of(signature.begin(), signature.end(), [&](char c) { return Write(c, &pen); }) &&
         CanEnd(pen);
}

bool Shadows(std::string_view earlier, std::string_view later) {
  if (earlier == later) return true;
  // One or two letters match exactly or not at all, and exchanges never change the letters.
  if (earlier.size() != later.size() || later.size() <= 2) return false;
  if (!std::is_permutation(earlier.begin(), earlier.end(), later.begin())) return false;
  if (later.find('-') != later.npos) {
    const std::string first(earlier);
    const std::string second(later);
    return std::none_of(std::begin(kStraight), std::end(kStraight), [&](std::string_view drawn) {
      return SignatureMatch(second.c_str(), drawn.data()) != 0 &&
             SignatureMatch(first.c_str(), drawn.data()) == 0;
    });
  }
  // Looks for one drawable signature that matches `later` and not `earlier`. States are few: the
  // letters on hold are four, and after ten exchanges only one way to go on is left.
  std::set<State> seen;
  std::vector<State> open = {State{}};
  while (!open.empty()) {
    const State state = open.back();
    open.pop_back();
    if (state.i == later.size()) {
      if ((state.later & kNoHold) != 0 && (state.earlier & kNoHold) == 0 && CanEnd(state.pen))
        return false;
      continue;
    }
    for (const char letter : {'a', 'b', 'c', 'd'}) {
      State next = state;
      if (Step(earlier, later, letter, &next) && seen.insert(next).second) open.push_back(next);
    }
  }
  return true;
}

}  // namespace gromlit
