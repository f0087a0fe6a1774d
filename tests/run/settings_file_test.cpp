// Reading a settings file: every key into its field with its type, the two
// groups' behaviour for a missing key, and the order-dependent lookup.
#include "run/settings_file.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

using namespace testing_support;

namespace {

// Every key in reader order; an int key holds its position, a double key its
// position and a half, the bool keys 1, the file name "sims.txt".
const char* const kEveryKey = R"(# Morvalin settings
[Setting for Calculations]
TaskNumber=1
XMLOutput=2
DeletionWeight=3.5
TransitionWeight=4.5
TranversionWeight=5.5
ComputeSumStatsWithinGroups=6
InferHaplotypeDefinitionFromDistanceMatrix=7
EliminateRedondHaplodefs=8
AllowedLevelOfMissingData=9.5
GameticPhaseIsKnown=10
HardyWeinbergTestType=11
MakeHWExactTest=12
MarkovChainStepsHW=13
MarkovChainDememorisationStepsHW=14
PrecisionOnPValueHW=15.5
SignificanceLevelHW=16.5
TypeOfTestHW=17
LinkageDisequilibriumTestType=18
MakeExactTestLD=19
MarkovChainStepsLD=20
MarkovChainDememorisationStepsLD=21
PrecisionOnPValueLD=22.5
SignificanceLevelLD=23.5
PrintFlagHistogramLD=24
InitialCondEMLD=25
ComputeDvalues=26
ComputeStandardDiversityIndices=27
ComputeAllAlleleFreqs=28
DistanceMethod=29
GammaAValue=30.5
PrintHaplDistMat=31
ComputeTheta=32
PrintPopDistMat=33
MismatchDistanceMethod=34
MismatchDemogExp=35
MismatchSpatialExp=36
MismatchSpatialExpNumParams=37
MismatchGammaAValue=38.5
NumBootExpDem=39
InitialConditionsEM=40
MaximumNumOfIterationsEM=41
RecessiveAllelesEM=42
CompactHaplotypeDataBaseEM=43
NumBootstrapReplicatesEM=44
NumInitCondBootstrapEM=45
ComputeAllSubHaplotypesEM=46
ComputeAllHaplotypesEM=47
ComputeAllAllelesEM=48
EpsilonValue=49.5
FrequencyThreshold=50.5
ComputeConventionalFST=51
IncludeIndividualLevel=52
HaplAMOVA=53
LocByLocAMOVA=54
PopSpecificFST=55
PopSpecificFIS=56
ComputeDistanceMatrixAMOVA=57
DistanceMethodAMOVA=58
GammaAValueAMOVA=59.5
PrintDistanceMatrix=60
TestSignificancePairewiseFST=61
NumPermutationsFST=62
Divergencetime=63.5
ComputePairwiseFST=64
ComputeDeltaMuSqr=65
FSTSignifLevel=66.5
TestSignificanceAMOVA=67
NumPermutationsAMOVA=68
NumPermutPopDiff=69
NumDememoPopDiff=70
PrecProbPopDiff=71
PrintHistoPopDiff=72
SignLevelPopDiff=73.5
DetectSelectedLoci=74
UseHierarchicalIslandModel=75
NumberOfGroupsForFDist2=76
NumberOfDemesForFDist2=77
NumberOfSimsForFDist2=78
UseSimFileForFDist2=79
SimFileNameForFDist2=sims.txt
TargetHetLowBound=81.5
TargetHetHighBound=82.5
MinDafFreq=83.5
IterativeProcForFDist2=84
EwensWattersonHomozygosityTest=85
NumIterationsNeutralityTests=86
NumSimulFuTest=87
NumPermMantel=88
IsFontKnown=89
NbFrontSegments=90
SegmentLength=91.5
NumOfGroups=92
DiffusionMode=93
NbFrontPerm=94
PrintFstVals=95
PrintConcestryCoeff=96
PrintSlatkinsDist=97
PrintMissIntermatchs=98
UnequalPopSizeDiv=99
PrintMinSpannNetworkPop=100
PrintMinSpannNetworkGlob=101
KeepNullDistrib=102
EMEstimHaplFreqs=103
EMEstimateInbreedingCoeff=104
EMInbreedingFixedVal=105.5
EMUseZipper=106
EMWinSize=107
EMLociRandOrder=108
EMInbreedingEachLocus=109
EMCheckPhenRedundancy=110
EMCompGamPhaseForAllInitConds=111
EMNumZipRandOrders=112
GibbsInferGamPhase=113
GibbsBurnIn=114
GibbsSamplingInterval=115
GibbsNumSamples=116
GibbsAlphaInitValue=117.5
GibbsEpsilonValue=118.5
GibbsGamma=119.5
GibbsHetSiteInfluenceZone=120
GibbsPercentageOfRecSteps=121.5
GibbsOutputGamPhase=122
)";

