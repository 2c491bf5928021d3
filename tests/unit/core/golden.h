// Expected file contents, put together from literal offsets and bytes.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace gromlit::testing {

// `size` zero bytes, into which literal ones are put.
class Golden {
 public:
  explicit Golden(size_t size) : bytes_(size) {}
  Golden& Put(size_t offset, std::initializer_list<int> values) {
    for (const int value : values) bytes_.at(offset++) = static_cast<std::byte>(value);
    return *this;
  }
  Golden& Put(size_t offset, std::string_view text) {
    for (const char c : text) bytes_.at(offset++) = static_cast<std::byte>(c);
    return *this;
  }
  // The same byte `count` times.
  Golden& Fill(size_t offset, size_t count, int value) {
    while (count-- > 0) bytes_.at(offset++) = static_cast<std::byte>(value);
    return *this;
  }
  const std::vector<std::byte>& bytes() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
};

}  // namespace gromlit::testing
