// The basic per-locus table of the standard diversity indices: per locus,
// the non-missing gene copies, the number of alleles, the observed and
// expected heterozygosity (Nei 1987, unbiased form g (1 - sum p^2) / (g - 1)),
// and for microsatellites the allele sizes, the allelic range and the
// Garza-Williamson (2001) index a / (range + 1). Missing data are left out;
// for DNA the ambiguity codes count as missing. A locus where only missing
// data occur has 0 copies and heterozygosity 0.
#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "input/line_reader.h"
#include "output/number_format.h"
#include "within/diversity.h"

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

// The IUPAC ambiguity codes, missing data in the counts of DNA alleles.
constexpr std::string_view kAmbiguityCodes = "NRYMKSWHBVD";

bool is_missing(const TAllele* a, char missing, bool dna) {
  if (a == nullptr || a->is(missing)) return true;
  return dna && a->allele_name.length() == 1 &&
         kAmbiguityCodes.find(a->allele_name[0]) != std::string_view::npos;
}

// What the walk over the data found at one locus.
struct LocusCount {
  std::vector<std::pair<TAllele*, double>> alleles;  // in order of first appearance
  double copies = 0.0;
  double individuals = 0.0;  // with both copies present (genotypic data)
  double heterozygotes = 0.0;

  void add(TAllele* a, double weight) {
    copies += weight;
    for (auto& [allele, count] : alleles) {
      if (allele == a) {
        count += weight;
        return;
      }
    }
    alleles.emplace_back(a, weight);
  }
};

class LocusWalk {
 public:
  explicit LocusWalk(const PopGenetics& sample)
      : missing_(sample.missing()), dna_(sample.kind() == SampleKind::dna) {}

  void resize(int loci) { counts_.assign(at(loci), LocusCount{}); }
  int loci() const { return static_cast<int>(counts_.size()); }
  const LocusCount& locus(int l) const { return counts_[at(l)]; }

  void haplotype(const std::vector<TAllele*>& alleles, double weight) {
    const int n = std::min(loci(), static_cast<int>(alleles.size()));
    for (int l = 0; l < n; ++l) {
      if (!is_missing(alleles[at(l)], missing_, dna_)) counts_[at(l)].add(alleles[at(l)], weight);
    }
  }

  void genotype(const TPopHaplotype* first, const TPopHaplotype* second, double weight) {
    for (int l = 0; l < loci(); ++l) {
      TAllele* a = first != nullptr ? first->allele(l) : nullptr;
      TAllele* b = second != nullptr ? second->allele(l) : nullptr;
      const bool has_a = !is_missing(a, missing_, dna_);
      const bool has_b = !is_missing(b, missing_, dna_);
      LocusCount& c = counts_[at(l)];
      if (has_a) c.add(a, weight);
      if (has_b) c.add(b, weight);
      if (has_a && has_b) {
        c.individuals += weight;
        if (a != b) c.heterozygotes += weight;
      }
    }
  }

 private:
  char missing_;
  bool dna_;
  std::vector<LocusCount> counts_;
};

// The number of loci of the table: the classified loci, else the loci of the
// first definition.
int table_loci(PopGenetics& sample) {
  if (!sample.usable_locus.empty()) return static_cast<int>(sample.usable_locus.size());
  return sample.get_nb_loci();
}

void size_arrays(PopGenetics& s, int loci) {
  for (std::vector<double>* v : {&s.locus_gene_copies, &s.locus_nb_alleles, &s.locus_obs_het,
                                 &s.locus_exp_het, &s.locus_range, &s.locus_GW, &s.locus_mod_GW,
                                 &s.locus_min_size, &s.locus_max_size, &s.locus_mean_size}) {
    v->assign(at(loci), 0.0);
  }
}

void set_sizes(PopGenetics& s, int l, const LocusCount& c) {
  if (c.alleles.empty()) return;
  double low = 0.0;
  double high = 0.0;
  double mean = 0.0;
  bool first = true;
  for (const auto& [allele, count] : c.alleles) {
    const double size = ascii_to_int(allele->allele_name.str());
    low = first ? size : std::min(low, size);
    high = first ? size : std::max(high, size);
    first = false;
    mean += size * (count / c.copies);
  }
  s.locus_min_size[at(l)] = low;
  s.locus_max_size[at(l)] = high;
  s.locus_mean_size[at(l)] = mean;
  s.locus_range[at(l)] = high - low;
}

