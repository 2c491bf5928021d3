// Hands and eyes of a user in front of the built program: its windows by name, its widgets by their
// place, its menus by title and row.
//
// Nothing here reads the program's memory. A widget is a child window that is found where the
// window has it; before a press the pointer must be over that very window, so that a press never
// goes to something that lies on top of it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/e2e/shell_run.h"

namespace gromlit::testing {

struct Box {
  int x;  // of the window's inside: root pixels, or pixels of the parent
  int y;
  int width;
  int height;
};

// The titles of the main window's menu bar and the rows of their menus.
enum class Title { kPlugIn, kAction, kSymbol, kOptions, kHelp };
enum PlugInRow { kPlugInNew, kPlugInEdit, kPlugInDelete, kPlugInDownload, kPlugInUpload, kExit };
enum ActionRow { kActionNew, kActionEdit, kActionDelete, kActionExport };
enum SymbolRow { kSymbolNew, kSymbolEdit, kSymbolDelete };
enum OptionsRow { kPreferences };
enum HelpRow { kHelpIndex, kHelpAbout };
enum PopupRow {
  kPopupCut,
  kPopupCopy,
  kPopupPaste,
  kPopupDelete,
  kPopupEdit,
  kPopupExport,
  kPopupNew,
  kPopupEditSymbol
};

// Whether GROMLIT_SWEEP=all asks for every case of a table instead of those that tell the most.
bool TriesAll();

class FrontEnd : public ShellRun {
 protected:
  void SetUp() override;
  void TearDown() override;

  // --- Finding ---

  // The program's top-level window with this name part of the class hint; 0 when it is not shown.
  Window Shown(const std::string& name);
  // The same, waited for; fails the test when it does not come up.
  Window WaitShown(const std::string& name);
  bool WaitHidden(const std::string& name);
  // Closes a top-level window as a user of the window manager does, or one without a manager.
  void Close(Window window);
  bool Viewable(Window window);
  Window UnderPointer();  // the deepest one
  std::vector<Window> Children(Window window);
  Box BoxOf(Window window);       // in its parent
  Point OriginOf(Window window);  // on the screen
  // The viewable child whose inside starts at (x, y) of its parent; 0 when there is none.
  Window ChildAt(Window parent, int x, int y);
  // The same, waited for; fails the test when there is none.
  Window WaitChild(Window parent, int x, int y);

  // The dialog, or the menu, that is open; 0 when none is.
  Window Dialog();
  Window Menu();
  // The menu that an item of this one has opened; 0 when none is open beside it.
  Window MenuBeside(Window menu);
  int Rows(Window menu);
  Window WaitDialog();
  bool WaitNoDialog();
  // The text field of the open dialog.
  Window DialogField();

  // The dialog with a single button, which tells the user something, whatever else is open; 0 when
  // there is none.
  Window Notice();
  Window WaitNotice();
  // The label that follows the pointer while an application is picked; 0 when there is none.
  Window PickLabel();
  // The pixels of a window, as they are on the screen.
  std::string Look(Window window);
  // Whether this text stands somewhere in a window, in black, in the font of texts or of buttons.
  bool Reads(Window window, const std::string& text);
  // Whether a line of a window shows this text, in the text font and one colour, and nothing else
  // between the columns `left` and `right`. The text starts at column x.
  bool LineReads(Window window, int x, int baseline, const std::string& text, int left, int right);
  // The same of a text field, whose caret stands before the letter `caret`; -1: at the end. Waits
  // for it.
  bool FieldReads(Window field, const std::string& text, int caret = -1);
  // Waits until the open dialog shows these lines.
  bool DialogReads(const std::vector<std::string>& lines);
  // How a button is lit: from above, above 0, when it is up; from below, below 0, when it is down;
  // 0 as long as it has not been drawn, as in a window that has just come up.
  int Light(Window button);

  // --- Doing ---

