#include "recognition/shadow.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"

namespace gromlit {
namespace {

// All texts of this length over these letters.
std::vector<std::string> AllTexts(size_t length, std::string_view letters) {
  std::vector<std::string> texts = {""};
  for (size_t i = 0; i < length; i++) {
    std::vector<std::string> longer;
    for (const std::string& text : texts)
      for (const char c : letters) longer.push_back(text + c);
    texts = std::move(longer);
  }
  return texts;
}

// The definition, word by word: every drawn signature that matches `later` matches `earlier`.
bool JudgeShadows(const std::string& earlier, const std::string& later,
                  const std::vector<std::string>& drawn) {
  for (const std::string& d : drawn) {
    if (SignatureMatch(later.c_str(), d.c_str()) != 0 &&
        SignatureMatch(earlier.c_str(), d.c_str()) == 0)
      return false;
  }
  return true;
}

TEST(Shadows, EqualSignatures) {
  for (const char* text : {"", "a", "ac", "abcd", "aaa-", "abcdbaabcdba"})
    EXPECT_TRUE(Shadows(text, text)) << text;
}

TEST(Shadows, NotOtherLettersAndNotOtherLengths) {
  EXPECT_FALSE(Shadows("aaaa", "bbbb"));
  EXPECT_FALSE(Shadows("abcd", "abcda"));
  EXPECT_FALSE(Shadows("", "a"));
  EXPECT_FALSE(Shadows("ca", "ac")) << "two letters match exactly";
}

TEST(Shadows, ASignatureThatIsReachedFromEveryStrokeOfTheOther) {
  EXPECT_TRUE(Shadows("caa", "aac"));
  EXPECT_EQ(SignatureMatch("acbd", "abcd"), 1);
  EXPECT_TRUE(Shadows("acbd", "acbd"));
}

TEST(Shadows, NotForOneMatchBetweenTheTwo) {
  // Each takes the plain stroke of the other, and yet leaves it some.
  ASSERT_EQ(SignatureMatch("cabd", "acbd"), 1);
  EXPECT_FALSE(Shadows("cabd", "acbd"));
  ASSERT_EQ(SignatureMatch("acbd", "abcd"), 1);
  EXPECT_FALSE(Shadows("abcd", "acbd"));
}

// All pairs of signatures of up to six letters, against all drawable ones of that length.
TEST(Shadows, AgreesWithTheDefinitionForAllShortSignatures) {
  size_t shadowed = 0;
  size_t clear = 0;
  for (size_t length = 0; length <= 6; length++) {
    // The same letters in another order, or the answer is trivial.
    std::map<std::string, std::vector<std::string>> families;
    for (const std::string& text : AllTexts(length, length == 4 ? "abcd-" : "abcd")) {
      if (!CanBeDrawn(text)) continue;
      std::string key = text;
      std::sort(key.begin(), key.end());
      families[key].push_back(text);
    }
    for (const auto& [key, family] : families) {
      for (const std::string& earlier : family) {
        for (const std::string& later : family) {
          const bool expected = JudgeShadows(earlier, later, family);
          ASSERT_EQ(Shadows(earlier, later), expected) << earlier << " before " << later;
          if (earlier != later) (expected ? shadowed : clear)++;
        }
      }
    }
  }
  EXPECT_GT(shadowed, 1000u);
  EXPECT_GT(clear, 1000u);
}

// Longer ones, where the limit of ten positions counts: a signature that the search finds to be
// shadowed is tried with random drawn ones, made by exchanges.
TEST(Shadows, IsNeverContradictedByLongSignatures) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  size_t found = 0;
  for (int round = 0; round < 3000; round++) {
    // A repeated letter with few others between is what shadows are made of.
    std::string later(12 + random() % 8, "abcd"[random() % 4]);
    for (int i = 0; i < 2; i++) later[random() % later.size()] = "abcd"[random() % 4];
    std::string earlier = later;
    for (auto i = random() % 3 + 1; i > 0; i--) {
      const size_t p = random() % (later.size() - 1);
      std::swap(earlier[p], earlier[p + 1]);
    }
    if (!Shadows(earlier, later)) continue;
    if (earlier != later) found++;
    for (int i = 0; i < 200; i++) {
      std::string drawn = later;
      for (auto j = random() % 6; j > 0; j--) {
        const size_t p = random() % (drawn.size() - 1);
        std::swap(drawn[p], drawn[p + 1]);
      }
      if (!CanBeDrawn(drawn) || SignatureMatch(later.c_str(), drawn.c_str()) == 0) continue;
      ASSERT_EQ(SignatureMatch(earlier.c_str(), drawn.c_str()), 1)
          << drawn << " reaches " << later << " behind " << earlier;
    }
  }
  EXPECT_GT(found, 20u);
}

TEST(Shadows, AnswersForTheLongestSignatures) {
  std::string later;
  for (int i = 0; i < 63; i++) later += i % 2 == 0 ? "acbd" : "dbca";
  std::string earlier = later;
  std::swap(earlier[100], earlier[101]);
  EXPECT_TRUE(Shadows(later, later));
  EXPECT_FALSE(Shadows(earlier, later));
}

TEST(CanBeDrawn, RefusesWhatNoPenCanCross) {
  EXPECT_TRUE(CanBeDrawn(""));
  EXPECT_TRUE(CanBeDrawn("abba"));
  EXPECT_TRUE(CanBeDrawn("ab")) << "down, or in one step up";
  EXPECT_TRUE(CanBeDrawn("aaaa"));
  EXPECT_TRUE(CanBeDrawn("bbb-"));
  EXPECT_FALSE(CanBeDrawn("bb-b"));
  EXPECT_FALSE(CanBeDrawn("-"));
  EXPECT_FALSE(CanBeDrawn("babbb-"));
  EXPECT_FALSE(CanBeDrawn("abaab")) << "from the first band to the last there is no way around";
}

// Whatever a stroke gives counts as possible: otherwise a true answer could not be trusted.
TEST(CanBeDrawn, HoldsForTheSignaturesOfAllStrokes) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::set<std::string> seen;
  for (int round = 0; round < 200'000; round++) {
    int16_t x[8];
    int16_t y[8];
    const int n = static_cast<int>(random() % 8) + 1;
    const int range = round % 2 == 0 ? 8 : 300;
    for (int i = 0; i < n; i++) {
      x[i] = static_cast<int16_t>(static_cast<int>(random() % 600) % range - (round % 5 == 0) * 5);
      y[i] = static_cast<int16_t>(static_cast<int>(random() % 600) % range - (round % 7 == 0) * 5);
    }
    char signature[64];
    StrokeSignature(signature, n, x, y);
    ASSERT_TRUE(CanBeDrawn(signature)) << signature;
    seen.insert(signature);
  }
  EXPECT_GT(seen.size(), 1000u);
}

}  // namespace
}  // namespace gromlit
