// What a fuzz target is made of; fuzz/target.cc hands it to libFuzzer.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

namespace gromlit::fuzz {

// Tries one input, on a display that is new (ResetServer). Each target defines its own. It ends the
// process where something is wrong (fuzz/require.h).
void Run(FuzzedDataProvider* data);

}  // namespace gromlit::fuzz
