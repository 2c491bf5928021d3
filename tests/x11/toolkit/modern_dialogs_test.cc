// Dialogs with today's manners, without a window manager.
// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include <X11/Xatom.h>
#include <X11/keysym.h>

#include "display/modes.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/dialog.h"
#include "toolkit/dialog_hands.h"
#include "toolkit/image.h"
#include "toolkit/manners.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using testing::Place;

const char* const kQuestion[] = {"Delete the symbol", "that is selected now?", nullptr};

int confirmed = 0;
void Confirm(XDialog* dlog) {
  confirmed++;
  DialogYes(dlog);
}

class ModernDialogsTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    MakeImages();
    confirmed = 0;
    user = &options;
    options.temp4 = kModernManners;
    ClaimWindow(top);
    showWindow = top;
    MoveTo(300, 200);
  }
  void TearDown() override {
    user = nullptr;
    showWindow = None;
    DisclaimWindow(top);
    WidgetFixture::TearDown();
  }

  XDialog* Ask() {
    XDialog* dlog = MakeDialog("Confirm", kQuestion, Confirm, 0, 0);
    Show(dlog);
    return dlog;
  }
  void Show(XDialog* dlog) {
    MousePopUpDialog(dlog, dlog->title);
    EXPECT_TRUE(PumpUntil([&] { return dlog->shown != 0; })) << "it did not come";
  }
  void Type(KeySym key) {
    player->Type(key);
    Pump();
  }
  bool Mapped(const XDialog* dlog) {
    XWindowAttributes at;
    XGetWindowAttributes(dpy, dlog->window, &at);
    return at.map_state != IsUnmapped;
  }
  Window Focus() {
    Window focus;
    int revert;
    XGetInputFocus(dpy, &focus, &revert);
    return focus;
  }
  std::string Property(Window window, const char* name) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(dpy, window, XInternAtom(dpy, name, False), 0, 10000, False, AnyPropertyType,
                       &type, &format, &count, &after, &data);
    std::string bytes;
    const size_t unit = format == 32 ? sizeof(long) : 1;
    if (data != nullptr) bytes.assign(reinterpret_cast<char*>(data), count * unit);
    if (data != nullptr) XFree(data);
    return bytes;
  }
  XEvent KeyAt(const XDialog* dlog, KeySym key, Time time) {
    XEvent event{};
    event.xkey.type = KeyPress;
    event.xkey.display = dpy;
    event.xkey.window = dlog->window;
    event.xkey.keycode = XKeysymToKeycode(dpy, key);
    event.xkey.time = time;
    return event;
  }

  GromlitUserOptions options{};
};

TEST_F(ModernDialogsTest, ReturnConfirmsAndEscapeRefuses) {
  const Window before = Focus();
  XDialog* dlog = Ask();
  EXPECT_EQ(Focus(), dlog->window) << "without a window manager it takes the keyboard";
  Type(XK_Escape);
  EXPECT_FALSE(Mapped(dlog));
  EXPECT_EQ(confirmed, 0);
  EXPECT_EQ(Focus(), before);
  Show(dlog);
  Type(XK_a);
  EXPECT_TRUE(Mapped(dlog));
  Type(XK_Return);
  EXPECT_FALSE(Mapped(dlog));
  EXPECT_EQ(confirmed, 1);
  EXPECT_EQ(Focus(), before);
  XDialog* message = MakeMsgDialog("Message", kQuestion, 0, 0);
  Show(message);
  Type(XK_KP_Enter);
  EXPECT_FALSE(Mapped(message));
}

TEST_F(ModernDialogsTest, ItIsDrawnAsEver) {
  XDialog* dlog = Ask();
  const auto look = [&] { return Take(dlog->window, 0, 0, dlog->width, dlog->height); };
  const Picture modern = look();
  DialogNo(dlog);
  Pump();
  options.temp4 = kPlainManners;
  MousePopUpDialog(dlog, dlog->title);
  Pump();
  EXPECT_EQ(look(), modern);
  EXPECT_EQ(dlog->hands, 0);
  Type(XK_Return);
  EXPECT_TRUE(Mapped(dlog)) << "with plain manners keys mean nothing";
  XWindowAttributes at;
  XGetWindowAttributes(dpy, dlog->window, &at);
  EXPECT_EQ(at.your_event_mask, ExposureMask | ButtonReleaseMask);
  EXPECT_EQ(at.x, kTopX + 300 - dlog->width / 2) << "centred on the pointer";
}

