// A user who presses everything: random clicks, drags and keys over all windows of the built
// program. For storms and soaks; a seed repeats what the hands do.
#pragma once

#include <random>

#include "tests/e2e/front_end.h"

namespace gromlit::testing {

class RandomUser : public FrontEnd {
 protected:
  // Takes the seed from GROMLIT_TEST_SEED, or a new one, and prints it.
  void SetUp() override;

  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  // The screen as it is now, in pixels.
  Box Screen() { return BoxOf(player->root()); }
  void MoveTo(Point to) { player->MoveTo(to.x, to.y); }

  // Writes classes, symbols and plug-ins enough for long menus and lists; their actions do nothing
  // outside of the program.
  void WriteLibrary();
  // Starts the program, waits for its main window, and finds the parts of that.
  void Open(const std::vector<std::string>& arguments = {});

  // The windows of the program that are on the screen, inner ones too.
  std::vector<Window> OwnWindows();
  Point Inside(Window window);
  Window AnyOf(const std::vector<Window>& windows);
  // A point of one of these windows; sometimes any point of the screen.
  Point Somewhere(const std::vector<Window>& windows);

  // Holds a button and goes where it can: into a menu that it has opened, else anywhere.
  void Drag(const std::vector<Window>& windows, int button);
  // Clicks, double clicks, drags or types, most often from the menu bar on.
  void DoSomething(const std::vector<Window>& windows);

  // A menu keeps the pointer until something is chosen or the user clicks beside it, and so does
  // the picker of an application. False when it does not come back although the program runs.
  bool LetsThePointerGo();

  unsigned seed_ = 0;
  std::mt19937 random_;
  Window main_ = 0;
  Window bar_ = 0;  // its menu bar
};

}  // namespace gromlit::testing
