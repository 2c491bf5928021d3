// `gromlit -remote WORD`: one program has another one obey.
#include "tests/e2e/front_end.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <signal.h>

#include <cstring>
#include <filesystem>

#include "core/option_files.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::kRight;
using testing::ProbeClient;
using testing::ReadText;
using testing::Title;
using testing::WaitFor;
using testing::XServer;

const char* const kWords = "show hide pause resume toggle status quit";

// A window that owns the selection and answers, or does not, as the test wants: another program.
class FakeOwner {
 public:
  FakeOwner(Display* display, Atom selection) : display_(display) {
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    XSetSelectionOwner(display_, selection, window_, CurrentTime);
    XSync(display_, False);
  }
  ~FakeOwner() { End(); }
  FakeOwner(const FakeOwner&) = delete;
  FakeOwner& operator=(const FakeOwner&) = delete;

  Window window() const { return window_; }
  void End() {
    if (window_ != 0) XDestroyWindow(display_, window_);
    window_ = 0;
    XSync(display_, False);
  }
  // The next call that arrives.
  XClientMessageEvent Call() {
    XEvent event{};
    EXPECT_TRUE(WaitFor(
        [&] { return XCheckTypedWindowEvent(display_, window_, ClientMessage, &event) != 0; }));
    return event.xclient;
  }
  void Answer(XClientMessageEvent answer) {
    XEvent event{};
    event.xclient = answer;
    XSendEvent(display_, window_, False, StructureNotifyMask, &event);
    XSync(display_, False);
  }

 private:
  Display* display_;
  Window window_ = 0;
};

class RemoteTest : public testing::FrontEnd {
 protected:
  void SetUp() override {
    FrontEnd::SetUp();
    WriteOptions();
    player->MoveTo(1270, 1010);
  }

  testing::Conditions Apart(testing::Conditions conditions = {}) const {
    conditions.redirection = ">\"$OUT.remote\" 2>\"$ERR.remote\"";
    return conditions;
  }
  Ending Remote(const std::vector<std::string>& arguments,
                const testing::Conditions& conditions = {}) {
    const auto process = Start(arguments, Apart(conditions));
    const int status = process->Wait(std::chrono::seconds(60));
    return {status, ReadText(OutFile() + ".remote"), ReadText(ErrFile() + ".remote")};
  }
  void ExpectRemote(const std::string& word, int status, const std::string& out = "",
                    const std::string& err = "") {
    SCOPED_TRACE(word);
    const Ending ending = Remote({"-remote", word});
    EXPECT_EQ(ending.status, status);
    EXPECT_EQ(ending.out, out);
    EXPECT_EQ(ending.err, err);
  }
  std::string NoneRuns() const {
    return "gromlit does not run on display '" + server->name() + "'\n";
  }

  Atom Named(const char* name) { return XInternAtom(player->display(), name, False); }
  Atom Selection() { return Named("_GROMLIT_S0"); }
  Window Owner() { return XGetSelectionOwner(player->display(), Selection()); }
  // The program asks for windows before it serves calls, so following the pointer is not enough.
  void LaunchInstalled() {
    ShellRun::LaunchInstalled();
    ASSERT_TRUE(WaitFor([this] { return Owner() != 0; }));
  }
  // Whether somebody wants to be told of the end of the owner's window.
  bool IsWatched(Window owner) {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(player->display(), owner, &attributes) != 0 &&
           (attributes.all_event_masks & StructureNotifyMask) != 0;
  }
  XClientMessageEvent MessageOf(Window window, const char* type, int format, long first) {
    XClientMessageEvent message{};
    message.type = ClientMessage;
    message.window = window;
    message.message_type = Named(type);
    message.format = format;
    message.data.l[0] = first;
    message.data.l[1] = 4711;
    return message;
  }
  void Send(Window to, const XClientMessageEvent& message) {
    XEvent event{};
    event.xclient = message;
    XSendEvent(player->display(), to, False, NoEventMask, &event);
    XSync(player->display(), False);
  }
  // Errors of requests about windows that have gone.
  static int Forget(Display*, XErrorEvent*) { return 0; }
};

