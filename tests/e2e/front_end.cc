#include "tests/e2e/front_end.h"

#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

#include "core/plugin_files.h"
#include "core/symbol_files.h"
#include "display/display.h"  // the fonts' names

namespace gromlit::testing {
namespace {

constexpr int kLogoHeight = 57;  // of the banner's picture
constexpr int kButtonWidth = 64;
constexpr int kButtonHeight = 24;
constexpr int kCellWidth = 72;
// A second click within this time is a double click, milliseconds.
constexpr std::chrono::milliseconds kDoubleClick{500};

constexpr const char* kTitles[] = {"Plug-In", "Action", "Symbol", "Options", "Help"};
constexpr const char* kTabs[] = {"HotKey", "Menu", "Text", "Sound", "Run", "Internet"};

int ReleasePixels(XImage* pixels) {
  return XDestroyImage(pixels);
}

}  // namespace

bool TriesAll() {
  const char* wanted = std::getenv("GROMLIT_SWEEP");
  return wanted != nullptr && std::string(wanted) == "all";
}

void FrontEnd::SetUp() {
  ShellRun::SetUp();
  txt_ = Font(txtFontname);
  label_ = Font(buttonFontname);
}

void FrontEnd::TearDown() {
  for (XFontStruct* font : {txt_, label_})
    if (font != nullptr) XFreeFont(player->display(), font);
  ShellRun::TearDown();
}

XFontStruct* FrontEnd::Font(const char* name) {
  XFontStruct* font = XLoadQueryFont(player->display(), name);
  if (font == nullptr) font = XLoadQueryFont(player->display(), "fixed");
  EXPECT_NE(font, nullptr);
  return font;
}

int FrontEnd::TextHeight() {
  return txt_->ascent + txt_->descent;
}
int FrontEnd::ItemHeight() {
  return label_->max_bounds.ascent + label_->max_bounds.descent + 6;
}
int FrontEnd::LabelWidth(const std::string& text) {
  return XTextWidth(label_, text.c_str(), static_cast<int>(text.size()));
}
int FrontEnd::TextWidth(const std::string& text) {
  return XTextWidth(txt_, text.c_str(), static_cast<int>(text.size()));
}

// --- Finding ------------------------------------------------------------------------------------

std::vector<Window> FrontEnd::Children(Window window) {
  return ChildrenOf(player->display(), window);
}

bool FrontEnd::Viewable(Window window) {
  XWindowAttributes attributes{};
  return XGetWindowAttributes(player->display(), window, &attributes) != 0 &&
         attributes.map_state == IsViewable;
}

Window FrontEnd::UnderPointer() {
  Window window = 0;
  Window child = player->root();
  while (child != 0) {
    window = child;
    Window rootwin;
    int rootx;
    int rooty;
    int x;
    int y;
    unsigned state;
    if (!XQueryPointer(player->display(), window, &rootwin, &child, &rootx, &rooty, &x, &y, &state))
      break;
  }
  return window;
}

Window FrontEnd::Shown(const std::string& name) {
  std::vector<Window> windows = Children(player->root());
  // A window manager's frame holds the window directly or one level down.
  for (int level = 0; level < 3; level++) {
    std::vector<Window> next;
    for (const Window window : windows) {
      XClassHint hint{};
      if (XGetClassHint(player->display(), window, &hint) != 0) {
        const bool found = name == hint.res_name && std::string("Gromlit") == hint.res_class;
        XFree(hint.res_name);
        XFree(hint.res_class);
        if (found) return Viewable(window) ? window : 0;
      }
      const std::vector<Window> below = Children(window);
      next.insert(next.end(), below.begin(), below.end());
    }
    windows = next;
  }
  return 0;
}

Window FrontEnd::WaitShown(const std::string& name) {
  Window window = 0;
  EXPECT_TRUE(WaitFor([&] { return (window = Shown(name)) != 0; })) << name << " is not shown";
  // This window manager gives the keyboard to a window that comes up, and would take it from a
  // field that the pointer had entered before.
  if (manager_name == "openbox" && window != 0) {
    EXPECT_TRUE(WaitFor([&] {
      Window focus = 0;
      int revert;
      XGetInputFocus(player->display(), &focus, &revert);
      if (focus == window) return true;
      const auto children = Children(window);
      return std::find(children.begin(), children.end(), focus) != children.end();
    })) << name
        << " does not get the keyboard";
  }
  return window;
}

bool FrontEnd::WaitHidden(const std::string& name) {
  return WaitFor([&] { return Shown(name) == 0; });
}

Box FrontEnd::BoxOf(Window window) {
  Window rootwin;
  Box box{};
  unsigned width = 0;
  unsigned height = 0;
  unsigned border = 0;
  unsigned depth = 0;
  XGetGeometry(player->display(), window, &rootwin, &box.x, &box.y, &width, &height, &border,
               &depth);
  box.width = static_cast<int>(width);
  box.height = static_cast<int>(height);
  return box;
}

Point FrontEnd::OriginOf(Window window) {
  Point origin{};
  Window child;
  XTranslateCoordinates(player->display(), window, player->root(), 0, 0, &origin.x, &origin.y,
                        &child);
  return origin;
}

Window FrontEnd::ChildAt(Window parent, int x, int y) {
  for (const Window child : Children(parent)) {
    const Box box = BoxOf(child);
    if (box.x == x && box.y == y && Viewable(child)) return child;
  }
  return 0;
}

Window FrontEnd::WaitChild(Window parent, int x, int y) {
  Window child = 0;
  EXPECT_TRUE(WaitFor([&] { return (child = ChildAt(parent, x, y)) != 0; }))
      << "nothing at (" << x << ", " << y << ")";
  return child;
}

void FrontEnd::Close(Window window) {
  const auto named = [this](const char* name) {
    return XInternAtom(player->display(), name, False);
  };
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.format = 32;
  if (manager != nullptr) {
    event.xclient.message_type = named("_NET_CLOSE_WINDOW");
    event.xclient.data.l[1] = 2;  // asked for by the user
    XSendEvent(player->display(), player->root(), False,
               SubstructureNotifyMask | SubstructureRedirectMask, &event);
  } else {
    event.xclient.message_type = named("WM_PROTOCOLS");
    event.xclient.data.l[0] = static_cast<long>(named("WM_DELETE_WINDOW"));
    XSendEvent(player->display(), window, False, NoEventMask, &event);
  }
  XSync(player->display(), False);
}

Window FrontEnd::Dialog() {
  for (const Window window : Overlays()) {
    const Box box = BoxOf(window);
    const Window button = ChildAt(window, box.width - 72, box.height - 32);
    if (button == 0) continue;
    const Box size = BoxOf(button);
    if (size.width == kButtonWidth && size.height == kButtonHeight) return window;
  }
  return 0;
}

Window FrontEnd::Menu() {
  for (const Window window : Overlays()) {
    const Box box = BoxOf(window);
    const int rows = (box.height - 6) / ItemHeight();
    if (rows > 0 && box.height == rows * ItemHeight() + 6 && Children(window).empty()) {
      return window;
    }
  }
  return 0;
}

Window FrontEnd::MenuBeside(Window menu) {
  const Box box = BoxOf(menu);
  for (const Window window : Overlays()) {
    const Box other = BoxOf(window);
    if (other.x == box.x + box.width && other.y == box.y) return window;
  }
  return 0;
}

int FrontEnd::Rows(Window menu) {
  return (BoxOf(menu).height - 6) / ItemHeight();
}

Window FrontEnd::DialogField() {
  const Window dialog = WaitDialog();
  Window field = 0;
  EXPECT_TRUE(WaitFor([&] {
    for (const Window child : Children(dialog))
      if (Viewable(child) && BoxOf(child).width > kButtonWidth) field = child;
    return field != 0;
  })) << "no field in the dialog";
  return field;
}

Window FrontEnd::WaitDialog() {
  Window dialog = 0;
  EXPECT_TRUE(WaitFor([&] { return (dialog = Dialog()) != 0; })) << "no dialog";
  return dialog;
}

bool FrontEnd::WaitNoDialog() {
  return WaitFor([&] { return Dialog() == 0; });
}

Window FrontEnd::Notice() {
  for (const Window window : Overlays()) {
    const Box box = BoxOf(window);
    const Window button = ChildAt(window, box.width - 72, box.height - 32);
    if (button == 0 || ChildAt(window, box.width - 144, box.height - 32) != 0) continue;
    if (BoxOf(button).width == kButtonWidth) return window;
  }
  return 0;
}

Window FrontEnd::WaitNotice() {
  Window notice = 0;
  EXPECT_TRUE(WaitFor([&] { return (notice = Notice()) != 0; })) << "no notice";
  return notice;
}

Window FrontEnd::PickLabel() {
  for (const Window window : Overlays())
    if (BoxOf(window).height == TextHeight() + 4 && Children(window).empty()) return window;
  return 0;
}

std::string FrontEnd::Look(Window window) {
  const Box box = BoxOf(window);
  const Point origin = OriginOf(window);
  std::string look;
  XImage* image = XGetImage(player->display(), player->root(), origin.x, origin.y,
                            static_cast<unsigned>(box.width), static_cast<unsigned>(box.height),
                            AllPlanes, ZPixmap);
  if (image == nullptr) return look;
  look.assign(image->data,
              static_cast<size_t>(image->bytes_per_line) * static_cast<size_t>(image->height));
  XDestroyImage(image);
  return look;
}

FrontEnd::Pixels FrontEnd::PixelsOf(XFontStruct* font, const std::string& text, int x, int baseline,
                                    int width, int height) {
  Display* display = player->display();
  const auto columns = static_cast<unsigned>(width);
  const auto rows = static_cast<unsigned>(height);
  const Pixmap drawn = XCreatePixmap(display, player->root(), columns, rows, 1);
  const GC gc = XCreateGC(display, drawn, 0, nullptr);
  XFillRectangle(display, drawn, gc, 0, 0, columns, rows);
  XSetForeground(display, gc, 1);
  XSetFont(display, gc, font->fid);
  XDrawString(display, drawn, gc, x, baseline, text.c_str(), static_cast<int>(text.size()));
  Pixels pixels(XGetImage(display, drawn, 0, 0, columns, rows, 1, XYPixmap), ReleasePixels);
  XFreeGC(display, gc);
  XFreePixmap(display, drawn);
  return pixels;
}

FrontEnd::Pixels FrontEnd::PixelsOf(Window window, const Box& box) {
  const Point origin = OriginOf(window);
  return {XGetImage(player->display(), player->root(), origin.x + box.x, origin.y + box.y,
                    static_cast<unsigned>(box.width), static_cast<unsigned>(box.height), AllPlanes,
                    ZPixmap),
          ReleasePixels};
}

bool FrontEnd::Reads(Window window, const std::string& text) {
  return ReadsIn(txt_, window, text) || ReadsIn(label_, window, text);
}

bool FrontEnd::ReadsIn(XFontStruct* font, Window window, const std::string& text) {
  const int width = XTextWidth(font, text.c_str(), static_cast<int>(text.size()));
  const int height = font->ascent + font->descent;
  const Box box = BoxOf(window);
  if (text.empty() || width > box.width || height > box.height) return false;
  const Pixels wanted = PixelsOf(font, text, 0, font->ascent, width, height);
  const Pixels seen = PixelsOf(window, {0, 0, box.width, box.height});
  if (wanted == nullptr || seen == nullptr) return false;

  const auto stands_at = [&](int x, int y) {
    // A field's caret may touch the last two columns.
    for (int row = 0; row < height; row++)
      for (int column = 0; column < width - 2; column++)
        if ((XGetPixel(wanted.get(), column, row) != 0) !=
            ((XGetPixel(seen.get(), x + column, y + row) & 0xffffff) == 0))
          return false;
    return true;
  };
  for (int y = 0; y + height <= box.height; y++)
    for (int x = 0; x + width <= box.width; x++)
      if (stands_at(x, y)) return true;
  return false;
}

bool FrontEnd::LineReads(Window window, int x, int baseline, const std::string& text, int left,
                         int right) {
  constexpr int kAbove = 2;  // rows at a line's top that a highlighted line above it may cover
  const int ascent = txt_->ascent - kAbove;
  const Box box = {left, baseline - ascent, right - left, TextHeight() - kAbove};
  if (box.width <= 0 || window == 0) return window != 0;
  const Pixels wanted = PixelsOf(txt_, text, x - left, ascent, box.width, box.height);
  const Pixels seen = PixelsOf(window, box);
  if (wanted == nullptr || seen == nullptr) return false;
  std::array<std::optional<unsigned long>, 2> colours;  // of ground and text
  for (int i = 0; i < box.width; i++) {
    for (int j = 0; j < box.height; j++) {
      auto& colour = colours[XGetPixel(wanted.get(), i, j)];
      if (!colour) colour = XGetPixel(seen.get(), i, j);
      if (*colour != XGetPixel(seen.get(), i, j)) return false;
    }
  }
  return colours[0] != colours[1];
}

bool FrontEnd::FieldReads(Window field, const std::string& text, int caret) {
  constexpr int kTextX = 4;
  constexpr int kBaseline = 16;
  constexpr int kCaretWidth = 8;
  const int before = TextWidth(caret < 0 ? text : text.substr(0, static_cast<size_t>(caret))) + 3;
  const int behind = before + kCaretWidth;
  const int end = BoxOf(field).width - 3;
  const auto reads = [&](int left, int right) {
    return LineReads(field, kTextX, kBaseline, text, left, right);
  };
  // What stands in the caret is inverted or not; its edges are left out.
  return WaitFor(
      [&] { return reads(kTextX, before) && reads(before + 1, behind - 1) && reads(behind, end); });
}

bool FrontEnd::DialogReads(const std::vector<std::string>& lines) {
  const Window dialog = WaitDialog();
  return WaitFor([&] {
    return std::all_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return Reads(dialog, line); });
  });
}

