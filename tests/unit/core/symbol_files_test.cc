#include "core/symbol_files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/record_codec.h"
#include "core/retired.h"
#include "core/strings.h"
#include "tests/support/syscalls.h"
#include "tests/support/temp_install.h"
#include "tests/unit/core/child.h"
#include "tests/unit/core/golden.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::BecomeOrdinaryUser;
using testing::Ending;
using testing::Exists;
using testing::Golden;
using testing::LimitFileSize;
using testing::ReadBytes;
using testing::ReadText;
using testing::RunInChild;
using testing::RunTraced;
using testing::Stop;
using testing::TempInstall;
using testing::WhyNotTraced;
using testing::WriteBytes;
using testing::WriteText;

// A file with two points, an icon row and a spare, by its published offsets.
Golden File(std::string_view name) {
  return Golden(441)
      .Put(0, "GromlitSymbol")
      .Put(13, name)
      .Put(45, {2})
      .Put(47 + 2, {16, 0})
      .Put(175 + 2, {24, 0})
      .Put(47 + 4, {0x08, 0x01})
      .Put(175 + 4, {32, 0})
      .Put(305 + 4 * 5, {0x80, 0, 0, 0x01})
      .Put(433, {9, 8, 7, 6});
}

GromlitSymbol Record(std::string_view name) {
  GromlitSymbol sym{};
  CopyText(sym.name, name);
  sym.npoints = 2;
  sym.x[1] = 16;
  sym.y[1] = 24;
  sym.x[2] = 264;
  sym.y[2] = 32;
  sym.icon[5] = 0x01000080u;
  sym.spare = 0x06070809u;
  return sym;
}

std::vector<std::string> Names(GromlitSymbol** symbols, int n) {
  std::vector<std::string> names;
  for (int i = 0; i < n; i++) names.emplace_back(symbols[i]->name);
  return names;
}

std::vector<std::string> SortedNames() {
  int n = -1;
  const std::unique_ptr<GromlitSymbol*[]> sorted(UpdateSymbols(&n));
  return Names(sorted.get(), n);
}

using V = std::vector<std::string>;

class SymbolFiles : public ::testing::Test {
 protected:
  std::string PathOf(const std::string& file) { return install_ / ("symbols/" + file); }
  TempInstall install_;
};

TEST_F(SymbolFiles, WrittenFileIsTheGoldenBytes) {
  GromlitSymbol sym = Record("Hook");
  char signature[] = "abc";
  sym.signature = signature;
  EXPECT_EQ(UnLoadSymbol(&sym, "Hook", ".sls"), &sym);
  EXPECT_EQ(ReadBytes(PathOf("Hook.sls")), File("Hook").bytes());
}

TEST_F(SymbolFiles, GoldenBytesLoad) {
  WriteBytes(PathOf("Hook.sls"), File("Hook").Put(437, {1, 2, 3, 4}).bytes());
  const std::unique_ptr<GromlitSymbol> sym(LoadSymbol("Hook", ".sls"));
  ASSERT_NE(sym, nullptr);
  EXPECT_STREQ(sym->name, "Hook");
  EXPECT_EQ(sym->npoints, 2);
  EXPECT_EQ(sym->x[2], 264);
  EXPECT_EQ(sym->y[2], 32);
  EXPECT_EQ(sym->icon[5], 0x01000080u);
  EXPECT_EQ(sym->spare, 0x06070809u);
  EXPECT_EQ(sym->signature, nullptr) << "whatever the file holds in that slot";
}

TEST_F(SymbolFiles, SixtyFourthPointRoundTrips) {
  GromlitSymbol sym = Record("Full");
  sym.npoints = 64;
  for (int k = 1; k <= 64; k++) {
    sym.x[k] = static_cast<uint16_t>(16 + 8 * (k % 32));
    sym.y[k] = static_cast<uint16_t>(264 - 8 * (k % 31));
  }
  sym.x[64] = 0x0108;
  sym.y[64] = 0x00F8;
  ASSERT_NE(UnLoadSymbol(&sym, "Full", ".sls"), nullptr);
  const auto file = ReadBytes(PathOf("Full.sls"));
  EXPECT_EQ(file[175], std::byte{0x08});
  EXPECT_EQ(file[176], std::byte{0x01});
  EXPECT_EQ(file[303], std::byte{0xF8});
  EXPECT_EQ(file[304], std::byte{0x00});
  const std::unique_ptr<GromlitSymbol> back(LoadSymbol("Full", ".sls"));
  ASSERT_NE(back, nullptr);
  for (int k = 1; k <= 64; k++) {
    EXPECT_EQ(back->x[k], sym.x[k]) << k;
    EXPECT_EQ(back->y[k], sym.y[k]) << k;
  }
}

