#include "input/mantel.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

#include "input/distance_matrix_reader.h"
#include "input/line_reader.h"
#include "input/reader_support.h"
#include "input/stream_reader.h"
#include "model/report.h"
#include "model/settings.h"
#include "output/number_format.h"

namespace {

constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* routine = "Mantel::NewReadMantel()";

class MantelReader {
 public:
  MantelReader(Mantel& mantel, ProfileSettings& profile, std::istream& is, int& line_number,
               my_string& line, ProjectFileFlags& flags, const my_string& directory)
      : m_(mantel),
        profile_(profile),
        is_(is),
        n_(line_number),
        line_(line),
        flags_(flags),
        directory_(directory) {}

  int read() {
    while (reader_support::next_line(is_, line_, n_)) {
      upper_ = reader_support::upper(line_);
      if (!treat_line()) return 0;
    }
    return end_check();
  }

 private:
  int fail(int code) const {
    report_error(ERROR, routine, code);
    return 0;
  }

  int treat_line() {
    if (upper_.contains("YMATRIX") && !upper_.contains("YMATRIXLABELS")) return y_matrix();
    if (upper_.contains("MATRIXSIZE")) return matrix_size();
    if (upper_.contains("MATRIXNUMBER")) return matrix_number();
    if (upper_.contains("YMATRIXLABELS") && !upper_.contains("USEDYMATRIXLABELS"))
      return y_matrix_labels();
    if (upper_.contains("DISTMATMANTEL")) return dist_mat_mantel();
    if (upper_.contains("USEDYMATRIXLABELS")) return used_y_matrix_labels();
    return 1;
  }

  int missing_equal_sign(const char* keyword) const {
    if (line_.contains('=')) return 0;
    log_stream() << "\tMissing '=' sign after keyword \"" << keyword << "\" on line "
                 << fmt::integer(n_) << ". Aborting reading project.\n";
    return 1;
  }

  int y_matrix() {
    flags_.y_matrix = 1;
    if (missing_equal_sign("YMatrix")) return fail(197);
    my_string value;
    if (!readStringContent(line_, value, "YMatrix", n_)) {
      log_stream() << "\tProject file, Line #" << fmt::integer(n_) << " : Invalid value ('"
                   << after(line_, '=') << "\") assigned to keyword \"YMatrix\"\n";
      return fail(197);
    }
    my_string type = value;
    type.to_lower();
    if (std::find(Mantel::y_types.begin(), Mantel::y_types.end(), type.str()) ==
        Mantel::y_types.end()) {
      log_stream() << "\tInvalid YMatrix type (\"" << value << "\")defined on line "
                   << fmt::integer(n_) << ". Aborting reading project.\n";
      return fail(59);
    }
    m_.y_type = type;
    if (m_.is_custom()) {
      m_.matrix_count = 0;
    } else {
      m_.matrix_count = 1;
      if (profile_.calculation_settings != nullptr)
        profile_.calculation_settings->ComputeDistanceMatrixAMOVA = 1;
    }
    return 1;
  }

  int matrix_size() {
    flags_.mantel_matrix_size = 1;
    if (missing_equal_sign("MatrixSize")) return fail(197);
    double value = 0.0;
    if (!readStringContent(line_, value, "MatrixSize", n_)) {
      log_stream() << "Bad value (\"" << after(line_, '=') << "\") assigned to MatrixSize on line "
                   << fmt::integer(n_) << ". Aborting reading project.\n";
      return fail(14);
    }
    const int size = truncate_to_int(value);
    if (size < 3) {
      log_stream() << "\tInvalid value assigned to MatrixSize on line " << fmt::integer(n_)
                   << ". Value of MatrixSize needs to be at least 3. Aborting reading project.\n";
      return fail(15);
    }
    m_.MatrixSize = size;
    return 1;
  }

