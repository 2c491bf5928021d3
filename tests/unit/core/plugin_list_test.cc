// The list of all plug-ins: look-up by class, making, deleting, names of files, menu pages.
#include "core/plugin_files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/action_copy.h"
#include "core/files.h"
#include "core/hands_off.h"
#include "core/offer_memory.h"
#include "core/plugin_pages.h"
#include "core/retired.h"
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
using testing::GetCapturedStderr;
using testing::GetCapturedStdout;
using namespace gromlit::testing;

using V = std::vector<std::string>;

class PluginList : public ::testing::Test {
 protected:
  std::string PathOf(const std::string& file) { return install_ / ("plugins/" + file); }
  // A plug-in file of this class with the sample's three actions.
  void WritePlugin(const std::string& file, const std::string& classname) {
    auto golden = SampleFile();
    golden.Fill(kRecord + 64, 64, 0).Put(kRecord + 64, classname);
    WriteBytes(PathOf(file), golden.bytes());
  }
  std::string ClassIn(const std::string& file) {
    const auto bytes = ReadBytes(PathOf(file));
    return bytes.size() < kAction1 ? "" : reinterpret_cast<const char*>(&bytes[kRecord + 64]);
  }
  int ActionsIn(const std::string& file) {
    return static_cast<int>(ReadBytes(PathOf(file)).at(kRecord + 650));
  }
  V Classes() {
    V classes;
    for (const auto* node = allPlugins; node->plugin != nullptr; node = node->next)
      classes.emplace_back(node->plugin->classname);
    return classes;
  }
  TempInstall install_;
};

// --- Loading and looking up ---

TEST_F(PluginList, DirectoryIsReadInItsOrderWithoutAFilterOnNames) {
  WritePlugin("b.sla", "b");
  WritePlugin("a.old", "a");
  WritePlugin("noext", "c");
  WriteText(PathOf("notes"), "no plug-in");
  WriteText(PathOf("short.sla"), "GromlitPlugin");
  fs::create_directory(PathOf("folder.sla"));
  ASSERT_EQ(mkfifo(PathOf("fifo.sla").c_str(), 0666), 0);
  fs::create_symlink("/dev/zero", PathOf("zero.sla"));
  V expected;
  for (const auto& entry : fs::directory_iterator(install_ / "plugins")) {
    const std::string name = entry.path().filename().string();
    if (name == "b.sla" || name == "a.old" || name == "noext") expected.push_back(name);
  }
  CaptureStdout();
  CaptureStderr();
  EXPECT_EQ(LoadPlugins(), 3);
  EXPECT_EQ(GetCapturedStdout() + GetCapturedStderr(), "");
  V found;
  const GromlitPluginList* node = allPlugins;
  for (; node->plugin != nullptr; node = node->next) {
    found.emplace_back(node->filename);
    EXPECT_EQ(node->loaded, 0);
    EXPECT_EQ(node->plugin->nactions, 0);
  }
  EXPECT_EQ(found, expected);
  EXPECT_EQ(node->next, nullptr);
}

TEST_F(PluginList, MissingDirectoryGivesAnEmptyListSilently) {
  fs::remove(install_ / "plugins");
  CaptureStderr();
  EXPECT_EQ(LoadPlugins(), 0);
  EXPECT_EQ(GetCapturedStderr(), "");
  ASSERT_NE(allPlugins, nullptr);
  EXPECT_EQ(allPlugins->plugin, nullptr);
  EXPECT_EQ(FindPlugin("XTerm"), nullptr);
}

