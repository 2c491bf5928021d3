// The main window follows the pointer from application to application.
#include "tests/x11/app/main_window_fixture.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <map>
#include <string>
#include <vector>

#include "app/main_window/main_menu.h"
#include "app/preferences/user_options_window.h"
#include "app/windows/dialogs.h"
#include "capture/app_track.h"
#include "capture/gromlit_draw.h"
#include "core/option_files.h"
#include "display/modes.h"
#include "display/x_errors.h"
#include "display/x_handles.h"
#include "toolkit/dialog.h"
#include "toolkit/pulldown_button.h"

namespace gromlit {
namespace {

GromlitDraw* overlay = nullptr;

// The main window lies at the top left of the screen; the other clients' windows are on the right.
class AppTrackTest : public testing::MainWindowFixture {
 protected:
  static constexpr int kOutsideX = 1270;  // on the bare root
  static constexpr int kOutsideY = 1010;

  void SetUp() override {
    MainWindowFixture::SetUp();
    if (HasFatalFailure()) return;
    GetUserOptions();
    player->MoveTo(kOutsideX, kOutsideY);
    Pump();
    overlay = MakeGromlitDraw();
    overlay->app = app;
    edit = Plugin("Editor", "Edit.edit", 2);
    XSetErrorHandler(GromlitXErrorHandler);  // windows vanish on purpose here
  }

  // A mapped window of another client, 200 x 150, at the right of the main window.
  Window Make(int left, int upper, const char* classpart, const char* name, Window parent = None) {
    Display* other = player->display();
    const Window window =
        XCreateSimpleWindow(other, parent != None ? parent : root, left, upper, 200, 150, 0, 0, 0);
    if (classpart != nullptr) testing::SetClass(other, window, classpart, name);
    XMapWindow(other, window);
    XSync(other, False);
    return window;
  }
  // Begins to follow; the server knows of it when this returns.
  void Follow() {
    CreateAppTrack();
    Pump();
  }
  void MovePointer(int x, int y) {
    player->MoveTo(x, y);
    Pump();
  }
  void MoveOut() { MovePointer(kOutsideX, kOutsideY); }

  // A crossing event as the server reports it, handled at once.
  void Enter(Window window, int mode) {
    XEvent event{};
    event.xcrossing.type = EnterNotify;
    event.xcrossing.display = dpy;
    event.xcrossing.window = window;
    event.xcrossing.mode = mode;
    GromlitAppTrackEnter(nullptr, &event);
  }

  // What this program asks to be told about every child of the root.
  std::map<Window, long> MasksOfTopWindows() {
    Window rootwin;
    Window parent;
    Window* list = nullptr;
    unsigned count = 0;
    std::map<Window, long> masks;
    if (XQueryTree(dpy, root, &rootwin, &parent, &list, &count) == 0) return masks;
    const XData<Window> windows(list);
    for (unsigned i = 0; i < count; i++) {
      XWindowAttributes attributes{};
      if (XGetWindowAttributes(dpy, list[i], &attributes) != 0) {
        masks[list[i]] = attributes.your_event_mask;
      }
    }
    return masks;
  }

