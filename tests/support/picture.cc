#include "tests/support/picture.h"

#include <array>
#include <cstdint>
#include <ostream>

namespace gromlit::testing {
namespace {

std::string BigEndian(uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xff);
  return bytes;
}

uint32_t Crc32(const std::string& bytes) {
  constexpr uint32_t kPolynomial = 0xedb88320;
  static const std::array<uint32_t, 256> table = [] {
    std::array<uint32_t, 256> made{};
    for (uint32_t n = 0; n < made.size(); n++) {
      uint32_t c = n;
      for (int bit = 0; bit < 8; bit++) c = (c & 1) != 0 ? c >> 1 ^ kPolynomial : c >> 1;
      made[n] = c;
    }
    return made;
  }();
  uint32_t crc = ~0U;
  for (const char c : bytes) crc = table[(crc ^ static_cast<uint8_t>(c)) & 0xff] ^ crc >> 8;
  return ~crc;
}

uint32_t Adler32(const std::string& bytes) {
  constexpr uint32_t kPrime = 65521;
  uint32_t a = 1;
  uint32_t b = 0;
  for (const char c : bytes) {
    a = (a + static_cast<uint8_t>(c)) % kPrime;
    b = (b + a) % kPrime;
  }
  return b << 16 | a;
}

// One block of deflate with the codes that the format itself gives.
class Deflate {
 public:
  explicit Deflate(const std::string& bytes) {
    Number(1, 1);  // the last block
    Number(1, 2);  // with the given codes
    for (size_t at = 0; at < bytes.size();) {
      const auto byte = static_cast<uint8_t>(bytes[at]);
      Symbol(byte);
      at++;
      size_t run = 0;
      while (at + run < bytes.size() && static_cast<uint8_t>(bytes[at + run]) == byte) run++;
      at += run;
      while (run >= kShortest) {
        const size_t length = std::min(run, kLongest);
        Repeat(length);
        run -= length;
      }
      for (; run > 0; run--) Symbol(byte);
    }
    Symbol(kEnd);
    if (used_ > 0) Number(0, 8 - used_);
  }

  const std::string& out() const { return out_; }

 private:
  static constexpr unsigned kEnd = 256;
  static constexpr size_t kShortest = 3;
  static constexpr size_t kLongest = 258;

  // The last byte once more, `length` times.
  void Repeat(size_t length) {
    if (length == kLongest) {
      Symbol(285);
    } else {
      // Symbols 265 on come in fours, each four with one more bit behind it.
      unsigned extra = 0;
      auto rest = static_cast<unsigned>(length - kShortest);
      while (rest >> extra >= 8) extra++;
      Symbol(257 + 4 * extra + (rest >> extra));
      Number(rest & ((1U << extra) - 1), extra);
    }
    Number(0, 5);  // one byte back
  }

  void Symbol(unsigned symbol) {
    if (symbol < 144) {
      Code(0x30 + symbol, 8);
    } else if (symbol < 256) {
      Code(0x190 + symbol - 144, 9);
    } else if (symbol < 280) {
      Code(symbol - 256, 7);
    } else {
      Code(0xc0 + symbol - 280, 8);
    }
  }

  // Codes begin with their highest bit, numbers with their lowest.
  void Code(unsigned code, unsigned bits) {
    while (bits-- > 0) Number(code >> bits & 1, 1);
  }
  void Number(unsigned number, unsigned bits) {
    for (; bits > 0; bits--, number >>= 1) {
      if (used_ == 0) out_ += '\0';
      out_.back() = static_cast<char>(static_cast<uint8_t>(out_.back()) | (number & 1) << used_);
      used_ = (used_ + 1) % 8;
    }
  }

  std::string out_;
  unsigned used_ = 0;  // bits of the last byte
};

std::string Chunk(const std::string& type, const std::string& data) {
  return BigEndian(static_cast<uint32_t>(data.size())) + type + data +
         BigEndian(Crc32(type + data));
}

// Each row with the filter "up" (2) in front of it.
std::string Rows(const Picture& picture) {
  constexpr char kUp = 2;
  const auto width = static_cast<size_t>(picture.width);
  std::string rows;
  rows.reserve(picture.pixels.size() * 3 + static_cast<size_t>(picture.height));
  for (size_t i = 0; i < picture.pixels.size(); i++) {
    if (i % width == 0) rows += kUp;
    const unsigned long above = i < width ? 0 : picture.pixels[i - width];
    for (int shift = 16; shift >= 0; shift -= 8)
      rows += static_cast<char>((picture.pixels[i] >> shift & 0xff) - (above >> shift & 0xff));
  }
  return rows;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Picture& picture) {
  for (int y = 0; y < picture.height; y++) {
    out << "\n  ";
    for (int x = 0; x < picture.width; x++) {
      const unsigned long p = picture.At(x, y);
      out << (p == 0xffffff   ? 'W'
              : p == 0xc0c0c0 ? '.'
              : p == 0xa8a8a8 ? 'g'
              : p == 0x707070 ? 'D'
              : p == 0x000079 ? 'B'
              : p == 0        ? '#'
                              : '?');
    }
  }
  return out;
}

std::string PngOf(const Picture& picture) {
  if (picture.pixels.empty()) return "";
  const std::string rows = Rows(picture);
  const std::string header = BigEndian(static_cast<uint32_t>(picture.width)) +
                             BigEndian(static_cast<uint32_t>(picture.height)) +
                             std::string("\x08\x02\0\0\0", 5);  // 8 bits, red green blue
  const std::string data = "\x78\x01" + Deflate(rows).out() + BigEndian(Adler32(rows));
  return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", header) + Chunk("IDAT", data) + Chunk("IEND", "");
}

}  // namespace gromlit::testing
