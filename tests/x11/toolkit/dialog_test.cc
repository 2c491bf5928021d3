// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/toolkit/picture_draw.h"

#include "tests/x11/toolkit/request_cost.h"
#include "toolkit/dialog.h"
#include "toolkit/image.h"
#include "toolkit/text_editor.h"

namespace gromlit {
namespace {

using testing::Cost;
using testing::CostOf;
using testing::Picture;
using testing::Place;

const char* const kMsgs[] = {"Short.", "The widest of the three message lines.", "", nullptr};
const char* const kOneMsg[] = {"Delete the symbol that is selected now?", nullptr};

std::vector<XDialog*> answered;
void NoteYes(XDialog* dlog) {
  answered.push_back(dlog);
}

class DialogTest : public testing::WidgetFixture {
 protected:
  void SetUp() override {
    WidgetFixture::SetUp();
    MakeImages();
    answered.clear();
  }

  bool Mapped(Window window) {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, window, &attributes);
    return attributes.map_state != IsUnmapped;
  }
  static int Widest(const char* const* msgs) {
    int widest = 0;
    for (; *msgs != nullptr; msgs++) {
      widest =
          std::max(widest, XTextWidth(txtFontinfo, *msgs, static_cast<int>(std::strlen(*msgs))));
    }
    return widest;
  }
  // The dialog as it should look, but for its buttons.
  Picture Expected(const XDialog* dlog, const std::string& title,
                   const std::vector<std::string>& lines) {
    const int lw = logoImage->width;
    const int lh = logoImage->height;
    Picture picture(dlog->width, dlog->height, kLightGrey);
    picture.Fill(kWhite, 8, 8, dlog->width - 16, lh);
    picture.Bevel(kWhite, kDarkGrey, 0, 0, dlog->width, dlog->height);
    Paste(picture, logoImage, 8, 8);
    picture.Bevel(kDarkGrey, kWhite, 8, 8, dlog->width - 16, lh);
    const int tw = XTextWidth(labelFontinfo, title.data(), static_cast<int>(title.size()));
    Stamp(picture, labelFontinfo, (dlog->width - (lw + tw)) / 2 + lw, txtCharht + lh / 2, title);
    int baseline = lh + 24;
    for (const std::string& line : lines) {
      const int w = XTextWidth(txtFontinfo, line.data(), static_cast<int>(line.size()));
      Stamp(picture, txtFontinfo, (dlog->width - w) / 2, baseline, line);
      baseline += txtCharht + 2;
    }
    return picture;
  }
  // What the dialog shows, with its buttons taken out.
  Picture Shown(const XDialog* dlog, Picture& expected) {
    Picture picture = Take(dlog->window, 0, 0, dlog->width, dlog->height);
    for (const XButton* button : {dlog->yes, dlog->no}) {
      if (button == nullptr) continue;
      const Place at = PlaceOf(button->window);
      picture.Fill(kLightGrey, at.x, at.y, at.width, at.height);
      expected.Fill(kLightGrey, at.x, at.y, at.width, at.height);
    }
    return picture;
  }
  void PopUp(XDialog* dlog, const char* title) {
    PopUpDialog(dlog, title, 640, 500);
    Pump();
  }
  void ClickOn(const XButton* button) {
    MoveOn(button);
    player->Click(1);
    Pump();
  }
  void MoveOn(const XButton* button) {
    int x;
    int y;
    Window child;
    XTranslateCoordinates(dpy, button->window, root, 10, 10, &x, &y, &child);
    player->MoveTo(x, y);
  }
};

TEST_F(DialogTest, MessageDialogIsSizedByItsLines) {
  XDialog* dlog = MakeMsgDialog("About", kMsgs, 0, 0);
  EXPECT_EQ(dlog->width, Widest(kMsgs) + 32);
  EXPECT_EQ(dlog->height, logoImage->height + txtCharht + 48 + 3 * (txtCharht + 2));
  EXPECT_EQ(PlaceOf(dlog->window), (Place{0, 0, dlog->width, dlog->height}));
  EXPECT_EQ(dlog->yes, nullptr);
  EXPECT_STREQ(dlog->no->label, "OK");
  EXPECT_EQ(PlaceOf(dlog->no->window), (Place{dlog->width - 72, dlog->height - 32, 64, 24}));
  EXPECT_FALSE(Mapped(dlog->window));
  EXPECT_EQ(dlog->gc, txtgc);
  EXPECT_EQ(dlog->show, static_cast<Window>(0));
  EXPECT_EQ(dlog->msgs, kMsgs);
}

TEST_F(DialogTest, GivenSizeIsAddedAndTheLinesDoNotCount) {
  XDialog* dlog = MakeDialogLabeled("Plugin Update", kMsgs, NoteYes, 300, 50, labelOK, labelCancel);
  EXPECT_EQ(dlog->width, 332);
  EXPECT_EQ(dlog->height, logoImage->height + txtCharht + 48 + 50);
  EXPECT_STREQ(dlog->yes->label, "OK");
  EXPECT_STREQ(dlog->no->label, "Cancel");
  EXPECT_EQ(PlaceOf(dlog->no->window), (Place{332 - 72, dlog->height - 32, 64, 24}));
  EXPECT_EQ(PlaceOf(dlog->yes->window), (Place{332 - 144, dlog->height - 32, 64, 24}));
  EXPECT_EQ(dlog->yes->arg, dlog);
  EXPECT_EQ(dlog->no->arg, dlog);
  EXPECT_EQ(dlog->yes->owner, dlog);
}

TEST_F(DialogTest, PlainDialogAsksYesOrNo) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  EXPECT_STREQ(dlog->yes->label, "Yes");
  EXPECT_STREQ(dlog->no->label, "No");
  EXPECT_EQ(dlog->width, Widest(kOneMsg) + 32);
}

