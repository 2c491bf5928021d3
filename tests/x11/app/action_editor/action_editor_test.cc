// First: the test library's headers do not stand Xlib's macros.
#include "tests/x11/app/action_fixture.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdio>
#include <ostream>

#include "recognition/signature_match.h"
#include "tests/x11/app/window_identity.h"
#include "tests/x11/toolkit/request_cost.h"

namespace gromlit {
namespace {

using ::testing::ElementsAre;

class ActionEditorTest : public testing::ActionFixture {
 protected:
  // Clicks a symbol in the open chooser.
  void Choose(const char* name) {
    const SymbolDisplay* chooser = SymbolChooser();
    int place = 0;
    while (place < chooser->count && FieldText(chooser->syms[place]->name) != name) place++;
    ASSERT_LT(place, chooser->count) << name;
    const int cell = chooser->iconwidth + 8;
    ClickIn(chooser->window, 8 + cell * (place % chooser->ncols) + cell / 2,
            8 + SymbolCellHeight(chooser) * (place / chooser->ncols) + 16);
    ASSERT_EQ(chooser->selected, place);
  }
};

struct Place {
  int x;
  int y;
  int width;
  int height;
  bool operator==(const Place&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Place& place) {
  return out << place.width << "x" << place.height << "+" << place.x << "+" << place.y;
}

Place PlaceOf(Window window) {
  Window rootwin;
  int x;
  int y;
  unsigned width;
  unsigned height;
  unsigned border;
  unsigned depth;
  XGetGeometry(dpy, window, &rootwin, &x, &y, &width, &height, &border, &depth);
  return {x, y, static_cast<int>(width), static_cast<int>(height)};
}

GromlitSymbol* SymbolNamed(const char* name) {
  for (auto* node = allSymbols; node->sym != nullptr; node = node->next) {
    if (FieldText(node->sym->name) == name) return node->sym;
  }
  return nullptr;
}

// --- The window ---------------------------------------------------------------------------------

TEST_F(ActionEditorTest, NothingOpensBeforeItWasMade) {
  ActionEditor* made = act;
  act = nullptr;
  EditNewAction(plugin);
  EditAction(plugin, Have("One", {}));
  ShowActionEditor();
  tabDeselectCommand();
  EXPECT_EQ(editingPlugin, 0);
  act = made;
  Pump();
  EXPECT_FALSE(Open());
}

TEST_F(ActionEditorTest, TheWindowIsHiddenAndKnownToWindowManagers) {
  EXPECT_FALSE(Open());
  EXPECT_EQ(editingPlugin, 0);
  EXPECT_EQ(PlaceOf(act->window), (Place{0, 0, 560, 454}));
  testing::ExpectIdentity(act->window, {.title = "Gromlit: Action Editor",
                                        .icontitle = "Gromlit: Action Editor",
                                        .name = "ActionEditor",
                                        .width = 560,
                                        .height = 454});
}

TEST_F(ActionEditorTest, EverythingLiesWhereItBelongs) {
  const int w = act->tbar->width;
  EXPECT_EQ(PlaceOf(act->logo->window).x, 16);
  EXPECT_EQ(PlaceOf(act->logo->window).y, 16);
  EXPECT_EQ(PlaceOf(act->logo->window).width, 528);
  EXPECT_STREQ(act->logo->title, "A c t i o n    E d i t o r");
  EXPECT_EQ(PlaceOf(act->tbar->window), (Place{16, 100, w, 180}));
  EXPECT_EQ(PlaceOf(act->txt->window), (Place{w + 28, 100, 128, 24}));
  EXPECT_EQ(PlaceOf(act->icon->window), (Place{w + 176, 100, 40, 40}));
  EXPECT_EQ(PlaceOf(act->lst->window), (Place{16, 304, w - 23, 84}));
  EXPECT_EQ(PlaceOf(act->sbar->window), (Place{w + 1, 304, 15, 84}));
  const int y = 454 - 40;
  const auto button = [](const XButton* b) {
    const Place place = PlaceOf(b->window);
    return std::string(b->label) + " " + std::to_string(place.x) + "," + std::to_string(place.y) +
           " " + std::to_string(place.width);
  };
  const auto at = [](const std::string& label, int x, int top, int width) {
    return label + " " + std::to_string(x) + "," + std::to_string(top) + " " +
           std::to_string(width);
  };
  EXPECT_EQ(button(act->bhelp), at("Help", 16, y, 64));
  EXPECT_EQ(button(act->bmoveup), at("Move Up", w - 168, y, 84));
  EXPECT_EQ(button(act->bmovedown), at("Move Down", w - 68, y, 84));
  EXPECT_EQ(button(act->bsave), at("OK", 400, y, 64));
  EXPECT_EQ(button(act->bcancel), at("Cancel", 480, y, 64));
  EXPECT_EQ(PlaceOf(tab->ed->window), (Place{16, 40, w - 32, 24}));
  EXPECT_EQ(PlaceOf(tab->sys->window).x, 16);
  EXPECT_EQ(PlaceOf(tab->sys->window).y, 40);
  EXPECT_EQ(PlaceOf(tab->sys->window).width, w - 32);
  EXPECT_EQ(PlaceOf(tab->checkbox->window).x, 16);
  EXPECT_EQ(PlaceOf(tab->checkbox->window).y, 72);
  EXPECT_EQ(button(tab->badd), at("Add", w - 216, 148, 64));
  EXPECT_EQ(button(tab->bupdate), at("Update", w - 144, 148, 64));
  EXPECT_EQ(button(tab->bdelete), at("Delete", w - 72, 148, 64));
  EXPECT_EQ(Buttons(), "00001");
}

TEST_F(ActionEditorTest, DrawsItsTexts) {
  EditNewAction(plugin);
  Pump();
  const int w = act->tbar->width;
  const auto shows = [](const char* text, int x, int baseline) {
    return ShowsText(act->window, text, x, baseline, TextWidth(txtFontinfo, text) + 12);
  };
  // A blank is as wide as the gap before the plug-in's name.
  const std::string heading = "Edit PlugIn Action: " + std::string(plugin->appname);
  EXPECT_TRUE(shows(heading.c_str(), 16, 96));
  EXPECT_TRUE(shows("Name: ", w + 32, 96));
  EXPECT_TRUE(shows("Symbol: ", w + 176, 96));
  EXPECT_TRUE(shows("Commands: ", 16, 300));
  const char* const help[] = {"Click on the symbol",
                              "to change the action symbol.",
                              "",
                              "Click on the tabs to add",
                              "a command of that type.",
                              "Fill in the values,",
                              "and click on Add to add it.",
                              "",
                              "To edit an existing command,",
                              "click on it in the",
                              "list of commands."};
  int baseline = 2 * txtCharht + 148;
  for (const char* line : help) {
    EXPECT_TRUE(shows(line, w + 32, baseline)) << line;
    baseline += txtCharht;
  }
}

TEST_F(ActionEditorTest, HelpOpensItsPageInTheBrowser) {
  const std::string script = *install / "browser";
  const std::string seen = *install / "seen";
  testing::WriteText(
      script, "#!/bin/sh\necho \"$1\" > " + seen + ".new\nmv " + seen + ".new " + seen + "\n");
  ASSERT_EQ(chmod(script.c_str(), 0755), 0);
  GromlitUserOptions options{};
  CopyText(options.urlcmd, script + " %s");
  user = &options;
  EditNewAction(plugin);
  Pump();
  ClickOn(act->bhelp);
  EXPECT_TRUE(testing::WaitFor([&] { return testing::Exists(seen); }));
  EXPECT_EQ(testing::ReadText(seen),
            "file:" + std::string(GromlitPath) + "/help/action_editor.html\n");
  user = nullptr;
}

// --- Opening ------------------------------------------------------------------------------------

TEST_F(ActionEditorTest, ANewActionStartsWithTheFirstSymbolAndNoCommands) {
  EditNewAction(plugin);
  Pump();
  EXPECT_TRUE(Open());
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(act->plugin, plugin);
  EXPECT_EQ(act->edit, nullptr);
  EXPECT_EQ(Field(act->txt), "New");
  EXPECT_EQ(Field(tab->ed), "");
  EXPECT_EQ(act->action.ncmds, 0u);
  EXPECT_EQ(act->lst->nitems, 0);
  EXPECT_EQ(act->lst->selected, -1);
  EXPECT_EQ(act->tbar->selected, kHotKey);
  EXPECT_STREQ(act->action.sym.name, allSymbols->sym->name);
  EXPECT_EQ(Points(act->action.sym), Points(*allSymbols->sym));
  EXPECT_EQ(Buttons(), "00001");
  Picture("action_new");
}

TEST_F(ActionEditorTest, ANewActionWithAnEmptyLibraryStartsFromAnEmptySymbol) {
  EditNewAction(plugin);
  for (const char* name : {"Line", "Corner", "Square"}) {
    std::remove((*install / (std::string("symbols/") + name + ".sls")).c_str());
  }
  LoadSymbols();
  ASSERT_EQ(allSymbols->sym, nullptr);
  EditNewAction(plugin);
  Pump();
  EXPECT_TRUE(Open());
  EXPECT_STREQ(act->action.sym.name, "");
  EXPECT_EQ(act->action.sym.npoints, 0);
  for (const uint32_t row : act->action.sym.icon) EXPECT_EQ(row, 0u);
  ClickOn(act->bsave);
  EXPECT_EQ(Stored()->nactions, 1);
}

TEST_F(ActionEditorTest, AnExistingActionIsShownWithItsFirstCommandSelected) {
  GromlitAction* action =
      Have("Old", {Command(kText, "notes.txt", 1), Command(kRun, "xclock"), Command(kMenu, "F")});
  CopyGromlitSymbol(&action->sym, SymbolNamed("Square"));
  EditNewAction(plugin);
  ClickTab(kSound);
  EditAction(plugin, action);
  Pump();
  EXPECT_TRUE(Open());
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(act->edit, action);
  EXPECT_EQ(Field(act->txt), "Old");
  EXPECT_STREQ(act->action.sym.name, "Square");
  EXPECT_THAT(Lines(), ElementsAre("Text: notes.txt", "Run: xclock", "Menu: F"));
  EXPECT_EQ(act->lst->selected, 0);
  EXPECT_EQ(act->lst->top, 0);
  EXPECT_EQ(act->tbar->selected, kText);
  EXPECT_EQ(Field(tab->ed), "notes.txt");
  EXPECT_EQ(tab->checkbox->state, 1);
  EXPECT_EQ(Buttons(), "11111");
  for (int i = 0; i < 3; i++) EXPECT_NE(act->action.cmds[i], action->cmds[i]) << "a copy";
  // The highlight is on the screen.
  EXPECT_EQ(PixelOf(act->lst->window, act->lst->width - 12, 8), 0u);
  Picture("action_existing");
}

TEST_F(ActionEditorTest, AnActionWithoutCommandsHasNoSelection) {
  EditAction(plugin, Have("Long", {Command(kRun, "xclock")}));
  ASSERT_EQ(act->lst->selected, 0);
  EditAction(plugin, Have("Empty", {}));
  Pump();
  EXPECT_EQ(act->lst->nitems, 0);
  EXPECT_EQ(act->lst->selected, -1);
  EXPECT_EQ(Field(tab->ed), "");
  EXPECT_EQ(Buttons(), "00001");
}

TEST_F(ActionEditorTest, OpeningBringsTheBeginningOfALongListBack) {
  std::vector<GromlitCmd> commands;
  commands.reserve(40);
  for (int i = 0; i < 40; i++) commands.push_back(Command(kRun, std::to_string(i).c_str()));
  GromlitAction* action = Have("Long", commands);
  EditAction(plugin, action);
  act->sbar->pos = 1000;
  UpdateScrollbar(act->sbar);
  ASSERT_GT(act->lst->top, 0);
  EditAction(plugin, action);
  EXPECT_EQ(act->lst->top, 0);
  EXPECT_EQ(act->lst->selected, 0);
}

TEST_F(ActionEditorTest, OpeningAndSelectingDoNotWaitForTheServer) {
  std::vector<GromlitCmd> commands;
  commands.reserve(kMaxCommands);
  for (int i = 0; i < kMaxCommands; i++) commands.push_back(Command(kHotKey, "a"));
  GromlitAction* action = Have("Full", commands);
  EditAction(plugin, action);  // the keyboard's names are fetched once
  const testing::Cost open = testing::CostOf([&] { EditAction(plugin, action); });
  EXPECT_EQ(open.roundtrips, 0u);
  EXPECT_LT(open.requests, 400u) << "a list is drawn for every command";
  const testing::Cost select = testing::CostOf([&] {
    act->lst->selected = 1;
    actCommandSelect(act);
  });
  EXPECT_EQ(select.roundtrips, 0u);
}

TEST_F(ActionEditorTest, OpeningAgainGivesUpTheWorkOnTheFormerAction) {
  GromlitAction* first = Have("First", {Command(kRun, "one")});
  GromlitAction* second = Have("Second", {Command(kRun, "two")});
  EditAction(plugin, first);
  Pump();
  Add(kRun, "three");
  EditAction(plugin, second);
  Pump();
  EXPECT_THAT(Lines(), ElementsAre("Run: two"));
  ClickOn(act->bsave);
  EXPECT_EQ(first->ncmds, 1u);
  EXPECT_STREQ(first->cmds[0]->text, "one");
}

TEST_F(ActionEditorTest, ACommandOfAnUnknownTypeIsShownAndKept) {
  GromlitCmd strange = Command(kRun, "what");
  strange.type = 77;
  GromlitAction* action = Have("Strange", {strange});
  EditAction(plugin, action);
  Pump();
  EXPECT_THAT(Lines(), ElementsAre("Unknown: what"));
  EXPECT_EQ(act->tbar->selected, kHotKey);
  EXPECT_EQ(Field(tab->ed), "what");
  ClickOn(act->bsave);
  EXPECT_EQ(Stored()->actions[0]->cmds[0]->type, 77);
}

// --- The symbol ---------------------------------------------------------------------------------

TEST_F(ActionEditorTest, AClickOnTheSymbolLetsAnotherBeChosen) {
  GromlitAction* action = Have("Old", {Command(kRun, "one")});
  CopyGromlitSymbol(&action->sym, SymbolNamed("Line"));
  const std::string former = SymbolSignature(&action->sym);
  EditAction(plugin, action);
  Pump();
  ClickIn(act->icon->window, 20, 20);
  ASSERT_TRUE(Viewable(symselect->window));
  EXPECT_STREQ(symselect->title, "Select Symbol");
  Choose("Corner");
  Picture("action_choose_symbol");
  ClickOn(symselect->yes);
  EXPECT_FALSE(Viewable(symselect->window));
  EXPECT_STREQ(act->action.sym.name, "Corner");
  EXPECT_EQ(Points(act->action.sym), Points(*SymbolNamed("Corner")));
  EXPECT_STREQ(action->sym.name, "Line") << "before OK";
  ClickOn(act->bsave);
  EXPECT_STREQ(action->sym.name, "Corner");
  EXPECT_STREQ(Stored()->actions[0]->sym.name, "Corner");
  // The action matches its new shape and no longer the old one.
  const std::string now = SymbolSignature(SymbolNamed("Corner"));
  ASSERT_NE(now, former);
  EXPECT_EQ(SymbolSignature(&action->sym), now);
  EXPECT_NE(action->sym.signature, SymbolNamed("Corner")->signature) << "a pointer was copied";
}

TEST_F(ActionEditorTest, OkInTheChooserWithNothingSelectedChangesNothing) {
  EditNewAction(plugin);
  Pump();
  const std::string before = act->action.sym.name;
  ClickIn(act->icon->window, 20, 20);
  SymbolChooser()->selected = -1;
  ClickOn(symselect->yes);
  EXPECT_FALSE(Viewable(symselect->window));
  EXPECT_EQ(act->action.sym.name, before);
}

TEST_F(ActionEditorTest, CancelInTheChooserChangesNothing) {
  EditNewAction(plugin);
  Pump();
  const std::string before = act->action.sym.name;
  ClickIn(act->icon->window, 20, 20);
  Choose(before == "Line" ? "Corner" : "Line");
  ClickOn(symselect->no);
  EXPECT_FALSE(Viewable(symselect->window));
  EXPECT_EQ(act->action.sym.name, before);
}

TEST_F(ActionEditorTest, TheChooserClosesWithTheEditor) {
  for (XButton* button : {act->bcancel, act->bsave}) {
    EditNewAction(plugin);
    Pump();
    ClickIn(act->icon->window, 20, 20);
    ASSERT_TRUE(Viewable(symselect->window));
    XMoveWindow(dpy, symselect->window, 700, 500);
    Pump();
    ClickOn(button);
    EXPECT_FALSE(Open());
    EXPECT_FALSE(Viewable(symselect->window));
  }
}

TEST_F(ActionEditorTest, ADoubleClickInTheChooserAboveTheSymbolChoosesAndOpensItNoSecondTime) {
  EditNewAction(plugin);
  Pump();
  ClickIn(act->icon->window, 20, 20);
  ASSERT_TRUE(Viewable(symselect->window));
  // The dialog came up around the pointer, so that one of its symbols is under it already.
  player->Click(1);
  Pump();
  const GromlitSymbol* chosen = ChosenSymbol();
  ASSERT_NE(chosen, nullptr);
  player->Press(1);
  Pump();
  player->Release(1);
  Pump();
  EXPECT_STREQ(act->action.sym.name, chosen->name);
  EXPECT_FALSE(Viewable(symselect->window));
}

TEST_F(ActionEditorTest, TheChooserClosesWhenAnotherActionIsOpened) {
  GromlitAction* second = Have("Second", {});
  for (GromlitAction* next : {second, static_cast<GromlitAction*>(nullptr)}) {
    EditNewAction(plugin);
    Pump();
    ClickIn(act->icon->window, 20, 20);
    ASSERT_TRUE(Viewable(symselect->window));
    if (next != nullptr) {
      EditAction(plugin, next);
    } else {
      EditNewAction(plugin);
    }
    Pump();
    EXPECT_FALSE(Viewable(symselect->window)) << "its symbol was meant for the former action";
  }
}

TEST_F(ActionEditorTest, ASymbolOfSixtyFourPointsIsCopiedWhole) {
  GromlitSymbol* sym = SymbolNamed("Line");
  sym->npoints = 64;
  for (int i = 1; i <= 64; i++) {
    sym->x[i] = static_cast<uint16_t>(16 + 8 * (i % 30));
    sym->y[i] = static_cast<uint16_t>(16 + 8 * (i % 29));
  }
  EditNewAction(plugin);
  Pump();
  ClickIn(act->icon->window, 20, 20);
  Choose("Line");
  ClickOn(symselect->yes);
  ClickOn(act->bsave);
  EXPECT_EQ(Points(plugin->actions[0]->sym), Points(*sym));
}

// --- Closing ----------------------------------------------------------

TEST_F(ActionEditorTest, ClosingByTheWindowManagerLeavesGesturesOffUntilCancel) {
  EditNewAction(plugin);
  Pump();
  Add(kRun, "xclock");
  ASSERT_EQ(editingPlugin, 1);
  CloseByWindowManager();
  EXPECT_EQ(editingPlugin, 1);
  EXPECT_EQ(plugin->nactions, 0);
  // Shown again, the work is there; Cancel brings the gestures back.
  ShowActionEditor();
  Pump();
  EXPECT_TRUE(Open());
  EXPECT_THAT(Lines(), ElementsAre("Run: xclock"));
  ClickOn(act->bcancel);
  EXPECT_FALSE(Open());
  EXPECT_EQ(editingPlugin, 0);
}

TEST_F(ActionEditorTest, ReopenedByEditAndCancelledGesturesAreBack) {
  GromlitAction* action = Have("Old", {});
  EditAction(plugin, action);
  Pump();
  CloseByWindowManager();
  EXPECT_EQ(editingPlugin, 1);
  EditAction(plugin, action);
  Pump();
  ClickOn(act->bcancel);
  EXPECT_EQ(editingPlugin, 0);
}

TEST_F(ActionEditorTest, ShownBeforeAnyActionWasOpenedNothingCanBeSaved) {
  ShowActionEditor();
  Pump();
  EXPECT_EQ(editingPlugin, 1);
  Type(act->txt, "Orphan");
  ClickOn(act->bsave);
  EXPECT_TRUE(Open());
  EXPECT_TRUE(Told());
  EXPECT_EQ(Notice(), "This action belongs to no plug-in.\nIt was not saved.\n");
  EXPECT_EQ(plugin->nactions, 0);
  CloseNotice();
  ClickOn(act->bcancel);
  EXPECT_EQ(editingPlugin, 0);
}

}  // namespace
}  // namespace gromlit
