#include "display/shapes.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "display/calls_xlib.h"
#include "display/display.h"
#include "display/extension_question.h"

// clang-format off
// Behind all others: its macros would break the standard library's headers.
#include <X11/Xlibint.h>
#include <X11/extensions/shapeproto.h>
// clang-format on

namespace gromlit {
namespace {

xcb_extension_t extension = {SHAPENAME, 0};

struct Shapes {
  Display* display;  // that was asked
  uint8_t opcode;    // 0: the server has none
  ExtensionQuestion version;
  bool answered;
  bool input;
};
Shapes shapes{};

// Sets a part of a window to a rectangle, or to nothing.
GROMLIT_CALLS_XLIB void Combine(Window window, int kind, int operation,
                                const XRectangle* rectangle) {
  if (!HasInputShapes()) return;
  LockDisplay(dpy);
  auto* const request =
      static_cast<xShapeRectanglesReq*>(_XGetRequest(dpy, shapes.opcode, sz_xShapeRectanglesReq));
  request->shapeReqType = X_ShapeRectangles;
  request->op = static_cast<CARD8>(operation);
  request->destKind = static_cast<CARD8>(kind);
  request->ordering = Unsorted;
  request->dest = static_cast<CARD32>(window);
  request->xOff = request->yOff = 0;
  if (rectangle != nullptr) {
    request->length = static_cast<CARD16>(request->length + sizeof *rectangle / 4);
    Data(dpy, reinterpret_cast<const char*>(rectangle), sizeof *rectangle);
  }
  UnlockDisplay(dpy);
  SyncHandle();
}

// Makes the seen part of a window the whole of it again.
GROMLIT_CALLS_XLIB void Reset(Window window) {
  if (!HasInputShapes()) return;
  LockDisplay(dpy);
  auto* const request =
      static_cast<xShapeMaskReq*>(_XGetRequest(dpy, shapes.opcode, sz_xShapeMaskReq));
  request->shapeReqType = X_ShapeMask;
  request->op = ShapeSet;
  request->destKind = ShapeBounding;
  request->dest = static_cast<CARD32>(window);
  request->xOff = request->yOff = 0;
  request->src = None;
  UnlockDisplay(dpy);
  SyncHandle();
}

}  // namespace

void AskForShapes() {
  xcb_prefetch_extension_data(XGetXCBConnection(dpy), &extension);
}

void AskForShapesVersion() {
  xcb_connection_t* const connection = XGetXCBConnection(dpy);
  const xcb_query_extension_reply_t* const found = xcb_get_extension_data(connection, &extension);
  shapes = {};
  shapes.display = dpy;
  if (found == nullptr || found->present == 0) {
    shapes.answered = true;
    return;
  }
  shapes.opcode = found->major_opcode;
  std::array<uint8_t, sz_xShapeQueryVersionReq> request{};
  shapes.version = AskExtension(&extension, X_ShapeQueryVersion, request);
}

bool HasInputShapes() {
  if (shapes.display != dpy) AskForShapesVersion();
  if (!shapes.answered) {
    shapes.answered = true;
    if (const auto reply = AnswerOf(shapes.version)) {
      xShapeQueryVersionReply version;
      std::memcpy(&version, reply.get(), sizeof version);
      shapes.input = version.majorVersion > 1 || version.minorVersion >= 1;
    }
  }
  return shapes.input;
}

void LetPointerThrough(Window window) {
  Combine(window, ShapeInput, ShapeSet, nullptr);
}

void ShowPart(Window window, const XRectangle& part) {
  Combine(window, ShapeBounding, ShapeSet, &part);
}

void CutOut(Window window, const XRectangle& hole) {
  Combine(window, ShapeBounding, ShapeSubtract, &hole);
}

void ShowWhole(Window window) {
  Reset(window);
}

}  // namespace gromlit