  int matrix_number() {
    flags_.matrix_number = 1;
    if (missing_equal_sign("MatrixNumber")) return fail(197);
    double value = 0.0;
    if (!readStringContent(line_, value, "MatrixNumber", n_)) {
      log_stream() << "Bad value (\"" << after(line_, '=')
                   << "\") assigned to MatrixNumber on line " << fmt::integer(n_)
                   << ". Aborting reading project.\n";
      return fail(198);
    }
    const int number = truncate_to_int(value);
    if (number != 2 && number != 3) {
      log_stream() << "Invalid value (" << fmt::general(value)
                   << ") assigned to MatrixNumber on line " << fmt::integer(n_)
                   << ". Value needs to be either 2 or 3. Aborting reading project.\n";
      return fail(199);
    }
    m_.MatrixNumber = number;
    return 1;
  }

  int size_known(const char* keyword) const {
    if (m_.MatrixSize != 0) return 1;
    log_stream() << "\tKeyword " << keyword << " found on line " << fmt::integer(n_)
                 << " before MatrixSize has been defined. Abort reading matrix.\n";
    return fail(197);
  }

  int y_matrix_labels() {
    flags_.y_matrix_labels = 1;
    if (!size_known("YMatrixLabels")) return 0;
    m_.labels.clear();
    if (!read_labels(m_.labels, "YMatrixLabels", false)) return 0;
    if (static_cast<int>(m_.labels.size()) < m_.MatrixSize) {
      log_stream() << "\tInsufficient number of labels defined in YMatrixLabels section ("
                   << fmt::integer(static_cast<long long>(m_.labels.size())) << " instead of "
                   << fmt::integer(m_.MatrixSize) << "). Aborting reading project\n";
      return fail(12);
    }
    return 1;
  }

  int used_y_matrix_labels() {
    flags_.used_y_matrix_labels = 1;
    used_read_ = true;
    m_.used_labels.clear();
    if (!size_known("UsedYMatrixLabels")) return 0;
    if (!read_labels(m_.used_labels, "UsedYMatrixLabels", true)) return 0;
    if (m_.used_labels.size() < 3) {
      log_stream() << "\tToo few labels ("
                   << fmt::integer(static_cast<long long>(m_.used_labels.size()))
                   << ") defined in UsedYMatrixLabels section. At least 2 labels need to be "
                      "defined. Aborting reading project.\n";
      return fail(30);
    }
    return 1;
  }

  // The quoted labels behind '{' and on the lines that follow, up to '}'.
  int read_labels(std::vector<my_string>& list, const char* name, bool used) {
    if (!line_.contains('{')) {
      log_stream() << "\tMissing opening brace in " << name
                   << " definition. Aborting reading project\n";
      return fail(12);
    }
    my_string text = after(line_, '{');
    for (bool first_line = true;; first_line = false) {
      const int brace = text.find('}');
      if (brace >= 0) text.erase(brace, text.length() - brace);
      if (!take_labels(text, list, name, used, first_line)) return 0;
      if (brace >= 0 || !reader_support::next_line(is_, line_, n_)) return 1;
      const my_string upper = reader_support::upper(line_);
      if (upper.contains("DISTMATMANTEL") || upper.contains("USEDYMATRIXLABELS")) {
        log_stream() << "\tMissing closing brace in " << name
                     << " definition. Aborting reading project.\n";
        return fail(12);
      }
      text = line_;
    }
  }

  int take_labels(const my_string& text, std::vector<my_string>& list, const char* name, bool used,
                  bool first_line) {
    std::istringstream labels(text.str());
    my_string label;
    for (std::streampos last = -1; labels.tellg() != last;) {
      last = labels.tellg();
      if (!get_qstring(labels, label)) break;
      if (static_cast<int>(list.size()) == m_.MatrixSize) return too_many(name, first_line);
      if (used && std::find(m_.labels.begin(), m_.labels.end(), label) == m_.labels.end()) {
        log_stream() << "\tLabel \"" << label << "\" defined on line " << line_
                     << " has not been defined previously in YMatrixLabels section. Aborting "
                        "reading project.\n";
        return fail(201);
      }
      list.push_back(label);
    }
    return 1;
  }

