#include "model/matrices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "model/report.h"

namespace {

// Captures reports and log lines while a test runs.
struct Report {
  unsigned char kind;
  std::string function;
  int code;
};
std::vector<Report> reports;
std::ostringstream log_text;

void capture_raise(unsigned char kind, std::string_view function, int code) {
  reports.push_back({kind, std::string(function), code});
  if (kind == report_kind::MEMORY) throw MEMORY_EXHAUSTED;
}
std::ostream& capture_log() {
  return log_text;
}

class MatricesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    reports.clear();
    log_text.str("");
    install_report_hooks(capture_raise, capture_log);
  }
  void TearDown() override { install_report_hooks(nullptr, nullptr); }
};

// --- TriMat --------------------------------------------------------------------

TEST_F(MatricesTest, TriMatReadsEitherIndexOrder) {
  TriMat m(4);
  m(3, 1) = 2.5;
  m(0, 2) = 7.0;
  m(2, 2) = 1.5;
  EXPECT_EQ(m(1, 3), 2.5);
  EXPECT_EQ(m(2, 0), 7.0);
  EXPECT_EQ(m(2, 2), 1.5);
  EXPECT_EQ(m.row(3).size(), 4u);
  EXPECT_TRUE(reports.empty());
}

TEST_F(MatricesTest, TriMatOutOfRangeReportsErrorOne) {
  struct Case {
    int i, j;
  };
  for (const Case c : std::vector<Case>{{4, 0}, {0, 4}, {-1, 2}, {2, -1}, {9, 9}}) {
    reports.clear();
    TriMat m(4);
    m(3, 3) = 5.0;
    EXPECT_EQ(m(c.i, c.j), 0.0) << c.i << "," << c.j;
    m(c.i, c.j) = 8.0;  // a write out of range reaches no cell
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].kind, report_kind::ERROR);
    EXPECT_EQ(reports[0].function, "TriMat::operator()");
    EXPECT_EQ(reports[0].code, 1);
    EXPECT_EQ(m(3, 3), 5.0);
    const TriMat& cm = m;
    EXPECT_EQ(cm(c.i, c.j), 0.0);
  }
}

TEST_F(MatricesTest, ConventionalMatrixIgnoresTriangle) {
  TriMat m(3);
  m(2, 1) = 4.0;
  m.set_conventional(true);
  EXPECT_EQ(m(1, 1), 0.0);
  EXPECT_EQ(m(2, 1), 1.0);
  EXPECT_EQ(m(7, 0), 1.0);  // not read, so not checked
  EXPECT_TRUE(reports.empty());
  m.set_conventional(false);
  EXPECT_EQ(m(2, 1), 4.0);
}

TEST_F(MatricesTest, ResetAndZero) {
  TriMat m(2);
  m(1, 0) = 3.0;
  m.zero();
  EXPECT_EQ(m(1, 0), 0.0);
  m(1, 1) = 2.0;
  m.reset(5);
  EXPECT_EQ(m.dim(), 5);
  EXPECT_EQ(m(1, 1), 0.0);
  m.reset(0);
  EXPECT_EQ(m.dim(), 0);
}

// --- DistMat -------------------------------------------------------------------

TEST_F(MatricesTest, DistMatSetSize) {
  DistMat d;
  EXPECT_EQ(d.name(), "none");
  EXPECT_FALSE(d.has_labels());
  d.set_size(3);
  EXPECT_EQ(d.matrix_size(), 3);
  EXPECT_EQ(d.dim(), 3);
  ASSERT_EQ(d.label_count(), 3);
  d.label(1) = "h2";
  d(2, 1) = 0.25;
  d.set_size(2);
  EXPECT_TRUE(d.label(1).is_empty());
  EXPECT_EQ(d(1, 0), 0.0);
}

TEST_F(MatricesTest, DistMatResolvesFileNames) {
  const my_string folder("proj/dir/");
  struct Case {
    const char* name;
    bool with_folder;
    const char* want;
    bool logged;
  };
  const std::vector<Case> cases = {
      {"matrix.txt", true, "proj/dir/matrix.txt", false},
      {"sub/matrix.txt", true, "sub/matrix.txt", false},
      {"c:\\m.txt", true, "c:\\m.txt", false},
      {"matrix.txt", false, "matrix.txt", true},
  };
  for (const auto& c : cases) {
    log_text.str("");
    DistMat d;
    if (c.with_folder) d.set_project_dir(&folder);
    my_string target;
    d.resolve_file_name(target, my_string(c.name));
    EXPECT_EQ(target, c.want);
    EXPECT_EQ(log_text.str(), c.logged ? "Pointer to project dir is not initialized. ERROR\n" : "");
  }
}

// --- RectMat -------------------------------------------------------------------

RectMat symmetric(const std::vector<std::vector<double>>& cells) {
  const int n = static_cast<int>(cells.size());
  RectMat m(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) m(i, j) = cells[i][j];
  return m;
}

