#include "capture/gromlit_draw.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "actions/delivery.h"
#include "app/main_window/find_new_plugin.h"
#include "app/main_window/shown_plugin.h"
#include "app/symbols/drawn_symbol.h"
#include "app/tray/tray_icon.h"
#include "capture/app_track.h"
#include "capture/grab_events.h"
#include "capture/plugin_match.h"
#include "capture/stroke_log.h"
#include "core/offer_memory.h"
#include "core/option_files.h"
#include "core/plugin_files.h"
#include "display/display.h"
#include "display/draw_button.h"
#include "display/modes.h"
#include "display/pointer_click.h"
#include "display/sent_input.h"
#include "display/target.h"
#include "recognition/find_action.h"
#include "toolkit/hidden.h"

namespace gromlit {
namespace {

// Class text of the program's main window, here and in another instance. Strokes on it and on the
// program's other windows never ask for a plug-in.
constexpr std::string_view kOwnClass = "Gromlit.Application";

int16_t Coordinate(int position) {
  return static_cast<int16_t>(position);
}

// Everything about the press that is being handled. Positions in pixels.
class Capture {
 public:
  Capture(GromlitDraw* draw, const XButtonEvent& press)
      : draw_(draw),
        press_(press),
        mask_(ButtonToMotionMask(static_cast<int>(press.button)) | ButtonPressMask |
              ButtonReleaseMask),
        trail_(StartTrail(&draw->trail)),
        events_(press, mask_) {
    AddPoint(press.x_root, press.y_root);
  }
  ~Capture() {
    HideStrokeLabel(&draw_->label);
    HideTrail(&trail_);
    XFlush(dpy);
  }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  void Thaw();
  // With the application at the press where it is known already.
  void Search(const Target* application);
  void Run();

 private:
  void AddPoint(int x, int y);
  void BeginDrawing(const XMotionEvent& motion);
  void Motion(const XMotionEvent& motion);
  void Release(const XButtonEvent& release);
  bool IsStroke() const;
  GromlitPlugin* PluginInForce() const;
  void Click();
  bool MakeClick();
  bool SendClick(Window window, int x, int y);
  void Recognise(GromlitPlugin* plugin);

