// Molecular distances between the haplotypes of a sample: the entry of every
// data type, the scale and labels of the methods, and the printing of a
// matrix. The routines of each type are in distances_dna.cpp and
// distances_other.cpp.
#include "within/distances.h"

#include <ctime>

#include "model/report.h"
#include "output/number_format.h"
#include "within/distances_matrix.h"
#include "within/sample_tasks.h"

RectMat& fresh_distance_matrix(PopGenetics& sample) {
  const int n = static_cast<int>(sample.haplo_list.size());
  sample.Nb_haplo = n;
  sample.dist_mat = std::make_unique<RectMat>(n, n);
  sample.max_diff = 0;
  return *sample.dist_mat;
}

void print_distance_triangle(std::ostream& out, const RectMat& matrix) {
  log_stream() << "\t\t\tWriting matrix to file ...\n";
  const long long start = distance_clock_ms();
  out << "\nInter-haplotypic distance matrix:\n";
  for (int i = 0; i < matrix.nrows(); ++i) {
    const std::vector<double>& row = matrix.row(i);
    for (int j = 0; j <= i && j < matrix.ncols(); ++j) {
      out << fmt::fixed(row[static_cast<std::size_t>(j)], 10, 5);
    }
    out << '\n';
  }
  log_stream() << "\t\t\tdone ! (" << fmt::integer(distance_clock_ms() - start) << " ms)\n";
}

int finish_distance_matrix(PopGenetics& sample, int done, std::ostream* out) {
  if (done == 0) {
    sample.dist_mat->free_matrix();
  } else if (out != nullptr) {
    print_distance_triangle(*out, *sample.dist_mat);
  }
  return done;
}

long long distance_clock_ms() {
  return static_cast<long long>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

bool first_definition_empty(const PopGenetics& sample) {
  const HaploDef* first = sample.haplo_list.front().hapl;
  return first == nullptr || first->hapl_content.length() == 0;
}

int compute_distance_matrix(PopGenetics& sample, std::ostream* out, int* stop, int per_site) {
  switch (sample.kind()) {
    case SampleKind::dna:
      return compute_distance_matrix(static_cast<PopulDNA&>(sample), out, stop, per_site);
    case SampleKind::rflp:
      return compute_distance_matrix(static_cast<PopulRFLP&>(sample), out, stop, per_site);
    case SampleKind::microsat:
      return compute_distance_matrix(static_cast<PopulMicrosat&>(sample), out, stop, per_site);
    case SampleKind::standard:
      return compute_distance_matrix(static_cast<PopulStandard&>(sample), out, stop, per_site);
  }
  return 0;
}

void install_distance_analysis() {
  sample_analyses().distance_matrix =
      static_cast<int (*)(PopGenetics&, std::ostream*, int*, int)>(&compute_distance_matrix);
}

const char* distance_method_label(SampleKind kind, int method) {
  switch (kind) {
    case SampleKind::dna: {
      static constexpr const char* kLabels[] = {
          "Pairwise difference", "Jukes and Cantor", "Kimura 2P",     "Proportion of difference",
          "Tajima and Nei",      "Tamura",           "Tamura and Nei"};
      return method >= 0 && method <= 6 ? kLabels[method] : kLabels[0];
    }
    case SampleKind::rflp:
      return method == distance_method::RFLP_P_DIST ? "Proportion of difference"
                                                    : "Pairwise difference";
    case SampleKind::microsat:
      return method == distance_method::MICRO_SQR_DIFF ? "Sum of squared size difference"
                                                       : "No. of different alleles";
    case SampleKind::standard:
      return "";
  }
  return "";
}

double distance_scale(const PopGenetics& sample, int method, int per_site) {
  const SampleKind kind = sample.kind();
  if (per_site == 0 || (kind != SampleKind::dna && kind != SampleKind::rflp)) return 1.0;
  // Values a type does not know are the plain count.
  const bool plain = kind == SampleKind::dna ? method < distance_method::JUKES_CANTOR ||
                                                   method > distance_method::TAMURA_NEI
                                             : method != distance_method::RFLP_P_DIST;
  return plain ? 1.0 : static_cast<double>(sample.nb_usable_loci);
}
