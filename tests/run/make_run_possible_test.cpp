// The checks of the tasks against the data before a run: each mending,
// dropping or refusing path, with its lines in the log and the document.
#include <gtest/gtest.h>

#include <vector>

#include "run/project.h"
#include "run/run_fixture.h"

using namespace run_testing;

namespace {

const char* const kHaplotypes =
    "[Profile]\nTitle=\"hap\"\nNbSamples=2\nDataType=DNA\nGenotypicData=0\n"
    "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"A\"\nSampleSize=3\nSampleData={\nh1 2 ACGTA\nh2 1 ACGTT\n}\n"
    "SampleName=\"B\"\nSampleSize=2\nSampleData={\nh1 1\nh3 1 ACCTT\n}\n";

const char* const kOneGroupEach =
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=2\nGroup={ \"A\" }\nGroup={ \"B\" }\n";

const char* const kMicrosatGenotypes =
    "[Profile]\nTitle=\"geno\"\nNbSamples=2\nDataType=MICROSAT\nGenotypicData=1\n"
    "GameticPhase=0\nLocusSeparator=WHITESPACE\nMissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"P1\"\nSampleSize=2\nSampleData={\ni1 1 120 130\n   122 130\n"
    "i2 1 120 132\n   120 130\n}\n"
    "SampleName=\"P2\"\nSampleSize=2\nSampleData={\ni3 1 122 130\n   122 132\n"
    "i4 1 120 130\n   124 130\n}\n";

const char* const kRecessiveKnownPhase =
    "[Profile]\nTitle=\"rec\"\nNbSamples=1\nDataType=STANDARD\nGenotypicData=1\n"
    "GameticPhase=1\nRecessiveData=1\nRecessiveAllele=\"xx\"\nLocusSeparator=WHITESPACE\n"
    "MissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"R\"\nSampleSize=2\nSampleData={\ni1 1 a b\n   a xx\n}\n";

const char* const kFrequencies =
    "[Profile]\nTitle=\"freq\"\nNbSamples=2\nDataType=FREQUENCY\nGenotypicData=0\n[Data]\n"
    "[[Samples]]\nSampleName=\"F1\"\nSampleSize=3\nSampleData={\nm1 2\nm2 1\n}\n"
    "SampleName=\"F2\"\nSampleSize=2\nSampleData={\nm1 1\nm3 1\n}\n";

const char* const kMantelFst =
    "[[Mantel]]\nMatrixSize=3\nMatrixNumber=2\nYMatrix=\"fst\"\n"
    "YMatrixLabels={ \"A\" \"B\" \"C\" }\nUsedYMatrixLabels={ \"A\" \"B\" \"C\" }\n"
    "DistMatMantel={\nA 0\nB 1 0\nC 2 1 0\n}\n";

struct Case {
  const char* name;
  std::string project;
  std::string keys;
  int result;
  int tasks_after;  // TaskNumber after the checks
  std::vector<std::string> log;
  std::vector<std::string> document;
};

const std::vector<Case>& cases() {
  static const std::vector<Case> list = {
      {"HardyWeinbergOnHaplotypes",
       kHaplotypes,
       "TaskNumber=33",
       1,
       0x1,
       {"     !!!Hardy-Weinberg disequilibrium test is not possible on Haplotypic data,\n"
        "        this task will be skipped.\n"},
       {}},
      {"AmovaWithoutStructure",
       kHaplotypes,
       "TaskNumber=512\nHaplAMOVA=1\nComputeDistanceMatrixAMOVA=1",
       1,
       0,
       {"\"Project::IsAmovaStructure()\" : no samples have been defined\n",
        "  An AMOVA analysis was selected and no Genetic structure\n"
        "  is defined, AMOVA task is skipped.\n"},
       {"  An AMOVA analysis was selected and no Genetic structure\n"
        "  is defined, AMOVA task is skipped.\n"}},
      {"AmovaOnOnePopulationPerGroup",
       std::string(kHaplotypes) + kOneGroupEach,
       "TaskNumber=512\nLocByLocAMOVA=1\nComputeDistanceMatrixAMOVA=1",
       1,
       0,
       {"\"Project::IsAmovaStructure()\" : invalid structure: only one population per group\n"},
       {"AMOVA task is skipped."}},
      {"AmovaBitWithoutKindIsKept",
       std::string(kHaplotypes) + kOneGroupEach,
       "TaskNumber=512\nComputeDistanceMatrixAMOVA=1",
       1,
       0x200,
       {},
       {}},
      {"RecessiveKnownPhaseRefusesTheExactTest",
       kRecessiveKnownPhase,
       "TaskNumber=8192",
       0,
       0x2000,
       {"#[ERROR # 1] from function \"Project::make_run_possible()\" : incompatibility between "
        "known gametic phase and recessive data\n"},
       {}},
      {"RecessiveKnownPhaseRefusesPairwiseFst",
       kRecessiveKnownPhase,
       "TaskNumber=1024",
       0,
       0x400,
       {"incompatibility between known gametic phase and recessive data\n"},
       {}},
      {"TooFewDememorisationSteps",
       kHaplotypes,
       "TaskNumber=1\nMarkovChainDememorisationStepsLD=100\nMarkovChainDememorisationStepsHW=499",
       1,
       0x1,
       {"  check selected settings...\n Too few steps for dememorization (100 ) in linkage "
        "disequilibrium test, setting it to 1000...\n Too few steps for dememorization (499 ) in "
        "Hardy-Weinberg disequilibrium test, setting it to 1000...\n  done!\n"},
       {}},
      {"MicrosatellitesDropEwensWattersonAndChakraborty",
       kMicrosatGenotypes,
       "TaskNumber=385",
       1,
       0x1,
       {"\t\tProcessing phenotypes into pseudo-haplotypes..."},
       {}},
      {"AssignmentNeedsGenotypes",
       kHaplotypes,
       "TaskNumber=32769",
       1,
       0x1,
       {"   !!!The computation of the likelihood of all individuals in each\n"
        "      population is only possible for Genotypic data \n"
        "      skipping the task...\n"},
       {}},
      {"FrequenciesWithoutMatrixUseConventionalFst",
       kFrequencies,
       "TaskNumber=1024\nComputeDistanceMatrixAMOVA=0",
       1,
       0x400,
       {"    !!!No matrix was specified in input file, Morvalin will compute it from the data\n",
        "   !!!No molecular information is available for testing genetic structure,\n"
        "      haplotype frequencies will be used, and conventional Fst will be computed\n"},
       {}},
      {"MantelAsksForThePairwiseIndices",
       std::string(kHaplotypes) + kMantelFst,
       "TaskNumber=65536",
       1,
       0x10400,
       {},
       {}},
      {"RecessiveDataHaveNoHardyWeinbergTest",
       kMicrosatGenotypes,
       "TaskNumber=32\nRecessiveAllelesEM=1",
       1,
       0,
       {"   !!!Hardy-Weinberg disequilibrium test is not possible with recessive data,\n"
        "      skipping task...\n"},
       {}},
  };
  return list;
}

class MakeRunPossible : public RunFixture, public ::testing::WithParamInterface<Case> {};

TEST_P(MakeRunPossible, MendsOrRefusesTheTasks) {
  const Case& c = GetParam();
  put("p.mvp", c.project);
  Project project;
  ASSERT_TRUE(open(project, "p", c.keys)) << log("p");
  EXPECT_EQ(project.make_run_possible(), c.result) << log("p");
  EXPECT_EQ(project.run_settings.TaskNumber, c.tasks_after);
  const std::string text = log("p");
  for (const std::string& part : c.log) EXPECT_TRUE(holds(text, part));
  for (const std::string& part : c.document) EXPECT_TRUE(holds(document(), part));
}

INSTANTIATE_TEST_SUITE_P(Paths, MakeRunPossible, ::testing::ValuesIn(cases()),
                         [](const auto& info) { return std::string(info.param.name); });

class MakeRunPossibleSteps : public RunFixture {};

TEST_F(MakeRunPossibleSteps, ProjectWithoutSamplesIsRefused) {
  put("p.mvp", kHaplotypes);
  Project project;
  prepare(project, "p", "TaskNumber=1");
  EXPECT_EQ(project.make_run_possible(), 0);
  EXPECT_TRUE(holds(log("p"), "\"Project::make_run_possible()\" : no samples have been defined"));
}

TEST_F(MakeRunPossibleSteps, ChecksInTheirFixedOrder) {
  put("p.mvp", std::string(kHaplotypes) + kOneGroupEach);
  Project project;
  ASSERT_TRUE(
      open(project, "p", "TaskNumber=545\nHaplAMOVA=1\nMarkovChainDememorisationStepsLD=7"));
  ASSERT_EQ(project.make_run_possible(), 1);
  const std::string text = log("p");
  const std::vector<std::string> order = {
      "  Checking all selected options...\n",
      "     !!!Hardy-Weinberg disequilibrium test is not possible on Haplotypic data,\n",
      "\t\tBuilding vectors of alleles...\n\t\tdone in ",
      "AMOVA task is skipped.\n",
      "  done!\n  check selected settings...\n",
      " Too few steps for dememorization (7 ) in linkage",
      "  done!\n"};
  std::size_t at = 0;
  for (const std::string& part : order) {
    const std::size_t found = text.find(part, at);
    ASSERT_NE(found, std::string::npos) << part << "\nin:\n" << text;
    at = found + part.size();
  }
}

TEST_F(MakeRunPossibleSteps, UnknownPhaseSwitchesThePrintsOff) {
  put("p.mvp", kMicrosatGenotypes);
  Project project;
  ASSERT_TRUE(open(project, "p",
                   "TaskNumber=1\nPrintMinSpannNetworkPop=1\nPrintMinSpannNetworkGlob=1\n"
                   "PrintDistanceMatrix=1\nPrintPopDistMat=1\nPrintHaplDistMat=1"));
  ASSERT_EQ(project.make_run_possible(), 1);
  const settings& s = project.run_settings;
  EXPECT_EQ(s.PrintMinSpannNetworkPop + s.PrintMinSpannNetworkGlob + s.PrintDistanceMatrix +
                s.PrintPopDistMat + s.PrintHaplDistMat,
            0);
  // Samples are numbered in their order and share the project's alleles.
  const std::vector<PopGenetics*> list = project.sample_list();
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0]->sample_index, 0);
  EXPECT_EQ(list[1]->sample_index, 1);
  EXPECT_EQ(list[1]->allele_db, &project.allele_db);
  EXPECT_EQ(project.pseudo_haplotypes_built, 1);
}

TEST_F(MakeRunPossibleSteps, FrequenciesDoNotInferDefinitions) {
  put("p.mvp", kFrequencies);
  Project project;
  ASSERT_TRUE(open(project, "p", "TaskNumber=1\nInferHaplotypeDefinitionFromDistanceMatrix=1"));
  ASSERT_EQ(project.make_run_possible(), 1);
  EXPECT_EQ(project.run_settings.InferHaplotypeDefinitionFromDistanceMatrix, 0);
}

TEST_F(MakeRunPossibleSteps, ConventionalFstComputesItsOwnMatrix) {
  put("p.mvp", kFrequencies);
  Project project;
  ASSERT_TRUE(open(project, "p", "TaskNumber=1024\nComputeConventionalFST=1"));
  ASSERT_EQ(project.make_run_possible(), 1);
  EXPECT_EQ(project.run_settings.ComputeDistanceMatrixAMOVA, 1);
  EXPECT_EQ(project.run_settings.ComputeConventionalFST, 1);
  EXPECT_FALSE(holds(log("p"), "No matrix was specified"));
}

}  // namespace
