// Fixture for tests of single widgets: a mapped window to put them in, and pictures of what is
// drawn.
#pragma once

#include "tests/support/x_fixture.h"

#include <X11/Xutil.h>

#include <string>
#include <vector>

#include "toolkit/child_window.h"

namespace gromlit::testing {

// A rectangle of pixels, 0xrrggbb each. Prints as one letter per pixel, for failure messages.
struct Picture {
  int width;
  int height;
  std::vector<unsigned long> pixels;

  Picture(int w, int h, unsigned long fill)
      : width(w), height(h), pixels(static_cast<size_t>(w * h), fill) {}
  unsigned long& At(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
  unsigned long At(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
  // Draws a horizontal or vertical line from one end to the other, cut at the borders.
  void Line(unsigned long pixel, int x1, int y1, int x2, int y2) {
    for (int y = std::min(y1, y2); y <= std::max(y1, y2); y++) {
      for (int x = std::min(x1, x2); x <= std::max(x1, x2); x++) {
        if (x >= 0 && x < width && y >= 0 && y < height) At(x, y) = pixel;
      }
    }
  }
  void Fill(unsigned long pixel, int x, int y, int w, int h) {
    for (int row = y; row < y + h; row++) Line(pixel, x, row, x + w - 1, row);
  }
  // A bevel by its eight lines, one after the other.
  void Bevel(unsigned long top, unsigned long bottom, int x, int y, int w, int h) {
    const int r = x + w - 1;
    const int b = y + h - 1;
    Line(top, x, y, r, y);
    Line(top, x, y, x, b);
    Line(top, x + 1, y + 1, r, y + 1);
    Line(top, x + 1, y, x + 1, b);
    Line(bottom, x + 1, b, r, b);
    Line(bottom, r, y + 1, r, b);
    Line(bottom, x + 2, b - 1, r, b - 1);
    Line(bottom, r - 1, y + 2, r - 1, b - 1);
  }
  // Number of pixels of this colour in a rectangle.
  int Count(unsigned long pixel, int x, int y, int w, int h) const {
    int n = 0;
    for (int row = y; row < y + h; row++) {
      for (int column = x; column < x + w; column++) n += At(column, row) == pixel ? 1 : 0;
    }
    return n;
  }
  bool operator==(const Picture&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Picture& picture) {
  for (int y = 0; y < picture.height; y++) {
    out << "\n  ";
    for (int x = 0; x < picture.width; x++) {
      const unsigned long p = picture.At(x, y);
      out << (p == 0xffffff   ? 'W'
              : p == 0xc0c0c0 ? '.'
              : p == 0xa8a8a8 ? 'g'
              : p == 0x707070 ? 'D'
              : p == 0x000079 ? 'B'
              : p == 0        ? '#'
                              : '?');
    }
  }
  return out;
}

// What another client sees of a rectangle of the screen.
inline Picture TakeScreen(const Player& player, int x, int y, int w, int h) {
  Picture picture(w, h, 0);
  XImage* image = XGetImage(player.display(), player.root(), x, y, static_cast<unsigned>(w),
                            static_cast<unsigned>(h), AllPlanes, ZPixmap);
  if (image == nullptr) {
    ADD_FAILURE() << "cannot read the screen";
    return picture;
  }
  for (int row = 0; row < h; row++) {
    for (int column = 0; column < w; column++) {
      picture.At(column, row) = XGetPixel(image, column, row) & 0xffffff;
    }
  }
  XDestroyImage(image);
  return picture;
}

// Where a window is in its parent.
struct Place {
  int x, y, width, height;
  bool operator==(const Place&) const = default;
};

class WidgetFixture : public XFixture {
 protected:
  static constexpr int kTopX = 100;  // of the window, on the screen
  static constexpr int kTopY = 80;
  static constexpr unsigned long kWhite = 0xffffff;
  static constexpr unsigned long kLightGrey = 0xc0c0c0;
  static constexpr unsigned long kGrey = 0xa8a8a8;
  static constexpr unsigned long kDarkGrey = 0x707070;
  static constexpr unsigned long kBlue = 0x000079;
  static constexpr unsigned long kBlack = 0;

  void SetUp() override {
    XFixture::SetUp();
    if (HasFatalFailure()) return;
    XSetWindowAttributes more{};
    more.override_redirect = True;
    top = MakeChildWindow(root, kTopX, kTopY, 600, 400, lgrey.pixel, 0, CWOverrideRedirect, more);
    XMapWindow(dpy, top);
    XSync(dpy, False);
  }

  // The user moves to, or clicks at, a point of the window.
  void MoveTo(int x, int y) { player->MoveTo(kTopX + x, kTopY + y); }
  void ClickAt(int x, int y) {
    MoveTo(x, y);
    player->Click(1);
    Pump();
  }

  // What the screen shows of a rectangle of a window.
  Picture Take(Window window, int x, int y, int w, int h) {
    XSync(dpy, False);
    int rootx = 0;
    int rooty = 0;
    Window child;
    XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
    return TakeScreen(*player, rootx, rooty, w, h);
  }

  static Place PlaceOf(Window window) {
    XWindowAttributes at{};
    XGetWindowAttributes(dpy, window, &at);
    return {at.x, at.y, at.width, at.height};
  }

  Window top = None;
};

}  // namespace gromlit::testing
