// The distance matrix between all haplotype definitions of a project, which
// the structure analyses work on; the search for definitions that lie at
// distance 0 from each other (redundant haplotypes, and those that samples
// share); and the check that a structure can carry an AMOVA.
//
// The matrix is computed by a temporary sample that holds every definition
// once, with its count over all samples, so that a site's missing data are
// judged over the whole project. A conventional matrix (haplotype frequencies
// only) is 2 by 2: 0 within a haplotype, 1 between two. A project without
// definitions, or a pair that the distance method can't handle, leaves no
// matrix: error 136, and the analyses that need one report their own failure.
#include <fstream>
#include <new>
#include <optional>

#include "model/population.h"
#include "model/report.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "run/project.h"
#include "run/run_steps.h"
#include "within/sample_tasks.h"

namespace {

// The locus numbers (from 1), 15 to a line, or "NONE".
void write_locus_list(std::ostream& out, const std::vector<int>& loci) {
  if (loci.empty()) {
    out << "NONE";
    return;
  }
  for (std::size_t i = 0; i < loci.size(); ++i) {
    out << fmt::integer(loci[i] + 1, 6);
    if ((i + 1) % 15 == 0 && i + 1 < loci.size()) out << "\n";
  }
}

// The usable loci of the temporary sample and those with too much missing data.
void write_usable_loci(std::ostream& out, const PopGenetics& sample, double allowed) {
  std::vector<int> usable, missing;
  for (std::size_t l = 0; l < sample.usable_locus.size(); ++l) {
    (sample.usable_locus[l] != 0 ? usable : missing).push_back(static_cast<int>(l));
  }
  const char* usable_title = "List of usable loci :";
  const char* missing_title = "List of loci with too much missing data :";
  out << "\nNumber of usable loci for distance computation : "
      << fmt::integer(sample.nb_usable_loci)
      << "\nAllowed level of missing data                  : " << fmt::general(allowed) << "\n\n"
      << usable_title << "\n"
      << run_steps::rule(std::string_view(usable_title).size(), '-') << "\n";
  write_locus_list(out, usable);
  out << "\n\n"
      << missing_title << "\n"
      << run_steps::rule(std::string_view(missing_title).size(), '-') << "\n";
  write_locus_list(out, missing);
  out << "\n";
}

void write_missing_data_list(const std::string& path, const PopGenetics& sample) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << "Locus#\tFreq. missing data\n";
  for (std::size_t l = 0; l < sample.missing_freq.size(); ++l) {
    file << fmt::integer(static_cast<long long>(l) + 1) << "\t"
         << fmt::general(sample.missing_freq[l]) << "\n";
  }
}

}  // namespace

int Project::calc_dist_matrix(int distance_method, double gamma) {
  settings& s = run_settings;
  try {
    std::unique_ptr<PopGenetics> sample = make_definitions_sample();
    const int tasks = s.TaskNumber;
    const int method = s.DistanceMethodAMOVA;
    const double gamma_a = s.GammaAValueAMOVA;
    const int infer = s.InferHaplotypeDefinitionFromDistanceMatrix;
    s.TaskNumber = task_bit::DISTANCE_MATRIX;
    s.DistanceMethodAMOVA = distance_method;
    s.GammaAValueAMOVA = gamma;
    s.InferHaplotypeDefinitionFromDistanceMatrix = 0;
    test_methods(*sample, s);
    s.TaskNumber = tasks;
    s.DistanceMethodAMOVA = method;
    s.GammaAValueAMOVA = gamma_a;
    s.InferHaplotypeDefinitionFromDistanceMatrix = infer;
    if (sample->dist_mat == nullptr || !sample->dist_mat->has_data()) {
      report_error(report_kind::ERROR, "Project::calc_dist_matrix()", 136);
      return 0;
    }
    take_distance_matrix(*sample);
  } catch (const std::bad_alloc&) {
    report_error(report_kind::MEMORY, "Project::calc_dist_matrix()", 0);
  }
  return 1;
}

// The temporary sample: every definition of the project once, with its count.
std::unique_ptr<PopGenetics> Project::make_definitions_sample() {
  Population data;
  data.profile.copy_profile(*this);
  data.SampleName = project_name;
  data.allele_db = &allele_db;
  data.data_complete = 1;
  int copies = 0;
  for (const auto& def : haplo_db.definitions()) {
    data.haplo_list.push_back(PHaploDef{def.get(), def->count});
    copies += def->count;
  }
  data.Nb_haplo = static_cast<int>(data.haplo_list.size());
  data.Nb_orig_haplo = data.Nb_haplo;
  data.set_sample_size(copies);
  return make_sample(DataType, data);
}

