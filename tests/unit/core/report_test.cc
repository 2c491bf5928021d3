#include "core/report.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace gromlit {
namespace {

TEST(ReportSystemError, NamesTheReasonAndKeepsIt) {
  testing::internal::CaptureStderr();
  errno = ENOENT;
  ReportSystemError("Save Plugin");
  const int kept = errno;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Save Plugin: No such file or directory\n");
  EXPECT_EQ(kept, ENOENT);
}

}  // namespace
}  // namespace gromlit
