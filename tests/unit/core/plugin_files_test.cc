// Reading and writing plug-in files, sound and damaged ones.
#include "core/plugin_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "core/command_types.h"
#include "core/plugin_image.h"
#include "core/strings.h"
#include "tests/support/captured.h"
#include "tests/support/temp_install.h"
#include "tests/unit/core/child.h"
#include "tests/unit/core/plugin_sample.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::CaptureStderr;
using testing::CaptureStdout;
using ::testing::Each;
using testing::GetCapturedStderr;
using testing::GetCapturedStdout;
using namespace gromlit::testing;

constexpr const char* kActionError = "Error reading Plugin Actions\n";
constexpr const char* kCommandError = "Error reading Plugin Command\n";
constexpr const char* kTextError = "Error reading plugin command text\n";

class PluginFiles : public ::testing::Test {
 protected:
  std::string PathOf(const std::string& file) { return install_ / ("plugins/" + file); }

  struct Reading {
    OwnedPlugin plugin;
    bool good;
    std::string out;
  };
  Reading Read(const char* file) {
    Reading reading{NewPlugin(), false, ""};
    CaptureStdout();
    reading.good = ReadPluginActions(file, reading.plugin.get()) == reading.plugin.get();
    reading.out = GetCapturedStdout();
    return reading;
  }
  Reading Read(std::span<const std::byte> contents) {
    WriteBytes(PathOf("X.sla"), contents);
    return Read("X.sla");
  }
  TempInstall install_;
};

// --- Sound files ---

TEST_F(PluginFiles, WrittenFileIsTheGoldenBytes) {
  const OwnedPlugin plugin = SamplePlugin();
  EXPECT_EQ(UnLoadPlugin(plugin.get(), "XTerm"), plugin.get());
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")), SampleFile().bytes());
}

TEST_F(PluginFiles, GoldenBytesLoad) {
  auto golden = SampleFile();
  golden.Fill(kRecord + 652, 512, 0x77).Fill(kAction1 + 500, 512, 0x77);  // pointer slots
  golden.Fill(kAction1 + 424, 4, 0x77).Fill(kCommand2 + 52, 4, 0x77);
  const Reading read = Read(golden.bytes());
  ASSERT_TRUE(read.good);
  EXPECT_EQ(read.out, "");
  const GromlitPlugin& plugin = *read.plugin;
  EXPECT_STREQ(plugin.appname, "Terminal");
  EXPECT_STREQ(plugin.classname, "XTerm");
  EXPECT_STREQ(plugin.chars1, "reserved");
  EXPECT_EQ(plugin.damagedfile, nullptr);
  ASSERT_EQ(plugin.nactions, 3);
  const GromlitAction& clear = *plugin.actions[0];
  EXPECT_STREQ(clear.name, "Clear");
  EXPECT_STREQ(clear.sym.name, "L");
  EXPECT_EQ(clear.sym.x[2], 264);
  EXPECT_EQ(clear.sym.signature, nullptr);
  ASSERT_EQ(clear.ncmds, 2u);
  EXPECT_EQ(clear.cmds[0]->keycode[0], 46);
  EXPECT_EQ(clear.cmds[0]->keystate[0], 4);
  EXPECT_STREQ(clear.cmds[0]->text, "Control-l");
  EXPECT_EQ(clear.cmds[1]->type, kRun);
  EXPECT_EQ(clear.cmds[1]->text, nullptr);
  EXPECT_EQ(clear.cmds[1]->checked, 1);
  EXPECT_EQ(clear.cmds[2], nullptr);
  EXPECT_EQ(plugin.actions[1]->ncmds, 0u);
  ASSERT_EQ(plugin.actions[2]->ncmds, 1u);
  EXPECT_STREQ(plugin.actions[2]->cmds[0]->text, "ls");
  EXPECT_EQ(plugin.actions[3], nullptr);
}

