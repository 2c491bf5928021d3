// A click that the server makes, as if the user's button had gone down and up.
#pragma once

namespace gromlit {

// Clicks with button 1..5 where the pointer is, with the draw button left to the applications
// meanwhile. It reaches whoever takes the server's own input there, by extensions of the protocol
// too; programs that select no button events of the core protocol take no click that is sent.
// False, with nothing done, when the server lacks the XTEST extension. Takes two round trips more
// than a sent click.
bool ClickAtPointer(int button);

}  // namespace gromlit
