#include "input/sample_reader.h"

#include <climits>
#include <cmath>
#include <memory>
#include <string>

#include "input/line_reader.h"
#include "input/reader_support.h"
#include "model/report.h"
#include "output/number_format.h"

namespace {

using reader_support::split_blanks;
using Tokens = std::vector<std::string_view>;

constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* gametic_routine = "Population::New_read_gametic_data()";
constexpr const char* genotypic_routine = "Population::New_read_genotypic_data()";

// Counts added without overflow: absurd counts in a file must not break the run.
int add_count(int a, long long b) {
  const long long sum = static_cast<long long>(a) + b;
  if (sum > INT_MAX) return INT_MAX;
  if (sum < INT_MIN) return INT_MIN;
  return static_cast<int>(sum);
}

// The walk over the data lines of one sample, shared by both kinds of data.
class SampleLines {
 public:
  SampleLines(Population& sample, std::istream& is, int external, int& line_number, my_string& line,
              const char* routine)
      : sample_(sample),
        is_(is),
        external_(external != 0),
        line_number_(line_number),
        line_(line),
        routine_(routine) {}

  // The next data line, leading blanks and tabs passed over, counted, cut at
  // its '#' and at a '}' (which ends the sample). False when the stream ended
  // or the brace stood alone.
  bool next() {
    if (closed_ || !is_.good()) return false;
    while (is_.peek() == ' ' || is_.peek() == '\t') is_.get();
    if (!reader_support::next_line(is_, line_, line_number_)) return false;
    return cut_at_brace();
  }

  // The second line of an individual, read whole; false at the end of the stream.
  bool next_whole_line() {
    if (!reader_support::next_line(is_, line_, line_number_)) return false;
    cut_at_brace();
    return true;
  }

  // A line of another section met before the closing brace: reported, true.
  bool opens_section() {
    const my_string upper = reader_support::upper(line_);
    if (!upper.contains("SAMPLENAME") && !upper.contains("[STRUCTURE]") &&
        !upper.contains("[MANTEL]"))
      return false;
    log_stream() << "\tMissing closing brace for sample \"" << sample_.SampleName
                 << "\". New section found on line " << fmt::integer(line_number_)
                 << " before finding closing brace.  Aborting reading procedure\n";
    report_error(ERROR, routine_, 194);
    return true;
  }

  // The check at the end of the data: the project file needs its brace.
  bool brace_missing() const {
    if (closed_ || external_) return false;
    log_stream() << "\tMissing closing brace for sample \"" << sample_.SampleName
                 << "\", aborting reading procedure\n";
    report_error(ERROR, routine_, 194);
    return true;
  }

  int line_number() const { return line_number_; }
  const my_string& line() const { return line_; }

 private:
  bool cut_at_brace() {
    const int brace = line_.find('}');
    if (brace < 0) return true;
    closed_ = true;
    line_.erase(brace, line_.length() - brace);
    return !reader_support::is_blank(line_.str());
  }

  Population& sample_;
  std::istream& is_;
  bool external_;
  int& line_number_;
  my_string& line_;
  const char* routine_;
  bool closed_ = false;
};

// The sums of one sample: counts, and relative frequencies when they are given.
struct FrequencySums {
  long long counts = 0;
  double relative = 0.0;
};

// The count of a line: the value itself (ABS), or the share of SampleSize (REL).
int count_of(const Population& sample, double value, FrequencySums& sums) {
  if (sample.profile.Frequency == 1) {
    sums.relative += value;
    return truncate_to_int(sample.sample_size * value + 0.5);
  }
  return truncate_to_int(value);
}

void log_loci_mismatch(const char* routine, const char* what, std::string_view id, int now,
                       int before, int line) {
  log_stream() << "\tNumber of loci for " << what << " \"" << id << "\" is different ("
               << fmt::integer(now) << ") from that previously defined (" << fmt::integer(before)
               << ") on line " << fmt::integer(line) << '\n';
  report_error(ERROR, routine, 69);
}

// The end-of-data checks on the sums; sample_size takes the counts (times `copies`).
void close_sums(Population& sample, const FrequencySums& sums, const char* routine, int size_code,
                int copies) {
  const int declared = sample.gene_copies();
  if (sample.profile.Frequency == 1) {
    if (std::fabs(sums.relative - 1.0) > 0.001)
      report_error(
          WARNING,
          std::string(routine) + " sum of Relative frequencies=" + fmt::to_fixed(sums.relative, 6),
          174);
  } else if (sums.counts != declared) {
    report_error(WARNING,
                 std::string(routine) + " (SampleSize=" + fmt::integer(declared).text +
                     "; Sum. Freq.=" + fmt::integer(sums.counts).text + ")",
                 size_code);
  }
  sample.set_sample_size(static_cast<double>(sums.counts) * copies);
}

// --- Haplotypic data ---------------------------------------------------------

class GameticReader {
 public:
  GameticReader(Population& sample, SampleLines& lines, Haplo_DB& db)
      : sample_(sample), lines_(lines), db_(db) {}

