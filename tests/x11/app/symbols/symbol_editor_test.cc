#include "tests/x11/app/symbol_editor_fixture.h"

#include <X11/Xutil.h>

#include <filesystem>

#include "display/x_handles.h"
#include "tests/x11/app/window_identity.h"
#include "toolkit/bevel.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

using testing::Picture;

using SymbolEditorTest = testing::SymbolEditorFixture;

TEST_F(SymbolEditorTest, WindowManagersSeeTitleClassSizeAndTheCloseProtocol) {
  testing::ExpectIdentity(sed->window, {.title = "Gromlit: Symbol Editor",
                                        .icontitle = "Gromlit: Symbol Editor",
                                        .name = "SymbolEditor",
                                        .width = 560,
                                        .height = 454});
  XWindowAttributes attributes;
  XGetWindowAttributes(dpy, sed->window, &attributes);
  EXPECT_EQ(attributes.width, 560);
  EXPECT_EQ(attributes.height, 454);
}

TEST_F(SymbolEditorTest, IsMadeHiddenWithEveryWidgetInItsPlace) {
  EXPECT_FALSE(Shown(sed->window));
  struct Place {
    Window window;
    int x, y, width, height;
  };
  const Place places[] = {
      {sed->logo->window, 16, 16, 528, 61},      {area->window, 16, 100, 280, 280},
      {sed->txt->window, 16, 100, 280, 24},      {sed->icon->window, 312, 340, 40, 40},
      {sed->sbar->window, 280, 136, 15, 243},    {sed->lst->window, 16, 135, 256, 243},
      {sed->bhelp->window, 16, 414, 64, 24},     {sed->bclear->window, 144, 414, 64, 24},
      {sed->brestart->window, 224, 414, 64, 24}, {sed->bprev->window, 320, 414, 64, 24},
      {sed->bnext->window, 400, 414, 64, 24},    {sed->bfinish->window, 400, 414, 64, 24},
      {sed->bsave->window, 400, 414, 64, 24},    {sed->bcancel->window, 480, 414, 64, 24},
  };
  for (const Place& place : places) {
    XWindowAttributes attributes;
    XGetWindowAttributes(dpy, place.window, &attributes);
    EXPECT_EQ(attributes.x, place.x);
    EXPECT_EQ(attributes.y, place.y) << place.x;
    EXPECT_EQ(attributes.width, place.width) << place.x;
    EXPECT_EQ(attributes.height, place.height) << place.x;
  }
  EXPECT_STREQ(sed->logo->title, "S y m b o l    E d i t o r");
  EXPECT_STREQ(sed->bhelp->label, "Help");
  EXPECT_STREQ(sed->bclear->label, "Clear");
  EXPECT_STREQ(sed->brestart->label, "Restart");
  EXPECT_STREQ(sed->bprev->label, "Prev");
  EXPECT_STREQ(sed->bnext->label, "Next");
  EXPECT_STREQ(sed->bfinish->label, "Finish");
  EXPECT_STREQ(sed->bsave->label, "Save");
  EXPECT_STREQ(sed->bcancel->label, "Cancel");
  EXPECT_EQ(sed->bprev->state, kButtonInactive);
  EXPECT_EQ(sed->brestart->state, kButtonInactive);
  // The compound that is never shown takes its entries all the same.
  EXPECT_EQ(FindWindowObj(sed->select->window)->obj, sed->select);
  EXPECT_EQ(sed->select->lst->nitems, 2);
  EXPECT_FALSE(Shown(sed->select->window));
}

TEST_F(SymbolEditorTest, LoadsTheLibraryAndListsItsNamesSorted) {
  ASSERT_EQ(sed->lst->nitems, 2);
  EXPECT_STREQ(sed->lst->items[0], "Alpha");
  EXPECT_STREQ(sed->lst->items[1], "Beta");
}

TEST_F(SymbolEditorTest, OpensEmptyWithoutASymbol) {
  Open();
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
  EXPECT_STREQ(sed->sym.name, "");
  EXPECT_EQ(area->onpt, 0);
  for (const uint32_t row : sed->sym.icon) EXPECT_EQ(row, 0U);
  EXPECT_TRUE(Shown(area->window));
  EXPECT_TRUE(Shown(sed->bnext->window));
  for (const Window hidden : {sed->bfinish->window, sed->bsave->window, sed->icon->window,
                              sed->txt->window, sed->sbar->window, sed->lst->window}) {
    EXPECT_FALSE(Shown(hidden));
  }
  EXPECT_EQ(Area(), VectorArea());
}

