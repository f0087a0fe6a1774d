// Internal to the distance modules: what the matrix of every data type shares.
#pragma once

#include <cmath>
#include <memory>
#include <new>
#include <ostream>

#include "model/matrices.h"
#include "model/population.h"
#include "model/report.h"

// A new zeroed matrix of n by n for the sample (n = its number of haplotypes,
// which Nb_haplo takes); max_diff back to 0.
RectMat& fresh_distance_matrix(PopGenetics& sample);

// Stores the distance of pair (i, j), j < i, and its standard deviation above
// the diagonal, both times `scale`; raises max_diff to the distance.
inline void store_distance(PopGenetics& sample, int i, int j, double distance, double variance,
                           double scale) {
  RectMat& m = *sample.dist_mat;
  const double scaled = distance * scale;
  m.row(i)[static_cast<std::size_t>(j)] = scaled;
  m.row(j)[static_cast<std::size_t>(i)] = variance < 0.0 ? 0.0 : std::sqrt(variance) * scale;
  if (scaled > sample.max_diff) sample.max_diff = static_cast<int>(scaled);
}

// Calls pair(i, j) for j < i, row after row, while it returns true; after
// each row a set stop request ends the walk. 1 when all pairs were done.
template <class Pair>
int fill_distance_rows(int n, const int* stop, Pair&& pair) {
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) {
      if (!pair(i, j)) return 0;
    }
    if (stop != nullptr && *stop != 0) return 0;
  }
  return 1;
}

// The end of a matrix (done: the result of fill_distance_rows). A finished
// matrix is printed to `out` when it is not null; an unfinished one loses its
// cells, so that no reader takes part of a matrix for a result. Returns done.
int finish_distance_matrix(PopGenetics& sample, int done, std::ostream* out);

// Runs body(), which returns the result of the matrix. Memory exhaustion on
// the way drops the matrix and is reported again (MEMORY, code 0) under
// `routine`, so that the log shows the chain outward.
template <class Body>
int guard_distance_memory(PopGenetics& sample, const char* routine, Body&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
  } catch (ExceptionType) {
  }
  sample.dist_mat.reset();
  report_error(report_kind::MEMORY, routine, 0);
  return 0;
}

// The lower triangle of the sample's matrix under "\nInter-haplotypic distance
// matrix:\n", between the log lines "\t\t\tWriting matrix to file ...\n" and
// "\t\t\tdone ! (" + ms + " ms)\n".
void print_distance_triangle(std::ostream& out, const RectMat& matrix);

// Milliseconds of the process clock.
long long distance_clock_ms();

// Whether the first definition of the sample is empty (FREQUENCY data): the
// matrix then stays at zero.
bool first_definition_empty(const PopGenetics& sample);
