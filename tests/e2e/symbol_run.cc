#include "tests/e2e/symbol_run.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <cstring>

#include "core/strings.h"
#include "core/symbol_files.h"
#include "recognition/symbol_icon.h"
#include "tests/e2e/stored_files.h"

namespace gromlit::testing {
namespace {

constexpr const char* kSteps[] = {
    "Step 1: Edit Vector Format:", "Step 2: Edit Bitmap Format:", "Step 3: Save Symbol As:"};
constexpr int kRow = 414;  // of the editor's buttons
constexpr unsigned long kBlue = 0x79;
constexpr unsigned long kInvertedBlue = 0xffff86;

GromlitSymbol MakeRecord(const std::string& name, const std::vector<Point>& points) {
  GromlitSymbol sym{};
  CopyText(sym.name, name);
  for (const Point& point : points) {
    sym.npoints++;
    sym.x[sym.npoints] = static_cast<uint16_t>(point.x);
    sym.y[sym.npoints] = static_cast<uint16_t>(point.y);
  }
  VectorToBitmap(&sym);
  return sym;
}

}  // namespace

void SymbolRun::TearDown() {
  if (HasFailure()) Shoot("failed");
  FrontEnd::TearDown();
}

void SymbolRun::Shoot(const std::string& name) {
  const char* directory = std::getenv("GROMLIT_SCREENSHOTS");
  if (directory == nullptr) return;
  const char* test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  SaveScreen(player->display(), std::string(directory) + "/" + test + "-" + name + ".png");
}

void SymbolRun::Open(Conditions conditions) {
  conditions.environment.push_back("RECORDER_FILE=" + *install / "recorded");
  LaunchInstalled(conditions);
  ASSERT_NE(WaitShown("Application"), Window{0});
}

int SymbolRun::Recorded(const std::string& text) {
  const std::string all = ReadText(*install / "recorded");
  int count = 0;
  for (size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1)) count++;
  return count;
}

bool SymbolRun::ShowsText(Window window, int x, int baseline, const std::string& text, int beside) {
  return LineReads(window, x, baseline, text, x - beside, x + TextWidth(text) + beside);
}

// --- Files --------------------------------------------------------------------------------------

void SymbolRun::WriteSymbol(const std::string& name, const std::vector<Point>& points,
                            const std::vector<Point>& turned) {
  GromlitSymbol sym = MakeRecord(name, points);
  for (const Point& bit : turned)
    (iconGet(&sym, bit.x, bit.y) != 0 ? iconClr : iconSet)(&sym, bit.x, bit.y);
  ASSERT_NE(UnLoadSymbol(&sym, name.c_str(), GromlitSymbolFileExt), nullptr);
}

void SymbolRun::Fill(int count) {
  WriteSymbol("s");
  const std::string file = ReadText(SymbolFile("s"));
  std::filesystem::remove(SymbolFile("s"));
  constexpr size_t kNameAt = 13;
  for (int i = 0; i < count; i++) {
    const std::string name = "s" + std::to_string(1000 + i).substr(1);
    std::string numbered = file;
    numbered.replace(kNameAt, name.size(), name);
    WriteText(SymbolFile(name), numbered);
  }
  order_ = LibraryOrder();
  ASSERT_EQ(order_.size(), static_cast<size_t>(count));
}

Icon SymbolRun::Drawn(const std::vector<Point>& points, const std::vector<Point>& turned) {
  const GromlitSymbol sym = MakeRecord("", points);
  Icon icon(kIconSize, std::string(kIconSize, '.'));
  for (int y = 0; y < kIconSize; y++)
    for (int x = 0; x < kIconSize; x++)
      if (iconGet(&sym, x, y) != 0) icon[static_cast<size_t>(y)][static_cast<size_t>(x)] = '#';
  for (const Point& bit : turned) {
    char& pixel = icon[static_cast<size_t>(bit.y)][static_cast<size_t>(bit.x)];
    pixel = pixel == '#' ? '.' : '#';
  }
  return icon;
}

SavedSymbol SymbolRun::Saved(const std::string& name) {
  SavedSymbol saved;
  const nlohmann::json shown = ShowFile(SymbolFile(name));
  if (shown.is_null()) return saved;
  saved.name = shown.at("name");
  saved.icon = shown.at("icon").get<Icon>();
  for (const auto& point : shown.at("points")) saved.points.push_back({point[0], point[1]});
  return saved;
}

