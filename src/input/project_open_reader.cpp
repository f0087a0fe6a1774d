#include "input/project_open_reader.h"

#include <fstream>
#include <string>

#include "input/keywords.h"
#include "input/line_reader.h"
#include "input/reader_support.h"
#include "input/stream_reader.h"
#include "model/report.h"
#include "output/number_format.h"

namespace {

constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* here = "Project::open()";

// The number of lines that stand before the stream's position, so that the
// section readers report the lines of the file.
int lines_before(std::istream& is) {
  const std::streampos position = is.tellg();
  if (position < 0) return 0;
  is.seekg(0);
  int lines = 0;
  for (std::streamoff i = 0; i < position; ++i) {
    if (is.get() == '\n') ++lines;
  }
  is.clear();
  is.seekg(position);
  return lines;
}

class OpenWalk {
 public:
  OpenWalk(std::istream& is, ProfileSettings& profile, ProjectSectionReaders& sections,
           const my_string& directory)
      : is_(is), profile_(profile), sections_(sections), directory_(directory) {}

  int walk() {
    if (!position_after(is_, "data", "", "")) return 0;
    my_string name;
    for (;;) {
      int number = get_next_subsection(is_, name);
      if (number == 0) break;
      n_ = lines_before(is_);
      while (number != 0) {
        if (++rounds_ > 4) {
          report_error(ERROR, here, 131);
          return 0;
        }
        number = read_section(number);
        if (number < 0) return 0;
      }
    }
    if (!is_.eof()) return 0;  // an unreadable subsection name, reported where it was met
    if (rounds_ == 0) {
      report_error(ERROR, here, 128);
      return 0;
    }
    return 1;
  }

 private:
  // -1 after a fault; else the number of the section whose line a reader
  // handed back (0 for none).
  int read_section(int number) {
    switch (number) {
      case subsection::HAPLOTYPE_DEFINITION:
        return haplotype_definition() ? 0 : -1;
      case subsection::DISTANCE_MATRIX:
        return distance_matrix() ? 0 : -1;
      case subsection::SAMPLES:
        if (!sections_.read_samples(is_, profile_, n_, line_, flags_)) return -1;
        return handed_back();
      case subsection::STRUCTURE:
        if (!samples_read()) return -1;
        if (!sections_.read_structure(is_, profile_, n_, line_, flags_)) return -1;
        return handed_back();
      default:
        if (!samples_read()) return -1;
        return sections_.read_mantel(is_, profile_, n_, line_, flags_) ? 0 : -1;
    }
  }

  int handed_back() const {
    const my_string upper = reader_support::upper(line_);
    if (upper.contains("[STRUCTURE]")) return subsection::STRUCTURE;
    if (upper.contains("[MANTEL]")) return subsection::MANTEL;
    return 0;
  }

  bool samples_read() const {
    if (sections_.sample_count() > 0) return true;
    report_error(ERROR, here, 172);
    return false;
  }

  // The next keyword line of a small section; false at the next section or the end.
  bool next_keyword_line() {
    for (int c = is_.peek(); c == ' ' || c == '\t' || c == '\r' || c == '\n'; c = is_.peek()) {
      if (is_.get() == '\n') ++n_;
    }
    if (is_.peek() == '[' || !reader_support::next_line(is_, line_, n_)) return false;
    upper_ = reader_support::upper(line_);
    return true;
  }

  // The data of the section, in the project file or in its EXTERN file.
  template <typename Read>
  bool read_data(const char* keyword, Read read) {
    if (!upper_.contains("EXTERN")) return read(is_, 0, n_);
    std::ifstream file;
    my_string path;
    if (!reader_support::open_extern(file, line_, keyword, n_, directory_, path)) {
      log_stream() << "\tWarning: External file \"" << path << "\" listed on line "
                   << fmt::integer(n_)
                   << " cannot be open. Check that it exists. Aborting reading project\n";
      report_error(ERROR, here, 200);
      return false;
    }
    int lines = 0;
    return read(file, 1, lines);
  }

  bool haplotype_definition() {
    sections_.begin_haplotype_list(profile_);
    while (next_keyword_line()) {
      if (upper_.contains("HAPLLISTNAME")) {
        my_string name;
        readStringContent(line_, name, "HaplListName", n_);
        sections_.set_haplotype_list_name(name);
      } else if (upper_.contains("HAPLLIST") && !upper_.contains("USEDHAPLLIST")) {
        const bool ok = read_data("HaplList", [&](std::istream& is, int external, int& lines) {
          return sections_.read_haplotype_list(is, profile_, external, lines) != 0;
        });
        if (!ok) return false;
      }
    }
    return true;
  }

  bool distance_matrix() {
    sections_.begin_distance_matrix(profile_);
    while (next_keyword_line()) {
      if (upper_.contains("MATRIXNAME")) {
        my_string name = "undefined";
        readStringContent(line_, name, "MatrixName", n_);
        sections_.set_distance_matrix_name(name);
      } else if (upper_.contains("MATRIXSIZE")) {
        double size = 0.0;
        if (!readStringContent(line_, size, "MatrixSize", n_) || size <= 0.0 ||
            !sections_.allocate_distance_matrix(truncate_to_int(size))) {
          report_error(ERROR, here, 15);
          return false;
        }
      } else if (upper_.contains("LABELPOSITION")) {
        if (!upper_.contains("LINE") && !upper_.contains("COLUMN")) {
          report_error(ERROR, here, 16);
          return false;
        }
        sections_.set_labels_in_column(upper_.contains("LINE") ? 0 : 1);
      } else if (upper_.contains("MATRIXDATA")) {
        const bool ok =
            read_data("Extern Distance Matrix ", [&](std::istream& is, int external, int& lines) {
              return sections_.read_distance_matrix(is, external, lines) != 0;
            });
        if (!ok) return false;
      }
    }
    return true;
  }

  std::istream& is_;
  ProfileSettings& profile_;
  ProjectSectionReaders& sections_;
  const my_string& directory_;
  ProjectFileFlags flags_;
  int rounds_ = 0;
  int n_ = 0;
  my_string line_;
  my_string upper_;
};

}  // namespace

int open_project_data(std::istream& is, ProfileSettings& profile, ProjectSectionReaders& sections,
                      const my_string& directory) {
  return OpenWalk(is, profile, sections, directory).walk();
}
