// Minimum spanning network over 5,000 haplotypes, on two kinds of matrix:
//  - DNA-like: Hamming distances between sequences that descend from a few
//    ancestors with a few mutations each, so that small distances tie often;
//  - microsatellite-like: sums of squared size differences over a few loci.
// The counters give the number of alternative links the network kept.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "among/min_span_net.h"

namespace {

class Lcg {
 public:
  explicit Lcg(std::uint64_t seed) : state_(seed) {}
  std::uint32_t below(std::uint32_t n) {
    state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<std::uint32_t>((state_ >> 33) % n);
  }

 private:
  std::uint64_t state_;
};

std::vector<double> dna_like(std::size_t n) {
  constexpr std::size_t sites = 60, ancestors = 40;
  Lcg rng(20240601);
  std::vector<std::vector<char>> ancestor(ancestors, std::vector<char>(sites));
  for (auto& seq : ancestor) {
    for (auto& base : seq) base = static_cast<char>(rng.below(4));
  }
  std::vector<std::vector<char>> hap(n);
  for (auto& seq : hap) {
    seq = ancestor[rng.below(ancestors)];
    const std::uint32_t mutations = rng.below(4);
    for (std::uint32_t m = 0; m < mutations; ++m)
      seq[rng.below(sites)] = static_cast<char>(rng.below(4));
  }
  std::vector<double> cells(n * n, 0.0);
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      int diff = 0;
      for (std::size_t s = 0; s < sites; ++s) diff += hap[a][s] != hap[b][s];
      cells[a * n + b] = cells[b * n + a] = diff;
    }
  }
  return cells;
}

std::vector<double> microsat_like(std::size_t n) {
  constexpr std::size_t loci = 5;
  Lcg rng(777);
  std::vector<std::vector<int>> sizes(n, std::vector<int>(loci));
  for (auto& h : sizes) {
    for (auto& s : h) s = 100 + static_cast<int>(rng.below(9));
  }
  std::vector<double> cells(n * n, 0.0);
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      int sum = 0;
      for (std::size_t l = 0; l < loci; ++l) {
        const int d = sizes[a][l] - sizes[b][l];
        sum += d * d;
      }
      cells[a * n + b] = cells[b * n + a] = sum;
    }
  }
  return cells;
}

void run(benchmark::State& state, const std::vector<double>& cells, std::size_t n) {
  TMinSpaNet net(DistanceTable{cells.data(), n, n});
  for (auto _ : state) benchmark::DoNotOptimize(net.MakeNetwork());
  std::size_t links = 0;
  for (int x = 0; x < net.size(); ++x) links += net.alternatives(x).size();
  state.counters["alternative_links"] = static_cast<double>(links);
}

void BM_MinSpaNet_DnaLike(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const std::vector<double> cells = dna_like(n);
  run(state, cells, n);
}
BENCHMARK(BM_MinSpaNet_DnaLike)->Arg(1250)->Arg(2500)->Arg(5000)->Unit(benchmark::kMillisecond);

void BM_MinSpaNet_MicrosatLike(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const std::vector<double> cells = microsat_like(n);
  run(state, cells, n);
}
BENCHMARK(BM_MinSpaNet_MicrosatLike)->Arg(5000)->Unit(benchmark::kMillisecond);

// Every distance equal: every pair is a link of the network, the worst case.
void BM_MinSpaNet_AllEqual(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const std::vector<double> cells(n * n, 1.0);
  run(state, cells, n);
}
BENCHMARK(BM_MinSpaNet_AllEqual)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

}  // namespace
