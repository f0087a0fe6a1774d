// Distance matrices of RFLP, microsatellite and standard samples, by hand:
// restriction-site changes and deletions, missing data, the proportion and
// its scale, allele sizes and their squared differences, alleles compared by
// identity, unusable loci, and the errors of these types.
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "model/dictionary_test_support.h"
#include "model/population_test_support.h"
#include "within/distances.h"

namespace {

using dictionary_test::Report;
using dictionary_test::ReportCapture;
using Alignment = std::vector<std::pair<std::string, int>>;

// The lower triangle, row by row, and the upper one in the same order.
std::vector<double> lower(const RectMat& m) {
  std::vector<double> v;
  for (int i = 1; i < m.nrows(); ++i)
    for (int j = 0; j < i; ++j) v.push_back(m.row(i)[static_cast<std::size_t>(j)]);
  return v;
}
std::vector<double> upper(const RectMat& m) {
  std::vector<double> v;
  for (int i = 1; i < m.nrows(); ++i)
    for (int j = 0; j < i; ++j) v.push_back(m.row(j)[static_cast<std::size_t>(i)]);
  return v;
}

class OtherDistances : public ::testing::Test {
 protected:
  PopGenetics& sample(unsigned char type, const Alignment& data, char separator = 0) {
    sample_ = make_sample(type, project_.sample(type, data, separator));
    const std::size_t loci = type == 1 ? data.front().first.size()
                                       : static_cast<std::size_t>(project_.alleles.nb_loci());
    sample_->usable_locus.assign(loci, 1);
    sample_->nb_usable_loci = static_cast<int>(loci);
    return *sample_;
  }

  ReportCapture reports_;
  population_test::Project project_;
  std::unique_ptr<PopGenetics> sample_;
};

// Site 4 a change; a deletion against site 3; missing data at site 1.
const Alignment kRflp = {{"0101", 1}, {"0111", 1}, {"01-1", 1}, {"?100", 1}};

TEST_F(OtherDistances, RflpCountsChangesAndWeightedDeletions) {
  auto& rflp = static_cast<PopulRFLP&>(sample(1, kRflp));
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 0), 1);
  EXPECT_EQ(lower(*rflp.dist_mat), (std::vector<double>{1, 1, 1, 1, 2, 2}));
  // L (1 - n/L) (n/L) with L = 4: 0.75 for one difference, 1 for two.
  const double one = std::sqrt(0.75);
  EXPECT_EQ(upper(*rflp.dist_mat), (std::vector<double>{one, one, one, one, 1, 1}));
  rflp.DeletionWeight = 0.0;
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 0), 1);
  EXPECT_EQ(lower(*rflp.dist_mat), (std::vector<double>{1, 0, 0, 1, 2, 1}));
  EXPECT_EQ(rflp.max_diff, 2);
}

TEST_F(OtherDistances, RflpProportionScalesToDifferencesPerSequence) {
  auto& rflp = static_cast<PopulRFLP&>(sample(1, kRflp));
  rflp.dist_method = 1;
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 0), 1);
  EXPECT_EQ((*rflp.dist_mat)(3, 1), 0.5);
  EXPECT_EQ((*rflp.dist_mat)(1, 3), 0.25);  // sqrt(0.5 * 0.5 / 4)
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 1), 1);
  EXPECT_EQ((*rflp.dist_mat)(3, 1), 2.0);
  EXPECT_EQ((*rflp.dist_mat)(1, 3), 1.0);
  rflp.dist_method = 7;  // unknown: the plain count, never scaled
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 1), 1);
  EXPECT_EQ((*rflp.dist_mat)(3, 1), 2.0);
  EXPECT_EQ((*rflp.dist_mat)(1, 0), 1.0);
}

TEST_F(OtherDistances, RflpWithoutUsableSitesIsAllZeroAndReusesItsMatrix) {
  auto& rflp = static_cast<PopulRFLP&>(sample(1, kRflp));
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 0), 1);
  const RectMat* first = rflp.dist_mat.get();
  rflp.nb_usable_loci = 0;
  ASSERT_EQ(compute_distance_matrix(rflp, nullptr, nullptr, 0), 1);
  EXPECT_EQ(rflp.dist_mat.get(), first);
  EXPECT_EQ(lower(*rflp.dist_mat), std::vector<double>(6, 0.0));
  EXPECT_EQ(upper(*rflp.dist_mat), std::vector<double>(6, 0.0));
}

const Alignment kMicrosat = {{"100 102 ?", 1}, {"104 102 98", 1}, {"100 ? 99", 1}};