class SettingsFileTest : public ::testing::Test {
 protected:
  std::string write(const std::string& content) {
    const auto path = dir_.path() / "s.mvs";
    write_file(path, content);
    return path.string();
  }
  TempDir dir_;
};

TEST_F(SettingsFileTest, EveryKeyReachesItsOwnFieldWithItsType) {
  settings s;
  read_settings(s, write(kEveryKey));
  EXPECT_EQ(s.TaskNumber, 1);
  EXPECT_EQ(s.XMLOutput, 2);
  EXPECT_DOUBLE_EQ(s.DeletionWeight, 3.5);
  EXPECT_DOUBLE_EQ(s.TransitionWeight, 4.5);
  EXPECT_DOUBLE_EQ(s.TranversionWeight, 5.5);
  EXPECT_EQ(s.ComputeSumStatsWithinGroups, 6);
  EXPECT_EQ(s.InferHaplotypeDefinitionFromDistanceMatrix, 7);
  EXPECT_EQ(s.EliminateRedondHaplodefs, 8);
  EXPECT_DOUBLE_EQ(s.AllowedLevelOfMissingData, 9.5);
  EXPECT_EQ(s.GameticPhaseIsKnown, 10);
  EXPECT_EQ(s.HardyWeinbergTestType, 11);
  EXPECT_EQ(s.MakeHWExactTest, 12);
  EXPECT_EQ(s.MarkovChainStepsHW, 13);
  EXPECT_EQ(s.MarkovChainDememorisationStepsHW, 14);
  EXPECT_DOUBLE_EQ(s.PrecisionOnPValueHW, 15.5);
  EXPECT_DOUBLE_EQ(s.SignificanceLevelHW, 16.5);
  EXPECT_EQ(s.TypeOfTestHW, 17);
  EXPECT_EQ(s.LinkageDisequilibriumTestType, 18);
  EXPECT_EQ(s.MakeExactTestLD, 19);
  EXPECT_EQ(s.MarkovChainStepsLD, 20);
  EXPECT_EQ(s.MarkovChainDememorisationStepsLD, 21);
  EXPECT_DOUBLE_EQ(s.PrecisionOnPValueLD, 22.5);
  EXPECT_DOUBLE_EQ(s.SignificanceLevelLD, 23.5);
  EXPECT_EQ(s.PrintFlagHistogramLD, 24);
  EXPECT_EQ(s.InitialCondEMLD, 25);
  EXPECT_EQ(s.ComputeDvalues, 26);
  EXPECT_EQ(s.ComputeStandardDiversityIndices, 27);
  EXPECT_TRUE(s.ComputeAllAlleleFreqs);
  EXPECT_EQ(s.DistanceMethod, 29);
  EXPECT_DOUBLE_EQ(s.GammaAValue, 30.5);
  EXPECT_EQ(s.PrintHaplDistMat, 31);
  EXPECT_EQ(s.ComputeTheta, 32);
  EXPECT_EQ(s.PrintPopDistMat, 33);
  EXPECT_EQ(s.MismatchDistanceMethod, 34);
  EXPECT_TRUE(s.MismatchDemogExp);
  EXPECT_TRUE(s.MismatchSpatialExp);
  EXPECT_EQ(s.MismatchSpatialExpNumParams, 37);
  EXPECT_DOUBLE_EQ(s.MismatchGammaAValue, 38.5);
  EXPECT_EQ(s.NumBootExpDem, 39);
  EXPECT_EQ(s.InitialConditionsEM, 40);
  EXPECT_EQ(s.MaximumNumOfIterationsEM, 41);
  EXPECT_EQ(s.RecessiveAllelesEM, 42);
  EXPECT_EQ(s.CompactHaplotypeDataBaseEM, 43);
  EXPECT_EQ(s.NumBootstrapReplicatesEM, 44);
  EXPECT_EQ(s.NumInitCondBootstrapEM, 45);
  EXPECT_EQ(s.ComputeAllSubHaplotypesEM, 46);
  EXPECT_EQ(s.ComputeAllAllelesEM, 48);
  EXPECT_DOUBLE_EQ(s.EpsilonValue, 49.5);
  EXPECT_DOUBLE_EQ(s.FrequencyThreshold, 50.5);
  EXPECT_EQ(s.ComputeConventionalFST, 51);
  EXPECT_EQ(s.IncludeIndividualLevel, 52);
  EXPECT_EQ(s.HaplAMOVA, 53);
  EXPECT_EQ(s.LocByLocAMOVA, 54);
  EXPECT_EQ(s.PopSpecificFST, 55);
  EXPECT_EQ(s.PopSpecificFIS, 56);
  EXPECT_EQ(s.ComputeDistanceMatrixAMOVA, 57);
  EXPECT_EQ(s.DistanceMethodAMOVA, 58);
  EXPECT_DOUBLE_EQ(s.GammaAValueAMOVA, 59.5);
  EXPECT_EQ(s.PrintDistanceMatrix, 60);
  EXPECT_EQ(s.TestSignificancePairewiseFST, 61);
  EXPECT_EQ(s.NumPermutationsFST, 62);
  EXPECT_DOUBLE_EQ(s.Divergencetime, 63.5);
  EXPECT_EQ(s.ComputePairwiseFST, 64);
  EXPECT_EQ(s.ComputeDeltaMuSqr, 65);
  EXPECT_DOUBLE_EQ(s.FSTSignifLevel, 66.5);
  EXPECT_EQ(s.TestSignificanceAMOVA, 67);
  EXPECT_EQ(s.NumPermutationsAMOVA, 68);
  EXPECT_EQ(s.NumPermutPopDiff, 69);
  EXPECT_EQ(s.NumDememoPopDiff, 70);
  EXPECT_DOUBLE_EQ(s.PrecProbPopDiff, 71.0);
  EXPECT_EQ(s.PrintHistoPopDiff, 72);
  EXPECT_DOUBLE_EQ(s.SignLevelPopDiff, 73.5);
  EXPECT_EQ(s.DetectSelectedLoci, 74);
  EXPECT_EQ(s.UseHierarchicalIslandModel, 75);
  EXPECT_EQ(s.NumberOfGroupsForFDist2, 76);
  EXPECT_EQ(s.NumberOfDemesForFDist2, 77);
  EXPECT_EQ(s.NumberOfSimsForFDist2, 78);
  EXPECT_EQ(s.UseSimFileForFDist2, 79);
  EXPECT_EQ(s.SimFileNameForFDist2, "sims.txt");
  EXPECT_DOUBLE_EQ(s.TargetHetLowBound, 81.5);
  EXPECT_DOUBLE_EQ(s.TargetHetHighBound, 82.5);
  EXPECT_DOUBLE_EQ(s.MinDafFreq, 83.5);
  EXPECT_EQ(s.IterativeProcForFDist2, 84);
  EXPECT_EQ(s.EwensWattersonHomozygosityTest, 85);
  EXPECT_EQ(s.NumIterationsNeutralityTests, 86);
  EXPECT_EQ(s.NumSimulFuTest, 87);
  EXPECT_EQ(s.NumPermMantel, 88);
  EXPECT_EQ(s.IsFontKnown, 89);
  EXPECT_EQ(s.NbFrontSegments, 90);
  EXPECT_DOUBLE_EQ(s.SegmentLength, 91.5);
  EXPECT_EQ(s.NumOfGroups, 92);
  EXPECT_EQ(s.DiffusionMode, 93);
  EXPECT_EQ(s.NbFrontPerm, 94);
  EXPECT_EQ(s.PrintFstVals, 95);
  EXPECT_EQ(s.PrintConcestryCoeff, 96);
  EXPECT_EQ(s.PrintSlatkinsDist, 97);
  EXPECT_EQ(s.PrintMissIntermatchs, 98);
  EXPECT_EQ(s.UnequalPopSizeDiv, 99);
  EXPECT_EQ(s.PrintMinSpannNetworkPop, 100);
  EXPECT_EQ(s.PrintMinSpannNetworkGlob, 101);
  EXPECT_EQ(s.KeepNullDistrib, 102);
  EXPECT_EQ(s.ComputeAllHaplotypesEM, 103);
  EXPECT_EQ(s.EMEstimateInbreedingCoeff, 104);
  EXPECT_DOUBLE_EQ(s.EMInbreedingFixedVal, 105.5);
  EXPECT_EQ(s.EMUseZipper, 106);
  EXPECT_EQ(s.EMWinSize, 107);
  EXPECT_EQ(s.EMLociRandOrder, 108);
  EXPECT_EQ(s.EMInbreedingEachLocus, 109);
  EXPECT_EQ(s.EMCheckPhenRedundancy, 110);
  EXPECT_EQ(s.EMCompGamPhaseForAllInitConds, 111);
  EXPECT_EQ(s.EMNumZipRandOrders, 112);
  EXPECT_EQ(s.GibbsInferGamPhase, 113);
  EXPECT_EQ(s.GibbsBurnIn, 114);
  EXPECT_EQ(s.GibbsSamplingInterval, 115);
  EXPECT_EQ(s.GibbsNumSamples, 116);
  EXPECT_DOUBLE_EQ(s.GibbsAlphaInitValue, 117.5);
  EXPECT_DOUBLE_EQ(s.GibbsEpsilonValue, 118.5);
  EXPECT_DOUBLE_EQ(s.GibbsGamma, 119.5);
  EXPECT_EQ(s.GibbsHetSiteInfluenceZone, 120);
  EXPECT_DOUBLE_EQ(s.GibbsPercentageOfRecSteps, 121.5);
  EXPECT_EQ(s.GibbsOutputGamPhase, 122);
  // EMEstimHaplFreqs fills the field of ComputeAllHaplotypesEM and wins.
  EXPECT_EQ(s.ComputeAllHaplotypesEM, 103);
  EXPECT_EQ(s.haplotype_estimation_on, 1);
}

