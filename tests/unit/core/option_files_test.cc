#include "core/option_files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/choices.h"
#include "core/strings.h"
#include "tests/support/temp_install.h"
#include "tests/unit/core/child.h"
#include "tests/unit/core/golden.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::BecomeOrdinaryUser;
using testing::Exists;
using testing::Golden;
using testing::LimitFileSize;
using testing::ReadBytes;
using testing::ReadText;
using testing::RunInChild;
using testing::TempInstall;
using testing::WriteBytes;
using testing::WriteText;

Golden File() {
  return Golden(305)
      .Put(0, "GromlitOption")
      .Put(13, {2, 0, 0, 0})
      .Put(17, {7, 0, 0, 0})
      .Put(21, {1, 0, 0, 0})
      .Put(25, {0, 0, 0, 0})
      .Put(29, {1, 0, 0, 0})
      .Put(33, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0})
      .Put(49, "firefox %s")
      .Put(177, "aplay %s")
      .Put(241, {0, 'r', 'a', 'w'});
}

class OptionFiles : public ::testing::Test {
 protected:
  OptionFiles() : path_(install_ / "options/default.user") {}
  TempInstall install_;
  std::string path_;
};

TEST_F(OptionFiles, GoldenBytesLoadAndAreWrittenBack) {
  WriteBytes(path_, File().bytes());
  const std::unique_ptr<GromlitUserOptions> options(LoadUserOptions("default.user"));
  ASSERT_NE(options, nullptr);
  EXPECT_EQ(options->button, 2);
  EXPECT_EQ(options->sensitivity, 7);
  EXPECT_EQ(options->tolerance, 1);
  EXPECT_EQ(options->splash, 0);
  EXPECT_EQ(options->showactions, 1);
  EXPECT_EQ(options->temp1, 1);
  EXPECT_EQ(options->temp4, 4);
  EXPECT_STREQ(options->urlcmd, "firefox %s");
  EXPECT_STREQ(options->sndcmd, "aplay %s");
  EXPECT_EQ(SaveUserOptions(options.get(), "copy.user"), 1);
  EXPECT_EQ(ReadBytes(install_ / "options/copy.user"), File().bytes());
}

TEST_F(OptionFiles, EveryTruncationIsRefusedAndMoreIsIgnored) {
  const auto whole = File().bytes();
  ASSERT_EQ(whole.size(), 305u);
  WriteBytes(path_, whole);
  for (size_t length = whole.size(); length-- > 0;) {
    fs::resize_file(path_, length);
    EXPECT_EQ(LoadUserOptions("default.user"), nullptr) << length;
  }
  auto longer = whole;
  longer.resize(400, std::byte{'x'});
  WriteBytes(path_, longer);
  const std::unique_ptr<GromlitUserOptions> options(LoadUserOptions("default.user"));
  EXPECT_NE(options, nullptr);
}

TEST_F(OptionFiles, EveryWrongHeaderByteIsRefused) {
  for (size_t i = 0; i < 13; i++) {
    WriteBytes(path_, File().Put(i, {'?'}).bytes());
    EXPECT_EQ(LoadUserOptions("default.user"), nullptr) << i;
  }
}

TEST_F(OptionFiles, DefaultsLeaveReservedFieldsAlone) {
  GromlitUserOptions options;
  std::memset(&options, 0x5A, sizeof options);
  DefaultUserOptions(&options);
  EXPECT_EQ(options.button, 3);
  EXPECT_EQ(options.sensitivity, 4);
  EXPECT_EQ(options.tolerance, 3);
  EXPECT_EQ(options.splash, 1);
  EXPECT_EQ(options.showactions, 1);
  EXPECT_STREQ(options.urlcmd, "netscape %s");
  EXPECT_STREQ(options.sndcmd, "play %s");
  EXPECT_EQ(options.temp1, 0x5A5A5A5A);
  EXPECT_EQ(options.temp4, 0x5A5A5A5A);
  EXPECT_EQ(options.charspare2[0], 0x5A);
}

