// The answering side of `gromlit -remote WORD`: the selection that makes this program the one that
// other programs of the display find (remote_words.h).
//
// Of two programs on one screen, which have different draw buttons, the first is found. The other
// takes over when the first has ended.
#pragma once

namespace gromlit {

// From now on words from other programs are obeyed: at the event loop, so not before a stroke, an
// action or a pick that is under way is over. Some round trips. REQUIRES: the main window exists,
// X errors are ignored.
void ServeRemote();

}  // namespace gromlit
