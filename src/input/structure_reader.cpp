// The line-based reader of [[Structure]]: StructureName, NbGroups and the
// groups, each `Group= { "sample" "sample" ... }` over one or more lines.
#include <sstream>
#include <string>

#include "input/line_reader.h"
#include "input/reader_support.h"
#include "input/samples.h"
#include "input/stream_reader.h"
#include "input/structure.h"
#include "model/report.h"
#include "model/vectors.h"
#include "output/number_format.h"

namespace {

constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* routine = "Structure::NewReadStructure";

class StructureReader {
 public:
  StructureReader(Structure& structure, const Samples* samples, std::istream& is, int& line_number,
                  my_string& line)
      : structure_(structure), samples_(samples), is_(is), n_(line_number), line_(line) {}

  // What the section held.
  unsigned char name_seen = 0, nb_seen = 0, label_seen = 0, group_seen = 0;

  int read(ProfileSettings& profile) {
    while (reader_support::next_line(is_, line_, n_)) {
      const my_string upper = reader_support::upper(line_);
      if (upper.contains("[MANTEL]")) return 1;
      if (upper.contains("STRUCTURENAME")) {
        name_seen = 1;
        if (upper.contains("EXTERN")) return refuse_extern();
        structure_name();
      } else if (upper.contains("NBGROUPS")) {
        nb_seen = 1;
        nb_groups(profile);
      } else if (upper.contains("DISTMATLABEL")) {
        label_seen = 1;
        log_stream() << "\tWarning: Keyword \"DistMatLabel\" is obsolete. Skipping keyword.\n";
      } else if (upper.contains("INDIVIDUALLEVEL")) {
        log_stream() << "\tWarning: Keyword \"IndividualLevel\" defined on line "
                     << fmt::integer(n_)
                     << " is obsolete. Activation of this option is now made through the "
                        "interface.\n";
      } else if (upper.contains("GROUP")) {
        group_seen = 1;
        const int result = group();
        if (result <= 0 || mantel_met_) return result == 0 ? 0 : 1;
      }
    }
    return end_check();
  }

 private:
  // The end of the section: as many groups as announced.
  int end_check() const {
    if (count_ == structure_.NbGroups) return 1;
    log_stream() << "\tInvalid number of groups defined. " << fmt::integer(structure_.NbGroups)
                 << "were expected, while " << fmt::integer(count_) << " have been found!\n"
                 << "\tCheck your [[Structure]] section, for missing group or unquoted sample "
                    "names\n"
                 << "\tAborting reading project.\n";
    report_error(ERROR, routine, 47);
    return 0;
  }

  int refuse_extern() const {
    report_error(ERROR, routine, 195);
    log_stream() << "\tWarning: External definition of the GENETIC STRUCTURE is not possible "
                    "anymore.\n"
                 << "\tPlease incorporate it into the project. Skipping reading of the Genetic "
                    "structure.\n";
    return end_check();
  }

  void structure_name() {
    if (checkForPresenceOfEqualSign(line_, "StructureName", n_) &&
        readStringContent(line_, structure_.StructureName, "StructureName", n_))
      return;
    log_stream() << "\tWarning: Bad value assigned to StructureName on line " << fmt::integer(n_)
                 << '\n';
    report_error(WARNING, routine, 46);
  }

  void nb_groups(ProfileSettings& profile) {
    double value = 0.0;
    if (readStringContent(line_, value, "NbGroups", n_) && value >= 0.0) {
      structure_.NbGroups = truncate_to_int(value);
    } else {
      report_error(WARNING, routine, 47);
      structure_.NbGroups = 0;
    }
    profile.NbGroups = structure_.NbGroups;
  }

  // 1 after a group, -1 when all groups are read already, 0 after an ERROR.
  int group() {
    if (structure_.NbGroups == 0) {
      log_stream() << "\tError: Unexpected \"Group\" section found on line " << fmt::integer(n_)
                   << ". Expected number of group is zero. Check that \"NbGroups\" has "
                      "been previously defined. Aborting reading project.\n";
      report_error(ERROR, routine, 49);
      return 0;
    }
    if (count_ == structure_.NbGroups) return -1;
    structure_.groups.emplace_back();
    if (!read_group(count_ + 1)) return 0;
    ++count_;
    return 1;
  }