TEST_F(PluginList, AListThatWasNeverLoadedIsAskedAsAnEmptyOne) {
  const auto forget = [] {
    Retire(allPlugins);
    allPlugins = nullptr;
  };
  DefaultPlugin = nullptr;
  const OwnedPlugin other = NewPlugin("App", "Class");
  CopyText(other->storedfile, "Class.sla");
  forget();
  EXPECT_EQ(FindPlugin("XTerm"), nullptr);
  forget();
  EXPECT_FALSE(IsHandsOffClass("XTerm"));
  forget();
  EXPECT_FALSE(AnyHandsOff());
  forget();
  EXPECT_FALSE(IsListed(other.get()));
  forget();
  EXPECT_EQ(UnLoadPlugin(other.get(), "Class"), other.get());
  forget();
  EXPECT_EQ(DropPlugin(other.get(), "Class"), 1);
  EXPECT_EQ(Classes(), V{});
}

TEST_F(PluginList, PluginLookedUpTwiceReadsItsFileOnce) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = FindPlugin("XTerm");
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(plugin->nactions, 3);
  const GromlitAction* first = plugin->actions[0];
  auto changed = SampleFile();
  WriteBytes(PathOf("XTerm.sla"), changed.Put(kRecord + 650, {1}).bytes());
  EXPECT_EQ(FindPlugin("XTerm"), plugin);
  EXPECT_EQ(plugin->nactions, 3);
  EXPECT_EQ(plugin->actions[0], first);
  fs::remove(PathOf("XTerm.sla"));
  EXPECT_EQ(FindPlugin("XTerm"), plugin);
  EXPECT_EQ(plugin->nactions, 3);
}

TEST_F(PluginList, ClassesAreComparedExactly) {
  WritePlugin("1", "XTerm");
  LoadPlugins();
  EXPECT_EQ(FindPluginNode("xterm"), nullptr);
  EXPECT_EQ(FindPluginNode("XTer"), nullptr);
  EXPECT_EQ(FindPluginNode("XTerm "), nullptr);
  EXPECT_EQ(FindPluginNode(""), nullptr);
  EXPECT_EQ(FindPluginNode("XTerm"), allPlugins);
  EXPECT_EQ(allPlugins->loaded, 1);
}

TEST_F(PluginList, LongClassTextsCompareByWhatFitsIntoTheRecord) {
  const std::string stored(63, 'c');
  WritePlugin("long.sla", stored);
  LoadPlugins();
  ASSERT_NE(FindPlugin((stored + std::string(36, 'd')).c_str()), nullptr);
  EXPECT_NE(FindPlugin(stored.c_str()), nullptr);
  EXPECT_EQ(FindPlugin(stored.substr(0, 62).c_str()), nullptr);
}

TEST_F(PluginList, TruncatedPluginCountsAsLoadedWithTheActionsReadSoFar) {
  const auto whole = SampleFile().bytes();
  WriteBytes(PathOf("XTerm.sla"), std::span(whole).first(kCommand3 + 5));
  LoadPlugins();
  CaptureStdout();
  GromlitPluginList* node = FindPluginNode("XTerm");
  EXPECT_EQ(FindPluginNode("XTerm"), node);
  EXPECT_EQ(GetCapturedStdout(), "Error reading Plugin Command\n") << "read once";
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->loaded, 1);
  EXPECT_EQ(node->plugin->nactions, 2);
  EXPECT_STREQ(node->plugin->damagedfile, "XTerm.sla");
}

TEST_F(PluginList, FileThatVanishesBeforeItsFirstUseCountsAsLoaded) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  fs::remove(PathOf("XTerm.sla"));
  GromlitPluginList* node = FindPluginNode("XTerm");
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->loaded, 1);
  EXPECT_EQ(node->plugin->nactions, 0);
}