void SymbolRun::ExpectSaved(const std::string& name, const std::vector<Point>& points,
                            const Icon& icon) {
  const SavedSymbol saved = Saved(name);
  EXPECT_EQ(saved.name, name);
  EXPECT_EQ(saved.points, points);
  EXPECT_EQ(saved.icon, icon);
}

std::vector<std::string> SymbolRun::LibraryOrder() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(*install / "symbols"))
    names.push_back(entry.path().stem().string());
  return names;
}

// --- The editor ---------------------------------------------------------------------------------

void SymbolRun::OpenNew() {
  Choose(Title::kSymbol, kSymbolNew);
  TakeEditor();
}

void SymbolRun::OpenEdit(int index) {
  Choose(Title::kSymbol, kSymbolEdit);
  ChooseSymbol(index);
  TakeEditor();
}

void SymbolRun::TakeEditor() {
  editor_ = WaitShown("SymbolEditor");
  ASSERT_NE(editor_, Window{0});
  EXPECT_TRUE(ShowsStep(1));
}

void SymbolRun::Reach(int state) {
  OpenNew();
  if (state == 1) Place(kVector);
  if (state >= 2) DrawVector(kVector);
  if (state < 4) return;
  NextStep();
  Turn(kBit);
  if (state < 5) return;
  FinishStep();
  Replace(Field(), "walk");
}

bool SymbolRun::ShowsStep(int step) {
  return WaitFor([&] { return ShowsText(editor_, 16, 96, kSteps[step - 1]); });
}

bool SymbolRun::ListsNames(const std::vector<std::string>& names) {
  return WaitFor([&] {
    int baseline = 2;
    for (const std::string& name : names) {
      baseline += TextHeight();
      if (!ShowsText(Names(), 6, baseline, name)) return false;
    }
    return ShowsText(Names(), 6, baseline + TextHeight(), "    ");
  });
}

Window SymbolRun::Button(EditorButton button) {
  constexpr int kX[] = {16, 144, 224, 320, 400, 400, 400, 480};
  std::vector<Window> there;
  for (const Window child : Children(editor_)) {
    const Box box = BoxOf(child);
    if (box.x == kX[button] && box.y == kRow) there.push_back(child);
  }
  // Three have one place. They are told apart by the order in which they were made.
  std::sort(there.begin(), there.end());
  const size_t index = kNext <= button && button <= kSave ? button - kNext : 0;
  if (index >= there.size()) {
    ADD_FAILURE() << "no button " << button;
    return 0;
  }
  return there[index];
}

bool SymbolRun::IsEnabled(EditorButton button) {
  const std::string look = Look(Button(button));
  for (size_t i = 0; i + 4 <= look.size(); i += 4)
    if (std::memcmp(&look[i], "\0\0\0", 3) == 0) return true;
  return false;
}

void SymbolRun::PressButton(EditorButton button) {
  const Box box = BoxOf(Button(button));
  EXPECT_TRUE(WaitFor([&] { return IsShown(button); })) << "button " << button;
  ClickChild(editor_, box.x, box.y);
}

void SymbolRun::NextStep() {
  PressButton(kNext);
  EXPECT_TRUE(ShowsStep(2));
  EXPECT_TRUE(WaitFor([this] { return IsShown(kFinish); }));
}

void SymbolRun::FinishStep() {
  PressButton(kFinish);
  EXPECT_TRUE(ShowsStep(3));
  EXPECT_TRUE(WaitFor([this] { return IsShown(kSave); }));
}

void SymbolRun::SaveAs(const std::string& name) {
  Replace(Field(), name);
  PressButton(kSave);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
}

void SymbolRun::FinishAs(const std::string& name) {
  NextStep();
  FinishStep();
  SaveAs(name);
}

void SymbolRun::CancelEditor() {
  PressButton(kCancel);
  EXPECT_TRUE(WaitHidden("SymbolEditor"));
}

bool SymbolRun::EditsSymbol(const std::string& name) {
  TakeEditor();
  NextStep();
  FinishStep();
  return FieldReads(Field(), name);
}

bool SymbolRun::HasSquare(const Point& at) {
  const Point origin = OriginOf(Area());
  return player->Pixel(origin.x + at.x - 3, origin.y + at.y - 3) == 0;
}

bool SymbolRun::WaitSquare(const Point& at) {
  return WaitFor([&] { return HasSquare(at); });
}

