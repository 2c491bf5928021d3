#include "tests/support/x_fixture.h"

#include <X11/Xutil.h>

#include "toolkit/pointer_hold.h"
#include "toolkit/resources.h"

namespace gromlit::testing {

namespace {

// The numbers of this connection's windows are given anew by the next one, to other windows: an
// entry that still had one would get their events.
void ForgetWindows() {
  constexpr XID kOwnBits = 0x1fffff;      // of a number: those that the client chooses
  constexpr Window kNobody = ~Window{0};  // no server gives this number
  lastpressed = None;
  ForgetHeldPointers();
  const XID next = XAllocID(dpy);
  const auto forget = [](Window window) {
    while (WindowObj* entry = HasWindowObj(window)) entry->window = kNobody;
  };
  forget(root);
  for (Window window = next & ~kOwnBits; window < next; window++) forget(window);
}

}  // namespace

int XFixture::errors = 0;

void XFixture::SetUp() {
  if (!server) server = std::make_unique<XServer>();
  install = std::make_unique<TempInstall>();
  errors = 0;
  XSetErrorHandler([](Display* display, XErrorEvent* error) {
    char text[128];
    XGetErrorText(display, error->error_code, text, sizeof text);
    std::fprintf(stderr, "X error: %s, request %d.%d, resource 0x%lx\n", text, error->request_code,
                 error->minor_code, error->resourceid);
    errors++;
    return 0;
  });
  ASSERT_TRUE(OpenDisplay(server->name().c_str()));
  MakeResources();
  MakeCursors();
  player = std::make_unique<Player>(server->name());
  player->MoveTo(1, 1);
}

void XFixture::TearDown() {
  if (dpy != nullptr) {
    XSync(dpy, False);
    EXPECT_EQ(errors, 0) << "X errors that nobody expected";
  }
  player.reset();
  if (dpy != nullptr) {
    // The client's half of these outlives the connection: a leak when tests follow one another.
    for (GC gc : {buttongc, logogc, txtgc}) XFreeGC(dpy, gc);
    for (XFontStruct* font : {txtFontinfo, labelFontinfo, logoFontinfo})
      if (font != nullptr) XFreeFont(dpy, font);
    ForgetWindows();
    // Closed before the server goes: a broken connection would end the test program.
    XCloseDisplay(dpy);
    dpy = nullptr;
  }
  install.reset();
  server.reset();
}

void XFixture::Pump() {
  do {
    while (XPending(dpy) > 0) {
      XEvent event;
      XNextEvent(dpy, &event);
      DispatchEvent(&event);
    }
    XSync(dpy, False);
  } while (XPending(dpy) > 0);
}

bool XFixture::PumpUntil(const std::function<bool()>& done, std::chrono::milliseconds deadline) {
  return WaitFor(
      [&] {
        Pump();
        return done();
      },
      deadline);
}

unsigned long XFixture::PixelOf(Window window, int x, int y) {
  XSync(dpy, False);
  int rootx;
  int rooty;
  Window child;
  XTranslateCoordinates(dpy, window, root, x, y, &rootx, &rooty, &child);
  return player->Pixel(rootx, rooty);
}

}  // namespace gromlit::testing