  int read() {
    sample_.Nb_haplo = 0;
    while (lines_.next()) {
      if (lines_.opens_section()) return 0;
      if (!read_line()) return 0;
    }
    if (lines_.brace_missing()) return 0;
    close_sums(sample_, sums_, gametic_routine, 141, 1);
    return 1;
  }

 private:
  int n() const { return lines_.line_number(); }

  int read_line() {
    const std::string text = lines_.line().str();
    const Tokens tokens = split_blanks(text);
    const std::string_view id = tokens.empty() ? std::string_view() : tokens[0];
    HaploDef* def = db_.find(id);
    const bool is_new = def == nullptr;
    if (is_new && (def = db_.add(std::make_unique<HaploDef>(my_string(id)))) == nullptr) {
      log_stream() << "\tHaplotype defined on line " << fmt::integer(n())
                   << " could not be entered into Haplotype data base, aborting reading "
                      "procedure\n";
      report_error(ERROR, gametic_routine, 63);
      return 0;
    }
    double value = 0.0;
    if (!read_frequency(tokens, id, value)) return 0;
    const int count = count_of(sample_, value, sums_);
    sums_.counts += count;
    if (!sample_.frequency_data() && !read_definition(tokens, id, *def, is_new)) return 0;
    if (count != 0) {
      sample_.haplo_list.push_back(PHaploDef{def, count});
      def->count = add_count(def->count, count);
      ++sample_.Nb_haplo;
    }
    return 1;
  }

  int read_frequency(const Tokens& tokens, std::string_view id, double& value) const {
    if (tokens.size() < 2) {
      log_stream() << "\tUnable to read haplotype \"" << id << "\" frequency on line "
                   << fmt::integer(n()) << ", aborting reading procedure\n";
      report_error(ERROR, gametic_routine, 144);
      return 0;
    }
    if (!reader_support::parse_number(tokens[1], value)) {
      log_stream() << "\tProblem reading haplotype frequency (\"" << tokens[1] << "\") on line "
                   << fmt::integer(n()) << " . Aborting reading file\n";
      report_error(ERROR, gametic_routine, 144);
      return 0;
    }
    return 1;
  }

  int read_definition(const Tokens& tokens, std::string_view id, HaploDef& def, bool is_new) {
    if (tokens.size() < 3) {
      if (!is_new) return 1;  // a known haplotype may go by its id alone
      log_stream() << "\tHaplotype \"" << id << "\" listed on line " << fmt::integer(n())
                   << " is undefined. Aborting reading project.\n";
      report_error(ERROR, gametic_routine, 63);
      return 0;
    }
    const char separator = sample_.separator();
    const my_string text = reader_support::join_tokens(tokens, 2, separator);
    if (!def.hapl_content.is_empty()) {
      if (!same_as_before(text, id, def)) return 0;
    } else if (!def.read_data(text, sample_.profile)) {
      log_stream() << "\tUnable to read haplotype definition on line " << fmt::integer(n())
                   << ". Aborting reading project.\n";
      report_error(ERROR, gametic_routine, 33);
      return 0;
    }
    const int loci = static_cast<int>(tokens.size()) - 2;
    if (separator == 0) return 1;
    if (first_loci_ < 0) first_loci_ = loci;
    if (loci == first_loci_) return 1;
    log_loci_mismatch(gametic_routine, "haplotype", id, loci, first_loci_, n());
    return 0;
  }

  // A definition given again must repeat the first one.
  int same_as_before(const my_string& text, std::string_view id, const HaploDef& def) const {
    report_error(WARNING, std::string(gametic_routine) + " (" + std::string(id) + ")", 146);
    log_stream() << "\tHaplotype " << id << " defined on line " << fmt::integer(n())
                 << " has already been defined previously...\n";
    if (text == def.hapl_content) return 1;
    log_stream() << "\tDefinition of haplotype " << id << " defined on line " << fmt::integer(n())
                 << " does not match its previous definition, aborting reading project.\n";
    report_error(ERROR, gametic_routine, 31);
    return 0;
  }

  Population& sample_;
  SampleLines& lines_;
  Haplo_DB& db_;
  FrequencySums sums_;
  int first_loci_ = -1;  // tokens of the first defining line, when a separator is in force
};

// --- Genotypic data ----------------------------------------------------------

class GenotypicReader {
 public:
  GenotypicReader(Population& sample, SampleLines& lines) : sample_(sample), lines_(lines) {}