  const GromlitPlugin* edit = nullptr;
};

TEST_F(AppTrackTest, EnteredApplicationsPluginIsShownAndDrawn) {
  Make(700, 100, "Edit", "edit");
  Follow();
  MovePointer(750, 150);
  EXPECT_EQ(app->plugin, edit);
  EXPECT_STREQ(app->txt->label, "Editor");
  EXPECT_EQ(app->nicons, 2) << "nothing was drawn";
}

TEST_F(AppTrackTest, ApplicationWithoutAPluginShowsTheDefault) {
  Make(700, 100, "Edit", "edit");
  Make(700, 300, "Other", "other");
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  MovePointer(750, 350);
  EXPECT_EQ(app->plugin, DefaultPlugin);
}

TEST_F(AppTrackTest, BareRootShowsTheDesktops) {
  const GromlitPlugin* desktop = Plugin("The desktop", "Desktop", 1);
  Make(700, 100, "Edit", "edit");
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  MoveOut();
  EXPECT_EQ(app->plugin, desktop);
}

TEST_F(AppTrackTest, FrameOfAWindowManagerIsLookedThrough) {
  const Window frame = Make(700, 100, nullptr, nullptr);
  Make(0, 20, "Edit", "edit", frame);
  Follow();
  MovePointer(750, 110);  // on the frame, above the application
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, WindowsMadeLaterAreFollowed) {
  Follow();
  Make(700, 100, "Edit", "edit");
  Pump();
  MovePointer(750, 150);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, CrossingsOfAGrabAreIgnored) {
  const Window window = Make(700, 100, "Edit", "edit");
  Follow();
  GromlitPlugin* before = app->plugin;
  ASSERT_NE(before, edit);
  Enter(window, NotifyGrab);
  EXPECT_EQ(app->plugin, before);
  Enter(window, NotifyUngrab);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, AnotherClientsGrabChangesNothing) {
  const Window window = Make(700, 100, "Edit", "edit");
  Follow();
  const GromlitPlugin* before = app->plugin;
  // The server reports the grab as the pointer's way into the window that takes it.
  ASSERT_EQ(XGrabPointer(player->display(), window, False, ButtonPressMask, GrabModeAsync,
                         GrabModeAsync, None, None, CurrentTime),
            GrabSuccess);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(app->plugin, before);
  XUngrabPointer(player->display(), CurrentTime);
  XSync(player->display(), False);
  Pump();
}

TEST_F(AppTrackTest, NothingIsFollowedWhileAnActionIsEdited) {
  Make(700, 100, "Edit", "edit");
  Follow();
  const GromlitPlugin* before = app->plugin;
  editingPlugin = 1;
  MovePointer(750, 150);
  EXPECT_EQ(app->plugin, before);
  MoveOut();
  editingPlugin = 0;
  MovePointer(750, 150);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, OwnMainWindowKeepsWhatIsShown) {
  Make(700, 100, "Edit", "edit");
  Follow();
  // A plug-in of the main window's own class must not be shown either.
  Plugin("Own", "Gromlit.Application", 1);
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  Enter(app->window, NotifyNormal);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, FrameOfTheOwnMainWindowKeepsWhatIsShown) {
  // The pointer's way to the main window leads over the frame that a window manager put around it.
  Make(700, 100, "Edit", "edit");
  const Window frame = Make(0, 0, nullptr, nullptr);
  XReparentWindow(player->display(), app->window, frame, 0, 20);
  XSync(player->display(), False);
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  Enter(frame, NotifyNormal);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, FrameOfAnotherOwnWindowKeepsWhatIsShown) {
  // What the menus act on must not change on the way to one of the program's editors.
  Make(700, 100, "Edit", "edit");
  const Window frame = Make(0, 400, nullptr, nullptr);
  static const char* const kLines[] = {"A line.", nullptr};
  XDialog* dlog = MakeMsgDialog("Title", kLines, 100, 50);
  XSync(dpy, False);  // the other client knows the window from here on
  XReparentWindow(player->display(), dlog->window, frame, 0, 20);
  XSync(player->display(), False);
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  Enter(frame, NotifyNormal);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, PluginChosenFromAMenuOverAnApplicationIsShownUntilThePointerGoesOn) {
  // Below the main window's lower edge, where the last rows of a long menu are.
  Make(0, app->height + 10, "Edit", "edit");
  const GromlitPlugin* chosen = nullptr;
  for (int i = 0; i < 18; i++) {
    const GromlitPlugin* plugin = Plugin("P", "Class" + std::to_string(i), 1);
    if (i == 0) chosen = plugin;
  }
  UpdatePluginsMenu();
  Follow();
  const XMenu* menu = app->txt->menu;
  int row = 0;
  while (menu->items[row]->arg != chosen) row++;
  MovePointer(200, app->icony - 14);
  player->Press(1);
  Pump();
  const int below = menu->y + 4 + row * menu->itemheight + 4;
  ASSERT_GT(below, app->height + 10);
  MovePointer(menu->x + 20, below);
  player->Release(1);
  Pump();
  EXPECT_FALSE(Viewable(menu->window));
  EXPECT_EQ(app->plugin, chosen);
  MovePointer(menu->x + 21, below);
  EXPECT_EQ(app->plugin, chosen) << "nothing new was entered";
  MoveOut();
  EXPECT_EQ(app->plugin, DefaultPlugin);
  MovePointer(menu->x + 21, below);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, PluginRenamedInADialogOverAnApplicationIsShownUntilThePointerGoesOn) {
  Make(700, 100, "Edit", "edit");
  GromlitPlugin* other = Plugin("Other", "Other.other", 1);
  MakeEditNameDialog(SaveNewPluginName);
  Follow();
  UpdateGromlitApp(app, "Other.other", nullptr);
  mbPluginEdit(nullptr, app);
  XMoveWindow(dpy, editname->window, 650, 60);
  Pump();
  const int okx = 650 + editname->width - 144 + 10;
  const int oky = 60 + editname->height - 32 + 10;
  MovePointer(okx, oky);
  UpdateGromlitApp(app, "Other.other", nullptr);
  player->Click(1);
  Pump();
  EXPECT_FALSE(Viewable(editname->window));
  EXPECT_EQ(app->plugin, other);
  MoveOut();
  MovePointer(okx, oky);
  EXPECT_EQ(app->plugin, edit) << "the dialog was not over the application";
}

TEST_F(AppTrackTest, WindowThatIsGoneChangesNothing) {
  const Window window = Make(700, 100, "Edit", "edit");
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  XDestroyWindow(player->display(), window);
  XSync(player->display(), False);
  Enter(window, NotifyNormal);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, WindowWithoutAnyNameChangesNothing) {
  Make(700, 100, "Edit", "edit");
  const Window nameless = Make(700, 300, nullptr, nullptr);
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  Enter(nameless, NotifyNormal);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, TitleInAnotherEncodingShowsTheDefault) {
  Make(700, 100, "Edit", "edit");
  const Window titled = Make(700, 300, nullptr, nullptr);
  Display* other = player->display();
  const std::string title = "Edit.edit";
  XChangeProperty(other, titled, XA_WM_NAME, XInternAtom(other, "UTF8_STRING", False), 8,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(title.data()),
                  static_cast<int>(title.size()));
  XSync(other, False);
  Follow();
  MovePointer(750, 150);
  ASSERT_EQ(app->plugin, edit);
  Enter(titled, NotifyNormal);
  EXPECT_EQ(app->plugin, DefaultPlugin);
}

TEST_F(AppTrackTest, SamePluginIsNotDrawnAgain) {
  const Window window = Make(700, 100, "Edit", "edit");
  Follow();
  Enter(window, NotifyNormal);
  ASSERT_EQ(app->plugin, edit);
  // The search for the application alone.
  unsigned long before = NextRequest(dpy);
  FindApplication(window, 0, 0);
  const unsigned long search = NextRequest(dpy) - before;
  before = NextRequest(dpy);
  Enter(window, NotifyNormal);
  EXPECT_EQ(NextRequest(dpy) - before, search);
}

TEST_F(AppTrackTest, OwnWindowsAreLeftAloneAndAllOthersFollowed) {
  MakeConfirmDialog();
  CreateUserOptions();
  const std::vector<Window> others = {Make(700, 100, "Edit", "edit"),
                                      Make(700, 300, "Edit", "edit"),
                                      Make(700, 500, "Edit", "edit")};
  const std::map<Window, long> before = MasksOfTopWindows();
  Follow();
  const std::map<Window, long> after = MasksOfTopWindows();
  ASSERT_EQ(before.size(), after.size());
  size_t own = 0;
  for (const auto& [window, mask] : after) {
    if (std::find(others.begin(), others.end(), window) != others.end()) {
      EXPECT_EQ(mask, EnterWindowMask);
    } else {
      EXPECT_EQ(mask, before.at(window)) << "of one of the program's own windows";
      own++;
    }
  }
  EXPECT_GT(own, 5u) << "main window, trail windows, menus and dialogs";
}

TEST_F(AppTrackTest, OwnWindowsMadeLaterAreLeftAlone) {
  Follow();
  Pump();
  const std::map<Window, long> before = MasksOfTopWindows();
  XDialog* dlog = MakeMsgDialog("Late", nullptr, 100, 50);
  XWindowAttributes made{};
  XGetWindowAttributes(dpy, dlog->window, &made);
  const Window claimed = XCreateSimpleWindow(dpy, root, 0, 0, 10, 10, 0, 0, 0);
  ClaimWindow(claimed);
  Pump();
  std::map<Window, long> after = MasksOfTopWindows();
  EXPECT_EQ(after.at(dlog->window), made.your_event_mask);
  EXPECT_EQ(after.at(claimed), NoEventMask);
  DisclaimWindow(claimed);
}

TEST_F(AppTrackTest, WindowThatIsGoneBeforeItsCreationIsHandledDoesNoHarm) {
  Follow();
  const Window window = Make(700, 100, "Edit", "edit");
  XDestroyWindow(player->display(), window);
  XSync(player->display(), False);
  Pump();
  Make(700, 100, "Edit", "edit");
  Pump();
  MovePointer(750, 150);
  EXPECT_EQ(app->plugin, edit);
}

TEST_F(AppTrackTest, TheScreensSizeIsReported) {
  Follow();
  XWindowAttributes attributes{};
  XGetWindowAttributes(dpy, root, &attributes);
  EXPECT_NE(attributes.your_event_mask & StructureNotifyMask, 0);
  XEvent event{};
  event.xconfigure.type = ConfigureNotify;
  event.xconfigure.event = root;
  event.xconfigure.window = root;
  event.xconfigure.width = 800;
  event.xconfigure.height = 600;
  DispatchEvent(&event);
  EXPECT_EQ(screenwidth, 800);
  EXPECT_EQ(screenheight, 600);
}

}  // namespace
}  // namespace gromlit
