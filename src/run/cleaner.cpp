#include "run/cleaner.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

#include "input/line_reader.h"
#include "model/settings.h"

namespace fs = std::filesystem;

namespace {

// A line as the readers take it: a trailing carriage return is no part of it.
bool next_line(std::istream& in, std::string& line) {
  if (!std::getline(in, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

std::string upper_case(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return out;
}

std::string directory_of(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

std::string file_name_of(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

// Whether `target` stays inside `folder` once "." and ".." are resolved: a
// copy is never written over a file of the user's own.
bool inside_folder(const std::string& folder, const std::string& target) {
  const std::string base = fs::path(folder).lexically_normal().generic_string();
  const std::string normal = fs::path(target).lexically_normal().generic_string();
  return normal.size() > base.size() && normal.compare(0, base.size(), base) == 0;
}

}  // namespace

std::string cleaner::tidy(std::string_view line, char locus_separator) {
  if (line.size() > kLongestTidiedLine) return std::string(line);
  std::string out;
  out.reserve(line.size());
  for (char c : line) {
    if (c == '\r' || c == '\t' || (locus_separator != 0 && c == locus_separator)) c = ' ';
    if (c == '#') break;
    if (c == ' ' && !out.empty() && out.back() == ' ') continue;
    out += c;
  }
  while (!out.empty() && out.back() == ' ') out.pop_back();
  return out;
}

std::string cleaner::extern_name(std::string_view line) {
  const std::size_t open = line.find('"');
  if (open == std::string_view::npos) return {};
  const std::size_t close = line.find('"', open + 1);
  if (close == std::string_view::npos) return {};
  return std::string(line.substr(open + 1, close - open - 1));
}

std::string cleaner::separator_line(std::string_view line, char locus_separator) {
  const std::string upper = upper_case(line);
  if (upper.find("LOCUSSEPARATOR") != std::string::npos && locus_separator != 0 &&
      upper.find("NONE") == std::string::npos) {
    return "LocusSeparator=WHITESPACE";
  }
  return std::string(line);
}

bool cleaner::clean_project(const std::string& project_path, char locus_separator) {
  files_.clear();
  if (!copy_project(project_path, locus_separator)) return false;
  // The list grows while the project is copied; the EXTERN files follow it.
  // Only copies that were made stay on the list, so that nothing else is deleted.
  std::vector<Entry> made{files_.front()};
  for (std::size_t i = 1; i < files_.size(); ++i) {
    if (copy_external(files_[i], locus_separator)) made.push_back(files_[i]);
  }
  files_ = std::move(made);
  return true;
}

bool cleaner::copy_project(const std::string& project_path, char locus_separator) {
  std::ifstream in(project_path, std::ios::binary);
  if (!in) return false;
  folder_ = cut_extension(project_path) + ".res/";
  std::error_code ignored;
  fs::create_directory(folder_, ignored);
  clean_name_ = folder_ + file_name_of(project_path);
  if (fs::equivalent(project_path, clean_name_, ignored)) return false;
  std::ofstream out(clean_name_, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  files_.push_back({Kind::project, project_path, clean_name_});
  const std::string directory = directory_of(project_path);
  std::string line;
  while (next_line(in, line)) {
    std::string text = tidy(line, locus_separator);
    if (text.size() <= kLongestExternLine && text.find("EXTERN") != std::string::npos) {
      note_external(text, directory);
    }
    out << separator_line(text, locus_separator) << '\n';
  }
  out << '\n';
  return static_cast<bool>(out);
}

void cleaner::note_external(std::string_view line, const std::string& project_directory) {
  const std::string name = extern_name(line);
  // An absolute name is read where it stands; an empty one names nothing.
  if (name.empty() || is_absolute_path(my_string(name))) return;
  const std::string target = folder_ + name;
  if (!inside_folder(folder_, target)) return;
  files_.push_back({Kind::external, project_directory + name, target});
}

bool cleaner::copy_external(const Entry& entry, char locus_separator) {
  std::ifstream in(entry.source, std::ios::binary);
  if (!in) return false;
  std::error_code ignored;
  fs::create_directories(fs::path(entry.target).parent_path(), ignored);
  std::ofstream out(entry.target, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  std::string line;
  while (next_line(in, line)) out << tidy(line, locus_separator) << '\n';
  return true;
}

void cleaner::remove_copies() {
  std::error_code ignored;
  for (const Entry& e : files_) fs::remove(e.target, ignored);
  files_.clear();
}
