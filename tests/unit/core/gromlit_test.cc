#include "core/gromlit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "core/strings.h"

namespace gromlit {
namespace {

TEST(CopyGromlitSymbol, CopiesNamePointsAndIcon) {
  GromlitSymbol src{}, dst{};
  CopyText(src.name, "Source");
  CopyText(dst.name, "Longer destination");
  src.npoints = 63;
  for (int k = 0; k <= kMaxPoints; k++) {
    src.x[k] = static_cast<uint16_t>(1000 + k);
    src.y[k] = static_cast<uint16_t>(2000 + k);
  }
  for (int r = 0; r < kIconSize; r++) {
    src.icon[r] = 0x01010101u * static_cast<uint32_t>(r);
    dst.icon[r] = 0xFFFFFFFFu;
  }
  CopyGromlitSymbol(&dst, &src);
  EXPECT_EQ(std::string(dst.name, kNameSize), std::string("Source") + std::string(26, '\0'));
  EXPECT_EQ(dst.npoints, 63);
  for (int k = 1; k < kMaxPoints; k++) {
    EXPECT_EQ(dst.x[k], 1000 + k);
    EXPECT_EQ(dst.y[k], 2000 + k);
  }
  for (int r = 0; r < kIconSize; r++) EXPECT_EQ(dst.icon[r], src.icon[r]);
}

TEST(CopyGromlitSymbol, KeepsThe64thPointsXAndLeavesItsY) {
  GromlitSymbol src{}, dst{};
  src.npoints = 64;
  src.x[64] = 72;
  src.y[64] = 80;
  dst.x[64] = 16;
  dst.y[64] = 24;
  CopyGromlitSymbol(&dst, &src);
  EXPECT_EQ(dst.x[64], 72);
  EXPECT_EQ(dst.y[64], 24);
}

TEST(CopyGromlitSymbol, LeavesSpareAndSignature) {
  char ours[] = "ab", theirs[] = "cd";
  GromlitSymbol src{}, dst{};
  src.spare = 1;
  src.signature = theirs;
  dst.spare = 2;
  dst.signature = ours;
  CopyGromlitSymbol(&dst, &src);
  EXPECT_EQ(dst.spare, 2u);
  EXPECT_EQ(dst.signature, ours);
}

TEST(CopyGromlitSymbol, CopyOntoItselfChangesNothing) {
  GromlitSymbol sym{};
  CopyText(sym.name, "Self");
  sym.npoints = 2;
  sym.x[1] = 16;
  CopyGromlitSymbol(&sym, &sym);
  EXPECT_STREQ(sym.name, "Self");
  EXPECT_EQ(sym.npoints, 2);
  EXPECT_EQ(sym.x[1], 16);
}

// Released a second time, as a record is that two lists have held, nothing may be freed again.
TEST(ReleaseFeatures, LeavesNothingToRelease) {
  GromlitSymbol sym{};
  sym.signature = static_cast<char*>(std::calloc(2, 1));
  sym.shape = static_cast<Shape*>(::operator new(8));
  ReleaseFeatures(&sym);
  EXPECT_EQ(sym.signature, nullptr);
  EXPECT_EQ(sym.shape, nullptr);
}

TEST(CopyGromlitSymbol, CutsASourceNameWithoutNul) {
  GromlitSymbol src{}, dst{};
  std::memset(src.name, 'n', sizeof src.name);
  CopyGromlitSymbol(&dst, &src);
  EXPECT_EQ(std::string(dst.name), std::string(31, 'n'));
}

}  // namespace
}  // namespace gromlit
