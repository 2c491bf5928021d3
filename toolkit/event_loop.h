// The one event loop of the program.
#pragma once

namespace gromlit {

// Takes events for ever and hands each to the handler of its window (DispatchEvent). Interactions
// that need a loop of their own run it inside their handler and come back.
[[noreturn]] void EventLoop();

}  // namespace gromlit