TEST_F(ModernDialogsTest, TabLeadsToTheButtons) {
  XDialog* dlog = Ask();
  Type(XK_Tab);
  EXPECT_EQ(Focus(), dlog->yes->window);
  Type(XK_Tab);
  EXPECT_EQ(Focus(), dlog->no->window);
  Type(XK_Return);
  EXPECT_FALSE(Mapped(dlog));
  EXPECT_EQ(confirmed, 0) << "Return is the button that has the keyboard";
  Show(dlog);
  Type(XK_Tab);
  Type(XK_Escape);
  EXPECT_FALSE(Mapped(dlog));
  EXPECT_EQ(confirmed, 0);
  Show(dlog);
  Type(XK_Tab);
  Type(XK_space);
  EXPECT_EQ(confirmed, 1);
}

TEST_F(ModernDialogsTest, ACarefulQuestionTakesReturnOnlyAfterHalfASecond) {
  XDialog* dlog = MakeDialog("Confirm", kQuestion, Confirm, 0, 0);
  dlog->careful = 1;
  MousePopUpDialog(dlog, dlog->title);
  XEvent event = KeyAt(dlog, XK_Return, 100000);
  DialogKeyPress(dlog, &event);
  EXPECT_EQ(confirmed, 0) << "it is not on the screen";
  ASSERT_TRUE(PumpUntil([&] { return dlog->shown != 0; }));
  event = KeyAt(dlog, XK_Return, dlog->shown + kCareful - 1);
  DialogKeyPress(dlog, &event);
  for (KeySym key : {XK_Return, XK_space}) {
    event = KeyAt(dlog, key, dlog->shown + kCareful - 1);
    event.xkey.window = dlog->yes->window;
    dlog->yes->wobj->eh[KeyPress](dlog->yes, &event);
  }
  EXPECT_EQ(confirmed, 0);
  // Of a key that is held, the presses follow releases at the same moment.
  event = KeyAt(dlog, XK_Return, dlog->shown + kCareful + 200);
  event.type = KeyRelease;
  dlog->wobj->eh[KeyRelease](dlog, &event);
  event.type = KeyPress;
  DialogKeyPress(dlog, &event);
  EXPECT_EQ(confirmed, 0);
  // The same by hand.
  const auto patience = std::chrono::steady_clock::now() + std::chrono::milliseconds(kCareful + 50);
  PumpUntil([&] { return std::chrono::steady_clock::now() > patience; });
  Type(XK_Return);
  EXPECT_EQ(confirmed, 1);
  EXPECT_FALSE(Mapped(dlog));
  Show(dlog);
  event = KeyAt(dlog, XK_Escape, dlog->shown + 1);
  DialogKeyPress(dlog, &event);
  EXPECT_FALSE(Mapped(dlog)) << "refusing needs no patience";
}

TEST_F(ModernDialogsTest, AFieldInItHasTheKeyboardAndItsReturnIsOk) {
  XDialog* dlog = MakeDialogLabeled("Name", kQuestion, Confirm, 300, 50, labelOK, labelCancel);
  TextEditor* txt = MakeTextEditor(dlog->window, 50, 100, 200, kEditorHeight);
  XMapWindow(dpy, txt->window);
  Show(dlog);
  EXPECT_EQ(Focus(), txt->window);
  Type(XK_x);
  EXPECT_STREQ(TextEditorText(txt), "x");
  Type(XK_Return);
  EXPECT_EQ(confirmed, 1);
  EXPECT_FALSE(Mapped(dlog));
  Show(dlog);
  Type(XK_Tab);
  EXPECT_EQ(Focus(), dlog->yes->window);
  player->KeyDown(XK_Shift_L);
  Type(XK_Tab);
  player->KeyUp(XK_Shift_L);
  EXPECT_EQ(Focus(), txt->window);
  Type(XK_Escape);
  EXPECT_FALSE(Mapped(dlog));
}