TEST_F(PluginFiles, HeaderReadLeavesNothingToFollow) {
  WriteBytes(PathOf("X.sla"), SampleFile().bytes());
  GromlitPlugin plugin;
  std::memset(&plugin, 0xA5, sizeof plugin);
  ASSERT_EQ(ReadPluginHeader("X.sla", &plugin), &plugin);
  EXPECT_STREQ(plugin.classname, "XTerm");
  EXPECT_EQ(plugin.nactions, 0);
  EXPECT_THAT(plugin.actions, Each(nullptr));
  EXPECT_EQ(plugin.damagedfile, nullptr);
}

TEST_F(PluginFiles, SavingSetsTextLengthsFromTheTexts) {
  const OwnedPlugin plugin = SamplePlugin();
  plugin->actions[0]->cmds[0]->ntext = 4000;
  plugin->actions[0]->cmds[1]->ntext = 7;
  plugin->actions[2]->cmds[0]->ntext = 0;
  ASSERT_NE(PluginSave(plugin.get(), "XTerm"), nullptr);
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")), SampleFile().bytes());
  EXPECT_EQ(plugin->actions[0]->cmds[0]->ntext, 9u);
  EXPECT_EQ(plugin->actions[0]->cmds[1]->ntext, 0u) << "no text has no length";
}

TEST_F(PluginFiles, CountsBeyondTheRecordsAreSettledWhenSaving) {
  const OwnedPlugin plugin = SamplePlugin();
  plugin->nactions = 255;
  plugin->actions[0]->ncmds = 4000;
  ASSERT_NE(UnLoadPlugin(plugin.get(), "XTerm"), nullptr);
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")), SampleFile().bytes());
}

TEST_F(PluginFiles, LargestPluginRoundTrips) {
  const OwnedPlugin plugin = NewPlugin("Largest", "Largest");
  for (int i = 0; i < 128; i++) {
    GromlitAction* action = AddAction(plugin.get(), "Action " + std::to_string(i));
    action->spare = i;
    action->sym.npoints = 64;
    action->sym.x[64] = static_cast<uint16_t>(i);
    action->sym.y[64] = static_cast<uint16_t>(1000 + i);
    for (int j = 0; j < 128; j++) {
      const std::string text(static_cast<size_t>((i * j) % 50), static_cast<char>('a' + j % 26));
      GromlitCmd* cmd =
          AddCommand(action, static_cast<uint8_t>(j % 6), text.empty() ? nullptr : text.c_str());
      cmd->spare = i * 1000 + j;
      cmd->keycode[7] = static_cast<uint16_t>(j);
    }
  }
  ASSERT_NE(UnLoadPlugin(plugin.get(), "Largest"), nullptr);
  const auto file = ReadBytes(PathOf("Largest.sla"));
  const Reading read = Read("Largest.sla");
  ASSERT_TRUE(read.good);
  ASSERT_EQ(read.plugin->nactions, 128);
  for (int i = 0; i < 128; i++) {
    const GromlitAction& action = *read.plugin->actions[i];
    ASSERT_EQ(action.ncmds, 128u);
    EXPECT_EQ(action.name, "Action " + std::to_string(i));
    EXPECT_EQ(action.spare, i);
    EXPECT_EQ(action.sym.x[64], i);
    EXPECT_EQ(action.sym.y[64], 1000 + i);
    for (int j = 0; j < 128; j++) {
      const GromlitCmd& cmd = *action.cmds[j];
      ASSERT_EQ(cmd.spare, i * 1000 + j);
      ASSERT_EQ(cmd.type, j % 6);
      ASSERT_EQ(cmd.keycode[7], j);
      const char* text = plugin->actions[i]->cmds[j]->text;
      if (text == nullptr)
        ASSERT_EQ(cmd.text, nullptr);
      else
        ASSERT_STREQ(cmd.text, text);
    }
  }
  ASSERT_NE(UnLoadPlugin(read.plugin.get(), "Largest"), nullptr);
  EXPECT_EQ(ReadBytes(PathOf("Largest.sla")), file);
}

