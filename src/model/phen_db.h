// The phenotype table of a sample of unphased diploid data.
//
// A TPhenotype is one observed unphased genotype: two gene copies (hapl1,
// hapl2) whose gametic phase is unknown, with the number of individuals that
// show it. build_genotypes lists every pair of haplotypes that could make it
// up, entering the haplotypes in the sample's TPopHaploDB; the EM estimation
// runs on these lists. TPhenDB holds the phenotypes in order, and the
// resampling steps of the linkage tests.
//
// Operations that draw random numbers take the generator as a template
// parameter: any class with `double ran3(int* idum)`.
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "model/allele_db.h"
#include "model/my_string.h"
#include "model/pop_haplo_db.h"

// One compatible pair of haplotypes of a phenotype. The two may be the same
// entry.
struct TGenotype {
  TPopHaplotype* hapl_a = nullptr;  // entries of the sample's TPopHaploDB, not owned
  TPopHaplotype* hapl_b = nullptr;
  double geno_prob = 0.0;  // probability under the current haplotype frequencies
  double rel_prob = 0.0;   // share of the phenotype's probability, where a table needs it
};

class TPhenotype {
 public:
  // More heterozygous loci than this are refused by build_genotypes.
  static constexpr int kMaxHetLoci = 32;

  TPhenotype() = default;
  // Copies both haplotypes (name, frequencies, alleles); named after `index`.
  TPhenotype(const TPopHaplotype* first, const TPopHaplotype* second, int index);
  TPhenotype(const TPhenotype& other);
  TPhenotype& operator=(const TPhenotype& other);
  TPhenotype(TPhenotype&&) noexcept = default;
  TPhenotype& operator=(TPhenotype&&) noexcept = default;

  // Loci of the phenotype (those of hapl1).
  int nb_loci() const { return hapl1 ? hapl1->nb_loci() : 0; }

  // Without hapl1: equal freq. Otherwise, locus by locus, the same pair of
  // allele pointers in either order.
  bool operator==(const TPhenotype& other) const;
  // Loci where the two allele pointers differ; stored in nb_het.
  int count_het_loci();
  // Replaces hapl1 (which 0) or hapl2 (which 1) by a copy of `h`.
  void set_pseudo_hapl(const TPopHaplotype& h, int which);
  // This phenotype becomes `source` restricted to the selected loci: fresh
  // haplotypes, the texts and numbers copied, no genotypes.
  void copy_restricted_pheno(std::span<const int> selected_loci, const TPhenotype& source);
  // The same for the two loci given.
  void build_sub_phenotype(int locus1, int locus2, const TPhenotype& source);
  // Product over loci of the two alleles' work_freq, doubled at each
  // heterozygous locus. An allele that is not selected raises a warning (115).
  double link_equil_pheno_prob() const;

  // Lists the compatible pairs of haplotypes, entering them in `db` with
  // count 0. Non-recessive data: 2^(h - 1) pairs for h >= 2 heterozygous
  // loci, one otherwise, stored in nb_genotypes; more than 32 heterozygous
  // loci raise error 114 and no pair is made. Recessive data: 2^L candidates
  // (L loci), the first allele of each locus (by locus_index, or locus_id when
  // use_locus_id is set) being the recessive one; nb_genotypes counts the
  // pairs added. A pair already listed, in either order, is not listed again.
  // 1 on success, 0 when refused (also for copies of different lengths).
  int build_genotypes(TPopHaploDB& db, const TAlleleDB& loci, int& recessive, char use_locus_id);
  // The same without the limit of 32, keeping only pairs whose two haplotypes,
  // restricted to the loci of `previous_mask` (by locus_index), stand in
  // `previous` with freq above 0. nb_genotypes counts the pairs added.
  int build_compatible_genotypes(TPopHaploDB& db, const TAlleleDB& loci, int& recessive,
                                 char use_locus_id, const TPopHaploDB& previous,
                                 std::span<const int> previous_mask);

