#include "core/report.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "tests/support/captured.h"

namespace gromlit {
namespace {

TEST(ReportSystemError, NamesTheReasonAndKeepsIt) {
  const testing::Captured error(STDERR_FILENO);
  errno = ENOENT;
  ReportSystemError("Save Plugin");
  const int kept = errno;
  EXPECT_EQ(error.Text(), "Save Plugin: No such file or directory\n");
  EXPECT_EQ(kept, ENOENT);
}

}  // namespace
}  // namespace gromlit
