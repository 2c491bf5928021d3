#include "app/gromlit_app.h"

#include "app/wm_properties.h"
#include "core/plugin_files.h"
#include "display/display.h"
#include "toolkit/image.h"

namespace gromlit {

GromlitApp* app = nullptr;

namespace {

constexpr int kBorder = 4;
constexpr int kIconWidth = 64;
constexpr int kIconHeight = 32;

void ExposeGromlitApp(GromlitApp* gromlit, XEvent*) {
  DrawGromlitApp(gromlit);
}

// Makes another plug-in the shown one.
void ShowPlugin(GromlitApp* gromlit, GromlitPlugin* plugin, int* updated) {
  if (gromlit->plugin == plugin) return;
  gromlit->plugin = plugin;
  gromlit->selected = -1;
  if (updated != nullptr) *updated = 1;
}

}  // namespace

GromlitApp* MakeGromlitApp(int ncols, int nrows, int argc, char** argv) {
  auto* gromlit = new GromlitApp{};
  gromlit->border = kBorder;
  gromlit->iconwidth = kIconWidth;
  gromlit->iconheight = kIconHeight;
  gromlit->ncols = ncols;
  gromlit->nrows = nrows;
  gromlit->selected = -1;
  gromlit->width = ncols * (kIconWidth + 8) + 36;
  gromlit->height = nrows * (2 * txtCharht + 40) + 36 + logoImage->height + 4;

  XSetWindowAttributes attributes;
  attributes.background_pixel = lgrey.pixel;
  attributes.backing_store = WhenMapped;
  attributes.event_mask = ExposureMask | EnterWindowMask | LeaveWindowMask | ButtonPressMask;
  gromlit->window = XCreateWindow(dpy, root, 0, 0, static_cast<unsigned>(gromlit->width),
                                  static_cast<unsigned>(gromlit->height), 1,
                                  DefaultDepth(dpy, screen), InputOutput, CopyFromParent,
                                  CWBackPixel | CWBackingStore | CWEventMask, &attributes);
  SetWindowManagerProperties(gromlit->window, {.title = "Gromlit",
                                               .icontitle = nullptr,
                                               .name = "Application",
                                               .width = gromlit->width,
                                               .height = gromlit->height,
                                               .argc = argc,
                                               .argv = argv});

  XGCValues values;
  values.foreground = black.pixel;
  values.background = white.pixel;
  values.font = txtFont;
  gromlit->gc = XCreateGC(dpy, gromlit->window,
                          GCForeground | GCBackground | (txtFont != None ? GCFont : 0UL), &values);
  gromlit->wobj = AllocWindowObj(gromlit->window, gromlit);
  On<Expose, ExposeGromlitApp>(gromlit);
  SetHandler(gromlit->wobj, ClientMessage, WMClientMessage);
  showWindow = gromlit->window;
  return gromlit;
}

void DrawGromlitApp(GromlitApp* gromlit) {
  XClearWindow(dpy, gromlit->window);
  gromlit->nicons = gromlit->plugin != nullptr ? gromlit->plugin->nactions : 0;
}

GromlitPluginList* UpdateGromlitApp(GromlitApp* gromlit, const char* classname, int* updated) {
  GromlitPluginList* node = FindPluginNode(classname);
  ShowPlugin(gromlit, node != nullptr ? node->plugin : DefaultPlugin, updated);
  return node;
}

}  // namespace gromlit