TEST_F(DialogTest, NoWindowManagerFramesIt) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, dlog->window, &attributes);
  EXPECT_TRUE(attributes.override_redirect);
  EXPECT_TRUE(attributes.save_under);
}

TEST_F(DialogTest, LooksAsItShould) {
  XDialog* dlog = MakeDialog("Old", kMsgs, NoteYes, 300, 50);
  PopUp(dlog, "Delete Symbol");
  Picture expected = Expected(dlog, "Delete Symbol", {kMsgs[0], kMsgs[1], ""});
  EXPECT_EQ(Shown(dlog, expected), expected);
}

TEST_F(DialogTest, TitleChangesThoughTheDialogIsShownAlready) {
  XDialog* dlog = MakeMsgDialog("First", kMsgs, 300, 50);
  PopUp(dlog, "First");
  PopUp(dlog, "Second");
  EXPECT_STREQ(dlog->title, "Second");
  Picture expected = Expected(dlog, "Second", {kMsgs[0], kMsgs[1], ""});
  EXPECT_EQ(Shown(dlog, expected), expected);
}

TEST_F(DialogTest, TitlesAreCutAt63Bytes) {
  const std::string title(500, 'T');
  XDialog* dlog = MakeMsgDialog(title.c_str(), kMsgs, 0, 0);
  EXPECT_EQ(dlog->title, std::string(63, 'T'));
  EXPECT_EQ(dlog->msgs, kMsgs);
  PopUp(dlog, (std::string(63, 'U') + "V").c_str());
  EXPECT_EQ(dlog->title, std::string(63, 'U'));
  PopUp(dlog, dlog->title);
  EXPECT_EQ(dlog->title, std::string(63, 'U'));
  PopUp(dlog, nullptr);
  EXPECT_STREQ(dlog->title, "");
}

