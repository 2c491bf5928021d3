// For tests of the main window's grid and of the commands that change what it shows.
//
// They work on the plug-in of the desktop: without a window manager the desktop is all that lies
// around the main window, so that the window goes on showing it wherever the pointer comes from.
#pragma once

// Before Xlib, whose macros would break it.
#include <gtest/gtest.h>

#include <X11/Xutil.h>

#include "recognition/symbol_icon.h"
#include "tests/e2e/front_end.h"
#include "tests/e2e/stored_files.h"

namespace gromlit::testing {

// What a window shows at one moment: pixels as 0xrrggbb, row by row.
struct Shot {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;

  uint32_t At(int x, int y) const {
    const bool inside = 0 <= x && x < width && 0 <= y && y < height;
    return inside ? pixels[static_cast<size_t>(y * width + x)] : 0xdeadbeef;
  }
};

class GridRun : public FrontEnd {
 protected:
  static constexpr const char* kDesktop = "Desktop";
  static constexpr int kColumns = 6;
  static constexpr int kCells = 18;
  static constexpr uint32_t kWhite = 0xffffff;
  static constexpr uint32_t kBlack = 0;

  void TearDown() override {
    if (HasFailure()) Picture("failed");
    FrontEnd::TearDown();
  }
  // Keeps what is on the screen for somebody to look at, where GROMLIT_SCREENSHOTS says.
  void Picture(const std::string& name) {
    if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
      SaveScreen(player->display(), std::string(directory) + "/grid-" + name + ".png");
  }

  // --- Plug-ins ---

  static std::string Name(int n) { return "A" + std::to_string(n); }
  // The names of actions `first` to `end` - 1.
  static std::vector<std::string> Names(int first, int end) {
    std::vector<std::string> names;
    for (int n = first; n < end; n++) names.push_back(Name(n));
    return names;
  }
  // Actions A0, A1, ...; a stroke to the right runs the first one, which makes the file `mark`.
  std::vector<Action> Numbered(int count, const std::string& mark = "acted") {
    std::vector<Action> actions;
    for (int n = 0; n < count; n++)
      actions.push_back({Name(n), n == 0 ? kRight : kEll, {{kRun, "true " + Name(n)}}});
    if (count > 0) actions[0].commands = {Touch(mark)};
    return actions;
  }
  // The plug-ins in the order of their menu: that of the directory. To be asked for before the
  // program has changed anything there.
  std::vector<std::string> MenuOrder() {
    std::vector<std::string> classes;
    for (const auto& entry : std::filesystem::directory_iterator(*install / "plugins"))
      classes.push_back(entry.path().stem().string());
    return classes;
  }
  // Starts the program with this plug-in of the desktop, and waits until it shows it.
  void OpenWith(const std::vector<Action>& actions) {
    WritePlugin("Default", {});
    WritePlugin(kDesktop, actions);
    LaunchInstalled();
    FindMain();
    ShowDesktop(actions[0].name);
  }
  void FindMain() { ASSERT_NE(main_ = WaitShown("Application"), Window{0}); }
  // Passes over the desktop until the main window shows its actions, the first one with this name.
  void ShowDesktop(const std::string& first) {
    EXPECT_TRUE(WaitFor([&] {
      player->MoveTo(900, 900);
      const auto shown = [&] { return LineIs(0, 0, first); };
      if (WaitFor(shown, std::chrono::seconds(1))) return true;
      player->MoveTo(1, 1);
      return false;
    })) << "the desktop's plug-in is not shown";
  }
  std::string DesktopBytes() { return ReadText(PluginFile(kDesktop)); }
  nlohmann::json DesktopFile() { return ShowFile(PluginFile(kDesktop)); }
  // Waits until the file of the desktop's plug-in has these actions.
  void ExpectStored(const nlohmann::json& actions) {
    const size_t count = actions.size();
    EXPECT_TRUE(WaitFor([&] {
      const std::string bytes = DesktopBytes();
      return bytes.size() > kActionCount && static_cast<uint8_t>(bytes[kActionCount]) == count;
    })) << "not "
        << count << " actions in the file";
    EXPECT_EQ(DesktopFile()["actions"], actions);
  }
  // Returns when the program has worked off what the user did before.
  void Settle() {
    Choose(Title::kHelp, kHelpAbout);
    CloseNotice();
  }

  // Waits until a notice shows these lines.
  bool Tells(const std::vector<std::string>& lines) {
    const Window notice = WaitNotice();
    return WaitFor([&] {
      return std::all_of(lines.begin(), lines.end(),
                         [&](const std::string& line) { return Reads(notice, line); });
    });
  }

  // --- What the grid shows ---

  Shot Take(Window window) {
    const Box box = BoxOf(window);
    const Point origin = OriginOf(window);
    Shot shot;
    XImage* image = XGetImage(player->display(), player->root(), origin.x, origin.y,
                              static_cast<unsigned>(box.width), static_cast<unsigned>(box.height),
                              AllPlanes, ZPixmap);
    if (image == nullptr) return shot;
    shot.width = box.width;
    shot.height = box.height;
    for (int y = 0; y < box.height; y++)
      for (int x = 0; x < box.width; x++)
        shot.pixels.push_back(static_cast<uint32_t>(XGetPixel(image, x, y)));
    XDestroyImage(image);
    return shot;
  }
  // The inside of the window: x and y of the grid's field, up to its scrollbar.
  Box Field() {
    const Box window = BoxOf(main_);
    const int top = Cell(0).y - 24;
    return {4, top, window.width - 2 * 4, window.height - 4 - top};
  }
  int CellHeight() { return Cell(kColumns).y - Cell(0).y; }