void store_locus(PopGenetics& s, int l, const LocusCount& c, bool genotypic) {
  const double g = c.copies;
  const auto a = static_cast<double>(c.alleles.size());
  s.locus_gene_copies[at(l)] = g;
  s.locus_nb_alleles[at(l)] = a;
  double sum_sq = 0.0;
  for (const auto& [allele, count] : c.alleles) {
    sum_sq += count * count;
    if (g != 0.0 && s.sample_index >= 0 && at(s.sample_index) < allele->pop_freq.size()) {
      allele->pop_freq[at(s.sample_index)] = count / g;
    }
  }
  if (genotypic && c.individuals > 0.0) s.locus_obs_het[at(l)] = c.heterozygotes / c.individuals;
  const double shared = g != 0.0 ? sum_sq / (g * g) : 0.0;
  s.locus_exp_het[at(l)] = g > 1.0 ? g * (1.0 - shared) / (g - 1.0) : 0.0;
  if (s.kind() == SampleKind::microsat) {
    set_sizes(s, l, c);
    s.locus_GW[at(l)] = a / (s.locus_range[at(l)] + 1.0);
  }
}

// --- Means over loci -----------------------------------------------------------

struct Moments {
  double sum = 0.0;
  double sum_sq = 0.0;
  void add(double x) {
    sum += x;
    sum_sq += x * x;
  }
  double mean(int m) const { return m > 0 ? sum / m : 0.0; }
  double sd(int m) const {
    if (m < 2) return 0.0;
    const double mu = mean(m);
    const double var = (sum_sq / m - mu * mu) * m / (m - 1);
    return var > 0.0 ? std::sqrt(var) : 0.0;
  }
};

// The columns of the table, in print order.
enum class Column { copies, alleles, obs_het, exp_het, range, gw };

const std::vector<double>& column_values(const PopGenetics& s, Column c) {
  switch (c) {
    case Column::copies:
      return s.locus_gene_copies;
    case Column::alleles:
      return s.locus_nb_alleles;
    case Column::obs_het:
      return s.locus_obs_het;
    case Column::exp_het:
      return s.locus_exp_het;
    case Column::range:
      return s.locus_range;
    case Column::gw:
      break;
  }
  return s.locus_GW;
}

PopGenetics::LocusMeans& column_means(PopGenetics& s, Column c) {
  switch (c) {
    case Column::copies:
      return s.mean_gene_copies;
    case Column::alleles:
      return s.mean_nb_alleles;
    case Column::obs_het:
      return s.mean_obs_het;
    case Column::exp_het:
      return s.mean_exp_het;
    case Column::range:
      return s.mean_range;
    case Column::gw:
      break;
  }
  return s.mean_GW;
}

bool is_count(Column c) {
  return c == Column::copies || c == Column::alleles || c == Column::range;
}

bool shown(const PopGenetics& s, int l) {
  return at(l) < s.poly_flags.size() && s.poly_flags[at(l)] != 0 && at(l) < s.usable_locus.size() &&
         s.usable_locus[at(l)] != 0;
}

// The summary fields: the means over all loci; with a single polymorphic
// locus, the values of that locus with standard deviations 0.
void store_means(PopGenetics& s, int loci, const std::vector<int>& polymorphic) {
  for (const Column c : {Column::copies, Column::alleles, Column::obs_het, Column::exp_het,
                         Column::range, Column::gw}) {
    const std::vector<double>& v = column_values(s, c);
    PopGenetics::LocusMeans& target = column_means(s, c);
    if (polymorphic.size() == 1) {
      target.mean = v[at(polymorphic.front())];
      target.sd = 0.0;
      continue;
    }
    Moments m;
    for (int l = 0; l < loci; ++l) m.add(v[at(l)]);
    target.mean = m.mean(loci);
    target.sd = m.sd(loci);
  }
}

// --- Printing ------------------------------------------------------------------

constexpr int kFirstWidth = 9;
constexpr int kWidth = 10;

struct ColumnText {
  Column column;
  const char* top;
  const char* bottom;
};

