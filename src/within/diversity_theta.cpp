// Estimators of theta = 2 N mu (4 N mu for diploids) within one sample:
//   Theta(Hom)  from the homozygosity of the sample under the
//               infinite-allele model, with the sampling correction of
//               Zouros (1979), solved by regula falsi;
//   Theta(S)    Watterson's (1975) estimator from the segregating sites;
//   Theta(Pi)   Tajima's (1983) estimator, the mean number of differences;
//   Theta(k)    Ewens' (1972) estimator from the number of alleles, with a
//               confidence interval from the Ewens sampling distribution of
//               the number of alleles, P(K = j | t) = t^j |s(n, j)| Gamma(t) /
//               Gamma(t + n), through the table of B numbers.
// Degenerate input: every copy different gives no Theta(Hom) (the infinite
// mark); one allele gives Theta(k) and its limits 0; one copy gives 0 for
// Theta(S) and Theta(Pi). A B number that overflowed refuses the interval.
#include <algorithm>
#include <cmath>
#include <string>

#include "model/report.h"
#include "numerics/special_functions.h"
#include "output/number_format.h"
#include "within/diversity.h"

namespace {

// The mark of a value that can't be estimated.
constexpr double kInfinite = 3.4028234663852886e+38;
// Largest sample and number of alleles for which the interval is computed.
constexpr int kMaxCopies = 5000;
constexpr int kMaxAlleles = 1000;
// Limits of a refused interval.
constexpr double kRefusedLow = 0.0;
constexpr double kRefusedHigh = 100000000.0;
// Above this theta the sampling probabilities are taken as 0.
constexpr double kLargestTheta = 10000.0;
constexpr double kPrecision = 1e-07;
// Steps of the search for Ewens' estimator, all loops together.
constexpr int kMaxThetaKSteps = 10000;
// A guard on each loop of the search for a limit; the searches end long before.
constexpr int kMaxLimitSteps = 10000;

// The expected homozygosity relation y = 1/H - 1 as a function of theta.
double homozygosity_relation(double t) {
  return t * (1.0 + 2.0 * (t + 1.0) / ((t + 2.0) * (t + 3.0)));
}

double regula_falsi_theta(double y) {
  double a = y > 1.0 ? y - 1.0 : 0.001;
  double b = y + 1.0;
  double x = a;
  double residual = 1.0;
  for (int step = 0; step < 1000 && std::fabs(residual) > kPrecision; ++step) {
    const double fb = homozygosity_relation(b);
    x = b - (b - a) * (fb - y) / (fb - homozygosity_relation(a));
    residual = homozygosity_relation(x) - y;
    if (residual <= 0.0) {
      a = x;
    } else {
      b = x;
    }
  }
  return x;
}

// The root of f(t) = level for a function decreasing in t, from t0: the
// bracket widens by factors of 3, then bisection to 1e-07.
template <class F>
double decreasing_root(F f, double t0, double level) {
  double a = t0;
  double b = t0;
  for (int i = 0; i < kMaxLimitSteps && f(a) < level; ++i) a /= 3.0;
  for (int i = 0; i < kMaxLimitSteps && f(b) > level; ++i) b *= 3.0;
  double m = (a + b) / 2.0;
  for (int i = 0; i < kMaxLimitSteps && std::fabs(b - a) > kPrecision; ++i) {
    m = (a + b) / 2.0;
    if (f(m) <= level) {
      b = m;
    } else {
      a = m;
    }
  }
  return m;
}

double ewens_point_estimate(int n, int k) {
  int steps = 0;
  double a = 0.1;
  while (steps < kMaxThetaKSteps && expected_k(a, n) > k) {
    a *= 0.1;
    ++steps;
  }
  double b = 10.0;
  while (steps < kMaxThetaKSteps && expected_k(b, n) < k) {
    b *= 10.0;
    ++steps;
  }
  double m = (a + b) / 2.0;
  while (steps < kMaxThetaKSteps && b - a > kPrecision) {
    m = (a + b) / 2.0;
    if (expected_k(m, n) <= k) {
      a = m;
    } else {
      b = m;
    }
    ++steps;
  }
  return m;
}

// The first of B(n, 1) .. B(n, k) that is not finite, or 0.
int first_overflowed_column(const BnumMat& table, int n, int k) {
  for (int j = 1; j <= k; ++j) {
    if (!table.finite_cell(n, j)) return j;
  }
  return 0;
}

void refuse_interval(ThetaKResult& r, ThetaKInterval why) {
  r.interval = why;
  r.low = kRefusedLow;
  r.high = kRefusedHigh;
}

}  // namespace

// --- Theta(Hom), Theta(S), Theta(Pi) ------------------------------------------

double& theta_Hom_value(PopGenetics& sample) {
  const double h = sample.gene_homozygosity;
  if (static_cast<double>(sample.Nb_haplo) == sample.sample_size) {
    sample.theta_Hom = kInfinite;
    return sample.theta_Hom;
  }
  if (h == 1.0) {
    sample.theta_Hom = 0.0;
    sample.sd_theta_Hom = 0.0;
    return sample.theta_Hom;
  }
  if (h <= 0.0) {
    sample.theta_Hom = kInfinite;
    sample.sd_theta_Hom = kInfinite;
    return sample.theta_Hom;
  }
  const double t = regula_falsi_theta(1.0 / h - 1.0);
  sample.theta_Hom = t;
  const double v = sample.sd_gene_diversity;
  sample.sd_theta_Hom =
      v * ((t + 2.0) * (t + 2.0)) * ((t + 3.0) * (t + 3.0)) /
      ((10.0 * (t + 2.0) + (t + 4.0) * (t + 2.0) * (t + 3.0) + 4.0) * (t + 1.0) * (h * h));
  return sample.theta_Hom;
}

