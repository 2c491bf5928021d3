// What applications of the common toolkits make of a stroke's text and hot keys and of a right
// click, with either way of delivery: each cell is measured and compared with the table below.
//
// Conditions: Caps Lock and Num Lock on, and the layout changed to German after the program has
// started. The way of delivery is changed by a start with another options file; the application
// goes on running. Where GROMLIT_TABLE names a file, each test adds its row to it. Chromium is
// tried where it is installed.
#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "core/option_files.h"
#include "tests/e2e/editor_client.h"
#include "tests/e2e/shell_run.h"

namespace gromlit {
namespace {

using testing::EditorClient;
using testing::EditorStart;
using testing::Point;
using testing::Process;
using testing::ReadText;
using testing::WaitFor;

enum class Toolkit { kXterm, kGtk3, kGtk4, kQt, kXaw, kChromium };

// What an application makes of one delivery: the text, the hot keys that work, the right click.
struct Outcome {
  std::string text;
  std::string keys;
  std::string click;
  bool operator==(const Outcome&) const = default;
};

struct Row {
  Toolkit toolkit;
  const char* name;
  Outcome sent;
  Outcome real;
  bool deafinxfwm4 = false;  // takes no key there that is sent, though it has the focus
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

constexpr const char* kEvery = "Control Alt Shift Super";
constexpr const char* kThree = "Control Alt Shift";

// The printable characters of ASCII and no others, and a dead key acts as one: ` and a make \u00e0.
constexpr const char* kDead = "ASCII but dead keys";

// The expectation.
const std::array<Row, 6> kRows = {{
    {Toolkit::kXterm, "xterm", {"no", "no", "yes"}, {"all", kEvery, "yes"}},
    {Toolkit::kGtk3, "mousepad", {kDead, kThree, "yes"}, {"all", kThree, "yes"}, true},
    {Toolkit::kGtk4, "gtk4", {"no", "no", "yes"}, {"all", kEvery, "yes"}},
    {Toolkit::kQt, "featherpad", {kDead, kThree, "yes"}, {"all", kThree, "yes"}},
    {Toolkit::kXaw,
     "xedit",
     {kDead, kEvery, "yes"},
     {"all but \u65e5 \u672c \u20ac", kEvery, "yes"}},
    {Toolkit::kChromium, "chromium", {kDead, kEvery, "yes"}, {"all", kEvery, "yes"}},
}};

// How it is seen that a hot key was taken, beside the text as it was before.
enum class Effect { kAppends, kReplaces, kPrefixes, kLogs, kOpensMenu };

// One command of the stroke: a key with its modifiers, or a text.
struct Step {
  KeySym key;
  int state = 0;
  std::string text = {};
};

struct HotKey {
  const char* name;
  std::vector<Step> steps;
  Effect effect;
  std::string expected = {};
};

struct Client {
  EditorStart start;
  std::vector<HotKey> keys;
  std::vector<std::pair<bool, KeySym>> save;  // with Control or without
};

// All printable ASCII and some more.
std::string Line() {
  std::string text;
  for (char c = 0x21; c < 0x7f; c++) text += c;
  return text + " Gr\u00fc\u00dfe, \u65e5\u672c, \u20ac";
}

// What of it can be sent.
std::string Ascii() {
  std::string text;
  for (const char c : Line())
    if (static_cast<signed char>(c) > 0) text += c;
  return text;
}

// xedit writes ISO 8859-1.
std::string FromLatin1(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    if (c >= 0x80) text += static_cast<char>(0xc0 | c >> 6);
    text += static_cast<char>(c < 0x80 ? c : 0x80 | (c & 0x3f));
  }
  return text;
}

std::vector<std::string> Characters(const std::string& text) {
  std::vector<std::string> all;
  for (const char c : text) {
    if ((c & 0xc0) != 0x80) all.emplace_back();
    if (!all.empty()) all.back() += c;
  }
  return all;
}

// The text without the characters that are dead keys of the German layout and what one of them
// makes of the letter behind it.
std::string WithoutDead(const std::string& text) {
  std::string rest;
  for (const std::string& c : Characters(text))
    if (c != "^" && c != "_" && c != "\u00af" && c != "`" && c != "a" && c != "\u00e0") rest += c;
  return rest;
}

// Names what has arrived of the line.
std::string Judge(const std::string& got) {
  if (got == Line()) return "all";
  if (got.find("\u00e0") != std::string::npos && WithoutDead(got) == WithoutDead(Ascii()))
    return "ASCII but dead keys";
  if (got.empty()) return "no";
  const std::vector<std::string> arrived = Characters(got);
  size_t next = 0;
  bool beyond = false;
  std::string missing;
  for (const std::string& c : Characters(Line())) {
    if (next < arrived.size() && arrived[next] == c) {
      next++;
      beyond = beyond || c.size() > 1;
    } else if (c.size() == 1 || beyond) {
      missing += " " + c;
    }
  }
  if (next < arrived.size()) return "other: " + got;
  return (beyond ? "all" : "ASCII") + (missing.empty() ? "" : " but" + missing);
}

// Keys of every kind for an application that shows or logs all of them.
std::vector<HotKey> LoggedKeys() {
  return {{"Control", {{XK_a, ControlMask}, {0, 0, "C"}}, Effect::kReplaces, "C"},
          {"Alt", {{XK_f, Mod1Mask}}, Effect::kLogs, "Alt-f"},
          {"Shift", {{0, 0, "ab"}, {XK_Left, ShiftMask}, {0, 0, "S"}}, Effect::kAppends, "aS"},
          {"Super", {{XK_x, Mod4Mask}}, Effect::kLogs, "Super-x"}};
}

// Those of a browser, whose own menu opens by a key.
std::vector<HotKey> BrowserKeys() {
  std::vector<HotKey> keys = LoggedKeys();
  keys[1] = {"Alt", {{XK_f, Mod1Mask}}, Effect::kOpensMenu};
  return keys;
}

// Keys of an editor with a menu bar.
std::vector<HotKey> EditorKeys() {
  std::vector<HotKey> keys = BrowserKeys();
  keys.pop_back();
  return keys;
}

// A page that tells in its title what its text area holds and which keys it sees.
constexpr const char* kPage = R"(<!doctype html><meta charset="utf-8"><title>-</title>
<style>html,body,textarea{width:100%;height:95%;margin:0}</style><textarea autofocus></textarea>
<script>const area = document.querySelector("textarea"); let keys = "";
const tell = () => document.title =
  "[" + encodeURIComponent(area.value) + "][" + keys + "]";
area.addEventListener("input", tell);
area.addEventListener("keydown", e => {
  if (e.altKey) keys += " Alt-" + e.key;
  if (e.metaKey) keys += " Super-" + e.key;
  tell();
}, true);
tell();</script>
)";

Client ClientOf(Toolkit toolkit) {
  switch (toolkit) {
    case Toolkit::kXterm:
      // The terminal's size goes by characters. A program in it that listens to the mouse is told
      // of a right click; xterm's own menus want Control.
      return {.start = {.argv = {"env", "LC_ALL=C.UTF-8", "xterm", "-u8", "-fn", "fixed", "-xrm",
                                 "XTerm*metaSendsEscape: true", "-xrm",
                                 "XTerm*VT100.translations: #override Mod4<Key>x: "
                                 "string(\"SUPER\")",
                                 "-e", "sh", "-c",
                                 "stty raw -echo; printf '\\033[?1000h'; exec cat >\"$0\""},
                        .classname = "XTerm.xterm",
                        .place = {300, 250, 604, 498}},
              .keys = {{"Control", {{XK_a, ControlMask}}, Effect::kAppends, "\x01"},
                       {"Alt", {{XK_f, Mod1Mask}}, Effect::kAppends, "\033f"},
                       {"Shift", {{XK_Left, ShiftMask}}, Effect::kAppends, "\033[1;2D"},
                       {"Super", {{XK_x, Mod4Mask}}, Effect::kAppends, "SUPER"}},
              .save = {}};
    case Toolkit::kGtk3:
      return {.start = {.argv = {"mousepad", "--disable-server"}, .classname = "Mousepad.mousepad"},
              .keys = EditorKeys(),
              .save = {{true, XK_s}}};
    case Toolkit::kGtk4:
      return {.start = {.argv = {"env", "GSK_RENDERER=cairo", "/usr/bin/python3",
                                 GROMLIT_E2E "/gtk4_editor.py"},
                        .classname = "gtk4-editor.gtk4-editor"},
              .keys = LoggedKeys(),
              .save = {}};
    case Toolkit::kQt:
      return {
          .start = {.argv = {"featherpad", "--standalone"}, .classname = "FeatherPad.featherpad"},
          .keys = EditorKeys(),
          .save = {{true, XK_s}}};
    case Toolkit::kXaw:
      // Keys as in Emacs; one with Super is added.
      return {.start = {.argv = {"xedit", "-xrm", "*enableBackups: off", "-xrm",
                                 "*baseTranslations: #override <Ctrl>X,<Ctrl>S: save-file()\\n"
                                 "Mod4<Key>x: insert-string(\"SUPER\")"},
                        .classname = "Xedit.xedit"},
              .keys = {{"Control",
                        {{XK_a, ControlMask}, {0, 0, "C"}, {XK_e, ControlMask}},
                        Effect::kPrefixes,
                        "C"},
                       {"Alt",
                        {{0, 0, " w"}, {XK_b, Mod1Mask}, {0, 0, "A"}, {XK_e, ControlMask}},
                        Effect::kAppends,
                        " Aw"},
                       {"Shift", {{XK_2, ShiftMask}}, Effect::kAppends, "\""},
                       {"Super", {{XK_x, Mod4Mask}}, Effect::kAppends, "SUPER"}},
              .save = {{true, XK_x}, {true, XK_s}}};
    case Toolkit::kChromium:
      return {.start = {.argv = {"chromium", "--no-sandbox", "--no-first-run", "--disable-gpu",
                                 "--password-store=basic"},
                        .classname = "Chromium.chromium",
                        .file = "page.html",
                        .text = kPage},
              .keys = BrowserKeys(),
              .save = {}};
  }
  return {};
}

class ApplicationsTest : public testing::ShellRun,
                         public ::testing::WithParamInterface<std::tuple<Row, const char*>> {
 protected:
  // No lock and no layout changes its keys, and it is no part of the line.
  static constexpr const char* kMark = "97";

  void SetUp() override {
    ShellRun::SetUp();
    row_ = std::get<Row>(GetParam());
    if (row_.deafinxfwm4 && std::string(std::get<const char*>(GetParam())) == "xfwm4")
      row_.sent = {"no", "no", row_.sent.click};
    client_ = ClientOf(row_.toolkit);
    setenv("HOME", install->path().c_str(), 1);  // the window manager's configuration is its own
    if (row_.toolkit == Toolkit::kChromium && !std::filesystem::exists("/usr/bin/chromium"))
      GTEST_SKIP() << "Chromium is not installed";
    // What other programs do in their own time is measured, on a machine that does nothing else,
    // and not held against a change: keys in some of them are in DeliveryTest.
    if (std::getenv("GROMLIT_TABLE") == nullptr) GTEST_SKIP() << "GROMLIT_TABLE names no file";
    StartWindowManager(std::get<const char*>(GetParam()));
    WriteStrokes();
    // An editor that adds lines when it saves would move the caret.
    std::filesystem::create_directories(*install / "home/config/featherpad");
    testing::WriteText(*install / "home/config/featherpad/fp.conf",
                       "[text]\nappendEmptyLine=false\n");
    editor_ = std::make_unique<EditorClient>(player.get(), install->path(), client_.start);
  }
  void TearDown() override {
    const char* directory = std::getenv("GROMLIT_SCREENSHOTS");
    if (directory != nullptr && HasFailure())
      testing::SaveScreen(player->display(), std::string(directory) + "/" + row_.name + "-" +
                                                 std::get<const char*>(GetParam()) + "-failed.png");
    if (editor_ != nullptr) {
      editor_->process().Kill(SIGTERM);
      editor_->process().Wait();
    }
    ShellRun::TearDown();
  }

  // The text is stroke 0, the hot keys follow.
  void WriteStrokes() {
    const std::array<std::vector<Point>, 5> shapes = {testing::kRight, testing::kDown, testing::kUp,
                                                      testing::kLeft, testing::kEll};
    std::vector<testing::Action> actions = {{"text", shapes[0], {{kText, Line()}}}};
    for (const HotKey& key : client_.keys) {
      std::vector<testing::Command> commands;
      for (const Step& step : key.steps) {
        if (step.text.empty())
          commands.push_back(
              {kHotKey, "key", XKeysymToKeycode(player->display(), step.key), step.state});
        else
          commands.push_back({kText, step.text});
      }
      actions.push_back({key.name, shapes[actions.size()], commands});
    }
    WritePlugin(client_.start.classname, actions);
  }
  void DrawStroke(size_t number) {
    static const std::array<std::vector<Point>, 5> strokes = {
        {{{400, 500}, {700, 500}},
         {{500, 400}, {500, 650}},
         {{500, 650}, {500, 400}},
         {{700, 500}, {400, 500}},
         {{450, 400}, {450, 650}, {700, 650}}}};
    Draw(strokes[number]);
  }
  void StartWith(int delivery) {
    if (gromlit != nullptr) {
      gromlit->Kill(SIGTERM);
      gromlit->Wait();
    }
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = delivery;
    options.temp2 = kDrawWithLocks;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
    LaunchInstalled();
    CloseMainWindow();
  }
  // The program itself hides its window when it is asked to close it. By then it takes strokes: a
  // client may select on the root window what tells other tests so.
  void CloseMainWindow() {
    Window main = 0;
    ASSERT_TRUE(WaitFor([&] { return (main = MainWindow()) != 0; }));
    ASSERT_TRUE(WaitFor([&] { return testing::IsShown(player->display(), main); }));
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = main;
    event.xclient.message_type = XInternAtom(player->display(), "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] =
        static_cast<long>(XInternAtom(player->display(), "WM_DELETE_WINDOW", False));
    XSendEvent(player->display(), main, False, NoEventMask, &event);
    ASSERT_TRUE(WaitFor([&] { return !testing::IsShown(player->display(), main); }));
  }
  void MakeItHard() {
    Process layout({"setxkbmap", "de"});
    ASSERT_EQ(layout.Wait(), 0);
    player->Type(XK_Caps_Lock);
    player->Type(XK_Num_Lock);
  }

  // --- What the application holds ---

  std::string Title() {
    const Atom name = XInternAtom(player->display(), "_NET_WM_NAME", False);
    Atom type;
    int format;
    unsigned long count;
    unsigned long rest;
    unsigned char* data = nullptr;
    std::string title;
    if (XGetWindowProperty(player->display(), editor_->window(), name, 0, 4096, False,
                           AnyPropertyType, &type, &format, &count, &rest, &data) == 0 &&
        data != nullptr) {
      title.assign(reinterpret_cast<char*>(data), count);
      XFree(data);
    }
    return title;
  }
  std::string Now() {
    if (row_.toolkit == Toolkit::kChromium) {
      const std::string title = Title();
      std::string text;
      for (size_t i = 1; i < title.size() && title[i] != ']'; i++) {
        if (title[i] == '%') {
          text += static_cast<char>(std::stoi(title.substr(i + 1, 2), nullptr, 16));
          i += 2;
        } else {
          text += title[i];
        }
      }
      return text;
    }
    std::string text = ReadText(editor_->file());
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return row_.toolkit == Toolkit::kXaw ? FromLatin1(text) : text;
  }
  std::string Log() {
    return row_.toolkit == Toolkit::kChromium ? Title() : ReadText(editor_->file() + ".keys");
  }
  // The user types a mark behind everything and saves: what was typed before the mark has arrived
  // when the mark is there. Returns the text without it.
  std::string Sync() {
    player->Type(XK_9);
    player->Type(XK_7);
    for (const auto& [control, key] : client_.save) {
      if (control) player->KeyDown(XK_Control_L);
      player->Type(key);
      if (control) player->KeyUp(XK_Control_L);
    }
    std::string text;
    const bool there = WaitFor(
        [&] {
          text = Now();
          return text != held_ && text.ends_with(kMark);
        },
        std::chrono::seconds(10));
    EXPECT_TRUE(there) << row_.name << " does not take the user's own keys: " << text;
    held_ = text;
    if (there) text.resize(text.size() - std::strlen(kMark));
    return text;
  }

  void TakeFocus() {
    editor_->TakeFocus();
    if (row_.toolkit == Toolkit::kXterm) {
      // The report of the click, for which the window manager may hold the pointer, is no text.
      const auto clicks = [this](const char* start) {
        int count = 0;
        const std::string text = Now();
        for (size_t at = 0; (at = text.find(start, at)) != std::string::npos; at++) count++;
        return count;
      };
      EXPECT_TRUE(WaitFor([&] { return clicks("\033[M#") > released_; }));
      EXPECT_TRUE(
          WaitFor([&] { return clicks("\033[M#") == clicks("\033[M ") + clicks("\033[M\""); }));
      released_ = clicks("\033[M#");
    }
    Sync();
  }

  // --- Menus ---

  // Whether a window without a frame comes up beside those that were there; it is closed again.
  bool OpensMenu(const std::function<void()>& act) {
    const std::vector<Window> before = Overlays();
    const auto more = [&] {
      const std::vector<Window> now = Overlays();
      return std::any_of(now.begin(), now.end(), [&](Window window) {
        XWindowAttributes attributes{};
        return std::find(before.begin(), before.end(), window) == before.end() &&
               XGetWindowAttributes(player->display(), window, &attributes) != 0 &&
               attributes.width > 40 && attributes.height > 40 && attributes.width < 1000;
      });
    };
    act();
    if (!WaitFor(more, std::chrono::seconds(4))) return false;
    EXPECT_TRUE(WaitFor([&] {
      player->Type(XK_Escape);
      return WaitFor([&] { return !more(); }, std::chrono::milliseconds(500));
    })) << "a menu stays";
    player->Type(XK_Escape);  // a menu bar may still have the keyboard
    return true;
  }
  void RightClick() {
    Go({600, 550});
    player->Click(3);
  }

  // --- Cells ---

  std::string MeasureText() {
    const std::string before = held_;
    DrawStroke(0);
    const std::string after = Sync();
    if (!after.starts_with(before)) return "other: " + after;
    return Judge(after.substr(before.size()));
  }
  bool Works(size_t number) {
    const HotKey& key = client_.keys[number];
    if (key.effect == Effect::kOpensMenu) return OpensMenu([&] { DrawStroke(number + 1); });
    const std::string before = held_;
    const std::string log = Log();
    DrawStroke(number + 1);
    const std::string after = Sync();
    switch (key.effect) {
      case Effect::kAppends:
        return after == before + key.expected;
      case Effect::kReplaces:
        return after == key.expected;
      case Effect::kPrefixes:
        return after == key.expected + before;
      default: {
        const std::string now = Log();
        return std::count(now.begin(), now.end(), '-') > std::count(log.begin(), log.end(), '-') &&
               now.rfind(key.expected) != std::string::npos;
      }
    }
  }
  std::string MeasureKeys() {
    std::string names;
    for (size_t i = 0; i < client_.keys.size(); i++)
      if (Works(i)) names += (names.empty() ? "" : " ") + std::string(client_.keys[i].name);
    return names.empty() ? "no" : names;
  }
  bool ClickTaken() {
    if (row_.toolkit == Toolkit::kXterm) {
      const std::string before = held_;
      RightClick();
      const bool told = WaitFor(
          [&] {
            const std::string now = Now();
            return now.size() >= before.size() + 12 &&
                   now.compare(before.size(), 4, "\033[M\"") == 0;
          },
          std::chrono::seconds(4));
      released_ += told ? 1 : 0;
      return told;
    }
    if (row_.toolkit == Toolkit::kXaw) {
      // Xaw has no context menu: a right click selects from the caret to the pointer.
      XSetSelectionOwner(player->display(), XA_PRIMARY, 0, CurrentTime);
      Go({330, 330});
      player->Click(3);
      return WaitFor([&] { return XGetSelectionOwner(player->display(), XA_PRIMARY) != 0; },
                     std::chrono::seconds(4));
    }
    // A menu fails to come up now and then at the first click under xfwm4.
    return OpensMenu([this] { RightClick(); }) || OpensMenu([this] { RightClick(); });
  }
  Outcome Measure() {
    Outcome outcome;
    outcome.text = MeasureText();
    outcome.keys = MeasureKeys();
    outcome.click = ClickTaken() ? "yes" : "no";
    return outcome;
  }
  void ExpectNothingDown() {
    std::array<char, 32> map;
    XQueryKeymap(player->display(), map.data());
    for (const char byte : map) EXPECT_EQ(byte, 0);
  }

  Row row_;
  Client client_;
  std::unique_ptr<EditorClient> editor_;
  int released_ = 0;  // buttons, as xterm has told
  std::string held_;  // the text at the last mark
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << outcome.text << " | " << outcome.keys << " | " << outcome.click;
}

TEST_P(ApplicationsTest, TakesWhatTheTableSays) {
  if (HasFatalFailure()) return;
  ASSERT_NO_FATAL_FAILURE(StartWith(kSentEvents));
  MakeItHard();
  TakeFocus();
  const Outcome sent = Measure();
  EXPECT_EQ(sent, row_.sent);
  ASSERT_NO_FATAL_FAILURE(StartWith(kRealInput));
  TakeFocus();
  const Outcome real = Measure();
  EXPECT_EQ(real, row_.real);
  ExpectNothingDown();
  EXPECT_EQ(Out() + Err(), "");
  if (const char* table = std::getenv("GROMLIT_TABLE"))
    std::ofstream(table, std::ios::app)
        << "| " << row_.name << " | " << std::get<const char*>(GetParam()) << " | " << sent << " | "
        << real << " |\n";
}

INSTANTIATE_TEST_SUITE_P(Applications, ApplicationsTest,
                         ::testing::Combine(::testing::ValuesIn(kRows),
                                            ::testing::Values("openbox", "xfwm4")),
                         [](const auto& cell) {
                           return std::string(std::get<0>(cell.param).name) + "_" +
                                  std::get<1>(cell.param);
                         });

}  // namespace
}  // namespace gromlit
