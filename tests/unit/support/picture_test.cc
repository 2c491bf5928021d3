#include "tests/support/picture.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/files.h"
#include "tests/support/process.h"

namespace gromlit::testing {
namespace {

// The pixels that another program reads from our file, three bytes each.
std::string Decoded(const Picture& picture) {
  const TempDir files;
  WriteText(files / "picture.png", PngOf(picture));
  Process convert({"convert", files / "picture.png", "-depth", "8", "rgb:" + (files / "pixels")},
                  files / "messages");
  EXPECT_EQ(convert.Wait(std::chrono::seconds(60)), 0) << ReadText(files / "messages");
  EXPECT_EQ(ReadText(files / "messages"), "");
  return ReadText(files / "pixels");
}

std::string BytesOf(const Picture& picture) {
  std::string bytes;
  for (const unsigned long pixel : picture.pixels)
    for (int shift = 16; shift >= 0; shift -= 8) bytes += static_cast<char>(pixel >> shift & 0xff);
  return bytes;
}

TEST(PngTest, AnotherProgramReadsEveryPixel) {
  std::mt19937 random(1);
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 40}, {40, 1}, {53, 31}}) {
    Picture picture(width, height, 0);
    for (unsigned long& pixel : picture.pixels) pixel = random() & 0xffffff;
    EXPECT_EQ(Decoded(picture), BytesOf(picture)) << width << " x " << height;
  }
}

TEST(PngTest, RunsOfEveryLengthAreRead) {
  // Pixels of one grey are a run of three bytes each; between them, one byte more and two more.
  constexpr int kLongest = 260;
  Picture picture(3 * kLongest, kLongest, 0);
  for (int row = 0; row < kLongest; row++) {
    unsigned long* const pixels = &picture.pixels[static_cast<size_t>(row * picture.width)];
    const unsigned long grey = row % 2 == 0 ? 0x202020 : 0x909090;
    for (int column = 0; column <= row; column++) {
      pixels[column] = grey;
      pixels[column + kLongest] = grey;
      pixels[column + 2 * kLongest] = grey;
    }
    pixels[row + 1 + kLongest] = grey & 0xff0000;
    if (row + 1 < kLongest) pixels[row + 1 + 2 * kLongest] = grey & 0xffff00;
  }
  EXPECT_EQ(Decoded(picture), BytesOf(picture));
}

TEST(PngTest, PlainPicturesAreSmall) {
  const Picture picture(1280, 1024, 0x39506b);
  EXPECT_LT(PngOf(picture).size(), 40000u);
  EXPECT_EQ(Decoded(picture), BytesOf(picture));
}

}  // namespace
}  // namespace gromlit::testing
