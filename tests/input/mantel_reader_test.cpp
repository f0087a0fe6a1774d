// The [[Mantel]] section: sizes, labels, the kind of Y and the matrices,
// with the count of matrices that the kind implies; faults end the reading.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "input/project_data_support.h"
#include "support/test_support.h"

namespace {

using input_testing::dna_profile;
using input_testing::LoadedProject;
using input_testing::project_head;

const std::string matrix = "A 0\nB 1 0\nC 2 3 0\n}\n";

// Samples A, B, C (lines 10 to 25); [[Mantel]] on line 26, its lines from 27 on.
std::string with_mantel(const std::string& mantel) {
  std::string text = project_head(dna_profile, 3) + "[[Samples]]\n";
  for (const char* name : {"A", "B", "C"}) {
    const char* data = *name == 'A' ? "h 1 AC\n" : "h 1\n";
    text += "SampleName=\"" + std::string(name) + "\"\nSampleSize=1\nSampleData={\n" + data + "}\n";
  }
  return text + "[[Mantel]]\n" + mantel;
}

const std::string head = "MatrixSize=3\nMatrixNumber=2\nYMatrixLabels={\"A\" \"B\" \"C\"}\n";

TEST(MantelSection, TwoMatricesWithAComputedY) {
  LoadedProject p;
  p.run_settings.ComputeDistanceMatrixAMOVA = 0;
  p.read(with_mantel(head +
                     "YMatrix=\"FST\"\nUsedYMatrixLabels={\"A\" \"C\"\n\"B\"}\n"
                     "DistMatMantel={\n" +
                     matrix));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_TRUE(p.codes.empty()) << p.log;
  EXPECT_EQ(p.mantel.y_type, "fst");
  EXPECT_EQ(p.mantel.MatrixSize, 3);
  EXPECT_EQ(p.mantel.matrix_count, 2);
  EXPECT_EQ(p.mantel.labels, (std::vector<my_string>{"A", "B", "C"}));
  EXPECT_EQ(p.mantel.used_labels, (std::vector<my_string>{"A", "C", "B"}));
  EXPECT_EQ(p.mantel.X1(2, 1), 3.0);
  EXPECT_EQ(p.mantel.X1.label(2), "C");
  EXPECT_EQ(p.mantel.Y.dim(), 0);
  EXPECT_EQ(p.run_settings.ComputeDistanceMatrixAMOVA, 1);
  EXPECT_TRUE(p.logged("\t\tReading Mantel distance matrix ...\n\t\tdone ! (N ms)\n")) << p.log;
}

TEST(MantelSection, CustomYIsTheFirstMatrix) {
  LoadedProject p;
  p.run_settings.ComputeDistanceMatrixAMOVA = 0;
  p.read(
      with_mantel("MatrixSize=3\nMatrixNumber=3\nYMatrix=\"custom\"\n"
                  "YMatrixLabels={\"A\" \"B\" \"C\"}\nUsedYMatrixLabels={\"A\" \"B\" \"C\"}\n"
                  "DistMatMantel={\nA 0\nB 5 0\nC 6 7 0\n}\nDistMatMantel={\n" +
                  matrix + "DistMatMantel={\nA 0\nB 9 0\nC 9 9 0\n}\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.mantel.Y(1, 0), 5.0);
  EXPECT_EQ(p.mantel.X1(1, 0), 1.0);
  EXPECT_EQ(p.mantel.X2(1, 0), 9.0);
  EXPECT_EQ(p.run_settings.ComputeDistanceMatrixAMOVA, 0);
}

TEST(MantelSection, ThreeMatricesWithFstNeedTwoGiven) {
  LoadedProject p;
  p.read(
      with_mantel("MatrixSize=3\nMatrixNumber=3\nYMatrix=\"fst\"\n"
                  "YMatrixLabels={\"A\" \"B\" \"C\"}\nUsedYMatrixLabels={\"A\" \"B\" \"C\"}\n"
                  "DistMatMantel={\n" +
                  matrix + "DistMatMantel={\n" + matrix));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.mantel.matrix_count, 3);
  EXPECT_EQ(p.mantel.X2(2, 0), 2.0);
}

TEST(MantelSection, WithoutUsedLabelsAllAreAssumedButTheKeywordIsMissed) {
  LoadedProject p;
  p.read(with_mantel(head + "DistMatMantel={\n" + matrix));
  EXPECT_EQ(p.result, 0);
  EXPECT_EQ(p.codes, (std::vector<int>{203}));
  EXPECT_EQ(p.mantel.used_labels.size(), 3u);
  EXPECT_TRUE(
      p.logged("\tWarning: Section UsedYMatrixLabels not found. We shall assume that all "
               "labels previously defined in section YMatrixLabels are valid\n"))
      << p.log;
  EXPECT_TRUE(
      p.logged("\tKeyword \"UsedYMatrixLabels\" not found in Mantel section. Undefined "
               "matrix labels to be used for Mantel test. Check your project file.\n"))
      << p.log;
}

struct FaultCase {
  const char* what;
  std::string mantel;
  std::vector<int> codes;
  std::string log;
};

TEST(MantelSection, Faults) {
  const std::string used = "UsedYMatrixLabels={\"A\" \"B\" \"C\"}\n";
  const FaultCase cases[] = {
      {"size below 3",
       "MatrixSize=2\n",
       {15},
       "\tInvalid value assigned to MatrixSize on line 27. Value of MatrixSize needs to be at "
       "least 3. Aborting reading project.\n"},
      {"size not a number",
       "MatrixSize=x\n",
       {190, 14},
       "Bad value (\"x\") assigned to MatrixSize on line 27. Aborting reading project.\n"},
      {"size without '='",
       "MatrixSize 3\n",
       {197},
       "\tMissing '=' sign after keyword \"MatrixSize\" on line 27. Aborting reading project.\n"},
      {"number 4",
       "MatrixNumber=4\n",
       {199},
       "Invalid value (4) assigned to MatrixNumber on line 27. Value needs to be either 2 or 3. "
       "Aborting reading project.\n"},
      {"number not a number",
       "MatrixNumber=two\n",
       {190, 198},
       "Bad value (\"two\") assigned to MatrixNumber on line 27. Aborting reading project.\n"},
      {"unknown kind",
       "YMatrix=\"gst\"\n",
       {59},
       "\tInvalid YMatrix type (\"gst\")defined on line 27. Aborting reading project.\n"},
      {"unquoted kind",
       "YMatrix=fst\n",
       {190, 197},
       "\tProject file, Line #27 : Invalid value ('fst\") assigned to keyword \"YMatrix\"\n"},
      {"labels before size",
       "YMatrixLabels={\"A\"}\n",
       {197},
       "\tKeyword YMatrixLabels found on line 27 before MatrixSize has been defined. Abort "
       "reading matrix.\n"},
      {"too many labels",
       "MatrixSize=3\nYMatrixLabels={\"A\" \"B\" \"C\" \"D\"}\n",
       {12},
       "\tToo many labels found on line 28. Check YMatrixLabels definition. Abort reading "
       "project.\n"},
      {"too many labels later",
       "MatrixSize=3\nYMatrixLabels={\"A\"\n\"B\" \"C\"\n\"D\" }\n",
       {12},
       "\tToo many YMatrixLabels are defined. Only 3 labels were expected. Check for additional "
       "labels potentially present on line 30 . Aborting reading project.\n"},
      {"too few labels",
       "MatrixSize=3\nYMatrixLabels={\"A\" \"B\"}\n",
       {12},
       "\tInsufficient number of labels defined in YMatrixLabels section (2 instead of 3). "
       "Aborting reading project\n"},
      {"labels without brace",
       "MatrixSize=3\nYMatrixLabels=\"A\" \"B\" \"C\"\n",
       {12},
       "\tMissing opening brace in YMatrixLabels definition. Aborting reading project\n"},
      {"labels not closed",
       "MatrixSize=3\nYMatrixLabels={\"A\" \"B\" \"C\"\nDistMatMantel={\n",
       {12},
       "\tMissing closing brace in YMatrixLabels definition. Aborting reading project.\n"},
      {"used label unknown",
       head + "UsedYMatrixLabels={\"A\" \"Q\" \"C\"}\n",
       {201},
       "\tLabel \"Q\" defined on line UsedYMatrixLabels={\"A\" \"Q\" \"C\"} has not been defined "
       "previously in YMatrixLabels section. Aborting reading project.\n"},
      {"too few used labels",
       head + "UsedYMatrixLabels={\"A\" \"B\"}\n",
       {30},
       "\tToo few labels (2) defined in UsedYMatrixLabels section. At least 2 labels need to be "
       "defined. Aborting reading project.\n"},
      {"matrices missing",
       head + used,
       {186},
       "\tUnexpected number of matrices defined (1 instead of 2). Aborting reading project.\n"},
      {"matrix row missing",
       head + used + "DistMatMantel={\nA 0\nB 1 0\n}\n",
       {13},
       "\tInvalid dimension for distance matrix: 3 rows were expected, but only 2 were found. "
       "Aborting reading project.\n!E13 Mantel::newReadmatrixData()\n\t\tProblems in reading "
       "DisMatMantel section... aborting reading  project file.\n"},
      {"matrix not closed",
       head + used + "DistMatMantel={\nA 0\nB 1 0\nC 2 3 0\n",
       {21},
       "\tNo closing brace in distance matrix definition up to line 34. Aborting reading "
       "project.\n"},
      {"extern matrix missing",
       head + used + "DistMatMantel=EXTERN \"none.dis\"\n",
       {200},
       "\tWarning: External file \"none.dis\" listed on line 31 cannot be open. Check that it "
       "exists. Aborting reading project\n"},
  };
  for (const FaultCase& c : cases) {
    LoadedProject p;
    p.read(with_mantel(c.mantel));
    EXPECT_EQ(p.result, 0) << c.what;
    EXPECT_EQ(p.codes, c.codes) << c.what << "\n" << p.log;
    EXPECT_TRUE(p.logged(c.log)) << c.what << "\n" << p.log;
  }
}

TEST(MantelSection, ExternMatrix) {
  testing_support::TempDir dir;
  testing_support::write_file(dir.path() / "x.dis", "A 0\nB 1 0\nC 2 4 0\n");
  LoadedProject p;
  p.read(with_mantel(head + "UsedYMatrixLabels={\"A\" \"B\" \"C\"}\n"
                            "DistMatMantel=EXTERN \"x.dis\"\n"),
         dir.str() + "/");
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.codes, (std::vector<int>{17}));
  EXPECT_EQ(p.mantel.X1(2, 1), 4.0);
}

}  // namespace
