#include "recognition/signature_match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "recognition/stroke_signature.h"
#include "tests/unit/recognition/recognition_support.h"

namespace gromlit {
namespace {

using literal::Point;

// A plug-in whose actions have the given symbols; frees the signatures that a search leaves.
struct TestPlugin {
  explicit TestPlugin(const std::vector<GromlitSymbol>& syms) : actions(syms.size()) {
    for (size_t i = 0; i < syms.size(); ++i) {
      actions[i].sym = syms[i];
      record.actions[i] = &actions[i];
    }
    record.nactions = static_cast<uint8_t>(syms.size());
  }
  TestPlugin(const TestPlugin&) = delete;
  TestPlugin& operator=(const TestPlugin&) = delete;
  ~TestPlugin() {
    for (GromlitAction& action : actions) ForgetSignature(&action.sym);
  }
  GromlitPlugin record = {};
  std::vector<GromlitAction> actions;
};

const std::vector<Point> kFalling = {{0, 0}, {31, 31}};
const std::vector<Point> kRight = {{0, 4}, {31, 4}};
const std::vector<Point> kDown = {{4, 0}, {4, 31}};

// --- Single letters ---------------------------------------------------------------------------

TEST(CanSwap, RefusesCrossingsOfParallelLinesOnly) {
  const std::string letters = "abcd-";
  for (const char first : letters) {
    for (const char second : letters) {
      const std::string pair = {first, second};
      const bool parallel = pair == "ab" || pair == "ba" || pair == "cd" || pair == "dc";
      EXPECT_EQ(CanSwap(0, pair.c_str()), parallel ? 0 : 1) << pair;
      EXPECT_EQ(CanSwap(1, ("a" + pair).c_str()), parallel ? 0 : 1) << pair << " at 1";
    }
  }
}

TEST(Swap, ExchangesTwoCharacters) {
  char text[] = "abc";
  Swap(&text[0], &text[2]);
  EXPECT_STREQ(text, "cba");
  Swap(&text[1], &text[1]);
  EXPECT_STREQ(text, "cba");
}

// --- Two signatures ---------------------------------------------------------------------------

TEST(SignatureMatch, OfEqualSignaturesMatchesAtAnyLength) {
  for (const char* text : {"", "a", "ac", "ab", "abc", "aaaa", "ccc-"}) {
    EXPECT_EQ(SignatureMatch(text, text), 1) << text;
  }
  const std::string longest(1020, 'd');
  EXPECT_EQ(SignatureMatch(longest.c_str(), longest.c_str()), 1);
}

TEST(SignatureMatch, OfOneOrTwoDrawnLettersIsExact) {
  EXPECT_EQ(SignatureMatch("ca", "ac"), 0) << "transposable, but too short";
  EXPECT_EQ(SignatureMatch("b", "a"), 0);
  EXPECT_EQ(SignatureMatch("", "a"), 0);
  EXPECT_EQ(SignatureMatch("a", ""), 0);
  EXPECT_EQ(SignatureMatch("ac", "a"), 0);
}

TEST(SignatureMatch, TransposesNeighboursOfCrossDirections) {
  EXPECT_EQ(SignatureMatch("cabd", "acbd"), 1);
}

TEST(SignatureMatch, NeverTransposesCrossingsOfParallelLines) {
  EXPECT_EQ(SignatureMatch("baca", "abca"), 0);
  EXPECT_EQ(SignatureMatch("acba", "abca"), 1) << "positions 1 and 2 are recorded";
  EXPECT_EQ(SignatureMatch("abac", "abca"), 1);
  EXPECT_EQ(SignatureMatch("aabc", "abca"), 1) << "the last letter travels two places";
}

TEST(SignatureMatch, LetsALetterTravelLeftButNotRight) {
  // Swaps run from the right to the left: the last letter can travel with them, the first cannot
  // get further than one place.
  EXPECT_EQ(SignatureMatch("-aaaa", "aaaa-"), 1);
  EXPECT_EQ(SignatureMatch("aaaa-", "-aaaa"), 0);
  EXPECT_EQ(SignatureMatch("a-aaa", "-aaaa"), 1);
}

TEST(SignatureMatch, VariesTheDrawnSignatureNeverTheSymbols) {
  EXPECT_EQ(SignatureMatch("bac", "acb"), 1);
  EXPECT_EQ(SignatureMatch("acb", "bac"), 0);
}

TEST(SignatureMatch, ChoosesPositionsOnTheDrawnSignatureAsItWas) {
  // After the swap at 1 the letters at 0 and 1 are "ab"; position 0 was recorded as "ac" though,
  // and so they are exchanged all the same.
  EXPECT_EQ(SignatureMatch("bac", "acb"), 1);
  // The other way round, "ab" at 0 was not recorded, whatever arrives at 1 later.
  EXPECT_EQ(SignatureMatch("cab", "abc"), 0);
}

TEST(SignatureMatch, WithFewerThanTwoPositionsReadsNoOthers) {
  EXPECT_EQ(SignatureMatch("aba", "bab"), 0) << "no position";
  EXPECT_EQ(SignatureMatch("bab", "abb"), 0) << "only position 1, of two equal letters";
  EXPECT_EQ(SignatureMatch("abca", "abac"), 1) << "position 2 of \"abac\" and 1";
  EXPECT_EQ(SignatureMatch("acb", "abc"), 1) << "only position 1";
  EXPECT_EQ(SignatureMatch("bac", "abc"), 0) << "only position 1";
  EXPECT_EQ(SignatureMatch("cab", "abc"), 0) << "only position 1";
}

TEST(SignatureMatch, MatchesDifferencesBehindTheTenthPositionOnlyExactly) {
  const std::string drawn = "acacacacacacacac";  // every position is transposable
  for (size_t p = 0; p + 1 < drawn.size(); ++p) {
    std::string sym = drawn;
    std::swap(sym[p], sym[p + 1]);
    EXPECT_EQ(SignatureMatch(sym.c_str(), drawn.c_str()), p < kMaxSwaps ? 1 : 0) << p;
  }
}

TEST(SignatureMatch, CountsOnlyTransposablePositionsTowardsTheTen) {
  const std::string drawn = "abababababababababacac";  // the first transposable position is 18
  for (size_t p = 0; p + 1 < drawn.size(); ++p) {
    std::string sym = drawn;
    std::swap(sym[p], sym[p + 1]);
    EXPECT_EQ(SignatureMatch(sym.c_str(), drawn.c_str()), p >= 18 ? 1 : 0) << p;
  }
}

TEST(SignatureMatch, CountsPairsOfEqualLettersTowardsTheTen) {
  const std::string drawn = "aaaaaaaaaaaca";  // positions 0 to 9 are pairs of equal letters
  EXPECT_EQ(SignatureMatch("aaaaaaaaaacaa", drawn.c_str()), 0) << "position 10 is the eleventh";
  EXPECT_EQ(SignatureMatch("aaaaaaaaacaa", "aaaaaaaaaaca"), 1) << "position 9 is the tenth";
}

TEST(SignatureMatch, NeedsTheSameLettersInTheSameNumber) {
  EXPECT_EQ(SignatureMatch("acb", "acbd"), 0);
  EXPECT_EQ(SignatureMatch("acbdd", "acbd"), 0);
  EXPECT_EQ(SignatureMatch("acbb", "acbd"), 0);
  EXPECT_EQ(SignatureMatch("aaa-", "aaaa"), 0);
}

TEST(SignatureMatch, AgreesWithTheExhaustiveSearchOnAllSignaturesUpToFourLetters) {
  std::vector<std::string> all = {""};
  for (size_t i = 0; i < all.size(); ++i) {
    if (all[i].size() == 4) continue;
    for (const char letter : {'a', 'b', 'c', 'd', '-'}) all.push_back(all[i] + letter);
  }
  ASSERT_EQ(all.size(), 781U);
  const size_t step = Sanitized() ? 7 : 1;
  size_t matches = 0;
  for (size_t d = 0; d < all.size(); d += step) {
    for (const std::string& sym : all) {
      const bool expected = literal::SignatureMatch(sym, all[d]);
      ASSERT_EQ(SignatureMatch(sym.c_str(), all[d].c_str()), expected ? 1 : 0)
          << "symbol " << sym << ", drawn " << all[d];
      matches += expected ? 1 : 0;
    }
  }
  EXPECT_GT(matches, all.size() / step);
}

class RandomPairs {
 public:
  explicit RandomPairs(uint64_t seed) : random_(seed) {}

