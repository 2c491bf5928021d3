// Fixture for tests of the action editor: an application with a plug-in, the editor opened on one
// of its actions, and the user's hands in it.
//
// There is no window manager unless a test starts one: the editor is then put aside, so that it
// covers neither the main window nor the application.
#pragma once

#include "tests/e2e/front_end.h"
#include "tests/e2e/stored_files.h"

namespace gromlit::testing {

class ActionEditorRun : public FrontEnd {
 protected:
  static constexpr const char* kClass = "Probe.probe";
  // A stroke over the application that matches kRight.
  inline static const std::vector<Point> kStroke = {{920, 200}, {1120, 200}};

  enum Button { kAdd, kUpdate, kDelete, kMoveUp, kMoveDown, kHelp, kOk, kCancel };

  void SetUp() override;
  void TearDown() override;
  // Saves the screen as NAME.png for a person to look at, when pictures are asked for.
  void Picture(const std::string& name);

  // --- Files ---

  // Documents as gromlit-tool has them: a command; an action with the shape kRight.
  static nlohmann::json CommandOf(const std::string& type, const std::string& text);
  static nlohmann::json ActionOf(const std::string& name,
                                 const std::vector<nlohmann::json>& commands);
  // Run commands with these texts.
  static std::vector<nlohmann::json> Runs(const std::vector<std::string>& texts);
  // Makes the application's plug-in of these actions.
  void Store(const std::vector<nlohmann::json>& actions);
  std::string File() const { return PluginFile(kClass); }
  nlohmann::json Stored() const { return ShowFile(File()); }
  nlohmann::json StoredAction(size_t n = 0) const;
  // "Type: text" of each command of a stored action.
  std::vector<std::string> StoredLines(size_t n = 0) const;

  // --- Opening ---

  // Starts the program and lets it show the application's actions.
  void Open(const Conditions& conditions = {});
  // Passes over the application until the main window shows its actions; the first one's shape is
  // kRight.
  void ShowActions();
  // Stores an action "Old" with these commands, starts the program and opens the editor on it.
  void OpenOn(const std::vector<nlohmann::json>& commands);
  // Open the editor from the main window's menu, after passing over the application.
  void Edit(int cell);
  void New();
  // Closes the editor as a window manager does.
  void CloseByManager();
  // OK, and Cancel; return when the editor has gone.
  void Ok();
  void Cancel();

  // --- Widgets ---

  Window Parent(Button button);
  Point Place(Button button);
  void Press(Button button) { ClickChild(Parent(button), Place(button).x, Place(button).y); }
  // Clicks on a button that may be disabled or have a dialog come up on top of it.
  void ClickOn(Button button);
  // Adds a command of any type but a hot key; what the field holds on an open tab is replaced.
  void Add(CommandType type, const std::string& text);
  bool Enabled(Button button);
  // The enabled ones of Add, Update, Delete, Move Up and Move Down, as a string of 1 and 0; waits
  // until it is the expected one.
  bool Buttons(const std::string& expected);

  Window Field() { return TabField(editor); }
  Window NameField() { return WaitChild(editor, BoxOf(TabBar(editor)).width + 28, 100); }
  Window Symbol() { return WaitChild(editor, BoxOf(TabBar(editor)).width + 128 + 48, 100); }
  Window List() { return WaitChild(editor, 16, BoxOf(TabBar(editor)).height + 124); }
  Window CheckBox() { return ChildAt(TabBar(editor), 16, 72); }  // 0 when it is hidden
  bool Ticked(bool expected);
  // Waits until the list, not scrolled, shows these lines and no others, and `selected` of them is
  // highlighted; -1: none.
  bool Lists(const std::vector<std::string>& lines, int selected);
  // Whether a row of the list shows this line, highlighted or not.
  bool Row(int row, const std::string& line, bool highlighted);

  // --- Keys ---

  // A press and a release of a key code.
  void Tap(int keycode);
  // Gives the keyboard to the application, as a click into it does under a window manager.
  void FocusProbe();

  Window editor = 0;
  std::unique_ptr<ProbeClient> probe;

 private:
  void ExpectOpen();
};

}  // namespace gromlit::testing
