// Picking an application by clicking on one of its windows.
//
//   state     event                            next      function
//   -         started                          picking   PickClass: label made, pointer grabbed
//   -         started, grab refused            refused   PickClass
//   picking   motion over another application  picking   the label follows and names it
//   picking   motion elsewhere                 picking   nothing changes
//   picking   part of a window exposed         picking   it is drawn: the main loop does not run
//   picking   a button is released             picked    the class under the pointer
//   picking   a notch of the wheel             picking   nothing changes
//   picking   Escape                           given up
//   picking   the grab is gone                 refused   noticed by the next motion at the latest
//
// INV-PICK-1: whichever way a pick ends, pointer and keyboard are given back and the label
// destroyed.
#pragma once

#include <span>

namespace gromlit {

// Lets the user click on an application, with a label at the pointer that says its class text, and
// runs the event loop until then. Writes the class text under the click into cname: "Desktop"
// beside all windows; over a window without one, what the label said last, "" when that was
// nothing. The label's place is the pointer's, (x, y) pixels of the root window, at first. False
// when the pointer could not be had or was lost, or the user pressed Escape: then nothing was
// picked.
// REQUIRES: cname is not empty.
bool PickClass(int x, int y, std::span<char> cname);

}  // namespace gromlit
