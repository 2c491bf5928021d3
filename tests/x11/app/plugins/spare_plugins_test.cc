// First: the test library's headers cannot bear Xlib's macros.
#include "tests/x11/app/main_window_fixture.h"

#include "app/plugins/spare_plugins.h"

#include <filesystem>

namespace gromlit {
namespace {

namespace fs = std::filesystem;

class SparePluginsTest : public testing::MainWindowFixture {
 protected:
  // A further file of the default plug-in.
  void CopyDefault(const std::string& name) {
    fs::copy_file(*install / "plugins/Default.sla", *install / ("plugins/" + name));
  }
  std::string Told() {
    Pump();
    return testing::ShownFailure();
  }
};

TEST_F(SparePluginsTest, NothingIsToldWhereEveryClassHasOneFile) {
  LoadPlugins();
  TellOfSparePlugins();
  EXPECT_EQ(Told(), "");
}

TEST_F(SparePluginsTest, FileThatIsNotUsedIsNamed) {
  CopyDefault("a\n\033copy");
  LoadPlugins();
  TellOfSparePlugins();
  EXPECT_EQ(Told(),
            "Of several plug-in files of one application only one is used."
            "/Not used: a\\x0a\\x1bcopy/  but: Default.sla");
}

TEST_F(SparePluginsTest, ManyAreCounted) {
  for (const char* name : {"4", "1", "3", "2"}) CopyDefault(name);
  LoadPlugins();
  TellOfSparePlugins();
  EXPECT_EQ(Told(),
            "Of several plug-in files of one application only one is used."
            "/Not used: 1/  but: Default.sla/Not used: 2/  but: Default.sla"
            "/and 2 more; gromlit-tool check lists them.");
}

}  // namespace
}  // namespace gromlit
