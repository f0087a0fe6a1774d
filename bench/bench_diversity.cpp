// The diversity indices on large samples: 2,000 DNA sequences of 1,000 sites
// (400 distinct haplotypes) and 5,000 microsatellite gene copies of 20 loci
// (1,000 distinct haplotypes). The distance matrix is made once outside the
// timing; what is timed is the work of the two tasks (per-locus table, gene
// diversity, mean pairwise differences, the theta estimators), printed into
// a string document. Ewens' estimator and its interval stand apart.
#include <benchmark/benchmark.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "output/result_document.h"
#include "within/distances.h"
#include "within/diversity.h"
#include "within/sample_tasks.h"

namespace {

// A fixed pseudo-random stream, so that every run times the same sample.
unsigned next(unsigned& state) {
  state = state * 1664525u + 1013904223u;
  return state >> 8;
}

struct BigSample {
  Haplo_DB defs;
  TAlleleDB alleles;
  std::unique_ptr<PopGenetics> sample;
};

// `distinct` haplotypes, each a few mutations away from a common ancestor,
// with counts summing to `copies`.
std::unique_ptr<BigSample> make_sample(unsigned char type, int distinct, int copies, int loci) {
  auto big = std::make_unique<BigSample>();
  unsigned state = 12345u;
  const char* bases = "ACGT";
  std::string ancestor;
  for (int l = 0; l < loci; ++l) {
    if (type == 0) {
      ancestor += bases[next(state) % 4];
    } else {
      if (l > 0) ancestor += ' ';
      ancestor += std::to_string(100 + 2 * static_cast<int>(next(state) % 10));
    }
  }
  Population data;
  data.profile.DataType = type;
  data.profile.LocusSeparator = type == 0 ? 0 : ' ';
  data.allele_db = &big->alleles;
  for (int h = 0; h < distinct; ++h) {
    std::string text = ancestor;
    if (type == 0) {
      for (int m = 0; m < 12; ++m)
        text[next(state) % static_cast<unsigned>(loci)] = bases[next(state) % 4];
    } else {
      text.clear();
      for (int l = 0; l < loci; ++l) {
        if (l > 0) text += ' ';
        text += std::to_string(100 + 2 * static_cast<int>(next(state) % 10));
      }
    }
    auto def = std::make_unique<HaploDef>(my_string("h" + std::to_string(h)));
    def->hapl_content = text;
    HaploDef* d = big->defs.add(std::move(def));
    int n = 0;
    char separator = data.profile.LocusSeparator;
    d->associate(big->alleles, separator, n, 0.0);
    const int count = copies / distinct + (h < copies % distinct ? 1 : 0);
    data.haplo_list.push_back(PHaploDef{d, count});
  }
  data.set_sample_size(copies);
  data.Nb_haplo = distinct;
  data.SampleName = "big";
  data.sample_index = 0;
  big->sample = ::make_sample(type, data);
  settings s;
  s.DeletionWeight = s.TransitionWeight = s.TranversionWeight = 1.0;
  if (auto* dna = dynamic_cast<PopulDNA*>(big->sample.get())) {
    dna->DeletionWeight = dna->TransitionWeight = dna->TranversionWeight = 1.0;
  }
  big->sample->check_data();
  big->sample->find_polymorphic_sites(s);
  big->sample->dist_method = 0;
  compute_distance_matrix(*big->sample, nullptr, nullptr, 0);
  return big;
}

void run_tasks(benchmark::State& state, unsigned char type, int distinct, int copies, int loci) {
  auto big = make_sample(type, distinct, copies, loci);
  settings s;
  s.DeletionWeight = s.TransitionWeight = s.TranversionWeight = 1.0;
  s.ComputeTheta = 15;
  std::ostringstream text;
  result_document().use_stream(text, false);
  for (auto _ : state) {
    text.str("");
    SampleTaskContext context(*big->sample, s);
    standard_diversity_task(*big->sample, s, context);
    molecular_diversity_task(*big->sample, s, context);
    benchmark::DoNotOptimize(big->sample->theta_k);
  }
  result_document().close();
  release_bnum_mat();
}

void BM_dna_2000_sequences_1000_sites(benchmark::State& state) {
  run_tasks(state, 0, 400, 2000, 1000);
}
BENCHMARK(BM_dna_2000_sequences_1000_sites)->Unit(benchmark::kMillisecond);

void BM_microsat_5000_copies_20_loci(benchmark::State& state) {
  run_tasks(state, 2, 1000, 5000, 20);
}
BENCHMARK(BM_microsat_5000_copies_20_loci)->Unit(benchmark::kMillisecond);

// Ewens' estimator with its interval: the table of B numbers grows to n + 10
// rows on the first call (timed apart in the first iteration only).
void BM_theta_k_interval(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const int k = static_cast<int>(state.range(1));
  load_BMat();
  ensure_bnum_cell(n, k);
  for (auto _ : state) benchmark::DoNotOptimize(ewens_theta_k(n, k, 0.05));
  release_bnum_mat();
}
BENCHMARK(BM_theta_k_interval)
    ->Args({100, 20})
    ->Args({2000, 400})
    ->Args({4999, 300})
    ->Unit(benchmark::kMillisecond);

}  // namespace
