#include "input/profile_reader.h"

#include <limits>
#include <string>
#include <string_view>

#include "input/keywords.h"
#include "input/line_reader.h"
#include "input/stream_reader.h"
#include "model/report.h"

namespace {

constexpr std::streamsize whole_line = std::numeric_limits<std::streamsize>::max();
constexpr unsigned char WARNING = report_kind::WARNING;
constexpr unsigned char ERROR = report_kind::ERROR;

using Reader = int (*)(std::istream&, ProfileSettings&);

// An integer value. A failed read leaves the line behind and the stream usable.
bool read_integer(std::istream& is, int& value) {
  long long read = 0;
  if (is >> read && read >= std::numeric_limits<int>::min() &&
      read <= std::numeric_limits<int>::max()) {
    value = static_cast<int>(read);
    return true;
  }
  is.clear(is.rdstate() & ~std::ios::failbit);
  is.ignore(whole_line, '\n');
  return false;
}

bool read_real(std::istream& is, double& value) {
  double read = 0.0;
  if (is >> read) {
    value = read;
    return true;
  }
  is.clear(is.rdstate() & ~std::ios::failbit);
  is.ignore(whole_line, '\n');
  return false;
}

my_string upper_case(my_string text) {
  text.to_upper();
  return text;
}

// A 0/1 switch: a failed read raises `missing`, another value `invalid`;
// both leave the default.
int read_switch(std::istream& is, int& field, int fallback, int missing, int invalid,
                const char* where) {
  int value = 0;
  if (!read_integer(is, value)) {
    field = fallback;
    if (missing >= 0) report_error(WARNING, where, missing);
    return 1;
  }
  if (value != 0 && value != 1) {
    field = fallback;
    if (invalid >= 0) report_error(WARNING, where, invalid);
    return 1;
  }
  field = value;
  return 1;
}

int read_Title(std::istream& is, ProfileSettings& p) {
  if (get_qstring(is, p.Title)) return 1;
  report_error(ERROR, "ProfileSettings::read_Title()", 93);
  return 0;
}

int read_count(std::istream& is, int& field, int missing, int invalid, const char* where) {
  int value = 0;
  if (!read_integer(is, value)) {
    report_error(ERROR, where, missing);
    return 0;
  }
  if (value < 0) {
    report_error(ERROR, where, invalid);
    return 0;
  }
  field = value;
  return 1;
}

int read_NbSamples(std::istream& is, ProfileSettings& p) {
  return read_count(is, p.NbSamples, 94, 95, "ProfileSettings::read_NbSamples()");
}

int read_NbGroups(std::istream& is, ProfileSettings& p) {
  return read_count(is, p.NbGroups, 96, 97, "ProfileSettings::read_NbGroups()");
}

int read_GenotypicData(std::istream& is, ProfileSettings& p) {
  return read_switch(is, p.GenotypicData, 0, 73, 74, "ProfileSettings::read_GenotypicData()");
}

int read_GameticPhase(std::istream& is, ProfileSettings& p) {
  return read_switch(is, p.GameticPhase, 1, 88, 89, "ProfileSettings::read_GameticPhase()");
}

int read_RecessiveData(std::istream& is, ProfileSettings& p) {
  return read_switch(is, p.RecessiveData, 0, -1, -1, "");
}

int read_Interleave(std::istream& is, ProfileSettings& p) {
  return read_switch(is, p.Interleave, 0, 85, 86, "ProfileSettings::read_Interleave()");
}

int read_IndividualLevel(std::istream& is, ProfileSettings& p) {
  return read_switch(is, p.IndividualLevel, 0, 83, 84, "ProfileSettings::read_IndividualLevel()");
}

int read_GivenDistMat(std::istream& is, ProfileSettings& p) {
  return read_switch(is, p.GivenDistMat, 1, -1, -1, "");
}

int read_NbLoci(std::istream& is, ProfileSettings& p) {
  int value = 0;
  if (read_integer(is, value) && value >= 0) {
    p.NbLoci = value;
  } else {
    p.NbLoci = 0;
    report_error(WARNING, "ProfileSettings::read_NbLoci()", 81);
  }
  return 1;
}

int read_DataType(std::istream& is, ProfileSettings& p) {
  my_string value;
  if (get_qstring(is, value)) {
    const my_string upper = upper_case(value);
    for (unsigned char type = data_type_code::DNA; type <= data_type_code::FREQUENCY; ++type) {
      if (upper == data_type_name(type)) {
        p.DataType = type;
        return 1;
      }
    }
  }
  p.DataType = data_type_code::STANDARD;
  report_error(WARNING, "ProfileSettings::read_DataType()", 75);
  return 1;
}

// A bare separator character: only these are taken without quotes.
bool is_bare_separator(char c) {
  return c == '/' || c == ' ' || c == ',' || c == ':' || c == ';' || c == '|';
}

int read_LocusSeparator(std::istream& is, ProfileSettings& p) {
  my_string raw;
  raw.getline(is);
  strip_comment(raw);
  char named = 0;
  if (named_locus_separator(upper_case(raw), named)) {
    p.LocusSeparator = named;
    return 1;
  }
  my_string value;
  if (raw.contains('"') || raw.contains('\'')) {
    if (readStringContent(raw, value, "LocusSeparator", 0)) value.remove_blanks();
  } else {
    const std::string& text = raw.str();
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
      value = raw.contains(' ') ? " " : "";
    else
      value = std::string_view(text).substr(first, text.find_last_not_of(" \t") - first + 1);
    if (value.length() == 1 && !is_bare_separator(value[0])) value = "";
  }
  if (value.length() == 1) {
    p.LocusSeparator = value[0];
    return 1;
  }
  p.LocusSeparator = locus_separator_code::WHITESPACE;
  report_error(WARNING, "ProfileSettings::read_LocusSeparator()", 82);
  return 1;
}

int read_MissingData(std::istream& is, ProfileSettings& p) {
  my_string value;
  if (get_qstring(is, value) && value.length() == 1) {
    p.MissingData = value[0];
    return 1;
  }
  p.MissingData = '?';
  report_error(WARNING, "ProfileSettings::read_MissingData()", 78);
  return 1;
}

int read_RecessiveAllele(std::istream& is, ProfileSettings& p) {
  my_string value;
  if (get_qstring(is, value) && !value.contains(' ')) {
    p.RecessiveAllele = value;
    return 1;
  }
  p.RecessiveAllele = "null";
  p.RecessiveData = 0;
  report_error(WARNING, "ProfileSettings::read_RecessiveAllele()", 90);
  return 1;
}

int read_Frequency(std::istream& is, ProfileSettings& p) {
  my_string value;
  get_qstring(is, value);
  const my_string upper = upper_case(value);
  if (upper.contains("ABS")) {
    p.Frequency = 0;
  } else if (upper.contains("REL")) {
    p.Frequency = 1;
  } else {
    p.Frequency = 0;
    report_error(WARNING, "ProfileSettings::read_Frequency()", 87);
  }
  return 1;
}

int read_FrequencyThreshold(std::istream& is, ProfileSettings& p) {
  if (!read_real(is, p.FrequencyThreshold)) {
    p.FrequencyThreshold = 1e-5;
    report_error(WARNING, "ProfileSettings::read_FrequencyThreshold()", 91);
  }
  return 1;
}

int read_EpsilonValue(std::istream& is, ProfileSettings& p) {
  if (!read_real(is, p.EpsilonValue)) {
    p.EpsilonValue = 1e-7;
    report_error(WARNING, "ProfileSettings::read_EpsilonValue()", 92);
  }
  return 1;
}

int read_DistMatLabel(std::istream& is, ProfileSettings& p) {
  if (!get_qstring(is, p.DistMatLabel))
    report_error(WARNING, "ProfileSettings::read_DistMatLabel()", 48);
  return 1;
}

int read_ExtHaplFile(std::istream& is, ProfileSettings& p) {
  get_qstring(is, p.ExtHaplFile);
  return 1;
}

int read_UsedHaplList(std::istream& is, ProfileSettings& p) {
  my_string value;
  if (!get_qstring(is, value)) {
    p.UsedHaplList = "NONE";
    report_error(WARNING, "ProfileSettings::read_UsedHaplList()", 77);
    return 1;
  }
  const my_string upper = upper_case(value);
  if (upper == "NONE") {
    p.UsedHaplList = "NONE";
  } else if (upper == "EXTERN") {
    p.UsedHaplList = "EXTERN";
    get_qstring(is, p.ExtHaplFile);
  } else {
    p.UsedHaplList = value;
  }
  return 1;
}

// LociLabels = { "label" "label" ... }, on one line or several.
int read_LociLabels(std::istream& is, ProfileSettings& p) {
  p.LociLabels.clear();
  is >> std::ws;
  if (is.peek() != '{') {
    report_error(WARNING, "ProfileSettings::read_LociLabels()", 76);
    is.ignore(whole_line, '\n');
    return 1;
  }
  is.get();
  for (;;) {
    is >> std::ws;
    if (is.peek() == '}') {
      is.get();
      return 1;
    }
    my_string label;
    if (!get_qstring(is, label)) {
      report_error(WARNING, "ProfileSettings::read_LociLabels()", 76);
      is.clear(is.rdstate() & ~std::ios::failbit);
      is.ignore(whole_line, '\n');
      return 1;
    }
    p.LociLabels.push_back(label);
  }
}

int read_LocusListing(std::istream& is, ProfileSettings&) {
  my_string value;
  if (!get_qstring(is, value)) report_error(WARNING, "ProfileSettings::read_LocusListing()", 79);
  return 1;
}

// Keywords of other sections, and those that no longer set anything.
int pass_over(std::istream& is, ProfileSettings&) {
  is.ignore(whole_line, '\n');
  return 1;
}

struct KeywordReader {
  std::string_view keyword;
  Reader reader;
};

constexpr KeywordReader profile_readers[] = {
    {"title", read_Title},
    {"nbsamples", read_NbSamples},
    {"nbgroups", read_NbGroups},
    {"genotypicdata", read_GenotypicData},
    {"gameticphase", read_GameticPhase},
    {"datatype", read_DataType},
    {"locusseparator", read_LocusSeparator},
    {"missingdata", read_MissingData},
    {"recessivedata", read_RecessiveData},
    {"recessiveallele", read_RecessiveAllele},
    {"frequency", read_Frequency},
    {"frequencythreshold", read_FrequencyThreshold},
    {"epsilonvalue", read_EpsilonValue},
    {"distmatlabel", read_DistMatLabel},
    {"usedhapllist", read_UsedHaplList},
    {"exthaplfile", read_ExtHaplFile},
    {"interleave", read_Interleave},
    {"individuallevel", read_IndividualLevel},
    {"nbloci", read_NbLoci},
    {"locilabels", read_LociLabels},
    {"locuslisting", read_LocusListing},
    {"distmat", read_GivenDistMat},
};

}  // namespace

