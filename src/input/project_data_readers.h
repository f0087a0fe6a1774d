// The readers of the data sections of a project file, filling the data
// objects of a project: the haplotype list, the distance matrix, the
// samples, the structure and the Mantel data. The line-based driver
// (read_project_file) and the translator's route hand them the sections.
#pragma once

#include <istream>
#include <memory>

#include "input/mantel.h"
#include "input/project_file_reader.h"
#include "input/samples.h"
#include "input/structure.h"
#include "model/haplo_db.h"
#include "model/matrices.h"

// Where the sections go. The samples and the structure are held through the
// project's own pointers, so that a reader always fills the objects in place.
struct ProjectData {
  Haplo_DB& haplo_db;
  DistMat& dist_mat;
  std::unique_ptr<Samples>& samples;
  std::unique_ptr<Structure>& structure;
  Mantel& mantel;
  // The project's folder with its trailing '/' (or empty): where EXTERN files are.
  const my_string& project_directory;
};

class ProjectDataReaders : public ProjectSectionReaders {
 public:
  explicit ProjectDataReaders(const ProjectData& data) : data_(data) {}

  void begin_haplotype_list(const ProfileSettings& profile) override;
  void set_haplotype_list_name(const my_string& name) override;
  int read_haplotype_list(std::istream& is, const ProfileSettings& profile, int external,
                          int& line_number) override;

  void begin_distance_matrix(const ProfileSettings& profile) override;
  void set_distance_matrix_name(const my_string& name) override;
  const my_string& distance_matrix_name() const override;
  // Notes the size; the matrix is allocated when its data have been read.
  int allocate_distance_matrix(int size) override;
  void set_labels_in_column(int in_column) override;
  int read_distance_matrix(std::istream& is, int external, int& line_number) override;

  int read_samples(std::istream& is, ProfileSettings& profile, int& line_number, my_string& line,
                   ProjectFileFlags& flags) override;
  int sample_count() const override;
  int read_structure(std::istream& is, ProfileSettings& profile, int& line_number, my_string& line,
                     ProjectFileFlags& flags) override;
  int read_mantel(std::istream& is, ProfileSettings& profile, int& line_number, my_string& line,
                  ProjectFileFlags& flags) override;

  // LabelPosition: 1 when the labels stand at the head of each row.
  int labels_in_column() const { return labels_in_column_; }

 private:
  Samples& samples();
  Structure& structure();

  ProjectData data_;
  int labels_in_column_ = 0;
};
