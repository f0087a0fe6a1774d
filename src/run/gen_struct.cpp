// The structure step of a pass: the analyses that look at all samples of the
// genetic structure at once. It prepares the data (pseudo-haplotypes of
// genotypic data), computes the distance matrix between the haplotypes of
// the project, and dispatches to the analysis of molecular variance (whose
// construction also runs the pairwise comparisons and the Mantel test), its
// locus-by-locus form, and the exact test of population differentiation.
#include "among/min_span_net_report.h"
#include "model/population.h"
#include "model/report.h"
#include "output/matrix_print.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "run/project.h"
#include "run/run_steps.h"

namespace {

constexpr int kStructureTasks =
    task_bit::AMOVA | task_bit::PAIRWISE_FST | task_bit::MANTEL | task_bit::EXACT_DIFFERENTIATION;

bool amova_kind(const settings& s) {
  return s.HaplAMOVA != 0 || s.LocByLocAMOVA != 0;
}

// Bit 0x200 with a kind of AMOVA.
bool amova_active(const settings& s) {
  return s.has_task(task_bit::AMOVA) && amova_kind(s);
}

// Both the document and the log take these sentences.
void tell(std::ostream* result, std::string_view text) {
  if (result != nullptr) *result << text;
  log_stream() << text;
}

}  // namespace

void Project::GenStructCalculations(std::ostream* result) {
  settings& s = run_settings;
  if (!s.has_task(kStructureTasks)) return;
  prepare_structure_data(result);
  ResultDocument& doc = result_document();
  if (s.has_task(kStructureTasks) && doc.print_sections()) open_structure_section(result);
  structure_distance_matrix();
  if (s.has_task(task_bit::AMOVA | task_bit::PAIRWISE_FST | task_bit::MANTEL)) {
    structure_statistics();
  }
  if (s.has_task(task_bit::EXACT_DIFFERENTIATION)) {
    if (doc.print_sections()) {
      doc.open_tree_leaf(2, is_group_level ? "_gr_exct_tests" : "_pop_exct_tests", "Exact tests");
    }
    run_steps::log_not_available("The exact test of population differentiation");
  }
}

// Genotypic data become haplotypes; what can't be computed is dropped.
void Project::prepare_structure_data(std::ostream* result) {
  settings& s = run_settings;
  const bool genotypic = GenotypicData != 0;
  if (genotypic && RecessiveData == 0) {
    if (GameticPhase == 0 && s.ComputeConventionalFST != 0) {
      tell(result,
           "\n\nThe computation of AMOVA with the option \"CONVENTIONAL FST\" is"
           "\nnot possible with unknown gametic phase data.\n"
           "SKIPPING COMPUTATION OF GENETIC STRUCTURE\n");
      report_error(report_kind::WARNING, "GenStructCalculations()", 202);
      s.TaskNumber &= ~(task_bit::AMOVA | task_bit::PAIRWISE_FST);
    }
    log_stream() << "\tConverting phenotypic to haplotypic data ...\n";
    const long long start = run_steps::clock_ms();
    build_pseudo_haplotypes();
    build_vectors();
    log_stream() << "\tdone ! (" << fmt::integer(run_steps::clock_ms() - start) << " ms)\n";
  }
  if (DataType == data_type_code::MICROSAT) {
    log_stream() << "\nSkipping microsat repeat length detection\n";
  }
  if (genotypic && RecessiveData != 0) {
    s.TaskNumber &= ~(task_bit::AMOVA | task_bit::PAIRWISE_FST);
    if (result != nullptr) {
      *result << "\n\nThe computation of AMOVA and PAIRWISE FST is"
              << "\nnot implemented yet with recessive data, sorry\n";
    }
  }
}

// The menu folder of the structure analyses and their banner.
void Project::open_structure_section(std::ostream* result) {
  const settings& s = run_settings;
  ResultDocument& doc = result_document();
  if (amova_active(s) || s.has_task(task_bit::PAIRWISE_FST | task_bit::EXACT_DIFFERENTIATION)) {
    if (is_group_level) {
      doc.open_tree_folder(2, "_gr_gen_struct", "Genetic structure (samp=group)");
    } else {
      doc.open_tree_folder(2, "_pop_gen_struct", "Genetic structure (samp=pop)");
    }
  }
  if ((amova_active(s) || s.has_task(task_bit::PAIRWISE_FST)) && result != nullptr) {
    const std::string rule = run_steps::rule(79);
    *result << rule << "\n== GENETIC STRUCTURE ANALYSIS\n" << rule << "\n";
  }
}

// The distance matrix between the haplotypes of the project.
void Project::structure_distance_matrix() {
  const settings& s = run_settings;
  const bool computed = s.ComputeDistanceMatrixAMOVA != 0 || s.ComputeConventionalFST != 0;
  const bool pairwise =
      s.has_task(task_bit::PAIRWISE_FST) &&
      (s.ComputePairwiseFST != 0 || s.UnequalPopSizeDiv != 0 || s.PrintMissIntermatchs != 0);
  const bool amova = s.has_task(task_bit::AMOVA) && s.HaplAMOVA != 0;
  if (computed && (amova || pairwise || s.has_task(task_bit::MANTEL))) {
    calc_dist_matrix(s.DistanceMethodAMOVA, s.GammaAValueAMOVA);
  }
  if (s.PrintDistanceMatrix != 0) print_structure_matrix();
  // A conventional matrix holds no distances to span a network with.
  if (s.PrintMinSpannNetworkGlob != 0 && dist_mat.dim() > 0 && !dist_mat.is_conventional()) {
    PrintMinSpannNetworkGlob(result_document().stream(), dist_mat, haplo_db, is_group_level);
  }
}

