// The structure step of a pass and what it builds on: the distance matrix
// between the project's haplotypes, the search for haplotypes at distance 0,
// the check of a structure for an AMOVA, and the dispatch of the structure
// analyses with their sentences, menu entries and restored settings.
#include <gtest/gtest.h>

#include "run/analyses.h"
#include "run/project.h"
#include "run/run_fixture.h"
#include "within/sample_tasks.h"

using namespace run_testing;

namespace {

// Three definitions: h1 ACGTA (3 copies), h2 ACGTT (1), h3 ACCTT (1).
const char* const kSequences =
    "[Profile]\nTitle=\"seq\"\nNbSamples=3\nDataType=DNA\nGenotypicData=0\n"
    "LocusSeparator=NONE\nMissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"A\"\nSampleSize=3\nSampleData={\nh1 2 ACGTA\nh2 1 ACGTT\n}\n"
    "SampleName=\"B\"\nSampleSize=2\nSampleData={\nh1 1\nh3 1 ACCTT\n}\n"
    "SampleName=\"C\"\nSampleSize=1\nSampleData={\nh4 1 ACGTA\n}\n";

const char* const kGroupsCAndAB =
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=2\nGroup={ \"C\" }\nGroup={ \"A\" \"B\" }\n";

const char* const kMicrosat =
    "[Profile]\nTitle=\"geno\"\nNbSamples=2\nDataType=MICROSAT\nGenotypicData=1\n"
    "GameticPhase=0\nLocusSeparator=WHITESPACE\nMissingData='?'\n[Data]\n[[Samples]]\n"
    "SampleName=\"P1\"\nSampleSize=2\nSampleData={\ni1 1 120 130\n   122 130\n}\n"
    "SampleName=\"P2\"\nSampleSize=2\nSampleData={\ni3 1 122 130\n   122 132\n}\n"
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={ \"P1\" \"P2\" }\n";

class GenStruct : public RunFixture {
 protected:
  // Reads the project, checks its tasks, and leaves it ready for a pass.
  Project& ready(const std::string& project_text, const std::string& keys) {
    put("p.mvp", project_text);
    install_analyses();
    EXPECT_TRUE(open(project_, "p", keys)) << log("p");
    EXPECT_EQ(project_.make_run_possible(), 1) << log("p");
    return project_;
  }
  Project project_;
};

TEST_F(GenStruct, DistanceMatrixOfAllDefinitions) {
  Project& p = ready(kSequences, "TaskNumber=1024\nComputeDistanceMatrixAMOVA=1");
  ASSERT_EQ(p.calc_dist_matrix(0, 0.0), 1) << log("p");
  ASSERT_EQ(p.dist_mat.matrix_size(), 4);
  EXPECT_FALSE(p.dist_mat.is_conventional());
  const double expected[4][4] = {{0, 1, 2, 0}, {1, 0, 1, 1}, {2, 1, 0, 2}, {0, 1, 2, 0}};
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j <= i; ++j) EXPECT_EQ(p.dist_mat(i, j), expected[i][j]) << i << "," << j;
  }
  EXPECT_EQ(p.dist_mat.label(2), "h3");
  EXPECT_TRUE(holds(document(),
                    "\nNumber of usable loci for distance computation : 5"
                    "\nAllowed level of missing data                  : 0\n\n"
                    "List of usable loci :\n---------------------\n     1     2     3     4     5"
                    "\n\nList of loci with too much missing data :\n"
                    "-----------------------------------------\nNONE\n"));
  EXPECT_EQ(file("p.res/MissDataPerLocus.txt"),
            "Locus#\tFreq. missing data\n1\t0\n2\t0\n3\t0\n4\t0\n5\t0\n");
  // The settings of the temporary sample's dispatch are given back.
  EXPECT_EQ(p.run_settings.TaskNumber, 1024);
}

TEST_F(GenStruct, ConventionalMatrixIsTwoByTwo) {
  Project& p = ready(kSequences, "TaskNumber=1024\nComputeConventionalFST=1");
  ASSERT_EQ(p.calc_dist_matrix(0, 0.0), 1);
  EXPECT_TRUE(p.dist_mat.is_conventional());
  EXPECT_EQ(p.dist_mat.dim(), 2);
  EXPECT_EQ(p.dist_mat.matrix_size(), 4);
  EXPECT_FALSE(holds(document(), "usable loci"));
}

TEST_F(GenStruct, MatrixThatCannotBeComputedIsAnError) {
  Project& p = ready(kSequences, "TaskNumber=1024\nComputeDistanceMatrixAMOVA=1");
  sample_analyses().distance_matrix = nullptr;
  EXPECT_EQ(p.calc_dist_matrix(0, 0.0), 0);
  install_analyses();
  EXPECT_TRUE(holds(log("p"),
                    "from function \"Project::calc_dist_matrix()\" : distance matrix "
                    "could not be computed\n"));
}

TEST_F(GenStruct, SharedHaplotypesAreThoseAtDistanceZero) {
  Project& p =
      ready(kSequences, "TaskNumber=1\nEliminateRedondHaplodefs=1\nComputeDistanceMatrixAMOVA=1");
  const std::string rule66(66, '=');
  const std::string rule69(69, '=');
  EXPECT_TRUE(holds(log("p"),
                    "\t\t\tChecking haplotype redundancy from a computed distance "
                    "matrix:\n"));
  EXPECT_TRUE(holds(document(), "\n" + rule66 +
                                    "\n== Checking for haplotypes shared among populations:\n" +
                                    rule66 + "\n<A NAME=\"_pop_shared0\"></A>\n\n" + rule69 +
                                    "\n== Population : A\n"
                                    "===============\n\n   Haplotypes shared between \"A\" and "
                                    "\"B\":\n\t\th1 = h1\n\n   Haplotypes shared between \"A\" "
                                    "and \"C\":\n\t\th1 = h4\n\n" +
                                    std::string(69, '-') + "\n"));
  EXPECT_TRUE(holds(document(), "\nHaplotype frequency distribution among the samples:\n"));
  // The type is the project's again, and the computed matrix is emptied.
  EXPECT_EQ(p.DataType, 0);
  EXPECT_EQ(p.run_settings.data_type, 0);
  EXPECT_EQ(p.dist_mat.matrix_size(), 0);
}

TEST_F(GenStruct, AmovaStructureChecks) {
  struct Case {
    std::vector<std::vector<int>> groups;
    bool valid;
    const char* message;
  };
  const Case cases[] = {
      {{}, false, "no samples have been defined"},
      {{{0}, {1}}, false, "invalid structure: only one population per group"},
      {{{0}}, true, ""},
      {{{0, 1}}, true, ""},
      {{{0, 1}, {2}}, true, ""},
  };
  Project& p = ready(kSequences, "TaskNumber=1");
  for (const Case& c : cases) {
    p.structure->groups.clear();
    for (const auto& members : c.groups) p.structure->groups.push_back(TGroup{members});
    EXPECT_EQ(p.IsAmovaStructure(), c.valid) << c.message;
    if (!c.valid) {
      EXPECT_TRUE(holds(log("p"), std::string("from function \"Project::IsAmovaStructure()\" : ") +
                                      c.message + "\n"));
    }
  }
}

TEST_F(GenStruct, AmovaNumbersTheSamplesInStructureOrder) {
  Project& p = ready(std::string(kSequences) + kGroupsCAndAB,
                     "TaskNumber=512\nHaplAMOVA=1\nComputeDistanceMatrixAMOVA=1");
  p.GenStructCalculations(&result_document().stream());
  const std::vector<PopGenetics*> list = p.sample_list();
  EXPECT_EQ(list[2]->sample_index, 0);  // C, the first group's
  EXPECT_EQ(list[0]->sample_index, 1);
  EXPECT_EQ(list[1]->sample_index, 2);
  const settings& s = p.run_settings;
  EXPECT_EQ(s.dist_mat, &p.dist_mat);
  EXPECT_EQ(s.samples, p.samples.get());
  const std::string text = log("p");
  EXPECT_TRUE(holds(text, "\t\tComputing F statistics ...\n"));
  EXPECT_TRUE(holds(text, "The analysis of molecular variance"));
  EXPECT_TRUE(holds(document(), "<A NAME=\"_pop_gen_struct\"></A>\n" + std::string(79, '=') +
                                    "\n== GENETIC STRUCTURE ANALYSIS\n" + std::string(79, '=') +
                                    "\n"));
  EXPECT_TRUE(holds(document(), "<A NAME=\"_pop_amova\"></A>\n"));
}

TEST_F(GenStruct, AmovaNeedsAMatrixThatFitsTheDefinitions) {
  Project& p = ready(std::string(kSequences) + kGroupsCAndAB,
                     "TaskNumber=512\nHaplAMOVA=1\nComputeDistanceMatrixAMOVA=1");
  p.dist_mat.clear();
  EXPECT_EQ(p.AMOVA(p.dist_mat, p.haplo_db, p.samples.get(), p.structure.get(), &p.allele_db), 0);
  EXPECT_TRUE(holds(log("p"),
                    "from function \"Project::AMOVA()\" : haplotype list incompatible "
                    "with distance matrix\n"));
}

TEST_F(GenStruct, AmovaOnABadStructureWarns) {
  Project& p = ready(kSequences, "TaskNumber=0\nComputeDistanceMatrixAMOVA=1");
  p.run_settings.TaskNumber = 512;
  p.run_settings.HaplAMOVA = 1;
  EXPECT_EQ(p.AMOVA(p.dist_mat, p.haplo_db, p.samples.get(), p.structure.get(), &p.allele_db), 0);
  EXPECT_TRUE(holds(log("p"),
                    "from function \"Project::AMOVA()\" : project contains invalid data "
                    "after check\n"));
}

TEST_F(GenStruct, SettingsChangedForOneAnalysisAreGivenBack) {
  Project& p = ready(std::string(kSequences) + kGroupsCAndAB,
                     "TaskNumber=9728\nLocByLocAMOVA=1\nComputePairwiseFST=1\n"
                     "ComputeDeltaMuSqr=1\nComputeDistanceMatrixAMOVA=1");
  p.GenStructCalculations(&result_document().stream());
  const settings& s = p.run_settings;
  EXPECT_EQ(s.TaskNumber, 9728);  // 0x200 | 0x400 | 0x2000
  EXPECT_EQ(s.ComputePairwiseFST, 1);
  EXPECT_EQ(s.ComputeDeltaMuSqr, 1);
  const std::string text = log("p");
  EXPECT_TRUE(holds(text, "The locus-by-locus AMOVA is not available in this build\n"));
  EXPECT_TRUE(holds(text, "The exact test of population differentiation is not available"));
  EXPECT_TRUE(holds(document(), "<A NAME=\"_pop_exct_tests\"></A>\n"));
}

TEST_F(GenStruct, NothingWithoutAStructureTask) {
  Project& p = ready(kSequences, "TaskNumber=1\nComputeDistanceMatrixAMOVA=1");
  const std::string before = document();
  p.GenStructCalculations(&result_document().stream());
  EXPECT_EQ(document(), before);
  EXPECT_EQ(p.dist_mat.matrix_size(), 0);
}

TEST_F(GenStruct, MicrosatellitesSkipTheRepeatLengths) {
  Project& p = ready(kMicrosat, "TaskNumber=1024\nComputePairwiseFST=1");
  p.GenStructCalculations(&result_document().stream());
  const std::string text = log("p");
  EXPECT_TRUE(holds(text, "\tConverting phenotypic to haplotypic data ...\n"));
  EXPECT_TRUE(holds(text, "\nSkipping microsat repeat length detection\n"));
  EXPECT_EQ(p.dist_mat.matrix_size(), p.haplo_db.size());
}

TEST_F(GenStruct, ConventionalFstNeedsAKnownPhase) {
  Project& p = ready(kMicrosat, "TaskNumber=1536\nHaplAMOVA=1\nComputeConventionalFST=1");
  p.GenStructCalculations(&result_document().stream());
  const char* text =
      "\n\nThe computation of AMOVA with the option \"CONVENTIONAL FST\" is"
      "\nnot possible with unknown gametic phase data.\n"
      "SKIPPING COMPUTATION OF GENETIC STRUCTURE\n";
  EXPECT_TRUE(holds(document(), text));
  EXPECT_TRUE(holds(log("p"), text));
  EXPECT_TRUE(holds(log("p"),
                    "\"GenStructCalculations()\" : unable to compute Genetic Structure "
                    "with current settings\n"));
  EXPECT_EQ(p.run_settings.TaskNumber & 0x600, 0);
  EXPECT_FALSE(holds(document(), "GENETIC STRUCTURE ANALYSIS"));
}

}  // namespace
