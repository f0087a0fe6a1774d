// The [[Samples]] section: faults of the data lines end the reading with
// their message and line; sizes and sums that disagree are corrected with a
// warning; names, zero counts and EXTERN files.
#include <gtest/gtest.h>

#include <algorithm>
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

const std::string microsat_profile =
    "DataType=MICROSAT\nGenotypicData=0\nLocusSeparator=WHITESPACE\nFrequency=ABS\n";
const std::string genotype_profile =
    "DataType=STANDARD\nGenotypicData=1\nGameticPhase=0\nLocusSeparator=WHITESPACE\n";

// A project with one sample "p" whose data lines start on line 14.
std::string one_sample(const std::string& profile, const std::string& data,
                       const std::string& size = "SampleSize=1\n") {
  return project_head(profile) + "[[Samples]]\nSampleName=\"p\"\n" + size + "SampleData={\n" + data;
}

TEST(SampleData, FaultsOfHaplotypeLinesEndTheReading) {
  const FaultCase cases[] = {
      {"digit in DNA",
       one_sample(dna_profile, "h 1 AC3T\n}\n"),
       {26, 33, 63},
       "\tUnable to read haplotype definition on line 14. Aborting reading project.\n"},
      {"2 in RFLP",
       one_sample("DataType=RFLP\nGenotypicData=0\nLocusSeparator=NONE\nFrequency=ABS\n",
                  "h 1 0120\n}\n"),
       {25, 33, 63},
       "line 14. Aborting reading project.\n"},
      {"letter in microsat",
       one_sample(microsat_profile, "h 1 100 1a2\n}\n"),
       {27, 33, 63},
       "\tUnable to read haplotype definition on line 14."},
      {"loci differ",
       one_sample(microsat_profile, "a 1 100 102\nb 1 100\n}\n", "SampleSize=2\n"),
       {69, 63},
       "\tNumber of loci for haplotype \"b\" is different (1) from that previously defined (2) on "
       "line 15\n"},
      {"next sample before brace",
       one_sample(dna_profile, "h 1 ACGT\nSampleName=\"q\"\n"),
       {194, 63},
       "\tMissing closing brace for sample \"p\". New section found on line 15 before finding "
       "closing brace.  Aborting reading procedure\n"},
      {"end before brace",
       one_sample(dna_profile, "h 1 ACGT\n"),
       {194, 63},
       "\tMissing closing brace for sample \"p\", aborting reading procedure\n"},
      {"new id without data",
       one_sample(dna_profile, "h 1\n}\n"),
       {63, 63},
       "\tHaplotype \"h\" listed on line 14 is undefined. Aborting reading project.\n"},
      {"frequency not a number",
       one_sample(dna_profile, "h x ACGT\n}\n"),
       {144, 63},
       "\tProblem reading haplotype frequency (\"x\") on line 14 . Aborting reading file\n"},
      {"no frequency",
       one_sample(dna_profile, "h\n}\n"),
       {144, 63},
       "\tUnable to read haplotype \"h\" frequency on line 14, aborting reading procedure\n"},
      {"blank line",
       one_sample(dna_profile, "h 1 ACGT\n\n}\n"),
       {144, 63},
       "\tUnable to read haplotype \"\" frequency on line 15"},
      {"comment line",
       one_sample(dna_profile, "# no comments here\nh 1 ACGT\n}\n"),
       {144, 63},
       "\tUnable to read haplotype \"\" frequency on line 14"},
      {"data without name",
       project_head(dna_profile) + "[[Samples]]\nSampleSize=1\nSampleData={\nh 1 A\n}\n",
       {207},
       "Warning: Keyword \"SampleName\" not found while data is defined for population #1\n"},
      {"redefined otherwise",
       project_head(dna_profile, 2) + "[[Samples]]\nSampleName=\"p\"\nSampleData={\nh 1 ACGT\n}\n"
                                      "SampleName=\"q\"\nSampleData={\nh 1 ACGA\n}\n",
       {141, 146, 31, 63},
       "\tHaplotype h defined on line 17 has already been defined previously...\n"
       "\tDefinition of haplotype h defined on line 17 does not match its previous definition, "
       "aborting reading project.\n!E31 Population::New_read_gametic_data()\n"},
  };
  for (const FaultCase& c : cases) expect_fault(c);
}

