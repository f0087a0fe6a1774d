// Runs of the result document on disk: a new document in each dress, an XML
// document continued by a second run, the warning path of a document that
// does not end as ours do, and the tree script beside them.
#include "output/result_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "model/report.h"
#include "output/tree_menu.h"
#include "output/xml_checker.h"
#include "support/test_support.h"

namespace {

using testing_support::read_file;
using testing_support::TempDir;
using testing_support::write_file;

constexpr const char* date1 = "05/03/24 at 14:22:10";
constexpr const char* date2 = "06/03/24 at 09:01:02";
constexpr const char* head1 = "05_03_24at14_22_10";

std::ostringstream& captured_log() {
  static std::ostringstream log;
  return log;
}
std::ostream& capture() {
  return captured_log();
}

class DocumentRun : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir.path() / "p.res");
    std::filesystem::create_directories(dir.path() / "core dir");
    captured_log().str("");
    install_report_hooks(nullptr, capture);
  }
  void TearDown() override { install_report_hooks(nullptr, nullptr); }

  ResultDocument::RunStart start(bool xml, bool append, const char* date) const {
    ResultDocument::RunStart run;
    run.core_directory = dir.str() + "/core dir/";
    run.files =
        RunFiles::derive(dir.str() + "/p.res/p" + (xml ? ".xml" : ".htm"), run.core_directory);
    run.project_file = dir.str() + "/p.res/p.mvp";
    run.date = date;
    run.xml = xml;
    run.append = append;
    return run;
  }
  std::string file(const char* name) const { return read_file(dir.path() / "p.res" / name); }
  std::string tree_head_text() const {
    std::ostringstream os;
    tree_head(os, dir.str() + "/core dir/", "MORVALIN RESULTS (p.mvp)", "");
    return os.str();
  }

  // A run with the usual first entries and one sample section.
  void write_run(ResultDocument& doc, bool xml, bool append, const char* date,
                 const std::string& sample) {
    ASSERT_TRUE(doc.begin_run(start(xml, append, date)));
    doc.open_tree_leaf(1, "_run_information", "Settings");
    doc.tree_line_folder(2, "Samples");
    doc.open_sample_leaf(2, "samp", 1, sample);
    const TXmlTag tag("obsHapFreq", "pop", sample);
    if (doc.xml()) doc.stream() << doc.open_text(tag);
    doc.stream() << doc.name(sample) << "\t0.5\n";
    if (doc.xml()) doc.stream() << tag.close_text();
    doc.write_citations({"Tajima_F", "no_such_key"});
    doc.close();
  }

  TempDir dir;
};

int count(const std::string& text, const std::string& part) {
  int n = 0;
  for (size_t i = text.find(part); i != std::string::npos; i = text.find(part, i + 1)) ++n;
  return n;
}

TEST_F(DocumentRun, NewHtmlDocumentAndItsTreeScript) {
  ResultDocument doc;
  ASSERT_TRUE(doc.begin_run(start(false, false, date1)));
  doc.open_tree_leaf(1, "_run_information", "Settings");
  doc.close();
  const std::string a = head1;
  EXPECT_EQ(file("p.htm"),
            "\n<html>\n<!--Morvalin results file-->\n\n<head>\n<style>\nBODY {background-color: "
            "white; font-size: 8pt; font-family: Courier New}\n</style>\n</head>\n\n<body "
            "bgcolor=white>\n\n<PRE>\n"
            "\n</data>\n\n<header>\nMorvalin results\n</header>\n<data>\n\n"
            "<A NAME=\"" +
                a +
                "\"></A>\n"
                "<A NAME=\"" +
                a +
                "_run_information\"></A>\n"
                "\n</body>\n</PRE>\n</html>\n\n");
  EXPECT_EQ(file("p.js"),
            tree_head_text() +
                "insDoc(foldersTree, gLnk(\"R\", \"Morvalin log file\", \"Morvalin_log.txt\"))\n"
                "\taux1 = insFld(foldersTree, gFld(\"Run of 05/03/24 at 14:22:10\", \"p.htm#" +
                a + "\"))\n\tinsDoc(aux1, gLnk(\"R\", \"Settings\", \"p.htm#" + a +
                "_run_information\"))\n");
  EXPECT_NE(file("p_main.htm").find("<FRAME SRC=\"p.htm\" name=\"basefrm\">"), std::string::npos);
  EXPECT_NE(file("p_tree.htm").find("<script src=\"p.js\"></script>"), std::string::npos);
}