TEST_F(SettingsFileTest, ReaderKnowsOneHundredTwentyTwoKeysInFileOrder) {
  const auto names = settings_key_names();
  ASSERT_EQ(names.size(), 122u);
  EXPECT_EQ(names.front(), "TaskNumber");
  EXPECT_EQ(names[first_kept_key], "EMEstimHaplFreqs");
  EXPECT_EQ(names[first_kept_key - 1], "KeepNullDistrib");
  EXPECT_EQ(names.back(), "GibbsOutputGamPhase");
}

TEST_F(SettingsFileTest, MissingKeysOfTheFirstGroupReadZeroThoseOfTheSecondKeepTheirValue) {
  settings s;
  read_settings(s, write(kEveryKey));
  read_settings(s, write("TaskNumber=3\n"));
  EXPECT_EQ(s.TaskNumber, 3);
  EXPECT_EQ(s.XMLOutput, 0);
  EXPECT_EQ(s.NumPermutationsAMOVA, 0);
  EXPECT_EQ(s.AllowedLevelOfMissingData, 0.0);
  EXPECT_FALSE(s.MismatchDemogExp);
  EXPECT_EQ(s.SimFileNameForFDist2, "");
  EXPECT_EQ(s.KeepNullDistrib, 0);
  // The second group keeps what the first file gave; the field that both
  // groups fill follows its first-group key.
  EXPECT_EQ(s.ComputeAllHaplotypesEM, 0);
  EXPECT_EQ(s.EMWinSize, 107);
  EXPECT_DOUBLE_EQ(s.GibbsGamma, 119.5);
  EXPECT_EQ(s.GibbsOutputGamPhase, 122);
}

