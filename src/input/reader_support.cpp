#include "input/reader_support.h"

#include <cmath>
#include <ctime>
#include <filesystem>
#include <string>

#include "input/line_reader.h"

namespace reader_support {

long long clock_ms() {
  return static_cast<long long>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

std::vector<std::string_view> split_blanks(std::string_view line) {
  std::vector<std::string_view> tokens;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    const std::size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    if (i > start) tokens.push_back(line.substr(start, i - start));
  }
  return tokens;
}

my_string join_tokens(const std::vector<std::string_view>& tokens, std::size_t first,
                      char separator) {
  std::string text;
  for (std::size_t i = first; i < tokens.size(); ++i) {
    if (i > first && separator != 0) text += separator;
    text += tokens[i];
  }
  return my_string(text);
}

bool parse_number(std::string_view token, double& value) {
  if (token.empty()) return false;
  const std::string text(token);
  char* end = nullptr;
  const double converted = std::strtod(text.c_str(), &end);
  if (end != text.c_str() + text.size() || !std::isfinite(converted)) return false;
  value = converted;
  return true;
}

bool is_blank(std::string_view text) {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

int count_loci(std::string_view text, char separator) {
  if (separator == 0) return static_cast<int>(text.size());
  int loci = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == separator) ++i;
    const std::size_t start = i;
    while (i < text.size() && text[i] != separator) ++i;
    if (i > start) ++loci;
  }
  return loci;
}

bool open_extern(std::ifstream& file, const my_string& line, std::string_view keyword,
                 int line_number, const my_string& directory, my_string& path) {
  my_string name;
  readStringContent(line, name, keyword, line_number);
  path = is_absolute_path(name) ? name : directory + name;
  // A folder opens as a stream on some systems; it is no file to read.
  std::error_code ignored;
  if (!name.is_empty() && !std::filesystem::is_directory(path.c_str(), ignored))
    file.open(path.c_str());
  return file.is_open();
}

bool next_line(std::istream& is, my_string& line, int& line_number) {
  if (!is.good()) return false;
  line.read_line(is);
  if (is.fail() && line.is_empty()) return false;
  ++line_number;
  strip_comment(line);
  return true;
}

my_string upper(const my_string& line) {
  my_string copy = line;
  copy.to_upper();
  return copy;
}

}  // namespace reader_support
