#include "run/project.h"

#include "model/report.h"

Project::Project() : section_readers(std::make_unique<ProjectSectionReaders>()) {}
Project::~Project() = default;

// Running a project arrives with the analyses; until then a run fails in
// words, never with made-up results.
int Project::run() {
  log_stream() << "Project run is not available in this build\n";
  return 0;
}
