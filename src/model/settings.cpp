#include "model/settings.h"

#include <algorithm>
#include <iostream>

unsigned char silent_mode = 0;
std::string core_directory;
std::string project_file_name;
std::string settings_file_name;
int project_index = 0;

void settings::reset() {
  static_cast<CalculationKeys&>(*this) = CalculationKeys{};
  stop_run = 0;
}

std::string cut_extension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return std::string(name);
  const std::string_view extension = name.substr(dot);
  return std::string(name.substr(0, name.find(extension)));
}

void settings::set_project_names(std::string_view project_path) {
  const std::string stem = cut_extension(project_path);
  result_document_name = stem + ".htm";
  backup_name = stem + ".bac";
  const std::size_t separator = project_path.find_last_of("/\\");
  project_directory = separator == std::string_view::npos
                          ? std::string()
                          : std::string(project_path.substr(0, separator + 1));
}

ProgressState& progress() {
  static ProgressState state;
  return state;
}

void settings::show_progress() {
  if (silent_mode) return;
  ProgressState& p = progress();
  std::string line;
  if (p.total > 0.0) {
    // The percentage is a plain int, whose decimal spelling has no format to
    // choose; the formatting module stands above this library.
    const int percent = static_cast<int>(std::min(100.0, 100.0 * p.done / p.total));
    line = std::to_string(percent) + "% : " + p.text;
  } else {
    line = p.text;
  }
  if (line == p.last_line) return;
  std::cout << line << '\n' << std::flush;
  p.last_line = line;
}

void settings::show_progress(std::string_view text) {
  progress().text = text;
  show_progress();
}
