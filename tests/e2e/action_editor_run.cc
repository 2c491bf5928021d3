#include "tests/e2e/action_editor_run.h"

#include <X11/extensions/XTest.h>

namespace gromlit::testing {
namespace {

constexpr Point kAside = {600, 500};  // where the editor is out of the way

}  // namespace

void ActionEditorRun::SetUp() {
  FrontEnd::SetUp();
  constexpr long kEvents = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                           ButtonMotionMask | EnterWindowMask | LeaveWindowMask;
  probe = std::make_unique<ProbeClient>(
      install->path(),
      std::vector<std::string>{"--class", "Probe", "probe", "--geometry", "340x300+880+80",
                               "--title", "Probe", "--focus", "--events", std::to_string(kEvents)});
}

void ActionEditorRun::TearDown() {
  if (HasFailure()) {
    Picture(std::string("failed-") +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
  }
  FrontEnd::TearDown();
}

void ActionEditorRun::Picture(const std::string& name) {
  if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
    SaveScreen(player->display(), std::string(directory) + "/" + name + ".png");
}

// --- Files --------------------------------------------------------------------------------------

nlohmann::json ActionEditorRun::CommandOf(const std::string& type, const std::string& text) {
  return {{"type", type}, {"text", text}};
}

nlohmann::json ActionEditorRun::ActionOf(const std::string& name,
                                         const std::vector<nlohmann::json>& commands) {
  nlohmann::json points = nlohmann::json::array();
  for (const Point& point : kRight) points.push_back({point.x, point.y});
  return {
      {"name", name}, {"symbol", {{"name", "right"}, {"points", points}}}, {"commands", commands}};
}

std::vector<nlohmann::json> ActionEditorRun::Runs(const std::vector<std::string>& texts) {
  std::vector<nlohmann::json> commands;
  commands.reserve(texts.size());
  for (const std::string& text : texts) commands.push_back(CommandOf("Run", text));
  return commands;
}

void ActionEditorRun::Store(const std::vector<nlohmann::json>& actions) {
  PackFile({{"kind", "plugin"}, {"appname", kClass}, {"classname", kClass}, {"actions", actions}},
           File());
}

nlohmann::json ActionEditorRun::StoredAction(size_t n) const {
  const nlohmann::json plugin = Stored();
  const size_t count = plugin.is_null() ? 0 : plugin["actions"].size();
  EXPECT_LT(n, count);
  return n < count ? plugin["actions"][n] : ActionOf("", {});
}

std::vector<std::string> ActionEditorRun::StoredLines(size_t n) const {
  std::vector<std::string> lines;
  const nlohmann::json action = StoredAction(n);
  for (const auto& command : action["commands"])
    lines.push_back(command["type"].get<std::string>() + ": " + command["text"].get<std::string>());
  return lines;
}

// --- Opening ------------------------------------------------------------------------------------

void ActionEditorRun::Open(const Conditions& conditions) {
  LaunchInstalled(conditions);
  ASSERT_NE(WaitShown("Application"), Window{0});
  ShowActions();
}

void ActionEditorRun::ShowActions() {
  EXPECT_TRUE(PassOver(probe->window(), [this] {
    // A line in the middle, on whatever ground.
    const Point at = Cell(0);
    const Point origin = OriginOf(MainWindow());
    const auto pixel = [&](int y) { return player->Pixel(origin.x + at.x - 10, origin.y + y); };
    return pixel(at.y - 1) != pixel(at.y - 8);
  })) << "the main window does not show the application's actions";
}

void ActionEditorRun::OpenOn(const std::vector<nlohmann::json>& commands) {
  Store({ActionOf("Old", commands)});
  Open();
  Edit(0);
}

void ActionEditorRun::Edit(int cell) {
  ShowActions();
  SelectCell(cell);
  Choose(Title::kAction, kActionEdit);
  ExpectOpen();
}

void ActionEditorRun::New() {
  ShowActions();
  Choose(Title::kAction, kActionNew);
  ExpectOpen();
}

void ActionEditorRun::ExpectOpen() {
  editor = WaitShown("ActionEditor");
  if (manager == nullptr) XMoveWindow(player->display(), editor, kAside.x, kAside.y);
}

void ActionEditorRun::CloseByManager() {
  Display* display = player->display();
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = editor;
  event.xclient.format = 32;
  if (manager != nullptr) {
    event.xclient.message_type = XInternAtom(display, "_NET_CLOSE_WINDOW", False);
    event.xclient.data.l[1] = 2;  // asked for by the user
    XSendEvent(display, player->root(), False, SubstructureNotifyMask | SubstructureRedirectMask,
               &event);
  } else {
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, editor, False, NoEventMask, &event);
  }
  XSync(display, False);
  EXPECT_TRUE(WaitHidden("ActionEditor"));
}

void ActionEditorRun::Ok() {
  Press(kOk);
  EXPECT_TRUE(WaitHidden("ActionEditor")) << "the editor stays open";
}

void ActionEditorRun::Cancel() {
  Press(kCancel);
  EXPECT_TRUE(WaitHidden("ActionEditor")) << "the editor stays open";
}

// --- Widgets ------------------------------------------------------------------------------------

Window ActionEditorRun::Parent(Button button) {
  return button <= kDelete ? TabBar(editor) : editor;
}

Point ActionEditorRun::Place(Button button) {
  const Box bar = BoxOf(TabBar(editor));
  const Box box = BoxOf(editor);
  const int row = box.height - 40;
  switch (button) {
    case kAdd:
      return {bar.width - 216, bar.height - 32};
    case kUpdate:
      return {bar.width - 144, bar.height - 32};
    case kDelete:
      return {bar.width - 72, bar.height - 32};
    case kMoveUp:
      return {bar.width - 168, row};
    case kMoveDown:
      return {bar.width - 68, row};
    case kHelp:
      return {16, row};
    case kOk:
      return {box.width - 160, row};
    case kCancel:
      break;
  }
  return {box.width - 80, row};
}

void ActionEditorRun::ClickOn(Button button) {
  const Point place = Place(button);
  ClickIn(WaitChild(Parent(button), place.x, place.y), 30, 12);
}

void ActionEditorRun::Add(CommandType type, const std::string& text) {
  ClickTab(editor, type);
  Replace(Field(), text);
  Press(kAdd);
}

// Only the label of an enabled button is black.
bool ActionEditorRun::Enabled(Button button) {
  const Point place = Place(button);
  const std::string look = Look(WaitChild(Parent(button), place.x, place.y));
  for (size_t i = 0; i + 4 <= look.size(); i += 4)
    if (look[i] == 0 && look[i + 1] == 0 && look[i + 2] == 0) return true;
  return false;
}

bool ActionEditorRun::Buttons(const std::string& expected) {
  std::string seen;
  return WaitFor([&] {
    seen.clear();
    for (const Button button : {kAdd, kUpdate, kDelete, kMoveUp, kMoveDown})
      seen += Enabled(button) ? '1' : '0';
    return seen == expected;
  });
}

bool ActionEditorRun::Ticked(bool expected) {
  const Window box = WaitChild(TabBar(editor), 16, 72);
  const Window bar = TabBar(editor);
  return WaitFor([&] {
    const Point at = OriginOf(box);
    const Point ground = OriginOf(bar);
    return (player->Pixel(at.x + 5, at.y + 5) != player->Pixel(ground.x + 8, ground.y + 150)) ==
           expected;
  });
}

bool ActionEditorRun::Row(int row, const std::string& line, bool highlighted) {
  const Window list = List();
  const int baseline = (row + 1) * TextHeight() + 2;
  const int width = BoxOf(list).width;
  if (!LineReads(list, 6, baseline, line, 5, width - 4)) return false;
  const Point origin = OriginOf(list);
  return (player->Pixel(origin.x + 5, origin.y + baseline) == 0) == highlighted;
}

bool ActionEditorRun::Lists(const std::vector<std::string>& lines, int selected) {
  const int visible = (BoxOf(List()).height - 8) / TextHeight();
  return WaitFor([&] {
    for (int row = 0; row < visible; row++) {
      const bool there = row < static_cast<int>(lines.size());
      if (!Row(row, there ? lines[static_cast<size_t>(row)] : "", row == selected)) return false;
    }
    return true;
  });
}

// --- Keys ---------------------------------------------------------------------------------------

void ActionEditorRun::Tap(int keycode) {
  for (const Bool down : {True, False})
    XTestFakeKeyEvent(player->display(), static_cast<unsigned>(keycode), down, CurrentTime);
  XSync(player->display(), False);
}

void ActionEditorRun::FocusProbe() {
  XSetInputFocus(player->display(), probe->window(), RevertToPointerRoot, CurrentTime);
  XSync(player->display(), False);
}

}  // namespace gromlit::testing
