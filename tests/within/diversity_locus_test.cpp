// The basic per-locus table: counts without missing data (ambiguity codes
// are missing for DNA), heterozygosities, microsatellite sizes and the
// Garza-Williamson index, the sample's allele frequencies, the summary means
// over loci, and the printed table.
#include <gtest/gtest.h>

#include <sstream>

#include "within/diversity_test_support.h"

namespace {

using diversity_test::ready_sample;
using diversity_test::unit_weights;
using population_test::Project;

std::vector<double> values(const std::vector<double>& v) {
  return v;
}

TEST(LocusTable, DnaAmbiguityCodesAreMissing) {
  Project project;
  settings s = unit_weights();
  s.AllowedLevelOfMissingData = 0.5;
  auto sample = ready_sample(project, 0, {{"ACGT", 2}, {"ANGT", 1}, {"TCG?", 1}}, s);
  locus_table_hapl(*sample, nullptr, s);
  EXPECT_EQ(values(sample->locus_gene_copies), (std::vector<double>{4, 3, 4, 3}));
  EXPECT_EQ(values(sample->locus_nb_alleles), (std::vector<double>{2, 1, 1, 1}));
  // Site 1: A 3, T 1: 4 (1 - 10/16) / 3.
  EXPECT_DOUBLE_EQ(sample->locus_exp_het[0], 0.5);
  EXPECT_EQ(sample->locus_exp_het[1], 0.0);
  EXPECT_EQ(values(sample->locus_obs_het), (std::vector<double>{0, 0, 0, 0}));
}

TEST(LocusTable, MicrosatelliteSizesAndGarzaWilliamson) {
  Project project;
  settings s = unit_weights();
  s.AllowedLevelOfMissingData = 1.0;
  auto sample = ready_sample(project, 2, {{"100 ?", 2}, {"104 ?", 1}, {"102 ?", 1}}, s, ' ');
  locus_table_hapl(*sample, nullptr, s);
  EXPECT_EQ(sample->locus_gene_copies[0], 4.0);
  EXPECT_EQ(sample->locus_nb_alleles[0], 3.0);
  EXPECT_EQ(sample->locus_min_size[0], 100.0);
  EXPECT_EQ(sample->locus_max_size[0], 104.0);
  EXPECT_EQ(sample->locus_range[0], 4.0);
  EXPECT_EQ(sample->locus_mean_size[0], 100.0 * 0.5 + 104.0 * 0.25 + 102.0 * 0.25);
  EXPECT_DOUBLE_EQ(sample->locus_GW[0], 3.0 / 5.0);
  // 2 (1 - 6/16) * 4 / 3.
  EXPECT_DOUBLE_EQ(sample->locus_exp_het[0], 4.0 * (1.0 - 6.0 / 16.0) / 3.0);
  // A locus of missing data only.
  EXPECT_EQ(sample->locus_gene_copies[1], 0.0);
  EXPECT_EQ(sample->locus_nb_alleles[1], 0.0);
  EXPECT_EQ(sample->locus_exp_het[1], 0.0);
}

TEST(LocusTable, GenotypesGiveObservedHeterozygosity) {
  Project project;
  Population data = project.genotypes(
      2,
      {{"i1", "100 7", "102 7", 2.0}, {"i2", "100 7", "100 9", 1.0}, {"i3", "? 7", "104 7", 1.0}},
      0);
  data.build_allele_vectors();
  data.sample_index = 0;
  auto sample = make_sample(2, data);
  settings s = unit_weights();
  s.AllowedLevelOfMissingData = 1.0;
  sample->find_polymorphic_sites(s);
  locus_table_geno(*sample, sample->pheno_db, nullptr, s, true, true, false);
  // Locus 1: copies 2*2 + 2 + 1 = 7; individuals with both copies 3, of
  // which 2 heterozygous.
  EXPECT_EQ(sample->locus_gene_copies[0], 7.0);
  EXPECT_DOUBLE_EQ(sample->locus_obs_het[0], 2.0 / 3.0);
  EXPECT_EQ(sample->locus_nb_alleles[0], 3.0);
  // Locus 2: 7 7 7 7 7 9 7 7: one heterozygote of 4 individuals.
  EXPECT_DOUBLE_EQ(sample->locus_obs_het[1], 1.0 / 4.0);
  EXPECT_DOUBLE_EQ(sample->locus_exp_het[1], 8.0 * (1.0 - 50.0 / 64.0) / 7.0);
}

TEST(LocusTable, AlleleFrequenciesAtTheSampleSlot) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 3, {{"x", 3}, {"y", 1}}, s);
  int slots = 2;
  project.alleles.create_pop_freq_vector(slots);
  sample->sample_index = 1;
  locus_table_hapl(*sample, nullptr, s);
  EXPECT_EQ(project.alleles.find_allele(0, "x")->pop_freq, (std::vector<double>{0.0, 0.75}));
  EXPECT_EQ(project.alleles.find_allele(0, "y")->pop_freq, (std::vector<double>{0.0, 0.25}));
}

