// Any bytes in a symbol file's record give a symbol within its limits, and writing it is stable:
// what was written reads and writes back the same.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/record_codec.h"
#include "core/strings.h"
#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace gromlit;
  std::array<std::byte, kSymbolImageSize> image{};
  std::copy_n(reinterpret_cast<const std::byte*>(data), std::min(size, image.size()),
              image.begin());
  GromlitSymbol sym;
  DecodeSymbol(image, &sym);
  Require(sym.npoints <= kMaxPoints);
  Require(sym.name[kNameSize - 1] == '\0');
  Require(sym.signature == nullptr);

  std::array<std::byte, kSymbolImageSize> once;
  EncodeSymbol(sym, once);
  DecodeSymbol(once, &sym);
  std::array<std::byte, kSymbolImageSize> twice;
  EncodeSymbol(sym, twice);
  Require(once == twice);
  return 0;
}
