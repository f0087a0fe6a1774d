// The tables of a large genotypic sample (5,000 individuals, 20 loci): allele
// vectors of the phenotypes, pseudo-haplotypes, the classification of loci,
// the pooling of samples into a group; and the site classification of a
// large DNA sample.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "model/population.h"

namespace {

constexpr int kIndividuals = 5000;
constexpr int kLoci = 20;

// A fixed pseudo-random allele size: about 8 alleles per locus, some missing.
std::string allele(int individual, int copy, int locus) {
  const unsigned h =
      static_cast<unsigned>(individual * 2654435761u + copy * 40503u + locus * 9176u) >> 7;
  if (h % 97 == 0) return "?";
  return std::to_string(100 + 2 * static_cast<int>(h % 8));
}

Population genotypic_sample(TAlleleDB& alleles, int individuals) {
  Population p;
  p.profile.DataType = 2;
  p.profile.GenotypicData = 1;
  p.profile.GameticPhase = 0;
  p.profile.LocusSeparator = ' ';
  p.allele_db = &alleles;
  for (int i = 0; i < individuals; ++i) {
    auto ph = std::make_unique<TPhenotype>(nullptr, nullptr, i);
    for (int l = 0; l < kLoci; ++l) {
      if (l > 0) {
        ph->line1 += ' ';
        ph->line2 += ' ';
      }
      ph->line1 += allele(i, 0, l);
      ph->line2 += allele(i, 1, l);
    }
    p.pheno_db.add(std::move(ph));
  }
  p.set_sample_size(2.0 * individuals);
  return p;
}

void BM_allele_vectors(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    TAlleleDB alleles;
    Population p = genotypic_sample(alleles, kIndividuals);
    state.ResumeTiming();
    benchmark::DoNotOptimize(p.build_allele_vectors());
  }
  state.SetItemsProcessed(state.iterations() * kIndividuals * 2 * kLoci);
}
BENCHMARK(BM_allele_vectors)->Unit(benchmark::kMillisecond);

void BM_pseudo_haplotypes(benchmark::State& state) {
  TAlleleDB alleles;
  Population p = genotypic_sample(alleles, kIndividuals);
  p.build_allele_vectors();
  for (auto _ : state) {
    state.PauseTiming();
    Haplo_DB defs;
    state.ResumeTiming();
    benchmark::DoNotOptimize(p.make_pseudo_haplotypes(defs));
  }
  state.SetItemsProcessed(state.iterations() * kIndividuals * 2);
}
BENCHMARK(BM_pseudo_haplotypes)->Unit(benchmark::kMillisecond);

void BM_classify_loci(benchmark::State& state) {
  const bool haplotypes = state.range(0) != 0;
  TAlleleDB alleles;
  Haplo_DB defs;
  Population data = genotypic_sample(alleles, kIndividuals);
  data.build_allele_vectors();
  if (haplotypes) data.make_pseudo_haplotypes(defs);
  PopulMicrosat sample(data);
  settings s;
  for (auto _ : state) benchmark::DoNotOptimize(sample.find_polymorphic_sites(s));
  state.SetItemsProcessed(state.iterations() * kIndividuals * 2 * kLoci);
  state.SetLabel(haplotypes ? "pseudo-haplotypes" : "phenotypes");
}
BENCHMARK(BM_classify_loci)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_group_of_samples(benchmark::State& state) {
  TAlleleDB alleles;
  std::vector<Population> members;
  for (int m = 0; m < 5; ++m) {
    members.push_back(genotypic_sample(alleles, kIndividuals / 5));
    members.back().build_allele_vectors();
  }
  std::vector<const Population*> pointers;
  for (const Population& m : members) pointers.push_back(&m);
  for (auto _ : state) {
    Haplo_DB defs;
    auto group = make_group_sample(2, pointers, "Group1", 0, defs);
    benchmark::DoNotOptimize(group->Nb_haplo);
  }
  state.SetItemsProcessed(state.iterations() * kIndividuals);
}
BENCHMARK(BM_group_of_samples)->Unit(benchmark::kMillisecond);

void BM_dna_sites(benchmark::State& state) {
  const int sequences = 1000;
  const int sites = 1000;
  Haplo_DB defs;
  Population data;
  data.profile.DataType = 0;
  data.profile.LocusSeparator = 0;
  const char bases[] = "ACGT-?";
  for (int h = 0; h < sequences; ++h) {
    std::string text(sites, 'A');
    for (int i = 0; i < sites; ++i) {
      const unsigned x = static_cast<unsigned>(h * 2654435761u + i * 97u) >> 9;
      if (x % 13 == 0) text[static_cast<std::size_t>(i)] = bases[x % 6];
    }
    auto def = std::make_unique<HaploDef>(my_string("h" + std::to_string(h)));
    def->hapl_content = text;
    data.haplo_list.push_back(PHaploDef{defs.add(std::move(def)), 1});
  }
  data.set_sample_size(sequences);
  PopulDNA sample(data);
  sample.build_arbitrary_haplotype();
  for (auto _ : state) {
    sample.compare_DNA_sequences();
    benchmark::DoNotOptimize(sample.nb_poly_loci);
  }
  state.SetItemsProcessed(state.iterations() * sequences * sites);
}
BENCHMARK(BM_dna_sites)->Unit(benchmark::kMillisecond);

}  // namespace
