// The dispatch of the within-sample analyses: the fixed order of the steps,
// the methods and scales of the distance matrices, the sentences of tasks
// that the data do not allow, the log of analyses not in this build, the
// expansion of step 13, stop requests, and the walk over the samples.
#include "within/sample_tasks.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "model/dictionary_test_support.h"
#include "model/population_test_support.h"
#include "output/result_document.h"

namespace {

using dictionary_test::ReportCapture;
using population_test::Project;

const std::string rule(69, '=');

std::vector<std::string>& calls() {
  static std::vector<std::string> list;
  return list;
}

// A fake analysis that records its name in the call list and the document.
#define FAKE(label)                                    \
  SampleAnalysisEntry {                                \
    +[](PopGenetics&, settings&, SampleTaskContext&) { \
      calls().push_back(label);                        \
      result_document().stream() << "<" label ">";     \
    },                                                 \
        nullptr                                        \
  }

int fake_distances(PopGenetics& sample, std::ostream*, int*, int per_site) {
  std::string call =
      "distance " + std::to_string(sample.dist_method) + " " + std::to_string(per_site);
  if (const auto* dna = dynamic_cast<const PopulDNA*>(&sample)) {
    call += " " + std::to_string(dna->GammaAValue).substr(0, 3);
  }
  calls().push_back(call);
  return 1;
}

void install_fakes() {
  SampleAnalyses& a = sample_analyses();
  a.standard_indices = FAKE("standard");
  a.molecular_diversity = FAKE("molecular");
  a.mismatch = FAKE("mismatch");
  a.phased_haplotype_freqs = FAKE("phased");
  a.gibbs_phase = FAKE("gibbs");
  a.em_haplotype_freqs = FAKE("em");
  a.ld_exact = FAKE("ld exact");
  a.ld_likelihood_ratio = FAKE("ld ratio");
  a.hardy_weinberg = FAKE("hw");
  a.tajima = FAKE("tajima");
  a.fu_fs = FAKE("fu");
  a.ewens_watterson = FAKE("ewens");
  a.chakraborty = FAKE("chakraborty");
  a.distance_matrix = &fake_distances;
}

constexpr int kAllSampleTasks =
    0x1 | 0x2 | 0x4 | 0x8 | 0x10 | 0x20 | 0x40 | 0x80 | 0x100 | 0x800 | 0x4000;

class SampleTasks : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_ = sample_analyses();
    sample_analyses() = SampleAnalyses{};
    calls().clear();
    result_document().use_stream(doc_, false);
    result_document().set_print_sections(true);
  }
  void TearDown() override {
    result_document().close();
    sample_analyses() = saved_;
  }

  // The document so far, without the end that close() will add.
  std::string document() const { return doc_.str(); }
  static std::string banner(int index, const std::string& name, const char* cls = "samp") {
    const std::string anchor =
        result_document().anchor_name("_" + std::string(cls) + std::to_string(index));
    return "<A NAME=\"" + anchor + "\"></A>\n\n" + rule + "\n== Sample : \t" + name + "\n" + rule +
           "\n";
  }
  static std::string title(const std::string& text, const std::string& name) {
    return "\n" + rule + "\n== " + text + " : (" + name + ")\n" + rule + "\n";
  }

  // A DNA sample of known haplotypes.
  std::unique_ptr<PopGenetics> dna_sample() {
    Population data = project_.sample(0, {{"ACGT", 3}, {"ACGA", 2}, {"TCGA", 2}});
    data.SampleName = "pop";
    data.sample_index = 0;
    return make_sample(0, data);
  }
  // A genotypic sample of unknown phase, two individuals.
  std::unique_ptr<PopGenetics> unphased_sample(unsigned char type = 0) {
    Population data =
        project_.genotypes(type, {{"i1", "ACGT", "ACTT", 2.0}, {"i2", "ACGT", "ACGT", 1.0}}, 0, 0);
    data.build_allele_vectors();
    data.SampleName = "geno";
    data.sample_index = 1;
    return make_sample(type, data);
  }

  Project project_;
  settings s_;
  std::ostringstream doc_;

 private:
  SampleAnalyses saved_;
};

