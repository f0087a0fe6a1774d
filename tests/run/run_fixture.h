// A fixture for tests that run a project inside the test program, as the
// batch driver would: a fresh folder as current and core directory, a project
// and a settings file written there, the log of the result folder open, and
// the run's document and log read back afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "model/settings.h"
#include "output/result_document.h"
#include "run/errors.h"
#include "run/project.h"
#include "run/settings_file.h"
#include "support/test_support.h"

namespace run_testing {

namespace fs = std::filesystem;

// A settings file: the keys given, one a line, behind the head. Keys of the
// first group that are left out read as 0; these defaults keep the checks of
// the run quiet unless a case asks otherwise.
inline std::string settings_text(const std::string& keys) {
  return "[Setting for Calculations]\n" + keys +
         "\nDeletionWeight=1.0\nTransitionWeight=1.0\nTranversionWeight=1.0"
         "\nMarkovChainDememorisationStepsHW=1000\nMarkovChainDememorisationStepsLD=1000\n";
}

class RunFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = fs::current_path();
    fs::current_path(dir_.path());
    core_directory = dir_.str() + "/";
    errors().raise(report_kind::ERROR, "", -1);
  }
  void TearDown() override {
    if (doc_open_) result_document().close();
    errors().set_result_stream(nullptr);
    errors().close_log();
    fs::current_path(previous_);
    project_file_name.clear();
    settings_file_name.clear();
    core_directory.clear();
  }

  void put(const std::string& name, const std::string& text) {
    testing_support::write_file(dir_.path() / name, text);
  }
  std::string file(const std::string& name) const {
    return testing_support::read_file(dir_.path() / name);
  }
  bool exists(const std::string& name) const { return fs::exists(dir_.path() / name); }
  std::string path(const std::string& name) const { return (dir_.path() / name).string(); }

  // Prepares `name`.mvp with `keys` as the driver does for one project of
  // the list: names, result folder, log, settings with the list's two numbers.
  void prepare(Project& project, const std::string& name, const std::string& keys, int append = 0,
               int keep_null = 0) {
    settings& s = project.run_settings;
    put(name + ".mvs", settings_text(keys));
    project_file_name = path(name + ".mvp");
    s.set_project_names(project_file_name);
    s.result_folder = path(name + ".res/");
    fs::create_directory(s.result_folder);
    errors().open_log(s.result_folder + "Morvalin_log.txt", false);
    s.list_append_results = append;
    s.list_keep_null_distrib = keep_null;
    settings_file_name = path(name + ".mvs");
    read_settings(s, settings_file_name);
  }
  // A whole run of `name`.mvp.
  int run(Project& project, const std::string& name, const std::string& keys, int append = 0,
          int keep_null = 0) {
    prepare(project, name, keys, append, keep_null);
    project.project_valid = 1;
    const int result = project.run();
    errors().close_log();
    return result;
  }
  // Reads the project and points the document at a string, for the steps
  // that a test calls one by one.
  bool open(Project& project, const std::string& name, const std::string& keys, bool xml = false) {
    prepare(project, name, keys);
    result_document().use_stream(doc_, xml);
    doc_open_ = true;
    const bool read = project.newOpen() != 0;
    project.run_settings.data_type = project.DataType;
    project.run_settings.genotypic = project.GenotypicData;
    project.run_settings.phase_known = project.GameticPhase;
    return read;
  }

  std::string log(const std::string& name) {
    errors().log().flush();
    return file(name + ".res/Morvalin_log.txt");
  }
  std::string document() const { return doc_.str(); }

  testing_support::TempDir dir_;
  fs::path previous_;
  std::ostringstream doc_;
  bool doc_open_ = false;
};

// Whether `text` holds `part`; the text itself shows in the failure message.
inline ::testing::AssertionResult holds(const std::string& text, const std::string& part) {
  if (text.find(part) != std::string::npos) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "\"" << part << "\" not found in:\n" << text;
}

inline int count_of(const std::string& text, const std::string& part) {
  int n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++n;
  }
  return n;
}

}  // namespace run_testing
