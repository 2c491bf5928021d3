// Real input in real applications: what a stroke types arrives in the file that is saved.
#include "tests/e2e/editor_client.h"
#include "tests/e2e/shell_run.h"

#include <X11/keysym.h>

#include <array>
#include <functional>

#include "core/option_files.h"

namespace gromlit {
namespace {

using testing::EditorClient;
using testing::kDown;
using testing::kRight;
using testing::Process;
using testing::ReadText;
using testing::WaitFor;
using testing::WriteText;

class DeliveryTest : public testing::ShellRun {
 protected:
  void SetUp() override {
    ShellRun::SetUp();
    GromlitUserOptions options{};
    DefaultUserOptions(&options);
    options.splash = 0;
    options.temp1 = kRealInput;
    options.temp2 = kDrawWithLocks;
    ASSERT_EQ(SaveUserOptions(&options, defaultOptionFile), 1);
  }
  static std::string Line() {
    std::string text;
    for (char c = 0x21; c < 0x7f; c++) text += c;
    return text + " Gr\u00fc\u00dfe, \u65e5\u672c, \u20ac";
  }
  // Locks on and another layout: neither may change what is typed.
  void MakeItHard() {
    Process layout({"setxkbmap", "de"});
    ASSERT_EQ(layout.Wait(), 0);
    player->Type(XK_Caps_Lock);
    player->Type(XK_Num_Lock);
  }
  void ExpectNothingDown() {
    std::array<char, 32> map;
    XQueryKeymap(player->display(), map.data());
    for (const char byte : map) EXPECT_EQ(byte, 0);
  }
  void ExpectText(const std::function<std::string()>& saved, const std::string& expected) {
    EXPECT_TRUE(WaitFor([&] { return saved() == expected; }, std::chrono::seconds(100)))
        << saved().substr(0, 400);
  }
  // A stroke types the text, another one saves it.
  void TypesAndSaves(const std::vector<std::string>& argv, const std::string& classname,
                     const std::string& text, bool file = false) {
    WriteText(*install / "text", text);
    const int s = XKeysymToKeycode(player->display(), XK_s);
    WritePlugin(classname,
                {{"right", kRight, {{kText, file ? *install / "text" : text, 0, 0, file ? 1 : 0}}},
                 {"down", kDown, {{kHotKey, "Control-s", s, ControlMask}}}});
    StartWindowManager("openbox");
    EditorClient editor(player.get(), install->path(), {.argv = argv, .classname = classname});
    if (HasFailure()) return;
    LaunchInstalled();
    MakeItHard();
    editor.TakeFocus();
    Draw({{400, 500}, {700, 500}});
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }, std::chrono::seconds(60)));
    const auto saved = [&] {
      std::string now = ReadText(editor.file());
      while (!now.empty() && now.back() == '\n') now.pop_back();
      return now;
    };
    EXPECT_TRUE(WaitFor(
        [&] {
          Draw({{500, 400}, {500, 650}});
          return WaitFor([&] { return saved() == text; }, std::chrono::seconds(4));
        },
        std::chrono::seconds(100)))
        << saved().size() << " of " << text.size() << ": " << saved().substr(0, 400);
    ExpectNothingDown();
    EXPECT_EQ(Out() + Err(), "");
    editor.process().Kill(SIGTERM);
    editor.process().Wait();
  }
  // The characters of a long text, in lines that no editor indents or completes.
  static std::string LongText() {
    std::string text;
    while (text.size() < 30'000)
      text +=
          "line " + std::to_string(text.size()) + " Gr\u00fc\u00dfe \u65e5\u672c \u20ac #7_x;\n";
    text.pop_back();
    return text;
  }
  static std::vector<std::string> Mousepad() { return {"mousepad", "--disable-server"}; }
};

TEST_F(DeliveryTest, Gtk3GetsEveryCharacter) {
  TypesAndSaves(Mousepad(), "Mousepad.mousepad", Line());
}

TEST_F(DeliveryTest, Gtk3GetsALongFileWhole) {
  TypesAndSaves(Mousepad(), "Mousepad.mousepad", LongText(), true);
}

TEST_F(DeliveryTest, QtGetsEveryCharacter) {
  TypesAndSaves({"featherpad", "--standalone"}, "FeatherPad.featherpad", Line());
}

TEST_F(DeliveryTest, QtGetsALongFileWhole) {
  TypesAndSaves({"featherpad", "--standalone"}, "FeatherPad.featherpad", LongText(), true);
}

// xterm ignores what another program sends.
TEST_F(DeliveryTest, XtermGetsALongFileWhole) {
  const std::string text = Line() + "\n" + LongText() + "\nEND";
  WriteText(*install / "text", text + "\n");
  WritePlugin("XTerm.xterm", {{"right", kRight, {{kText, *install / "text", 0, 0, 1}}}});
  StartWindowManager("openbox");
  Process xterm({"xterm", "-u8", "-geometry", "80x24+300+250", "-e", "sh", "-c",
                 "stty -echo; touch " + MarkFile("up") + "; cat >" + MarkFile("got")},
                "", {"LC_ALL=C.UTF-8"});
  ASSERT_TRUE(Appears("up"));
  LaunchInstalled();
  MakeItHard();
  Go({500, 400});
  player->Click(1);
  Draw({{400, 400}, {600, 400}});
  ExpectText([&] { return ReadText(MarkFile("got")); }, text + "\n");
  ExpectNothingDown();
}

}  // namespace
}  // namespace gromlit
