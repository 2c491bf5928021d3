// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/toolkit/widget_fixture.h"

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/check_box.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;

int calls;
int laststate;
void* lastarg;

void Note(void* arg, int newstate) {
  calls++;
  lastarg = arg;
  laststate = newstate;
}

class CheckBoxTest : public testing::WidgetFixture {
 protected:
  static constexpr int kX = 30;
  static constexpr int kY = 40;

  void SetUp() override {
    WidgetFixture::SetUp();
    calls = 0;
    laststate = -1;
    lastarg = nullptr;
    box = MakeCheckBox(this, top, Note, kX, kY);
    Pump();
  }

  Picture TakeBox() { return Take(top, kX - 1, kY - 1, 14, 14); }
  Picture Checked() {
    Picture picture(14, 14, kLightGrey);
    picture.Fill(kGrey, 1, 1, 12, 12);
    picture.Bevel(kDarkGrey, kWhite, 1, 1, 12, 12);
    return picture;
  }
  Picture Unchecked() {
    Picture picture(14, 14, kLightGrey);
    picture.Bevel(kWhite, kDarkGrey, 1, 1, 12, 12);
    return picture;
  }

  XCheckBox* box = nullptr;
};

TEST_F(CheckBoxTest, TheRecordOfANewBox) {
  EXPECT_EQ(box->owner, this);
  EXPECT_EQ(box->gc, buttongc);
  EXPECT_EQ(box->width, 12);
  EXPECT_EQ(box->height, 12);
  EXPECT_EQ(box->x, kX);
  EXPECT_EQ(box->y, kY);
  EXPECT_EQ(box->state, 1);
  EXPECT_EQ(box->action, Note);
  EXPECT_EQ(box->arg, box);
  ASSERT_NE(box->wobj, nullptr);
  EXPECT_EQ(box->wobj->window, box->window);
  EXPECT_EQ(box->wobj->obj, box);
  XWindowAttributes is;
  ASSERT_TRUE(XGetWindowAttributes(dpy, box->window, &is));
  EXPECT_EQ(is.width, 12);
  EXPECT_EQ(is.height, 12);
  EXPECT_EQ(is.map_state, IsViewable);
  EXPECT_EQ(is.your_event_mask, ExposureMask | ButtonPressMask);
}

TEST_F(CheckBoxTest, CheckedIsGreyAndSunken) {
  EXPECT_EQ(TakeBox(), Checked());
}

TEST_F(CheckBoxTest, UncheckedIsLightAndRaised) {
  box->state = 0;
  DrawCheckBox(box);
  EXPECT_EQ(TakeBox(), Unchecked());
}

TEST_F(CheckBoxTest, AClickCallsBackOnceOnThePressWithTheNewState) {
  MoveTo(kX + 5, kY + 5);
  player->Press(1);
  ASSERT_TRUE(PumpUntil([] { return calls > 0; }));
  EXPECT_EQ(laststate, 0);
  EXPECT_EQ(lastarg, box);
  EXPECT_EQ(box->state, 0);
  EXPECT_EQ(TakeBox(), Unchecked());
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(box->state, 0);

  ClickAt(kX + 5, kY + 5);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(laststate, 1);
  EXPECT_EQ(TakeBox(), Checked());
}

TEST_F(CheckBoxTest, ADragOutOfTheBoxDoesNotTakeThePressBack) {
  MoveTo(kX + 5, kY + 5);
  player->Press(1);
  MoveTo(300, 300);
  player->Release(1);
  Pump();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(box->state, 0);
}

TEST_F(CheckBoxTest, OnlyItsOwnSquareIsTheBox) {
  for (const auto& [x, y] : {std::pair{-1, 5}, {12, 5}, {5, -1}, {5, 12}}) {
    ClickAt(kX + x, kY + y);
    EXPECT_EQ(calls, 0) << x << ", " << y;
  }
  for (const auto& [x, y] : {std::pair{0, 0}, {11, 11}}) {
    calls = 0;
    ClickAt(kX + x, kY + y);
    EXPECT_EQ(calls, 1) << x << ", " << y;
  }
}

TEST_F(CheckBoxTest, AnyTrueStateCountsAsChecked) {
  box->state = 7;  // as an option read from a file may be
  DrawCheckBox(box);
  EXPECT_EQ(TakeBox(), Checked());
  ClickAt(kX + 5, kY + 5);
  EXPECT_EQ(laststate, 0);
}

void Refuse(void* arg, int) {
  calls++;
  static_cast<XCheckBox*>(arg)->state = 1;
}

TEST_F(CheckBoxTest, TheCallbackRunsBeforeTheDrawing) {
  box->action = Refuse;
  ClickAt(kX + 5, kY + 5);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(TakeBox(), Checked());
}

TEST_F(CheckBoxTest, ABoxWithoutACallbackStillTurnsOver) {
  box->action = nullptr;
  ClickAt(kX + 5, kY + 5);
  EXPECT_EQ(box->state, 0);
  EXPECT_EQ(TakeBox(), Unchecked());
}

TEST_F(CheckBoxTest, Costs) {
  XEvent event{};
  EXPECT_EQ(CostOf([&] { MakeCheckBox(nullptr, top, Note, 0, 200); }), (Cost{2, 0}));
  DrawCheckBox(box);
  EXPECT_EQ(CostOf([&] { DrawCheckBox(box, &event); }), (Cost{7, 0}));
  EXPECT_EQ(CostOf([&] { CheckBoxDown(box, &event); }), (Cost{4, 0}));  // already white
  DrawCheckBox(box);
  EXPECT_EQ(CostOf([&] { DrawCheckBox(box, &event); }), (Cost{5, 0}));
}

}  // namespace
}  // namespace gromlit
