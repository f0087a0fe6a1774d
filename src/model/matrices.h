// Numeric tables of the data model.
//
//   TriMat    lower triangle of doubles with its diagonal, read in either
//             index order; optionally "conventional" (0 on the diagonal, 1
//             elsewhere, the triangle unread)
//   DistMat   a TriMat with a name and labels: the distance matrix between
//             haplotypes of a project
//   RectMat   a rectangular matrix with the sums of the Mantel test
//   BnumMat   the table of B numbers, B(n, k) = |s(n, k)| k! / n! with s the
//             Stirling numbers of the first kind, computed by recursion
//
// Checked element access reports error 1 ("array out of bounds") and reads
// value_same. Allocation failures report MEMORY code 0 under the operation's
// name (which throws ExceptionType, except for BnumMat, whose caller gets
// false). Printing lives in output/matrix_print.h.
#pragma once

#include <utility>
#include <vector>

#include "model/my_string.h"

class TriMat {
 public:
  TriMat() = default;
  explicit TriMat(int dim);

  // Frees the triangle, allocates `dim` rows and zeroes them.
  void reset(int dim);
  void zero();

  int dim() const { return static_cast<int>(rows_.size()); }

  // Cell (i, j) in either order: the larger index selects the row. Checked.
  double& operator()(int i, int j);
  double operator()(int i, int j) const;

  // Row i: i + 1 values, columns 0 .. i. Unchecked.
  const std::vector<double>& row(int i) const { return rows_[static_cast<std::size_t>(i)]; }
  std::vector<double>& row(int i) { return rows_[static_cast<std::size_t>(i)]; }

  bool is_conventional() const { return is_conventional_; }
  void set_conventional(bool on) { is_conventional_ = on; }
  double value_same() const { return value_same_; }
  double value_other() const { return value_other_; }

 private:
  std::vector<std::vector<double>> rows_;
  double value_same_ = 0.0;
  double value_other_ = 1.0;
  bool is_conventional_ = false;
  double scratch_ = 0.0;  // what out-of-range and conventional access hand out
};

class DistMat : public TriMat {
 public:
  DistMat();

  // Stores the size, resets the triangle to n rows and replaces the labels by
  // n empty ones.
  void set_size(int n);
  // The size alone (a conventional matrix keeps 2 rows but the number of
  // haplotypes as its size).
  void set_matrix_size(int n) { matrix_size_ = n; }
  int matrix_size() const { return matrix_size_; }
  // Back to an empty matrix named "none" without labels; the project folder stays.
  void clear();

  my_string& name() { return name_; }
  const my_string& name() const { return name_; }

  bool has_labels() const { return has_labels_; }
  // Drops the label array (the matrix then has a size but no labels).
  void drop_labels();
  int label_count() const { return static_cast<int>(labels_.size()); }
  // Label i; an index outside the array gives an empty scratch label.
  my_string& label(int i);
  const my_string& label(int i) const;

  // The folder of the project, used for relative file names; null when unset.
  void set_project_dir(const my_string* dir) { project_dir_ = dir; }
  const my_string* project_dir() const { return project_dir_; }
  // A name holding '/' or '\' is taken as it stands; any other is prefixed
  // by the project's folder.
  void resolve_file_name(my_string& target, const my_string& name) const;

 private:
  my_string name_;
  int matrix_size_ = 0;
  std::vector<my_string> labels_;
  bool has_labels_ = false;
  const my_string* project_dir_ = nullptr;
  my_string scratch_label_;
};

class RectMat {
 public:
  RectMat() = default;
  // Sets the shape and allocates zeroed cells.
  RectMat(int nrows, int ncols);

  // Allocates zeroed cells for the current shape; nothing if they exist.
  void allocate_matrix();
  void free_matrix();
  bool has_data() const { return allocated_; }

  int nrows() const { return nrows_; }
  int ncols() const { return ncols_; }

