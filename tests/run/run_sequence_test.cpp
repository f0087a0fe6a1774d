// Batches of real projects through the built program: several projects in
// one run list, a project that can't be read in the middle of it, the
// settings chosen by the mode of the list, and the console of a run.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/test_support.h"

namespace fs = std::filesystem;
using namespace testing_support;

namespace {

const char* const kProject =
    "[Profile]\nTitle=\"t\"\nNbSamples=1\nDataType=STANDARD\nGenotypicData=0\n"
    "LocusSeparator=WHITESPACE\nMissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"S\"\n"
    "SampleSize=3\nSampleData={\na 2 x y\nb 1 x z\n}\n";

const char* const kEnd = "Morvcore terminated gracefully";

class RunSequence : public ::testing::Test {
 protected:
  void put(const std::string& name, const std::string& text) {
    write_file(dir_.path() / name, text);
  }
  std::string file(const std::string& name) const { return read_file(dir_.path() / name); }
  bool exists(const std::string& name) const { return fs::exists(dir_.path() / name); }
  // A run list of the projects, each with its two number lines.
  void list(const std::string& mode, const std::vector<std::string>& projects) {
    std::string text = "\n" + mode + "\n";
    for (const auto& p : projects) text += p + "\n0\n0\n";
    put("mrv_run.txt", text + "end\n");
  }
  RunResult run(const std::vector<std::string>& args = {}) {
    RunResult r = run_morvcore(dir_.path(), args);
    EXPECT_EQ(r.exit_code, 0) << r.err;
    return r;
  }
  TempDir dir_;
};

TEST_F(RunSequence, UnreadableProjectInTheMiddleOfABatch) {
  put("a.mvp", kProject);
  put("b.mvp", "error\n");
  put("c.mvp", kProject);
  put("mrv_run.mvs", "TaskNumber=1\nXMLOutput=0\n");
  list("use_interf_settings", {"a.mvp", "b.mvp", "c.mvp"});
  const RunResult r = run();
  EXPECT_EQ(file("mrv_pro.txt"), "error\n");
  EXPECT_NE(file("a.res/Morvalin_log.txt").find("\nRUN NUMBER 1 ("), std::string::npos);
  const std::string second = file("b.res/Morvalin_log.txt");
  EXPECT_NE(second.find("\nRUN NUMBER 2 ("), std::string::npos);
  EXPECT_NE(second.find("Error opening project... b.res/b.mvp\n"), std::string::npos) << second;
  EXPECT_NE(second.find("Error during run of b.mvp\n"), std::string::npos);
  const std::string third = file("c.res/Morvalin_log.txt");
  EXPECT_NE(third.find("\nRUN NUMBER 3 ("), std::string::npos);
  EXPECT_NE(third.find("\nEND OF RUN NUMBER 3 ("), std::string::npos);
  EXPECT_NE(third.find("Successful run of c.mvp\n"), std::string::npos);
  EXPECT_NE(file("c.res/c.htm").find("== Sample : \tS\n"), std::string::npos);
  EXPECT_EQ(r.out.substr(r.out.size() - std::string(kEnd).size()), kEnd);
}

TEST_F(RunSequence, AssociatedSettingsAreFoundForEachProject) {
  put("a.mvp", kProject);
  put("c.mvp", kProject);
  // The first test of the associated mode falls on the default file.
  put("mrv_run.mvs", "TaskNumber=0\n");
  put("a.mvs", "TaskNumber=0\nXMLOutput=1\n");
  put("c.mvs", "TaskNumber=0\nXMLOutput=0\n");
  list("use_ass_settings", {"a.mvp", "c.mvp"});
  run();
  EXPECT_TRUE(exists("a.res/a.xml"));
  EXPECT_FALSE(exists("a.res/a.htm"));
  EXPECT_TRUE(exists("c.res/c.htm"));
  EXPECT_FALSE(exists("c.res/c.xml"));
}

TEST_F(RunSequence, AppendedXmlResultsOfOneList) {
  put("a.mvp", kProject);
  put("mrv_run.mvs", "TaskNumber=0\nXMLOutput=1\n");
  put("mrv_run.txt", "\nuse_interf_settings\na.mvp\n1\n0\na.mvp\n1\n0\nend\n");
  run();
  const std::string doc = file("a.res/a.xml");
  EXPECT_NE(doc.find("RUN NUMBER 1 ("), std::string::npos);
  EXPECT_NE(doc.find("RUN NUMBER 2 ("), std::string::npos);
  EXPECT_EQ(doc.find("<Morvalin>"), doc.rfind("<Morvalin>"));
}

TEST_F(RunSequence, ConsoleShowsTheProgressUnlessSilent) {
  put("a.mvp", kProject);
  put("a.mvs", "TaskNumber=0\nXMLOutput=0\n");
  const RunResult loud = run({"a.mvp", "a.mvs"});
  EXPECT_EQ(loud.out, std::string("Opening Project...\n Computations are over\n") + kEnd);
  const RunResult quiet = run({"a.mvp", "a.mvs", "run_silent"});
  EXPECT_EQ(quiet.out, std::string("Running morvcore in silent mode ...") + kEnd);
}

TEST_F(RunSequence, ScratchFilesOfTheTranslatorGoAtTheEndOfARun) {
  put("a.mvp", kProject);
  put("a.mvs", "TaskNumber=0\n");
  put("trans_out.txt", "old");
  put("dum_mrv.mvp", "old");
  run({"a.mvp", "a.mvs"});
  EXPECT_FALSE(exists("trans_out.txt"));
  EXPECT_FALSE(exists("dum_mrv.mvp"));
  EXPECT_TRUE(exists("a.mvp"));
}

}  // namespace
