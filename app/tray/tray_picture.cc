#include "app/tray/tray_picture.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "display/calls_xlib.h"
#include "display/display.h"
#include "toolkit/image.h"

namespace gromlit {
namespace {

// The letter's place in the logo: a square.
constexpr int kLeft = 3;
constexpr int kUpper = 6;
constexpr int kSide = 46;

constexpr int kSamples = 6;  // along each side of a pixel; their mean is what it gets

// Shares of the three channels, 0..255.
struct Shade {
  int red = 0;
  int green = 0;
  int blue = 0;
};

// A channel of the screen's colours, which are TrueColor.
struct Channel {
  unsigned long mask;

  int Shift() const { return std::countr_zero(mask); }
  unsigned long Most() const { return mask >> Shift(); }
  int ShareIn(unsigned long pixel) const {
    return static_cast<int>(((pixel & mask) >> Shift()) * 255 / Most());
  }
  unsigned long Pixel(int share) const {
    return (static_cast<unsigned long>(share) * Most() + 127) / 255 << Shift();
  }
};

struct Channels {
  Channel red;
  Channel green;
  Channel blue;

  Shade ShadeOf(unsigned long pixel) const {
    return {red.ShareIn(pixel), green.ShareIn(pixel), blue.ShareIn(pixel)};
  }
  unsigned long Pixel(const Shade& shade) const {
    return red.Pixel(shade.red) | green.Pixel(shade.green) | blue.Pixel(shade.blue);
  }
};

// Where a sample lies in the logo; `n` counts the samples along a row or column of the picture.
int InLogo(int n, int side) {
  return (2 * n + 1) * kSide / (2 * kSamples * side);
}

// The mean of what the logo has below a pixel of the picture.
GROMLIT_CALLS_XLIB Shade MeanAt(const Channels& channels, int x, int y, int side) {
  Shade sum;
  for (int j = 0; j < kSamples; j++) {
    for (int i = 0; i < kSamples; i++) {
      const Shade shade =
          channels.ShadeOf(XGetPixel(logoImage, kLeft + InLogo(x * kSamples + i, side),
                                     kUpper + InLogo(y * kSamples + j, side)));
      sum.red += shade.red;
      sum.green += shade.green;
      sum.blue += shade.blue;
    }
  }
  constexpr int kCount = kSamples * kSamples;
  return {sum.red / kCount, sum.green / kCount, sum.blue / kCount};
}

// Without its colour, and half as strong.
Shade Faded(const Shade& shade) {
  const int grey = (shade.red * 3 + shade.green * 6 + shade.blue) / 10;
  const int light = (grey + 255) / 2;
  return {light, light, light};
}

// Whether a pixel is on the bar from the lower left to the upper right corner.
bool IsOnBar(int x, int y, int side) {
  const int margin = side / 10;
  if (std::min(x, y) < margin || std::max(x, y) >= side - margin) return false;
  return std::abs(x + y - (side - 1)) <= std::max(side / 12, 1);
}

GROMLIT_CALLS_XLIB XImage* EmptyPicture(int side) {
  XImage* picture = XCreateImage(
      dpy, DefaultVisual(dpy, screen), static_cast<unsigned>(DefaultDepth(dpy, screen)), ZPixmap, 0,
      nullptr, static_cast<unsigned>(side), static_cast<unsigned>(side), BitmapPad(dpy), 0);
  if (picture == nullptr) return nullptr;
  // XDestroyImage releases the data with free.
  picture->data = static_cast<char*>(
      std::calloc(static_cast<size_t>(picture->bytes_per_line), static_cast<size_t>(side)));
  if (picture->data == nullptr) {
    XDestroyImage(picture);
    return nullptr;
  }
  return picture;
}

}  // namespace

GROMLIT_CALLS_XLIB XImage* MakeTrayPicture(int side, bool paused) {
  constexpr Shade kBar{0xc0, 0x20, 0x20};
  XImage* picture = logoImage != nullptr ? EmptyPicture(side) : nullptr;
  if (picture == nullptr) return nullptr;
  const Visual* visual = DefaultVisual(dpy, screen);
  // On a screen whose pixels are numbers of colours nothing can be mixed.
  const bool mixes = visual->c_class == TrueColor;
  const Channels channels{{visual->red_mask}, {visual->green_mask}, {visual->blue_mask}};
  for (int y = 0; y < side; y++) {
    for (int x = 0; x < side; x++) {
      const bool bar = paused && IsOnBar(x, y, side);
      unsigned long pixel;
      if (mixes) {
        const Shade shade = MeanAt(channels, x, y, side);
        pixel = channels.Pixel(bar ? kBar : paused ? Faded(shade) : shade);
      } else {
        pixel = bar ? black.pixel
                    : XGetPixel(logoImage, kLeft + x * kSide / side, kUpper + y * kSide / side);
      }
      XPutPixel(picture, x, y, pixel);
    }
  }
  return picture;
}

}  // namespace gromlit
