// Drawing: what is handed over is looked at, and must be what the protocol can carry.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <string_view>

#include "display/display.h"
#include "fuzz/fake_server.h"
#include "fuzz/require.h"

using namespace gromlit;
using namespace gromlit::fuzz;

namespace {

struct FakeContext {
  char room[512];  // what macros of Xlib might look at
  Font font;
};

std::map<const XFontStruct*, std::string>& Fonts() {
  static auto* const fonts = new std::map<const XFontStruct*, std::string>;
  return *fonts;
}

// A place that sixteen bits with a sign hold: Xlib cuts off the rest without a word.
void RequirePlace(int x, int y) {
  constexpr int kLow = std::numeric_limits<short>::min();
  constexpr int kHigh = std::numeric_limits<short>::max();
  Require(x >= kLow && x <= kHigh && y >= kLow && y <= kHigh);
}

void RequireSize(unsigned width, unsigned height) {
  Require(width <= 65535 && height <= 65535);
}

int Drew(Drawable target, GC gc, const void* data, int count, size_t size) {
  Require(target != None && gc != nullptr && count >= 0);
  Touch(data, static_cast<size_t>(count) * size);
  Server().drawn++;
  return 1;
}

}  // namespace

extern "C" {

GC XCreateGC(Display*, Drawable target, unsigned long, XGCValues*) {
  Require(target != None);
  return reinterpret_cast<GC>(new FakeContext{{}, txtFont});
}
int XFreeGC(Display*, GC gc) {
  delete reinterpret_cast<FakeContext*>(gc);
  return 1;
}
Status XGetGCValues(Display*, GC gc, unsigned long, XGCValues* values) {
  values->font = reinterpret_cast<FakeContext*>(gc)->font;
  return 1;
}
int XSetFont(Display*, GC gc, Font font) {
  reinterpret_cast<FakeContext*>(gc)->font = font;
  return 1;
}
int XSetForeground(Display*, GC gc, unsigned long) {
  Require(gc != nullptr);
  return 1;
}
int XSetFunction(Display*, GC, int) {
  return 1;
}
int XSetLineAttributes(Display*, GC, unsigned, int, int, int) {
  return 1;
}
int XSetClipRectangles(Display*, GC, int, int, XRectangle* rectangles, int n, int) {
  Touch(rectangles, static_cast<size_t>(n) * sizeof *rectangles);
  return 1;
}

Status XAllocColor(Display*, Colormap, XColor* colour) {
  colour->pixel = static_cast<unsigned long>(colour->red >> 8) << 16 |
                  static_cast<unsigned long>(colour->green >> 8) << 8 | colour->blue >> 8;
  return 1;
}

int XDrawLine(Display*, Drawable target, GC gc, int x1, int y1, int x2, int y2) {
  RequirePlace(x1, y1);
  RequirePlace(x2, y2);
  return Drew(target, gc, nullptr, 0, 0);
}
int XDrawLines(Display*, Drawable target, GC gc, XPoint* points, int n, int) {
  return Drew(target, gc, points, n, sizeof *points);
}
int XDrawPoints(Display*, Drawable target, GC gc, XPoint* points, int n, int) {
  return Drew(target, gc, points, n, sizeof *points);
}
int XDrawSegments(Display*, Drawable target, GC gc, XSegment* segments, int n) {
  return Drew(target, gc, segments, n, sizeof *segments);
}
int XDrawRectangle(Display*, Drawable target, GC gc, int x, int y, unsigned w, unsigned h) {
  RequirePlace(x, y);
  RequireSize(w, h);
  return Drew(target, gc, nullptr, 0, 0);
}
int XFillRectangle(Display*, Drawable target, GC gc, int x, int y, unsigned w, unsigned h) {
  RequirePlace(x, y);
  RequireSize(w, h);
  return Drew(target, gc, nullptr, 0, 0);
}
int XFillRectangles(Display*, Drawable target, GC gc, XRectangle* rectangles, int n) {
  return Drew(target, gc, rectangles, n, sizeof *rectangles);
}
int XFillPolygon(Display*, Drawable target, GC gc, XPoint* points, int n, int, int) {
  return Drew(target, gc, points, n, sizeof *points);
}
int XDrawString(Display*, Drawable target, GC gc, int x, int y, const char* text, int n) {
  RequirePlace(x, y);
  return Drew(target, gc, text, n, 1);
}
int XDrawImageString(Display*, Drawable target, GC gc, int x, int y, const char* text, int n) {
  RequirePlace(x, y);
  return Drew(target, gc, text, n, 1);
}
int XDrawString16(Display*, Drawable target, GC gc, int x, int y, const XChar2b* text, int n) {
  RequirePlace(x, y);
  return Drew(target, gc, text, n, sizeof *text);
}
int XDrawImageString16(Display*, Drawable target, GC gc, int x, int y, const XChar2b* text, int n) {
  RequirePlace(x, y);
  return Drew(target, gc, text, n, sizeof *text);
}
int XClearWindow(Display*, Window) {
  return 1;
}
int XClearArea(Display*, Window, int, int, unsigned, unsigned, Bool) {
  return 1;
}

int XPutImage(Display*, Drawable target, GC gc, XImage* image, int fromx, int fromy, int x, int y,
              unsigned width, unsigned height) {
  Require(image != nullptr && fromx >= 0 && fromy >= 0);
  RequirePlace(x, y);
  Require(static_cast<long>(width) + fromx <= image->width);
  Require(static_cast<long>(height) + fromy <= image->height);
  Touch(image->data,
        static_cast<size_t>(image->bytes_per_line) * static_cast<size_t>(image->height));
  return Drew(target, gc, nullptr, 0, 0);
}

// Every font that is asked for is there, also in the form that has all letters of two bytes.
XFontStruct* XLoadQueryFont(Display*, const char* name) {
  auto* font = new XFontStruct{};
  font->fid = 0x500 + Fonts().size();
  font->max_char_or_byte2 = 255;
  font->max_byte1 = std::string_view(name).ends_with("iso10646-1") ? 255 : 0;
  font->min_bounds.width = font->max_bounds.width = 6;
  font->ascent = 10;
  font->descent = 3;
  Fonts()[font] = name;
  return font;
}
Bool XGetFontProperty(XFontStruct* font, Atom, unsigned long* value) {
  *value = XInternAtom(dpy, Fonts().at(font).c_str(), False);
  return True;
}
char* XGetAtomName(Display*, Atom atom) {
  for (const auto& [font, name] : Fonts()) {
    if (XInternAtom(dpy, name.c_str(), False) == atom) return strdup(name.c_str());
  }
  return nullptr;
}

}  // extern "C"
