// The tool with input that somebody made to harm: documents, streams and names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temp_install.h"
#include "tests/unit/tools/run_tool.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

constexpr const char* kSymbol = R"({"kind":"symbol","name":"L"})";

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Of the largest child so far, kilobytes.
long LargestChild() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return usage.ru_maxrss;
}

// The names that come up in a directory, whether they stay or not.
class Watch {
 public:
  explicit Watch(const std::string& directory) : fd_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    EXPECT_GE(inotify_add_watch(fd_, directory.c_str(), IN_CREATE | IN_MOVED_TO | IN_MODIFY), 0);
  }
  ~Watch() { close(fd_); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    alignas(inotify_event) char events[1 << 14];
    for (ssize_t got = 0; (got = read(fd_, events, sizeof events)) > 0;) {
      for (ssize_t at = 0; at < got;) {
        const auto* event = reinterpret_cast<const inotify_event*>(events + at);
        names.emplace_back(event->len > 0 ? event->name : "");
        at += static_cast<ssize_t>(sizeof *event + event->len);
      }
    }
    return names;
  }

 private:
  int fd_;
};

class HostileInput : public ::testing::Test {
 protected:
  ToolResult Pack(const std::string& document) {
    return RunTool({"pack", "-", "-o", packed}, document);
  }
  std::vector<std::string> NamesIn(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  // Runs the tool with a limit on the size of files.
  ToolResult WithFileLimit(rlim_t bytes, const std::vector<std::string>& arguments,
                           const std::string& input, const std::string& output = "") {
    return RunTool(arguments, input, output, [bytes] {
      rlimit limit{};
      getrlimit(RLIMIT_FSIZE, &limit);
      limit.rlim_cur = bytes;
      setrlimit(RLIMIT_FSIZE, &limit);
    });
  }

  TempInstall install;
  std::string packed = install / "packed";
};

// --- Documents ----------------------------------------------------------------------------------

TEST_F(HostileInput, ManyKeysTakeTimeInProportion) {
  std::string document = R"({"kind":"symbol")";
  for (int i = 0; i < 200'000; i++) document += ",\"k" + std::to_string(i) + "\":0";
  const double before = ProcessorSeconds();
  const ToolResult result = Pack(document + "}");
  EXPECT_LT(ProcessorSeconds() - before, 2.0);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: standard input: more than 64 keys in one object\n");
  const ToolResult inside =
      Pack(R"({"kind":"plugin","actions":[{},{"symbol":)" + document + "}}]}");
  EXPECT_THAT(inside.err, HasSubstr(": actions[1].symbol: more than 64 keys in one object"));
}

TEST_F(HostileInput, NulEndsNoDocument) {
  using namespace std::string_literals;
  for (const std::string& rest : {"\0"s, "\0rest"s, "\n\0{}"s}) {
    const ToolResult result = Pack(kSymbol + rest);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err,
                HasSubstr(rest[0] == '\n' ? "line 2: a NUL byte" : "line 1: a NUL byte"));
    EXPECT_FALSE(Exists(packed));
  }
  const ToolResult stroke = RunTool({"signature"}, "1 2\n3 \0 4\n"s);
  EXPECT_EQ(stroke.status, 2);
  EXPECT_THAT(stroke.err, HasSubstr("line 2: a NUL byte"));
}

TEST_F(HostileInput, RepeatedKeyIsNamedWithItsPlace) {
  EXPECT_THAT(Pack(R"({"kind":"plugin","actions":[{},{"name":"a","name":"b"}]})").err,
              HasSubstr(": actions[1]: key \"name\" appears twice"));
  EXPECT_THAT(Pack(R"({"a":{"b":[[{"c":1,"c":2}]]}})").err,
              HasSubstr(": a.b[0][0]: key \"c\" appears twice"));
}

TEST_F(HostileInput, WrongValueIsNamed) {
  const struct {
    const char* document;
    const char* message;
  } cases[] = {
      {"[]", "an object with a \"kind\" is expected, not a list"},
      {"{}", "an object with a \"kind\" is expected, the key is missing"},
      {R"({"kind":"Symbol"})",
       "kind: \"symbol\", \"plugin\" or \"options\" is expected, not \"Symbol\""},
      {R"({"kind":"symbol","name":5})", "name: a string is expected, not 5"},
      {R"({"kind":"symbol","name":"a\u0100"})",
       "name: holds a character above U+00FF in \"a\u0100\""},
      {R"({"kind":"symbol","points":{}})", "points: a list is expected, not an object"},
      {R"({"kind":"symbol","points":[[1]]})",
       "points[0]: a pair of numbers is expected, not a list of 1"},
      {R"({"kind":"symbol","points":[[1,2.5]]})", "points[0]: a whole number is expected, not 2.5"},
      {R"({"kind":"symbol","icon":"none"})",
       "icon: \"auto\", \"arrow\" or 32 rows are expected, not \"none\""},
      {R"({"kind":"plugin","actions":[3]})", "actions[0]: an object is expected, not 3"},
      {R"({"kind":"symbol","name":"12345678901234567890123456789012"})",
       "name: longer than 31 bytes: \"12345678901234567890123456789012\""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Pack(c.document).err,
              "gromlit-tool: standard input: " + std::string(c.message) + "\n");
  EXPECT_LT(Pack(R"({"kind":")" + std::string(100'000, 'x') + "\"}").err.size(), 200u);
}

// --- Streams ------------------------------------------------------------------------------------

TEST_F(HostileInput, EndlessStreamsTakeLittleMemory) {
  ToolResult result = RunTool({"pack", "/dev/zero", "-o", packed});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: /dev/zero: line 1: a NUL byte\n");
  result = RunTool({"signature", "/dev/zero"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: /dev/zero: line 1: a NUL byte\n");
  EXPECT_LT(LargestChild(), 64 * 1024);
}

TEST_F(HostileInput, StrokeThatNeverEndsIsCutOff) {
  std::string lines;
  while (lines.size() <= (size_t{16} << 20)) lines += "1234 1234\n";
  const ToolResult result = RunTool({"signature"}, lines);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: standard input: larger than 16 MB\n");
}

// --- Output -------------------------------------------------------------------------------------

TEST_F(HostileInput, FileSizeLimitIsAnErrorAndLeavesNothing) {
  WriteText(packed, "old");
  const ToolResult result = WithFileLimit(200, {"pack", "-", "-o", packed}, kSymbol);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: " + packed + ": File too large\n");
  EXPECT_EQ(ReadText(packed), "old");
  EXPECT_THAT(NamesIn(install.path()), ElementsAre("options", "packed", "plugins", "symbols"));
}

TEST_F(HostileInput, FileSizeLimitOfTheStandardOutputIsAnError) {
  ASSERT_EQ(Pack(kSymbol).status, 0);
  const ToolResult result = WithFileLimit(200, {"show", packed}, "", install / "shown");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "gromlit-tool: standard output: File too large\n");
}

TEST_F(HostileInput, TemporariesKeepOutOfDataDirectoriesBehindLinks) {
  fs::create_directory(install / "elsewhere");
  fs::create_directory_symlink(install / "plugins", install / "elsewhere/link");
  fs::create_directory_symlink(install / "elsewhere/link", install / "elsewhere/again");
  WriteText(install / "plugins/old.sla", "old");
  fs::create_symlink("../plugins/old.sla", install / "elsewhere/file");
  fs::create_symlink("link/new.sla", install / "elsewhere/dangling");
  fs::create_directory(install / "store");
  fs::create_directory(install / "other");
  fs::create_directory_symlink("../store", install / "other/plugins");
  const struct {
    const char* output;
    const char* lands;
    const char* never;  // where no temporary may be
  } cases[] = {{"elsewhere/link/a.sla", "plugins/a.sla", "plugins"},
               {"elsewhere/again/b.sla", "plugins/b.sla", "plugins"},
               {"elsewhere/file", "plugins/old.sla", "plugins"},
               {"elsewhere/dangling", "plugins/new.sla", "plugins"},
               {"other/plugins/c.sla", "store/c.sla", "store"},
               {"symbols/d.sls", "symbols/d.sls", "symbols"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.output);
    const Watch watch(install / c.never);
    const ToolResult result = RunTool({"pack", "-", "-o", install / c.output}, kSymbol);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(fs::file_size(install / c.lands), 441u);
    const std::vector<std::string> seen = watch.Names();
    EXPECT_THAT(seen, Contains(fs::path(c.lands).filename().string()));
    EXPECT_THAT(seen, Not(Contains(StartsWith(".gromlit-save-"))));
  }
}

// --- Names --------------------------------------------------------------------------------------

TEST_F(HostileInput, NamesReachTheTerminalHarmless) {
  const std::string plugin = install / "p\033[2J\n.sla";
  ASSERT_EQ(RunTool({"pack", "-", "-o", plugin}, R"({"kind":"plugin","actions":[
      {"name":"Gr\u00c3\u00bc\u00c3\u009fe\u001b[31m\n\t!","symbol":{"points":[[16,16],[264,16]]}}]})")
                .status,
            0);
  const ToolResult match = RunTool({"match", plugin}, "0 0\n100 0\n200 0\n300 0\n");
  EXPECT_EQ(match.out, "0\tGr\u00fc\u00dfe\\x1b[31m\\x0a\\x09!\n");
  const ToolResult missing = RunTool({"show", install / "\033]0;x\a\n"});
  EXPECT_EQ(missing.err,
            "gromlit-tool: " + install / "\\x1b]0;x\\x07\\x0a: " + "No such file or directory\n");
  EXPECT_EQ(Pack("{\"kind\":\"symbol\",\"\\u001b[2J\\n\":1}").err.find('\033'), std::string::npos);
  EXPECT_EQ(Pack("{\"\\u009b2J\":1,\"\\u009b2J\":1}").err,
            "gromlit-tool: standard input: key \"\\xc2\\x9b2J\" appears twice\n");
  const ToolResult usage = RunTool({"show", "x", "--bad\033[2J"});
  EXPECT_EQ(usage.status, 2);
  EXPECT_THAT(usage.err, HasSubstr("--bad\\x1b[2J"));
  EXPECT_EQ(usage.err.find('\033'), std::string::npos);
}

TEST_F(HostileInput, ShownDocumentsHoldNoControlCharacters) {
  const std::string document = R"({"kind":"symbol","name":"a\u007f\u009b2J\u0001\u00e4"})";
  ASSERT_EQ(Pack(document).status, 0);
  const auto image = ReadBytes(packed);
  const ToolResult shown = RunTool({"show", packed});
  EXPECT_THAT(shown.out, HasSubstr("\"name\": \"a\\u007f\\u009b2J\\u0001\u00e4\""));
  ASSERT_EQ(Pack(shown.out).status, 0);
  EXPECT_EQ(ReadBytes(packed), image);
}

}  // namespace
}  // namespace gromlit
