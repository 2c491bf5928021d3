// Telling of choices that a newer version brought.
#pragma once

namespace gromlit {

// Where the file kNewsFile (core/choices.h) is there: takes it away and shows, in a dialog, that
// "More..." has recommended choices. Not when it cannot be taken away, for it is said once; and not
// while another notice is due
// (`busy`), but then at the next start.
void TellOfNews(bool busy);

}  // namespace gromlit