const std::vector<std::vector<double>> kA = {
    {0, 1.5, 2.25, 3.0}, {1.5, 0, 0.75, 4.5}, {2.25, 0.75, 0, 5.125}, {3.0, 4.5, 5.125, 0}};
const std::vector<std::vector<double>> kB = {
    {0, 2.0, 1.0, 7.0}, {2.0, 0, 3.5, 0.5}, {1.0, 3.5, 0, 6.0}, {7.0, 0.5, 6.0, 0}};

// Cells below the diagonal, in a plain list.
std::vector<double> lower(const std::vector<std::vector<double>>& c) {
  std::vector<double> out;
  for (std::size_t i = 0; i < c.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) out.push_back(c[i][j]);
  return out;
}

TEST_F(MatricesTest, ComputeSSXAgainstReference) {
  RectMat a = symmetric(kA);
  const std::vector<double> x = lower(kA);
  double mean = 0;
  for (double v : x) mean += v / static_cast<double>(x.size());
  double ss = 0;
  for (double v : x) ss += (v - mean) * (v - mean);
  EXPECT_NEAR(a.compute_SSX(), ss, 1e-12);
  EXPECT_NEAR(a.mean_x(), mean, 1e-12);
  EXPECT_NEAR(a.ssx(), ss, 1e-12);
}

TEST_F(MatricesTest, ZAndSumOfProductsAgainstReference) {
  RectMat a = symmetric(kA);
  RectMat b = symmetric(kB);
  a.compute_SSX();
  b.compute_SSX();
  ASSERT_EQ(a.create_index(), 1);
  // Identity: the plain cross-product over the lower triangle.
  double z = 0;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < i; ++j) z += kA[i][j] * kB[i][j];
  EXPECT_NEAR(a.Z(b), z, 1e-12);
  const double k = 6;
  EXPECT_NEAR(a.sum_of_products(b), z - k * a.mean_x() * b.mean_x(), 1e-12);
  // A permuted index applies to this matrix only.
  struct Draws {
    std::vector<int> values;
    std::vector<int> asked;
    std::size_t next = 0;
    int uniform_index(int n) {
      asked.push_back(n);
      return values[next++];
    }
  } g{{1, 0, 1, 0}, {}};
  a.permute_index(g);
  const std::vector<int>& p = a.index();
  double zp = 0;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < i; ++j) zp += kA[p[i]][p[j]] * kB[i][j];
  EXPECT_NEAR(a.Z(b), zp, 1e-12);
  EXPECT_EQ(a.z(), a.Z(b));
}

TEST_F(MatricesTest, PermuteIndexIsFisherYates) {
  struct Case {
    std::vector<int> draws;
    std::vector<int> want;
  };
  // m = 4: draw d0, swap(d0, 3); m = 3: swap(d1, 2); m = 2: swap(d2, 1); m = 1: swap(d3, 0).
  const std::vector<Case> cases = {
      {{3, 2, 1, 0}, {0, 1, 2, 3}},
      {{0, 0, 0, 0}, {1, 2, 3, 0}},
      {{1, 0, 1, 0}, {2, 3, 0, 1}},
  };
  for (const auto& c : cases) {
    RectMat m(4, 4);
    m.create_index();
    struct Fake {
      std::vector<int> values;
      std::vector<int> asked;
      std::size_t next = 0;
      int uniform_index(int n) {
        asked.push_back(n);
        return values[next++];
      }
    } g{c.draws, {}};
    m.permute_index(g);
    EXPECT_EQ(g.asked, (std::vector<int>{4, 3, 2, 1}));
    EXPECT_EQ(m.index(), c.want);
    m.create_index();
    EXPECT_EQ(m.index(), (std::vector<int>{0, 1, 2, 3}));
  }
}

TEST_F(MatricesTest, RectMatShapeFailureMessages) {
  RectMat wide(2, 3);
  RectMat square(3, 3);
  RectMat small(2, 2);
  struct Case {
    std::function<double()> call;
    const char* log;
  };
  const std::vector<Case> cases = {
      {[&] { return wide.compute_SSX(); },
       "RectMat::compute_SSX() : unable to proceed on non-square matrix\n"},
      {[&] { return wide.Z(square); },
       "RectMat::Z(const RectMat& M) : unable to proceed on non-square matrix\n"},
      {[&] { return square.Z(square); },
       "RectMat::Z(const RectMat& M) : index matrix not available, Z value cannot be computed\n"},
      {[&] { return wide.sum_of_products(square); },
       "RectMat::sum_of_products(const RectMat& M) : unable to proceed on non-square matrix\n"},
      {[&] { return small.sum_of_products(square); },
       "RectMat::sum_of_products(const RectMat& M) : unable to compute correlation between "
       "matrices of different size\n"},
  };
  for (const auto& c : cases) {
    log_text.str("");
    EXPECT_EQ(c.call(), 0.0);
    EXPECT_EQ(log_text.str(), c.log);
  }
}

