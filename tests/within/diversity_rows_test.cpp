// The rows of the diversity indices in gen_div.sum, nucl_comp.sum,
// mold_div.sum and theta.sum: written through the summary files of a batch,
// read back and split on tabs, fields in the order of the heads, names in
// double quotes, "none" where a value does not apply.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "output/summary_files.h"
#include "support/test_support.h"
#include "within/diversity_test_support.h"

namespace {

using diversity_test::distances;
using diversity_test::Document;
using diversity_test::ready_sample;
using diversity_test::unit_weights;
using population_test::Project;
using testing_support::read_file;
using testing_support::TempDir;
using testing_support::write_file;

using Fields = std::vector<std::string>;

Fields split(const std::string& line) {
  Fields fields;
  std::string::size_type start = 0;
  while (true) {
    const auto tab = line.find('\t', start);
    fields.push_back(line.substr(start, tab - start));
    if (tab == std::string::npos) return fields;
    start = tab + 1;
  }
}

// Summary files switched on in a scratch folder for the life of the object.
class Batch {
 public:
  Batch() {
    write_file(dir_.path() / "glbstreams.txt", dir_.str() +
                                                   "/\n_GENE_DIVERSITY_\n_NUCLEOTIDE_COMPOSITION_\n"
                                                   "_MOLECULAR_DIVERSITY_\n_THETA_\n");
    saved_project_ = project_file_name;
    project_file_name = "lakes.mvp";
    summary_files().read_global_flags(dir_.str() + "/");
    summary_files().initialize(0);
  }
  ~Batch() {
    summary_files().close();
    summary_files().read_global_flags("/nonexistent-folder/");
    project_file_name = saved_project_;
  }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  // The rows written after the head of a file (the head ends with its own
  // line, typed in summary_files_test.cpp).
  std::vector<Fields> rows(const char* file) {
    summary_files().close();
    std::istringstream in(read_file(dir_.path() / file));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    std::vector<Fields> out;
    for (const std::string& line : lines) {
      if (line.rfind("\"lakes.mvp\"\t", 0) == 0) out.push_back(split(line));
    }
    return out;
  }

