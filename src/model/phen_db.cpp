#include "model/phen_db.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "model/report.h"

namespace {

int rounded(double x) {
  return static_cast<int>(std::floor(x + 0.5));
}

// The recessive allele of the locus of `a`: the first allele of that locus.
TAllele* recessive_allele(const TAllele* a, const TAlleleDB& loci, bool by_locus_id) {
  if (a == nullptr) return nullptr;
  const TLocus* locus = loci.locus(by_locus_id ? a->locus_id : a->locus_index);
  return locus ? locus->allele(0) : nullptr;
}

// An unordered pair of haplotype entries.
using EntryPair = std::pair<const TPopHaplotype*, const TPopHaplotype*>;

EntryPair ordered(const TPopHaplotype* a, const TPopHaplotype* b) {
  return std::less<const TPopHaplotype*>()(b, a) ? EntryPair(b, a) : EntryPair(a, b);
}

struct PairHash {
  std::size_t operator()(const EntryPair& p) const noexcept {
    const std::hash<const void*> h;
    return h(p.first) * 31u ^ h(p.second);
  }
};

// The genotypes already listed, searched in either order: linearly while the
// list is short, through a hash set beyond.
class GenotypeSet {
 public:
  explicit GenotypeSet(const std::vector<TGenotype>& list) : list_(list) {}
  bool contains(const TPopHaplotype* a, const TPopHaplotype* b) {
    if (set_.empty() && list_.size() > kLinearUpTo) {
      for (const TGenotype& g : list_) set_.insert(ordered(g.hapl_a, g.hapl_b));
    }
    if (!set_.empty()) return set_.count(ordered(a, b)) != 0;
    return std::any_of(list_.begin(), list_.end(), [a, b](const TGenotype& g) {
      return (g.hapl_a == a && g.hapl_b == b) || (g.hapl_a == b && g.hapl_b == a);
    });
  }
  void added(const TPopHaplotype* a, const TPopHaplotype* b) {
    if (!set_.empty()) set_.insert(ordered(a, b));
  }

 private:
  static constexpr std::size_t kLinearUpTo = 16;
  const std::vector<TGenotype>& list_;
  std::unordered_set<EntryPair, PairHash> set_;
};

// Non-recessive data: bit i - 1 of k exchanges the alleles of the copies at
// heterozygous locus i. The first heterozygous locus is never exchanged, so
// that each unordered pair comes once.
void exchange_heterozygous(std::uint64_t k, const std::vector<int>& het, TPopHaplotype& w1,
                           TPopHaplotype& w2) {
  for (std::size_t i = 1; i < het.size(); ++i) {
    const auto l = static_cast<std::size_t>(het[i]);
    if ((k >> (i - 1)) & 1u) std::swap(w1.alleles[l], w2.alleles[l]);
  }
}

// Recessive data: bit l of k at a locus showing one dominant allele twice
// makes the second copy carry the recessive allele; at any other locus it
// exchanges the alleles.
void apply_recessive_bits(std::uint64_t k, const TAlleleDB& loci, bool by_locus_id,
                          TPopHaplotype& w1, TPopHaplotype& w2) {
  for (std::size_t l = 0; l < w1.alleles.size(); ++l) {
    if (((k >> l) & 1u) == 0) continue;
    TAllele* rec = recessive_allele(w1.alleles[l], loci, by_locus_id);
    if (w1.alleles[l] == w2.alleles[l] && w1.alleles[l] != rec) {
      w2.alleles[l] = rec;
    } else {
      std::swap(w1.alleles[l], w2.alleles[l]);
    }
  }
}

}  // namespace

// --- TPhenotype --------------------------------------------------------------

TPhenotype::TPhenotype(const TPopHaplotype* first, const TPopHaplotype* second, int index)
    : pheno_name(my_string(std::to_string(index))) {
  try {
    hapl1 = std::make_unique<TPopHaplotype>();
    hapl2 = std::make_unique<TPopHaplotype>();
    if (first) *hapl1 = *first;
    if (second) *hapl2 = *second;
  } catch (const std::bad_alloc&) {
    report_error(report_kind::MEMORY,
                 "TPhenotype::TPhenotype(TPopHaplotype* , TPopHaplotype* , int)", 0);
  }
}

