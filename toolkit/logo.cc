#include "toolkit/logo.h"

#include "display/colours.h"
#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/image.h"
#include "toolkit/text.h"

namespace gromlit {

XLogo* MakeLogo(Window parent, int x, int y, int width, XImage* mid, const char* title) {
  auto* logo = new XLogo{};
  logo->width = width;
  logo->height = logoImage->height + 4;
  logo->mid = mid;
  logo->title = title;
  logo->gc = logogc;
  XSetWindowAttributes more{};
  more.backing_store = BackingStoreOfScreen(dpy, screen);
  logo->window =
      MakeChildWindow(parent, x, y, logo->width, logo->height, white.pixel,
                      ExposureMask | ButtonPressMask | ButtonReleaseMask, CWBackingStore, more);
  logo->wobj = AllocWindowObj(logo->window, logo);
  On<Expose, DrawLogo>(logo);
  On<ButtonPress, LogoButtonPress>(logo);
  On<ButtonRelease, LogoButtonRelease>(logo);
  XMapWindow(dpy, logo->window);
  return logo;
}

void DrawLogo(XLogo* logo, XEvent*) {
  XClearWindow(dpy, logo->window);
  XDrawBevel(kSunken, logo->window, logo->gc, 0, 0, logo->width, logo->height);
  PutImage(logo->window, logo->gc, logoImage, 6, 2);
  const int left = logoImage->width;
  const int space = logo->width - 8 - logoImage->width;
  if (logo->mid != nullptr) {
    PutImage(logo->window, logo->gc, logo->mid, left + (space - logo->mid->width) / 2 + 6,
             (logo->height - logo->mid->height) / 2);
  }
  if (logo->title != nullptr) {
    XSetForeground(dpy, logo->gc, black.pixel);
    DrawCentredText(logo->window, logo->gc, left + 6, space, logoImage->height / 2 + logoCharht / 2,
                    logo->title, TextWidth(logoFontinfo, logo->title));
  }
}

void LogoButtonPress(XLogo*, XEvent*) {}

void LogoButtonRelease(XLogo*, XEvent*) {}

}  // namespace gromlit
