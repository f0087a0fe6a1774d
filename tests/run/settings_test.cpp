// The settings record itself: defaults, the names derived from a project
// path, the cutting of extensions, and the console's progress line.
#include "model/settings.h"

#include <gtest/gtest.h>

namespace {

TEST(Settings, ResetRestoresEveryDefaultAndClearsStop) {
  settings s;
  s.TaskNumber = 7;
  s.XMLOutput = 0;
  s.MismatchSpatialExpNumParams = 4;
  s.GibbsBurnIn = 1;
  s.SimFileNameForFDist2 = "x";
  s.stop_run = 1;
  s.result_folder = "kept/";
  s.reset();
  EXPECT_EQ(s.TaskNumber, 0);
  EXPECT_EQ(s.XMLOutput, 1);
  EXPECT_EQ(s.MismatchSpatialExpNumParams, 3);
  EXPECT_EQ(s.GibbsBurnIn, 100000);
  EXPECT_EQ(s.SimFileNameForFDist2, "");
  EXPECT_EQ(s.stop_run, 0);
  EXPECT_EQ(s.result_folder, "kept/");  // run-time names are no keys
}

TEST(Settings, FreshRecordHoldsTheDocumentedDefaults) {
  const settings s;
  EXPECT_DOUBLE_EQ(s.AllowedLevelOfMissingData, 0.05);
  EXPECT_EQ(s.MarkovChainStepsHW, 1000000);
  EXPECT_EQ(s.MarkovChainDememorisationStepsHW, 100000);
  EXPECT_EQ(s.MarkovChainStepsLD, 1000);
  EXPECT_EQ(s.NumPermutationsAMOVA, 1000);
  EXPECT_EQ(s.NumPermutPopDiff, 100000);
  EXPECT_EQ(s.NumDememoPopDiff, 10000);
  EXPECT_DOUBLE_EQ(s.EpsilonValue, 1e-7);
  EXPECT_DOUBLE_EQ(s.FrequencyThreshold, 1e-5);
  EXPECT_EQ(s.ComputeDistanceMatrixAMOVA, 1);
  EXPECT_EQ(s.NumberOfSimsForFDist2, 20000);
  EXPECT_EQ(s.DiffusionMode, 2);
  EXPECT_EQ(s.data_type, data_type_code::FREQUENCY);
  EXPECT_EQ(s.append_results, 1);
  EXPECT_EQ(s.ld_file_name, "ld_dis.xl");
  EXPECT_EQ(s.result_stream, nullptr);
  EXPECT_EQ(s.generator, nullptr);
}

TEST(Settings, CutExtensionCutsAtTheFirstPlaceTheExtensionOccurs) {
  const std::pair<const char*, const char*> cases[] = {
      {"a.mvp", "a"},         {"dir/proj.mvp", "dir/proj"},
      {"a.MVP", "a"},         {"p.mvp.bak", "p.mvp"},
      {"x.mvp/y.mvp", "x"},   {"noext", "noext"},
      {"dir.d/noext", "dir"}, {"", ""},
  };
  for (const auto& [name, cut] : cases) EXPECT_EQ(cut_extension(name), cut) << name;
}

TEST(Settings, ProjectNamesComeFromThePathWithoutExtension) {
  settings s;
  s.set_project_names("/data/run 1/proj.mvp");
  EXPECT_EQ(s.result_document_name, "/data/run 1/proj.htm");
  EXPECT_EQ(s.backup_name, "/data/run 1/proj.bac");
  EXPECT_EQ(s.project_directory, "/data/run 1/");
  s.set_project_names("proj.mvp");
  EXPECT_EQ(s.project_directory, "");
  s.set_project_names("c:\\x\\p.mvp");
  EXPECT_EQ(s.project_directory, "c:\\x\\");
}

class ProgressLine : public ::testing::Test {
 protected:
  void SetUp() override { progress() = ProgressState{}; }
  void TearDown() override {
    progress() = ProgressState{};
    silent_mode = 0;
  }
};

TEST_F(ProgressLine, ShowsPercentOfTotalAndSkipsRepeats) {
  testing::internal::CaptureStdout();
  settings::show_progress("Opening Project...");
  settings::show_progress("Opening Project...");
  progress().total = 3.0;
  progress().done = 2.0;
  settings::show_progress("Computing");
  progress().done = 1.99;
  settings::show_progress();  // still 66%: no new line
  progress().done = 7.0;
  settings::show_progress();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Opening Project...\n66% : Computing\n100% : Computing\n");
}

TEST_F(ProgressLine, SilentModePrintsNothing) {
  silent_mode = 1;
  testing::internal::CaptureStdout();
  settings::show_progress("Opening Project...");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