TEST_F(SampleTasks, StepsRunInTheirFixedOrderWithTheirDistanceMatrices) {
  install_fakes();
  auto sample = dna_sample();
  s_.TaskNumber = kAllSampleTasks;
  s_.DistanceMethod = 2;
  s_.GammaAValue = 0.5;
  s_.MismatchDistanceMethod = 3;
  s_.MismatchGammaAValue = 0.25;
  s_.DistanceMethodAMOVA = 1;
  s_.GammaAValueAMOVA = 0.75;
  ReportCapture capture;
  EXPECT_EQ(test_methods(*sample, s_), 1);
  EXPECT_EQ(calls(),
            (std::vector<std::string>{"standard", "distance 2 0 0.5", "molecular",
                                      "distance 3 1 0.2", "mismatch", "phased", "ld exact", "hw",
                                      "distance 1 0 0.7", "tajima", "fu", "ewens", "chakraborty"}));
  const std::string name = "pop";
  EXPECT_EQ(document(), banner(0, name) + title("Standard diversity indices", name) + "<standard>" +
                            title("Molecular diversity indices", name) + "<molecular>" +
                            title("Mismatch distribution", name) + "<mismatch>" +
                            title("Haplotypes frequency estimation", name) + "<phased>" +
                            title("Pairwise linkage disequilibrium", name) + "<ld exact>" +
                            title("Hardy-Weinberg equilibrium", name) + "<hw>" +
                            title("Tajima's test of selective neutrality", name) + "<tajima>" +
                            title("Fu's Fs test of selective neutrality", name) + "<fu>" +
                            title("Ewens-Watterson tests of selective neutrality", name) +
                            "<ewens>" + title("Chakraborty's test of selective neutrality", name) +
                            "<chakraborty>");
  EXPECT_TRUE(capture.all().empty());
}

TEST_F(SampleTasks, WeightsOfTheSettingsReachTheSampleBeforeItsSitesAreClassified) {
  auto sample = dna_sample();
  s_.TaskNumber = 0x1;
  s_.TransitionWeight = 0.0;
  s_.TranversionWeight = 1.0;
  test_methods(*sample, s_);
  const auto& dna = dynamic_cast<const PopulDNA&>(*sample);
  EXPECT_EQ(dna.TransitionWeight, 0.0);
  EXPECT_EQ(dna.counts.transitions, 0);
  EXPECT_EQ(dna.counts.transversions, 2);  // A-T at sites 0 and 3
}

TEST_F(SampleTasks, UnknownPhaseTakesTheLikelihoodRatioTestAndTheEstimationChain) {
  install_fakes();
  auto sample = unphased_sample();
  s_.TaskNumber = 0x8 | 0x10;
  s_.GibbsInferGamPhase = 1;
  s_.ComputeAllAllelesEM = 1;
  test_methods(*sample, s_);
  EXPECT_EQ(calls(), (std::vector<std::string>{"gibbs", "em", "ld ratio"}));
  calls().clear();
  s_.GibbsInferGamPhase = 0;
  s_.ComputeAllAllelesEM = 0;
  s_.TaskNumber = 0x8;
  test_methods(*sample, s_);
  EXPECT_TRUE(calls().empty());
}

TEST_F(SampleTasks, UnknownPhaseRefusesMismatchAndTheFourNeutralityTests) {
  install_fakes();
  auto sample = unphased_sample();
  sample->fu_Fs = 5.0;
  s_.TaskNumber = 0x4 | 0x40 | 0x80 | 0x100 | 0x4000;
  test_methods(*sample, s_);
  EXPECT_TRUE(calls().empty());
  const char* tail =
      " cannot be computed \nin case of genotypic data with unknown gametic phase\n\n"
      "We hope to change it in a future release...\n";
  EXPECT_EQ(document(), banner(1, "geno") + "Mismatch distribution" + tail + "Tajima's test" +
                            tail + "Fu's Fs test" + tail + "Ewens-Watterson test" + tail +
                            "Chakraborty's test" + tail);
  EXPECT_EQ(sample->fu_P, -1.0);
  EXPECT_EQ(sample->fu_Fs, 0.0);
}

TEST_F(SampleTasks, UnknownPhaseClearsFuResultsEvenWhenTheTestIsNotAsked) {
  auto sample = unphased_sample();
  sample->fu_Fs = 5.0;
  sample->fu_P = 0.3;
  s_.TaskNumber = 0x20;
  test_methods(*sample, s_);
  EXPECT_EQ(sample->fu_P, -1.0);
  EXPECT_EQ(sample->fu_Fs, 0.0);
}

struct RefusalCase {
  const char* name;
  unsigned char type;
  int tasks;
  int recessive;
  std::string section;  // empty: no section at all
  std::string text;
};

