// Log-gamma, log-factorial and the incomplete gamma function against the
// standard library and closed forms, with stated tolerances, and their
// error reports.
#include "numerics/special_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "numerics_capture.h"

namespace {

using numerics_testing::ReportCapture;

// |a - b| relative to max(1, |b|): absolute near the zeros of ln Gamma at 1
// and 2, relative elsewhere.
double scaled_error(long double a, long double b) {
  return static_cast<double>(std::fabs(a - b) / std::fmax(1.0L, std::fabs(b)));
}

// The six-term Lanczos series is within 1e-12 of ln Gamma (scaled as above)
// over this whole range; measured worst 4.1e-13, near x = 42.
constexpr double kLanczosTolerance = 1e-12;

TEST(Gammln, AgreesWithTheLibraryLogGammaOverAWideRange) {
  for (double x = 1e-3; x < 1e7; x *= 1.01) {
    ASSERT_LE(scaled_error(gammln(x), std::lgamma(x)), kLanczosTolerance) << "x = " << x;
  }
}

TEST(Gammlnl, AgreesWithTheLibraryExtendedLogGammaOverAWideRange) {
  for (long double x = 1e-3L; x < 1e7L; x *= 1.01L) {
    ASSERT_LE(scaled_error(gammlnl(x), std::lgamma(x)), kLanczosTolerance) << "x = " << x;
  }
}

TEST(Gammlnl, DiffersFromTheDoubleSeriesOnlyByRounding) {
  for (double x = 1e-3; x < 1e7; x *= 1.07) {
    ASSERT_LE(scaled_error(gammlnl(x), gammln(x)), 1e-14) << "x = " << x;
  }
}

TEST(Factln, ZeroAndOneGiveZeroExactly) {
  EXPECT_EQ(factln(0), 0.0);
  EXPECT_EQ(factln(1), 0.0);
  EXPECT_EQ(factlnl(0), 0.0L);
  EXPECT_EQ(factlnl(1), 0.0L);
}

TEST(Factln, AgreesWithTheLibraryOnBothSidesOfTheCache) {
  for (int n = 2; n <= 5000; ++n) {
    ASSERT_LE(scaled_error(factln(n), std::lgamma(n + 1.0)), kLanczosTolerance) << "n = " << n;
    ASSERT_LE(scaled_error(factlnl(n), std::lgamma(n + 1.0L)), kLanczosTolerance) << "n = " << n;
  }
}

TEST(Factln, CachedAndFreshValuesAreTheSeriesValue) {
  for (int n : {2, 50, 100, 101, 1000}) {
    for (int call = 0; call < 2; ++call) {
      EXPECT_EQ(factln(n), gammln(n + 1.0)) << "n = " << n;
      EXPECT_EQ(factlnl(n), gammlnl(n + 1.0L)) << "n = " << n;
    }
  }
}

TEST(Factln, NegativeArgumentGivesZeroAndReportsANumericalError) {
  ReportCapture capture;
  EXPECT_EQ(factln(-1), 0.0);
  EXPECT_EQ(factlnl(-3), 0.0L);
  ASSERT_EQ(capture.reports().size(), 2u);
  EXPECT_EQ(capture.reports()[0].function, "factln(int n) negative factorial: setting it to zero");
  EXPECT_EQ(capture.reports()[0].code, 105);
  EXPECT_EQ(capture.reports()[0].kind, numerics_kind::ERROR);
  EXPECT_EQ(capture.reports()[1].function, "factlnl(int n) negative factorial: setting it to zero");
  EXPECT_EQ(capture.reports()[1].code, 105);
}

// Upper regularised incomplete gamma Q(a, y) for a a multiple of 1/2, by
// its closed forms: Q(1, y) = exp(-y), Q(1/2, y) = erfc(sqrt y), and
// Q(a + 1, y) = Q(a, y) + y^a exp(-y) / Gamma(a + 1).
double closed_form_q(int twice_a, double y) {
  double a = twice_a % 2 == 0 ? 1.0 : 0.5;
  double q = twice_a % 2 == 0 ? std::exp(-y) : std::erfc(std::sqrt(y));
  for (; 2 * a < twice_a; a += 1.0) {
    q += std::exp(a * std::log(y) - y - std::lgamma(a + 1.0));
  }
  return q;
}

TEST(IncompleteGamma, SeriesAndContinuedFractionMatchClosedForms) {
  struct Case {
    int twice_a;
    double x;
  };
  const std::vector<Case> cases = {{1, 0.3}, {1, 2.0}, {2, 1.0}, {2, 3.0},  {5, 2.5},
                                   {5, 4.0}, {6, 1.0}, {6, 8.0}, {21, 4.0}, {21, 15.0}};
  for (const Case& c : cases) {
    const float a = c.twice_a / 2.0f;
    const double q = closed_form_q(c.twice_a, c.x);
    float result = 0.0f;
    float gln = 0.0f;
    // Single precision: the float rounding (6e-8) plus the 3e-7 stopping rule.
    if (c.x >= a + 1.0) {
      gcf(&result, a, static_cast<float>(c.x), &gln);
      EXPECT_NEAR(result, q, 1e-6) << "gcf a = " << a << " x = " << c.x;
    } else {
      gser(&result, a, static_cast<float>(c.x), &gln);
      EXPECT_NEAR(result, 1.0 - q, 1e-6) << "gser a = " << a << " x = " << c.x;
    }
    EXPECT_EQ(gln, static_cast<float>(gammln(a)));
  }
}

TEST(IncompleteGamma, SeriesAtZeroIsZeroAndBelowZeroReports) {
  ReportCapture capture;
  float result = 1.0f;
  float gln = 0.0f;
  gser(&result, 2.0f, 0.0f, &gln);
  EXPECT_EQ(result, 0.0f);
  EXPECT_TRUE(capture.reports().empty());
  result = 1.0f;
  gser(&result, 2.0f, -1.0f, &gln);
  EXPECT_EQ(result, 0.0f);
  ASSERT_EQ(capture.reports().size(), 1u);
  EXPECT_EQ(capture.reports()[0].function, "gser() x less than 0");
  EXPECT_EQ(capture.reports()[0].code, 105);
}

TEST(IncompleteGamma, TooManyIterationsAreReported) {
  ReportCapture capture;
  float result = 0.0f;
  float gln = 0.0f;
  gcf(&result, 100.0f, 101.0f, &gln);
  gser(&result, 100.0f, 99.0f, &gln);
  EXPECT_TRUE(capture.reports().empty()) << "a = 100 converges within 100 steps";
  gcf(&result, 10000.0f, 10001.0f, &gln);
  gser(&result, 1000.0f, 999.0f, &gln);
  ASSERT_EQ(capture.reports().size(), 2u);
  EXPECT_EQ(capture.reports()[0].function, "gcf() a too large, ITMAX too small in gcf");
  EXPECT_EQ(capture.reports()[1].function, "gser() a too large, ITMAX too small ");
  EXPECT_EQ(capture.reports()[1].code, 105);
}

TEST(ProbOfChiSq, MatchesClosedFormsOverDegreesOfFreedom) {
  for (int df = 1; df <= 41; ++df) {
    for (double chi2 : {0.01, 0.5, 1.0, 2.0, 3.841459, 7.5, 12.0, 25.0, 40.0, 60.0}) {
      // Float arithmetic inside: 1e-5 absolute.
      EXPECT_NEAR(Prob_of_chi_sq(df, chi2), closed_form_q(df, chi2 / 2.0), 1e-5)
          << "df = " << df << " chi2 = " << chi2;
    }
  }
}

TEST(ProbOfChiSq, MatchesPrintedTableValues) {
  struct Row {
    int df;
    double chi2;
    double p;
  };
  // Critical values of the chi-square distribution, as printed in tables.
  const std::vector<Row> table = {{1, 3.841459, 0.05},   {1, 6.634897, 0.01},  {1, 0.454936, 0.5},
                                  {2, 5.991465, 0.05},   {3, 7.814728, 0.05},  {5, 11.070498, 0.05},
                                  {10, 23.209251, 0.01}, {20, 31.410433, 0.05}};
  for (const Row& row : table) {
    EXPECT_NEAR(Prob_of_chi_sq(row.df, row.chi2), row.p, 1e-5) << "df = " << row.df;
  }
}

TEST(ProbOfChiSq, ZeroChiSquareGivesOne) {
  EXPECT_EQ(Prob_of_chi_sq(2, 0.0), 1.0);
}

TEST(ProbOfChiSq, NoDegreesOfFreedomGivesMinusOneSilently) {
  ReportCapture capture;
  EXPECT_EQ(Prob_of_chi_sq(0, 3.0), -1.0);
  EXPECT_EQ(Prob_of_chi_sq(-2, 3.0), -1.0);
  EXPECT_TRUE(capture.reports().empty());
}

TEST(ProbOfChiSq, NegativeOrNanChiSquareGivesMinusOneAndReports) {
  ReportCapture capture;
  EXPECT_EQ(Prob_of_chi_sq(3, -0.5), -1.0);
  EXPECT_EQ(Prob_of_chi_sq(3, std::numeric_limits<double>::quiet_NaN()), -1.0);
  ASSERT_EQ(capture.reports().size(), 2u);
  EXPECT_EQ(capture.reports()[0].function, "Prob_of_chi_sq()  invalid arguments");
  EXPECT_EQ(capture.reports()[0].code, 105);
}

}  // namespace
