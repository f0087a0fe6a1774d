// The line-based project reader: each profile key with a bad or missing
// value gives its report, its log line (with the line number) and its
// default; the driver hands sections to their readers in the file's order
// and judges the missing keywords at the end.
#include "input/project_file_reader.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>

#include "input/fake_sections.h"
#include "input/report_capture.h"
#include "support/test_support.h"

namespace {

using input_testing::FakeSections;
using input_testing::ReportCapture;
using input_testing::without_times;

// A small valid project; a test replaces the line of one key (by its key
// name, "" leaving the line empty) so that line numbers stay put.
const std::vector<std::pair<std::string, std::string>> base_lines = {
    {"[Profile]", "[Profile]"},
    {"Title", "  Title=\"T\""},
    {"NbSamples", "  NbSamples=1"},
    {"DataType", "  DataType=DNA"},
    {"GenotypicData", "  GenotypicData=0"},
    {"GameticPhase", "  GameticPhase=1"},
    {"LocusSeparator", "  LocusSeparator=NONE"},
    {"MissingData", "  MissingData='?'"},
    {"RecessiveData", "  RecessiveData=0"},
    {"RecessiveAllele", "  RecessiveAllele=\"null\""},
    {"Frequency", "  Frequency=ABS"},
    {"[Data]", "[Data]"},
    {"[[Samples]]", "[[Samples]]"},
    {"SampleName", "  SampleName=\"p\""},
    {"SampleSize", "  SampleSize=1"},
    {"SampleData", "  SampleData={"},
    {"data", "h 1 A"},
    {"}", "}"},
};

std::string project_text(const std::map<std::string, std::string>& changes,
                         const std::string& tail = "", const char* line_end = "\n") {
  std::string text;
  for (const auto& [key, line] : base_lines) {
    const auto change = changes.find(key);
    text += (change == changes.end() ? line : change->second) + line_end;
  }
  return text + tail;
}

// Line number of a key in the base project.
int line_of(const std::string& key) {
  for (std::size_t i = 0; i < base_lines.size(); ++i)
    if (base_lines[i].first == key) return static_cast<int>(i) + 1;
  return 0;
}

struct ReadResult {
  int result = -1;
  ProfileSettings profile;
  std::string log;
  std::vector<int> codes;
  std::vector<std::string> calls;
};

ReadResult read_text(const std::string& text, FakeSections sections = FakeSections(),
                     const my_string& directory = "") {
  ReportCapture capture;
  std::istringstream is(text);
  ReadResult r;
  r.result = read_project_file(is, r.profile, sections, directory);
  r.log = without_times(capture.text());
  r.codes = capture.codes();
  r.calls = sections.calls;
  return r;
}

std::string head(int line) {
  return "\tProject file, Line #" + std::to_string(line);
}

TEST(ProjectFileReader, ReadsSmallProject) {
  const ReadResult r = read_text(project_text({}));
  EXPECT_EQ(r.result, 1);
  EXPECT_TRUE(r.codes.empty());
  EXPECT_EQ(r.profile.Title, "T");
  EXPECT_EQ(r.profile.NbSamples, 1);
  EXPECT_EQ(r.profile.DataType, data_type_code::DNA);
  EXPECT_EQ(r.profile.LocusSeparator, 0);
  EXPECT_EQ(r.calls, std::vector<std::string>{"samples"});
  EXPECT_EQ(r.log,
            "Reading input file ...\n\tReading Samples section ...\n"
            "\tdone reading Samples section! (N ms)\ndone ! (N ms)\n");
}

TEST(ProjectFileReader, AcceptsCarriageReturnLineEnds) {
  const ReadResult r = read_text(project_text({{"Title", "Title=\"CR\""}}, "", "\r\n"));
  EXPECT_EQ(r.result, 1);
  EXPECT_EQ(r.profile.Title, "CR");
  EXPECT_TRUE(r.codes.empty());
}

struct KeyCase {
  std::string key;
  std::string line;
  int result;
  std::function<std::string(const ProfileSettings&)> field;
  std::string value;
  std::vector<int> codes;
  std::string log;  // expected in the log, line numbers as "@"
};

std::string title(const ProfileSettings& p) {
  return p.Title.str();
}
std::string nb_samples(const ProfileSettings& p) {
  return std::to_string(p.NbSamples);
}
std::string data_type(const ProfileSettings& p) {
  return std::to_string(p.DataType);
}
std::string genotypic(const ProfileSettings& p) {
  return std::to_string(p.GenotypicData);
}
std::string phase(const ProfileSettings& p) {
  return std::to_string(p.GameticPhase);
}
std::string separator(const ProfileSettings& p) {
  return std::to_string(p.LocusSeparator);
}
std::string missing(const ProfileSettings& p) {
  return std::string(1, p.MissingData);
}
std::string recessive(const ProfileSettings& p) {
  return std::to_string(p.RecessiveData) + " " + p.RecessiveAllele.str();
}
std::string frequency(const ProfileSettings& p) {
  return std::to_string(p.Frequency);
}
std::string threshold(const ProfileSettings& p) {
  return std::to_string(p.FrequencyThreshold);
}
std::string epsilon(const ProfileSettings& p) {
  return std::to_string(p.EpsilonValue);
}

const std::string no_quote = "!W190 readStringContent(...)\n@ : No open quote after keyword '";
const std::string bad_value = "!W190 readStringContent(...)\n@ : Bad value after keyword '";

std::vector<KeyCase> key_cases() {
  return {
      {"Title", "Title=Abc", 1, title, "", {190}, no_quote + "Title'\n"},
      {"Title",
       "Title \"Abc\"",
       1,
       title,
       "",
       {188},
       "!W188 checkForPresenceOfEqualSign(...)\n@ : Missing equal sign after keyword 'Title'\n"},
      {"NbSamples", "NbSamples=2.7", 1, nb_samples, "2", {}, ""},
      {"NbSamples",
       "NbSamples=two",
       0,
       nb_samples,
       "0",
       {190, 95},
       bad_value + "NbSamples'\n!E95 Project::newOpen()\n"},
      {"DataType", "DataType=rflp", 1, data_type, "1", {}, ""},
      {"DataType", "DataType=\"MICROSAT\"", 1, data_type, "2", {}, ""},
      {"DataType", "DataType=FREQUENCY", 1, data_type, "4", {}, ""},
      {"DataType", "DataType=SNP", 1, data_type, "3", {75}, "!W75 Project::newOpen()\n"},
      {"GenotypicData", "GenotypicData=2", 1, genotypic, "0", {74}, "!W74 Project::newOpen()\n"},
      {"GenotypicData",
       "GenotypicData=yes",
       1,
       genotypic,
       "0",
       {190, 74},
       bad_value + "GenotypicData'\n!W74 Project::newOpen()\n"},
      {"GameticPhase", "GameticPhase=0", 1, phase, "0", {}, ""},
      {"GameticPhase", "GameticPhase=3", 1, phase, "1", {89}, "!W89 Project::newOpen()\n"},
      {"LocusSeparator", "LocusSeparator=TAB", 1, separator, "9", {}, ""},
      {"LocusSeparator", "LocusSeparator=WHITESPACE", 1, separator, "32", {}, ""},
      {"LocusSeparator", "LocusSeparator=\\0", 1, separator, "0", {}, ""},
      {"LocusSeparator", "LocusSeparator=','", 1, separator, "44", {}, ""},
      {"LocusSeparator", "LocusSeparator=\" ; \"", 1, separator, "59", {}, ""},
      {"LocusSeparator",
       "LocusSeparator='ab'",
       1,
       separator,
       "32",
       {82},
       "!W82 Project::newOpen()\n@ : Invalid value ('ab\") assigned to keyword "
       "\"LocusSeparator\"\n"},
      {"LocusSeparator",
       "LocusSeparator=;",
       1,
       separator,
       "32",
       {190, 82},
       no_quote + "LocusSeparator'\n!W82 Project::newOpen()\n@ : Invalid value (';\") "
                  "assigned to keyword \"LocusSeparator\"\n"},
      {"MissingData", "MissingData=\"-\"", 1, missing, "-", {}, ""},
      {"MissingData",
       "MissingData=\"NA\"",
       1,
       missing,
       "?",
       {78},
       "@ : Invalid value (\"NA\") assigned to keyword \"MissingData\"\n!W78 "
       "Project::newOpen()\n"},
      {"RecessiveData", "RecessiveData=1", 1, recessive, "1 null", {}, ""},
      {"RecessiveData", "RecessiveData=4", 1, recessive, "0 null", {}, ""},
      {"RecessiveAllele", "RecessiveAllele=\"xx\"", 1, recessive, "0 xx", {}, ""},
      {"RecessiveAllele",
       "RecessiveAllele=\"a b\"",
       1,
       recessive,
       "0 null",
       {90},
       "!W90 Project::newOpen()\n@ : Invalid value (\"a b\") assigned to keyword "
       "\"RecessiveAllele\"\n"},
      {"Frequency", "Frequency=rel", 1, frequency, "1", {}, ""},
      {"Frequency",
       "Frequency=PERCENT",
       1,
       frequency,
       "0",
       {87},
       "@ : Invalid value (\"PERCENT\") assigned to keyword \"Frequency\"\n!W87 "
       "Project::newOpen()\n"},
      // FrequencyThreshold is not taken for Frequency.
      {"Frequency", "FrequencyThreshold=0.01", 1, frequency, "0", {}, ""},
      {"Frequency", "FrequencyThreshold=0.01", 1, threshold, "0.010000", {}, ""},
      {"Frequency",
       "FrequencyThreshold=x",
       1,
       threshold,
       "0.000010",
       {190},
       bad_value + "FrequencyThreshold'\n"},
      {"Frequency", "EpsilonValue=1e-3", 1, epsilon, "0.001000", {}, ""},
      {"Frequency", "EpsilonValue=", 1, epsilon, "0.000000", {}, ""},
      {"Frequency",
       "EpsilonValue=1e-3 ",
       1,
       epsilon,
       "0.000000",
       {190},
       bad_value + "EpsilonValue'\n"},
      {"Frequency",
       "CompDistMatrix=1",
       1,
       frequency,
       "0",
       {},
       "@ : Keyword \"CompDistMatrix\" is now obsolete. Please set this parameter directly "
       "throug the interface\n"},
  };
}

std::string with_line(std::string text, int line) {
  for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@'))
    text.replace(at, 1, head(line));
  return text;
}

TEST(ProjectFileReader, ProfileKeyValues) {
  for (const KeyCase& c : key_cases()) {
    const ReadResult r = read_text(project_text({{c.key, c.line}}));
    EXPECT_EQ(r.result, c.result) << c.line;
    EXPECT_EQ(c.field(r.profile), c.value) << c.line;
    EXPECT_EQ(r.codes, c.codes) << c.line;
    EXPECT_NE(r.log.find(with_line(c.log, line_of(c.key))), std::string::npos) << c.line << "\n"
                                                                               << r.log;
  }
}

struct MissingCase {
  std::map<std::string, std::string> changes;
  int result;
  std::string log;
};

TEST(ProjectFileReader, MissingKeywordsJudgedAtTheEnd) {
  const MissingCase cases[] = {
      {{{"[Profile]", ""}}, 0, "\t[PROFILE] section not defined. Check your project file.\n"},
      {{{"NbSamples", ""}},
       0,
       "\tKeyword \"NbSamples\" not found. Undefined number of samples to read. Check your "
       "project file.\n"},
      {{{"DataType", ""}},
       0,
       "\tKeyword \"DataType\" not found. Undefined data type. Check your project file.\n"},
      {{{"GenotypicData", ""}},
       0,
       "\tKeyword \"GenotypicData\" not found. Undefined data type. Check your project file.\n"},
      {{{"LocusSeparator", ""}},
       0,
       "\tKeyword \"LocusSeparator\" not found. Check your project "
       "file.\n"},
      {{{"GenotypicData", "GenotypicData=1"}, {"GameticPhase", ""}},
       0,
       "\tKeyword \"GameticPhase\" not found. Undefined gametic phase for genotypic data. Check "
       "your project file.\n"},
      {{{"RecessiveData", "RecessiveData=1"}, {"RecessiveAllele", ""}},
       1,
       "\tKeyword \"RecessiveAllele\" not found. Undefined recessive allele for recessive data. "
       "\t\tUsing default value (null). Check your project file.\n"},
      {{{"MissingData", ""}},
       1,
       "\tKeyword \"MissingData\" not found. Using default value (\"?\"). Check your project "
       "file.\n"},
      {{{"[Data]", ""}}, 0, "\t[DATA] section not defined. Check your project file.\n"},
      {{{"SampleSize", ""}},
       1,
       "\tKeyword \"SampleSize\" not found in Samples section. Sample size is undefined.\n"
       "\t\tUsing sum of haplotype frequencies. Check your project file.\n"},
      {{{"SampleSize", ""}, {"GenotypicData", "GenotypicData=1"}},
       1,
       "\tKeyword \"SampleSize\" not found in Samples section. Sample size is undefined.\n"
       "\t\tUsing sum of genotype frequencies. Check your project file.\n"},
      {{{"SampleData", ""}},
       0,
       "\tKeyword \"SampleData\" not found in Samples section. Sample data is undefined. Check "
       "your project file.\n"},
      {{{"[[Samples]]", ""}},
       0,
       "\tSection \"Samples\" not found in project. At least one sample needs to be defined. "
       "Check your project file.\n"},
  };
  for (const MissingCase& c : cases) {
    const ReadResult r = read_text(project_text(c.changes));
    EXPECT_EQ(r.result, c.result) << c.log;
    EXPECT_NE(r.log.find(c.log + (c.result ? "" : "done ! (N ms)\n!E203 Project::newOpen()\n")),
              std::string::npos)
        << c.log << "\n--- log:\n"
        << r.log;
    EXPECT_EQ(r.codes, c.result ? std::vector<int>{} : std::vector<int>{203}) << c.log;
  }
}

TEST(ProjectFileReader, FrequencyDataNeedsNoSeparatorNorMissingCode) {
  const ReadResult r = read_text(project_text(
      {{"DataType", "DataType=FREQUENCY"}, {"LocusSeparator", ""}, {"MissingData", ""}}));
  EXPECT_EQ(r.result, 1);
  EXPECT_EQ(r.log.find("not found"), std::string::npos) << r.log;
}

TEST(ProjectFileReader, CommentsAreCutFirst) {
  const ReadResult r = read_text(project_text(
      {{"Frequency", "Frequency=ABS # Title=\"no\""}, {"Title", "# Title=\"no\"\tTitle=\"no\""}}));
  EXPECT_EQ(r.result, 1);
  EXPECT_EQ(r.profile.Title, "");  // the default of a fresh record: the line was all comment
  EXPECT_TRUE(r.codes.empty());
}

}  // namespace
