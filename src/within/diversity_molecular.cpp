// The molecular diversity task of one sample (task bit 0x2): the site
// counts and nucleotide composition of DNA, the distance method, the mean
// number of pairwise differences and the diversity per locus, and the
// estimators of theta that ComputeTheta selects, as each data type allows
// them. FREQUENCY data have no definitions: no pairwise values, and "none"
// in their place in the summary file. A distance matrix that failed leaves
// the pairwise values out as well.
#include <ostream>
#include <string>

#include "model/report.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "within/distances.h"
#include "within/diversity.h"
#include "within/diversity_rows.h"
#include "within/sample_tasks.h"

namespace {

// Bits of ComputeTheta.
constexpr int kThetaHom = 1;
constexpr int kThetaS = 2;
constexpr int kThetaK = 4;
constexpr int kThetaPi = 8;

fmt::Formatted real(double x) {
  return fmt::fixed(x, 0, 6);
}

void print_sizes(std::ostream& out, const PopGenetics& s, const settings& st) {
  out << "Sample size                                  : " << fmt::integer(s.gene_copies())
      << "\nNo. of haplotypes                            : " << fmt::integer(s.Nb_haplo) << "\n";
  if (st.InferHaplotypeDefinitionFromDistanceMatrix != 0 && !s.genotypic()) {
    out << "No. of original haplotypes in sample         : " << fmt::integer(s.Nb_orig_haplo)
        << "\n";
  }
}

void print_dna_sites(std::ostream& out, PopulDNA& s) {
  const SiteCounts& c = s.counts;
  out << "\nDeletion weight                              : " << real(s.DeletionWeight)
      << "\nTransition weight                            : " << real(s.TransitionWeight)
      << "\nTransversion weight                          : " << real(s.TranversionWeight)
      << "\nAllowed level of missing data                : " << real(100.0 * s.allowed_missing)
      << " %"
      << "\nNumber of observed transitions               : " << fmt::integer(c.transitions)
      << "\nNumber of observed transversions             : " << fmt::integer(c.transversions)
      << "\nNumber of substitutions                      : " << fmt::integer(c.substitutions)
      << "\nNumber of observed indels                    : " << fmt::integer(c.indels)
      << "\nNumber of polymorphic sites                  : " << fmt::integer(s.nb_poly_loci)
      << "\nNumber of observed sites with transitions    : " << fmt::integer(c.transition_sites)
      << "\nNumber of observed sites with transversions  : " << fmt::integer(c.transversion_sites)
      << "\nNumber of observed sites with substitutions  : " << fmt::integer(c.substitution_sites)
      << "\nNumber of observed sites with indels         : " << fmt::integer(c.indel_sites)
      << "\nNumber of observed nucleotide sites          : " << fmt::integer(c.nucleotide_sites)
      << "\nNumber of usable nucleotide sites            : "
      << fmt::integer(c.usable_nucleotide_sites);
  const auto& f = s.freq_nucl;
  out << "\nNucleotide composition (Relative values)"
      << "\n   C :" << fmt::fixed(f[0], 10, 6) << "\n   T :" << fmt::fixed(f[1], 10, 6)
      << "\n   A :" << fmt::fixed(f[2], 10, 6) << "\n   G :" << fmt::fixed(f[3], 10, 6)
      << "\n   Total :" << fmt::fixed(f[0] + f[1] + f[2] + f[3], 10, 6);
}

void print_site_lines(std::ostream& out, PopGenetics& s) {
  switch (s.kind()) {
    case SampleKind::dna:
      print_dna_sites(out, static_cast<PopulDNA&>(s));
      return;
    case SampleKind::rflp:
      out << "\nNumber of observed indels                    : "
          << fmt::integer(static_cast<PopulRFLP&>(s).counts.indels)
          << "\nNumber of polymorphic sites                  : " << fmt::integer(s.nb_poly_loci)
          << "\nNumber of usable nucleotide sites            : " << fmt::integer(s.nb_usable_loci);
      return;
    case SampleKind::microsat:
      out << "\nAllowed level of missing data       : " << real(100.0 * s.allowed_missing) << " %"
          << "\nNumber of usable loci               : " << fmt::integer(s.nb_usable_loci);
      return;
    case SampleKind::standard:
      break;
  }
  out << "\nAllowed level of missing data       : " << real(100.0 * s.allowed_missing) << " %"
      << "\nNumber of usable loci               : " << fmt::integer(s.nb_usable_loci)
      << "\nNumber of polymorphic loci                   : " << fmt::integer(s.nb_poly_loci);
}

void print_method(std::ostream& out, const PopGenetics& s) {
  out << "\nDistance method                              : "
      << distance_method_label(s.kind(), s.dist_method);
  const auto* dna = dynamic_cast<const PopulDNA*>(&s);
  if (dna != nullptr && dna->GammaAValue != 0.0) {
    out << " (Gamma correction : a=" << real(dna->GammaAValue) << ")";
  } else {
    out << " (no Gamma correction)\n";
  }
}

void print_pairwise(std::ostream& out, const PopGenetics& s) {
  const char* label;
  switch (s.kind()) {
    case SampleKind::dna:
      label = "\nNucleotide diversity (average over loci)     : ";
      break;
    case SampleKind::microsat:
      label = "\nAverage gene diversity over loci    : ";
      break;
    default:
      label = "\nAverage gene diversity over loci              : ";
      break;
  }
  out << "\nMean number of pairwise differences          : " << real(s.mean_pairwise_diff)
      << " +/- " << real(s.sd_pairwise_diff) << label << real(s.avg_gene_diversity) << " +/- "
      << real(s.sd_avg_gene_diversity)
      << "\n(Standard deviations are for both the sampling and the stochastic processes)\n";
}

// --- Thetas ------------------------------------------------------------------------

class ThetaBlock {
 public:
  ThetaBlock(PopGenetics& s, const settings& st, std::ostream* out, bool pairwise)
      : s_(s), bits_(st.ComputeTheta), out_(out), pairwise_(pairwise) {}

