// A project's data objects with the real section readers behind the
// line-based driver, for tests that read whole project texts or files and
// look at what was loaded and what was reported.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "input/fake_sections.h"
#include "input/project_data_readers.h"
#include "input/project_file_reader.h"
#include "input/report_capture.h"
#include "model/settings.h"

namespace input_testing {

struct LoadedProject {
  ProfileSettings profile;
  settings run_settings;
  Haplo_DB haplo_db;
  DistMat dist_mat;
  std::unique_ptr<Samples> samples = std::make_unique<Samples>();
  std::unique_ptr<Structure> structure = std::make_unique<Structure>();
  Mantel mantel;
  my_string directory;
  ProjectDataReaders readers{
      ProjectData{haplo_db, dist_mat, samples, structure, mantel, directory}};

  int result = -1;
  std::string log;
  std::vector<int> codes;
  std::vector<Report> reports;

  LoadedProject() { profile.calculation_settings = &run_settings; }
  LoadedProject(const LoadedProject&) = delete;
  LoadedProject& operator=(const LoadedProject&) = delete;

  // Reads the text as a project file whose EXTERN files are in `dir`.
  LoadedProject& read(const std::string& text, const std::string& dir = "") {
    std::istringstream is(text);
    return read_stream(is, dir);
  }
  LoadedProject& read_file(const std::string& path) {
    std::ifstream is(path);
    my_string folder = path;
    folder.path_only();
    return read_stream(is, folder.str());
  }
  LoadedProject& read_stream(std::istream& is, const std::string& dir) {
    directory = dir;
    ReportCapture capture;
    result = read_project_file(is, profile, readers, directory);
    log = without_times(capture.text());
    codes = capture.codes();
    reports = capture.reports();
    return *this;
  }

  bool logged(const std::string& part) const { return log.find(part) != std::string::npos; }
  bool reported(int code) const {
    for (const int c : codes)
      if (c == code) return true;
    return false;
  }
  PopGenetics& sample(int i) const { return *(*samples)[i]; }
};

// The head of a project: [Profile] with the given lines, then [Data].
inline std::string project_head(const std::string& profile_lines, int nb_samples = 1) {
  return "[Profile]\nTitle=\"t\"\nNbSamples=" + std::to_string(nb_samples) + "\n" + profile_lines +
         "MissingData='?'\n[Data]\n";
}

inline const std::string dna_profile =
    "DataType=DNA\nGenotypicData=0\nLocusSeparator=NONE\nFrequency=ABS\n";

// One project that a section reader must refuse: the codes raised, in order,
// and a line the log must hold.
struct FaultCase {
  const char* what;
  std::string text;
  std::vector<int> codes;
  std::string log;
};

inline void expect_fault(const FaultCase& c) {
  LoadedProject p;
  p.read(c.text);
  EXPECT_EQ(p.result, 0) << c.what;
  EXPECT_EQ(p.codes, c.codes) << c.what << "\n" << p.log;
  EXPECT_TRUE(p.logged(c.log)) << c.what << "\n" << p.log;
}

}  // namespace input_testing