TEST_F(DialogTest, TitleWiderThanTheRoomBesideTheLogoIsShortened) {
  XDialog* dlog = MakeMsgDialog("", kOneMsg, 0, 0);
  const std::string title = "org.example.Longwinded.org.example.Longwinded.again";
  const int room = dlog->width - 16 - logoImage->width;
  ASSERT_GT(XTextWidth(labelFontinfo, title.data(), static_cast<int>(title.size())), room);
  PopUp(dlog, title.c_str());
  EXPECT_EQ(dlog->title, title);
  // The longest beginning that leaves a small margin.
  std::string shown = title;
  for (size_t n = title.size();
       XTextWidth(labelFontinfo, shown.data(), static_cast<int>(shown.size())) > room - 8;) {
    shown = title.substr(0, --n) + "...";
  }
  Picture expected = Expected(dlog, shown, {kOneMsg[0]});
  EXPECT_EQ(Shown(dlog, expected), expected);
}

TEST_F(DialogTest, CentredOnThePointGiven) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  PopUpDialog(dlog, "Confirm", 641, 503);
  Pump();
  EXPECT_EQ(PlaceOf(dlog->window),
            (Place{641 - dlog->width / 2, 503 - dlog->height / 2, dlog->width, dlog->height}));
  EXPECT_TRUE(Mapped(dlog->window));
}

TEST_F(DialogTest, PointerInACornerKeepsItOnTheScreen) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  const int right = 1280 - dlog->width;
  const int bottom = 1024 - dlog->height;
  struct Case {
    int px, py, x, y;
  };
  for (const Case& at : {Case{0, 0, 0, 0}, Case{1279, 0, right, 0}, Case{0, 1023, 0, bottom},
                         Case{1279, 1023, right, bottom}}) {
    player->MoveTo(at.px, at.py);
    MousePopUpDialog(dlog, "Confirm");
    Pump();
    EXPECT_EQ(PlaceOf(dlog->window), (Place{at.x, at.y, dlog->width, dlog->height}));
    DialogNo(dlog);
  }
}

TEST_F(DialogTest, LargerThanTheScreenItEndsAtTheRightAndBottomEdge) {
  XDialog* dlog = MakeDialog("Big", kOneMsg, NoteYes, 1400, 1100);
  PopUp(dlog, "Big");
  EXPECT_EQ(PlaceOf(dlog->window),
            (Place{1280 - dlog->width, 1024 - dlog->height, dlog->width, dlog->height}));
  ClickOn(dlog->no);
  EXPECT_FALSE(Mapped(dlog->window)) << "its buttons are on the screen";
}

TEST_F(DialogTest, ComesUpAboveOtherWindows) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  PopUp(dlog, "Confirm");
  DialogNo(dlog);
  XRaiseWindow(dpy, top);
  PopUpDialog(dlog, "Confirm", kTopX + 300, kTopY + 200);
  Pump();
  player->MoveTo(kTopX + 300, kTopY + 200);
  EXPECT_EQ(player->Where().child, dlog->window);
}

TEST_F(DialogTest, YesRunsItsFunctionAndTheDialogStays) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  PopUp(dlog, "Confirm");
  ClickOn(dlog->yes);
  EXPECT_EQ(answered, (std::vector<XDialog*>{dlog}));
  EXPECT_TRUE(Mapped(dlog->window));
}

TEST_F(DialogTest, DialogYesAsTheFunctionCloses) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, DialogYes, 0, 0);
  PopUp(dlog, "Confirm");
  ClickOn(dlog->yes);
  EXPECT_FALSE(Mapped(dlog->window));
}

TEST_F(DialogTest, OwnersMayReplaceTheFunction) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, DialogYes, 0, 0);
  dlog->yesfn = NoteYes;
  PopUp(dlog, "Confirm");
  ClickOn(dlog->yes);
  EXPECT_EQ(answered.size(), 1u);
  dlog->yesfn = nullptr;
  ClickOn(dlog->yes);
  EXPECT_EQ(answered.size(), 1u);
}

TEST_F(DialogTest, NoClosesAndRunsNothing) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  PopUp(dlog, "Confirm");
  ClickOn(dlog->no);
  EXPECT_FALSE(Mapped(dlog->window));
  EXPECT_TRUE(answered.empty());
}

