// Deviates built on the generator: how many uniforms each one consumes (the
// order of draws is part of every result) and the moments of their output.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "numerics/random.h"
#include "numerics_capture.h"

namespace {

using numerics_testing::draw;
using numerics_testing::draws_consumed;
using numerics_testing::seed_with;

struct Moments {
  double mean;
  double variance;
};

template <typename Draw>
Moments moments_of(int count, Draw next) {
  double sum = 0.0;
  double sum_sq = 0.0;
  for (int i = 0; i < count; ++i) {
    const double v = next();
    sum += v;
    sum_sq += v * v;
  }
  const double mean = sum / count;
  return {mean, sum_sq / count - mean * mean};
}

TEST(UniformIndex, IsTheTruncatedProductOfOneDraw) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -5);
  seed_with(twin, -5);
  for (int n : {1, 2, 3, 7, 10, 1000, 2147483647}) {
    for (int i = 0; i < 50; ++i) {
      const int k = generator.uniform_index(n);
      EXPECT_EQ(k, static_cast<int>(n * draw(twin)));
      EXPECT_GE(k, 0);
      EXPECT_LT(k, n);
    }
  }
}

TEST(UniformIndex, EmptyRangeGivesZeroAndStillDrawsOnce) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -8);
  seed_with(twin, -8);
  EXPECT_EQ(generator.uniform_index(0), 0);
  EXPECT_EQ(generator.uniform_index(-3), 0);
  EXPECT_EQ(draws_consumed(generator, twin), 2);
}

TEST(UniformIndex, CoversTheRangeEvenly) {
  RandomGenerator generator;
  seed_with(generator, -21);
  std::vector<int> counts(10, 0);
  const int count = 100000;
  for (int i = 0; i < count; ++i) ++counts[generator.uniform_index(10)];
  // Binomial(100000, 0.1): sd 95; five of them.
  for (int c : counts) EXPECT_NEAR(c, count / 10, 475);
}

TEST(RandomInt, IsTheFloorOfTheProductAndUsesTheGivenSeedVariable) {
  RandomGenerator generator;
  RandomGenerator twin;
  int idum = -77;
  int twin_idum = -77;
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(generator.random_int(&idum, 4),
              static_cast<int>(std::floor(4 * twin.ran3(&twin_idum))));
  }
  EXPECT_EQ(idum, 1);
}

TEST(Poidev, MeanBelowTwelveMultipliesUniforms) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -3);
  seed_with(twin, -3);
  for (int i = 0; i < 200; ++i) {
    int idum = 1;
    const int k = generator.poidev(11.99, &idum);
    // The direct method draws until the product falls to exp(-mean): k + 1 draws.
    // draws_consumed leaves both generators aligned again.
    ASSERT_EQ(draws_consumed(generator, twin), k + 1) << "call " << i;
  }
}

TEST(Poidev, MeanOfTwelveTakesTheRejectionBranch) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -3);
  seed_with(twin, -3);
  int consumed = 0;
  int direct_would_take = 0;
  for (int i = 0; i < 200; ++i) {
    int idum = 1;
    const int k = generator.poidev(12.0, &idum);
    const int used = draws_consumed(generator, twin);
    // Rejection draws pairs (tangent, acceptance), a few per deviate.
    ASSERT_GE(used, 2);
    consumed += used;
    direct_would_take += k + 1;
  }
  EXPECT_LT(consumed, direct_would_take / 3);
}

TEST(Poidev, MomentsMatchThePoissonMean) {
  for (double mean : {0.5, 3.5, 11.99, 12.0, 40.0, 250.0}) {
    RandomGenerator generator;
    seed_with(generator, -17);
    const int count = 100000;
    const Moments m = moments_of(count, [&] {
      int idum = 1;
      return static_cast<double>(generator.poidev(mean, &idum));
    });
    // Standard error of the mean sqrt(mean / count); five of them. The
    // variance of a Poisson count equals its mean; 3 % covers its noise.
    EXPECT_NEAR(m.mean, mean, 5.0 * std::sqrt(mean / count)) << "mean " << mean;
    EXPECT_NEAR(m.variance, mean, 0.03 * mean) << "mean " << mean;
  }
}

TEST(Poidev, AlternatingMeansKeepTheirOwnConstants) {
  // The cache holds the last mean only; switching must recompute it.
  RandomGenerator generator;
  seed_with(generator, -23);
  double sum_low = 0.0;
  double sum_high = 0.0;
  const int count = 50000;
  for (int i = 0; i < count; ++i) {
    int idum = 1;
    sum_low += generator.poidev(2.0, &idum);
    sum_high += generator.poidev(30.0, &idum);
  }
  EXPECT_NEAR(sum_low / count, 2.0, 5.0 * std::sqrt(2.0 / count));
  EXPECT_NEAR(sum_high / count, 30.0, 5.0 * std::sqrt(30.0 / count));
}

TEST(Gamdev, SmallIntegerShapeIsMinusLogOfAProductOfUniforms) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -9);
  seed_with(twin, -9);
  const double value = generator.gamdev(3.0);
  const double u1 = draw(twin);
  const double u2 = draw(twin);
  const double u3 = draw(twin);
  EXPECT_EQ(value, -std::log(u1 * u2 * u3));
  EXPECT_EQ(draw(generator), draw(twin)) << "exactly three draws, no fractional step";
}

TEST(Gamdev, IntegerShapeTakesNoFractionalStep) {
  for (double shape : {1.0, 5.0, 6.0, 8.0, 25.0}) {
    RandomGenerator generator;
    RandomGenerator twin;
    seed_with(generator, -13);
    seed_with(twin, -13);
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(generator.gamdev(shape), twin.gamdev_int(static_cast<int>(shape)));
    }
    EXPECT_EQ(draw(generator), draw(twin)) << "shape " << shape;
  }
}

TEST(Gamdev, FractionalShapeAddsAFractionalStep) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -13);
  seed_with(twin, -13);
  generator.gamdev(2.5);
  twin.gamdev_int(2);
  // The fractional part draws at least a proposal and its acceptance.
  EXPECT_GE(draws_consumed(generator, twin), 2);
}

TEST(Gamdev, NonPositiveShapesGiveZeroWithoutDrawing) {
  RandomGenerator generator;
  RandomGenerator twin;
  seed_with(generator, -2);
  seed_with(twin, -2);
  EXPECT_EQ(generator.gamdev(0.0), 0.0);
  EXPECT_EQ(generator.gamdev(-1.5), 0.0);
  EXPECT_EQ(generator.gamdev_int(0), 0.0);
  EXPECT_EQ(generator.gamdev_int(-4), 0.0);
  EXPECT_EQ(draws_consumed(generator, twin), 0);
}

TEST(Gamdev, MomentsMatchTheGammaShape) {
  for (double shape : {0.3, 1.0, 2.5, 5.0, 7.0, 20.0, 33.7}) {
    RandomGenerator generator;
    seed_with(generator, -29);
    const int count = 100000;
    const Moments m = moments_of(count, [&] { return generator.gamdev(shape); });
    // Mean and variance of Gamma(a, 1) are both a; standard error of the
    // mean sqrt(a / count), five of them; 4 % for the variance.
    EXPECT_NEAR(m.mean, shape, 5.0 * std::sqrt(shape / count)) << "shape " << shape;
    EXPECT_NEAR(m.variance, shape, 0.04 * shape) << "shape " << shape;
  }
}

}  // namespace