  int too_many(const char* name, bool first_line) const {
    if (first_line) {
      log_stream() << "\tToo many labels found on line " << fmt::integer(n_) << ". Check " << name
                   << " definition. Abort reading project.\n";
    } else {
      log_stream() << "\tToo many " << name << " are defined. Only " << fmt::integer(m_.MatrixSize)
                   << " labels were expected. Check for additional labels potentially present "
                      "on line "
                   << fmt::integer(n_) << " . Aborting reading project.\n";
    }
    return fail(12);
  }

  int dist_mat_mantel() {
    flags_.dist_mat_mantel = 1;
    ++m_.matrix_count;
    const int external = upper_.contains("EXTERN") ? 1 : 0;
    std::ifstream file;
    if (external) {
      my_string path;
      if (!reader_support::open_extern(file, line_, "Extern Distance Matrix ", n_, directory_,
                                       path)) {
        log_stream() << "\tWarning: External file \"" << path << "\" listed on line "
                     << fmt::integer(n_)
                     << " cannot be open. Check that it exists. Aborting reading project\n";
        return fail(200);
      }
      log_stream() << "\tReading Distance Matrix in external file \"" << path << "\"\n";
      report_error(WARNING, routine, 17);
    }
    log_stream() << "\t\tReading Mantel distance matrix ...\n";
    const long long start = reader_support::clock_ms();
    DistMat beyond;  // a matrix beyond the third is read but not kept
    DistMat& target = m_.matrix_count == 1   ? m_.Y
                      : m_.matrix_count == 2 ? m_.X1
                      : m_.matrix_count == 3 ? m_.X2
                                             : beyond;
    int extern_lines = 0;
    std::istream& source = external ? static_cast<std::istream&>(file) : is_;
    int& lines = external ? extern_lines : n_;
    if (!m_.newReadmatrixData(source, target, external, lines)) {
      log_stream() << "\t\tProblems in reading DisMatMantel section... aborting reading  project "
                      "file.\n";
      return 0;
    }
    log_stream() << "\t\tdone ! (" << fmt::integer(reader_support::clock_ms() - start) << " ms)\n";
    return 1;
  }

  int end_check() {
    if (!used_read_ && !m_.labels.empty()) {
      log_stream() << "\tWarning: Section UsedYMatrixLabels not found. We shall assume that all "
                      "labels previously defined in section YMatrixLabels are valid\n";
      m_.used_labels = m_.labels;
    }
    if (m_.matrix_count != m_.MatrixNumber) {
      log_stream() << "\tUnexpected number of matrices defined (" << fmt::integer(m_.matrix_count)
                   << " instead of " << fmt::integer(m_.MatrixNumber)
                   << "). Aborting reading project.\n";
      return fail(186);
    }
    m_.copy_profile(profile_);
    return 1;
  }

  Mantel& m_;
  ProfileSettings& profile_;
  std::istream& is_;
  int& n_;
  my_string& line_;
  ProjectFileFlags& flags_;
  const my_string& directory_;
  my_string upper_;
  bool used_read_ = false;
};

}  // namespace

void Mantel::clear() {
  MatrixSize = 0;
  MatrixNumber = 0;
  y_type = "fst";
  labels.clear();
  used_labels.clear();
  Y.clear();
  X1.clear();
  X2.clear();
  matrix_count = 1;
}

int Mantel::NewReadMantel(std::istream& is, ProfileSettings& profile, int& line_number,
                          my_string& line, ProjectFileFlags& flags,
                          const my_string& project_directory) {
  clear();
  return MantelReader(*this, profile, is, line_number, line, flags, project_directory).read();
}

int Mantel::newReadmatrixData(std::istream& is, DistMat& matrix, int external, int& line_number) {
  return read_mantel_matrix_data(matrix, MatrixSize, is, external, line_number);
}