// The matrix that the structure analyses use, with the list of its haplotypes.
void Project::print_structure_matrix() {
  ResultDocument& doc = result_document();
  std::ostream& out = doc.stream();
  if (doc.print_sections()) {
    doc.open_tree_leaf(2, is_group_level ? "_gr_amova_dm" : "_pop_amova_dm", "Euclidean distances");
  }
  out << "\nList of haplotypes of the distance matrix:\n";
  const TXmlTag labels("hapDistMatrixLabels");
  if (doc.xml()) out << doc.open_text(labels);
  for (int i = 0; i < dist_mat.label_count(); ++i) {
    out << fmt::integer(i + 1) << "\t" << doc.name(dist_mat.label(i).str()) << "\n";
  }
  if (doc.xml()) out << labels.close_text();
  out << "\nDistance matrix between haplotypes:\n";
  write_dist_mat(out, dist_mat, MatrixDocument{true, doc.xml(), doc.time_stamp()});
  out << "\n";
}

// The analysis of molecular variance and what its construction runs.
void Project::structure_statistics() {
  settings& s = run_settings;
  ResultDocument& doc = result_document();
  if (amova_kind(s) && !run_steps::quiet_run) log_stream() << "\t\tComputing F statistics ...\n";
  settings::show_progress("Computing population genetic structure...");
  const long long start = run_steps::clock_ms();
  if (s.HaplAMOVA != 0 || s.has_task(task_bit::PAIRWISE_FST | task_bit::MANTEL)) {
    if (s.HaplAMOVA != 0 && doc.print_sections()) {
      doc.open_tree_leaf(2, is_group_level ? "_gr_amova" : "_pop_amova", "AMOVA");
    }
    const int tasks = s.TaskNumber;
    // The pairwise comparisons go through the AMOVA without its own analysis.
    if (s.HaplAMOVA == 0 && !s.has_task(task_bit::MANTEL) && s.has_task(task_bit::AMOVA)) {
      s.TaskNumber &= ~task_bit::AMOVA;
    }
    AMOVA(dist_mat, haplo_db, samples.get(), structure.get(), &allele_db);
    s.TaskNumber = tasks;
  }
  if (s.LocByLocAMOVA != 0) {
    const int tasks = s.TaskNumber;
    const int pairwise = s.ComputePairwiseFST;
    const int delta_mu = s.ComputeDeltaMuSqr;
    s.TaskNumber = task_bit::AMOVA;
    s.ComputePairwiseFST = 0;
    s.ComputeDeltaMuSqr = 0;
    run_steps::log_not_available("The locus-by-locus AMOVA");
    s.TaskNumber = tasks;
    s.ComputePairwiseFST = pairwise;
    s.ComputeDeltaMuSqr = delta_mu;
  }
  if (!run_steps::quiet_run) {
    log_stream() << "\t\tdone ! (" << fmt::integer(run_steps::clock_ms() - start) << " ms)\n";
  }
}

int Project::AMOVA(DistMat& matrix, Haplo_DB& haplotypes, Samples* pops, Structure* groups,
                   TAlleleDB* alleles) {
  settings& s = run_settings;
  if (amova_active(s) && !IsAmovaStructure()) {
    report_error(report_kind::WARNING, "Project::AMOVA()", 134);
    if (!s.has_task(task_bit::PAIRWISE_FST)) return 0;
  }
  const bool matrix_needed =
      amova_active(s) || s.ComputePairwiseFST != 0 || s.PrintMissIntermatchs != 0;
  if (matrix_needed && s.has_task(task_bit::AMOVA | task_bit::PAIRWISE_FST)) {
    if (s.ComputeDistanceMatrixAMOVA == 0) {
      if (!haplotypes.associate_with1(matrix)) {
        report_error(report_kind::WARNING, "Project::AMOVA()", 135);
        return 0;
      }
    } else {
      if (!haplotypes.associate_with2(matrix)) {
        report_error(report_kind::ERROR, "Project::AMOVA()", 135);
        return 0;
      }
      for (int i = 0; i < haplotypes.size(); ++i) matrix.label(i) = haplotypes[i]->hapl_id;
    }
  }
  number_samples_in_structure_order();
  s.samples = pops;
  s.structure = groups;
  s.dist_mat = &matrix;
  s.haplo_list = &haplotypes;
  s.allele_db = alleles;
  // The construction of the analysis also runs the pairwise comparisons and the Mantel test.
  run_steps::log_not_available(
      "The analysis of molecular variance, with the pairwise comparisons and the Mantel test,");
  return 1;
}

// The samples numbered as the structure lists them; samples of no group follow.
void Project::number_samples_in_structure_order() {
  const std::vector<PopGenetics*> list = sample_list();
  for (PopGenetics* sample : list) sample->sample_index = -1;
  int next = 0;
  for (const TGroup& group : structure->groups) {
    for (const int member : group.members) {
      if (member < 0 || member >= static_cast<int>(list.size())) continue;
      PopGenetics* sample = list[static_cast<std::size_t>(member)];
      if (sample->sample_index == -1) sample->sample_index = next++;
    }
  }
  for (PopGenetics* sample : list) {
    if (sample->sample_index == -1) sample->sample_index = next++;
  }
}
