#include "app/main_window/shown_plugin.h"

#include <array>
#include <cstdlib>
#include <string>

#include "core/plugin_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "toolkit/button.h"
#include "toolkit/pulldown_button.h"
#include "toolkit/scrollbar.h"

namespace gromlit {
namespace {

constexpr const char* kHandsOffMark = "Hands off: ";

using ButtonLabel = std::array<char, sizeof(XButton::label)>;

// What the pulldown button says of a plug-in. Without the mark nobody would know why there are no
// gestures, and it comes first: the name may be longer than the button.
ButtonLabel PluginCaption(const GromlitPlugin* plugin) {
  ButtonLabel caption{};
  if (plugin == nullptr) return caption;
  const std::string name(FieldText(plugin->appname));
  CopyText(caption, HandsOff(plugin) ? kHandsOffMark + name : name);
  return caption;
}

// Makes a plug-in, or none, the shown one.
void ShowPlugin(GromlitApp* gromlit, GromlitPlugin* plugin, int* updated) {
  // Caption and range are compared even if the plug-in stays: it may have got another name, and
  // start-up makes the default plug-in the shown one by itself.
  const ButtonLabel caption = PluginCaption(plugin);
  if (StrCmp(gromlit->txt->label, caption.data()) != 0)
    UpdatePulldownButton(gromlit->txt, caption.data());
  if (gromlit->plugin != plugin) {
    gromlit->plugin = plugin;
    gromlit->selected = -1;
    if (updated != nullptr) *updated = 1;
  }
  const int range = GridLength(gromlit);
  if (gromlit->sbar->range != range) UpdateScrollbarRange(gromlit->sbar, range);
}

}  // namespace

GromlitPluginList* UpdateGromlitApp(GromlitApp* gromlit, const char* classname, int* updated) {
  GromlitPluginList* node = FindPluginNode(classname);
  ShowPlugin(gromlit, node != nullptr ? node->plugin : DefaultPlugin, updated);
  return node;
}

void KeepShownPlugin() {
  if (app == nullptr) return;
  int winx;
  int winy;
  unsigned state;
  Window rootwin;
  app->leftframe = None;
  app->resting = XQueryPointer(dpy, root, &rootwin, &app->leftframe, &app->restx, &app->resty,
                               &winx, &winy, &state);
  app->lifted = NextRequest(dpy);
}

bool IsUncovering(const XCrossingEvent& crossing) {
  constexpr int kHand = 4;  // pixels that a hand at rest may move
  if (app->lifted != 0 && crossing.serial == app->lifted) return true;
  // From the window manager's title or edge into the middle of its frame.
  if (app->leftframe != None && crossing.window == app->leftframe &&
      crossing.detail == NotifyInferior) {
    return true;
  }
  app->leftframe = None;
  if (app->resting == 0) return false;
  if (std::abs(crossing.x_root - app->restx) <= kHand &&
      std::abs(crossing.y_root - app->resty) <= kHand) {
    return true;
  }
  app->resting = 0;
  return false;
}

void NoteFrameGone(const XUnmapEvent& gone) {
  if (gone.send_event != False || app->leftframe == None || gone.window != app->leftframe) return;
  app->leftframe = None;
  // The hand may have moved within the frame. The server reports the crossing right behind the
  // unmapping, before it takes in anything else: with an answer it has arrived, too.
  XSync(dpy, False);
  struct Next {
    bool found;
    XCrossingEvent crossing;
  } next{};
  const auto look = [](Display*, XEvent* event, XPointer arg) -> Bool {
    auto* first = reinterpret_cast<Next*>(arg);
    if (event->type == EnterNotify && event->xcrossing.send_event == False && !first->found) {
      first->found = true;
      first->crossing = event->xcrossing;
    }
    return False;  // every event stays where it is
  };
  XEvent event;
  XCheckIfEvent(dpy, &event, look, reinterpret_cast<XPointer>(&next));
  if (!next.found) return;
  app->resting = 1;
  app->restx = next.crossing.x_root;
  app->resty = next.crossing.y_root;
}

PluginView MakePluginView(XButton* button) {
  return {.button = button,
          .menus = nullptr,
          .show =
              [](const char* classname) {
                if (app == nullptr) return;
                UpdateGromlitApp(app, classname, nullptr);
                DrawGromlitApp(app);
              },
          .keepshown = KeepShownPlugin,
          .actionschanged =
              [] {
                UpdateGromlitScrollRange();
                RefreshGromlitApp();
              }};
}

}  // namespace gromlit
