#include "toolkit/selection.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "display/display.h"
#include "display/x_errors.h"
#include "display/x_handles.h"
#include "toolkit/line_edit.h"
#include "toolkit/window_object.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kPairs = 16;  // conversions of one MULTIPLE request at most
constexpr size_t kProperties =
    4;  // used in turn, so that a late answer meets none that is waited for

enum Name {
  kClipboard,
  kTargets,
  kTimestamp,
  kMultiple,
  kAtomPair,
  kUtf8,
  kText,
  kIncr,
  kTaken,  // the first of kProperties
  kNames = kTaken + kProperties,
};

Atom names[kNames];
Window window = None;

struct Owned {
  Atom selection = None;
  std::string text;  // UTF-8
  Time time = 0;
};
Owned owned[2];  // PRIMARY and CLIPBOARD

// What was asked for.
struct {
  void (*got)(void* arg, const std::string& text) = nullptr;  // null: nothing is waited for
  void* arg = nullptr;
  Atom selection = None;
  Atom target = None;
  Atom property = None;
  Time time = 0;
  Clock::time_point asked;
  Atom type = None;     // of the pieces
  bool pieces = false;  // the owner hands it over piece by piece
  std::string bytes;
} wanted;  // NOLINT(cert-err58-cpp): empty, and nothing else throws
size_t turn = 0;

// --- Giving
// ---------------------------------------------------------------------------------------

// Whether a moment is that one or later; server times begin anew every 49 days.
bool IsSince(Time moment, Time since) {
  return static_cast<uint32_t>(moment - since) < 1U << 31;
}

Owned* OwnedOf(Atom selection) {
  for (Owned& one : owned) {
    if (one.selection == selection && selection != None) return &one;
  }
  return nullptr;
}

void PutBytes(const XSelectionRequestEvent& ask, Atom property, Atom type,
              const std::string& bytes) {
  XChangeProperty(dpy, ask.requestor, property, type, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(bytes.data()),
                  static_cast<int>(bytes.size()));
}

void PutLongs(const XSelectionRequestEvent& ask, Atom property, Atom type,
              const std::vector<long>& values) {
  XChangeProperty(dpy, ask.requestor, property, type, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(values.data()),
                  static_cast<int>(values.size()));
}

// Stores one conversion in a property of whoever asks. False for a target that there is not.
bool Convert(const XSelectionRequestEvent& ask, const Owned& own, Atom target, Atom property) {
  bool latin1 = false;
  const std::string plain = Latin1Of(own.text, &latin1);
  if (target == names[kTargets]) {
    const auto atom = [](Name name) { return static_cast<long>(names[name]); };
    PutLongs(ask, property, XA_ATOM,
             {atom(kTargets), atom(kTimestamp), atom(kMultiple), atom(kUtf8),
              static_cast<long>(XA_STRING), atom(kText)});
  } else if (target == names[kTimestamp]) {
    PutLongs(ask, property, XA_INTEGER, {static_cast<long>(own.time)});
  } else if (target == names[kUtf8] || (target == names[kText] && !latin1)) {
    PutBytes(ask, property, names[kUtf8], own.text);
  } else if (target == XA_STRING || target == names[kText]) {
    PutBytes(ask, property, XA_STRING, plain);
  } else {
    return false;
  }
  return true;
}

// The pairs of target and property in the property of who asks; None in the place of the target of
// each that cannot be had.
bool ConvertSeveral(const XSelectionRequestEvent& ask, const Owned& own) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long after = 0;
  unsigned char* data = nullptr;
  if (XGetWindowProperty(dpy, ask.requestor, ask.property, 0, 2 * kPairs, False, AnyPropertyType,
                         &type, &format, &count, &after, &data) != Success) {
    return false;
  }
  const XData<unsigned char> bytes(data);
  if (format != 32 || data == nullptr || after > 0) return false;
  const auto* values = reinterpret_cast<const long*>(data);
  std::vector<long> pairs(values, values + count / 2 * 2);
  for (size_t i = 0; i < pairs.size(); i += 2) {
    const auto target = static_cast<Atom>(pairs[i]);
    const auto property = static_cast<Atom>(pairs[i + 1]);
    const bool done = property != None && Convert(ask, own, target, property);
    if (!done) pairs[i + 1] = None;
  }
  PutLongs(ask, ask.property, names[kAtomPair], pairs);
  return true;
}

