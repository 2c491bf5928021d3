// A click that the server makes, as if the user's button had gone down and up.
#pragma once

namespace gromlit {

// Clicks with button 1..5 at the position (x, y) of the root window, pixels, with the draw button
// left to the applications meanwhile; the pointer comes back to where it was. It reaches whoever
// takes the server's own input there, by extensions of the protocol too; programs that select no
// button events of the core protocol take no click that is sent.
//
// The button is the one that arrives: of the server's test pointer that button goes down which the
// mappings in force turn into it. False, with nothing done, when there is none or when the server
// lacks the XTEST extension. Some ten round trips.
bool ClickAt(int x, int y, int button);

// The button of the server's test pointer that arrives at the applications as this one, 1..5; 0
// when there is none. Buttons are mapped twice, by the device that they belong to and by the
// pointer that the device moves.
int TestButton(int button);

}  // namespace gromlit