TEST_F(SettingsFileTest, FreshRecordKeepsTheDefaultsOfTheSecondGroup) {
  settings s;
  read_settings(s, write("XMLOutput=1\n"));
  EXPECT_EQ(s.ComputeDistanceMatrixAMOVA, 0);  // first group: default lost
  EXPECT_EQ(s.NumBootExpDem, 0);
  EXPECT_EQ(s.EMWinSize, 1);
  EXPECT_EQ(s.GibbsBurnIn, 100000);
  EXPECT_DOUBLE_EQ(s.GibbsAlphaInitValue, 0.01);
  EXPECT_EQ(s.GibbsHetSiteInfluenceZone, 5);
  EXPECT_EQ(s.haplotype_estimation_on, 0);
}

TEST_F(SettingsFileTest, MissingFileZeroesTheFirstGroupOnly) {
  settings s;
  read_settings(s, (dir_.path() / "absent.mvs").string());
  EXPECT_EQ(s.XMLOutput, 0);
  EXPECT_EQ(s.MarkovChainStepsHW, 0);
  EXPECT_EQ(s.FrequencyThreshold, 0.0);
  EXPECT_EQ(s.GibbsNumSamples, 2000);
  settings t;
  read_settings(t, "");
  EXPECT_EQ(t.NumPermMantel, 0);
  EXPECT_EQ(t.GibbsSamplingInterval, 500);
}

