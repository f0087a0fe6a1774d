// The character-based profile reader: each keyword's value forms, its
// fallbacks with their codes, and the end of the profile.
#include "input/profile_reader.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "input/report_capture.h"

namespace {

using input_testing::ReportCapture;

struct ValueCase {
  std::string line;  // one profile line
  int result;
  std::function<std::string(const ProfileSettings&)> field;
  std::string value;
  std::vector<int> codes;
};

std::string str(int v) {
  return std::to_string(v);
}

std::vector<ValueCase> value_cases() {
  const auto title = [](const ProfileSettings& p) { return p.Title.str(); };
  const auto samples = [](const ProfileSettings& p) { return str(p.NbSamples); };
  const auto groups = [](const ProfileSettings& p) { return str(p.NbGroups); };
  const auto genotypic = [](const ProfileSettings& p) { return str(p.GenotypicData); };
  const auto phase = [](const ProfileSettings& p) { return str(p.GameticPhase); };
  const auto type = [](const ProfileSettings& p) { return str(p.DataType); };
  const auto separator = [](const ProfileSettings& p) { return str(p.LocusSeparator); };
  const auto missing = [](const ProfileSettings& p) { return std::string(1, p.MissingData); };
  const auto recessive = [](const ProfileSettings& p) {
    return str(p.RecessiveData) + " " + p.RecessiveAllele.str();
  };
  const auto frequency = [](const ProfileSettings& p) { return str(p.Frequency); };
  const auto threshold = [](const ProfileSettings& p) {
    return std::to_string(p.FrequencyThreshold);
  };
  const auto hapl_list = [](const ProfileSettings& p) {
    return p.UsedHaplList.str() + "|" + p.ExtHaplFile.str();
  };
  const auto labels = [](const ProfileSettings& p) {
    std::string all;
    for (const my_string& l : p.LociLabels) all += l.str() + ",";
    return all;
  };
  const auto level = [](const ProfileSettings& p) { return str(p.IndividualLevel); };
  const auto loci = [](const ProfileSettings& p) { return str(p.NbLoci); };
  return {
      {"Title = \"My project\"", 1, title, "My project", {}},
      {"Title = = x", 0, title, "", {93}},
      {"NbSamples = 12", 1, samples, "12", {}},
      {"NbSamples = many", 0, samples, "0", {94}},
      {"NbSamples = -1", 0, samples, "0", {95}},
      {"NbGroups = 3", 1, groups, "3", {}},
      {"NbGroups = x", 0, groups, "0", {96}},
      {"NbGroups = -3", 0, groups, "0", {97}},
      {"GenotypicData = 1", 1, genotypic, "1", {}},
      {"GenotypicData = yes", 1, genotypic, "0", {73}},
      {"GenotypicData = 2", 1, genotypic, "0", {74}},
      {"GameticPhase = 0", 1, phase, "0", {}},
      {"GameticPhase = x", 1, phase, "1", {88}},
      {"GameticPhase = 7", 1, phase, "1", {89}},
      {"DataType = \"microsat\"", 1, type, "2", {}},
      {"DataType = FREQUENCY", 1, type, "4", {}},
      {"DataType = DNAX", 1, type, "3", {75}},
      {"LocusSeparator = TAB", 1, separator, "9", {}},
      {"LocusSeparator = none", 1, separator, "0", {}},
      {"LocusSeparator = ';'", 1, separator, "59", {}},
      {"LocusSeparator = |", 1, separator, "124", {}},
      {"LocusSeparator = x", 1, separator, "32", {82}},
      {"MissingData = '-'", 1, missing, "-", {}},
      {"MissingData = \"NA\"", 1, missing, "?", {78}},
      {"RecessiveData = 1", 1, recessive, "1 null", {}},
      {"RecessiveAllele = \"a b\"", 1, recessive, "0 null", {90}},
      {"RecessiveAllele = \"000\"", 1, recessive, "0 000", {}},
      {"Frequency = REL", 1, frequency, "1", {}},
      {"Frequency = \"percent\"", 1, frequency, "0", {87}},
      {"FrequencyThreshold = 0.5", 1, threshold, "0.500000", {}},
      {"FrequencyThreshold = x", 1, threshold, "0.000010", {91}},
      {"UsedHaplList = NONE", 1, hapl_list, "NONE|", {}},
      {"UsedHaplList = EXTERN \"h.txt\"", 1, hapl_list, "EXTERN|h.txt", {}},
      {"UsedHaplList = \"mylist\"", 1, hapl_list, "mylist|", {}},
      {"LociLabels = { \"a\" \"b\"\n  \"c\" }", 1, labels, "a,b,c,", {}},
      {"LociLabels = \"a\"", 1, labels, "", {76}},
      {"IndividualLevel = 1", 1, level, "1", {}},
      {"IndividualLevel = 4", 1, level, "0", {84}},
      {"NbLoci = -4", 1, loci, "0", {81}},
  };
}

TEST(ProfileReader, KeywordValues) {
  for (const ValueCase& c : value_cases()) {
    ReportCapture capture;
    std::istringstream is("# head\n[Profile]\n  " + c.line + "\n  DistMatLabel=\"end\"\n[Data]\n");
    ProfileSettings p;
    EXPECT_EQ(get_profile_settings(is, p), c.result) << c.line;
    EXPECT_EQ(c.field(p), c.value) << c.line;
    EXPECT_EQ(capture.codes(), c.codes) << c.line;
    if (c.result) {
      EXPECT_EQ(p.DistMatLabel, "end") << "reading went on after: " << c.line;
    }
  }
}

TEST(ProfileReader, UnknownKeywordEndsTheProfile) {
  ReportCapture capture;
  std::istringstream is("[Profile]\nTitle=\"a\"\nColour=\"red\"\n[Data]\n");
  ProfileSettings p;
  EXPECT_EQ(get_profile_settings(is, p), 0);
  ASSERT_EQ(capture.codes(), std::vector<int>{98});
  EXPECT_EQ(capture.reports()[0].function, "ProfileSettings::get_profile_settings(ifstream& ifs");
}

TEST(ProfileReader, NoProfileSection) {
  ReportCapture capture;
  std::istringstream is("[Data]\n[[Samples]]\n");
  ProfileSettings p;
  EXPECT_EQ(get_profile_settings(is, p), 0);
  EXPECT_EQ(capture.codes(), std::vector<int>{102});
}

TEST(ProfileReader, ForeignKeywordsArePassedOver) {
  ReportCapture capture;
  std::istringstream is("[Profile]\nSampleName=\"x y\"\nNbSamples=2\n[Data]\n");
  ProfileSettings p;
  EXPECT_EQ(get_profile_settings(is, p), 1);
  EXPECT_EQ(p.NbSamples, 2);
  EXPECT_TRUE(capture.reports().empty());
}

}  // namespace