  // Puts the pointer over a point of a window; false, with the test failed, when something else
  // stays in front of it.
  bool Over(Window window, int x, int y);
  // Passes over an application until the main window shows what it is expected to. The program may
  // not follow the pointer into every window yet when it has just started.
  bool PassOver(Window application, const std::function<bool()>& shown);
  void ClickIn(Window window, int x, int y, int button = 1);
  // Clicks on the button at this place, and waits until it has gone down and come up.
  void ClickChild(Window parent, int x, int y);
  // Puts the pointer into a text field and waits until the field has the keyboard.
  void Enter(Window field);
  void Chord(KeySym held, KeySym key);
  void TypeText(const std::string& text);
  void Fill(Window field, const std::string& text);     // into an empty field
  void Replace(Window field, const std::string& text);  // of what it holds

  // Presses a title of the menu bar and holds it; the menu that opens.
  Window PressTitle(Title title);
  static constexpr int kTitleAbove = 2;  // for GoToRow: the bar's menus start above its lower edge
  // Opens the popup over a cell of the main window's grid by a click.
  Window OpenPopup(int cell);
  // Chooses an entry of the menu bar by press, drag and release; `main` is the main window.
  void Choose(Title title, int row);
  // Chooses from the popup over a cell of the main window's grid.
  void ChoosePopup(int cell, int row);
  // Presses a pulldown button and holds it; the menu that opens.
  Window PressPulldown(Window button);
  // Moves to a row of an open menu until it is highlighted. `above` is by how many pixels the menu
  // takes the pointer to be higher than it is.
  void GoToRow(Window menu, int row, int above = 0);
  // The same, and lets the button that is held go there; returns when the menu has gone.
  void ReleaseOnRow(Window menu, int row, int above = 0, int button = 1);
  // The row of an open menu that says this and nothing else; -1 when none does.
  int RowOf(Window menu, const std::string& text);
  // Chooses a row of a pulldown button's menu, or the one that says this.
  void ChoosePulldown(Window button, int row);
  void ChoosePulldown(Window button, const std::string& text);
  // The left and the right button of the open dialog; return when it has gone.
  void DialogLeft();
  void DialogRight();
  void CloseNotice();

  // Asks for a new plug-in by the menu and leaves the dialog with OK; returns when a click picks
  // the application.
  void StartPicking();

  // --- The windows ---

  Window PluginButton();     // of the main window
  void ClickCell(int cell);  // of the main window's grid, once, no double click
  // Lets the time pass in which a click would be the second one of a double click.
  void OutwaitDoubleClick();
  void SelectCell(int cell);  // clicks when it is not selected
  bool IsSelected(int cell);
  bool HasIcon(int cell);  // whether the grid shows something there
  bool HasName(int cell);  // or a name below that
  Point Cell(int cell);    // its place in the main window
  void ClickTab(Window editor, int type);
  Window TabBar(Window editor);
  Window TabField(Window editor);
  // Adds a command on a tab of the action editor.
  void AddCommand(Window editor, CommandType type, const std::string& text);
  void ClickCommand(Window editor, int line);
  // Chooses in the open symbol dialog and leaves it with OK.
  void ChooseSymbol(int index);
  // Draws a symbol in the symbol editor, turns the icon's pixels given as (column, row), and saves.
  // `seen` is called with each step's number when the step is done.
  void MakeSymbol(
      const std::string& name, const std::vector<Point>& corners,
      const std::vector<Point>& pixels = {},
      const std::function<void(int step)>& seen = [](int) {});

  std::string SymbolFile(const std::string& name) const;
  std::string PluginFile(const std::string& classname) const;
  std::string OptionsFile() const { return *install / "options/default.user"; }

  // Heights and widths of the program's fonts, pixels.
  int TextHeight();
  int ItemHeight();  // of a row in a menu
  int LabelWidth(const std::string& text);
  int TextWidth(const std::string& text);

 private:
  using Pixels = std::unique_ptr<XImage, int (*)(XImage*)>;

  XFontStruct* Font(const char* name);
  // One bit for a pixel: this text, drawn from column x on in a picture of this size.
  Pixels PixelsOf(XFontStruct* font, const std::string& text, int x, int baseline, int width,
                  int height);
  // Part of a window, as it is on the screen.
  Pixels PixelsOf(Window window, const Box& box);
  bool ReadsIn(XFontStruct* font, Window window, const std::string& text);

  XFontStruct* txt_ = nullptr;
  XFontStruct* label_ = nullptr;
};

}  // namespace gromlit::testing
