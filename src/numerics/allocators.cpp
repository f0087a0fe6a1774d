// Offset-indexed arrays. Slot 0 of a block stands for index `start`, one
// below the lowest valid index when that is 1 or less, so that the returned
// pointer (block - start) always points into the block: for the usual first
// index 1 this is nh - nl + 2 elements with one spare slot ahead.
#include "numerics/allocators.h"

#include <algorithm>
#include <new>

#include "numerics/numerics_report.h"

namespace {

constexpr int NR_END = 1;

int start_of(int lowest) {
  return std::min(lowest - NR_END, 0);
}

void out_of_memory(const char* where) {
  numerics_report(numerics_kind::MEMORY, where, numerics_code::NOT_ENOUGH_MEMORY);
}

}  // namespace

my_float* vector(int nl, int nh) {
  const int start = start_of(nl);
  my_float* block = new (std::nothrow) my_float[nh - start + 1]();
  if (block == nullptr) {
    out_of_memory("my_float *vector() : ");
    return nullptr;
  }
  return block - start;
}

my_float** my_matrix(int rl, int rh, int cl, int ch) {
  const int row_start = start_of(rl);
  const int col_start = start_of(cl);
  const int ncol = ch - cl + 1;
  my_float** rows = new (std::nothrow) my_float*[rh - row_start + 1]();
  my_float* block =
      rows ? new (std::nothrow) my_float[(rh - rl + 1) * ncol + (cl - col_start)]() : nullptr;
  if (block == nullptr) {
    delete[] rows;
    out_of_memory("my_float **my_matrix() : ");
    return nullptr;
  }
  rows -= row_start;
  rows[rl] = block - col_start;
  for (int i = rl + 1; i <= rh; ++i) rows[i] = rows[i - 1] + ncol;
  return rows;
}

void free_vector(my_float* v, int nl, int /*nh*/) {
  if (v != nullptr) delete[](v + start_of(nl));
}

void free_matrix(my_float** m, int rl, int /*rh*/, int cl, int /*ch*/) {
  if (m == nullptr) return;
  delete[](m[rl] + start_of(cl));
  delete[](m + start_of(rl));
}
