// First: the test library's headers cannot bear Xlib's macros.
#include "tests/support/x_fixture.h"

#include "toolkit/window_object.h"

#include <X11/XKBlib.h>

#include <set>
#include <vector>

#include "display/display.h"
#include "tests/support/captured.h"
#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/child_window.h"

namespace gromlit {
namespace {

// Window ids that no server hands out here.
constexpr Window kFake = 0x1fff0000;

struct Probe {
  WindowObj* wobj;
  int calls;
  int lasttype;
};

void NoteEvent(Probe* probe, XEvent* event) {
  probe->calls++;
  probe->lasttype = event->type;
}

void NoteOther(Probe* probe, XEvent*) {
  probe->calls += 100;
}

XEvent EventFor(Window window, int type) {
  XEvent event{};
  event.type = type;
  event.xany.send_event =
      True;  // such a MappingNotify does not touch the display, which is not open
  event.xany.window = window;
  return event;
}

void Dispatch(Window window, int type) {
  XEvent event = EventFor(window, type);
  DispatchEvent(&event);
}

class WindowObjectTest : public ::testing::Test {
 protected:
  void TearDown() override { defaultWindowObj = nullptr; }
  // A window id that no test has used, also when the tests are repeated in one process.
  static Window Fresh() {
    static Window next = kFake;
    return next++;
  }
};

TEST_F(WindowObjectTest, EntriesAreHandedOutInOrderWithEveryHandlerSet) {
  Probe probe{};
  const int before = nWindowObjects;
  const Window window = Fresh();
  WindowObj* entry = AllocWindowObj(window, &probe);
  EXPECT_EQ(nWindowObjects, before + 1);
  EXPECT_EQ(entry->window, window);
  EXPECT_EQ(entry->obj, &probe);
  for (const EventHandler handler : entry->eh) EXPECT_EQ(handler, NoHandler);
  if (before < kWindowObjects) {
    EXPECT_EQ(entry, &WindowObjects[before]);
  }
}

TEST_F(WindowObjectTest, ASecondEntryForAWindowIsANewOneAndWins) {
  Probe first{};
  Probe second{};
  const Window window = Fresh();
  first.wobj = AllocWindowObj(window, &first);
  On<Expose, NoteEvent>(&first);
  EXPECT_EQ(FindWindowObj(window), first.wobj);
  second.wobj = AllocWindowObj(window, &second);
  On<Expose, NoteEvent>(&second);
  EXPECT_NE(first.wobj, second.wobj);
  EXPECT_EQ(FindWindowObj(window), second.wobj);
  EXPECT_EQ(HasWindowObj(window), first.wobj);
  Dispatch(window, Expose);
  EXPECT_EQ(first.calls, 0);
  EXPECT_EQ(second.calls, 1);
}

TEST_F(WindowObjectTest, EveryTypeReachesItsOwnHandlerWithTheOwner) {
  static std::vector<std::pair<void*, int>> seen;
  seen.clear();
  Probe probe{};
  const Window window = Fresh();
  WindowObj* entry = AllocWindowObj(window, &probe);
  for (int type = kFirstEvent; type <= kLastEvent; type++) {
    SetHandler(entry, type, [](void* obj, XEvent* event) { seen.emplace_back(obj, event->type); });
    Dispatch(window, type);
    ASSERT_EQ(seen.size(), static_cast<size_t>(type - kFirstEvent + 1));
    EXPECT_EQ(seen.back(), (std::pair<void*, int>(&probe, type)));
    SetHandler(entry, type, [](void*, XEvent*) { ADD_FAILURE() << "another type's handler"; });
  }
}

// A notch of the wheel is a press and a release of a button above the third.
TEST_F(WindowObjectTest, OnlyTheFirstThreeButtonsReachAWindow) {
  Probe probe{};
  const Window window = Fresh();
  probe.wobj = AllocWindowObj(window, &probe);
  On<ButtonPress, NoteEvent>(&probe);
  On<ButtonRelease, NoteEvent>(&probe);
  int expected = 0;
  for (const int type : {ButtonPress, ButtonRelease}) {
    for (unsigned button = 1; button <= 20; button++) {
      XEvent event = EventFor(window, type);
      event.xbutton.button = button;
      DispatchEvent(&event);
      if (button <= 3) expected++;
      EXPECT_EQ(probe.calls, expected) << button;
    }
  }
}

// One of them may be the button that draws.
TEST_F(WindowObjectTest, EveryButtonReachesTheRootWindow) {
  Probe probe{};
  const Window former = root;
  root = Fresh();
  probe.wobj = AllocWindowObj(root, &probe);
  On<ButtonPress, NoteEvent>(&probe);
  for (unsigned button = 1; button <= 5; button++) {
    XEvent event = EventFor(root, ButtonPress);
    event.xbutton.button = button;
    DispatchEvent(&event);
    EXPECT_EQ(probe.calls, static_cast<int>(button));
  }
  root = former;
}

TEST_F(WindowObjectTest, AHandlerCanBeReplaced) {
  Probe probe{};
  const Window window = Fresh();
  probe.wobj = AllocWindowObj(window, &probe);
  On<ButtonPress, NoteEvent>(&probe);
  Dispatch(window, ButtonPress);
  EXPECT_EQ(probe.calls, 1);
  On<ButtonPress, NoteOther>(&probe);
  Dispatch(window, ButtonPress);
  EXPECT_EQ(probe.calls, 101);
}

TEST_F(WindowObjectTest, SettingAHandlerOutsideTheTableIsIgnored) {
  Probe probe{};
  WindowObj* entry = AllocWindowObj(Fresh(), &probe);
  WindowObj* next = AllocWindowObj(Fresh(), &probe);
  const auto handler = [](void*, XEvent*) {};
  for (const int type : {-1000000, -1, 0, 1, 35, 36, 1000000}) SetHandler(entry, type, handler);
  for (const WindowObj* untouched : {entry, next}) {
    for (const EventHandler each : untouched->eh) EXPECT_EQ(each, NoHandler);
  }
}

TEST_F(WindowObjectTest, AnUnsetSlotDoesNothing) {
  Probe probe{};
  const Window window = Fresh();
  probe.wobj = AllocWindowObj(window, &probe);
  On<Expose, NoteEvent>(&probe);
  testing::CaptureStdout();
  Dispatch(window, MotionNotify);
  EXPECT_EQ(testing::GetCapturedStdout(), "");
  EXPECT_EQ(probe.calls, 0);
}

TEST_F(WindowObjectTest, AnUnknownWindowGoesToTheDefault) {
  Probe probe{};
  const Window window = Fresh();
  probe.wobj = AllocWindowObj(window, &probe);
  On<MotionNotify, NoteEvent>(&probe);
  const Window stranger = Fresh();
  EXPECT_EQ(FindWindowObj(stranger), nullptr);
  Dispatch(stranger, MotionNotify);  // there is no default yet
  EXPECT_EQ(probe.calls, 0);
  defaultWindowObj = probe.wobj;
  EXPECT_EQ(FindWindowObj(stranger), probe.wobj);
  Dispatch(stranger, MotionNotify);
  EXPECT_EQ(probe.calls, 1);
}

TEST_F(WindowObjectTest, AnEventOfUnknownTypeGoesToTheHandlerOfTheOneBefore) {
  Probe probe{};
  Probe other{};
  const Window window = Fresh();
  const Window elsewhere = Fresh();
  probe.wobj = AllocWindowObj(window, &probe);
  other.wobj = AllocWindowObj(elsewhere, &other);
  On<KeyPress, NoteEvent>(&probe);
  On<KeyPress, NoteOther>(&other);
  Dispatch(window, KeyPress);
  ASSERT_EQ(probe.calls, 1);
  testing::CaptureStdout();
  Dispatch(elsewhere, 35);  // the handler keeps its own owner, whatever the window is
  Dispatch(elsewhere, 99);
  Dispatch(elsewhere, 0);
  EXPECT_EQ(testing::GetCapturedStdout(),
            "Unknown event type 35\nUnknown event type 99\nUnknown event type 0\n");
  EXPECT_EQ(probe.calls, 4);
  EXPECT_EQ(probe.lasttype, 0);
  EXPECT_EQ(other.calls, 0);
}

TEST_F(WindowObjectTest, NeverMoreThanOneTableButEntriesWithoutEnd) {
  static Probe probes[3 * kWindowObjects];
  std::set<WindowObj*> entries;
  std::vector<std::pair<WindowObj*, Window>> made;
  for (Probe& probe : probes) {
    probe = Probe{};
    const Window window = Fresh();
    probe.wobj = AllocWindowObj(window, &probe);
    On<Expose, NoteEvent>(&probe);
    entries.insert(probe.wobj);
    made.emplace_back(probe.wobj, window);
  }
  EXPECT_EQ(entries.size(), std::size(probes));
  for (size_t i = 0; i < made.size(); i++) {
    const auto& [entry, window] = made[i];
    EXPECT_EQ(FindWindowObj(window), entry);
    EXPECT_EQ(HasWindowObj(window), entry);
    EXPECT_EQ(entry->obj, &probes[i]);  // still where it was
    Dispatch(window, Expose);
    EXPECT_EQ(probes[i].calls, 1);
  }
}

TEST_F(WindowObjectTest, WindowZeroIsTheFirstFreeEntry) {
  Probe probe{};
  WindowObj* free = HasWindowObj(0);
  if (free == nullptr) {  // exactly full
    AllocWindowObj(Fresh(), &probe);
    free = HasWindowObj(0);
  }
  ASSERT_NE(free, nullptr);
  EXPECT_EQ(AllocWindowObj(Fresh(), &probe), free);
}

TEST_F(WindowObjectTest, AWindowOfSomebodyElseHasNoEntry) {
  EXPECT_EQ(HasWindowObj(Fresh()), nullptr);
}

TEST_F(WindowObjectTest, NamesOfEventTypes) {
  EXPECT_STREQ(EventName(KeyPress), "KeyPress");
  EXPECT_STREQ(EventName(Expose), "Expose");
  EXPECT_STREQ(EventName(ClientMessage), "ClientMessage");
  EXPECT_STREQ(EventName(MappingNotify), "MappingNotify");
  for (const int type : {-1, 0, 1, 35, 1000}) EXPECT_STREQ(EventName(type), "Unknown");
  for (int type = kFirstEvent; type <= kLastEvent; type++) EXPECT_STRNE(EventName(type), "Unknown");
}

class CloseTest : public testing::XFixture {
 protected:
  void SetUp() override {
    XFixture::SetUp();
    window = MakeChildWindow(root, 100, 100, 50, 50, lgrey.pixel, StructureNotifyMask);
    XSetWMProtocols(dpy, window, &wm_delete, 1);
    WindowObj* entry = AllocWindowObj(window, this);
    SetHandler(entry, ClientMessage, WMClientMessage);
    XMapWindow(dpy, window);
    Pump();
    ASSERT_EQ(MapState(), IsViewable);
  }

