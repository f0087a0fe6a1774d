#include "run/batch.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <new>

#include "model/my_string.h"
#include "numerics/random.h"
#include "output/summary_files.h"
#include "run/errors.h"
#include "run/project.h"
#include "run/settings_file.h"

namespace {

// The run list, read one whole line at a time. A line longer than the
// driver's buffers puts the list into its failed state, which ends it.
class RunList {
 public:
  explicit RunList(const std::string& path) : in_(path, std::ios::binary) {}

  bool is_open() const { return in_.is_open(); }
  bool good() const { return in_.good(); }

  // The next line without its line end; false once the list has failed.
  bool next(std::string& line, std::size_t longest = kLongestPath) {
    if (!std::getline(in_, line)) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.size() > longest) {
      line.clear();
      in_.setstate(std::ios::failbit);
      return false;
    }
    return true;
  }

  // The next line read as an integer (0 when it holds no leading number).
  bool next_int(int& value) {
    std::string line;
    if (!next(line)) return false;
    value = static_cast<int>(std::strtol(line.c_str(), nullptr, 10));
    return true;
  }

  static constexpr std::size_t kLongestPath = 398;
  static constexpr std::size_t kLongestKeyword = 58;

 private:
  std::ifstream in_;
};

RandomGenerator& batch_generator() {
  static RandomGenerator generator;
  return generator;
}

void write_status_error() {
  std::ofstream status(core_directory + "mrv_pro.txt", std::ios::binary | std::ios::trunc);
  status << "error\n";
}

bool file_exists(const std::string& path) {
  return std::ifstream(path).is_open();
}

// The folder part of a path, up to and including its last '/' or '\'.
std::string folder_of(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

void open_project_log(const std::string& log_path) {
  errors().open_log(log_path, false);
  errors().log() << "Log file path: " << log_path << "\n"
                 << "Core Routine Directory: " << core_directory << "\n";
}

int format_code(const std::string& name) {
  if (name == "Genepop") return 1;
  if (name == "Phylip") return 2;
  if (name == "Mega") return 3;
  if (name == "Biosys") return 4;
  if (name == "Tolmerin") return 5;
  return 7;
}

// The "translate" mode: source format, target format, source file, target
// file, then one line for a GenePop source and two for a Tolmerin source.
void run_translation(RunList& list) {
  std::string source_format, target_format, source_file, target_file;
  try {
    list.next(source_format);
    list.next(target_format);
    list.next(source_file);
    list.next(target_file);
  } catch (const std::bad_alloc&) {
    std::cout << "Out of memory... EXIT";
    return;
  }
  open_project_log(folder_of(source_file) + "Morvalin_log.txt");
  batch_generator().initialize_ran3(1);
  std::string extra;
  if (source_format == "Genepop") list.next(extra);
  if (source_format == "Tolmerin") {
    list.next(extra);
    list.next(extra);
  }
  if (format_code(source_format) != format_code(target_format)) {
    // The format translator is not part of this build: say so instead of
    // leaving a target that looks converted.
    errors().log() << "Format translation is not available in this build: " << source_file
                   << " was not converted into " << target_file << "\n";
  }
  errors().close_log();
}

enum class Mode { specific, associated, explore, default_file };

Mode mode_of(const std::string& keyword) {
  if (keyword == "use_spe_settings") return Mode::specific;
  if (keyword == "use_ass_settings") return Mode::associated;
  if (keyword == "explore") return Mode::explore;
  return Mode::default_file;
}

// Reads the settings of one project into the record and the run list's
// two number lines after it. False when the batch has to stop.
bool load_settings(RunList& list, Mode mode, settings& record) {
  if (!file_exists(settings_file_name) && mode != Mode::explore) {
    errors().log() << "Core Routine did not find its settings in:\n"
                   << "    " << settings_file_name << "\n";
    return false;
  }
  batch_generator().initialize_ran3(1);
  record.generator = &batch_generator();
  errors().log() << "Reading project profile section...\n"
                 << "done !\n";
  if (mode == Mode::associated) {
    const std::string associated = cut_extension(project_file_name) + ".mvs";
    if (!file_exists(associated)) {
      errors().log() << "The Core Routine did not find the associated settings:\n"
                     << "    " << associated << "\n";
      return false;
    }
    settings_file_name = associated;
  }
  record.list_append_results.reset();
  record.list_keep_null_distrib.reset();
  read_settings(record, settings_file_name);
  int value = 0;
  if (list.good() && list.next_int(value)) {
    record.list_append_results = value;
    record.append_results = value;
    if (list.good() && list.next_int(value)) {
      record.list_keep_null_distrib = value;
      record.KeepNullDistrib = value;
    }
  }
  return true;
}

// One project of the list, from its folder and log to the end of its run.
// False when the batch has to stop.
bool treat_project(RunList& list, Mode mode, const std::string& path) {
  Project& project = *the_project();
  settings& record = project.run_settings;
  project_file_name = path;
  record.set_project_names(path);
  if (!file_exists(path)) {
    write_status_error();
    return false;
  }
  record.result_folder = cut_extension(path) + ".res/";
  std::error_code ignored;
  std::filesystem::create_directory(record.result_folder, ignored);
  open_project_log(record.result_folder + "Morvalin_log.txt");
  if (!load_settings(list, mode, record)) return false;
  project_file_name = path;
  record.set_project_names(path);
  std::ostream& log = errors().log();
  if (mode == Mode::explore) {
    log << "Exploring  " << path << " ...\n";
    if (!project.explore(my_string(core_directory))) write_status_error();
    log << "done!\n";
  } else {
    project.project_valid = 1;
    log << "Opening next project...\n" << path << "\n";
    const int ok = project.run();
    errors().log() << (ok ? "Successful run of " : "Error during run of ") << path << "\n";
  }
  return true;
}

}  // namespace

