#include "input/samples.h"

#include <fstream>

#include "input/line_reader.h"
#include "input/reader_support.h"
#include "input/sample_reader.h"
#include "model/report.h"
#include "model/vectors.h"
#include "output/number_format.h"

namespace {

constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* routine = "Samples::NewRead()";

// A line whose first word, in lower case, begins with "samplename".
bool names_a_sample(my_string line) {
  line.to_lower();
  const std::string& text = line.str();
  const std::size_t first = text.find_first_not_of(" \t");
  return first != std::string::npos && text.compare(first, 10, "samplename") == 0;
}

// The text between the first two double quotes behind the '='; empty without them.
my_string quoted_name(const my_string& line) {
  const std::string value = after(line, '=').str();
  const std::size_t open = value.find('"');
  if (open == std::string::npos) return my_string();
  const std::size_t close = value.find('"', open + 1);
  if (close == std::string::npos) return my_string();
  return my_string(std::string_view(value).substr(open + 1, close - open - 1));
}

}  // namespace

PopGenetics* Samples::operator[](int index) const {
  if (index < 0 || index >= size()) return nullptr;
  return list_[static_cast<std::size_t>(index)].get();
}

int Samples::find_by_name(std::string_view name) const {
  for (std::size_t i = 0; i < list_.size(); ++i) {
    if (list_[i]->SampleName == name) return static_cast<int>(i);
  }
  return kNotFound;
}

int Samples::NewRead(std::istream& is, ProfileSettings& profile, Haplo_DB& haplo_db,
                     int& line_number, my_string& line, unsigned char& name_seen,
                     unsigned char& size_seen, unsigned char& data_seen) {
  clear();
  copy_profile(profile);
  int count = 0;
  name_seen = 0;
  my_string name = "noName";
  int size = 0;
  while (reader_support::next_line(is, line, line_number)) {
    const my_string upper = reader_support::upper(line);
    if (upper.contains("[STRUCTURE]") || upper.contains("[MANTEL]")) {
      if (count != NbSamples) {
        report_error(WARNING, routine, 95);
        log_stream() << "Warning: " << fmt::integer(count)
                     << " samples are actually listed in project file, while "
                     << fmt::integer(NbSamples) << " are defined in the [[Profile]] section\n";
      }
      return 1;
    }
    if (upper.contains("SAMPLENAME")) {
      name_seen = 1;
      if (!checkForPresenceOfEqualSign(line, "SampleName", line_number) ||
          !readStringContent(line, name, "SampleName", line_number)) {
        report_error(WARNING, routine, 62);
        is.setstate(std::ios::failbit);
        break;
      }
    } else if (upper.contains("SAMPLESIZE")) {
      size_seen = 1;
      double value = 0.0;
      if (!readStringContent(line, value, "SampleSize", line_number)) {
        report_error(WARNING, routine, 66);
        is.setstate(std::ios::failbit);
        break;
      }
      size = truncate_to_int(value);
    } else if (upper.contains("SAMPLEDATA")) {
      if (!name_seen) {
        report_error(WARNING, routine, 207);
        log_stream() << "Warning: Keyword \"SampleName\" not found while data is defined for "
                        "population #"
                     << fmt::integer(count + 1) << '\n';
        return 0;
      }
      data_seen = 1;
      if (!read_sample(is, haplo_db, line_number, line, name, size)) return 0;
      ++count;
      name_seen = 0;
      name = "noName";
      size = 0;
    }
  }
  if (count != NbSamples) {
    report_error(WARNING, routine, 95);
    log_stream() << "Warning: " << fmt::integer(count)
                 << " samples are actually listed in project file, while \n"
                 << fmt::integer(NbSamples)
                 << " are defined in the [[Profile]] section. Adjusting no. of samples...\n";
    NbSamples = count;
    profile.NbSamples = count;
  }
  return 1;
}

int Samples::read_sample(std::istream& is, Haplo_DB& haplo_db, int& line_number, my_string& line,
                         const my_string& name, int size) {
  Population sample;
  sample.profile = static_cast<const ProfileSettings&>(*this);
  sample.SampleName = name;
  sample.sample_size = size;
  sample.sample_index = -1;
  const int external = reader_support::upper(line).contains("EXTERN") ? 1 : 0;
  std::ifstream file;
  if (external) {
    report_error(report_kind::INFO, routine, 191);
    my_string path;
    if (!reader_support::open_extern(file, line, "Extern sample data", line_number,
                                     project_directory_, path)) {
      log_stream() << "\tWarning: External file \"" << path << "\" listed on line "
                   << fmt::integer(line_number) << " cannot be open. Check that it exists...\n";
    } else {
      log_stream() << "\tReading sample data for population \"" << name << "\" in external file\""
                   << path << "\"\n";
    }
  } else {
    log_stream() << "\tReading " << name << " ... ";
  }
  const long long start = reader_support::clock_ms();
  // An EXTERN file counts its own lines, so that reports name the line of that file.
  int extern_lines = 0;
  my_string extern_line;
  std::istream& source = external ? static_cast<std::istream&>(file) : is;
  int& lines = external ? extern_lines : line_number;
  my_string& current = external ? extern_line : line;
  const int ok = GenotypicData != 0
                     ? New_read_genotypic_data(sample, source, external, lines, current)
                     : New_read_gametic_data(sample, source, haplo_db, external, lines, current);
  if (!ok) {
    report_error(ERROR, routine, 63);
    return 0;
  }
  log_stream() << "\tdone ! (" << fmt::integer(reader_support::clock_ms() - start) << " ms)\n";
  add_sample(sample);
  return 1;
}

// A name that is taken already gets the number of the try appended, again
// and again, up to 100 times.
void Samples::add_sample(Population& sample) {
  for (int attempt = 0; attempt < 100 && find_by_name(sample.SampleName.str()) != kNotFound;
       ++attempt) {
    sample.SampleName += fmt::integer(attempt).text;
    report_error(WARNING, routine, 65);
  }
  list_.push_back(make_sample(DataType, sample));
}

int Samples::explore(std::istream& is, ProfileSettings& profile, const std::string& file_name) {
  std::ofstream out(file_name, std::ios::trunc);
  out << fmt::integer(profile.NbSamples) << '\n';
  my_string line;
  for (int sample = 0; sample < profile.NbSamples; ++sample) {
    for (;;) {
      if (!is.good()) {
        report_error(WARNING, "Samples::explore(): Unable to extract all population names", 62);
        return 0;
      }
      line.read_line(is);
      if (names_a_sample(line)) break;
    }
    out << quoted_name(line) << '\n';
  }
  return 1;
}