void SymbolRun::Place(const std::vector<Point>& points) {
  for (const Point& point : points) {
    ClickIn(Area(), point.x, point.y);
    EXPECT_TRUE(WaitSquare(point)) << "no square at (" << point.x << ", " << point.y << ")";
  }
}

void SymbolRun::DrawVector(const std::vector<Point>& points) {
  Place(points);
  ClickIn(Area(), points.back().x, points.back().y);
}

bool SymbolRun::HasBit(const Point& bit) {
  const Point origin = OriginOf(Area());
  return player->Pixel(origin.x + 16 + 8 * bit.x, origin.y + 16 + 8 * bit.y) == kBlue;
}

bool SymbolRun::PreviewHasBit(const Point& bit) {
  const Point origin = OriginOf(WaitChild(editor_, 312, 340));
  return player->Pixel(origin.x + 4 + bit.x, origin.y + 4 + bit.y) == kBlue;
}

void SymbolRun::Turn(const Point& bit) {
  const bool before = HasBit(bit);
  ClickIn(Area(), 16 + 8 * bit.x, 16 + 8 * bit.y);
  EXPECT_TRUE(WaitFor([&] { return HasBit(bit) != before && PreviewHasBit(bit) != before; }))
      << "(" << bit.x << ", " << bit.y << ") does not turn";
}

// --- The chooser --------------------------------------------------------------------------------

void SymbolRun::Ask(int row) {
  Choose(Title::kSymbol, row);
  ASSERT_NE(Chooser(), Window{0});
}

bool SymbolRun::IsChosen(int cell) {
  const Point origin = OriginOf(Chooser());
  const Point at = SymbolCell(cell);
  return player->Pixel(origin.x + at.x + 1, origin.y + at.y) == 0;
}

bool SymbolRun::WaitChosen(int cell, bool chosen) {
  return WaitFor([&] { return IsChosen(cell) == chosen; });
}

void SymbolRun::ClickSymbol(int cell, int button) {
  const Point at = SymbolCell(cell);
  ClickIn(Chooser(), at.x + 36, at.y + 16, button);
}

void SymbolRun::SingleClick(int cell) {
  OutwaitDoubleClick();
  ClickSymbol(cell);
}

bool SymbolRun::ShowsName(int cell, const std::string& name) {
  const Point at = SymbolCell(cell);
  return ShowsText(Chooser(), at.x + 36 - TextWidth(name) / 2, at.y + TextHeight() + 32, name);
}

bool SymbolRun::Lists(int first, int count) {
  const bool lists = WaitFor([&] {
    for (int cell = 0; cell < count; cell++) {
      const int index = first + cell;
      if (!ShowsName(cell, order_[static_cast<size_t>(index)])) return false;
    }
    return CountShown() == count;
  });
  if (!lists) Shoot("not-listed");
  return lists;
}

bool SymbolRun::WaitCount(int count) {
  return WaitFor([&] { return CountShown() == count; });
}

int SymbolRun::CountShown() {
  const Point origin = OriginOf(Chooser());
  int count = 0;
  for (int cell = 0; cell < 16; cell++) {
    const Point at = {origin.x + SymbolCell(cell).x + 16, origin.y + SymbolCell(cell).y};
    XImage* image =
        XGetImage(player->display(), player->root(), at.x, at.y, 32, 32, AllPlanes, ZPixmap);
    bool icon = false;
    for (int i = 0; image != nullptr && i < 32 * 32; i++) {
      const unsigned long pixel = XGetPixel(image, i % 32, i / 32) & 0xffffff;
      icon = icon || pixel == kBlue || pixel == kInvertedBlue;  // of the chosen one
    }
    if (image != nullptr) XDestroyImage(image);
    if (icon) count++;
  }
  return count;
}

void SymbolRun::DragToTheEnd(Window bar) {
  if (!Over(bar, 7, 16)) return;
  player->Press(1);
  EXPECT_TRUE(Over(bar, 7, BoxOf(bar).height - 3));
  // The program looks for the pointer again and again while the button is down.
  const Point origin = OriginOf(bar);
  constexpr unsigned long kThumbsLowerEdge = 0x707070;
  const int end = origin.y + BoxOf(bar).height - 14;
  EXPECT_TRUE(WaitFor([&] { return player->Pixel(origin.x + 7, end) == kThumbsLowerEdge; }))
      << "the thumb does not come to the end";
  player->Release(1);
}

}  // namespace gromlit::testing
