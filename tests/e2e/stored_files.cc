#include "tests/e2e/stored_files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/gromlit.h"
#include "tests/support/built.h"
#include "tests/support/temp_install.h"
#include "tests/support/x_server.h"

namespace gromlit::testing {

nlohmann::json ShowFile(const std::string& path) {
  // The installation directory of the running test has a place for what the tool prints.
  const std::string output = std::string(GromlitPath) + "/shown.json";
  std::filesystem::remove(output);  // it would be appended to
  const int status = Process({Built("gromlit-tool"), "show", path}, output).Wait();
  const std::string text = ReadText(output);
  EXPECT_EQ(status, 0) << text;
  if (status != 0) return nullptr;
  return nlohmann::json::parse(text);
}

void PackFile(const nlohmann::json& document, const std::string& path) {
  const std::string input = std::string(GromlitPath) + "/packed.json";
  const std::string output = std::string(GromlitPath) + "/pack.log";
  WriteText(input, document.dump());
  const int status = Process({Built("gromlit-tool"), "pack", input, "-o", path}, output).Wait();
  EXPECT_EQ(status, 0) << ReadText(output);
}

}  // namespace gromlit::testing
