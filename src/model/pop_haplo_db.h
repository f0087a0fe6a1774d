// The working haplotype table of a sample, for the analyses of unphased
// diploid data (EM estimation, likelihood-ratio linkage test).
//
// A TPopHaplotype is a list of allele pointers (one per locus of the current
// restriction) with the numbers that the EM keeps for it. TPopHaploDB keeps
// its haplotypes in order of insertion, unique by allele list, at stable
// addresses (genotypes point at them). A hash index of the allele lists stands
// beside the list; code that changes the alleles of entries in place must call
// reindex() afterwards.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <span>
#include <unordered_map>
#include <vector>

#include "model/allele_db.h"
#include "model/my_string.h"

class TPopHaplotype {
 public:
  TPopHaplotype() = default;
  // A bi-locus haplotype named "Hapl" + index, all numbers 0.
  TPopHaplotype(TAllele* first, TAllele* second, int index);
  // A full copy of every field.
  TPopHaplotype(const TPopHaplotype& other) = default;
  TPopHaplotype(TPopHaplotype&& other) noexcept = default;
  TPopHaplotype& operator=(TPopHaplotype&& other) noexcept = default;
  // Copies the name, the frequencies (freq, old_freq, sd_freq, sum_freq) and
  // the alleles; the other fields keep their values.
  TPopHaplotype& operator=(const TPopHaplotype& other);
  // The same, keeping only the alleles of the positions where selected_loci
  // is non-zero; each kept allele's locus_id becomes its new position.
  void assign(const TPopHaplotype& other, std::span<const int> selected_loci);

  int nb_loci() const { return static_cast<int>(alleles.size()); }
  // The allele at `locus`, or null.
  TAllele* allele(int locus) const {
    return locus >= 0 && locus < nb_loci() ? alleles[static_cast<std::size_t>(locus)] : nullptr;
  }

  // Same length and the same allele pointers locus by locus.
  bool operator==(const TPopHaplotype& other) const { return alleles == other.alleles; }
  // Positions whose allele texts differ; each position that only one of the
  // two has counts as a difference.
  int nb_differences(const TPopHaplotype& other) const;

  my_string hapl_name = "UNKNOWN";  // or "Hapl" + a number
  double freq = 0.0;                // frequency estimate, or a count while tables are built
  double old_freq = 0.0;            // previous EM iteration
  double sd_freq = 0.0;             // bootstrap s.d. (sum of squares while it runs)
  double sum_freq = 0.0;            // bootstrap accumulator
  std::vector<TAllele*> alleles;    // not owned
  int pseudo_count = 0;
  char separator = ' ';  // printed after each allele; 0 for none
  double exp_count = 0.0;
  double exp_sum = 0.0;
  double inbred_part = 0.0;  // share of homozygotes by inbreeding (EM)
  int fixed = 0;             // keeps frequency 1.0 in random starts
  int rank = 0;
  int rank2 = 0;
  int rank3 = 0;
  char selected = 0;
  int index = -1;

 private:
  void copy_numbers(const TPopHaplotype& other);
};

// The order of printed tables: locus by locus on the allele texts (byte
// order); a haplotype that is a prefix of the other goes first.
bool operator<(const TPopHaplotype& a, const TPopHaplotype& b);

// The alleles, each followed by the separator unless that is 0.
std::ostream& operator<<(std::ostream& os, const TPopHaplotype& h);

// Counts of a printed haplotype table (see TPopHaploDB::assign_print_indices).
struct HaploListing {
  int nb_all = 0;
  int nb_listed = 0;
  double sum_all = 0.0;
  double sum_listed = 0.0;
};

class TPopHaploDB {
 public:
  TPopHaploDB() = default;
  // Deep copies; the copies are new haplotypes at new addresses.
  TPopHaploDB(const TPopHaploDB& other);
  TPopHaploDB& operator=(const TPopHaploDB& other);
  TPopHaploDB(TPopHaploDB&& other) noexcept = default;
  TPopHaploDB& operator=(TPopHaploDB&& other) noexcept = default;

  int size() const { return static_cast<int>(list_.size()); }
  bool empty() const { return list_.empty(); }
  // The haplotype at `i`, or null.
  TPopHaplotype* operator[](int i) const;
  const std::vector<std::unique_ptr<TPopHaplotype>>& haplotypes() const { return list_; }

  // The entry with the same alleles gets `count` added to freq; a haplotype
  // not yet in the table is copied in (name, frequencies, alleles) with freq =
  // count. Returns the entry, whose address stays valid.
  TPopHaplotype* add(const TPopHaplotype& h, double count);
  // The entry with the same alleles, or null.
  TPopHaplotype* find(const TPopHaplotype& h) const { return find(std::span(h.alleles)); }
  TPopHaplotype* find(std::span<TAllele* const> alleles) const;
  // Position of the entry with the same alleles, or 2147483647.
  int find_index(const TPopHaplotype& h) const;
  // Position of this very entry, or -1.
  int find_index(const TPopHaplotype* h) const;

  // Deletes the entries with freq below `threshold`; the others keep their order.
  void remove_below(double threshold);
  // Random start: freq = spread * u + 1.0 for each haplotype that is not
  // fixed (one draw each, in table order), 1.0 for fixed ones; all divided by
  // their sum; old_freq the same. Returns the smallest frequency (0.0 for an
  // empty table).
  template <class Generator>
  double set_random_freqs(int spread, Generator& g, int& idum);
  // The first haplotype at which the running sum of freq exceeds u, or null.
  TPopHaplotype* draw(double u) const;
  // A reference haplotype "UNKNOWN" of one allele per locus, and het_loci;
  // nothing when no locus has two alleles or more.
  void build_reference_haplotype(const TAlleleDB& loci, char& missing);

  // Stable sort by the order of printed tables.
  void sort_by_alleles();
  // Numbers the entries for a table: those with freq above `threshold` get
  // index 1, 2, ..., the others -1, -2, ...; returns the counts and sums.
  HaploListing assign_print_indices(double threshold);

  // Empties the table, the reference and het_loci.
  void clear();
  // Rebuilds the index after alleles of entries were changed in place.
  void reindex();

  std::vector<int> het_loci;  // per locus, 1 when polymorphic in the reference
  std::unique_ptr<TPopHaplotype> reference;

 private:
  static std::size_t key_of(std::span<TAllele* const> alleles);
  int position_of(std::span<TAllele* const> alleles) const;

  std::vector<std::unique_ptr<TPopHaplotype>> list_;
  std::unordered_multimap<std::size_t, int> index_;
};

template <class Generator>
double TPopHaploDB::set_random_freqs(int spread, Generator& g, int& idum) {
  double sum = 0.0;
  for (const auto& h : list_) {
    h->freq = h->fixed ? 1.0 : static_cast<double>(spread) * g.ran3(&idum) + 1.0;
    sum += h->freq;
  }
  double smallest = 0.0;
  for (std::size_t i = 0; i < list_.size(); ++i) {
    TPopHaplotype& h = *list_[i];
    h.freq /= sum;
    h.old_freq = h.freq;
    if (i == 0 || h.freq < smallest) smallest = h.freq;
  }
  return smallest;
}
