// A real text editor as a client: with a home directory and a file of its own, so that neither the
// user's settings nor an earlier run changes what it does.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/e2e/gromlit_run.h"

namespace gromlit::testing {

struct EditorStart {
  std::vector<std::string> argv;  // the path of the file comes behind it
  std::string classname;          // class text of its window
  std::string file = "note.txt";
  std::string text = {};                    // what the file holds
  XRectangle place = {300, 250, 600, 500};  // of the window's inside, about
  // Not as the superuser even if the test is: some editors warn him in their window.
  bool plainuser = false;
};

class EditorClient {
 public:
  // Starts an editor in a home directory below `directory`. The constructor returns when its window
  // is on the screen with this size; fails the test when it does not come.
  EditorClient(Player* player, const std::string& directory, const EditorStart& start);

  Window window() const { return window_; }
  const std::string& file() const { return file_; }
  Process& process() { return *process_; }
  // Clicks into the window until it has the keyboard.
  void TakeFocus();

 private:
  Point Origin();

  Player* player_;
  std::string file_;
  std::unique_ptr<Process> process_;
  Window window_ = 0;
};

}  // namespace gromlit::testing
