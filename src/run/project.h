// The one long-lived object of a batch: it owns the data of the project in
// hand and carries one project from its file to the closed result document.
#pragma once

#include <memory>

#include "input/project_file_reader.h"
#include "model/my_string.h"
#include "model/profile_settings.h"
#include "model/settings.h"

class Project : public ProfileSettings {
 public:
  Project();
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  // One whole run of the project named by project_file_name: 1 after a whole run, 0 otherwise.
  int run();
  // Writes the project's properties to mrv_pro.txt in core_directory: 1 on success, 0 otherwise.
  int explore(const my_string& core_directory);
  // Reads the project named by project_file_name, line by line with
  // diagnostics that name the line: 1 if the project was read.
  int newOpen();
  // Reads it by the character-based route that the translator uses: 1 if read.
  int open();

  // The calculation settings of the project in hand, read by the batch driver.
  settings run_settings;
  // Set by the batch driver before each run; 0 while the run checks its tasks.
  int project_valid = 0;
  // The project's name, "no_name" until one is read.
  my_string project_name = "no_name";
  // Where newOpen hands the data sections; replaced together with the data
  // objects that they fill.
  std::unique_ptr<ProjectSectionReaders> section_readers;
};