TEST_F(SymbolEditorTest, OpensOnAWholeCopyOfASymbol) {
  GromlitSymbol sym = Symbol("Full", {});
  sym.npoints = kMaxPoints;
  for (int k = 1; k <= kMaxPoints; k++) {
    sym.x[k] = static_cast<uint16_t>(16 + 8 * (k % 32));
    sym.y[k] = static_cast<uint16_t>(16 + 8 * (k / 8));
  }
  sym.spare = 77;
  char signature[] = "ab";
  sym.signature = signature;
  Open(&sym);
  EXPECT_EQ(sed->state, kSymComplete);
  EXPECT_STREQ(sed->sym.name, "Full");
  EXPECT_EQ(sed->sym.npoints, kMaxPoints);
  EXPECT_EQ(sed->sym.x[64], sym.x[64]);
  EXPECT_EQ(sed->sym.y[64], sym.y[64]);
  EXPECT_EQ(sed->sym.spare, 77U);
  EXPECT_EQ(sed->sym.signature, nullptr);  // INV-SYMBOL-1
  sed->sym.x[1] = 24;
  EXPECT_EQ(sym.x[1], 24);
  sed->sym.x[1] = 32;
  EXPECT_EQ(sym.x[1], 24) << "the original was changed";
}

TEST_F(SymbolEditorTest, OpeningRaisesTheWindow) {
  Open();
  XRaiseWindow(dpy, top);  // covers a part of the editor
  MoveIn(top, 10, 10);
  ASSERT_EQ(player->Where().child, top);
  Open();
  EXPECT_EQ(player->Where().child, sed->window);
}

TEST_F(SymbolEditorTest, OpeningForgetsWhatWasEdited) {
  Reach(kSymName);
  Open();
  EXPECT_EQ(sed->state, kSymEmpty);
  EXPECT_EQ(sed->sym.npoints, 0);
  EXPECT_EQ(sed->bprev->state, kButtonInactive);
  EXPECT_EQ(sed->brestart->state, kButtonInactive);
  EXPECT_TRUE(Shown(sed->bnext->window));
  EXPECT_FALSE(Shown(sed->bsave->window));
  EXPECT_FALSE(Shown(sed->lst->window));
  EXPECT_EQ(Area(), VectorArea());
}

TEST_F(SymbolEditorTest, BeforeThereIsAnEditorOpeningDoesNothing) {
  const GromlitSymbol sym = Symbol("A", {});
  SymInit(nullptr, &sym);
  SymInit(nullptr, nullptr);
  EXPECT_FALSE(Shown(sed->window));
}

