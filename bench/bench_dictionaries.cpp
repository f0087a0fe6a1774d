// Look-ups in the project's dictionaries and the building of the tables of
// unphased data, on a large project: 5,000 haplotypes of 30 loci with 50
// alleles per locus.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/allele_db.h"
#include "model/haplo_db.h"
#include "model/phen_db.h"
#include "model/pop_haplo_db.h"

namespace {

constexpr int kHaplotypes = 5000;
constexpr int kLoci = 30;
constexpr int kAllelesPerLocus = 50;

// Fixed pseudo-random data for the benchmarks (not the program's generator).
class DataStream {
 public:
  int next(int n) {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<int>((state_ >> 33) % static_cast<std::uint64_t>(n));
  }

 private:
  std::uint64_t state_ = 12345;
};

std::string allele_name(int a) {
  return std::to_string(100 + 2 * a);
}

// Definition texts of microsatellite haplotypes, one allele size per locus.
std::vector<std::string> make_definitions() {
  DataStream data;
  std::vector<std::string> defs;
  defs.reserve(kHaplotypes);
  for (int h = 0; h < kHaplotypes; ++h) {
    std::string text;
    for (int l = 0; l < kLoci; ++l) {
      if (l > 0) text += ' ';
      text += allele_name(data.next(kAllelesPerLocus));
    }
    defs.push_back(text);
  }
  return defs;
}

const std::vector<std::string>& definitions() {
  static const std::vector<std::string> defs = make_definitions();
  return defs;
}

// A Haplo_DB and TAlleleDB holding the whole project.
struct Project {
  Project() {
    char separator = ' ';
    for (int h = 0; h < kHaplotypes; ++h) {
      auto def = std::make_unique<HaploDef>(my_string("hap_" + std::to_string(h)));
      def->hapl_content = definitions()[static_cast<std::size_t>(h)];
      int loci = 0;
      haplo_db.add(std::move(def))->associate(allele_db, separator, loci, 1.0);
    }
  }
  Haplo_DB haplo_db;
  TAlleleDB allele_db;
};

const Project& project() {
  static const Project p;
  return p;
}

void BM_associate_all_definitions(benchmark::State& state) {
  for (auto _ : state) {
    TAlleleDB db;
    char separator = ' ';
    for (const std::string& text : definitions()) {
      HaploDef def;
      def.hapl_content = text;
      int loci = 0;
      def.associate(db, separator, loci, 1.0);
    }
    benchmark::DoNotOptimize(db.nb_loci());
  }
  state.SetItemsProcessed(state.iterations() * kHaplotypes * kLoci);
}
BENCHMARK(BM_associate_all_definitions)->Unit(benchmark::kMillisecond);

void BM_find_allele(benchmark::State& state) {
  const TAlleleDB& db = project().allele_db;
  DataStream data;
  std::vector<std::pair<int, std::string>> probes;
  for (int i = 0; i < 4096; ++i) {
    probes.emplace_back(data.next(kLoci), allele_name(data.next(kAllelesPerLocus)));
  }
  std::size_t i = 0;
  for (auto _ : state) {
    const auto& [locus, name] = probes[i++ & 4095];
    benchmark::DoNotOptimize(db.find_allele(locus, name));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_find_allele);

void BM_find_haplotype_by_id(benchmark::State& state) {
  const Haplo_DB& db = project().haplo_db;
  DataStream data;
  std::vector<std::string> probes;
  for (int i = 0; i < 4096; ++i) probes.push_back("hap_" + std::to_string(data.next(kHaplotypes)));
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(db.find(probes[i++ & 4095]));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_find_haplotype_by_id);

// The project's haplotypes as TPopHaplotypes.
std::vector<TPopHaplotype> pop_haplotypes() {
  std::vector<TPopHaplotype> out;
  for (const auto& def : project().haplo_db.definitions()) {
    TPopHaplotype h;
    h.alleles = def->alleles;
    out.push_back(h);
  }
  return out;
}

void BM_haplotype_table_add(benchmark::State& state) {
  const std::vector<TPopHaplotype> haps = pop_haplotypes();
  for (auto _ : state) {
    TPopHaploDB db;
    for (const TPopHaplotype& h : haps) db.add(h, 1.0);
    benchmark::DoNotOptimize(db.size());
  }
  state.SetItemsProcessed(state.iterations() * kHaplotypes);
}
BENCHMARK(BM_haplotype_table_add)->Unit(benchmark::kMillisecond);

void BM_haplotype_table_find(benchmark::State& state) {
  const std::vector<TPopHaplotype> haps = pop_haplotypes();
  TPopHaploDB db;
  for (const TPopHaplotype& h : haps) db.add(h, 1.0);
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(db.find(haps[i++ % haps.size()]));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_haplotype_table_find);

// A phenotype of two of the project's haplotypes, heterozygous at exactly
// `het` loci.
TPhenotype phenotype_with(int het) {
  const auto& defs = project().haplo_db.definitions();
  TPopHaplotype h1;
  TPopHaplotype h2;
  h1.alleles = defs[0]->alleles;
  h2.alleles = defs[0]->alleles;
  const TAlleleDB& db = project().allele_db;
  for (int l = 0; l < het; ++l) {
    const TLocus& locus = *db.locus(l);
    const int own = h1.alleles[static_cast<std::size_t>(l)]->pos_in_locus;
    h2.alleles[static_cast<std::size_t>(l)] = locus.allele((own + 1) % locus.nb_alleles());
  }
  return TPhenotype(&h1, &h2, 0);
}

void BM_build_genotypes(benchmark::State& state) {
  const int het = static_cast<int>(state.range(0));
  const TPhenotype model = phenotype_with(het);
  int recessive = 0;
  for (auto _ : state) {
    TPopHaploDB db;
    TPhenotype p(model);
    p.build_genotypes(db, project().allele_db, recessive, 0);
    benchmark::DoNotOptimize(p.genotypes.size());
  }
  state.SetItemsProcessed(state.iterations() * (het < 2 ? 1 : std::int64_t{1} << (het - 1)));
}
BENCHMARK(BM_build_genotypes)
    ->Arg(1)
    ->Arg(4)
    ->Arg(8)
    ->Arg(12)
    ->Arg(16)
    ->Unit(benchmark::kMicrosecond);

// 5,000 individuals drawn among 200 phenotypes, merged.
void BM_check_pheno_redundancy(benchmark::State& state) {
  const auto& defs = project().haplo_db.definitions();
  DataStream data;
  TPhenDB model;
  for (int i = 0; i < kHaplotypes; ++i) {
    const int k = data.next(200);
    TPopHaplotype h1;
    TPopHaplotype h2;
    h1.alleles = defs[static_cast<std::size_t>(k)]->alleles;
    h2.alleles = defs[static_cast<std::size_t>(k + 200)]->alleles;
    if (data.next(2) == 0) std::swap(h1, h2);
    model.add(std::make_unique<TPhenotype>(&h1, &h2, i));
  }
  for (auto _ : state) {
    TPhenDB table(model);
    table.check_pheno_redundancy();
    benchmark::DoNotOptimize(table.size());
  }
  state.SetItemsProcessed(state.iterations() * kHaplotypes);
}
BENCHMARK(BM_check_pheno_redundancy)->Unit(benchmark::kMillisecond);

}  // namespace
