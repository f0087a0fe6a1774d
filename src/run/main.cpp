// morvcore: the console core of Morvalin. It turns its command line into a
// run list (when it names a project), checks that the named files exist, and
// hands over to the batch driver. The exit code is 0 on every orderly path;
// mrv_pro.txt, the log and the result documents tell the outcome.
#include <algorithm>
#include <cctype>
#include <fstream>
#include <iostream>
#include <new>
#include <sstream>
#include <string>

#include "model/report.h"
#include "model/settings.h"
#include "run/batch.h"
#include "run/errors.h"
#include "run/project.h"

namespace {

constexpr const char* kUsage[] = {
    "\n                             MORVCORE v 3.5.1.3 (17.09.11)",
    "\n                             ========",
    "\n  MORVCORE is the console version of Morvalin",
    "\n  Usage:",
    "\n  ------",
    "\n  morvcore <project file name (*.mvp)> | <settings file (*.mvs)>",
    "\n            | run_silent\n",
    "\n  The three arguments are optional. If no argument is provided",
    "\n  morvcore will look for the file mrv_run.txt where the name of a",
    "\n  project file should be indicated. If it does not find the project",
    "\n  file defined in mrv_run.txt, the present message is shown.",
    "\n  The argument <project file name> needs to be put",
    "\n  within quotes if it contains whitepaces",
    "\n  The argument <settings file (*.mvs)> allows one to use",
    "\n  a specific setting file for the computations ",
    "\n  If no settings file is specified, it will use the default setting file",
    "\n  mrv_run.mvs.",
    "\n  run_silent: if present on the command line, morvcore will not output",
    "\n              computation progress in the console",
    "\n  Examples:",
    "\n    morvcore test.mvp test.mvs",
    "\n       This will analyse the file 'test.mvp' using the settings defined in the",
    "\n       file 'test.mvs'.",
    "\n    morvcore",
    "\n       This will read the file 'mrv_run.txt' to see which project(s) need(s) to",
    "\n       be analysed, and which setting file to use (mrv_run.mvs) or <project name>.mvs.",
};

void print_usage() {
  for (const char* line : kUsage) std::cout << line;
  std::cout << std::flush;
}

struct Arguments {
  bool help = false;
  std::string project;
  std::string settings_file;
};

// Each argument is tested in lower case, by containment, in a fixed order;
// anything else is ignored, and a later argument of a kind wins.
Arguments read_arguments(int argc, char** argv) {
  Arguments args;
  for (int i = 1; i < argc; ++i) {
    const std::string given = argv[i];
    std::string lower = given;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (lower.find("run_silent") != std::string::npos) {
      silent_mode = 1;
      std::cout << "Running morvcore in silent mode ...";
    } else if (lower.find("-help") != std::string::npos) {
      args.help = true;
    } else if (lower.find(".mvp") != std::string::npos) {
      args.project = given;
    } else if (lower.find(".mvs") != std::string::npos) {
      args.settings_file = given;
    }
  }
  return args;
}

// The first line of the run list that names a project, if any.
bool first_listed_project(std::string& project) {
  std::ifstream list("mrv_run.txt", std::ios::binary);
  std::string line;
  while (std::getline(list, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.find(".mvp") != std::string::npos) {
      project = cut_extension(line) + ".mvp";
      return true;
    }
  }
  return false;
}

// Checks the files named by the command line and the run list; prints the
// reason and the usage text when one is missing.
bool files_present(const Arguments& args) {
  if (args.project.empty() && !std::ifstream("mrv_run.txt").is_open()) {
    std::cout << "The necessary file 'mrv_run.txt' does not exist, aborting morvcore\n\n";
    return false;
  }
  if (!args.project.empty()) write_run_file(args.project);
  std::string project;
  if (first_listed_project(project) && !std::ifstream(project).is_open()) {
    std::cout << "Project file '" << project
              << (args.project.empty() ? "' listed in mrv_run.txt does not exist"
                                       : "' does not exist")
              << ", aborting morvcore\n\n";
    return false;
  }
  if (!args.settings_file.empty() && !std::ifstream(args.settings_file).is_open()) {
    std::cout << "The setting file '" << args.settings_file
              << "' does not exist, aborting morvcore\n\n";
    return false;
  }
  return true;
}

// A settings file of the command line replaces the content of the default one.
void copy_settings_over_default(const std::string& settings_file) {
  if (settings_file.empty() || settings_file == "mrv_run.mvs") return;
  std::ifstream in(settings_file, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  // Read whole before writing, so that another spelling of the default file
  // does not truncate its own content.
  std::ofstream out("mrv_run.mvs", std::ios::binary | std::ios::trunc);
  out << content.str();
}

// A MEMORY report that no task caught ends the process: the log keeps the
// chain of reports written so far and the exit code says that the batch did
// not end in order.
int end_without_memory() {
  errors().log() << "\nNot enough memory: morvcore stops here\n";
  errors().close_log();
  std::cout << "\nNot enough memory: morvcore stops here\n" << std::flush;
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  errors();
  core_directory.clear();
  project_file_name.clear();
  settings_file_name.clear();
  const Arguments args = read_arguments(argc, argv);
  if (args.help) {
    print_usage();
    return 0;
  }
  if (!files_present(args)) {
    print_usage();
    return 0;
  }
  copy_settings_over_default(args.settings_file);
  write_ini_file(argc > 0 ? argv[0] : "");
  try {
    run_batch("");
  } catch (const ExceptionType&) {
    return end_without_memory();
  } catch (const std::bad_alloc&) {
    return end_without_memory();
  }
  std::cout << "Morvcore terminated gracefully" << std::flush;
  the_project().reset();
  return 0;
}
