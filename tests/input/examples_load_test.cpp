// Every example project loads through the line-based reader, and what it
// holds is what its file says: samples, sizes, haplotypes, phenotypes,
// definitions, structure and matrix.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "input/project_data_support.h"

namespace {

using input_testing::LoadedProject;

std::string example(const std::string& name) {
  return std::string(MORVCORE_SOURCE_DIR) + "/examples/" + name;
}

struct SampleFacts {
  const char* name;
  double size;  // gene copies
  int entries;  // haplotypes, or phenotypes of genotypic data
};

struct ExampleCase {
  const char* file;
  unsigned char data_type;
  int genotypic;
  int definitions;  // of the project's Haplo_DB
  std::vector<SampleFacts> samples;
};

TEST(ExampleProjects, LoadWithTheirCounts) {
  const ExampleCase cases[] = {
      {"dna_groups.mvp",
       data_type_code::DNA,
       0,
       14,
       {{"Lake_Arvi", 24, 7},
        {"Lake_Brenna", 20, 7},
        {"Lake_Cora", 22, 6},
        {"Lake_Dunsel", 26, 8}}},
      {"frequency.mvp",
       data_type_code::FREQUENCY,
       0,
       7,
       {{"Island_1", 30, 4}, {"Island_2", 28, 5}, {"Island_3", 32, 4}}},
      {"microsat_genotypic.mvp",
       data_type_code::MICROSAT,
       1,
       0,
       {{"Pop_North", 50, 25}, {"Pop_Central", 48, 24}, {"Pop_South", 52, 26}}},
      {"rflp.mvp",
       data_type_code::RFLP,
       0,
       10,
       {{"Coast", 25, 6}, {"Plateau", 30, 8}, {"Valley", 20, 6}}},
      {"standard.mvp",
       data_type_code::STANDARD,
       1,
       0,
       {{"Stand_Hill", 36, 18}, {"Stand_River", 32, 16}, {"Stand_Bog", 34, 17}}},
  };
  for (const ExampleCase& c : cases) {
    LoadedProject p;
    p.read_file(example(c.file));
    ASSERT_EQ(p.result, 1) << c.file << "\n" << p.log;
    EXPECT_TRUE(p.codes.empty()) << c.file << "\n" << p.log;
    EXPECT_EQ(p.profile.DataType, c.data_type) << c.file;
    EXPECT_EQ(p.profile.NbSamples, static_cast<int>(c.samples.size())) << c.file;
    EXPECT_EQ(p.haplo_db.size(), c.definitions) << c.file;
    ASSERT_EQ(p.samples->size(), static_cast<int>(c.samples.size())) << c.file;
    for (int i = 0; i < p.samples->size(); ++i) {
      const PopGenetics& s = p.sample(i);
      const SampleFacts& f = c.samples[static_cast<std::size_t>(i)];
      EXPECT_EQ(s.SampleName, f.name) << c.file;
      EXPECT_EQ(s.sample_size, f.size) << f.name;
      EXPECT_EQ(s.genotypic(), c.genotypic != 0) << f.name;
      const int entries = c.genotypic ? s.pheno_db.size() : static_cast<int>(s.haplo_list.size());
      EXPECT_EQ(entries, f.entries) << f.name;
      EXPECT_EQ(s.Nb_haplo, c.genotypic ? 2 * f.entries : f.entries) << f.name;
      EXPECT_EQ(s.kind(), sample_kind_of(c.data_type)) << f.name;
    }
    EXPECT_EQ(p.samples->verify_data(), 1) << c.file;
  }
}

TEST(ExampleProjects, DnaDefinitionsAndStructure) {
  LoadedProject p;
  p.read_file(example("dna_groups.mvp"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.haplo_db.HaplListName, "control_region_list");
  const HaploDef* cr11 = p.haplo_db.find("CR11");
  ASSERT_NE(cr11, nullptr);
  EXPECT_EQ(cr11->hapl_content.length(), 80);
  EXPECT_EQ(cr11->hapl_content[37], '-');
  EXPECT_EQ(p.haplo_db.find("CR07")->hapl_content.str().substr(0, 4), "???A");
  // CR01: 9 + 7 + 2 copies over the samples; CR16 only in Lake_Dunsel.
  EXPECT_EQ(p.haplo_db.find("CR01")->count, 18);
  EXPECT_EQ(p.haplo_db.find("CR16")->count, 2);
  const PHaploDef& first = p.sample(0).haplo_list.front();
  EXPECT_EQ(first.hapl, p.haplo_db.find("CR01"));
  EXPECT_EQ(first.freq, 9);
  EXPECT_EQ(p.structure->StructureName, "Two drainages");
  EXPECT_EQ(p.structure->NbGroups, 2);
  ASSERT_EQ(p.structure->nb_groups(), 2);
  EXPECT_EQ(p.structure->groups[0].members, (std::vector<int>{0, 1}));
  EXPECT_EQ(p.structure->groups[1].members, (std::vector<int>{2, 3}));
}

TEST(ExampleProjects, FrequencyMatrixWithLabelsInColumn) {
  LoadedProject p;
  p.read_file(example("frequency.mvp"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.dist_mat.name(), "mitotype_differences");
  ASSERT_EQ(p.dist_mat.matrix_size(), 7);
  ASSERT_EQ(p.dist_mat.dim(), 7);
  EXPECT_EQ(p.readers.labels_in_column(), 1);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(p.dist_mat.label(i), "T" + std::to_string(i + 1));
  EXPECT_EQ(p.dist_mat(6, 5), 6.0);
  EXPECT_EQ(p.dist_mat(2, 6), 1.0);
  EXPECT_EQ(p.dist_mat(4, 4), 0.0);
  // FREQUENCY data: definitions by label alone.
  EXPECT_TRUE(p.haplo_db.find("T5")->hapl_content.is_empty());
  EXPECT_EQ(p.haplo_db.find("T1")->count, 24);
}

TEST(ExampleProjects, GenotypesKeepBothGametes) {
  LoadedProject p;
  p.read_file(example("microsat_genotypic.mvp"));
  ASSERT_EQ(p.result, 1) << p.log;
  const TPhenotype& n01 = *p.sample(0).pheno_db[0];
  EXPECT_EQ(n01.pheno_name, "N01");
  EXPECT_EQ(n01.freq, 1.0);
  EXPECT_EQ(n01.line1, "150 205 108 177 258 118");
  EXPECT_EQ(n01.line2, "152 203 112 175 262 118");
  const TPhenotype& n07 = *p.sample(0).pheno_db[6];
  EXPECT_EQ(n07.line1, "154 213 ? 175 256 122");

  LoadedProject standard;
  standard.read_file(example("standard.mvp"));
  ASSERT_EQ(standard.result, 1) << standard.log;
  EXPECT_EQ(standard.sample(0).pheno_db[0]->line1, "F a 85 E2");
  EXPECT_EQ(standard.sample(0).pheno_db[0]->line2, "F b 100 E2");
}

TEST(ExampleProjects, RflpDefinedAtFirstUse) {
  LoadedProject p;
  p.read_file(example("rflp.mvp"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.haplo_db.find("M10")->hapl_content, "1001001110000111????");
  // Plateau names M01 by its id; the definition is the one of Coast.
  EXPECT_EQ(p.sample(1).haplo_list[0].hapl, p.sample(0).haplo_list[0].hapl);
  EXPECT_EQ(p.haplo_db.find("M01")->hapl_content, "11010011101001110101");
}

}  // namespace