TPhenotype::TPhenotype(const TPhenotype& other)
    : pheno_name(other.pheno_name),
      freq(other.freq),
      rel_freq(other.rel_freq),
      prob(other.prob),
      nb_genotypes(other.nb_genotypes),
      hapl1(other.hapl1 ? std::make_unique<TPopHaplotype>(*other.hapl1) : nullptr),
      hapl2(other.hapl2 ? std::make_unique<TPopHaplotype>(*other.hapl2) : nullptr),
      line1(other.line1),
      line2(other.line2),
      genotypes(other.genotypes),
      merged(other.merged),
      nb_het(other.nb_het),
      homozygous(other.homozygous),
      all_het(other.all_het) {}

TPhenotype& TPhenotype::operator=(const TPhenotype& other) {
  if (this != &other) {
    TPhenotype copy(other);
    *this = std::move(copy);
  }
  return *this;
}

bool TPhenotype::operator==(const TPhenotype& other) const {
  if (!hapl1) return freq == other.freq;
  if (!other.hapl1 || !hapl2 || !other.hapl2) return false;
  const int n = std::max(hapl1->nb_loci(), hapl2->nb_loci());
  if (n != std::max(other.hapl1->nb_loci(), other.hapl2->nb_loci())) return false;
  for (int l = 0; l < n; ++l) {
    const TAllele* a1 = hapl1->allele(l);
    const TAllele* a2 = hapl2->allele(l);
    const TAllele* b1 = other.hapl1->allele(l);
    const TAllele* b2 = other.hapl2->allele(l);
    if (!((a1 == b1 && a2 == b2) || (a1 == b2 && a2 == b1))) return false;
  }
  return true;
}

int TPhenotype::count_het_loci() {
  nb_het = 0;
  if (hapl1 && hapl2) {
    for (int l = 0; l < hapl1->nb_loci(); ++l) {
      if (hapl1->allele(l) != hapl2->allele(l)) ++nb_het;
    }
  }
  return nb_het;
}

void TPhenotype::set_pseudo_hapl(const TPopHaplotype& h, int which) {
  auto copy = std::make_unique<TPopHaplotype>();
  *copy = h;
  (which == 0 ? hapl1 : hapl2) = std::move(copy);
}

void TPhenotype::copy_restricted_pheno(std::span<const int> selected_loci,
                                       const TPhenotype& source) {
  std::unique_ptr<TPopHaplotype> h1;
  std::unique_ptr<TPopHaplotype> h2;
  if (source.hapl1) {
    h1 = std::make_unique<TPopHaplotype>();
    h1->assign(*source.hapl1, selected_loci);
  }
  if (source.hapl2) {
    h2 = std::make_unique<TPopHaplotype>();
    h2->assign(*source.hapl2, selected_loci);
  }
  if (this != &source) {
    pheno_name = source.pheno_name;
    line1 = source.line1;
    line2 = source.line2;
    freq = source.freq;
    rel_freq = source.rel_freq;
    prob = source.prob;
    merged = source.merged;
    nb_het = source.nb_het;
    homozygous = source.homozygous;
    all_het = source.all_het;
  }
  hapl1 = std::move(h1);
  hapl2 = std::move(h2);
  nb_genotypes = 0;
  genotypes.clear();
}

void TPhenotype::build_sub_phenotype(int locus1, int locus2, const TPhenotype& source) {
  std::vector<int> mask(static_cast<std::size_t>(std::max(source.nb_loci(), 0)), 0);
  for (int l : {locus1, locus2}) {
    if (l >= 0 && l < static_cast<int>(mask.size())) mask[static_cast<std::size_t>(l)] = 1;
  }
  copy_restricted_pheno(mask, source);
}

double TPhenotype::link_equil_pheno_prob() const {
  double p = 1.0;
  if (!hapl1 || !hapl2) return p;
  for (int l = 0; l < hapl1->nb_loci(); ++l) {
    const TAllele* a = hapl1->allele(l);
    const TAllele* b = hapl2->allele(l);
    if (a == nullptr || b == nullptr) continue;
    if (!a->selected)
      report_error(report_kind::WARNING, "TPhenotype::link_equil_pheno_prob()", 115);
    if (b != a && !b->selected) {
      report_error(report_kind::WARNING, "TPhenotype::link_equil_pheno_prob()", 115);
    }
    double term = a->work_freq * b->work_freq;
    if (a != b) term *= 2.0;
    p *= term;
  }
  return p;
}