// --- Doing --------------------------------------------------------------------------------------

bool FrontEnd::Over(Window window, int x, int y) {
  Window seen = 0;
  // A window manager may still be moving the window to its place.
  const bool over = WaitFor([&] {
    const Point origin = OriginOf(window);
    move_hand({origin.x + x, origin.y + y});
    seen = UnderPointer();
    const Player::Pointer at = player->Where();
    // While a press is held back for somebody, the pointer does not move.
    return seen == window && at.x == origin.x + x && at.y == origin.y + y;
  });
  if (!over) {
    const Point origin = OriginOf(window);
    const char* directory = std::getenv("GROMLIT_SCREENSHOTS");
    if (directory != nullptr) SaveScreen(player->display(), std::string(directory) + "/over.png");
    ADD_FAILURE() << "window " << seen << " is in front of window " << window << " at ("
                  << origin.x + x << ", " << origin.y + y << ")";
  }
  return over;
}

bool FrontEnd::PassOver(Window application, const std::function<bool()>& shown) {
  return WaitFor([&] {
    if (Over(application, 20, 250) && WaitFor(shown, std::chrono::seconds(1))) return true;
    player->MoveTo(1, 1);
    return false;
  });
}

void FrontEnd::ClickIn(Window window, int x, int y, int button) {
  if (Over(window, x, y)) player->Click(button);
}

