// Start-up, in order, and the event loop.
#pragma once
namespace gromlit {
int GromlitMain(int argc, char** argv);
}
