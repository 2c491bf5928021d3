#include "toolkit/check_box.h"

#include "display/display.h"
#include "display/scale.h"
#include "toolkit/bevel.h"
#include "toolkit/child_window.h"
#include "toolkit/manners.h"

namespace gromlit {

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
}

void CheckBoxDown(XCheckBox* box, XEvent*) {
  box->state = box->state != 0 ? 0 : 1;
  if (box->action != nullptr) box->action(box->arg, box->state);
  DrawCheckBox(box);
}

}  // namespace gromlit