TEST_F(SymbolFiles, EveryTruncationIsRefusedAndMoreIsIgnored) {
  const auto whole = File("Hook").bytes();
  WriteBytes(PathOf("cut.sls"), whole);
  for (size_t length = whole.size(); length-- > 0;) {
    fs::resize_file(PathOf("cut.sls"), length);
    EXPECT_EQ(LoadSymbol("cut", ".sls"), nullptr) << length;
  }
  auto longer = whole;
  longer.resize(1000, std::byte{'x'});
  WriteBytes(PathOf("long.sls"), longer);
  const std::unique_ptr<GromlitSymbol> sym(LoadSymbol("long", ".sls"));
  ASSERT_NE(sym, nullptr);
  EXPECT_STREQ(sym->name, "Hook");
}

TEST_F(SymbolFiles, EveryWrongHeaderByteIsRefused) {
  for (size_t i = 0; i < 13; i++) {
    WriteBytes(PathOf("bad.sls"), File("Hook").Put(i, {'?'}).bytes());
    EXPECT_EQ(LoadSymbol("bad", ".sls"), nullptr) << i;
  }
}

TEST_F(SymbolFiles, LoadFailsSilentlyWhereThereIsNoFile) {
  const auto result = RunInChild([] { return LoadSymbol("missing", ".sls") == nullptr ? 0 : 1; });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
}

// --- LoadSymbols ---

TEST_F(SymbolFiles, DirectoryIsReadInItsOrderWithoutAFilterOnNames) {
  for (const char* name : {"zebra.sls", "apple.sls", "noext", "mango.old"})
    WriteBytes(PathOf(name), File(name).bytes());
  WriteText(PathOf("notes.txt"), "no symbol");
  WriteText(PathOf("short.sls"), "GromlitSymbol");
  fs::create_directory(PathOf("folder.sls"));
  ASSERT_EQ(mkfifo(PathOf("fifo.sls").c_str(), 0666), 0);
  fs::create_symlink("/dev/zero", PathOf("zero.sls"));
  std::vector<std::string> expected;
  for (const auto& entry : fs::directory_iterator(install_ / "symbols")) {
    const std::string name = entry.path().filename().string();
    if (name == "zebra.sls" || name == "apple.sls" || name == "noext" || name == "mango.old")
      expected.push_back(name);
  }
  EXPECT_EQ(LoadSymbols(), 4);
  std::vector<std::string> found;
  const GromlitSymbolList* node = allSymbols;
  for (; node->sym != nullptr; node = node->next) {
    found.emplace_back(node->filename);
    EXPECT_EQ(node->sym->signature, nullptr);
    EXPECT_STREQ(node->sym->name, node->filename);
  }
  EXPECT_EQ(found, expected);
  EXPECT_EQ(node->next, nullptr) << "the sentinel is the last node";
  EXPECT_EQ(node->filename, nullptr);
}

