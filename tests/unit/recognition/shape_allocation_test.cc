// Counts what a search by shape takes from the heap. In a program of its own, since it replaces the
// allocation functions.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "recognition/find_action.h"
#include "tests/unit/recognition/stroke_sets.h"

namespace {

int allocations = 0;

}  // namespace

void* operator new(size_t size) {
  ++allocations;
  void* block = std::malloc(size);
  if (block == nullptr) std::abort();
  return block;
}
void* operator new(size_t size, std::align_val_t alignment) {
  ++allocations;
  const auto step = static_cast<size_t>(alignment);
  void* block = std::aligned_alloc(step, (size + step - 1) / step * step);
  if (block == nullptr) std::abort();
  return block;
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  std::free(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t, std::align_val_t) noexcept {
  std::free(block);
}

namespace gromlit {
namespace {

TEST(ShapeAllocation, IsOncePerSymbolAndNeverPerStroke) {
  std::mt19937 random(1);
  Library library;
  GromlitSymbol sym = {};
  sym.npoints = 3;
  for (int i = 0; i < kMaxActions; ++i) {
    for (int k = 1; k <= sym.npoints; ++k) {
      sym.x[k] = static_cast<uint16_t>(kGridMin + random() % 249);
      sym.y[k] = static_cast<uint16_t>(kGridMin + random() % 249);
    }
    library.Add("action", sym);
  }
  const Stroke stroke = RandomWalk(&random);
  const int before = allocations;
  FindAction(library.plugin(), stroke, {kByShape, 3});
  EXPECT_EQ(allocations - before, kMaxActions);
  const int cached = allocations;
  for (int i = 0; i < 10; ++i) FindAction(library.plugin(), stroke, {kByShape, i % 5 + 1});
  EXPECT_EQ(allocations, cached);
}

}  // namespace
}  // namespace gromlit
