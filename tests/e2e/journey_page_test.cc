// The page of the help about the first gestures, followed word for word by a user whose pointer
// comes across another application and the desktop on its ways.
#include "tests/e2e/editor_client.h"
#include "tests/e2e/front_end.h"
#include "tests/e2e/stored_files.h"
#include "tests/e2e/wandering_hand.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <set>

namespace gromlit {
namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;
using testing::Exists;
using testing::Point;
using testing::ReadText;
using testing::ShowFile;
using testing::Title;
using testing::WaitFor;

constexpr const char* kClass = "Mousepad.mousepad";
constexpr const char* kGreeting = "Kind regards, Ada";
constexpr XRectangle kLetterPlace = {800, 60, 440, 380};

// The tick in the symbol editor; strokes over the letter.
const std::vector<Point> kTick = {{24, 136}, {104, 240}, {256, 40}};
const std::vector<Point> kDrawTick = {{890, 250}, {950, 340}, {1080, 170}};
const std::vector<Point> kDrawEll = {{940, 180}, {940, 340}, {1080, 340}};

// What the page says, without its pictures: its words with single blanks between them.
std::string PageText() {
  std::string html = ReadText(GROMLIT_HELP "/journey.html");
  const size_t begin = html.find("<main>");
  html = html.substr(begin, html.find("</main>") - begin);
  for (size_t at; (at = html.find("<figure>")) != html.npos;)
    html.erase(at, html.find("</figure>", at) - at);
  std::string text;
  bool in_tag = false;
  for (const char c : html) {
    if (c == '<') in_tag = true;
    if (!in_tag && (c != '\n' && c != ' ')) text += c;
    if (!in_tag && (c == '\n' || c == ' ') && !text.empty() && text.back() != ' ') text += ' ';
    if (c == '>') in_tag = false;
  }
  while (text.ends_with(' ')) text.pop_back();
  return text;
}

class JourneyPageTest : public testing::FrontEnd {
 public:
  void SetUp() override {
    FrontEnd::SetUp();
    fs::copy(testing::Built("share/gromlit"), install->path(),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    // So few symbols that all of them are seen at once.
    const std::set<std::string> kept = {"C", "L", "O", "S", "V"};
    for (const std::string& name : NamesIn(*install / "symbols"))
      if (!kept.contains(fs::path(name).stem())) fs::remove(*install / "symbols/" + name);
    StartWindowManager("openbox");
    other_ = std::make_unique<testing::ProbeClient>(
        install->path(), std::vector<std::string>{"--class", "Other", "other", "--geometry",
                                                  "260x160+980+720", "--title", "Other"});
    letter_ = std::make_unique<testing::EditorClient>(
        player.get(), install->path(),
        testing::EditorStart{.argv = {"mousepad", "--disable-server"},
                             .classname = kClass,
                             .file = "letter.txt",
                             .text = "Dear Charles,\n\ndrawing beats typing.\n\n",
                             .place = kLetterPlace,
                             .plainuser = true});
    hand_ = std::make_unique<testing::WanderingHand>(player.get(), other_->window(),
                                                     Point{1100, 800}, Point{640, 1000});
    move_hand = [this](Point to) { hand_->MoveTo(to); };
  }
  void TearDown() override {
    if (HasFailure()) {
      if (const char* directory = std::getenv("GROMLIT_SCREENSHOTS"))
        testing::SaveScreen(player->display(), std::string(directory) + "/journey-page.png");
    }
    FrontEnd::TearDown();
  }

  // --- What the user does ---

  void Start() {
    LaunchInstalled();
    ASSERT_NE(WaitShown("Application"), Window{0});
  }
  void NameSoundPlayerAndBrowser() {
    Choose(Title::kOptions, testing::kPreferences);
    const Window window = WaitShown("Preferences");
    const int line = TextHeight();
    Replace(WaitChild(window, 16, 3 * line + 196), "aplay %s");
    Replace(WaitChild(window, 16, 3 * line + 244), "xdg-open %s");
    Ok(window, "Preferences");
    EXPECT_EQ(ShowFile(OptionsFile())["sndcmd"], "aplay %s");
    EXPECT_EQ(ShowFile(OptionsFile())["urlcmd"], "xdg-open %s");
  }
  void DeleteTheOneThatIsThere() {
    ASSERT_TRUE(Exists(PluginFile(kClass)));
    const std::vector<std::string> before = Plugins();
    ShowPlugIn("Mousepad");
    Choose(Title::kPlugIn, testing::kPlugInDelete);
    DialogLeft();
    EXPECT_TRUE(WaitFor([this] { return !Exists(PluginFile(kClass)); }));
    EXPECT_EQ(Plugins().size(), before.size() - 1);
  }
  void DrawASymbol() {
    MakeSymbol("Tick", kTick, {{26, 3}, {27, 3}, {28, 3}});
    const Json tick = ShowFile(SymbolFile("Tick"));
    EXPECT_EQ(tick["name"], "Tick");
    EXPECT_EQ(tick["points"].size(), kTick.size());
  }
  void DrawASymbolAtOnce() {
    Choose(Title::kSymbol, testing::kSymbolNew);
    const Window window = WaitShown("SymbolEditor");
    const Window area = WaitChild(window, 16, 100);
    ASSERT_TRUE(Over(area, kTick[0].x, kTick[0].y));
    const std::string empty = Look(area);
    const Point origin = OriginOf(area);
    std::vector<Point> corners;
    for (const Point& corner : kTick) corners.push_back({origin.x + corner.x, origin.y + corner.y});
    Draw(corners);
    EXPECT_TRUE(WaitFor([&] { return Look(area) != empty; })) << "no points";
    ClickChild(window, 144, 414);  // Clear
    EXPECT_TRUE(WaitFor([&] { return Look(area) == empty; })) << "the area is not empty";
    ClickChild(window, 480, 414);  // Cancel
    EXPECT_TRUE(WaitHidden("SymbolEditor"));
  }
  void PickTheApplication() {
    StartPicking();
    ASSERT_TRUE(Over(letter_->window(), 150, 200));
    EXPECT_TRUE(WaitFor([this] { return PickLabel() != 0 && Reads(PickLabel(), kClass); }));
    player->Click(1);
    EXPECT_TRUE(WaitFor([this] { return Exists(PluginFile(kClass)); }));
  }
  void NameThePlugIn() {
    ShowPlugIn(kClass);
    Choose(Title::kPlugIn, testing::kPlugInEdit);
    Replace(DialogField(), "Mousepad");
    DialogLeft();
    EXPECT_TRUE(WaitFor([this] { return Reads(PluginButton(), "Mousepad"); }));
    EXPECT_EQ(ShowFile(PluginFile(kClass))["appname"], "Mousepad");
  }
  void ShowThePlugIn() { ShowPlugIn("Mousepad"); }
  void OpenTheActionEditor() {
    Choose(Title::kAction, testing::kActionNew);
    const Window editor = WaitShown("ActionEditor");
    const int x = 16 + TextWidth("Edit PlugIn Action:") + 6;
    EXPECT_TRUE(WaitFor([&] {
      return LineReads(editor, x, 96, "Mousepad", x, x + TextWidth("Mousepad "));
    })) << "the editor names another plug-in";
  }
  void AddTheCommands() {
    AddCommand(Shown("ActionEditor"), kHotKey, "s");
    AddCommand(Shown("ActionEditor"), kText, kGreeting);
  }
  void NameTheAction() {
    const Window editor = Shown("ActionEditor");
    Replace(WaitChild(editor, BoxOf(TabBar(editor)).width + 28, 100), "Sign");
  }
  void ChooseTheTick() { ChooseInTheEditor(0); }
  void SaveTheAction() {
    Ok(Shown("ActionEditor"), "ActionEditor");
    ExpectTheAction("Tick", {"Control-s", kGreeting});
  }
  void ClickIntoTheLetter() {
    Over(letter_->window(), 200, 200);
    letter_->TakeFocus();
  }
  void DrawTheTick() {
    Draw(kDrawTick);
    EXPECT_TRUE(WaitFor([this] { return HasStar(); })) << "nothing was typed";
  }
  void SeeThatItIsNotSaved() { EXPECT_EQ(Greetings(), 0); }
  void OpenTheAction() {
    SelectCell(0);
    Choose(Title::kAction, testing::kActionEdit);
    WaitShown("ActionEditor");
  }
  void MoveTheTextUp() {
    const Window editor = Shown("ActionEditor");
    ClickCommand(editor, 1);
    ClickChild(editor, BoxOf(TabBar(editor)).width - 168, BoxOf(editor).height - 40);
  }
  void ChooseTheEll() {
    // The new one comes first, then the others as their directory gives them.
    int place = 1;
    for (const auto& entry : fs::directory_iterator(*install / "symbols")) {
      if (entry.path().stem() == "L") break;
      if (entry.path().stem() != "Tick") place++;
    }
    ChooseInTheEditor(place);
  }
  void SaveTheChange() {
    Ok(Shown("ActionEditor"), "ActionEditor");
    ExpectTheAction("L", {kGreeting, "Control-s"});
  }
  void DrawTheEll() {
    ClickIntoTheLetter();
    for (const char* c = kGreeting; *c != '\0'; c++) player->Type(XK_BackSpace);
    Draw(kDrawEll);
    EXPECT_TRUE(WaitFor([this] { return Greetings() == 1 && !HasStar(); }))
        << ReadText(letter_->file());
  }
  void SeeThatTheTickDoesNothing() {
    Draw(kDrawTick);
    EXPECT_TRUE(Settle());
    EXPECT_FALSE(HasStar());
    EXPECT_EQ(Greetings(), 1);
    EXPECT_TRUE(Exists(SymbolFile("Tick")));
  }
  void CopyTheAction() {
    ShowThePlugIn();
    SelectCell(0);
    ChoosePopup(0, testing::kPopupCopy);
    ChoosePopup(0, testing::kPopupPaste);
    EXPECT_TRUE(WaitFor([this] { return HasIcon(1); }));
    EXPECT_EQ(ShowFile(PluginFile(kClass))["actions"].size(), 2u);
  }
  void DeleteTheFirstOne() {
    Choose(Title::kAction, testing::kActionDelete);
    EXPECT_TRUE(WaitFor([this] { return !HasIcon(1); }));
    ClickIntoTheLetter();
    Draw(kDrawEll);
    EXPECT_TRUE(WaitFor([this] { return Greetings() == 2; })) << "the copy does nothing";
  }
  void DeleteThePlugIn() {
    const std::vector<std::string> before = Plugins();
    ShowThePlugIn();
    Choose(Title::kPlugIn, testing::kPlugInDelete);
    DialogLeft();
    EXPECT_TRUE(WaitFor([this] { return !Exists(PluginFile(kClass)); }));
    EXPECT_EQ(Plugins().size(), before.size() - 1);
  }
  void DeleteTheSymbol() {
    Choose(Title::kSymbol, testing::kSymbolDelete);
    ChooseSymbol(0);
    WaitDialog();
    DialogLeft();
    EXPECT_TRUE(WaitFor([this] { return !Exists(SymbolFile("Tick")); }));
    EXPECT_TRUE(Exists(SymbolFile("L")));
  }
  void ChangeThePreferences() {
    Choose(Title::kOptions, testing::kPreferences);
    const Window window = WaitShown("Preferences");
    ChoosePulldown(WaitChild(window, 16, 100), 1);
    Replace(WaitChild(window, 16, TextHeight() + 140), "7");
    Ok(window, "Preferences");
    ExpectTheMiddleButtonDraws();
  }
  void LeaveAndComeBack() {
    const std::string before = Everything();
    Choose(Title::kPlugIn, testing::kExit);
    const testing::Box box = BoxOf(WaitDialog());
    ClickChild(Dialog(), box.width - 144, box.height - 32);
    EXPECT_EQ(gromlit->Wait(), 0);
    EXPECT_TRUE(WaitFor([this] { return !GromlitIsReady(); }));
    EXPECT_EQ(Everything(), before);
    Start();
    ExpectTheMiddleButtonDraws();
    EXPECT_EQ(ShowFile(OptionsFile())["sensitivity"], 7);
    EXPECT_EQ(Everything(), before);
  }

  // --- Hands and eyes ---

  // By the button above the icons. On the way there the pointer came across something else.
  void ShowPlugIn(const std::string& name) {
    const int before = hand_->detours();
    Over(letter_->window(), 200, 200);
    ASSERT_TRUE(Over(PluginButton(), 12, 12));
    EXPECT_GT(hand_->detours(), before) << "the pointer went straight";
    EXPECT_TRUE(WaitFor([&] { return !Reads(PluginButton(), name); }))
        << "the pointer is not followed";
    ChoosePulldown(PluginButton(), name);
    EXPECT_TRUE(WaitFor([&] { return Reads(PluginButton(), name); }));
  }
  void Ok(Window window, const char* name) {
    ClickChild(window, 560 - 160, BoxOf(window).height - 40);
    EXPECT_TRUE(WaitHidden(name));
  }
  void ChooseInTheEditor(int place) {
    const Window editor = Shown("ActionEditor");
    ClickIn(WaitChild(editor, BoxOf(TabBar(editor)).width + 128 + 48, 100), 20, 20);
    ChooseSymbol(place);
  }
  void ExpectTheAction(const char* symbol, const std::vector<std::string>& texts) {
    const Json actions = ShowFile(PluginFile(kClass))["actions"];
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_EQ(actions[0]["name"], "Sign");
    EXPECT_EQ(actions[0]["symbol"]["name"], symbol);
    ASSERT_EQ(actions[0]["commands"].size(), texts.size());
    for (size_t i = 0; i < texts.size(); i++)
      EXPECT_EQ(actions[0]["commands"][i]["text"], texts[i]);
  }
  // Over the desktop; another button gives the stroke up.
  void ExpectTheMiddleButtonDraws() {
    Go({560, 960});
    player->Press(2);
    Trace({{560, 960}, {700, 960}});
    EXPECT_TRUE(WaitFor([this] { return !MappedOverlays().empty(); })) << "it does not draw";
    player->Click(1);
    player->Release(2);
    EXPECT_TRUE(WaitFor([this] { return MappedOverlays().empty(); }));
  }
  // Whether the letter's title says that it is not saved.
  bool HasStar() {
    char* name = nullptr;
    if (XFetchName(player->display(), letter_->window(), &name) == 0) return false;
    const bool star = name[0] == '*';
    XFree(name);
    return star;
  }
  // In the letter as it was saved.
  int Greetings() {
    const std::string text = ReadText(letter_->file());
    int count = 0;
    for (size_t at = 0; (at = text.find(kGreeting, at)) != text.npos; at++) count++;
    return count;
  }
  std::vector<std::string> Plugins() { return NamesIn(*install / "plugins"); }
  std::string Everything() {
    std::string all;
    for (const char* part : {"symbols", "plugins", "options"})
      for (const std::string& name : NamesIn(*install / part))
        all += std::string(part) + "/" + name + ":" + ReadText(*install / part + "/" + name);
    return all;
  }

  std::unique_ptr<testing::ProbeClient> other_;
  std::unique_ptr<testing::EditorClient> letter_;
  std::unique_ptr<testing::WanderingHand> hand_;
};

// The whole page in order: its words, and what a reader of them does; null where they only tell.
struct Words {
  const char* text;
  void (JourneyPageTest::*deed)();
};
using Page = JourneyPageTest;
constexpr Words kPage[] = {
    {"Your first gestures This page follows one gesture from its shape to its end: a tick that "
     "signs a letter in the text editor Mousepad. Take any other application that you have. "
     "Everything begins in Gromlit's main window. Its menus work with the button held: press on a "
     "title, go to an entry, let go.",
     &Page::Start},
    {"Before you begin Gestures that only type need nothing. For those that play sounds or open "
     "websites, and for the Help buttons, name your sound player and your browser once: choose "
     "\"Preferences\" from the menu \"Options\", put the pointer into \"Play Sound Command\" and "
     "\"Browser Command Line\", type, and press \"OK\". See there for what to type.",
     &Page::NameSoundPlayerAndBrowser},
    {"Gromlit comes with gestures for some applications, Mousepad among them. To make its plug-in "
     "yourself, as the pictures show it, delete that one first: press on the button above the "
     "icons of the main window, go to \"Mousepad\", let go, choose \"Delete\" from the menu "
     "\"Plug-In\" and press \"Yes\". For an application that is not in the list of that button "
     "there is nothing to delete.",
     &Page::DeleteTheOneThatIsThere},
    {"1. Draw a symbol Choose \"New\" from the menu \"Symbol\". The symbol editor opens. Click "
     "where the stroke begins, at its corner and where it ends, and on the end once more. Press "
     "\"Next\". Touch up the icon: a click turns a dot on or off. Press \"Finish\". Put the "
     "pointer into the field and type the name, \"Tick\". Press \"Save\". The editor closes; the "
     "symbol is in the library.",
     &Page::DrawASymbol},
    {"Instead of the clicks of the second step you can draw the tick at once: hold the right "
     "button over the empty area, draw, and let go. The corners of your stroke become the points; "
     "\"Clear\" empties the area for another try.",
     &Page::DrawASymbolAtOnce},
    {"2. Make a plug-in for the application Choose \"New\" from the menu \"Plug-In\" and press "
     "\"Yes\". Click on the application's window. The label at the pointer says which one it is.",
     &Page::PickTheApplication},
    {"The new plug-in has the name of the application's class. On its way back the pointer may "
     "cross other applications, whose plug-ins are then shown: press on the button above the "
     "icons, go to that name, and let go. For a friendlier one choose \"Edit\" from the menu "
     "\"Plug-In\", put the pointer into the field, empty it with Control-a and Control-k, type "
     "\"Mousepad\", and press \"OK\".",
     &Page::NameThePlugIn},
    {"3. Make an action On its way the pointer crosses other applications, and the main window "
     "shows their plug-ins. Press on the button above the grid, go to \"Mousepad\", and let go.",
     &Page::ShowThePlugIn},
    {"Choose \"New\" from the menu \"Action\". The action editor opens with the tab \"HotKey\"; "
     "\"Mousepad\" stands behind \"Edit PlugIn Action:\", for there the action goes.",
     &Page::OpenTheActionEditor},
    {"Put the pointer into the field and press Control-s, the editor's key to save. Press \"Add\". "
     "Click on the tab \"Text\", put the pointer into the field, type \"Kind regards, Ada\", and "
     "press \"Add\".",
     &Page::AddTheCommands},
    {"Put the pointer into the field below \"Name:\", empty it in the same way, and type \"Sign\".",
     &Page::NameTheAction},
    {"Click on the icon below \"Symbol:\". Click on your tick, which comes first, and press "
     "\"OK\".",
     &Page::ChooseTheTick},
    {"Press \"OK\". The action is saved, and the editor closes. While it was open, no strokes were "
     "taken.",
     &Page::SaveTheAction},
    {"Commands of the other kinds are added in the same way: see what they do.", nullptr},
    {"4. Draw it Click into the letter, so that the application has the keyboard.",
     &Page::ClickIntoTheLetter},
    {"Hold the right button, draw the tick, and let go.", &Page::DrawTheTick},
    {"The greeting is there, but the star in the title says that the letter was not saved with it: "
     "commands run in their order, and the hot key came first.",
     &Page::SeeThatItIsNotSaved},
    {"5. Change the order and the symbol Look at the main window: it shows the actions of the "
     "application that the pointer entered last. If it passed something else on its way, press on "
     "the button above the icons, go to \"Mousepad\", and let go.",
     &Page::ShowThePlugIn},
    {"Click on the icon of the action; it is highlighted. Choose \"Edit\" from the menu "
     "\"Action\". A double click does both.",
     &Page::OpenTheAction},
    {"Click on the line \"Text: Kind regards, Ada\" and press \"Move Up\".", &Page::MoveTheTextUp},
    {"Click on the icon below \"Symbol:\", then on the symbol \"L\", and press \"OK\".",
     &Page::ChooseTheEll},
    {"Press \"OK\".", &Page::SaveTheChange},
    {"Delete the greeting in the letter. Hold the right button and draw an L: down, then to the "
     "right.",
     &Page::DrawTheEll},
    {"The tick does nothing here any more. It is still in the library, for other actions.",
     &Page::SeeThatTheTickDoesNothing},
    {"6. Copy and delete Show the plug-in as before and select the action. Click with the right "
     "button over the icons: a menu opens. Click on \"Copy\". Open it again and click on "
     "\"Paste\".",
     &Page::CopyTheAction},
    {"\"Delete\" in the menu \"Action\" deletes the selected action at once. The copy does its "
     "work now.",
     &Page::DeleteTheFirstOne},
    {"\"Delete\" in the menu \"Plug-In\" deletes the plug-in that is shown with all its actions, "
     "after a question. The button above the icons names it.",
     &Page::DeleteThePlugIn},
    {"\"Delete\" in the menu \"Symbol\" lets you choose a symbol. Click on your tick and press "
     "\"OK\"; you are asked once more.",
     &Page::DeleteTheSymbol},
    {"7. Change the preferences Choose \"Preferences\" from the menu \"Options\". Press on the "
     "button below \"Draw Button:\", go to \"Middle\", and let go. Put the pointer into the field "
     "below \"Draw Sensitivity Pixels:\" and change the number. Press \"OK\". From now on the "
     "middle button draws.",
     &Page::ChangeThePreferences},
    {"8. Leave, and come back Choose \"Exit\" from the menu \"Plug-In\" and press \"Yes\". There "
     "is nothing to save: symbols, actions and preferences are stored when you press \"Save\" or "
     "\"OK\". Start Gromlit again, and all is as you left it.",
     &Page::LeaveAndComeBack},
};

TEST_F(JourneyPageTest, EveryWordOfThePageIsTrue) {
  std::string whole;
  for (const Words& words : kPage) whole += (whole.empty() ? "" : " ") + std::string(words.text);
  ASSERT_EQ(PageText(), whole) << "the page says something else than what is tried here";
  for (const Words& words : kPage) {
    SCOPED_TRACE(words.text);
    if (words.deed != nullptr) (this->*words.deed)();
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace gromlit
