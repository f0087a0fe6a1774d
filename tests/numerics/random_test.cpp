// The generator's stream and its seeding: known values, reseeding, the
// seed file and the MORVCORE_SEED variable.
#include "numerics/random.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "numerics_capture.h"
#include "support/test_support.h"

namespace {

using numerics_testing::draw;
using numerics_testing::ReportCapture;
using numerics_testing::seed_with;
using numerics_testing::SeedVariable;
using testing_support::read_file;
using testing_support::TempDir;

// First six numbers after a seed. Provenance: tests/numerics/ran3_reference.py,
// an independent Python transcription of the published algorithm, run once
// with python3; its output is pasted here.
struct KnownStream {
  int seed;
  std::vector<double> values;
};

const std::vector<KnownStream> kKnownStreams = {
    {-1,
     {0.298227348, 0.7151191680000001, 0.033021107, 0.8743936000000001, 0.5341944240000001,
      0.631586247}},
    {-12345,
     {0.8606066600000001, 0.925464728, 0.418061483, 0.289637592, 0.14224656800000002, 0.449612039}},
    {-161803398,
     {0.613610054, 0.771029073, 0.12770832000000001, 0.332307521, 0.29362834600000004,
      0.774082943}},
};

TEST(Ran3, FirstNumbersAfterKnownSeedsMatchTheReference) {
  for (const KnownStream& known : kKnownStreams) {
    RandomGenerator generator;
    int idum = known.seed;
    for (double expected : known.values) {
      EXPECT_EQ(generator.ran3(&idum), expected) << "seed " << known.seed;
    }
    EXPECT_EQ(idum, 1) << "seeding leaves the seed variable at 1";
  }
}

TEST(Ran3, TenThousandthNumberMatchesTheReference) {
  RandomGenerator generator;
  int idum = -12345;
  double value = 0.0;
  for (int i = 0; i < 10000; ++i) value = generator.ran3(&idum);
  EXPECT_EQ(value, 0.554011257);  // ran3_reference.py, "draw 9999"
}

TEST(Ran3, NeverSeededGeneratorSeedsItselfFromAPositiveSeed) {
  RandomGenerator generator;
  int idum = 1;  // |1| seeds as -1 does
  for (double expected : kKnownStreams[0].values) EXPECT_EQ(generator.ran3(&idum), expected);
}

TEST(Ran3, NegativeSeedRestartsTheStream) {
  RandomGenerator generator;
  int idum = -12345;
  for (int i = 0; i < 100; ++i) generator.ran3(&idum);
  idum = -12345;
  for (double expected : kKnownStreams[1].values) EXPECT_EQ(generator.ran3(&idum), expected);
}

TEST(Ran3, PositiveSeedDoesNotReseedASeededGenerator) {
  RandomGenerator generator;
  int idum = -12345;
  generator.ran3(&idum);
  int other = 777;
  EXPECT_EQ(generator.ran3(&other), kKnownStreams[1].values[1]);
  EXPECT_EQ(other, 777);
}

TEST(Ran3, ValuesLieInTheUnitIntervalWithMeanOneHalf) {
  RandomGenerator generator;
  seed_with(generator, -99);
  const int count = 200000;
  double sum = 0.0;
  for (int i = 0; i < count; ++i) {
    const double u = draw(generator);
    ASSERT_GE(u, 0.0);
    ASSERT_LT(u, 1.0);
    sum += u;
  }
  // Standard error of the mean: sqrt(1/12 / count) = 6.5e-4; four of them.
  EXPECT_NEAR(sum / count, 0.5, 2.6e-3);
}

TEST(InitializeRan3, NegativeSeedSeedsAndLogsWithoutSeedFile) {
  ReportCapture capture;
  TempDir dir;
  RandomGenerator generator;
  generator.initialize_ran3(-12345, dir.path() / "randseed.txt");
  // Seeding consumes the first number of the stream.
  for (size_t i = 1; i < kKnownStreams[1].values.size(); ++i) {
    EXPECT_EQ(draw(generator), kKnownStreams[1].values[i]);
  }
  EXPECT_EQ(capture.log_text(), "Random generator initialized with seed=-12345\n");
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "randseed.txt"));
  EXPECT_TRUE(capture.reports().empty());
}

TEST(InitializeRan3, ReseedingRestartsTheSameStream) {
  TempDir dir;
  RandomGenerator generator;
  generator.initialize_ran3(-4321, dir.path() / "randseed.txt");
  const double first = draw(generator);
  for (int i = 0; i < 50; ++i) draw(generator);
  generator.initialize_ran3(-4321, dir.path() / "randseed.txt");
  EXPECT_EQ(draw(generator), first);
}

