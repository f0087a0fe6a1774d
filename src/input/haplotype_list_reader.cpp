#include "input/haplotype_list_reader.h"

#include <memory>
#include <string>

#include "input/reader_support.h"
#include "model/report.h"
#include "output/number_format.h"

namespace {

constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* list_routine = "Haplo_DB::NewReadHaplotypeList()";
constexpr const char* data_routine = "Population::NewReadHaplotypeList()";

// A line of another section ends the list.
bool opens_section(const my_string& line) {
  const my_string upper = reader_support::upper(line);
  return upper.contains("DISTANCEMATRIX") || upper.contains("[SAMPLES]") ||
         upper.contains("[STRUCTURE]") || upper.contains("[MANTEL]");
}

class HaplotypeListReader {
 public:
  HaplotypeListReader(Haplo_DB& db, std::istream& is, const ProfileSettings& profile, int external,
                      int& line_number)
      : db_(db), is_(is), profile_(profile), external_(external != 0), n_(line_number) {}

  int read() {
    if (!is_.good()) {
      log_stream() << "\tUnable to read haplotype list, aborting reading procedure\n";
      report_error(ERROR, list_routine, 40);
      return 0;
    }
    my_string line;
    while (!closed_ && reader_support::next_line(is_, line, n_)) {
      if (opens_section(line)) {
        if (external_ || closed_) return 1;
        log_stream() << "\tMissing closing brace in Haplotype definition list, aborting reading "
                        "procedure\n";
        report_error(ERROR, list_routine, 194);
        return 0;
      }
      const int brace = line.find('}');
      if (brace >= 0) {
        closed_ = true;
        line.erase(brace, line.length() - brace);
        if (reader_support::is_blank(line.str())) break;  // the brace heads the line
      }
      if (!read_haplotype(line)) return 0;
    }
    return 1;
  }

 private:
  int read_haplotype(const my_string& line) {
    const std::string text = line.str();
    const std::vector<std::string_view> tokens = reader_support::split_blanks(text);
    const std::string id = tokens.empty() ? std::string() : std::string(tokens[0]);
    if (db_.find(id) != nullptr) {
      log_stream() << "\tHaplotype \"" << id << "\" listed on line " << fmt::integer(n_)
                   << " is already defined previously, aborting reading procedure...\n";
      report_error(ERROR, list_routine, 31);
      return 0;
    }
    const char separator = profile_.LocusSeparator;
    if (separator != 0 && !same_loci(id, static_cast<int>(tokens.size()) - 1)) return 0;
    auto def = std::make_unique<HaploDef>(my_string(id));
    if (!def->read_data(reader_support::join_tokens(tokens, 1, separator), profile_)) {
      log_stream() << "\tUnable to read haplotype definition on line " << fmt::integer(n_)
                   << ", aborting reading procedure\n";
      report_error(ERROR, data_routine, 33);
      return 0;
    }
    db_.add(std::move(def));
    return 1;
  }

  bool same_loci(const std::string& id, int loci) {
    if (first_loci_ < 0) first_loci_ = loci;
    if (loci == first_loci_) return true;
    log_stream() << "\tNumber of loci for haplotype \"" << id << "\" is different ("
                 << fmt::integer(loci) << ") from that previously defined ("
                 << fmt::integer(first_loci_) << ") on line " << fmt::integer(n_) << '\n';
    report_error(ERROR, list_routine, 69);
    return false;
  }

  Haplo_DB& db_;
  std::istream& is_;
  const ProfileSettings& profile_;
  bool external_;
  int& n_;
  bool closed_ = false;
  int first_loci_ = -1;  // tokens of the first definition, when a separator is in force
};

}  // namespace

int NewReadHaplotypeList(Haplo_DB& haplo_db, std::istream& is, const ProfileSettings& profile,
                         int external, int& line_number) {
  return HaplotypeListReader(haplo_db, is, profile, external, line_number).read();
}
