// The one long-lived object of a batch: it owns the data of the project in
// hand and carries one project from its file to the closed result document.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "input/mantel.h"
#include "input/project_file_reader.h"
#include "input/samples.h"
#include "input/structure.h"
#include "model/allele_db.h"
#include "model/haplo_db.h"
#include "model/matrices.h"
#include "model/my_string.h"
#include "model/profile_settings.h"
#include "model/settings.h"

class cleaner;

class Project : public ProfileSettings {
 public:
  Project();
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  // One whole run of the project named by project_file_name: 1 after a whole run, 0 otherwise.
  int run();
  // Writes the project's properties to mrv_pro.txt in core_directory: 1 on success, 0 otherwise.
  int explore(const my_string& core_directory);
  // Reads the project named by project_file_name, line by line with
  // diagnostics that name the line: 1 if the project was read.
  int newOpen();
  // Reads it by the character-based route that the translator uses: 1 if read.
  int open();

  // The calculation settings of the project in hand, read by the batch driver.
  settings run_settings;
  // Set by the batch driver before each run; 0 while the run checks its tasks.
  int project_valid = 0;
  // The project's name, "no_name" until one is read.
  my_string project_name = "no_name";
  // Where newOpen hands the data sections; replaced together with the data
  // objects that they fill. By default the readers of the members below.
  std::unique_ptr<ProjectSectionReaders> section_readers;

  // --- The data of the project in hand -------------------------------------
  // Empties the distance matrix, the structure, the samples, the haplotype
  // definitions, the allele data base and the Mantel data, in this order
  // (samples go before the definitions and alleles they point to).
  void clear_data();

  // The haplotype definitions of the project (with their own profile copy).
  Haplo_DB haplo_db;
  // The distance matrix between haplotypes, read or computed.
  DistMat dist_mat;
  // The samples and the structure; pointers, as the group pass puts objects
  // of its own in their place for a while.
  std::unique_ptr<Samples> samples;
  std::unique_ptr<Structure> structure;
  Mantel mantel;
  // The alleles of all samples; outlives every sample of the project.
  TAlleleDB allele_db;
  // The folder of the project file in hand, with its trailing '/' (or
  // empty): where EXTERN files and relative names are looked for.
  my_string project_directory;

  // --- One run (run/project_run.cpp and the run files beside it) -----------
  // Checks the tasks asked for against the data, in a fixed order, mending
  // or dropping those that don't fit: 1 if the run may go on.
  int make_run_possible();
  // The structure analyses of a pass; `result` is the result document.
  void GenStructCalculations(std::ostream* result);
  // The analysis of molecular variance on a matrix, structure and samples: 1
  // if it ran, 0 if the structure or the matrix did not allow it.
  int AMOVA(DistMat& matrix, Haplo_DB& haplotypes, Samples* pops, Structure* groups,
            TAlleleDB* alleles);
  // The distance matrix between all haplotype definitions, into dist_mat: 1
  // on success, 0 (ERROR 136) when it could not be computed.
  int calc_dist_matrix(int distance_method, double gamma);
  // Searches the definitions at distance 0 from each other and reports the
  // haplotypes that samples share: 1, or 0 when the matrix did not fit.
  int eliminate_redond_haplodef();
  // False (with its WARNING) when the structure can't carry an AMOVA.
  bool IsAmovaStructure();
  // The data go, the result stream is let go of, scratch files are removed.
  void clear_project();
  // The samples of the project (or of the group pass), in order.
  std::vector<PopGenetics*> sample_list() const;

  // Counts the runs of the whole batch; only ever incremented.
  int run_number = 0;
  // The allele vectors of the definitions, and the pseudo-haplotypes of
  // genotypic data, are built once per pass.
  int vectors_built = 0;
  int pseudo_haplotypes_built = 0;
  // The group pass is running: its samples are the pooled groups.
  bool is_group_level = false;
  // Process clock at the start of the run, and the run's length, in ms.
  long long start_tick = 0;
  long long elapsed_ms = 0;

 private:
  // Steps of the run (project_run.cpp).
  bool read_project();
  void report_project();
  int end_run_early(cleaner& clean);
  void prepare_samples();
  void write_project_information();
  void copy_profile_into_settings();
  void write_end_of_run(const std::string& end_date);
  // The passes (passes.cpp).
  void run_passes();
  void estimate_work();
  void group_pass();
  void sample_pass();
  void pass_head(const Samples* own_samples, const Structure* own_structure);
  void build_group_samples(const Samples& own_samples, const Structure& own_structure);
  void write_group_definitions(const Samples& own_samples, const Structure& own_structure);
  // The structure step (gen_struct.cpp).
  void prepare_structure_data(std::ostream* result);
  void open_structure_section(std::ostream* result);
  void structure_distance_matrix();
  void print_structure_matrix();
  void structure_statistics();
  void number_samples_in_structure_order();
  // The checks before the passes (make_run_possible.cpp).
  void build_sample_vectors();
  void build_vectors();
  void build_pseudo_haplotypes();
  bool prepare_genotypes();
  bool recessive_known_phase() const;
  bool check_structure_tasks();
  void check_dememorisation_steps();
  void mend_remaining_tasks();
  // The matrix of the definitions (calc_dist_matrix.cpp).
  std::unique_ptr<PopGenetics> make_definitions_sample();
  void take_distance_matrix(const PopGenetics& sample);
  bool associate_definitions(bool matrix_read);
  void write_shared_haplotypes();
};