  int read() {
    sample_.Nb_haplo = 0;
    while (lines_.next()) {
      if (lines_.opens_section()) return 0;
      if (!read_individual()) return 0;
    }
    if (lines_.brace_missing()) return 0;
    close_sums(sample_, sums_, genotypic_routine, 148, 2);
    return 1;
  }

 private:
  int n() const { return lines_.line_number(); }

  int fail_tail(int code) const {
    report_error(ERROR, genotypic_routine, code);
    return 0;
  }

  int read_individual() {
    const std::string first = lines_.line().str();
    const Tokens tokens = split_blanks(first);
    if (tokens.empty()) {
      log_stream() << "\tUnable to read genotype ID on line " << fmt::integer(n())
                   << ", aborting reading procedure\n";
      return fail_tail(150);
    }
    const std::string id(tokens[0]);
    double value = 0.0;
    if (tokens.size() < 2) {
      log_stream() << "\tUnable to read read genotype frequency on line " << fmt::integer(n())
                   << ". Aborting reading project\n";
      return fail_tail(149);
    }
    if (!reader_support::parse_number(tokens[1], value)) {
      log_stream() << "\tProblem reading genotype frequency (\"" << tokens[1] << "\") on line "
                   << fmt::integer(n()) << " . Aborting reading project\n";
      return fail_tail(149);
    }
    const int count = count_of(sample_, value, sums_);
    sums_.counts += count;
    my_string gamete1;
    my_string gamete2;
    if (!first_gamete(tokens, id, gamete1) || !second_gamete(id, gamete2)) return 0;
    if (count == 0) return 1;
    auto phenotype = std::make_unique<TPhenotype>();
    phenotype->pheno_name = id;
    phenotype->freq = count;
    phenotype->line1 = gamete1;
    phenotype->line2 = gamete2;
    sample_.pheno_db.add(std::move(phenotype));
    sample_.Nb_haplo += 2;  // one line a gamete
    return 1;
  }

  int first_gamete(const Tokens& tokens, const std::string& id, my_string& gamete) {
    if (tokens.size() < 3) {
      log_stream() << "\tUnable to read genotype \"" << id << "\" definition on line "
                   << fmt::integer(n()) << ". Aborting reading project\n";
      return fail_tail(150);
    }
    if (!gamete_text(tokens, 2, gamete)) {
      log_stream() << "\tUnable to read phenotype \"" << id << "\" definition on line "
                   << fmt::integer(n()) << ". Aborting reading project\n";
      return fail_tail(150);
    }
    return same_loci(id, static_cast<int>(tokens.size()) - 2);
  }

  int second_gamete(const std::string& id, my_string& gamete) {
    const bool read = lines_.next_whole_line();
    if (read && lines_.opens_section()) return 0;
    const std::string text = read ? lines_.line().str() : std::string();
    const Tokens tokens = split_blanks(text);
    if (tokens.empty() || !gamete_text(tokens, 0, gamete)) {
      log_stream() << "\tUnable to read genotype \"" << id << "\" definition on line "
                   << fmt::integer(n()) << ", aborting reading procedure\n";
      return fail_tail(150);
    }
    return same_loci(id, static_cast<int>(tokens.size()));
  }

  // The tokens joined by the separator, checked as a definition of the data type.
  bool gamete_text(const Tokens& tokens, std::size_t first, my_string& gamete) const {
    HaploDef scratch;
    if (!scratch.read_data(reader_support::join_tokens(tokens, first, sample_.separator()),
                           sample_.profile))
      return false;
    gamete = scratch.hapl_content;
    return true;
  }

  int same_loci(std::string_view id, int loci) {
    if (sample_.separator() == 0) return 1;
    if (first_loci_ < 0) first_loci_ = loci;
    if (loci == first_loci_) return 1;
    log_loci_mismatch(genotypic_routine, "genotype", id, loci, first_loci_, n());
    return 0;
  }

  Population& sample_;
  SampleLines& lines_;
  FrequencySums sums_;
  int first_loci_ = -1;  // tokens of the first gamete of the sample, when a separator is in force
};

}  // namespace

int New_read_gametic_data(Population& sample, std::istream& is, Haplo_DB& haplo_db, int external,
                          int& line_number, my_string& line) {
  if (!is.good()) return 0;  // an EXTERN file that could not be opened
  SampleLines lines(sample, is, external, line_number, line, gametic_routine);
  return GameticReader(sample, lines, haplo_db).read();
}

int New_read_genotypic_data(Population& sample, std::istream& is, int external, int& line_number,
                            my_string& line) {
  if (!is.good()) return 0;
  SampleLines lines(sample, is, external, line_number, line, genotypic_routine);
  return GenotypicReader(sample, lines).read();
}
