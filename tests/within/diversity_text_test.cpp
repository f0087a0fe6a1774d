// The printed sections of the standard and molecular tasks for each data
// type, compared with texts put together by hand from the labels of the
// sections; the numbers are those worked out for the same small samples in
// diversity_test.cpp and diversity_pairwise_test.cpp, or by the reference
// calculator (tools/reference/reference.py), written with six decimals.
#include <gtest/gtest.h>

#include "model/dictionary_test_support.h"
#include "output/references.h"
#include "within/diversity_test_support.h"

namespace {

using diversity_test::distances;
using diversity_test::Document;
using diversity_test::Entries;
using diversity_test::ready_sample;
using diversity_test::unit_weights;
using population_test::Project;

std::string cite(const char* key) {
  return "           <i>" + References().citation(key) + "</i>\n";
}

std::string molecular_citations() {
  return cite("Nei_M") + cite("Tajima_F2") + cite("Tajima_F3");
}

// The document written by one task on the sample.
template <class Task>
std::string section(PopGenetics& sample, settings& s, Task task) {
  Document doc;
  SampleTaskContext context(sample, s);
  task(sample, s, context);
  return doc.str();
}

const Entries kToy = {{"AACCGGTTAC", 2}, {"AACCAGTTA?", 1}, {"AACAGG-TGC", 1}};

TEST(DiversityText, DnaStandardSection) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 0, kToy, s);
  const std::string rule(49, '-');
  const std::string want =
      cite("Nei_M") +
      "No. of gene copies       : 4"
      "\nNo. of sequences         : 3"
      "\nNo. of loci              : 10"
      "\nNo. of usable loci       : 9 loci with less than 5.000000 % missing data"
      "\nNo. of polymorphic sites : 4"
      "\n\nResults are only shown for polymorphic loci\n" +
      rule + "\n               gene      Num.      Exp.\n" +
      "Locus#       copies   alleles       Het\n" + rule + "\n" +
      "4                 4         2   0.50000\n"
      "5                 4         2   0.50000\n"
      "7                 4         2   0.50000\n"
      "9                 4         2   0.50000\n" +
      rule + "\n" +
      "Mean          4.000     2.000   0.50000\n"
      "s.d.          0.000     0.000   0.00000\n" +
      rule + "\n" +
      "\nHaplotype-level computations\n"
      "----------------------------\n"
      "\nSum of square freqs.     : 0.375000"
      "\nGene diversity           : 0.833333 +/- 0.222439"
      "\n(Standard deviation is for the sampling process)\n";
  EXPECT_EQ(section(*sample, s, standard_diversity_task), want);
}

TEST(DiversityText, DnaMolecularSectionWithAllThetas) {
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 15;
  auto sample = ready_sample(project, 0, kToy, s);
  ASSERT_EQ(distances(*sample, 0), 1);
  // Composition over 38 characters: C 10, T 7, A 13, G 8.
  const std::string want =
      molecular_citations() +
      "Sample size                                  : 4"
      "\nNo. of haplotypes                            : 3\n"
      "\nDeletion weight                              : 1.000000"
      "\nTransition weight                            : 1.000000"
      "\nTransversion weight                          : 1.000000"
      "\nAllowed level of missing data                : 5.000000 %"
      "\nNumber of observed transitions               : 2"
      "\nNumber of observed transversions             : 1"
      "\nNumber of substitutions                      : 3"
      "\nNumber of observed indels                    : 1"
      "\nNumber of polymorphic sites                  : 4"
      "\nNumber of observed sites with transitions    : 2"
      "\nNumber of observed sites with transversions  : 1"
      "\nNumber of observed sites with substitutions  : 3"
      "\nNumber of observed sites with indels         : 1"
      "\nNumber of observed nucleotide sites          : 10"
      "\nNumber of usable nucleotide sites            : 9"
      "\nNucleotide composition (Relative values)"
      "\n   C :  0.263158\n   T :  0.184211\n   A :  0.342105\n   G :  0.210526"
      "\n   Total :  1.000000"
      "\nDistance method                              : Pairwise difference"
      " (no Gamma correction)\n"
      "\nMean number of pairwise differences          : 2.000000 +/- 1.405000"
      "\nNucleotide diversity (average over loci)     : 0.222222 +/- 0.186416"
      "\n(Standard deviations are for both the sampling and the stochastic "
      "processes)\n"
      "\n"
      "\nTheta(Hom) : 4.042026\nS.D. Theta(Hom) : 7.071457"
      "\n\t\tComputing BMat ...\nTheta(k) : 3.766435"
      "\n95 % confidence interval limits for theta(k) : [ 0.774497, 18.232851 ]"
      "\nTheta(S) : 1.636364\nS.D. Theta(S) : 1.186211"
      "\nTheta(Pi) : 2.000000\nS.D. Theta(Pi) : 1.677741\n";
  EXPECT_EQ(section(*sample, s, molecular_diversity_task), want);
}

