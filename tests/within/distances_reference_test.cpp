// Distance matrices of DNA samples against values computed independently by
// tools/reference/reference.py (data/distance_reference_table.txt, written by
// data/distance_reference_table.py from data/distances_dna.mvp and
// data/distances_codes.mvp): every method, two levels of missing data, gamma
// shapes, and weights that are zero, whole and fractional (the last take the
// site-by-site walk). The sites are classified by the sample itself.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "model/population_test_support.h"
#include "within/distances.h"

namespace {

struct ReferenceRow {
  std::string sample;
  double allowed = 0.0;
  double gamma = 0.0;
  double weights[3] = {};  // deletion, transition, transversion
  int method = 0;
  std::vector<double> cells;  // per pair (i > j, row by row): distance, standard deviation
};

// The cases of data/distance_reference_table.txt.
std::vector<ReferenceRow> reference_rows() {
  std::ifstream in(std::string(MORVCORE_SOURCE_DIR) +
                   "/tests/within/data/distance_reference_table.txt");
  std::vector<ReferenceRow> rows;
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    if (line.rfind("case ", 0) == 0) {
      ReferenceRow row;
      std::string word;
      fields >> word >> row.sample >> row.allowed >> row.gamma >> row.weights[0] >>
          row.weights[1] >> row.weights[2] >> row.method;
      rows.push_back(row);
      continue;
    }
    double d = 0.0;
    double sd = 0.0;
    fields >> d >> sd;
    if (!rows.empty() && fields) {
      rows.back().cells.push_back(d);
      rows.back().cells.push_back(sd);
    }
  }
  return rows;
}

using Alignment = std::vector<std::pair<std::string, int>>;

const Alignment& alignment(const std::string& name) {
  static const Alignment mix = {{"ACGTACGTACGTACGTACGTACGT", 3}, {"ACGTGCGTACGTACTTACGTACGT", 2},
                                {"ACGTACGTAC-TACGTACGAACGT", 1}, {"ACGCACGTNCGTACG?ACGTACGA", 1},
                                {"TCGTACRTACGTACGTACGTACCT", 2}, {"ACGTACGTACGTACG?ACGTTCGT", 1}};
  static const Alignment codes = {{"ACGTAMCRTGACCTAGGATC", 1},
                                  {"SCGTAKCYT-ACCTAGGTTC", 1},
                                  {"ACG-AMRRTGACCTGGGATC", 1},
                                  {"ACGTAKCRTB-CCTAGCATC", 1},
                                  {"TCATAMCYTGACGTAGGATT", 1}};
  return name == "mix" ? mix : codes;
}

std::string describe(const ReferenceRow& r) {
  return r.sample + " method " + std::to_string(r.method) + " allowed " +
         std::to_string(r.allowed) + " gamma " + std::to_string(r.gamma) + " weights " +
         std::to_string(r.weights[0]) + "/" + std::to_string(r.weights[1]) + "/" +
         std::to_string(r.weights[2]);
}

TEST(DistanceReference, EveryMethodMatchesTheReferenceCalculator) {
  const std::vector<ReferenceRow> rows = reference_rows();
  ASSERT_EQ(rows.size(), 79u);
  for (const ReferenceRow& row : rows) {
    SCOPED_TRACE(describe(row));
    population_test::Project project;
    auto sample = make_sample(0, project.sample(0, alignment(row.sample)));
    auto& dna = static_cast<PopulDNA&>(*sample);
    settings s;
    s.AllowedLevelOfMissingData = row.allowed;
    dna.DeletionWeight = row.weights[0];
    dna.TransitionWeight = row.weights[1];
    dna.TranversionWeight = row.weights[2];
    ASSERT_EQ(dna.find_polymorphic_sites(s), 1);
    dna.dist_method = static_cast<unsigned char>(row.method);
    dna.GammaAValue = row.gamma;
    ASSERT_EQ(compute_distance_matrix(dna, nullptr, nullptr, 0), 1);
    const RectMat& m = *dna.dist_mat;
    std::size_t k = 0;
    for (int i = 1; i < m.nrows(); ++i) {
      for (int j = 0; j < i; ++j, k += 2) {
        ASSERT_LT(k + 1, row.cells.size());
        const double d = row.cells[k];
        const double sd = row.cells[k + 1];
        EXPECT_NEAR(m(i, j), d, 1e-12 * std::fabs(d) + 1e-15) << "pair " << i << "," << j;
        EXPECT_NEAR(m(j, i), sd, 1e-12 * std::fabs(sd) + 1e-15) << "pair " << i << "," << j;
      }
    }
    EXPECT_EQ(k, row.cells.size());
  }
}

}  // namespace