TEST_F(DialogTest, OkClosesAMessageDialogAndItCanBeShownAgain) {
  XDialog* dlog = MakeMsgDialog("About", kMsgs, 0, 0);
  PopUp(dlog, "About");
  ClickOn(dlog->no);
  EXPECT_FALSE(Mapped(dlog->window));
  PopUp(dlog, "About");
  EXPECT_TRUE(Mapped(dlog->window));
  ClickOn(dlog->no);
  EXPECT_FALSE(Mapped(dlog->window));
}

TEST_F(DialogTest, PressOnAButtonReleasedElsewhereRunsNothing) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 0, 0);
  PopUp(dlog, "Confirm");
  for (XButton* button : {dlog->yes, dlog->no}) {
    MoveOn(button);
    player->Press(1);
    Pump();
    EXPECT_EQ(button->state, 2);
    player->MoveTo(5, 5);
    player->Release(1);
    Pump();
    EXPECT_EQ(button->state, 1);
  }
  EXPECT_TRUE(answered.empty());
  EXPECT_TRUE(Mapped(dlog->window));
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(DialogTest, ReleaseOnTheGroundGivesThePointerBack) {
  XDialog* dlog = MakeDialog("Confirm", kOneMsg, NoteYes, 300, 50);
  PopUp(dlog, "Confirm");
  // A grab of the program's that nobody ended.
  ASSERT_EQ(XGrabPointer(dpy, dlog->window, False, ButtonReleaseMask, GrabModeAsync, GrabModeAsync,
                         None, None, CurrentTime),
            GrabSuccess);
  EXPECT_FALSE(player->CanGrabPointer());
  player->MoveTo(640, 500);
  player->Click(1);
  Pump();
  XSync(dpy, False);
  EXPECT_TRUE(player->CanGrabPointer());
}

TEST_F(DialogTest, ResizingMovesTheButtonsWithTheCorner) {
  XDialog* dlog =
      MakeDialogLabeled("Select Symbol", nullptr, NoteYes, 300, 500, labelOK, labelCancel);
  ResizeDialog(dlog, 311, 272);
  const int height = logoImage->height + 8 + 272 + 40;
  EXPECT_EQ(dlog->width, 319);
  EXPECT_EQ(dlog->height, height);
  EXPECT_EQ(PlaceOf(dlog->window), (Place{0, 0, 319, height}));
  EXPECT_EQ(PlaceOf(dlog->no->window), (Place{311 - 64, height - 32, 64, 24}));
  EXPECT_EQ(PlaceOf(dlog->yes->window), (Place{311 - 136, height - 32, 64, 24}));
  XDialog* message = MakeMsgDialog("About", kMsgs, 0, 0);
  ResizeDialog(message, 200, 100);
  EXPECT_EQ(PlaceOf(message->no->window),
            (Place{200 - 64, logoImage->height + 8 + 100 + 40 - 32, 64, 24}));
}

TEST_F(DialogTest, OwnersWidgetTakesThePlaceOfTheLines) {
  XDialog* dlog = MakeDialogLabeled("Select", kMsgs, NoteYes, 300, 100, labelOK, labelCancel);
  dlog->show = MakeChildWindow(dlog->window, 8, logoImage->height + 16, 100, 60, blue.pixel, 0);
  PopUp(dlog, "Select");
  EXPECT_TRUE(Mapped(dlog->show));
  EXPECT_EQ(PixelOf(dlog->show, 50, 30), kBlue);
  Picture expected = Expected(dlog, "Select", {});
  expected.Fill(kBlue, 8, logoImage->height + 16, 100, 60);
  EXPECT_EQ(Shown(dlog, expected), expected);
}

TEST_F(DialogTest, NoLinesAndNoWidgetIsSafe) {
  XDialog* dlog = MakeMsgDialog("Empty", nullptr, 0, 0);
  EXPECT_EQ(dlog->width, 32);
  EXPECT_EQ(dlog->height, logoImage->height + txtCharht + 48);
  XDialog* other = MakeMsgDialog("Empty", nullptr, 300, 0);
  PopUp(other, "Empty");
  Picture expected = Expected(other, "Empty", {});
  EXPECT_EQ(Shown(other, expected), expected);
}

