// Bad input never crashes a run: every project of the fuzz corpus, and cut
// and damaged forms of each, goes through whole runs of the built program
// with every task asked for, in both document dresses and with the group
// pass. Built with sanitizers, the program aborts on a memory or undefined
// behaviour fault, which shows here as an exit code other than 0.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "support/test_support.h"

namespace fs = std::filesystem;
using namespace testing_support;

namespace {

// Every task bit, both AMOVA kinds, the group pass, the searches of
// redundant haplotypes and all prints; chains and permutations kept short.
const char* const kEveryTask =
    "TaskNumber=131071\nXMLOutput=%X\nDeletionWeight=1\nTransitionWeight=1\n"
    "TranversionWeight=1\nComputeSumStatsWithinGroups=1\n"
    "InferHaplotypeDefinitionFromDistanceMatrix=1\nEliminateRedondHaplodefs=1\n"
    "AllowedLevelOfMissingData=0.05\nMarkovChainStepsHW=100\nMarkovChainDememorisationStepsHW=10\n"
    "MarkovChainStepsLD=100\nMarkovChainDememorisationStepsLD=10\nDistanceMethod=1\n"
    "GammaAValue=0.5\nPrintHaplDistMat=1\nComputeTheta=15\nPrintPopDistMat=1\nNumBootExpDem=5\n"
    "InitialConditionsEM=2\nMaximumNumOfIterationsEM=20\nNumBootstrapReplicatesEM=2\n"
    "NumInitCondBootstrapEM=2\nEpsilonValue=1e-07\nFrequencyThreshold=1e-05\n"
    "IncludeIndividualLevel=1\nHaplAMOVA=1\nLocByLocAMOVA=1\nComputeDistanceMatrixAMOVA=1\n"
    "PrintDistanceMatrix=1\nNumPermutationsFST=10\nComputePairwiseFST=1\nNumPermutationsAMOVA=10\n"
    "NumPermutPopDiff=100\nNumDememoPopDiff=10\nNumIterationsNeutralityTests=10\n"
    "NumSimulFuTest=10\nNumPermMantel=10\nPrintMinSpannNetworkPop=1\nPrintMinSpannNetworkGlob=1\n"
    "GibbsBurnIn=10\nGibbsSamplingInterval=2\nGibbsNumSamples=5\n";

std::string settings_for(bool xml) {
  std::string text = kEveryTask;
  text.replace(text.find("%X"), 2, xml ? "1" : "0");
  return text;
}

// The corpus project and damaged forms of it: cut after a third and two
// thirds of its lines, without its closing braces, and with every line
// behind [Data] doubled.
std::vector<std::string> variants(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start + 1));
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  const auto join = [&lines](std::size_t from, std::size_t to, bool skip_braces, bool twice) {
    std::string out;
    for (std::size_t i = from; i < to && i < lines.size(); ++i) {
      if (skip_braces && lines[i].find('}') != std::string::npos) continue;
      out += lines[i];
      if (twice && i > 10) out += lines[i];
    }
    return out;
  };
  const std::size_t n = lines.size();
  return {text, join(0, n / 3, false, false), join(0, 2 * n / 3, false, false),
          join(0, n, true, false), join(0, n, false, true)};
}

TEST(CorpusRun, DamagedProjectsEndTheirRunInOrder) {
  const fs::path corpus = source_dir() / "fuzz" / "corpus" / "project_reader";
  ASSERT_TRUE(fs::is_directory(corpus));
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(corpus)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  ASSERT_FALSE(files.empty());
  int runs = 0;
  for (const fs::path& file : files) {
    const std::vector<std::string> forms = variants(read_file(file));
    for (std::size_t v = 0; v < forms.size(); ++v) {
      TempDir dir;
      write_file(dir.path() / "p.mvp", forms[v]);
      write_file(dir.path() / "p.mvs", settings_for(v % 2 == 0));
      const RunResult r = run_morvcore(dir.path(), {"p.mvp", "p.mvs", "run_silent"});
      const std::string where = file.filename().string() + " form " + std::to_string(v);
      EXPECT_EQ(r.exit_code, 0) << where << "\n" << r.err;
      EXPECT_NE(r.out.find("Morvcore terminated gracefully"), std::string::npos) << where;
      const std::string log = read_file(dir.path() / "p.res" / "Morvalin_log.txt");
      EXPECT_NE(log.find("run of p.mvp\n"), std::string::npos) << where << "\n" << log;
      ++runs;
    }
  }
  EXPECT_EQ(runs, static_cast<int>(files.size() * 5));
}

}  // namespace
