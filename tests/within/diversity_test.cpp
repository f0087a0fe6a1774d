// Gene diversity and the theta estimators: values worked out by hand for
// small samples, values of the independent reference calculator
// (tools/reference/reference.py) for a lake sample of 24 sequences, and the
// interval of Ewens' estimator against a root-finding of its own below.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "model/dictionary_test_support.h"
#include "within/diversity_test_support.h"

namespace {

using diversity_test::ready_sample;
using diversity_test::unit_weights;
using population_test::Project;

constexpr double kInfinite = 3.4028234663852886e+38;

// A haplotypic standard-data sample with these counts (one allele per haplotype).
std::unique_ptr<PopGenetics> counts_sample(Project& project, const std::vector<int>& counts) {
  diversity_test::Entries entries;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    entries.emplace_back("a" + std::to_string(i), counts[i]);
  }
  settings s = unit_weights();
  return ready_sample(project, 3, entries, s);
}

// --- Gene diversity --------------------------------------------------------------

struct DiversityCase {
  const char* what;
  std::vector<int> counts;
  double sum_sq;
  double diversity;
  double sd;
};

TEST(GeneDiversity, HandValues) {
  const DiversityCase cases[] = {
      // p = 1/2, 1/4, 1/4: S2 = 3/8, H = 4/3 * 5/8; S3 = 5/32.
      {"three haplotypes", {2, 1, 1}, 0.375, 5.0 / 6.0, std::sqrt(19.0 / 384.0)},
      // Every copy different: S2 = S3 * 3 = 1/3; var = 1/3 * (2 (1/9 - 1/9) + 1/3 - 1/9).
      {"all different", {1, 1, 1}, 1.0 / 3.0, 1.0, std::sqrt(2.0 / 27.0)},
      {"monomorphic", {5}, 1.0, 0.0, 0.0},
      {"one copy", {1}, 1.0, 0.0, 0.0},
      // n = 10, p = .7, .3: S2 = .58, H = 10/9 * .42; S3 = .37.
      {"two alleles",
       {7, 3},
       0.58,
       10.0 / 9.0 * 0.42,
       std::sqrt(2.0 / 90.0 * (2.0 * 8.0 * (0.37 - 0.58 * 0.58) + 0.58 - 0.58 * 0.58))},
  };
  for (const DiversityCase& c : cases) {
    Project project;
    auto sample = counts_sample(project, c.counts);
    EXPECT_NEAR(gene_diversity_value(*sample), c.diversity, 1e-14) << c.what;
    EXPECT_NEAR(sample->gene_homozygosity, 1.0 - c.diversity, 1e-14) << c.what;
    EXPECT_NEAR(sample->sum_sq_freq, c.sum_sq, 1e-14) << c.what;
    EXPECT_NEAR(sd_gene_div(*sample), c.sd, 1e-14) << c.what;
  }
}

TEST(GeneDiversity, ReferenceLakeSample) {
  Project project;
  auto sample = counts_sample(project, {9, 5, 4, 2, 2, 1, 1});
  EXPECT_NEAR(gene_diversity_value(*sample), 0.8043478260869564, 1e-14);
  EXPECT_NEAR(sd_gene_div(*sample), 0.05533337971449078, 1e-14);
  EXPECT_NEAR(sample->sum_sq_freq, 0.22916666666666669, 1e-14);
}

// --- Theta(Hom), Theta(S), Theta(Pi) ----------------------------------------------

TEST(ThetaHom, SolvesTheHomozygosityRelation) {
  Project project;
  auto sample = counts_sample(project, {2, 1, 1});
  gene_diversity_value(*sample);
  sd_gene_div(*sample);
  const double t = theta_Hom_value(*sample);
  // Reference calculator: 4.0420255269235685 and 7.071456884319536.
  EXPECT_NEAR(t, 4.0420255269235685, 1e-9);
  EXPECT_NEAR(sample->sd_theta_Hom, 7.071456884319536, 1e-8);
  const double f = t * (1.0 + 2.0 * (t + 1.0) / ((t + 2.0) * (t + 3.0)));
  EXPECT_NEAR(f, 1.0 / sample->gene_homozygosity - 1.0, 1e-7);
}

TEST(ThetaHom, DegenerateSamples) {
  Project project;
  auto mono = counts_sample(project, {6});
  gene_diversity_value(*mono);
  sd_gene_div(*mono);
  EXPECT_EQ(theta_Hom_value(*mono), 0.0);
  EXPECT_EQ(mono->sd_theta_Hom, 0.0);

  Project other;
  auto distinct = counts_sample(other, {1, 1, 1, 1});
  gene_diversity_value(*distinct);
  sd_gene_div(*distinct);
  EXPECT_EQ(theta_Hom_value(*distinct), kInfinite);
}