  // The highlight of a cell.
  Box Highlight(int cell) {
    const Point at = Cell(cell);
    return {at.x - 32, at.y - 18, 64, 36};
  }
  bool IsWhite(const Shot& shot, const Box& box) {
    for (int y = box.y; y < box.y + box.height; y++)
      for (int x = box.x; x < box.x + box.width; x++)
        if (shot.At(x, y) != kWhite) return false;
    return true;
  }
  // Whether a part of a name, and nothing else, is on a line of a cell's text.
  bool LineIs(int cell, int line, const std::string& text) {
    const Point at = Cell(cell);
    const int baseline = at.y + 16 + (line + 1) * TextHeight();
    return LineReads(main_, at.x - TextWidth(text) / 2, baseline, text, at.x - 32, at.x + 32);
  }
  bool CellIs(int cell, const std::string& first, const std::string& second = "") {
    return LineIs(cell, 0, first) && LineIs(cell, 1, second);
  }
  bool IsBare(const Shot& shot, int cell) {
    const Point at = Cell(cell);
    return IsWhite(shot, {at.x - 32, at.y - 18, 72, CellHeight() - 4});
  }
  // Whether a cell shows the icon of a shape, highlighted or not, pixel by pixel.
  bool HasIconOf(const Shot& shot, int cell, const std::vector<Point>& shape) {
    GromlitSymbol symbol{};
    for (const Point& point : shape) {
      const int k = ++symbol.npoints;
      symbol.x[k] = static_cast<uint16_t>(point.x);
      symbol.y[k] = static_cast<uint16_t>(point.y);
    }
    VectorToBitmap(&symbol);
    const Point at = Cell(cell);
    const uint32_t turned = Selected(shot, cell) ? kWhite : 0;
    for (int row = 0; row < kIconSize; row++)
      for (int column = 0; column < kIconSize; column++) {
        const uint32_t pixel = shot.At(at.x - 16 + column, at.y - 16 + row) ^ turned;
        if (pixel != (iconGet(&symbol, column, row) != 0 ? kBlue : kWhite)) return false;
      }
    return true;
  }
  static bool Selected(const Shot& shot, Point at) {
    return shot.At(at.x - 31, at.y - 17) == kBlack;
  }
  bool Selected(const Shot& shot, int cell) { return Selected(shot, Cell(cell)); }

  // Whether the grid shows actions of these names, one line each, from its first cell on, with the
  // highlight on `selected` only, -1 for none; and nothing behind them.
  bool Shows(const std::vector<std::string>& names, int selected = -1) {
    const Shot shot = Take(main_);
    for (int cell = 0; cell < kCells; cell++) {
      const bool there = cell < static_cast<int>(names.size());
      if (!there && !IsBare(shot, cell)) return false;
      if (there && !CellIs(cell, names[static_cast<size_t>(cell)])) return false;
      if (Selected(shot, cell) != (cell == selected)) return false;
    }
    return true;
  }
  bool ShowsSoon(const std::vector<std::string>& names, int selected = -1) {
    return WaitFor([&] { return Shows(names, selected); });
  }

  // --- Scrolling ---

  Window Bar() { return WaitChild(main_, BoxOf(main_).width - 15 - 4, Field().y); }
  // Drags the thumb that begins at `from` of its track by so many pixels, until the grid shows
  // what is expected.
  bool Drag(int from, int by, const std::function<bool()>& shown) {
    if (!Over(Bar(), 7, 13 + from + 4)) return false;
    player->Press(1);
    const Point origin = OriginOf(Bar());
    player->MoveTo(origin.x + 7, origin.y + 13 + from + 4 + by);
    const bool done = WaitFor(shown);
    player->Release(1);
    return done && WaitFor(shown);
  }
  // Holds the upper or the lower arrow until the grid shows what is expected.
  bool HoldArrow(bool lower, const std::function<bool()>& shown) {
    const Window bar = Bar();
    if (!Over(bar, 7, lower ? BoxOf(bar).height - 7 : 6)) return false;
    player->Press(1);
    const bool done = WaitFor(shown);
    player->Release(1);
    return done && WaitFor(shown);
  }

  // --- The action editor ---

  Window Editor() { return WaitShown("ActionEditor"); }
  void NameIt(const std::string& name) {
    const Window editor = Editor();
    Replace(WaitChild(editor, BoxOf(TabBar(editor)).width + 28, 100), name);
  }
  void ClickOk() { ClickChild(Editor(), 560 - 160, 454 - 40); }
  void LeaveByOk() {
    ClickOk();
    EXPECT_TRUE(WaitHidden("ActionEditor"));
  }
  void LeaveByCancel() {
    ClickChild(Editor(), 560 - 80, 454 - 40);
    EXPECT_TRUE(WaitHidden("ActionEditor"));
  }
  // Opens it by a double click on a cell.
  void DoubleClick(int cell) {
    OutwaitDoubleClick();
    const Point at = Cell(cell);
    if (!Over(main_, at.x, at.y)) return;
    player->Click(1);
    player->Click(1);
  }

  static constexpr uint32_t kBlue = 0x000079;
  static constexpr size_t kActionCount = 13 + 650;  // where a plug-in file counts its actions

  Window main_ = 0;
};

}  // namespace gromlit::testing