  // Checked access.
  double& operator()(int i, int j);
  double operator()(int i, int j) const;
  // Row i, ncols values. Unchecked.
  const std::vector<double>& row(int i) const { return rows_[static_cast<std::size_t>(i)]; }
  std::vector<double>& row(int i) { return rows_[static_cast<std::size_t>(i)]; }

  bool is_conventional() const { return is_conventional_; }
  void set_conventional(bool on) { is_conventional_ = on; }
  double value_same() const { return value_same_; }
  double value_other() const { return value_other_; }
  my_string& name() { return name_; }
  const my_string& name() const { return name_; }

  // Mean and sum of squared deviations of the cells below the diagonal
  // (square matrices only). Returns ssx.
  double compute_SSX();
  // Sum over i and j < i of this[index[i]][index[j]] * other[i][j]. Returns z.
  double Z(const RectMat& other);
  // Z(other) - K mean_x mean_x(other), K = n (n - 1) / 2.
  double sum_of_products(const RectMat& other);

  // Replaces the index by the identity 0 .. nrows - 1. 1, or 0 on failure.
  int create_index();
  // Fisher-Yates shuffle of the index: for m from nrows down to 1, draw
  // k = g.uniform_index(m), then swap cells k and m - 1. nrows draws.
  template <class Generator>
  void permute_index(Generator& g);

  bool has_index() const { return index_created_; }
  const std::vector<int>& index() const { return index_; }
  double mean_x() const { return mean_x_; }
  double ssx() const { return ssx_; }
  double z() const { return z_; }

 private:
  double cell(int i, int j) const {
    if (is_conventional_) return i == j ? value_same_ : value_other_;
    return rows_[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
  }

  std::vector<std::vector<double>> rows_;
  int nrows_ = 0;
  int ncols_ = 0;
  bool allocated_ = false;
  bool is_conventional_ = false;
  double value_same_ = 0.0;
  double value_other_ = 1.0;
  my_string name_;
  double mean_x_ = 0.0;
  double ssx_ = 0.0;
  std::vector<int> index_;
  bool index_created_ = false;
  double z_ = 0.0;
  double scratch_ = 0.0;
};

template <class Generator>
void RectMat::permute_index(Generator& g) {
  if (!index_created_) return;
  int m = nrows_;
  for (int r = 0; r < nrows_; ++r) {
    const int k = g.uniform_index(m);
    --m;
    std::swap(index_[static_cast<std::size_t>(k)], index_[static_cast<std::size_t>(m)]);
  }
}

class BnumMat {
 public:
  // Largest table: rows below 5,001 and columns below 1,001.
  static constexpr int kRowLimit = 5001;
  static constexpr int kColumnLimit = 1001;

  BnumMat() = default;

  // Replaces the table by one of n rows and m columns and fills it. False
  // (and an empty table) beyond the limits or when memory runs out.
  bool allocate_matrix(int n, int m);
  void free_matrix();

  int nrows() const { return nrows_; }
  int ncols() const { return ncols_; }
  // B(n, k), 1-based; 0 outside the table (and for k > n).
  double operator()(int n, int k) const;
  // Whether cell (n, k) lies in the table and holds a finite number.
  bool finite_cell(int n, int k) const;
  const my_string& file_name() const { return file_name_; }

 private:
  std::vector<std::vector<double>> rows_;  // row i - 1 holds min(i, ncols) values
  my_string file_name_;
  int nrows_ = 0;
  int ncols_ = 0;
};

// The one B-number table of the program, created 5 by 5, with its
// availability flag (false at start).
BnumMat& shared_bnum_mat();
bool bnum_mat_available();
// First request: when the flag is false, asks for 200 rows and 80 columns and
// sets the flag to the result. Returns the flag.
bool load_bnum_mat();
// Makes room for cell (n, k): if n or k is at or above the current size the
// table is made anew with n + 10 rows and k + 10 columns; a failure clears the
// flag. Returns the flag. Users go on only for n < 5000 and k < 1000.
bool ensure_bnum_cell(int n, int k);
// Shrinks the table to 5 by 5 (the flag stays as it is).
void release_bnum_mat();
