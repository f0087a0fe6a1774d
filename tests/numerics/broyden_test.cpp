// The divergence solver: recovery of known parameters, restarts, and the
// failure path with its single report.
#include "numerics/broyden.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "numerics/random.h"
#include "numerics_capture.h"

namespace {

using numerics_testing::ReportCapture;
using numerics_testing::seed_with;

struct Parameters {
  double theta;
  double alpha;
  double tau;
};

struct Targets {
  double y1;
  double y2;
  double y3;
};

// The model written out directly: what a pair with these parameters shows.
Targets targets_of(const Parameters& p) {
  const double e1 = std::exp(-p.tau / (p.alpha * p.theta));
  const double e2 = std::exp(-p.tau / ((1.0 - p.alpha) * p.theta));
  return {p.theta * (p.alpha + (1.0 - p.alpha) * e1), p.theta * ((1.0 - p.alpha) + p.alpha * e2),
          p.tau + p.theta};
}

TEST(TBroyden, RecoversTheParametersThatMadeTheTargets) {
  // From 0.01 to 50: the targets are scaled by their largest value inside.
  const std::vector<Parameters> cases = {
      {2.0, 0.3, 1.5}, {5.0, 0.5, 2.0}, {50.0, 0.7, 30.0}, {0.01, 0.2, 0.005}, {1.0, 0.9, 0.1}};
  for (const Parameters& p : cases) {
    RandomGenerator generator;
    seed_with(generator, -5);
    const Targets y = targets_of(p);
    TBroyden solver(y.y1, y.y2, y.y3, generator);
    ReportCapture capture;
    EXPECT_FALSE(solver.solve(20)) << "theta " << p.theta;
    EXPECT_TRUE(solver.solved());
    // The residual tolerance 1e-4 on targets scaled to at most 1 leaves the
    // parameters within 1e-4 (relative for theta and tau).
    EXPECT_NEAR(static_cast<double>(solver.theta()), p.theta, 1e-4 * p.theta);
    EXPECT_NEAR(static_cast<double>(solver.tau()), p.tau, 1e-4 * p.theta);
    EXPECT_NEAR(static_cast<double>(solver.alpha()), p.alpha, 1e-4) << "theta " << p.theta;
    EXPECT_TRUE(capture.reports().empty());
  }
}

TEST(TBroyden, FirstTryDrawsNothingFromTheGenerator) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -6);
  seed_with(twin, -6);
  const Targets y = targets_of({2.0, 0.3, 1.5});
  TBroyden solver(y.y1, y.y2, y.y3, generator);
  ASSERT_FALSE(solver.solve(20));
  EXPECT_EQ(numerics_testing::draws_consumed(generator, twin), 0);
}

TEST(TBroyden, ZeroTargetsAreSolvedAtOnce) {
  RandomGenerator generator;
  TBroyden solver(0.0, 0.0, 0.0, generator);
  EXPECT_FALSE(solver.solve(3));
  EXPECT_EQ(solver.theta(), 0.0L);
  EXPECT_EQ(solver.alpha(), 0.5L);
  EXPECT_EQ(solver.tau(), 0.0L);
}

TEST(TBroyden, TargetsOutsideTheModelFailWithOneReportAtTheLastTry) {
  // With 0 <= alpha <= 1 and tau >= 0 the model needs y2 <= theta <= y3,
  // impossible for y2 = 5 and y3 = 1; the solver finds no solution elsewhere.
  for (int tries : {1, 4}) {
    RandomGenerator generator;
    seed_with(generator, -5);
    TBroyden solver(0.001, 5.0, 1.0, generator);
    ReportCapture capture;
    EXPECT_TRUE(solver.solve(tries));
    EXPECT_FALSE(solver.solved());
    ASSERT_EQ(capture.reports().size(), 1u) << tries << " tries";
    const numerics_testing::Report& report = capture.reports()[0];
    EXPECT_EQ(report.kind, numerics_kind::ERROR);
    if (report.code == 185) {
      EXPECT_EQ(report.function, "TBroyden::lnsrch()");
    } else {
      EXPECT_EQ(report.code, 184);
      EXPECT_EQ(report.function, "TBroyden::broydn()");
    }
  }
}

TEST(TBroyden, NegativeThetaIsAFailureWithoutReport) {
  // Scaled by their largest value (-1) the targets become (1, 1, 1), solved
  // by theta = 1 and tau = 0; scaled back theta is -1, which is refused.
  RandomGenerator generator;
  seed_with(generator, -5);
  TBroyden solver(-1.0, -1.0, -1.0, generator);
  ReportCapture capture;
  EXPECT_TRUE(solver.solve(1));
  EXPECT_LT(solver.theta(), 0.0L);
  EXPECT_TRUE(capture.reports().empty());
}

TEST(TBroyden, NoTriesIsAFailure) {
  RandomGenerator generator;
  TBroyden solver(1.0, 1.0, 1.0, generator);
  EXPECT_TRUE(solver.solve(0));
  EXPECT_FALSE(solver.solved());
}

}  // namespace