TEST(SampleData, FaultsOfGenotypeLinesEndTheReading) {
  const FaultCase cases[] = {
      {"second line missing",
       one_sample(genotype_profile, "i 1 A B\n}\n"),
       {150, 63},
       "\tUnable to read genotype \"i\" definition on line 15, aborting reading procedure\n"},
      {"frequency not a number",
       one_sample(genotype_profile, "i x A B\nA B\n}\n"),
       {149, 63},
       "\tProblem reading genotype frequency (\"x\") on line 14 . Aborting reading project\n"},
      {"loci differ",
       one_sample(genotype_profile, "i 1 A B\nA\n}\n"),
       {69, 63},
       "\tNumber of loci for genotype \"i\" is different (1) from that previously defined (2) on "
       "line 15\n"},
      {"no id",
       one_sample(genotype_profile, "\nA B\n}\n"),
       {150, 63},
       "\tUnable to read genotype ID on line 14, aborting reading procedure\n"},
      {"no frequency",
       one_sample(genotype_profile, "i\nA B\n}\n"),
       {149, 63},
       "\tUnable to read read genotype frequency on line 14. Aborting reading project\n"},
      {"no first gamete",
       one_sample(genotype_profile, "i 1\nA B\n}\n"),
       {150, 63},
       "\tUnable to read genotype \"i\" definition on line 14. Aborting reading project\n"},
      {"bad allele",
       one_sample("DataType=MICROSAT\nGenotypicData=1\nGameticPhase=0\nLocusSeparator=WHITESPACE\n",
                  "i 1 100 1x2\n100 102\n}\n"),
       {27, 150, 63},
       "\tUnable to read phenotype \"i\" definition on line 14. Aborting reading project\n"},
      {"next section on second line",
       one_sample(genotype_profile, "i 1 A B\n[[Structure]]\n"),
       {194, 63},
       "New section found on line 15 before finding closing brace."},
  };
  for (const FaultCase& c : cases) expect_fault(c);
}

TEST(SampleData, SizesAndSumsThatDisagreeAreCorrected) {
  struct Case {
    const char* what;
    std::string text;
    std::vector<std::string> reports;  // "code function"
    double size;
  };
  const std::string rel = "DataType=DNA\nGenotypicData=0\nLocusSeparator=NONE\nFrequency=REL\n";
  const Case cases[] = {
      {"size above the sum",
       one_sample(dna_profile, "a 2 AC\nb 1 AG\n}\n", "SampleSize=5\n"),
       {"141 Population::New_read_gametic_data() (SampleSize=5; Sum. Freq.=3)"},
       3},
      {"no size",
       one_sample(dna_profile, "a 2 AC\n}\n", ""),
       {"141 Population::New_read_gametic_data() (SampleSize=0; Sum. Freq.=2)"},
       2},
      {"relative, sum 1", one_sample(rel, "a 0.5 AC\nb 0.5 AG\n}\n", "SampleSize=10\n"), {}, 10},
      {"relative, sum 0.9",
       one_sample(rel, "a 0.6 AC\nb 0.3 AG\n}\n", "SampleSize=10\n"),
       {"174 Population::New_read_gametic_data() sum of Relative frequencies=0.900000"},
       9},
      {"genotypes",
       one_sample(genotype_profile, "i 2 A B\nA B\nj 1 A A\nB B\n}\n", "SampleSize=4\n"),
       {"148 Population::New_read_genotypic_data() (SampleSize=4; Sum. Freq.=3)"},
       6},
  };
  for (const Case& c : cases) {
    LoadedProject p;
    p.read(c.text);
    EXPECT_EQ(p.result, 1) << c.what << "\n" << p.log;
    std::vector<std::string> reports;
    for (const auto& r : p.reports) reports.push_back(std::to_string(r.code) + " " + r.function);
    EXPECT_EQ(reports, c.reports) << c.what;
    ASSERT_EQ(p.samples->size(), 1) << c.what;
    EXPECT_EQ(p.sample(0).sample_size, c.size) << c.what;
  }
}

TEST(SampleData, MissingSampleSizeIsToldAtTheEnd) {
  LoadedProject p;
  p.read(one_sample(dna_profile, "a 2 AC\n}\n", ""));
  EXPECT_TRUE(
      p.logged("\tKeyword \"SampleSize\" not found in Samples section. Sample size is "
               "undefined.\n\t\tUsing sum of haplotype frequencies. Check your project "
               "file.\n"))
      << p.log;
}

TEST(SampleData, RelativeFrequenciesWithoutSizeLeaveTheSampleEmpty) {
  LoadedProject p;
  p.read(one_sample("DataType=DNA\nGenotypicData=0\nLocusSeparator=NONE\nFrequency=REL\n",
                    "a 0.5 AC\nb 0.5 AG\n}\n", ""));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_TRUE(p.sample(0).haplo_list.empty());
  EXPECT_EQ(p.haplo_db.size(), 2);
  input_testing::ReportCapture capture;
  EXPECT_EQ(p.samples->verify_data(), 0);
  EXPECT_EQ(capture.codes(), (std::vector<int>{68}));
}