TEST_F(MatricesTest, RectMatOutOfRangeReportsErrorOne) {
  RectMat m(2, 3);
  m(1, 2) = 4.0;
  EXPECT_EQ(m(1, 2), 4.0);
  EXPECT_EQ(m(2, 0), 0.0);
  EXPECT_EQ(m(0, 3), 0.0);
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[1].function, "RectMat::operator()");
  EXPECT_EQ(reports[1].code, 1);
  m.free_matrix();
  EXPECT_FALSE(m.has_data());
  m.allocate_matrix();
  EXPECT_EQ(m(1, 2), 0.0);
}

// --- BnumMat -------------------------------------------------------------------

// Unsigned Stirling numbers of the first kind by their own recursion:
// c(n, k) = c(n-1, k-1) + (n-1) c(n-1, k).
std::vector<std::vector<std::uint64_t>> stirling_table(int n_max) {
  std::vector<std::vector<std::uint64_t>> c(n_max + 1, std::vector<std::uint64_t>(n_max + 1, 0));
  c[0][0] = 1;
  for (int n = 1; n <= n_max; ++n)
    for (int k = 1; k <= n; ++k) c[n][k] = c[n - 1][k - 1] + (n - 1) * c[n - 1][k];
  return c;
}

TEST(BnumMat, MatchesStirlingNumbers) {
  const int n_max = 20;
  const auto s = stirling_table(n_max);
  BnumMat b;
  ASSERT_TRUE(b.allocate_matrix(n_max, n_max));
  for (int n = 1; n <= n_max; ++n) {
    for (int k = 1; k <= n; ++k) {
      // B(n, k) n! / k! = |s(n, k)|
      long double scaled = b(n, k);
      for (int i = k + 1; i <= n; ++i) scaled *= i;
      const long double want = static_cast<long double>(s[n][k]);
      EXPECT_NEAR(static_cast<double>(scaled / want), 1.0, 1e-12) << n << "," << k;
    }
  }
}

TEST(BnumMat, FirstCells) {
  BnumMat b;
  ASSERT_TRUE(b.allocate_matrix(3, 3));
  EXPECT_EQ(b(1, 1), 1.0);
  EXPECT_EQ(b(2, 1), 0.5);
  EXPECT_EQ(b(2, 2), 1.0);
  EXPECT_EQ(b(3, 2), 1.0);
  EXPECT_EQ(b(3, 1), 1.0 / 3);
  EXPECT_EQ(b(2, 3), 0.0);  // beyond the row
}

TEST(BnumMat, SizeLimits) {
  struct Case {
    int n, m;
    bool ok;
  };
  for (const Case c : std::vector<Case>{
           {5001, 10, false}, {10, 1001, false}, {5000, 10, true}, {10, 1000, true}}) {
    BnumMat b;
    EXPECT_EQ(b.allocate_matrix(c.n, c.m), c.ok) << c.n << "," << c.m;
    EXPECT_EQ(b.nrows(), c.ok ? c.n : 0);
  }
}

TEST(BnumMat, LargestTableOverflowsWhereExpected) {
  BnumMat b;
  ASSERT_TRUE(b.allocate_matrix(5000, 1000));
  // The first cell that is not finite, in fill order, is (1542, 883).
  for (int n = 1; n < 1542; ++n)
    for (int k = 1; k <= std::min(n, 1000); ++k) ASSERT_TRUE(b.finite_cell(n, k)) << n << "," << k;
  EXPECT_TRUE(b.finite_cell(1542, 882));
  EXPECT_TRUE(std::isinf(b(1542, 883)));
  EXPECT_FALSE(b.finite_cell(2000, 700));
  EXPECT_TRUE(b.finite_cell(2000, 601));
  EXPECT_FALSE(b.finite_cell(2000, 602));
  EXPECT_TRUE(b.finite_cell(5000, 445));
  EXPECT_FALSE(b.finite_cell(5000, 446));
  EXPECT_FALSE(b.finite_cell(5001, 1));
}

TEST(BnumMat, SharedTableLifecycle) {
  BnumMat& t = shared_bnum_mat();
  EXPECT_EQ(t.nrows(), 5);
  EXPECT_EQ(t.ncols(), 5);
  EXPECT_FALSE(bnum_mat_available());
  EXPECT_TRUE(load_bnum_mat());
  EXPECT_EQ(t.nrows(), 200);
  EXPECT_EQ(t.ncols(), 80);
  EXPECT_TRUE(ensure_bnum_cell(150, 79));
  EXPECT_EQ(t.nrows(), 200);
  EXPECT_TRUE(ensure_bnum_cell(300, 20));
  EXPECT_EQ(t.nrows(), 310);
  EXPECT_EQ(t.ncols(), 30);
  EXPECT_FALSE(ensure_bnum_cell(6000, 20));
  EXPECT_FALSE(bnum_mat_available());
  release_bnum_mat();
  EXPECT_EQ(t.nrows(), 5);
}

}  // namespace
