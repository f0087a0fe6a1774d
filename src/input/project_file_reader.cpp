#include "input/project_file_reader.h"

#include <ctime>
#include <filesystem>
#include <fstream>

#include "input/line_reader.h"
#include "input/profile_reader.h"
#include "input/project_file_judge.h"
#include "model/report.h"
#include "output/number_format.h"

namespace {

constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* here = "Project::newOpen()";

// Milliseconds of the process clock.
long long clock_ms() {
  return static_cast<long long>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

class ProjectFileReader {
 public:
  ProjectFileReader(std::istream& is, ProfileSettings& profile, ProjectSectionReaders& sections,
                    const my_string& project_directory)
      : is_(is), profile_(profile), sections_(sections), directory_(project_directory) {}

  int read();

 private:
  // Keeps the line and its upper-case copy, both cut at their comment.
  void take(const my_string& line);
  int treat_line();
  int treat_profile_keyword();
  int treat_value_keyword();
  int treat_section_line();
  int treat_data_section_keyword();

  void title();
  int nb_samples();
  void data_type();
  void switch_value(const char* keyword, int& field, int fallback, int code);
  void locus_separator();
  void recessive_allele();
  void missing_data();
  void frequency();
  void real_value(const char* keyword, double& field, double fallback);

  int haplotype_definition();
  int hapl_list_name();
  int hapl_list();
  int distance_matrix();
  void matrix_name();
  int matrix_size();
  int label_position();
  int matrix_data();
  int samples();
  int structure();
  int mantel();

  int open_external(const char* keyword, std::ifstream& file, my_string& path);
  std::ostream& line_head() {
    return log_stream() << "\tProject file, Line #" << fmt::integer(line_number_);
  }
  void log_done(long long start, const char* head = "\tdone ! (", const char* tail = " ms)\n") {
    log_stream() << head << fmt::integer(clock_ms() - start) << tail;
  }
  void log_invalid(const my_string& value, const char* open, const char* keyword) {
    line_head() << " : Invalid value (" << open << value << "\") assigned to keyword \"" << keyword
                << "\"\n";
  }
  int judge(long long start);

  std::istream& is_;
  ProfileSettings& profile_;
  ProjectSectionReaders& sections_;
  const my_string& directory_;
  ProjectFileFlags flags_;
  int line_number_ = 0;
  my_string line_;
  my_string upper_;
};

void ProjectFileReader::take(const my_string& line) {
  line_ = line;
  strip_comment(line_);
  upper_ = line_;
  upper_.to_upper();
}

int ProjectFileReader::read() {
  log_stream() << "Reading input file ...\n";
  const long long start = clock_ms();
  my_string line;
  while (is_.good()) {
    line.read_line(is_);
    if (is_.fail() && line.is_empty()) break;
    ++line_number_;
    take(line);
    if (!treat_line()) return 0;
  }
  return judge(start);
}

// The tests run in a fixed order and the first that matches takes the line;
// [Profile] only sets its flag.
int ProjectFileReader::treat_line() {
  if (upper_.contains("[PROFILE]")) flags_.profile = 1;
  const int profile_result = treat_profile_keyword();
  if (profile_result >= 0) return profile_result;
  const int value_result = treat_value_keyword();
  if (value_result >= 0) return value_result;
  const int data_result = treat_data_section_keyword();
  if (data_result >= 0) return data_result;
  return treat_section_line();
}

// -1 when the line holds none of these keywords.
int ProjectFileReader::treat_profile_keyword() {
  if (upper_.contains("TITLE")) {
    title();
  } else if (upper_.contains("NBSAMPLES")) {
    return nb_samples();
  } else if (upper_.contains("DATATYPE")) {
    data_type();
  } else if (upper_.contains("GENOTYPICDATA")) {
    flags_.genotypic_data = 1;
    switch_value("GenotypicData", profile_.GenotypicData, 0, 74);
  } else if (upper_.contains("LOCUSSEPARATOR")) {
    locus_separator();
  } else if (upper_.contains("GAMETICPHASE")) {
    flags_.gametic_phase = 1;
    switch_value("GameticPhase", profile_.GameticPhase, 1, 89);
  } else if (upper_.contains("RECESSIVEDATA")) {
    flags_.recessive_data = 1;
    switch_value("RecessiveData", profile_.RecessiveData, 0, -1);
  } else {
    return -1;
  }
  return 1;
}

int ProjectFileReader::treat_value_keyword() {
  if (upper_.contains("RECESSIVEALLELE")) {
    recessive_allele();
  } else if (upper_.contains("MISSINGDATA")) {
    missing_data();
  } else if (upper_.contains("FREQUENCY") && !upper_.contains("FREQUENCYTHRESHOLD")) {
    frequency();
  } else if (upper_.contains("COMPDISTMATRIX")) {
    flags_.comp_dist_matrix = 1;
    line_head() << " : Keyword \"CompDistMatrix\" is now obsolete. Please set this parameter "
                   "directly throug the interface\n";
  } else if (upper_.contains("FREQUENCYTHRESHOLD")) {
    flags_.frequency_threshold = 1;
    real_value("FrequencyThreshold", profile_.FrequencyThreshold, 1e-5);
  } else if (upper_.contains("EPSILONVALUE")) {
    flags_.epsilon_value = 1;
    real_value("EpsilonValue", profile_.EpsilonValue, 1e-7);
  } else if (upper_.contains("[DATA]")) {
    flags_.data = 1;
  } else {
    return -1;
  }
  return 1;
}

int ProjectFileReader::treat_data_section_keyword() {
  if (upper_.contains("HAPLOTYPEDEFINITION")) return haplotype_definition();
  if (upper_.contains("HAPLLISTNAME")) return hapl_list_name();
  if (upper_.contains("HAPLLIST") && !upper_.contains("USEDHAPLLIST")) return hapl_list();
  if (upper_.contains("DISTANCEMATRIX")) return distance_matrix();
  if (upper_.contains("MATRIXNAME")) {
    matrix_name();
    return 1;
  }
  if (upper_.contains("MATRIXSIZE")) return matrix_size();
  if (upper_.contains("LABELPOSITION")) return label_position();
  if (upper_.contains("MATRIXDATA")) return matrix_data();
  return -1;
}

// A section reader hands back the line that stopped it, which may open the
// next section.
int ProjectFileReader::treat_section_line() {
  if (upper_.contains("[SAMPLES]")) {
    if (!samples()) return 0;
    take(line_);
  }
  if (upper_.contains("[STRUCTURE]")) {
    if (!structure()) return 0;
    take(line_);
  }
  if (upper_.contains("[MANTEL]")) return mantel();
  return 1;
}

void ProjectFileReader::title() {
  flags_.title = 1;
  if (!checkForPresenceOfEqualSign(line_, "Title", line_number_) ||
      !readStringContent(line_, profile_.Title, "Title", line_number_))
    profile_.Title = "";
}

int ProjectFileReader::nb_samples() {
  flags_.nb_samples = 1;
  double value = 0.0;
  if (!readStringContent(line_, value, "NbSamples", line_number_)) {
    report_error(ERROR, here, 95);
    return 0;
  }
  profile_.NbSamples = truncate_to_int(value);
  return 1;
}

void ProjectFileReader::data_type() {
  flags_.data_type = 1;
  const my_string value = after(upper_, '=');
  for (unsigned char type = data_type_code::DNA; type <= data_type_code::FREQUENCY; ++type) {
    if (value.contains(data_type_name(type))) {
      profile_.DataType = type;
      return;
    }
  }
  profile_.DataType = data_type_code::STANDARD;
  report_error(WARNING, here, 75);
}

// A 0/1 value; anything else gives the default and, with a code, a WARNING.
void ProjectFileReader::switch_value(const char* keyword, int& field, int fallback, int code) {
  double value = 0.0;
  if (readStringContent(line_, value, keyword, line_number_) && (value == 0.0 || value == 1.0)) {
    field = static_cast<int>(value);
    return;
  }
  field = fallback;
  if (code >= 0) report_error(WARNING, here, code);
}

void ProjectFileReader::locus_separator() {
  flags_.locus_separator = 1;
  char named = 0;
  if (named_locus_separator(upper_, named)) {
    profile_.LocusSeparator = named;
    return;
  }
  my_string value;
  if (readStringContent(line_, value, "LocusSeparator", line_number_)) {
    value.remove_blanks();
    if (value.length() == 1) {
      profile_.LocusSeparator = value[0];
      return;
    }
  } else {
    read_value_text(line_, value);
  }
  profile_.LocusSeparator = locus_separator_code::WHITESPACE;
  report_error(WARNING, here, 82);
  line_head() << " : Invalid value ('" << value << "\") assigned to keyword \"LocusSeparator\"\n";
}

void ProjectFileReader::recessive_allele() {
  flags_.recessive_allele = 1;
  my_string value;
  if (!readStringContent(line_, value, "RecessiveAllele", line_number_)) return;
  if (!value.contains(' ')) {
    profile_.RecessiveAllele = value;
    return;
  }
  profile_.RecessiveAllele = "null";
  profile_.RecessiveData = 0;
  report_error(WARNING, here, 90);
  log_invalid(value, "\"", "RecessiveAllele");
}

void ProjectFileReader::missing_data() {
  flags_.missing_data = 1;
  my_string value;
  if (readStringContent(line_, value, "MissingData", line_number_)) {
    value.remove_blanks();
    if (value.length() == 1) {
      profile_.MissingData = value[0];
      return;
    }
  } else {
    read_value_text(line_, value);
  }
  log_invalid(value, "\"", "MissingData");
  report_error(WARNING, here, 78);
  profile_.MissingData = '?';
}

void ProjectFileReader::frequency() {
  flags_.frequency = 1;
  const my_string value = after(upper_, '=');
  if (value.contains("ABS")) {
    profile_.Frequency = 0;
  } else if (value.contains("REL")) {
    profile_.Frequency = 1;
  } else {
    log_invalid(after(line_, '='), "\"", "Frequency");
    profile_.Frequency = 0;
    report_error(WARNING, here, 87);
  }
}

void ProjectFileReader::real_value(const char* keyword, double& field, double fallback) {
  double value = 0.0;
  field = readStringContent(line_, value, keyword, line_number_) ? value : fallback;
}

int ProjectFileReader::haplotype_definition() {
  if (!flags_.data) {
    line_head() << " : HaplotypeDefinition keyword declared before the beginning of the 'Data' "
                   "section...\n";
    return 0;
  }
  flags_.haplotype_definition = 1;
  sections_.begin_haplotype_list(profile_);
  return 1;
}

int ProjectFileReader::hapl_list_name() {
  if (!flags_.haplotype_definition) {
    line_head() << " : HaplListName keyword declared before the beginning of the "
                   "'HaplotypeDefinition' section...\n";
    return 0;
  }
  flags_.hapl_list_name = 1;
  my_string name;
  if (!readStringContent(line_, name, "HaplListName", line_number_)) {
    report_error(WARNING, here, 34);
    name = "";
  }
  sections_.set_haplotype_list_name(name);
  return 1;
}

// An EXTERN file named in quotes, relative to the project's folder unless
// the name is absolute.
int ProjectFileReader::open_external(const char* keyword, std::ifstream& file, my_string& path) {
  my_string name;
  readStringContent(line_, name, keyword, line_number_);
  path = is_absolute_path(name) ? name : directory_ + name;
  // A folder opens as a stream on some systems; it is no file to read.
  std::error_code ignored;
  if (!name.is_empty() && !std::filesystem::is_directory(path.c_str(), ignored))
    file.open(path.c_str());
  if (!file.is_open()) {
    log_stream() << "\tWarning: External file \"" << path << "\" listed on line "
                 << fmt::integer(line_number_)
                 << " cannot be open. Check that it exists. Aborting reading project\n";
    report_error(ERROR, here, 200);
    return 0;
  }
  return 1;
}

int ProjectFileReader::hapl_list() {
  if (!flags_.haplotype_definition) {
    line_head() << " : HaplList keyword declared before the beginning of the "
                   "'HaplotypeDefinition' section...\n";
    log_stream() << "\t Stopping reading input file!\n";
    return 0;
  }
  flags_.hapl_list = 1;
  log_stream() << "Reading Haplotype List ...\n";
  const long long start = clock_ms();
  const int external = upper_.contains("EXTERN") ? 1 : 0;
  std::ifstream file;
  if (external) {
    my_string path;
    if (!open_external("HaplList", file, path)) return 0;
    log_stream() << "\tReading haplotype list in external file \"" << path << "\"\n";
  }
  std::istream& source = external ? static_cast<std::istream&>(file) : is_;
  int lines_read = external ? 0 : line_number_;
  const int ok = sections_.read_haplotype_list(source, profile_, external, lines_read);
  if (!external) line_number_ = lines_read;
  if (!ok) return 0;
  if (!external) log_done(start, "done ! (", " ms)\n");
  return 1;
}

int ProjectFileReader::distance_matrix() {
  if (!flags_.data) {
    line_head() << " : DistanceMatrix keyword declared before the beginning of the 'Data' "
                   "section..., aborting project reading!\n";
    return 0;
  }
  flags_.distance_matrix = 1;
  sections_.begin_distance_matrix(profile_);
  return 1;
}

void ProjectFileReader::matrix_name() {
  flags_.matrix_name = 1;
  my_string name;
  if (readStringContent(line_, name, "MatrixName", line_number_)) {
    sections_.set_distance_matrix_name(name);
    return;
  }
  log_stream() << "\tWarning: Unable to read MatrixName on line " << fmt::integer(line_number_)
               << '\n';
  report_error(WARNING, here, 24);
  sections_.set_distance_matrix_name("undefined");
}

int ProjectFileReader::matrix_size() {
  flags_.matrix_size = 1;
  double value = 0.0;
  if (!readStringContent(line_, value, "MatrixSize", line_number_)) {
    log_stream() << "\tWarning: Unable to read MatrixSize on line " << fmt::integer(line_number_)
                 << ". Aborting project reading.\n";
    report_error(ERROR, here, 15);
    return 0;
  }
  const int size = truncate_to_int(value);
  const my_string& name = sections_.distance_matrix_name();
  if (size <= 0) {
    log_stream() << "\tBad size (" << fmt::integer(size) << ") for distance matrix \"" << name
                 << "\". Check size (" << fmt::integer(size) << ") reported on line "
                 << fmt::integer(line_number_) << '\n';
    report_error(ERROR, here, 15);
    return 0;
  }
  if (!sections_.allocate_distance_matrix(size)) {
    log_stream() << "\tUnable to allocate memory for distance matrix \"" << name
                 << "\". Required size (" << fmt::integer(size) << ") reported on line "
                 << fmt::integer(line_number_) << " is probably too big...\n";
    return 0;
  }
  return 1;
}

int ProjectFileReader::label_position() {
  flags_.label_position = 1;
  if (upper_.contains("LINE")) {
    sections_.set_labels_in_column(0);
  } else if (upper_.contains("COLUMN")) {
    sections_.set_labels_in_column(1);
  } else {
    log_stream() << "\tInvalid keyword for LabelPosition on line " << fmt::integer(line_number_)
                 << ". Aborting reading project.\n";
    report_error(ERROR, here, 16);
    return 0;
  }
  return 1;
}

int ProjectFileReader::matrix_data() {
  flags_.matrix_data = 1;
  const int external = upper_.contains("EXTERN") ? 1 : 0;
  std::ifstream file;
  if (external) {
    my_string path;
    if (!open_external("Extern Distance Matrix ", file, path)) return 0;
    log_stream() << "\tReading Distance Matrix in external file \"" << path << "\"\n";
    report_error(WARNING, here, 17);
  }
  log_stream() << "\tReading distance matrix ...\n";
  const long long start = clock_ms();
  std::istream& source = external ? static_cast<std::istream&>(file) : is_;
  int lines_read = external ? 0 : line_number_;
  const int ok = sections_.read_distance_matrix(source, external, lines_read);
  if (!external) line_number_ = lines_read;
  if (!ok) {
    log_stream() << "\t\tProblems in reading DistanceMatrix section... aborting reading  project "
                    "file.\n";
    return 0;
  }
  log_done(start);
  return 1;
}

int ProjectFileReader::samples() {
  flags_.samples = 1;
  log_stream() << "\tReading Samples section ...\n";
  const long long start = clock_ms();
  if (!sections_.read_samples(is_, profile_, line_number_, line_, flags_)) {
    log_stream() << "\tProblems in reading Samples section... aborting reading  project file.\n";
    return 0;
  }
  log_done(start, "\tdone reading Samples section! (", " ms)\n");
  return 1;
}

int ProjectFileReader::structure() {
  if (!flags_.samples || sections_.sample_count() == 0) {
    log_stream() << (flags_.samples ? "No samples were defined before the [STRUCTURE] section. "
                                    : "[STRUCTURE] section defined before the [SAMPLES] section. ")
                 << "Aborting reading project\n";
    report_error(ERROR, here, 172);
    return 0;
  }
  flags_.structure = 1;
  log_stream() << "\tReading genetic structure ...\n";
  const long long start = clock_ms();
  if (!sections_.read_structure(is_, profile_, line_number_, line_, flags_)) return 0;
  log_done(start, "\tdone reading genetic structure! (", " ms)\n");
  return 1;
}

int ProjectFileReader::mantel() {
  if (!flags_.samples || sections_.sample_count() == 0) {
    log_stream() << (flags_.samples ? "No samples were defined before the [MANTEL] section. "
                                    : "[MANTEL] section defined before the [SAMPLES] section. ")
                 << "Aborting reading project\n";
    report_error(ERROR, here, 196);
    return 0;
  }
  flags_.mantel = 1;
  log_stream() << "\tReading mantel section ...\n";
  const long long start = clock_ms();
  if (!sections_.read_mantel(is_, profile_, line_number_, line_, flags_)) return 0;
  log_done(start);
  return 1;
}

int ProjectFileReader::judge(long long start) {
  const bool fault = log_missing_keywords(flags_, profile_);
  log_done(start, "done ! (", " ms)\n");
  if (!fault) return 1;
  report_error(ERROR, here, 203);
  return 0;
}

}  // namespace

int read_project_file(std::istream& is, ProfileSettings& profile, ProjectSectionReaders& sections,
                      const my_string& project_directory) {
  return ProjectFileReader(is, profile, sections, project_directory).read();
}