int TPhenotype::build_genotypes(TPopHaploDB& db, const TAlleleDB& loci, int& recessive,
                                char use_locus_id) {
  return enumerate_pairs(db, loci, recessive, use_locus_id, true, nullptr);
}

int TPhenotype::build_compatible_genotypes(TPopHaploDB& db, const TAlleleDB& loci, int& recessive,
                                           char use_locus_id, const TPopHaploDB& previous,
                                           std::span<const int> previous_mask) {
  std::vector<TAllele*> part;
  auto survived = [&](const TPopHaplotype& h) {
    part.clear();
    for (TAllele* a : h.alleles) {
      const int l = a ? a->locus_index : -1;
      if (l >= 0 && l < static_cast<int>(previous_mask.size()) &&
          previous_mask[static_cast<std::size_t>(l)] != 0) {
        part.push_back(a);
      }
    }
    const TPopHaplotype* p = previous.find(part);
    return p != nullptr && p->freq > 0.0;
  };
  const PairFilter keep = [&](const TPopHaplotype& a, const TPopHaplotype& b) {
    return survived(a) && survived(b);
  };
  return enumerate_pairs(db, loci, recessive, use_locus_id, false, &keep);
}

int TPhenotype::enumerate_pairs(TPopHaploDB& db, const TAlleleDB& loci, int recessive,
                                char use_locus_id, bool limited, const PairFilter* keep) {
  if (!hapl1 || !hapl2 || hapl1->nb_loci() != hapl2->nb_loci()) return 0;
  const int n = hapl1->nb_loci();
  count_het_loci();
  homozygous = (nb_het == 0 && recessive == 0) ? 1 : 0;
  if ((limited && nb_het > kMaxHetLoci) || (recessive != 0 && n > 62) || nb_het > 63) {
    report_error(report_kind::ERROR, "TPhenotype::build_genotypes()", 114);
    return 0;
  }
  std::vector<int> het;
  for (int l = 0; l < n; ++l) {
    if (hapl1->allele(l) != hapl2->allele(l)) het.push_back(l);
  }
  all_het = (n > 0 && nb_het == n) ? 1 : 0;

  std::uint64_t pairs = 0;
  if (recessive == 0) {
    pairs = nb_het < 2 ? 1 : std::uint64_t{1} << (nb_het - 1);
    if (keep == nullptr) nb_genotypes = static_cast<int>(std::min<std::uint64_t>(pairs, INT_MAX));
  } else {
    pairs = std::uint64_t{1} << n;
  }
  const bool count_added = recessive != 0 || keep != nullptr;

  // Fresh working copies for each value of the counter.
  TPopHaplotype w1(*hapl1);
  TPopHaplotype w2(*hapl2);
  GenotypeSet listed(genotypes);
  for (std::uint64_t k = 0; k < pairs; ++k) {
    w1.alleles = hapl1->alleles;
    w2.alleles = hapl2->alleles;
    if (recessive == 0) {
      exchange_heterozygous(k, het, w1, w2);
    } else {
      apply_recessive_bits(k, loci, use_locus_id != 0, w1, w2);
    }
    if (keep != nullptr && !(*keep)(w1, w2)) continue;
    TPopHaplotype* a = db.add(w1, 0.0);
    TPopHaplotype* b = db.add(w2, 0.0);
    if (listed.contains(a, b)) continue;
    genotypes.push_back(TGenotype{a, b, 0.0, 0.0});
    listed.added(a, b);
    if (count_added) ++nb_genotypes;
  }
  return 1;
}

void TPhenotype::clear() {
  pheno_name = "";
  line1 = "";
  line2 = "";
  genotypes.clear();
  if (hapl1) hapl1->alleles.clear();
  if (hapl2) hapl2->alleles.clear();
}

// --- TPhenDB -----------------------------------------------------------------

TPhenDB::TPhenDB(const TPhenDB& other) : log_lik(other.log_lik), inbreeding(other.inbreeding) {
  list_.reserve(other.list_.size());
  for (const auto& p : other.list_) list_.push_back(std::make_unique<TPhenotype>(*p));
}

TPhenDB& TPhenDB::operator=(const TPhenDB& other) {
  if (this != &other) {
    TPhenDB copy(other);
    *this = std::move(copy);
  }
  return *this;
}

TPhenotype* TPhenDB::operator[](int i) const {
  if (i < 0 || i >= size()) return nullptr;
  return list_[static_cast<std::size_t>(i)].get();
}