double& theta_S_value(PopGenetics& sample, int n, int S) {
  double a1 = 0.0;
  double a2 = 0.0;
  for (int i = 1; i < n; ++i) {
    a1 += 1.0 / i;
    a2 += 1.0 / (static_cast<double>(i) * i);
  }
  if (a1 <= 0.0) {
    sample.theta_S = 0.0;
    sample.sd_theta_S = 0.0;
    return sample.theta_S;
  }
  const double s = S;
  sample.theta_S = s / a1;
  sample.sd_theta_S = std::sqrt((s * s * a2 + s * (a1 * a1)) / ((a1 * a1 + a2) * (a1 * a1)));
  return sample.theta_S;
}

double& theta_Pi_value(PopGenetics& sample, double pi) {
  const double n = sample.sample_size;
  if (n < 2.0) {
    sample.theta_Pi = 0.0;
    sample.sd_theta_Pi = 0.0;
    return sample.theta_Pi;
  }
  sample.theta_Pi = pi;
  sample.sd_theta_Pi = std::sqrt((2.0 * (n * n + n + 3.0) / (9.0 * n * (n - 1.0))) * (pi * pi) +
                                 ((n + 1.0) / (3.0 * (n - 1.0))) * pi);
  return sample.theta_Pi;
}

// --- Ewens' estimator ---------------------------------------------------------

double expected_k(double theta, int n) {
  if (theta <= 0.0) return 1.0;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += theta / (theta + i);
  return sum;
}

int load_BMat() {
  return load_bnum_mat() ? 1 : 0;
}

double ewens_prob_exactly(const BnumMat& table, double t, int n, int j) {
  if (t > kLargestTheta) return 0.0;
  if (t <= 0.0) return j == 1 ? 1.0 : 0.0;
  if (j >= n) return 0.0;
  const double exponent = static_cast<double>(j) * std::log(t) + factln(n) + gammln(t) -
                          gammln(static_cast<double>(n) + t) - factln(j);
  return std::exp(exponent) * table(n, j);
}

double ewens_prob_below(const BnumMat& table, double t, int n, int k) {
  if (t > kLargestTheta) return 0.0;
  if (t <= 0.0) return k >= 2 ? 1.0 : 0.0;
  const double log_t = std::log(t);
  double sum = 0.0;
  for (int j = 1; j < k; ++j) {
    sum += std::exp(static_cast<double>(j) * log_t - factln(j)) * table(n, j);
  }
  const double p = sum * std::exp(gammln(t) + factln(n) - gammln(static_cast<double>(n) + t));
  // max first: a product of an overflowed sum and an underflowed factor is
  // not a number, and max(0, NaN) gives 0.
  return std::min(1.0, std::max(0.0, p));
}

ThetaKResult ewens_theta_k(int n, int k, double alpha) {
  ThetaKResult r;
  if (k < 2) return r;
  r.theta = ewens_point_estimate(n, k);
  load_BMat();
  ensure_bnum_cell(n, k);
  if (n >= kMaxCopies || k >= kMaxAlleles) {
    refuse_interval(r, ThetaKInterval::beyond_limits);
    return r;
  }
  if (!bnum_mat_available()) {
    refuse_interval(r, ThetaKInterval::no_table);
    return r;
  }
  const BnumMat& table = shared_bnum_mat();
  if (const int j = first_overflowed_column(table, n, k); j != 0) {
    refuse_interval(r, ThetaKInterval::not_finite);
    r.bad_row = n;
    r.bad_column = j;
    return r;
  }
  const double lower_level = alpha / 2.0;
  const double upper_level = 1.0 - alpha / 2.0;
  const auto below = [&](double t) { return ewens_prob_below(table, t, n, k); };
  const auto at_most = [&](double t) {
    return ewens_prob_below(table, t, n, k) + ewens_prob_exactly(table, t, n, k);
  };
  r.high = decreasing_root(below, r.theta, lower_level);
  r.low = decreasing_root(at_most, r.theta, upper_level);
  return r;
}

ThetaKResult theta_k_with_interval(PopGenetics& sample, int n, int k, double alpha) {
  const ThetaKResult r = ewens_theta_k(n, k, alpha);
  sample.theta_k = r.theta;
  sample.theta_k_low = r.low;
  sample.theta_k_high = r.high;
  if (r.interval == ThetaKInterval::not_finite) {
    const std::string where = "PopGenetics::theta_k_value() : sample \"" + sample.SampleName.str() +
                              "\", B(" + fmt::integer(r.bad_row).text + ", " +
                              fmt::integer(r.bad_column).text + ") is not finite";
    report_error(report_kind::WARNING, where, 179);
  }
  return r;
}

double& theta_k_value(PopGenetics& sample, int n, int k, double alpha) {
  theta_k_with_interval(sample, n, k, alpha);
  return sample.theta_k;
}
