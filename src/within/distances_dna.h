// Internal to the DNA distance modules: the classes of the sites where two
// sequences differ, the counts of one pair, and the routines of the methods
// (distances_dna.cpp: weighted counts, Jukes and Cantor, Kimura;
// distances_dna_corrected.cpp: Tajima and Nei, Tamura, Tamura and Nei).
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "model/population.h"
#include "within/distances_sites.h"

namespace dna_distance {

// Bases in the order of freq_nucl.
constexpr int kC = 0;
constexpr int kT = 1;
constexpr int kA = 2;
constexpr int kG = 3;

inline int base_index(char c) {
  switch (c) {
    case 'C':
      return kC;
    case 'T':
      return kT;
    case 'A':
      return kA;
    case 'G':
      return kG;
    default:
      return -1;
  }
}

// What a site where two sequences differ is. The first six are the pairs of
// two different bases, (i, j) with i > j in the order C, T, A, G, at
// i (i - 1) / 2 + j; the others by nucleotide class.
enum Category : std::uint8_t {
  kTC,
  kAC,
  kAT,
  kGC,
  kGT,
  kGA,
  kTransitionCode,
  kTransversionCode,
  kDeletion,
  kOther,
  kNoneClean,  // no difference of any class, neither character missing nor a gap
  kNoneDirty,
  kEnd,  // past the end of one of the sequences
  kCategories
};

// The category of two different characters (see Category); '\0' is the end
// of a sequence.
int dna_category(char a, char b, char missing);

// The sites of one pair, counted.
struct Tally {
  std::array<int, kCategories> n{};
  int sites = 0;  // usable sites that both sequences reach
  int equal = 0;
  int equal_missing = 0;
  int equal_gap = 0;

  int transitions() const { return n[kTC] + n[kGA] + n[kTransitionCode]; }
  int transversions() const { return base_transversions() + n[kTransversionCode]; }
  int base_transversions() const { return n[kAC] + n[kAT] + n[kGC] + n[kGT]; }
  int base_pairs() const { return n[kTC] + n[kGA] + base_transversions(); }
  int differing() const { return sites - equal; }
  // Equal sites that are neither missing data nor a gap.
  int equal_clean() const { return equal - equal_missing - equal_gap; }
};

struct Weights {
  double ts = 1.0;
  double tv = 1.0;
  double del = 1.0;
};

// The sums of the weighted methods; `all` is the one running sum of the
// pairwise difference, the others those of the proportion.
struct WeightedSums {
  double ts = 0.0;
  double tv = 0.0;
  double del = 0.0;
  double all = 0.0;
  double L = 0.0;
};

class DnaPairs {
 public:
  DnaPairs(PopulDNA& sample, int method);

  // The routine of the method for pair (i, j); fills sample.pair. 0 on failure.
  bool compute(int i, int j) { return (this->*routine_)(i, j) != 0; }

 private:
  using Routine = int (DnaPairs::*)(int, int);

  Tally tally(int i, int j) const;
  WeightedSums weighted(int i, int j) const;
  WeightedSums weighted_walk(int i, int j) const;
  void clear_results() { sample_.pair = PairResults{}; }

  int pairwise_difference(int i, int j);
  int proportion(int i, int j);
  int jukes_cantor(int i, int j);
  int kimura(int i, int j);
  int tajima_nei(int i, int j);
  int tamura(int i, int j);
  int tamura_nei(int i, int j);

  PopulDNA& sample_;
  Weights w_;
  double a_;  // gamma shape, 0 for none
  SiteCodes codes_;
  PairTable category_;
  PairTable class_;
  std::vector<char> is_missing_;  // per code
  bool whole_weights_;
  Routine routine_;
};

}  // namespace dna_distance
