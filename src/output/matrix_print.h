// Printing of the data model's matrices: the triangle and rectangle dumps and
// the distance-matrix section of a project, as the result document shows them.
#pragma once

#include <ostream>
#include <string_view>

#include "model/matrices.h"

// Rows separated by a line end (none after the last); each value "%10.5f"
// without separators. A TriMat row i holds i + 1 values.
void print_matrix(std::ostream& os, const TriMat& m);
// The same for every row of a RectMat; "Matrix contains no data" without storage.
void print_matrix(std::ostream& os, const RectMat& m);

// Where a distance-matrix section goes: into the result document (an XML or
// HTML one) or into any other text.
struct MatrixDocument {
  bool in_use = false;            // the stream is the result document
  bool xml = false;               // that document is an XML one
  std::string_view time_stamp{};  // the run's date text, for the element's time attribute
};

// Writes the matrix as a [[DistanceMatrix]] section (nothing when its size is
// 0). The triangle stands inside the element "hapDistMatrix" of an XML result
// document; a conventional matrix writes one line in its place. A matrix with a
// size and no labels is reported (error 11) and nothing is written.
void write_dist_mat(std::ostream& os, const DistMat& dm, const MatrixDocument& doc = {});