TEST(ThetaHom, ReferenceLakeSample) {
  Project project;
  auto sample = counts_sample(project, {9, 5, 4, 2, 2, 1, 1});
  gene_diversity_value(*sample);
  sd_gene_div(*sample);
  EXPECT_NEAR(theta_Hom_value(*sample), 3.2665327160384594, 1e-9);
  EXPECT_NEAR(sample->sd_theta_Hom, 1.2446540592539521, 1e-8);
}

TEST(ThetaS, HandValues) {
  struct Case {
    int n;
    int S;
    double theta;
    double sd;
  };
  // n = 4: a1 = 11/6, a2 = 49/36.
  const Case cases[] = {{4, 3, 18.0 / 11.0, std::sqrt(28944.0 / 20570.0)},
                        {4, 0, 0.0, 0.0},
                        {1, 5, 0.0, 0.0},
                        {2, 2, 2.0, std::sqrt((4.0 + 2.0) / 2.0)},
                        {24, 11, 2.9456725505606083, 1.265627345703339}};
  Project project;
  auto sample = counts_sample(project, {1});
  for (const Case& c : cases) {
    EXPECT_NEAR(theta_S_value(*sample, c.n, c.S), c.theta, 1e-13) << c.n << " " << c.S;
    EXPECT_NEAR(sample->sd_theta_S, c.sd, 1e-13) << c.n << " " << c.S;
  }
}

TEST(ThetaPi, HandValues) {
  Project project;
  auto four = counts_sample(project, {2, 1, 1});
  EXPECT_EQ(theta_Pi_value(*four, 2.0), 2.0);
  EXPECT_NEAR(four->sd_theta_Pi, std::sqrt(76.0 / 27.0), 1e-14);
  Project other;
  auto one = counts_sample(other, {1});
  EXPECT_EQ(theta_Pi_value(*one, 3.0), 0.0);
  EXPECT_EQ(one->sd_theta_Pi, 0.0);
}

// --- Ewens' estimator -------------------------------------------------------------

TEST(ExpectedK, Values) {
  EXPECT_EQ(expected_k(0.0, 10), 1.0);
  EXPECT_EQ(expected_k(-2.0, 10), 1.0);
  EXPECT_NEAR(expected_k(1.0, 3), 1.0 + 0.5 + 1.0 / 3.0, 1e-15);
  EXPECT_NEAR(expected_k(2.0, 2), 1.0 + 2.0 / 3.0, 1e-15);
}

// An independent computation of the Ewens sampling distribution: unsigned
// Stirling numbers of the first kind in logarithms, extended precision.
class EwensDistribution {
 public:
  explicit EwensDistribution(int n) : n_(n), log_s_(static_cast<std::size_t>(n) + 1) {
    // |s(m+1, j)| = m |s(m, j)| + |s(m, j-1)|, row by row.
    std::vector<long double> row = {0.0L};  // |s(1, 1)| = 1
    for (int m = 1; m < n; ++m) {
      std::vector<long double> next(static_cast<std::size_t>(m) + 1);
      for (int j = 1; j <= m + 1; ++j) {
        const long double a =
            j <= m ? std::log(static_cast<long double>(m)) + row[j - 1] : -INFINITY;
        const long double b = j >= 2 ? row[j - 2] : -INFINITY;
        const long double hi = std::max(a, b);
        next[j - 1] = hi + std::log(std::exp(a - hi) + std::exp(b - hi));
      }
      row = next;
    }
    log_s_ = row;
  }
  // P(K = j | t).
  long double p(long double t, int j) const {
    return std::exp(j * std::log(t) + log_s_[j - 1] + std::lgamma(t) - std::lgamma(t + n_));
  }
  long double below(long double t, int k) const {
    long double sum = 0.0L;
    for (int j = 1; j < k; ++j) sum += p(t, j);
    return sum;
  }
  // The t where f(t) = level, for f decreasing in t, by bisection on ln t.
  template <class F>
  static double root(F f, double level) {
    long double lo = std::log(1e-8L);
    long double hi = std::log(1e5L);
    for (int i = 0; i < 200; ++i) {
      const long double mid = (lo + hi) / 2;
      if (f(std::exp(mid)) > level) {
        lo = mid;
      } else {
        hi = mid;
      }
    }
    return static_cast<double>(std::exp((lo + hi) / 2));
  }

 private:
  int n_;
  std::vector<long double> log_s_;
};

TEST(ThetaK, IntervalAgreesWithIndependentRoots) {
  struct Case {
    int n;
    int k;
  };
  for (const Case c : {Case{4, 3}, Case{24, 7}, Case{50, 2}, Case{120, 30}, Case{400, 60}}) {
    const ThetaKResult r = ewens_theta_k(c.n, c.k, 0.05);
    ASSERT_EQ(r.interval, ThetaKInterval::computed) << c.n;
    const EwensDistribution d(c.n);
    const double high =
        EwensDistribution::root([&](long double t) { return d.below(t, c.k); }, 0.025);
    const double low = EwensDistribution::root(
        [&](long double t) { return d.below(t, c.k) + d.p(t, c.k); }, 0.975);
    EXPECT_NEAR(r.high, high, 1e-6 * high + 2e-7) << c.n << " " << c.k;
    EXPECT_NEAR(r.low, low, 1e-6 * low + 2e-7) << c.n << " " << c.k;
    EXPECT_LT(r.low, r.theta);
    EXPECT_LT(r.theta, r.high);
    EXPECT_NEAR(expected_k(r.theta, c.n), c.k, 1e-5) << c.n << " " << c.k;
  }
}