  size_t Below(size_t n) { return static_cast<size_t>(random_() % n); }

  // Lengths: of 100 pairs 91 have 0 to 12 letters, 7 have 13 to 40, and 2 have 41 to 300. The
  // exhaustive search needs 1024 variants for nearly all of the longer ones, which is what the test
  // spends its time on.
  size_t Length() {
    const size_t kind = Below(100);
    if (kind < 91) return Below(13);
    return kind < 98 ? 13 + Below(28) : 41 + Below(260);
  }

  // Letters: of all five alike, only a and c (everything transposable), or runs of a and b or of c
  // and d with a rare change, so that the transposable positions lie far apart and far back.
  std::string Drawn(size_t length) {
    const size_t style = Below(4);
    std::string text;
    bool across = false;
    for (size_t i = 0; i < length; ++i) {
      if (style == 0) {
        text += "abcd-"[Below(5)];
      } else if (style == 1) {
        text += "ac"[Below(2)];
      } else if (style == 2) {
        text += "abcd"[Below(4)];
      } else {
        if (Below(8) == 0) across = !across;
        const bool odd = Below(12) == 0 || i % 2 == 1;
        text += across ? "cd"[odd ? 1 : 0] : "ab"[odd ? 1 : 0];
      }
    }
    return text;
  }

