#include "display/scale_choice.h"

#include <X11/Xlib.h>
#include <X11/Xresource.h>

#include <charconv>

#include "display/display.h"

namespace gromlit {

std::optional<int> ScaleOfText(std::string_view text) {
  if (text == "1") return 1;
  if (text == "2") return 2;
  return {};
}

int ChooseScale(int argument, const char* variable, std::string_view dpi) {
  if (argument != 0) return argument;
  if (variable != nullptr) {
    if (const std::optional<int> scale = ScaleOfText(variable)) return *scale;
  }
  double dots = 0;
  const auto end = std::from_chars(dpi.data(), dpi.data() + dpi.size(), dots);
  return end.ec == std::errc() && dots >= kSharpDpi ? 2 : 1;
}

std::string DpiOfDesktop() {
  const char* all = XResourceManagerString(dpy);
  if (all == nullptr) return "";
  XrmInitialize();
  const XrmDatabase resources = XrmGetStringDatabase(all);
  char* type = nullptr;
  XrmValue value{};
  std::string dpi;
  if (XrmGetResource(resources, "Xft.dpi", "Xft.Dpi", &type, &value) != 0 && value.addr != nullptr)
    dpi = value.addr;
  XrmDestroyDatabase(resources);
  return dpi;
}

}  // namespace gromlit