TEST_F(PluginList, RenamedFileIsFoundByItsClassAndSavedInItself) {
  WritePlugin("by-hand.txt", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = FindPlugin("XTerm");
  ASSERT_NE(plugin, nullptr);
  CopyText(plugin->appname, "Changed");
  ASSERT_NE(UnLoadPlugin(plugin, plugin->classname), nullptr);
  auto expected = SampleFile();
  expected.Fill(kRecord, 64, 0).Put(kRecord, "Changed");
  EXPECT_EQ(ReadBytes(PathOf("by-hand.txt")), expected.bytes());
  EXPECT_FALSE(Exists(PathOf("XTerm.sla"))) << "no second file of the class";
  EXPECT_EQ(LoadPlugins(), 1);
  EXPECT_STREQ(FindPlugin("XTerm")->appname, "Changed") << "after the next start";
  Retire(plugin);
}

TEST_F(PluginList, SavingAPluginThatWasNeverLookedUpKeepsItsActions) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  CopyText(allPlugins->plugin->appname, "New name");
  ASSERT_NE(UnLoadPlugin(allPlugins->plugin, "XTerm"), nullptr);
  auto expected = SampleFile();
  expected.Put(kRecord, "New name");
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")), expected.bytes());
  EXPECT_EQ(allPlugins->loaded, 1);
}

// --- Making ---

TEST_F(PluginList, CreatedPluginIsWrittenEmptyAndHeadsTheList) {
  WritePlugin("b.sla", "b");
  LoadPlugins();
  GromlitPlugin* plugin = CreatePlugin("Application", "Class");
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(allPlugins->plugin, plugin);
  EXPECT_STREQ(allPlugins->filename, "Class");
  EXPECT_EQ(allPlugins->loaded, 1);
  EXPECT_EQ(Classes(), (V{"Class", "b"}));
  EXPECT_EQ(ReadBytes(PathOf("Class.sla")), Golden(1177)
                                                .Put(0, "GromlitPlugin")
                                                .Put(kRecord, "Application")
                                                .Put(kRecord + 64, "Class")
                                                .bytes());
  EXPECT_FALSE(Exists(install_ / "damaged"));
}

TEST_F(PluginList, KnownClassIsReturnedUnchanged) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = CreatePlugin("Other name", "XTerm");
  EXPECT_STREQ(plugin->appname, "Terminal");
  EXPECT_EQ(plugin->nactions, 3);
  EXPECT_EQ(Classes(), V{"XTerm"});
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")), SampleFile().bytes());
}

TEST_F(PluginList, NamesAreCutToTheirFields) {
  LoadPlugins();
  const std::string longest(99, 'c');
  GromlitPlugin* plugin = CreatePlugin(longest.c_str(), longest.c_str());
  EXPECT_EQ(std::string(plugin->appname), std::string(63, 'c'));
  EXPECT_EQ(std::string(plugin->classname), std::string(63, 'c'));
  EXPECT_TRUE(Exists(PathOf(std::string(63, 'c') + ".sla")));
  EXPECT_EQ(CreatePlugin("", longest.c_str()), plugin) << "not made twice";
}

TEST_F(PluginList, PluginThatCannotBeWrittenIsListedAllTheSame) {
  fs::remove(install_ / "plugins");
  LoadPlugins();
  CaptureStderr();
  GromlitPlugin* plugin = CreatePlugin("App", "Class");
  EXPECT_EQ(GetCapturedStderr(), "Save Plugin: No such file or directory\n");
  EXPECT_EQ(FindPlugin("Class"), plugin);
}

TEST_F(PluginList, FileThatAppearedSinceTheStartIsSetAsideBeforeItIsOverwritten) {
  LoadPlugins();
  WritePlugin("XTerm.sla", "XTerm");
  ASSERT_NE(CreatePlugin("App", "XTerm"), nullptr);
  EXPECT_EQ(ActionsIn("XTerm.sla"), 0);
  EXPECT_EQ(ReadBytes(install_ / "damaged/XTerm.sla"), SampleFile().bytes());
}

TEST_F(PluginList, DefaultPluginIsFoundOrMade) {
  LoadPlugins();
  GromlitPlugin* made = GetDefaultPlugin();
  EXPECT_EQ(DefaultPlugin, made);
  EXPECT_STREQ(made->appname, "Default");
  EXPECT_STREQ(made->classname, "Default");
  EXPECT_TRUE(Exists(PathOf("Default.sla")));
  EXPECT_EQ(GetDefaultPlugin(), made);
  LoadPlugins();
  EXPECT_NE(GetDefaultPlugin(), made) << "read again after a new start";
  EXPECT_STREQ(DefaultPlugin->classname, "Default");
  Retire(made);
}