TEST_F(OptionFiles, NoUsableFileGivesTheDefaultsAndIsLeftAsItIs) {
  EXPECT_EQ(GetUserOptions(), user);
  EXPECT_EQ(user->button, 3);
  EXPECT_EQ(user->temp1, 0);
  EXPECT_EQ(user->charspare2[0], 0);
  EXPECT_FALSE(Exists(path_)) << "not created by reading";
  WriteText(path_, "GromlitOption, damaged");
  GetUserOptions();
  EXPECT_EQ(user->sensitivity, 4);
  EXPECT_EQ(ReadText(path_), "GromlitOption, damaged");
}

TEST_F(OptionFiles, UsableFileIsTaken) {
  WriteBytes(path_, File().bytes());
  EXPECT_EQ(GetUserOptions(), user);
  EXPECT_EQ(user->button, 2);
}

TEST_F(OptionFiles, DamageIsSilent) {
  WriteText(path_, "damaged");
  const auto result = RunInChild([] { return GetUserOptions()->button; });
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.out + result.err, "");
}

int TrySave() {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  return SaveUserOptions(&options, "default.user");
}

TEST_F(OptionFiles, SaveWithoutADirectoryPrintsTheReasonAndMemoryStays) {
  fs::remove(install_ / "options");
  const auto result = RunInChild([] {
    GetUserOptions()->sensitivity = 9;
    if (SaveUserOptions(user, "default.user") != 0) return 1;
    return user->sensitivity == 9 && user->button == 3 ? 0 : 2;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Options: No such file or directory\n");
  EXPECT_FALSE(Exists(install_ / "options"));
}

TEST_F(OptionFiles, SaveOverADirectoryPrintsTheReason) {
  fs::create_directory(path_);
  const auto result = RunInChild(TrySave);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Options: Is a directory\n");
}

// The window that saves shows the reason too. Printing to a pipe changes errno.
TEST_F(OptionFiles, ReasonOfAFailedSaveStaysInErrno) {
  fs::create_directory(path_);
  const auto result = RunInChild([] { return TrySave() == 0 && errno == EISDIR ? 0 : 1; });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Options: Is a directory\n");
}

TEST_F(OptionFiles, SaveOverAReadOnlyFilePrintsTheReason) {
  WriteText(path_, "old");
  ASSERT_EQ(chmod(path_.c_str(), 0444), 0);
  ASSERT_EQ(chmod(install_.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod((install_ / "options").c_str(), 0777), 0);
  const auto result = RunInChild([] { return BecomeOrdinaryUser() ? TrySave() : 2; });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Options: Permission denied\n");
  EXPECT_EQ(ReadText(path_), "old");
}

TEST_F(OptionFiles, SaveBeyondTheFileSizeLimitPrintsTheReason) {
  WriteText(path_, "old");
  const auto result = RunInChild([] { return LimitFileSize(300) ? TrySave() : 2; });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Options: File too large\n");
  EXPECT_EQ(ReadText(path_), "old");
}

// --- Choices -----------------------------------------------------------------------------------

TEST(OptionChoices, NothingIsChosenByDefault) {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  EXPECT_EQ(DeliveryOf(&options), kSentEvents);
  EXPECT_EQ(MatchingWayOf(&options), kBySignature);
  EXPECT_EQ(MannersOf(&options), kPlainManners);
  for (const Behaviour bit :
       {kDrawWithLocks, kFallBack, kActivateFirst, kOpenDirectly, kNameWhileDrawing})
    EXPECT_FALSE(Chosen(&options, bit)) << bit;
}

TEST(OptionChoices, UnknownValuesActAsZero) {
  for (const int32_t value : {-1, 2, 3, 257, INT32_MIN, INT32_MAX}) {
    GromlitUserOptions options{};
    options.temp1 = options.temp3 = options.temp4 = value;
    EXPECT_EQ(DeliveryOf(&options), kSentEvents) << value;
    EXPECT_EQ(MatchingWayOf(&options), kBySignature) << value;
    EXPECT_EQ(MannersOf(&options), kPlainManners) << value;
  }
}

TEST(OptionChoices, BitsAreLookedAtOneByOne) {
  GromlitUserOptions options{};
  options.temp1 = options.temp3 = options.temp4 = 1;
  options.temp2 = kFallBack | kOpenDirectly | 32 | INT32_MIN;
  EXPECT_EQ(DeliveryOf(&options), kRealInput);
  EXPECT_EQ(MatchingWayOf(&options), kByShape);
  EXPECT_EQ(MannersOf(&options), kModernManners);
  EXPECT_TRUE(Chosen(&options, kFallBack));
  EXPECT_TRUE(Chosen(&options, kOpenDirectly));
  EXPECT_FALSE(Chosen(&options, kDrawWithLocks));
  EXPECT_FALSE(Chosen(&options, kActivateFirst));
  EXPECT_FALSE(Chosen(&options, kNameWhileDrawing));
}

// --- The choices that are offered ---

const Choice& ChoiceOf(int32_t GromlitUserOptions::*field, int32_t value) {
  for (const Choice& choice : Choices())
    if (choice.field == field && choice.value == value) return choice;
  throw std::out_of_range("no such choice");
}

TEST(OfferedChoices, ABitIsTurnedBesideTheOthers) {
  const Choice& choice = ChoiceOf(&GromlitUserOptions::temp2, kFallBack);
  GromlitUserOptions options{};
  options.temp2 = kActivateFirst | 1024;
  EXPECT_FALSE(IsOn(options, choice));
  TurnChoice(&options, choice, false);
  EXPECT_EQ(options.temp2, kActivateFirst | 1024);
  TurnChoice(&options, choice, true);
  EXPECT_TRUE(IsOn(options, choice));
  EXPECT_EQ(options.temp2, kActivateFirst | kFallBack | 1024);
  TurnChoice(&options, choice, true);
  EXPECT_EQ(options.temp2, kActivateFirst | kFallBack | 1024);
  TurnChoice(&options, choice, false);
  EXPECT_EQ(options.temp2, kActivateFirst | 1024);
}

TEST(OfferedChoices, AValueOfALaterVersionStaysWhereTheChoiceIsOff) {
  const Choice& choice = ChoiceOf(&GromlitUserOptions::temp3, kByShape);
  GromlitUserOptions options{};
  options.temp3 = 7;
  EXPECT_FALSE(IsOn(options, choice));
  TurnChoice(&options, choice, false);
  EXPECT_EQ(options.temp3, 7);
  TurnChoice(&options, choice, true);
  EXPECT_EQ(options.temp3, kByShape);
  EXPECT_TRUE(IsOn(options, choice));
  TurnChoice(&options, choice, false);
  EXPECT_EQ(options.temp3, 0);
}

TEST(OfferedChoices, RecommendedAreAllButTheLabel) {
  GromlitUserOptions options{};
  EXPECT_TRUE(LacksRecommended(options));
  ChooseRecommended(&options);
  EXPECT_EQ(options.temp1, kRealInput);
  EXPECT_EQ(options.temp2, kDrawWithLocks | kFallBack | kActivateFirst | kOpenDirectly);
  EXPECT_EQ(options.temp3, kByShape);
  EXPECT_EQ(options.temp4, kModernManners);
  EXPECT_FALSE(LacksRecommended(options));
  EXPECT_EQ(RecommendedChoices(), 7);
  for (const Choice& choice : Choices()) {
    GromlitUserOptions other = options;
    TurnChoice(&other, choice, !choice.recommended);
    EXPECT_EQ(LacksRecommended(other), choice.recommended) << choice.caption;
  }
}

}  // namespace
}  // namespace gromlit
