#include "run/project.h"

#include "input/project_data_readers.h"
#include "model/report.h"

Project::Project()
    : samples(std::make_unique<Samples>()), structure(std::make_unique<Structure>()) {
  calculation_settings = &run_settings;
  haplo_db.project = this;
  dist_mat.set_project_dir(&project_directory);
  section_readers = std::make_unique<ProjectDataReaders>(
      ProjectData{haplo_db, dist_mat, samples, structure, mantel, project_directory});
}

Project::~Project() = default;

void Project::clear_data() {
  dist_mat.clear();
  if (structure) structure->clear();
  if (samples) samples->clear();
  haplo_db.clear();
  allele_db.clear();
  mantel.clear();
}
