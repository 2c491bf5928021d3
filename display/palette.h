// The colours that all windows share: white, black, lgrey, dgrey, grey and blue
// (display/display.h).
#pragma once

namespace gromlit {

// Asks for them without waiting for the answers, which MakeColours takes in.
void AskForColours();

// Sets their pixels, white and black being the screen's own; where the colour map is full, to those
// of the nearest colours. To be called once for each connection, before any other colour.
void MakeColours();

}  // namespace gromlit
