#include "tests/pictures/studio.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

#include "core/option_files.h"
#include "core/plugin_files.h"
#include "core/strings.h"
#include "tests/e2e/stored_files.h"

namespace gromlit::testing {
namespace {

namespace fs = std::filesystem;

constexpr unsigned long kDesktop = 0x39506b;
constexpr Point kMainPlace = {40, 40};
constexpr Point kEditorPlace = {40, 500};
constexpr Point kParked = {400, 60};  // of the main window: its banner
constexpr const char* kLetter = "Dear Charles,\n\ndrawing beats typing.\n\n";
constexpr XRectangle kLetterPlace = {600, 60, 440, 380};
// How often in a row a picture must be the same to stand still; the program and the window manager
// draw within a few milliseconds of what they are asked.
constexpr int kStill = 40;

std::vector<std::string> NamesAsRead(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory))
    names.push_back(entry.path().filename().string());
  return names;
}

// The program lists symbols and plug-ins in the order in which the directory gives their files. On
// a file system that gives them in the order of their making, the last or the first one first, that
// order is the alphabet after this.
void SortDirectory(const std::string& directory) {
  const fs::path folder = directory;
  std::map<std::string, std::vector<std::byte>> files;
  std::vector<std::string> names = NamesAsRead(directory);
  for (const std::string& name : names) files[name] = ReadBytes((folder / name).string());
  std::sort(names.rbegin(), names.rend());
  for (int attempt = 0; attempt < 2; attempt++) {
    for (const std::string& name : names) fs::remove(folder / name);
    for (const std::string& name : names) WriteBytes((folder / name).string(), files[name]);
    const std::vector<std::string> read = NamesAsRead(directory);
    if (std::is_sorted(read.begin(), read.end())) return;
    std::reverse(names.begin(), names.end());
  }
  std::printf("pictures: this file system does not keep %s sorted\n", directory.c_str());
}

void SaveTo(const char* folder, const std::string& name, const Picture& picture) {
  const char* directory = std::getenv("GROMLIT_PICTURES");
  ASSERT_NE(directory, nullptr) << "GROMLIT_PICTURES names the directory for the pictures";
  const fs::path path = fs::path(directory) / folder;
  fs::create_directories(path);
  SavePicture(picture, (path / (name + ".png")).string());
}

}  // namespace