// --- File names ---

TEST_F(PluginList, SlashInAClassStaysInsideTheDirectory) {
  LoadPlugins();
  ASSERT_NE(CreatePlugin("App", "../../evil/Class"), nullptr);
  EXPECT_EQ(ClassIn(".._.._evil_Class.sla"), "../../evil/Class");
  EXPECT_FALSE(Exists(install_ / "evil"));
  ASSERT_NE(CreatePlugin("App", "/"), nullptr);
  EXPECT_EQ(ClassIn("_.sla"), "/");
}

TEST_F(PluginList, ClassesThatShareAFileNameNeverOverwriteEachOther) {
  LoadPlugins();
  CreatePlugin("App", "a_b");
  GromlitPlugin* slashed = CreatePlugin("App", "a/b");
  CreatePlugin("App", "a_b_2");
  EXPECT_EQ(ClassIn("a_b.sla"), "a_b");
  EXPECT_EQ(ClassIn("a_b_2.sla"), "a/b");
  EXPECT_EQ(ClassIn("a_b_2_2.sla"), "a_b_2");
  EXPECT_FALSE(Exists(install_ / "damaged"));
  AddAction(slashed, "Action");
  ASSERT_NE(UnLoadPlugin(slashed, "a/b"), nullptr);
  EXPECT_EQ(ActionsIn("a_b_2.sla"), 1) << "saved under its own variation again";
  EXPECT_EQ(ActionsIn("a_b.sla"), 0);
  fs::remove(PathOf("a_b.sla"));
  ASSERT_NE(UnLoadPlugin(slashed, "a/b"), nullptr);
  EXPECT_FALSE(Exists(PathOf("a_b.sla"))) << "no second file of the class";
}

TEST_F(PluginList, HandMadeNameOfAnotherClassIsNotOverwritten) {
  WritePlugin("Emacs.sla", "XTerm");
  LoadPlugins();
  ASSERT_NE(CreatePlugin("App", "Emacs"), nullptr);
  EXPECT_EQ(ReadBytes(PathOf("Emacs.sla")), SampleFile().bytes());
  EXPECT_EQ(ClassIn("Emacs_2.sla"), "Emacs");
}

// --- Several files of one class ---

TEST_F(PluginList, OfTwoFilesOfOneClassTheOneWithItsNameCounts) {
  WritePlugin("A copy.sla", "XTerm");
  WritePlugin("XTerm.sla", "XTerm");
  WritePlugin("Z.sla", "XTerm");
  WritePlugin("b.sla", "b");
  EXPECT_EQ(LoadPlugins(), 2);
  GromlitPlugin* plugin = FindPlugin("XTerm");
  ASSERT_NE(plugin, nullptr);
  EXPECT_STREQ(plugin->storedfile, "XTerm.sla");
  V spare;
  for (const SparePluginFile& file : SparePluginFiles()) {
    spare.push_back(file.name);
    EXPECT_EQ(file.used, "XTerm.sla");
    EXPECT_EQ(file.classname, "XTerm");
  }
  EXPECT_EQ(spare, (V{"A copy.sla", "Z.sla"}));
}

TEST_F(PluginList, WithoutAFileOfItsNameTheFirstInByteOrderCounts) {
  WritePlugin("b.sla", "XTerm");
  WritePlugin("B.sla", "XTerm");
  WritePlugin("a.sla", "XTerm");
  EXPECT_EQ(LoadPlugins(), 1);
  EXPECT_STREQ(allPlugins->plugin->storedfile, "B.sla");
  EXPECT_STREQ(allPlugins->filename, "B.sla");
  EXPECT_EQ(SparePluginFiles().size(), 2u);
}

TEST_F(PluginList, OwnNameOfAClassHasNoSlashes) {
  WritePlugin("a.sla", "x/y");
  WritePlugin("x_y.sla", "x/y");
  EXPECT_EQ(LoadPlugins(), 1);
  EXPECT_STREQ(allPlugins->plugin->storedfile, "x_y.sla");
}