TPhenotype* TPhenDB::add(std::unique_ptr<TPhenotype> phenotype) {
  list_.push_back(std::move(phenotype));
  return list_.back().get();
}

void TPhenDB::erase(int i) {
  if (i >= 0 && i < size()) list_.erase(list_.begin() + i);
}

void TPhenDB::set_rel_freqs() {
  double sum = 0.0;
  for (const auto& p : list_) sum += p->freq;
  if (sum == 0.0) return;
  for (const auto& p : list_) p->rel_freq = p->freq / sum;
}

namespace {

constexpr double kLowestLogLik = -3.4028234663852886e+38;

template <class Prob>
double sum_log_probs(const std::vector<std::unique_ptr<TPhenotype>>& list, Prob prob_of) {
  double sum = 0.0;
  for (const auto& p : list) {
    const double prob = prob_of(*p);
    if (!(prob > 0.0)) return kLowestLogLik;
    sum += p->freq * std::log(prob);
  }
  return sum;
}

}  // namespace

double TPhenDB::log_likelihood() {
  log_lik = sum_log_probs(list_, [](const TPhenotype& p) { return p.prob; });
  return log_lik;
}

double TPhenDB::link_equil_log_lik() {
  log_lik = sum_log_probs(list_, [](const TPhenotype& p) { return p.link_equil_pheno_prob(); });
  return log_lik;
}

int TPhenDB::total_gene_copies() const {
  int total = 0;
  for (const auto& p : list_) total += rounded(p->freq);
  return total;
}

void TPhenDB::check_pheno_redundancy() {
  for (const auto& p : list_) p->merged = 0;
  const bool all_typed =
      std::all_of(list_.begin(), list_.end(), [](const auto& p) { return p->hapl1 && p->hapl2; });
  if (all_typed) {
    check_redundancy_hashed();
  } else {
    check_redundancy_pairwise();
  }
  std::erase_if(list_, [](const auto& p) { return p->merged != 0; });
}

void TPhenDB::check_redundancy_pairwise() {
  for (std::size_t i = 0; i < list_.size(); ++i) {
    TPhenotype& first = *list_[i];
    if (first.merged) continue;
    for (std::size_t j = i + 1; j < list_.size(); ++j) {
      TPhenotype& later = *list_[j];
      if (later.merged || !(first == later)) continue;
      first.freq += later.freq;
      first.rel_freq += later.rel_freq;
      later.merged = 1;
    }
  }
}

// With both copies present equality is an equivalence, so each phenotype
// can go straight to the first of its class; the sums run in the same order
// as the pairwise walk.
void TPhenDB::check_redundancy_hashed() {
  std::unordered_multimap<std::size_t, std::size_t> firsts;
  for (std::size_t i = 0; i < list_.size(); ++i) {
    TPhenotype& p = *list_[i];
    const int n = std::max(p.hapl1->nb_loci(), p.hapl2->nb_loci());
    std::size_t key = static_cast<std::size_t>(n);
    for (int l = 0; l < n; ++l) {
      const TAllele* a = p.hapl1->allele(l);
      const TAllele* b = p.hapl2->allele(l);
      if (std::less<const TAllele*>()(b, a)) std::swap(a, b);
      const std::hash<const void*> h;
      key = key * 1000003u ^ (h(a) * 31u ^ h(b));
    }
    const auto [begin, end] = firsts.equal_range(key);
    auto it = std::find_if(begin, end, [&](const auto& e) { return *list_[e.second] == p; });
    if (it == end) {
      firsts.emplace(key, i);
      continue;
    }
    TPhenotype& first = *list_[it->second];
    first.freq += p.freq;
    first.rel_freq += p.rel_freq;
    p.merged = 1;
  }
}

void TPhenDB::create_temp_PhenDB(std::span<const int> selected_loci, const TPhenDB& source) {
  std::vector<std::unique_ptr<TPhenotype>> restricted;
  restricted.reserve(source.list_.size());
  for (const auto& p : source.list_) {
    auto q = std::make_unique<TPhenotype>();
    q->copy_restricted_pheno(selected_loci, *p);
    restricted.push_back(std::move(q));
  }
  log_lik = source.log_lik;
  inbreeding = source.inbreeding;
  list_ = std::move(restricted);
}

