#include "input/distance_matrix_reader.h"

#include <string>
#include <vector>

#include "input/reader_support.h"
#include "model/report.h"
#include "output/number_format.h"

namespace {

using Tokens = std::vector<std::string_view>;

constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;

// How the two sections' matrices differ in their reading.
struct MatrixStyle {
  const char* routine;
  bool mantel;  // the message of a missing closing brace
};

class MatrixReader {
 public:
  MatrixReader(const MatrixStyle& style, const my_string& name, std::istream& is, int size,
               int external, int& line_number)
      : style_(style),
        name_(name),
        is_(is),
        size_(size < 0 ? 0 : size),
        external_(external != 0),
        n_(line_number) {}

  int read(DistMat& matrix, bool labels_in_column) {
    if (!labels_in_column && !read_label_line()) return 0;
    if (!read_rows(labels_in_column)) return 0;
    if (!external_ && !closed_ && !find_closing_brace()) return 0;
    if (static_cast<int>(rows_.size()) < size_) {
      log_stream() << "\tInvalid dimension for distance matrix: " << fmt::integer(size_)
                   << " rows were expected, but only "
                   << fmt::integer(static_cast<long long>(rows_.size()))
                   << " were found. Aborting reading project.\n";
      return fail(13);
    }
    fill(matrix);
    return 1;
  }

 private:
  int fail(int code) const {
    report_error(ERROR, style_.routine, code);
    return 0;
  }

  // A first line with all the labels.
  int read_label_line() {
    my_string line;
    reader_support::next_line(is_, line, n_);
    if (line.contains('}')) {
      log_stream() << "\tUnexpected closing brace found on line " << fmt::integer(n_)
                   << ". Aborting reading distance matrix.\n";
      return fail(12);
    }
    const std::string text = line.str();
    const Tokens tokens = reader_support::split_blanks(text);
    if (static_cast<int>(tokens.size()) < size_) {
      log_stream() << "\tMissing labels on line " << fmt::integer(n_) << ". Only "
                   << fmt::integer(static_cast<long long>(tokens.size()))
                   << " labels were found while " << fmt::integer(size_)
                   << " were expected. Last correctly read label was \""
                   << (tokens.empty() ? std::string_view() : tokens.back())
                   << "\". Aborting reading Distance Matrix\n";
      return fail(12);
    }
    for (int i = 0; i < size_; ++i) labels_.emplace_back(tokens[static_cast<std::size_t>(i)]);
    if (static_cast<int>(tokens.size()) > size_) {
      log_stream() << "\tWarning: More labels than anticipated (" << fmt::integer(size_)
                   << ") are declared on line " << fmt::integer(n_) << '\n';
      report_error(WARNING, style_.routine, 15);
    }
    return 1;
  }

  // Row i holds i + 1 distances; a '}' ends the rows.
  int read_rows(bool labels_in_column) {
    my_string line;
    while (static_cast<int>(rows_.size()) < size_ && !closed_ &&
           reader_support::next_line(is_, line, n_)) {
      const int brace = line.find('}');
      if (brace >= 0) {
        closed_ = true;
        line.erase(brace, line.length() - brace);
        if (reader_support::is_blank(line.str())) break;
      }
      if (!read_row(line, labels_in_column)) return 0;
    }
    return 1;
  }

  int read_row(const my_string& line, bool labels_in_column) {
    const int i = static_cast<int>(rows_.size());
    const std::string text = line.str();
    const Tokens tokens = reader_support::split_blanks(text);
    std::size_t next = 0;
    if (labels_in_column) {
      if (tokens.empty()) {
        log_stream() << "\tUnable to read label #" << fmt::integer(i) << " on line "
                     << fmt::integer(n_) << ". Aborting reading Distance Matrix\n";
        return fail(12);
      }
      labels_.emplace_back(tokens[next++]);
    }
    std::vector<double> row(static_cast<std::size_t>(i) + 1, 0.0);
    for (int j = 0; j <= i; ++j, ++next) {
      if (next >= tokens.size()) {
        log_stream() << "\tUnable to read distance #" << fmt::integer(j) << " on line "
                     << fmt::integer(n_) << ". Aborting reading distance matrix.\n";
        return fail(13);
      }
      if (!reader_support::parse_number(tokens[next], row[static_cast<std::size_t>(j)])) {
        log_stream() << "\tBad value (\"" << tokens[next] << "\") for distance #" << fmt::integer(j)
                     << " on line " << fmt::integer(n_) << ". Aborting reading distance matrix.\n";
        return fail(13);
      }
    }
    if (next < tokens.size()) {
      // The line number and the count stand side by side in this message.
      log_stream() << "\tWarning:  Too many distances are defined on line " << fmt::integer(n_)
                   << fmt::integer(
                          static_cast<long long>(tokens.size() - (labels_in_column ? 1 : 0)))
                   << " instead of " << fmt::integer(i + 1) << '\n';
      report_error(WARNING, style_.routine, 15);
    }
    rows_.push_back(std::move(row));
    return 1;
  }

  // In the project file, the lines up to the closing brace.
  int find_closing_brace() {
    my_string line;
    while (reader_support::next_line(is_, line, n_)) {
      const my_string upper = reader_support::upper(line);
      if (upper.contains("[SAMPLES]") || upper.contains("[STRUCTURE]") ||
          upper.contains("[MANTEL]"))
        break;
      if (line.contains('}')) {
        closed_ = true;
        return 1;
      }
    }
    if (style_.mantel) {
      log_stream() << "\tNo closing brace in distance matrix definition up to line "
                   << fmt::integer(n_) << ". Aborting reading project.\n";
    } else {
      log_stream() << "\tNo closing brace in Matrix Data \"" << name_
                   << "\"definition. Aborting reading project.\n";
    }
    return fail(21);
  }

  void fill(DistMat& matrix) const {
    matrix.set_size(size_);
    for (int i = 0; i < size_; ++i) {
      matrix.row(i) = rows_[static_cast<std::size_t>(i)];
      if (static_cast<std::size_t>(i) < labels_.size())
        matrix.label(i) = labels_[static_cast<std::size_t>(i)];
    }
  }

  const MatrixStyle& style_;
  const my_string& name_;
  std::istream& is_;
  int size_;
  bool external_;
  int& n_;
  bool closed_ = false;
  std::vector<my_string> labels_;
  std::vector<std::vector<double>> rows_;
};

constexpr MatrixStyle distance_matrix_style{"DistMat::ReadDistanceMatrix()", false};
constexpr MatrixStyle mantel_style{"Mantel::newReadmatrixData()", true};

}  // namespace

int ReadDistanceMatrix(DistMat& matrix, std::istream& is, int labels_in_column, int external,
                       int& line_number) {
  const my_string name = matrix.name();
  MatrixReader reader(distance_matrix_style, name, is, matrix.matrix_size(), external, line_number);
  return reader.read(matrix, labels_in_column != 0);
}

int read_mantel_matrix_data(DistMat& matrix, int size, std::istream& is, int external,
                            int& line_number) {
  const my_string name = matrix.name();
  MatrixReader reader(mantel_style, name, is, size, external, line_number);
  return reader.read(matrix, true);
}
