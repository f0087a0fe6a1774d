// The project-wide dictionary of alleles: every allele seen at every locus in
// all samples, per locus in order of first appearance.
//
// Allele identity in all analyses is pointer identity: a TAllele is created
// once, owned by its locus, and stays at the same address until the data base
// is cleared. Loci and alleles are therefore held through owning pointers.
//
// Look-ups by name are exact string comparisons. A locus with few alleles (the
// common case: four bases, a handful of sizes) is searched linearly; beyond
// that a hash index stands beside the ordered list. The index follows names as
// they were at insertion: code that renames alleles in place must call
// TAlleleDB::reindex() afterwards.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/my_string.h"

// Hash of texts that also accepts string views, so that look-ups need no copy.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const noexcept {
    return std::hash<std::string_view>()(s);
  }
};
using TextIndex = std::unordered_map<std::string, int, TextHash, std::equal_to<>>;

class TAllele {
 public:
  TAllele() = default;
  TAllele(const my_string& name, double initial_count);

  // The text of a one-character allele equals `c` (the missing-data test).
  bool is(char c) const { return allele_name.length() == 1 && allele_name[0] == c; }

  my_string allele_name;          // one character for DNA and RFLP, a token otherwise
  int locus_index = -1;           // position of the locus in the data base
  double count = 0.0;             // copies over all reads
  int pos_in_locus = -1;          // index of the allele in its locus
  int locus_id = -1;              // position in a reduced locus set (starts as locus_index)
  int selected = 0;               // non-zero when the allele takes part in the current computation
  std::vector<double> pop_freq;   // per-sample counts; empty when absent
  std::vector<double> pop_freq2;  // second per-sample vector for EM; empty when absent
  double work_freq = 0.0;         // working frequency
  double work_sum = 0.0;          // accumulator of expected counts (zipper EM)
};

// Alleles compare equal when their texts are the same.
inline bool operator==(const TAllele& a, const TAllele& b) {
  return a.allele_name == b.allele_name;
}

class TLocus {
 public:
  TLocus(const my_string& name, int index_in_db);
  TLocus(const TLocus&) = delete;
  TLocus& operator=(const TLocus&) = delete;

  int nb_alleles() const { return static_cast<int>(alleles_.size()); }
  // The allele at `position`, or null outside the locus.
  TAllele* allele(int position) const;
  // The alleles in order of first appearance (the pointers are stable).
  const std::vector<std::unique_ptr<TAllele>>& alleles() const { return alleles_; }

  // Position of the allele with this exact text, or -1.
  int position_of(std::string_view name) const;
  TAllele* find(std::string_view name) const;
  // Position of an allele equal in text to `value`, or 2147483647.
  int find_index(const TAllele& value) const;
  // Position of this very allele, or -1.
  int find_index(const TAllele* allele) const;

  // Adds `count` to the allele with this text, appending it first when new.
  // Returns its position.
  int add(std::string_view name, double count);
  int index_in_db() const { return index_in_db_; }
  void clear();
  void reindex();

  my_string locus_name;
  TAllele* min_allele = nullptr;  // the minimum-allele reference
  // Locus-by-locus results kept for the detection of loci under selection:
  // F-statistics of the locus (-2.0 marks a monomorphic locus) and the
  // heterozygosity within populations; -1.0 until computed.
  double locus_fst = -1.0;
  double locus_fsc = -1.0;
  double locus_fct = -1.0;
  double het_within = -1.0;
  std::vector<double> pop_het;  // heterozygosity per population

 private:
  // Below this many alleles a linear search beats hashing.
  static constexpr std::size_t kIndexFrom = 16;

  std::vector<std::unique_ptr<TAllele>> alleles_;
  TextIndex index_;  // empty while the locus is small
  int index_in_db_;
};

class TAlleleDB {
 public:
  TAlleleDB() = default;
  TAlleleDB(const TAlleleDB&) = delete;
  TAlleleDB& operator=(const TAlleleDB&) = delete;

  // Adds `count` to the allele `name` of `locus`, creating it when new, and
  // returns its position in the locus. A locus at or past the end appends one
  // locus only ("Locus " + its index), which takes the allele. -1 for a
  // negative locus.
  int add_allele(int& locus, const my_string& name, double count);
  // The same, and the allele's locus_index and pos_in_locus are (re)filled and
  // selected is set to 1.
  int add_allele_selected(int& locus, const my_string& name, double& count);
  // add_allele that hands back the allele itself (null for a negative locus).
  TAllele* enter_allele(int locus, std::string_view name, double count);

  // The allele, or null (also for a locus outside the data base).
  TAllele* find_allele(int locus, std::string_view name) const;

  int nb_loci() const { return static_cast<int>(loci_.size()); }
  int size() const { return nb_loci(); }
  // The locus at `index`, or null.
  TLocus* locus(int index) const;
  const std::vector<std::unique_ptr<TLocus>>& loci() const { return loci_; }

  // Empties every locus, then the list of loci.
  void clear();
  // Rebuilds the name indexes after alleles were renamed in place.
  void reindex();

  // For each locus, one draw per allele into work_freq, then each divided by
  // the sum of the locus.
  template <class Generator>
  void set_random_freqs(Generator& g, int& idum);

  // Gives every allele n zeroed per-sample slots in pop_freq (pop_freq2).
  void create_pop_freq_vector(int& n);
  void create_pop_freq_vector2(int& n);
  void delete_pop_freq_vector();
  void delete_pop_freq_vector2();
  int pop_freq_length() const { return pop_freq_length_; }
  int pop_freq2_length() const { return pop_freq2_length_; }

  // One step of the zipper EM: work_freq = (pop_freq[0] - work_sum) /
  // denominator for every allele, the change from pop_freq[1] summed, the new
  // value stored in pop_freq[1] and work_sum cleared. Returns the sum of
  // absolute changes, or -1.0 without any change for a denominator that is not
  // positive. Alleles without two per-sample slots are passed over.
  double update_allele_freqs(double denominator);

 private:
  TLocus& locus_for(int locus);

  std::vector<std::unique_ptr<TLocus>> loci_;
  int pop_freq_length_ = 0;
  int pop_freq2_length_ = 0;
};

template <class Generator>
void TAlleleDB::set_random_freqs(Generator& g, int& idum) {
  for (const auto& locus : loci_) {
    double sum = 0.0;
    for (const auto& a : locus->alleles()) {
      a->work_freq = g.ran3(&idum);
      sum += a->work_freq;
    }
    if (sum <= 0.0) continue;  // only when every draw was exactly 0
    for (const auto& a : locus->alleles()) a->work_freq /= sum;
  }
}
