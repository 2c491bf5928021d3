#include "tests/e2e/editor_client.h"

#include <X11/Xutil.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace gromlit::testing {

namespace fs = std::filesystem;

namespace {
constexpr unsigned kNobody = 65534;
}  // namespace

EditorClient::EditorClient(Player* player, const std::string& directory, const EditorStart& start)
    : player_(player) {
  const std::string home = directory + "/home";
  const std::vector<std::string> environment = MakeHome(home);
  // A caret that blinks and a title with a temporary directory's name would make pictures differ.
  fs::create_directories(home + "/config/gtk-3.0");
  WriteText(home + "/config/gtk-3.0/settings.ini", "[Settings]\ngtk-cursor-blink=0\n");
  fs::create_directories(home + "/config/glib-2.0/settings");
  WriteText(home + "/config/glib-2.0/settings/keyfile",
            "[org/xfce/mousepad/preferences/window]\npath-in-title=false\n");
  file_ = home + "/" + start.file;
  WriteText(file_, start.text);
  std::vector<std::string> argv = start.argv;
  argv.push_back(file_);
  if (start.plainuser && geteuid() == 0) {
    const std::string nobody = std::to_string(kNobody);
    argv.insert(argv.begin(),
                {"setpriv", "--reuid=" + nobody, "--regid=" + nobody, "--clear-groups"});
    fs::permissions(directory, fs::perms::others_exec, fs::perm_options::add);
    EXPECT_EQ(chown(home.c_str(), kNobody, kNobody), 0);
    for (const auto& entry : fs::recursive_directory_iterator(home))
      EXPECT_EQ(chown(entry.path().c_str(), kNobody, kNobody), 0);
  }
  process_ = std::make_unique<Process>(argv, directory + "/editor.log", environment, home);
  if (!WaitFor([&] { return (window_ = FindClient(player_->display(), start.classname)) != 0; },
               std::chrono::seconds(60))) {
    ADD_FAILURE() << start.classname
                  << " does not come up: " << ReadText(directory + "/editor.log");
    return;
  }
  const XRectangle& place = start.place;
  XMoveResizeWindow(player_->display(), window_, place.x, place.y, place.width, place.height);
  EXPECT_TRUE(WaitFor([&] {
    XWindowAttributes attributes{};
    XGetWindowAttributes(player_->display(), window_, &attributes);
    const Point at = Origin();
    return attributes.width == place.width && attributes.height == place.height &&
           std::abs(at.x - place.x) < 40 && std::abs(at.y - place.y) < 40;
  })) << start.classname
      << " is not where it was put";
}

Point EditorClient::Origin() {
  Point origin{};
  Window child;
  XTranslateCoordinates(player_->display(), window_, player_->root(), 0, 0, &origin.x, &origin.y,
                        &child);
  return origin;
}

void EditorClient::TakeFocus() {
  EXPECT_TRUE(WaitFor([this] {
    XWindowAttributes attributes{};
    XGetWindowAttributes(player_->display(), window_, &attributes);
    const Point at = Origin();
    player_->MoveTo(at.x + attributes.width / 2, at.y + attributes.height * 3 / 5);
    player_->Click(1);
    return WaitFor([this] { return HasFocus(player_->display(), window_); },
                   std::chrono::seconds(2));
  })) << "the editor does not take the keyboard";
}

}  // namespace gromlit::testing
