// What the run asks of the samples before it analyses them: the checks of
// verify_data (and the haplotypes it drops), upper-case DNA, separators
// removed, and the classes of identical haplotypes.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "input/project_data_support.h"
#include "output/result_document.h"

namespace {

using input_testing::dna_profile;
using input_testing::LoadedProject;
using input_testing::project_head;
using input_testing::ReportCapture;

std::string samples_of(const std::string& profile, const std::vector<std::string>& data) {
  std::string text = project_head(profile, static_cast<int>(data.size())) + "[[Samples]]\n";
  for (std::size_t i = 0; i < data.size(); ++i)
    text += "SampleName=\"s" + std::to_string(i) + "\"\nSampleData={\n" + data[i] + "}\n";
  return text;
}

const std::string dna_genotypes =
    "DataType=DNA\nGenotypicData=1\nGameticPhase=0\nLocusSeparator=NONE\n";

TEST(VerifyData, FaultsOfLoci) {
  struct Case {
    const char* what;
    std::string text;
    int code;
  };
  const Case cases[] = {
      {"haplotypes of two lengths", samples_of(dna_profile, {"a 1 AC\nb 1 ACG\n"}), 70},
      {"phenotypes of two lengths", samples_of(dna_genotypes, {"i 1 AC\nAC\nj 1 ACG\nACG\n"}), 69},
      {"gametes of two lengths", samples_of(dna_genotypes, {"i 1 AC\nACG\n"}), 69},
      {"samples of two lengths", samples_of(dna_profile, {"a 1 AC\n", "b 1 ACG\n"}), 71},
  };
  for (const Case& c : cases) {
    LoadedProject p;
    p.read(c.text);
    ASSERT_EQ(p.result, 1) << c.what << "\n" << p.log;
    ReportCapture capture;
    EXPECT_EQ(p.samples->verify_data(), 0) << c.what;
    EXPECT_EQ(capture.codes(), (std::vector<int>{c.code})) << c.what;
    EXPECT_EQ(capture.reports().front().function, "Samples::verify_data()");
  }
}

TEST(VerifyData, WhollyMissingHaplotypesLeaveTheSample) {
  LoadedProject p;
  p.read(samples_of(dna_profile, {"a 2 AC\nm 3 ??\nb 1 A?\n"}));
  ASSERT_EQ(p.result, 1) << p.log;
  ASSERT_EQ(p.samples->verify_data(), 1);
  const PopGenetics& s = p.sample(0);
  ASSERT_EQ(s.haplo_list.size(), 2u);
  EXPECT_EQ(s.haplo_list[1].hapl->hapl_id, "b");
  EXPECT_EQ(s.sample_size, 3.0);
  EXPECT_EQ(s.inv_sample_size, 1.0 / 3.0);
  EXPECT_EQ(s.Nb_haplo, 2);
  EXPECT_EQ(p.haplo_db.find("m")->count, 0);
}

TEST(VerifyData, WhollyMissingPhenotypesLeaveTheSample) {
  const std::string standard =
      "DataType=STANDARD\nGenotypicData=1\nGameticPhase=0\nLocusSeparator=WHITESPACE\n";
  LoadedProject p;
  p.read(samples_of(standard, {"i 1 A B\n? ?\nj 2 ? ?\n? ?\nk 1 ? ?\nA ?\n"}));
  ASSERT_EQ(p.result, 1) << p.log;
  ASSERT_EQ(p.samples->verify_data(), 1);
  const PopGenetics& s = p.sample(0);
  ASSERT_EQ(s.pheno_db.size(), 2);
  EXPECT_EQ(s.pheno_db[1]->pheno_name, "k");
  EXPECT_EQ(s.sample_size, 4.0);
  EXPECT_EQ(s.Nb_haplo, 2);  // six gamete lines, less twice the count of j
}

TEST(PrepareData, DnaInUpperCase) {
  LoadedProject p;
  p.read(samples_of(dna_profile, {"a 1 acgt\n"}));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.samples->convert_dna_upper(), 1);
  EXPECT_EQ(p.haplo_db.find("a")->hapl_content, "ACGT");

  LoadedProject g;
  g.read(samples_of(dna_genotypes, {"i 1 ac\ntg\n"}));
  ASSERT_EQ(g.result, 1) << g.log;
  g.samples->convert_dna_upper();
  EXPECT_EQ(g.sample(0).pheno_db[0]->line1, "AC");
  EXPECT_EQ(g.sample(0).pheno_db[0]->line2, "TG");