TEST_F(PluginList, SpareFilesAreNeitherOverwrittenNorRemoved) {
  WritePlugin("XTerm.sla", "XTerm");
  WritePlugin("XTerm_2.sla", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = FindPlugin("XTerm");
  AddAction(plugin, "Another");
  ASSERT_NE(UnLoadPlugin(plugin, "XTerm"), nullptr);
  EXPECT_EQ(ActionsIn("XTerm.sla"), 4);
  ASSERT_EQ(DropPlugin(plugin, "XTerm"), 1);
  EXPECT_FALSE(Exists(PathOf("XTerm.sla")));
  // The deleted plug-in's name is free again, the spare file is not.
  GromlitPlugin* made = CreatePlugin("App", "XTerm");
  EXPECT_STREQ(made->storedfile, "XTerm.sla");
  EXPECT_EQ(ReadBytes(PathOf("XTerm_2.sla")), SampleFile().bytes());
  Retire(plugin);
}

TEST_F(PluginList, PluginWhoseFileBecameAnothersIsSavedBesideIt) {
  WritePlugin("by-hand.txt", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = FindPlugin("XTerm");
  WritePlugin("by-hand.txt", "Emacs");
  ASSERT_NE(UnLoadPlugin(plugin, "XTerm"), nullptr);
  EXPECT_EQ(ClassIn("by-hand.txt"), "Emacs");
  EXPECT_EQ(ClassIn("XTerm.sla"), "XTerm");
  EXPECT_STREQ(plugin->storedfile, "XTerm.sla");
}

TEST_F(PluginList, SaveFailsWhenEveryVariationBelongsToOthers) {
  WritePlugin("C.sla", "other");
  for (int n = 2; n <= 32; n++) WritePlugin("C_" + std::to_string(n) + ".sla", "other");
  const OwnedPlugin plugin = NewPlugin("App", "C");
  CaptureStderr();
  EXPECT_EQ(UnLoadPlugin(plugin.get(), "C"), nullptr);
  EXPECT_EQ(GetCapturedStderr(), "Save Plugin: File exists\n");
  EXPECT_EQ(ClassIn("C.sla"), "other");
}

TEST_F(PluginList, EmptyClassHasAFile) {
  LoadPlugins();
  ASSERT_NE(CreatePlugin("", ""), nullptr);
  EXPECT_TRUE(Exists(PathOf(".sla")));
  EXPECT_EQ(LoadPlugins(), 1);
  EXPECT_NE(FindPlugin(""), nullptr);
}

// --- Deleting ---

TEST_F(PluginList, DeletingTakesFileAndFirstNodeOfTheClass) {
  LoadPlugins();
  for (const char* name : {"c", "b", "a"}) CreatePlugin(name, name);
  EXPECT_EQ(DropPlugin(FindPlugin("b"), "b"), 1);
  EXPECT_FALSE(Exists(PathOf("b.sla")));
  EXPECT_EQ(Classes(), (V{"a", "c"}));
  EXPECT_EQ(DropPlugin(FindPlugin("a"), "a"), 1);
  EXPECT_EQ(Classes(), V{"c"}) << "the head moved on";
  const GromlitPlugin* last = FindPlugin("c");
  EXPECT_EQ(DropPlugin(last, "c"), 1);
  EXPECT_EQ(Classes(), V{});
  EXPECT_STREQ(last->classname, "c") << "the record stays for those who look at it";
}

TEST_F(PluginList, DeletingByClassFindsAnEqualRecord) {
  LoadPlugins();
  CreatePlugin("one", "Class");
  const OwnedPlugin equal = NewPlugin("other", "Class");
  EXPECT_EQ(DropPlugin(equal.get(), "Class"), 1);
  EXPECT_EQ(Classes(), V{});
}

TEST_F(PluginList, DeletingAnUnlistedClassDeletesTheFileOnly) {
  LoadPlugins();
  CreatePlugin("one", "one");
  WritePlugin("Class.sla", "Class");
  const OwnedPlugin plugin = NewPlugin("App", "Class");
  EXPECT_NE(DropPlugin(plugin.get(), "Class"), 0);
  EXPECT_FALSE(Exists(PathOf("Class.sla")));
  EXPECT_EQ(Classes(), V{"one"});
}

TEST_F(PluginList, FailedDeletingPrintsTheReasonAndLeavesTheList) {
  WritePlugin("by-hand.txt", "XTerm");
  LoadPlugins();
  fs::remove(PathOf("by-hand.txt"));
  CaptureStderr();
  EXPECT_EQ(DropPlugin(allPlugins->plugin, "XTerm"), 0);
  EXPECT_EQ(GetCapturedStderr(), "Delete Plugin: No such file or directory\n");
  EXPECT_EQ(Classes(), V{"XTerm"});
}

TEST_F(PluginList, DeletingTakesTheFileThatThePluginWasReadFrom) {
  WritePlugin("by-hand.txt", "XTerm");
  LoadPlugins();
  EXPECT_EQ(DropPlugin(allPlugins->plugin, "XTerm"), 1);
  EXPECT_FALSE(Exists(PathOf("by-hand.txt")));
  EXPECT_EQ(Classes(), V{});
}

TEST_F(PluginList, ARecordIsListedUntilItIsDeleted) {
  EXPECT_FALSE(IsListed(nullptr));
  GromlitPlugin* first = CreatePlugin("A", "a");
  GromlitPlugin* second = CreatePlugin("B", "b");
  EXPECT_TRUE(IsListed(first));
  EXPECT_TRUE(IsListed(second));
  const GromlitPlugin equal = *first;
  EXPECT_FALSE(IsListed(&equal));
  ASSERT_EQ(DropPlugin(first, "a"), 1);
  EXPECT_FALSE(IsListed(first));
  EXPECT_TRUE(IsListed(second));
  Retire(first);
}

TEST_F(PluginList, DeletingNeverTakesAnotherClassesFile) {
  LoadPlugins();
  CreatePlugin("App", "a_b");
  GromlitPlugin* slashed = CreatePlugin("App", "a/b");
  EXPECT_EQ(DropPlugin(slashed, "a/b"), 1);
  EXPECT_TRUE(Exists(PathOf("a_b.sla")));
  EXPECT_FALSE(Exists(PathOf("a_b_2.sla")));
  EXPECT_EQ(Classes(), V{"a_b"});
  CaptureStderr();
  EXPECT_EQ(DropPlugin(slashed, "a/b"), 0) << "its file is gone";
  EXPECT_EQ(GetCapturedStderr(), "Delete Plugin: No such file or directory\n");
  EXPECT_TRUE(Exists(PathOf("a_b.sla")));
}

// --- Menu pages and offers ---

std::vector<std::pair<bool, size_t>> Shape(int plugins) {
  Retire(allPlugins);
  allPlugins = new GromlitPluginList();
  static std::vector<OwnedPlugin> owned;
  for (int i = 0; i < plugins; i++) {
    owned.push_back(NewPlugin(std::to_string(i), std::to_string(i)));
    auto* node = new GromlitPluginList{nullptr, 1, owned.back().get(), allPlugins};
    allPlugins = node;
  }
  std::vector<std::pair<bool, size_t>> shape;
  int expected = plugins - 1;
  for (const PluginPage& page : PluginMenuPages()) {
    shape.emplace_back(page.more, page.plugins.size());
    for (const GromlitPlugin* plugin : page.plugins)
      EXPECT_EQ(plugin->appname, std::to_string(expected--)) << "list order";
  }
  EXPECT_EQ(expected, -1) << "every plug-in is on a page";
  return shape;
}

TEST(PluginMenuPages, TwentyFitAndMoreContinueBehindNineteen) {
  using S = std::vector<std::pair<bool, size_t>>;
  EXPECT_EQ(Shape(0), S{});
  EXPECT_EQ(Shape(1), (S{{false, 1}}));
  EXPECT_EQ(Shape(20), (S{{false, 20}}));
  EXPECT_EQ(Shape(21), (S{{true, 19}, {false, 2}}));
  EXPECT_EQ(Shape(39), (S{{true, 19}, {false, 20}}));
  EXPECT_EQ(Shape(40), (S{{true, 19}, {true, 19}, {false, 2}}));
}

TEST(RememberClass, EachClassIsNewOnce) {
  EXPECT_EQ(RememberClass("XTerm"), 0);
  EXPECT_EQ(RememberClass("XTerm"), 1);
  EXPECT_EQ(RememberClass("xterm"), 0);
  EXPECT_EQ(RememberClass("XTerm"), 1);
  EXPECT_STREQ(RememberFindNewList->classname, "xterm") << "the newest is the head";
  char buffer[] = "Gone";
  EXPECT_EQ(RememberClass(buffer), 0);
  buffer[0] = 'D';
  EXPECT_EQ(RememberClass("Gone"), 1) << "a copy is remembered";
}

// --- Hands off ---

TEST_F(PluginList, HandsOffIsOneBitOfTheRecordAndTheFile) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = FindPlugin("XTerm");
  plugin->spare1 = 0x82;
  EXPECT_TRUE(SetHandsOff(plugin, true));
  EXPECT_EQ(plugin->spare1, 0x83);
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")).at(kRecord + 136), std::byte{0x83});
  EXPECT_TRUE(SetHandsOff(plugin, false));
  EXPECT_EQ(plugin->spare1, 0x82);
  EXPECT_EQ(ReadBytes(PathOf("XTerm.sla")).at(kRecord + 136), std::byte{0x82});
  EXPECT_EQ(ActionsIn("XTerm.sla"), 3);
  EXPECT_FALSE(IsUnused(plugin)) << "it has actions";
}

TEST_F(PluginList, HandsOffThatCannotBeSavedIsNotSet) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = FindPlugin("XTerm");
  fs::remove_all(install_ / "plugins");
  CaptureStderr();
  EXPECT_FALSE(SetHandsOff(plugin, true));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(plugin->spare1, 0);
  EXPECT_EQ(CreateHandsOffPlugin("New"), nullptr);
  EXPECT_EQ(errno, ENOENT);
  GetCapturedStderr();
  EXPECT_EQ(Classes(), V{"XTerm"}) << "what has no file is not listed";
}