int named_locus_separator(const my_string& upper_text, char& separator) {
  if (upper_text.contains("TAB")) {
    separator = locus_separator_code::TAB;
  } else if (upper_text.contains("WHITESPACE")) {
    separator = locus_separator_code::WHITESPACE;
  } else if (upper_text.contains("NONE") || upper_text.contains("\\0") ||
             upper_text.contains('\0')) {
    separator = locus_separator_code::NONE;
  } else {
    return 0;
  }
  return 1;
}

int read_profile_id_content(const my_string& keyword, std::istream& is, ProfileSettings& profile) {
  for (const KeywordReader& entry : profile_readers)
    if (keyword == entry.keyword) return entry.reader(is, profile);
  return pass_over(is, profile);
}

int get_profile_settings(std::istream& is, ProfileSettings& profile) {
  if (!position_after(is, "profile", "", "")) return 0;
  my_string keyword;
  while (next_keyword(is, keyword)) {
    if (!is_keyword(keyword)) {
      report_error(ERROR, "ProfileSettings::get_profile_settings(ifstream& ifs", 98);
      return 0;
    }
    if (!read_profile_id_content(keyword, is, profile)) return 0;
  }
  // The profile ends at the next section or with the file; anything else is a fault.
  return is.eof() || is.peek() == '[' ? 1 : 0;
}
