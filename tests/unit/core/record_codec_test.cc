#include "core/record_codec.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/option_files.h"
#include "core/strings.h"
#include "tests/unit/core/golden.h"

namespace gromlit {
namespace {

using ::testing::Each;
using testing::Golden;
using Bytes = std::vector<std::byte>;

// A record whose every byte is set before it is decoded into: nothing may stay as it was.
template <typename Record>
Record Dirty() {
  Record record;
  std::memset(static_cast<void*>(&record), 0xA5, sizeof record);
  return record;
}

Bytes Encoded(const GromlitSymbol& sym) {
  Bytes image(kSymbolImageSize, std::byte{0xEE});
  EncodeSymbol(sym, image);
  return image;
}

Golden SymbolImage() {
  return Golden(428)
      .Put(0, "Hook")
      .Put(32, {3})
      .Put(34, {0x07, 0x00, 0x10, 0x00, 0x08, 0x01, 0x34, 0x12})  // x[0..3]
      .Put(162 + 2, {0x18, 0x00, 0x20, 0x00, 0x78, 0x56})         // y[1..3]
      .Put(292, {0x01, 0x00, 0x00, 0x80})                         // icon row 0
      .Put(292 + 4 * 31, {0xEF, 0xBE, 0xAD, 0xDE})                // icon row 31
      .Put(420, {0x04, 0x03, 0x02, 0x01});                        // spare
}

GromlitSymbol SymbolRecord() {
  GromlitSymbol sym{};
  CopyText(sym.name, "Hook");
  sym.npoints = 3;
  sym.x[0] = 7;
  sym.x[1] = 16;
  sym.x[2] = 264;
  sym.x[3] = 0x1234;
  sym.y[1] = 24;
  sym.y[2] = 32;
  sym.y[3] = 0x5678;
  sym.icon[0] = 0x80000001u;
  sym.icon[31] = 0xDEADBEEFu;
  sym.spare = 0x01020304u;
  return sym;
}

TEST(SymbolImage, IsTheGoldenBytes) {
  EXPECT_EQ(Encoded(SymbolRecord()), SymbolImage().bytes());
}

TEST(SymbolImage, GoldenBytesDecode) {
  auto sym = Dirty<GromlitSymbol>();
  DecodeSymbol(SymbolImage().bytes(), &sym);
  EXPECT_STREQ(sym.name, "Hook");
  EXPECT_EQ(sym.npoints, 3);
  EXPECT_EQ(sym.x[1], 16);
  EXPECT_EQ(sym.x[2], 264);
  EXPECT_EQ(sym.x[3], 0x1234);
  EXPECT_EQ(sym.y[1], 24);
  EXPECT_EQ(sym.y[2], 32);
  EXPECT_EQ(sym.y[3], 0x5678);
  EXPECT_EQ(sym.x[64], 0);
  EXPECT_EQ(sym.y[64], 0);
  EXPECT_EQ(sym.icon[0], 0x80000001u);
  EXPECT_EQ(sym.icon[1], 0u);
  EXPECT_EQ(sym.icon[31], 0xDEADBEEFu);
  EXPECT_EQ(sym.spare, 0x01020304u);
  EXPECT_EQ(sym.signature, nullptr);
}

TEST(SymbolImage, Point63LiesInTheLastArraySlots) {
  GromlitSymbol sym{};
  sym.npoints = 63;
  sym.x[63] = 0x0A0B;
  sym.y[63] = 0x0C0D;
  EXPECT_EQ(
      Encoded(sym),
      Golden(428).Put(32, {63}).Put(34 + 126, {0x0B, 0x0A}).Put(162 + 126, {0x0D, 0x0C}).bytes());
}

TEST(SymbolImage, Point64LiesOnTheFirstYAndOnTheGapBehindTheLast) {
  GromlitSymbol sym{};
  sym.npoints = 64;
  sym.x[64] = 0x1122;
  sym.y[64] = 0x3344;
  const Bytes golden =
      Golden(428).Put(32, {64}).Put(162, {0x22, 0x11}).Put(290, {0x44, 0x33}).bytes();
  EXPECT_EQ(Encoded(sym), golden);
  auto back = Dirty<GromlitSymbol>();
  DecodeSymbol(golden, &back);
  EXPECT_EQ(back.npoints, 64);
  EXPECT_EQ(back.x[64], 0x1122);
  EXPECT_EQ(back.y[64], 0x3344);
}

TEST(SymbolImage, GapHoldsNothingBelow64Points) {
  GromlitSymbol sym{};
  sym.npoints = 63;
  sym.x[64] = 0x1122;
  sym.y[64] = 0x3344;
  EXPECT_EQ(Encoded(sym), Golden(428).Put(32, {63}).Put(162, {0x22, 0x11}).bytes());
  auto back = Dirty<GromlitSymbol>();
  DecodeSymbol(Golden(428).Put(32, {63}).Put(290, {0x44, 0x33}).bytes(), &back);
  EXPECT_EQ(back.y[64], 0);
}

TEST(SymbolImage, MorePointsThanFitAreCutTo64) {
  for (const int stored : {65, 128, 255}) {
    GromlitSymbol sym{};
    DecodeSymbol(Golden(428).Put(32, {stored}).Put(290, {0x10, 0x00}).bytes(), &sym);
    EXPECT_EQ(sym.npoints, 64) << stored;
    EXPECT_EQ(sym.y[64], 16) << "a cut symbol has its 64th point";
  }
}

TEST(SymbolImage, CoordinatesOffTheGridAreKept) {
  GromlitSymbol sym{};
  DecodeSymbol(Golden(428).Put(32, {2}).Put(36, {0xFF, 0xFF, 0x03, 0x00}).bytes(), &sym);
  EXPECT_EQ(sym.x[1], 0xFFFF);
  EXPECT_EQ(sym.x[2], 3);
  EXPECT_EQ(Encoded(sym), Golden(428).Put(32, {2}).Put(36, {0xFF, 0xFF, 0x03, 0x00}).bytes());
}

TEST(SymbolImage, NameWithoutNulIsCutAndBytesBehindANulAreDropped) {
  GromlitSymbol sym{};
  DecodeSymbol(Golden(428).Fill(0, 32, 'n').bytes(), &sym);
  EXPECT_EQ(std::string(sym.name), std::string(31, 'n'));
  EXPECT_EQ(Encoded(sym), Golden(428).Fill(0, 31, 'n').bytes());
  DecodeSymbol(Golden(428).Put(0, "ab").Put(3, "junk").bytes(), &sym);
  EXPECT_EQ(Encoded(sym), Golden(428).Put(0, "ab").bytes());
}

TEST(SymbolImage, PointerSlotAndGapsAreWrittenAsZeroAndIgnoredWhenRead) {
  char signature[] = "abc";
  GromlitSymbol sym = SymbolRecord();
  sym.signature = signature;
  EXPECT_EQ(Encoded(sym), SymbolImage().bytes());
  DecodeSymbol(SymbolImage().Put(33, {9}).Put(424, {1, 2, 3, 4}).bytes(), &sym);
  EXPECT_EQ(sym.signature, nullptr);
  EXPECT_EQ(Encoded(sym), SymbolImage().bytes());
}

Golden CmdImage() {
  return Golden(56)
      .Put(0, {2, 8})
      .Put(2, {0x2E, 0x00, 0x34, 0x12})    // keycode[0..1]
      .Put(2 + 14, {0x01, 0xFF})           // keycode[7]
      .Put(18, {0x04, 0x00})               // keystate[0]
      .Put(18 + 14, {0x02, 0x80})          // keystate[7]
      .Put(34, {1, 2, 3, 4, 5, 6})         // buttons
      .Put(40, {7, 8})                     // flag, checked
      .Put(44, {0xFE, 0xFF, 0xFF, 0xFF})   // spare -2
      .Put(48, {0x05, 0x00, 0x01, 0x00});  // ntext 65541
}

TEST(CmdImage, GoldenBytesDecodeAndEncode) {
  auto cmd = Dirty<GromlitCmd>();
  DecodeCmd(CmdImage().Put(42, {9, 9}).Put(52, {1, 2, 3, 4}).bytes(), &cmd);
  EXPECT_EQ(cmd.type, kText);
  EXPECT_EQ(cmd.nkeys, 8);
  EXPECT_EQ(cmd.keycode[0], 46);
  EXPECT_EQ(cmd.keycode[1], 0x1234);
  EXPECT_EQ(cmd.keycode[2], 0);
  EXPECT_EQ(cmd.keycode[7], 0xFF01);
  EXPECT_EQ(cmd.keystate[0], 4);
  EXPECT_EQ(cmd.keystate[7], 0x8002);
  EXPECT_EQ(cmd.buttons[0], 1);
  EXPECT_EQ(cmd.buttons[5], 6);
  EXPECT_EQ(cmd.flag, 7);
  EXPECT_EQ(cmd.checked, 8);
  EXPECT_EQ(cmd.spare, -2);
  EXPECT_EQ(cmd.ntext, 65541u);
  EXPECT_EQ(cmd.text, nullptr);
  Bytes image(kCmdImageSize, std::byte{0xEE});
  EncodeCmd(cmd, image);
  EXPECT_EQ(image, CmdImage().bytes()) << "gap and pointer slot are zero";
}

TEST(CmdImage, MoreKeysThanFitAreKeptAsRead) {
  GromlitCmd cmd{};
  const Bytes stored = Golden(56).Put(1, {200}).bytes();
  DecodeCmd(stored, &cmd);
  EXPECT_EQ(cmd.nkeys, 200);
  Bytes image(kCmdImageSize);
  EncodeCmd(cmd, image);
  EXPECT_EQ(image, stored);
}

TEST(ActionImage, GoldenBytesDecodeAndEncode) {
  const auto golden = [] {
    Golden image(1012);
    const Bytes symbol = SymbolImage().bytes();
    for (size_t i = 0; i < symbol.size(); i++) image.Put(i, {static_cast<int>(symbol[i])});
    return image.Put(428, "Clear").Put(492, {0xFF, 0xFF, 0xFF, 0xFF}).Put(496, {0x80, 0, 0, 0});
  };
  auto action = Dirty<GromlitAction>();
  DecodeAction(golden().Fill(500, 512, 0x77).bytes(), &action);
  EXPECT_STREQ(action.sym.name, "Hook");
  EXPECT_EQ(action.sym.x[3], 0x1234);
  EXPECT_EQ(action.sym.signature, nullptr);
  EXPECT_STREQ(action.name, "Clear");
  EXPECT_EQ(action.spare, -1);
  EXPECT_EQ(action.ncmds, 128u);
  EXPECT_THAT(action.cmds, Each(nullptr));
  GromlitCmd cmd{};
  action.cmds[0] = &cmd;
  Bytes image(kActionImageSize, std::byte{0xEE});
  EncodeAction(action, image);
  EXPECT_EQ(image, golden().bytes()) << "pointer slots are zero";
}

TEST(PluginImage, GoldenBytesDecodeAndEncode) {
  const auto golden = [] {
    Golden image(1164);
    image.Put(0, "Terminal").Put(64, "XTerm").Put(128, {3, 0, 0, 0}).Put(132, {4, 0, 0, 0x80});
    image.Put(136, {1, 2});
    for (int i = 0; i < 8; i++) image.Fill(138 + 64 * static_cast<size_t>(i), 64, 0xC1 + i);
    return image.Put(650, {128});
  };
  auto plugin = Dirty<GromlitPlugin>();
  DecodePlugin(golden().Put(651, {9}).Fill(652, 512, 0x77).bytes(), &plugin);
  EXPECT_STREQ(plugin.appname, "Terminal");
  EXPECT_STREQ(plugin.classname, "XTerm");
  EXPECT_EQ(plugin.spare3, 3);
  EXPECT_EQ(plugin.spare4, static_cast<int32_t>(0x80000004u));
  EXPECT_EQ(plugin.spare1, 1);
  EXPECT_EQ(plugin.spare2, 2);
  EXPECT_THAT(plugin.chars1, Each('\xC1'));
  EXPECT_THAT(plugin.chars2, Each('\xC2'));
  EXPECT_THAT(plugin.chars3, Each('\xC3'));
  EXPECT_THAT(plugin.chars4, Each('\xC4'));
  EXPECT_THAT(plugin.chars5, Each('\xC5'));
  EXPECT_THAT(plugin.chars6, Each('\xC6'));
  EXPECT_THAT(plugin.chars7, Each('\xC7'));
  EXPECT_THAT(plugin.chars8, Each('\xC8'));
  EXPECT_EQ(plugin.nactions, 128);
  EXPECT_THAT(plugin.actions, Each(nullptr));
  EXPECT_EQ(plugin.damagedfile, nullptr);
  Bytes image(kPluginImageSize, std::byte{0xEE});
  EncodePlugin(plugin, image);
  EXPECT_EQ(image, golden().bytes()) << "gap and pointer slots are zero";
}

TEST(PluginImage, ReservedTextFieldsKeepBytesBehindANul) {
  const Bytes stored = Golden(1164).Put(138 + 1, "behind").Put(586 + 63, {0xFF}).bytes();
  GromlitPlugin plugin{};
  DecodePlugin(stored, &plugin);
  EXPECT_EQ(std::string(plugin.chars1 + 1), "behind");
  Bytes image(kPluginImageSize);
  EncodePlugin(plugin, image);
  EXPECT_EQ(image, stored);
}

TEST(PluginImage, NamesWithoutNulAreCutTo63Bytes) {
  GromlitPlugin plugin{};
  DecodePlugin(Golden(1164).Fill(0, 64, 'a').Fill(64, 64, 'c').bytes(), &plugin);
  EXPECT_EQ(std::string(plugin.appname), std::string(63, 'a'));
  EXPECT_EQ(std::string(plugin.classname), std::string(63, 'c'));
}

TEST(ActionImage, NameWithoutNulIsCutTo63Bytes) {
  GromlitAction action{};
  DecodeAction(Golden(1012).Fill(428, 64, 'n').bytes(), &action);
  EXPECT_EQ(std::string(action.name), std::string(63, 'n'));
}

TEST(OptionsImage, GoldenBytesDecodeAndEncode) {
  const Bytes golden = Golden(292)
                           .Put(0, {1, 0, 0, 0})
                           .Put(4, {0x2C, 0x01, 0, 0})
                           .Put(8, {5, 0, 0, 0})
                           .Put(12, {0xFF, 0xFF, 0xFF, 0xFF})
                           .Put(16, {2, 0, 0, 0})
                           .Put(20, {11, 0, 0, 0, 12, 0, 0, 0, 13, 0, 0, 0, 14, 0, 0, 0})
                           .Put(36, "browse %s")
                           .Put(164, "sound %s")
                           .Fill(228, 64, 0xE9)
                           .bytes();
  auto options = Dirty<GromlitUserOptions>();
  DecodeOptions(golden, &options);
  EXPECT_EQ(options.button, 1);
  EXPECT_EQ(options.sensitivity, 300);
  EXPECT_EQ(options.tolerance, 5);
  EXPECT_EQ(options.splash, -1);
  EXPECT_EQ(options.showactions, 2);
  EXPECT_EQ(options.temp1, 11);
  EXPECT_EQ(options.temp2, 12);
  EXPECT_EQ(options.temp3, 13);
  EXPECT_EQ(options.temp4, 14);
  EXPECT_STREQ(options.urlcmd, "browse %s");
  EXPECT_STREQ(options.sndcmd, "sound %s");
  EXPECT_THAT(options.charspare2, Each('\xE9'));
  Bytes image(kOptionsImageSize, std::byte{0xEE});
  EncodeOptions(options, image);
  EXPECT_EQ(image, golden);
}

TEST(OptionsImage, CommandLinesWithoutNulAreCut) {
  GromlitUserOptions options{};
  DecodeOptions(Golden(292).Fill(36, 128, 'u').Fill(164, 64, 's').bytes(), &options);
  EXPECT_EQ(std::string(options.urlcmd), std::string(127, 'u'));
  EXPECT_EQ(std::string(options.sndcmd), std::string(63, 's'));
}

TEST(OptionsImage, ButtonsThatCannotBeGrabbedCountAsTheThirdAndAreKept) {
  for (const int32_t button : {INT32_MIN, -1, 0, 6, 256, INT32_MAX}) {
    GromlitUserOptions options{};
    options.button = button;
    EXPECT_EQ(EffectiveButton(&options), 3) << button;
    Bytes image(kOptionsImageSize);
    EncodeOptions(options, image);
    DecodeOptions(image, &options);
    EXPECT_EQ(options.button, button);
  }
  for (int button = 1; button <= 5; button++) {
    GromlitUserOptions options{};
    options.button = button;
    EXPECT_EQ(EffectiveButton(&options), button);
  }
}

}  // namespace
}  // namespace gromlit
