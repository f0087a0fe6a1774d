// Distance matrices between the haplotypes of one sample:
//  - 2,000 DNA sequences of 1,000 sites, every method (the argument), with
//    whole weights, and the pairwise difference with fractional weights,
//    which walks every site in order; the sequences descend from 50
//    ancestors that differ from a root at about 3 % of the sites, with about
//    1 % more of their own, a few gaps and missing data;
//  - 5,000 microsatellite haplotypes of 20 loci, both methods.
// The time includes building the matrix (Nb_haplo squared doubles).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/population.h"
#include "within/distances.h"

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

std::string mutate(Lcg& rng, std::string s, std::uint32_t per_mille) {
  for (char& c : s) {
    if (rng.below(1000) < per_mille) c = "ACGT"[rng.below(4)];
  }
  return s;
}

// The definitions and the sample that points into them.
struct Sample {
  Haplo_DB defs;
  TAlleleDB alleles;
  std::unique_ptr<PopGenetics> sample;
};

void finish(Sample& s, unsigned char type, Population& data, std::size_t loci) {
  data.profile.DataType = type;
  data.allele_db = &s.alleles;
  data.set_sample_size(static_cast<double>(data.haplo_list.size()));
  data.Nb_haplo = static_cast<int>(data.haplo_list.size());
  s.sample = make_sample(type, data);
  s.sample->usable_locus.assign(loci, 1);
  s.sample->nb_usable_loci = static_cast<int>(loci);
}

std::unique_ptr<Sample> dna_sample(std::size_t n, std::size_t sites) {
  auto s = std::make_unique<Sample>();
  Lcg rng(20240611);
  std::string root(sites, 'A');
  for (char& c : root) c = "ACGT"[rng.below(4)];
  std::vector<std::string> ancestors;
  for (int a = 0; a < 50; ++a) ancestors.push_back(mutate(rng, root, 40));
  Population data;
  for (std::size_t h = 0; h < n; ++h) {
    std::string seq = mutate(rng, ancestors[rng.below(50)], 13);
    if (rng.below(10) == 0) seq[rng.below(static_cast<std::uint32_t>(sites))] = '-';
    if (rng.below(10) == 0) seq[rng.below(static_cast<std::uint32_t>(sites))] = '?';
    auto def = std::make_unique<HaploDef>(my_string("h" + std::to_string(h)));
    def->hapl_content = seq;
    data.haplo_list.push_back(PHaploDef{s->defs.add(std::move(def)), 1});
  }
  finish(*s, 0, data, sites);
  return s;
}

std::unique_ptr<Sample> microsat_sample(std::size_t n, int loci) {
  auto s = std::make_unique<Sample>();
  Lcg rng(777);
  Population data;
  for (std::size_t h = 0; h < n; ++h) {
    auto def = std::make_unique<HaploDef>(my_string("m" + std::to_string(h)));
    std::string text;
    for (int l = 0; l < loci; ++l) {
      const std::string size = std::to_string(90 + 2 * rng.below(12));
      text += (l > 0 ? " " : "") + size;
      def->alleles.push_back(s->alleles.enter_allele(l, size, 1.0));
    }
    def->hapl_content = text;
    data.haplo_list.push_back(PHaploDef{s->defs.add(std::move(def)), 1});
  }
  finish(*s, 2, data, static_cast<std::size_t>(loci));
  return s;
}

void run(benchmark::State& state, PopGenetics& sample) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(compute_distance_matrix(sample, nullptr, nullptr, 0));
  }
  const double n = sample.Nb_haplo;
  state.counters["pairs_per_s"] =
      benchmark::Counter(n * (n - 1.0) / 2.0, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["max_diff"] = sample.max_diff;
}

void BM_DnaDistances(benchmark::State& state) {
  static const std::unique_ptr<Sample> s = dna_sample(2000, 1000);
  s->sample->dist_method = static_cast<unsigned char>(state.range(0));
  run(state, *s->sample);
}
BENCHMARK(BM_DnaDistances)->DenseRange(0, 6)->Unit(benchmark::kMillisecond);

void BM_DnaDistancesFractionalWeights(benchmark::State& state) {
  static const std::unique_ptr<Sample> s = dna_sample(2000, 1000);
  auto& dna = static_cast<PopulDNA&>(*s->sample);
  dna.dist_method = 0;
  dna.TransitionWeight = 0.5;
  dna.TranversionWeight = 1.5;
  run(state, dna);
}
BENCHMARK(BM_DnaDistancesFractionalWeights)->Unit(benchmark::kMillisecond);

void BM_MicrosatDistances(benchmark::State& state) {
  static const std::unique_ptr<Sample> s = microsat_sample(5000, 20);
  s->sample->dist_method = static_cast<unsigned char>(state.range(0));
  run(state, *s->sample);
}
BENCHMARK(BM_MicrosatDistances)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

}  // namespace
