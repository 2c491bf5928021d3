// Finding the first action of a plug-in whose symbol matches a drawn signature.
//
// A symbol matches when its signature equals the drawn one, or a variant of it in which
// neighbouring letters are transposed at any of the first ten positions that allow it. Swaps run
// from the last recorded position to the first, so that a letter can travel several places left.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

inline constexpr int kMaxSwaps = 10;  // transposable positions that are used, from the start

// 1 when the letters at n and n + 1 may be transposed, else 0: all pairs but crossings of two
// parallel lines (ab, ba, cd, dc). REQUIRES: n + 1 < length of signature.
int CanSwap(unsigned n, const char* signature);

// Exchanges two characters.
void Swap(char* char1, char* char2);

// 1 if sigSym equals sigDrawn or one of its transposition variants, else 0. Signatures may have any
// length; a drawn signature of one or two letters only matches exactly. One linear scan decides:
// each letter is final once its position has been passed, so only the letter that is being carried
// has to be remembered.
int SignatureMatch(const char* sigSym, const char* sigDrawn);

// The symbol's signature, computed on first use and kept in the record (heap, owned by it). It is
// the only allocation of a search.
const char* SymbolSignature(GromlitSymbol* sym);

// Frees and forgets the cached signature of a symbol whose points changed (INV-SYMBOL-1), and with
// it the cached shape, which is of the same points. A record that was copied whole from another
// still points to the other's: DisownFeatures is for those.
void ForgetSignature(GromlitSymbol* sym);

// SignatureMatch of the symbol's signature.
int SymbolMatch(GromlitSymbol* sym, const char* sigDrawn);

// Index of the first action of pin, in the plug-in's order, whose symbol matches; -1 when none
// does.
int FindSignature(const GromlitPlugin* pin, const char* sigDrawn);

}  // namespace gromlit
