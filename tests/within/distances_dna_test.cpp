// DNA distance matrices on small alignments worked out by hand: identical
// and unusable sites, the Jukes-Cantor limit, zero weights, gaps and codes,
// every error of a corrected method, the scale per sequence, stop requests,
// sequences of different lengths, the printed triangle and the nucleotide
// composition. Sites are all usable unless a test says otherwise.
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "model/dictionary_test_support.h"
#include "model/population_test_support.h"
#include "within/distances.h"
#include "within/distances_matrix.h"
#include "within/sample_tasks.h"

namespace {

using dictionary_test::Report;
using dictionary_test::ReportCapture;
using Alignment = std::vector<std::pair<std::string, int>>;

class DnaDistances : public ::testing::Test {
 protected:
  // A sample of the alignment, every site usable, weights 1, no gamma.
  PopulDNA& sample(const Alignment& alignment, int method = 0) {
    sample_ = make_sample(0, project_.sample(0, alignment));
    auto& dna = static_cast<PopulDNA&>(*sample_);
    const std::size_t sites = alignment.front().first.size();
    dna.usable_locus.assign(sites, 1);
    dna.nb_usable_loci = static_cast<int>(sites);
    dna.dist_method = static_cast<unsigned char>(method);
    return dna;
  }
  double distance(PopulDNA& dna, int i = 1, int j = 0) {
    EXPECT_EQ(compute_distance_matrix(dna, nullptr, nullptr, 0), 1);
    return (*dna.dist_mat)(i, j);
  }

