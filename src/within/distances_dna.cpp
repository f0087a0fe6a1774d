// Distances between DNA sequences, per pair of haplotypes, over the usable
// sites, with the weights of transitions, transversions and deletions: the
// pairwise differences and their proportion (weighted counts), Jukes and
// Cantor (1969) and Kimura's (1980) two-parameter distance, the last two with
// the gamma correction of rates among sites when a shape is given; variances
// by the delta method (Nei 1987). The matrix of a DNA sample and its
// nucleotide composition. Identical sequences are at distance 0 under every
// method; a pair beyond the reach of a correction fails with its error, which
// ends the matrix.
#include "within/distances_dna.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "model/nucleotide.h"
#include "model/report.h"
#include "within/distances.h"
#include "within/distances_matrix.h"
#include "within/distances_sites.h"

namespace dna_distance {

namespace cls = nucleotide_class;

int dna_category(char a, char b, char missing) {
  if (a == '\0' || b == '\0') return kEnd;
  const int kind = compare_nucleotides(a, b);
  const int x = base_index(a);
  const int y = base_index(b);
  if (x >= 0 && y >= 0 && (kind == cls::TRANSITION || kind == cls::TRANSVERSION)) {
    const int hi = std::max(x, y);
    return hi * (hi - 1) / 2 + std::min(x, y);
  }
  switch (kind) {
    case cls::TRANSITION:
      return kTransitionCode;
    case cls::TRANSVERSION:
      return kTransversionCode;
    case cls::DELETION:
      return kDeletion;
    case cls::OTHER:
      return kOther;
    default:
      return a == missing || b == missing || a == '-' || b == '-' ? kNoneDirty : kNoneClean;
  }
}

namespace {

void add_weight(double& sum, WeightedSums& s, double weight) {
  sum += weight;
  s.all += weight;
  s.L += weight;
}

// `count` sites of nucleotide class `kind`. With a count of 1 this is the
// step of the site walk; with whole weights any count gives the same sums.
void add_difference(WeightedSums& s, const Weights& w, int kind, double count) {
  switch (kind) {
    case cls::TRANSITION:
      if (w.ts > 0.0) return add_weight(s.ts, s, w.ts * count);
      s.L += count;
      return;
    case cls::TRANSVERSION:
      if (w.tv > 0.0) return add_weight(s.tv, s, w.tv * count);
      s.L += count;
      return;
    case cls::DELETION:
      if (w.del > 0.0) return add_weight(s.del, s, w.del * count);
      s.L += count;
      return;
    case cls::OTHER:
      if (w.ts > 0.0 && w.tv > 0.0) {
        if (w.ts <= w.tv) return add_weight(s.ts, s, w.ts * count);
        return add_weight(s.tv, s, w.tv * count);
      }
      s.L += (w.ts > 0.0 ? w.ts : (w.tv > 0.0 ? w.tv : 1.0)) * count;
      return;
    default:
      s.L += count;
      return;
  }
}

// Weights whose sums stay whole numbers, exact in any order.
bool whole(double w) {
  return w == std::trunc(w) && std::fabs(w) <= 1048576.0;
}

// The transition/transversion ratio of Kimura's distance and its variance
// (none with a gamma shape a).
void kimura_ratio(PairResults& r, double a, double c1, double c2, double w1, double w2, double L) {
  const double P = r.prop_ts;
  const double Q = r.prop_tv;
  if (a != 0.0) {
    r.ts_tv_ratio = Q == 0.0 ? -1.0
                             : (std::pow(w1, -1.0 / a) - 0.5 * std::pow(w2, -1.0 / a) - 0.5) /
                                   (std::pow(w2, -1.0 / a) - 1.0);
    r.ts_tv_ratio_var = -1.0;
  } else if (w2 == 1.0) {
    r.ts_tv_ratio = -1.0;
    r.ts_tv_ratio_var = -1.0;
  } else {
    const double l1 = std::log(w1);
    const double l2 = std::log(w2);
    const double x = -2.0 * c1 / l2;
    const double y = (4.0 * c2 * l1 / (l2 * l2) + x) / 2.0;
    const double u = y * Q + x * P;
    r.ts_tv_ratio = l1 / l2 - 0.5;
    r.ts_tv_ratio_var = (y * y * Q + x * x * P - u * u) / L;
  }
}

}  // namespace

DnaPairs::DnaPairs(PopulDNA& sample, int method)
    : sample_(sample),
      w_{sample.TransitionWeight, sample.TranversionWeight, sample.DeletionWeight},
      a_(sample.GammaAValue),
      codes_(sample.haplo_list, sample.usable_locus),
      category_(codes_, [m = sample.missing()](char a, char b) { return dna_category(a, b, m); }),
      class_(codes_, [](char a, char b) { return compare_nucleotides(a, b); }),
      whole_weights_(whole(w_.ts) && whole(w_.tv) && whole(w_.del)) {
  for (int c = 0; c < codes_.alphabet(); ++c) {
    is_missing_.push_back(c != 0 && codes_.character(c) == sample.missing() ? 1 : 0);
  }
  static constexpr Routine kRoutines[] = {
      &DnaPairs::pairwise_difference, &DnaPairs::jukes_cantor, &DnaPairs::kimura,
      &DnaPairs::proportion,          &DnaPairs::tajima_nei,   &DnaPairs::tamura,
      &DnaPairs::tamura_nei};
  routine_ = kRoutines[method];
}

Tally DnaPairs::tally(int i, int j) const {
  Tally t;
  t.sites = std::min(codes_.usable_sites(i), codes_.usable_sites(j));
  codes_.count_differences(i, j, category_, t.n.data());
  int differing = 0;
  for (int c = 0; c < kEnd; ++c) differing += t.n[static_cast<std::size_t>(c)];
  t.equal = t.sites - differing;
  const char missing = sample_.missing();
  t.equal_missing = codes_.both(i, j, missing);
  t.equal_gap = missing == '-' ? 0 : codes_.both(i, j, '-');
  return t;
}

// The walk of the weighted methods, site after site.
WeightedSums DnaPairs::weighted_walk(int i, int j) const {
  WeightedSums s;
  const int sites = std::min(codes_.usable_sites(i), codes_.usable_sites(j));
  const std::uint8_t* a = codes_.row(i);
  const std::uint8_t* b = codes_.row(j);
  for (int k = 0; k < sites; ++k) {
    if (a[k] == b[k]) {
      if (!is_missing_[a[k]]) s.L += 1.0;
      continue;
    }
    add_difference(s, w_, class_(a[k], b[k]), 1.0);
  }
  return s;
}

WeightedSums DnaPairs::weighted(int i, int j) const {
  if (!whole_weights_) return weighted_walk(i, j);
  const Tally t = tally(i, j);
  WeightedSums s;
  s.L = t.equal - t.equal_missing;
  add_difference(s, w_, cls::TRANSITION, t.transitions());
  add_difference(s, w_, cls::TRANSVERSION, t.transversions());
  add_difference(s, w_, cls::DELETION, t.n[kDeletion]);
  add_difference(s, w_, cls::OTHER, t.n[kOther]);
  add_difference(s, w_, cls::NONE, t.n[kNoneClean] + t.n[kNoneDirty]);
  return s;
}

int DnaPairs::pairwise_difference(int i, int j) {
  clear_results();
  const WeightedSums s = weighted(i, j);
  PairResults& r = sample_.pair;
  r.pair_dist = s.all;
  if (s.L > 0.0) {
    const double p = s.all / s.L;
    r.pair_var = (1.0 - p) * p * s.L;
  }
  return 1;
}

int DnaPairs::proportion(int i, int j) {
  clear_results();
  const WeightedSums s = weighted(i, j);
  PairResults& r = sample_.pair;
  if (s.L <= 0.0) return 1;
  const double P = s.ts / s.L;
  const double Q = s.tv / s.L;
  r.prop_ts = P;
  r.prop_tv = Q;
  if (Q == 0.0) {
    r.ts_tv_ratio = -1.0;
    r.ts_tv_ratio_var = -1.0;
  } else {
    const double a = 1.0 / Q;
    const double b = -P / (Q * Q);
    const double t = b * Q + a * P;
    r.ts_tv_ratio = P / Q;
    r.ts_tv_ratio_var = (b * b * Q + a * a * P - t * t) / s.L;
  }
  const double d = (s.ts + s.tv + s.del) / s.L;
  r.pair_dist = d;
  r.pair_var = (1.0 - d) * d / s.L;
  return 1;
}

int DnaPairs::jukes_cantor(int i, int j) {
  clear_results();
  const Tally t = tally(i, j);
  const int n = (w_.ts > 0.0 ? t.transitions() : 0) + (w_.tv > 0.0 ? t.transversions() : 0) +
                (w_.ts > 0.0 && w_.tv > 0.0 ? t.n[kOther] : 0);
  const int L = t.equal_clean() + t.differing();
  PairResults& r = sample_.pair;
  r.nb_sites_compared = L;
  r.nb_diffs = n;
  if (L < 1) return 1;
  const double p = static_cast<double>(n) / L;
  if (p >= 0.75) {
    report_error(report_kind::ERROR, "PopulDNA::Jukes_Cantor()", 162);
    r.pair_dist = -p;
    return 0;
  }
  const double w = 1.0 - 4.0 * p / 3.0;
  if (a_ == 0.0) {
    r.pair_dist = -0.75 * std::log(w);
    r.pair_var = (1.0 - p) * p / (L * (w * w));
  } else {
    r.pair_dist = 0.75 * a_ * (std::pow(w, -1.0 / a_) - 1.0);
    r.pair_var = (1.0 - p) * p * std::pow(w, -2.0 * (1.0 / a_ + 1.0)) / L;
  }
  return 1;
}

int DnaPairs::kimura(int i, int j) {
  clear_results();
  const Tally t = tally(i, j);
  const int nts = w_.ts > 0.0 ? t.transitions() : 0;
  const int ntv = w_.tv > 0.0 ? t.transversions() : 0;
  const double L = t.equal_clean() + t.differing();
  PairResults& r = sample_.pair;
  r.nb_sites_compared = static_cast<int>(L);
  r.nb_ts = nts;
  r.nb_tv = ntv;
  if (L == 0.0) return 1;
  const double P = nts / L;
  const double Q = ntv / L;
  r.prop_ts = P;
  r.prop_tv = Q;
  const double w1 = 1.0 - 2.0 * P - Q;
  const double w2 = 1.0 - 2.0 * Q;
  // Only a positive argument has a logarithm.
  if (w1 <= 0.0 || w2 <= 0.0) {
    report_error(report_kind::ERROR, "PopulDNA::Kimura_2P()", 163);
    return 0;
  }
  double c1 = 0.0;
  double c2 = 0.0;
  if (a_ == 0.0) {
    c1 = 1.0 / w1;
    c2 = 1.0 / w2;
    r.pair_dist = 0.5 * std::log(c1) + 0.25 * std::log(c2);
  } else {
    c1 = std::pow(w1, -1.0 / a_ - 1.0);
    c2 = std::pow(w2, -1.0 / a_ - 1.0);
    r.pair_dist = (a_ / 2.0) * (std::pow(w1, -1.0 / a_) + 0.5 * std::pow(w2, -1.0 / a_) - 1.5);
  }
  const double c3 = (c1 + c2) / 2.0;
  const double s = c1 * P + c3 * Q;
  r.pair_var = (c1 * c1 * P + c3 * c3 * Q - s * s) / L;
  kimura_ratio(r, a_, c1, c2, w1, w2, L);
  return 1;
}

}  // namespace dna_distance

