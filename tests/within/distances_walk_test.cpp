// The matrix routines compare sequences a word at a time and count classes of
// sites; here they are checked against the plain walk over every site that
// defines the methods, on random alignments: codes, gaps and missing data at
// random, sites set unusable at random, sequences cut short, and weights
// that are zero, whole or fractional. The results must be identical, bit
// for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "model/nucleotide.h"
#include "model/population_test_support.h"
#include "within/distances.h"

namespace {

class Lcg {
 public:
  explicit Lcg(std::uint64_t seed) : state_(seed) {}
  std::uint32_t below(std::uint32_t n) {
    state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<std::uint32_t>((state_ >> 33) % n);
  }

 private:
  std::uint64_t state_;
};

struct Weights {
  double ts, tv, del;
};

// The walk of the pairwise difference, one site after the other.
void literal_difference(const std::string& a, const std::string& b, const std::vector<int>& usable,
                        const Weights& w, double& d, double& var) {
  double sum = 0.0;
  double L = 0.0;
  for (std::size_t s = 0; s < a.size() && s < b.size(); ++s) {
    if (!usable[s]) continue;
    if (a[s] == b[s]) {
      if (a[s] != '?') L += 1.0;
      continue;
    }
    const auto add = [&](double weight) {
      if (weight > 0.0) {
        sum += weight;
        L += weight;
      } else {
        L += 1.0;
      }
    };
    switch (compare_nucleotides(a[s], b[s])) {
      case 1:
        add(w.ts);
        break;
      case 2:
        add(w.tv);
        break;
      case 3:
        add(w.del);
        break;
      case 4:
        if (w.ts > 0.0 && w.tv > 0.0) {
          add(w.ts <= w.tv ? w.ts : w.tv);
        } else {
          L += w.ts > 0.0 ? w.ts : (w.tv > 0.0 ? w.tv : 1.0);
        }
        break;
      default:
        L += 1.0;
    }
  }
  d = sum;
  var = 0.0;
  if (L > 0.0) {
    const double p = sum / L;
    var = (1.0 - p) * p * L;
  }
}

// The counts of Jukes and Cantor, one site after the other; d < 0 for a failure.
double literal_jukes_cantor(const std::string& a, const std::string& b,
                            const std::vector<int>& usable, const Weights& w) {
  int n = 0;
  int L = 0;
  for (std::size_t s = 0; s < a.size() && s < b.size(); ++s) {
    if (!usable[s]) continue;
    if (a[s] == b[s]) {
      L += a[s] != '?' && a[s] != '-' ? 1 : 0;
      continue;
    }
    const int c = compare_nucleotides(a[s], b[s]);
    n += (c == 1 && w.ts > 0.0) || (c == 2 && w.tv > 0.0) || (c == 4 && w.ts > 0.0 && w.tv > 0.0)
             ? 1
             : 0;
    L += 1;
  }
  if (L < 1) return 0.0;
  const double p = static_cast<double>(n) / L;
  if (p >= 0.75) return -1.0;
  return -0.75 * std::log(1.0 - 4.0 * p / 3.0);
}

// Rows of few characters are compared by bit planes, rows of many byte by
// byte: the rare characters decide which.
std::string random_sequence(Lcg& rng, const std::string& ancestor, const std::string& rare,
                            std::uint32_t percent_changed) {
  std::string s = ancestor;
  for (char& c : s) {
    const std::uint32_t r = rng.below(100);
    if (r < 8)
      c = "ACGT"[rng.below(4)];
    else if (r < percent_changed + 3)
      c = rare[rng.below(static_cast<std::uint32_t>(rare.size()))];
  }
  if (rng.below(6) == 0) s.resize(s.size() - rng.below(20));  // a short read
  return s;
}

TEST(DistanceWalk, MatricesEqualTheSiteBySiteWalk) {
  const std::vector<Weights> weights = {
      {1.0, 1.0, 1.0}, {0.0, 1.0, 2.0}, {2.0, 0.0, 0.0}, {0.5, 1.5, 0.3}, {1.7, 0.2, 0.0}};
  Lcg rng(12345);
  for (int round = 0; round < 40; ++round) {
    // Some long alignments (counts past a byte, words past a fold) and some
    // divergent ones.
    const std::size_t sites = round % 5 == 4 ? 2000 + rng.below(1000) : 60 + rng.below(140);
    const std::uint32_t changed = round % 3 == 2 ? 40 : 8;
    std::string ancestor(sites, 'A');
    for (char& c : ancestor) c = "ACGT"[rng.below(4)];
    std::vector<std::pair<std::string, int>> alignment;
    const std::string rare = round % 2 == 0 ? "-?NRYMKSWB" : "-?";
    for (int h = 0; h < 7; ++h)
      alignment.push_back({random_sequence(rng, ancestor, rare, changed), 1});
    std::vector<int> usable(sites, 1);
    for (int& u : usable) u = rng.below(10) == 0 ? 0 : 1;
    const Weights& w = weights[static_cast<std::size_t>(round) % weights.size()];
    for (const int method : {0, 1}) {
      population_test::Project project;
      auto sample = make_sample(0, project.sample(0, alignment));
      auto& dna = static_cast<PopulDNA&>(*sample);
      dna.usable_locus = usable;
      dna.TransitionWeight = w.ts;
      dna.TranversionWeight = w.tv;
      dna.DeletionWeight = w.del;
      dna.dist_method = static_cast<unsigned char>(method);
      const bool ok = compute_distance_matrix(dna, nullptr, nullptr, 0) == 1;
      bool expected_ok = true;
      for (std::size_t i = 1; i < alignment.size() && expected_ok; ++i) {
        for (std::size_t j = 0; j < i && expected_ok; ++j) {
          SCOPED_TRACE("round " + std::to_string(round) + " method " + std::to_string(method) +
                       " pair " + std::to_string(i) + "," + std::to_string(j));
          const std::string& a = alignment[i].first;
          const std::string& b = alignment[j].first;
          const auto cell = [&](std::size_t r, std::size_t c) {
            return ok ? (*dna.dist_mat)(static_cast<int>(r), static_cast<int>(c)) : -2.0;
          };
          if (method == 0) {
            double d = 0.0;
            double var = 0.0;
            literal_difference(a, b, usable, w, d, var);
            EXPECT_EQ(cell(i, j), d);
            EXPECT_EQ(cell(j, i), var < 0.0 ? 0.0 : std::sqrt(var));
          } else {
            const double d = literal_jukes_cantor(a, b, usable, w);
            expected_ok = d >= 0.0;
            if (expected_ok) {
              EXPECT_EQ(cell(i, j), d);
            }
          }
        }
      }
      EXPECT_EQ(ok, expected_ok) << "round " << round << " method " << method;
    }
  }
}

}  // namespace

