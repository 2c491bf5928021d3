// A user's long day with the plug-ins, through the menus of one run of the program: nothing is
// lost, nothing piles up.
#include "tests/e2e/front_end.h"

#include <X11/Xutil.h>

#include <random>
#include <set>

#include "core/plugin_files.h"
#include "tests/e2e/stored_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::kRight;
using testing::ProbeClient;
using testing::Sanitized;
using testing::Title;
using testing::WaitFor;

class WorkingDayTest : public testing::FrontEnd {
 protected:
  struct Plugin {
    std::string classname;
    std::string appname;
  };

  void SetUp() override {
    FrontEnd::SetUp();
    // An application that fills the screen below the main window: wherever the pointer leaves the
    // program's windows it is there.
    desk_ = std::make_unique<ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Desk", "desk", "--geometry",
                                                  "1280x1024+0+0", "--events", "0"});
    WritePlugin("Default", {});
    for (size_t i = 1; i < kMost; i++)
      WritePlugin("Old" + std::to_string(i), {{"right", kRight, {Touch("right")}}});
    for (const auto& entry : fs::directory_iterator(*install / "plugins"))
      list_.push_back({entry.path().stem(), entry.path().stem()});
    LaunchInstalled();
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/day-failed.png");
    }
    FrontEnd::TearDown();
  }

  static GromlitPlugin Stored(const std::string& classname) {
    GromlitPlugin plugin{};
    ReadPluginHeader((classname + GromlitPluginFileExt).c_str(), &plugin);
    return plugin;
  }

  // Opens the menus down to the one of the plug-in at this place of the list, and chooses it there.
  void Show(size_t place) {
    Window menu = PressPulldown(PluginButton());
    size_t left = list_.size();
    for (; left > 20 && place >= 19; left -= 19, place -= 19) {
      EXPECT_EQ(Rows(menu), 20);
      GoToRow(menu, 0);
      Window next = 0;
      ASSERT_TRUE(WaitFor([&] { return (next = MenuBeside(menu)) != 0; }));
      menu = next;
    }
    EXPECT_EQ(Rows(menu), std::min(left, size_t{20}));
    GoToRow(menu, static_cast<int>(left > 20 ? place + 1 : place));
    player->Release(1);
    ASSERT_TRUE(WaitFor([this] { return Menu() == 0; }));
  }

  // --- The three operations, on the plug-in that is shown ---

  void Create() {
    const std::string name = "New" + std::to_string(++made_);
    testing::SetClass(player->display(), desk_->window(), name, name);
    StartPicking();
    ClickIn(desk_->window(), 900, 800);
    const std::string classname = name + "." + name;
    ASSERT_TRUE(WaitFor([&] { return Exists(PluginFile(classname)); })) << classname;
    list_.insert(list_.begin(), {classname, classname});
    created_++;
  }
  void Rename(size_t place) {
    const char letter = static_cast<char>('a' + renamed_++ % 26);
    Choose(Title::kPlugIn, testing::kPlugInEdit);
    Fill(DialogField(), {letter});
    DialogLeft();
    Plugin& plugin = list_[place];
    const std::string after = plugin.appname + letter;
    ASSERT_TRUE(WaitFor([&] { return Stored(plugin.classname).appname == after; }))
        << "\"" << Stored(plugin.classname).appname << "\" instead of \"" << after << "\"";
    plugin.appname = after;
  }
  void Delete(size_t place) {
    Choose(Title::kPlugIn, testing::kPlugInDelete);
    DialogLeft();
    const std::string file = PluginFile(list_[place].classname);
    ASSERT_TRUE(WaitFor([&] { return !Exists(file); })) << file;
    list_.erase(list_.begin() + static_cast<long>(place));
    deleted_++;
  }
  // One of them, chosen at random, so that there are always between kFewest and kMost plug-ins.
  void Operate() {
    const int what = Pick(3);
    if (what == 0 ? list_.size() < kMost : list_.size() <= kFewest) return Create();
    auto place = static_cast<size_t>(Pick(static_cast<int>(list_.size())));
    if (list_[place].classname == defaultPluginClassname) place = place == 0 ? 1 : place - 1;
    ASSERT_NO_FATAL_FAILURE(Show(place));
    what == 2 ? Delete(place) : Rename(place);
  }
  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  // --- What the program takes up ---

  // Its windows on the server, mapped or not. A client's identifiers begin alike.
  size_t CountWindows() {
    constexpr Window kClient = ~Window{0x1fffff};
    const Window client = MainWindow() & kClient;
    size_t count = 0;
    std::vector<Window> windows = Children(player->root());
    while (!windows.empty()) {
      const Window window = windows.back();
      windows.pop_back();
      if ((window & kClient) == client) count++;
      const std::vector<Window> below = Children(window);
      windows.insert(windows.end(), below.begin(), below.end());
    }
    return count;
  }

  static constexpr size_t kMost = 45;  // three menus
  static constexpr size_t kFewest = 15;
  std::unique_ptr<ProbeClient> desk_;
  std::vector<Plugin> list_;  // in the order of the menus
  int made_ = 0;              // since the test began, the others since the count did
  int created_ = 0;
  int renamed_ = 0;
  int deleted_ = 0;
  std::mt19937 random_;
};