  int read_group(int g) {
    checkForPresenceOfEqualSign(line_, "Group", n_);
    my_string text;
    if (!find_opening_brace(g, text)) return 0;
    for (;;) {
      const int brace = text.find('}');
      if (brace >= 0) text.erase(brace, text.length() - brace);
      if (text.contains('"') && !read_names(text, g)) return 0;
      if (brace >= 0 || !reader_support::next_line(is_, line_, n_)) break;
      if (reader_support::upper(line_).contains("[MANTEL]")) {
        mantel_met_ = true;
        break;
      }
      text = line_;
    }
    if (structure_.groups.back().size() > 0) return 1;
    log_stream() << "\t\tError while exploring structure of Group # " << fmt::integer(g)
                 << ". It does not contain any population sample\n"
                 << "\t\t\tCheck your [[Structure]] section, for unquoted sample names\n"
                 << "\t\tAborting reading project.\n";
    report_error(ERROR, routine, 205);
    return 0;
  }

  // The text behind the '{' of the Group line or, failing that, of a later
  // line; blank lines may come between. Empty at the end of the stream.
  bool find_opening_brace(int g, my_string& text) {
    while (!line_.contains('{')) {
      if (!reader_support::next_line(is_, line_, n_)) {
        text = "";
        return true;
      }
      if (!reader_support::is_blank(line_.str()) && !line_.contains('{')) {
        log_stream() << "\tError: Missing opening brace in Group #" << fmt::integer(g)
                     << ". Aborting reading project\n";
        report_error(ERROR, routine, 50);
        return false;
      }
    }
    text = after(line_, '{');
    return true;
  }

  bool read_names(const my_string& text, int g) {
    std::istringstream names(text.str());
    my_string name;
    for (std::streampos last = -1; names.tellg() != last;) {
      last = names.tellg();
      if (!get_qstring(names, name)) break;
      if (!add_member(name, g)) return false;
    }
    return true;
  }

  bool add_member(const my_string& name, int g) {
    const int index = samples_ != nullptr ? samples_->find_by_name(name.str()) : kNotFound;
    if (index == kNotFound) {
      log_stream() << "\tError: Sample \"" << name << "\" defined in Group #" << fmt::integer(g)
                   << " on line " << fmt::integer(n_)
                   << " has not been defined in the [Samples] section.\n"
                   << "\tAborting reading project.\n";
      report_error(ERROR, routine, 51);
      return false;
    }
    const int holder = structure_.group_of(index);
    if (holder >= 0) {
      log_stream() << "\tError: Sample \"" << name << "\" defined in Group #" << fmt::integer(g)
                   << " on line " << fmt::integer(n_) << " has been alredy included in group #"
                   << fmt::integer(holder + 1) << ".\n"
                   << "\tAborting reading project.\n";
      report_error(ERROR, routine, 206);
      return false;
    }
    structure_.groups.back().members.push_back(index);
    return true;
  }

  Structure& structure_;
  const Samples* samples_;
  std::istream& is_;
  int& n_;
  my_string& line_;
  int count_ = 0;
  bool mantel_met_ = false;  // a [MANTEL] line ended a group: it is handed back
};

}  // namespace

int Structure::NewReadStructure(std::istream& is, ProfileSettings& profile, const Samples* samples,
                                int& line_number, my_string& line, unsigned char& name_seen,
                                unsigned char& nb_seen, unsigned char& label_seen,
                                unsigned char& group_seen) {
  clear();
  copy_profile(profile);
  StructureReader reader(*this, samples, is, line_number, line);
  const int result = reader.read(profile);
  name_seen |= reader.name_seen;
  nb_seen |= reader.nb_seen;
  label_seen |= reader.label_seen;
  group_seen |= reader.group_seen;
  return result;
}
