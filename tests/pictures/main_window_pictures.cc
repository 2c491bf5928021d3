// The main window, its menus and its dialogs.
#include "core/plugin_files.h"
#include "tests/pictures/studio.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Box;
using testing::Picture;
using testing::Title;
using testing::WaitFor;

class MainWindowPictures : public testing::Studio {
 protected:
  Box Main() { return Framed(MainWindow()); }
  // A menu with its title above it. A menu that is wider than its title hangs below the next one,
  // too, which is painted over with the bar's ground.
  Picture Hanging(Window menu, const char* title) {
    const Box box = Bare(menu);
    const Box bar = Bare(WaitChild(MainWindow(), 0, 0));
    Picture picture = Still({box.x, bar.y, box.width, box.y + box.height - bar.y});
    const int ground = LabelWidth(title) + 17;
    for (int y = 0; y < box.y - bar.y && ground < picture.width; y++) {
      const auto row = picture.pixels.begin() + static_cast<long>(y) * picture.width;
      std::fill(row + ground, row + picture.width, row[ground]);
    }
    return picture;
  }
  // The open dialog's own pixels.
  Picture TheDialog() { return Still(Bare(WaitDialog())); }
  void FillTheLibrary() {
    PackPlugin("Mail.mail", "Mail", 9);
    PackPlugin("Paint.paint", "Paint", 20);
    PackPlugin("Player.player", "Video Player", 6);
    PackPlugin("Surf.surf", "Web Browser", 12);
  }
};

TEST_F(MainWindowPictures, TheGridWithFewAndManyActions) {
  StartClient("Notes", "notes");
  for (const int count : {0, 1, 18, 40}) {
    PackPlugin("Notes.notes", "Notes", count);
    Open();
    ShowPluginOf(client->window());
    ForDocs("main-window-" + std::to_string(count), Still(Main()));
    StopGromlit();
  }
}

TEST_F(MainWindowPictures, TheDefaultActions) {
  Open();
  SelectCell(4);
  ForBoth("main-window", Still(Main()));
}

TEST_F(MainWindowPictures, TheMenus) {
  FillTheLibrary();
  Open();
  struct Entry {
    Title title;
    const char* label;
    const char* name;
  };
  constexpr Entry kEntries[] = {{Title::kPlugIn, "Plug-In", "menu-plug-in"},
                                {Title::kAction, "Action", "menu-action"},
                                {Title::kSymbol, "Symbol", "menu-symbol"},
                                {Title::kOptions, "Options", "menu-options"},
                                {Title::kHelp, "Help", "menu-help"}};
  std::vector<Picture> hanging;
  for (const auto& [title, label, name] : kEntries) {
    const Window menu = PressTitle(title);
    ASSERT_NE(menu, Window{0});
    GoToRow(menu, 0, kTitleAbove);
    ForDocs(name, Still(Main()));
    hanging.push_back(Hanging(menu, label));
    CloseMenu(menu);
  }
  ForBoth("menus", testing::Sheet(hanging, 5, 16));

  SelectCell(3);
  Window menu = OpenPopup(3);
  ASSERT_NE(menu, Window{0});
  GoToRow(menu, testing::kPopupEdit);
  ForBoth("popup", Still(Around(Main(), Bare(menu))));
  CloseMenu(menu);

  menu = PressPulldown(PluginButton());
  ASSERT_NE(menu, Window{0});
  GoToRow(menu, 2);
  ForDocs("pulldown-plug-ins", Still(Around(Main(), Bare(menu))));
  CloseMenu(menu);
}

TEST_F(MainWindowPictures, TheQuestions) {
  FillTheLibrary();
  StartClient("Calculator", "calculator");
  Open();
  Draw({{920, 800}, {1120, 800}});
  ForDocs("dialog-download", TheDialog());
  DialogRight();
  // Of Default, Desktop, Mail, ...; the dialogs that follow lie over the main window and leave it.
  ChoosePulldown(PluginButton(), 2);

  Choose(Title::kPlugIn, testing::kPlugInNew);
  ForBoth("dialog-new-plug-in", TheDialog());
  DialogRight();
  Choose(Title::kPlugIn, testing::kPlugInEdit);
  ForDocs("dialog-name", TheDialog());
  DialogRight();
  Choose(Title::kPlugIn, testing::kPlugInDelete);
  ForDocs("dialog-delete-plug-in", TheDialog());
  DialogRight();
  Choose(Title::kPlugIn, testing::kExit);
  ForDocs("dialog-exit", TheDialog());
  DialogRight();
  Choose(Title::kHelp, testing::kHelpAbout);
  ForDocs("dialog-about", TheDialog());
  DialogRight();

  Choose(Title::kSymbol, testing::kSymbolEdit);
  ForDocs("dialog-select-symbol", TheDialog());
  DialogRight();
  Choose(Title::kSymbol, testing::kSymbolDelete);
  ChooseSymbol(0);
  ASSERT_TRUE(WaitFor([this] { return Dialog() != 0; }));
  ForDocs("dialog-delete-symbol", TheDialog());
  DialogRight();
}

TEST_F(MainWindowPictures, TheTrayIcon) {
  const testing::Process tray(
      {"trayer", "--edge", "bottom", "--align", "right", "--widthtype", "pixel", "--width", "230",
       "--heighttype", "pixel", "--height", "28", "--iconspacing", "4"},
      *install / "tray.log");
  StartClient("Game", "game");
  Open();
  Window icon = 0;
  ASSERT_TRUE(WaitFor([&] {
    icon = testing::FindClient(player->display(), "Gromlit.Tray");
    return icon != 0 && Viewable(icon);
  }));
  const auto open = [&] {
    Still(Bare(icon));  // at its place
    ASSERT_TRUE(Over(client->window(), 20, 20));
    ClickIn(icon, 6, 6, 3);
    ASSERT_TRUE(WaitFor([this] { return Menu() != 0; }));
  };
  open();
  Window menu = Menu();
  GoToRow(menu, 2);
  ForBoth("tray", Still(Around(Bare(menu), Bare(icon))));
  GoToRow(menu, 1);
  player->Click(1);
  ASSERT_TRUE(WaitFor([&] { return !Viewable(menu); }));
  ForBoth("tray-paused", Still(Bare(icon)));
}

TEST_F(MainWindowPictures, TheNotices) {
  StartClient("Notes", "notes");
  PackPlugin("Notes.notes", "Notes", kMaxActions);
  Open();
  ShowPluginOf(client->window());
  SelectCell(0);
  ChoosePopup(0, testing::kPopupCopy);
  ChoosePopup(0, testing::kPopupPaste);
  ForDocs("notice-full", TheDialog());
  DialogRight();

  // Nothing can be saved while the folder is not there.
  fs::rename(*install / "plugins", *install / "plugins.away");
  Choose(Title::kAction, testing::kActionDelete);
  ForDocs("notice-not-saved", TheDialog());
  DialogRight();
  fs::rename(*install / "plugins.away", *install / "plugins");
}

}  // namespace
}  // namespace gromlit
