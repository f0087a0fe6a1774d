// Project's data as the two readers leave them: the examples load through
// newOpen and open, EXTERN files are found beside the project file, and a
// second project does not inherit the data of the first.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "model/settings.h"
#include "run/errors.h"
#include "run/project.h"
#include "support/test_support.h"

using namespace testing_support;
namespace fs = std::filesystem;

namespace {

class ProjectLoad : public ::testing::Test {
 protected:
  void SetUp() override {
    errors().open_log((dir_.path() / "log.txt").string(), false);
    errors().raise(report_kind::ERROR, "", -1);
  }
  void TearDown() override {
    errors().close_log();
    project_file_name.clear();
  }
  std::string log_text() {
    errors().log().flush();
    return read_file(dir_.path() / "log.txt");
  }
  static std::string example(const char* name) {
    return std::string(MORVCORE_SOURCE_DIR) + "/examples/" + name;
  }

  TempDir dir_;
};

TEST_F(ProjectLoad, ExamplesThroughBothReaders) {
  struct Case {
    const char* file;
    int samples;
    int groups;
    int matrix_size;
  };
  const Case cases[] = {{"dna_groups.mvp", 4, 2, 0},
                        {"frequency.mvp", 3, 0, 7},
                        {"microsat_genotypic.mvp", 3, 0, 0},
                        {"rflp.mvp", 3, 0, 0},
                        {"standard.mvp", 3, 0, 0}};
  Project project;  // one object for the whole batch, as the driver keeps it
  for (const Case& c : cases) {
    project_file_name = example(c.file);
    for (int route = 0; route < 2; ++route) {
      project.reset_profile();
      ASSERT_EQ(route == 0 ? project.newOpen() : project.open(), 1) << c.file << "\n" << log_text();
      EXPECT_EQ(project.samples->size(), c.samples) << c.file;
      EXPECT_EQ(project.NbSamples, c.samples) << c.file;
      EXPECT_EQ(project.structure->nb_groups(), c.groups) << c.file;
      EXPECT_EQ(project.dist_mat.matrix_size(), c.matrix_size) << c.file;
      EXPECT_EQ(project.project_directory, std::string(MORVCORE_SOURCE_DIR) + "/examples/");
    }
  }
  // The definitions of the DNA example are gone with the next project.
  EXPECT_EQ(project.haplo_db.find("CR01"), nullptr);
  project.clear_data();
  EXPECT_TRUE(project.samples->empty());
  EXPECT_TRUE(project.haplo_db.empty());
  EXPECT_EQ(project.dist_mat.matrix_size(), 0);
}

TEST_F(ProjectLoad, ExternSampleBesideTheProject) {
  fs::create_directories(dir_.path() / "sub");
  write_file(dir_.path() / "sub" / "lake.txt", "a 2 ACGT\nb 1 ACGA\n");
  write_file(dir_.path() / "sub" / "p.mvp",
             "[Profile]\nTitle=\"x\"\nNbSamples=1\nDataType=DNA\nGenotypicData=0\n"
             "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"lake\"\n"
             "SampleSize=3\nSampleData=EXTERN \"lake.txt\"\n");
  project_file_name = (dir_.path() / "sub" / "p.mvp").string();
  Project project;
  ASSERT_EQ(project.newOpen(), 1) << log_text();
  ASSERT_EQ(project.samples->size(), 1);
  EXPECT_EQ((*project.samples)[0]->sample_size, 3.0);
  EXPECT_EQ(project.haplo_db.size(), 2);
  EXPECT_NE(log_text().find("#[INFO # 1] from function \"Samples::NewRead()\" : reading sample "
                            "data in external file"),
            std::string::npos)
      << log_text();
}

// The Mantel reader sets ComputeDistanceMatrixAMOVA in the project's own settings.
TEST_F(ProjectLoad, MantelTellsTheSettings) {
  std::string text =
      "[Profile]\nTitle=\"x\"\nNbSamples=3\nDataType=DNA\nGenotypicData=0\n"
      "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\n";
  for (const char* name : {"A", "B", "C"})
    text += "SampleName=\"" + std::string(name) + "\"\nSampleSize=1\nSampleData={\n" + name +
            " 1 AC\n}\n";
  text +=
      "[[Mantel]]\nMatrixSize=3\nMatrixNumber=2\nYMatrix=\"nm\"\nYMatrixLabels={\"A\" \"B\" "
      "\"C\"}\nUsedYMatrixLabels={\"A\" \"B\" \"C\"}\nDistMatMantel={\nA 0\nB 1 0\nC 1 1 0\n}\n";
  write_file(dir_.path() / "m.mvp", text);
  project_file_name = (dir_.path() / "m.mvp").string();
  Project project;
  project.run_settings.ComputeDistanceMatrixAMOVA = 0;
  ASSERT_EQ(project.newOpen(), 1) << log_text();
  EXPECT_EQ(project.run_settings.ComputeDistanceMatrixAMOVA, 1);
  EXPECT_EQ(project.mantel.y_type, "nm");
  EXPECT_EQ(project.mantel.X1(2, 0), 1.0);
}

TEST_F(ProjectLoad, ExploreOfTheExamples) {
  struct Case {
    const char* file;
    const char* samples;
    const char* groups;
  };
  const Case cases[] = {
      {"dna_groups.mvp", "4\nLake_Arvi\nLake_Brenna\nLake_Cora\nLake_Dunsel\n",
       "2\n2\nLake_Arvi\nLake_Brenna\n2\nLake_Cora\nLake_Dunsel\n"},
      {"frequency.mvp", "3\nIsland_1\nIsland_2\nIsland_3\n", ""},
      {"microsat_genotypic.mvp", "3\nPop_North\nPop_Central\nPop_South\n", ""},
      {"rflp.mvp", "3\nCoast\nPlateau\nValley\n", ""},
      {"standard.mvp", "3\nStand_Hill\nStand_River\nStand_Bog\n", ""},
  };
  const fs::path previous = fs::current_path();
  fs::current_path(dir_.path());
  for (const Case& c : cases) {
    project_file_name = example(c.file);
    Project project;
    EXPECT_EQ(project.explore(my_string((dir_.str() + "/").c_str())), 1) << c.file;
    EXPECT_EQ(read_file(dir_.path() / "samples.txt"), c.samples) << c.file;
    EXPECT_EQ(read_file(dir_.path() / "groups.txt"), c.groups) << c.file;
    EXPECT_TRUE(fs::exists(dir_.path() / "mrv_pro.txt"));
  }
  fs::current_path(previous);
}

}  // namespace
