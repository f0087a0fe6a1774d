// Distances between haplotypes of RFLP, microsatellite and standard data.
//   RFLP: the number of restriction sites that differ (deletions counted when
//   weighted), or its proportion, with a binomial variance (Nei 1987).
//   Microsatellites: the number of loci at which the allele sizes differ, or
//   the sum of squared size differences (Goldstein et al. 1995).
//   Standard data: the number of loci at which the alleles differ.
// Missing data are left out locus by locus; two haplotypes that differ only
// where data are missing, or at unusable loci, are at distance 0.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

#include "model/report.h"
#include "output/number_format.h"
#include "within/distances.h"
#include "within/distances_matrix.h"
#include "within/distances_sites.h"

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

// --- RFLP --------------------------------------------------------------------

enum RflpCategory : std::uint8_t { kSame, kChange, kDeletion, kEnd, kRflpCategories };

int rflp_category(char a, char b, char missing) {
  if (a == '\0' || b == '\0') return kEnd;
  if (a == b || a == missing || b == missing) return kSame;
  if (a == '-' || b == '-') return kDeletion;
  return kChange;
}

// --- Loci of microsatellite and standard data --------------------------------

// The usable loci of a sample: those whose usable_locus entry is non-zero,
// over the loci that the definitions hold (loci beyond the array are usable).
std::vector<int> usable_loci(const PopGenetics& sample) {
  std::size_t loci = 0;
  for (const PHaploDef& e : sample.haplo_list) {
    if (e.hapl != nullptr && e.hapl->alleles.size() > loci) loci = e.hapl->alleles.size();
  }
  std::vector<int> list;
  for (std::size_t l = 0; l < loci; ++l) {
    if (l >= sample.usable_locus.size() || sample.usable_locus[l] != 0) {
      list.push_back(static_cast<int>(l));
    }
  }
  return list;
}

// The allele of a definition at a locus; null when it has none.
const TAllele* allele_at(const PHaploDef& e, int locus) {
  if (e.hapl == nullptr || at(locus) >= e.hapl->alleles.size()) return nullptr;
  return e.hapl->alleles[at(locus)];
}

constexpr double kMissingSize = -99999.0;

// An allele size; false for a text that is no integer.
bool read_size(const my_string& text, double& size) {
  const std::string_view s = text.str();
  long long value = 0;
  const char* first = s.data();
  const char* last = s.data() + s.size();
  if (first != last && *first == '+') ++first;
  const auto [end, error] = std::from_chars(first, last, value);
  if (error != std::errc() || end != last) return false;
  size = static_cast<double>(value);
  return true;
}

// The sizes of every haplotype over the usable loci, one row each; rows
// from `bad_row` on could not be read (bad_row = n when all could). Sizes
// below 2^20 in absolute value (all in practice) are also kept as integers:
// their squared differences and sums are whole numbers below 2^53, so integer
// arithmetic gives exactly the sums of doubles taken locus after locus.
class SizeRows {
 public:
  SizeRows(const PopGenetics& sample, const std::vector<int>& loci);

  int bad_row() const { return bad_row_; }
  // The distance of rows i and j: the number of loci whose known sizes
  // differ, or the sum of squared differences over loci with known sizes.
  double distance(int i, int j, bool squared) const;

 private:
  static constexpr std::int32_t kMissingWhole = std::numeric_limits<std::int32_t>::min();
  static constexpr double kSmall = 1048576.0;

  std::size_t k_;
  std::vector<double> sizes_;
  std::vector<std::int32_t> whole_;  // empty unless every size is small
  int bad_row_;
};

SizeRows::SizeRows(const PopGenetics& sample, const std::vector<int>& loci)
    : k_(loci.size()), bad_row_(static_cast<int>(sample.haplo_list.size())) {
  const std::size_t n = sample.haplo_list.size();
  sizes_.assign(n * k_, kMissingSize);
  const char miss = sample.missing();
  bool small = k_ <= 2048;
  for (std::size_t h = 0; h < n && bad_row_ == static_cast<int>(n); ++h) {
    double* row = sizes_.data() + h * k_;
    for (std::size_t l = 0; l < k_; ++l) {
      const TAllele* a = allele_at(sample.haplo_list[h], loci[l]);
      if (a == nullptr || a->is(miss)) continue;
      if (!read_size(a->allele_name, row[l])) {
        bad_row_ = static_cast<int>(h);
        break;
      }
      small = small && std::fabs(row[l]) < kSmall;
    }
  }
  if (!small) return;
  whole_.resize(sizes_.size());
  for (std::size_t c = 0; c < sizes_.size(); ++c) {
    whole_[c] = sizes_[c] == kMissingSize ? kMissingWhole : static_cast<std::int32_t>(sizes_[c]);
  }
}