TEST_F(PluginList, MakingAPluginTellsWhetherItsFileWasWritten) {
  LoadPlugins();
  bool saved = false;
  GromlitPlugin* plugin = CreatePlugin("First", "First", &saved);
  EXPECT_TRUE(saved);
  fs::remove_all(install_ / "plugins");
  CaptureStderr();
  EXPECT_NE(CreatePlugin("Second", "Second", &saved), nullptr);
  EXPECT_EQ(GetCapturedStderr(), "Save Plugin: No such file or directory\n");
  EXPECT_FALSE(saved);
  EXPECT_EQ(CreatePlugin("First", "First", &saved), plugin);
  EXPECT_TRUE(saved) << "nothing had to be written";
}

TEST_F(PluginList, HandsOffMakesAPluginForNothingElse) {
  WritePlugin("XTerm.sla", "XTerm");
  LoadPlugins();
  GromlitPlugin* plugin = CreateHandsOffPlugin("New");
  ASSERT_NE(plugin, nullptr);
  EXPECT_TRUE(HandsOff(plugin));
  EXPECT_EQ(ReadBytes(PathOf("New.sla")).at(kRecord + 136), std::byte{1});
  EXPECT_EQ(Classes(), (V{"New", "XTerm"}));
  EXPECT_TRUE(IsUnused(plugin));
  CopyText(plugin->appname, "Named");
  EXPECT_FALSE(IsUnused(plugin)) << "the user named it";
  EXPECT_FALSE(IsUnused(nullptr));
  CaptureStderr();
  DefaultPlugin = CreatePlugin("Default", "Default");
  EXPECT_FALSE(IsUnused(DefaultPlugin));
  DefaultPlugin = nullptr;
  EXPECT_EQ(GetCapturedStderr(), "");
}

