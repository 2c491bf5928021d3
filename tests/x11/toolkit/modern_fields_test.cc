// Text fields with today's manners: caret, selection, the keys of a window, and text that goes from
// program to program.
// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include <X11/Xatom.h>
#include <X11/keysym.h>

#include <cstring>

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/button.h"
#include "toolkit/manners.h"
#include "toolkit/selection.h"
#include "toolkit/tab_order.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

constexpr int kX = 20;  // of the field in its parent
constexpr int kY = 30;
constexpr int kWidth = 200;
constexpr int kLetter = 6;  // pixels of a letter of the text font

int completions = 0;
int presses = 0;

// Another program, on a connection of its own, that owns selections and asks for them.
class Peer {
 public:
  explicit Peer(const std::string& name) : display(XOpenDisplay(name.c_str())) {
    window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    XSelectInput(display, window, PropertyChangeMask);
  }
  ~Peer() { XCloseDisplay(display); }
  Atom Name(const char* text) const { return XInternAtom(display, text, False); }
  void Own(Atom selection) {
    XSetSelectionOwner(display, selection, window, CurrentTime);
    XSync(display, False);
  }
  // The first event of a type that has arrived; false for none.
  bool Take(int type, XEvent* event) {
    XSync(display, False);
    return XCheckTypedEvent(display, type, event) != 0;
  }
  void Put(Window where, Atom property, Atom type, int format, const std::string& bytes) {
    const size_t unit = format == 8 ? 1 : format == 16 ? sizeof(short) : sizeof(long);
    XChangeProperty(display, where, property, type, format, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(bytes.data()),
                    static_cast<int>(bytes.size() / unit));
  }
  void Notify(const XSelectionRequestEvent& ask, Atom property) {
    XEvent answer{};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = ask.requestor;
    answer.xselection.selection = ask.selection;
    answer.xselection.target = ask.target;
    answer.xselection.time = ask.time;
    answer.xselection.property = property;
    XSendEvent(display, ask.requestor, False, NoEventMask, &answer);
    XSync(display, False);
  }
  std::string Property(Atom property, Atom* type = nullptr) {
    Atom is = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window, property, 0, 1000, False, AnyPropertyType, &is, &format,
                       &count, &after, &data);
    std::string bytes;
    const size_t unit = format == 32 ? sizeof(long) : 1;
    if (data != nullptr) bytes.assign(reinterpret_cast<char*>(data), count * unit);
    if (data != nullptr) XFree(data);
    if (type != nullptr) *type = is;
    return bytes;
  }

  Display* display;
  Window window;
};

class ModernFieldsTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    completions = presses = 0;
    user = &options;
    options.temp4 = kModernManners;
    ClaimWindow(top);
    txt = MakeTextEditor(top, kX, kY, kWidth, kEditorHeight);
    TextEditorInit(txt, "");
    XMapWindow(dpy, txt->window);
    Pump();
  }
  void TearDown() override {
    user = nullptr;
    DisclaimWindow(top);
    WidgetFixture::TearDown();
    LeaveSelections();
  }

  void Enter() {
    MoveTo(kX + 150, kY + 10);
    Pump();
    ASSERT_EQ(txt->inside, 1);
  }
  void Type(KeySym key, int times = 1) {
    for (int i = 0; i < times; i++) player->Type(key);
    Pump();
  }
  void Type(const std::string& letters) {
    for (char c : letters) player->Type(static_cast<KeySym>(c));
    Pump();
  }
  void With(KeySym modifier, KeySym key, int times = 1) {
    player->KeyDown(modifier);
    Type(key, times);
    player->KeyUp(modifier);
    Pump();
  }
  // At the edge before letter n of a text that is not scrolled.
  void PointAt(int n) { MoveTo(kX + kEditorTextX + n * kLetter, kY + 12); }
  void ClickOn(int n, int button = 1) {
    PointAt(n);
    player->Click(button);
    Pump();
  }
  std::string Text() const { return {txt->buffer, static_cast<size_t>(txt->len)}; }
  std::string Selected() const {
    const int from = std::min(txt->anchor, txt->index);
    return Text().substr(static_cast<size_t>(from),
                         static_cast<size_t>(std::max(txt->anchor, txt->index) - from));
  }
  Window Focus() {
    Window focus;
    int revert;
    XGetInputFocus(dpy, &focus, &revert);
    return focus;
  }
  Picture Shown() { return Take(txt->window, 0, 0, kWidth, kEditorHeight); }
  // The field with the keyboard, of which `text` is seen, with the caret before letter `caret` and
  // letters from..to inverted.
  Picture Expected(const std::string& text, int caret, int from = 0, int to = 0) {
    Picture picture(kWidth, kEditorHeight, kWhite);
    Outline(picture, kLightGrey, 0, 0, kWidth - 1, 23);
    picture.Bevel(kDarkGrey, kWhite, 1, 1, kWidth - 1, 23);
    Outline(picture, kBlack, 0, 0, kWidth, 23);
    Stamp(picture, txtFontinfo, 4, 16, text);
    if (from != to) InvertFilled(picture, 4 + from * kLetter, 4, (to - from) * kLetter, 16);
    InvertFilled(picture, caret * kLetter + 3, 4, 7, 16);
    return picture;
  }

  // What `owner` is asked for; fails when it is not asked.
  XSelectionRequestEvent AskedOf(Peer* owner) {
    XEvent event{};
    EXPECT_TRUE(PumpUntil([&] { return owner->Take(SelectionRequest, &event); }));
    return event.xselectionrequest;
  }
  // Answers the next question with these bytes.
  void Answer(Peer* owner, const char* type, int format, const std::string& bytes) {
    const XSelectionRequestEvent ask = AskedOf(owner);
    owner->Put(ask.requestor, ask.property, owner->Name(type), format, bytes);
    owner->Notify(ask, ask.property);
    Pump();
  }
  // Asks for what is owned; the property then, None when it was refused.
  Atom AskFor(Peer* peer, Atom selection, const char* target) {
    const Atom property = peer->Name("PEER_TOOK");
    XConvertSelection(peer->display, selection, peer->Name(target), property, peer->window,
                      CurrentTime);
    XEvent event{};
    EXPECT_TRUE(PumpUntil([&] { return peer->Take(SelectionNotify, &event); }));
    return event.xselection.property;
  }
  std::string Given(Peer* peer, Atom selection, const char* target, const char* type) {
    const Atom property = AskFor(peer, selection, target);
    if (property == None) return "refused";
    Atom is = None;
    const std::string bytes = peer->Property(property, &is);
    EXPECT_EQ(is, peer->Name(type));
    return bytes;
  }

  GromlitUserOptions options{};
  TextEditor* txt = nullptr;
};

TEST_F(ModernFieldsTest, AClickSetsTheCaretAndAShortFieldLooksAsEver) {
  TextEditorUpdate(txt, "abcdef");
  ClickOn(2);
  EXPECT_EQ(txt->index, 2);
  EXPECT_EQ(Shown(), Expected("abcdef", 2));
  Type("x");
  EXPECT_EQ(Text(), "abxcdef");
  ClickOn(30);
  EXPECT_EQ(txt->index, 7);
  EXPECT_EQ(Focus(), txt->window);
}

TEST_F(ModernFieldsTest, TheFrameStaysWhereTheKeyboardIs) {
  TextEditorUpdate(txt, "abc");
  Enter();
  MoveTo(kX + 150, kY + 100);
  Pump();
  ASSERT_EQ(txt->inside, 0);
  EXPECT_EQ(Shown(), Expected("abc", 3));
  player->Click(1);  // elsewhere
  Pump();
  EXPECT_EQ(Focus(), txt->window);
  XSetInputFocus(player->display(), PointerRoot, RevertToPointerRoot, CurrentTime);
  XSync(player->display(), False);
  Pump();
  EXPECT_EQ(txt->focused, 0);
  EXPECT_EQ(PixelOf(txt->window, 5, 0), kLightGrey);
}