TEST_F(RemoteTest, ShowAndHideTheMainWindow) {
  LaunchInstalled();
  const Window main = WaitShown("Application");
  ExpectRemote("hide", 0);
  EXPECT_TRUE(WaitHidden("Application"));
  ExpectRemote("hide", 0);
  ExpectRemote("show", 0);
  EXPECT_EQ(WaitShown("Application"), main);
  // Above what lies over it.
  const ProbeClient probe(install->path(), {"--geometry", "900x700+0+0"});
  player->MoveTo(50, 50);
  EXPECT_EQ(UnderPointer(), probe.window());
  ExpectRemote("show", 0);
  EXPECT_TRUE(WaitFor([&] { return testing::IsInside(player->display(), UnderPointer(), main); }));
}

TEST_F(RemoteTest, PauseLeavesThePressesToTheApplicationsAndStatusTellsOfIt) {
  DesktopTouches("acted");
  ProbeClient probe(install->path(), {"--geometry", "300x200+900+300"});
  LaunchInstalled();
  const auto drag_over_probe = [&] {
    Drag({{950, 350}, {1100, 350}});
    return probe.Wait(1, "ButtonRelease");
  };
  ExpectRemote("status", 0, "running\n");
  for (const char* word : {"pause", "pause", "toggle"}) {
    if (std::string(word) == "toggle") ExpectRemote("resume", 0);
    ExpectRemote(word, 0);
    ExpectRemote("status", 0, "paused\n");
  }
  drag_over_probe();
  const auto lines = probe.Lines("Button");
  ASSERT_EQ(lines.size(), 2u);
  for (const std::string& line : lines) EXPECT_NE(line.find("send_event=0"), std::string::npos);
  for (const char* word : {"toggle", "resume", "resume"}) {
    ExpectRemote(word, 0);
    ExpectRemote("status", 0, "running\n");
  }
  EXPECT_TRUE(DesktopActs("acted"));
  EXPECT_EQ(probe.Lines("Button").size(), 2u);
  EXPECT_EQ(Out() + Err(), "");
}

TEST_F(RemoteTest, StrokeThatIsBeingDrawnWhenThePauseComesIsFinished) {
  DesktopTouches("acted");
  ProbeClient probe(install->path(), {"--geometry", "300x200+900+300"});
  LaunchInstalled();
  Go({800, 900});
  player->Press(3);
  Trace({{800, 900}, {900, 900}});
  ASSERT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); }));
  const auto pause = Start({"-remote", "pause"}, Apart());
  ASSERT_TRUE(WaitFor([this] { return IsWatched(Owner()); }));
  Trace({{900, 900}, {1100, 900}});
  player->Release(3);
  EXPECT_TRUE(Appears("acted"));
  EXPECT_EQ(pause->Wait(), 0);
  EXPECT_TRUE(TrailIsGone());
  Go({950, 350});
  player->Click(3);
  EXPECT_NE(probe.Wait(1, "ButtonPress").at(0).find("send_event=0"), std::string::npos);
}

TEST_F(RemoteTest, QuitEndsTheProgramAsItsExitDoes) {
  const ProbeClient probe(install->path(), {"--geometry", "300x150+950+700"});
  LaunchInstalled();
  XSetInputFocus(player->display(), probe.window(), RevertToPointerRoot, CurrentTime);
  // A field has the keyboard, and an editor holds what was not saved.
  Choose(Title::kAction, testing::kActionNew);
  const Window editor = WaitShown("ActionEditor");
  XMoveWindow(player->display(), editor, 650, 100);
  ASSERT_TRUE(WaitFor([&] { return OriginOf(editor).x >= 650; }));
  Enter(TabField(editor));
  ExpectRemote("quit", 0);
  EXPECT_EQ(gromlit->Wait(), 0);
  Window focus = 0;
  int revert;
  XGetInputFocus(player->display(), &focus, &revert);
  EXPECT_EQ(focus, probe.window());
  EXPECT_EQ(Out() + Err(), "");
  ExpectRemote("quit", 1, "", NoneRuns());
}

TEST_F(RemoteTest, WhereNoProgramRunsThatIsSaid) {
  for (const char* word : {"show", "hide", "pause", "resume", "toggle", "status", "quit"}) {
    ExpectRemote(word, 1, "", NoneRuns());
  }
}

