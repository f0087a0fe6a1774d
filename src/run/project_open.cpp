// Reading a project file, by the line-based route of a run (newOpen), by the
// character-based route of the translator (open), and the exploration that
// answers a front end through mrv_pro.txt without loading the data.
#include <fstream>

#include "input/profile_reader.h"
#include "input/profile_writer.h"
#include "input/project_explore.h"
#include "input/project_open_reader.h"
#include "model/report.h"
#include "run/project.h"

namespace {

my_string folder_of(const std::string& file_name) {
  my_string folder = file_name;
  folder.path_only();
  return folder;
}

}  // namespace

int Project::newOpen() {
  std::ifstream file(project_file_name);
  if (!file) {
    report_error(report_kind::WARNING, "Project::newOpen()", 126);
    return 0;
  }
  project_directory = folder_of(project_file_name);
  clear_data();
  return read_project_file(file, *this, *section_readers, project_directory);
}

int Project::open() {
  std::ifstream file(project_file_name);
  if (!file) {
    report_error(report_kind::ERROR, "Project::open()", 126);
    return 0;
  }
  project_directory = folder_of(project_file_name);
  clear_data();
  if (!get_profile_settings(file, *this)) {
    report_error(report_kind::ERROR, "Project::open()", 127);
    return 0;
  }
  return open_project_data(file, *this, *section_readers, project_directory);
}

// The profile is not reset here: a key that the file leaves out keeps the
// value of the project explored or run before, as the front end expects.
int Project::explore(const my_string& core_directory) {
  std::ofstream("groups.txt", std::ios::trunc);
  std::ifstream file(project_file_name);
  if (!file) {
    report_error(report_kind::ERROR, "Project::explore()", 126);
    return 0;
  }
  if (!explore_project_stream(file, *this, ExploreFiles{})) return 0;
  std::ofstream answer((core_directory + "mrv_pro.txt").c_str(), std::ios::trunc);
  write_project_properties(answer, *this);
  return 1;
}
