// Adding actions to a plug-in, as an editor does. What a user sees of it, and of deleting, is
// tested with the commands of the main window.
//
// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

namespace gromlit {
namespace {

using testing::ShownFailure;
using Texts = std::vector<std::string>;

class PluginActionsTest : public testing::MainWindowFixture {
 protected:
  // The names of the actions, which those in the file must be, too.
  Texts Actions() {
    EXPECT_EQ(NamesInFile(app->plugin), Names(app->plugin));
    return Names(app->plugin);
  }
};

TEST_F(PluginActionsTest, ANewActionIsAddedUnderItsNameAndSaved) {
  GromlitPlugin* plugin = ShowNew(1);
  const GromlitAction action = Action("ignored", 5);
  const GromlitAction* added = PluginNewAction(plugin, &action, "Fifth");
  ASSERT_NE(added, nullptr);
  EXPECT_EQ(plugin->actions[1], added);
  EXPECT_STREQ(added->name, "Fifth");
  EXPECT_STREQ(added->sym.name, "s5");
  EXPECT_EQ(Actions(), (Texts{"a0", "Fifth"}));
}

TEST_F(PluginActionsTest, ANameLongerThanItsFieldIsCut) {
  GromlitPlugin* plugin = ShowNew(0);
  const GromlitAction action = Action("ignored");
  ASSERT_NE(PluginNewAction(plugin, &action, std::string(200, 'n').c_str()), nullptr);
  EXPECT_EQ(Actions(), Texts{std::string(63, 'n')});
}

TEST_F(PluginActionsTest, WithoutANameOrAPluginNothingIsAdded) {
  GromlitPlugin* plugin = ShowNew(1);
  const GromlitAction action = Action("x");
  EXPECT_EQ(PluginNewAction(plugin, &action, ""), nullptr);
  EXPECT_EQ(PluginNewAction(nullptr, &action, "x"), nullptr);
  EXPECT_EQ(Actions(), Texts{"a0"});
  EXPECT_EQ(ShownFailure(), "");
}

TEST_F(PluginActionsTest, AnActionAddedBeforeTheFileWasReadJoinsThoseOfTheFile) {
  Plugin("Editor", "Edit.edit", 3);
  LoadPlugins();
  GetDefaultPlugin();
  GromlitPlugin* plugin = allPlugins->plugin;
  for (auto* node = allPlugins; node->plugin != nullptr; node = node->next)
    if (StrCmp(node->plugin->classname, "Edit.edit") == 0) plugin = node->plugin;
  ASSERT_EQ(plugin->nactions, 0);
  const GromlitAction action = Action("x");
  ASSERT_NE(PluginNewAction(plugin, &action, "late"), nullptr);
  EXPECT_EQ(NamesInFile(plugin), (Texts{"a0", "a1", "a2", "late"}));
}

}  // namespace
}  // namespace gromlit