TEST_F(ModernFieldsTest, TheTextIsScrolledSoThatTheCaretIsSeen) {
  Enter();
  std::string text;
  for (int i = 0; i < 50; i++) text += static_cast<char>('a' + i % 26);
  Type(text);
  ASSERT_EQ(Text(), text);
  const int seen = (kWidth - 15) / kLetter;
  EXPECT_EQ(txt->first, 50 - seen);
  EXPECT_EQ(Shown(), Expected(text.substr(static_cast<size_t>(50 - seen)), seen));
  Type(XK_Home);
  EXPECT_EQ(txt->first, 0);
  EXPECT_EQ(Shown(), Expected(text.substr(0, (kWidth - 8) / kLetter), 0));
  Type(XK_End);
  EXPECT_EQ(txt->first, 50 - seen);
  Type(XK_BackSpace, 30);
  EXPECT_EQ(txt->first, 0);
  EXPECT_EQ(Shown(), Expected(text.substr(0, 20), 20));
}

TEST_F(ModernFieldsTest, KeysMoveAndSelect) {
  txt->complete = [](TextEditor*) { completions++; };
  Enter();
  Type("one");
  Type(XK_space);
  Type("two");
  With(XK_Control_L, XK_Left);
  EXPECT_EQ(txt->index, 4);
  With(XK_Control_L, XK_Left);
  EXPECT_EQ(txt->index, 0);
  With(XK_Control_L, XK_Right);
  EXPECT_EQ(txt->index, 4);
  Type(XK_KP_End);
  EXPECT_EQ(txt->index, 7);
  With(XK_Shift_L, XK_Left, 3);
  EXPECT_EQ(Selected(), "two");
  EXPECT_EQ(Shown(), Expected("one two", 4, 4, 7));
  With(XK_Shift_L, XK_Home);
  EXPECT_EQ(Selected(), "one two");
  Type(XK_Right);
  EXPECT_EQ(txt->index, 7);
  With(XK_Control_L, XK_a);
  EXPECT_EQ(Selected(), "one two");
  Type("x");
  EXPECT_EQ(Text(), "x");
  EXPECT_EQ(completions, 0);
  Type(XK_Return);
  EXPECT_EQ(completions, 1);
  Type(XK_KP_Enter);
  EXPECT_EQ(completions, 2);
}

TEST_F(ModernFieldsTest, ControlAltAndSuperWithOtherKeysInsertNothing) {
  Enter();
  Type("ab");
  for (KeySym modifier : {XK_Control_L, XK_Alt_L, XK_Super_L}) {
    for (KeySym key : {XK_g, XK_q, XK_1, XK_period, XK_h}) With(modifier, key);
  }
  EXPECT_EQ(Text(), "ab");
  With(XK_Control_L, XK_b);
  With(XK_Control_L, XK_k);
  EXPECT_EQ(Text(), "a");
}

TEST_F(ModernFieldsTest, ButtonsSelect) {
  TextEditorUpdate(txt, "one two three");
  PointAt(5);
  Pump();  // entered, the field asks for drags
  player->Press(1);
  PointAt(9);
  player->Release(1);
  Pump();
  EXPECT_EQ(Selected(), "wo t");
  EXPECT_TRUE(player->CanGrabPointer());
  MoveTo(kX + 190, kY + 10);
  player->Click(1);  // far from the next presses
  Pump();
  EXPECT_EQ(Selected(), "");
  PointAt(5);
  player->Click(1);
  player->Click(1);
  Pump();
  EXPECT_EQ(Selected(), "two");
  player->Click(1);
  Pump();
  EXPECT_EQ(Selected(), "one two three");
}

TEST_F(ModernFieldsTest, AFieldThatRecordsKeysTakesNoButtons) {
  txt->recordskeys = 1;
  TextEditorUpdate(txt, "Control-x");
  ClickOn(2);
  EXPECT_EQ(txt->index, 9);
  ClickOn(2, 2);
  EXPECT_EQ(SelectionWindow(), static_cast<Window>(None));
}

TEST_F(ModernFieldsTest, MannersMayChangeWhileItRuns) {
  Enter();
  Type(std::string(50, 'm'));
  EXPECT_GT(txt->first, 0);
  options.temp4 = kPlainManners;
  Type("n");
  EXPECT_EQ(txt->first, 0);
  EXPECT_EQ(txt->len, 51);
  const int before = txt->index;
  ClickOn(2);
  EXPECT_EQ(txt->index, before);
}

