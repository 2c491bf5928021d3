#include "display/display.h"

#include <X11/Xlib-xcb.h>
#include <X11/Xutil.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

void FinishRequests() {
  XFlush(dpy);  // Xlib's count is old where others have used the connection
  if (LastKnownRequestProcessed(dpy) + 1 != NextRequest(dpy)) XSync(dpy, False);
}

void FollowScreenSize(void*, XEvent* event) {
  const XConfigureEvent& now = event->xconfigure;
  if (now.send_event != False || now.window != root) return;
  screenwidth = now.width;
  screenheight = now.height;
}

namespace {

// A bitmap of the hand. Drawn point by point, in one request: Xlib takes the ways by which pictures
// usually come for those of a theme's cursors, and asks the server what it can do with them.
Pixmap HandBitmap(std::span<const unsigned char> bits) {
  xcb_connection_t* const connection = XGetXCBConnection(dpy);
  const Pixmap bitmap = xcb_generate_id(connection);
  xcb_create_pixmap(connection, 1, static_cast<xcb_pixmap_t>(bitmap),
                    static_cast<xcb_drawable_t>(root), handcursor_width, handcursor_height);
  constexpr size_t kRow = (handcursor_width + 7) / 8;  // bytes
  std::vector<XPoint> points;
  for (int y = 0; y < handcursor_height; y++) {
    for (int x = 0; x < handcursor_width; x++) {
      const unsigned byte = bits[static_cast<size_t>(y) * kRow + static_cast<size_t>(x) / 8];
      if ((byte >> (x % 8) & 1U) == 0) continue;
      points.push_back({static_cast<short>(x), static_cast<short>(y)});
    }
  }
  XGCValues values;
  values.foreground = 0;
  const GC gc = XCreateGC(dpy, bitmap, GCForeground, &values);
  XFillRectangle(dpy, bitmap, gc, 0, 0, handcursor_width, handcursor_height);
  XSetForeground(dpy, gc, 1);
  XDrawPoints(dpy, bitmap, gc, points.data(), static_cast<int>(points.size()), CoordModeOrigin);
  XFreeGC(dpy, gc);
  return bitmap;
}

}  // namespace

void MakeHandCursor() {
  handcursorImage = HandBitmap(handcursor_bits);
  handcursorMaskImage = HandBitmap(handcursormask_bits);
  xcb_connection_t* const connection = XGetXCBConnection(dpy);
  handCursor = xcb_generate_id(connection);
  xcb_create_cursor(connection, static_cast<xcb_cursor_t>(handCursor),
                    static_cast<xcb_pixmap_t>(handcursorImage),
                    static_cast<xcb_pixmap_t>(handcursorMaskImage), white.red, white.green,
                    white.blue, black.red, black.green, black.blue, 3, 7);
}

namespace {

bool cursorsMade = false;

// Windows that wait for their cursors.
std::vector<std::pair<Window, const Cursor*>>& CursorUsers() {
  static auto* const users = new std::vector<std::pair<Window, const Cursor*>>;
  return *users;
}

GC MakeContext(Font font) {
  XGCValues values;
  values.foreground = black.pixel;
  values.background = lgrey.pixel;
  values.font = font;
  const unsigned long mask = GCForeground | GCBackground | (font != None ? GCFont : 0UL);
  return XCreateGC(dpy, root, mask, &values);
}

}  // namespace

void UseCursor(Window window, const Cursor* cursor) {
  if (cursorsMade) {
    XDefineCursor(dpy, window, *cursor);
  } else {
    CursorUsers().emplace_back(window, cursor);
  }
}

namespace {

std::optional<xcb_list_fonts_cookie_t> cursorFont;

// Whether the server has the font that cursors are made from.
bool HasCursorFont() {
  if (!cursorFont) AskForCursorFont();
  xcb_generic_error_t* error = nullptr;
  xcb_list_fonts_reply_t* const found =
      xcb_list_fonts_reply(XGetXCBConnection(dpy), *cursorFont, &error);
  cursorFont.reset();
  const bool has = found != nullptr && found->names_len > 0;
  std::free(found);
  std::free(error);
  return has;
}

}  // namespace

void AskForCursorFont() {
  constexpr std::string_view kName = "cursor";
  cursorFont =
      xcb_list_fonts(XGetXCBConnection(dpy), 1, static_cast<uint16_t>(kName.size()), kName.data());
}

void MakeCursors() {
  const std::vector<std::pair<Window, const Cursor*>> users = std::move(CursorUsers());
  CursorUsers().clear();
  cursorsMade = true;
  // Making them without their font would be an error that ends the program; windows have the cursor
  // of the window below them then.
  if (!HasCursorFont()) return;
  xCursor = XCreateFontCursor(dpy, 34);
  ptCursor = XCreateFontCursor(dpy, 58);
  txtCursor = XCreateFontCursor(dpy, 152);
  targetCursor = XCreateFontCursor(dpy, 58);
  gromlitCursor = XCreateFontCursor(dpy, 60);
  for (const auto& [window, cursor] : users) XDefineCursor(dpy, window, *cursor);
}

void MakeContexts() {
  buttongc = MakeContext(labelFont);
  logogc = MakeContext(logoFont);
  txtgc = MakeContext(txtFont);
}

void MakeAtoms() {
  const std::string number = std::to_string(screen);
  const std::string selections[] = {"_GROMLIT_S" + number, "_NET_SYSTEM_TRAY_S" + number};
  // What the start-up and the first stroke need. Xlib remembers them; one that is missing here is
  // asked for by itself.
  const char* const names[] = {
      "WM_DELETE_WINDOW",
      "WM_PROTOCOLS",
      "WM_LOCALE_NAME",
      "WM_STATE",
      "MANAGER",
      "_GROMLIT_SPARE_KEYS",
      "_NET_WM_NAME",
      "UTF8_STRING",
      "_NET_WM_WINDOW_TYPE",
      "_NET_WM_WINDOW_TYPE_NORMAL",
      "_NET_WM_WINDOW_TYPE_DIALOG",
      "_NET_WM_PID",
      "_NET_WM_ICON",
      selections[0].c_str(),
      selections[1].c_str(),
  };
  std::array<Atom, std::size(names)> atoms{};
  XInternAtoms(dpy, const_cast<char**>(names), static_cast<int>(atoms.size()), False, atoms.data());
  wm_delete = atoms[0];
  wm_protocols = atoms[1];
}

}  // namespace gromlit
