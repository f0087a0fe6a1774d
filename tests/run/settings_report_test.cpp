// The settings report at the head of a result document, for representative
// sets of tasks and data. The expected texts are written out by hand.
#include "run/settings_report.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string report(const settings& s, bool xml = false) {
  std::ostringstream os;
  print_settings_report(s, os, xml, "01/02/03 at 04:05:06");
  return os.str();
}

const char* const kDefaultHead =
    "==============================\n"
    "Settings used for Calculations\n"
    "==============================\n"
    "\n"
    " General settings:\n"
    " -----------------\n"
    "        Deletion Weight                = 0\n"
    "        Transition Weight Weight       = 0\n"
    "        Tranversion Weight Weight      = 0\n"
    "        Epsilon Value                  = 1e-07\n"
    "        Significant digits for output  = 5\n"
    "        Use original haplotype definition\n"
    "        Alllowed level of missing data = 0.05\n"
    " Active Tasks:\n"
    " -------------\n"
    "\n";

TEST(SettingsReport, WithoutTasksOnlyTheGeneralSettings) {
  EXPECT_EQ(report(settings{}), kDefaultHead);
}

TEST(SettingsReport, XmlReportStandsInATitleElement) {
  EXPECT_EQ(report(settings{}, true),
            std::string("</data> <title time=\"01/02/03 at 04:05:06\">\n") + kDefaultHead +
                "</title> <data>\n");
}

TEST(SettingsReport, SignificantDigitsFollowTheFrequencyThreshold) {
  const std::pair<double, const char*> cases[] = {
      {1e-5, "        Significant digits for output  = 5\n"},
      {0.001, "        Significant digits for output  = 3\n"},
      {0.5, "        Significant digits for output  = 0\n"},
      {0.0, "        Significant digits for output  = unspecified\n"},
      {-1.0, "        Significant digits for output  = unspecified\n"},
  };
  for (const auto& [threshold, line] : cases) {
    settings s;
    s.FrequencyThreshold = threshold;
    EXPECT_NE(report(s).find(line), std::string::npos) << threshold;
  }
}

TEST(SettingsReport, WithinSampleTasksOfHaplotypicDna) {
  settings s;
  s.data_type = data_type_code::DNA;
  s.TaskNumber = 0x1 | 0x2 | 0x4;
  s.DeletionWeight = 1;
  s.TransitionWeight = 1;
  s.TranversionWeight = 2;
  s.FrequencyThreshold = 0;
  s.InferHaplotypeDefinitionFromDistanceMatrix = 1;
  s.DistanceMethod = 2;
  s.GammaAValue = 0.5;
  s.ComputeTheta = 1 | 8;
  s.PrintHaplDistMat = 1;
  EXPECT_EQ(report(s),
            "==============================\n"
            "Settings used for Calculations\n"
            "==============================\n"
            "\n"
            " General settings:\n"
            " -----------------\n"
            "        Deletion Weight                = 1\n"
            "        Transition Weight Weight       = 1\n"
            "        Tranversion Weight Weight      = 2\n"
            "        Epsilon Value                  = 1e-07\n"
            "        Significant digits for output  = unspecified\n"
            "        Infer haplotype definition from distance matrix\n"
            "        Alllowed level of missing data = 0.05\n"
            " Active Tasks:\n"
            " -------------\n"
            "\n"
            "    Standard indices:\n"
            "    -----------------\n"
            "    Molecular Diversity:\n"
            "    --------------------\n"
            "        Molecular Distance :Kimura 2P\n"
            "        GammaA Value       = 0.5\n"
            "        Theta estimators   : \n"
            "            Theta(Hom)\n"
            "            Theta(Pi)\n"
            "        Print out inter-haplotypic distance matrix\n"
            "    Mismatch Distribution:\n"
            "    ----------------------\n"
            "        Molecular Distance             : Pairwise difference\n"
            "        GammaA Value                   = 0\n"
            "        Number of bootstrap replicates : 100\n");
}