 private:
  TempDir dir_;
  std::string saved_project_;
};

const diversity_test::Entries kToy = {{"AACCGGTTAC", 2}, {"AACCAGTTA?", 1}, {"AACAGG-TGC", 1}};

void run_both(PopGenetics& sample, settings& s) {
  Document doc;
  SampleTaskContext context(sample, s);
  standard_diversity_task(sample, s, context);
  molecular_diversity_task(sample, s, context);
}

TEST(DiversityRows, DnaSample) {
  Batch batch;
  Project project;
  settings s = unit_weights();
  s.ComputeTheta = 15;
  auto sample = ready_sample(project, 0, kToy, s, 0, "Lake & shore");
  ASSERT_EQ(distances(*sample, 0), 1);
  run_both(*sample, s);
  EXPECT_EQ(batch.rows("gen_div.sum"),
            (std::vector<Fields>{
                {"\"lakes.mvp\"", "\"Lake & shore\"", "4", "3", "10", "9", "4", "0.833333"}}));
  EXPECT_EQ(batch.rows("nucl_comp.sum"),
            (std::vector<Fields>{{"\"lakes.mvp\"", "\"Lake & shore\"", "0.263158", "0.184211",
                                  "0.342105", "0.210526", "1"}}));
  EXPECT_EQ(batch.rows("mold_div.sum"),
            (std::vector<Fields>{{"\"lakes.mvp\"", "\"Lake & shore\"", "1", "1", "1", "5", "2", "1",
                                  "3", "1", "4", "10", "9", "#Diff", " inf", "2", "0.222222"}}));
  EXPECT_EQ(batch.rows("theta.sum"),
            (std::vector<Fields>{{"\"lakes.mvp\"", "\"Lake & shore\"", "4.04203", "(Hom)",
                                  "3.76644", "(k)", "1.63636", "(S)", "2", "(Pi)", ""}}));
}

TEST(DiversityRows, OriginalHaplotypesColumnAndGamma) {
  Batch batch;
  Project project;
  settings s = unit_weights();
  s.InferHaplotypeDefinitionFromDistanceMatrix = 1;
  s.ComputeTheta = 1;
  auto sample = ready_sample(project, 0, kToy, s);
  sample->Nb_orig_haplo = 5;
  static_cast<PopulDNA&>(*sample).GammaAValue = 0.25;
  ASSERT_EQ(distances(*sample, 2), 1);
  run_both(*sample, s);
  const std::vector<Fields> gen = batch.rows("gen_div.sum");
  ASSERT_EQ(gen.size(), 1u);
  EXPECT_EQ(Fields(gen[0].begin() + 2, gen[0].end()),
            (Fields{"4", "3", "5", "10", "9", "4", "0.833333"}));
  const std::vector<Fields> mold = batch.rows("mold_div.sum");
  ASSERT_EQ(mold.size(), 1u);
  ASSERT_EQ(mold[0].size(), 17u);
  EXPECT_EQ(mold[0][13], "K2P");
  EXPECT_EQ(mold[0][14], "0.25");
  EXPECT_EQ(batch.rows("theta.sum"),
            (std::vector<Fields>{{"\"lakes.mvp\"", "\"pop\"", "4.04203", "(Hom)", ""}}));
}

TEST(DiversityRows, MicrosatelliteAndStandardPutNone) {
  Batch batch;
  settings s = unit_weights();
  s.ComputeTheta = 1;
  Project p1;
  auto micro = ready_sample(p1, 2, {{"100 20", 2}, {"104 20", 1}, {"102 22", 1}}, s, ' ', "ms");
  ASSERT_EQ(distances(*micro, 0), 1);
  run_both(*micro, s);
  Project p2;
  auto standard = ready_sample(p2, 3, {{"a", 2}, {"b", 2}}, s, 0, "std");
  ASSERT_EQ(distances(*standard, 0), 1);
  run_both(*standard, s);
  const std::vector<Fields> mold = batch.rows("mold_div.sum");
  ASSERT_EQ(mold.size(), 2u);
  EXPECT_EQ(mold[0],
            (Fields{"\"lakes.mvp\"", "\"ms\"", "none", "none", "none", "5", "none", "none", "none",
                    "none", "none", "none", "2", "#Diff", "none", "1.33333", "0.666667"}));
  EXPECT_EQ(mold[1],
            (Fields{"\"lakes.mvp\"", "\"std\"", "none", "none", "none", "5", "none", "none", "none",
                    "none", "1", "none", "1", "#Diff", "none", "0.666667", "0.666667"}));
  EXPECT_TRUE(batch.rows("nucl_comp.sum").empty());
}

TEST(DiversityRows, RflpAndFrequencyData) {
  Batch batch;
  settings s = unit_weights();
  Project p1;
  auto rflp = ready_sample(p1, 1, {{"0101", 1}, {"0110", 1}, {"1100", 1}}, s, 0, "rf");
  ASSERT_EQ(distances(*rflp, 0), 1);
  run_both(*rflp, s);
  Project p2;
  Population data;
  data.profile.DataType = 4;
  data.allele_db = &p2.alleles;
  data.SampleName = "fr";
  for (int i = 0; i < 2; ++i) {
    HaploDef* d = p2.defs.add(std::make_unique<HaploDef>(my_string("f" + std::to_string(i))));
    data.haplo_list.push_back(PHaploDef{d, 2});
  }
  data.set_sample_size(4);
  data.Nb_haplo = 2;
  auto freq = make_sample(4, data);
  freq->find_polymorphic_sites(s);
  run_both(*freq, s);
  const std::vector<Fields> mold = batch.rows("mold_div.sum");
  ASSERT_EQ(mold.size(), 2u);
  EXPECT_EQ(mold[0], (Fields{"\"lakes.mvp\"", "\"rf\"", "1", "none", "none", "5", "none", "none",
                             "3", "0", "3", "4", "4", "#Diff", " inf", "2", "0.5"}));
  EXPECT_EQ(Fields(mold[1].end() - 4, mold[1].end()), (Fields{"#Diff", "none", "none", "none"}));
  // Gene diversity of two equal haplotypes in four copies: 4/3 * 1/2.
  const std::vector<Fields> gen = batch.rows("gen_div.sum");
  ASSERT_EQ(gen.size(), 2u);
  EXPECT_EQ(gen[1], (Fields{"\"lakes.mvp\"", "\"fr\"", "4", "2", "0", "0", "0", "0.666667"}));
  EXPECT_TRUE(batch.rows("theta.sum").empty());
}

TEST(DiversityRows, UnknownPhaseHasNoGeneDiversity) {
  Batch batch;
  Project project;
  Population data = project.genotypes(3, {{"i1", "x", "y", 2.0}, {"i2", "x", "x", 1.0}}, 0);
  data.build_allele_vectors();
  data.SampleName = "geno";
  auto sample = make_sample(3, data);
  settings s = unit_weights();
  sample->find_polymorphic_sites(s);
  Document doc;
  SampleTaskContext context(*sample, s);
  standard_diversity_task(*sample, s, context);
  const std::vector<Fields> gen = batch.rows("gen_div.sum");
  ASSERT_EQ(gen.size(), 1u);
  EXPECT_EQ(gen[0].back(), "none");
}

}  // namespace