TEST_F(DialogTest, FieldInADialogGivesTheKeyboardBackWhenItCloses) {
  const Window other =
      XCreateSimpleWindow(player->display(), player->root(), 900, 800, 100, 100, 0, 0, 0);
  XMapWindow(player->display(), other);
  XSetInputFocus(player->display(), other, RevertToParent, CurrentTime);
  XSync(player->display(), False);
  XDialog* dlog =
      MakeDialogLabeled("Plugin Update", kOneMsg, DialogYes, 300, 50, labelOK, labelCancel);
  TextEditor* txt =
      MakeTextEditor(dlog->window, 50, logoImage->height + txtCharht + 24, 200, kEditorHeight);
  TextEditorInit(txt, "Terminal");
  dlog->child = txt;
  XMapWindow(dpy, txt->window);
  PopUp(dlog, "Terminal");
  int x;
  int y;
  Window child;
  XTranslateCoordinates(dpy, txt->window, root, 100, 10, &x, &y, &child);
  player->MoveTo(x, y);
  Pump();
  Window focus;
  int revert;
  XGetInputFocus(player->display(), &focus, &revert);
  ASSERT_EQ(focus, txt->window);
  ClickOn(dlog->yes);
  XGetInputFocus(player->display(), &focus, &revert);
  EXPECT_EQ(focus, other);
}

TEST_F(DialogTest, DrawingCostsNoRoundTrip) {
  XDialog* dlog = MakeDialog("Confirm", kMsgs, NoteYes, 300, 50);
  PopUp(dlog, "Confirm");
  EXPECT_EQ(CostOf([&] { DrawDialog(dlog); }), (Cost{14, 0}));
  EXPECT_EQ(CostOf([&] { PopUpDialog(dlog, "Confirm", 1, 1); }), (Cost{4, 0}));
  EXPECT_EQ(CostOf([&] { MousePopUpDialog(dlog, "Confirm"); }), (Cost{5, 1}));
  EXPECT_EQ(CostOf([&] { ResizeDialog(dlog, 300, 200); }), (Cost{3, 0}));
  EXPECT_EQ(CostOf([&] { DialogButtonUp(dlog, nullptr); }), (Cost{1, 0}));
  EXPECT_EQ(CostOf([&] { DialogNo(dlog); }), (Cost{1, 0}));
  // A window, its class, and two for each button.
  EXPECT_EQ(CostOf([&] { MakeDialog("Confirm", kMsgs, NoteYes, 0, 0); }), (Cost{6, 0}));
}

// What the server says of the root window when the screen gets another size; of other windows it
// says the same when they are moved.
TEST_F(DialogTest, ItStaysOnAScreenThatHasBecomeSmaller) {
  const char* lines[] = {"One line", nullptr};
  XDialog* dlog = MakeMsgDialog("Small", lines, 0, 0);
  XEvent event{};
  event.xconfigure.type = ConfigureNotify;
  event.xconfigure.event = root;
  event.xconfigure.window = top;
  event.xconfigure.width = 10;
  event.xconfigure.height = 10;
  FollowScreenSize(nullptr, &event);
  EXPECT_EQ(screenwidth, 1280);
  EXPECT_EQ(screenheight, 1024);
  event.xconfigure.window = root;
  event.xconfigure.width = 640;
  event.xconfigure.height = 480;
  event.xconfigure.send_event = True;
  FollowScreenSize(nullptr, &event);
  EXPECT_EQ(screenwidth, 1280) << "anybody can send that";
  event.xconfigure.send_event = False;
  FollowScreenSize(nullptr, &event);
  PopUpDialog(dlog, "Small", 1270, 1020);
  Pump();
  const testing::Place small = PlaceOf(dlog->window);
  EXPECT_EQ(small.x + small.width, 640);
  EXPECT_EQ(small.y + small.height, 480);
}

}  // namespace
}  // namespace gromlit
