// The mean number of pairwise differences and the diversity per locus: the
// toy alignment worked out by hand, samples of the reference calculator
// (tools/reference/reference.py on examples/dna_groups.mvp and
// examples/rflp.mvp) under several distance methods, and matrices filled by
// hand for the rules of scale, microsatellite methods and degenerate samples.
#include <gtest/gtest.h>

#include <cmath>

#include "model/dictionary_test_support.h"
#include "within/diversity_test_support.h"

namespace {

using diversity_test::distances;
using diversity_test::Entries;
using diversity_test::fill_matrix;
using diversity_test::ready_sample;
using diversity_test::unit_weights;
using population_test::Project;

struct Pairwise {
  double pi;
  double sd_pi;
  double per_locus;
  double sd_per_locus;
};

void expect_pairwise(const PopGenetics& s, const Pairwise& want, double tolerance,
                     const char* what) {
  EXPECT_NEAR(s.mean_pairwise_diff, want.pi, tolerance) << what;
  EXPECT_NEAR(s.sd_pairwise_diff, want.sd_pi, tolerance) << what;
  EXPECT_NEAR(s.avg_gene_diversity, want.per_locus, tolerance) << what;
  EXPECT_NEAR(s.sd_avg_gene_diversity, want.sd_per_locus, tolerance) << what;
}

const Entries kToy = {{"AACCGGTTAC", 2}, {"AACCAGTTA?", 1}, {"AACAGG-TGC", 1}};

TEST(PairwiseDiversity, ToyAlignmentByHand) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 0, kToy, s);
  ASSERT_EQ(distances(*sample, 0), 1);
  ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1);
  // d = 1, 3, 4; pi = (2*1*1 + 2*1*3 + 1*1*4) / 6 = 2; L = 9 usable sites.
  expect_pairwise(
      *sample, {2.0, std::sqrt(304.0 / 154.0), 2.0 / 9.0, std::sqrt(10.0 / 729.0 + 184.0 / 8748.0)},
      1e-14, "toy");
}

const Entries kLakeArvi = {
    {"TTAATGTACATATTATGCATAATAGTACATTAAATGATTATACCCCATGCATATAAGCAAGTACTTAATTAACATTAACC", 9},
    {"TTAATGTACATGTTATGCATAATAGTACATTAAATGATTATACCCCATGCATATAAGCAAGTACTTAATTAACATTAACC", 5},
    {"TTAATGTACATATTATGCATAATAGTGCATTAAATGATTATACCCCATGCATATAAGCAAGTACTTAATTAACATTAACC", 4},
    {"TTAATGTACATGTTATGCATAATAGTACATTAAATGATTATACCCCATGCATATGAGCAAGTACTTAATTAACATTAACC", 2},
    {"TTAATGTACATATTATGCATAATAGTACATTAAATGATTAAACCCCATGCATATAAGCAAGTACTTAATTAACATTAACC", 2},
    {"TTAATGTACATATTATGCATAATAGTGCATTAAATGATTATACCCCATGCATATAAGCAAGTACTTAGTTAACATTAACC", 1},
    {"TTAATGTGCATATTATGCGTAATAGTACATTATATGATTATACCCCGTGCATATAAGCACGTACTTAATTAATATTAACC", 1}};

TEST(PairwiseDiversity, ReferenceDnaSampleUnderThreeMethods) {
  struct Case {
    const char* what;
    int method;
    double gamma;
    Pairwise want;
  };
  const Case cases[] = {
      {"pairwise differences",
       0,
       0.0,
       {1.6775362318840579, 1.019203637000324, 0.020969202898550723, 0.014202457447929414}},
      {"Kimura 2P",
       2,
       0.0,
       {1.7431090782408931, 1.0496225451692514, 0.021788863478011164, 0.014626340598654012}},
      {"Kimura 2P, gamma 0.5",
       2,
       0.5,
       {1.890694238390903, 1.1178070718990936, 0.023633677979886285, 0.015576482262529846}},
  };
  for (const Case& c : cases) {
    Project project;
    settings s = unit_weights();
    auto sample = ready_sample(project, 0, kLakeArvi, s);
    static_cast<PopulDNA&>(*sample).GammaAValue = c.gamma;
    ASSERT_EQ(distances(*sample, c.method), 1) << c.what;
    ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1) << c.what;
    expect_pairwise(*sample, c.want, 1e-12, c.what);
  }
}