  GromlitDraw* draw_;
  const XButtonEvent press_;  // its time goes with every call, so that none acts on a newer grab
  const long mask_;           // events of the widened grab
  bool own_ = false;          // the press is on one of the program's own windows
  bool onicon_ = false;       // it is on the icon in the tray: a click, however the hand shakes
  Target target_;             // the application below the press
  GromlitPluginList* headplugin_ = nullptr;  // looked up on the first motion
  Trail trail_;
  GrabEvents events_;
  std::array<int16_t, kMaxStrokePoints> xbuffer_{};
  std::array<int16_t, kMaxStrokePoints> ybuffer_{};
  int npoints_ = 0;
  int frompress_ = 0;  // farthest the pointer got from the press along either axis, pixels
};

void Capture::AddPoint(int x, int y) {
  if (npoints_ == kMaxStrokePoints) return;
  xbuffer_[static_cast<size_t>(npoints_)] = Coordinate(x);
  ybuffer_[static_cast<size_t>(npoints_)] = Coordinate(y);
  npoints_++;
}

void Capture::Search(const Target* application) {
  target_ = application != nullptr ? FindTargetsIn(*application, press_.x_root, press_.y_root)
                                   : FindTargets(press_.subwindow, press_.x_root, press_.y_root);
  // A window manager's frame is not ours, but the window in it may be.
  own_ = IsOwnTarget(target_);
  onicon_ = IsTrayIcon(target_.click);
}

// From here on the press is the program's: what is not frozen any more cannot be replayed. This
// comes before anything is asked of other clients' windows, because all that the hand does while
// the pointer is frozen arrives as a single motion.
void Capture::Thaw() {
  // The passive grab reports motion and release of the draw button only. Widened, it reports other
  // buttons too, which end the stroke. No cursor yet: nothing is drawn.
  XChangeActivePointerGrab(dpy, static_cast<unsigned>(mask_), None, press_.time);
  // Lets events through up to the next press or release, with which the pointer freezes again.
  // Never for a motion: a press may be frozen already behind the motions that are still to be read,
  // and letting it through unread would leave the freeze to an event that nobody answers.
  XAllowEvents(dpy, SyncPointer, press_.time);
  XFlush(dpy);
}

void Capture::Run() {
  XEvent event;
  for (bool over = false; !over;) {
    if (!events_.Next(&event)) {
      // Nothing is frozen yet, and what is not frozen cannot be thawed in advance.
      XUngrabPointer(dpy, press_.time);
      return;
    }
    if (event.type == MotionNotify) {
      Motion(event.xmotion);
      continue;
    }
    if (event.type == ButtonPress && event.xbutton.button == press_.button) {
      // The draw button is down already: this press has a grab of its own, so ours is gone, and it
      // has to be answered as a press of its own or its freeze would last.
      XPutBackEvent(dpy, &event);
      return;
    }
    // The release of another button is that of one above the fifth, which may have been down all
    // the time; anything else ends the stroke.
    over = event.type == ButtonPress || event.xbutton.button == press_.button;
    // The grab lasts until all buttons are up, and nothing is drawn any more.
    if (event.type == ButtonPress && trail_.drawmapped)
      XChangeActivePointerGrab(dpy, static_cast<unsigned>(mask_), None, press_.time);
    XAllowEvents(dpy, over ? AsyncPointer : SyncPointer, press_.time);
    if (!over) XFlush(dpy);
  }
  if (event.type == ButtonRelease) Release(event.xbutton);
}

void Capture::BeginDrawing(const XMotionEvent& motion) {
  if (own_) {
    // A click with an unsteady hand begins like this, too: the main window must keep what its
    // popup is about to act on.
    headplugin_ = FindPluginNode(target_.cname.data());
  } else {
    headplugin_ = UpdateGromlitApp(draw_->app, target_.cname.data(), nullptr);
    if (headplugin_ != nullptr && user->showactions != 0) DrawGromlitApp(draw_->app);
  }
  // The hand goes with the grab: the pointer goes through the trail.
  XChangeActivePointerGrab(dpy, static_cast<unsigned>(mask_), handCursor, press_.time);
  ShowTrail(&trail_, motion.x_root, motion.y_root);
  PrepareKeys();
}

void Capture::Motion(const XMotionEvent& motion) {
  if (onicon_) return;
  if (!trail_.drawmapped) BeginDrawing(motion);
  AddPoint(motion.x_root, motion.y_root);
  MoveTrail(&trail_, motion.x_root, motion.y_root);
  events_.NoteDrawn();
  frompress_ = std::max({frompress_, std::abs(motion.x_root - press_.x_root),
                         std::abs(motion.y_root - press_.y_root)});
  if (!Chosen(user, kNameWhileDrawing) || !IsStroke()) return;
  if (GromlitPlugin* plugin = PluginInForce()) {
    NameStroke(&draw_->label, plugin, MakeStroke(npoints_, xbuffer_.data(), ybuffer_.data()),
               &trail_);
  }
}

// The plug-in that the release would look in; null where it would look in none: on the program's
// own windows, and where a plug-in is to be offered first.
GromlitPlugin* Capture::PluginInForce() const {
  if (headplugin_ != nullptr) return headplugin_->plugin;
  const char* classname = target_.cname.data();
  if (own_ || classname == kOwnClass || !IsRememberedClass(classname)) return nullptr;
  return DefaultPlugin;
}

// A quick hand is far away when the first motion arrives, with which the trail's measure begins;
// what lies between counts, too.
bool Capture::IsStroke() const {
  return std::max(trail_.drawmoved, frompress_) >= user->sensitivity;
}

void Capture::Release(const XButtonEvent& release) {
  HideStrokeLabel(&draw_->label);
  if (onicon_) {
    ClickTrayIcon({target_.click, target_.winx, target_.winy, press_.x_root, press_.y_root},
                  press_.button);
    return;
  }
  if (!IsStroke()) {
    Click();
    return;
  }
  StrokeEnds(target_.cname.data());
  if (headplugin_ != nullptr) {
    Recognise(headplugin_->plugin);
  } else if (own_ || target_.cname.data() == kOwnClass) {
    const Stroke stroke = MakeStroke(npoints_, xbuffer_.data(), ybuffer_.data());
    LogStroke(nullptr, stroke, MatchingOf(*user), -1);
    TakeDrawnSymbol(target_.click, stroke);
  } else if (FindNewPlugin(draw_->app, target_.cname.data(), release.x_root, release.y_root) != 0) {
    Recognise(DefaultPlugin);
  } else {
    // The offer of a plug-in stands for the action this once.
    LogStroke(nullptr, MakeStroke(npoints_, xbuffer_.data(), ybuffer_.data()), MatchingOf(*user),
              -1);
  }
}

void Capture::Click() {
  if (MakesClicks() && MakeClick()) return;
  if (SendClick(target_.click, target_.winx, target_.winy) || target_.app == None) return;
  // An application whose windows take the buttons by another protocol than the core's, as most
  // toolkits of today do: it would ignore a click that is sent, and there is none to send it to.
  if (MakeClick()) return;
  int x;
  int y;
  Window child;
  if (XTranslateCoordinates(dpy, root, target_.client, press_.x_root, press_.y_root, &x, &y,
                            &child)) {
    SendClick(target_.client, x, y);
  }
}

// False when the server cannot.
bool Capture::MakeClick() {
  // The hand may have shaken; then the trail is over the application and may take the click.
  HideTrail(&trail_);
  return ClickAt(press_.x_root, press_.y_root, static_cast<int>(press_.button));
}

// False when there is no window to send it to.
bool Capture::SendClick(Window window, int x, int y) {
  if (window == None) return false;
  XEvent event{};
  event.xbutton.button = press_.button;
  PlaceInput(&event.xbutton, {window, x, y, press_.x_root, press_.y_root}, 0);
  SendPressAndRelease(&event, ButtonPress, ButtonRelease);
  return true;
}

void Capture::Recognise(GromlitPlugin* plugin) {
  if (plugin == nullptr) return;
  // The trail stays until the action is over, which may take seconds; clicks go through it.
  currentStroke = {target_.client, own_};
  PluginMatch(plugin, npoints_, xbuffer_.data(), ybuffer_.data(), target_.click, target_.key,
              target_.winx, target_.winy, press_.x_root, press_.y_root);
  currentStroke = {};
}

void NoteUnmapped(void* obj, XEvent* event) {
  ReleaseHidden(obj, event);
  GromlitAppTrackUnmap(obj, event);
}

// Leaves the press to whatever it is over.
void Replay(const XButtonEvent& press) {
  XAllowEvents(dpy, ReplayPointer, press.time);
  XFlush(dpy);
}

// Whether gestures are off over an application. Those over the program's own windows are part of
// what these windows do.
bool IsHandsOff(const Target& application) {
  return IsHandsOffClass(application.cname.data()) && !IsOwnTarget(application);
}

long TrailMask() {
  return ButtonToMotionMask(EffectiveButton(user)) | ButtonReleaseMask;
}

}  // namespace

GromlitDraw* MakeGromlitDraw() {
  auto* draw = new GromlitDraw{};
  draw->trail = MakeTrailWindows(TrailMask());
  draw->wobj = AllocWindowObj(root, draw);
  On<ButtonPress, GromlitDrawButtonPress>(draw);
  SetHandler(draw->wobj, EnterNotify, GromlitAppTrackEnter);
  SetHandler(draw->wobj, CreateNotify, GromlitAppTrackCreate);
  SetHandler(draw->wobj, UnmapNotify, NoteUnmapped);
  SetHandler(draw->wobj, ConfigureNotify, FollowScreenSize);
  return draw;
}

void RenewDrawEvents(GromlitDraw* draw) {
  SelectTrailEvents(draw->trail, TrailMask());
}

void GromlitDrawButtonPress(GromlitDraw* draw, XEvent* event) {
  const XButtonEvent& press = event->xbutton;
  // Nothing is frozen on account of a synthetic press; replaying could release a real one that
  // waits behind it, whose capture would then never end.
  if (press.send_event) return;
  if ((press.state & ~DrawLocks()) != 0 || editingPlugin != 0 || gesturesPaused != 0) {
    Replay(press);
    return;
  }
  // A press that is thawed can be replayed no more, so whose it is must be known before; but while
  // the pointer is frozen the hand's way is lost, so only its class is asked for, and only when
  // there is a plug-in that makes a difference.
  Target application;
  const bool known = AnyHandsOff();
  if (known) {
    application = FindApplication(press.subwindow, press.x_root, press.y_root);
    if (IsHandsOff(application)) {
      Replay(press);
      return;
    }
  }
  Capture capture(draw, press);
  capture.Thaw();
  capture.Search(known ? &application : nullptr);
  capture.Run();
}

}  // namespace gromlit
