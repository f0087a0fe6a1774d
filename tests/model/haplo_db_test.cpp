#include "model/haplo_db.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "dictionary_test_support.h"
#include "model/matrices.h"

using dictionary_test::ReportCapture;

namespace {

constexpr unsigned char DNA = data_type_code::DNA;
constexpr unsigned char RFLP = data_type_code::RFLP;
constexpr unsigned char MICROSAT = data_type_code::MICROSAT;
constexpr unsigned char STANDARD = data_type_code::STANDARD;
constexpr unsigned char FREQUENCY = data_type_code::FREQUENCY;

struct ReadCase {
  const char* what;
  unsigned char type;
  char separator;
  std::string input;
  int expected_result;
  std::string expected_content;
  int expected_error;  // 0 for none
};

TEST(HaploDef, ReadDataByDataType) {
  const std::vector<ReadCase> cases = {
      {"dna letters gap missing", DNA, 0, "ACGT-?N\n", 1, "ACGT-?N", 0},
      {"dna blanks skipped", DNA, 0, "AC GT\n", 1, "ACGT", 0},
      {"dna digit refused", DNA, 0, "ACG1\n", 0, "", 26},
      {"dna comment", DNA, 0, "ACGT # note\n", 1, "ACGT", 0},
      {"dna cr lf", DNA, 0, "ACGT\r\n", 1, "ACGT", 0},
      {"dna empty line", DNA, 0, "\n", 0, "", 0},
      {"rflp", RFLP, 0, "0101-?\n", 1, "0101-?", 0},
      {"rflp two refused", RFLP, 0, "0102\n", 0, "", 25},
      {"microsat tokens", MICROSAT, ' ', "120 124 ?\n", 1, "120 124 ?", 0},
      {"microsat trailing blanks", MICROSAT, ' ', "120 124   \n", 1, "120 124", 0},
      {"microsat letter refused", MICROSAT, ' ', "12a\n", 0, "", 27},
      {"microsat only blanks", MICROSAT, ' ', "   \n", 0, "", 0},
      {"tab separator, blanks skipped", MICROSAT, '\t', "12\t13\t \t \n", 1, "12\t13\t\t", 0},
      {"standard, blank last", STANDARD, ' ', "12 13 \t \n", 1, "12 13", 0},
      {"tab separator, tab last", MICROSAT, '\t', "12\t13\t\n", 1, "12\t13\t", 0},
      {"standard verbatim", STANDARD, ' ', "A1 b-2 #x\n", 1, "A1 b-2 #x", 0},
      {"frequency stays empty", FREQUENCY, ' ', "whatever 1 2\n", 1, "", 0},
      {"no line end", DNA, 0, "ACG", 1, "ACG", 0},
  };
  for (const ReadCase& c : cases) {
    ReportCapture capture;
    HaploDef def("h");
    std::istringstream is(c.input);
    EXPECT_EQ(def.read_data(is, c.type, c.separator, '?'), c.expected_result) << c.what;
    if (c.expected_result == 1) {
      EXPECT_EQ(def.hapl_content.str(), c.expected_content) << c.what;
    }
    if (c.expected_error == 0) {
      EXPECT_TRUE(capture.all().empty()) << c.what;
    } else {
      ASSERT_EQ(capture.all().size(), 1u) << c.what;
      EXPECT_EQ(
          capture.all()[0],
          (dictionary_test::Report{report_kind::ERROR, "HaploDef::read_data()", c.expected_error}))
          << c.what;
    }
  }
}

TEST(HaploDef, ReadDataStopsAtTheLineEnd) {
  ProfileSettings profile;
  profile.DataType = DNA;
  profile.LocusSeparator = 0;
  std::istringstream is("ACGT\nTTTT\n");
  HaploDef def("h");
  ASSERT_EQ(def.read_data(is, profile), 1);
  EXPECT_EQ(def.hapl_content, "ACGT");
  EXPECT_EQ(def.nb_loci_used, 4);
  std::string rest;
  std::getline(is, rest);
  EXPECT_EQ(rest, "TTTT");
}

TEST(HaploDef, DefinitionsDifferingInTrailingBlanksAreTheSameText) {
  ProfileSettings profile;
  profile.DataType = STANDARD;
  HaploDef a("a");
  HaploDef b("b");
  ASSERT_EQ(a.read_data(my_string("10 12"), profile), 1);
  ASSERT_EQ(b.read_data(my_string("10 12  \t "), profile), 1);
  EXPECT_EQ(a.hapl_content, b.hapl_content);
  EXPECT_EQ(b.nb_loci_used, 2);
}

std::vector<std::string> alleles_text(const HaploDef& def) {
  std::vector<std::string> out;
  for (const TAllele* a : def.alleles) out.push_back(a->allele_name.str());
  return out;
}

TEST(HaploDef, AssociateWithoutSeparatorTakesOneCharacterPerLocus) {
  TAlleleDB db;
  HaploDef h1("h1");
  HaploDef h2("h2");
  h1.hapl_content = "AC?";
  h2.hapl_content = "AG?";
  char separator = 0;
  int loci = 0;
  EXPECT_EQ(h1.associate(db, separator, loci, 2.0), 3);
  EXPECT_EQ(loci, 3);
  h2.associate(db, separator, loci, 1.0);
  EXPECT_EQ(alleles_text(h1), (std::vector<std::string>{"A", "C", "?"}));
  EXPECT_EQ(alleles_text(h2), (std::vector<std::string>{"A", "G", "?"}));
  EXPECT_EQ(h1.alleles[0], h2.alleles[0]);
  EXPECT_EQ(db.find_allele(1, "G")->pos_in_locus, 1);
  EXPECT_EQ(db.find_allele(2, "?")->count, 3.0);
  EXPECT_TRUE(h1.same_alleles(h1));
  EXPECT_FALSE(h1.same_alleles(h2));
}

TEST(HaploDef, ASecondAssociationAddsCountsButNoPointers) {
  TAlleleDB db;
  HaploDef h("h");
  h.hapl_content = "120  124 ?";
  char separator = ' ';
  int loci = 0;
  h.associate(db, separator, loci, 1.0);
  h.associate(db, separator, loci, 4.0);
  EXPECT_EQ(alleles_text(h), (std::vector<std::string>{"120", "124", "?"}));
  EXPECT_EQ(db.find_allele(0, "120")->count, 5.0);
  EXPECT_EQ(db.nb_loci(), 3);
}

TEST(HaploDef, PrintsIdAndContentOrABlankAndTheId) {
  HaploDef dna("hap_1");
  dna.hapl_content = "ACGT";
  HaploDef freq("hap_2");
  std::ostringstream os;
  os << dna << '|' << freq;
  EXPECT_EQ(os.str(), "hap_1\tACGT| hap_2");
}

std::unique_ptr<HaploDef> def(const char* id, const char* content) {
  auto d = std::make_unique<HaploDef>(id);
  d->hapl_content = content;
  return d;
}

TEST(Haplo_DB, LabelsAreUniqueAndKeepInsertionOrder) {
  Haplo_DB db;
  ASSERT_NE(db.add(def("h1", "AAA")), nullptr);
  ASSERT_NE(db.add(def("h2", "AAC")), nullptr);
  ASSERT_NE(db.add(def("h3", "AAA")), nullptr);
  EXPECT_EQ(db.add(def("h2", "TTT")), nullptr);
  ASSERT_EQ(db.size(), 3);
  EXPECT_EQ(db[1]->hapl_content, "AAC");
  EXPECT_EQ(db.find_by_id(HaploDef("h3")), 2);
  EXPECT_EQ(db.find_by_id(HaploDef("h4")), 2147483647);
  EXPECT_EQ(db.find_by_content("AAA"), db[0]);
  EXPECT_EQ(db.find_by_content("GGG"), nullptr);
  EXPECT_EQ(db[3], nullptr);
  db.erase(0);
  EXPECT_EQ(db.find_by_id("h3"), 1);
  EXPECT_EQ(db.find("h1"), nullptr);
  EXPECT_EQ(db.find_by_content("AAA"), db[1]);
}

TEST(Haplo_DB, ResetRestoresTheListName) {
  Haplo_DB db;
  db.HaplListName = "mine";
  db.add(def("h1", "A"));
  db.reset();
  EXPECT_EQ(db.HaplListName, "no_name");
  EXPECT_TRUE(db.empty());
  EXPECT_EQ(db.find("h1"), nullptr);
}

TEST(Haplo_DB, WritesTheSectionOnlyWhenNotEmpty) {
  Haplo_DB db;
  std::ostringstream empty;
  db.write(empty);
  EXPECT_EQ(empty.str(), "");

  db.HaplListName = "UNKNOWN";
  db.add(def("h1", "AC"));
  db.add(def("h2", ""));
  std::ostringstream os;
  db.write(os);
  EXPECT_EQ(os.str(),
            "\t[[HaplotypeDefinition]]\n\n"
            "\t\tHaplListName=\"generated by morvcore\"\n"
            "\t\tHaplList={\n"
            "h1\tAC\n"
            " h2\n"
            "\t\t}\n");
  db.HaplListName = "list A";
  std::ostringstream named;
  db.write(named);
  EXPECT_NE(named.str().find("HaplListName=\"list A\"\n"), std::string::npos);
}

DistMat labelled(const std::vector<const char*>& labels) {
  DistMat m;
  m.set_size(static_cast<int>(labels.size()));
  for (std::size_t i = 0; i < labels.size(); ++i) m.label(static_cast<int>(i)) = labels[i];
  return m;
}

TEST(Haplo_DB, AssociateWithLabelsSkipsUnknownLabels) {
  ReportCapture capture;
  Haplo_DB db;
  db.add(def("h1", "A"));
  db.add(def("h2", "C"));
  DistMat m = labelled({"h2", "hX", "h1"});
  EXPECT_EQ(db.associate_with1(m), 1);
  EXPECT_EQ(db[0]->mat_index, 2);
  EXPECT_EQ(db[1]->mat_index, 0);
  EXPECT_EQ(capture.count(28), 1);
  EXPECT_NE(capture.log_text().find("\"hX\" defined in the labels of the user-defined"),
            std::string::npos);
  EXPECT_NE(
      capture.log_text().find("      During the association of the Distance matrix LABELS and "),
      std::string::npos);
}

TEST(Haplo_DB, AssociateWithLabelsFailsForAHaplotypeWithoutRow) {
  ReportCapture capture;
  Haplo_DB db;
  db.add(def("h1", "A"));
  db.add(def("h2", "C"));
  DistMat m = labelled({"h2", "h3"});
  EXPECT_EQ(db.associate_with1(m), 0);
  EXPECT_EQ(capture.count(173), 1);

  DistMat unlabelled;
  unlabelled.set_size(2);
  unlabelled.drop_labels();
  EXPECT_EQ(db.associate_with1(unlabelled), 0);
  EXPECT_EQ(capture.count(29), 1);
  EXPECT_EQ(db[0]->mat_index, -1);
}

TEST(Haplo_DB, AssociateByPositionNeedsOneRowPerHaplotype) {
  ReportCapture capture;
  Haplo_DB db;
  db.add(def("h1", "A"));
  db.add(def("h2", "C"));
  DistMat two;
  two.set_size(2);
  EXPECT_EQ(db.associate_with2(two), 1);
  EXPECT_EQ(db[1]->mat_index, 1);
  DistMat three;
  three.set_size(3);
  EXPECT_EQ(db.associate_with2(three), 0);
  EXPECT_EQ(capture.all().back(),
            (dictionary_test::Report{report_kind::ERROR, "Haplo_DB::associate_with2()", 135}));
}

TEST(Haplo_DB, TakesOverAProfile) {
  ProfileSettings profile;
  profile.MissingData = '-';
  Haplo_DB db;
  db = profile;
  EXPECT_EQ(db.MissingData, '-');
}

}  // namespace