TEST_F(ModernFieldsTest, TabLeadsFromFieldToButtonRowByRow) {
  const auto press = [](void*) { presses++; };
  // Made in another order than they lie in the window.
  XButton* right = MakeButton(nullptr, top, "Right", press, 200, 100);
  XButton* left = MakeButton(nullptr, top, "Left", press, 20, 104);
  XButton* dead = MakeButton(nullptr, top, "Dead", press, 110, 100);
  dead->state = kButtonInactive;
  TextEditor* lower = MakeTextEditor(top, kX, 140, kWidth, kEditorHeight);
  XMapWindow(dpy, lower->window);
  Pump();
  Enter();
  const Picture before = Take(left->window, 0, 0, left->width, left->height);
  Type(XK_Tab);
  EXPECT_EQ(Focus(), left->window);
  EXPECT_NE(Take(left->window, 0, 0, left->width, left->height), before);
  EXPECT_EQ(PixelOf(left->window, 4, 4), kDarkGrey);
  Type(XK_Tab);
  EXPECT_EQ(Focus(), right->window);
  EXPECT_EQ(Take(left->window, 0, 0, left->width, left->height), before);
  Type(XK_space);
  EXPECT_EQ(presses, 1);
  Type(XK_Return);
  EXPECT_EQ(presses, 2);
  Type(XK_Tab);
  EXPECT_EQ(Focus(), lower->window);
  Type(XK_Tab);
  EXPECT_EQ(Focus(), txt->window);
  With(XK_Shift_L, XK_Tab);
  EXPECT_EQ(Focus(), lower->window);
  With(XK_Shift_L, XK_Tab);
  EXPECT_EQ(Focus(), right->window);
  // A held key presses a button once.
  XEvent held{};
  held.xkey.type = KeyRelease;
  held.xkey.display = dpy;
  held.xkey.keycode = XKeysymToKeycode(dpy, XK_space);
  held.xkey.time = 5000;
  right->wobj->eh[KeyRelease](right, &held);
  held.type = KeyPress;
  right->wobj->eh[KeyPress](right, &held);
  EXPECT_EQ(presses, 2);
  held.xkey.time = 5100;
  right->wobj->eh[KeyPress](right, &held);
  EXPECT_EQ(presses, 3);
}

TEST_F(ModernFieldsTest, DrawingAndEnteringCostAsMuchAsEver) {
  Enter();
  Type("abc");
  MoveTo(kX + 150, kY + 100);
  Pump();
  EXPECT_EQ(CostOf([&] { DrawTextEditor(txt); }), (Cost{16, 0})) << "frame and caret stay";
  EXPECT_EQ(CostOf([&] { RedrawTextEditorLine(txt); }), (Cost{6, 0}));
  DrawTextEditor(txt);
  EXPECT_EQ(CostOf([&] { TextEditorLeave(txt, nullptr); }), (Cost{0, 0}));
  MoveTo(kX + 150, kY + 10);
  EXPECT_EQ(CostOf([&] { TextEditorEnter(txt, nullptr); }), (Cost{6, 2}))
      << "the caret is solid already";
}

// --- Selections ----------------------------------------------------------------------------------

