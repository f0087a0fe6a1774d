// Before any analysis runs, the tasks that the settings ask for are checked
// against the data, in a fixed order: a task that the data don't allow is
// dropped with a line in the log, a setting that can't work is mended, and
// the data are prepared (allele vectors, pseudo-haplotypes, the search for
// redundant haplotype definitions). Two conflicts refuse the whole run.
#include "model/population.h"
#include "model/report.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "run/project.h"
#include "run/run_steps.h"

namespace {

bool amova_kind(const settings& s) {
  return s.HaplAMOVA != 0 || s.LocByLocAMOVA != 0;
}

}  // namespace

int Project::make_run_possible() {
  settings& s = run_settings;
  log_stream() << "  Checking all selected options...\n";
  if (GenotypicData == 0 && s.has_task(task_bit::HARDY_WEINBERG)) {
    log_stream()
        << "     !!!Hardy-Weinberg disequilibrium test is not possible on Haplotypic data,\n"
        << "        this task will be skipped.\n";
    s.TaskNumber &= ~task_bit::HARDY_WEINBERG;
  }
  const std::vector<PopGenetics*> list = sample_list();
  // Every sample is numbered in list order: its anchors and its slot in the
  // per-sample tables of the alleles.
  for (std::size_t i = 0; i < list.size(); ++i) {
    list[i]->allele_db = &allele_db;
    list[i]->sample_index = static_cast<int>(i);
  }
  s.samples = samples.get();
  s.structure = structure.get();
  s.dist_mat = &dist_mat;
  s.haplo_list = &haplo_db;
  s.allele_db = &allele_db;
  if (list.empty()) {
    report_error(report_kind::ERROR, "Project::make_run_possible()", 123);
    return 0;
  }
  list.front()->convert_blanks_to_missing();
  if (GenotypicData != 0) build_sample_vectors();
  if (GenotypicData == 0) build_vectors();
  if (!samples->verify_data()) return 0;
  if (!prepare_genotypes() || !check_structure_tasks()) return 0;
  log_stream() << "  done!\n"
               << "  check selected settings...\n";
  check_dememorisation_steps();
  log_stream() << "  done!\n";
  mend_remaining_tasks();
  return 1;
}

// Genotypic data: the allele vectors of every sample.
void Project::build_sample_vectors() {
  log_stream() << "\t\tBuilding vectors of alleles...";
  const long long start = run_steps::clock_ms();
  for (PopGenetics* sample : sample_list()) sample->build_allele_vectors();
  log_stream() << "\n\t\tdone in " << fmt::integer(run_steps::clock_ms() - start) << " ms\n";
}

// The allele vectors of the haplotype definitions, once per pass.
void Project::build_vectors() {
  if (vectors_built != 0) return;
  log_stream() << "\t\tBuilding vectors of alleles...";
  const long long start = run_steps::clock_ms();
  build_allele_vectors(haplo_db, allele_db);
  log_stream() << "\n\t\tdone in " << fmt::integer(run_steps::clock_ms() - start) << " ms\n";
  vectors_built = 1;
}

void Project::build_pseudo_haplotypes() {
  if (pseudo_haplotypes_built != 0) return;
  log_stream() << "\t\tProcessing phenotypes into pseudo-haplotypes...";
  const long long start = run_steps::clock_ms();
  for (PopGenetics* sample : sample_list()) sample->make_pseudo_haplotypes(haplo_db);
  log_stream() << "\n\t\tdone in " << fmt::integer(run_steps::clock_ms() - start) << " ms\n";
  pseudo_haplotypes_built = 1;
}

// Pseudo-haplotypes where the tasks need them, and the tasks that genotypes decide.
bool Project::prepare_genotypes() {
  settings& s = run_settings;
  const bool genotypic = GenotypicData != 0;
  const bool needs_haplotypes =
      s.has_task(task_bit::STANDARD_INDICES | task_bit::MOLECULAR_DIVERSITY) ||
      s.DetectSelectedLoci != 0;
  if (genotypic && (GameticPhase != 0 || (RecessiveData == 0 && needs_haplotypes))) {
    build_pseudo_haplotypes();
    build_vectors();
  }
  if (s.has_task(task_bit::EXACT_DIFFERENTIATION) && recessive_known_phase()) {
    report_error(report_kind::ERROR, "Project::make_run_possible()", 138);
    return false;
  }
  if (s.has_task(task_bit::GENOTYPE_ASSIGNMENT) && !genotypic) {
    log_stream() << "   !!!The computation of the likelihood of all individuals in each\n"
                 << "      population is only possible for Genotypic data \n"
                 << "      skipping the task...\n";
    s.TaskNumber &= ~task_bit::GENOTYPE_ASSIGNMENT;
  }
  return true;
}

