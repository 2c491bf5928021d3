// Little-endian integers at byte offsets. The only place that knows the byte order of the files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace gromlit {

// A field of a stored record: its place and its size in bytes.
struct Field {
  size_t offset;
  size_t size;
  constexpr size_t end() const { return offset + size; }
};

// REQUIRES (all): offset + sizeof(value) <= bytes.size().
inline uint8_t GetU8(std::span<const std::byte> b, size_t o) {
  return static_cast<uint8_t>(b[o]);
}
inline uint16_t GetU16(std::span<const std::byte> b, size_t o) {
  return static_cast<uint16_t>(GetU8(b, o) | GetU8(b, o + 1) << 8);
}
inline uint32_t GetU32(std::span<const std::byte> b, size_t o) {
  return static_cast<uint32_t>(GetU16(b, o)) | static_cast<uint32_t>(GetU16(b, o + 2)) << 16;
}
inline int32_t GetI32(std::span<const std::byte> b, size_t o) {
  return static_cast<int32_t>(GetU32(b, o));
}
inline void PutU8(std::span<std::byte> b, size_t o, uint8_t v) {
  b[o] = static_cast<std::byte>(v);
}
inline void PutU16(std::span<std::byte> b, size_t o, uint16_t v) {
  PutU8(b, o, static_cast<uint8_t>(v & 0xff));
  PutU8(b, o + 1, static_cast<uint8_t>(v >> 8));
}
inline void PutU32(std::span<std::byte> b, size_t o, uint32_t v) {
  PutU16(b, o, static_cast<uint16_t>(v & 0xffff));
  PutU16(b, o + 2, static_cast<uint16_t>(v >> 16));
}
inline void PutI32(std::span<std::byte> b, size_t o, int32_t v) {
  PutU32(b, o, static_cast<uint32_t>(v));
}

}  // namespace gromlit
