// One run of a project: from the file on disk to the closed result document.
//
// The steps, in their fixed order: clean copy of the project in the result
// folder; the document, its frame pages and the head of the tree menu; the
// heading of the run; the project read from the clean copy; the project's
// information and the settings report (the tasks as the file asks for them);
// make_run_possible, which mends or refuses the tasks; the work estimate; the
// group pass and the sample pass; the end of the run with its computing time.
// Every way out behind the opening of the document writes the document's end,
// lets go of the result stream and removes the clean copies.
#include <filesystem>
#include <fstream>

#include "model/report.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "run/analyses.h"
#include "run/cleaner.h"
#include "run/errors.h"
#include "run/project.h"
#include "run/run_steps.h"
#include "run/settings_report.h"

namespace {

const std::string& slashes() {
  static const std::string text = run_steps::rule(68, '/');
  return text;
}

void forward_slashes(std::string& name) {
  for (char& c : name) {
    if (c == '\\') c = '/';
  }
}

void write_status_error() {
  std::ofstream status(core_directory + "mrv_pro.txt", std::ios::binary | std::ios::trunc);
  status << "error\n";
}

// The run works on the clean copy when there is one; names use '/' only.
void take_run_names(settings& s, const cleaner& clean, bool cleaned) {
  const char* extension = s.XMLOutput != 0 ? ".xml" : ".htm";
  if (cleaned) {
    project_file_name = clean.clean_project_name();
    s.result_document_name = cut_extension(project_file_name) + extension;
    s.result_folder = clean.folder();
    s.ld_file_name = clean.folder() + "ld_dis.xl";
  } else {
    log_stream() << "\nAn error has occurred while cleaning-up the project...\n";
    s.result_document_name = cut_extension(s.result_document_name) + extension;
  }
  forward_slashes(project_file_name);
  forward_slashes(s.result_document_name);
  forward_slashes(s.result_folder);
  forward_slashes(s.backup_name);
  forward_slashes(s.project_directory);
}

// The document, the frame pages, the tree's head and the title.
void open_document(settings& s, const std::string& date) {
  ResultDocument& doc = result_document();
  ResultDocument::RunStart start;
  start.files = RunFiles::derive(s.result_document_name, core_directory);
  start.core_directory = core_directory;
  start.project_file = project_file_name;
  start.date = date;
  start.xml = s.XMLOutput != 0;
  start.append = s.append_results != 0;
  doc.begin_run(start);
  const RunFiles& files = doc.files();
  s.tree_page_name = files.tree_page;
  s.tree_script_name = files.tree_script;
  s.frame_page_name = files.frame_page;
  s.tree_style_name = files.tree_style;
  s.tree_code_name = files.tree_code;
  s.run_stamp = doc.run_stamp();
  s.result_stream = &doc.stream();
  errors().set_result_stream(&doc.stream());
}

// "RUN NUMBER n (date)" between rules of slashes, in the document
// (inside the element "run") and in the log.
void write_heading(int run_number, const std::string& date) {
  ResultDocument& doc = result_document();
  std::ostream& out = doc.stream();
  const std::string heading = "\n" + slashes() + "\nRUN NUMBER " + fmt::integer(run_number).text +
                              " (" + date + ")\n" + slashes() + "\n";
  const TXmlTag run("run");
  if (doc.xml()) out << doc.open_text(run);
  out << heading;
  if (doc.xml()) out << run.close_text();
  log_stream() << heading;
}

}  // namespace

int Project::run() {
  settings& s = run_settings;
  install_analyses();
  if (project_valid == 0) {
    log_stream() << "\n No valid project is opened....\n";
    return 0;
  }
  if (!std::ifstream(project_file_name).is_open()) {
    // Reported under the name the front end knows this check by.
    report_error(report_kind::ERROR, "Project::explore()", 126);
    return 0;
  }
  cleaner clean;
  take_run_names(s, clean, clean.clean_project(project_file_name, LocusSeparator));
  start_tick = run_steps::clock_ms();
  const std::string date = format_date(local_time_now());
  open_document(s, date);
  vectors_built = 0;
  pseudo_haplotypes_built = 0;
  ++run_number;
  write_heading(run_number, date);
  if (!read_project()) {
    write_status_error();
    return end_run_early(clean);
  }
  report_project();
  const char separator = LocusSeparator;
  project_valid = 0;
  if (!make_run_possible()) {
    result_document().stream() << "\nOne of the scheduled task is not possible with these data,"
                               << "\nfor more details look into 'Morvalin_log.txt'\n";
    return end_run_early(clean);
  }
  project_valid = 1;
  run_passes();
  const std::string end_date = format_end_date(local_time_now());
  LocusSeparator = separator;
  clear_project();
  clean.remove_copies();
  progress().total = 0.0;
  write_end_of_run(end_date);
  return 1;
}

