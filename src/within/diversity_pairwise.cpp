// The mean number of pairwise differences between the gene copies of a
// sample and the diversity per locus (nucleotide diversity for DNA), with
// their variances over the sampling and the stochastic processes (Tajima
// 1983; Nei 1987), from the sample's distance matrix
// between haplotypes weighted by their counts. One copy, or no usable locus,
// gives 0 for all four values.
#include <cmath>
#include <string>

#include "model/report.h"
#include "within/distances.h"
#include "within/diversity.h"
#include "within/sample_tasks.h"

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

const char* class_name(SampleKind kind) {
  switch (kind) {
    case SampleKind::dna:
      return "PopulDNA";
    case SampleKind::rflp:
      return "PopulRFLP";
    case SampleKind::microsat:
      return "PopulMicrosat";
    case SampleKind::standard:
      break;
  }
  return "PopulStandard";
}

// Whether the sample's matrix holds one row and column per haplotype.
bool matrix_fits(const PopGenetics& s) {
  const int k = static_cast<int>(s.haplo_list.size());
  return s.dist_mat && s.dist_mat->has_data() && !s.dist_mat->is_conventional() &&
         s.dist_mat->nrows() == k && s.dist_mat->ncols() == k;
}

bool make_matrix(PopGenetics& s, settings& st) {
  if (auto* dna = dynamic_cast<PopulDNA*>(&s)) {
    dna->DeletionWeight = st.DeletionWeight;
    dna->TransitionWeight = st.TransitionWeight;
    dna->TranversionWeight = st.TranversionWeight;
  }
  const DistanceAnalysis distances = sample_analyses().distance_matrix;
  return distances != nullptr && distances(s, nullptr, &st.stop_run, 0) != 0;
}

// Sum over pairs i > j of c_i c_j d_ij, row by row.
double weighted_differences(const PopGenetics& s) {
  const RectMat& d = *s.dist_mat;
  const int k = static_cast<int>(s.haplo_list.size());
  double pi = 0.0;
  for (int i = 1; i < k; ++i) {
    const double ci = s.haplo_list[at(i)].freq;
    const std::vector<double>& row = d.row(i);
    for (int j = 0; j < i; ++j) pi += ci * s.haplo_list[at(j)].freq * row[at(j)];
  }
  return pi;
}

void zero_pairwise(PopGenetics& s) {
  s.mean_pairwise_diff = 0.0;
  s.sd_pairwise_diff = 0.0;
  s.avg_gene_diversity = 0.0;
  s.sd_avg_gene_diversity = 0.0;
}

}  // namespace

int compute_pairwise_diversity(PopGenetics& sample, settings& s) {
  const std::string routine =
      std::string(class_name(sample.kind())) + "::compute_molecular_diversity()";
  // A matrix left without cells is one whose computation already failed and
  // reported why: computing it again would only repeat those reports.
  const bool failed_before = sample.dist_mat && !sample.dist_mat->has_data();
  if (!matrix_fits(sample) && (failed_before || !make_matrix(sample, s))) {
    report_error(report_kind::ERROR, routine, 136);
    return 0;
  }
  if (sample.haplo_list.empty() || sample.haplo_list.front().hapl == nullptr) {
    report_error(report_kind::ERROR, routine, 108);
    return 0;
  }
  if (sample.haplo_list.front().hapl->hapl_content.is_empty()) {
    report_error(report_kind::ERROR, routine, 145);
    return 0;
  }
  const double L = sample.nb_usable_loci;
  double pi = 0.0;
  // Microsatellite sums hold only counts of differing alleles.
  if (sample.kind() != SampleKind::microsat || sample.dist_method == 0) {
    pi = weighted_differences(sample);
  }
  // Distances per site (DNA and RFLP methods other than the plain count) back
  // to differences per sequence.
  const double scale = distance_scale(sample, sample.dist_method, 1);
  if (scale != 1.0) pi *= scale;
  const double n = sample.sample_size;
  if (n <= 1.0 || sample.nb_usable_loci == 0) {
    zero_pairwise(sample);
    return 1;
  }
  pi = pi / (n * (n - 1.0) / 2.0);
  sample.mean_pairwise_diff = pi;
  const double v = (3.0 * (n * n + n) * pi + 2.0 * (n * n + n + 3.0) * (pi * pi)) /
                   (11.0 * (n * n) - 7.0 * n + 6.0);
  sample.sd_pairwise_diff = v > 0.0 ? std::sqrt(v) : 0.0;
  const double a = pi / L;
  sample.avg_gene_diversity = a;
  const double va = ((n + 1.0) * a) / (3.0 * L * (n - 1.0)) +
                    (2.0 * (n * n + n + 3.0) * (a * a)) / (9.0 * (n * n - n));
  sample.sd_avg_gene_diversity = va > 0.0 ? std::sqrt(va) : 0.0;
  return 1;
}
