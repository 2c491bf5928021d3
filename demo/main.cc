// Gromlit's main job, shown on a virtual display: the main window follows the pointer, strokes are
// drawn over other clients' windows, and what came of it is looked at from outside.
//
//   gromlit-demo BUILD SOURCE OUT [FILM]
//
// BUILD holds the programs and the starter library, SOURCE the demo's own files; pictures go to
// OUT, and to FILM, a directory that exists, the frames of the stroke over the text editor. One
// line per move and per stroke. Status 0 when all was seen that should be, 1 when something was
// not, 2 when the stage could not be set.
#include <X11/keysym.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>

#include "demo/desk.h"
#include "demo/shown_plugin.h"
#include "tests/support/clients.h"
#include "tests/support/files.h"

namespace gromlit::demo {
namespace {

namespace fs = std::filesystem;
using testing::FindClient;
using testing::Player;
using testing::Process;
using testing::ReadText;
using testing::WaitFor;
using testing::XServer;

// Nothing is there but the root window.
constexpr Area kBareDesktop{1110, 400, 150, 200};

[[noreturn]] void GiveUp(const std::string& why) {
  std::fprintf(stderr, "gromlit-demo: %s\n", why.c_str());
  std::exit(2);
}

int RunTool(const std::vector<std::string>& words, const std::string& output) {
  Process tool(words, output);
  return tool.Wait();
}

// The starter library, with the demo's plug-ins and options in the place of its own.
void MakeInstallation(const std::string& build, const std::string& source,
                      const std::string& install) {
  const std::string skeleton = build + "/share/gromlit";
  if (!fs::is_directory(skeleton)) GiveUp("no starter library in " + skeleton);
  fs::copy(skeleton, install, fs::copy_options::recursive);
  const std::string tool = build + "/gromlit-tool";
  const std::string messages = install + "/messages";
  const auto pack = [&](const std::string& json, const std::string& file) {
    if (RunTool({tool, "pack", json, "-o", file}, messages) != 0) {
      GiveUp("cannot pack " + json + ": " + ReadText(messages));
    }
  };
  for (const auto& json : fs::directory_iterator(source + "/plugins")) {
    pack(json.path().string(), install + "/plugins/" + json.path().stem().string() + ".sla");
  }
  pack(source + "/options.json", install + "/options/default.user");
  fs::copy(source + "/record", install + "/record");
  testing::WriteText(install + "/letter.txt", "From a file, letter by letter.");
  // Two plug-ins of one class, or an action that can never run, would make the demo tell a story
  // other than the one in its files.
  if (RunTool({tool, "check", install}, messages) != 0) {
    GiveUp("the installation directory is not sound: " + ReadText(messages));
  }
}

// What an action should do, and how to see whether it did.
struct Expectation {
  std::string expected;
  // True when it happened; writes what is seen now into *seen either way.
  std::function<bool(std::string* seen)> look;
};

Point Between(const Point& a, const Point& b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

Expectation FileHolds(const std::string& path, const std::string& text, const std::string& what) {
  return {what + " holds \"" + text + "\"", [path, text](std::string* seen) {
            std::string now = testing::Exists(path) ? ReadText(path) : "";
            while (!now.empty() && now.back() == '\n') now.pop_back();
            *seen = testing::Exists(path) ? "\"" + now + "\"" : "no such file";
            return now == text;
          }};
}

class Demo {
 public:
  Demo(std::string build, std::string source, std::string out, std::string film)
      : build_(std::move(build)),
        source_(std::move(source)),
        out_(std::move(out)),
        film_(std::move(film)) {}

  int Run();

 private:
  void SetTheStage();
  void StartClients();
  void CheckKeys();
  Display* display() { return player_->display(); }

  // Draws through the points with the right button, and judges the outcome.
  void Stroke(const std::string& what, const std::vector<Point>& corners,
              const Expectation& expectation, bool picture = false);
  bool TrailIsMapped();
  void LookAtTheTrail(const Point& drawn, unsigned long before);
  void Judge(const std::string& what, const Expectation& expectation);
  Expectation ProbeGets(const std::vector<std::string>& lines, const std::string& what);
  const std::vector<Icon>& IconsOf(const std::string& plugin);
  Expectation MainWindowShows(const std::string& plugin);
  void HideMainWindow();
  // Draws through the points, with frames for the film on the way.
  void Draw(const std::vector<Point>& corners);
  void Frame();
  void Picture(const std::string& name) { testing::SaveScreen(display(), out_ + "/" + name); }

  void FollowThePointer();
  void EditorStrokes();
  void ProbeStrokes();
  void TerminalStrokes();
  void DesktopStrokes();
  void StrangerStrokes();

  std::string build_;
  std::string source_;
  std::string out_;
  std::string film_;  // "": none is made
  int frames_ = 0;
  testing::TempDir scratch_;
  std::unique_ptr<XServer> server_;
  std::unique_ptr<Player> player_;
  std::unique_ptr<Process> manager_;
  std::vector<std::unique_ptr<Process>> clients_;
  Window gromlit_ = None;
  Window editor_ = None;
  Window probe_ = None;
  Window terminal_ = None;
  Window stranger_ = None;
  size_t probe_read_ = 0;  // bytes of the probe's lines that earlier strokes account for
  std::map<std::string, std::vector<Icon>> icons_;  // by the plug-in's file name
  std::map<std::string, std::string> captions_;     // seen while the plug-in was shown
  int checks_ = 0;
  int failures_ = 0;
};

// The demo's plug-ins name keys by their codes.
void Demo::CheckKeys() {
  const std::pair<KeySym, int> codes[] = {{XK_s, 39}, {XK_a, 38}, {XK_f, 41}, {XK_Return, 36}};
  for (const auto& [keysym, code] : codes) {
    if (XKeysymToKeycode(display(), keysym) != code) GiveUp("the server has another keyboard map");
  }
}

void Demo::StartClients() {
  const std::string home = scratch_ / "home";
  std::vector<std::string> environment = testing::MakeHome(home);
  environment.emplace_back("PS1=$ ");
  // Windows that come before the window manager would be placed twice.
  manager_ = testing::StartManager(display(), "twm", scratch_.path(), "", environment);
  if (manager_ == nullptr) GiveUp("no window manager: " + ReadText(scratch_ / "manager.log"));
  const auto start = [&](const std::vector<std::string>& words, const std::string& directory) {
    clients_.push_back(
        std::make_unique<Process>(words, scratch_ / "messages", environment, directory));
  };
  testing::WriteText(scratch_ / "note.txt", "");
  start({"nedit", scratch_ / "note.txt"}, home);
  start({"xterm", "-xrm", "XTerm*allowSendEvents: true", "-geometry", "76x18+20+560", "-e", "sh"},
        home);
  start({build_ + "/tests/probe", "--class", "Probe", "probe", "--title", "Probe", "--geometry",
         "560x260+680+40", "--output", scratch_ / "probe.events"},
        home);
  start({build_ + "/tests/probe", "--class", "Stranger", "stranger", "--title",
         "An application without a plug-in", "--geometry", "380x220+680+360", "--output",
         scratch_ / "stranger.events"},
        home);
  start({build_ + "/gromlit", "-path", scratch_ / "gromlit"}, scratch_ / "gromlit");
}

void Demo::SetTheStage() {
  fs::create_directories(out_);
  MakeInstallation(build_, source_, scratch_ / "gromlit");
  server_ = std::make_unique<XServer>();
  player_ = std::make_unique<Player>(server_->name());
  CheckKeys();
  // Something other than black, so that the pictures show where the desktop is.
  XSetWindowBackground(display(), player_->root(), 0x39506b);
  XClearWindow(display(), player_->root());
  StartClients();
  const auto find = [&](const std::string& classtext) {
    const Window window = WaitForClient(display(), classtext);
    if (window == None)
      GiveUp("no window of " + classtext + " appeared: " + ReadText(scratch_ / "messages"));
    return window;
  };
  editor_ = find("NEdit.textShell");
  terminal_ = find("XTerm.xterm");
  probe_ = find("Probe.probe");
  stranger_ = find("Stranger.stranger");
  gromlit_ = find("Gromlit.Application");
  Place(display(), editor_, {20, 40, 620, 440});
  Area own = AreaOf(display(), gromlit_);
  own.x = 600;
  own.y = 650;
  Place(display(), gromlit_, own);
}

// Whether one of the program's trail windows is on the screen: a big window without a frame of the
// client that owns the main window. It is taken away when the action is through.
bool Demo::TrailIsMapped() {
  // The server hands each client the resource numbers that share their upper bits.
  constexpr int kClientShift = 21;
  const std::vector<Window> windows = testing::ChildrenOf(display(), player_->root());
  return std::any_of(windows.begin(), windows.end(), [this](Window window) {
    XWindowAttributes attributes{};
    return window >> kClientShift == gromlit_ >> kClientShift &&
           XGetWindowAttributes(display(), window, &attributes) != 0 &&
           attributes.override_redirect != False && attributes.map_state == IsViewable &&
           attributes.width >= 500 && attributes.height >= 500;
  });
}

void Demo::Judge(const std::string& what, const Expectation& expectation) {
  checks_++;
  std::string seen;
  const bool good =
      WaitFor([&] { return expectation.look(&seen); }) && WaitFor([&] { return !TrailIsMapped(); });
  if (!good) {
    failures_++;
    // What came instead is no part of what the next stroke gives.
    probe_read_ = ReadText(scratch_ / "probe.events").size();
  }
  std::printf("%-6s %2d  %s: expected %s; saw %s\n", good ? "ok" : "FAILED", checks_, what.c_str(),
              expectation.expected.c_str(), seen.c_str());
  std::fflush(stdout);
}

void Demo::Frame() {
  if (film_.empty()) return;
  constexpr int kFrame = 24;  // of the window manager, around the editor
  const Area area = AreaOf(display(), editor_);
  char name[32];
  std::snprintf(name, sizeof name, "/%03d.png", frames_++);
  testing::WriteText(film_ + name,
                     testing::PngOf(testing::TakeScreen(
                         display(), std::max(area.x - kFrame / 4, 0), std::max(area.y - kFrame, 0),
                         area.width + kFrame / 2, area.height + kFrame + kFrame / 4)));
}

void Demo::Draw(const std::vector<Point>& corners) {
  if (film_.empty()) return Trace(*player_, corners);
  constexpr int kPieces = 5;  // of a leg
  for (size_t i = 1; i < corners.size(); i++) {
    Point from = corners[i - 1];
    const Point to = corners[i];
    for (int left = kPieces; left > 0; left--) {
      const Point next{from.x + (to.x - from.x) / left, from.y + (to.y - from.y) / left};
      Trace(*player_, {from, next});
      XSync(display(), False);
      Frame();
      from = next;
    }
  }
}

void Demo::Stroke(const std::string& what, const std::vector<Point>& corners,
                  const Expectation& expectation, bool picture) {
  const Point first = corners.front();
  player_->MoveTo(first.x, first.y);
  if (!picture) {
    player_->Press(3);
    Trace(*player_, corners);
  } else {
    // The last leg in two halves, with a look at the screen between them.
    const Point from = corners[corners.size() - 2];
    const Point halfway = Between(from, corners.back());
    std::vector<Point> drawn(corners.begin(), corners.end() - 1);
    drawn.push_back(halfway);
    const Point sample = Between(from, halfway);
    const unsigned long before = player_->Pixel(sample.x, sample.y);
    Frame();
    player_->Press(3);
    Draw(drawn);
    LookAtTheTrail(sample, before);
    Draw({halfway, corners.back()});
  }
  player_->Release(3);
  Judge(what, expectation);
  if (picture) Frame();
}

// Whether a point that was drawn over does not look as it did before.
void Demo::LookAtTheTrail(const Point& drawn, unsigned long before) {
  const bool there = WaitFor([&] { return player_->Pixel(drawn.x, drawn.y) != before; });
  if (!there) failures_++;
  std::printf("%-6s     in the middle of the stroke that follows: expected a trail; saw %s\n",
              there ? "ok" : "FAILED", there ? "one (trail.png)" : "none");
  Picture("trail.png");
}

// The probe's lines since the last stroke, without what the window manager makes it see.
Expectation Demo::ProbeGets(const std::vector<std::string>& lines, const std::string& what) {
  return {what, [this, lines](std::string* seen) {
            const std::string all = ReadText(scratch_ / "probe.events");
            std::vector<std::string> got;
            size_t at = probe_read_;
            for (size_t end; (end = all.find('\n', at)) != std::string::npos; at = end + 1) {
              const std::string line = all.substr(at, end - at);
              if (line.starts_with("Key") || line.starts_with("Button")) got.push_back(line);
            }
            *seen = got.empty() ? "nothing" : "";
            for (const std::string& line : got) *seen += (seen->empty() ? "" : " | ") + line;
            if (got != lines) return false;
            probe_read_ = at;
            return true;
          }};
}

const std::vector<Icon>& Demo::IconsOf(const std::string& plugin) {
  const auto known = icons_.find(plugin);
  if (known != icons_.end()) return known->second;
  const std::string output = scratch_ / "shown-" + plugin;
  const std::string file = scratch_ / "gromlit/plugins/" + plugin + ".sla";
  if (RunTool({build_ + "/gromlit-tool", "show", file}, output) != 0) GiveUp(ReadText(output));
  return icons_[plugin] = IconsOfActions(ReadText(output));
}

// That the main window shows the icons of this plug-in's actions and no others, below a caption
// that no other plug-in had, and that is the same every time.
Expectation Demo::MainWindowShows(const std::string& plugin) {
  const std::vector<Icon>& icons = IconsOf(plugin);
  const auto number = [](size_t count) {
    return std::to_string(count) + (count == 1 ? " action" : " actions");
  };
  const auto known = captions_.find(plugin);
  const std::string caption = known != captions_.end() ? known->second : "";
  const std::string wanted = caption.empty() ? "a caption of its own" : "its caption as before";
  return {"plug-in " + plugin + " in the main window, with the icons of its " +
              number(icons.size()) + " and " + wanted,
          [=, this, &icons, before = std::string()](std::string* seen) mutable {
            const ShownPlugin shown = LookAtMainWindow(display(), gromlit_);
            *seen = number(shown.icons.size());
            *seen += shown.icons == icons ? ", its icons" : ", not its icons";
            bool right = !shown.caption.empty() && (caption.empty() || shown.caption == caption);
            for (const auto& [other, others] : captions_)
              right = right && (other == plugin || others != shown.caption);
            *seen += right ? ", " + wanted : ", another caption";
            // Two looks in a row: the first may have come in the middle of the drawing.
            const bool still = shown.caption == before;
            before = shown.caption;
            if (!still || !right || shown.icons != icons || !shown.menus) return false;
            captions_[plugin] = shown.caption;
            return true;
          }};
}

void Demo::FollowThePointer() {
  const auto enter = [this](Window window) {
    const Point at = AreaOf(display(), window).At(0.5, 0.7);
    player_->MoveTo(at.x, at.y);
  };
  // The main window is on the screen a moment before it follows: until then nothing is judged.
  const Expectation ready = MainWindowShows("NEdit.textShell");
  WaitFor(
      [&] {
        enter(terminal_);
        enter(editor_);
        std::string ignored;
        return WaitFor([&] { return ready.look(&ignored); }, std::chrono::seconds(1));
      },
      std::chrono::seconds(30));

  enter(terminal_);
  Judge("the pointer goes into xterm", MainWindowShows("XTerm.xterm"));
  enter(probe_);
  Judge("the pointer goes into the probe", MainWindowShows("Probe.probe"));
  Picture("follows.png");
  player_->MoveTo(kBareDesktop.x, kBareDesktop.y);
  Judge("the pointer goes onto the desktop", MainWindowShows("Desktop"));
  enter(stranger_);
  Judge("the pointer goes into an application without a plug-in", MainWindowShows("Default"));
  enter(editor_);
  Judge("the pointer goes into NEdit", MainWindowShows("NEdit.textShell"));
  enter(terminal_);
  Judge("the pointer comes back to xterm", MainWindowShows("XTerm.xterm"));
}

void Demo::EditorStrokes() {
  if (!TakeFocus(*player_, editor_)) GiveUp("the editor does not take the focus");
  const Area area = AreaOf(display(), editor_);
  Stroke("an L over NEdit (types, then Control-s)",
         {area.At(0.3, 0.35), area.At(0.3, 0.8), area.At(0.7, 0.8)},
         FileHolds(scratch_ / "note.txt", "Drawn, not typed.", "the editor's file"), true);
  Picture("editor.png");
  Stroke("a line to the right over NEdit (types a file's text, then Control-s)",
         {area.At(0.3, 0.6), area.At(0.7, 0.6)},
         FileHolds(scratch_ / "note.txt", "From a file, letter by letter.", "the editor's file"));
}

void Demo::ProbeStrokes() {
  if (!TakeFocus(*player_, probe_)) GiveUp("the probe does not take the focus");
  // The click for the focus is no stroke's doing.
  const std::string events = scratch_ / "probe.events";
  WaitFor([&] { return ReadText(events).find("ButtonRelease") != std::string::npos; });
  probe_read_ = ReadText(events).size();
  const Area area = AreaOf(display(), probe_);
  const auto where = [&](const Point& at) {
    const auto number = [](int value) { return std::to_string(value); };
    return " x=" + number(at.x - area.x) + " y=" + number(at.y - area.y) +
           " x_root=" + number(at.x) + " y_root=" + number(at.y) + " send_event=1";
  };

  Point start = area.At(0.2, 0.5);
  Stroke("a line to the right over the probe (hot key)", {start, area.At(0.8, 0.5)},
         ProbeGets({"KeyPress window=main keycode=38 state=5" + where(start),
                    "KeyRelease window=main keycode=38 state=5" + where(start)},
                   "Control-Shift-a, pressed and released"));
  start = area.At(0.5, 0.15);
  Stroke("a line down over the probe (menu letter)", {start, area.At(0.5, 0.9)},
         ProbeGets({"KeyPress window=main keycode=41 state=8" + where(start),
                    "KeyRelease window=main keycode=41 state=8" + where(start)},
                   "Alt-f, pressed and released"));
  start = area.At(0.4, 0.4);
  Stroke("no stroke, a click of the draw button over the probe", {start},
         ProbeGets({"ButtonPress window=main button=3 state=0" + where(start),
                    "ButtonRelease window=main button=3 state=0" + where(start)},
                   "the click handed on, once"));
  const std::string made = scratch_ / "gromlit/made-by-a-gesture";
  Stroke("a hook over the probe (runs touch)",
         {area.At(0.3, 0.2), area.At(0.7, 0.2), area.At(0.7, 0.8)},
         {"a file made-by-a-gesture", [made](std::string* seen) {
            *seen = testing::Exists(made) ? "it" : "no such file";
            return testing::Exists(made);
          }});
}

void Demo::TerminalStrokes() {
  if (!TakeFocus(*player_, terminal_)) GiveUp("the terminal does not take the focus");
  const Area area = AreaOf(display(), terminal_);
  std::printf(
      "          (this xterm was started with allowSendEvents; without it, it ignores keys"
      " that another program sends)\n");
  Stroke("an L over xterm (types a command, then Return)",
         {area.At(0.3, 0.3), area.At(0.3, 0.8), area.At(0.6, 0.8)},
         FileHolds(scratch_ / "home/typed-in-xterm", "typed by a gesture",
                   "the file that the shell wrote"));
}

void Demo::DesktopStrokes() {
  const Area& bare = kBareDesktop;
  Stroke("a line to the right over the desktop (opens a page)",
         {bare.At(0.1, 0.3), bare.At(0.9, 0.3)},
         {"the browser asked for the redirection to www.example.org",
          [path = scratch_ / "gromlit/opened"](std::string* seen) {
            *seen = testing::Exists(path) ? ReadText(path) : "no browser";
            while (!seen->empty() && seen->back() == '\n') seen->pop_back();
            return seen->starts_with("http://") && seen->ends_with("&web=www.example.org");
          }});
  Stroke("a line to the left over the desktop (plays a sound)",
         {bare.At(0.9, 0.6), bare.At(0.1, 0.6)},
         FileHolds(scratch_ / "gromlit/played", "chime.wav", "the sound player's command line"));
}

// Asks the main window to close, as a window manager does.
void Demo::HideMainWindow() {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = gromlit_;
  event.xclient.message_type = XInternAtom(display(), "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display(), "WM_DELETE_WINDOW", False));
  XSendEvent(display(), gromlit_, False, NoEventMask, &event);
  XSync(display(), False);
  if (!WaitFor([&] { return FindClient(display(), "Gromlit.Application") == None; })) {
    GiveUp("the main window does not close");
  }
}

void Demo::StrangerStrokes() {
  HideMainWindow();
  const Area area = AreaOf(display(), stranger_);
  const auto shown = [this](std::string* seen) {
    const bool there = FindClient(display(), "Gromlit.Application") != None;
    *seen = there ? "the main window" : "no main window";
    return there;
  };
  const auto drawn = [this, shown](std::string* seen) {
    if (!shown(seen)) return false;
    const ShownPlugin plugin = LookAtMainWindow(display(), gromlit_);
    const bool whole = plugin.menus && plugin.icons == IconsOf("Default");
    *seen += whole ? " with that plug-in" : ", something else in it";
    return whole;
  };
  // The first stroke over an application without a plug-in is at most answered with an offer to
  // make one, where the stroke ends; later ones, drawn beside that offer, use the default plug-in.
  Stroke("a first line up over an application without a plug-in",
         {area.At(0.9, 0.9), area.At(0.9, 0.2)},
         {"no action", [this, shown](std::string* seen) {
            // The trail goes when the stroke is through; a window would come soon after.
            if (TrailIsMapped()) return false;
            return !WaitFor([&] { return shown(seen); }, std::chrono::milliseconds(500));
          }});
  Stroke("a second line up over the same application (shows Gromlit's window)",
         {area.At(0.15, 0.9), area.At(0.15, 0.2)},
         {"the main window with the default plug-in on the screen", drawn});
}

int Demo::Run() {
  SetTheStage();
  Picture("start.png");
  FollowThePointer();
  EditorStrokes();
  ProbeStrokes();
  TerminalStrokes();
  DesktopStrokes();
  StrangerStrokes();
  Picture("end.png");
  if (failures_ == 0) std::printf("all %d moves and strokes did what they should; ", checks_);
  if (failures_ != 0) std::printf("%d FAILED; ", failures_);
  std::printf("pictures are in %s\n", out_.c_str());
  return failures_ == 0 ? 0 : 1;
}

}  // namespace
}  // namespace gromlit::demo

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr, "usage: gromlit-demo BUILD SOURCE OUT [FILM]\n");
    return 2;
  }
  try {
    return gromlit::demo::Demo(argv[1], argv[2], argv[3], argc > 4 ? argv[4] : "").Run();
  } catch (const std::exception& problem) {
    gromlit::demo::GiveUp(problem.what());
  }
}
