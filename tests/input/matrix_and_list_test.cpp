// [[DistanceMatrix]] and [[HaplotypeDefinition]]: labels on a line or in a
// column, rows of the lower triangle, EXTERN files, and the faults of each.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "input/project_data_support.h"
#include "support/test_support.h"

namespace {

using input_testing::dna_profile;
using input_testing::expect_fault;
using input_testing::FaultCase;
using input_testing::LoadedProject;
using input_testing::project_head;

const std::string samples_tail =
    "[[Samples]]\nSampleName=\"p\"\nSampleSize=2\nSampleData={\na 1\nb 1\n}\n";

// FREQUENCY data; [[DistanceMatrix]] on line 8, its data from line 13 on.
std::string with_matrix(const std::string& position, const std::string& data) {
  return project_head("DataType=FREQUENCY\nGenotypicData=0\n") +
         "[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=3\nLabelPosition=" + position +
         "\nMatrixData={\n" + data + samples_tail;
}

TEST(DistanceMatrixSection, FaultsOfSizesLabelsAndRows) {
  const FaultCase cases[] = {
      {"too few labels",
       with_matrix("LINE", "a b\n0\n1 0\n2 1 0\n}\n"),
       {12},
       "\tMissing labels on line 13. Only 2 labels were found while 3 were expected. Last "
       "correctly read label was \"b\". Aborting reading Distance Matrix\n"},
      {"brace among labels",
       with_matrix("LINE", "a b c }\n"),
       {12},
       "\tUnexpected closing brace found on line 13. Aborting reading distance matrix.\n"},
      {"no label in row",
       with_matrix("COLUMN", "a 0\n\n"),
       {12},
       "\tUnable to read label #1 on line 14. Aborting reading Distance Matrix\n"},
      {"short row",
       with_matrix("COLUMN", "a 0\nb 1\n"),
       {13},
       "\tUnable to read distance #1 on line 14. Aborting reading distance matrix.\n"},
      {"bad value",
       with_matrix("COLUMN", "a 0\nb x 0\n"),
       {13},
       "\tBad value (\"x\") for distance #0 on line 14. Aborting reading distance matrix.\n"},
      {"brace before the last row",
       with_matrix("COLUMN", "a 0\nb 1 0\n}\n"),
       {13},
       "\tInvalid dimension for distance matrix: 3 rows were expected, but only 2 were found. "
       "Aborting reading project.\n"},
      {"no closing brace",
       with_matrix("COLUMN", "a 0\nb 1 0\nc 2 1 0\n"),
       {21},
       "\tNo closing brace in Matrix Data \"m\"definition. Aborting reading project.\n"},
      {"size 0",
       project_head("DataType=FREQUENCY\nGenotypicData=0\n") +
           "[[DistanceMatrix]]\nMatrixSize=0\n" + samples_tail,
       {15},
       "\tBad size (0) for distance matrix \"none\". Check size (0) reported on line 9\n"},
  };
  for (const FaultCase& c : cases) expect_fault(c);
}

TEST(DistanceMatrixSection, LabelsOnALineAndExtraValuesWarn) {
  LoadedProject p;
  p.read(with_matrix("LINE", "a b c d\n0\n1 0 7\n2 1 0\n}\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.codes, (std::vector<int>{15, 15}));
  EXPECT_TRUE(p.logged("\tWarning: More labels than anticipated (3) are declared on line 13\n"))
      << p.log;
  // The line number and the count stand side by side.
  EXPECT_TRUE(p.logged("\tWarning:  Too many distances are defined on line 153 instead of 2\n"))
      << p.log;
  EXPECT_EQ(p.dist_mat.label(0), "a");
  EXPECT_EQ(p.dist_mat.label(2), "c");
  EXPECT_EQ(p.dist_mat(1, 0), 1.0);
  EXPECT_EQ(p.dist_mat(2, 1), 1.0);
  EXPECT_EQ(p.dist_mat(0, 2), 2.0);
}

TEST(DistanceMatrixSection, ExternFile) {
  testing_support::TempDir dir;
  testing_support::write_file(dir.path() / "m.dis", "a 0\nb 0.5 0\nc 2 1.25 0\n");
  const std::string text = project_head("DataType=FREQUENCY\nGenotypicData=0\n") +
                           "[[DistanceMatrix]]\nMatrixSize=3\nLabelPosition=COLUMN\n"
                           "MatrixData=EXTERN \"m.dis\"\n" +
                           samples_tail;
  LoadedProject p;
  p.read(text, dir.str() + "/");
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.codes, (std::vector<int>{17}));
  EXPECT_EQ(p.dist_mat(2, 1), 1.25);
  EXPECT_EQ(p.dist_mat.label(1), "b");

  LoadedProject missing;
  missing.read(text, dir.str() + "/none/");
  EXPECT_EQ(missing.result, 0);
  EXPECT_EQ(missing.codes, (std::vector<int>{200}));
}

// [[HaplotypeDefinition]] on line 10, its definitions from line 13 on.
std::string with_list(const std::string& profile, const std::string& list) {
  return project_head(profile) + "[[HaplotypeDefinition]]\nHaplListName=\"l\"\nHaplList={\n" +
         list + "[[Samples]]\nSampleName=\"p\"\nSampleSize=1\nSampleData={\na 1\n}\n";
}

TEST(HaplotypeList, Faults) {
  const std::string microsat =
      "DataType=MICROSAT\nGenotypicData=0\nLocusSeparator=WHITESPACE\nFrequency=ABS\n";
  const FaultCase cases[] = {
      {"defined twice",
       with_list(dna_profile, "a AC\na AG\n}\n"),
       {31},
       "\tHaplotype \"a\" listed on line 14 is already defined previously, aborting reading "
       "procedure...\n"},
      {"bad data",
       with_list(dna_profile, "a A3\n}\n"),
       {26, 33},
       "\tUnable to read haplotype definition on line 13, aborting reading procedure\n"},
      {"blank line",
       with_list(dna_profile, "a AC\n\n}\n"),
       {33},
       "\tUnable to read haplotype definition on line 14, aborting reading procedure\n"},
      {"loci differ",
       with_list(microsat, "a 100 102\nb 100\n}\n"),
       {69},
       "\tNumber of loci for haplotype \"b\" is different (1) from that previously defined (2) "
       "on line 14\n"},
      {"no closing brace",
       with_list(dna_profile, "a AC\n"),
       {194},
       "\tMissing closing brace in Haplotype definition list, aborting reading procedure\n"},
  };
  for (const FaultCase& c : cases) expect_fault(c);
}

TEST(HaplotypeList, BraceBehindTheLastDefinition) {
  LoadedProject p;
  p.read(with_list(dna_profile, "a AC\nb AG }\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.haplo_db.HaplListName, "l");
  ASSERT_EQ(p.haplo_db.size(), 2);
  EXPECT_EQ(p.haplo_db[1]->hapl_content, "AG");
  EXPECT_EQ(p.sample(0).haplo_list[0].hapl, p.haplo_db[0]);
}

TEST(HaplotypeList, ExternFile) {
  testing_support::TempDir dir;
  testing_support::write_file(dir.path() / "h.txt", "a AC\nb AG\n");
  const std::string text = project_head(dna_profile) +
                           "[[HaplotypeDefinition]]\nHaplList=EXTERN \"h.txt\"\n"
                           "[[Samples]]\nSampleName=\"p\"\nSampleSize=2\nSampleData={\nb 2\n}\n";
  LoadedProject p;
  p.read(text, dir.str() + "/");
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.haplo_db.size(), 2);
  EXPECT_TRUE(p.logged("\tReading haplotype list in external file \"" + dir.str() + "/h.txt\"\n"))
      << p.log;

  LoadedProject missing;
  missing.read(text, dir.str() + "/none/");
  EXPECT_EQ(missing.result, 0);
  EXPECT_EQ(missing.codes, (std::vector<int>{200}));
  EXPECT_TRUE(missing.logged("\tWarning: External file \"" + dir.str() +
                             "/none/h.txt\" listed on line 11 cannot be open. Check that it "
                             "exists. Aborting reading project\n"))
      << missing.log;
}

}  // namespace