class Refusals : public SampleTasks, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(Refusals, DataTypesPrintTheirSentenceAndTheAnalysisIsNotCalled) {
  const RefusalCase& c = GetParam();
  install_fakes();
  Population data = project_.sample(c.type, {{"1 2", 4}, {"1 3", 3}}, ' ');
  data.SampleName = "s";
  auto sample = make_sample(c.type, data);
  s_.TaskNumber = c.tasks;
  s_.RecessiveAllelesEM = c.recessive;
  test_methods(*sample, s_);
  EXPECT_TRUE(calls().empty());
  const std::string expected = c.section.empty() ? "" : title(c.section, "s") + c.text;
  EXPECT_EQ(document(), banner(-1, "s") + expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Refusals,
    ::testing::Values(
        RefusalCase{"tajima_microsat", 2, 0x40, 0, "Tajima's test of selective neutrality",
                    "\n\n Tajima's test is not possible for Microsatellite data\n\n\n"},
        RefusalCase{"tajima_standard", 3, 0x40, 0, "Tajima's test of selective neutrality",
                    "\n\nTajima's test is not possible for standard data type\n\n"},
        RefusalCase{"fu_microsat", 2, 0x4000, 0, "Fu's Fs test of selective neutrality",
                    "\n\n Fu's Fs test is not possible for Microsatellite data\n\n\n"},
        RefusalCase{"fu_frequency", 4, 0x4000, 0, "Fu's Fs test of selective neutrality",
                    "\n Fu's Fs test is not possible for standard data type\n\n"},
        RefusalCase{"mismatch_frequency", 4, 0x4, 0, "Mismatch distribution",
                    "Mismatch distribution cannot be computed \nin case of FREQUENCY data type."},
        RefusalCase{"standard_indices_recessive", 3, 0x1, 1, "Standard diversity indices",
                    "Most standard diversity indices cannot be computed \nfor recessive data\n\n"
                    "No. of gene copies in sample       : 7\n"},
        RefusalCase{"standard_indices_recessive_microsat", 2, 0x1, 1, "", ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SampleTasks, AnalysesNotInThisBuildSaySoInTheLogAndNothingInTheDocument) {
  auto sample = dna_sample();
  s_.TaskNumber = 0x1 | 0x2 | 0x800 | 0x40;
  ReportCapture capture;
  EXPECT_EQ(test_methods(*sample, s_), 1);
  EXPECT_EQ(document(), banner(0, "pop"));
  EXPECT_EQ(capture.log_text(),
            "\tThe computation of standard diversity indices is not available in this build\n"
            "\tThe computation of molecular diversity indices is not available in this build\n"
            "\tThe computation of distance matrices is not available in this build\n"
            "\tTajima's test of selective neutrality is not available in this build\n");
}

TEST_F(SampleTasks, NoBannerWithoutASampleTaskOrWithoutSections) {
  auto sample = dna_sample();
  s_.TaskNumber = 0x800 | 0x200;
  test_methods(*sample, s_);
  EXPECT_EQ(document(), "");
  install_fakes();
  result_document().set_print_sections(false);
  s_.TaskNumber = 0x40;
  test_methods(*sample, s_);
  EXPECT_EQ(calls(), (std::vector<std::string>{"tajima"}));
  EXPECT_EQ(document(), "<tajima>");
}

TEST_F(SampleTasks, ConventionalMatrixForStructureAnalyses) {
  install_fakes();
  auto sample = dna_sample();
  s_.TaskNumber = 0x800;
  s_.ComputeConventionalFST = 1;
  test_methods(*sample, s_);
  EXPECT_TRUE(calls().empty());
  ASSERT_TRUE(sample->dist_mat);
  EXPECT_TRUE(sample->dist_mat->is_conventional());
}

TEST_F(SampleTasks, ChecksRunOncePerDispatchWhateverTheNumberOfSteps) {
  install_fakes();
  auto sample = dna_sample();
  sample->sample_size = 9.0;  // the counts add up to 7
  s_.TaskNumber = 0x1 | 0x2 | 0x10 | 0x20;
  ReportCapture capture;
  test_methods(*sample, s_);
  EXPECT_EQ(capture.count(110), 1);
  EXPECT_EQ(sample->sample_size, 7.0);
  EXPECT_EQ(sample->nb_usable_loci, 4);
}

TEST_F(SampleTasks, PhenotypesExpandOnlyWhenTaskNumberIsExactly4096) {
  for (const int tasks : {0x1000, 0x1000 | 0x1}) {
    auto sample = unphased_sample();
    s_.TaskNumber = tasks;
    test_methods(*sample, s_);
    EXPECT_EQ(sample->pheno_db.size(), tasks == 0x1000 ? 3 : 2) << tasks;
  }
}

TEST_F(SampleTasks, RecessiveDataShowTheirDominantAllelesBeforeTheExpansion) {
  Population data = project_.genotypes(3, {{"i", "null b", "a b", 2.0}}, 0);
  data.profile.RecessiveData = 1;
  data.profile.RecessiveAllele = "null";
  data.build_allele_vectors();
  auto sample = make_sample(3, data);
  s_.TaskNumber = 0x1000;
  s_.RecessiveAllelesEM = 1;
  test_methods(*sample, s_);
  ASSERT_EQ(sample->pheno_db.size(), 2);
  EXPECT_EQ(sample->pheno_db[1]->hapl1->allele(0)->allele_name, "a");
}

TEST_F(SampleTasks, AStopRequestEndsTheDispatchAndTheWalkOverSamples) {
  install_fakes();
  sample_analyses().standard_indices.run = +[](PopGenetics&, settings& s, SampleTaskContext&) {
    calls().push_back("standard");
    s.stop_run = 1;
  };
  auto first = dna_sample();
  auto second = dna_sample();
  s_.TaskNumber = 0x1 | 0x2 | 0x1000;
  std::vector<PopGenetics*> samples = {first.get(), second.get()};
  int summaries = 0;
  SampleRunHooks hooks;
  hooks.after_last = [&summaries] { ++summaries; };
  run_sample_tasks(samples, s_, hooks);
  EXPECT_EQ(calls(), (std::vector<std::string>{"standard"}));
  EXPECT_EQ(summaries, 0);
  s_.stop_run = 0;
  EXPECT_EQ(test_methods(*second, s_), 0);
}

TEST_F(SampleTasks, TheWalkLogsEachSampleAndEndsWithTheSummary) {
  auto a = dna_sample();
  auto b = dna_sample();
  b->SampleName = "second";
  std::vector<PopGenetics*> samples = {a.get(), b.get()};
  std::vector<std::string> seen;
  SampleRunHooks hooks;
  hooks.before_sample = [&seen](PopGenetics& p) { seen.push_back("before " + p.SampleName.str()); };
  hooks.after_sample = [&seen](PopGenetics& p) { seen.push_back("after " + p.SampleName.str()); };
  hooks.after_last = [&seen] { seen.emplace_back("summary"); };
  ReportCapture capture;
  run_sample_tasks(samples, s_, hooks);
  EXPECT_EQ(seen, (std::vector<std::string>{"before pop", "after pop", "before second",
                                            "after second", "summary"}));
  const std::string log = std::regex_replace(capture.log_text(), std::regex("[0-9]+ ms"), "N ms");
  EXPECT_EQ(log, "\nPopulation 'pop' : done in N ms\nPopulation 'second' : done in N ms");
}

TEST(Texts, LabelsByDataType) {
  const std::vector<std::tuple<unsigned char, const char*, const char*, const char*>> table = {
      {0, "\nNo. of sequences         : ", "\nNo. of polymorphic sites : ",
       "\t\tFile 500k100.bnb not found... skipping task !\n"},
      {1, "\nNo. haplotypes           : ", "\nNo. of polymorphic sites : ",
       "\t\tFile 500k100.bnb not found... skipping task !\n"},
      {2, "\nNo. haplotypes           : ", "\nNo. of polymorphic loci  : ",
       "\t\tFile 500k100.bnb not found... skipping task !\n"},
      {3, "\nNo. haplotypes           : ", "\nNo. of polymorphic loci  : ",
       "\t\t\tFile *.bnb not found... skipping task !\n"}};
  for (const auto& [type, count, poly, bnum] : table) {
    auto sample = make_sample(type, Population{});
    EXPECT_STREQ(haplotype_count_label(*sample), count);
    EXPECT_STREQ(polymorphism_label(*sample), poly);
    EXPECT_STREQ(bnum_missing_message(*sample), bnum);
  }
}

TEST(SharedHaplotypes, PairsAtDistanceZeroOncePerCall) {
  Project project;
  Population a = project.sample(0, {{"AAAA", 1}, {"CCCC", 1}, {"GGGG", 1}});
  Population b = project.sample(0, {{"CCCC", 2}, {"TTTT", 1}});
  a.SampleName = "a<1>";
  b.SampleName = "b";
  // Definitions 0 .. 3 = AAAA, CCCC, GGGG, TTTT; AAAA and GGGG at distance 0.
  TriMat m(4);
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < i; ++j) m(i, j) = 1.0;
  }
  m(2, 0) = 0.0;
  for (int i = 0; i < project.defs.size(); ++i) project.defs[i]->mat_index = i;
  std::ostringstream out;
  print_shared_haplotypes(a, b, out, m, false);
  EXPECT_EQ(out.str(), "\n   Haplotypes shared between \"a<1>\" and \"b\":\n\t\th1 = h1\n");
  std::ostringstream self;
  print_shared_haplotypes(a, a, self, m, true);
  EXPECT_EQ(self.str(),
            "\n   Haplotypes shared between \"a&lt;1&gt;\" and \"a&lt;1&gt;\":\n\t\th0 = h2\n");
  std::ostringstream none;
  print_shared_haplotypes(b, b, none, m, false);
  EXPECT_EQ(none.str(), "");
}

}  // namespace