TEST(SettingsReport, GenotypicDataOfUnknownPhaseDropTheirPhaseOnlyLines) {
  settings s;
  s.data_type = data_type_code::MICROSAT;
  s.genotypic = 1;
  s.phase_known = 0;
  s.TaskNumber = 0x4 | 0x8 | 0x10 | 0x40 | 0x80 | 0x100 | 0x4000 | 0x8000;
  s.ComputeAllAllelesEM = 1;
  s.RecessiveAllelesEM = 1;
  s.InitialCondEMLD = 2;
  s.SignificanceLevelLD = 0.05;
  EXPECT_EQ(report(s), std::string(kDefaultHead) +
                           "    Mismatch Distribution:\n"
                           "    ----------------------\n"
                           "    Haplotypic Frequency estimation:\n"
                           "    --------------------------------\n"
                           "        Make estimations at the:\n"
                           "            Locus level\n"
                           "        Initial Conditions               = 50\n"
                           "        Maximum No. Of Iterations        = 1000\n"
                           "        Bootstrap Replicates             = 0\n"
                           "        Initial Conditions for Bootstrap = 10\n"
                           "        Recessive Data\n"
                           "        Do not Compact Haplotypes\n"
                           "    Linkage disequilibrium test:\n"
                           "    ----------------------------\n"
                           "        No. of permutations          = 1000\n"
                           "        No. of Initial conditions    = 2\n"
                           "        Print Histogram and table : No\n"
                           "        Significance level        = 0.05\n"
                           "    Tajima's selective neutrality test\n"
                           "    ----------------------------------\n"
                           "    Ewens-Watterson neutrality test\n"
                           "    -------------------------------\n"
                           "    Chakraborty's amalgammation test\n"
                           "    --------------------------------\n"
                           "    Fu's Neutraliy test:\n"
                           "    --------------------\n"
                           "\n"
                           "    Assignement of individual genotypes to populations\n"
                           "    --------------------------------------------------\n");
}

TEST(SettingsReport, GenotypicDataOfKnownPhase) {
  settings s;
  s.data_type = data_type_code::STANDARD;
  s.genotypic = 1;
  s.phase_known = 1;
  s.TaskNumber = 0x8 | 0x10 | 0x20 | 0x80 | 0x200 | 0x8000;
  s.SignificanceLevelLD = 0.05;
  s.ComputeDvalues = 1;
  s.TypeOfTestHW = 2;
  s.LocByLocAMOVA = 1;
  s.IncludeIndividualLevel = 1;
  s.ComputeDistanceMatrixAMOVA = 0;
  EXPECT_EQ(report(s),
            std::string(kDefaultHead) +
                "    Haplotypic Frequency estimation:\n"
                "    --------------------------------\n"
                "        Make estimations at the:\n"
                "            no Estimation selected\n"
                "        Initial Conditions               = 50\n"
                "        Maximum No. Of Iterations        = 1000\n"
                "        Bootstrap Replicates             = 0\n"
                "        Initial Conditions for Bootstrap = 10\n"
                "        No recessive Data\n"
                "        Do not Compact Haplotypes\n"
                "    Linkage disequilibrium test:\n"
                "    ----------------------------\n"
                "        No. of steps in Markov chain      = 1000\n"
                "        No. of Dememorisation Steps       = 1000\n"
                "        Required precision on Probability = 0\n"
                "        D and D' coefficients for all pairs of alleles : Yes\n"
                "        Print Histogram and table : No\n"
                "        Significance level        = 0.05\n"
                "    Hardy-Weinberg equilibrium test:\n"
                "    --------------------------------\n"
                "        No. of steps in Markov chain      = 1000000\n"
                "        No. of Dememorisation Steps       = 100000\n"
                "        Required precision on Probability = 0\n"
                "        Test association at the Locus and Haplotype levels\n"
                "    Ewens-Watterson neutrality test\n"
                "    -------------------------------\n"
                "        No. of Simultated Samples = 1000\n"
                "    Analysis of Molecular Variance:\n"
                "    -------------------------------\n"
                "        No. of Permutations = 1000\n"
                "        Include Individual level\n"
                "       Distance matrix:\n"
                "       ----------------\n"
                "            Use pre-defined distance matrix\n"
                "\n"
                "    Assignement of individual genotypes to populations\n"
                "    --------------------------------------------------\n"
                "\n"
                "      Test is only possible for genotypic data with unknown gametic phase, "
                "skipping task...\n"
                "\n");
}