  ReportCapture reports_;
  population_test::Project project_;
  std::unique_ptr<PopGenetics> sample_;
};

TEST_F(DnaDistances, IdenticalSequencesAreAtZeroUnderEveryMethodWithoutCorrection) {
  // No T in the sample: Tajima-Nei and Tamura-Nei would fail if they corrected.
  for (int method = 0; method <= 6; ++method) {
    PopulDNA& dna = sample({{"ACGA", 1}, {"ACGA", 2}}, method);
    EXPECT_EQ(distance(dna), 0.0) << "method " << method;
    EXPECT_EQ((*dna.dist_mat)(0, 1), 0.0) << "method " << method;
  }
  EXPECT_TRUE(reports_.all().empty());
}

TEST_F(DnaDistances, DifferencesAtUnusableSitesCountForNothing) {
  for (int method = 0; method <= 6; ++method) {
    PopulDNA& dna = sample({{"ACGTACGT", 1}, {"ACGTACGA", 1}}, method);
    dna.usable_locus[7] = 0;
    EXPECT_EQ(distance(dna), 0.0) << "method " << method;
  }
  EXPECT_TRUE(reports_.all().empty());
}

TEST_F(DnaDistances, JukesCantorFailsAtThreeQuartersAndEndsTheMatrix) {
  PopulDNA& dna = sample({{"AAAA", 1}, {"CCCA", 1}, {"AAAC", 1}}, 1);
  EXPECT_EQ(compute_distance_matrix(dna, nullptr, nullptr, 0), 0);
  const std::vector<Report> expected = {
      {report_kind::ERROR, "PopulDNA::Jukes_Cantor()", 162},
      {report_kind::ERROR, "PopulDNA::compute_distance_matrix(ofstream)", 136}};
  EXPECT_EQ(reports_.all(), expected);
  EXPECT_EQ(dna.pair.pair_dist, -0.75);
  EXPECT_FALSE(dna.dist_mat->has_data());  // no part of a matrix stands as a result
}

TEST_F(DnaDistances, JukesCantorJustBelowTheLimitSucceeds) {
  // 299 differences in 400 sites: p = 0.7475.
  PopulDNA& dna =
      sample({{std::string(400, 'A'), 1}, {std::string(299, 'C') + std::string(101, 'A'), 1}}, 1);
  EXPECT_NEAR(distance(dna), -0.75 * std::log(1.0 - 4.0 * 0.7475 / 3.0), 1e-12);
  EXPECT_TRUE(reports_.all().empty());
}

TEST_F(DnaDistances, ATransitionOfWeightZeroIsNoDifferenceButACompared) {
  // Site 1 A/G (transition), site 10 C/A (transversion): 10 sites compared.
  const Alignment pair = {{"ACGTACGTAC", 1}, {"GCGTACGTAA", 1}};
  PopulDNA& dna = sample(pair, 0);
  dna.TransitionWeight = 0.0;
  EXPECT_EQ(distance(dna), 1.0);
  EXPECT_NEAR((*dna.dist_mat)(0, 1), std::sqrt(0.9 * 0.1 * 10.0), 1e-15);
  PopulDNA& jc = sample(pair, 1);
  jc.TransitionWeight = 0.0;
  EXPECT_NEAR(distance(jc), -0.75 * std::log(1.0 - 4.0 * 0.1 / 3.0), 1e-15);
  PopulDNA& k2p = sample(pair, 2);
  k2p.TransitionWeight = 0.0;
  EXPECT_NEAR(distance(k2p), 0.5 * std::log(1.0 / 0.9) + 0.25 * std::log(1.0 / 0.8), 1e-15);
  PopulDNA& p = sample(pair, 3);
  p.TransitionWeight = 0.0;
  EXPECT_NEAR(distance(p), 0.1, 1e-15);
}

TEST_F(DnaDistances, AGapAgainstABaseOrACodeIsADeletionInBothOrders) {
  const std::vector<Alignment> cases = {{{"AAAA", 1}, {"A-AA", 1}},
                                        {{"A-AA", 1}, {"AAAA", 1}},
                                        {{"ABAA", 1}, {"A-AA", 1}},
                                        {{"A-AA", 1}, {"ABAA", 1}}};
  for (const Alignment& a : cases) {
    PopulDNA& weighted = sample(a, 0);
    EXPECT_EQ(distance(weighted), 1.0) << a[0].first << " " << a[1].first;
    PopulDNA& unweighted = sample(a, 0);
    unweighted.DeletionWeight = 0.0;
    EXPECT_EQ(distance(unweighted), 0.0) << a[0].first << " " << a[1].first;
  }
}

TEST_F(DnaDistances, NAgainstABaseIsNoDifference) {
  for (int method : {0, 1, 3}) {
    PopulDNA& dna = sample({{"ANAA", 1}, {"AAAA", 1}}, method);
    EXPECT_EQ(distance(dna), 0.0) << "method " << method;
  }
}

struct FailureCase {
  Alignment alignment;
  int method;
  double gamma;
  const char* routine;
  int code;
};

TEST_F(DnaDistances, EachCorrectionReportsItsFailureAndEndsTheMatrix) {
  const std::vector<FailureCase> cases = {
      {{{"AC", 1}, {"GC", 1}}, 2, 0.0, "PopulDNA::Kimura_2P()", 163},       // w1 = 0
      {{{"AC", 1}, {"CC", 1}}, 2, 0.0, "PopulDNA::Kimura_2P()", 163},       // w2 = 0
      {{{"ACGA", 1}, {"ACGG", 1}}, 4, 0.0, "PopulDNA::Tajima_Nei()", 164},  // no T
      {{{"ACGTACGT", 1}, {"CATGCATG", 1}}, 4, 0.0, "PopulDNA::Tajima_Nei()", 165},
      {{{"AAAT", 1}, {"AATT", 1}}, 5, 0.0, "PopulDNA::Tamura()", 171},              // no G, C
      {{{"AC", 1}, {"GC", 1}}, 5, 0.0, "PopulDNA::Tamura()", 175},                  // w1 < 0
      {{{"ACGA", 1}, {"ACGG", 1}}, 6, 0.0, "PopulDNA::Tamura_Nei()", 176},          // no T
      {{{"AGCTAGCT", 1}, {"GACTGACT", 1}}, 6, 0.0, "PopulDNA::Tamura_Nei()", 176},  // w1 < 0
  };
  for (const FailureCase& c : cases) {
    ReportCapture reports;
    PopulDNA& dna = sample(c.alignment, c.method);
    dna.GammaAValue = c.gamma;
    EXPECT_EQ(compute_distance_matrix(dna, nullptr, nullptr, 0), 0) << c.routine << c.code;
    const std::vector<Report> expected = {
        {report_kind::ERROR, c.routine, c.code},
        {report_kind::ERROR, "PopulDNA::compute_distance_matrix(ofstream)", 136}};
    EXPECT_EQ(reports.all(), expected) << c.routine << c.code;
    EXPECT_FALSE(dna.dist_mat->has_data());
  }
}

TEST_F(DnaDistances, TamuraNeiWithGammaOutOfFloatRangeStoresZeroAndGoesOn) {
  // Two A/G transitions in 24 sites, all frequencies 1/4: w1 = 2/3, and with a
  // shape of 0.001 the distance is about 1.5^1000.
  PopulDNA& dna = sample({{"AGCTAGCTAAAATTTTGGGGCCCC", 1}, {"GACTAGCTAAAATTTTGGGGCCCC", 1}}, 6);
  dna.GammaAValue = 0.001;
  EXPECT_EQ(distance(dna), 0.0);
  const std::vector<Report> expected = {{report_kind::ERROR, "PopulDNA::Tamura_Nei()", 176},
                                        {report_kind::ERROR, "PopulDNA::Tamura_Nei()", 136}};
  EXPECT_EQ(reports_.all(), expected);
}

TEST_F(DnaDistances, AStopRequestEndsTheMatrixAfterARow) {
  PopulDNA& dna = sample({{"AAAA", 1}, {"CAAA", 1}, {"CCAA", 1}});
  int stop = 1;
  EXPECT_EQ(compute_distance_matrix(dna, nullptr, &stop, 0), 0);
  EXPECT_FALSE(dna.dist_mat->has_data());
  EXPECT_TRUE(reports_.all().empty());
}

TEST_F(DnaDistances, PerSequenceMatricesScaleCorrectedDistancesOnly) {
  const Alignment pair = {{"ACGTACGTAC", 1}, {"GCGTACGTAA", 1}};
  PopulDNA& jc = sample(pair, 1);
  ASSERT_EQ(compute_distance_matrix(jc, nullptr, nullptr, 1), 1);
  const double d = -0.75 * std::log(1.0 - 4.0 * 0.2 / 3.0);
  EXPECT_NEAR((*jc.dist_mat)(1, 0), 10.0 * d, 1e-14);
  EXPECT_NEAR((*jc.dist_mat)(0, 1),
              10.0 * std::sqrt(0.8 * 0.2 / (10.0 * std::pow(1.0 - 0.8 / 3.0, 2))), 1e-14);
  EXPECT_EQ(jc.max_diff, 2);  // 2.3 truncated
  PopulDNA& diff = sample(pair, 0);
  ASSERT_EQ(compute_distance_matrix(diff, nullptr, nullptr, 1), 1);
  EXPECT_EQ((*diff.dist_mat)(1, 0), 2.0);
  EXPECT_EQ(diff.max_diff, 2);
}

TEST_F(DnaDistances, ANegativeVarianceStandsAsZeroAboveTheDiagonal) {
  PopulDNA& dna = sample({{"A", 1}, {"C", 1}});
  fresh_distance_matrix(dna);
  store_distance(dna, 1, 0, 0.5, -1e-9, 2.0);
  EXPECT_EQ((*dna.dist_mat)(1, 0), 1.0);
  EXPECT_EQ((*dna.dist_mat)(0, 1), 0.0);
  EXPECT_EQ(dna.max_diff, 1);
}

TEST_F(DnaDistances, AnEmptySampleIsAnError) {
  auto empty = make_sample(0, Population());
  EXPECT_EQ(compute_distance_matrix(*empty, nullptr, nullptr, 0), 0);
  const std::vector<Report> expected = {
      {report_kind::ERROR, "PopulDNA::compute_distance_matrix()", 108}};
  EXPECT_EQ(reports_.all(), expected);
}

TEST_F(DnaDistances, EmptyDefinitionsLeaveAZeroMatrix) {
  PopulDNA& dna = sample({{"", 3}, {"", 2}});
  dna.Nb_haplo = 0;
  EXPECT_EQ(distance(dna), 0.0);
  EXPECT_EQ(dna.Nb_haplo, 2);
}

TEST_F(DnaDistances, SequencesOfDifferentLengthsAreComparedUpToTheShorterEnd) {
  PopulDNA& dna = sample({{"ACGAAA", 1}, {"ACGT", 1}});
  dna.usable_locus.assign(6, 1);
  EXPECT_EQ(distance(dna), 1.0);
  EXPECT_NEAR((*dna.dist_mat)(0, 1), std::sqrt(0.75 * 0.25 * 4.0), 1e-15);
}

TEST_F(DnaDistances, WithAStreamTheLowerTriangleIsPrinted) {
  PopulDNA& dna = sample({{"AAAA", 1}, {"CAAA", 1}, {"CCAA", 1}});
  std::ostringstream out;
  ASSERT_EQ(compute_distance_matrix(dna, &out, nullptr, 0), 1);
  EXPECT_EQ(out.str(),
            "\nInter-haplotypic distance matrix:\n"
            "   0.00000\n"
            "   1.00000   0.00000\n"
            "   2.00000   1.00000   0.00000\n");
  EXPECT_TRUE(
      std::regex_match(reports_.log_text(), std::regex("\t\t\tWriting matrix to file \\.\\.\\.\n"
                                                       "\t\t\tdone ! \\([0-9]+ ms\\)\n")));
}

TEST_F(DnaDistances, NucleotideCompositionIsWeightedByCountsAndComputedOnce) {
  // A 5, C 1, G 3, T 2, '?' 1 of 12 characters; the four bases scaled to sum to 1.
  PopulDNA& dna = sample({{"ACGT", 1}, {"AAG?", 1}, {"AGAT", 1}});
  ASSERT_EQ(comp_nucl_freq(dna), 1);
  EXPECT_NEAR(dna.freq_nucl[0], 1.0 / 11.0, 1e-15);  // C
  EXPECT_NEAR(dna.freq_nucl[1], 2.0 / 11.0, 1e-15);  // T
  EXPECT_NEAR(dna.freq_nucl[2], 5.0 / 11.0, 1e-15);  // A
  EXPECT_NEAR(dna.freq_nucl[3], 3.0 / 11.0, 1e-15);  // G
  EXPECT_NEAR(dna.gc_content, 4.0 / 11.0, 1e-15);
  dna.haplo_list.front().freq = 5;
  ASSERT_EQ(comp_nucl_freq(dna), 1);
  EXPECT_NEAR(dna.freq_nucl[0], 1.0 / 11.0, 1e-15);
}

TEST_F(DnaDistances, CompositionOfNoSitesIsFourZeros) {
  PopulDNA& dna = sample({{"", 2}});
  ASSERT_EQ(comp_nucl_freq(dna), 1);
  for (const double f : dna.freq_nucl) EXPECT_EQ(f, 0.0);
  EXPECT_EQ(dna.gc_content, 0.0);
}

TEST(DistanceEntry, TheDispatchComputesTheStructureMatrixThroughTheEntry) {
  const SampleAnalyses saved = sample_analyses();
  sample_analyses() = SampleAnalyses{};
  install_distance_analysis();
  population_test::Project project;
  auto sample = make_sample(0, project.sample(0, {{"ACGTACGTAC", 2}, {"GCGTACGTAA", 1}}));
  settings s;
  s.TaskNumber = 0x800;
  s.DistanceMethodAMOVA = 1;
  s.TransitionWeight = s.TranversionWeight = s.DeletionWeight = 1.0;
  EXPECT_EQ(test_methods(*sample, s), 1);
  sample_analyses() = saved;
  ASSERT_TRUE(sample->dist_mat && sample->dist_mat->has_data());
  EXPECT_NEAR((*sample->dist_mat)(1, 0), -0.75 * std::log(1.0 - 4.0 * 0.2 / 3.0), 1e-15);
}

TEST(DistanceEntry, InstallFillsTheDispatchAndLabelsFollowTheMethods) {
  const SampleAnalyses saved = sample_analyses();
  sample_analyses().distance_matrix = nullptr;
  install_distance_analysis();
  EXPECT_NE(sample_analyses().distance_matrix, nullptr);
  sample_analyses() = saved;
  EXPECT_STREQ(distance_method_label(SampleKind::dna, 6), "Tamura and Nei");
  EXPECT_STREQ(distance_method_label(SampleKind::dna, 9), "Pairwise difference");
  EXPECT_STREQ(distance_method_label(SampleKind::rflp, 1), "Proportion of difference");
  EXPECT_STREQ(distance_method_label(SampleKind::rflp, 2), "Pairwise difference");
  EXPECT_STREQ(distance_method_label(SampleKind::microsat, 1), "Sum of squared size difference");
  EXPECT_STREQ(distance_method_label(SampleKind::microsat, 2), "No. of different alleles");
  EXPECT_STREQ(distance_method_label(SampleKind::standard, 0), "");
}

}  // namespace