TEST_F(WorkingDayTest, FiveHundredCreationsRenamesAndDeletionsTakeNoWindowsAndLittleMemory) {
  const char* given = std::getenv("GROMLIT_TEST_SEED");
  const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                         : std::random_device()();
  RecordProperty("seed", std::to_string(seed));
  std::printf("seed %u\n", seed);
  random_.seed(seed);

  // Everything was used once before the count begins.
  for (int i = 0; i < 10; i++) ASSERT_NO_FATAL_FAILURE(Operate());
  ASSERT_NO_FATAL_FAILURE(Show(1));
  ASSERT_NO_FATAL_FAILURE(Rename(1));
  const size_t windows = CountWindows();
  EXPECT_GT(windows, 60U) << "these are not all";
  const long before = Resident();

  constexpr int kOperations = 500;
  created_ = renamed_ = deleted_ = 0;
  for (int i = 0; i < kOperations; i++) {
    SCOPED_TRACE(i);
    ASSERT_NO_FATAL_FAILURE(Operate());
  }
  EXPECT_EQ(created_ + renamed_ + deleted_, kOperations);
  const long grown = Resident() - before;
  std::printf("%d created, %d renamed, %d deleted: %ld KB more\n", created_, renamed_, deleted_,
              grown);
  RecordProperty("kilobytes", std::to_string(grown));

  // The last operation's file is there before its windows have gone.
  EXPECT_TRUE(WaitFor([&] { return CountWindows() == windows; }))
      << CountWindows() << " instead of " << windows;
  // Files, list and what the day should have left are the same.
  std::set<std::string> files;
  for (const Plugin& plugin : list_) {
    files.insert(plugin.classname + GromlitPluginFileExt);
    const nlohmann::json shown = testing::ShowFile(PluginFile(plugin.classname));
    EXPECT_EQ(shown["classname"], plugin.classname);
    EXPECT_EQ(shown["appname"], plugin.appname);
    const bool old = plugin.classname.starts_with("Old");
    EXPECT_EQ(shown["actions"].size(), old ? 1U : 0U) << plugin.classname;
  }
  const std::vector<std::string> names = NamesIn(*install / "plugins");
  EXPECT_EQ(std::set(names.begin(), names.end()), files);
  ASSERT_NO_FATAL_FAILURE(Show(list_.size() - 1));
  EXPECT_EQ(Err(), "");
  const std::string report = *install / "report";
  EXPECT_EQ(
      testing::Process({testing::Built("gromlit-tool"), "check", install->path()}, report).Wait(),
      0)
      << testing::ReadText(report);
  // The quarantine of freed memory hides what the program itself needs.
  if (!Sanitized()) {
    EXPECT_LE(grown, 4L * kOperations) << "kilobytes";
  }
}

}  // namespace
}  // namespace gromlit