TEST_F(RemoteTest, WordsAndDisplaysThatAreNotThereAreTold) {
  const std::string unknown = std::string("' after -remote; there are: ") + kWords + "\n";
  for (const char* word : {"", "Show", "shows", "-help", "-display", "--remote"}) {
    ExpectRemote(word, 2, "", "unknown word '" + (word + unknown));
  }
  ExpectRemote("\x1b[2J", 2, "", "unknown word '\\x1b[2J" + unknown);
  const std::string missing = std::string("-remote needs a word: ") + kWords + "\n";
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-remote"}, {"-path", "/nowhere", "-remote"}}) {
    const Ending ending = Remote(arguments);
    EXPECT_EQ(ending.status, 2);
    EXPECT_EQ(ending.err, missing);
  }
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-remote", "status", "-display", ":9999"},
        {"-display", ":9999", "-remote", "status"}}) {
    const Ending ending = Remote(arguments);
    EXPECT_EQ(ending.status, 2);
    EXPECT_EQ(ending.err, "unable to open display ':9999'\n");
  }
  EXPECT_EQ(Remote({"-remote", "status"}, {.before = "unset DISPLAY;"}).status, 2);
}

TEST_F(RemoteTest, WordCountsAsAWholeAndNotAsTheValueOfAnOption) {
  for (const char* word : {"-remotely", "-remot", "-r"}) {
    const Ending ending = Remote({word, "status"});
    EXPECT_EQ(ending.status, 1);
    EXPECT_TRUE(ending.err.starts_with("usage:")) << ending.err;
  }
  EXPECT_TRUE(Remote({"-remote", "status", "word"}).err.starts_with("usage:"));
  const Ending value = Remote({"-display", "-remote"});
  EXPECT_EQ(value.status, 1);
  EXPECT_EQ(value.err, "unable to open display '-remote'\n");
  const Ending help = Remote({"-help"});
  EXPECT_NE(help.out.find("-remote word"), std::string::npos);
  EXPECT_NE(help.out.find(kWords), std::string::npos);
}

TEST_F(RemoteTest, CallerNeedsNoDirectoryAndMakesNoWindow) {
  LaunchInstalled();
  const std::string empty = *install / "empty";
  fs::create_directory(empty);
  const testing::Conditions bare{.before = "unset GROMLIT;", .directory = empty};
  // The program listens to the root window's children; who else makes one, is told here.
  XSelectInput(player->display(), player->root(), SubstructureNotifyMask);
  XSync(player->display(), False);
  EXPECT_EQ(Remote({"-remote", "status"}, bare).out, "running\n");
  EXPECT_EQ(Remote({"-remote", "pause", "-path", "/nonexistent"}, bare).status, 0);
  XSync(player->display(), False);
  XEvent event;
  EXPECT_FALSE(XCheckTypedEvent(player->display(), CreateNotify, &event));
  XSelectInput(player->display(), player->root(), NoEventMask);
  EXPECT_TRUE(NamesIn(empty).empty());
  // An output that is closed is no place for the requests to the server.
  for (const char* closed : {">&- 2>\"$ERR.remote\"", ">&- 2>&-", "<&- >&- 2>&-"}) {
    const auto caller = Start({"-remote", "status"}, {.redirection = closed});
    EXPECT_EQ(caller->Wait(), 0) << closed;
  }
  const auto caller = Start({"-remote", "status"}, {.redirection = ">/dev/full 2>\"$ERR.remote\""});
  EXPECT_EQ(caller->Wait(), 1);
  EXPECT_EQ(ReadText(ErrFile() + ".remote"),
            "the answer was not printed: No space left on device\n");
}

TEST_F(RemoteTest, ProgramThatHangsIsNotWaitedForForEver) {
  LaunchInstalled();
  gromlit->Kill(SIGSTOP);
  ExpectRemote("pause", 1, "",
               "gromlit runs, but does not answer, on display '" + server->name() + "'\n");
  gromlit->Kill(SIGCONT);
  // Nobody can take back what is on its way.
  ExpectRemote("status", 0, "paused\n");
}