TEST_F(SymbolFiles, LinksAreFollowedAndPipesLeftUnread) {
  WriteBytes(install_ / "elsewhere", File("linked").bytes());
  fs::create_symlink(install_ / "elsewhere", PathOf("link.sls"));
  fs::create_symlink(install_ / "nowhere", PathOf("broken.sls"));
  fs::create_symlink(install_.path(), PathOf("folder.sls"));
  ASSERT_EQ(mkfifo(PathOf("pipe.sls").c_str(), 0666), 0);
  ASSERT_EQ(mkfifo((install_ / "pipe").c_str(), 0666), 0);
  fs::create_symlink(install_ / "pipe", PathOf("linkedpipe.sls"));
  const std::vector<std::byte> symbol = File("piped").bytes();
  std::vector<int> pipes;
  for (const std::string& path : {PathOf("pipe.sls"), install_ / "pipe"}) {
    pipes.push_back(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    ASSERT_EQ(write(pipes.back(), symbol.data(), symbol.size()),
              static_cast<ssize_t>(symbol.size()));
  }
  EXPECT_EQ(LoadSymbols(), 1);
  EXPECT_STREQ(allSymbols->sym->name, "linked");
  EXPECT_STREQ(allSymbols->filename, "link.sls");
  for (const int pipe : pipes) {
    int waiting = 0;
    EXPECT_EQ(ioctl(pipe, FIONREAD, &waiting), 0);
    EXPECT_EQ(waiting, static_cast<int>(symbol.size())) << "somebody else's bytes were taken";
    close(pipe);
  }
}

// Between the listing and the opening somebody may put anything in a file's place.
TEST_F(SymbolFiles, WhatTakesTheFilesPlaceIsNeverWaitedFor) {
  if (const std::string why = WhyNotTraced(); !why.empty()) GTEST_SKIP() << why;
  for (const char* put : {"pipe", "folder", "nothing", "socket", "zeros"}) {
    WriteBytes(PathOf("a.sls"), File("a").bytes());
    bool swapped = false;
    const Ending ending = RunTraced([] {}, [] { return std::to_string(LoadSymbols()); },
                                    [&](Stop& stop) {
                                      if (swapped || !stop.entering || stop.number != SYS_openat)
                                        return;
                                      if (!stop.Text(stop.arguments[1]).ends_with("a.sls")) return;
                                      swapped = true;
                                      fs::remove(PathOf("a.sls"));
                                      const std::string what = put;
                                      if (what == "pipe") mkfifo(PathOf("a.sls").c_str(), 0666);
                                      if (what == "folder") fs::create_directory(PathOf("a.sls"));
                                      if (what == "socket")
                                        mknod(PathOf("a.sls").c_str(), S_IFSOCK | 0666, 0);
                                      if (what == "zeros")
                                        fs::create_symlink("/dev/zero", PathOf("a.sls"));
                                    });
    EXPECT_TRUE(swapped) << put;
    EXPECT_EQ(ending.how, Ending::kReturned) << put;
    EXPECT_EQ(ending.report, "0") << put;
    fs::remove_all(PathOf("a.sls"));
  }
}

// A start waits for as many files as somebody has.
TEST_F(SymbolFiles, AFileTakesThreeSystemCalls) {
  if (const std::string why = WhyNotTraced(); !why.empty()) GTEST_SKIP() << why;
  const auto calls = [] {
    int count = 0;
    const Ending ending =
        RunTraced([] {}, [] { return std::to_string(LoadSymbols()); },
                  [&](Stop& stop) {
                    if (stop.entering && (stop.OnFiles() || stop.number == SYS_close)) count++;
                  });
    EXPECT_EQ(ending.how, Ending::kReturned);
    return count;
  };
  const int before = calls();
  for (int i = 0; i < 20; i++)
    WriteBytes(PathOf("s" + std::to_string(i) + ".sls"), File("s").bytes());
  EXPECT_EQ(calls() - before, 3 * 20);
}

TEST_F(SymbolFiles, SkippingIsSilent) {
  WriteText(PathOf("notes.txt"), "no symbol");
  fs::create_directory(PathOf("folder"));
  const auto result = RunInChild([] { return LoadSymbols(); });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
}

TEST_F(SymbolFiles, MissingDirectoryGivesAnEmptyListSilently) {
  fs::remove(install_ / "symbols");
  const auto result = RunInChild([] {
    if (LoadSymbols() != 0) return 1;
    return allSymbols != nullptr && allSymbols->sym == nullptr ? 0 : 2;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
}

TEST_F(SymbolFiles, SortedViewIsByteOrder) {
  for (const char* name : {"b", "a", "B", "\xe4", "ab"})
    WriteBytes(PathOf(std::string(name) + ".sls"), File(name).bytes());
  LoadSymbols();
  EXPECT_EQ(SortedNames(), (V{"B", "a", "ab", "b", "\xe4"}));
}

TEST_F(SymbolFiles, SortedViewOfNothingIsAnArrayToo) {
  LoadSymbols();
  int n = -1;
  const std::unique_ptr<GromlitSymbol*[]> sorted(UpdateSymbols(&n));
  EXPECT_NE(sorted, nullptr);
  EXPECT_EQ(n, 0);
}

TEST_F(SymbolFiles, SortedViewOfAListThatWasNeverLoadedIsEmpty) {
  Retire(allSymbols);
  allSymbols = nullptr;
  EXPECT_EQ(SortedNames(), V{});
}

// --- Saving and removing ---

TEST_F(SymbolFiles, StoringAnExistingNameReplacesThatRecord) {
  for (const char* name : {"one", "two", "three"})
    WriteBytes(PathOf(std::string(name) + ".sls"), File(name).bytes());
  LoadSymbols();
  GromlitSymbolList* node = allSymbols;
  while (std::string(node->sym->name) != "two") node = node->next;
  const GromlitSymbol* former = node->sym;
  GromlitSymbol working = Record("unnamed");
  working.npoints = 1;
  EXPECT_EQ(StoreSymbol(&working, "two"), 1);
  EXPECT_STREQ(working.name, "two");
  EXPECT_NE(node->sym, former);
  EXPECT_NE(node->sym, &working) << "the list never holds the editor's own record";
  EXPECT_EQ(node->sym->npoints, 1);
  EXPECT_STREQ(node->filename, "two.sls");
  EXPECT_EQ(former->npoints, 2) << "the former record stays for those who look at it";
  EXPECT_EQ(SortedNames(), (V{"one", "three", "two"}));
  EXPECT_EQ(ReadBytes(PathOf("two.sls"))[45], std::byte{1});
}

TEST_F(SymbolFiles, StoringANewNamePutsItAtTheHead) {
  WriteBytes(PathOf("b.sls"), File("b").bytes());
  LoadSymbols();
  GromlitSymbol working = Record("");
  char signature[] = "ab";
  working.signature = signature;
  EXPECT_EQ(StoreSymbol(&working, "c"), 1);
  EXPECT_STREQ(allSymbols->sym->name, "c");
  EXPECT_STREQ(allSymbols->filename, "c") << "without extension";
  EXPECT_EQ(allSymbols->sym->signature, nullptr);
  EXPECT_EQ(SortedNames(), (V{"b", "c"}));
  EXPECT_EQ(StoreSymbol(&working, "C"), 1) << "names differ by case";
  EXPECT_EQ(SortedNames(), (V{"C", "b", "c"}));
}

TEST_F(SymbolFiles, LongNamesAreCutForRecordAndFileAlike) {
  LoadSymbols();
  GromlitSymbol working = Record("");
  EXPECT_EQ(StoreSymbol(&working, std::string(40, 'n').c_str()), 1);
  EXPECT_TRUE(Exists(PathOf(std::string(31, 'n') + ".sls")));
  EXPECT_EQ(std::string(allSymbols->sym->name), std::string(31, 'n'));
  EXPECT_EQ(StoreSymbol(&working, std::string(50, 'n').c_str()), 1);
  EXPECT_EQ(SortedNames(), V{std::string(31, 'n')}) << "the same symbol again";
}

TEST_F(SymbolFiles, NameMayBeTheWorkingSymbolsOwn) {
  LoadSymbols();
  GromlitSymbol working = Record("Own");
  EXPECT_EQ(StoreSymbol(&working, working.name), 1);
  EXPECT_EQ(SortedNames(), V{"Own"});
}

TEST_F(SymbolFiles, SlashInANameSelectsASubdirectory) {
  LoadSymbols();
  fs::create_directory(PathOf("sub"));
  GromlitSymbol working = Record("");
  EXPECT_EQ(StoreSymbol(&working, "sub/x"), 1);
  EXPECT_TRUE(Exists(PathOf("sub/x.sls")));
  EXPECT_STREQ(allSymbols->sym->name, "sub/x");
}

TEST_F(SymbolFiles, FailedSaveLeavesFileAndListAlone) {
  WriteBytes(PathOf("L.sls"), File("L").bytes());
  LoadSymbols();
  fs::remove_all(install_ / "symbols");
  const auto result = RunInChild([] {
    const GromlitSymbol* before = allSymbols->sym;
    GromlitSymbol working = Record("");
    if (StoreSymbol(&working, "L") != 0 || StoreSymbol(&working, "M") != 0) return 1;
    return allSymbols->sym == before && allSymbols->next->sym == nullptr ? 0 : 2;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err,
            "Save Symbol: No such file or directory\nSave Symbol: No such file or directory\n");
}

TEST_F(SymbolFiles, SaveIntoAMissingDirectoryPrintsTheReason) {
  fs::remove(install_ / "symbols");
  const auto result = RunInChild([] {
    GromlitSymbol sym = Record("L");
    return UnLoadSymbol(&sym, "L", ".sls") == nullptr ? 0 : 1;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Symbol: No such file or directory\n");
}

TEST_F(SymbolFiles, SaveOverADirectoryPrintsTheReason) {
  fs::create_directory(PathOf("L.sls"));
  const auto result = RunInChild([] {
    GromlitSymbol sym = Record("L");
    return UnLoadSymbol(&sym, "L", ".sls") == nullptr ? 0 : 1;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Symbol: Is a directory\n");
}

TEST_F(SymbolFiles, SaveOverAReadOnlyFilePrintsTheReason) {
  WriteBytes(PathOf("L.sls"), File("old").bytes());
  ASSERT_EQ(chmod(PathOf("L.sls").c_str(), 0444), 0);
  ASSERT_EQ(chmod(install_.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod((install_ / "symbols").c_str(), 0777), 0);
  const auto result = RunInChild([] {
    if (!BecomeOrdinaryUser()) return 2;
    GromlitSymbol sym = Record("L");
    return UnLoadSymbol(&sym, "L", ".sls") == nullptr ? 0 : 1;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Symbol: Permission denied\n");
  EXPECT_EQ(ReadBytes(PathOf("L.sls")), File("old").bytes());
}

TEST_F(SymbolFiles, SaveBeyondTheFileSizeLimitPrintsTheReason) {
  WriteBytes(PathOf("L.sls"), File("old").bytes());
  const auto result = RunInChild([] {
    if (!LimitFileSize(100)) return 2;
    GromlitSymbol sym = Record("L");
    return UnLoadSymbol(&sym, "L", ".sls") == nullptr ? 0 : 1;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Save Symbol: File too large\n");
  EXPECT_EQ(ReadBytes(PathOf("L.sls")), File("old").bytes());
}

TEST_F(SymbolFiles, RemovingWorksRelativeToTheWorkingDirectory) {
  for (const char* name : {"one", "two", "three"})
    WriteBytes(PathOf(std::string(name) + ".sls"), File(name).bytes());
  LoadSymbols();
  const auto result = RunInChild([&] {
    if (chdir("/") != 0) return 2;
    const GromlitSymbol* first = allSymbols->sym;
    if (DropSymbol(first, first->name) != 0) return 3;
    return allSymbols->sym == first && SortedNames().size() == 3 ? 0 : 4;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Remove Symbol: No such file or directory\n");

  const std::string former = fs::current_path().string();
  fs::current_path(install_.path());
  const GromlitSymbol* head = allSymbols->sym;
  const GromlitSymbol* last = allSymbols->next->next->sym;
  const std::string head_name = head->name, last_name = last->name;
  const std::string middle_name = allSymbols->next->sym->name;
  EXPECT_EQ(DropSymbol(head, head_name.c_str()), 1);
  EXPECT_FALSE(Exists(PathOf(head_name + ".sls")));
  EXPECT_STREQ(allSymbols->sym->name, middle_name.c_str()) << "the head moves on";
  EXPECT_EQ(DropSymbol(last, last_name.c_str()), 1);
  EXPECT_EQ(SortedNames(), V{middle_name});
  fs::current_path(former);
}

TEST_F(SymbolFiles, RemovingARecordThatIsNotListedDeletesTheFileOnly) {
  WriteBytes(PathOf("one.sls"), File("one").bytes());
  LoadSymbols();
  GromlitSymbol other = Record("one");
  const std::string former = fs::current_path().string();
  fs::current_path(install_.path());
  EXPECT_EQ(DropSymbol(&other, "one"), 1);
  fs::current_path(former);
  EXPECT_FALSE(Exists(PathOf("one.sls")));
  EXPECT_EQ(SortedNames(), V{"one"});
}

}  // namespace
}  // namespace gromlit
