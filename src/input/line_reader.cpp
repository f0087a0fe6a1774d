#include "input/line_reader.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "model/report.h"

namespace {

void log_line_head(int line_number) {
  log_stream() << "\tProject file, Line #" << line_number;
}

}  // namespace

int checkForPresenceOfEqualSign(const my_string& line, std::string_view keyword, int line_number) {
  const int position = line.find('=');
  if (position >= 0) return position;
  report_error(report_kind::WARNING, "checkForPresenceOfEqualSign(...)", 188);
  log_line_head(line_number);
  log_stream() << " : Missing equal sign after keyword '" << keyword << "'\n";
  return 0;
}

int readStringContent(const my_string& line, my_string& value, std::string_view keyword,
                      int line_number) {
  const std::string text = after(line, '=').str();
  char mark = '"';
  std::size_t open = text.find(mark);
  if (open == std::string::npos) {
    mark = '\'';
    open = text.find(mark);
  }
  if (open == std::string::npos) {
    report_error(report_kind::WARNING, "readStringContent(...)", 190);
    log_line_head(line_number);
    log_stream() << " : No open quote after keyword '" << keyword << "'\n";
    return 0;
  }
  const std::size_t close = text.find(mark, open + 1);
  if (close == std::string::npos) {
    report_error(report_kind::WARNING, "readStringContent(...)", 190);
    log_line_head(line_number);
    log_stream() << " : Opened quote not closed after keyword '" << keyword
                 << "'. Unable to assign value to key...\n";
    return 0;
  }
  value = std::string_view(text).substr(open + 1, close - open - 1);
  return 1;
}

int readStringContent(const my_string& line, double& value, std::string_view keyword,
                      int line_number) {
  const my_string text = after(line, '=');
  const char* start = text.c_str();
  char* end = nullptr;
  const double converted = std::strtod(start, &end);
  if (std::isinf(converted) || *end != '\0') {
    report_error(report_kind::WARNING, "readStringContent(...)", 190);
    log_line_head(line_number);
    log_stream() << " : Bad value after keyword '" << keyword << "'\n";
    return 0;
  }
  value = converted;
  return 1;
}

int read_value_text(const my_string& line, my_string& value) {
  value = after(line, '=');
  return 1;
}

void strip_comment(my_string& line) {
  const int position = line.find('#');
  if (position >= 0) line.erase(position, line.length() - position);
}

int is_absolute_path(const my_string& name) {
  return name.contains(':') ? 1 : 0;
}

int ascii_to_int(std::string_view text) {
  // Unsigned arithmetic: a text of many digits wraps instead of overflowing.
  std::uint32_t value = 0;
  std::uint32_t scale = 1;
  for (std::size_t i = text.size(); i-- > 0;) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      value += static_cast<std::uint32_t>(c - '0') * scale;
      scale *= 10u;
    } else if (c == '-') {
      value = 0u - value;
    }
  }
  return static_cast<int>(value);
}

double ascii_to_double(std::string_view text) {
  if (text.empty()) return 0.0;
  double sign = 1.0;
  if (text.front() == '-') {
    sign = -1.0;
    text.remove_prefix(1);
  }
  std::string_view exponent;
  const std::size_t letter = text.find_first_of("ed");
  if (letter != std::string_view::npos) {
    exponent = text.substr(letter + 1);
    text = text.substr(0, letter);
  }
  std::string_view fraction;
  const std::size_t dot = text.find('.');
  if (dot != std::string_view::npos) {
    fraction = text.substr(dot + 1);
    text = text.substr(0, dot);
  }
  // The scale counts the digits of the fraction only: ascii_to_int passes
  // over anything else, so "0.05 " is 0.05.
  int digit_count = 0;
  for (const char c : fraction) digit_count += (c >= '0' && c <= '9') ? 1 : 0;
  const double whole = ascii_to_int(text);
  const double fraction_digits = ascii_to_int(fraction);
  const double mantissa =
      whole + fraction_digits * std::pow(10.0, -static_cast<double>(digit_count));
  return sign * (mantissa * std::pow(10.0, ascii_to_int(exponent)));
}

int truncate_to_int(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(INT_MAX)) return INT_MAX;
  if (value <= static_cast<double>(INT_MIN)) return INT_MIN;
  return static_cast<int>(value);
}