  LoadedProject standard;
  standard.read(
      samples_of("DataType=STANDARD\nGenotypicData=0\nLocusSeparator=WHITESPACE\n", {"a 1 x y\n"}));
  standard.samples->convert_dna_upper();
  EXPECT_EQ(standard.haplo_db.find("a")->hapl_content, "x y");
}

TEST(PrepareData, SeparatorsLeaveDnaAndRflp) {
  LoadedProject p;
  p.read(samples_of("DataType=DNA\nGenotypicData=0\nLocusSeparator=WHITESPACE\n", {"a 1 A C G\n"}));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.haplo_db.find("a")->hapl_content, "A C G");
  p.samples->rm_separators();
  EXPECT_EQ(p.haplo_db.find("a")->hapl_content, "ACG");
  EXPECT_EQ(p.sample(0).separator(), 0);
  EXPECT_EQ(p.samples->LocusSeparator, 0);

  LoadedProject micro;
  micro.read(samples_of("DataType=MICROSAT\nGenotypicData=0\nLocusSeparator=WHITESPACE\n",
                        {"a 1 100 102\n"}));
  micro.samples->rm_separators();
  EXPECT_EQ(micro.haplo_db.find("a")->hapl_content, "100 102");
  EXPECT_EQ(micro.sample(0).separator(), ' ');
}

// a and b lie at distance 0, c apart.
struct ClassesFixture {
  LoadedProject p;
  DistMat matrix;
  ClassesFixture() {
    p.read(samples_of(dna_profile, {"a 2 AC\nc 1 GG\nb 1 AC\n", "c 3\nb 1\n"}));
    matrix.set_size(3);
    matrix(1, 0) = 1.0;  // a, c
    matrix(2, 0) = 0.0;  // a, b
    matrix(2, 1) = 1.0;  // c, b
  }
};

TEST(HaplotypeClasses, ReportOfClassesAndFrequencies) {
  ClassesFixture f;
  ASSERT_EQ(f.p.result, 1) << f.p.log;
  std::ostringstream out;
  result_document().use_stream(out, false);
  f.p.samples->print_out_haplo_cl(out, f.matrix, f.p.haplo_db);
  EXPECT_EQ(f.p.samples->nb_haplo_classes, 2);
  const std::string text = out.str();
  const std::string rule(30, '-');
  EXPECT_NE(text.find("\nHaplotype list\n==============\n"), std::string::npos) << text;
  EXPECT_NE(text.find("   a\n   b                AC\n   c                GG\n"), std::string::npos)
      << text;
  EXPECT_NE(text.find(rule +
                      "\nHaplotype:        s0        s1\n"
                      "                 (1)       (2)\n" +
                      rule + "\na\nb                  3         1\n" + rule +
                      "\nc                  1         3\n" + rule + "\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\n\nRelative frequencies:\n\n"), std::string::npos);
  EXPECT_NE(text.find("\nb            0.75000   0.25000\n"), std::string::npos) << text;
}

TEST(HaplotypeClasses, MatrixOfAnotherSizeIsRefused) {
  ClassesFixture f;
  DistMat small;
  small.set_size(2);
  std::ostringstream out;
  ReportCapture capture;
  f.p.samples->print_out_haplo_cl(out, small, f.p.haplo_db);
  EXPECT_EQ(capture.codes(), (std::vector<int>{135}));
  EXPECT_EQ(capture.reports().front().function, " Samples::print_out_haplo_cl()");
  EXPECT_TRUE(out.str().empty());
}

TEST(HaplotypeClasses, MergingWithinSamples) {
  ClassesFixture f;
  f.p.samples->merge_haplotype_classes(f.matrix, f.p.haplo_db);
  const PopGenetics& s0 = f.p.sample(0);
  ASSERT_EQ(s0.haplo_list.size(), 2u);
  EXPECT_EQ(s0.haplo_list[0].hapl->hapl_id, "a");
  EXPECT_EQ(s0.haplo_list[0].freq, 3);
  EXPECT_EQ(s0.Nb_orig_haplo, 3);
  EXPECT_EQ(s0.Nb_haplo, 2);
  EXPECT_EQ(f.p.haplo_db.find("a")->count, 4);  // 2 of its own and the 2 copies of b
  EXPECT_EQ(f.p.haplo_db.find("b")->count, 0);
  EXPECT_EQ(f.p.sample(1).haplo_list.size(), 2u);  // c and b are no class
}

}  // namespace
