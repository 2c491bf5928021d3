// Where the pictures of the documentation are taken: the built program with the starter library and
// a window manager on a screen of its own, and the user's hands.
//
// A picture is taken when the screen has stood still for a moment. Windows are put to fixed places
// first and carets do not blink, so that every run gives the same pictures.
#pragma once

#include "tests/e2e/editor_client.h"
#include "tests/e2e/front_end.h"
#include "tests/pictures/camera.h"

namespace gromlit::testing {

inline constexpr const char* kEditorClass = "Mousepad.mousepad";
// A symbol; strokes over the editor that match it and the library's L.
inline const std::vector<Point> kTick = {{24, 136}, {104, 240}, {256, 40}};
inline const std::vector<Point> kDrawTick = {{690, 250}, {750, 340}, {880, 170}};
inline const std::vector<Point> kDrawEll = {{740, 180}, {740, 340}, {880, 340}};

class Studio : public FrontEnd {
 protected:
  void SetUp() override;
  void TearDown() override;

  // --- The stage ---

  // Starts the program; the main window is at its place, with the keyboard, when this returns.
  void Open();
  // Packs a plug-in with the first `count` actions of the starter library, or with those and the
  // first ones again.
  void PackPlugin(const std::string& classname, const std::string& appname, int count);
  // A small window of another client with this class; its plug-in is shown by ShowPluginOf.
  void StartClient(const std::string& classpart, const std::string& namepart);
  void ShowPluginOf(Window client);
  // The text editor, with a letter in it.
  void StartEditor();
  // Puts a managed window with its frame's corner to (x, y).
  void Place(Window window, int x, int y);
  // The program's window of this name, waited for and put where there is room.
  Window Editor(const std::string& name);
  void Cancel(const std::string& name);
  // Leaves an open menu of the menu bar or of a pulldown button without choosing.
  void CloseMenu(Window menu);

  // --- Areas of the screen ---

  // With `margin` pixels of what is around it.
  Box Framed(Window window, int margin = 8);
  // A window's own pixels with its border.
  Box Bare(Window window);
  static Box Around(const Box& a, const Box& b);

  // --- Pictures ---

  // Waits until the area stands still, and takes it.
  Picture Still(const Box& area);
  // Keep a picture for docs/pictures, for the help, or for both.
  void ForDocs(const std::string& name, const Picture& picture);
  void ForHelp(const std::string& name, const Picture& picture);
  void ForBoth(const std::string& name, const Picture& picture);

  std::unique_ptr<ProbeClient> client;
  std::unique_ptr<EditorClient> editor;
};

}  // namespace gromlit::testing
