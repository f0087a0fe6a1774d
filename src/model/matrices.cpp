#include "model/matrices.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>

#include "model/report.h"

namespace {

// Rows of 1, 2, ..., dim zeroed values.
std::vector<std::vector<double>> triangle_rows(int dim) {
  std::vector<std::vector<double>> rows(static_cast<std::size_t>(std::max(dim, 0)));
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].assign(i + 1, 0.0);
  return rows;
}

}  // namespace

// --- TriMat ------------------------------------------------------------------

TriMat::TriMat(int dim) {
  try {
    rows_ = triangle_rows(dim);
  } catch (const std::bad_alloc&) {
    rows_.clear();
    report_error(report_kind::MEMORY, "TriMat::TriMat(const int& dim", 0);
  }
}

void TriMat::reset(int dim) {
  rows_.clear();
  try {
    rows_ = triangle_rows(dim);
  } catch (const std::bad_alloc&) {
    rows_.clear();
    report_error(report_kind::MEMORY, "TriMat::allocate_matrix()", 0);
  }
}

void TriMat::zero() {
  for (auto& r : rows_) std::fill(r.begin(), r.end(), 0.0);
}

double& TriMat::operator()(int i, int j) {
  if (is_conventional_) {
    scratch_ = i == j ? value_same_ : value_other_;
    return scratch_;
  }
  if (i < j) std::swap(i, j);
  if (j < 0 || i >= dim()) {
    report_error(report_kind::ERROR, "TriMat::operator()", 1);
    scratch_ = value_same_;
    return scratch_;
  }
  return rows_[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
}

double TriMat::operator()(int i, int j) const {
  if (is_conventional_) return i == j ? value_same_ : value_other_;
  if (i < j) std::swap(i, j);
  if (j < 0 || i >= dim()) {
    report_error(report_kind::ERROR, "TriMat::operator()", 1);
    return value_same_;
  }
  return rows_[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
}

// --- DistMat -----------------------------------------------------------------

DistMat::DistMat() : name_("none") {}

void DistMat::set_size(int n) {
  matrix_size_ = n;
  reset(n);
  labels_.assign(static_cast<std::size_t>(std::max(n, 0)), my_string());
  has_labels_ = true;
}

void DistMat::clear() {
  reset(0);
  set_conventional(false);
  name_ = "none";
  matrix_size_ = 0;
  drop_labels();
}

void DistMat::drop_labels() {
  labels_.clear();
  has_labels_ = false;
}

my_string& DistMat::label(int i) {
  if (i >= 0 && i < label_count()) return labels_[static_cast<std::size_t>(i)];
  scratch_label_ = "";
  return scratch_label_;
}

const my_string& DistMat::label(int i) const {
  static const my_string empty;
  if (i >= 0 && i < label_count()) return labels_[static_cast<std::size_t>(i)];
  return empty;
}

void DistMat::resolve_file_name(my_string& target, const my_string& name) const {
  if (name.contains('/') || name.contains('\\')) {
    target = name;
    return;
  }
  if (project_dir_ == nullptr) {
    log_stream() << "Pointer to project dir is not initialized. ERROR\n";
    target = name;
    return;
  }
  target = *project_dir_ + name;
}

// --- RectMat -----------------------------------------------------------------

RectMat::RectMat(int nrows, int ncols) : nrows_(nrows), ncols_(ncols) {
  allocate_matrix();
}

void RectMat::allocate_matrix() {
  if (allocated_) return;
  try {
    rows_.assign(static_cast<std::size_t>(std::max(nrows_, 0)),
                 std::vector<double>(static_cast<std::size_t>(std::max(ncols_, 0)), 0.0));
    allocated_ = true;
  } catch (const std::bad_alloc&) {
    rows_.clear();
    allocated_ = false;
    report_error(report_kind::MEMORY, "RectMat::allocate_matrix()", 0);
  }
}

void RectMat::free_matrix() {
  rows_.clear();
  rows_.shrink_to_fit();
  allocated_ = false;
}

double& RectMat::operator()(int i, int j) {
  if (is_conventional_) {
    scratch_ = i == j ? value_same_ : value_other_;
    return scratch_;
  }
  if (!allocated_ || i < 0 || j < 0 || i >= nrows_ || j >= ncols_) {
    report_error(report_kind::ERROR, "RectMat::operator()", 1);
    scratch_ = value_same_;
    return scratch_;
  }
  return rows_[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
}

double RectMat::operator()(int i, int j) const {
  if (is_conventional_) return i == j ? value_same_ : value_other_;
  if (!allocated_ || i < 0 || j < 0 || i >= nrows_ || j >= ncols_) {
    report_error(report_kind::ERROR, "RectMat::operator()", 1);
    return value_same_;
  }
  return rows_[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
}

double RectMat::compute_SSX() {
  if (nrows_ != ncols_) {
    log_stream() << "RectMat::compute_SSX() : unable to proceed on non-square matrix\n";
    return 0.0;
  }
  const int n = nrows_;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) sum += cell(i, j);
  }
  mean_x_ = sum / (n * (n - 1) / 2);
  double ss = 0.0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) {
      const double d = cell(i, j) - mean_x_;
      ss += d * d;
    }
  }
  ssx_ = ss;
  return ssx_;
}