  // Empties the texts, the genotypes and the allele lists of the haplotypes.
  void clear();

  my_string pheno_name;  // the decimal index by default
  double freq = 1.0;     // number of individuals with this phenotype
  double rel_freq = 0.0;
  double prob = 0.0;  // probability under the current haplotype frequencies
  int nb_genotypes = 0;
  std::unique_ptr<TPopHaplotype> hapl1;  // the two copies as read
  std::unique_ptr<TPopHaplotype> hapl2;
  my_string line1;  // the two text lines of the individual
  my_string line2;
  std::vector<TGenotype> genotypes;
  int merged = 0;      // mark of check_pheno_redundancy
  int nb_het = 0;      // heterozygous loci, from count_het_loci
  int homozygous = 0;  // no heterozygous locus and not recessive data
  int all_het = 0;     // every locus heterozygous (set by build_genotypes)

 private:
  using PairFilter = std::function<bool(const TPopHaplotype&, const TPopHaplotype&)>;
  int enumerate_pairs(TPopHaploDB& db, const TAlleleDB& loci, int recessive, char use_locus_id,
                      bool limited, const PairFilter* keep);
};

class TPhenDB {
 public:
  TPhenDB() = default;
  TPhenDB(const TPhenDB& other);
  TPhenDB& operator=(const TPhenDB& other);
  TPhenDB(TPhenDB&&) noexcept = default;
  TPhenDB& operator=(TPhenDB&&) noexcept = default;

  int size() const { return static_cast<int>(list_.size()); }
  bool empty() const { return list_.empty(); }
  // The phenotype at `i`, or null.
  TPhenotype* operator[](int i) const;
  const std::vector<std::unique_ptr<TPhenotype>>& phenotypes() const { return list_; }
  TPhenotype* add(std::unique_ptr<TPhenotype> phenotype);
  void erase(int i);
  void clear() { list_.clear(); }

  // rel_freq = freq / (sum of freq); nothing when the sum is 0.
  void set_rel_freqs();
  // Sum of freq * ln(prob); a prob not above 0 gives -3.4028234663852886e+38
  // at once. Stored in log_lik.
  double log_likelihood();
  // The same with link_equil_pheno_prob; stored in log_lik.
  double link_equil_log_lik();
  // Sum of the rounded freq.
  int total_gene_copies() const;

  // Merges equal phenotypes into the first of them (freq and rel_freq added),
  // keeping the order of the others.
  void check_pheno_redundancy();
  // Empties this table and fills it with n phenotypes drawn from db: per
  // phenotype two uniforms, each haplotype taken by db.draw. A draw that finds
  // none raises error 116 and the phenotype is drawn again; at the 100th such
  // failure the table stays short.
  template <class Generator>
  void create_random_list(int n, TPopHaploDB& db, Generator& g, int& idum);
  // This table becomes `source` restricted to the selected loci, with its
  // log-likelihood and inbreeding.
  void create_temp_PhenDB(std::span<const int> selected_loci, const TPhenDB& source);
  // Shuffles the alleles of the second locus (locus_count 1) or of both loci
  // (locus_count 2) among all gene copies. 1 on success; error 118 or 119 and 0
  // otherwise, the alleles unchanged.
  template <class Generator>
  int permute_alleles(int& locus_count, int& seed, Generator& g);
  // One entry per individual: an entry of rounded freq k > 1 gets rel_freq / k,
  // freq 1.0, and k - 1 copies appended at the end. 1, or error 120 and 0 when
  // the final size is not the sum of the k.
  int explode_base();
  // Empties the table and draws n individuals under linkage equilibrium from
  // the single-locus tables db1 (locus 1) and db2 (locus 2), four uniforms
  // each (locus 1, locus 2 of the first gamete, then of the second). A drawn
  // recessive allele (the first of its locus in `loci`) takes the value of the
  // other allele of the locus. A table whose frequencies do not sum to 1
  // within 0.001 is logged and leaves the table empty (0 returned).
  template <class Generator>
  int resample(int n, TPopHaploDB& db1, TPopHaploDB& db2, int& seed, TAlleleDB& loci, Generator& g);
  // (a - 1)(b - 1) for a and b distinct alleles at the first and second locus
  // over both copies of all phenotypes; 1 when a phenotype has fewer than two
  // loci.
  int degrees_of_freedom() const;

