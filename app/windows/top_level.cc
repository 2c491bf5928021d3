#include "app/windows/top_level.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <cstring>
#include <string>

#include "display/colours.h"
#include "display/display.h"
#include "display/scale.h"
#include "display/x_handles.h"
#include "toolkit/child_window.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"
#include "toolkit/window_hints.h"

namespace gromlit {
namespace {

struct {
  int argc = 0;
  char** argv = nullptr;
} commandline;

// A property of STRING text that borrows its bytes.
XTextProperty StringProperty(const char* text) {
  XTextProperty property;
  // Xlib takes the text as unsigned char* but does not write to it.
  property.value = reinterpret_cast<unsigned char*>(const_cast<char*>(text));
  property.encoding = XA_STRING;
  property.format = 8;
  property.nitems = std::strlen(text);
  return property;
}

// Today's manners: tells desktops what they want to know, and asks for the keys.
void Introduce(Window window) {
  if (!ModernManners()) return;
  char* name = nullptr;
  XFetchName(dpy, window, &name);
  const XData<char> title(name);
  DescribeWindow(window, name != nullptr ? name : "", WindowKind::kNormal);
  SelectKeys(window);
}

}  // namespace

void KeepCommandLine(int argc, char** argv) {
  commandline = {argc, argv};
}

void SetWindowManagerProperties(Window window, const WindowIdentity& identity) {
  XTextProperty title = StringProperty(identity.title);
  XTextProperty icontitle{};
  if (identity.icontitle != nullptr) icontitle = StringProperty(identity.icontitle);

  const XData<XSizeHints> size(XAllocSizeHints());
  if (size != nullptr) {
    size->flags = PMinSize | PMaxSize | PBaseSize;
    size->min_width = size->max_width = size->base_width = Device(identity.width);
    size->min_height = size->max_height = size->base_height = Device(identity.height);
  }
  char classpart[] = "Gromlit";
  XClassHint hint;
  hint.res_name = const_cast<char*>(identity.name);
  hint.res_class = classpart;
  XSetWMProperties(dpy, window, &title, identity.icontitle != nullptr ? &icontitle : nullptr,
                   commandline.argv, commandline.argc, size.get(), nullptr, &hint);
  XSetWMProtocols(dpy, window, &wm_delete, 1);
}

Window CreateTopLevel(int width, int height, long events) {
  XSetWindowAttributes attributes;
  attributes.background_pixel = lgrey.pixel;
  attributes.backing_store = BackingStoreOfScreen(dpy, screen);
  attributes.event_mask = events;
  return ScaledCreateWindow(root, 0, 0, width, height, 1, InputOutput,
                            CWBackPixel | CWBackingStore | CWEventMask, &attributes);
}

Window MakeEditorWindow(const WindowIdentity& identity) {
  const Window window = CreateTopLevel(identity.width, identity.height, ExposureMask);
  SetWindowManagerProperties(window, identity);
  return window;
}

WindowObj* AllocTopLevelObj(Window window, void* owner) {
  WindowObj* wobj = AllocWindowObj(window, owner);
  SetHandler(wobj, ClientMessage, WMClientMessage);
  SetHandler(wobj, KeyPress, TopLevelKeyPress);
  return wobj;
}

void ShowTopLevel(Window window) {
  Introduce(window);
  XMapRaised(dpy, window);
}

void MapTopLevel(Window window) {
  Introduce(window);
  XMapWindow(dpy, window);
}

void ShowTopLevelAnew(Window window) {
  Introduce(window);
  XMapRaised(dpy, window);
  ExposeAll(window);
}

void HideTopLevel(Window window) {
  HideWindow(window);
}

}  // namespace gromlit