double SizeRows::distance(int i, int j, bool squared) const {
  if (!whole_.empty()) {
    const std::int32_t* x = whole_.data() + at(i) * k_;
    const std::int32_t* y = whole_.data() + at(j) * k_;
    if (!squared) {
      int count = 0;
      for (std::size_t l = 0; l < k_; ++l) {
        count += static_cast<int>(x[l] != y[l]) & static_cast<int>(x[l] != kMissingWhole) &
                 static_cast<int>(y[l] != kMissingWhole);
      }
      return count;
    }
    std::int64_t sum = 0;
    for (std::size_t l = 0; l < k_; ++l) {
      const bool known = x[l] != kMissingWhole && y[l] != kMissingWhole;
      const std::int64_t diff = known ? static_cast<std::int64_t>(x[l]) - y[l] : 0;
      sum += diff * diff;
    }
    return static_cast<double>(sum);
  }
  const double* x = sizes_.data() + at(i) * k_;
  const double* y = sizes_.data() + at(j) * k_;
  double sum = 0.0;
  for (std::size_t l = 0; l < k_; ++l) {
    if (x[l] == kMissingSize || y[l] == kMissingSize) continue;
    const double diff = x[l] - y[l];
    if (!squared) {
      if (diff != 0.0) sum += 1.0;
    } else {
      sum += diff * diff;
    }
  }
  return sum;
}

// The progress lines of the matrices of loci.
class LogTimer {
 public:
  LogTimer() : start_(distance_clock_ms()) {
    log_stream() << "\t\tBeginning distance computations ...\n";
  }
  ~LogTimer() {
    log_stream() << "\t\tdone ! (" << fmt::integer(distance_clock_ms() - start_) << " ms)\n";
  }
  LogTimer(const LogTimer&) = delete;
  LogTimer& operator=(const LogTimer&) = delete;

 private:
  long long start_;
};

}  // namespace

