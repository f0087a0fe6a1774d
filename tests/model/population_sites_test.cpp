// Classes of nucleotide pairs, and the classification of the sites of DNA
// and RFLP samples against their reference sequence.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/dictionary_test_support.h"
#include "model/nucleotide.h"
#include "model/population.h"
#include "model/population_test_support.h"

namespace {

using population_test::Project;

// --- compare_nucleotides ----------------------------------------------------------

struct PairCase {
  char a;
  char b;
  int expected;
};

TEST(CompareNucleotides, ClassesOfPairsInBothOrders) {
  const std::vector<PairCase> table = {
      // transitions
      {'A', 'G', 1},
      {'C', 'T', 1},
      // transversions, also against codes all of whose bases are transversions
      {'A', 'C', 2},
      {'A', 'T', 2},
      {'G', 'C', 2},
      {'G', 'T', 2},
      {'C', 'R', 2},
      {'T', 'R', 2},
      {'A', 'Y', 2},
      {'G', 'Y', 2},
      {'R', 'Y', 2},
      // deletions
      {'-', 'A', 3},
      {'-', 'B', 3},
      {'-', 'N', 3},
      {'-', 'Y', 3},
      {'-', '0', 3},
      {'-', '1', 3},
      // unsure kind
      {'A', 'B', 4},
      {'A', 'K', 4},
      {'A', 'S', 4},
      {'C', 'D', 4},
      {'C', 'K', 4},
      {'C', 'W', 4},
      {'G', 'H', 4},
      {'G', 'M', 4},
      {'G', 'W', 4},
      {'T', 'M', 4},
      {'T', 'S', 4},
      {'T', 'V', 4},
      {'K', 'M', 4},
      {'S', 'W', 4},
      {'0', '1', 4},
      // compatible codes, equal characters, missing data and anything else
      {'A', 'A', 0},
      {'N', 'A', 0},
      {'R', 'A', 0},
      {'A', 'M', 0},
      {'-', '?', 0},
      {'?', 'A', 0},
      {'-', 'X', 0},
      {'a', 'g', 0},
      {'A', 'X', 0},
      {'R', 'R', 0},
      {'-', '-', 0}};
  for (const PairCase& c : table) {
    EXPECT_EQ(compare_nucleotides(c.a, c.b), c.expected) << c.a << c.b;
    EXPECT_EQ(compare_nucleotides(c.b, c.a), c.expected) << c.b << c.a;
  }
}

// --- compare_DNA_sequences ---------------------------------------------------------

// Sites of the alignment (the reference takes each site from the second
// sequence on, the first that is neither missing nor a gap):
//   0 monomorphic            6 transition, 1 of 33 copies missing (usable)
//   1 transition             7 gap everywhere: leaves the usable set
//   2 transversion           8 difference of unsure kind (A against B)
//   3 two transversions      9 transition and transversion
//   4 deletion              10 gap in the reference against an A: deletion
//   5 transition, 30 of 33 missing (unusable)
//  11 missing in the reference
Population alignment(Project& project) {
  return project.sample(
      0, {{"AAAAA?A-AAA?", 30}, {"AAAAAAA-AA-?", 1}, {"AGCC-GG-BG-?", 1}, {"AAATAA?-AC-?", 1}});
}

struct WeightCase {
  const char* name;
  double deletion, transition, transversion;
  SiteCounts counts;
  std::vector<int> poly;
  std::vector<unsigned char> s_sites;
};

class DnaSites : public ::testing::TestWithParam<WeightCase> {};

TEST_P(DnaSites, CountsAndFlagsFollowTheWeights) {
  const WeightCase& c = GetParam();
  Project project;
  PopulDNA sample(alignment(project));
  sample.DeletionWeight = c.deletion;
  sample.TransitionWeight = c.transition;
  sample.TranversionWeight = c.transversion;
  settings s;
  s.AllowedLevelOfMissingData = 0.05;
  clear_usable_loci_flags();
  ASSERT_EQ(sample.find_polymorphic_sites(s), 1);
  ASSERT_TRUE(sample.reference);
  EXPECT_EQ(sample.reference->hapl_id, "Arbitrary reference haplotype");
  EXPECT_EQ(sample.reference->hapl_content, "AAAAAAA-AA-?");
  const SiteCounts& n = sample.counts;
  EXPECT_EQ(n.transitions, c.counts.transitions);
  EXPECT_EQ(n.transversions, c.counts.transversions);
  EXPECT_EQ(n.substitutions, c.counts.substitutions);
  EXPECT_EQ(n.indels, c.counts.indels);
  EXPECT_EQ(n.transition_sites, c.counts.transition_sites);
  EXPECT_EQ(n.transversion_sites, c.counts.transversion_sites);
  EXPECT_EQ(n.substitution_sites, c.counts.substitution_sites);
  EXPECT_EQ(n.indel_sites, c.counts.indel_sites);
  EXPECT_EQ(n.nucleotide_sites, 11);
  EXPECT_EQ(n.usable_nucleotide_sites, 9);
  EXPECT_EQ(sample.poly_flags, c.poly);
  int poly = 0;
  for (int p : c.poly) poly += p;
  EXPECT_EQ(sample.nb_poly_loci, poly);
  EXPECT_EQ(sample.nb_usable_loci, 9);
  EXPECT_EQ(sample.usable_locus, (std::vector<int>{1, 1, 1, 1, 1, 0, 1, 0, 1, 1, 1, 0}));
  EXPECT_EQ(usable_loci_flags(), c.s_sites);
}

INSTANTIATE_TEST_SUITE_P(Weights, DnaSites,
                         ::testing::Values(WeightCase{"all_weights",
                                                      1.0,
                                                      1.0,
                                                      1.0,
                                                      SiteCounts{3, 4, 8, 2, 3, 3, 6, 2, 0, 0},
                                                      {0, 1, 1, 1, 1, 0, 1, 0, 1, 1, 1, 0},
                                                      {0, 1, 1, 1, 0, 0, 1, 0, 1, 1}},
                                           WeightCase{"no_transitions",
                                                      1.0,
                                                      0.0,
                                                      1.0,
                                                      SiteCounts{0, 3, 4, 2, 0, 3, 4, 2, 0, 0},
                                                      {0, 0, 1, 1, 1, 0, 0, 0, 1, 1, 1, 0},
                                                      {0, 0, 1, 1, 0, 0, 0, 0, 1, 1}},
                                           WeightCase{"no_deletions_no_transversions",
                                                      0.0,
                                                      1.0,
                                                      0.0,
                                                      SiteCounts{3, 0, 4, 0, 3, 0, 4, 0, 0, 0},
                                                      {0, 1, 0, 0, 0, 0, 1, 0, 1, 1, 0, 0},
                                                      {0, 1, 0, 0, 0, 0, 1, 0, 1, 1}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(DnaSites, MissingFrequenciesOfSites) {
  Project project;
  PopulDNA sample(alignment(project));
  settings s;
  s.AllowedLevelOfMissingData = 0.05;
  sample.find_polymorphic_sites(s);
  EXPECT_DOUBLE_EQ(sample.missing_freq[5], 30.0 / 33.0);
  EXPECT_DOUBLE_EQ(sample.missing_freq[6], 1.0 / 33.0);
  // A site that is missing in the reference carries the sample size.
  EXPECT_EQ(sample.missing_freq[11], 33.0);
  EXPECT_EQ(sample.missing_freq[0], 0.0);
  EXPECT_EQ(sample.transversion_seen[3], 2);
  EXPECT_EQ(sample.transversion_seen[2], 1);
  EXPECT_EQ(sample.deletion_seen[10], 1);
  EXPECT_EQ(sample.other_seen[8], 1);
}

TEST(DnaSites, AllowingMoreMissingDataKeepsTheSite) {
  Project project;
  PopulDNA sample(alignment(project));
  settings s;
  s.AllowedLevelOfMissingData = 0.95;
  sample.find_polymorphic_sites(s);
  EXPECT_EQ(sample.usable_locus[5], 1);
  EXPECT_EQ(sample.counts.transition_sites, 4);
}

TEST(DnaSites, ASeparatorInTheReferenceIsNoNucleotideSite) {
  Project project;
  Population data = project.sample(0, {{"AC/GT", 2}, {"AC/GA", 1}});
  data.profile.LocusSeparator = '/';
  PopulDNA sample(data);
  settings s;
  sample.find_polymorphic_sites(s);
  EXPECT_EQ(sample.usable_locus, (std::vector<int>{1, 1, 0, 1, 1}));
  EXPECT_EQ(sample.missing_freq[2], 3.0);
  EXPECT_EQ(sample.counts.nucleotide_sites, 4);
  EXPECT_EQ(sample.counts.transversion_sites, 1);
}

TEST(DnaSites, NoHaplotypesNoReference) {
  PopulDNA sample;
  settings s;
  EXPECT_EQ(sample.build_arbitrary_haplotype(), 0);
  EXPECT_EQ(sample.find_polymorphic_sites(s), 0);
}

TEST(DnaSites, UnphasedDataWithoutHaplotypesAreClassifiedByPhenotypes) {
  Project project;
  Population data = project.genotypes(0, {{"i", "ACG", "ATG", 2.0}}, 0, 0);
  data.build_allele_vectors();
  PopulDNA sample(data);
  settings s;
  ASSERT_EQ(sample.find_polymorphic_sites(s), 1);
  EXPECT_FALSE(sample.reference);
  EXPECT_EQ(sample.poly_flags, (std::vector<int>{0, 1, 0}));
}

// --- compare_RFLP_haplotypes -------------------------------------------------------

TEST(RflpSites, ChangesAndDeletionsAgainstTheReference) {
  Project project;
  // Sites: 0 change, 1 deletion, 2 monomorphic, 3 gap everywhere, 4 too much missing.
  PopulRFLP sample(project.sample(1, {{"0-0-1", 1}, {"010-?", 2}, {"110-?", 1}}));
  settings s;
  s.AllowedLevelOfMissingData = 0.5;
  clear_usable_loci_flags();
  ASSERT_EQ(sample.find_polymorphic_sites(s), 1);
  EXPECT_EQ(sample.reference->hapl_content, "010-?");
  EXPECT_EQ(sample.usable_locus, (std::vector<int>{1, 1, 1, 0, 0}));
  EXPECT_EQ(sample.poly_flags, (std::vector<int>{1, 1, 0, 0, 0}));
  EXPECT_EQ(sample.counts.substitution_sites, 1);
  EXPECT_EQ(sample.counts.indel_sites, 1);
  EXPECT_EQ(sample.counts.nucleotide_sites, 4);
  EXPECT_EQ(sample.nb_usable_loci, 3);
  EXPECT_EQ(usable_loci_flags(), (std::vector<unsigned char>{1}));
  sample.DeletionWeight = 0.0;
  sample.find_polymorphic_sites(s);
  EXPECT_EQ(sample.poly_flags, (std::vector<int>{1, 0, 0, 0, 0}));
}

TEST(UsableLociFlags, GrowOnlyAndAreEmptiedByTheRun) {
  clear_usable_loci_flags();
  set_usable_loci_flag(3);
  set_usable_loci_flag(1);
  EXPECT_EQ(usable_loci_flags(), (std::vector<unsigned char>{0, 1, 0, 1}));
  clear_usable_loci_flags();
  EXPECT_TRUE(usable_loci_flags().empty());
}

}  // namespace
