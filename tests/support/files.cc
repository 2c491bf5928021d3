#include "tests/support/files.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace gromlit::testing {
namespace fs = std::filesystem;

TempDir::TempDir() : path_((fs::temp_directory_path() / "gromlit-test-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr)
    throw std::system_error(errno, std::generic_category(), "cannot make " + path_);
}

TempDir::~TempDir() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::byte> ReadBytes(const std::string& path) {
  const std::string text = ReadText(path);
  std::vector<std::byte> bytes(text.size());
  for (size_t i = 0; i < text.size(); i++) bytes[i] = static_cast<std::byte>(text[i]);
  return bytes;
}

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  out.close();
  if (!out) throw std::system_error(errno, std::generic_category(), "cannot write " + path);
}

void WriteBytes(const std::string& path, std::span<const std::byte> bytes) {
  WriteText(path, std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

bool Exists(const std::string& path) {
  return fs::exists(path);
}

}  // namespace gromlit::testing