TEST(DiversityText, DnaGammaAndAllDifferentMessages) {
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 5;
  auto sample = ready_sample(project, 0, {{"ACGT", 1}, {"ACGA", 1}, {"TCGA", 1}}, s);
  static_cast<PopulDNA&>(*sample).GammaAValue = 0.5;
  ASSERT_EQ(distances(*sample, 1), 1);
  const std::string text = section(*sample, s, molecular_diversity_task);
  EXPECT_NE(text.find(": Jukes and Cantor (Gamma correction : a=0.500000)\nMean number"),
            std::string::npos);
  EXPECT_NE(text.find("\n\nUnable to compute Theta(Hom) when all gene copies are different"
                      "\nUnable to compute Theta(k) when all gene copies are different\n"),
            std::string::npos);
  EXPECT_EQ(text.find("Theta(Hom) :"), std::string::npos);
}

TEST(DiversityText, RflpAllDifferent) {
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 15;
  // Sites 1, 3, 4 polymorphic; every pair differs at two sites.
  auto sample = ready_sample(project, 1, {{"0101", 1}, {"0110", 1}, {"1100", 1}}, s);
  ASSERT_EQ(distances(*sample, 0), 1);
  const std::string want = molecular_citations() +
                           "Sample size                                  : 3"
                           "\nNo. of haplotypes                            : 3\n"
                           "\nNumber of observed indels                    : 0"
                           "\nNumber of polymorphic sites                  : 3"
                           "\nNumber of usable nucleotide sites            : 4"
                           "\nDistance method                              : Pairwise difference"
                           " (no Gamma correction)\n"
                           "\nMean number of pairwise differences          : 2.000000 +/- 1.511858"
                           "\nAverage gene diversity over loci              : 0.500000 +/- 0.471405"
                           "\n(Standard deviations are for both the sampling and the stochastic "
                           "processes)\n"
                           "\n"
                           "\nUnable to compute theta(Hom) and theta(k) when all gene copies are "
                           "different"
                           "\nTheta(S) : 2.000000\nS.D. Theta(S) : 1.511858"
                           "\nTheta(Pi) : 2.000000\nS.D. Theta(Pi) : 1.885618\n";
  EXPECT_EQ(section(*sample, s, molecular_diversity_task), want);
}

TEST(DiversityText, MicrosatelliteThetaHomOnly) {
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 3;
  auto sample = ready_sample(project, 2, {{"100 20", 2}, {"104 20", 1}, {"102 22", 1}}, s, ' ');
  ASSERT_EQ(distances(*sample, 0), 1);
  const std::string want =
      molecular_citations() +
      "Sample size                                  : 4"
      "\nNo. of haplotypes                            : 3\n"
      "\nAllowed level of missing data       : 5.000000 %"
      "\nNumber of usable loci               : 2"
      "\nDistance method                              : No. of different alleles"
      " (no Gamma correction)\n"
      "\nMean number of pairwise differences          : 1.333333 +/- 1.024941"
      "\nAverage gene diversity over loci    : 0.666667 +/- 0.611952"
      "\n(Standard deviations are for both the sampling and the stochastic "
      "processes)\n"
      "\n"
      "\nInfinite allele model:"
      "\nTheta(Hom) : 4.042026\nS.D. Theta(Hom) : 7.071457"
      "\nUnable to compute some theta values for microsatellite data type\n"
      "\n";
  EXPECT_EQ(section(*sample, s, molecular_diversity_task), want);
}

