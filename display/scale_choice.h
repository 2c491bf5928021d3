// Which scale the program draws at: what its caller says, else the environment, else the desktop.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gromlit {

inline constexpr const char* kScaleVariable = "GROMLIT_SCALE";

// From this resolution of the screen on, dots per inch, everything is drawn twice as large.
inline constexpr double kSharpDpi = 144;

// The scale of that text, "1" or "2"; none for anything else.
std::optional<int> ScaleOfText(std::string_view text);

// The scale by an argument (0: none), a variable of the environment (null: not set; what is no
// scale is ignored) and the value of the X resource Xft.dpi ("" for none), the first that there is;
// 1 without any.
int ChooseScale(int argument, const char* variable, std::string_view dpi);

// The X resource Xft.dpi of the display, "" where it has none. Xlib has had it since the display
// was opened: nothing is asked.
std::string DpiOfDesktop();

}  // namespace gromlit
