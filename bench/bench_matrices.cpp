// Element access and sums of the matrices as the permutation tests use them,
// the B-number table, and line reads of the text class.
#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

#include "model/matrices.h"
#include "model/my_string.h"
#include "numerics/random.h"

namespace {

void BM_trimat_sum(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  TriMat m(n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) m(i, j) = i - j;
  for (auto _ : state) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) sum += m(i, j);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * n * n);
}
BENCHMARK(BM_trimat_sum)->Arg(100)->Arg(1000);

void BM_mantel_permutation(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  RectMat x(n, n), y(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      x(i, j) = (i + 1) * (j + 1) % 7;
      y(i, j) = (i + j) % 5;
    }
  x.compute_SSX();
  y.compute_SSX();
  x.create_index();
  RandomGenerator generator;
  int idum = -12345;
  generator.ran3(&idum);
  for (auto _ : state) {
    x.permute_index(generator);
    benchmark::DoNotOptimize(x.sum_of_products(y));
  }
}
BENCHMARK(BM_mantel_permutation)->Arg(50)->Arg(200);

void BM_bnum_table(benchmark::State& state) {
  for (auto _ : state) {
    BnumMat b;
    benchmark::DoNotOptimize(b.allocate_matrix(5000, 1000));
  }
}
BENCHMARK(BM_bnum_table)->Unit(benchmark::kMillisecond);

void BM_getline(benchmark::State& state) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += std::string(80, 'a') + "\r\n";
  for (auto _ : state) {
    std::istringstream is(text);
    my_string line;
    int count = 0;
    while (line.getline(is)) ++count;
    benchmark::DoNotOptimize(count);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long long>(text.size()));
}
BENCHMARK(BM_getline);

}  // namespace