TEST_F(ModernFieldsTest, WhatIsSelectedIsGivenInEveryForm) {
  Peer peer(server->name());
  TextEditorUpdate(txt, "caf\xc3\xa9 1");
  Enter();
  With(XK_Control_L, XK_a);
  EXPECT_EQ(XGetSelectionOwner(peer.display, XA_PRIMARY), SelectionWindow());
  EXPECT_EQ(Given(&peer, XA_PRIMARY, "UTF8_STRING", "UTF8_STRING"), "caf\xc3\xa9 1");
  EXPECT_EQ(Given(&peer, XA_PRIMARY, "STRING", "STRING"), "caf\xe9 1");
  EXPECT_EQ(Given(&peer, XA_PRIMARY, "TEXT", "STRING"), "caf\xe9 1");
  EXPECT_EQ(Given(&peer, XA_PRIMARY, "TIMESTAMP", "INTEGER").size(), sizeof(long));
  EXPECT_EQ(AskFor(&peer, XA_PRIMARY, "PIXMAP"), static_cast<Atom>(None));
  const std::string targets = Given(&peer, XA_PRIMARY, "TARGETS", "ATOM");
  std::vector<long> atoms(targets.size() / sizeof(long));
  std::memcpy(atoms.data(), targets.data(), targets.size());
  for (const char* name : {"TARGETS", "TIMESTAMP", "MULTIPLE", "UTF8_STRING", "STRING", "TEXT"}) {
    EXPECT_EQ(std::count(atoms.begin(), atoms.end(), static_cast<long>(peer.Name(name))), 1);
  }
  // Two at once, of which there is one.
  const long pairs[] = {static_cast<long>(peer.Name("STRING")), static_cast<long>(peer.Name("A")),
                        static_cast<long>(peer.Name("PIXMAP")), static_cast<long>(peer.Name("B"))};
  peer.Put(peer.window, peer.Name("PEER_TOOK"), peer.Name("ATOM_PAIR"), 32,
           {reinterpret_cast<const char*>(pairs), sizeof pairs});
  const std::string done = Given(&peer, XA_PRIMARY, "MULTIPLE", "ATOM_PAIR");
  ASSERT_EQ(done.size(), sizeof pairs);
  long left[4];
  std::memcpy(left, done.data(), sizeof left);
  EXPECT_EQ(left[1], pairs[1]);
  EXPECT_EQ(left[3], static_cast<long>(None));
  EXPECT_EQ(peer.Property(peer.Name("A")), "caf\xe9 1");
}

TEST_F(ModernFieldsTest, CopiedAndCutTextIsTheClipboardAndPastesBack) {
  Peer peer(server->name());
  const Atom clipboard = peer.Name("CLIPBOARD");
  Enter();
  Type("one");
  With(XK_Control_L, XK_c);
  EXPECT_EQ(XGetSelectionOwner(peer.display, clipboard), static_cast<Window>(None))
      << "nothing was selected";
  With(XK_Control_L, XK_a);
  With(XK_Control_L, XK_x);
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(Given(&peer, clipboard, "UTF8_STRING", "UTF8_STRING"), "one");
  With(XK_Control_L, XK_v);
  With(XK_Control_L, XK_v);
  EXPECT_TRUE(PumpUntil([&] { return Text() == "oneone"; })) << Text();
  peer.Own(clipboard);
  Pump();
  EXPECT_EQ(XGetSelectionOwner(dpy, clipboard), peer.window);
  EXPECT_EQ(Given(&peer, XA_PRIMARY, "STRING", "STRING"), "one") << "PRIMARY is another one";
}

TEST_F(ModernFieldsTest, TheMiddleButtonPastesPrimaryAtThePlace) {
  Peer peer(server->name());
  peer.Own(XA_PRIMARY);
  TextEditorUpdate(txt, "abcd");
  ClickOn(2, 2);
  Answer(&peer, "UTF8_STRING", 8, "\xc3\xa9\n\x01x\n");
  EXPECT_EQ(Text(), "ab\xc3\xa9 xcd");
  // An owner that has STRING only.
  ClickOn(0, 2);
  peer.Notify(AskedOf(&peer), None);
  Answer(&peer, "STRING", 8, "\xe9|");
  EXPECT_EQ(Text(), "\xc3\xa9|ab\xc3\xa9 xcd");
}

TEST_F(ModernFieldsTest, TextIsTakenAsFarAsTheRecordHoldsIt) {
  Peer peer(server->name());
  peer.Own(XA_PRIMARY);
  txt->limit = 6;
  ClickOn(0, 2);
  Answer(&peer, "UTF8_STRING", 8, "abcde\xc3\xa9");
  EXPECT_EQ(Text(), "abcde");
  txt->limit = kEditorBuffer - 1;
  TextEditorUpdate(txt, "");
  ClickOn(0, 2);
  Answer(&peer, "UTF8_STRING", 8, std::string(200000, 'x'));
  EXPECT_EQ(Text(), std::string(127, 'x'));
}