  ThetaRow run();

 private:
  bool has(int bit) const { return (bits_ & bit) != 0; }
  bool all_different() const { return static_cast<double>(s_.Nb_haplo) == s_.sample_size; }
  void text(const char* t) {
    if (out_ != nullptr) *out_ << t;
  }
  void value(const char* label, double x) {
    if (out_ != nullptr) *out_ << "\n" << label << real(x);
  }
  void hom();
  void k();
  void s();
  void pi();
  void microsat();
  void standard();

  PopGenetics& s_;
  int bits_;
  std::ostream* out_;
  bool pairwise_;
  ThetaRow row_;
};

ThetaRow ThetaBlock::run() {
  if (bits_ == 0) return row_;
  text("\n");
  switch (s_.kind()) {
    case SampleKind::microsat:
      microsat();
      break;
    case SampleKind::standard:
      standard();
      break;
    default:
      if (!all_different()) {
        hom();
        k();
      } else if (s_.kind() == SampleKind::dna) {
        if (has(kThetaHom))
          text("\nUnable to compute Theta(Hom) when all gene copies are different");
        if (has(kThetaK)) text("\nUnable to compute Theta(k) when all gene copies are different");
      } else if (has(kThetaHom) || has(kThetaK)) {
        text("\nUnable to compute theta(Hom) and theta(k) when all gene copies are different");
      }
      s();
      pi();
      break;
  }
  text("\n");
  return row_;
}

void ThetaBlock::hom() {
  if (!has(kThetaHom)) return;
  theta_Hom_value(s_);
  value("Theta(Hom) : ", s_.theta_Hom);
  value("S.D. Theta(Hom) : ", s_.sd_theta_Hom);
  row_.hom = true;
}

void ThetaBlock::k() {
  if (!has(kThetaK) || !s_.haplotypic_or_phase_known()) return;
  text("\n\t\tComputing BMat ...");
  if (load_BMat() == 0) {
    text("\n\t\t\tFile 500k100.bnb not found... skipping task !\n");
    return;
  }
  const int n = s_.gene_copies();
  const int k = s_.Nb_haplo;
  const ThetaKResult r = theta_k_with_interval(s_, n, k, 0.05);
  value("Theta(k) : ", s_.theta_k);
  if (r.interval == ThetaKInterval::computed) {
    if (out_ != nullptr) {
      *out_ << "\n95 % confidence interval limits for theta(k) : [ " << real(s_.theta_k_low) << ", "
            << real(s_.theta_k_high) << " ]";
    }
  } else {
    log_stream() << "\t\t\tToo many aleles or gene copies in sample to compute Theta(k)\n";
  }
  row_.k = true;
}

void ThetaBlock::s() {
  if (!has(kThetaS)) return;
  int segregating = 0;
  if (const auto* dna = dynamic_cast<const PopulDNA*>(&s_)) {
    segregating = dna->counts.substitution_sites;
  } else if (const auto* rflp = dynamic_cast<const PopulRFLP*>(&s_)) {
    segregating = rflp->counts.substitution_sites;
  }
  theta_S_value(s_, s_.gene_copies(), segregating);
  value("Theta(S) : ", s_.theta_S);
  value("S.D. Theta(S) : ", s_.sd_theta_S);
  row_.s = true;
}

void ThetaBlock::pi() {
  if (!has(kThetaPi) || !pairwise_) return;
  theta_Pi_value(s_, s_.mean_pairwise_diff);
  value("Theta(Pi) : ", s_.theta_Pi);
  value("S.D. Theta(Pi) : ", s_.sd_theta_Pi);
  row_.pi = true;
}

void ThetaBlock::microsat() {
  if (has(kThetaHom)) {
    text("\nInfinite allele model:");
    if (all_different()) {
      text("\nUnable to compute theta(Hom) when all gene copies are different\n");
    } else {
      hom();
    }
  }
  text("\nUnable to compute some theta values for microsatellite data type\n");
}

void ThetaBlock::standard() {
  if (!all_different()) {
    hom();
    k();
  } else if (has(kThetaHom) || has(kThetaK)) {
    text("\nUnable to compute theta(Hom) and theta(k) when all gene copies are different");
  }
  if (has(kThetaS)) text("\nUnable to compute theta(S) for standard data type ");
  if (has(kThetaPi)) text("\nUnable to compute theta(Pi) for standard data type ");
}

}  // namespace