TEST_F(RemoteTest, CallerTakesNoAnswerButItsOwn) {
  FakeOwner owner(player->display(), Selection());
  const auto caller = Start({"-remote", "status"}, Apart());
  const XClientMessageEvent call = owner.Call();
  EXPECT_EQ(call.format, 32);
  EXPECT_EQ(call.message_type, Named("_GROMLIT_REMOTE"));
  EXPECT_EQ(call.data.l[0], 5);
  XClientMessageEvent right = MessageOf(owner.window(), "_GROMLIT_REMOTE", 32, call.data.l[1]);
  right.data.l[1] = 1;
  XClientMessageEvent wrong = right;
  wrong.data.l[1] = 0;
  std::vector<XClientMessageEvent> others(5, wrong);
  others[0].data.l[0]++;
  others[1].format = 8;
  others[2].message_type = Named("_GROMLIT_OTHER");
  others[3].window = player->root();
  others[4].data.l[1] = 2;
  for (const XClientMessageEvent& other : others) owner.Answer(other);
  XEvent ended{};
  ended.xdestroywindow.type = DestroyNotify;
  ended.xdestroywindow.event = owner.window();
  ended.xdestroywindow.window = owner.window();
  XSendEvent(player->display(), owner.window(), False, StructureNotifyMask, &ended);
  owner.Answer(right);
  EXPECT_EQ(caller->Wait(), 0);
  EXPECT_EQ(ReadText(OutFile() + ".remote"), "paused\n");

  // A program that ends instead of an answer.
  const auto late = Start({"-remote", "show"}, Apart());
  owner.Call();
  owner.End();
  EXPECT_EQ(late->Wait(), 1);
  EXPECT_EQ(ReadText(ErrFile() + ".remote"),
            "gromlit has just ended on display '" + server->name() + "'\n");
}

TEST_F(RemoteTest, MessagesThatAreNoCallChangeNothing) {
  DesktopTouches("acted");
  LaunchInstalled();
  const Window owner = Owner();
  ASSERT_NE(owner, Window{0});
  XSelectInput(player->display(), owner, StructureNotifyMask);
  constexpr long kQuit = 6;
  for (const long word : {-1L, 7L, 0x7FFFFFFFL, -0x80000000L, 0x100L + kQuit})
    Send(owner, MessageOf(owner, "_GROMLIT_REMOTE", 32, word));
  for (const int format : {8, 16}) Send(owner, MessageOf(owner, "_GROMLIT_REMOTE", format, kQuit));
  for (const char* type : {"_GROMLIT_OTHER", "WM_PROTOCOLS", "_GROMLIT_S0"})
    Send(owner, MessageOf(owner, type, 32, kQuit));
  // A call that is sent to another window of the program, or names one.
  const Window main = WaitShown("Application");
  Send(main, MessageOf(main, "_GROMLIT_REMOTE", 32, kQuit));
  Send(owner, MessageOf(main, "_GROMLIT_REMOTE", 32, kQuit));
  // The selection is lost by the server's word alone.
  XEvent clear{};
  clear.xselectionclear.type = SelectionClear;
  clear.xselectionclear.window = owner;
  clear.xselectionclear.selection = Selection();
  XSendEvent(player->display(), owner, False, NoEventMask, &clear);
  XSync(player->display(), False);
  ExpectRemote("status", 0, "running\n");
  EXPECT_EQ(Owner(), owner);
  EXPECT_TRUE(Viewable(main));
  XEvent answer{};
  ASSERT_TRUE(XCheckTypedWindowEvent(player->display(), owner, ClientMessage, &answer));
  EXPECT_NE(answer.xclient.data.l[0], 4711) << "no call, but answered";
  EXPECT_TRUE(DesktopActs("acted"));
}

TEST_F(RemoteTest, SelectionIsAManagersAndTellsItsTimeOnly) {
  Display* display = player->display();
  XSelectInput(display, player->root(), StructureNotifyMask);
  LaunchInstalled();
  const Window owner = Owner();
  XEvent event{};
  ASSERT_TRUE(WaitFor(
      [&] { return XCheckTypedWindowEvent(display, player->root(), ClientMessage, &event) != 0; }));
  EXPECT_EQ(event.xclient.message_type, Named("MANAGER"));
  EXPECT_EQ(event.xclient.data.l[1], static_cast<long>(Selection()));
  EXPECT_EQ(event.xclient.data.l[2], static_cast<long>(owner));
  const long since = event.xclient.data.l[0];
  EXPECT_NE(since, CurrentTime);

  const Window asking = XCreateSimpleWindow(display, player->root(), 0, 0, 1, 1, 0, 0, 0);
  const auto ask = [&](const char* target) {
    XConvertSelection(display, Selection(), Named(target), Named("ANSWER"), asking, CurrentTime);
    XSync(display, False);
    XEvent answer{};
    EXPECT_TRUE(WaitFor(
        [&] { return XCheckTypedWindowEvent(display, asking, SelectionNotify, &answer) != 0; }));
    std::vector<unsigned long> numbers;
    if (answer.xselection.property == 0) return numbers;
    Atom type;
    int format;
    unsigned long count;
    unsigned long left;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, asking, answer.xselection.property, 0, 16, True, AnyPropertyType,
                       &type, &format, &count, &left, &data);
    if (data == nullptr) return numbers;
    const auto* values = reinterpret_cast<const unsigned long*>(data);
    numbers.assign(values, values + count);
    XFree(data);
    return numbers;
  };
  EXPECT_EQ(ask("TIMESTAMP"), (std::vector<unsigned long>{static_cast<unsigned long>(since)}));
  EXPECT_EQ(ask("TARGETS"), (std::vector<unsigned long>{Named("TARGETS"), Named("TIMESTAMP")}));
  EXPECT_TRUE(ask("STRING").empty());
}

