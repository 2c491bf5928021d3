#include "recognition/stroke_signature.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "recognition/symbol_icon.h"

namespace gromlit {

namespace {

// A box more than four times as long as wide counts as a straight line.
constexpr double kLineRatio = 0.25;

// One bit for each inner line that a point has not reached yet. A step crosses exactly the lines
// whose bit changes, whichever way it goes.
enum : unsigned { kBeforeA = 1, kBeforeB = 2, kBeforeC = 4, kBeforeD = 8 };

BoundingRect BoundsOf(int nPoints, const int16_t* Xcoord, const int16_t* Ycoord) {
  // Bottom and right start at 0, not at the least value: points with negative coordinates never
  // move them, and stored signatures depend on it.
  BoundingRect box = {.top = 65535, .bottom = 0, .left = 65535, .right = 0};
  for (int i = 0; i < nPoints; ++i) {
    box.top = std::min<int32_t>(box.top, Ycoord[i]);
    box.bottom = std::max<int32_t>(box.bottom, Ycoord[i]);
    box.left = std::min<int32_t>(box.left, Xcoord[i]);
    box.right = std::max<int32_t>(box.right, Xcoord[i]);
  }
  return box;
}

// The signature of a straight line along one axis, from its first and last coordinate and the two
// inner lines across that axis. A stroke that turned back into the third where it started ends
// with "-"; one that starts in the middle has no direction and no signature.
const char* LineSignature(int first, int last, int inner1, int inner2, const char* forward,
                          const char* forwardBack, const char* backward, const char* backwardBack) {
  if (first < inner1) return last >= inner1 ? forward : forwardBack;
  if (first > inner2) return last <= inner2 ? backward : backwardBack;
  return "";
}

}  // namespace

int StrokeSignature(char* signature, int nPoints, const int16_t* Xcoord, const int16_t* Ycoord) {
  *signature = '\0';
  if (nPoints < 1) return 1;

  const BoundingRect box = BoundsOf(nPoints, Xcoord, Ycoord);
  const int xthird = (box.right - box.left) / 3;
  const int ythird = (box.bottom - box.top) / 3;
  const int X1 = box.left + xthird;
  const int X2 = X1 + xthird;
  const int Y1 = box.top + ythird;
  const int Y2 = Y1 + ythird;
  // At least 1 each: one point is enough to bring left to right or below, top to bottom or above.
  const int32_t iWidth = box.right - box.left + 1;
  const int32_t iHeight = box.bottom - box.top + 1;
  const int last = nPoints - 1;

  const double vert = static_cast<double>(iWidth) / iHeight;
  if (vert < kLineRatio) {
    SignatureCopy(signature,
                  LineSignature(Ycoord[0], Ycoord[last], Y1, Y2, "cccc", "ccc-", "dddd", "ddd-"));
    return 1;
  }
  const double horz = static_cast<double>(iHeight) / iWidth;
  if (horz < kLineRatio) {
    SignatureCopy(signature,
                  LineSignature(Xcoord[0], Xcoord[last], X1, X2, "aaaa", "aaa-", "bbbb", "bbb-"));
    return 1;
  }

  const auto sides = [=](int i) {
    return (Ycoord[i] < Y1 ? kBeforeA : 0U) | (Ycoord[i] < Y2 ? kBeforeB : 0U) |
           (Xcoord[i] < X1 ? kBeforeC : 0U) | (Xcoord[i] < X2 ? kBeforeD : 0U);
  };
  unsigned previous = sides(0);
  char* out = signature;
  for (int i = 1; i < nPoints; ++i) {
    const unsigned current = sides(i);
    const unsigned crossed = current ^ previous;
    if (crossed == 0) continue;  // nearly every step
    if (crossed & kBeforeA) *out++ = 'a';
    if (crossed & kBeforeB) *out++ = 'b';
    if (crossed & kBeforeC) *out++ = 'c';
    if (crossed & kBeforeD) *out++ = 'd';
    previous = current;
  }
  *out = '\0';
  return 1;
}

int VectorLineToPoints(int n, int16_t* Xpoints, int16_t* Ypoints, int x1, int y1, int x2, int y2) {
  // One walk serves both axes: `major` goes in unit steps, `minor` follows in fractions.
  const bool xmajor = std::abs(x2 - x1) >= std::abs(y2 - y1);
  int16_t* majors = xmajor ? Xpoints : Ypoints;
  int16_t* minors = xmajor ? Ypoints : Xpoints;
  const int major1 = xmajor ? x1 : y1;
  const int major2 = xmajor ? x2 : y2;
  const int minor1 = xmajor ? y1 : x1;
  const int minor2 = xmajor ? y2 : x2;

  const int step = major2 > major1 ? 1 : -1;
  double change = 0.0;
  if (major1 != major2) {
    change = std::abs(static_cast<double>(minor2 - minor1) / (major2 - major1));
    if (minor2 <= minor1) change = -change;
  }
  double minor = minor1;
  int minorInt = minor1;  // what the only point of a segment without length gets
  for (int major = major1; major != major2; major += step) {
    minorInt = static_cast<int>(minor);
    majors[n] = static_cast<int16_t>(major);
    minors[n] = static_cast<int16_t>(minorInt);
    ++n;
    // Adding up rounds differently from multiplying: ten steps of 0.1 stay below 1, and so in the
    // cell before. Signatures of stored symbols rest on these cells.
    minor += change;
  }
  majors[n] = static_cast<int16_t>(major2);
  minors[n] = static_cast<int16_t>(minorInt);
  return n + 1;
}

int SymVectorToPoints(const GromlitSymbol* sym, int16_t* Xpoints, int16_t* Ypoints) {
  const int npoints = std::min<int>(sym->npoints, kMaxPoints);
  if (npoints < 1) return 0;
  int count = 0;
  int x = CellOf(sym->x[1]);
  int y = CellOf(sym->y[1]);
  for (int k = 2; k <= npoints; ++k) {
    const int nextx = CellOf(sym->x[k]);
    const int nexty = CellOf(sym->y[k]);
    count = VectorLineToPoints(count, Xpoints, Ypoints, x, y, nextx, nexty);
    x = nextx;
    y = nexty;
  }
  return count;
}

int SignatureEqual(const char* a, const char* b) {
  return std::strcmp(a, b) == 0 ? 1 : 0;
}

char* SignatureCopy(char* dst, const char* src) {
  // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy): the caller has made room
  return std::strcpy(dst, src);
}

}  // namespace gromlit
