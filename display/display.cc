#include "display/display.h"

#include <X11/Xutil.h>

#include "display/colours.h"
#include "images/handcursor.xbm"
#include "images/handcursormask.xbm"

namespace gromlit {

Display* dpy = nullptr;
int screen = 0;
Window root = None;
Colormap cmap = None;
int screenwidth = 0;
int screenheight = 0;

XColor white{0, 0xffff, 0xffff, 0xffff, DoRed | DoGreen | DoBlue, 0};
XColor black{0, 0, 0, 0, DoRed | DoGreen | DoBlue, 0};
XColor lgrey{0, 0xc000, 0xc000, 0xc000, DoRed | DoGreen | DoBlue, 0};
XColor grey{0, 0xa800, 0xa800, 0xa800, DoRed | DoGreen | DoBlue, 0};
XColor dgrey{0, 0x7000, 0x7000, 0x7000, DoRed | DoGreen | DoBlue, 0};
XColor blue{0, 0, 0, 0x7900, DoRed | DoGreen | DoBlue, 0};

Font txtFont = None;
Font labelFont = None;
Font logoFont = None;
XFontStruct* txtFontinfo = nullptr;
XFontStruct* labelFontinfo = nullptr;
XFontStruct* logoFontinfo = nullptr;
int txtCharht = 0;
int labelCharht = 0;
int logoCharht = 0;

GC buttongc = nullptr;
GC logogc = nullptr;
GC txtgc = nullptr;

Cursor xCursor = None;
Cursor ptCursor = None;
Cursor txtCursor = None;
Cursor targetCursor = None;
Cursor gromlitCursor = None;
Cursor handCursor = None;
Pixmap handcursorImage = None;
Pixmap handcursorMaskImage = None;

Atom wm_delete = None;
Atom wm_protocols = None;

bool OpenDisplay(const char* name) {
  dpy = XOpenDisplay(name);
  if (dpy == nullptr) return false;
  screen = DefaultScreen(dpy);
  root = RootWindow(dpy, screen);
  cmap = DefaultColormap(dpy, screen);
  screenwidth = DisplayWidth(dpy, screen);
  screenheight = DisplayHeight(dpy, screen);
  return true;
}

void FollowScreenSize(void*, XEvent* event) {
  const XConfigureEvent& now = event->xconfigure;
  if (now.send_event != False || now.window != root) return;
  screenwidth = now.width;
  screenheight = now.height;
}

void MakeColours() {
  ForgetColourMap();
  AllocateColour(dpy, screen, &white);
  AllocateColour(dpy, screen, &black);
  white.pixel = WhitePixel(dpy, screen);
  black.pixel = BlackPixel(dpy, screen);
  AllocateColour(dpy, screen, &lgrey);
  AllocateColour(dpy, screen, &dgrey);
  AllocateColour(dpy, screen, &grey);
  AllocateColour(dpy, screen, &blue);
}

void MakeHandCursor() {
  const auto bitmap = [](const unsigned char* bits) {
    return XCreateBitmapFromData(dpy, root, reinterpret_cast<const char*>(bits), handcursor_width,
                                 handcursor_height);
  };
  handcursorImage = bitmap(handcursor_bits);
  handcursorMaskImage = bitmap(handcursormask_bits);
  handCursor = XCreatePixmapCursor(dpy, handcursorImage, handcursorMaskImage, &white, &black, 3, 7);
}

namespace {

GC MakeContext(Font font) {
  XGCValues values;
  values.foreground = black.pixel;
  values.background = lgrey.pixel;
  values.font = font;
  const unsigned long mask = GCForeground | GCBackground | (font != None ? GCFont : 0UL);
  return XCreateGC(dpy, root, mask, &values);
}

}  // namespace

void MakeCursors() {
  // Without the font that they are made from, which ends a program that does not look, windows have
  // the cursor of the window below.
  int count = 0;
  char** const fonts = XListFonts(dpy, "cursor", 1, &count);
  if (fonts != nullptr) XFreeFontNames(fonts);
  if (count == 0) return;
  xCursor = XCreateFontCursor(dpy, 34);
  ptCursor = XCreateFontCursor(dpy, 58);
  txtCursor = XCreateFontCursor(dpy, 152);
  targetCursor = XCreateFontCursor(dpy, 58);
  gromlitCursor = XCreateFontCursor(dpy, 60);
}

void MakeContexts() {
  buttongc = MakeContext(labelFont);
  logogc = MakeContext(logoFont);
  txtgc = MakeContext(txtFont);
}

void MakeAtoms() {
  const auto intern = [](const char* name) {
    const Atom atom = XInternAtom(dpy, name, True);
    return atom != None ? atom : XInternAtom(dpy, name, False);
  };
  wm_delete = intern("WM_DELETE_WINDOW");
  wm_protocols = intern("WM_PROTOCOLS");
}

}  // namespace gromlit