TEST_F(SymbolEditorTest, EachStepShowsItsTitleAndItsLines) {
  struct Text {
    int state;
    const char* title;
    std::vector<const char*> lines;
  };
  const std::vector<const char*> vector = {"Create the symbol by clicking",
                                           "and dragging the mouse.",
                                           "",
                                           "Click again on the last point",
                                           "to stop capture of the vector format.",
                                           "",
                                           "Once completed, you can modify",
                                           "the shape by clicking and dragging",
                                           "the black squares.",
                                           "",
                                           "The vector data is used to recognize",
                                           "the symbol."};
  const Text texts[] = {
      {kSymEmpty, "Step 1: Edit Vector Format:", vector},
      {kSymCapturing, "Step 1: Edit Vector Format:", vector},
      {kSymComplete, "Step 1: Edit Vector Format:", vector},
      {kSymBitmap,
       "Step 2: Edit Bitmap Format:",
       {"Create the symbol icon bitmap.", "", "Turn on or off a pixel by", "clicking on the pixel.",
        "", "The icon is not used to", "recognize the symbol."}},
      {kSymName,
       "Step 3: Save Symbol As:",
       {"Enter the symbol name.", "", "To edit the name, place the mouse", "into the edit area.",
        "", "Click the Save button or hit", "the Return key to save."}},
  };
  const GC gc = XCreateGC(dpy, root, 0, nullptr);
  XSetFont(dpy, gc, txtFont);
  XSetForeground(dpy, gc, black.pixel);
  for (const Text& text : texts) {
    Reach(text.state);
    Shoot("editor-state-" + std::to_string(text.state));
    const Picture title = Take(sed->window, 0, 80, 560, 19);
    const Picture lines = Take(sed->window, 310, 100, 250, 230);
    const Window sheet = MakeChildWindow(root, 600, 0, 560, 454, lgrey.pixel, 0);
    XSetWindowAttributes attributes;
    attributes.override_redirect = True;
    XChangeWindowAttributes(dpy, sheet, CWOverrideRedirect, &attributes);
    XMapRaised(dpy, sheet);
    DrawText(sheet, gc, 16, 96, text.title);
    int baseline = 100 + txtCharht;
    for (const char* line : text.lines) {
      DrawText(sheet, gc, 320, baseline, line);
      baseline += txtCharht;
    }
    EXPECT_EQ(Take(sheet, 0, 80, 560, 19), title) << text.state;
    EXPECT_EQ(Take(sheet, 310, 100, 250, 230), lines) << text.state;
    XDestroyWindow(dpy, sheet);
  }
  XFreeGC(dpy, gc);
}

TEST_F(SymbolEditorTest, CancelClosesWithoutSaving) {
  const auto before = Names();
  for (const int state : {kSymEmpty, kSymCapturing, kSymComplete, kSymBitmap, kSymName}) {
    Reach(state);
    ClickOn(sed->bcancel);
    EXPECT_FALSE(Shown(sed->window)) << state;
  }
  EXPECT_EQ(Names(), before);
}

TEST_F(SymbolEditorTest, TheWindowManagersCloseRequestHidesTheEditor) {
  Open();
  XEvent close{};
  close.xclient.type = ClientMessage;
  close.xclient.window = sed->window;
  close.xclient.message_type = wm_protocols;
  close.xclient.format = 32;
  close.xclient.data.l[0] = static_cast<long>(wm_delete);
  XSendEvent(player->display(), sed->window, False, NoEventMask, &close);
  XSync(player->display(), False);
  EXPECT_TRUE(PumpUntil([this] { return !Shown(sed->window); }));
  Open();
}

TEST_F(SymbolEditorTest, HelpOpensThePageInTheBrowser) {
  const std::string seen = *install / "seen";
  CopyText(user->urlcmd, "ln -s %s " + seen);
  Open();
  ClickOn(sed->bhelp);
  std::error_code error;
  ASSERT_TRUE(testing::WaitFor([&] {
    return std::filesystem::symlink_status(seen).type() == std::filesystem::file_type::symlink;
  }));
  EXPECT_EQ(std::filesystem::read_symlink(seen, error).string(),
            "file:" + install->path() + "/help/symbol_editor.html");
}
// --- Every button in every state ----------------------------------------------------------------

struct Outcome {
  const char* button;
  bool shown;
  int state;  // of the button when shown: kButtonInactive or kButtonActive
  int next;   // the editor's state after a click on it
  bool open;  // whether the editor is still shown then
};

struct ButtonsOf {
  int state;
  std::vector<Outcome> outcomes;
};

class SymbolEditorButtonsTest : public SymbolEditorTest,
                                public ::testing::WithParamInterface<ButtonsOf> {
 protected:
  XButton* Named(const std::string& name) const {
    for (XButton* button : {sed->bhelp, sed->bclear, sed->brestart, sed->bprev, sed->bnext,
                            sed->bfinish, sed->bsave, sed->bcancel}) {
      if (name == button->label) return button;
    }
    return nullptr;
  }
};

