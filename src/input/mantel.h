// The data of the Mantel test: the [[Mantel]] section of a project.
//
// The section gives the size of the matrices (the number of populations),
// their number (2 or 3: Y with X1, or with X1 and X2), the kind of the Y
// matrix, the labels of the rows and the labels to use, and the matrices
// themselves. With YMatrix "custom", Y is the first matrix given and X1, X2
// follow; with any other kind Y is computed from the pairwise indices of the
// run, and the matrices given are X1 and X2.
#pragma once

#include <array>
#include <istream>
#include <string_view>
#include <vector>

#include "input/project_file_reader.h"
#include "model/matrices.h"
#include "model/my_string.h"
#include "model/profile_settings.h"

class Mantel : public ProfileSettings {
 public:
  // The kinds of Y matrix, as YMatrix names them.
  static constexpr std::array<std::string_view, 6> y_types = {
      "fst", "log_fst", "slatkinlinearfst", "log_slatkinlinearfst", "nm", "custom"};

  Mantel() = default;
  Mantel(const Mantel&) = delete;
  Mantel& operator=(const Mantel&) = delete;

  // Back to an empty section; the profile stays.
  void clear();
  bool is_custom() const { return y_type == "custom"; }

  // Reads the section from the line behind [[Mantel]] to the end of the
  // stream; the flags of its keywords are set in `flags`. With a kind of Y
  // other than "custom", ComputeDistanceMatrixAMOVA of the settings that the
  // profile points to is set. EXTERN matrix files are looked for in
  // `project_directory` unless their name is absolute. 1, or 0 after an ERROR.
  int NewReadMantel(std::istream& is, ProfileSettings& profile, int& line_number, my_string& line,
                    ProjectFileFlags& flags, const my_string& project_directory = my_string());

  // One matrix of the section, MatrixSize rows with their labels in column.
  int newReadmatrixData(std::istream& is, DistMat& matrix, int external, int& line_number);

  int MatrixSize = 0;
  int MatrixNumber = 0;
  my_string y_type = "fst";
  std::vector<my_string> labels;       // YMatrixLabels: the rows of the matrices
  std::vector<my_string> used_labels;  // UsedYMatrixLabels (all labels when not given)
  // The matrices given: Y (custom kind only), X1 and X2.
  DistMat Y;
  DistMat X1;
  DistMat X2;
  // The count of matrices: the matrices read, plus 1 unless Y is "custom".
  int matrix_count = 1;
};
