#include "toolkit/check_box.h"

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/focus.h"
#include "toolkit/manners.h"
#include "toolkit/tab_order.h"

namespace gromlit {
namespace {

constexpr int kFocusInset = 3;  // of the frame that shows the keyboard, from each edge

}  // namespace

XCheckBox* MakeCheckBox(void* owner, Window parent, void (*func)(void* arg, int newstate), int x,
                        int y) {
  auto* box = new XCheckBox{};
  box->owner = owner;
  box->parent = parent;
  box->action = func;
  box->width = kCheckBoxSize;
  box->height = kCheckBoxSize;
  box->x = x;
  box->y = y;
  box->window = MakeChildWindow(parent, x, y, kCheckBoxSize, kCheckBoxSize, lgrey.pixel,
                                ExposureMask | ButtonPressMask);
  box->gc = buttongc;
  box->state = 1;
  box->arg = box;
  box->wobj = AllocWindowObj(box->window, box);
  On<Expose, DrawCheckBox>(box);
  On<ButtonPress, CheckBoxDown>(box);
  On<KeyPress, CheckBoxKeyPress>(box);
  On<FocusIn, CheckBoxFocus>(box);
  On<FocusOut, CheckBoxFocus>(box);
  SetHandler(box->wobj, KeyRelease, NoteKeyRelease);
  SetTabStop(box->wobj, nullptr);
  XMapWindow(dpy, box->window);
  return box;
}

void PlaceCaption(XCheckBox* box, int right, int top, int bottom) {
  if (!ModernManners()) {
    if (box->caption != None) XUnmapWindow(dpy, box->caption);
    return;
  }
  const int left = box->x + box->width;
  const int width = right - left;
  const int height = bottom - top;
  if (box->caption == None) {
    XSetWindowAttributes attributes{};
    attributes.event_mask = ButtonPressMask;
    box->caption = ScaledCreateWindow(box->parent, left, top, width, height, 0, InputOnly,
                                      CWEventMask, &attributes);
    SetHandler(AllocWindowObj(box->caption, box), ButtonPress,
               [](void* obj, XEvent* event) { CheckBoxDown(static_cast<XCheckBox*>(obj), event); });
  } else {
    ScaledMoveResizeWindow(box->caption, left, top, width, height);
  }
  XMapWindow(dpy, box->caption);
}

void HideCheckBox(XCheckBox* box) {
  XUnmapWindow(dpy, box->window);
  if (box->caption != None) XUnmapWindow(dpy, box->caption);
}

void DrawCheckBox(XCheckBox* box, XEvent*) {
  XClearWindow(dpy, box->window);
  if (box->state != 0) {
    FillRectangle(box->window, box->gc, grey.pixel, 0, 0, box->width, box->height);
  }
  XDrawBevel(box->state != 0 ? kSunken : kRaised, box->window, box->gc, 0, 0, box->width,
             box->height);
  if (box->focused != 0 && ModernManners())
    DrawOutline(box->window, box->gc, black.pixel, kFocusInset, kFocusInset,
                box->width - 2 * kFocusInset - 1, box->height - 2 * kFocusInset - 1);
}

void CheckBoxDown(XCheckBox* box, XEvent*) {
  box->state = box->state != 0 ? 0 : 1;
  if (box->action != nullptr) box->action(box->arg, box->state);
  DrawCheckBox(box);
}

void CheckBoxKeyPress(XCheckBox* box, XEvent* event) {
  if (!ModernManners()) return;
  if (!IsPressingKey(&event->xkey)) {
    HandKeyUp(box->window, event);
  } else if (!IsKeyRepeat(event->xkey)) {
    CheckBoxDown(box, event);
  }
}

void CheckBoxFocus(XCheckBox* box, XEvent* event) {
  if (event->type == FocusOut) FocusLost(event->xfocus);
  if (!IsFocusMove(event->xfocus)) return;
  box->focused = event->type == FocusIn ? 1 : 0;
  DrawCheckBox(box);
}

}  // namespace gromlit
