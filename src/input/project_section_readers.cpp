#include "input/project_file_reader.h"
#include "model/report.h"

// The data objects of a project arrive with their own readers; until a
// subclass supplies them, a section fails in words instead of being skipped.
namespace {

int section_not_available(const char* section) {
  log_stream() << "\tReading the " << section << " section is not available in this build\n";
  return 0;
}

}  // namespace

void ProjectSectionReaders::begin_haplotype_list(const ProfileSettings&) {}

void ProjectSectionReaders::set_haplotype_list_name(const my_string&) {}

int ProjectSectionReaders::read_haplotype_list(std::istream&, const ProfileSettings&, int, int&) {
  return section_not_available("[[HaplotypeDefinition]]");
}

void ProjectSectionReaders::begin_distance_matrix(const ProfileSettings&) {}

void ProjectSectionReaders::set_distance_matrix_name(const my_string& name) {
  matrix_name_ = name;
}

const my_string& ProjectSectionReaders::distance_matrix_name() const {
  return matrix_name_;
}

int ProjectSectionReaders::allocate_distance_matrix(int) {
  return 1;
}

void ProjectSectionReaders::set_labels_in_column(int) {}

int ProjectSectionReaders::read_distance_matrix(std::istream&, int, int&) {
  return section_not_available("[[DistanceMatrix]]");
}

int ProjectSectionReaders::read_samples(std::istream&, ProfileSettings&, int&, my_string&,
                                        ProjectFileFlags&) {
  return section_not_available("[[Samples]]");
}

int ProjectSectionReaders::sample_count() const {
  return 0;
}

int ProjectSectionReaders::read_structure(std::istream&, ProfileSettings&, int&, my_string&,
                                          ProjectFileFlags&) {
  return section_not_available("[[Structure]]");
}

int ProjectSectionReaders::read_mantel(std::istream&, ProfileSettings&, int&, my_string&,
                                       ProjectFileFlags&) {
  return section_not_available("[[Mantel]]");
}
