// Rows of the diversity indices in the summary files gen_div.sum,
// nucl_comp.sum, mold_div.sum and theta.sum. Numbers are written in general
// notation; a value that does not apply to the data type is "none".
#include "within/diversity_rows.h"

#include <string_view>

#include "output/number_format.h"
#include "output/summary_files.h"

namespace {

SummaryRow row(SumFile file, const PopGenetics& sample) {
  SummaryRow r(sum_stream(file));
  r.names(project_file_name, sample.SampleName.str());
  return r;
}

fmt::Formatted number(double x) {
  return fmt::general(x);
}

fmt::Formatted count(long long x) {
  return fmt::integer(x);
}

int loci_of(PopGenetics& s) {
  return s.usable_locus.empty() ? s.get_nb_loci() : static_cast<int>(s.usable_locus.size());
}

// The columns from indel_w to #nucl_s of a DNA sample.
void dna_sites(SummaryRow& r, const PopulDNA& s) {
  const SiteCounts& c = s.counts;
  r.cell(number(s.DeletionWeight))
      .cell(number(s.TransitionWeight))
      .cell(number(s.TranversionWeight))
      .cell(number(100.0 * s.allowed_missing))
      .cell(count(c.transition_sites))
      .cell(count(c.transversion_sites))
      .cell(count(c.substitution_sites))
      .cell(count(c.indel_sites))
      .cell(count(s.nb_poly_loci))
      .cell(count(c.nucleotide_sites));
}

// RFLP: restriction-site changes stand as substitutions; no transitions,
// transversions or their weights.
void rflp_sites(SummaryRow& r, const PopulRFLP& s) {
  const SiteCounts& c = s.counts;
  r.cell(number(s.DeletionWeight))
      .cell("none")
      .cell("none")
      .cell(number(100.0 * s.allowed_missing))
      .cell("none")
      .cell("none")
      .cell(count(c.substitution_sites))
      .cell(count(c.indel_sites))
      .cell(count(s.nb_poly_loci))
      .cell(count(c.nucleotide_sites));
}

// Microsatellite and standard data: loci, no sites.
void locus_sites(SummaryRow& r, const PopGenetics& s) {
  r.cell("none").cell("none").cell("none").cell(number(100.0 * s.allowed_missing));
  for (int i = 0; i < 4; ++i) r.cell("none");
  if (s.kind() == SampleKind::standard) {
    r.cell(count(s.nb_poly_loci));
  } else {
    r.cell("none");
  }
  r.cell("none");
}

}  // namespace

void write_gene_diversity_row(PopGenetics& sample, const settings& s) {
  SummaryRow r = row(SumFile::gen_div, sample);
  r.cell(count(sample.gene_copies())).cell(count(sample.Nb_haplo));
  if (s.InferHaplotypeDefinitionFromDistanceMatrix != 0 && !sample.genotypic()) {
    r.cell(count(sample.Nb_orig_haplo));
  }
  r.cell(count(loci_of(sample)))
      .cell(count(sample.nb_usable_loci))
      .cell(count(sample.nb_poly_loci));
  if (sample.haplotypic_or_phase_known()) {
    r.put(number(sample.gene_diversity));
  } else {
    r.put("none");
  }
  r.end_line();
}

void write_molecular_diversity_row(PopGenetics& sample, const settings& /*s*/, bool pairwise) {
  SummaryRow r = row(SumFile::mold_div, sample);
  const auto* dna = dynamic_cast<const PopulDNA*>(&sample);
  if (dna != nullptr) {
    dna_sites(r, *dna);
  } else if (const auto* rflp = dynamic_cast<const PopulRFLP*>(&sample)) {
    rflp_sites(r, *rflp);
  } else {
    locus_sites(r, sample);
  }
  r.cell(count(sample.nb_usable_loci)).cell(summary_distance_code(sample.dist_method));
  if (dna != nullptr && dna->GammaAValue != 0.0) {
    r.cell(number(dna->GammaAValue));
  } else if (sample.kind() == SampleKind::dna || sample.kind() == SampleKind::rflp) {
    r.cell(" inf");
  } else {
    r.cell("none");
  }
  if (pairwise) {
    r.cell(number(sample.mean_pairwise_diff)).put(number(sample.avg_gene_diversity));
  } else {
    r.cell("none").put("none");
  }
  r.end_line();
}

void write_nucleotide_composition_row(const PopulDNA& sample) {
  const auto& f = sample.freq_nucl;
  row(SumFile::nucl_comp, sample)
      .cell(number(f[0]))
      .cell(number(f[1]))
      .cell(number(f[2]))
      .cell(number(f[3]))
      .put(number(f[0] + f[1] + f[2] + f[3]))
      .end_line();
}

void write_theta_row(const PopGenetics& sample, const ThetaRow& which) {
  SummaryRow r = row(SumFile::theta, sample);
  if (which.hom) r.put(number(sample.theta_Hom)).put("\t(Hom)\t");
  if (which.k) r.put(number(sample.theta_k)).put("\t(k)\t");
  if (which.s) r.put(number(sample.theta_S)).put("\t(S)\t");
  if (which.pi) r.put(number(sample.theta_Pi)).put("\t(Pi)\t");
  r.end_line();
}
