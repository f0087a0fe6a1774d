// Reading a project file, by the line-based route of a run (newOpen), by the
// character-based route of the translator (open), and the exploration that
// answers a front end through mrv_pro.txt without loading the data.
#include <fstream>

#include "input/profile_writer.h"
#include "input/project_explore.h"
#include "model/report.h"
#include "run/project.h"

int Project::newOpen() {
  std::ifstream file(project_file_name);
  if (!file) {
    report_error(report_kind::WARNING, "Project::newOpen()", 126);
    return 0;
  }
  my_string directory = project_file_name;
  directory.path_only();
  return read_project_file(file, *this, *section_readers, directory);
}

int Project::open() {
  std::ifstream file(project_file_name);
  if (!file) {
    report_error(report_kind::ERROR, "Project::open()", 126);
    return 0;
  }
  return open_project_stream(file, *this);
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