TEST_F(OtherDistances, MicrosatellitesCountDifferentSizesOrSumSquares) {
  PopGenetics& ms = sample(2, kMicrosat, ' ');
  ASSERT_EQ(compute_distance_matrix(ms, nullptr, nullptr, 1), 1);
  EXPECT_EQ(lower(*ms.dist_mat), (std::vector<double>{1, 0, 2}));
  ms.dist_method = 1;
  ASSERT_EQ(compute_distance_matrix(ms, nullptr, nullptr, 1), 1);
  EXPECT_EQ(lower(*ms.dist_mat), (std::vector<double>{16, 0, 17}));  // never scaled
  EXPECT_EQ(upper(*ms.dist_mat), std::vector<double>(3, 0.0));
  EXPECT_EQ(ms.max_diff, 17);
  ms.dist_method = 5;  // any other value: squared differences
  ms.usable_locus[0] = 0;
  ASSERT_EQ(compute_distance_matrix(ms, nullptr, nullptr, 0), 1);
  EXPECT_EQ(lower(*ms.dist_mat), (std::vector<double>{0, 0, 1}));
  EXPECT_TRUE(std::regex_match(reports_.log_text(),
                               std::regex("(\t\tBeginning distance computations \\.\\.\\.\n"
                                          "\t\tdone ! \\([0-9]+ ms\\)\n){3}")));
}

TEST_F(OtherDistances, LargeMicrosatelliteSizesGiveTheSameSums) {
  // Sizes beyond 2^20 are summed as doubles, locus after locus.
  PopGenetics& ms = sample(2, {{"2000000 5 ?", 1}, {"2000003 5 7", 1}, {"1999999 ? 4", 1}}, ' ');
  ms.dist_method = 1;
  ASSERT_EQ(compute_distance_matrix(ms, nullptr, nullptr, 0), 1);
  EXPECT_EQ(lower(*ms.dist_mat), (std::vector<double>{9, 1, 25}));
  ms.dist_method = 0;
  ASSERT_EQ(compute_distance_matrix(ms, nullptr, nullptr, 0), 1);
  EXPECT_EQ(lower(*ms.dist_mat), (std::vector<double>{1, 1, 2}));
}

TEST_F(OtherDistances, AMicrosatelliteAlleleThatIsNoIntegerEndsTheMatrix) {
  PopGenetics& ms = sample(2, {{"100 102", 1}, {"104 1x2", 1}, {"100 100", 1}}, ' ');
  EXPECT_EQ(compute_distance_matrix(ms, nullptr, nullptr, 0), 0);
  const std::vector<Report> expected = {
      {report_kind::ERROR, "PopulMicrosat::compute_distance_matrix()", 121}};
  EXPECT_EQ(reports_.all(), expected);
  EXPECT_FALSE(ms.dist_mat->has_data());
  // The first row is read too, though it has no pair.
  ReportCapture again;
  PopGenetics& single = sample(2, {{"1x2 100", 1}}, ' ');
  EXPECT_EQ(compute_distance_matrix(single, nullptr, nullptr, 0), 0);
  EXPECT_EQ(again.count(121), 1);
}

TEST_F(OtherDistances, StandardDataCountDifferentAllelesOutsideMissingData) {
  PopGenetics& st = sample(3, {{"a b c", 1}, {"a d ?", 1}, {"e d c", 1}}, ' ');
  ASSERT_EQ(compute_distance_matrix(st, nullptr, nullptr, 1), 1);
  EXPECT_EQ(lower(*st.dist_mat), (std::vector<double>{1, 2, 1}));
  st.usable_locus[0] = 0;
  ASSERT_EQ(compute_distance_matrix(st, nullptr, nullptr, 0), 1);
  EXPECT_EQ(lower(*st.dist_mat), (std::vector<double>{1, 1, 0}));
}

TEST_F(OtherDistances, FrequencyDataLeaveAZeroMatrix) {
  PopGenetics& freq = sample(4, {{"", 3}, {"", 1}});
  ASSERT_EQ(compute_distance_matrix(freq, nullptr, nullptr, 0), 1);
  EXPECT_EQ(freq.dist_mat->nrows(), 2);
  EXPECT_EQ(lower(*freq.dist_mat), std::vector<double>{0.0});
}

TEST_F(OtherDistances, EmptySamplesAreAnErrorUnderTheirClass) {
  for (const auto& [type, routine] : std::vector<std::pair<unsigned char, std::string>>{
           {1, "PopulRFLP::compute_distance_matrix()"},
           {2, "PopulMicrosat::compute_distance_matrix()"},
           {3, "PopulStandard::compute_distance_matrix()"}}) {
    ReportCapture reports;
    auto empty = make_sample(type, Population());
    EXPECT_EQ(compute_distance_matrix(*empty, nullptr, nullptr, 0), 0);
    const std::vector<Report> expected = {{report_kind::ERROR, routine, 108}};
    EXPECT_EQ(reports.all(), expected);
  }
}

}  // namespace
