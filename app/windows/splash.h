// The picture that greets the user while the program starts.
#pragma once

namespace gromlit {

// Name of the sound in the installation directory.
extern const char* const GromlitSplashSoundFile;

// Shows the splash window in the middle of the screen, plays its sound and returns two seconds
// later, with the window gone. Reads no events. Needs images, fonts and the options `user`.
void DoSplash();

}  // namespace gromlit
