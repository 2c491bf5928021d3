// What other clients send: selections asked for and handed over, whole and piece by piece; words of
// `gromlit -remote`; the messages of trays. Any events in any order, with any property where one is
// looked for, windows of the senders coming and going.
//
// Whoever asks is answered once; a text that is taken is one line of UTF-8 of at most the size that
// is read; what is told to a caller is a state; the tray's icon is drawn within its window.
#include <X11/Xatom.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "app/tray/tray_icon.h"
#include "app/tray/tray_record.h"
#include "core/utf8.h"
#include "display/display.h"
#include "display/modes.h"
#include "display/pause.h"
#include "display/window_manager.h"
#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/target.h"
#include "program/remote_words.h"
#include "toolkit/image.h"
#include "toolkit/selection.h"
#include "toolkit/window_object.h"

// As a source: what it keeps to itself begins anew with every input.
#include "program/remote_service.cc"

namespace gromlit::fuzz {
namespace {

std::string taken;
int times = 0;

void Got(void*, const std::string& text) {
  taken = text;
  times++;
}

Atom AnyAtom(FuzzedDataProvider* data) {
  static constexpr const char* kNames[] = {"PRIMARY",
                                           "CLIPBOARD",
                                           "TARGETS",
                                           "TIMESTAMP",
                                           "MULTIPLE",
                                           "ATOM_PAIR",
                                           "UTF8_STRING",
                                           "TEXT",
                                           "STRING",
                                           "INCR",
                                           "GROMLIT_TAKEN_0",
                                           "GROMLIT_TAKEN_1",
                                           "GROMLIT_TAKEN_2",
                                           "GROMLIT_TAKEN_3",
                                           "_GROMLIT_S0",
                                           "_GROMLIT_REMOTE",
                                           "MANAGER",
                                           "_XEMBED",
                                           "ATOM",
                                           "_NET_SYSTEM_TRAY_S0"};
  const auto i = data->ConsumeIntegralInRange<size_t>(0, std::size(kNames) + 1);
  if (i == std::size(kNames)) return None;
  return i < std::size(kNames) ? AtomOf(kNames[i]) : Atom{4000};
}

Window AnyWindow(FuzzedDataProvider* data) {
  std::vector<Window> windows = {None, 0x99999};
  for (const auto& [window, record] : Server().windows) windows.push_back(window);
  return windows[data->ConsumeIntegralInRange<size_t>(0, windows.size() - 1)];
}

FakeProperty AnyProperty(FuzzedDataProvider* data) {
  FakeProperty property;
  property.type = AnyAtom(data);
  property.format = data->PickValueInArray({8, 16, 32});
  property.bytes = data->ConsumeRandomLengthString(6000);
  const auto unit = static_cast<size_t>(property.format) / 8;
  property.bytes.resize(property.bytes.size() / unit * unit);
  return property;
}

// An event that a server or, with send_event, any client could have made.
XEvent AnyEvent(FuzzedDataProvider* data) {
  XEvent event{};
  event.type =
      data->PickValueInArray({SelectionRequest, SelectionNotify, SelectionClear, PropertyNotify,
                              ClientMessage, DestroyNotify, ConfigureNotify, ReparentNotify, Expose,
                              ButtonPress, ButtonRelease, UnmapNotify, MapNotify});
  event.xany.display = dpy;
  event.xany.send_event = data->ConsumeIntegralInRange(0, 3) == 0 ? True : False;
  event.xany.window = AnyWindow(data);
  switch (event.type) {
    case SelectionRequest:
      event.xselectionrequest.requestor = AnyWindow(data);
      event.xselectionrequest.selection = AnyAtom(data);
      event.xselectionrequest.target = AnyAtom(data);
      event.xselectionrequest.property = AnyAtom(data);
      event.xselectionrequest.time = data->ConsumeIntegral<uint32_t>();
      break;
    case SelectionNotify:
      event.xselection.selection = AnyAtom(data);
      event.xselection.target = AnyAtom(data);
      event.xselection.property = AnyAtom(data);
      break;
    case SelectionClear:
      event.xselectionclear.selection = AnyAtom(data);
      event.xselectionclear.time = data->ConsumeIntegral<uint32_t>();
      break;
    case PropertyNotify:
      event.xproperty.atom = AnyAtom(data);
      event.xproperty.state = data->PickValueInArray({PropertyNewValue, PropertyDelete, 7});
      break;
    case ClientMessage:
      event.xclient.message_type = AnyAtom(data);
      event.xclient.format = data->PickValueInArray({32, 8, 16, 0});
      for (long& number : event.xclient.data.l)
        number = data->ConsumeBool() ? data->ConsumeIntegralInRange(-1, 8)
                                     : static_cast<long>(AnyAtom(data));
      break;
    case DestroyNotify:
      event.xdestroywindow.window = AnyWindow(data);
      break;
    case ReparentNotify:
      event.xreparent.window = AnyWindow(data);
      event.xreparent.parent = AnyWindow(data);
      break;
    case ConfigureNotify:
      event.xconfigure.window = AnyWindow(data);
      event.xconfigure.width = data->ConsumeIntegralInRange(1, 65535);
      event.xconfigure.height = data->ConsumeIntegralInRange(1, 65535);
      break;
    case ButtonPress:
    case ButtonRelease:
      event.xbutton.button = data->ConsumeIntegralInRange(0U, 9U);
      event.xbutton.x = data->ConsumeIntegral<int16_t>();
      event.xbutton.y = data->ConsumeIntegral<int16_t>();
      break;
    default:
      break;
  }
  return event;
}

// What the program would hear next of a selection: the property filled, and the news of it.
void HandOver(FuzzedDataProvider* data) {
  const Window window = SelectionWindow();
  const auto it = Server().windows.find(window);
  if (it == Server().windows.end()) return;
  static constexpr const char* kTaken[] = {"GROMLIT_TAKEN_0", "GROMLIT_TAKEN_1", "GROMLIT_TAKEN_2",
                                           "GROMLIT_TAKEN_3"};
  const Atom property = AtomOf(kTaken[data->ConsumeIntegralInRange(0, 3)]);
  FakeProperty value = AnyProperty(data);
  if (data->ConsumeBool()) {
    value.format = 8;
    value.type = data->ConsumeBool() ? AtomOf("UTF8_STRING") : XA_STRING;
  }
  it->second.properties[property] = value;
  XEvent event{};
  if (data->ConsumeBool()) {
    event.type = SelectionNotify;
    event.xselection.requestor = window;
    event.xselection.selection = data->ConsumeBool() ? Atom{XA_PRIMARY} : ClipboardAtom();
    event.xselection.target = data->ConsumeBool() ? AtomOf("UTF8_STRING") : Atom{XA_STRING};
    event.xselection.property = property;
  } else {
    event.type = PropertyNotify;
    event.xproperty.window = window;
    event.xproperty.atom = property;
    event.xproperty.state = PropertyNewValue;
  }
  event.xany.display = dpy;
  DispatchEvent(&event);
}

void CheckTaken() {
  std::vector<char32_t> letters;
  size_t length = 0;
  Require(DecodeUtf8(taken, &letters, &length) == Utf8::kWhole);
  Require(taken.size() <= 2 * kSelectionTaken);
  for (const char32_t c : letters) Require(c >= ' ' && (c < 0x7f || c > 0x9f));
}

// How many answers of this type were sent to a window.
size_t Answers(int type, Window window) {
  const auto& sent = Server().sent;
  return static_cast<size_t>(std::count_if(sent.begin(), sent.end(), [&](const XEvent& event) {
    return event.type == type && event.xany.window == window;
  }));
}

void Dispatch(XEvent event) {
  const size_t before = Server().sent.size();
  try {
    DispatchEvent(&event);
  } catch (const Ended&) {
    // A word asked for the end of the program.
    Require(event.type == ClientMessage && event.xclient.data.l[0] == kRemoteQuit);
  }
  if (event.type == SelectionRequest) {
    Require(Server().sent.size() <= before + 1);
    if (event.xany.window == SelectionWindow() && SelectionWindow() != None &&
        event.xany.send_event == False)
      Require(Answers(SelectionNotify, event.xselectionrequest.requestor) > 0);
  }
  for (size_t i = before; i < Server().sent.size(); i++) {
    const XEvent& answer = Server().sent[i];
    if (answer.type != ClientMessage || answer.xclient.message_type != AtomOf(kRemoteMessage))
      continue;
    const long state = answer.xclient.data.l[1];
    Require(state == kRemoteRunning || state == kRemotePaused);
  }
}

// A new connection: whatever the last input left is forgotten as at the end of one.
void Begin() {
  static bool first = true;
  LeaveSelections();
  service = {};
  if (first) {
    MakeImages();
    XAllocColor(dpy, cmap, &lgrey);
  }
  first = false;
  // Entries are never given back.
  nWindowObjects = 0;
  for (WindowObj& entry : WindowObjects) entry = WindowObj{};
  if (trayicon != nullptr) {
    if (trayicon->picture != nullptr) XDestroyImage(trayicon->picture);
    if (trayicon->gc != nullptr) XFreeGC(dpy, trayicon->gc);
    delete trayicon;
    trayicon = nullptr;
  }
  AllocWindowObj(kRoot, nullptr);
  defaultWindowObj = AllocWindowObj(1, nullptr);
  PauseGestures(false);
  times = 0;
  taken.clear();
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  Begin();
  static GromlitUserOptions options{};
  user = &options;
  for (int n = data->ConsumeIntegralInRange(0, 3); n > 0; n--) AddWindow(kRoot, FakeWindow{});
  if (data->ConsumeBool()) Server().selections[AtomOf("_NET_SYSTEM_TRAY_S0")] = AnyWindow(data);
  if (data->ConsumeBool()) Server().selections[RemoteSelection()] = AnyWindow(data);
  WatchForTrays();
  ServeRemote();
  for (int n = data->ConsumeIntegralInRange(0, 24); n > 0 && nWindowObjects < 100; n--) {
    switch (data->ConsumeIntegralInRange(0, 7)) {
      case 0:
        OwnSelection(data->ConsumeBool() ? Atom{XA_PRIMARY} : ClipboardAtom(),
                     data->ConsumeRandomLengthString(2000), data->ConsumeIntegral<uint32_t>());
        break;
      case 1:
        times = 0;
        AskForSelection(data->ConsumeBool() ? Atom{XA_PRIMARY} : ClipboardAtom(), 7, Got, &taken);
        break;
      case 2:
      case 3:
        HandOver(data);
        break;
      case 4:
        if (data->ConsumeBool())
          RemoveWindow(AnyWindow(data));
        else
          Server().windows[AddWindow(kRoot, FakeWindow{})].properties[AnyAtom(data)] =
              AnyProperty(data);
        break;
      case 5:
        RefreshTrayIcon();
        if (data->ConsumeBool()) ForgetSelection(&taken);
        break;
      default:
        Dispatch(AnyEvent(data));
    }
    Require(times <= 1);
    CheckTaken();
  }
}

}  // namespace gromlit::fuzz