TEST(LocusTable, SummaryMeansOverAllLoci) {
  Project project;
  settings s = unit_weights();
  // Sites 1 and 3 polymorphic, sites 2 and 4 not.
  auto sample = ready_sample(project, 0, {{"ACGT", 3}, {"TCCT", 1}}, s);
  locus_table_hapl(*sample, nullptr, s);
  // Expected heterozygosities 0.5, 0, 0.5, 0 over all four sites.
  EXPECT_DOUBLE_EQ(sample->mean_exp_het.mean, 0.25);
  EXPECT_DOUBLE_EQ(sample->mean_exp_het.sd, std::sqrt((0.5 / 4 - 0.0625) * 4 / 3));
  EXPECT_DOUBLE_EQ(sample->mean_nb_alleles.mean, 1.5);
}

TEST(LocusTable, OnePolymorphicLocusGivesItsValues) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 0, {{"ACGT", 3}, {"TCGT", 1}}, s);
  locus_table_hapl(*sample, nullptr, s);
  EXPECT_DOUBLE_EQ(sample->mean_exp_het.mean, 0.5);
  EXPECT_EQ(sample->mean_exp_het.sd, 0.0);
  EXPECT_EQ(sample->mean_nb_alleles.mean, 2.0);
}

TEST(LocusTable, PrintedMicrosatelliteTable) {
  Project project;
  settings s = unit_weights();
  auto sample =
      ready_sample(project, 2, {{"100 20 7", 2}, {"104 20 9", 1}, {"102 20 9", 1}}, s, ' ');
  std::ostringstream out;
  locus_table_hapl(*sample, &out, s);
  const std::string rule(69, '-');
  // Locus 1: g 4, 3 alleles, He 5/6, range 4, G-W 3/5. Locus 3: He 2/3, range 2, G-W 2/3.
  const std::string want = "\n\nResults are only shown for polymorphic loci\n" + rule + "\n" +
                           "               gene      Num.      Exp.   Allelic       G-W\n"
                           "Locus#       copies   alleles       Het     range     stat.\n" +
                           rule + "\n" +
                           "1                 4         3   0.83333         4   0.60000\n"
                           "3                 4         2   0.66667         2   0.66667\n" +
                           rule + "\n" +
                           "Mean          4.000     2.500   0.75000     3.000   0.63333\n"
                           "s.d.          0.000     0.707   0.11785     1.414   0.04714\n" +
                           rule + "\n";
  EXPECT_EQ(out.str(), want);
}

TEST(LocusTable, PrintedTableWithoutPolymorphicLocus) {
  Project project;
  settings s = unit_weights();
  auto sample = ready_sample(project, 3, {{"x y", 4}}, s, ' ');
  std::ostringstream out;
  locus_table_geno(*sample, sample->pheno_db, &out, s, false, false, true);
  const std::string rule(49, '-');
  EXPECT_EQ(out.str(), "\n\nResults are only shown for polymorphic loci\n" + rule + "\n" +
                           "               gene      Num.      Obs.      Exp.\n"
                           "Locus#       copies   alleles      Het.       Het\n" +
                           rule + "\n");
}

}  // namespace