int FrontEnd::Light(Window button) {
  const Box box = BoxOf(button);
  const Point corner = OriginOf(button);
  const auto grey = [&](int px, int py) {
    return static_cast<int>(player->Pixel(corner.x + px, corner.y + py) & 0xff);
  };
  return grey(0, 0) - grey(box.width - 1, box.height - 1);
}

// Presses and releases a button as slowly as the program draws it. A press whose grab has not been
// taken yet when the next click comes would swallow that click.
void FrontEnd::ClickChild(Window parent, int x, int y) {
  const Window button = WaitChild(parent, x, y);
  const Box box = BoxOf(button);
  if (button == 0 || !Over(button, box.width / 2, box.height / 2)) return;
  EXPECT_TRUE(WaitFor([&] { return Light(button) > 0; })) << "the button is not drawn";
  player->Press(1);
  EXPECT_TRUE(WaitFor([&] { return Light(button) < 0; })) << "the button does not go down";
  player->Release(1);
  // It comes up again, or has gone with its window, or a dialog has opened over it.
  EXPECT_TRUE(WaitFor([&] {
    return !Viewable(button) || Light(button) > 0 || UnderPointer() != button;
  })) << "the button does not come up";
}

void FrontEnd::Enter(Window field) {
  const auto has_keyboard = [&] {
    Window focus = 0;
    int revert;
    XGetInputFocus(player->display(), &focus, &revert);
    return focus == field;
  };
  // The pointer jumps, so that it comes into the window and into the field at the same moment. A
  // window manager that gives the keyboard to the window then may do so after the field has taken
  // it. A user would go out of the field and in again.
  EXPECT_TRUE(WaitFor([&] {
    if (!Over(field, 14, 12)) return true;  // which has failed the test
    if (WaitFor(has_keyboard, std::chrono::seconds(2))) return true;
    const Point origin = OriginOf(field);
    player->MoveTo(origin.x + 14, origin.y - 8);
    return false;
  })) << "the field does not take the keyboard";
}