std::vector<ColumnText> columns(bool obs_het, bool range, bool gw) {
  std::vector<ColumnText> list = {{Column::copies, "gene", "copies"},
                                  {Column::alleles, "Num.", "alleles"}};
  if (obs_het) list.push_back({Column::obs_het, "Obs.", "Het."});
  list.push_back({Column::exp_het, "Exp.", "Het"});
  if (range) list.push_back({Column::range, "Allelic", "range"});
  if (gw) list.push_back({Column::gw, "G-W", "stat."});
  return list;
}

fmt::Formatted cell(Column c, double value) {
  if (c == Column::alleles) return fmt::integer(std::llround(value), kWidth);
  return fmt::fixed(value, kWidth, is_count(c) ? 0 : 5);
}

fmt::Formatted summary_cell(Column c, double value) {
  return fmt::fixed(value, kWidth, is_count(c) ? 3 : 5);
}

void print_table(std::ostream& out, const PopGenetics& s, const std::vector<ColumnText>& cols,
                 const std::vector<int>& polymorphic) {
  const std::string rule(s.kind() == SampleKind::microsat ? 69 : 49, '-');
  out << "\n\nResults are only shown for polymorphic loci\n" << rule << "\n";
  out << std::string(kFirstWidth, ' ');
  for (const ColumnText& c : cols) out << fmt::right(c.top, kWidth);
  out << "\n" << fmt::left("Locus#", kFirstWidth);
  for (const ColumnText& c : cols) out << fmt::right(c.bottom, kWidth);
  out << "\n" << rule << "\n";
  const int m = static_cast<int>(polymorphic.size());
  if (m == 0) return;
  for (const int l : polymorphic) {
    out << fmt::left(fmt::integer(l + 1).text, kFirstWidth);
    for (const ColumnText& c : cols) out << cell(c.column, column_values(s, c.column)[at(l)]);
    out << "\n";
  }
  out << rule << "\n" << fmt::left("Mean", kFirstWidth);
  std::vector<Moments> moments(cols.size());
  for (std::size_t i = 0; i < cols.size(); ++i) {
    for (const int l : polymorphic) moments[i].add(column_values(s, cols[i].column)[at(l)]);
    out << summary_cell(cols[i].column, moments[i].mean(m));
  }
  out << "\n";
  if (m > 1) {
    out << fmt::left("s.d.", kFirstWidth);
    for (std::size_t i = 0; i < cols.size(); ++i) {
      out << summary_cell(cols[i].column, moments[i].sd(m));
    }
    out << "\n";
  }
  out << rule << "\n";
}

void finish_table(PopGenetics& s, const LocusWalk& walk, std::ostream* out, bool genotypic,
                  bool range, bool gw) {
  const int loci = walk.loci();
  size_arrays(s, loci);
  std::vector<int> polymorphic;
  for (int l = 0; l < loci; ++l) {
    store_locus(s, l, walk.locus(l), genotypic);
    if (shown(s, l)) polymorphic.push_back(l);
  }
  store_means(s, loci, polymorphic);
  if (out != nullptr) print_table(*out, s, columns(genotypic, range, gw), polymorphic);
}

}  // namespace

void locus_table_hapl(PopGenetics& sample, std::ostream* out, settings& /*s*/) {
  LocusWalk walk(sample);
  walk.resize(table_loci(sample));
  for (const PHaploDef& e : sample.haplo_list) {
    if (e.hapl != nullptr) walk.haplotype(e.hapl->alleles, e.freq);
  }
  const bool microsat = sample.kind() == SampleKind::microsat;
  finish_table(sample, walk, out, false, microsat, microsat);
}

void locus_table_geno(PopGenetics& sample, const TPhenDB& pheno_db, std::ostream* out,
                      settings& /*s*/, bool print_range, bool print_gw, bool print) {
  LocusWalk walk(sample);
  int loci = table_loci(sample);
  if (loci == 0 && !pheno_db.empty()) loci = pheno_db[0]->nb_loci();
  walk.resize(loci);
  for (const auto& p : pheno_db.phenotypes())
    walk.genotype(p->hapl1.get(), p->hapl2.get(), p->freq);
  finish_table(sample, walk, print ? out : nullptr, true, print_range, print_gw);
}
