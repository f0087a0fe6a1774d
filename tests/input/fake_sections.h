// Section readers for tests of the project driver: each consumes the lines
// of its section the way the real readers do (counting them, handing back
// the line that stopped them) and notes which keywords it met.
#pragma once

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "input/project_file_reader.h"

namespace input_testing {

class FakeSections : public ProjectSectionReaders {
 public:
  int read_haplotype_list(std::istream& is, const ProfileSettings&, int external,
                          int& line_number) override {
    calls.push_back(external ? "haplotypes(extern)" : "haplotypes");
    return consume_to_brace(is, line_number);
  }
  int read_distance_matrix(std::istream& is, int external, int& line_number) override {
    calls.push_back(external ? "matrix(extern)" : "matrix");
    return consume_to_brace(is, line_number);
  }
  int allocate_distance_matrix(int size) override {
    matrix_size = size;
    return 1;
  }
  void set_labels_in_column(int in_column) override { labels_in_column = in_column; }

  int read_samples(std::istream& is, ProfileSettings&, int& line_number, my_string& line,
                   ProjectFileFlags& flags) override {
    calls.push_back("samples");
    return read_section(is, line_number, line,
                        [&](const my_string& upper) {
                          if (upper.contains("[STRUCTURE]") || upper.contains("[MANTEL]"))
                            return true;
                          if (upper.contains("SAMPLENAME")) {
                            flags.sample_name = 1;
                            ++samples_read;
                          }
                          if (upper.contains("SAMPLESIZE")) flags.sample_size = 1;
                          if (upper.contains("SAMPLEDATA")) flags.sample_data = 1;
                          return false;
                        }) &&
           samples_ok;
  }
  int sample_count() const override { return samples_read; }
  int read_structure(std::istream& is, ProfileSettings&, int& line_number, my_string& line,
                     ProjectFileFlags& flags) override {
    calls.push_back("structure");
    return read_section(is, line_number, line, [&](const my_string& upper) {
      if (upper.contains("[MANTEL]")) return true;
      if (upper.contains("NBGROUPS"))
        flags.nb_groups = 1;
      else if (upper.contains("GROUP"))
        flags.group = 1;
      return false;
    });
  }
  int read_mantel(std::istream& is, ProfileSettings&, int& line_number, my_string& line,
                  ProjectFileFlags& flags) override {
    calls.push_back("mantel");
    return read_section(is, line_number, line, [&](const my_string& upper) {
      if (upper.contains("MATRIXSIZE")) flags.mantel_matrix_size = 1;
      if (upper.contains("MATRIXNUMBER")) flags.matrix_number = 1;
      if (upper.contains("USEDYMATRIXLABELS"))
        flags.used_y_matrix_labels = 1;
      else if (upper.contains("YMATRIXLABELS"))
        flags.y_matrix_labels = 1;
      if (upper.contains("DISTMATMANTEL")) flags.dist_mat_mantel = 1;
      return false;
    });
  }

  std::vector<std::string> calls;
  int samples_read = 0;
  int samples_ok = 1;
  int matrix_size = 0;
  int labels_in_column = -1;

 private:
  static int consume_to_brace(std::istream& is, int& line_number) {
    my_string line;
    while (is.good()) {
      line.read_line(is);
      ++line_number;
      if (line.contains('}')) return 1;
    }
    return 1;
  }
  // Reads lines until `stops` says a line belongs to the next section.
  template <typename Stops>
  static int read_section(std::istream& is, int& line_number, my_string& line, Stops stops) {
    while (is.good()) {
      line.read_line(is);
      if (is.fail() && line.is_empty()) break;
      ++line_number;
      my_string upper = line;
      upper.to_upper();
      if (stops(upper)) return 1;
    }
    return 1;
  }
};

// Replaces the millisecond counts of "(N ms)" by "(N ms)".
inline std::string without_times(const std::string& log) {
  return std::regex_replace(log, std::regex("\\([0-9]+ ms\\)"), "(N ms)");
}

}  // namespace input_testing
