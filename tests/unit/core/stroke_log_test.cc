#include "core/stroke_log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace gromlit {
namespace {

TEST(StrokeLog, ALineHasTheColumnsOfTheHeader) {
  const std::string line = StrokeLogLine({.milliseconds = 1769860800'007,
                                          .classtext = "XTerm.xterm",
                                          .signature = "acbd",
                                          .byshape = true,
                                          .action = "Close",
                                          .score = 0.93214F,
                                          .runnerup = 0.5F,
                                          .microseconds = 321,
                                          .points = "1 2 -3 4"});
  EXPECT_EQ(line,
            "2026-01-31T12:00:00.007Z\tXTerm.xterm\tacbd\tshape\tClose\t0.9321\t0.5000\t321\t"
            "1 2 -3 4\n");
  const std::string header = kStrokeLogHeader;
  EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), kStrokeLogColumns - 1);
  EXPECT_EQ(std::count(header.begin(), header.end(), '\t'), kStrokeLogColumns - 1);
  EXPECT_EQ(header.substr(header.rfind('\t') + 1), "points");
}

TEST(StrokeLog, NothingRanAndNoScoreHaveWordsOfTheirOwn) {
  const std::string line = StrokeLogLine({.milliseconds = 0,
                                          .classtext = "Desktop",
                                          .signature = "",
                                          .byshape = false,
                                          .action = "",
                                          .score = -1,
                                          .runnerup = -1,
                                          .microseconds = 0,
                                          .points = ""});
  EXPECT_EQ(line, "1970-01-01T00:00:00.000Z\tDesktop\t\tsignature\tnone\t-\t-\t0\t\n");
}

TEST(StrokeLog, TextOfStrangersStaysInItsColumn) {
  const std::string line = StrokeLogLine({.milliseconds = 0,
                                          .classtext = "a\tb\nc\\d\x1b[31m",
                                          .signature = "",
                                          .byshape = false,
                                          .action = "e\rf\\x41\xff",
                                          .score = -1,
                                          .runnerup = -1,
                                          .microseconds = 0,
                                          .points = ""});
  EXPECT_NE(line.find("\ta\\x09b\\x0ac\\x5cd\\x1b[31m\t"), std::string::npos) << line;
  EXPECT_NE(line.find("\te\\x0df\\x5cx41\\xff\t"), std::string::npos) << line;
  EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), kStrokeLogColumns - 1);
}

}  // namespace
}  // namespace gromlit