void FrontEnd::Chord(KeySym held, KeySym key) {
  player->KeyDown(held);
  player->Type(key);
  player->KeyUp(held);
}

void FrontEnd::TypeText(const std::string& text) {
  for (const char c : text) {
    const auto sym = static_cast<KeySym>(static_cast<unsigned char>(c));
    const KeyCode code = XKeysymToKeycode(player->display(), sym);
    ASSERT_NE(code, 0) << c;
    if (XkbKeycodeToKeysym(player->display(), code, 0, 0) == sym) {
      player->Type(sym);
    } else {
      Chord(XK_Shift_L, sym);
    }
  }
}

void FrontEnd::Fill(Window field, const std::string& text) {
  Enter(field);
  TypeText(text);
}

void FrontEnd::Replace(Window field, const std::string& text) {
  Enter(field);
  Chord(XK_Control_L, XK_a);
  Chord(XK_Control_L, XK_k);
  TypeText(text);
}

void FrontEnd::GoToRow(Window menu, int row, int above) {
  const Point origin = OriginOf(menu);
  const int top = row * ItemHeight();
  constexpr unsigned long kWhite = 0xffffff;
  // Of a menu at the screen's right edge there may be few pixels.
  const int edge = DisplayWidth(player->display(), DefaultScreen(player->display())) - 1;
  const int far = std::min(13, edge - origin.x);
  int x = far;
  EXPECT_TRUE(WaitFor([&] {
    // The menu's grab may come later than its window; only then does it see the pointer move.
    x = 2 * far - 1 - x;
    move_hand({origin.x + x, origin.y + above + 4 + top + ItemHeight() / 2});
    return WaitFor(
        [&] { return player->Pixel(origin.x + std::min(5, far), origin.y + top + 2) == kWhite; },
        std::chrono::milliseconds(200));
  })) << "row "
      << row << " is not highlighted";
}