bool Project::recessive_known_phase() const {
  return GenotypicData != 0 && RecessiveData != 0 && GameticPhase != 0;
}

// The distance matrix that the structure analyses will use.
bool Project::check_structure_tasks() {
  settings& s = run_settings;
  const bool frequency = DataType == data_type_code::FREQUENCY;
  const bool matrix_read = dist_mat.matrix_size() > 0;
  if (s.has_task(task_bit::AMOVA | task_bit::PAIRWISE_FST) ||
      (frequency && s.EliminateRedondHaplodefs != 0)) {
    if (recessive_known_phase()) {
      report_error(report_kind::ERROR, "Project::make_run_possible()", 138);
      return false;
    }
    if (s.ComputeConventionalFST != 0) s.ComputeDistanceMatrixAMOVA = 1;
    if (s.ComputeDistanceMatrixAMOVA == 0 && !matrix_read) {
      log_stream() << "    !!!No matrix was specified in input file, Morvalin will compute it "
                      "from the data\n";
      s.ComputeDistanceMatrixAMOVA = 1;
    }
    if (frequency && !matrix_read && s.ComputeConventionalFST == 0) {
      log_stream() << "   !!!No molecular information is available for testing genetic structure,\n"
                   << "      haplotype frequencies will be used, and conventional Fst will be "
                      "computed\n";
      s.ComputeConventionalFST = 1;
      s.ComputeDistanceMatrixAMOVA = 1;
    }
    if (frequency && s.ComputeDistanceMatrixAMOVA != 0) s.ComputeConventionalFST = 1;
    const bool sequences = DataType == data_type_code::DNA || DataType == data_type_code::RFLP;
    if (s.ComputeDistanceMatrixAMOVA != 0 && GenotypicData == 0 && !sequences) build_vectors();
  }
  if (s.has_task(task_bit::AMOVA) && amova_kind(s) && !IsAmovaStructure()) {
    s.TaskNumber &= ~task_bit::AMOVA;
    const char* text =
        "  An AMOVA analysis was selected and no Genetic structure\n"
        "  is defined, AMOVA task is skipped.\n";
    log_stream() << text;
    result_document().stream() << text;
  }
  return true;
}

// Chains too short to forget their start are lengthened.
void Project::check_dememorisation_steps() {
  settings& s = run_settings;
  if (s.MarkovChainDememorisationStepsLD < 500) {
    log_stream() << " Too few steps for dememorization ("
                 << fmt::integer(s.MarkovChainDememorisationStepsLD)
                 << " ) in linkage disequilibrium test, setting it to 1000...\n";
    s.MarkovChainDememorisationStepsLD = 1000;
  }
  if (s.MarkovChainDememorisationStepsHW < 500) {
    log_stream() << " Too few steps for dememorization ("
                 << fmt::integer(s.MarkovChainDememorisationStepsHW)
                 << " ) in Hardy-Weinberg disequilibrium test, setting it to 1000...\n";
    s.MarkovChainDememorisationStepsHW = 1000;
  }
}

// The tasks and prints that the data type or the phase rule out.
void Project::mend_remaining_tasks() {
  settings& s = run_settings;
  const bool frequency = DataType == data_type_code::FREQUENCY;
  if (frequency) s.InferHaplotypeDefinitionFromDistanceMatrix = 0;
  if (s.has_task(task_bit::HARDY_WEINBERG) && s.RecessiveAllelesEM != 0) {
    log_stream()
        << "   !!!Hardy-Weinberg disequilibrium test is not possible with recessive data,\n"
        << "      skipping task...\n";
    s.TaskNumber &= ~task_bit::HARDY_WEINBERG;
  }
  const bool haplotypic_or_known = GenotypicData == 0 || GameticPhase != 0;
  if ((s.EliminateRedondHaplodefs != 0 || s.InferHaplotypeDefinitionFromDistanceMatrix != 0) &&
      haplotypic_or_known) {
    eliminate_redond_haplodef();
    if (s.ComputeDistanceMatrixAMOVA != 0) dist_mat.clear();
  }
  if (DataType == data_type_code::MICROSAT) {
    s.TaskNumber &= ~(task_bit::EWENS_WATTERSON | task_bit::CHAKRABORTY);
  }
  if (s.has_task(task_bit::MANTEL) && !s.has_task(task_bit::PAIRWISE_FST) && !mantel.is_custom()) {
    // The pairwise indices are the Mantel test's Y matrix.
    s.TaskNumber |= task_bit::PAIRWISE_FST;
  }
  if (GenotypicData != 0 && GameticPhase == 0) {
    s.PrintMinSpannNetworkPop = 0;
    s.PrintMinSpannNetworkGlob = 0;
    s.PrintDistanceMatrix = 0;
    s.PrintPopDistMat = 0;
    s.PrintHaplDistMat = 0;
  }
}
