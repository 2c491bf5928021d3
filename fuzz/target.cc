#include "fuzz/target.h"

#include <cstddef>
#include <cstdint>

#include "fuzz/fake_server.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  gromlit::fuzz::ResetServer();
  FuzzedDataProvider data(bytes, size);
  gromlit::fuzz::Run(&data);
  return 0;
}
