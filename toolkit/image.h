// The pictures that are built into the program, and the reader that makes images of them.
//
// A picture is an XPM 3 string array: a header line "width height colours characters-per-pixel",
// one line per colour, one line per row. Only what the built-in pictures need is understood: one or
// two characters per pixel and colours written as "c #RRGGBB".
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <span>

namespace gromlit {

extern XImage* logoImage;        // the product's logo, 125 x 57
extern XImage* smImage;          // the wordmark, 163 x 29
extern XImage* upscrollImage;    // a scrollbar's arrows, 11 x 11
extern XImage* downscrollImage;  // as is this one
extern XImage* rightmenuImage;   // marks a menu item that has a submenu, 11 x 11

// Makes the five images. Needs the display and the colours; called again, for another display, it
// replaces them.
void MakeImages();

// An image in the format of the root window, to be drawn with PutImage and released with
// XDestroyImage; null when the picture is not understood or has fewer lines than its header says.
// A key without a colour line, and what a short row leaves out, gives pixel 0. The two-character
// key of the bytes 0xFF 0xFF is none.
XImage* XpmToPixmap(std::span<const char* const> data);

// Draws a whole image with its top-left corner at (x, y); a null image draws nothing.
void PutImage(Window win, GC gc, XImage* image, int x, int y);

}  // namespace gromlit