TEST_F(ModernDialogsTest, ItLiesBesideWhatItAsksAbout) {
  const Place window = PlaceOf(top);
  const auto covers = [&](const XDialog* dlog) {
    const Place at = PlaceOf(dlog->window);
    return at.x < window.x + window.width && window.x < at.x + at.width &&
           at.y < window.y + window.height && window.y < at.y + at.height;
  };
  const XDialog* dlog = Ask();
  EXPECT_FALSE(covers(dlog));
  const Place at = PlaceOf(dlog->window);
  EXPECT_GE(at.x, 0);
  EXPECT_LE(at.x + at.width, screenwidth);
  // Where there is no room it is as ever.
  XMoveResizeWindow(dpy, top, 0, 0, static_cast<unsigned>(screenwidth),
                    static_cast<unsigned>(screenheight));
  Pump();
  player->MoveTo(600, 500);
  const XDialog* other = Ask();
  EXPECT_EQ(PlaceOf(other->window).x, 600 - other->width / 2);
}

TEST_F(ModernDialogsTest, ShowingCostsNoMoreThanStated) {
  XDialog* dlog = Ask();
  DialogNo(dlog);
  Pump();
  // Besides what a plain one costs: what desktops are told of it, where the main window lies, and
  // the keyboard.
  EXPECT_EQ(CostOf([&] { MousePopUpDialog(dlog, dlog->title); }), (Cost{41, 16}));
}

TEST_F(ModernDialogsTest, WhatComesUnaskedLeavesTheKeyboardAlone) {
  const Window before = Focus();
  XDialog* dlog = MakeDialog("Offer", kQuestion, Confirm, 0, 0);
  PopUpDialog(dlog, "Offer", 400, 300);
  Pump();
  EXPECT_EQ(Focus(), before);
  EXPECT_EQ(Property(dlog->window, "_NET_WM_USER_TIME").size(), sizeof(long));
}

TEST_F(ModernDialogsTest, DesktopsAreToldWhatItIs) {
  const XDialog* dlog = Ask();
  EXPECT_EQ(Property(dlog->window, "_NET_WM_NAME"),
            "Confirm: Delete the symbol that is selected now?");
  EXPECT_EQ(Property(dlog->window, "WM_NAME"), "Confirm");
  const std::string type = Property(dlog->window, "_NET_WM_WINDOW_TYPE");
  ASSERT_EQ(type.size(), sizeof(long));
  EXPECT_EQ(*reinterpret_cast<const Atom*>(type.data()),
            XInternAtom(dpy, "_NET_WM_WINDOW_TYPE_DIALOG", False));
  const std::string pid = Property(dlog->window, "_NET_WM_PID");
  ASSERT_EQ(pid.size(), sizeof(long));
  EXPECT_EQ(*reinterpret_cast<const long*>(pid.data()), getpid());
  EXPECT_FALSE(Property(dlog->window, "WM_CLIENT_MACHINE").empty());
  const std::string icon = Property(dlog->window, "_NET_WM_ICON");
  ASSERT_EQ(icon.size(), sizeof(long) * (2 + 48 * 48));
  const auto* pixels = reinterpret_cast<const long*>(icon.data()) + 2;
  EXPECT_EQ(pixels[0] >> 24 & 0xff, 0xff);
  EXPECT_EQ(static_cast<unsigned long>(pixels[24 * 48 + 24] & 0xffffff),
            XGetPixel(logoImage, 24 * logoImage->height / 48, 24 * logoImage->height / 48));
  Window owner = None;
  XGetTransientForHint(dpy, dlog->window, &owner);
  EXPECT_EQ(owner, top);
}

TEST_F(ModernDialogsTest, AWindowManagersCloseRefuses) {
  const XDialog* dlog = Ask();
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = dlog->window;
  event.xclient.message_type = wm_protocols;
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(wm_delete);
  XSendEvent(player->display(), dlog->window, False, NoEventMask, &event);
  XSync(player->display(), False);
  EXPECT_TRUE(PumpUntil([&] { return !Mapped(dlog); }));
  EXPECT_EQ(confirmed, 0);
}

}  // namespace
}  // namespace gromlit