TEST(SampleData, CountOfSamplesThatDiffersFromTheProfile) {
  const std::string sample = "SampleName=\"p\"\nSampleSize=1\nSampleData={\nh 1 A\n}\n";
  LoadedProject at_end;
  at_end.read(project_head(dna_profile, 3) + "[[Samples]]\n" + sample);
  EXPECT_EQ(at_end.result, 1);
  EXPECT_EQ(at_end.codes, (std::vector<int>{95}));
  EXPECT_TRUE(
      at_end.logged("Warning: 1 samples are actually listed in project file, while \n3 "
                    "are defined in the [[Profile]] section. Adjusting no. of "
                    "samples...\n"))
      << at_end.log;
  EXPECT_EQ(at_end.profile.NbSamples, 1);
  EXPECT_EQ(at_end.samples->NbSamples, 1);

  LoadedProject before_structure;
  before_structure.read(project_head(dna_profile, 3) + "[[Samples]]\n" + sample +
                        "[[Structure]]\nNbGroups=1\nGroup={\"p\"}\n");
  EXPECT_EQ(before_structure.result, 1) << before_structure.log;
  EXPECT_EQ(before_structure.codes, (std::vector<int>{95}));
  EXPECT_TRUE(
      before_structure.logged("Warning: 1 samples are actually listed in project file, "
                              "while 3 are defined in the [[Profile]] section\n"))
      << before_structure.log;
  EXPECT_EQ(before_structure.profile.NbSamples, 3);
}

TEST(SampleData, UnreadableNameEndsTheSectionQuietly) {
  LoadedProject p;
  p.read(project_head(dna_profile) + "[[Samples]]\nSampleName=p\nSampleData={\nh 1 A\n}\n");
  EXPECT_EQ(p.result, 0);
  EXPECT_EQ(p.codes, (std::vector<int>{190, 62, 95, 203})) << p.log;
}

TEST(SampleData, ZeroCountKeepsTheDefinitionOnly) {
  LoadedProject p;
  p.read(one_sample(dna_profile, "a 2 AC\nb 0 AG\n}\n", "SampleSize=2\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.sample(0).haplo_list.size(), 1u);
  EXPECT_EQ(p.sample(0).Nb_haplo, 1);
  ASSERT_NE(p.haplo_db.find("b"), nullptr);
  EXPECT_EQ(p.haplo_db.find("b")->hapl_content, "AG");
}

TEST(SampleData, NamesTakenAlreadyGetTheTryNumber) {
  const std::string sample = "SampleName=\"p\"\nSampleData={\nh 1 A\n}\n";
  LoadedProject p;
  p.read(project_head(dna_profile, 3) + "[[Samples]]\n" + sample + sample + sample);
  ASSERT_EQ(p.result, 1) << p.log;
  ASSERT_EQ(p.samples->size(), 3);
  EXPECT_EQ(p.sample(1).SampleName, "p0");
  EXPECT_EQ(p.sample(2).SampleName, "p01");
  EXPECT_EQ(std::count(p.codes.begin(), p.codes.end(), 65), 3);
  EXPECT_EQ(p.samples->find_by_name("p01"), 2);
}

TEST(SampleData, ExternFilesBesideTheProject) {
  testing_support::TempDir dir;
  testing_support::write_file(dir.path() / "p.txt", "h 3 ACGT\nk 1 ACGA\n");
  const std::string text = project_head(dna_profile) +
                           "[[Samples]]\nSampleName=\"p\"\nSampleSize=4\n"
                           "SampleData=EXTERN \"p.txt\"\n";
  LoadedProject p;
  p.read(text, dir.str() + "/");
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.codes, (std::vector<int>{191}));
  EXPECT_TRUE(p.logged("\tReading sample data for population \"p\" in external file\"" + dir.str() +
                       "/p.txt\"\n"))
      << p.log;
  EXPECT_EQ(p.sample(0).sample_size, 4.0);
  EXPECT_EQ(p.sample(0).haplo_list.size(), 2u);

  LoadedProject missing;
  missing.read(text, dir.str() + "/absent/");
  EXPECT_EQ(missing.result, 0);
  EXPECT_EQ(missing.codes, (std::vector<int>{191, 63}));
  EXPECT_TRUE(missing.logged("\tWarning: External file \"" + dir.str() +
                             "/absent/p.txt\" listed on line 13 cannot be open. Check that it "
                             "exists...\n"))
      << missing.log;
}

TEST(SampleData, KnownHaplotypesGoByTheirId) {
  LoadedProject p;
  p.read(project_head(dna_profile, 2) +
         "[[Samples]]\nSampleName=\"p\"\nSampleData={\nh 1 ACGT\n}\n"
         "SampleName=\"q\"\nSampleData={\nh 2\nh 1 ACGT\n}\n");
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.sample(1).haplo_list.size(), 2u);
  EXPECT_EQ(p.haplo_db.find("h")->count, 4);
  EXPECT_EQ(p.codes, (std::vector<int>{141, 146, 141}));
}

}  // namespace