TEST_F(RemoteTest, SelectionThatIsTakenAwayComesBack) {
  LaunchInstalled();
  const Window first = Owner();
  {
    const FakeOwner other(player->display(), Selection());
    EXPECT_TRUE(WaitFor([&] { return IsWatched(other.window()); }));
    XErrorHandler former = XSetErrorHandler(Forget);
    XWindowAttributes attributes{};
    EXPECT_EQ(XGetWindowAttributes(player->display(), first, &attributes), 0)
        << "whoever waits for the first owner waits for its window's end";
    XSetErrorHandler(former);
  }
  EXPECT_TRUE(WaitFor([&] { return Owner() != 0; }));
  EXPECT_NE(Owner(), first);
  ExpectRemote("pause", 0);
  ExpectRemote("status", 0, "paused\n");
  ExpectRemote("quit", 0);
}

TEST_F(RemoteTest, WindowThatGetsTheNumberOfTheOneThatEndedIsNotTakenForTheProgramsOwn) {
  LaunchInstalled();
  HideMainWindow();
  const auto connect = [this] {
    return std::unique_ptr<Display, int (*)(Display*)>(XOpenDisplay(server->name().c_str()),
                                                       XCloseDisplay);
  };
  auto former = connect();
  auto other = std::make_unique<FakeOwner>(former.get(), Selection());
  const Window number = other->window();
  ASSERT_TRUE(WaitFor([&] { return IsWatched(number); }));
  other.reset();
  former.reset();
  ASSERT_TRUE(WaitFor([&] { return Owner() != 0; }));
  // The server gives a new client the numbers of the one that went.
  const auto late = connect();
  const Window window =
      XCreateSimpleWindow(late.get(), player->root(), 600, 300, 400, 300, 0, 0, 0);
  ASSERT_EQ(window, number);
  testing::SetClass(late.get(), window, "Late", "late");
  XMapWindow(late.get(), window);
  XSync(late.get(), False);
  Draw({{650, 400}, {900, 400}});
  EXPECT_NE(WaitDialog(), Window{0}) << "an application without a plug-in is offered one";
}

TEST_F(RemoteTest, OfTwoProgramsTheFirstIsFoundAndTheOtherTakesOver) {
  LaunchInstalled();
  const Window first = Owner();
  // The second one has another draw button, or it would end.
  WriteOptions(2);
  const auto second = Start({"-path", install->path()}, {.redirection = ">/dev/null 2>&1"});
  ASSERT_TRUE(WaitFor([&] { return IsWatched(first); }, std::chrono::seconds(30)));
  EXPECT_EQ(Owner(), first);
  ExpectRemote("pause", 0);
  ExpectRemote("quit", 0);
  EXPECT_EQ(gromlit->Wait(), 0);
  EXPECT_TRUE(WaitFor([&] { return Owner() != 0; }));
  EXPECT_TRUE(second->Running());
  ExpectRemote("status", 0, "running\n");
  ExpectRemote("quit", 0);
  EXPECT_EQ(second->Wait(), 0);
  ExpectRemote("status", 1, "", NoneRuns());
}

TEST_F(RemoteTest, EachScreenHasAProgramOfItsOwn) {
  const XServer two("1280x1024x24", {"-screen", "1", "1280x1024x24"});
  const std::string other = two.name() + ".1";
  gromlit = Start({"-path", install->path(), "-display", other});
  const auto status = [&](const std::string& display) {
    return Remote({"-remote", "status", "-display", display});
  };
  EXPECT_TRUE(WaitFor([&] { return status(other).out == "running\n"; }, std::chrono::seconds(30)));
  EXPECT_EQ(status(two.name()).status, 1);
  EXPECT_EQ(Remote({"-display", other, "-remote", "quit"}).status, 0);
  EXPECT_EQ(gromlit->Wait(), 0);
}

}  // namespace
}  // namespace gromlit