TEST_F(PluginFiles, BytesBehindTheLastRecordAreIgnored) {
  auto longer = SampleFile().bytes();
  longer.resize(longer.size() + 500, std::byte{0x55});
  const Reading read = Read(longer);
  EXPECT_TRUE(read.good);
  EXPECT_EQ(read.plugin->nactions, 3);
  EXPECT_EQ(read.plugin->damagedfile, nullptr);
}

// --- Damage ---

TEST_F(PluginFiles, EveryTruncationPrintsItsLineAndKeepsTheCompleteActions) {
  WriteBytes(PathOf("X.sla"), SampleFile().bytes());
  for (size_t length = kSampleSize; length-- > 0;) {
    fs::resize_file(PathOf("X.sla"), length);
    const Reading read = Read("X.sla");
    ASSERT_FALSE(read.good) << length;
    const char* message = "";
    int complete = 0;
    if (length < kAction1) {
      EXPECT_EQ(read.plugin->damagedfile, nullptr) << length << ": it is no plug-in file";
    } else {
      EXPECT_STREQ(read.plugin->damagedfile, "X.sla") << length;
      message = length < kCommand1   ? kActionError
                : length < kText1    ? kCommandError
                : length < kCommand2 ? kTextError
                : length < kAction2  ? kCommandError
                : length < kCommand3 ? kActionError
                : length < kText3    ? kCommandError
                                     : kTextError;
      complete = length < kAction2 ? 0 : length < kAction3 ? 1 : 2;
    }
    ASSERT_EQ(read.out, message) << length;
    ASSERT_EQ(read.plugin->nactions, complete) << length;
    for (int i = 0; i < kMaxActions; i++)
      ASSERT_EQ(read.plugin->actions[i] != nullptr, i < complete) << length;
  }
}

TEST_F(PluginFiles, EveryWrongHeaderByteIsRefusedSilently) {
  for (size_t i = 0; i < 13; i++) {
    const Reading read = Read(SampleFile().Put(i, {'?'}).bytes());
    EXPECT_FALSE(read.good) << i;
    EXPECT_EQ(read.out, "") << i;
    GromlitPlugin plugin{};
    EXPECT_EQ(ReadPluginHeader("X.sla", &plugin), nullptr) << i;
    EXPECT_EQ(LoadPlugin("X.sla"), nullptr) << i;
  }
}

TEST_F(PluginFiles, FailedReadLeavesTheRecordUntouched) {
  const OwnedPlugin plugin = SamplePlugin();
  EXPECT_EQ(ReadPluginActions("missing.sla", plugin.get()), nullptr);
  EXPECT_EQ(ReadPluginHeader("missing.sla", plugin.get()), nullptr);
  EXPECT_EQ(plugin->nactions, 3);
  EXPECT_STREQ(plugin->classname, "XTerm");
}

TEST_F(PluginFiles, ActionsBeyond128EndTheReading) {
  std::vector<std::byte> file(13 + 1164 + 200 * 1012);
  const auto head = SampleFile().Put(kRecord + 650, {200}).bytes();
  std::copy_n(head.begin(), 13 + 1164, file.begin());
  const Reading read = Read(file);
  EXPECT_FALSE(read.good);
  EXPECT_EQ(read.out, kActionError);
  EXPECT_EQ(read.plugin->nactions, 128);
  EXPECT_NE(read.plugin->actions[127], nullptr);
  EXPECT_STREQ(read.plugin->damagedfile, "X.sla");
}

TEST_F(PluginFiles, CommandsBeyond128EndTheReadingInsideTheirAction) {
  for (const size_t count : {size_t{128}, size_t{129}}) {
    // One empty action, then one with so many commands, all of them there.
    std::vector<std::byte> file(13 + 1164 + 2 * 1012 + count * 56);
    auto head = SampleFile().Put(kRecord + 650, {2}).bytes();
    std::copy_n(head.begin(), 13 + 1164, file.begin());
    file[13 + 1164 + 1012 + 496] = static_cast<std::byte>(count);
    const Reading read = Read(file);
    EXPECT_EQ(read.good, count == 128);
    EXPECT_EQ(read.out, count == 128 ? "" : kCommandError);
    EXPECT_EQ(read.plugin->nactions, count == 128 ? 2 : 1);
    EXPECT_EQ(read.plugin->damagedfile == nullptr, count == 128);
  }
}

