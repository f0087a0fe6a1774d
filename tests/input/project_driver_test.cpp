// The section driver of the line-based reader: sections go to their readers
// in file order, a reader's stopping line opens the next section, misplaced
// sections end the reading, and EXTERN files are found beside the project.
#include <gtest/gtest.h>

#include <sstream>

#include "input/fake_sections.h"
#include "input/profile_writer.h"
#include "input/project_file_reader.h"
#include "input/report_capture.h"
#include "support/test_support.h"

namespace {

using input_testing::FakeSections;
using input_testing::ReportCapture;
using input_testing::without_times;

const std::string profile =
    "[Profile]\nTitle=\"t\"\nNbSamples=1\nDataType=DNA\nGenotypicData=0\n"
    "LocusSeparator=NONE\nMissingData='?'\n";  // 7 lines
const std::string samples = "[[Samples]]\nSampleName=\"p\"\nSampleSize=1\nSampleData={\nh 1 A\n}\n";

struct Outcome {
  int result;
  std::string log;
  std::vector<int> codes;
  std::vector<std::string> calls;
  int matrix_size;
  int labels_in_column;
};

Outcome read(const std::string& text, FakeSections sections = FakeSections(),
             const my_string& directory = "") {
  ReportCapture capture;
  std::istringstream is(text);
  ProfileSettings p;
  const int result = read_project_file(is, p, sections, directory);
  return {result,         without_times(capture.text()), capture.codes(),
          sections.calls, sections.matrix_size,          sections.labels_in_column};
}

bool has(const std::string& log, const std::string& part) {
  return log.find(part) != std::string::npos;
}

TEST(ProjectDriver, SectionsInFileOrder) {
  const Outcome o = read(profile +
                         "[Data]\n[[HaplotypeDefinition]]\nHaplListName=\"list\"\nHaplList={\n"
                         "h ACG\n}\n[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=4\n"
                         "LabelPosition=COLUMN\nMatrixData={\n}\n" +
                         samples +
                         "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={\"p\"}\n"
                         "[[Mantel]]\nMatrixSize=3\nMatrixNumber=2\nYMatrixLabels={}\n"
                         "UsedYMatrixLabels={}\nDistMatMantel={}\n");
  EXPECT_EQ(o.result, 1) << o.log;
  EXPECT_TRUE(o.codes.empty());
  EXPECT_EQ(o.calls,
            (std::vector<std::string>{"haplotypes", "matrix", "samples", "structure", "mantel"}));
  EXPECT_EQ(o.matrix_size, 4);
  EXPECT_EQ(o.labels_in_column, 1);
  EXPECT_TRUE(has(o.log,
                  "Reading Haplotype List ...\ndone ! (N ms)\n\tReading distance matrix ...\n"
                  "\tdone ! (N ms)\n\tReading Samples section ...\n"
                  "\tdone reading Samples section! (N ms)\n\tReading genetic structure ...\n"
                  "\tdone reading genetic structure! (N ms)\n\tReading mantel section ...\n"
                  "\tdone ! (N ms)\ndone ! (N ms)\n"))
      << o.log;
}

struct StopCase {
  std::string tail;  // after the profile (line 8 on)
  std::string log;
  std::vector<int> codes;
};

TEST(ProjectDriver, MisplacedSectionsEndTheReading) {
  const StopCase cases[] = {
      {"[Data]\n[[Structure]]\n" + samples,
       "[STRUCTURE] section defined before the [SAMPLES] section. Aborting reading project\n",
       {172}},
      {"[Data]\n[[Samples]]\n[[Structure]]\n",
       "No samples were defined before the [STRUCTURE] section. Aborting reading project\n",
       {172}},
      {"[Data]\n[[Mantel]]\n" + samples,
       "[MANTEL] section defined before the [SAMPLES] section. Aborting reading project\n",
       {196}},
      {"[[HaplotypeDefinition]]\n[Data]\n",
       "\tProject file, Line #8 : HaplotypeDefinition keyword declared before the beginning of "
       "the 'Data' section...\n",
       {}},
      {"[Data]\nHaplListName=\"x\"\n",
       "\tProject file, Line #9 : HaplListName keyword declared before the beginning of the "
       "'HaplotypeDefinition' section...\n",
       {}},
      {"[Data]\nHaplList={\n",
       "\tProject file, Line #9 : HaplList keyword declared before the beginning of the "
       "'HaplotypeDefinition' section...\n\t Stopping reading input file!\n",
       {}},
      {"[[DistanceMatrix]]\n",
       "\tProject file, Line #8 : DistanceMatrix keyword declared before the beginning of the "
       "'Data' section..., aborting project reading!\n",
       {}},
      {"[Data]\n[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=x\n",
       "\tWarning: Unable to read MatrixSize on line 11. Aborting project reading.\n"
       "!E15 Project::newOpen()\n",
       {190, 15}},
      {"[Data]\n[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=0\n",
       "\tBad size (0) for distance matrix \"m\". Check size (0) reported on line 11\n"
       "!E15 Project::newOpen()\n",
       {15}},
      {"[Data]\n[[DistanceMatrix]]\nMatrixName=m\nMatrixSize=-2\n",
       "\tWarning: Unable to read MatrixName on line 10\n!W24 Project::newOpen()\n"
       "\tBad size (-2) for distance matrix \"undefined\". Check size (-2) reported on line 11\n",
       {190, 24, 15}},
      {"[Data]\n[[DistanceMatrix]]\nLabelPosition=DIAGONAL\n",
       "\tInvalid keyword for LabelPosition on line 10. Aborting reading project.\n"
       "!E16 Project::newOpen()\n",
       {16}},
  };
  for (const StopCase& c : cases) {
    const Outcome o = read(profile + c.tail);
    EXPECT_EQ(o.result, 0) << c.log;
    EXPECT_TRUE(has(o.log, c.log)) << c.log << "\n--- log:\n" << o.log;
    EXPECT_EQ(o.codes, c.codes) << c.log;
    EXPECT_FALSE(has(o.log, "done ! (N ms)\n")) << "the end was judged: " << c.log;
  }
}

TEST(ProjectDriver, FailingSamplesReader) {
  FakeSections sections;
  sections.samples_ok = 0;
  const Outcome o = read(profile + "[Data]\n" + samples, sections);
  EXPECT_EQ(o.result, 0);
  EXPECT_TRUE(has(o.log,
                  "\tReading Samples section ...\n\tProblems in reading Samples "
                  "section... aborting reading  project file.\n"))
      << o.log;
}

TEST(ProjectDriver, SectionsWithoutReadersFailInWords) {
  ReportCapture capture;
  std::istringstream is(profile + "[Data]\n" + samples);
  ProfileSettings p;
  ProjectSectionReaders none;
  EXPECT_EQ(read_project_file(is, p, none, ""), 0);
  EXPECT_TRUE(has(capture.text(),
                  "\tReading Samples section ...\n"
                  "\tReading the [[Samples]] section is not available in this build\n"
                  "\tProblems in reading Samples section... aborting reading  project file.\n"))
      << capture.text();
}

TEST(ProjectDriver, MissingSectionKeywordsAreFaults) {
  const Outcome o = read(profile + "[Data]\n[[HaplotypeDefinition]]\n[[DistanceMatrix]]\n" +
                         samples + "[[Structure]]\n[[Mantel]]\n");
  EXPECT_EQ(o.result, 0);
  EXPECT_EQ(o.codes, std::vector<int>{203});
  const char* const messages[] = {
      "\tKeyword \"HaplList\" not found in Haplotype section.",
      "\tKeyword \"MatrixSize\" not found in Distance Matrix section.Check",
      "\tKeyword \"MatrixData\" not found in Distance Matrix section.",
      "\tKeyword \"NbGroups\" not found in Structure section.",
      "\tKeyword \"Group\" not found in Structure section.",
      "\tKeyword \"MatrixSize\" not found in Mantel section.",
      "\tKeyword \"MatrixNumber\" not found in Mantel section.",
      "\tKeyword \"YMatrixLabels\" not found in Mantel section.",
      "\tKeyword \"DistMatMantel\" not found in Mantel section.",
      "\tKeyword \"UsedYMatrixLabels\" not found in Mantel section.",
  };
  for (const char* m : messages) EXPECT_TRUE(has(o.log, m)) << m << "\n" << o.log;
}

TEST(ProjectDriver, ExternalFilesBesideTheProject) {
  testing_support::TempDir dir;
  testing_support::write_file(dir.path() / "list.txt", "h ACG\n");
  const my_string folder = (dir.str() + "/").c_str();
  const std::string head = profile + "[Data]\n[[HaplotypeDefinition]]\n";
  const Outcome found =
      read(head + "HaplList=EXTERN \"list.txt\"\n" + samples, FakeSections(), folder);
  EXPECT_EQ(found.result, 1) << found.log;
  EXPECT_EQ(found.calls, (std::vector<std::string>{"haplotypes(extern)", "samples"}));
  EXPECT_TRUE(has(found.log,
                  "Reading Haplotype List ...\n\tReading haplotype list in external "
                  "file \"" +
                      dir.str() + "/list.txt\"\n"))
      << found.log;

  const Outcome missing = read(head + "HaplList=EXTERN \"none.txt\"\n", FakeSections(), folder);
  EXPECT_EQ(missing.result, 0);
  EXPECT_EQ(missing.codes, std::vector<int>{200});
  EXPECT_TRUE(has(missing.log, "\tWarning: External file \"" + dir.str() +
                                   "/none.txt\" listed on line 10 cannot be open. Check that "
                                   "it exists. Aborting reading project\n"))
      << missing.log;

  const Outcome unnamed = read(head + "HaplList=EXTERN\n", FakeSections(), folder);
  EXPECT_EQ(unnamed.result, 0);
  EXPECT_EQ(unnamed.codes, (std::vector<int>{190, 200}));

  testing_support::write_file(dir.path() / "m.txt", "0\n");
  const Outcome matrix = read(
      profile + "[Data]\n[[DistanceMatrix]]\nMatrixSize=1\nMatrixData=EXTERN 'm.txt'\n" + samples,
      FakeSections(), folder);
  EXPECT_EQ(matrix.result, 1) << matrix.log;
  EXPECT_EQ(matrix.codes, std::vector<int>{17});
  EXPECT_TRUE(has(matrix.log, "\tReading Distance Matrix in external file \"" + dir.str() +
                                  "/m.txt\"\n!W17 Project::newOpen()\n\tReading distance "
                                  "matrix ...\n"))
      << matrix.log;
}

// A project head written by the program reads back with the same profile.
TEST(ProjectDriver, WrittenProfileReadsBack) {
  ProfileSettings written;
  written.Title = "Round trip";
  written.NbSamples = 1;
  written.DataType = data_type_code::MICROSAT;
  written.GenotypicData = 1;
  written.GameticPhase = 0;
  written.LocusSeparator = ';';
  written.MissingData = '-';
  written.RecessiveAllele = "999";
  written.Frequency = 1;
  std::ostringstream os;
  os << written << "\n" << samples;
  ReportCapture capture;
  std::istringstream is(os.str());
  ProfileSettings p;
  FakeSections sections;
  ASSERT_EQ(read_project_file(is, p, sections, ""), 1) << capture.text();
  EXPECT_EQ(p.Title, written.Title);
  EXPECT_EQ(p.NbSamples, 1);
  EXPECT_EQ(p.DataType, data_type_code::MICROSAT);
  EXPECT_EQ(p.GenotypicData, 1);
  EXPECT_EQ(p.GameticPhase, 0);
  EXPECT_EQ(p.LocusSeparator, ';');
  EXPECT_EQ(p.MissingData, '-');
  EXPECT_EQ(p.RecessiveAllele, "999");
  EXPECT_EQ(p.Frequency, 1);
  EXPECT_TRUE(capture.reports().empty()) << capture.text();
}

}  // namespace
