// What a Run command can do to the window under the stroke.
#pragma once

#include <string_view>

namespace gromlit {

// Carries a keyword out: "system:minimize", "system:maximize" and "system:fullscreen" and
// "system:above" (again: back), "system:close", "system:desktop-next", "system:desktop-previous",
// "system:window-to-desktop-next", "system:window-to-desktop-previous" (behind the last desktop
// comes the first). False, with nothing done, when the text is none of them. A line on standard
// error where the window manager cannot. Over the bare desktop only the desktop can be changed.
bool RunWindowAction(std::string_view text);

}  // namespace gromlit