TEST_P(SymbolEditorButtonsTest, DoesWhatTheTableSays) {
  CopyText(user->urlcmd, "true %s");
  const ButtonsOf& row = GetParam();
  for (const Outcome& outcome : row.outcomes) {
    SCOPED_TRACE(outcome.button);
    Reach(row.state);
    XButton* button = Named(outcome.button);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(Shown(button->window), outcome.shown);
    if (outcome.shown) {
      EXPECT_EQ(button->state, outcome.state);
      const unsigned long ink = outcome.state == kButtonActive ? kBlack : kDarkGrey;
      EXPECT_GT(Take(button->window, 4, 4, 56, 16).Count(ink, 0, 0, 56, 16), 0);
    }
    // While a point is dragged the pointer belongs to the drawing area: a click elsewhere is the
    // release that ends the dragging.
    if (row.state == kSymDragging) {
      MoveIn(button->window, 32, 12);
      player->Release(1);
      Pump();
    } else if (outcome.shown) {
      ClickOn(button);
    }
    EXPECT_EQ(sed->state, outcome.next);
    EXPECT_EQ(Shown(sed->window), outcome.open);
  }
}

constexpr int kOff = kButtonInactive;
constexpr int kOn = kButtonActive;

INSTANTIATE_TEST_SUITE_P(States, SymbolEditorButtonsTest,
                         ::testing::Values(ButtonsOf{kSymEmpty,
                                                     {{"Help", true, kOn, kSymEmpty, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOff, kSymEmpty, true},
                                                      {"Prev", true, kOff, kSymEmpty, true},
                                                      {"Next", true, kOn, kSymBitmap, true},
                                                      {"Finish", false, kOn, kSymEmpty, true},
                                                      {"Save", false, kOn, kSymEmpty, true},
                                                      {"Cancel", true, kOn, kSymEmpty, false}}},
                                           ButtonsOf{kSymCapturing,
                                                     {{"Help", true, kOn, kSymCapturing, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOff, kSymCapturing, true},
                                                      {"Prev", true, kOff, kSymCapturing, true},
                                                      {"Next", true, kOn, kSymBitmap, true},
                                                      {"Finish", false, kOn, kSymCapturing, true},
                                                      {"Save", false, kOn, kSymCapturing, true},
                                                      {"Cancel", true, kOn, kSymCapturing, false}}},
                                           ButtonsOf{kSymComplete,
                                                     {{"Help", true, kOn, kSymComplete, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOff, kSymComplete, true},
                                                      {"Prev", true, kOff, kSymComplete, true},
                                                      {"Next", true, kOn, kSymBitmap, true},
                                                      {"Finish", false, kOn, kSymComplete, true},
                                                      {"Save", false, kOn, kSymComplete, true},
                                                      {"Cancel", true, kOn, kSymComplete, false}}},
                                           ButtonsOf{kSymDragging,
                                                     {{"Help", true, kOn, kSymComplete, true},
                                                      {"Clear", true, kOn, kSymComplete, true},
                                                      {"Restart", true, kOff, kSymComplete, true},
                                                      {"Prev", true, kOff, kSymComplete, true},
                                                      {"Next", true, kOn, kSymComplete, true},
                                                      {"Finish", false, kOn, kSymComplete, true},
                                                      {"Save", false, kOn, kSymComplete, true},
                                                      {"Cancel", true, kOn, kSymComplete, true}}},
                                           ButtonsOf{kSymBitmap,
                                                     {{"Help", true, kOn, kSymBitmap, true},
                                                      {"Clear", true, kOn, kSymBitmap, true},
                                                      {"Restart", true, kOn, kSymBitmap, true},
                                                      {"Prev", true, kOn, kSymComplete, true},
                                                      {"Next", false, kOn, kSymBitmap, true},
                                                      {"Finish", true, kOn, kSymName, true},
                                                      {"Save", false, kOn, kSymBitmap, true},
                                                      {"Cancel", true, kOn, kSymBitmap, false}}},
                                           ButtonsOf{kSymName,
                                                     {{"Help", true, kOn, kSymName, true},
                                                      {"Clear", true, kOn, kSymEmpty, true},
                                                      {"Restart", true, kOn, kSymName, true},
                                                      {"Prev", true, kOn, kSymBitmap, true},
                                                      {"Next", false, kOn, kSymName, true},
                                                      {"Finish", false, kOn, kSymName, true},
                                                      {"Cancel", true, kOn, kSymName, false},
                                                      {"Save", true, kOn, kSymName, false}}}),
                         [](const auto& made) {
                           return "State" + std::to_string(made.param.state);
                         });

}  // namespace
}  // namespace gromlit