void Requested(void*, XEvent* event) {
  if (event->xany.send_event != False) return;  // the server's only
  const XSelectionRequestEvent& ask = event->xselectionrequest;
  XEvent answer{};
  answer.xselection.type = SelectionNotify;
  answer.xselection.requestor = ask.requestor;
  answer.xselection.selection = ask.selection;
  answer.xselection.target = ask.target;
  answer.xselection.time = ask.time;
  answer.xselection.property = None;
  // Who asks may be gone.
  ErrorTrap trap;
  const Owned* own = OwnedOf(ask.selection);
  const bool since = own != nullptr && (ask.time == CurrentTime || IsSince(ask.time, own->time));
  if (since) {
    const bool several = ask.target == names[kMultiple];
    // Clients of old name no property.
    const Atom property = ask.property != None ? ask.property : ask.target;
    const bool done = several ? ask.property != None && ConvertSeveral(ask, *own)
                              : Convert(ask, *own, ask.target, property);
    if (done) answer.xselection.property = property;
  }
  XSendEvent(dpy, ask.requestor, False, NoEventMask, &answer);
  trap.Finish();
}

void Cleared(void*, XEvent* event) {
  if (event->xany.send_event != False) return;
  const XSelectionClearEvent& clear = event->xselectionclear;
  Owned* own = OwnedOf(clear.selection);
  // Old news of an ownership before this one.
  if (own == nullptr || !IsSince(clear.time, own->time)) return;
  *own = {};
}

// --- Taking
// ---------------------------------------------------------------------------------------

void Ask(Atom target) {
  wanted.target = target;
  wanted.property = names[kTaken + static_cast<int>(turn++ % kProperties)];
  XDeleteProperty(dpy, window, wanted.property);
  XConvertSelection(dpy, wanted.selection, target, wanted.property, window, wanted.time);
}

void Deliver() {
  const auto got = std::exchange(wanted.got, nullptr);
  if (got == nullptr) return;
  const std::string line =
      wanted.type == XA_STRING ? LineOfLatin1(wanted.bytes) : LineOfUtf8(wanted.bytes);
  got(wanted.arg, line);
}

struct Piece {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  std::string bytes;
};

// Takes the property that an owner has filled, and deletes it: with that it is asked for the next
// piece.
Piece TakeProperty() {
  Piece piece;
  unsigned long after = 0;
  unsigned char* data = nullptr;
  if (XGetWindowProperty(dpy, window, wanted.property, 0, kSelectionTaken / 4, False,
                         AnyPropertyType, &piece.type, &piece.format, &piece.count, &after,
                         &data) == Success) {
    const XData<unsigned char> bytes(data);
    if (piece.format == 8 && data != nullptr) {
      piece.bytes.assign(reinterpret_cast<const char*>(data), piece.count);
    }
  }
  // Not together with reading: only what was read to its end would go.
  XDeleteProperty(dpy, window, wanted.property);
  return piece;
}

bool IsText(const Piece& piece) {
  return piece.format == 8 && (piece.type == names[kUtf8] || piece.type == XA_STRING);
}

bool Late() {
  return Clock::now() - wanted.asked > kSelectionPatience;
}

// The owner has none of this; whoever has no UTF-8 may have STRING.
void Refused() {
  if (wanted.target == names[kUtf8]) {
    Ask(XA_STRING);
  } else {
    wanted.got = nullptr;
  }
}

