#include <gtest/gtest.h>

#include "actions/keystrokes.h"

namespace gromlit {
namespace {

// The tables are filled by hand here: no keyboard is needed to look something up.
class CharToKeycodeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < kCharacters; i++) {
      charTableKeycodes[i] = static_cast<uint8_t>(i ^ 0x55);
      charTableKeystates[i] = static_cast<uint8_t>(i ^ 0xaa);
    }
  }
  void TearDown() override {
    for (int i = 0; i < kCharacters; i++) charTableKeycodes[i] = charTableKeystates[i] = 0;
  }
};

TEST_F(CharToKeycodeTest, CharactersOfSevenBitsAreLookedUp) {
  for (int c = 0; c < 128; c++) {
    int keycode = -1;
    int keystate = -1;
    EXPECT_EQ(CharToKeycode(c, &keycode, &keystate), c ^ 0x55);
    EXPECT_EQ(keycode, c ^ 0x55);
    EXPECT_EQ(keystate, c ^ 0xaa);
  }
}

TEST_F(CharToKeycodeTest, CharactersAbove127HaveNoKey) {
  for (int c = 128; c < 256; c++) {
    for (const int ch : {c, c - 256}) {  // as an unsigned and as a signed char
      int keycode = -1;
      int keystate = -1;
      EXPECT_EQ(CharToKeycode(ch, &keycode, &keystate), 0);
      EXPECT_EQ(keycode, 0);
      EXPECT_EQ(keystate, 0);
    }
  }
}

TEST_F(CharToKeycodeTest, AnyIntIsTakenAsASignedByte) {
  int keycode = -1;
  int keystate = -1;
  EXPECT_EQ(CharToKeycode(0x7fffff41, &keycode, &keystate), 0x41 ^ 0x55);
  EXPECT_EQ(CharToKeycode(-0x7fffffff, &keycode, &keystate), 0x01 ^ 0x55);
  EXPECT_EQ(CharToKeycode(0x7fffffff, &keycode, &keystate), 0);
}

}  // namespace
}  // namespace gromlit
