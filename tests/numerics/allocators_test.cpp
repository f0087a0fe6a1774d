// Offset-indexed arrays of the solver.
#include "numerics/allocators.h"

#include <gtest/gtest.h>

namespace {

TEST(Allocators, VectorIsIndexableFromItsLowerBound) {
  for (int nl : {0, 1, 3}) {
    my_float* v = vector(nl, nl + 4);
    ASSERT_NE(v, nullptr);
    for (int i = nl; i <= nl + 4; ++i) EXPECT_EQ(v[i], 0.0L) << "zero-filled";
    for (int i = nl; i <= nl + 4; ++i) v[i] = i;
    for (int i = nl; i <= nl + 4; ++i) EXPECT_EQ(v[i], static_cast<my_float>(i));
    free_vector(v, nl, nl + 4);
  }
}

TEST(Allocators, MatrixRowsAreContiguousAndOffset) {
  struct Bounds {
    int rl, rh, cl, ch;
  };
  for (const Bounds& b : {Bounds{1, 3, 1, 4}, Bounds{0, 2, 2, 5}, Bounds{4, 5, 0, 1}}) {
    my_float** m = my_matrix(b.rl, b.rh, b.cl, b.ch);
    ASSERT_NE(m, nullptr);
    for (int i = b.rl; i <= b.rh; ++i) {
      for (int j = b.cl; j <= b.ch; ++j) m[i][j] = 10 * i + j;
    }
    for (int i = b.rl; i <= b.rh; ++i) {
      for (int j = b.cl; j <= b.ch; ++j) EXPECT_EQ(m[i][j], static_cast<my_float>(10 * i + j));
    }
    EXPECT_EQ(&m[b.rl + 1][b.cl], &m[b.rl][b.ch] + 1) << "one block for all rows";
    free_matrix(m, b.rl, b.rh, b.cl, b.ch);
  }
}

TEST(Allocators, OwningWrappersFreeOnScopeExit) {
  // Run under the address sanitizer, a leak or a double free fails here.
  OffsetVector v(1, 3);
  OffsetMatrix m(1, 3, 1, 3);
  ASSERT_TRUE(v.valid());
  ASSERT_TRUE(m.valid());
  v[3] = 2.5L;
  m[3][3] = v[3];
  EXPECT_EQ(m[3][3], 2.5L);
}

}  // namespace
