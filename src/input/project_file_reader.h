// The line-based reader of a project file, which a run uses: it reads the
// [Profile] keywords itself, line by line with line numbers, and hands each
// data section to its reader, which consumes the lines of that section. At
// the end it judges what was seen and what is missing.
#pragma once

#include <istream>

#include "model/my_string.h"
#include "model/profile_settings.h"

// What the reader and the section readers met in the file, so that missing
// keywords can be reported once the whole file is read.
struct ProjectFileFlags {
  unsigned char profile = 0, title = 0, nb_samples = 0, data_type = 0, genotypic_data = 0;
  unsigned char locus_separator = 0, gametic_phase = 0, recessive_data = 0, recessive_allele = 0;
  unsigned char missing_data = 0, frequency = 0, comp_dist_matrix = 0, frequency_threshold = 0;
  unsigned char epsilon_value = 0, data = 0;
  // [[HaplotypeDefinition]]
  unsigned char haplotype_definition = 0, hapl_list_name = 0, hapl_list = 0;
  // [[DistanceMatrix]]
  unsigned char distance_matrix = 0, matrix_name = 0, matrix_size = 0, label_position = 0;
  unsigned char matrix_data = 0;
  // [[Samples]], set by its reader but the first
  unsigned char samples = 0, sample_name = 0, sample_size = 0, sample_data = 0;
  // [[Structure]], set by its reader but the first
  unsigned char structure = 0, structure_name = 0, nb_groups = 0, structure_label = 0, group = 0;
  // [[Mantel]], set by its reader but the first
  unsigned char mantel = 0, mantel_matrix_size = 0, matrix_number = 0, y_matrix = 0;
  unsigned char y_matrix_labels = 0, dist_mat_mantel = 0, used_y_matrix_labels = 0;
};

// The objects that the data sections are read into. Each read_* consumes the
// lines of its section from the stream, counting them in `line_number`, and
// returns 1 on success, 0 after reporting a fault. The readers of [[Samples]],
// [[Structure]] and [[Mantel]] leave in `line` the line that stopped them.
// This base has no data objects: every section reader logs that reading the
// section is not available and fails.
class ProjectSectionReaders {
 public:
  virtual ~ProjectSectionReaders() = default;

  // [[HaplotypeDefinition]]: takes the project's profile, empties the list.
  virtual void begin_haplotype_list(const ProfileSettings& profile);
  virtual void set_haplotype_list_name(const my_string& name);
  virtual int read_haplotype_list(std::istream& is, const ProfileSettings& profile, int external,
                                  int& line_number);

  // [[DistanceMatrix]]: takes the profile; name, size (allocation: 1 if it
  // worked) and label position come before the data.
  virtual void begin_distance_matrix(const ProfileSettings& profile);
  virtual void set_distance_matrix_name(const my_string& name);
  virtual const my_string& distance_matrix_name() const;
  virtual int allocate_distance_matrix(int size);
  virtual void set_labels_in_column(int in_column);
  virtual int read_distance_matrix(std::istream& is, int external, int& line_number);

  virtual int read_samples(std::istream& is, ProfileSettings& profile, int& line_number,
                           my_string& line, ProjectFileFlags& flags);
  // Number of samples read so far.
  virtual int sample_count() const;
  virtual int read_structure(std::istream& is, ProfileSettings& profile, int& line_number,
                             my_string& line, ProjectFileFlags& flags);
  virtual int read_mantel(std::istream& is, ProfileSettings& profile, int& line_number,
                          my_string& line, ProjectFileFlags& flags);

 private:
  my_string matrix_name_ = "none";
};

// Reads a whole project file from `is` into `profile` and the section
// readers. `project_directory` (with its trailing '/', or empty) is where
// EXTERN files are looked for. 1 if the project was read, 0 otherwise.
int read_project_file(std::istream& is, ProfileSettings& profile, ProjectSectionReaders& sections,
                      const my_string& project_directory);