TEST_F(PluginFiles, CommandCountOfFourMillionsIsNoProblem) {
  const Reading read = Read(SampleFile().Fill(kAction1 + 496, 4, 0xFF).bytes());
  EXPECT_FALSE(read.good);
  EXPECT_EQ(read.plugin->nactions, 0);
}

TEST_F(PluginFiles, TextLengthBeyondTheFileIsAShortReadWithoutAllocation) {
  WriteBytes(PathOf("X.sla"), SampleFile().Fill(kCommand1 + 48, 4, 0xFF).bytes());
  struct rusage before {
  }, after{};
  getrusage(RUSAGE_SELF, &before);
  const Reading read = Read("X.sla");
  getrusage(RUSAGE_SELF, &after);
  EXPECT_FALSE(read.good);
  EXPECT_EQ(read.out, kTextError);
  EXPECT_EQ(read.plugin->nactions, 0);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024) << "kilobytes";
}

TEST_F(PluginFiles, OneTextByteTooManyIsAShortRead) {
  const Reading read = Read(SampleFile().Put(kCommand3 + 48, {3}).bytes());
  EXPECT_EQ(read.out, kTextError);
  EXPECT_EQ(read.plugin->nactions, 2);
}

TEST_F(PluginFiles, NulInsideATextIsKeptInMemoryAndEndsItWhenSaved) {
  const Reading read = Read(SampleFile().Put(kText1 + 3, {0}).bytes());
  ASSERT_TRUE(read.good);
  const GromlitCmd& cmd = *read.plugin->actions[0]->cmds[0];
  EXPECT_EQ(cmd.ntext, 9u);
  EXPECT_EQ(std::string(cmd.text, 10), std::string("Con\0rol-l\0", 10));
  ASSERT_NE(UnLoadPlugin(read.plugin.get(), "XTerm"), nullptr);
  EXPECT_EQ(cmd.ntext, 3u);
}

TEST_F(PluginFiles, NamesPointsAndKeysAreCutOrKeptAsEverywhere) {
  const Reading read = Read(SampleFile()
                                .Fill(kRecord, 64, 'a')
                                .Fill(kRecord + 64, 64, 'c')
                                .Fill(kAction1 + 428, 64, 'n')
                                .Fill(kAction1, 32, 's')
                                .Put(kAction1 + 32, {200})
                                .Put(kCommand1 + 1, {99})
                                .bytes());
  ASSERT_TRUE(read.good);
  EXPECT_EQ(std::string(read.plugin->appname), std::string(63, 'a'));
  EXPECT_EQ(std::string(read.plugin->classname), std::string(63, 'c'));
  EXPECT_EQ(std::string(read.plugin->actions[0]->name), std::string(63, 'n'));
  EXPECT_EQ(std::string(read.plugin->actions[0]->sym.name), std::string(31, 's'));
  EXPECT_EQ(read.plugin->actions[0]->sym.npoints, 64);
  EXPECT_EQ(read.plugin->actions[0]->cmds[0]->nkeys, 99);
}

TEST_F(PluginFiles, WhatIsNoRegularFileIsNeverWaitedFor) {
  ASSERT_EQ(mkfifo(PathOf("fifo").c_str(), 0666), 0);
  fs::create_symlink("/dev/zero", PathOf("zero"));
  fs::create_directory(PathOf("folder"));
  for (const char* name : {"fifo", "zero", "folder"}) {
    GromlitPlugin plugin{};
    EXPECT_EQ(ReadPluginHeader(name, &plugin), nullptr) << name;
    EXPECT_EQ(ReadPluginActions(name, &plugin), nullptr) << name;
  }
}

