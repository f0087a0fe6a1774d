// The translator's route into a project: the profile read character by
// character, then the subsections of [Data] one by one through the same
// section readers as a run. It loads what the run's reader loads.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "input/profile_reader.h"
#include "input/project_data_support.h"
#include "input/project_open_reader.h"
#include "support/test_support.h"

namespace {

using input_testing::LoadedProject;
using input_testing::ReportCapture;

struct Opened {
  int result;
  std::vector<int> codes;
  std::string log;
};

Opened open_stream(LoadedProject& p, std::istream& is, const std::string& dir) {
  ReportCapture capture;
  p.directory = dir;
  int result = get_profile_settings(is, p.profile);
  if (result) result = open_project_data(is, p.profile, p.readers, p.directory);
  return {result, capture.codes(), input_testing::without_times(capture.text())};
}

TEST(OpenRoute, LoadsTheExamplesAsARunDoes) {
  for (const char* name :
       {"dna_groups.mvp", "frequency.mvp", "microsat_genotypic.mvp", "rflp.mvp", "standard.mvp"}) {
    const std::string path = std::string(MORVCORE_SOURCE_DIR) + "/examples/" + name;
    LoadedProject run;
    run.read_file(path);
    ASSERT_EQ(run.result, 1) << name;
    LoadedProject opened;
    std::ifstream is(path);
    const Opened o = open_stream(opened, is, "");
    ASSERT_EQ(o.result, 1) << name << "\n" << o.log;
    EXPECT_TRUE(o.codes.empty()) << name << "\n" << o.log;
    ASSERT_EQ(opened.samples->size(), run.samples->size()) << name;
    for (int i = 0; i < run.samples->size(); ++i) {
      EXPECT_EQ(opened.sample(i).SampleName, run.sample(i).SampleName) << name;
      EXPECT_EQ(opened.sample(i).sample_size, run.sample(i).sample_size) << name;
      EXPECT_EQ(opened.sample(i).haplo_list.size(), run.sample(i).haplo_list.size()) << name;
      EXPECT_EQ(opened.sample(i).pheno_db.size(), run.sample(i).pheno_db.size()) << name;
    }
    EXPECT_EQ(opened.haplo_db.size(), run.haplo_db.size()) << name;
    EXPECT_EQ(opened.structure->nb_groups(), run.structure->nb_groups()) << name;
    EXPECT_EQ(opened.dist_mat.dim(), run.dist_mat.dim()) << name;
  }
}

const std::string profile =
    "[Profile]\nTitle=\"t\"\nNbSamples=1\nDataType=DNA\nGenotypicData=0\nLocusSeparator=NONE\n"
    "MissingData='?'\n[Data]\n";

TEST(OpenRoute, ExternListAndMatrixBesideTheProject) {
  testing_support::TempDir dir;
  testing_support::write_file(dir.path() / "h.txt", "a AC\nb AG\n");
  testing_support::write_file(dir.path() / "m.dis", "a b\n0\n1 0\n");
  const std::string text =
      profile +
      "[[HaplotypeDefinition]]\nHaplListName=\"l\"\n"
      "HaplList=EXTERN \"h.txt\"\n"
      "[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=2\n"
      "LabelPosition=LINE\nMatrixData=EXTERN \"m.dis\"\n"
      "[[Samples]]\nSampleName=\"p\"\nSampleSize=3\nSampleData={\na 2\nb 1\n}\n";
  LoadedProject p;
  std::istringstream is(text);
  const Opened o = open_stream(p, is, dir.str() + "/");
  ASSERT_EQ(o.result, 1) << o.log;
  EXPECT_EQ(p.haplo_db.HaplListName, "l");
  EXPECT_EQ(p.haplo_db.size(), 2);
  EXPECT_EQ(p.dist_mat.name(), "m");
  EXPECT_EQ(p.dist_mat(1, 0), 1.0);
  EXPECT_EQ(p.dist_mat.label(1), "b");
  EXPECT_EQ(p.sample(0).haplo_list.size(), 2u);
}

TEST(OpenRoute, CountOfSubsections) {
  const std::string samples =
      "[[Samples]]\nSampleName=\"p\"\nSampleSize=1\nSampleData={\nh 1 A\n}\n";
  struct Case {
    const char* what;
    std::string data;
    int result;
    std::vector<int> codes;
  };
  const Case cases[] = {
      {"none", "", 0, {128}},
      {"five",
       "[[HaplotypeDefinition]]\nHaplList={\ng A\n}\n[[DistanceMatrix]]\n" + samples +
           "[[Structure]]\nNbGroups=1\nGroup={\"p\"}\n[[Mantel]]\n",
       0,
       {131}},
      {"structure without samples", "[[Structure]]\nNbGroups=1\nGroup={\"p\"}\n", 0, {172}},
      {"samples then structure", samples + "[[Structure]]\nNbGroups=1\nGroup={\"p\"}\n", 1, {}},
  };
  for (const Case& c : cases) {
    LoadedProject p;
    std::istringstream is(profile + c.data);
    const Opened o = open_stream(p, is, "");
    EXPECT_EQ(o.result, c.result) << c.what << "\n" << o.log;
    EXPECT_EQ(o.codes, c.codes) << c.what << "\n" << o.log;
  }
}

}  // namespace