void molecular_diversity_task(PopGenetics& sample, settings& s, SampleTaskContext& /*context*/) {
  ResultDocument& doc = result_document();
  std::ostream* out = doc.print_sections() ? &doc.stream() : nullptr;
  if (out != nullptr) doc.write_citations({"Nei_M", "Tajima_F2", "Tajima_F3"});
  gene_diversity_value(sample);
  sd_gene_div(sample);
  auto* dna = dynamic_cast<PopulDNA*>(&sample);
  if (dna != nullptr && !dna->haplo_list.empty()) comp_nucl_freq(*dna);
  const bool frequency = sample.frequency_data();
  const bool pairwise = !frequency && compute_pairwise_diversity(sample, s) != 0;
  if (out != nullptr) {
    print_sizes(*out, sample, s);
    print_site_lines(*out, sample);
    if (!frequency && sample.kind() != SampleKind::standard) print_method(*out, sample);
    const HaplotypeMatrixPrinter printer = haplotype_matrix_printer();
    if (printer != nullptr && (s.PrintHaplDistMat != 0 || s.PrintMinSpannNetworkPop != 0)) {
      printer(sample, s, *out);
    }
    if (pairwise && sample.haplotypic_or_phase_known()) print_pairwise(*out, sample);
  }
  const ThetaRow thetas = ThetaBlock(sample, s, out, pairwise).run();
  if (dna != nullptr) write_nucleotide_composition_row(*dna);
  write_molecular_diversity_row(sample, s, pairwise && sample.haplotypic_or_phase_known());
  if (s.ComputeTheta != 0) write_theta_row(sample, thetas);
}

HaplotypeMatrixPrinter& haplotype_matrix_printer() {
  static HaplotypeMatrixPrinter printer = nullptr;
  return printer;
}

void install_diversity_analyses() {
  SampleAnalyses& a = sample_analyses();
  a.standard_indices = SampleAnalysisEntry{&standard_diversity_task, nullptr};
  a.molecular_diversity = SampleAnalysisEntry{&molecular_diversity_task, nullptr};
}
