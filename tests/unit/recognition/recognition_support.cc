#include "tests/unit/recognition/recognition_support.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "recognition/stroke_signature.h"
#include "recognition/symbol_icon.h"

namespace gromlit {

namespace {

// For the shell: one word, whatever the path contains.
std::string Quoted(const std::string& path) {
  std::string quoted = "'";
  for (const char c : path) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

}  // namespace

uint64_t TestSeed() {
  uint64_t seed = 0;
  if (const char* given = std::getenv("GROMLIT_TEST_SEED")) {
    seed = std::strtoull(given, nullptr, 0);
  } else {
    std::random_device device;
    seed = (uint64_t{device()} << 32) | device();
  }
  std::printf("GROMLIT_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
  return seed;
}

std::string Signature(const std::vector<literal::Point>& points) {
  std::vector<int16_t> x;
  std::vector<int16_t> y;
  for (const literal::Point& p : points) {
    x.push_back(static_cast<int16_t>(p.x));
    y.push_back(static_cast<int16_t>(p.y));
  }
  // Exactly the promised room, on the heap, so that the sanitizers see a byte too many.
  const int n = static_cast<int>(points.size());
  const auto signature = std::make_unique<char[]>(MaxSignature(n) + 1);
  const int result = StrokeSignature(signature.get(), n, x.data(), y.data());
  return result == 1 ? signature.get() : "StrokeSignature did not return 1";
}

GromlitSymbol SymbolOfCells(const std::vector<literal::Point>& cells) {
  GromlitSymbol sym = {};
  for (const literal::Point& cell : cells) {
    ++sym.npoints;
    sym.x[sym.npoints] = static_cast<uint16_t>((cell.x + 2) * 8);
    sym.y[sym.npoints] = static_cast<uint16_t>((cell.y + 2) * 8);
  }
  return sym;
}

std::vector<RecordedStroke> ReadRecordedStrokes(std::string* missing) {
  std::vector<RecordedStroke> strokes;
  const char* given = std::getenv("GROMLIT_STROKES");
  const std::string path =
      given != nullptr ? given : GROMLIT_SOURCE_DIR "/../shared/data/strokes.tsv.gz";
  if (access(path.c_str(), R_OK) != 0) {
    *missing = "no recorded strokes at " + path + " (GROMLIT_STROKES names another file)";
    return strokes;
  }
  FILE* pipe = popen(("gzip -dc -- " + Quoted(path)).c_str(), "r");
  if (pipe == nullptr) {
    *missing = "gzip cannot be started";
    return strokes;
  }
  std::string text;
  char block[65536];
  for (size_t n = 0; (n = std::fread(block, 1, sizeof block, pipe)) > 0;) text.append(block, n);
  if (pclose(pipe) != 0) {
    *missing = path + " cannot be unpacked";
    return strokes;
  }
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    RecordedStroke stroke;
    fields >> stroke.person >> stroke.speed >> stroke.gesture;
    for (literal::Point p = {}; fields >> p.x >> p.y;) stroke.points.push_back(p);
    strokes.push_back(std::move(stroke));
  }
  return strokes;
}

std::string LiveSignature(const RecordedStroke& stroke) {
  std::vector<literal::Point> kept = stroke.points;
  if (kept.size() > kMaxStrokePoints) kept.resize(kMaxStrokePoints);
  return Signature(kept);
}

GromlitSymbol SymbolOfStroke(const RecordedStroke& stroke) {
  const std::vector<literal::Point>& points = stroke.points;
  int left = points.front().x;
  int right = left;
  int top = points.front().y;
  int bottom = top;
  for (const literal::Point& p : points) {
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    top = std::min(top, p.y);
    bottom = std::max(bottom, p.y);
  }
  const int extent = std::max({right - left, bottom - top, 1});
  const size_t corners = std::min<size_t>(points.size(), kMaxPoints);
  GromlitSymbol sym = {};
  for (size_t i = 0; i < corners; ++i) {
    const size_t at = corners > 1 ? i * (points.size() - 1) / (corners - 1) : 0;
    const int span = kGridMax - kGridMin;
    ++sym.npoints;
    sym.x[sym.npoints] =
        static_cast<uint16_t>(grid(kGridMin + (points[at].x - left) * span / extent));
    sym.y[sym.npoints] =
        static_cast<uint16_t>(grid(kGridMin + (points[at].y - top) * span / extent));
  }
  return sym;
}

}  // namespace gromlit
