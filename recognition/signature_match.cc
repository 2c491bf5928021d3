#include "recognition/signature_match.h"

#include <algorithm>
#include <cstring>

#include "core/strings.h"
#include "recognition/stroke_signature.h"

namespace gromlit {

namespace {

// A drawn signature with what every comparison needs of it, found once per stroke.
struct DrawnSignature {
  const char* letters;
  size_t length;
  size_t nswaps;            // 0..kMaxSwaps
  size_t swaps[kMaxSwaps];  // transposable positions, ascending
};

DrawnSignature Prepare(const char* sigDrawn) {
  DrawnSignature drawn = {};
  drawn.letters = sigDrawn;
  drawn.length = std::strlen(sigDrawn);
  if (drawn.length <= 2) return drawn;  // too little to transpose: matches exactly or not at all
  for (size_t n = 0; n + 1 < drawn.length && drawn.nswaps < kMaxSwaps; ++n) {
    if (CanSwap(static_cast<unsigned>(n), sigDrawn)) drawn.swaps[drawn.nswaps++] = n;
  }
  return drawn;
}

bool SameLetters(const char* a, const char* b, size_t count) {
  return std::memcmp(a, b, count) == 0;
}

// The swaps are tried from the right to the left. A swap at p decides between two letters for
// p + 1, and no later one touches p + 1 again: there the symbol's letter says which one it has to
// be. The other letter is held and stands at p, where the next swap (at p - 1) may carry it on. If
// both letters are equal, both choices lead to the same text. So nothing is ever tried twice.
bool Matches(const char* sigSym, const DrawnSignature& drawn) {
  if (std::strlen(sigSym) != drawn.length) return false;
  const char* letters = drawn.letters;
  if (drawn.nswaps == 0) return SameLetters(sigSym, letters, drawn.length);

  // INV-MATCH-1: all letters right of `at` agree already; `held` is the letter that stands at `at`
  // now.
  size_t at = drawn.swaps[drawn.nswaps - 1] + 1;
  char held = letters[at];
  if (!SameLetters(sigSym + at + 1, letters + at + 1, drawn.length - at - 1)) return false;
  for (size_t j = drawn.nswaps; j-- > 0;) {
    const size_t p = drawn.swaps[j];
    if (p + 1 != at) {  // a gap: the held letter stays, those down to p + 2 were never moved
      if (sigSym[at] != held) return false;
      if (!SameLetters(sigSym + p + 2, letters + p + 2, at - p - 2)) return false;
      at = p + 1;
      held = letters[at];
    }
    if (sigSym[at] == held) {
      held = letters[p];  // not swapped
    } else if (sigSym[at] != letters[p]) {
      return false;
    }
    at = p;
  }
  return sigSym[at] == held && SameLetters(sigSym, letters, at);
}

}  // namespace

int CanSwap(unsigned n, const char* signature) {
  const char first = signature[n];
  const char second = signature[n + 1];
  const bool parallel = (first == 'a' && second == 'b') || (first == 'b' && second == 'a') ||
                        (first == 'c' && second == 'd') || (first == 'd' && second == 'c');
  return parallel ? 0 : 1;
}

void Swap(char* char1, char* char2) {
  const char tempchar = *char1;
  *char1 = *char2;
  *char2 = tempchar;
}

int SignatureMatch(const char* sigSym, const char* sigDrawn) {
  return Matches(sigSym, Prepare(sigDrawn)) ? 1 : 0;
}

const char* SymbolSignature(GromlitSymbol* sym) {
  if (sym->signature == nullptr) {
    int16_t Xpoints[kMaxDensePoints];
    int16_t Ypoints[kMaxDensePoints];
    // Room for whatever so many points could give; the record keeps only what they did give.
    char letters[MaxSignature(kMaxDensePoints) + 1];
    const int nall = SymVectorToPoints(sym, Xpoints, Ypoints);
    StrokeSignature(letters, nall, Xpoints, Ypoints);
    sym->signature = StrDup(letters);
  }
  return sym->signature;
}

void ForgetSignature(GromlitSymbol* sym) {
  ReleaseFeatures(sym);
}

int SymbolMatch(GromlitSymbol* sym, const char* sigDrawn) {
  return SignatureMatch(SymbolSignature(sym), sigDrawn);
}

int FindSignature(const GromlitPlugin* pin, const char* sigDrawn) {
  const DrawnSignature drawn = Prepare(sigDrawn);
  const int nactions = std::min<int>(pin->nactions, kMaxActions);
  for (int i = 0; i < nactions; ++i) {
    if (Matches(SymbolSignature(&pin->actions[i]->sym), drawn)) return i;
  }
  return -1;
}

}  // namespace gromlit