struct ValueCase {
  const char* file;
  int TaskNumber;
  int NumPermutationsAMOVA;
  double AllowedLevelOfMissingData;
  bool MismatchDemogExp;
  double PrecProbPopDiff;
};

TEST_F(SettingsFileTest, ValuesOfTheWrongTypeAreConvertedAsTheReaderDoes) {
  const ValueCase cases[] = {
      // An int key passes over stray characters: 1.5 gives 15.
      {"TaskNumber=1.5\nNumPermutationsAMOVA=12a3\n", 15, 123, 0.0, false, 0.0},
      {"TaskNumber=abc\nAllowedLevelOfMissingData=0.25\n", 0, 0, 0.25, false, 0.0},
      {"MismatchDemogExp=2\nPrecProbPopDiff=0.5\n", 0, 0, 0.0, true, 5.0},
      {"MismatchDemogExp=0\nTaskNumber= 7\n", 7, 0, 0.0, false, 0.0},
  };
  for (const ValueCase& c : cases) {
    settings s;
    read_settings(s, write(c.file));
    EXPECT_EQ(s.TaskNumber, c.TaskNumber) << c.file;
    EXPECT_EQ(s.NumPermutationsAMOVA, c.NumPermutationsAMOVA) << c.file;
    EXPECT_DOUBLE_EQ(s.AllowedLevelOfMissingData, c.AllowedLevelOfMissingData) << c.file;
    EXPECT_EQ(s.MismatchDemogExp, c.MismatchDemogExp) << c.file;
    EXPECT_DOUBLE_EQ(s.PrecProbPopDiff, c.PrecProbPopDiff) << c.file;
  }
}

struct LookupCase {
  const char* file;
  const char* key;
  int found;
  const char* value;
};