TEST(DiversityText, StandardDataMessages) {
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 15;
  auto sample = ready_sample(project, 3, {{"a", 1}, {"b", 1}, {"c", 1}}, s);
  ASSERT_EQ(distances(*sample, 0), 1);
  const std::string want =
      molecular_citations() +
      "Sample size                                  : 3"
      "\nNo. of haplotypes                            : 3\n"
      "\nAllowed level of missing data       : 5.000000 %"
      "\nNumber of usable loci               : 1"
      "\nNumber of polymorphic loci                   : 1"
      "\nMean number of pairwise differences          : 1.000000 +/- 0.886405"
      "\nAverage gene diversity over loci              : 1.000000 +/- 1.105542"
      "\n(Standard deviations are for both the sampling and the stochastic processes)\n"
      "\n"
      "\nUnable to compute theta(Hom) and theta(k) when all gene copies are different"
      "\nUnable to compute theta(S) for standard data type "
      "\nUnable to compute theta(Pi) for standard data type "
      "\n";
  EXPECT_EQ(section(*sample, s, molecular_diversity_task), want);
}

// A FREQUENCY sample: definitions without content, counts only.
std::unique_ptr<PopGenetics> frequency_sample(Project& project, const std::vector<int>& counts) {
  Population data;
  data.profile.DataType = 4;
  data.allele_db = &project.alleles;
  data.SampleName = "freqs";
  int total = 0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    HaploDef* d = project.defs.add(std::make_unique<HaploDef>(my_string("f" + std::to_string(i))));
    data.haplo_list.push_back(PHaploDef{d, counts[i]});
    total += counts[i];
  }
  data.set_sample_size(total);
  data.Nb_haplo = static_cast<int>(counts.size());
  auto sample = make_sample(4, data);
  settings s = unit_weights();
  sample->check_data();
  sample->find_polymorphic_sites(s);
  return sample;
}

TEST(DiversityText, FrequencyDataHaveNoPairwiseLines) {
  Project project;
  auto sample = frequency_sample(project, {3, 1});
  settings s = unit_weights();
  s.ComputeTheta = 5;
  // n = 4, k = 2, homozygosity 1/2; values of the reference calculator.
  const std::string want = molecular_citations() +
                           "Sample size                                  : 4"
                           "\nNo. of haplotypes                            : 2\n"
                           "\nAllowed level of missing data       : 5.000000 %"
                           "\nNumber of usable loci               : 0"
                           "\nNumber of polymorphic loci                   : 0"
                           "\n"
                           "\nTheta(Hom) : 0.746568\nS.D. Theta(Hom) : 0.800710"
                           "\n\t\tComputing BMat ...\nTheta(k) : 0.879385"
                           "\n95 % confidence interval limits for theta(k) : [ 0.182203, 4.268102 ]"
                           "\n";
  EXPECT_EQ(section(*sample, s, molecular_diversity_task), want);
  EXPECT_EQ(sample->mean_pairwise_diff, -1.0);
}

TEST(DiversityText, OverflowedTableRefusesTheInterval) {
  // 2000 copies in 700 alleles: B(2000, j) overflows below j = 700.
  Entries entries = {{"a0", 1301}};
  for (int i = 1; i < 700; ++i) entries.emplace_back("a" + std::to_string(i), 1);
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 4;
  auto sample = ready_sample(project, 3, entries, s);
  ASSERT_EQ(distances(*sample, 0), 1);
  dictionary_test::ReportCapture capture;
  const std::string text = section(*sample, s, molecular_diversity_task);
  EXPECT_NE(text.find("\n\t\tComputing BMat ...\nTheta(k) : "), std::string::npos);
  EXPECT_EQ(text.find("95 %"), std::string::npos);
  EXPECT_EQ(text.find("inf"), std::string::npos);
  EXPECT_EQ(text.find("nan"), std::string::npos);
  EXPECT_EQ(capture.log_text(),
            "\t\t\tToo many aleles or gene copies in sample to compute Theta(k)\n");
  EXPECT_EQ(capture.count(179), 1);
  release_bnum_mat();
}

