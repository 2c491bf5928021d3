#include "capture/stroke_label.h"

#include <algorithm>

#include "core/option_files.h"
#include "core/strings.h"
#include "display/display.h"
#include "display/monitors.h"
#include "display/scale.h"
#include "display/shapes.h"
#include "recognition/find_action.h"
#include "toolkit/child_window.h"
#include "toolkit/text.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

constexpr int kTop = 8;     // pixels below the top of the monitor
constexpr int kSide = 12;   // from the label's edge to the longest name
constexpr int kAbove = 6;   // from the label's edge to the letters, and below them
constexpr int kLeast = 96;  // width, so that it is one label and not a dance of them

void MakeLabel(StrokeLabel* label, bool shaped) {
  XSetWindowAttributes attributes;
  attributes.override_redirect = True;
  label->window =
      MakeChildWindow(root, 0, 0, kLeast, kLeast, white.pixel, 0, CWOverrideRedirect, attributes);
  label->gc = MakeWindowGC(label->window, labelFont);
  if (shaped) LetPointerThrough(label->window);
  ClaimWindow(label->window);
}

// Gives the label room for a name, on its monitor. Returns whether that changed it.
bool MakeRoom(StrokeLabel* label, int textwidth, bool moved) {
  const XRectangle& monitor = label->monitor;
  const int needed = std::min<int>(Device(std::max(textwidth + 2 * kSide, kLeast)), monitor.width);
  if (!moved && needed <= label->area.width) return false;
  label->area = {static_cast<short>(monitor.x + (monitor.width - needed) / 2),
                 static_cast<short>(monitor.y + Device(kTop)), static_cast<unsigned short>(needed),
                 static_cast<unsigned short>(
                     Device(labelFontinfo->ascent + labelFontinfo->descent + 2 * kAbove))};
  XMoveResizeWindow(dpy, label->window, label->area.x, label->area.y, label->area.width,
                    label->area.height);
  return true;
}

// The name is the window's background, so that the server draws it whenever it comes to light:
// while a stroke is drawn nobody answers to exposures.
void Paint(const StrokeLabel& label, const std::string& name) {
  const int width = Logical(label.area.width);
  const int height = Logical(label.area.height);
  const Pixmap picture = XCreatePixmap(dpy, label.window, label.area.width, label.area.height,
                                       static_cast<unsigned>(DefaultDepth(dpy, screen)));
  XSetForeground(dpy, label.gc, white.pixel);
  XFillRectangle(dpy, picture, label.gc, 0, 0, label.area.width, label.area.height);
  XSetForeground(dpy, label.gc, black.pixel);
  ScaledDrawRectangle(picture, label.gc, 0, 0, width - 1, height - 1);
  const std::string text = FittingText(labelFontinfo, name, width - kSide);
  DrawCentredText(picture, label.gc, 0, width, kAbove + labelFontinfo->ascent, text,
                  TextWidth(labelFontinfo, text));
  XSetWindowBackgroundPixmap(dpy, label.window, picture);
  XFreePixmap(dpy, picture);
  XClearWindow(dpy, label.window);
}

std::string NameOf(const FoundAction& found) {
  if (found.index < 0) return kNoAction;
  return std::string(FieldText(found.plugin->actions[found.index]->name));
}

}  // namespace

void NameStroke(StrokeLabel* label, GromlitPlugin* plugin, const Stroke& stroke, Trail* trail) {
  const std::string name = NameOf(FindActionToRun(plugin, stroke, *user));
  const int x = trail->lastx + (trail->mapfull ? 0 : trail->originx);
  const int y = trail->lasty + (trail->mapfull ? 0 : trail->originy);
  const bool moved = !label->mapped || !Contains(label->monitor, x, y);
  if (!moved && name == label->shown) {
    if (label->over != trail->w) XRaiseWindow(dpy, label->window);
    label->over = trail->w;
    return;
  }
  if (label->window == None) MakeLabel(label, trail->windows->shaped);
  if (moved) label->monitor = MonitorAt(x, y);
  // The trail's windows have no background: what the label leaves behind would stay on them.
  if (MakeRoom(label, TextWidth(labelFontinfo, name), moved)) KeepTrailOff(trail, label->area);
  Paint(*label, name);
  XMapRaised(dpy, label->window);
  label->over = trail->w;
  label->mapped = true;
  label->shown = name;
}

void HideStrokeLabel(StrokeLabel* label) {
  if (!label->mapped) return;
  XUnmapWindow(dpy, label->window);
  label->mapped = false;
}

}  // namespace gromlit