bool TPhenDB::gather_locus(int locus, std::vector<TAllele*>& out) const {
  out.clear();
  for (const auto& p : list_) {
    if (!p->hapl1 || !p->hapl2 || locus >= p->hapl1->nb_loci() || locus >= p->hapl2->nb_loci()) {
      return false;
    }
    out.push_back(p->hapl1->allele(locus));
    out.push_back(p->hapl2->allele(locus));
  }
  return true;
}

void TPhenDB::scatter_locus(int locus, const std::vector<TAllele*>& alleles, std::size_t& written) {
  const auto l = static_cast<std::size_t>(locus);
  for (const auto& p : list_) {
    if (written + 2 > alleles.size()) return;
    p->hapl1->alleles[l] = alleles[written++];
    p->hapl2->alleles[l] = alleles[written++];
  }
}

int TPhenDB::explode_base() {
  const std::size_t start = list_.size();
  long long expected = 0;
  for (std::size_t i = 0; i < start; ++i) {
    TPhenotype* p = list_[i].get();
    const int k = rounded(p->freq);
    expected += k;
    if (k > 1) p->rel_freq /= static_cast<double>(k);
    p->freq = 1.0;
    for (int c = 1; c < k; ++c) list_.push_back(std::make_unique<TPhenotype>(*p));
  }
  if (static_cast<long long>(list_.size()) != expected) {
    report_error(report_kind::ERROR, "TPhenDB::explode_base()", 120);
    return 0;
  }
  return 1;
}

std::vector<double> TPhenDB::cumulative(const TPopHaploDB& db) {
  std::vector<double> cum(1, 0.0);
  cum.reserve(static_cast<std::size_t>(db.size()) + 1);
  for (const auto& h : db.haplotypes()) cum.push_back(cum.back() + h->freq);
  return cum;
}

// The allele of the haplotype i with cum[i] < u <= cum[i + 1]. A uniform
// outside every interval (0, or above a sum just below 1) takes the first or
// the last haplotype.
TAllele* TPhenDB::pick(const TPopHaploDB& db, const std::vector<double>& cum, double u) {
  const int n = db.size();
  if (n == 0) return nullptr;
  int chosen = u <= cum[0] ? 0 : n - 1;
  for (int i = 0; i < n; ++i) {
    if (cum[static_cast<std::size_t>(i)] < u && u <= cum[static_cast<std::size_t>(i) + 1]) {
      chosen = i;
      break;
    }
  }
  return db[chosen]->allele(0);
}

void TPhenDB::add_resampled(int i, int n, TAllele* a[4], const TAlleleDB& loci) {
  // Only a recessive homozygote shows the recessive allele.
  for (int locus = 0; locus < 2; ++locus) {
    TAllele*& x = a[locus];
    TAllele*& y = a[locus + 2];
    const TAllele* rec = recessive_allele(x ? x : y, loci, false);
    if (rec == nullptr) continue;
    if (x == rec) {
      x = y;
    } else if (y == rec) {
      y = x;
    }
  }
  const TPopHaplotype first(a[0], a[1], i);
  const TPopHaplotype second(a[2], a[3], i);
  auto p = std::make_unique<TPhenotype>(&first, &second, i);
  p->freq = 1.0;
  p->rel_freq = 1.0 / static_cast<double>(n);
  list_.push_back(std::move(p));
}

int TPhenDB::degrees_of_freedom() const {
  if (list_.empty()) return 0;
  std::unordered_set<const TAllele*> first;
  std::unordered_set<const TAllele*> second;
  for (const auto& p : list_) {
    if (!p->hapl1 || !p->hapl2 || p->hapl1->nb_loci() < 2 || p->hapl2->nb_loci() < 2) return 1;
    first.insert(p->hapl1->allele(0));
    first.insert(p->hapl2->allele(0));
    second.insert(p->hapl1->allele(1));
    second.insert(p->hapl2->allele(1));
  }
  return (static_cast<int>(first.size()) - 1) * (static_cast<int>(second.size()) - 1);
}

void TPhenDB::report_locus_count_error() {
  report_error(report_kind::ERROR, "TPhenDB::permute_alleles()", 118);
}

void TPhenDB::report_permutation_error() {
  report_error(report_kind::ERROR, "TPhenDB::permute_alleles()", 119);
}

void TPhenDB::report_random_list_error() {
  report_error(report_kind::ERROR, "TPhenDB::create_random_list()", 116);
}

void TPhenDB::log_resample_sum_error() {
  log_stream() << "     TPhenDB::resample:  summ of freqs is not 1\n";
}
