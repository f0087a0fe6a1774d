// The reader of distance matrix data, for [[DistanceMatrix]] and for the
// matrices of [[Mantel]]: the lines behind `MatrixData= {` (or
// `DistMatMantel= {`), or the whole of an EXTERN file (external 1), whose end
// closes the data.
//
// The data are the lower triangle with its diagonal, one row a line. The
// labels stand on a first line of their own, or (labels in column) at the
// head of each row. The matrix is sized and filled once all rows are read,
// so that a size that the data do not bear allocates nothing.
#pragma once

#include <istream>

#include "model/matrices.h"

// `matrix` takes matrix_size() rows. 1, or 0 after an ERROR (12, 13, 21).
int ReadDistanceMatrix(DistMat& matrix, std::istream& is, int labels_in_column, int external,
                       int& line_number);

// The same for a Mantel matrix of `size` rows with their labels in column,
// reported under "Mantel::newReadmatrixData()" and with the Mantel section's
// message for a missing closing brace.
int read_mantel_matrix_data(DistMat& matrix, int size, std::istream& is, int external,
                            int& line_number);
