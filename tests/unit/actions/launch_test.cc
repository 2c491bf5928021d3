#include "actions/launch.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <span>
#include <string>
#include <vector>

#include "core/gromlit.h"
#include "core/strings.h"
#include "tests/support/captured.h"
#include "tests/support/recording.h"

namespace gromlit {
namespace {

using testing::Captured;
using testing::RecordOf;

class LaunchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    former_ = user;
    user = &options_;
    CopyText(options_.sndcmd, "recorder %s");
    CopyText(options_.urlcmd, "recorder %s");
  }
  void TearDown() override { user = former_; }

  void Sound(std::string_view command) { CopyText(options_.sndcmd, command); }
  void Browser(std::string_view command) { CopyText(options_.urlcmd, command); }

  // Checks that the started child recorded exactly these words and ended well.
  void ExpectStarted(pid_t child, const std::vector<std::string>& argv) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    const std::vector<std::string> lines = record_.Lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), RecordOf(argv));
  }

  int ExitStatus(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  testing::Recording record_;
  GromlitUserOptions options_{};
  GromlitUserOptions* former_ = nullptr;
};

TEST(WebService, PrefixesAreTheServicesPathsAndQueries) {
  EXPECT_STREQ(GromlitForumURLprefix,
               "http://" GROMLIT_WEB_HOST
               "/s.smart?x=0&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=");
  EXPECT_STREQ(GromlitRedirectURLprefix,
               "http://" GROMLIT_WEB_HOST
               "/s.smart?x=2&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&web=");
  EXPECT_STREQ(GromlitDownloadURLprefix,
               "http://" GROMLIT_WEB_HOST
               "/s.smart?x=1&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=");
  EXPECT_STREQ(GromlitUploadURLprefix, "http://" GROMLIT_WEB_HOST "/upload/plugin?");
}

TEST_F(LaunchTest, SoundCommandGetsTheFile) {
  Sound("recorder -q %s -v 2");
  ExpectStarted(PlaySoundFile("/sounds/a.wav"), {"recorder", "-q", "/sounds/a.wav", "-v", "2"});
}

TEST_F(LaunchTest, SoundNameWithABlankIsTwoArguments) {
  ExpectStarted(PlaySoundFile("my sound.wav"), {"recorder", "my", "sound.wav"});
}

TEST_F(LaunchTest, SoundCommandThatFillsItsFieldIsReadToItsEnd) {
  // 64 bytes without a NUL: the last one is dropped, nothing behind the field is read.
  GromlitUserOptions full{};
  const std::string word(54, 'w');
  const std::string line = "recorder " + word + "x";
  ASSERT_EQ(line.size(), static_cast<size_t>(kTextSize));
  line.copy(full.sndcmd, kTextSize);
  GromlitUserOptions* const former = user;
  user = &full;
  ExpectStarted(PlaySoundFile("a.wav"), {"recorder", word});
  user = former;
}

TEST_F(LaunchTest, SoundCommandThatIsMissingIsReportedByTheChild) {
  Sound("/nonexistent/player %s");
  const Captured error(STDERR_FILENO);
  EXPECT_EQ(ExitStatus(PlaySoundFile("a.wav")), 255);
  EXPECT_EQ(error.Text(), "Error in Sound Command: No such file or directory\n");
}

TEST_F(LaunchTest, EmptySoundCommandStartsNothing) {
  Sound("");
  const Captured error(STDERR_FILENO);
  EXPECT_EQ(PlaySoundFile("a.wav"), -1);
  EXPECT_EQ(error.Text(), "Error in Sound Command: No such file or directory\n");
}

TEST_F(LaunchTest, UrlWithoutAColonGetsHttpInFront) {
  ExpectStarted(LaunchBrowserURL("example.org/a?b=c"), {"recorder", "http://example.org/a?b=c"});
  ExpectStarted(LaunchBrowserURL(""), {"recorder", "http://"});
}

TEST_F(LaunchTest, UrlWithAPortIsTakenAsItIs) {
  ExpectStarted(LaunchBrowserURL("example.org:8080/a"), {"recorder", "example.org:8080/a"});
  ExpectStarted(LaunchBrowserURL("https://example.org"), {"recorder", "https://example.org"});
  ExpectStarted(LaunchBrowserURL("example.org/a:b"), {"recorder", "example.org/a:b"});
}

TEST_F(LaunchTest, BrowserCommandWithoutPlaceholderGetsNoUrl) {
  Browser("recorder --new-window");
  ExpectStarted(LaunchBrowserURL("example.org"), {"recorder", "--new-window"});
}

TEST_F(LaunchTest, PercentSignsOfTheUrlAreKept) {
  ExpectStarted(LaunchBrowserURL("http://h/a%20b%s%n"), {"recorder", "http://h/a%20b%s%n"});
}

TEST_F(LaunchTest, PercentSignsOfTheBrowserCommand) {
  Browser("recorder 100%% %d openURL(%s) %s");
  ExpectStarted(LaunchBrowserURL("http://h/"), {"recorder", "100%", "%d", "openURL(http://h/)"});
}

TEST_F(LaunchTest, UrlOfAnyLength) {
  const std::string url = "http://h/" + std::string(50'000, 'u');
  ExpectStarted(LaunchBrowserURL(url.c_str()), {"recorder", url});
}

TEST_F(LaunchTest, BrowserThatIsMissingIsReportedByTheChild) {
  Browser("/nonexistent/browser %s");
  const Captured error(STDERR_FILENO);
  EXPECT_EQ(ExitStatus(LaunchBrowserURL("example.org")), 255);
  EXPECT_EQ(error.Text(), "Error in Website Command: No such file or directory\n");
}

TEST_F(LaunchTest, InstallationFileIsAFileUrl) {
  const char* const former = GromlitPath;
  GromlitPath = "/opt/gromlit";
  ExpectStarted(LaunchGromlitFileURL("help/index.html"),
                {"recorder", "file:/opt/gromlit/help/index.html"});
  const std::string deep = "/" + std::string(300, 'd');
  GromlitPath = deep.c_str();
  ExpectStarted(LaunchGromlitFileURL("help/preferences.html"),
                {"recorder", "file:" + deep + "/help/preferences.html"});
  GromlitPath = former;
}

TEST_F(LaunchTest, InstallationPathIsOneWordOfTheAddress) {
  const char* const former = GromlitPath;
  GromlitPath = "/home/me/my gestures 100%/%20";
  ExpectStarted(LaunchGromlitFileURL("help/index.html"),
                {"recorder", "file:/home/me/my%20gestures%20100%25/%2520/help/index.html"});
  GromlitPath = former;
}

}  // namespace
}  // namespace gromlit
