#include "input/project_data_readers.h"

#include "input/distance_matrix_reader.h"
#include "input/haplotype_list_reader.h"

Samples& ProjectDataReaders::samples() {
  if (!data_.samples) data_.samples = std::make_unique<Samples>();
  return *data_.samples;
}

Structure& ProjectDataReaders::structure() {
  if (!data_.structure) data_.structure = std::make_unique<Structure>();
  return *data_.structure;
}

// A list that samples already use keeps its definitions: they must outlive the samples.
void ProjectDataReaders::begin_haplotype_list(const ProfileSettings& profile) {
  data_.haplo_db = profile;
  if (!data_.haplo_db.empty() && samples().empty()) data_.haplo_db.clear();
}

void ProjectDataReaders::set_haplotype_list_name(const my_string& name) {
  data_.haplo_db.HaplListName = name;
}

int ProjectDataReaders::read_haplotype_list(std::istream& is, const ProfileSettings& profile,
                                            int external, int& line_number) {
  return NewReadHaplotypeList(data_.haplo_db, is, profile, external, line_number);
}

void ProjectDataReaders::begin_distance_matrix(const ProfileSettings&) {
  data_.dist_mat.clear();
  labels_in_column_ = 0;
}

void ProjectDataReaders::set_distance_matrix_name(const my_string& name) {
  data_.dist_mat.name() = name;
}

const my_string& ProjectDataReaders::distance_matrix_name() const {
  return data_.dist_mat.name();
}

int ProjectDataReaders::allocate_distance_matrix(int size) {
  data_.dist_mat.set_matrix_size(size);
  return 1;
}

void ProjectDataReaders::set_labels_in_column(int in_column) {
  labels_in_column_ = in_column;
}

int ProjectDataReaders::read_distance_matrix(std::istream& is, int external, int& line_number) {
  return ReadDistanceMatrix(data_.dist_mat, is, labels_in_column_, external, line_number);
}

int ProjectDataReaders::read_samples(std::istream& is, ProfileSettings& profile, int& line_number,
                                     my_string& line, ProjectFileFlags& flags) {
  Samples& list = samples();
  list.set_project_directory(data_.project_directory);
  // The definitions that the samples make take the project's profile too,
  // also when the project has no haplotype list.
  data_.haplo_db = profile;
  return list.NewRead(is, profile, data_.haplo_db, line_number, line, flags.sample_name,
                      flags.sample_size, flags.sample_data);
}

int ProjectDataReaders::sample_count() const {
  return data_.samples ? data_.samples->size() : 0;
}

int ProjectDataReaders::read_structure(std::istream& is, ProfileSettings& profile, int& line_number,
                                       my_string& line, ProjectFileFlags& flags) {
  return structure().NewReadStructure(is, profile, data_.samples.get(), line_number, line,
                                      flags.structure_name, flags.nb_groups, flags.structure_label,
                                      flags.group);
}

int ProjectDataReaders::read_mantel(std::istream& is, ProfileSettings& profile, int& line_number,
                                    my_string& line, ProjectFileFlags& flags) {
  return data_.mantel.NewReadMantel(is, profile, line_number, line, flags, data_.project_directory);
}
