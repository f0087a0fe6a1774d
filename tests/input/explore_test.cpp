// Exploring a project by the character-based route: the profile, the names
// of samples and groups, and the refusals for files that are not projects.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "input/profile_writer.h"
#include "input/project_explore.h"
#include "input/report_capture.h"
#include "support/test_support.h"

namespace {

using input_testing::ReportCapture;
using testing_support::read_file;
using testing_support::TempDir;

const char* const dna_with_structure = R"(# Two samples of DNA sequences in two groups
[Profile]
  Title="DNA sample project"
  NbSamples=2
  DataType=DNA
  GenotypicData=0
  LocusSeparator=NONE
  MissingData='?'

[Data]
  [[Samples]]
    SampleName="Pop 1"
    SampleSize=3
    SampleData= {
      h1 2 ACGT
      h2 1 ACGA
    }
    SampleName="Pop 2"
    SampleSize=2
    SampleData= {
      h1 1
      h3 1 TCGA   # a comment
    }
  [[Structure]]
    StructureName="two groups"
    NbGroups=2
    Group={ "Pop 1" }
    Group={
      "Pop 2"
    }
)";

const char* const rflp_with_sections = R"([Profile]
  Title="RFLP haplotypes"
  NbSamples=1
  DataType=RFLP
  GenotypicData=0
  LocusSeparator=NONE
  MissingData='?'
  UsedHaplList="list"
[Data]
[[HaplotypeDefinition]]
  HaplListName="list"
  HaplList={
    r1 0101
    r2 0111
  }
[[DistanceMatrix]]
  MatrixName="rflp distances"
  MatrixSize=2
  LabelPosition=COLUMN
  MatrixData={
    r1 0
    r2 1 0
  }
[[Samples]]
  SampleName="R"
  SampleData={
    r1 3
    r2 1
  }
)";

const char* const microsat_genotypes = R"([Profile]
  Title="Microsatellites"
  NbSamples=1
  GenotypicData=1
  GameticPhase=0
  DataType=MICROSAT
  LocusSeparator=TAB
  MissingData="?"
  RecessiveData=0
[Data]
[[Samples]]
  SampleName="M"
  SampleSize=2
  SampleData={
    i1 1 120	132
         124	132
    i2 1 120	130
         120	132
  }
[[Structure]]
  NbGroups=1
  Group={ "M" }
)";

const char* const standard_genotypes = R"([Profile]
  Title="Standard genotypes"
  NbSamples=2
  GenotypicData=1
  GameticPhase=1
  DataType=STANDARD
  LocusSeparator=WHITESPACE
  MissingData="?"
  RecessiveData=1
  RecessiveAllele="0"
[Data]
[[Samples]]
  SampleName="A"
  SampleData={
    a1 1 1 2
         1 1
  }
  SampleName="B"
  SampleData={
    b1 1 2 2
         1 2
  }
)";

const char* const frequencies = R"([Profile]
  Title="Frequencies"
  NbSamples=1
  DataType=FREQUENCY
  GenotypicData=0
  Frequency=REL
[Data]
[[Samples]]
  SampleName="only"
  SampleSize=10
  SampleData={
    a 0.4
    b 0.6
  }
)";

struct Explored {
  int result;
  ProfileSettings profile;
  std::string samples;
  std::string groups;
  std::vector<int> codes;
};

Explored explore(const std::string& text) {
  TempDir dir;
  ReportCapture capture;
  std::istringstream is(text);
  Explored e;
  const ExploreFiles files{(dir.path() / "samples.txt").string(),
                           (dir.path() / "groups.txt").string()};
  e.result = explore_project_stream(is, e.profile, files);
  if (std::filesystem::exists(files.samples)) e.samples = read_file(files.samples);
  if (std::filesystem::exists(files.groups)) e.groups = read_file(files.groups);
  e.codes = capture.codes();
  return e;
}

std::string properties(const ProfileSettings& profile) {
  std::ostringstream os;
  write_project_properties(os, profile);
  return os.str();
}

TEST(Explore, DnaWithStructure) {
  const Explored e = explore(dna_with_structure);
  ASSERT_EQ(e.result, 1);
  EXPECT_TRUE(e.codes.empty());
  EXPECT_EQ(e.samples, "2\nPop 1\nPop 2\n");
  EXPECT_EQ(e.groups, "2\n1\nPop 1\n1\nPop 2\n");
  EXPECT_EQ(properties(e.profile),
            "DNA sample project=Title;\n2=NbSamples;\n2=NbGroups; \n0=GenotypicData;\n"
            "1=GameticPhase;\nDNA=DataType;\nNONE=LocusSeparator;\n?=MissingData;\n"
            "=DistMatLabel;\nNONE=UsedHaplList; \n=ExtHaplFile; \n0=Interleave; \n"
            "0=IndividualLevel;\n0=Frequency; \n0=RecessiveData; \nnull=RecessiveAllele;\n"
            "1=GivenDistMat; \n1e-07=EpsilonValue;\n1e-05=FrequencyThreshold;\n");
}

