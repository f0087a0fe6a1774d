// The sample classes: checks of the counts, the class made for each data
// type, allele vectors and pseudo-haplotypes of genotypic data, pooled
// groups, and the classification of loci of non-sequence data.
#include "model/population.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/dictionary_test_support.h"
#include "model/population_test_support.h"

namespace {

using dictionary_test::Report;
using dictionary_test::ReportCapture;
using population_test::Project;

std::vector<std::pair<std::string, int>> entries(
    std::initializer_list<std::pair<std::string, int>> l) {
  return l;
}

// --- check_data ----------------------------------------------------------------

struct CheckCase {
  const char* name;
  unsigned char type;
  std::vector<std::pair<std::string, int>> entries;
  double declared_size;  // before the check
  int declared_haplo;
  int genotypic;
  int phase_known;
  int result;
  double size_after;
  int haplo_after;
  std::vector<Report> reports;
};

class CheckData : public ::testing::TestWithParam<CheckCase> {};

TEST_P(CheckData, CorrectsCountsAndReports) {
  const CheckCase& c = GetParam();
  Project project;
  Population data = project.sample(c.type, c.entries);
  data.sample_size = c.declared_size;
  data.Nb_haplo = c.declared_haplo;
  data.profile.GenotypicData = c.genotypic;
  data.profile.GameticPhase = c.phase_known;
  auto sample = make_sample(c.type, data);
  ReportCapture capture;
  EXPECT_EQ(sample->check_data(), c.result);
  EXPECT_EQ(sample->sample_size, c.size_after);
  EXPECT_EQ(sample->Nb_haplo, c.haplo_after);
  EXPECT_EQ(capture.all(), c.reports);
}

constexpr unsigned char E = report_kind::ERROR;

INSTANTIATE_TEST_SUITE_P(
    Cases, CheckData,
    ::testing::Values(CheckCase{"empty_passes", 0, {}, 0.0, 0, 0, 1, 1, 0.0, 0, {}},
                      CheckCase{"size_taken_from_counts",
                                3,
                                entries({{"a", 3}, {"b", 4}}),
                                0.0,
                                0,
                                0,
                                1,
                                1,
                                7.0,
                                2,
                                {}},
                      CheckCase{"declared_size_corrected",
                                3,
                                entries({{"a", 3}, {"b", 4}}),
                                10.0,
                                2,
                                0,
                                1,
                                0,
                                7.0,
                                2,
                                {{E, "PopulStandard::check_data()", 110}}},
                      CheckCase{"known_phase_haplo_count_quiet",
                                2,
                                entries({{"12", 3}, {"14", 4}}),
                                7.0,
                                5,
                                1,
                                1,
                                1,
                                7.0,
                                2,
                                {}},
                      CheckCase{"haplotypic_haplo_count_error",
                                2,
                                entries({{"12", 3}, {"14", 4}}),
                                7.0,
                                5,
                                0,
                                1,
                                0,
                                7.0,
                                5,
                                {{E, "PopulMicrosat::check_data()", 111}}},
                      CheckCase{"dna_lengths_differ",
                                0,
                                entries({{"ACGT", 1}, {"ACG", 1}}),
                                2.0,
                                2,
                                0,
                                1,
                                0,
                                2.0,
                                2,
                                {{E, "PopulDNA::check_data()", 161}}},
                      CheckCase{"rflp_lengths_differ",
                                1,
                                entries({{"0101", 1}, {"01011", 1}}),
                                2.0,
                                2,
                                0,
                                1,
                                0,
                                2.0,
                                2,
                                {{E, "PopulRFLP::check_data()", 139}}},
                      CheckCase{"dna_both_faults",
                                0,
                                entries({{"ACGT", 1}, {"AC", 2}}),
                                5.0,
                                2,
                                0,
                                1,
                                0,
                                3.0,
                                2,
                                {{E, "PopulDNA::check_data()", 110},
                                 {E, "PopulDNA::check_data()", 161}}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PopGenetics, NumberOfLociStaysZeroWithoutHaplotypesAndComesFromTheFirstDefinition) {
  Project project;
  auto empty = make_sample(3, Population{});
  EXPECT_EQ(empty->get_nb_loci(), 0);
  auto sample = make_sample(3, project.sample(3, {{"a b c", 1}, {"a b", 1}}, ' '));
  EXPECT_EQ(sample->get_nb_loci(), 3);
}

// --- Classes by data type --------------------------------------------------------

TEST(MakeSample, EachDataTypeGetsItsClassAndFourOrAboveIsStandard) {
  const std::vector<std::pair<unsigned char, SampleKind>> table = {
      {0, SampleKind::dna},       {1, SampleKind::rflp},     {2, SampleKind::microsat},
      {3, SampleKind::standard},  {4, SampleKind::standard}, {5, SampleKind::standard},
      {255, SampleKind::standard}};
  for (const auto& [type, kind] : table) {
    Population data;
    data.SampleName = "pop";
    data.sample_size = 12.0;
    auto sample = make_sample(type, data);
    EXPECT_EQ(sample->kind(), kind) << int(type);
    EXPECT_EQ(sample->SampleName, "pop");
    EXPECT_EQ(sample->sample_size, 12.0);
    EXPECT_EQ(sample->gene_diversity, -1.0);
  }
  EXPECT_NE(dynamic_cast<PopulDNA*>(make_sample(0, Population{}).get()), nullptr);
  EXPECT_NE(dynamic_cast<PopulStandard*>(make_sample(4, Population{}).get()), nullptr);
}

TEST(Population, CopyMovesGenotypesToItsOwnHaplotypeTable) {
  Project project;
  Population data = project.genotypes(2, {{"i1", "12 14", "16 14", 1.0}}, 0);
  data.build_allele_vectors();
  int recessive = 0;
  data.pheno_db[0]->build_genotypes(data.pop_haplo_db, project.alleles, recessive, 0);
  ASSERT_EQ(data.pop_haplo_db.size(), 2);
  const Population copy(data);
  const TGenotype& g = copy.pheno_db[0]->genotypes.at(0);
  EXPECT_EQ(g.hapl_a, copy.pop_haplo_db[0]);
  EXPECT_EQ(g.hapl_b, copy.pop_haplo_db[1]);
}

// --- Allele vectors and pseudo-haplotypes ---------------------------------------

TEST(Population, AlleleVectorsOfPhenotypesCountEveryGeneCopy) {
  Project project;
  Population data =
      project.genotypes(2, {{"ind1", "12 14", "12 16", 2.0}, {"ind2", "12 14", "12 14", 1.0}}, 0);
  ASSERT_EQ(data.build_allele_vectors(), 1);
  const TPhenotype& first = *data.pheno_db[0];
  ASSERT_EQ(first.hapl1->nb_loci(), 2);
  EXPECT_EQ(first.hapl1->allele(1)->allele_name, "14");
  EXPECT_EQ(first.hapl2->allele(1)->allele_name, "16");
  EXPECT_EQ(first.hapl1->allele(0), first.hapl2->allele(0));
  EXPECT_EQ(project.alleles.find_allele(0, "12")->count, 6.0);
  EXPECT_EQ(project.alleles.find_allele(1, "14")->count, 4.0);
  EXPECT_EQ(project.alleles.find_allele(1, "16")->count, 2.0);
}

TEST(Population, RecessiveAlleleStandsFirstAtEachLocus) {
  Project project;
  Population data = project.genotypes(3, {{"ind1", "a b", "null b", 1.0}}, 0);
  data.profile.RecessiveData = 1;
  data.profile.RecessiveAllele = "null";
  ReportCapture capture;
  data.build_allele_vectors();
  EXPECT_EQ(project.alleles.locus(0)->allele(0)->allele_name, "null");
  EXPECT_EQ(project.alleles.locus(1)->allele(0)->allele_name, "null");
  EXPECT_TRUE(capture.all().empty());
}

TEST(Population, PseudoHaplotypesAreTheDistinctGametesWithTheirCounts) {
  Project project;
  Population data =
      project.genotypes(2, {{"ind1", "12 14", "12 16", 2.0}, {"ind2", "12 14", "12 14", 1.0}}, 0);
  data.build_allele_vectors();
  EXPECT_EQ(data.make_pseudo_haplotypes(project.defs), 2);
  ASSERT_EQ(data.haplo_list.size(), 2u);
  EXPECT_EQ(data.haplo_list[0].hapl->hapl_content, "12 14");
  EXPECT_EQ(data.haplo_list[0].hapl->hapl_id, "ind1_1");
  EXPECT_EQ(data.haplo_list[0].freq, 4);
  EXPECT_EQ(data.haplo_list[1].hapl->hapl_id, "ind1_2");
  EXPECT_EQ(data.haplo_list[1].freq, 2);
  EXPECT_EQ(data.haplo_list[1].hapl->alleles, data.pheno_db[0]->hapl2->alleles);
  EXPECT_EQ(data.haplo_list[0].hapl->count, 4);
  EXPECT_EQ(data.Nb_haplo, 2);
  EXPECT_EQ(data.data_complete, 1);
  EXPECT_EQ(data.sample_size, 6.0);

  // A second sample reuses the definitions by their text; a new text whose
  // label is taken gets a further number.
  Population other = project.genotypes(2, {{"ind1", "12 14", "10 14", 1.0}}, 0);
  other.build_allele_vectors();
  other.make_pseudo_haplotypes(project.defs);
  EXPECT_EQ(other.haplo_list[0].hapl, data.haplo_list[0].hapl);
  EXPECT_EQ(other.haplo_list[1].hapl->hapl_id, "ind1_2_1");
  EXPECT_EQ(project.defs.size(), 3);
}

TEST(Population, DnaGametesMakeSequencesWithoutSeparator) {
  Project project;
  Population data = project.genotypes(0, {{"x", "ACGT", "ACTT", 1.0}}, 1, 0);
  data.build_allele_vectors();
  data.make_pseudo_haplotypes(project.defs);
  ASSERT_EQ(data.haplo_list.size(), 2u);
  EXPECT_EQ(data.haplo_list[1].hapl->hapl_content, "ACTT");
  EXPECT_EQ(data.haplo_list[1].hapl->nb_loci_used, 4);
}

// --- Pooled groups ----------------------------------------------------------------

TEST(GroupSample, HaplotypeCountsAddUpPerDefinitionInOrderOfFirstAppearance) {
  Project project;
  Population a = project.sample(0, {{"ACGT", 3}, {"ACGA", 1}});
  Population b = project.sample(0, {{"TCGA", 2}, {"ACGT", 5}});
  a.SampleName = "a";
  b.SampleName = "b";
  const std::vector<const Population*> members = {&a, &b};
  auto group = make_group_sample(0, members, "Group1", 0, project.defs);
  EXPECT_EQ(group->kind(), SampleKind::dna);
  EXPECT_EQ(group->SampleName, "Group1");
  EXPECT_EQ(group->sample_index, 0);
  EXPECT_EQ(group->is_sample, 0);
  EXPECT_EQ(group->sample_size, 11.0);
  ASSERT_EQ(group->haplo_list.size(), 3u);
  EXPECT_EQ(group->haplo_list[0].hapl->hapl_content, "ACGT");
  EXPECT_EQ(group->haplo_list[0].freq, 8);
  EXPECT_EQ(group->haplo_list[1].hapl->hapl_content, "ACGA");
  EXPECT_EQ(group->haplo_list[2].hapl->hapl_content, "TCGA");
  EXPECT_EQ(group->haplo_list[2].freq, 2);
  EXPECT_EQ(group->Nb_haplo, 3);
  ReportCapture capture;
  EXPECT_EQ(group->check_data(), 1);
  // The members are left as they were.
  EXPECT_EQ(a.haplo_list[0].freq, 3);
}

TEST(GroupSample, GenotypicMembersPoolTheirPhenotypesAndGetPseudoHaplotypes) {
  Project project;
  Population a = project.genotypes(2, {{"i1", "12 14", "12 16", 1.0}}, 0);
  Population b = project.genotypes(2, {{"i2", "12 14", "10 14", 2.0}}, 0);
  a.build_allele_vectors();
  b.build_allele_vectors();
  const std::vector<const Population*> members = {&a, &b};
  auto group = make_group_sample(2, members, "Group2", 1, project.defs);
  EXPECT_EQ(group->kind(), SampleKind::microsat);
  EXPECT_EQ(group->pheno_db.size(), 2);
  EXPECT_EQ(group->pheno_db[1]->freq, 2.0);
  EXPECT_EQ(group->sample_size, 6.0);
  EXPECT_EQ(group->data_complete, 1);
  ASSERT_EQ(group->haplo_list.size(), 3u);
  EXPECT_EQ(group->haplo_list[0].freq, 3);  // "12 14": 1 + 2
  EXPECT_EQ(group->haplo_list[2].hapl->hapl_content, "10 14");
}

// --- Loci of microsatellite, standard and unphased data --------------------------

TEST(PopGenetics, HaplotypeLociAreUsableUpToTheAllowedLevelAndPolymorphicWithTwoAlleles) {
  Project project;
  // 20 copies. Locus 0: one missing copy (0.05, usable at level 0.05);
  // locus 1: two missing (0.1, unusable, though polymorphic); locus 2:
  // monomorphic; locus 3: two alleles.
  auto sample = make_sample(
      3, project.sample(3, {{"a x m p", 17}, {"? ? m q", 1}, {"a ? m p", 1}, {"a y m q", 1}}, ' '));
  settings s;
  s.AllowedLevelOfMissingData = 0.05;
  ASSERT_EQ(sample->find_polymorphic_sites(s), 1);
  EXPECT_EQ(sample->usable_locus, (std::vector<int>{1, 0, 1, 1}));
  EXPECT_EQ(sample->poly_flags, (std::vector<int>{0, 0, 0, 1}));
  EXPECT_DOUBLE_EQ(sample->missing_freq[0], 0.05);
  EXPECT_DOUBLE_EQ(sample->missing_freq[1], 0.1);
  EXPECT_EQ(sample->nb_usable_loci, 3);
  EXPECT_EQ(sample->nb_poly_loci, 1);
}

TEST(PopGenetics, UnphasedLociCountMissingGeneCopiesOfPhenotypes) {
  Project project;
  Population data = project.genotypes(
      2,
      {{"i1", "12 ?", "14 20", 1.0}, {"i2", "12 20", "12 20", 3.0}, {"i3", "? 20", "12 20", 1.0}},
      0);
  data.build_allele_vectors();
  auto sample = make_sample(2, data);
  settings s;
  s.AllowedLevelOfMissingData = 0.1;  // 10 gene copies: one missing copy is allowed
  sample->find_polymorphic_sites(s);
  EXPECT_EQ(sample->usable_locus, (std::vector<int>{1, 1}));
  EXPECT_EQ(sample->poly_flags, (std::vector<int>{1, 0}));
  EXPECT_DOUBLE_EQ(sample->missing_freq[0], 0.1);
  s.AllowedLevelOfMissingData = 0.05;
  sample->find_polymorphic_sites(s);
  EXPECT_EQ(sample->usable_locus, (std::vector<int>{0, 0}));
  EXPECT_EQ(sample->nb_poly_loci, 0);
}

// --- Expansion for permutations ----------------------------------------------------

TEST(Population, RecessiveCopiesShowTheDominantAlleleAndPhenotypesExpand) {
  Project project;
  Population data = project.genotypes(3, {{"i1", "null b", "a null", 3.0}}, 0);
  data.profile.RecessiveData = 1;
  data.profile.RecessiveAllele = "null";
  data.build_allele_vectors();
  data.make_all_blanks();
  const TPhenotype& p = *data.pheno_db[0];
  EXPECT_EQ(p.hapl1->allele(0)->allele_name, "a");
  EXPECT_EQ(p.hapl2->allele(0)->allele_name, "a");
  EXPECT_EQ(p.hapl1->allele(1)->allele_name, "b");
  EXPECT_EQ(p.hapl2->allele(1)->allele_name, "b");
  EXPECT_EQ(data.expand_phenotypes(), 1);
  EXPECT_EQ(data.pheno_db.size(), 3);
}

TEST(Population, BlankAllelesBecomeTheMissingCode) {
  Project project;
  project.alleles.enter_allele(0, "A", 1.0);
  TAllele* blank = project.alleles.enter_allele(1, " ", 1.0);
  Population data;
  data.allele_db = &project.alleles;
  data.convert_blanks_to_missing();
  EXPECT_EQ(blank->allele_name, "?");
  EXPECT_EQ(project.alleles.find_allele(1, "?"), blank);
  EXPECT_EQ(project.alleles.find_allele(0, "A")->allele_name, "A");
}

}  // namespace