void Answered(void*, XEvent* event) {
  const XSelectionEvent& answer = event->xselection;
  if (wanted.got == nullptr || wanted.pieces || answer.selection != wanted.selection ||
      answer.target != wanted.target) {
    return;
  }
  if (Late()) {
    wanted.got = nullptr;
    return;
  }
  if (answer.property == None) {
    Refused();
    return;
  }
  if (answer.property != wanted.property) return;
  const Piece piece = TakeProperty();
  if (piece.type == names[kIncr]) {
    wanted.pieces = true;
    return;
  }
  if (!IsText(piece)) {
    Refused();
    return;
  }
  wanted.type = piece.type;
  wanted.bytes = piece.bytes;
  Deliver();
}

void PieceCame(void*, XEvent* event) {
  const XPropertyEvent& news = event->xproperty;
  if (news.send_event != False || news.state != PropertyNewValue) return;
  if (wanted.got == nullptr || !wanted.pieces || news.atom != wanted.property) return;
  const Piece piece = TakeProperty();
  if (Late()) {
    wanted.got = nullptr;
    return;
  }
  if (piece.type == None) return;  // the news of a piece that is taken already
  if (piece.count == 0) {
    Deliver();
    return;
  }
  if (!IsText(piece)) {
    wanted.got = nullptr;
    return;
  }
  wanted.type = piece.type;
  const size_t room = kSelectionTaken - std::min(kSelectionTaken, wanted.bytes.size());
  wanted.bytes.append(piece.bytes, 0, room);
  // An owner that never ends has said enough.
  if (wanted.bytes.size() >= kSelectionTaken) Deliver();
}

void Prepare() {
  if (window != None) return;
  const char* const kNameTexts[] = {
      "CLIPBOARD",       "TARGETS",        "TIMESTAMP", "MULTIPLE",        "ATOM_PAIR",
      "UTF8_STRING",     "TEXT",           "INCR",      "GROMLIT_TAKEN_0", "GROMLIT_TAKEN_1",
      "GROMLIT_TAKEN_2", "GROMLIT_TAKEN_3"};
  static_assert(std::size(kNameTexts) == kNames);
  XInternAtoms(dpy, const_cast<char**>(kNameTexts), kNames, False, names);
  XSetWindowAttributes attributes{};
  attributes.event_mask = PropertyChangeMask;
  attributes.override_redirect = True;
  window = XCreateWindow(dpy, root, -1, -1, 1, 1, 0, CopyFromParent, InputOnly, nullptr,
                         CWEventMask | CWOverrideRedirect, &attributes);
  WindowObj* wobj = AllocWindowObj(window, &wanted);
  SetHandler(wobj, SelectionRequest, Requested);
  SetHandler(wobj, SelectionClear, Cleared);
  SetHandler(wobj, SelectionNotify, Answered);
  SetHandler(wobj, PropertyNotify, PieceCame);
}

}  // namespace

Atom ClipboardAtom() {
  Prepare();
  return names[kClipboard];
}

void OwnSelection(Atom selection, const std::string& text, Time time) {
  Prepare();
  Owned* own = OwnedOf(selection);
  if (own == nullptr) own = &owned[selection == XA_PRIMARY ? 0 : 1];
  *own = {selection, Utf8Of(text), time};
  XSetSelectionOwner(dpy, selection, window, time);
}

void AskForSelection(Atom selection, Time time, void (*got)(void* arg, const std::string& text),
                     void* arg) {
  Prepare();
  wanted = {};
  wanted.got = got;
  wanted.arg = arg;
  wanted.selection = selection;
  wanted.time = time;
  wanted.asked = Clock::now();
  Ask(names[kUtf8]);
}

void ForgetSelection(const void* arg) {
  if (wanted.arg == arg) wanted.got = nullptr;
}

void LeaveSelections() {
  window = None;
  wanted = {};
  for (Owned& one : owned) one = {};
}

Window SelectionWindow() {
  return window;
}

}  // namespace gromlit