void FrontEnd::ReleaseOnRow(Window menu, int row, int above, int button) {
  GoToRow(menu, row, above);
  player->Release(button);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); })) << "the menu stays open";
}

Window FrontEnd::PressTitle(Title title) {
  const Window bar = WaitChild(MainWindow(), 0, 0);
  int x = 8;
  for (int i = 0; i < static_cast<int>(title); i++) x += LabelWidth(kTitles[i]) + 16;
  if (!Over(bar, x + 4, ItemHeight() / 2)) return 0;
  player->Press(1);
  Window menu = 0;
  EXPECT_TRUE(WaitFor([&] { return (menu = Menu()) != 0; })) << "no menu";
  return menu;
}

Window FrontEnd::OpenPopup(int cell) {
  const Point at = Cell(cell);
  ClickIn(MainWindow(), at.x, at.y, 3);
  Window menu = 0;
  EXPECT_TRUE(WaitFor([&] { return (menu = Menu()) != 0; })) << "no popup";
  return menu;
}

void FrontEnd::Choose(Title title, int row) {
  if (const Window menu = PressTitle(title)) ReleaseOnRow(menu, row, kTitleAbove);
}

void FrontEnd::ChoosePopup(int cell, int row) {
  const Window menu = OpenPopup(cell);
  ASSERT_NE(menu, Window{0});
  // It follows the pointer without a button, and a click chooses.
  GoToRow(menu, row);
  player->Press(1);
  player->Release(1);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(menu); })) << "the popup stays open";
}

Window FrontEnd::PressPulldown(Window button) {
  if (!Over(button, 12, 12)) return 0;
  player->Press(1);
  Window menu = 0;
  EXPECT_TRUE(WaitFor([&] { return (menu = Menu()) != 0; })) << "no pulldown menu";
  return menu;
}

void FrontEnd::ChoosePulldown(Window button, int row) {
  if (const Window menu = PressPulldown(button)) ReleaseOnRow(menu, row);
}

