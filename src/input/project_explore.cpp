#include "input/project_explore.h"

#include <limits>

#include "input/keywords.h"
#include "input/profile_reader.h"
#include "input/samples.h"
#include "input/stream_reader.h"
#include "input/structure.h"
#include "model/report.h"

namespace {

constexpr unsigned char ERROR = report_kind::ERROR;
constexpr std::streamsize whole_line = std::numeric_limits<std::streamsize>::max();

// What an exploration takes from [[DistanceMatrix]]: its keywords up to MatrixData.
struct DistanceMatrixSettings {
  my_string name = "none";
  int size = 0;
  my_string label_position;
};

void read_distance_matrix_settings(std::istream& is, DistanceMatrixSettings& matrix) {
  my_string keyword;
  while (next_keyword(is, keyword)) {
    if (keyword == "matrixdata") return;
    if (keyword == "matrixname") {
      get_qstring(is, matrix.name);
    } else if (keyword == "matrixsize") {
      if (!(is >> matrix.size)) is.clear(is.rdstate() & ~std::ios::failbit);
    } else if (keyword == "labelposition") {
      read_word(is, matrix.label_position);
    }
    is.ignore(whole_line, '\n');
  }
}

int explore_subsection(std::istream& is, int number, ProfileSettings& profile,
                       const ExploreFiles& files) {
  std::ostream& log = log_stream();
  switch (number) {
    case subsection::DISTANCE_MATRIX: {
      log << "\tReading distance matrix ...\n";
      DistanceMatrixSettings matrix;
      read_distance_matrix_settings(is, matrix);
      log << "\tdone ! \n";
      return 1;
    }
    case subsection::SAMPLES: {
      log << "\tExploring Samples...\n";
      Samples samples;
      if (!samples.explore(is, profile, files.samples)) return 0;
      log << "\tdone ! \n";
      return 1;
    }
    case subsection::STRUCTURE: {
      log << "\tExploring genetic structure...\n";
      Structure structure;
      if (!structure.explore(is, profile, files.groups)) return 0;
      log << "\tdone ! \n";
      return 1;
    }
    default:
      return 1;
  }
}

// Walks the subsections, at most `most` of them, handing each to `treat`.
template <typename Treat>
int walk_subsections(std::istream& is, int most, const char* where, Treat treat) {
  int rounds = 0;
  my_string name;
  for (;;) {
    const int number = get_next_subsection(is, name);
    if (number == 0) break;
    if (++rounds > most) {
      report_error(ERROR, where, 131);
      return 0;
    }
    if (!treat(number)) return 0;
  }
  if (!is.eof()) return 0;  // an unreadable subsection name, reported where it was met
  if (rounds == 0) {
    report_error(ERROR, where, 128);
    return 0;
  }
  return 1;
}

}  // namespace

int explore_project_stream(std::istream& is, ProfileSettings& profile, const ExploreFiles& files) {
  constexpr const char* here = "Project::explore()";
  log_stream() << "Reading general settings in input file ...\n";
  if (!get_profile_settings(is, profile)) {
    report_error(ERROR, here, 127);
    return 0;
  }
  log_stream() << "done ! \n";
  if (!position_after(is, "data", "", "")) return 0;
  return walk_subsections(
      is, 5, here, [&](int number) { return explore_subsection(is, number, profile, files); });
}