TEST_F(SettingsFileTest, LookupTakesTheFirstLineHoldingTheKeyAndAValue) {
  const LookupCase cases[] = {
      // A longer key's line that comes first is taken for the shorter key.
      {"MismatchDistanceMethod=2\nDistanceMethod=1\n", "DistanceMethod", 1, "2"},
      {"DistanceMethod=1\nMismatchDistanceMethod=2\n", "DistanceMethod", 1, "1"},
      // A comment without '=' is passed over; one with '=' is not.
      {"# TaskNumber: bit set of tasks\nTaskNumber=5\n", "TaskNumber", 1, "5"},
      {"# TaskNumber = bits\nTaskNumber=5\n", "TaskNumber", 1, " bits"},
      // Nothing behind the '=' is passed over.
      {"NumPermutationsAMOVA=\n", "NumPermutationsAMOVA", 0, ""},
      {"NumPermutationsAMOVA=\nNumPermutationsAMOVA=20\n", "NumPermutationsAMOVA", 1, "20"},
      // Case matters; the value keeps its blanks; a CR of a CR LF line is no part of it.
      {"tasknumber=5\n", "TaskNumber", 0, ""},
      {"TaskNumber = 3 \r\n", "TaskNumber", 1, " 3 "},
      {"TaskNumber=a=b\n", "TaskNumber", 1, "a=b"},
      {"", "TaskNumber", 0, ""},
  };
  for (const LookupCase& c : cases) {
    std::string value = "stale";
    EXPECT_EQ(lookup(c.key, value, 99, write(c.file)), c.found) << c.file;
    EXPECT_EQ(value, c.value) << c.file;
  }
}

TEST_F(SettingsFileTest, ValueEndsAtColumnLimitOrCharacterZero) {
  const std::string name(100, 'x');
  std::string value;
  ASSERT_EQ(lookup("SimFileNameForFDist2", value, 99, write("SimFileNameForFDist2=" + name + "\n")),
            1);
  EXPECT_EQ(value, std::string(99 - 21, 'x'));
  ASSERT_EQ(lookup("TaskNumber", value, 99,
                   write(std::string("TaskNumber=12\0"
                                     "34\n",
                                     17))),
            1);
  EXPECT_EQ(value, "12");
  EXPECT_EQ(lookup("TaskNumber", value, 99, (dir_.path() / "absent").string()), 0);
  EXPECT_EQ(value, "");
}

TEST_F(SettingsFileTest, RunListOverridesHoldOverEveryRead) {
  settings s;
  s.list_append_results = 1;
  s.list_keep_null_distrib = 1;
  const std::string path = write("KeepNullDistrib=0\nTaskNumber=1\n");
  read_settings(s, path);
  EXPECT_EQ(s.KeepNullDistrib, 1);
  EXPECT_EQ(s.append_results, 1);
  s.KeepNullDistrib = 0;
  s.append_results = 0;
  read_settings(s, path);  // as the group pass reads the file again
  EXPECT_EQ(s.KeepNullDistrib, 1);
  EXPECT_EQ(s.append_results, 1);
  EXPECT_EQ(s.settings_path, path);
  settings t;
  read_settings(t, write("KeepNullDistrib=1\n"));
  EXPECT_EQ(t.KeepNullDistrib, 1);
  EXPECT_EQ(t.append_results, 1);  // the default until the run list sets it
}

TEST_F(SettingsFileTest, HaplotypeEstimationIsOnWhenAnyOfItsThreeKeysIs) {
  const std::pair<const char*, int> cases[] = {
      {"", 0},
      {"ComputeAllAllelesEM=1\n", 1},
      {"ComputeAllHaplotypesEM=1\n", 1},
      {"EMEstimHaplFreqs=1\n", 1},
      {"GibbsInferGamPhase=1\n", 1},
      {"ComputeAllSubHaplotypesEM=1\n", 0},
  };
  for (const auto& [file, on] : cases) {
    settings s;
    read_settings(s, write(file));
    EXPECT_EQ(s.haplotype_estimation_on, on) << file;
  }
}

}  // namespace