  // A variant of drawn, by transposing a random choice of the positions that allow it; another text
  // than drawn where a few attempts find one.
  std::string Permuted(const std::string& drawn) {
    const std::vector<int> positions = literal::SwapPositions(drawn);
    std::string variant = drawn;
    for (int attempt = 0; attempt < 4 && variant == drawn; ++attempt) {
      literal::MakeVariant(drawn, positions, static_cast<unsigned>(Below(1U << positions.size())),
                           &variant);
    }
    return variant;
  }

  // Close to a match, mostly beside it.
  std::string Damaged(const std::string& drawn) {
    std::string text = Permuted(drawn);
    switch (Below(5)) {
      case 0:  // neighbours exchanged anywhere
        if (text.size() >= 2) {
          const size_t p = Below(text.size() - 1);
          std::swap(text[p], text[p + 1]);
        }
        break;
      case 1:  // two letters exchanged anywhere
        if (text.size() >= 2) std::swap(text[Below(text.size())], text[Below(text.size())]);
        break;
      case 2:  // another letter
        if (!text.empty()) text[Below(text.size())] = "abcd-"[Below(5)];
        break;
      case 3:  // a letter more or less
        if (text.empty() || Below(2) == 0) {
          text.insert(Below(text.size() + 1), 1, "abcd-"[Below(5)]);
        } else {
          text.erase(Below(text.size()), 1);
        }
        break;
      default:  // the same letters in any order
        std::shuffle(text.begin(), text.end(), random_);
        break;
    }
    return text;
  }