TEST_F(PluginFiles, HugeSparseFileIsReadUpToTheBound) {
  WriteBytes(PathOf("X.sla"), SampleFile().Put(kCommand1 + 48, {0, 0, 0, 0x7F}).bytes());
  fs::resize_file(PathOf("X.sla"), uintmax_t{1} << 36);
  const Reading read = Read("X.sla");
  EXPECT_FALSE(read.good);
  EXPECT_EQ(read.out, kTextError);
}

// --- Setting damaged files aside ---

TEST_F(PluginFiles, DamagedFileIsCopiedBeforeItsFirstOverwrite) {
  const auto damaged = SampleFile().bytes();
  const auto cut = std::span(damaged).first(kText3);
  const Reading read = Read(cut);
  ASSERT_FALSE(read.good);
  EXPECT_FALSE(Exists(install_ / "damaged"));
  ASSERT_EQ(chmod(PathOf("X.sla").c_str(), 0600), 0);
  ASSERT_NE(UnLoadPlugin(read.plugin.get(), "X"), nullptr);
  EXPECT_EQ(ReadBytes(install_ / "damaged/X.sla"), std::vector(cut.begin(), cut.end()));
  struct stat st {};
  ASSERT_EQ(stat((install_ / "damaged/X.sla").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0600u) << "as private as the original";
  EXPECT_EQ(read.plugin->damagedfile, nullptr);
  ASSERT_NE(UnLoadPlugin(read.plugin.get(), "X"), nullptr);
  EXPECT_FALSE(Exists(install_ / "damaged/X.sla.2")) << "once is enough";
}

TEST_F(PluginFiles, EarlierCopiesAreNotOverwritten) {
  const auto damaged = SampleFile().bytes();
  fs::create_directory(install_ / "damaged");
  WriteText(install_ / "damaged/X.sla", "first");
  WriteText(install_ / "damaged/X.sla.2", "second");
  const Reading read = Read(std::span(damaged).first(kText3));
  ASSERT_NE(UnLoadPlugin(read.plugin.get(), "X"), nullptr);
  EXPECT_EQ(ReadText(install_ / "damaged/X.sla"), "first");
  EXPECT_EQ(ReadText(install_ / "damaged/X.sla.2"), "second");
  EXPECT_EQ(ReadBytes(install_ / "damaged/X.sla.3").size(), kText3);
}

TEST_F(PluginFiles, SaveFailsWhenTheCopyFails) {
  const auto damaged = SampleFile().bytes();
  WriteText(install_ / "damaged", "a file where the directory should be");
  const Reading read = Read(std::span(damaged).first(kText3));
  CaptureStderr();
  EXPECT_EQ(UnLoadPlugin(read.plugin.get(), "X"), nullptr);
  EXPECT_EQ(GetCapturedStderr(), "Save Plugin: Not a directory\n");
  EXPECT_EQ(ReadBytes(PathOf("X.sla")).size(), kText3);
  EXPECT_NE(read.plugin->damagedfile, nullptr) << "still to be set aside";
}

TEST_F(PluginFiles, DamagedFileThatIsGoneNeedsNoCopy) {
  const auto damaged = SampleFile().bytes();
  const Reading read = Read(std::span(damaged).first(kText3));
  fs::remove(PathOf("X.sla"));
  EXPECT_NE(UnLoadPlugin(read.plugin.get(), "X"), nullptr);
  EXPECT_TRUE(Exists(PathOf("X.sla")));
}

// --- Failing saves ---

int TrySave() {
  const OwnedPlugin plugin = SamplePlugin();
  return UnLoadPlugin(plugin.get(), "XTerm") == nullptr ? 0 : 1;
}

TEST_F(PluginFiles, SaveIntoAMissingDirectoryPrintsTheReason) {
  fs::remove(install_ / "plugins");
  const auto result = RunInChild(TrySave);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Plugin: No such file or directory\n");
  EXPECT_EQ(result.out, "");
}

TEST_F(PluginFiles, SaveOverADirectoryPrintsTheReason) {
  fs::create_directory(PathOf("XTerm.sla"));
  const auto result = RunInChild(TrySave);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Plugin: Is a directory\n");
}

TEST_F(PluginFiles, SaveOverAReadOnlyFilePrintsTheReason) {
  WriteText(PathOf("XTerm.sla"), "old");
  ASSERT_EQ(chmod(PathOf("XTerm.sla").c_str(), 0444), 0);
  ASSERT_EQ(chmod(install_.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod((install_ / "plugins").c_str(), 0777), 0);
  const auto result = RunInChild([] { return BecomeOrdinaryUser() ? TrySave() : 2; });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Plugin: Permission denied\n");
  EXPECT_EQ(ReadText(PathOf("XTerm.sla")), "old");
}

TEST_F(PluginFiles, NameTooLongForTheFileSystemPrintsTheReason) {
  const OwnedPlugin plugin = SamplePlugin();
  CaptureStderr();
  EXPECT_EQ(UnLoadPlugin(plugin.get(), std::string(300, 'n').c_str()), nullptr);
  EXPECT_EQ(GetCapturedStderr(), "Save Plugin: File name too long\n");
}

TEST_F(PluginFiles, SaveBeyondTheFileSizeLimitSaysWhichPartWasShort) {
  const struct {
    size_t limit;
    const char* out;
  } rows[] = {
      {0, ""},
      {100, ""},
      {kAction1 - 1, ""},
      {kAction1, "Error writing Plugin Actions\n"},
      {kCommand1 - 1, "Error writing Plugin Actions\n"},
      {kCommand1, "Error writing Plugin Command\n"},
      {kText1, "Error writing plugin command text\n"},
      {kCommand2, "Error writing Plugin Command\n"},
      {kAction2, "Error writing Plugin Actions\n"},
      {kSampleSize - 1, "Error writing plugin command text\n"},
  };
  for (const auto& row : rows) {
    WriteText(PathOf("XTerm.sla"), "old");
    const auto result = RunInChild([&] { return LimitFileSize(row.limit) ? TrySave() : 2; });
    EXPECT_EQ(result.status, 0) << row.limit;
    EXPECT_EQ(result.out, row.out) << row.limit;
    EXPECT_EQ(result.err, "Save Plugin: File too large\n") << row.limit;
    EXPECT_EQ(ReadText(PathOf("XTerm.sla")), "old") << row.limit;
  }
}

TEST_F(PluginFiles, PluginThatCouldNotBeReadBackIsNotWritten) {
  const OwnedPlugin plugin = SamplePlugin();
  GromlitCmd* cmd = plugin->actions[2]->cmds[0];
  std::free(cmd->text);
  cmd->text = static_cast<char*>(std::malloc(kMaxPluginFile + 1));
  ASSERT_NE(cmd->text, nullptr);
  std::memset(cmd->text, 't', kMaxPluginFile);
  cmd->text[kMaxPluginFile] = '\0';
  CaptureStderr();
  EXPECT_EQ(UnLoadPlugin(plugin.get(), "XTerm"), nullptr);
  EXPECT_EQ(GetCapturedStderr(), "Save Plugin: File too large\n");
  EXPECT_FALSE(Exists(PathOf("XTerm.sla")));
}

// The limit falls between two records: what comes behind it must not be forgotten when the size is
// counted, nor the whole be refused that just fits.
TEST_F(PluginFiles, FileThatReachesTheLimitBetweenTwoRecords) {
  const OwnedPlugin plugin = NewPlugin("App", "Class");
  GromlitAction* action = AddAction(plugin.get(), "action");
  GromlitCmd* cmd = AddCommand(action, kText, nullptr);
  const size_t size = kMaxPluginFile - EncodePluginRecords(*plugin).size();
  cmd->text = static_cast<char*>(std::calloc(size + 1, 1));
  ASSERT_NE(cmd->text, nullptr);
  cmd->ntext = static_cast<uint32_t>(size);
  EXPECT_EQ(EncodePluginRecords(*plugin).size(), kMaxPluginFile);
  AddCommand(action, kText, "x");
  EXPECT_EQ(EncodePluginRecords(*plugin).size(), 0u);
}

}  // namespace
}  // namespace gromlit