using dna_distance::base_index;
using dna_distance::DnaPairs;
using dna_distance::kA;
using dna_distance::kC;
using dna_distance::kG;
using dna_distance::kT;

int comp_nucl_freq(PopulDNA& sample) {
  if (sample.haplo_list.empty()) {
    report_error(report_kind::ERROR, "PopulDNA::comp_nucl_freq()", 108);
    return 0;
  }
  std::array<double, 4>& f = sample.freq_nucl;
  for (const double v : f) {
    if (v > 0.0) return 1;
  }
  std::array<long long, 4> count{};
  long long total = 0;
  for (const PHaploDef& e : sample.haplo_list) {
    if (e.hapl == nullptr) continue;
    std::array<long long, 4> own{};
    const std::string& text = e.hapl->hapl_content.str();
    for (const char c : text) {
      const int b = base_index(c);
      if (b >= 0) ++own[static_cast<std::size_t>(b)];
    }
    for (std::size_t b = 0; b < 4; ++b) count[b] += own[b] * e.freq;
    total += static_cast<long long>(text.size()) * e.freq;
  }
  f.fill(0.0);
  sample.gc_content = 0.0;
  if (total <= 0) return 1;
  for (std::size_t b = 0; b < 4; ++b) {
    f[b] = static_cast<double>(count[b]) / static_cast<double>(total);
  }
  const double sum = f[kC] + f[kT] + f[kA] + f[kG];
  if (sum > 0.0) {
    for (double& v : f) v /= sum;
  }
  sample.gc_content = f[kC] + f[kG];
  return 1;
}

int compute_distance_matrix(PopulDNA& sample, std::ostream* out, int* stop, int per_site) {
  static constexpr const char* kRoutine = "PopulDNA::compute_distance_matrix()";
  if (sample.haplo_list.empty()) {
    report_error(report_kind::ERROR, kRoutine, 108);
    return 0;
  }
  return guard_distance_memory(sample, kRoutine, [&] {
    int method = sample.dist_method;
    if (method > distance_method::TAMURA_NEI) method = distance_method::DIFF;
    if (method >= distance_method::TAJIMA_NEI) comp_nucl_freq(sample);
    fresh_distance_matrix(sample);
    if (first_definition_empty(sample)) return 1;
    const double scale = distance_scale(sample, method, per_site);
    DnaPairs pairs(sample, method);
    const int done = fill_distance_rows(sample.Nb_haplo, stop, [&](int i, int j) {
      if (!pairs.compute(i, j)) {
        report_error(report_kind::ERROR, "PopulDNA::compute_distance_matrix(ofstream)", 136);
        return false;
      }
      store_distance(sample, i, j, sample.pair.pair_dist, sample.pair.pair_var, scale);
      return true;
    });
    return finish_distance_matrix(sample, done, out);
  });
}
