// toolkit-gallery: shows every widget in every state, on the display that DISPLAY names.
//
// Prints "Gallery shown" once everything is on the screen. Status 0 when its window is closed, 1
// when there is no display.
#include <cstdio>

#include "core/option_files.h"
#include "display/display.h"
#include "gallery/gallery.h"
#include "toolkit/resources.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

int Show() {
  if (!OpenDisplay(nullptr)) {
    std::fprintf(stderr, "unable to open display '%s'\n", XDisplayName(nullptr));
    return 1;
  }
  MakeResources();
  MakeCursors();
  GetUserOptions();
  Gallery* gallery = MakeGallery();
  XMapWindow(dpy, gallery->window);
  bool posed = false;
  bool told = false;
  while (gallery->closed == 0) {
    XEvent event;
    XNextEvent(dpy, &event);
    DispatchEvent(&event);
    if (!posed) {
      // Once everything has been drawn for the first time.
      if (XPending(dpy) > 0) continue;
      XSync(dpy, False);
      if (XPending(dpy) > 0) continue;
      PoseGallery(gallery);
      posed = true;
      XSync(dpy, False);
    } else if (!told && XPending(dpy) == 0) {
      XSync(dpy, False);
      if (XPending(dpy) > 0) continue;
      std::printf("Gallery shown\n");
      std::fflush(stdout);
      told = true;
    }
  }
  return 0;
}

}  // namespace
}  // namespace gromlit

int main() {
  return gromlit::Show();
}