TEST_F(PluginList, HandsOffIsAskedByClassAndElseOfDefault) {
  WritePlugin("XTerm.sla", "XTerm");
  WritePlugin("Other.sla", "Other");
  LoadPlugins();
  DefaultPlugin = nullptr;
  GromlitPlugin* plugin = FindPlugin("XTerm");
  plugin->spare1 = 2;
  EXPECT_FALSE(HandsOff(plugin)) << "another bit";
  EXPECT_FALSE(HandsOff(nullptr));
  EXPECT_FALSE(AnyHandsOff());
  EXPECT_FALSE(IsHandsOffClass("XTerm"));
  plugin->spare1 = kHandsOff | 2;
  EXPECT_TRUE(AnyHandsOff());
  EXPECT_TRUE(IsHandsOffClass("XTerm"));
  EXPECT_FALSE(IsHandsOffClass("Other"));
  EXPECT_FALSE(IsHandsOffClass("Unknown"));
  GromlitPlugin all{};
  all.spare1 = kHandsOff;
  DefaultPlugin = &all;
  EXPECT_TRUE(IsHandsOffClass("Unknown"));
  EXPECT_FALSE(IsHandsOffClass("Other")) << "its own plug-in counts";
  DefaultPlugin = nullptr;
}

// --- Copies of actions ---