int FrontEnd::RowOf(Window menu, const std::string& text) {
  constexpr int kTextX = 6;
  constexpr int kBaseline = 3;  // above a row's lower edge
  constexpr int kAbove = 9;     // of the letters that are looked at
  constexpr int kBehind = 8;    // where nothing stands
  const int width = LabelWidth(text) + kBehind;
  const Pixels wanted = PixelsOf(label_, text, 0, kAbove, width, kAbove + 1);
  if (wanted == nullptr) return -1;
  for (int row = 0; row < Rows(menu); row++) {
    const int top = (row + 1) * ItemHeight() - kBaseline - kAbove;
    const Pixels seen = PixelsOf(menu, {kTextX, top, width, kAbove + 1});
    bool same = seen != nullptr;
    for (int y = 0; same && y <= kAbove; y++)
      for (int x = 0; same && x < width; x++)
        same =
            (XGetPixel(wanted.get(), x, y) != 0) == ((XGetPixel(seen.get(), x, y) & 0xffffff) == 0);
    if (same) return row;
  }
  return -1;
}

void FrontEnd::ChoosePulldown(Window button, const std::string& text) {
  const Window menu = PressPulldown(button);
  ASSERT_NE(menu, Window{0});
  int row = -1;
  EXPECT_TRUE(WaitFor([&] { return (row = RowOf(menu, text)) >= 0; }))
      << text << " is not in the menu";
  ReleaseOnRow(menu, row);
}

void FrontEnd::DialogLeft() {
  const Window dialog = WaitDialog();
  const Box box = BoxOf(dialog);
  ClickChild(dialog, box.width - 144, box.height - 32);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(dialog) || Dialog() != dialog; }));
}

void FrontEnd::DialogRight() {
  const Window dialog = WaitDialog();
  const Box box = BoxOf(dialog);
  ClickChild(dialog, box.width - 72, box.height - 32);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(dialog); })) << "the dialog stays";
}

void FrontEnd::CloseNotice() {
  const Window notice = WaitNotice();
  const Box box = BoxOf(notice);
  ClickChild(notice, box.width - 72, box.height - 32);
  EXPECT_TRUE(WaitFor([&] { return !Viewable(notice); })) << "the notice stays";
}

void FrontEnd::StartPicking() {
  Choose(Title::kPlugIn, kPlugInNew);
  DialogLeft();
  EXPECT_TRUE(WaitFor([this] { return PickLabel() != 0; })) << "nothing is being picked";
}

// --- The windows --------------------------------------------------------------------------------

Window FrontEnd::PluginButton() {
  return WaitChild(MainWindow(), 4, ItemHeight() + 6 + kLogoHeight + 6);
}

void FrontEnd::OutwaitDoubleClick() {
  const auto start = std::chrono::steady_clock::now();
  WaitFor([&] { return std::chrono::steady_clock::now() - start > kDoubleClick; });
}

Point FrontEnd::Cell(int cell) {
  constexpr int kColumns = 6;
  const int top = ItemHeight() + 6 + kLogoHeight + 6 + 26;
  const int height = 32 + 2 * TextHeight() + 8;
  return {8 + kCellWidth * (cell % kColumns) + 32, top + height * (cell / kColumns) + 8 + 16};
}

void FrontEnd::ClickCell(int cell) {
  OutwaitDoubleClick();
  const Point at = Cell(cell);
  const bool before = IsSelected(cell);
  ClickIn(MainWindow(), at.x, at.y);
  EXPECT_TRUE(WaitFor([&] { return IsSelected(cell) != before; }))
      << "the cell's highlight does not change";
}

bool FrontEnd::IsSelected(int cell) {
  const Point origin = OriginOf(MainWindow());
  const Point at = Cell(cell);
  // The corner of the highlight, where no icon is.
  return player->Pixel(origin.x + at.x - 31, origin.y + at.y - 17) == 0;
}

void FrontEnd::SelectCell(int cell) {
  if (!IsSelected(cell)) ClickCell(cell);
}

bool FrontEnd::HasIcon(int cell) {
  constexpr unsigned long kWhite = 0xffffff;
  const Point origin = OriginOf(MainWindow());
  const Point at = Cell(cell);
  for (int i = -15; i <= 15; i++) {
    // Both diagonals: a line of an icon crosses one of them.
    if (player->Pixel(origin.x + at.x + i, origin.y + at.y + i) != kWhite) return true;
    if (player->Pixel(origin.x + at.x + i, origin.y + at.y - i) != kWhite) return true;
  }
  return false;
}

bool FrontEnd::HasName(int cell) {
  const Point origin = OriginOf(MainWindow());
  const Point at = Cell(cell);
  for (int y = 18; y < 18 + TextHeight(); y++)
    for (int x = -20; x <= 20; x++)
      if (player->Pixel(origin.x + at.x + x, origin.y + at.y + y) == 0) return true;
  return false;
}

