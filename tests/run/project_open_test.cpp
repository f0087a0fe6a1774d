// Project's three ways into a project file, as the batch driver calls them:
// the file named by project_file_name, reports through the process-wide log,
// and the answers written to the core directory and the current directory.
#include <gtest/gtest.h>

#include <filesystem>

#include "model/settings.h"
#include "run/errors.h"
#include "run/project.h"
#include "support/test_support.h"

using namespace testing_support;
namespace fs = std::filesystem;

namespace {

const char* const project_text =
    "[Profile]\n  Title=\"Tiny\"\n  NbSamples=1\n  DataType=STANDARD\n  GenotypicData=0\n"
    "  LocusSeparator=WHITESPACE\n  MissingData='?'\n[Data]\n[[Samples]]\n"
    "  SampleName=\"S\"\n  SampleSize=2\n  SampleData={\n    a 2 1 2\n  }\n";

// Runs each test in a fresh folder with a fresh log, as a batch does per project.
class ProjectOpen : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = fs::current_path();
    fs::current_path(dir_.path());
    errors().open_log((dir_.path() / "log.txt").string(), false);
    errors().raise(report_kind::ERROR, "", -1);
    write_file(dir_.path() / "tiny.mvp", project_text);
  }
  void TearDown() override {
    errors().close_log();
    fs::current_path(previous_);
    project_file_name.clear();
  }
  std::string log_text() {
    errors().log().flush();
    return read_file(dir_.path() / "log.txt");
  }
  bool log_has(const std::string& part) { return log_text().find(part) != std::string::npos; }
  std::string core() const { return dir_.str() + "/"; }

  TempDir dir_;
  fs::path previous_;
};

TEST_F(ProjectOpen, ExploreAnswersInTheCoreDirectory) {
  write_file("groups.txt", "stale");
  project_file_name = "tiny.mvp";
  Project project;
  ASSERT_EQ(project.explore(my_string(core().c_str())), 1) << log_text();
  const std::string answer = read_file(dir_.path() / "mrv_pro.txt");
  EXPECT_EQ(answer.substr(0, answer.find("=DataType;")),
            "Tiny=Title;\n1=NbSamples;\n0=NbGroups; \n0=GenotypicData;\n1=GameticPhase;\n"
            "STANDARD");
  EXPECT_EQ(read_file("samples.txt"), "1\nS\n");
  EXPECT_EQ(read_file("groups.txt"), "");
}

TEST_F(ProjectOpen, ExploreOfAMissingFile) {
  project_file_name = "absent.mvp";
  Project project;
  EXPECT_EQ(project.explore(my_string(core().c_str())), 0);
  EXPECT_TRUE(
      log_has("#[ERROR # 1] from function \"Project::explore()\" : unable to open "
              "project file"))
      << log_text();
  EXPECT_FALSE(fs::exists(dir_.path() / "mrv_pro.txt"));
}

TEST_F(ProjectOpen, NewOpenOfAMissingFileWarns) {
  project_file_name = "absent.mvp";
  Project project;
  EXPECT_EQ(project.newOpen(), 0);
  EXPECT_TRUE(
      log_has("#[WARNING # 1] from function \"Project::newOpen()\" : unable to open "
              "project file"))
      << log_text();
}

TEST_F(ProjectOpen, NewOpenReadsTheProject) {
  project_file_name = (dir_.path() / "tiny.mvp").string();
  Project project;
  EXPECT_EQ(project.newOpen(), 1) << log_text();
  EXPECT_EQ(project.Title, "Tiny");
  ASSERT_EQ(project.samples->size(), 1);
  EXPECT_EQ((*project.samples)[0]->SampleName, "S");
  EXPECT_EQ(project.haplo_db.find("a")->hapl_content, "1 2");
}

TEST_F(ProjectOpen, OpenForTheTranslatorReadsTheProject) {
  project_file_name = "tiny.mvp";
  Project project;
  EXPECT_EQ(project.open(), 1) << log_text();
  EXPECT_EQ(project.NbSamples, 1);
  ASSERT_EQ(project.samples->size(), 1);
  EXPECT_EQ((*project.samples)[0]->sample_size, 2.0);
}

}  // namespace
