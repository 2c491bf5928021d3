// Drawing the expected picture of a widget, pixel by pixel and without the code under test.
#pragma once

// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include <X11/Xutil.h>

#include <cstring>
#include <string>

namespace gromlit::testing {

// What XDrawRectangle draws: w + 1 x h + 1 pixels.
inline void Outline(Picture& picture, unsigned long pixel, int x, int y, int w, int h) {
  picture.Line(pixel, x, y, x + w, y);
  picture.Line(pixel, x, y + h, x + w, y + h);
  picture.Line(pixel, x, y, x, y + h);
  picture.Line(pixel, x + w, y, x + w, y + h);
}

inline void InvertPixel(Picture& picture, int x, int y) {
  if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) return;
  picture.At(x, y) ^= 0xffffff;
}

inline void InvertFilled(Picture& picture, int x, int y, int w, int h) {
  for (int row = y; row < y + h; row++) {
    for (int column = x; column < x + w; column++) InvertPixel(picture, column, row);
  }
}

// Each pixel of the outline once.
inline void InvertFrame(Picture& picture, int x, int y, int w, int h) {
  for (int column = x; column <= x + w; column++) {
    InvertPixel(picture, column, y);
    InvertPixel(picture, column, y + h);
  }
  for (int row = y + 1; row < y + h; row++) {
    InvertPixel(picture, x, row);
    InvertPixel(picture, x + w, row);
  }
}

// Draws text in black, with its own context in a pixmap of its own.
inline void Stamp(Picture& picture, XFontStruct* font, int x, int baseline,
                  const std::string& text) {
  const auto w = static_cast<unsigned>(picture.width);
  const auto h = static_cast<unsigned>(picture.height);
  const Pixmap pixmap = XCreatePixmap(dpy, root, w, h, 1);
  XGCValues values;
  values.foreground = 0;
  values.font = font->fid;
  GC gc = XCreateGC(dpy, pixmap, GCForeground | GCFont, &values);
  XFillRectangle(dpy, pixmap, gc, 0, 0, w, h);
  XSetForeground(dpy, gc, 1);
  XDrawString(dpy, pixmap, gc, x, baseline, text.data(), static_cast<int>(text.size()));
  XImage* image = XGetImage(dpy, pixmap, 0, 0, w, h, 1, XYPixmap);
  for (int row = 0; row < picture.height; row++) {
    for (int column = 0; column < picture.width; column++) {
      if (XGetPixel(image, column, row) != 0) picture.At(column, row) = 0;
    }
  }
  XDestroyImage(image);
  XFreeGC(dpy, gc);
  XFreePixmap(dpy, pixmap);
}

// Copies an image, whose pixels are those of the screen, to (x, y).
inline void Paste(Picture& picture, XImage* image, int x, int y) {
  for (int row = 0; row < image->height; row++) {
    for (int column = 0; column < image->width; column++) {
      const int px = x + column;
      const int py = y + row;
      if (px < 0 || py < 0 || px >= picture.width || py >= picture.height) continue;
      picture.At(px, py) = XGetPixel(image, column, row) & 0xffffff;
    }
  }
}

}  // namespace gromlit::testing