TEST(CopyAction, OwnsItsCommandsAndNoFeatures) {
  const OwnedPlugin plugin = SamplePlugin();
  GromlitAction* source = plugin->actions[0];
  char signature[] = "the source's";
  source->sym.signature = signature;
  GromlitAction copy;
  CopyAction(&copy, source);
  source->sym.signature = nullptr;
  EXPECT_EQ(copy.sym.signature, nullptr);
  EXPECT_EQ(copy.sym.shape, nullptr);
  ASSERT_EQ(copy.ncmds, source->ncmds);
  for (uint32_t i = 0; i < copy.ncmds; i++) {
    EXPECT_NE(copy.cmds[i], source->cmds[i]);
    EXPECT_EQ(copy.cmds[i]->type, source->cmds[i]->type);
    EXPECT_STREQ(copy.cmds[i]->text, source->cmds[i]->text);
  }
  EXPECT_NE(copy.cmds[0]->text, source->cmds[0]->text);
  for (uint32_t i = copy.ncmds; i < kMaxCommands; i++) EXPECT_EQ(copy.cmds[i], nullptr);
  ReleaseActionContents(&copy);
  EXPECT_EQ(copy.ncmds, 0U);
  for (const GromlitCmd* cmd : copy.cmds) EXPECT_EQ(cmd, nullptr);
}

TEST(CopyAction, HoldsAsManyCommandsAsARecord) {
  GromlitAction source{};
  GromlitCmd cmd{};
  std::fill_n(source.cmds, kMaxCommands, &cmd);
  source.ncmds = kMaxCommands;
  GromlitAction copy;
  CopyAction(&copy, &source);
  EXPECT_EQ(copy.ncmds, static_cast<uint32_t>(kMaxCommands));
  EXPECT_NE(copy.cmds[kMaxCommands - 1], nullptr);
  ReleaseActionContents(&copy);
}

TEST(OfferMemory, KnowsOnlyWhatWasRemembered) {
  EXPECT_FALSE(IsRememberedClass("Fresh"));
  EXPECT_EQ(RememberClass("Fresh"), 0);
  EXPECT_TRUE(IsRememberedClass("Fresh"));
  EXPECT_EQ(RememberFindNewList->prompt, 0);
}

}  // namespace
}  // namespace gromlit
