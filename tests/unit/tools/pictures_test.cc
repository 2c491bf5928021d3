// icon and sheet: what the pictures show, whatever the files hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/support/temp_install.h"
#include "tests/unit/core/golden.h"
#include "tests/unit/tools/run_tool.h"
#include "tools/markup.h"

namespace gromlit {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsSubsetOf;
using ::testing::Not;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the tests' own helpers

size_t Count(const std::string& text, const std::string& part) {
  size_t n = 0;
  for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) n++;
  return n;
}

// The elements that a text opens.
std::set<std::string> Elements(const std::string& text) {
  std::set<std::string> names;
  for (size_t at = text.find('<'); at != text.npos; at = text.find('<', at + 1))
    if (text[at + 1] != '/')
      names.insert(text.substr(at + 1, text.find_first_of(" >", at) - at - 1));
  return names;
}

class Pictures : public ::testing::Test {
 protected:
  std::string PackSymbol(const std::string& keys) {
    const std::string file = scratch / "symbol.sls";
    const ToolResult packed =
        RunTool({"pack", "-", "-o", file}, R"({"kind":"symbol","name":"S",)" + keys + "}");
    EXPECT_EQ(packed.status, 0) << packed.err;
    return file;
  }
  // The stroke of a symbol with these points.
  std::string Stroke(const std::string& points) {
    const std::string out = scratch / "stroke.svg";
    const ToolResult result = RunTool({"icon", PackSymbol("\"points\":" + points), "-o", out});
    EXPECT_EQ(result.status, 0) << result.err;
    return ReadText(out);
  }
  void ImportPlugins(const std::string& plugins) {
    const ToolResult result = RunTool({"import", "-", install.path()},
                                      R"({"kind":"collection","plugins":[)" + plugins + "]}");
    ASSERT_EQ(result.status, 0) << result.err;
  }
  // The sheet as a file of this name.
  std::string Sheet(const std::string& name, const std::vector<std::string>& flags = {}) {
    std::vector<std::string> arguments = {"sheet", install.path(), "-o", scratch / name};
    arguments.insert(arguments.end(), flags.begin(), flags.end());
    const ToolResult result = RunTool(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return ReadText(scratch / name);
  }

  TempDir scratch;
  TempInstall install;
};

// --- Icons --------------------------------------------------------------------------------------

TEST_F(Pictures, IconAsPngHasItsBits) {
  WriteBytes(scratch / "L.sls", GoldenSymbolFile());  // bits of the first and the last corner
  ASSERT_EQ(RunTool({"icon", scratch / "L.sls", "-o", scratch / "L.png"}).status, 0);
  const auto file = ReadBytes(scratch / "L.png");
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  ASSERT_NE(png_image_begin_read_from_memory(&image, file.data(), file.size()), 0);
  ASSERT_EQ(image.width, 32u);
  ASSERT_EQ(image.height, 32u);
  image.format = PNG_FORMAT_GRAY;
  std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
  ASSERT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
  for (size_t i = 0; i < pixels.size(); i++)
    EXPECT_EQ(pixels[i], i == 0 || i == 1023 ? 0 : 255) << i;
}

TEST_F(Pictures, StrokeBeginsWithADotAndEndsWithAnArrow) {
  const std::string svg = Stroke("[[16,16],[16,264],[264,264]]");
  EXPECT_THAT(svg, AllOf(HasSubstr("d=\"M16 16L16 264L227.6 264\""),        // ends in the arrow
                         HasSubstr("cx=\"16\" cy=\"16\""),                  // the dot
                         HasSubstr("d=\"M264 264L212 295.2L212 232.8Z")));  // points to the right
  EXPECT_THAT(svg, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns="));
}

TEST_F(Pictures, StrokeThatGoesBackOnItselfIsDrawnBesideItself) {
  // Its end is taken back a little, so that the arrow is clear of the dot.
  EXPECT_THAT(Stroke("[[40,136],[240,136],[40,136]]"),
              HasSubstr("d=\"M40 136L240 136L240 174L100.4 174\""));
  // To the side where it goes on: the stem of a P, down and up again, then to the right.
  EXPECT_THAT(Stroke("[[40,40],[40,240],[40,40],[200,40]]"),
              HasSubstr("d=\"M40 40L40 240L78 240L78 40L201.6 40\""));
  EXPECT_THAT(Stroke("[[200,40],[200,240],[200,40],[40,40]]"),
              HasSubstr("d=\"M200 40L200 240L162 240L162 40L38.4 40\""));
}

TEST_F(Pictures, StrokeOffTheGridIsSnappedToItAndEqualPointsAreOne) {
  EXPECT_THAT(Stroke("[[0,0],[0,0],[65535,0],[65535,65535]]"),
              HasSubstr("d=\"M16 16L264 16L264 227.6\""));
  // Nothing but one place, and no points at all: no line, and nothing that is no number.
  for (const char* points : {"[[16,16],[16,16]]", "[]"})
    EXPECT_THAT(Stroke(points), AllOf(Not(HasSubstr("nan")), Not(HasSubstr("stroke="))));
}

TEST_F(Pictures, SymbolOfAnIconAloneIsDrawnByItsBits) {
  std::string rows;
  for (int i = 0; i < 32; i++)
    rows +=
        std::string(i == 0 ? "" : ",") + "\"" + (i == 5 ? "#" : ".") + std::string(31, '.') + "\"";
  const std::string out = scratch / "icon.svg";
  ASSERT_EQ(RunTool({"icon", PackSymbol("\"icon\":[" + rows + "]"), "-o", out}).status, 0);
  EXPECT_THAT(ReadText(out), HasSubstr("d=\"M0 5h1v1h-1z\""));
}

TEST_F(Pictures, SaysWhatItCannotDraw) {
  const std::string symbol = PackSymbol("\"points\":[]");
  EXPECT_THAT(RunTool({"icon", symbol, "-o", scratch / "x.gif"}).err,
              HasSubstr("ends neither in .png nor in .svg"));
  WriteBytes(scratch / "P.sla", GoldenPluginFile());
  const ToolResult plugin = RunTool({"icon", scratch / "P.sla", "-o", scratch / "x.png"});
  EXPECT_EQ(plugin.status, 2);
  EXPECT_THAT(plugin.err, HasSubstr("no symbol file"));
  EXPECT_EQ(RunTool({"sheet", install.path(), "-o", scratch / "x.html"}).status, 2);  // no plug-in
  EXPECT_EQ(RunTool({"sheet", scratch / "absent", "-o", scratch / "x.html"}).status, 2);
  ImportPlugins(R"({"classname":"C"})");
  EXPECT_EQ(RunTool({"sheet", install.path(), "-o", scratch / "x.pdf"}).status, 2);
  EXPECT_EQ(RunTool({"sheet", install.path(), "-o", scratch / "x.svg", "--part"}).status, 2);
  EXPECT_EQ(RunTool({"sheet", install.path(), "-o", scratch / "x.html", "--paper", "1"}).status, 2);
  for (const char* name : {"x.gif", "x.png", "x.html", "x.pdf", "x.svg"})
    EXPECT_FALSE(fs::exists(scratch / name)) << name;
}

// --- The sheet ----------------------------------------------------------------------------------

constexpr const char* kLine = R"("symbol":{"points":[[16,16],[264,16]]})";

TEST_F(Pictures, SheetSaysWhatEachGestureDoes) {
  const std::string line = kLine;
  ImportPlugins(R"({"appname":"Zed","classname":"Zed.zed","actions":[)"
                R"({"name":"Keys",)" +
                line +
                R"(,"commands":[{"type":"HotKey","keys":[[46,4]],"text":"Control-l"},)"
                R"({"type":"HotKey","keys":[[46,5]]},{"type":"Menu","text":"f"}]},)"
                R"({"name":"Words",)" +
                line +
                R"(,"commands":[{"type":"Text","text":"hello"},)"
                R"({"type":"Text","text":"notes","checked":1},{"type":"Sound","text":"bell.wav"},)"
                R"({"type":"Run","text":"xterm -e top"},{"type":"Internet","text":"gnu.org"},)"
                R"({"type":"Internet","checked":1},{"type":200}]},)"
                R"({"name":"Keys",)" +
                line +
                R"(,"commands":[{"type":"Run","text":"other"}]}]},)"
                R"({"appname":"Ack","classname":"Ack","spare1":1},)"
                R"({"appname":"Default","classname":"Default","actions":[)"
                R"({"name":"Two",)" +
                line + R"(},{"name":"One",)" + line + R"(},{"name":"Two",)" + line + "}]}");
  const std::string page = Sheet("sheet.html");
  for (const char* part :
       {"<strong>Keys</strong><br><kbd>Control-l</kbd><br><kbd>Control-Shift-key46</kbd>"
        "<br>Menu <kbd>Alt-f</kbd></p>",
        "Type <code>hello</code><br>Type the file <code>notes</code><br>Play <code>bell.wav</code>"
        "<br>Run <code>xterm -e top</code><br>Visit <code>gnu.org</code><br>Open the Gromlit forum"
        "<br>Nothing: command type 200</p>",
        "<p class=\"where\">Over windows of the class Ack; hands off: no gestures there.</p>",
        "<p class=\"where\">Over every application without gestures of its own.</p>"})
    EXPECT_THAT(page, HasSubstr(part));
  // Default comes first, then the others by name.
  EXPECT_LT(page.find("<h2>Default"), page.find("<h2>Ack"));
  EXPECT_LT(page.find("<h2>Ack"), page.find("<h2>Zed"));
  // What has one name and does the same stands together, with all its drawings; of one name alone
  // it does not.
  EXPECT_EQ(Count(page, "<strong>Two</strong>"), 1u);
  EXPECT_EQ(Count(page, "<strong>Keys</strong>"), 2u);
  EXPECT_EQ(Count(page, "<svg "), 6u);
  // One file, which asks for nothing.
  EXPECT_THAT(page, AllOf(Not(HasSubstr("http")), Not(HasSubstr("url(")), Not(HasSubstr("src="))));
  // The sections alone are what the page holds.
  EXPECT_THAT(page, HasSubstr(Sheet("part.html", {"--part"})));
}

TEST_F(Pictures, SheetShowsFourWaysToDrawAThingAndCountsTheOthers) {
  std::string actions;
  for (int i = 0; i < 6; i++)
    actions += std::string(i == 0 ? "" : ",") + R"({"name":"Go",)" + kLine + "}";
  ImportPlugins(R"({"classname":"C","actions":[)" + actions + "]}");
  for (const char* name : {"sheet.html", "sheet.svg"}) {
    const std::string text = Sheet(name);
    EXPECT_EQ(Count(text, "<circle "), 4u) << name;
    EXPECT_THAT(text, HasSubstr("and 2 more ways to draw it")) << name;
  }
}

TEST_F(Pictures, NothingInAFileIsMarkup) {
  const std::string evil = R"(<script>alert('1')</script>\"&amp;]]><!--)";
  const std::string latin = R"(\u00e4\u0000)";  // a byte of an older encoding
  ImportPlugins(R"({"appname":")" + evil + R"(","classname":")" + evil +
                R"(","actions":[{"name":")" + evil + R"(","symbol":{"name":"<b>&"},"commands":[)" +
                R"({"type":"Run","text":"\n\u001b\u0000)" + evil + R"("},)" +
                R"({"type":"Text","text":")" + evil + R"("}]},{"name":")" + latin + R"("}]})");
  const std::set<std::string> known = {"svg",  "path",     "circle", "g",    "text", "style",
                                       "rect", "!DOCTYPE", "html",   "head", "meta", "title",
                                       "body", "main",     "h1",     "h2",   "p",    "ul",
                                       "li",   "strong",   "br",     "kbd",  "code"};
  for (const char* name : {"sheet.html", "sheet.svg"}) {
    const std::string text = Sheet(name);
    EXPECT_THAT(Elements(text), IsSubsetOf(known)) << name;
    EXPECT_THAT(text, AllOf(HasSubstr("&lt;script&gt;"), Not(HasSubstr("\x1b")),
                            Not(HasSubstr(std::string(1, '\0'))), HasSubstr("\xc3\xa4")))
        << name;
  }
}

TEST_F(Pictures, ALongSheetIsCutIntoPapersThatHoldAllOfIt) {
  std::string actions;
  for (int i = 0; i < 128; i++)
    actions += std::string(i == 0 ? "" : ",") + R"({"name":"Action )" + std::to_string(i) + "\"," +
               kLine + "}";
  ImportPlugins(R"({"classname":"C","actions":[)" + actions + R"(]},{"classname":"D","actions":[)" +
                actions + "]}");
  const std::string whole = Sheet("whole.svg");
  EXPECT_EQ(Count(whole, ">Action "), 256u);
  size_t shown = 0;
  int papers = 0;
  for (;;) {
    const ToolResult result = RunTool({"sheet", install.path(), "-o", scratch / "paper.svg",
                                       "--paper", std::to_string(papers + 1)});
    if (result.status == 1) break;
    ASSERT_EQ(result.status, 0) << result.err;
    const std::string paper = ReadText(scratch / "paper.svg");
    shown += Count(paper, ">Action ");
    EXPECT_THAT(paper, HasSubstr("width=\"595pt\" height=\"842pt\""));
    papers++;
  }
  EXPECT_EQ(shown, 256u);
  EXPECT_GE(papers, 4);
  EXPECT_LE(papers, 8);
}

TEST(Markup, ReplacesWhatNoTextHas) {
  EXPECT_EQ(Markup("a<b>&\"'"), "a&lt;b&gt;&amp;&quot;&#39;");
  EXPECT_EQ(Markup("\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80"),
            "\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80");
  EXPECT_EQ(Markup("\xe4"), "\xc3\xa4") << "no UTF-8: a letter of an older encoding";
  EXPECT_EQ(Markup("a\tb\x01"), "a b\xef\xbf\xbd");
  EXPECT_EQ(Markup("\xe2\x80\xae\xef\xbf\xbf"), "\xef\xbf\xbd\xef\xbf\xbd") << "U+202E, U+FFFF";
  EXPECT_EQ(Escaped(Shortened(U"abcdef", 5)), "ab...");
  EXPECT_EQ(Escaped(Shortened(U"abcde", 5)), "abcde");
}

}  // namespace
}  // namespace gromlit
