#include "app/windows/splash.h"

#include <unistd.h>

#include <string>
#include <string_view>

#include "actions/launch.h"
#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/image.h"
#include "toolkit/text.h"

namespace gromlit {

const char* const GromlitSplashSoundFile = "TheGromlitSound.wav";

namespace {

constexpr int kMargin = 24;       // around the logo, pixels
constexpr unsigned kSeconds = 2;  // how long the splash stays

// The host of the web service, as it stands in the addresses of its pages.
std::string WebAddress() {
  std::string_view url = GromlitForumURLprefix;
  const size_t scheme = url.find("://");
  if (scheme != std::string_view::npos) url.remove_prefix(scheme + 3);
  return std::string(url.substr(0, url.find('/')));
}

// The sound in the installation directory, which need not be the working directory. The bare name
// where it is not there, or where the path would not survive as one word of a command line: the
// player may still know where to look.
std::string SoundPath() {
  std::string path = std::string(GromlitPath) + "/" + GromlitSplashSoundFile;
  const bool oneword = path.find_first_of(" \t\n\v\f\r") == std::string::npos;
  return oneword && access(path.c_str(), R_OK) == 0 ? path : GromlitSplashSoundFile;
}

void DrawSplash(Window win, GC gc, int width, int height) {
  PutImage(win, gc, logoImage, kMargin, kMargin);
  XDrawBevel(kRaised, win, gc, kMargin, kMargin, logoImage->width, logoImage->height);
  XDrawBevel(kRaised, win, gc, 0, 0, width, height);
  const auto line = [&](unsigned long pixel, const char* text, int baseline) {
    XSetForeground(dpy, gc, pixel);
    DrawText(win, gc, width / 2 - TextWidth(labelFontinfo, text) / 2, baseline, text);
  };
  line(black.pixel, "Powered By", 16);
  line(blue.pixel, WebAddress().c_str(), height - 8);
}

}  // namespace

void DoSplash() {
  const int width = logoImage->width + 2 * kMargin;
  const int height = logoImage->height + 2 * kMargin;
  XSetWindowAttributes more{};
  more.save_under = True;
  more.override_redirect = True;
  const Window win = MakeChildWindow(
      root, LogicalScreenWidth() / 2 - width / 2, LogicalScreenHeight() / 2 - height / 2, width,
      height, lgrey.pixel, ExposureMask, CWSaveUnder | CWOverrideRedirect, more);
  const GC gc = MakeWindowGC(win, labelFont);
  XMapWindow(dpy, win);
  DrawSplash(win, gc, width, height);
  XFlush(dpy);
  PlaySoundFile(SoundPath().c_str());
  // A signal, such as that of a child's end, must not cut the splash short.
  for (unsigned left = kSeconds; left > 0;) left = sleep(left);
  XDestroyWindow(dpy, win);
  XFreeGC(dpy, gc);
  XFlush(dpy);
}

}  // namespace gromlit