void Studio::SetUp() {
  FrontEnd::SetUp();
  const std::string skeleton = Built("share/gromlit");
  ASSERT_TRUE(fs::is_directory(skeleton)) << skeleton;
  fs::copy(skeleton, install->path(),
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  // The editor of the pictures gets its plug-in in them, and the list of plug-ins fits into one.
  for (const std::string& name : NamesAsRead(*install / "plugins")) {
    const std::string stem = fs::path(name).stem().string();
    if (stem != "Default" && stem != "Desktop" && stem != "XTerm.xterm")
      fs::remove(*install / ("plugins/" + name));
  }
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  options.splash = 0;
  CopyText(options.urlcmd, "firefox %s");
  CopyText(options.sndcmd, "play %s");
  ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  XSetWindowBackground(player->display(), player->root(), kDesktop);
  XClearWindow(player->display(), player->root());
  StartWindowManager("openbox");
}

void Studio::TearDown() {
  if (HasFailure()) {
    if (const char* directory = std::getenv("GROMLIT_PICTURES"))
      SaveScreen(player->display(), std::string(directory) + "/failed.png");
  }
  FrontEnd::TearDown();
}

void Studio::Open() {
  for (const char* folder : {"symbols", "plugins"}) SortDirectory(*install / folder);
  LaunchInstalled();
  const Window main = WaitShown("Application");
  Place(main, kMainPlace.x, kMainPlace.y);
}

void Studio::PackPlugin(const std::string& classname, const std::string& appname, int count) {
  nlohmann::json all = nlohmann::json::array();
  const std::string library = Built("share/gromlit/plugins/");
  for (const char* name : {"Default", "Desktop", "XTerm.xterm"}) {
    const nlohmann::json plugin = ShowFile(library + name + GromlitPluginFileExt);
    for (const auto& action : plugin["actions"]) all.push_back(action);
  }
  nlohmann::json document = {{"kind", "plugin"},
                             {"appname", appname},
                             {"classname", classname},
                             {"actions", nlohmann::json::array()}};
  for (size_t i = 0; i < static_cast<size_t>(count); i++)
    document["actions"].push_back(all[i % all.size()]);
  const std::string json = *install / "plugin.json";
  WriteText(json, document.dump());
  Process pack({Built("gromlit-tool"), "pack", json, "-o", PluginFile(classname)});
  ASSERT_EQ(pack.Wait(), 0);
}

void Studio::StartClient(const std::string& classpart, const std::string& namepart) {
  client = std::make_unique<ProbeClient>(
      install->path(), std::vector<std::string>{"--class", classpart, namepart, "--geometry",
                                                "340x300+880+640", "--title", classpart});
}

void Studio::ShowPluginOf(Window window) {
  const Box label = Bare(PluginButton());
  const Picture former = Still(label);
  EXPECT_TRUE(PassOver(window, [&] { return Take(player->display(), label) != former; }));
}

void Studio::StartEditor() {
  editor = std::make_unique<EditorClient>(player.get(), install->path(),
                                          EditorStart{.argv = {"mousepad", "--disable-server"},
                                                      .classname = kEditorClass,
                                                      .file = "letter.txt",
                                                      .text = kLetter,
                                                      .place = kLetterPlace,
                                                      .plainuser = true});
}

void Studio::Place(Window window, int x, int y) {
  XMoveWindow(player->display(), window, x, y);
  EXPECT_TRUE(WaitFor([&] {
    const Box frame = Framed(window, 0);
    return frame.x == x && frame.y == y;
  })) << "the window does not go to its place";
}

Window Studio::Editor(const std::string& name) {
  const Window window = WaitShown(name);
  Place(window, kEditorPlace.x, kEditorPlace.y);
  return window;
}

void Studio::Cancel(const std::string& name) {
  const Window window = WaitShown(name);
  const Box box = BoxOf(window);
  ClickChild(window, box.width - 80, box.height - 40);
  EXPECT_TRUE(WaitHidden(name));
}

void Studio::CloseMenu(Window menu) {
  // Over another window the program would show that one's plug-in.
  const Point main = OriginOf(MainWindow());
  player->MoveTo(main.x + kParked.x, main.y + kParked.y);
  if ((player->Where().state & Button1Mask) == 0) player->Press(1);
  player->Release(1);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); })) << "the menu stays open";
}

Box Studio::Framed(Window window, int margin) {
  Window top = window;
  for (;;) {
    const Window parent = ParentOf(player->display(), top);
    if (parent == 0 || parent == player->root()) break;
    top = parent;
  }
  const Box bare = Bare(top);
  return {bare.x - margin, bare.y - margin, bare.width + 2 * margin, bare.height + 2 * margin};
}

Box Studio::Bare(Window window) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(player->display(), window, &attributes);
  const int border = attributes.border_width;
  const Point origin = OriginOf(window);
  return {origin.x - border, origin.y - border, attributes.width + 2 * border,
          attributes.height + 2 * border};
}

Box Studio::Around(const Box& a, const Box& b) {
  const int x = std::min(a.x, b.x);
  const int y = std::min(a.y, b.y);
  return {x, y, std::max(a.x + a.width, b.x + b.width) - x,
          std::max(a.y + a.height, b.y + b.height) - y};
}

Picture Studio::Still(const Box& area) {
  Picture last = Take(player->display(), area);
  int same = 0;
  EXPECT_TRUE(WaitFor([&] {
    Picture now = Take(player->display(), area);
    same = now == last ? same + 1 : 0;
    last = std::move(now);
    return same >= kStill;
  })) << "the screen does not stand still";
  return last;
}

void Studio::ForDocs(const std::string& name, const Picture& picture) {
  SaveTo("docs", name, picture);
}

void Studio::ForHelp(const std::string& name, const Picture& picture) {
  SaveTo("help", name, picture);
}

void Studio::ForBoth(const std::string& name, const Picture& picture) {
  ForDocs(name, picture);
  ForHelp(name, picture);
}

}  // namespace gromlit::testing