  int MapState() {
    XWindowAttributes is;
    return XGetWindowAttributes(dpy, window, &is) ? is.map_state : -1;
  }

  // What a window manager sends, from its own connection.
  void Send(Atom type, Atom data) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = type;
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(data);
    XSendEvent(player->display(), window, False, NoEventMask, &event);
    XSync(player->display(), False);
    Pump();
  }

  Window window = 0;
};

TEST_F(CloseTest, AWindowManagersCloseUnmapsTheWindow) {
  Send(wm_protocols, wm_delete);
  EXPECT_EQ(MapState(), IsUnmapped);
}

TEST_F(CloseTest, ASecondCloseHasNoEffectAndItCanBeShownAgain) {
  Send(wm_protocols, wm_delete);
  Send(wm_protocols, wm_delete);
  EXPECT_EQ(MapState(), IsUnmapped);
  XMapWindow(dpy, window);
  Pump();
  EXPECT_EQ(MapState(), IsViewable);
}

TEST_F(CloseTest, OtherMessagesAreIgnored) {
  Send(wm_protocols, wm_protocols);
  Send(wm_delete, wm_delete);
  EXPECT_EQ(MapState(), IsViewable);
}

using MappingTest = testing::XFixture;

XEvent MappingEvent(Bool sent) {
  XEvent event{};
  event.xmapping.type = MappingNotify;
  event.xmapping.display = dpy;
  event.xmapping.send_event = sent;
  event.xmapping.request = MappingKeyboard;
  event.xmapping.first_keycode = 38;
  event.xmapping.count = 1;
  return event;
}

TEST_F(MappingTest, AChangedMappingCostsOneRoundTrip) {
  XkbKeycodeToKeysym(dpy, 38, 0, 0);  // Xlib has the mapping
  XEvent event = MappingEvent(False);
  EXPECT_EQ(testing::CostOf([&] { DispatchEvent(&event); }), (testing::Cost{1, 1}));
}

TEST_F(MappingTest, AForgedOneIsNotPassedOn) {
  XkbKeycodeToKeysym(dpy, 38, 0, 0);
  XEvent event = MappingEvent(True);
  event.xmapping.first_keycode = -70000;
  event.xmapping.count = 1 << 30;
  EXPECT_EQ(testing::CostOf([&] { DispatchEvent(&event); }), (testing::Cost{0, 0}));
}

}  // namespace
}  // namespace gromlit
