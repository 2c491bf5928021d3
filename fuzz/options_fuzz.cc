// Any bytes in an options file's record give terminated command lines and a button that can be
// grabbed, and writing them is stable.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/option_files.h"
#include "core/record_codec.h"
#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace gromlit;
  std::array<std::byte, kOptionsImageSize> image{};
  std::copy_n(reinterpret_cast<const std::byte*>(data), std::min(size, image.size()),
              image.begin());
  GromlitUserOptions options;
  DecodeOptions(image, &options);
  Require(options.urlcmd[kUrlCmdSize - 1] == '\0');
  Require(options.sndcmd[kTextSize - 1] == '\0');
  Require(EffectiveButton(&options) >= 1 && EffectiveButton(&options) <= 5);

  std::array<std::byte, kOptionsImageSize> once;
  EncodeOptions(options, once);
  DecodeOptions(once, &options);
  std::array<std::byte, kOptionsImageSize> twice;
  EncodeOptions(options, twice);
  Require(once == twice);
  return 0;
}
