// Distances between DNA sequences corrected by base composition: Tajima and
// Nei (1984), Tamura (1992) with the G+C content, and Tamura and Nei (1993)
// with the four base frequencies and the two kinds of transition, the last
// with the gamma correction of rates among sites when a shape is given.
// Variances by the delta method (Tamura and Nei 1993, Kumar et al. 1993).
// Pairs without a counted difference are at 0 without correction; a base
// missing from the sample, a composition too unbalanced or a pair too
// divergent fails with its error.
#include <cmath>

#include "model/report.h"
#include "within/distances_dna.h"

namespace dna_distance {

namespace {

constexpr double kFloatMin = 1.1754943508222875e-38;
constexpr double kFloatMax = 3.4028234663852886e+38;

}  // namespace

int DnaPairs::tajima_nei(int i, int j) {
  clear_results();
  auto& x = sample_.pair_freq;
  for (auto& row : x) row.fill(0.0);
  const Tally t = tally(i, j);
  // The pairs of bases, (i, j) with i > j, at their slot of the category list.
  int n = 0;
  for (int hi = 1; hi < 4; ++hi) {
    for (int lo = 0; lo < hi; ++lo) {
      const int count = t.n[static_cast<std::size_t>(hi * (hi - 1) / 2 + lo)];
      x[static_cast<std::size_t>(hi)][static_cast<std::size_t>(lo)] = count;
      const bool transition = (hi == kT && lo == kC) || (hi == kG && lo == kA);
      if ((transition ? w_.ts : w_.tv) > 0.0) n += count;
    }
  }
  const double L = t.equal_clean() + t.base_pairs();
  PairResults& r = sample_.pair;
  r.nb_sites_compared = static_cast<int>(L);
  r.nb_diffs = n;
  if (n == 0) return 1;
  const std::array<double, 4>& g = sample_.freq_nucl;
  for (int b = 0; b < 4; ++b) {
    if (g[static_cast<std::size_t>(b)] <= 0.0) {
      report_error(report_kind::ERROR, "PopulDNA::Tajima_Nei()", 164);
      return 0;
    }
  }
  double sum = 0.0;
  for (std::size_t hi = 1; hi < 4; ++hi) {
    for (std::size_t lo = 0; lo < hi; ++lo) {
      x[hi][lo] /= L;
      sum += x[hi][lo] * x[hi][lo] / (g[hi] * g[lo]);
    }
  }
  const double h = 0.5 * sum;
  if (h == 0.0) {
    report_error(report_kind::ERROR, "PopulDNA::Tajima_Nei()", 164);
    return 0;
  }
  const double p = n / L;
  const double g2 = g[kC] * g[kC] + g[kT] * g[kT] + g[kA] * g[kA] + g[kG] * g[kG];
  const double b = (p * p / h + 1.0 - g2) / 2.0;
  if (p / b >= 1.0) {
    report_error(report_kind::ERROR, "PopulDNA::Tajima_Nei()", 165);
    return 0;
  }
  const double v = 1.0 - p / b;
  r.pair_dist = -b * std::log(v);
  r.pair_var = (1.0 - p) * p / (L * (v * v));
  return 1;
}

int DnaPairs::tamura(int i, int j) {
  clear_results();
  const Tally t = tally(i, j);
  const int nts = w_.ts > 0.0 ? t.transitions() : 0;
  const int ntv = w_.tv > 0.0 ? t.transversions() : 0;
  // Sites without a difference of any class count only between two characters
  // that are neither missing nor a gap; so never a deletion.
  const double L =
      t.equal_clean() + t.transitions() + t.transversions() + t.n[kOther] + t.n[kNoneClean];
  PairResults& r = sample_.pair;
  r.nb_sites_compared = static_cast<int>(L);
  r.nb_ts = nts;
  r.nb_tv = ntv;
  if (L == 0.0) return 1;
  const double P = nts / L;
  const double Q = ntv / L;
  r.prop_ts = P;
  r.prop_tv = Q;
  const double g = sample_.gc_content;
  const double h = 2.0 * g * (1.0 - g);
  if (h <= 0.0) {
    report_error(report_kind::ERROR, "PopulDNA::Tamura()", 171);
    return 0;
  }
  const double w1 = 1.0 - P / h - Q;
  const double w2 = 1.0 - 2.0 * Q;
  if (w1 <= 0.0 || w2 <= 0.0) {
    report_error(report_kind::ERROR, "PopulDNA::Tamura()", 175);
    return 0;
  }
  const double l1 = std::log(w1);
  const double l2 = std::log(w2);
  r.pair_dist = -h * l1 - (1.0 - h) * 0.5 * l2;
  const double c1 = 1.0 / w1;
  const double c2 = 1.0 / w2;
  const double c3 = h * (c1 - c2) + c2;
  const double s = c1 * P + c3 * Q;
  r.pair_var = (c1 * c1 * P + c3 * c3 * Q - s * s) / L;
  if (Q <= 0.0) {
    r.ts_tv_ratio = -1.0;
    r.ts_tv_ratio_var = -1.0;
    return 1;
  }
  const double a = -2.0 * c1 / l2;
  const double b = h * (4.0 * c2 * l1 / (l2 * l2) + a);
  const double u = b * Q + a * P;
  r.ts_tv_ratio = 2.0 * h * l1 / l2 - h;
  r.ts_tv_ratio_var = (b * b * Q + a * a * P - u * u) / L;
  return 1;
}

namespace {

// The terms of Tamura and Nei's distance for one pair.
struct TamuraNeiTerms {
  double gA, gC, gG, gT;  // base frequencies
  double gR, gY;          // purines, pyrimidines
  double k1, k2, K;
  double P1, P2, Q;  // A-G and C-T transitions, transversions, per site
  double w1, w2, w3;
  double L;
};

double tamura_nei_variance(const TamuraNeiTerms& x, double c1, double c2, double c3) {
  const double s = c3 * x.Q + c2 * x.P2 + c1 * x.P1;
  return (c3 * c3 * x.Q + c2 * c2 * x.P2 + c1 * c1 * x.P1 - s * s) / x.L;
}

void tamura_nei_plain(const TamuraNeiTerms& x, PairResults& r) {
  const double gA = x.gA, gC = x.gC, gG = x.gG, gT = x.gT, gR = x.gR, gY = x.gY;
  const double d = -x.k1 * std::log(x.w1) - x.k2 * std::log(x.w2) - x.K * std::log(x.w3);
  r.pair_dist = d;
  r.pair_ts_dist = d + 2.0 * gR * gY * std::log(x.w3);
  r.pair_tv_dist = d - r.pair_ts_dist;
  r.ts_tv_ratio = d == 0.0 ? 0.0 : r.pair_ts_dist / d;
  r.ts_tv_ratio_var = -1.0;
  const double t1 = 2.0 * gA * gG * gR;
  const double t2 = 2.0 * gC * gT * gY;
  const double u1 = t1 - gR * gR * x.P1 - gA * gG * x.Q;
  const double u2 = t2 - gY * gY * x.P2 - gC * gT * x.Q;
  const double c3 = ((gA * gA + gG * gG) * gY * gY + (gC * gC + gT * gT) * gR * gR) /
                        (2.0 * gR * gR * gY * gY - gR * gY * x.Q) +
                    2.0 * gC * gC * gT * gT / (u2 * gY) + 2.0 * gA * gA * gG * gG / (u1 * gR);
  r.pair_var = tamura_nei_variance(x, t1 / u1, t2 / u2, c3);
}

// With gamma shape a. A distance out of the range of a float is reported and
// stands as 0; the pair does not fail.
void tamura_nei_gamma(const TamuraNeiTerms& x, double a, PairResults& r) {
  const double gA = x.gA, gC = x.gC, gG = x.gG, gT = x.gT, gR = x.gR, gY = x.gY;
  const double e = -1.0 / a;
  double d = a * (x.k1 * std::pow(x.w1, e) + x.k2 * std::pow(x.w2, e) + x.K * std::pow(x.w3, e) -
                  2.0 * (gR * gY + gC * gT + gA * gG));
  if (d < kFloatMin || d > kFloatMax) {
    report_error(report_kind::ERROR, "PopulDNA::Tamura_Nei()", 176);
    report_error(report_kind::ERROR, "PopulDNA::Tamura_Nei()", 136);
    d = 0.0;
  }
  r.pair_dist = d;
  r.ts_tv_ratio = -1.0;
  r.ts_tv_ratio_var = -1.0;
  const double f = -(1.0 / a + 1.0);
  const double c3 =
      (x.k2 / (2.0 * gY)) * std::pow(x.w2, f) + (x.k1 / (2.0 * gR)) * std::pow(x.w1, f) +
      ((gC * gC + gT * gT) / (2.0 * gY * gY) + (gA * gA + gG * gG) / (2.0 * gR * gR)) *
          std::pow(x.w3, f);
  r.pair_var = tamura_nei_variance(x, std::pow(x.w1, f), std::pow(x.w2, f), c3);
}

}  // namespace

int DnaPairs::tamura_nei(int i, int j) {
  clear_results();
  const Tally t = tally(i, j);
  const int nAG = w_.ts > 0.0 ? t.n[kGA] : 0;
  const int nCT = w_.ts > 0.0 ? t.n[kTC] : 0;
  const int ntv = w_.tv > 0.0 ? t.base_transversions() : 0;
  TamuraNeiTerms x{};
  x.L = t.equal_clean() + t.base_pairs();
  PairResults& r = sample_.pair;
  r.nb_sites_compared = static_cast<int>(x.L);
  r.nb_ts = nAG + nCT;
  r.nb_tv = ntv;
  if (nAG + nCT + ntv == 0 || x.L == 0.0) return 1;
  const std::array<double, 4>& g = sample_.freq_nucl;
  x.gA = g[kA], x.gC = g[kC], x.gG = g[kG], x.gT = g[kT];
  if (x.gA == 0.0 || x.gC == 0.0 || x.gG == 0.0 || x.gT == 0.0) {
    report_error(report_kind::ERROR, "PopulDNA::Tamura_Nei()", 176);
    return 0;
  }
  x.gR = x.gA + x.gG;
  x.gY = x.gC + x.gT;
  x.k1 = 2.0 * x.gA * x.gG / x.gR;
  x.k2 = 2.0 * x.gC * x.gT / x.gY;
  x.P1 = nAG / x.L;
  x.P2 = nCT / x.L;
  x.Q = ntv / x.L;
  x.w1 = 1.0 - x.P1 / x.k1 - x.Q / (2.0 * x.gR);
  x.w2 = 1.0 - x.P2 / x.k2 - x.Q / (2.0 * x.gY);
  x.w3 = 1.0 - x.Q / (2.0 * x.gR * x.gY);
  if (x.w1 <= 0.0 || x.w2 <= 0.0 || x.w3 <= 0.0) {
    report_error(report_kind::ERROR, "PopulDNA::Tamura_Nei()", 176);
    return 0;
  }
  x.K = 2.0 * x.gR * x.gY - x.k1 * x.gY - x.k2 * x.gR;
  if (a_ == 0.0) {
    tamura_nei_plain(x, r);
  } else {
    tamura_nei_gamma(x, a_, r);
  }
  return 1;
}

}  // namespace dna_distance