Window FrontEnd::TabBar(Window editor) {
  return WaitChild(editor, 16, 100);
}

Window FrontEnd::TabField(Window editor) {
  return WaitChild(TabBar(editor), 16, 40);
}

void FrontEnd::ClickTab(Window editor, int type) {
  int x = 8;
  for (int i = 0; i < type; i++) x += LabelWidth(kTabs[i]) + 16;
  ClickIn(TabBar(editor), x + 4, ItemHeight() / 2);
}

void FrontEnd::AddCommand(Window editor, CommandType type, const std::string& text) {
  ClickTab(editor, type);
  if (type == kHotKey) {
    Enter(TabField(editor));
    Chord(XK_Control_L, static_cast<KeySym>(static_cast<unsigned char>(text.back())));
  } else {
    Fill(TabField(editor), text);
  }
  const Window bar = TabBar(editor);
  const Box box = BoxOf(bar);
  ClickChild(bar, box.width - 216, box.height - 32);
}

void FrontEnd::ClickCommand(Window editor, int line) {
  const Window list = WaitChild(editor, 16, BoxOf(TabBar(editor)).height + 124);
  ClickIn(list, 40, 4 + line * TextHeight() + TextHeight() / 2);
}

void FrontEnd::ChooseSymbol(int index) {
  const Window dialog = WaitDialog();
  const Window chooser = WaitChild(dialog, 4, kLogoHeight + 8);
  const int cell = 32 + 2 * TextHeight() + 8;
  const Point at = {8 + kCellWidth * (index % 4), cell * (index / 4) + 8};
  const Point origin = OriginOf(chooser);
  const auto selected = [&] { return player->Pixel(origin.x + at.x + 1, origin.y + at.y) == 0; };
  OutwaitDoubleClick();
  // It looks the symbols up when it comes on the screen, and may still show an earlier choice.
  EXPECT_TRUE(WaitFor([&] {
    if (selected()) return true;
    ClickIn(chooser, at.x + 36, at.y + 16);
    return WaitFor(selected, std::chrono::seconds(1));
  })) << "no symbol is selected";
  DialogLeft();
}

void FrontEnd::MakeSymbol(const std::string& name, const std::vector<Point>& corners,
                          const std::vector<Point>& pixels,
                          const std::function<void(int step)>& seen) {
  Choose(Title::kSymbol, kSymbolNew);
  const Window editor = WaitShown("SymbolEditor");
  const Window area = WaitChild(editor, 16, 100);
  const auto pixel_at = [&](int x, int y) {
    const Point origin = OriginOf(area);
    return player->Pixel(origin.x + x, origin.y + y);
  };
  for (const Point& corner : corners) {
    ClickIn(area, corner.x, corner.y);
    EXPECT_TRUE(WaitFor([&] { return pixel_at(corner.x - 3, corner.y - 3) == 0; }))
        << "no square at the corner";
  }
  ClickIn(area, corners.back().x, corners.back().y);

  const auto press_next_step = [&] {
    const Window now = WaitChild(editor, 400, 414);
    ClickChild(editor, 400, 414);
    EXPECT_TRUE(WaitFor([&] {
      const Window next = ChildAt(editor, 400, 414);
      return next != 0 && next != now;
    })) << "the step does not change";
  };
  seen(1);
  press_next_step();
  for (const Point& pixel : pixels) {
    const Point at = {13 + 8 * pixel.x + 3, 13 + 8 * pixel.y + 3};
    const unsigned long before = pixel_at(at.x, at.y);
    ClickIn(area, at.x, at.y);
    EXPECT_TRUE(WaitFor([&] { return pixel_at(at.x, at.y) != before; }))
        << "the icon's pixel does not turn";
  }
  seen(2);
  press_next_step();
  Replace(WaitChild(editor, 16, 100), name);
  seen(3);
  ClickChild(editor, 400, 414);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
}

std::string FrontEnd::SymbolFile(const std::string& name) const {
  return *install / "symbols/" + name + GromlitSymbolFileExt;
}

std::string FrontEnd::PluginFile(const std::string& classname) const {
  return *install / "plugins/" + classname + GromlitPluginFileExt;
}

}  // namespace gromlit::testing
