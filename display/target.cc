#include "display/target.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/strings.h"
#include "display/display.h"
#include "display/window_questions.h"

namespace gromlit {
namespace {

// The searches go down a window tree level by level and ask about a whole level at once, so that
// they wait for the server once a level. What they find is what a walk finds that goes depth first:
// the windows of a level are kept in the order in which such a walk meets them, and where one of
// them is an answer, those behind it are left out with all that is below them. What a deeper level
// brings then lies before the answer, and takes its place.

// Another client decides how deep and how wide its windows are nested. Beyond these bounds the
// search is cut short, and the position is followed down instead.
constexpr int kMaxDepth = 64;
constexpr size_t kMaxWindows = 4000;

// How far below a child of the root window a window manager may have put a client's window.
constexpr int kMaxFrames = 8;

// The result of GetXApp for a name that is not plain text, which is no window.
constexpr Window kUnreadable = 1;

// Pixels, of the root window or of another one.
struct Position {
  int x = 0;
  int y = 0;
};

// A level of a tree, in the order of a walk.
struct Level {
  std::vector<Window> windows;
  std::vector<Position> positions;  // for each window the position in its parent

  explicit Level(Window start) : windows{start}, positions(1) {}
  Level() = default;

  void Add(const std::vector<Window>& children, Position position) {
    windows.insert(windows.end(), children.begin(), children.end());
    positions.resize(windows.size(), position);
  }
};

// Where the position lies in a window of which its place in its parent is known.
Position Inward(Position inparent, const WindowFacts& facts) {
  return {inparent.x - facts.x - facts.border, inparent.y - facts.y - facts.border};
}

// Takes the windows of a level from what may still be asked about, and cuts the level where that
// does not suffice. False when it was cut.
bool WithinBounds(int depth, std::vector<Window>* windows, size_t* left) {
  const size_t allowed = depth < kMaxDepth ? *left : 0;
  const bool within = windows->size() <= allowed;
  if (!within) windows->resize(allowed);
  *left -= windows->size();
  return within;
}

// --- The client in a window manager's frame.

// Whether a window has the position, on its border or inside it.
bool Holds(const WindowFacts& facts, Position position) {
  return position.x >= -facts.border && position.x < facts.width + facts.border &&
         position.y >= -facts.border && position.y < facts.height + facts.border;
}

// The window that a window manager manages at a position: of the root's child and what is below it
// the topmost that has WM_STATE and the position, on the first level that has one. Where the
// position is beside it, on its title or its border, the only one in the frame. Else the root's
// child itself.
Window FindClient(Window rootchild, Position at) {
  const Atom wmstate = XInternAtom(dpy, "WM_STATE", False);
  Level level(rootchild);
  std::vector<bool> reached = {true};  // for each window whether all above it have the position
  bool managed = false;                // a level had windows with WM_STATE
  Window framed = None;                // the only one of that level
  size_t left = kMaxWindows;
  for (int depth = 0; depth <= kMaxFrames; depth++) {
    WithinBounds(depth, &level.windows, &left);
    if (level.windows.empty()) break;
    WindowPosition first;
    const std::vector<WindowFacts> facts =
        AskFacts(level.windows, wmstate, at.x, at.y, depth == 0 ? &first : nullptr);
    Window topmost = None;
    int nmanaged = 0;
    for (size_t i = 0; i < facts.size(); i++) {
      level.positions[i] =
          depth == 0 ? Position{first.x, first.y} : Inward(level.positions[i], facts[i]);
      reached[i] = reached[i] && Holds(facts[i], level.positions[i]);
      if (!facts[i].viewable || !facts[i].managed) continue;
      nmanaged++;
      if (!managed) framed = level.windows[i];
      if (reached[i]) topmost = level.windows[i];
    }
    if (topmost != None) return topmost;
    if (!managed && nmanaged > 1) framed = None;
    managed = managed || nmanaged > 0;
    Level next;
    std::vector<bool> nextreached;
    for (size_t i = 0; i < facts.size(); i++) {
      if (!facts[i].viewable || (managed && !reached[i])) continue;
      next.Add(facts[i].children, level.positions[i]);
      nextreached.resize(next.windows.size(), reached[i]);
    }
    level = std::move(next);
    reached = std::move(nextreached);
  }
  return framed != None ? framed : rootchild;
}

// --- The application: the first window that says what it is.

struct Application {
  Window window = None;  // kUnreadable for a name that is not plain text
  WindowName name;
};

Application ApplicationOf(Window window, WindowName name) {
  if (name.kind == WindowName::kOtherName) return {kUnreadable, {}};
  if (name.cut) {
    name = AskWholeName(window);
    if (name.kind == WindowName::kNothing) return {};
  }
  return {window, std::move(name)};
}

// For a client with more windows than may be searched: the first that has the position.
Application FollowToName(Window window, Position at) {
  for (int depth = 0; depth < kMaxDepth && window != None; depth++) {
    WindowPosition position;
    std::vector<WindowName> names = AskNames({&window, 1}, at.x, at.y, &position);
    if (names[0].kind != WindowName::kNothing) return ApplicationOf(window, std::move(names[0]));
    window = position.child;
  }
  return {};
}

// The position, where there is one, serves beyond the bounds alone.
Application SearchName(Window start, const Position* at) {
  Application found;
  std::vector<Window> level = {start};
  size_t left = kMaxWindows;
  bool within = true;
  for (int depth = 0; !level.empty(); depth++) {
    within = WithinBounds(depth, &level, &left) && within;
    std::vector<WindowName> names = AskNames(level, 0, 0, nullptr);
    std::vector<Window> next;
    for (size_t i = 0; i < names.size(); i++) {
      if (names[i].kind != WindowName::kNothing) {
        found = {level[i], std::move(names[i])};
        break;
      }
      next.insert(next.end(), names[i].children.begin(), names[i].children.end());
    }
    level = std::move(next);
  }
  if (found.window != None) return ApplicationOf(found.window, std::move(found.name));
  return within || at == nullptr ? Application{} : FollowToName(start, *at);
}

// Copies the class text where there is one.
bool CopyName(std::span<char> cname, const Application& app) {
  if (app.window == None || app.window == kUnreadable) return false;
  CopyText(cname, app.name.text);
  return true;
}

// --- The windows that take clicks and keys.

struct Search {
  uint32_t events;       // a window answers when some client selects one of these
  Window window = None;  // the answer
  Position position{};   // in it
  size_t eligible = 1;   // so many windows at the front of the level may still answer
};

bool Answers(const WindowFacts& facts, uint32_t events, Position position) {
  return facts.viewable && (facts.events & events) != 0 && position.x >= 0 &&
         position.x <= facts.width && position.y >= 0 && position.y <= facts.height;
}

// For a client with more windows than may be searched: the deepest at the position that answers.
void FollowToTargets(Window window, Position at, std::span<Search> searches) {
  for (int depth = 0; depth < kMaxDepth && window != None; depth++) {
    WindowPosition in;
    const WindowFacts facts = AskFacts({&window, 1}, None, at.x, at.y, &in)[0];
    if (!in.known) break;
    for (Search& search : searches) {
      if (!Answers(facts, search.events, {in.x, in.y})) continue;
      search.window = window;
      search.position = {in.x, in.y};
    }
    window = in.child;
  }
}

// Takes back what has gone since it was asked about. Returns whether `start` is still there.
bool Confirm(Window start, std::span<Search> searches) {
  std::vector<Window> windows = {start};
  for (const Search& search : searches) windows.push_back(search.window);
  const std::vector<WindowFacts> facts = AskFacts(windows, None, 0, 0, nullptr);
  for (size_t s = 0; s < searches.size(); s++) {
    if (!facts[s + 1].viewable) searches[s].window = None;
  }
  return facts[0].alive;
}

// Runs the searches, all on one way down. Returns whether `start` is still there at the end; with
// one that is gone nothing is found.
bool SearchTargets(Window start, Position at, std::span<Search> searches) {
  Level level(start);
  size_t left = kMaxWindows;
  bool within = true;
  int depth = 0;
  for (; !level.windows.empty(); depth++) {
    within = WithinBounds(depth, &level.windows, &left) && within;
    if (level.windows.empty()) break;
    WindowPosition first;
    const std::vector<WindowFacts> facts =
        AskFacts(level.windows, None, at.x, at.y, depth == 0 ? &first : nullptr);
    if (depth == 0 && !first.known) return false;
    size_t open = 0;
    for (size_t i = 0; i < facts.size(); i++) {
      level.positions[i] =
          depth == 0 ? Position{first.x, first.y} : Inward(level.positions[i], facts[i]);
    }
    for (Search& search : searches) {
      search.eligible = std::min(search.eligible, facts.size());
      for (size_t i = 0; i < search.eligible; i++) {
        if (!Answers(facts[i], search.events, level.positions[i])) continue;
        search.window = level.windows[i];
        search.position = level.positions[i];
        search.eligible = i + 1;
      }
      open = std::max(open, search.eligible);
    }
    Level next;
    std::array<size_t, 2> eligible{};
    for (size_t i = 0; i < open; i++) {
      // Nothing below a window that is not viewable can be viewable.
      if (facts[i].viewable) next.Add(facts[i].children, level.positions[i]);
      for (size_t s = 0; s < searches.size(); s++) {
        if (i < searches[s].eligible) eligible[s] = next.windows.size();
      }
    }
    for (size_t s = 0; s < searches.size(); s++) searches[s].eligible = eligible[s];
    level = std::move(next);
  }
  if (!within) FollowToTargets(start, at, searches);
  // What was found on the last level is as fresh as an answer can be.
  return depth <= 1 || Confirm(start, searches);
}

Window FindTarget(Window window, uint32_t events, Position at, int* x, int* y) {
  Search search{events};
  SearchTargets(window, at, {&search, 1});
  UpdateRequestCount();
  if (search.window == None) return None;
  *x = search.position.x;
  *y = search.position.y;
  return search.window;
}

constexpr uint32_t kClickEvents = ButtonPressMask | ButtonReleaseMask;
constexpr uint32_t kKeyEvents = ButtonPressMask;

}  // namespace

Window GetXApp(Window window, std::span<char> cname) {
  if (window == None || window == root) {
    CopyText(cname, labelRoot);
    return root;
  }
  const Application found = SearchName(window, nullptr);
  UpdateRequestCount();
  CopyName(cname, found);
  return found.window;
}

Window GetXAppClick(Window window, int rootx, int rooty, int* x, int* y) {
  return FindTarget(window, kClickEvents, {rootx, rooty}, x, y);
}

Window GetXAppKey(Window window, int rootx, int rooty, int* x, int* y) {
  return FindTarget(window, kKeyEvents, {rootx, rooty}, x, y);
}

Target FindApplication(Window rootchild, int rootx, int rooty) {
  Target target;
  if (rootchild == None || rootchild == root) {
    target.client = target.app = root;
    target.named = true;
    CopyText(target.cname, labelRoot);
    return target;
  }
  const Position at{rootx, rooty};
  target.client = FindClient(rootchild, at);
  const Application found = SearchName(target.client, &at);
  target.app = found.window;
  target.named = CopyName(target.cname, found);
  UpdateRequestCount();
  return target;
}

Target FindTargets(Window rootchild, int rootx, int rooty) {
  return FindTargetsIn(FindApplication(rootchild, rootx, rooty), rootx, rooty);
}

Target FindTargetsIn(Target target, int rootx, int rooty) {
  if (target.app == root) {
    target.click = target.key = root;
    target.winx = rootx;
    target.winy = rooty;
  }
  if (target.app == None || target.app == root || target.app == kUnreadable) return target;
  Search searches[] = {{kClickEvents}, {kKeyEvents}};
  const bool there = SearchTargets(target.app, {rootx, rooty}, searches);
  UpdateRequestCount();
  if (!there) {
    Target gone;
    gone.client = target.client;
    return gone;
  }
  target.click = searches[0].window;
  target.key = searches[1].window;
  // The key target's position wins where both were found.
  for (const Search& search : searches) {
    if (search.window == None) continue;
    target.winx = search.position.x;
    target.winy = search.position.y;
  }
  return target;
}

}  // namespace gromlit