TEST_F(DocumentRun, XmlDocumentIsWellFormedAndEscapesNames) {
  ResultDocument doc;
  write_run(doc, true, false, date1, "A&B <x>");
  const std::string xml = file("p.xml");
  const XmlCheck check = check_xml(xml);
  ASSERT_EQ(check.error, "") << xml;
  EXPECT_EQ(check.elements.front(), "Morvalin");
  EXPECT_NE(xml.find("<obsHapFreq pop=\"A&amp;B &lt;x&gt;\" time=\"05/03/24 at 14:22:10\">"),
            std::string::npos);
  EXPECT_NE(xml.find("A&amp;B &lt;x&gt;\t0.5\n</obsHapFreq> <data>\n"), std::string::npos);
  EXPECT_NE(xml.find("<Reference></Reference>\n<data>\n"), std::string::npos);
  // The tree script takes the caption as it stands.
  EXPECT_NE(file("p.js").find("\t\tinsDoc(aux2, gLnk(\"R\", \"A&B <x>\", \"p.xml#" +
                              std::string(head1) + "_samp1\"))\n"),
            std::string::npos);
  EXPECT_NE(xml.find(" <A NAME=\"" + std::string(head1) + "_samp1\"></A> "), std::string::npos);
  EXPECT_TRUE(xml.ends_with("\n</data>\n\n</Morvalin>\n\n"));
}

TEST_F(DocumentRun, SecondXmlRunContinuesInsideTheSameRoot) {
  ResultDocument doc;
  write_run(doc, true, false, date1, "pop1");
  const std::string first = file("p.xml");
  const std::string first_frame = file("p_main.htm");
  const std::string first_tree_page = file("p_tree.htm");
  write_run(doc, true, true, date2, "pop2");
  const std::string both = file("p.xml");
  EXPECT_TRUE(doc.continues_old_document());

  const size_t cut = first.size() - document_closing().size();
  EXPECT_EQ(both.substr(0, cut), first.substr(0, cut));
  EXPECT_EQ(both.substr(cut, 9), "\n<data>\n\n");
  const XmlCheck check = check_xml(both);
  ASSERT_EQ(check.error, "");
  EXPECT_EQ(std::count(check.elements.begin(), check.elements.end(), "Morvalin"), 1);
  EXPECT_EQ(std::count(check.elements.begin(), check.elements.end(), "header"), 2);
  EXPECT_EQ(count(both, "time=\"06/03/24 at 09:01:02\""), 1);
  EXPECT_EQ(count(both, "time=\"05/03/24 at 14:22:10\""), 1);

  const std::string script = file("p.js");
  EXPECT_EQ(count(script, "foldersTree = gFld("), 1);
  EXPECT_EQ(count(script, "Morvalin log file"), 1);
  EXPECT_EQ(count(script, "\taux1 = insFld(foldersTree, gFld(\"Run of "), 2);
  EXPECT_LT(script.find("Run of 05/03/24"), script.find("Run of 06/03/24"));
  EXPECT_EQ(file("p_main.htm"), first_frame);
  EXPECT_EQ(file("p_tree.htm"), first_tree_page);
  EXPECT_EQ(captured_log().str(), "");
}

TEST_F(DocumentRun, XmlDocumentWithAForeignEndGetsANewBodyAndAWarning) {
  write_file(dir.path() / "p.res/p.xml", "<Morvalin>\n<data>\ncut short");
  write_file(dir.path() / "p.res/p.js", "// old entries\n");
  ResultDocument doc;
  ASSERT_TRUE(doc.begin_run(start(true, true, date1)));
  doc.close();
  const std::string xml = file("p.xml");
  const std::string old = "<Morvalin>\n<data>\ncut short";
  EXPECT_EQ(xml.rfind(old + "\n<!--Morvalin results file-->\n\n<Morvalin>\n\n<data>\n\n", 0), 0u);
  EXPECT_NE(captured_log().str().find("WARNING"), std::string::npos);
  EXPECT_NE(captured_log().str().find("p.xml"), std::string::npos);
  // The tree keeps what it had and gets the new run's folder.
  const std::string script = file("p.js");
  EXPECT_EQ(script.rfind("// old entries\n", 0), 0u);
  EXPECT_EQ(count(script, "foldersTree = gFld("), 0);
  EXPECT_EQ(count(script, "Run of "), 1);
}

TEST_F(DocumentRun, CrLfClosingIsNotOursAndTakesTheWarningPath) {
  write_file(dir.path() / "p.res/p.xml", "<Morvalin>\n</Morvalin>\r\n\r\n");
  ResultDocument doc;
  ASSERT_TRUE(doc.begin_run(start(true, true, date1)));
  doc.close();
  EXPECT_EQ(file("p.xml").rfind("<Morvalin>\n</Morvalin>\r\n\r\n\n<!--Morvalin", 0), 0u);
  EXPECT_NE(captured_log().str().find("WARNING"), std::string::npos);
}

TEST_F(DocumentRun, RunWithoutAppendStartsTheTreeAnew) {
  write_file(dir.path() / "p.res/p.js", "OLD TREE\n");
  write_file(dir.path() / "p.res/p_tree.htm", "OLD PAGE\n");
  write_file(dir.path() / "p.res/p.xml", "OLD DOCUMENT\n");
  ResultDocument doc;
  write_run(doc, true, false, date1, "pop1");
  EXPECT_EQ(file("p.js").find("OLD"), std::string::npos);
  EXPECT_EQ(file("p.js").rfind(tree_head_text(), 0), 0u);
  EXPECT_EQ(file("p_tree.htm").find("OLD"), std::string::npos);
  EXPECT_EQ(file("p.xml").rfind("<?xml version=\"1.0\"", 0), 0u);
}