TEST_F(ModernFieldsTest, PiecesAreTakenUntilTheEmptyOne) {
  Peer peer(server->name());
  peer.Own(XA_PRIMARY);
  ClickOn(0, 2);
  const XSelectionRequestEvent ask = AskedOf(&peer);
  XSelectInput(peer.display, ask.requestor, PropertyChangeMask);
  const auto deleted = [&] {
    XEvent event{};
    return PumpUntil([&] {
      while (peer.Take(PropertyNotify, &event)) {
        if (event.xproperty.window == ask.requestor && event.xproperty.state == PropertyDelete &&
            event.xproperty.atom == ask.property) {
          return true;
        }
      }
      return false;
    });
  };
  const long size = 7;
  peer.Put(ask.requestor, ask.property, peer.Name("INCR"), 32,
           {reinterpret_cast<const char*>(&size), sizeof size});
  peer.Notify(ask, ask.property);
  for (const char* piece : {"ab\xc3", "\xa9 c", "d", ""}) {
    ASSERT_TRUE(deleted());
    EXPECT_EQ(Text(), "");
    peer.Put(ask.requestor, ask.property, peer.Name("UTF8_STRING"), 8, piece);
  }
  ASSERT_TRUE(deleted());
  EXPECT_EQ(Text(), "ab\xc3\xa9 cd");
}

TEST_F(ModernFieldsTest, HostileOwnersPasteNothingAndHoldNothingUp) {
  Peer peer(server->name());
  peer.Own(XA_PRIMARY);
  TextEditorUpdate(txt, "ab");
  const auto ask = [&] {
    ClickOn(30, 2);
    return AskedOf(&peer);
  };
  // Another kind of value, of another format.
  const long number = 7;
  const std::string longs(reinterpret_cast<const char*>(&number), sizeof number);
  XSelectionRequestEvent asked = ask();
  peer.Put(asked.requestor, asked.property, peer.Name("UTF8_STRING"), 32, longs);
  peer.Notify(asked, asked.property);
  Answer(&peer, "PIXMAP", 32, longs);  // to the question for STRING
  // A property that it was not told, and one that is not there.
  asked = ask();
  peer.Notify(asked, XA_WM_NAME);
  peer.Notify(asked, asked.property);
  peer.Notify(AskedOf(&peer), None);
  EXPECT_EQ(Text(), "ab");
  // Pieces without end: what was taken at the bound is pasted, as far as there is room.
  asked = ask();
  peer.Put(asked.requestor, asked.property, peer.Name("INCR"), 32, longs);
  peer.Notify(asked, asked.property);
  for (int i = 0; i < 20 && Text() == "ab"; i++) {
    Pump();
    peer.Put(asked.requestor, asked.property, peer.Name("UTF8_STRING"), 8, std::string(999, 'z'));
    XSync(peer.display, False);
    Pump();
  }
  EXPECT_EQ(Text(), "ab" + std::string(125, 'z'));
  // A text that changed meanwhile takes no answer to what was asked before.
  TextEditorUpdate(txt, "cd");
  asked = ask();
  TextEditorUpdate(txt, "ef");
  peer.Put(asked.requestor, asked.property, peer.Name("UTF8_STRING"), 8, "late");
  peer.Notify(asked, asked.property);
  Pump();
  EXPECT_EQ(Text(), "ef");
  // Nor is an answer taken that comes too late; meanwhile the field works.
  asked = ask();
  Type("g");
  EXPECT_EQ(Text(), "efg");
  const auto patience = std::chrono::steady_clock::now() + kSelectionPatience;
  PumpUntil([&] { return std::chrono::steady_clock::now() > patience; });
  peer.Put(asked.requestor, asked.property, peer.Name("UTF8_STRING"), 8, "late");
  peer.Notify(asked, asked.property);
  Pump();
  EXPECT_EQ(Text(), "efg");
}

TEST_F(ModernFieldsTest, WhoAsksMayBeGone) {
  Enter();
  Type("one");
  With(XK_Control_L, XK_a);
  {
    Peer peer(server->name());
    XConvertSelection(peer.display, XA_PRIMARY, XA_STRING, XA_STRING, peer.window, CurrentTime);
    XSync(peer.display, False);
  }
  Pump();
  Peer other(server->name());
  EXPECT_EQ(Given(&other, XA_PRIMARY, "STRING", "STRING"), "one");
}

}  // namespace
}  // namespace gromlit