double RectMat::Z(const RectMat& other) {
  if (nrows_ != ncols_) {
    log_stream() << "RectMat::Z(const RectMat& M) : unable to proceed on non-square matrix\n";
    return 0.0;
  }
  if (!index_created_) {
    log_stream() << "RectMat::Z(const RectMat& M) : index matrix not available, Z value cannot "
                    "be computed\n";
    return 0.0;
  }
  double sum = 0.0;
  for (int i = 0; i < nrows_; ++i) {
    const int row = index_[static_cast<std::size_t>(i)];
    for (int j = 0; j < i; ++j) {
      sum += cell(row, index_[static_cast<std::size_t>(j)]) * other(i, j);
    }
  }
  z_ = sum;
  return z_;
}

double RectMat::sum_of_products(const RectMat& other) {
  if (nrows_ != ncols_ || other.nrows_ != other.ncols_) {
    log_stream()
        << "RectMat::sum_of_products(const RectMat& M) : unable to proceed on non-square matrix\n";
    return 0.0;
  }
  if (nrows_ != other.nrows_) {
    log_stream() << "RectMat::sum_of_products(const RectMat& M) : unable to compute correlation "
                    "between matrices of different size\n";
    return 0.0;
  }
  Z(other);
  const int n = nrows_;
  const int k = static_cast<int>(n * (n - 1) / 2.0);
  return z_ - k * mean_x_ * other.mean_x_;
}

int RectMat::create_index() {
  try {
    std::vector<int> identity(static_cast<std::size_t>(std::max(nrows_, 0)));
    std::iota(identity.begin(), identity.end(), 0);
    index_ = std::move(identity);
    index_created_ = true;
    return 1;
  } catch (const std::bad_alloc&) {
    index_.clear();
    index_created_ = false;
    log_stream() << "RectMat::RectMat::create_index() : not enough memory\n";
    return 0;
  }
}

// --- BnumMat -----------------------------------------------------------------

void BnumMat::free_matrix() {
  rows_.clear();
  rows_.shrink_to_fit();
  nrows_ = 0;
  ncols_ = 0;
}

bool BnumMat::allocate_matrix(int n, int m) {
  free_matrix();
  if (n >= kRowLimit || m >= kColumnLimit || n < 0 || m < 0) return false;
  try {
    rows_.resize(static_cast<std::size_t>(n));
    for (int i = 1; i <= n; ++i)
      rows_[static_cast<std::size_t>(i - 1)].assign(static_cast<std::size_t>(std::min(i, m)), 0.0);
  } catch (const std::bad_alloc&) {
    free_matrix();
    try {
      report_error(report_kind::MEMORY, "BnumMat::allocate_matrix()", 0);
    } catch (ExceptionType) {
      // The table is optional: its users take their refusal path on false.
    }
    return false;
  }
  nrows_ = n;
  ncols_ = m;
  for (int i = 1; i <= n; ++i) {
    std::vector<double>& row = rows_[static_cast<std::size_t>(i - 1)];
    for (int j = 1; j <= std::min(i, m); ++j) {
      double& b = row[static_cast<std::size_t>(j - 1)];
      if (j == i) {
        b = 1.0;
      } else if (j == 1) {
        b = 1.0 / i;
      } else {
        const std::vector<double>& above = rows_[static_cast<std::size_t>(i - 2)];
        b = ((i - 1) * above[static_cast<std::size_t>(j - 1)] +
             j * above[static_cast<std::size_t>(j - 2)]) /
            i;
      }
    }
  }
  return true;
}

double BnumMat::operator()(int n, int k) const {
  if (n < 1 || n > nrows_ || k < 1 || k > std::min(n, ncols_)) return 0.0;
  return rows_[static_cast<std::size_t>(n - 1)][static_cast<std::size_t>(k - 1)];
}

bool BnumMat::finite_cell(int n, int k) const {
  if (n < 1 || n > nrows_ || k < 1 || k > std::min(n, ncols_)) return false;
  return std::isfinite((*this)(n, k));
}

// --- The shared table ----------------------------------------------------------

namespace {

struct SharedBnum {
  BnumMat table;
  bool available = false;
  SharedBnum() { table.allocate_matrix(5, 5); }
};

SharedBnum& shared() {
  static SharedBnum instance;
  return instance;
}

}  // namespace

BnumMat& shared_bnum_mat() {
  return shared().table;
}

bool bnum_mat_available() {
  return shared().available;
}

bool load_bnum_mat() {
  SharedBnum& s = shared();
  if (!s.available) s.available = s.table.allocate_matrix(200, 80);
  return s.available;
}

bool ensure_bnum_cell(int n, int k) {
  SharedBnum& s = shared();
  if (n >= s.table.nrows() || k >= s.table.ncols()) {
    if (!s.table.allocate_matrix(n + 10, k + 10)) s.available = false;
  }
  return s.available;
}

void release_bnum_mat() {
  shared().table.allocate_matrix(5, 5);
}
