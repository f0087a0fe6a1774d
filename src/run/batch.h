// The entry point's helpers and the batch driver. The driver reads the run
// list mrv_run.txt (core directory, mode keyword, then per project its path
// and two number lines, up to "end") and carries each project through one
// run of the one Project, with its own log and its settings file.
//
// The process-wide names of the batch (core_directory, project_file_name,
// settings_file_name, project_index, silent_mode) are declared in
// model/settings.h, since every layer reads them; the driver sets them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "model/settings.h"

class Project;

// Runs the batch of the run list found in `start_directory` (empty: the
// current directory). Returns the data-type byte of the settings record.
unsigned char run_batch(const std::string& start_directory);

// Writes mrv_run.txt in the current directory for one project with default
// settings, replacing any old list.
void write_run_file(std::string_view project_name);

// Writes morvalin.ini in the current directory; nothing reads it back.
void write_ini_file(std::string_view program_path);

// The one Project of the process: made by run_batch, destroyed by the entry point.
std::unique_ptr<Project>& the_project();

// The current directory with every '\' turned into '/'.
std::string current_directory_text();