TEST(ThetaK, ReferenceValues) {
  // Reference calculator, toy sample and lake sample.
  const ThetaKResult toy = ewens_theta_k(4, 3, 0.05);
  EXPECT_NEAR(toy.theta, 3.7664354540407654, 1e-6);
  EXPECT_NEAR(toy.low, 0.7744965541178214, 1e-6);
  EXPECT_NEAR(toy.high, 18.232851365699563, 1e-5);
  const ThetaKResult lake = ewens_theta_k(24, 7, 0.05);
  EXPECT_NEAR(lake.theta, 2.950929249078035, 1e-6);
  EXPECT_NEAR(lake.low, 1.2128582855039798, 1e-6);
  EXPECT_NEAR(lake.high, 6.838268354362692, 1e-6);
}

TEST(ThetaK, OneAlleleGivesZeros) {
  const ThetaKResult r = ewens_theta_k(10, 1, 0.05);
  EXPECT_EQ(r.theta, 0.0);
  EXPECT_EQ(r.low, 0.0);
  EXPECT_EQ(r.high, 0.0);
}

TEST(ThetaK, LimitsBeyondTheTable) {
  for (const auto& [n, k] : {std::pair{5000, 10}, std::pair{3000, 1000}}) {
    const ThetaKResult r = ewens_theta_k(n, k, 0.05);
    EXPECT_EQ(r.interval, ThetaKInterval::beyond_limits) << n << " " << k;
    EXPECT_EQ(r.low, 0.0);
    EXPECT_EQ(r.high, 100000000.0);
    EXPECT_NEAR(expected_k(r.theta, n), k, 1e-4);
  }
  release_bnum_mat();
}

TEST(ThetaK, OverflowedCellRefusesTheIntervalWithAWarning) {
  dictionary_test::ReportCapture capture;
  Project project;
  auto sample = counts_sample(project, {1});
  sample->SampleName = "Big lake";
  const ThetaKResult r = theta_k_with_interval(*sample, 2000, 700, 0.05);
  EXPECT_EQ(r.interval, ThetaKInterval::not_finite);
  EXPECT_EQ(r.bad_row, 2000);
  EXPECT_FALSE(shared_bnum_mat().finite_cell(2000, r.bad_column));
  EXPECT_TRUE(shared_bnum_mat().finite_cell(2000, r.bad_column - 1));
  EXPECT_TRUE(std::isfinite(sample->theta_k));
  EXPECT_EQ(sample->theta_k_low, 0.0);
  EXPECT_EQ(sample->theta_k_high, 100000000.0);
  ASSERT_EQ(capture.all().size(), 1u);
  EXPECT_EQ(capture.all()[0].kind, report_kind::WARNING);
  EXPECT_EQ(capture.all()[0].code, 179);
  EXPECT_EQ(capture.all()[0].function_name,
            "PopGenetics::theta_k_value() : sample \"Big lake\", B(2000, " +
                std::to_string(r.bad_column) + ") is not finite");
  release_bnum_mat();
}

TEST(EwensProbabilities, SumToOneAndAgree) {
  load_BMat();
  ASSERT_TRUE(ensure_bnum_cell(30, 30));
  const BnumMat& table = shared_bnum_mat();
  const EwensDistribution d(30);
  for (const double t : {0.3, 2.5, 17.0}) {
    double total = 0.0;
    for (int j = 1; j < 30; ++j) {
      const double p = ewens_prob_exactly(table, t, 30, j);
      EXPECT_NEAR(p, static_cast<double>(d.p(t, j)), 1e-9 * p + 1e-15) << t << " " << j;
      total += p;
    }
    total += static_cast<double>(d.p(t, 30));  // j = n is left out of P(K = j)
    EXPECT_NEAR(total, 1.0, 1e-9) << t;
    EXPECT_NEAR(ewens_prob_below(table, t, 30, 5), static_cast<double>(d.below(t, 5)), 1e-9);
  }
  EXPECT_EQ(ewens_prob_below(table, 0.0, 30, 5), 1.0);
  EXPECT_EQ(ewens_prob_exactly(table, -1.0, 30, 1), 1.0);
  EXPECT_EQ(ewens_prob_exactly(table, -1.0, 30, 2), 0.0);
  EXPECT_EQ(ewens_prob_below(table, 10000.5, 30, 5), 0.0);
  EXPECT_EQ(ewens_prob_exactly(table, 10000.5, 30, 5), 0.0);
}

}  // namespace