namespace {

char transition_of(char c) {
  switch (c) {
    case 'A':
      return 'G';
    case 'G':
      return 'A';
    case 'C':
      return 'T';
    default:
      return 'C';
  }
}

TEST(DistanceWalk, LongDivergentPairsCountPastAByte) {
  // 3,000 sites: a transition at every second site, a transversion (to A or C)
  // at every third; a category then holds hundreds of sites in one pair.
  Lcg rng(99);
  std::string first(3000, 'A');
  for (char& c : first) c = "ACGT"[rng.below(4)];
  std::string second = first;
  std::string third = first;
  for (std::size_t s = 0; s < first.size(); ++s) {
    if (s % 2 == 0) second[s] = transition_of(first[s]);
    if (s % 3 == 0) third[s] = first[s] == 'A' || first[s] == 'G' ? 'C' : 'A';
  }
  const std::vector<std::pair<std::string, int>> alignment = {{first, 1}, {second, 1}, {third, 1}};
  const std::vector<int> usable(first.size(), 1);
  for (const int method : {0, 1}) {
    population_test::Project project;
    auto sample = make_sample(0, project.sample(0, alignment));
    auto& dna = static_cast<PopulDNA&>(*sample);
    dna.usable_locus = usable;
    dna.dist_method = static_cast<unsigned char>(method);
    ASSERT_EQ(compute_distance_matrix(dna, nullptr, nullptr, 0), 1);
    for (int i = 1; i < 3; ++i) {
      for (int j = 0; j < i; ++j) {
        const std::string& a = alignment[static_cast<std::size_t>(i)].first;
        const std::string& b = alignment[static_cast<std::size_t>(j)].first;
        double d = 0.0;
        double var = 0.0;
        literal_difference(a, b, usable, {1.0, 1.0, 1.0}, d, var);
        if (method == 1) d = literal_jukes_cantor(a, b, usable, {1.0, 1.0, 1.0});
        EXPECT_EQ((*dna.dist_mat)(i, j), d) << "method " << method << " pair " << i << "," << j;
      }
    }
  }
}

}  // namespace
