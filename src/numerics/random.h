// The program's one random generator: Knuth's subtractive generator in its
// published "ran3" form (modulus 1e9), its seeding from a given seed, the
// clock or the MORVCORE_SEED environment variable, and the deviates built on
// it (uniform index, gamma, Poisson). One instance lives per process; it is
// passed by reference to every analysis so that all draws come from a single
// stream, in task order, and a given seed reproduces a whole run.
//
// Every draw is written out here; no library distribution is used, since the
// exact sequence of uniforms consumed is part of the program's results.
#pragma once

#include <array>
#include <filesystem>

class RandomGenerator {
 public:
  RandomGenerator() = default;
  // One stream per process: copying would fork it silently.
  RandomGenerator(const RandomGenerator&) = delete;
  RandomGenerator& operator=(const RandomGenerator&) = delete;

  // Next uniform number in [0, 1). If *idum is negative or the generator was
  // never seeded, it is (re)seeded from *idum first and *idum is set to 1.
  double ran3(int* idum);

  // Seeds the generator, consuming the first number of the new stream:
  //  - seed in [-161803398, -1]: that seed, logged;
  //  - seed below -161803398: error 181, then as for a positive seed;
  //  - seed >= 0: a clock seed (or MORVCORE_SEED, if it holds a valid seed),
  //    logged and written to `seed_file`, which is replaced.
  void initialize_ran3(int seed, const std::filesystem::path& seed_file = "randseed.txt");

  // A negative seed in [-1999999, -1] derived from the wall clock, the C
  // library's generator and the process clock.
  int get_seed_from_clock();

  // floor(n * ran3(idum)), or n - 1 should the product reach n.
  int random_int(int* idum, int n);

  // A uniform integer in 0 .. n - 1 from exactly one draw, trunc(n * u)
  // capped at n - 1 (0 for n <= 0). Never reseeds.
  int uniform_index(int n);

  // Gamma deviate of shape a (scale 1); 0 for a <= 0. The integer part of a
  // goes through gamdev_int, the fractional part through Ahrens and Dieter's
  // method; an integer shape takes no fractional step.
  double gamdev(double a);
  // Gamma deviate of integer shape a; 0 for a < 1.
  double gamdev_int(int a);
  // Poisson deviate of the given mean: multiplication of uniforms below 12,
  // rejection with a Lorentzian comparison function from 12 on.
  int poidev(double mean, int* idum);

 private:
  double next_uniform();  // a draw that never reseeds
  int seed_for_clock_path();
  double gamma_fraction(double f);
  void seed_state(int idum);

  // ran3 state: slots 1 to 55 of `ma` are used.
  std::array<int, 56> ma_{};
  int inext_ = 0;
  int inextp_ = 0;
  int iff_ = 0;

  // poidev keeps the constants of the last mean it was asked for.
  double poidev_old_mean_ = -1.0;
  double poidev_g_ = 0.0;
  double poidev_sq_ = 0.0;
  double poidev_alxm_ = 0.0;
};