namespace {

int rflp_matrix(PopulRFLP& sample, std::ostream* out, const int* stop, int per_site) {
  const int method = sample.dist_method == distance_method::RFLP_P_DIST
                         ? distance_method::RFLP_P_DIST
                         : distance_method::RFLP_DIFF;
  // An existing matrix of the right shape is reused.
  const int n = static_cast<int>(sample.haplo_list.size());
  const RectMat* old = sample.dist_mat.get();
  if (old == nullptr || !old->has_data() || old->is_conventional() || old->nrows() != n ||
      old->ncols() != n) {
    fresh_distance_matrix(sample);
  } else {
    sample.Nb_haplo = n;
    sample.max_diff = 0;
  }
  if (first_definition_empty(sample)) return 1;
  const double scale = distance_scale(sample, method, per_site);
  const SiteCodes codes(sample.haplo_list, sample.usable_locus);
  const PairTable category(
      codes, [m = sample.missing()](char a, char b) { return rflp_category(a, b, m); });
  const bool deletions = sample.DeletionWeight > 0.0;
  const int done = fill_distance_rows(n, stop, [&](int i, int j) {
    PairResults& r = sample.pair;
    r = PairResults{};
    if (sample.nb_usable_loci == 0) {
      store_distance(sample, i, j, 0.0, 0.0, scale);
      return true;
    }
    int count[kRflpCategories] = {};
    codes.count_differences(i, j, category, count);
    const int changes = count[kChange] + (deletions ? count[kDeletion] : 0);
    const int sites = std::min(codes.usable_sites(i), codes.usable_sites(j));
    const double nd = changes;
    const double L = sites;
    r.nb_sites_compared = sites;
    r.nb_diffs = changes;
    if (method == distance_method::RFLP_DIFF) {
      r.pair_dist = nd;
      if (L > 0.0) r.pair_var = L * (1.0 - nd / L) * (nd / L);
    } else if (L > 0.0) {
      const double d = nd / L;
      r.pair_dist = d;
      r.pair_var = (1.0 - d) * d / L;
    }
    store_distance(sample, i, j, r.pair_dist, r.pair_var, scale);
    return true;
  });
  return finish_distance_matrix(sample, done, out);
}

int microsat_matrix(PopulMicrosat& sample, std::ostream* out, const int* stop) {
  const bool squared = sample.dist_method != distance_method::COUNT_DIFF;
  fresh_distance_matrix(sample);
  if (first_definition_empty(sample)) return 1;
  const LogTimer timer;
  const std::vector<int> loci = usable_loci(sample);
  const SizeRows table(sample, loci);
  const int n = sample.Nb_haplo;
  int done = 1;
  for (int i = 0; i < n && done != 0; ++i) {
    // Each row's sizes are read as the row begins.
    if (i == table.bad_row()) {
      report_error(report_kind::ERROR, "PopulMicrosat::compute_distance_matrix()", 121);
      done = 0;
      break;
    }
    for (int j = 0; j < i; ++j)
      store_distance(sample, i, j, table.distance(i, j, squared), 0.0, 1.0);
    if (stop != nullptr && *stop != 0) done = 0;
  }
  return finish_distance_matrix(sample, done, out);
}

int standard_matrix(PopulStandard& sample, std::ostream* out, const int* stop) {
  fresh_distance_matrix(sample);
  if (first_definition_empty(sample)) return 1;
  const LogTimer timer;
  const std::vector<int> loci = usable_loci(sample);
  const std::size_t k = loci.size();
  // The alleles of every haplotype over the usable loci; null for missing data.
  std::vector<const TAllele*> alleles(sample.haplo_list.size() * k, nullptr);
  const char miss = sample.missing();
  for (std::size_t h = 0; h < sample.haplo_list.size(); ++h) {
    for (std::size_t l = 0; l < k; ++l) {
      const TAllele* a = allele_at(sample.haplo_list[h], loci[l]);
      if (a != nullptr && !a->is(miss)) alleles[h * k + l] = a;
    }
  }
  const int done = fill_distance_rows(sample.Nb_haplo, stop, [&](int i, int j) {
    const TAllele* const* x = alleles.data() + at(i) * k;
    const TAllele* const* y = alleles.data() + at(j) * k;
    int count = 0;
    for (std::size_t l = 0; l < k; ++l) {
      count += x[l] != y[l] && x[l] != nullptr && y[l] != nullptr ? 1 : 0;
    }
    store_distance(sample, i, j, count, 0.0, 1.0);
    return true;
  });
  return finish_distance_matrix(sample, done, out);
}

}  // namespace

int compute_distance_matrix(PopulRFLP& sample, std::ostream* out, int* stop, int per_site) {
  static constexpr const char* kRoutine = "PopulRFLP::compute_distance_matrix()";
  if (sample.haplo_list.empty()) {
    report_error(report_kind::ERROR, kRoutine, 108);
    return 0;
  }
  return guard_distance_memory(sample, kRoutine,
                               [&] { return rflp_matrix(sample, out, stop, per_site); });
}

int compute_distance_matrix(PopulMicrosat& sample, std::ostream* out, int* stop, int /*per_site*/) {
  static constexpr const char* kRoutine = "PopulMicrosat::compute_distance_matrix()";
  if (sample.haplo_list.empty()) {
    report_error(report_kind::ERROR, kRoutine, 108);
    return 0;
  }
  return guard_distance_memory(sample, kRoutine,
                               [&] { return microsat_matrix(sample, out, stop); });
}

int compute_distance_matrix(PopulStandard& sample, std::ostream* out, int* stop, int /*per_site*/) {
  static constexpr const char* kRoutine = "PopulStandard::compute_distance_matrix()";
  if (sample.haplo_list.empty()) {
    report_error(report_kind::ERROR, kRoutine, 108);
    return 0;
  }
  return guard_distance_memory(sample, kRoutine,
                               [&] { return standard_matrix(sample, out, stop); });
}