// The matrix of the temporary sample becomes the project's.
void Project::take_distance_matrix(const PopGenetics& sample) {
  const settings& s = run_settings;
  const RectMat& computed = *sample.dist_mat;
  const int n = haplo_db.size();
  if (computed.is_conventional()) {
    dist_mat.set_size(2);
    dist_mat.set_conventional(true);
    dist_mat.set_matrix_size(n);
    return;
  }
  dist_mat.set_size(n);
  dist_mat.set_conventional(false);
  for (int i = 0; i < n; ++i) dist_mat.label(i) = haplo_db[i]->hapl_id;
  for (int i = 0; i < n && i < computed.nrows(); ++i) {
    for (int j = 0; j <= i && j < computed.ncols(); ++j) dist_mat(i, j) = computed(i, j);
  }
  const bool amova = s.has_task(task_bit::AMOVA) && (s.HaplAMOVA != 0 || s.LocByLocAMOVA != 0);
  if (amova || s.has_task(task_bit::PAIRWISE_FST)) {
    write_usable_loci(result_document().stream(), sample, s.AllowedLevelOfMissingData);
  }
  write_missing_data_list(s.result_folder + "MissDataPerLocus.txt", sample);
}

bool Project::IsAmovaStructure() {
  const char* name = "Project::IsAmovaStructure()";
  const int members = structure->nb_samples();
  const int groups = structure->nb_groups();
  if (members == 0) {
    report_error(report_kind::WARNING, name, 123);
    return false;
  }
  if (groups == 0) {
    report_error(report_kind::WARNING, name, 124);
    return false;
  }
  if (members == groups && members != 1) {
    report_error(report_kind::WARNING, name, 125);
    return false;
  }
  return true;
}

int Project::eliminate_redond_haplodef() {
  settings& s = run_settings;
  const bool matrix_read = dist_mat.matrix_size() > 0;
  const int read_size = dist_mat.matrix_size();
  // The user's matrix comes back once the search is done, unless the run computes its own.
  std::optional<DistMat> saved;
  if (matrix_read && s.ComputeDistanceMatrixAMOVA == 0) saved = dist_mat;
  const bool was_conventional = dist_mat.is_conventional();
  const auto restore = [&]() {
    if (saved) dist_mat = *saved;
    dist_mat.set_conventional(was_conventional);
  };
  if (!associate_definitions(matrix_read)) {
    restore();
    return 0;
  }
  if (matrix_read && read_size != haplo_db.size()) {
    restore();
    return 0;
  }
  // The classes of identical haplotypes are those of the haplotype classes
  // report below, which also merges them when definitions are inferred.
  log_stream() << "\t\t\tChecking haplotype redundancy from a computed distance matrix:\n";
  write_shared_haplotypes();
  std::ostream& out = result_document().stream();
  samples->print_out_haplo_cl(out, dist_mat, haplo_db);
  if (s.InferHaplotypeDefinitionFromDistanceMatrix != 0 && DataType != data_type_code::FREQUENCY) {
    samples->merge_haplotype_classes(dist_mat, haplo_db);
  }
  restore();
  return 1;
}

// The definitions tied to the rows of a matrix for the search.
bool Project::associate_definitions(bool matrix_read) {
  settings& s = run_settings;
  const char* name = "Project::eliminate_redond_haplodef()";
  if (DataType == data_type_code::FREQUENCY) {
    if (matrix_read) {
      if (haplo_db.associate_with1(dist_mat)) return true;
    } else {
      // Without a matrix, haplotypes differ by their labels alone.
      dist_mat.set_size(2);
      dist_mat.set_conventional(true);
      dist_mat.set_matrix_size(haplo_db.size());
      if (haplo_db.associate_with2(dist_mat)) return true;
    }
    report_error(report_kind::ERROR, name, 135);
    return false;
  }
  // Definitions compared allele by allele, whatever their data type.
  const unsigned char type = DataType;
  const int conventional = s.ComputeConventionalFST;
  DataType = data_type_code::STANDARD;
  s.data_type = data_type_code::STANDARD;
  s.ComputeConventionalFST = 0;
  calc_dist_matrix(0, 0.0);
  DataType = type;
  s.data_type = type;
  s.ComputeConventionalFST = conventional;
  if (haplo_db.associate_with2(dist_mat)) return true;
  report_error(report_kind::ERROR, name, 135);
  return false;
}

// For each sample, the haplotypes it shares
// with itself and with every other sample.
void Project::write_shared_haplotypes() {
  ResultDocument& doc = result_document();
  std::ostream& out = doc.stream();
  if (doc.print_sections()) doc.open_tree_folder(2, "_shared haplotypes", "Shared haplotypes");
  const std::string banner = "\n" + run_steps::rule(66) + "\n";
  out << banner << "== Checking for haplotypes shared among populations:" << banner;
  const std::vector<PopGenetics*> list = sample_list();
  for (const PopGenetics* a : list) {
    if (doc.print_sections()) {
      doc.open_sample_leaf(2, is_group_level ? "gr_shared" : "pop_shared", a->sample_index,
                           a->SampleName.str());
    }
    out << "\n"
        << run_steps::rule(69) << "\n== Population : " << doc.name(a->SampleName.str())
        << "\n===============\n";
    for (const PopGenetics* b : list) print_shared_haplotypes(*a, *b, out, dist_mat, doc.xml());
    out << "\n" << run_steps::rule(69, '-') << "\n";
  }
}