struct TypeCase {
  const char* text;
  const char* data_type;
  int genotypic;
  const char* separator;
  int nb_groups;
  const char* samples;
};

TEST(Explore, EachDataType) {
  const TypeCase cases[] = {
      {rflp_with_sections, "RFLP", 0, "NONE", 0, "1\nR\n"},
      {microsat_genotypes, "MICROSAT", 1, "TAB", 1, "1\nM\n"},
      {standard_genotypes, "STANDARD", 1, "WHITESPACE", 0, "2\nA\nB\n"},
      {frequencies, "FREQUENCY", 0, "WHITESPACE", 0, "1\nonly\n"},
  };
  for (const TypeCase& c : cases) {
    const Explored e = explore(c.text);
    ASSERT_EQ(e.result, 1) << c.data_type;
    EXPECT_TRUE(e.codes.empty()) << c.data_type;
    const std::string p = properties(e.profile);
    EXPECT_NE(p.find(std::string("\n") + c.data_type + "=DataType;\n"), std::string::npos) << p;
    EXPECT_NE(p.find("\n" + std::to_string(c.genotypic) + "=GenotypicData;\n"), std::string::npos)
        << p;
    EXPECT_NE(p.find(std::string("\n") + c.separator + "=LocusSeparator;\n"), std::string::npos)
        << p;
    EXPECT_NE(p.find("\n" + std::to_string(c.nb_groups) + "=NbGroups; \n"), std::string::npos) << p;
    EXPECT_EQ(e.samples, c.samples) << c.data_type;
  }
}

TEST(Explore, ProfileDetailsReachTheAnswer) {
  const std::string rflp = properties(explore(rflp_with_sections).profile);
  EXPECT_NE(rflp.find("\nlist=UsedHaplList; \n"), std::string::npos) << rflp;
  const std::string recessive = properties(explore(standard_genotypes).profile);
  EXPECT_NE(recessive.find("\n1=RecessiveData; \n0=RecessiveAllele;\n"), std::string::npos);
  const std::string relative = properties(explore(frequencies).profile);
  EXPECT_NE(relative.find("\n1=Frequency; \n"), std::string::npos) << relative;
}

struct RefusalCase {
  const char* what;
  std::string text;
  std::vector<int> codes;
};

TEST(Explore, FilesThatAreNotProjects) {
  std::string binary;
  for (int i = 0; i < 256; ++i) binary.push_back(static_cast<char>((i * 37) & 0xff));
  const std::string dna = dna_with_structure;
  const std::string six_sections =
      "[Profile]\nTitle=\"t\"\nNbSamples=0\n[Data]\n[[Samples]]\n[[Structure]]\n[[Mantel]]\n"
      "[[DistanceMatrix]]\n[[HaplotypeDefinition]]\n[[Samples]]\n";
  const RefusalCase cases[] = {
      {"empty", "", {102, 127}},
      {"binary", binary, {100, 102, 127}},
      {"no [Data]", "[Profile]\nTitle=\"t\"\nNbSamples=1\n", {102}},
      {"truncated in the profile", dna.substr(0, 60), {102}},
      {"truncated in the samples", dna.substr(0, dna.find("SampleName=\"Pop 2\"")), {62}},
      {"no subsection", "[Profile]\nTitle=\"t\"\n[Data]\n", {128}},
      {"unknown subsection", "[Profile]\nTitle=\"t\"\n[Data]\n[[Individuals]]\n", {105}},
      {"too many sections", six_sections, {131}},
  };
  for (const RefusalCase& c : cases) {
    const Explored e = explore(c.text);
    EXPECT_EQ(e.result, 0) << c.what;
    EXPECT_EQ(e.codes, c.codes) << c.what;
  }
}

TEST(ProfileWriter, ProjectHeadReadsBack) {
  ProfileSettings p;
  p.Title = "Written";
  p.NbSamples = 2;
  p.DataType = data_type_code::MICROSAT;
  p.LocusSeparator = ';';
  p.LociLabels = {"L1", "L2"};
  p.UsedHaplList = "EXTERN";
  p.ExtHaplFile = "h.txt";
  std::ostringstream os;
  os << p;
  EXPECT_EQ(os.str(),
            "# Project definition generated by Morvalin \n\n\n[Profile]\n\tTitle=\"Written\"\n"
            "\t\tNbSamples=2\n\t\tGenotypicData=0\n\t\tGameticPhase=1\n\t\tIndividualLevel=0\n"
            "\t\tRecessiveData=0\n\t\tRecessiveAllele=\"null\"\n\t\tMissingData=\"?\"\n"
            "\t\tLociLabels = {\n\t\t\t\"L1\"\n\t\t\t\"L2\"\n\t\t}\n\t\tDataType = MICROSAT\n"
            "\t\tFrequency=ABS\n\t\tLocusSeparator=';'\n\t\tUsedHaplList = EXTERN \"h.txt\"\n"
            "\n\n[Data]");
}

}  // namespace