TEST(DiversityText, UnknownPhaseHasNoHaplotypeLevelBlock) {
  Project project;
  Population data = project.genotypes(3, {{"i1", "x y", "x z", 2.0}, {"i2", "w y", "x y", 1.0}}, 0);
  data.build_allele_vectors();
  data.make_pseudo_haplotypes(project.defs);
  data.SampleName = "geno";
  auto sample = make_sample(3, data);
  settings s = unit_weights();
  sample->find_polymorphic_sites(s);
  const std::string text = section(*sample, s, standard_diversity_task);
  EXPECT_EQ(text.find("No. haplotypes"), std::string::npos);
  EXPECT_EQ(text.find("Haplotype-level computations"), std::string::npos);
  EXPECT_NE(text.find("      Obs.      Exp.\n"), std::string::npos);
  // Locus 1: x x x x w x, one heterozygous individual (w x) of three.
  EXPECT_NE(text.find("1                 6         2   0.33333   0.33333\n"), std::string::npos);
}

TEST(DiversityText, KnownPhaseShowsHeterozygosityOfHaplotypes) {
  Project project;
  Population data = project.genotypes(3, {{"i1", "x y", "x z", 2.0}, {"i2", "x y", "x y", 1.0}}, 1);
  data.build_allele_vectors();
  data.make_pseudo_haplotypes(project.defs);
  data.SampleName = "phased";
  auto sample = make_sample(3, data);
  settings s = unit_weights();
  sample->check_data();
  sample->find_polymorphic_sites(s);
  const std::string text = section(*sample, s, standard_diversity_task);
  // Haplotypes x y (4 copies) and x z (2): 2*3 (1 - 20/36) / 5.
  EXPECT_NE(text.find("\n\nNo. of Heterozygotes     : 2\nNo. of Homozygotes       : 1"
                      "\nObs.Heter.               : 0.666667"
                      "\nExp.Heter.               : 0.533333\n"
                      "\nHaplotype-level computations\n"),
            std::string::npos);
}

TEST(DiversityText, SectionsOffPrintNothing) {
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 15;
  auto sample = ready_sample(project, 0, kToy, s);
  ASSERT_EQ(distances(*sample, 0), 1);
  Document doc;
  result_document().set_print_sections(false);
  SampleTaskContext context(*sample, s);
  standard_diversity_task(*sample, s, context);
  molecular_diversity_task(*sample, s, context);
  EXPECT_EQ(doc.str(), "");
  EXPECT_EQ(sample->mean_pairwise_diff, 2.0);
  EXPECT_NEAR(sample->theta_k, 3.7664354540407654, 1e-6);
  result_document().set_print_sections(true);
}

TEST(DiversityText, ThroughTheDispatch) {
  const SampleAnalyses saved = sample_analyses();
  install_diversity_analyses();
  install_distance_analysis();
  Project project;
  settings s = unit_weights();
  s.TaskNumber = 3;
  Population data = project.sample(0, kToy);
  data.SampleName = "lake";
  data.sample_index = 0;
  auto sample = make_sample(0, data);
  Document doc;
  test_methods(*sample, s);
  const std::string text = doc.str();
  const std::string rule(69, '=');
  const auto standard = text.find("\n" + rule + "\n== Standard diversity indices : (lake)\n" +
                                  rule + "\n" + cite("Nei_M") + "No. of gene copies       : 4");
  const auto molecular = text.find("\n" + rule + "\n== Molecular diversity indices : (lake)\n" +
                                   rule + "\n" + molecular_citations() + "Sample size");
  ASSERT_NE(standard, std::string::npos);
  ASSERT_NE(molecular, std::string::npos);
  EXPECT_LT(standard, molecular);
  EXPECT_NE(text.find("Mean number of pairwise differences          : 2.000000 +/- 1.405000"),
            std::string::npos);
  sample_analyses() = saved;
}

}  // namespace
