// What the main window shows, read from the screen, and what it should show, read from the files.
#pragma once

#include <string>
#include <vector>

#include "tests/support/x_server.h"

namespace gromlit::demo {

// 32 lines of 32 characters, "#" where the icon has ink and "." elsewhere.
using Icon = std::vector<std::string>;

struct ShownPlugin {
  std::string caption;      // the pixels of the button that names the plug-in
  std::vector<Icon> icons;  // of the grid's cells, up to the last one that shows something
  bool menus = false;       // whether the menu bar is drawn
};

// What is on the screen where the main window is; empty when it is not shown whole.
ShownPlugin LookAtMainWindow(Display* display, Window main);

// The icons of a plug-in's actions in what `gromlit-tool show` printed about its file. Throws what
// the JSON library throws when that is something else.
std::vector<Icon> IconsOfActions(const std::string& shown);

}  // namespace gromlit::demo
