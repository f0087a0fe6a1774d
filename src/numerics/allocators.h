// Offset-indexed arrays of the solver: vector(nl, nh) is indexable from nl to
// nh, my_matrix(rl, rh, cl, ch) from [rl][cl] to [rh][ch], as in the published
// linear algebra that the solver follows. Allocation failure reports "not
// enough memory" (kind MEMORY) and returns a null pointer if the report
// returns. OffsetVector and OffsetMatrix own such arrays for one scope.
//
// The name `vector` is kept; it only clashes with std::vector where the std
// namespace is pulled in wholesale, which the program never does.
#pragma once

#include "numerics/my_float.h"

my_float* vector(int nl, int nh);
my_float** my_matrix(int rl, int rh, int cl, int ch);
void free_vector(my_float* v, int nl, int nh);
void free_matrix(my_float** m, int rl, int rh, int cl, int ch);

class OffsetVector {
 public:
  OffsetVector(int nl, int nh) : data_(vector(nl, nh)), nl_(nl), nh_(nh) {}
  ~OffsetVector() { free_vector(data_, nl_, nh_); }
  OffsetVector(const OffsetVector&) = delete;
  OffsetVector& operator=(const OffsetVector&) = delete;
  my_float& operator[](int i) { return data_[i]; }
  const my_float& operator[](int i) const { return data_[i]; }
  my_float* get() { return data_; }
  bool valid() const { return data_ != nullptr; }

 private:
  my_float* data_;
  int nl_;
  int nh_;
};

class OffsetMatrix {
 public:
  OffsetMatrix(int rl, int rh, int cl, int ch)
      : data_(my_matrix(rl, rh, cl, ch)), rl_(rl), rh_(rh), cl_(cl), ch_(ch) {}
  ~OffsetMatrix() { free_matrix(data_, rl_, rh_, cl_, ch_); }
  OffsetMatrix(const OffsetMatrix&) = delete;
  OffsetMatrix& operator=(const OffsetMatrix&) = delete;
  my_float* operator[](int i) { return data_[i]; }
  const my_float* operator[](int i) const { return data_[i]; }
  bool valid() const { return data_ != nullptr; }

 private:
  my_float** data_;
  int rl_;
  int rh_;
  int cl_;
  int ch_;
};
