// Standard diversity indices of one sample (task bit 0x1): gene copies,
// haplotypes, loci and their usability, the per-locus table, and the gene
// (haplotype) diversity with its sampling variance (Nei 1987). One copy
// gives diversity 0; every copy different gives 1.
#include <cmath>
#include <ostream>

#include "output/number_format.h"
#include "output/result_document.h"
#include "within/diversity.h"
#include "within/diversity_rows.h"
#include "within/sample_tasks.h"

namespace {

// A frequency: the count over n, or a stored relative frequency (below 1) as it is.
double frequency(int count, double n) {
  return count >= 1 ? count / n : count;
}

fmt::Formatted real(double x) {
  return fmt::fixed(x, 0, 6);
}

int printed_loci(PopGenetics& s) {
  return s.usable_locus.empty() ? s.get_nb_loci() : static_cast<int>(s.usable_locus.size());
}

void print_counts(std::ostream& out, PopGenetics& s, const settings& st) {
  out << "No. of gene copies       : " << fmt::integer(s.gene_copies());
  if (s.haplotypic_or_phase_known()) {
    out << haplotype_count_label(s) << fmt::integer(s.Nb_haplo);
  }
  if (st.InferHaplotypeDefinitionFromDistanceMatrix != 0 && !s.genotypic()) {
    out << "\nNo. of original \nhaplotypes in sample     : " << fmt::integer(s.Nb_orig_haplo);
  }
  out << "\nNo. of loci              : " << fmt::integer(printed_loci(s))
      << "\nNo. of usable loci       : " << fmt::integer(s.nb_usable_loci)
      << " loci with less than " << real(100.0 * s.allowed_missing) << " % missing data"
      << polymorphism_label(s) << fmt::integer(s.nb_poly_loci);
}

// Heterozygosity at the level of whole haplotypes, over the individuals of
// genotypic data with known phase.
void print_het_stats(std::ostream& out, const PopGenetics& s) {
  double individuals = 0.0;
  double heterozygotes = 0.0;
  for (const auto& p : s.pheno_db.phenotypes()) {
    individuals += p->freq;
    const bool same = p->hapl1 && p->hapl2 ? *p->hapl1 == *p->hapl2 : p->hapl1 == p->hapl2;
    if (!same) heterozygotes += p->freq;
  }
  double observed = 0.0;
  double expected = 0.0;
  if (individuals > 0.0) {
    double sum_sq = 0.0;
    for (const PHaploDef& e : s.haplo_list) sum_sq += static_cast<double>(e.freq) * e.freq;
    const double n = individuals;
    observed = heterozygotes / n;
    expected = 2.0 * n * (1.0 - sum_sq / (4.0 * n * n)) / (2.0 * n - 1.0);
  }
  out << "\n\nNo. of Heterozygotes     : " << fmt::integer(std::llround(heterozygotes))
      << "\nNo. of Homozygotes       : " << fmt::integer(std::llround(individuals - heterozygotes))
      << "\nObs.Heter.               : " << real(observed)
      << "\nExp.Heter.               : " << real(expected) << "\n";
}

void print_haplotype_block(std::ostream& out, const PopGenetics& s) {
  out << "\nHaplotype-level computations\n"
      << "----------------------------\n"
      << "\nSum of square freqs.     : " << real(s.sum_sq_freq)
      << "\nGene diversity           : " << real(s.gene_diversity) << " +/- "
      << real(s.sd_gene_diversity) << "\n(Standard deviation is for the sampling process)\n";
}

}  // namespace

// --- Gene diversity -------------------------------------------------------------

double& sum_sq_freqs(PopGenetics& sample) {
  const double n = sample.sample_size;
  double sum = 0.0;
  for (const PHaploDef& e : sample.haplo_list) {
    const double p = frequency(e.freq, n);
    sum += p * p;
  }
  sample.sum_sq_freq = sum;
  return sample.sum_sq_freq;
}

double& gene_diversity_value(PopGenetics& sample) {
  const double s2 = sum_sq_freqs(sample);
  const double n = sample.sample_size;
  // A single copy is no diversity, though it is also "every copy different".
  if (n <= 1.0) {
    sample.gene_diversity = 0.0;
    sample.gene_homozygosity = 1.0;
  } else if (static_cast<double>(sample.Nb_haplo) == n) {
    sample.gene_homozygosity = 0.0;
    sample.gene_diversity = 1.0;
  } else {
    double d = (n / (n - 1.0)) * (1.0 - s2);
    if (d > 1.0) d = 1.0;
    sample.gene_diversity = d;
    sample.gene_homozygosity = 1.0 - d;
  }
  return sample.gene_diversity;
}

double& sd_gene_div(PopGenetics& sample) {
  const double n = sample.sample_size;
  const double s2 = sum_sq_freqs(sample);
  double s3 = 0.0;
  for (const PHaploDef& e : sample.haplo_list) {
    const double p = frequency(e.freq, n);
    s3 += p * p * p;
  }
  if (n <= 1.0) {
    sample.sd_gene_diversity = 0.0;
    return sample.sd_gene_diversity;
  }
  const double var = (2.0 / (n * (n - 1.0))) * (2.0 * (n - 2.0) * (s3 - s2 * s2) + s2 - s2 * s2);
  // Rounding can leave a monomorphic sample a hair below 0.
  sample.sd_gene_diversity = var > 0.0 ? std::sqrt(var) : 0.0;
  return sample.sd_gene_diversity;
}

// --- The standard task ------------------------------------------------------------

void standard_diversity_task(PopGenetics& sample, settings& s, SampleTaskContext& /*context*/) {
  ResultDocument& doc = result_document();
  std::ostream* out = doc.print_sections() ? &doc.stream() : nullptr;
  const bool microsat = sample.kind() == SampleKind::microsat;
  if (out != nullptr) {
    if (microsat) {
      doc.write_citations({"Nei_M", "Garza_J_and_Williamson_E"});
    } else {
      doc.write_citations({"Nei_M"});
    }
  }
  gene_diversity_value(sample);
  sd_gene_div(sample);
  if (out != nullptr) print_counts(*out, sample, s);
  if (!sample.frequency_data()) {
    if (sample.genotypic()) {
      locus_table_geno(sample, sample.pheno_db, out, s, microsat, microsat, out != nullptr);
    } else {
      locus_table_hapl(sample, out, s);
    }
  }
  if (out != nullptr && sample.genotypic() && sample.phase_known()) print_het_stats(*out, sample);
  if (out != nullptr && sample.haplotypic_or_phase_known()) print_haplotype_block(*out, sample);
  write_gene_diversity_row(sample, s);
}
