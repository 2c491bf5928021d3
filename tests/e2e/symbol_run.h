// Fixture for tests of the symbol editor and the symbol chooser on the built program.
//
// What the editor holds is judged by what it saves: `Saved` reads the file as gromlit-tool shows
// it.
#pragma once

#include "tests/e2e/front_end.h"

namespace gromlit::testing {

// The editor's buttons in the order of their making.
enum EditorButton { kHelp, kClear, kRestart, kPrev, kNext, kFinish, kSave, kCancel };

using Icon = std::vector<std::string>;  // 32 rows, "#" for a set bit

// A symbol as a file holds it.
struct SavedSymbol {
  std::string name;
  std::vector<Point> points;
  Icon icon;
};

class SymbolRun : public FrontEnd {
 protected:
  // What Reach draws, and which bit of its icon it turns.
  static inline const std::vector<Point> kVector = {{40, 40}, {200, 40}, {200, 200}};
  static constexpr Point kBit = {3, 25};

  void TearDown() override;

  // Keeps a picture of the screen when somebody asked for it, to be looked at.
  void Shoot(const std::string& name);

  void Open(Conditions conditions = {});
  // How often the browser was asked for this.
  int Recorded(const std::string& text);
  // Whether this text stands there, with nothing beside it for so many pixels.
  bool ShowsText(Window window, int x, int baseline, const std::string& text, int beside = 3);

  // --- Files ---

  static void WriteSymbol(const std::string& name, const std::vector<Point>& points = kEll,
                          const std::vector<Point>& turned = {});
  // Fills the library with symbols s000, s001 and so on, and notes their order.
  void Fill(int count);
  // The icon that is drawn from a vector, with some bits turned.
  static Icon Drawn(const std::vector<Point>& points, const std::vector<Point>& turned = {});
  SavedSymbol Saved(const std::string& name);
  void ExpectSaved(const std::string& name, const std::vector<Point>& points, const Icon& icon);
  std::vector<std::string> SymbolFiles() const { return NamesIn(*install / "symbols"); }
  // The names of the symbols in the order in which a start finds them.
  std::vector<std::string> LibraryOrder() const;

  // --- The editor ---

  void OpenNew();
  void OpenEdit(int index);  // by the chooser
  void TakeEditor();         // that has just been opened
  // Opens the editor and brings it to a state in which it has the points of kVector, but for state
  // 0, from step 2 on with a bit of the icon turned, and in step 3 with the name "walk".
  void Reach(int state);
  bool ShowsStep(int step);                               // 1..3; waits for it
  Window Area() { return WaitChild(editor_, 16, 100); }   // in steps 1 and 2
  Window Field() { return WaitChild(editor_, 16, 100); }  // in step 3
  Window Names() { return WaitChild(editor_, 16, 135); }  // the list, likewise
  // Whether the list begins with these names; waits for it.
  bool ListsNames(const std::vector<std::string>& names);

  Window Button(EditorButton button);
  bool IsShown(EditorButton button) { return Viewable(Button(button)); }
  // A button that can be pressed has a black caption; otherwise it is grey.
  bool IsEnabled(EditorButton button);
  void PressButton(EditorButton button);
  void NextStep();
  void FinishStep();
  void SaveAs(const std::string& name);    // from step 3
  void FinishAs(const std::string& name);  // from step 1
  void CancelEditor();
  // Whether the editor, just opened on a symbol, gives it this name; leaves it in step 3.
  bool EditsSymbol(const std::string& name);

  bool HasSquare(const Point& at);
  bool WaitSquare(const Point& at);
  // Places points, which have to lie on the grid, without ending the vector.
  void Place(const std::vector<Point>& points);
  void DrawVector(const std::vector<Point>& points);
  // Whether a bit of the icon is set: in the grid of step 2, and in the preview.
  bool HasBit(const Point& bit);
  bool PreviewHasBit(const Point& bit);
  void Turn(const Point& bit);

  // --- The chooser, in the open dialog ---

  void Ask(int row);  // of the menu "Symbol"
  Window Chooser() { return WaitChild(WaitDialog(), 4, 65); }
  Window ChooserBar() { return WaitChild(Chooser(), 292, 4); }
  int CellHeight() { return 32 + 2 * TextHeight() + 8; }
  Point SymbolCell(int cell) { return {8 + 72 * (cell % 4), 8 + CellHeight() * (cell / 4)}; }
  bool IsChosen(int cell);
  bool WaitChosen(int cell, bool chosen = true);
  // One press; whether it is the second one of a double click is up to the caller.
  void ClickSymbol(int cell, int button = 1);
  void SingleClick(int cell);
  // Whether the name stands below a cell's icon in one line.
  bool ShowsName(int cell, const std::string& name);
  // Whether the cells from the first one on show these of the library's symbols, and no more; waits
  // for it, as does the next.
  bool Lists(int first, int count);
  // Whether so many of the cells show an icon.
  bool WaitCount(int count);
  int CountShown();
  // Drags the thumb of a scrollbar, whose upper end is at the top, to the lower end.
  void DragToTheEnd(Window bar);

  Window editor_ = 0;
  std::vector<std::string> order_;  // of the library's symbols
};

}  // namespace gromlit::testing