 private:
  std::mt19937_64 random_;
};

TEST(SignatureMatch, AgreesWithTheExhaustiveSearchOnAMillionRandomPairs) {
  const uint64_t seed = TestSeed();
  RandomPairs random(seed);
  const int pairs = Sanitized() ? 60000 : 1000000;
  int made = 0;
  int moved = 0;  // of these, other texts than the drawn one
  int matches = 0;
  int misses = 0;
  int nearMisses = 0;  // same letters, different order
  int longest = 0;
  for (int i = 0; i < pairs; ++i) {
    std::string drawn = random.Drawn(random.Length());
    std::string sym;
    const bool permuted = i % 3 == 0;
    if (permuted) {
      // Short ones often have nothing to transpose: then another one.
      sym = random.Permuted(drawn);
      for (int attempt = 0; attempt < 8 && sym == drawn; ++attempt) {
        drawn = random.Drawn(random.Length());
        sym = random.Permuted(drawn);
      }
    } else {
      sym = i % 24 == 1 ? random.Drawn(drawn.size()) : random.Damaged(drawn);
    }
    const bool expected = literal::SignatureMatch(sym, drawn);
    ASSERT_EQ(SignatureMatch(sym.c_str(), drawn.c_str()), expected ? 1 : 0)
        << "pair " << i << " of seed " << seed << "\nsymbol " << sym << "\ndrawn  " << drawn;
    if (permuted) {
      ++made;
      moved += sym != drawn ? 1 : 0;
      ASSERT_TRUE(expected) << "drawn " << drawn << ", permuted " << sym;
    }
    ++(expected ? matches : misses);
    if (!expected && std::is_permutation(sym.begin(), sym.end(), drawn.begin(), drawn.end())) {
      ++nearMisses;
    }
    longest = std::max(longest, static_cast<int>(drawn.size()));
  }
  std::printf("%d pairs: %d matches (%d made by permuting, %d of them moved a letter), ", pairs,
              matches, made, moved);
  std::printf("%d misses (%d of the same letters)\n", misses, nearMisses);
  EXPECT_GE(made, pairs / 3);
  EXPECT_GT(moved, made - made / 100);
  EXPECT_GT(matches, made + pairs / 100);
  EXPECT_GT(misses, pairs / 4);
  EXPECT_GT(nearMisses, pairs / 20);
  EXPECT_GT(longest, 250);
}

// --- Symbols ----------------------------------------------------------------------------------

TEST(SymbolSignature, IsThatOfTheDenseVector) {
  GromlitSymbol sym = SymbolOfCells(kFalling);
  EXPECT_EQ(SymbolSignature(&sym), literal::SymbolSignature(sym));
  ForgetSignature(&sym);
  sym = SymbolOfCells(kRight);
  EXPECT_STREQ(SymbolSignature(&sym), "aaaa");
  ForgetSignature(&sym);
}

TEST(SymbolSignature, OfFewerThanTwoPointsIsEmpty) {
  for (const std::vector<Point>& cells : {std::vector<Point>{}, std::vector<Point>{{9, 9}}}) {
    GromlitSymbol sym = SymbolOfCells(cells);
    EXPECT_STREQ(SymbolSignature(&sym), "");
    ForgetSignature(&sym);
  }
}

TEST(SymbolSignature, OfTheLongestSymbolIsComplete) {
  std::vector<Point> cells;
  cells.reserve(kMaxPoints);
  for (int i = 0; i < kMaxPoints; ++i) cells.push_back(i % 2 == 0 ? Point{0, 0} : Point{31, 31});
  GromlitSymbol sym = SymbolOfCells(cells);
  EXPECT_EQ(SymbolSignature(&sym), literal::SymbolSignature(sym));
  EXPECT_EQ(std::string(SymbolSignature(&sym)).size(), 63U * 4);
  ForgetSignature(&sym);
}

TEST(SymbolSignature, IsComputedOnceAndKeptUntilForgotten) {
  GromlitSymbol sym = SymbolOfCells(kRight);
  EXPECT_EQ(sym.signature, nullptr);
  const char* first = SymbolSignature(&sym);
  EXPECT_EQ(sym.signature, first);
  const GromlitSymbol other = SymbolOfCells(kDown);
  std::copy(std::begin(other.x), std::end(other.x), sym.x);
  std::copy(std::begin(other.y), std::end(other.y), sym.y);
  EXPECT_EQ(SymbolSignature(&sym), first) << "the cache is not asked about the points";
  ForgetSignature(&sym);
  EXPECT_EQ(sym.signature, nullptr);
  EXPECT_STREQ(SymbolSignature(&sym), "cccc");
  ForgetSignature(&sym);
  ForgetSignature(&sym);
  EXPECT_EQ(sym.signature, nullptr);
}

TEST(SymbolMatch, ComputesTheSignatureOnFirstUse) {
  GromlitSymbol sym = SymbolOfCells(kRight);
  EXPECT_EQ(SymbolMatch(&sym, "cccc"), 0);
  ASSERT_NE(sym.signature, nullptr);
  EXPECT_STREQ(sym.signature, "aaaa");
  EXPECT_EQ(SymbolMatch(&sym, "aaaa"), 1);
  ForgetSignature(&sym);
}

TEST(SymbolMatch, VariesTheDrawnSignature) {
  GromlitSymbol sym = {};
  char cached[] = "cabd";
  sym.signature = cached;
  EXPECT_EQ(SymbolMatch(&sym, "acbd"), 1);
  char reverse[] = "acb";
  sym.signature = reverse;
  EXPECT_EQ(SymbolMatch(&sym, "bac"), 0);
}

// --- Actions ----------------------------------------------------------------------------------

TEST(FindSignature, TakesTheFirstOfTwoThatMatch) {
  TestPlugin plugin({SymbolOfCells(kDown), SymbolOfCells(kRight), SymbolOfCells(kRight)});
  EXPECT_EQ(FindSignature(&plugin.record, "aaaa"), 1);
  EXPECT_EQ(FindSignature(&plugin.record, "cccc"), 0);
}

TEST(FindSignature, PrefersAnEarlierVariantToALaterExactMatch) {
  std::array<char, 5> variant = {"cabd"};
  std::array<char, 5> exact = {"acbd"};
  TestPlugin plugin({GromlitSymbol{}, GromlitSymbol{}});
  plugin.actions[0].sym.signature = variant.data();
  plugin.actions[1].sym.signature = exact.data();
  EXPECT_EQ(FindSignature(&plugin.record, "acbd"), 0);
  plugin.actions[0].sym.signature = nullptr;  // not on the heap: nothing to free
  plugin.actions[1].sym.signature = nullptr;
}

TEST(FindSignature, LeavesLaterActionsUnexamined) {
  TestPlugin plugin({SymbolOfCells(kRight), SymbolOfCells(kDown)});
  EXPECT_EQ(FindSignature(&plugin.record, "aaaa"), 0);
  EXPECT_NE(plugin.actions[0].sym.signature, nullptr);
  EXPECT_EQ(plugin.actions[1].sym.signature, nullptr);
}

TEST(FindSignature, GivesMinusOneWhenNoneMatches) {
  TestPlugin plugin({SymbolOfCells(kRight), SymbolOfCells(kDown)});
  EXPECT_EQ(FindSignature(&plugin.record, "dddd"), -1);
  EXPECT_EQ(FindSignature(&plugin.record, ""), -1);
  TestPlugin none({});
  EXPECT_EQ(FindSignature(&none.record, "aaaa"), -1);
  EXPECT_EQ(FindSignature(&none.record, ""), -1);
}

TEST(FindSignature, MatchesAnEmptyDrawnSignatureWithASymbolOfNoPoints) {
  TestPlugin plugin({SymbolOfCells(kRight), SymbolOfCells({}), SymbolOfCells({{3, 3}})});
  EXPECT_EQ(FindSignature(&plugin.record, ""), 1);
}

TEST(FindSignature, SearchesAll128Actions) {
  std::vector<GromlitSymbol> syms(kMaxActions, SymbolOfCells(kRight));
  syms.back() = SymbolOfCells(kDown);
  TestPlugin plugin(syms);
  EXPECT_EQ(FindSignature(&plugin.record, "cccc"), 127);
}

TEST(FindSignature, FindsEveryRecordedStrokeAsTheExhaustiveSearchDoes) {
  std::string missing;
  const std::vector<RecordedStroke> strokes = ReadRecordedStrokes(&missing);
  if (strokes.empty()) GTEST_SKIP() << missing;
  // Templates from all over the file: every gesture, person and speed is among them.
  std::vector<GromlitSymbol> syms;
  std::vector<std::string> signatures;
  std::vector<std::string> gestures;
  for (size_t i = 0; i < kMaxActions; ++i) {
    const RecordedStroke& stroke = strokes[i * strokes.size() / kMaxActions];
    syms.push_back(SymbolOfStroke(stroke));
    signatures.push_back(literal::SymbolSignature(syms.back()));
    gestures.push_back(stroke.gesture);
  }
  TestPlugin plugin(syms);
  int found = 0;
  int right = 0;
  int nothing = 0;
  const size_t step = Sanitized() ? 8 : 1;
  for (size_t i = 0; i < strokes.size(); i += step) {
    const std::string drawn = LiveSignature(strokes[i]);
    const int action = FindSignature(&plugin.record, drawn.c_str());
    ASSERT_EQ(action, literal::FindAction(signatures, drawn)) << "stroke " << i << ": " << drawn;
    if (action < 0) {
      ++nothing;
    } else {
      ++found;
      right += gestures[static_cast<size_t>(action)] == strokes[i].gesture ? 1 : 0;
    }
  }
  std::printf("%d found, %d of them the gesture drawn; %d not found\n", found, right, nothing);
  EXPECT_GT(found, nothing / 4);
  EXPECT_GT(nothing, 0);
  EXPECT_GT(right, found / 2);
}

TEST(FindSignature, FindsEveryStrokeAmongTheStrokesOfItsOwnSignature) {
  std::string missing;
  const std::vector<RecordedStroke> strokes = ReadRecordedStrokes(&missing);
  if (strokes.empty()) GTEST_SKIP() << missing;
  // Strokes themselves as templates, 128 at a time: each finds itself or an earlier action.
  for (size_t base = 0; base < strokes.size();
       base += size_t{kMaxActions} * (Sanitized() ? 6 : 1)) {
    std::vector<std::string> signatures;
    for (size_t i = base; i < std::min(base + kMaxActions, strokes.size()); ++i) {
      signatures.push_back(LiveSignature(strokes[i]));
    }
    TestPlugin plugin(std::vector<GromlitSymbol>(signatures.size()));
    for (size_t i = 0; i < signatures.size(); ++i) {
      plugin.actions[i].sym.signature = signatures[i].data();
    }
    for (size_t i = 0; i < signatures.size(); ++i) {
      const int action = FindSignature(&plugin.record, signatures[i].c_str());
      ASSERT_GE(action, 0);
      ASSERT_LE(action, static_cast<int>(i));
      ASSERT_EQ(action, literal::FindAction(signatures, signatures[i]));
    }
    for (GromlitAction& action : plugin.actions) action.sym.signature = nullptr;
  }
}

}  // namespace
}  // namespace gromlit