  double log_lik = 0.0;
  double inbreeding = 0.0;  // left by the EM

 private:
  // The alleles of one locus over all gene copies, hapl1 then hapl2 of each
  // phenotype in order; false when a copy lacks the locus.
  bool gather_locus(int locus, std::vector<TAllele*>& out) const;
  void scatter_locus(int locus, const std::vector<TAllele*>& alleles, std::size_t& written);
  void check_redundancy_hashed();
  void check_redundancy_pairwise();
  static std::vector<double> cumulative(const TPopHaploDB& db);
  static TAllele* pick(const TPopHaploDB& db, const std::vector<double>& cum, double u);
  void add_resampled(int i, int n, TAllele* a[4], const TAlleleDB& loci);
  static void report_locus_count_error();
  static void report_permutation_error();
  static void report_random_list_error();
  static void log_resample_sum_error();

  std::vector<std::unique_ptr<TPhenotype>> list_;
};

template <class Generator>
void TPhenDB::create_random_list(int n, TPopHaploDB& db, Generator& g, int& idum) {
  list_.clear();
  int failures = 0;
  for (int i = 0; i < n;) {
    const double u1 = g.ran3(&idum);
    const double u2 = g.ran3(&idum);
    const TPopHaplotype* h1 = db.draw(u1);
    const TPopHaplotype* h2 = db.draw(u2);
    if (h1 == nullptr || h2 == nullptr) {
      report_random_list_error();
      if (++failures >= 100) break;
      continue;
    }
    list_.push_back(std::make_unique<TPhenotype>(h1, h2, i));
    ++i;
  }
}

template <class Generator>
int TPhenDB::permute_alleles(int& locus_count, int& seed, Generator& g) {
  if (locus_count != 1 && locus_count != 2) {
    report_locus_count_error();
    return 0;
  }
  std::vector<TAllele*> alleles;
  for (int locus = 2 - locus_count; locus < 2; ++locus) {
    if (!gather_locus(locus, alleles)) {
      report_permutation_error();
      return 0;
    }
    const std::size_t n = alleles.size();
    for (std::size_t i = 0; i < n; ++i) {
      const double u = g.ran3(&seed);
      const auto j =
          static_cast<std::size_t>(u * static_cast<double>(n - i) + static_cast<double>(i));
      if (j >= n) {
        report_permutation_error();
        return 0;
      }
      std::swap(alleles[i], alleles[j]);
    }
    std::size_t written = 0;
    scatter_locus(locus, alleles, written);
    if (written != n) {
      report_permutation_error();
      return 0;
    }
  }
  return 1;
}

template <class Generator>
int TPhenDB::resample(int n, TPopHaploDB& db1, TPopHaploDB& db2, int& seed, TAlleleDB& loci,
                      Generator& g) {
  list_.clear();
  const std::vector<double> cum1 = cumulative(db1);
  const std::vector<double> cum2 = cumulative(db2);
  if (std::fabs(cum1.back() - 1.0) > 0.001 || std::fabs(cum2.back() - 1.0) > 0.001) {
    log_resample_sum_error();
    return 0;
  }
  for (int i = 0; i < n; ++i) {
    TAllele* a[4];
    a[0] = pick(db1, cum1, g.ran3(&seed));
    a[1] = pick(db2, cum2, g.ran3(&seed));
    a[2] = pick(db1, cum1, g.ran3(&seed));
    a[3] = pick(db2, cum2, g.ran3(&seed));
    add_resampled(i, n, a, loci);
  }
  return 1;
}