TEST(SettingsReport, StructureTasksInTheirOrder) {
  settings s;
  s.data_type = data_type_code::DNA;
  s.TaskNumber = 0x10000 | 0x2000 | 0x400 | 0x200;
  s.HaplAMOVA = 1;
  s.PrintMinSpannNetworkGlob = 1;
  s.PrintMissIntermatchs = 1;
  s.PrintSlatkinsDist = 1;
  s.DistanceMethodAMOVA = 1;
  s.PrintHistoPopDiff = 1;
  EXPECT_EQ(report(s),
            std::string(kDefaultHead) +
                "    Analysis of Molecular Variance:\n"
                "    -------------------------------\n"
                "        No. of Permutations = 1000\n"
                "        Compute minimum spanning network between all haplotypes in the sample\n"
                "    Population pairwise Fst values:\n"
                "    -------------------------------\n"
                "        Compute pairwise differences\n"
                "        Compute Slatkin's distances\n"
                "        No. of permutations for significance = 100\n"
                "        No. of permutations for Mantel test  = 1000\n"
                "       Distance matrix:\n"
                "       ----------------\n"
                "            Compute distance matrix\n"
                "            Molecular distance : Jukes and Cantor\n"
                "            Gamma a value      = 0\n"
                "    Exact test of population differentiation:\n"
                "    -----------------------------------------\n"
                "        No. of steps in Markov chain      = 100000\n"
                "        No. of Dememorisation Steps       = 10000\n"
                "        Required precision on Probability = 0\n"
                "        Print Histogram and table : Yes\n"
                "        Significance level        = 0.05\n"
                "\n"
                "    Correlation between distance matrices.\n"
                "    --------------------------------------\n"
                "        No. of Permutations for significance = 1000\n");
}

TEST(SettingsReport, AmovaWithoutAKindHasNoBlock) {
  settings s;
  s.TaskNumber = 0x200;
  EXPECT_EQ(report(s), kDefaultHead);
}

TEST(SettingsReport, ConventionalFstReplacesTheDistanceLines) {
  settings s;
  s.TaskNumber = 0x400;
  s.ComputeConventionalFST = 1;
  EXPECT_EQ(report(s), std::string(kDefaultHead) +
                           "    Population pairwise Fst values:\n"
                           "    -------------------------------\n"
                           "        No. of permutations for significance = 100\n"
                           "        No. of permutations for Mantel test  = 1000\n"
                           "       Distance matrix:\n"
                           "       ----------------\n"
                           "            Compute F-statistics on haplotype frequencies only\n");
}

TEST(SettingsReport, DistanceMethodLabelsByDataType) {
  struct Case {
    unsigned char type;
    int method;
    const char* label;
  };
  const Case cases[] = {
      {data_type_code::DNA, 0, "Pairwise difference"},
      {data_type_code::DNA, 3, "Proportion of difference"},
      {data_type_code::DNA, 4, "Tajima and Nei"},
      {data_type_code::DNA, 6, "Tamura and Nei"},
      {data_type_code::DNA, 9, "Pairwise difference"},
      {data_type_code::RFLP, 1, "Proportion of difference"},
      {data_type_code::RFLP, 4, "Pairwise difference"},
      {data_type_code::MICROSAT, 0, "No. of different alleles"},
      {data_type_code::MICROSAT, 1, "Sum of squared size difference"},
      {data_type_code::MICROSAT, 2, "No. of different alleles"},
      {data_type_code::STANDARD, 1, "Pairwise differences"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(distance_method_label(c.type, c.method), c.label) << int(c.type) << " " << c.method;
}

}  // namespace
