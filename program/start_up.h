// Everything that is made once, in its order.
#pragma once

namespace gromlit {

struct CommandLine;

// Whoever started the program may have closed its standard descriptors. The connection to the
// server or a file to save would get a free number among them, and a message printed there would
// end up in the middle of the requests or of the file. To be called before anything is opened.
void HoldStandardDescriptors();

// Opens the display, reads the installation directory, grabs the draw button and makes every
// long-lived window; ends with the main window on the screen and the pointer followed. Prints the
// reason and exits when the display cannot be opened (status 1) or the draw button belongs to
// another program (status 0).
void StartUp(const CommandLine& line);

}  // namespace gromlit