TEST_F(DocumentRun, AppendedHtmlIsTruncatedAndContinuesWithANewBlock) {
  ResultDocument doc;
  write_run(doc, false, false, date1, "pop1");
  write_run(doc, false, true, date2, "pop2");
  const std::string html = file("p.htm");
  EXPECT_EQ(html.rfind("\n<PRE>\n\n</data>\n\n<header>\nMorvalin results\n</header>", 0), 0u);
  EXPECT_EQ(html.find("pop1"), std::string::npos);
  EXPECT_NE(html.find("pop2\t0.5\n"), std::string::npos);
  const std::string script = file("p.js");
  EXPECT_EQ(count(script, "foldersTree = gFld("), 1);
  EXPECT_EQ(count(script, "Run of "), 2);
}

TEST_F(DocumentRun, FirstAppendingRunWritesAFullHead) {
  ResultDocument doc;
  write_run(doc, true, true, date1, "pop1");
  EXPECT_FALSE(doc.continues_old_document());
  EXPECT_EQ(check_xml(file("p.xml")).error, "");
  EXPECT_EQ(count(file("p.js"), "foldersTree = gFld("), 1);
}

TEST_F(DocumentRun, AnchorNamesAndLinksOfTheFixedEntries) {
  ResultDocument doc;
  ASSERT_TRUE(doc.begin_run(start(false, false, date1)));
  doc.open_tree_folder(2, "_shared haplotypes", "Shared haplotypes");
  doc.open_sample_leaf(2, "gr_shared", 12, "Group1");
  doc.close();
  const std::string a = head1;
  const std::string html = file("p.htm");
  EXPECT_NE(html.find("<A NAME=\"" + a + "_shared haplotypes\"></A>\n"), std::string::npos);
  EXPECT_NE(html.find("<A NAME=\"" + a + "_gr_shared12\"></A>\n"), std::string::npos);
  const std::string script = file("p.js");
  EXPECT_NE(script.find("\t\taux2 = insFld(aux1, gFld(\"Shared haplotypes\", \"p.htm#" + a +
                        "_shared%20haplotypes\"))\n"),
            std::string::npos);
  EXPECT_NE(
      script.find("\t\tinsDoc(aux2, gLnk(\"R\", \"Group1\", \"p.htm#" + a + "_gr_shared12\"))\n"),
      std::string::npos);
}

TEST(ResultDocument, StateBeforeAnyRun) {
  ResultDocument doc;
  EXPECT_EQ(doc.time_stamp(), "not set yet");
  EXPECT_TRUE(doc.print_sections());
  EXPECT_EQ(doc.open_text(TXmlTag("run")), "</data> <run time=\"not set yet\">\n");
  doc.stream() << "nothing is open: dropped";
  doc.open_tree_leaf(1, "_x", "x");
  doc.close();
}

TEST(ResultDocument, BorrowedStreamTakesSectionsWithoutATreeScript) {
  ResultDocument doc;
  std::ostringstream out;
  doc.use_stream(out, false);
  doc.open_tree_leaf(2, "_pop_amova", "AMOVA");
  EXPECT_EQ(out.str(), "<A NAME=\"_pop_amova\"></A>\n");
  EXPECT_EQ(doc.name("a<b"), "a<b");
  doc.set_xml(true);
  EXPECT_EQ(doc.name("a<b"), "a&lt;b");
}

TEST(ResultDocument, DocumentThatCannotBeOpenedLeavesTheRunGoingOn) {
  TempDir dir;
  ResultDocument doc;
  ResultDocument::RunStart run;
  run.files = RunFiles::derive(dir.str() + "/missing folder/p.xml", dir.str() + "/");
  run.date = date1;
  EXPECT_FALSE(doc.begin_run(run));
  doc.open_tree_leaf(1, "_run_information", "Settings");
  doc.stream() << "dropped";
  doc.close();
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "missing folder"));
}

TEST(ResultDocument, AnchorHeadReplacesSeparators) {
  ResultDocument doc;
  std::ostringstream out;
  TempDir dir;
  ResultDocument::RunStart run;
  run.files = RunFiles::derive(dir.str() + "/p.htm", dir.str() + "/");
  run.date = "01/02/03 at\t04:05:06";
  run.xml = false;
  ASSERT_TRUE(doc.begin_run(run));
  EXPECT_EQ(doc.run_stamp(), "01/02/03at04:05:06");
  EXPECT_EQ(doc.anchor_name("_x"), "01_02_03at04_05_06_x");
  EXPECT_EQ(doc.time_stamp(), "01/02/03 at\t04:05:06");
  doc.close();
}

}  // namespace
