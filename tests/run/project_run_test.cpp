// One run of a project inside the test program, as the batch driver makes
// it: the steps of the run seen through the document, the log, the files of
// the result folder and the state the project keeps between runs.
#include <gtest/gtest.h>

#include "run/project.h"
#include "run/run_fixture.h"

using namespace run_testing;
using testing_support::normalise;

namespace {

const char* const kProject =
    "[Profile]\nTitle=\"two lakes\"\nNbSamples=2\nDataType=DNA\nGenotypicData=0\n"
    "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"A\"\nSampleSize=3\nSampleData={\nh1 2 ACGTA # two copies\nh2 1 ACGTT\n}\n"
    "SampleName=\"B\"\nSampleSize=2\nSampleData={\nh1 1\nh3 1 ACCTT\n}\n"
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={ \"A\" \"B\" }\n";

const char* const kTwoGroups =
    "[Profile]\nTitle=\"two groups\"\nNbSamples=2\nDataType=DNA\nGenotypicData=0\n"
    "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"A\"\nSampleSize=2\nSampleData={\nh1 1 ACGTA\nh2 1 ACGTT\n}\n"
    "SampleName=\"B\"\nSampleSize=2\nSampleData={\nh1 1\nh3 1 ACCTT\n}\n"
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=2\nGroup={ \"A\" }\nGroup={ \"B\" }\n";

const std::string kSlashes(68, '/');

bool ends_with(const std::string& text, const std::string& tail) {
  return text.size() >= tail.size() &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

class ProjectRun : public RunFixture {};

TEST_F(ProjectRun, NeedsAValidProject) {
  put("p.mvp", kProject);
  Project project;
  prepare(project, "p", "TaskNumber=1");
  EXPECT_EQ(project.run(), 0);
  EXPECT_EQ(log("p"), "\n No valid project is opened....\n");
  EXPECT_FALSE(exists("p.res/p.htm"));
}

TEST_F(ProjectRun, MissingFileIsReportedUnderTheExploreName) {
  Project project;
  prepare(project, "absent", "TaskNumber=1");
  project.project_valid = 1;
  EXPECT_EQ(project.run(), 0);
  EXPECT_TRUE(holds(log("absent"),
                    "#[ERROR # 1] from function \"Project::explore()\" : unable to open project "
                    "file\n"));
  EXPECT_EQ(project.run_number, 0);
}

TEST_F(ProjectRun, WholeRunInHtml) {
  put("p.mvp", kProject);
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=0\nIncludeIndividualLevel=1"), 1)
      << log("p");
  // Haplotypic data have no individual level.
  EXPECT_EQ(project.run_settings.IncludeIndividualLevel, 0);
  const std::string doc = normalise(file("p.res/p.htm"));
  EXPECT_EQ(doc.substr(0, 13), "\n<html>\n<!--M");
  EXPECT_TRUE(
      holds(doc, "\n" + kSlashes + "\nRUN NUMBER 1 (DD/MM/YY at HH:MM:SS)\n" + kSlashes + "\n"));
  EXPECT_TRUE(
      holds(doc,
            "\nProject information:\n--------------------\n\tNbSamples      =  2\n"
            "\tDataType       =  DNA\n\tGenotypicData  =  0\n==============================\n"
            "Settings used for Calculations\n"));
  EXPECT_TRUE(holds(doc, "\n" + kSlashes + "\nEND OF RUN NUMBER 1 (DD/MM/YY at HH:MM:SS))" +
                             "\nTotal computing time for this run : #h #m #s # ms\n" + kSlashes +
                             "\n</body>\n</PRE>\n</html>\n\n"));
  EXPECT_EQ(doc.find("<run"), std::string::npos);
  const std::string text = normalise(log("p"));
  EXPECT_TRUE(holds(text, "\nReading Project: \nReading input file ...\n"));
  EXPECT_TRUE(holds(text,
                    "\nEND OF RUN NUMBER 1 (DD/MM/YY at HH:MM:SS))\nTotal computing time "
                    "for this run : #h #m #s # ms\n" +
                        kSlashes + "\n"));
  // The clean copy is gone; the run's own files stay.
  EXPECT_FALSE(exists("p.res/p.mvp"));
  EXPECT_TRUE(exists("p.res/p_main.htm"));
  EXPECT_TRUE(exists("p.res/p_tree.htm"));
  EXPECT_TRUE(exists("p.res/p.js"));
  EXPECT_EQ(errors().result_stream(), nullptr);
  EXPECT_EQ(project.run_settings.result_stream, nullptr);
}

TEST_F(ProjectRun, RunNumberCountsOverTheBatchAndTheTitleIsThePreviousOne) {
  put("p.mvp", kProject);
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=0"), 1);
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=0"), 1);
  EXPECT_EQ(project.run_number, 2);
  const std::string doc = normalise(file("p.res/p.htm"));
  EXPECT_EQ(count_of(doc, "RUN NUMBER"), 2);  // the HTML document was truncated
  EXPECT_TRUE(holds(doc, "\nRUN NUMBER 2 ("));
  EXPECT_TRUE(holds(log("p"), "\nReading Project: two lakes\n"));
}

TEST_F(ProjectRun, AppendedXmlRunsShareOneRoot) {
  put("p.mvp", kProject);
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=1", 1), 1);
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=1", 1), 1);
  const std::string doc = file("p.res/p.xml");
  EXPECT_EQ(count_of(doc, "<Morvalin>"), 1);
  EXPECT_EQ(count_of(doc, "</data> <run time="), 2);
  EXPECT_TRUE(holds(doc, "RUN NUMBER 1 ("));
  EXPECT_TRUE(holds(doc, "END OF RUN NUMBER 2 ("));
  EXPECT_TRUE(ends_with(doc, "</Morvalin>\n\n"));
  // The tree script keeps one head and gains a second run.
  const std::string tree = file("p.res/p.js");
  EXPECT_EQ(count_of(tree, "foldersTree = gFld("), 1);
  EXPECT_EQ(count_of(tree, "gFld(\"Run of "), 2);
}

TEST_F(ProjectRun, UnreadableProjectEndsTheRunInWords) {
  put("p.mvp", "error\n");
  Project project;
  EXPECT_EQ(run(project, "p", "TaskNumber=1\nXMLOutput=0"), 0);
  EXPECT_TRUE(holds(log("p"), "Error opening project... " + path("p.res/p.mvp") + "\n"));
  EXPECT_EQ(file("mrv_pro.txt"), "error\n");
  const std::string doc = file("p.res/p.htm");
  EXPECT_TRUE(ends_with(doc, "\n</body>\n</PRE>\n</html>\n\n")) << doc;
  EXPECT_FALSE(holds(doc, "Project information"));
  EXPECT_FALSE(exists("p.res/p.mvp"));
  EXPECT_EQ(project.run_number, 1);
}

TEST_F(ProjectRun, RefusedTasksEndTheRun) {
  put("p.mvp",
      "[Profile]\nTitle=\"rec\"\nNbSamples=1\nDataType=STANDARD\nGenotypicData=1\n"
      "GameticPhase=1\nRecessiveData=1\nRecessiveAllele=\"xx\"\nLocusSeparator=WHITESPACE\n"
      "MissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"R\"\nSampleSize=2\nSampleData={\n"
      "i1 1 a b\n   a xx\n}\n");
  Project project;
  EXPECT_EQ(run(project, "p", "TaskNumber=8192\nXMLOutput=0"), 0);
  const std::string doc = file("p.res/p.htm");
  EXPECT_TRUE(holds(doc,
                    "\nOne of the scheduled task is not possible with these data,\nfor more "
                    "details look into 'Morvalin_log.txt'\n\n</body>"));
  EXPECT_FALSE(holds(doc, "END OF RUN"));
  EXPECT_EQ(project.project_valid, 0);
  EXPECT_FALSE(exists("mrv_pro.txt"));
}

TEST_F(ProjectRun, SettingsReportShowsTheTasksAskedFor) {
  put("p.mvp", kProject);
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=32\nXMLOutput=0"), 1);
  // make_run_possible drops the test on haplotypes, after the report.
  EXPECT_TRUE(holds(file("p.res/p.htm"), "    Hardy-Weinberg equilibrium test:\n"));
  EXPECT_TRUE(holds(log("p"), "not possible on Haplotypic data"));
  EXPECT_EQ(project.run_settings.TaskNumber, 0);
}

TEST_F(ProjectRun, LocusSeparatorOfSequencesIsRemoved) {
  put("p.mvp",
      "[Profile]\nTitle=\"sep\"\nNbSamples=1\nDataType=DNA\nGenotypicData=0\n"
      "LocusSeparator=WHITESPACE\nMissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"A\"\n"
      "SampleSize=2\nSampleData={\nh1 1 A C G\nh2 1 A C T\n}\n");
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=0"), 1) << log("p");
  EXPECT_TRUE(
      holds(file("p.res/p.htm"), "\nWarning: The locus separator has been removed\n-------\n\n"));
  EXPECT_TRUE(holds(log("p"), "\nWarning: The locus separator has been removed\n\n"));
  // The next project is cleaned with the separator remembered after the removal.
  EXPECT_EQ(project.LocusSeparator, 0);
}

TEST_F(ProjectRun, GroupPassPoolsTheGroupsAndGivesTheSettingsBack) {
  put("p.mvp", kProject);
  Project project;
  ASSERT_EQ(run(project, "p",
                "TaskNumber=33\nXMLOutput=0\nComputeSumStatsWithinGroups=1\n"
                "KeepNullDistrib=0\nIncludeIndividualLevel=1",
                0, 1),
            1)
      << log("p");
  const std::string doc = file("p.res/p.htm");
  const std::size_t groups = doc.find("\n== ANALYSES AT THE INTRA-GROUP LEVEL\n");
  const std::size_t samples = doc.find("\n== ANALYSES AT THE INTRA-POPULATION LEVEL\n");
  ASSERT_NE(groups, std::string::npos);
  ASSERT_NE(samples, std::string::npos);
  EXPECT_LT(groups, samples);
  EXPECT_TRUE(holds(doc, "\nGroup definitions:\n\tGroup1 : \"A\" \"B\"\n"));
  EXPECT_TRUE(holds(doc, "== Sample : \tGroup1\n"));
  EXPECT_TRUE(holds(file("p.res/p.js"), "aux2 = insFld(aux1, gFld(\"Groups\", \"\"))"));
  // The file's tasks are back for the sample pass, and the run list's
  // KeepNullDistrib holds over the file's.
  EXPECT_EQ(project.run_settings.TaskNumber, 33);
  EXPECT_EQ(project.run_settings.KeepNullDistrib, 1);
  EXPECT_EQ(project.run_settings.IncludeIndividualLevel, 1);
  EXPECT_EQ(project.sample_list().size(), 0u);  // the project is cleared
}

TEST_F(ProjectRun, StopRequestEndsWithAWarning) {
  put("p.mvp", kProject);
  Project project;
  project.run_settings.stop_run = 1;
  ASSERT_EQ(run(project, "p", "TaskNumber=1\nXMLOutput=0"), 1);
  EXPECT_TRUE(holds(log("p"),
                    " WARNING !!! Process stopped by user. The results may be "
                    "incorrect\n"));
  EXPECT_EQ(count_of(log("p"), "\nPopulation '"), 1);
}

TEST_F(ProjectRun, ReportsReachTheDocumentOnlyDuringTheRun) {
  put("p.mvp", kTwoGroups);
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=512\nHaplAMOVA=1\nXMLOutput=0"), 1);
  EXPECT_TRUE(holds(file("p.res/p.htm"), " #[WARNING # 1] : invalid structure: only one"));
  EXPECT_FALSE(holds(file("p.res/p.htm"), "IsAmovaStructure"));
}

TEST_F(ProjectRun, ExternFilesAreReadFromTheirCleanCopies) {
  put("p.mvp",
      "[Profile]\nTitle=\"ext\"\nNbSamples=1\nDataType=DNA\nGenotypicData=0\n"
      "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"A\"\n"
      "SampleSize=2\nSampleData=EXTERN \"pop.txt\"\n");
  put("pop.txt", "h1\t1\tACG   # first\nh2 1 ACT\n");
  Project project;
  ASSERT_EQ(run(project, "p", "TaskNumber=0\nXMLOutput=0"), 1) << log("p");
  EXPECT_TRUE(holds(log("p"), "in external file"));
  EXPECT_FALSE(exists("p.res/pop.txt"));
  EXPECT_TRUE(exists("pop.txt"));
}

TEST(Normalise, HidesTheComputingTime) {
  EXPECT_EQ(normalise("END OF RUN NUMBER 3 (05/03/24 at 14:22:10))\n"
                      "Total computing time for this run : 1h 12m 5s 407 ms\n"),
            "END OF RUN NUMBER 3 (DD/MM/YY at HH:MM:SS))\n"
            "Total computing time for this run : #h #m #s # ms\n");
}

}  // namespace
