// Draws per second of the generator and the deviates and special functions
// that sit in the inner loops of resampling tests and simulations.
#include <benchmark/benchmark.h>

#include "numerics/random.h"
#include "numerics/special_functions.h"

namespace {

// A fixed seed, as every benchmark of random procedures uses.
constexpr int kSeed = -12345;

void seeded(RandomGenerator& generator) {
  int idum = kSeed;
  generator.ran3(&idum);
}

void BM_ran3(benchmark::State& state) {
  RandomGenerator generator;
  seeded(generator);
  int idum = 1;
  for (auto _ : state) benchmark::DoNotOptimize(generator.ran3(&idum));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ran3);

void BM_uniform_index(benchmark::State& state) {
  RandomGenerator generator;
  seeded(generator);
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(generator.uniform_index(n));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_uniform_index)->Arg(10)->Arg(1000000);

// The argument is ten times the mean: the direct branch below 12, the
// rejection branch from 12 on.
void BM_poidev(benchmark::State& state) {
  RandomGenerator generator;
  seeded(generator);
  const double mean = static_cast<double>(state.range(0)) / 10.0;
  int idum = 1;
  for (auto _ : state) benchmark::DoNotOptimize(generator.poidev(mean, &idum));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_poidev)->Arg(5)->Arg(50)->Arg(119)->Arg(120)->Arg(1000);

// The argument is ten times the shape: fractional, small integer, large
// integer, and both parts.
void BM_gamdev(benchmark::State& state) {
  RandomGenerator generator;
  seeded(generator);
  const double shape = static_cast<double>(state.range(0)) / 10.0;
  for (auto _ : state) benchmark::DoNotOptimize(generator.gamdev(shape));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_gamdev)->Arg(5)->Arg(30)->Arg(80)->Arg(85);

// Cached (up to 100) and computed arguments.
void BM_factln(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(factln(n));
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_factln)->Arg(50)->Arg(5000);

void BM_Prob_of_chi_sq(benchmark::State& state) {
  const int df = static_cast<int>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(Prob_of_chi_sq(df, 7.5));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Prob_of_chi_sq)->Arg(3)->Arg(12);

}  // namespace