// The project is read from its clean copy, into a fresh profile.
bool Project::read_project() {
  log_stream() << "\nReading Project: " << Title << "\n";
  reset_profile();
  settings::show_progress("Opening Project...");
  allele_db.clear();
  if (newOpen() != 0) return true;
  log_stream() << "Error opening project... " << project_file_name << "\n";
  return false;
}

// The project's information and the settings report, which
// shows the tasks as the file asks for them.
void Project::report_project() {
  ResultDocument& doc = result_document();
  doc.open_tree_leaf(1, "_run_information", "Settings");
  prepare_samples();
  write_project_information();
  copy_profile_into_settings();
  print_settings_report(run_settings, doc.stream(), doc.xml(), doc.time_stamp());
  log_stream() << run_steps::rule(68, '-') << "\n";
}

int Project::end_run_early(cleaner& clean) {
  clear_project();
  result_document().close();
  clean.remove_copies();
  return 0;
}

// Upper-case DNA, and no locus separator in DNA and RFLP data.
void Project::prepare_samples() {
  samples->convert_dna_upper();
  const bool sequences = DataType == data_type_code::DNA || DataType == data_type_code::RFLP;
  if (!sequences || LocusSeparator == locus_separator_code::NONE) return;
  samples->rm_separators();
  LocusSeparator = locus_separator_code::NONE;
  haplo_db.LocusSeparator = locus_separator_code::NONE;
  samples->LocusSeparator = locus_separator_code::NONE;
  structure->LocusSeparator = locus_separator_code::NONE;
  result_document().stream() << "\nWarning: The locus separator has been removed\n-------\n\n";
  log_stream() << "\nWarning: The locus separator has been removed\n\n";
}

// What the profile says about the data.
void Project::write_project_information() {
  std::ostream& out = result_document().stream();
  out << "\nProject information:"
      << "\n--------------------\n"
      << "\tNbSamples      =  " << fmt::integer(NbSamples) << "\n"
      << "\tDataType       =  " << data_type_name(DataType) << "\n"
      << "\tGenotypicData  =  " << fmt::integer(GenotypicData) << "\n";
  if (GenotypicData != 0) {
    out << "\tGameticPhase   =  " << fmt::integer(GameticPhase) << "\n"
        << "\tRecessiveData  =  " << fmt::integer(RecessiveData) << "\n";
  }
}

void Project::copy_profile_into_settings() {
  run_settings.data_type = DataType;
  run_settings.genotypic = GenotypicData;
  run_settings.phase_known = GameticPhase;
}

// The closing message, the computing time and the document's end.
void Project::write_end_of_run(const std::string& end_date) {
  settings& s = run_settings;
  if (s.stop_run != 0) {
    const char* stopped = " WARNING !!! Process stopped by user. The results may be incorrect";
    log_stream() << stopped << "\n";
    settings::show_progress(stopped);
  } else {
    settings::show_progress(" Computations are over");
  }
  long long elapsed = run_steps::clock_ms() - start_tick;
  elapsed_ms = elapsed;
  const long long hours = elapsed / 3600000;
  elapsed %= 3600000;
  const long long minutes = elapsed / 60000;
  elapsed %= 60000;
  const long long seconds = elapsed / 1000;
  const long long ms = elapsed % 1000;
  const std::string block = "\n" + slashes() + "\nEND OF RUN NUMBER " +
                            fmt::integer(run_number).text + " (" + end_date + ")" +
                            "\nTotal computing time for this run : " + fmt::integer(hours).text +
                            "h " + fmt::integer(minutes).text + "m " + fmt::integer(seconds).text +
                            "s " + fmt::integer(ms).text + " ms\n" + slashes();
  log_stream() << block << "\n";
  ResultDocument& doc = result_document();
  doc.stream() << block;
  doc.close();
}

// Clearing a project: its data go, the result stream is let go of, and the
// translator's scratch files are removed.
void Project::clear_project() {
  clear_data();
  run_settings.result_stream = nullptr;
  errors().set_result_stream(nullptr);
  std::error_code ignored;
  std::filesystem::remove("trans_out.txt", ignored);
  std::filesystem::remove(core_directory + "dum_mrv.mvp", ignored);
}

std::vector<PopGenetics*> Project::sample_list() const {
  std::vector<PopGenetics*> list;
  if (samples == nullptr) return list;
  for (const auto& sample : samples->list()) list.push_back(sample.get());
  return list;
}