std::unique_ptr<Project>& the_project() {
  static std::unique_ptr<Project> project;
  return project;
}

std::string current_directory_text() {
  std::error_code ec;
  std::string dir = std::filesystem::current_path(ec).string();
  for (char& c : dir)
    if (c == '\\') c = '/';
  return dir;
}

void write_run_file(std::string_view project_name) {
  std::ofstream out("mrv_run.txt", std::ios::binary | std::ios::trunc);
  out << current_directory_text() << "\n"
      << "use_interf_settings\n"
      << project_name << "\n"
      << "0\n0\nend\n";
}

void write_ini_file(std::string_view program_path) {
  std::string program(program_path);
  for (char& c : program)
    if (c == '\\') c = '/';
  std::ofstream out("morvalin.ini", std::ios::binary | std::ios::trunc);
  out << "false\ntrue\nfalse\nfalse\nWeb browser\nText editor\n"
      << program << "\nRcmd\n"
      << current_directory_text() << "\n";
  for (int i = 0; i < 13; ++i) out << "false\n";
  out << "\n";
}

unsigned char run_batch(const std::string& start_directory) {
  the_project() = std::make_unique<Project>();
  core_directory = start_directory;
  // The summary files are set up before the list is read, so they belong to
  // the start directory and not to the directory the list names.
  read_global_flags(core_directory);
  initialize_mrv_global_objects(project_index);
  RunList list(core_directory + "mrv_run.txt");
  if (list.is_open()) {
    std::string keyword, path;
    list.next(core_directory);
    if (!core_directory.empty() && core_directory.back() != '/' && core_directory.back() != '\\')
      core_directory += '/';
    project_index = 0;
    list.next(keyword, RunList::kLongestKeyword);
    if (keyword == "translate") {
      run_translation(list);
    } else {
      const Mode mode = mode_of(keyword);
      if (mode == Mode::specific)
        list.next(settings_file_name);
      else
        settings_file_name = core_directory + "mrv_run.mvs";
      list.next(path);
      while (path != "end" && path != "END" && list.good()) {
        if (!treat_project(list, mode, path)) break;
        if (!list.next(path)) path.clear();
        errors().close_log();
        if (the_project()->run_settings.stop_run) path = "end";
        ++project_index;
      }
    }
  }
  errors().close_log();
  close_mrv_global_objects();
  return the_project()->run_settings.data_type;
}