TEST(InitializeRan3, EnvironmentSeedReplacesTheClockSeed) {
  SeedVariable variable("-4242");
  ReportCapture capture;
  TempDir dir;
  RandomGenerator generator;
  generator.initialize_ran3(1, dir.path() / "randseed.txt");
  const std::string line = "Random number generator initialized with lidum=-4242\n";
  EXPECT_EQ(capture.log_text(), line);
  EXPECT_EQ(read_file(dir.path() / "randseed.txt"), line);
  RandomGenerator twin;
  seed_with(twin, -4242);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(draw(generator), draw(twin));
}

TEST(InitializeRan3, EnvironmentSeedAtTheLowerLimitIsAccepted) {
  SeedVariable variable("-161803398");
  ReportCapture capture;
  TempDir dir;
  RandomGenerator generator;
  generator.initialize_ran3(0, dir.path() / "randseed.txt");
  EXPECT_EQ(capture.log_text(), "Random number generator initialized with lidum=-161803398\n");
}

TEST(InitializeRan3, SeedFileIsReplacedNotAppended) {
  SeedVariable variable("-7");
  TempDir dir;
  testing_support::write_file(dir.path() / "randseed.txt", "old content\nmore\n");
  RandomGenerator generator;
  generator.initialize_ran3(5, dir.path() / "randseed.txt");
  EXPECT_EQ(read_file(dir.path() / "randseed.txt"),
            "Random number generator initialized with lidum=-7\n");
}

// A clock-path log (after an optional warning line) and its seed.
std::optional<int> logged_clock_seed(const std::string& line) {
  static const std::regex form("Random number generator initialized with lidum=(-[0-9]+)\n");
  std::smatch match;
  if (!std::regex_match(line, match, form)) return std::nullopt;
  return std::stoi(match[1].str());
}

TEST(InitializeRan3, InvalidEnvironmentSeedIsIgnoredWithAWarning) {
  const std::vector<std::string> invalid = {"-161803399", "abc", "42", "0", "-12x", " -5", ""};
  for (const std::string& value : invalid) {
    SeedVariable variable(value);
    ReportCapture capture;
    TempDir dir;
    RandomGenerator generator;
    generator.initialize_ran3(1, dir.path() / "randseed.txt");
    const std::string log = capture.log_text();
    const std::string warning =
        "WARNING: MORVCORE_SEED=\"" + value +
        "\" is not a negative integer from -161803398 to -1; it is ignored and the seed comes "
        "from the clock\n";
    ASSERT_EQ(log.substr(0, warning.size()), warning) << "value \"" << value << "\"";
    const std::string seed_line = log.substr(warning.size());
    const std::optional<int> seed = logged_clock_seed(seed_line);
    ASSERT_TRUE(seed.has_value()) << seed_line;
    EXPECT_GT(*seed, -2000000);
    EXPECT_EQ(read_file(dir.path() / "randseed.txt"), seed_line);
  }
}

TEST(InitializeRan3, WithoutEnvironmentSeedTheClockSeedIsLoggedAndSaved) {
  SeedVariable variable(std::nullopt);
  ReportCapture capture;
  TempDir dir;
  RandomGenerator generator;
  generator.initialize_ran3(1, dir.path() / "randseed.txt");
  const std::optional<int> seed = logged_clock_seed(capture.log_text());
  ASSERT_TRUE(seed.has_value()) << capture.log_text();
  EXPECT_EQ(read_file(dir.path() / "randseed.txt"), capture.log_text());
  // The saved seed reproduces the stream.
  RandomGenerator twin;
  seed_with(twin, *seed);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(draw(generator), draw(twin));
}

TEST(InitializeRan3, SeedBelowTheLimitRaises181AndTakesTheClockPath) {
  SeedVariable variable("-31");
  ReportCapture capture;
  TempDir dir;
  RandomGenerator generator;
  generator.initialize_ran3(-161803399, dir.path() / "randseed.txt");
  ASSERT_EQ(capture.reports().size(), 1u);
  EXPECT_EQ(capture.reports()[0].code, 181);
  EXPECT_EQ(capture.reports()[0].kind, numerics_kind::ERROR);
  EXPECT_EQ(capture.reports()[0].function, "initialize_ran3()");
  EXPECT_EQ(capture.log_text(), "Random number generator initialized with lidum=-31\n");
  RandomGenerator twin;
  seed_with(twin, -31);
  EXPECT_EQ(draw(generator), draw(twin));
}

TEST(InitializeRan3, DefaultSeedFileIsInTheCurrentFolder) {
  SeedVariable variable("-11");
  TempDir dir;
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  RandomGenerator generator;
  generator.initialize_ran3(1);
  std::filesystem::current_path(previous);
  EXPECT_EQ(read_file(dir.path() / "randseed.txt"),
            "Random number generator initialized with lidum=-11\n");
}

TEST(GetSeedFromClock, GivesANegativeSeedAboveMinusTwoMillion) {
  RandomGenerator generator;
  for (int i = 0; i < 20; ++i) {
    const int seed = generator.get_seed_from_clock();
    EXPECT_LT(seed, 0);
    EXPECT_GT(seed, -2000000);
  }
}

}  // namespace
