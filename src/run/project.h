// The one long-lived object of a batch: it owns the data of the project in
// hand and carries one project from its file to the closed result document.
#pragma once

class my_string;

class Project {
 public:
  Project();
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  // One whole run of the project named by project_file_name: 1 after a whole run, 0 otherwise.
  int run();
  // Writes the project's properties to mrv_pro.txt in core_directory: 1 on success, 0 otherwise.
  int explore(const my_string& core_directory);
};