const Entries kCoast = {{"11010011101001110101", 11}, {"11000011101001110101", 6},
                        {"11010011001001110101", 3},  {"11000011101001010101", 2},
                        {"11010011001001110111", 2},  {"10010011100001110101", 1}};

TEST(PairwiseDiversity, ReferenceRflpSampleCountsAndProportions) {
  // The proportion matrix holds differences per site: the mean is scaled back by
  // the 20 usable sites and must equal the count's.
  for (const int method : {0, 1}) {
    Project project;
    settings s = unit_weights();
    auto sample = ready_sample(project, 1, kCoast, s);
    ASSERT_EQ(distances(*sample, method), 1);
    ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1);
    expect_pairwise(
        *sample, {1.2533333333333334, 0.8187632286817008, 0.06266666666666668, 0.04562083489077866},
        1e-12, method == 0 ? "counts" : "proportions");
  }
}

TEST(PairwiseDiversity, MicrosatelliteSumsOnlyCountsOfDifferences) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 2, {{"100 200", 2}, {"102 200", 1}, {"104 202", 1}}, s, ' ');
  fill_matrix(*sample, {{}, {1.0}, {2.0, 2.0}});
  sample->dist_method = 0;
  ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1);
  // (2*1*1 + 2*1*2 + 1*1*2) / 6 over 2 loci.
  EXPECT_NEAR(sample->mean_pairwise_diff, 8.0 / 6.0, 1e-15);
  EXPECT_NEAR(sample->avg_gene_diversity, 4.0 / 6.0, 1e-15);
  sample->dist_method = 1;
  ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1);
  EXPECT_EQ(sample->mean_pairwise_diff, 0.0);
}

TEST(PairwiseDiversity, DegenerateSamplesGiveZeros) {
  settings s = unit_weights();
  Project one;
  auto single = ready_sample(one, 0, {{"ACGT", 1}}, s);
  fill_matrix(*single, {{}});
  ASSERT_EQ(compute_pairwise_diversity(*single, s), 1);
  expect_pairwise(*single, {0.0, 0.0, 0.0, 0.0}, 0.0, "one copy");

  // Every site has too much missing data: no usable locus.
  settings strict = unit_weights();
  strict.AllowedLevelOfMissingData = 0.0;
  Project none;
  auto unusable = ready_sample(none, 0, {{"A?", 1}, {"?C", 1}}, strict);
  ASSERT_EQ(unusable->nb_usable_loci, 0);
  fill_matrix(*unusable, {{}, {0.0}});
  ASSERT_EQ(compute_pairwise_diversity(*unusable, strict), 1);
  expect_pairwise(*unusable, {0.0, 0.0, 0.0, 0.0}, 0.0, "no usable site");
}

TEST(PairwiseDiversity, NegativeValueUnderTheRootGivesZero) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 3, {{"a", 1}, {"b", 1}}, s);
  // A negative distance (as a user matrix may hold): pi = -0.1 over one pair.
  fill_matrix(*sample, {{}, {-0.1}});
  ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1);
  EXPECT_NEAR(sample->mean_pairwise_diff, -0.1, 1e-15);
  EXPECT_EQ(sample->sd_pairwise_diff, 0.0);
  EXPECT_EQ(sample->sd_avg_gene_diversity, 0.0);
}

TEST(PairwiseDiversity, AMatrixThatCannotBeMadeEndsTheTask) {
  dictionary_test::ReportCapture capture;
  const SampleAnalyses saved = sample_analyses();
  sample_analyses().distance_matrix = nullptr;
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 2, {{"100", 1}, {"102", 1}}, s);
  EXPECT_EQ(compute_pairwise_diversity(*sample, s), 0);
  ASSERT_EQ(capture.all().size(), 1u);
  EXPECT_EQ(capture.all()[0].function_name, "PopulMicrosat::compute_molecular_diversity()");
  EXPECT_EQ(capture.all()[0].code, 136);
  EXPECT_EQ(sample->mean_pairwise_diff, -1.0);
  sample_analyses() = saved;
}

TEST(PairwiseDiversity, MissingMatrixIsComputedThroughTheDistanceEntry) {
  const SampleAnalyses saved = sample_analyses();
  install_distance_analysis();
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 0, kToy, s);
  ASSERT_FALSE(sample->dist_mat);
  ASSERT_EQ(compute_pairwise_diversity(*sample, s), 1);
  EXPECT_EQ(sample->mean_pairwise_diff, 2.0);
  sample_analyses() = saved;
}

}  // namespace
