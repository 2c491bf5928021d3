#include "toolkit/image.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <vector>

#include "display/calls_xlib.h"
#include "display/colours.h"
#include "display/display.h"
#include "display/scale.h"
#include "images/downscrollbar.xpm"
#include "images/gromlitlogo.xpm"
#include "images/gromlitlogo2x.xpm"
#include "images/gromlitsimple.xpm"
#include "images/menurightarrow.xpm"
#include "images/upscrollbar.xpm"

namespace gromlit {

XImage* logoImage = nullptr;
XImage* smImage = nullptr;
XImage* upscrollImage = nullptr;
XImage* downscrollImage = nullptr;
XImage* rightmenuImage = nullptr;

namespace {

constexpr int kMaxSide = 32767;              // X coordinates have 16 bits with a sign
constexpr unsigned kPixelTableSize = 65535;  // keys 0..65534

struct Header {
  int width;
  int height;
  int ncolours;
  int cpp;  // characters per pixel, 1 or 2
};

void SkipBlanks(std::string_view* text) {
  text->remove_prefix(std::min(text->find_first_not_of(" \t\n\v\f\r"), text->size()));
}

// Takes a number from the front of a text; false when there is none, when it does not fit, or when
// it has not `digits` digits (npos: as many as there are).
template <typename Number>
bool TakeNumber(std::string_view* text, Number* number, int base, size_t digits) {
  const std::string_view front = text->substr(0, digits);
  const auto [end, error] =
      std::from_chars(front.data(), front.data() + front.size(), *number, base);
  if (error != std::errc()) return false;
  const auto taken = static_cast<size_t>(end - front.data());
  if (digits != std::string_view::npos && taken != digits) return false;
  text->remove_prefix(taken);
  return true;
}

bool ReadHeader(std::span<const char* const> data, Header* header) {
  if (data.empty()) return false;
  std::string_view line = data[0];
  for (int* number : {&header->width, &header->height, &header->ncolours, &header->cpp}) {
    SkipBlanks(&line);
    if (!TakeNumber(&line, number, 10, std::string_view::npos)) return false;
  }
  if (header->width < 1 || header->width > kMaxSide) return false;
  if (header->height < 1 || header->height > kMaxSide) return false;
  if (header->cpp < 1 || header->cpp > 2) return false;
  if (header->ncolours < 0) return false;
  const auto lines = static_cast<size_t>(header->ncolours) + static_cast<size_t>(header->height);
  return lines <= data.size() - 1;
}

// The lowest set bit's number when the mask is eight bits wide, else -1.
int ByteShift(unsigned long mask) {
  for (int shift = 0; shift <= 24; shift++) {
    if (mask == 0xffUL << shift) return shift;
  }
  return -1;
}

// Pixel of an 8-bit colour. Where the colour map is fixed and a channel has eight bits, the answer
// is known without asking: one round trip per colour would be near a hundred at start-up.
unsigned long PixelOfColour(unsigned r, unsigned g, unsigned b) {
  const Visual* visual = DefaultVisual(dpy, screen);
  if (visual->c_class == TrueColor) {
    const int red = ByteShift(visual->red_mask);
    const int green = ByteShift(visual->green_mask);
    const int blueshift = ByteShift(visual->blue_mask);
    if (red >= 0 && green >= 0 && blueshift >= 0) {
      return static_cast<unsigned long>(r) << red | static_cast<unsigned long>(g) << green |
             static_cast<unsigned long>(b) << blueshift;
    }
  }
  XColor colour{};
  colour.red = static_cast<unsigned short>(r | r << 8);
  colour.green = static_cast<unsigned short>(g | g << 8);
  colour.blue = static_cast<unsigned short>(b | b << 8);
  colour.flags = DoRed | DoGreen | DoBlue;
  AllocateColour(dpy, screen, &colour);
  return colour.pixel;
}

unsigned KeyOf(char c1, char c2) {
  return static_cast<unsigned char>(c1) * 256U + static_cast<unsigned char>(c2);
}

// Reads one colour line into the table; false when it is not of the form "KEY c #RRGGBB".
bool ReadColour(std::string_view line, int cpp, std::vector<unsigned long>* pixels) {
  const auto keysize = static_cast<size_t>(cpp);
  if (line.size() < keysize) return false;
  const char c1 = keysize == 2 ? line[0] : '\0';
  const char c2 = line[keysize - 1];
  line.remove_prefix(keysize);
  for (const char expected : {'c', '#'}) {
    SkipBlanks(&line);
    if (!line.starts_with(expected)) return false;
    line.remove_prefix(1);
  }
  unsigned r = 0;
  unsigned g = 0;
  unsigned b = 0;
  for (unsigned* part : {&r, &g, &b}) {
    if (!TakeNumber(&line, part, 16, 2)) return false;
  }
  const unsigned key = KeyOf(c1, c2);
  if (key < pixels->size()) (*pixels)[key] = PixelOfColour(r, g, b);
  return true;
}

// An image of the format that the root window's own contents would come in. Reading those contents
// back instead would cost a round trip and fail on a screen smaller than the picture.
GROMLIT_CALLS_XLIB XImage* BlankImage(int width, int height) {
  XImage* image = XCreateImage(
      dpy, DefaultVisual(dpy, screen), static_cast<unsigned>(DefaultDepth(dpy, screen)), ZPixmap, 0,
      nullptr, static_cast<unsigned>(width), static_cast<unsigned>(height), BitmapPad(dpy), 0);
  if (image == nullptr) return nullptr;
  // XDestroyImage releases the data with free.
  image->data = static_cast<char*>(
      std::calloc(static_cast<size_t>(image->bytes_per_line), static_cast<size_t>(height)));
  if (image->data == nullptr) {
    XDestroyImage(image);
    return nullptr;
  }
  return image;
}

// The image with every pixel doubled both ways; null where there is no memory.
GROMLIT_CALLS_XLIB XImage* Doubled(XImage* image) {
  XImage* twice = BlankImage(2 * image->width, 2 * image->height);
  if (twice == nullptr) return nullptr;
  for (int y = 0; y < twice->height; y++) {
    for (int x = 0; x < twice->width; x++) XPutPixel(twice, x, y, XGetPixel(image, x / 2, y / 2));
  }
  return twice;
}

// What is put at scale 2 for the images that are built in.
struct Sharp {
  XImage* image;
  XImage* twice;
};
std::vector<Sharp>& SharpImages() {
  static auto* images = new std::vector<Sharp>;
  return *images;
}

GROMLIT_CALLS_XLIB void Drop(XImage* image) {
  if (image == nullptr) return;
  for (const Sharp& sharp : SharpImages()) {
    if (sharp.image == image && sharp.twice != nullptr) XDestroyImage(sharp.twice);
  }
  std::erase_if(SharpImages(), [=](const Sharp& sharp) { return sharp.image == image; });
  XDestroyImage(image);
}

// `twicedata` is the same picture drawn twice as large; empty where its pixels are doubled.
void Renew(XImage** image, std::span<const char* const> data,
           std::span<const char* const> twicedata = {}) {
  Drop(*image);
  *image = XpmToPixmap(data);
  if (Scale() == 1 || *image == nullptr) return;
  SharpImages().push_back({*image, twicedata.empty() ? Doubled(*image) : XpmToPixmap(twicedata)});
}

void PutDevice(Window win, GC gc, XImage* image, int x, int y) {
  XPutImage(dpy, win, gc, image, 0, 0, Device(x), Device(y), static_cast<unsigned>(image->width),
            static_cast<unsigned>(image->height));
}

}  // namespace

void MakeImages() {
  Renew(&logoImage, gromlitlogo, gromlitlogo2x);
  Renew(&smImage, gromlitsimple);
  Renew(&upscrollImage, upscrollbar);
  Renew(&downscrollImage, downscrollbar);
  Renew(&rightmenuImage, menurightarrow);
}

GROMLIT_CALLS_XLIB XImage* XpmToPixmap(std::span<const char* const> data) {
  Header header{};
  if (!ReadHeader(data, &header)) return nullptr;
  std::vector<unsigned long> pixels(header.cpp == 2 ? kPixelTableSize : 256U);
  for (const char* line : data.subspan(1, static_cast<size_t>(header.ncolours))) {
    if (!ReadColour(line, header.cpp, &pixels)) return nullptr;
  }
  XImage* image = BlankImage(header.width, header.height);
  if (image == nullptr) return nullptr;
  const auto rows = data.subspan(1 + static_cast<size_t>(header.ncolours));
  for (int y = 0; y < header.height; y++) {
    std::string_view row = rows[static_cast<size_t>(y)];
    const auto cpp = static_cast<size_t>(header.cpp);
    for (int x = 0; x < header.width && row.size() >= cpp; x++) {
      const unsigned key = cpp == 2 ? KeyOf(row[0], row[1]) : KeyOf(0, row[0]);
      XPutPixel(image, x, y, key < pixels.size() ? pixels[key] : 0UL);
      row.remove_prefix(cpp);
    }
  }
  return image;
}

GROMLIT_CALLS_XLIB void PutImage(Window win, GC gc, XImage* image, int x, int y) {
  if (image == nullptr) return;
  if (Scale() == 1) {
    PutDevice(win, gc, image, x, y);
    return;
  }
  for (const Sharp& sharp : SharpImages()) {
    if (sharp.image != image || sharp.twice == nullptr) continue;
    PutDevice(win, gc, sharp.twice, x, y);
    return;
  }
  XImage* twice = Doubled(image);
  if (twice == nullptr) return;
  PutDevice(win, gc, twice, x, y);
  XDestroyImage(twice);
}

}  // namespace gromlit
