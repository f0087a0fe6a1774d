// The fixed texts of the result document: tags, anchors, title, head and end,
// tree script lines, frame pages, citations. Expected texts are written out
// by hand from the document format.
#include <gtest/gtest.h>

#include <ctime>
#include <set>
#include <sstream>

#include "output/frame_pages.h"
#include "output/number_format.h"
#include "output/references.h"
#include "output/result_document.h"
#include "output/tree_menu.h"
#include "output/xml_tag.h"

namespace {

template <typename Write>
std::string text_of(Write write) {
  std::ostringstream os;
  write(os);
  return os.str();
}

struct TagCase {
  TXmlTag tag;
  std::string open;
};

TEST(XmlTag, OpenTextCarriesTheAttributeOnlyWhenNameAndValueAreSet) {
  const TagCase cases[] = {
      {TXmlTag("run"), "</data> <run time=\"05/03/24 at 14:22:10\">\n"},
      {TXmlTag("obsHapFreq", "pop", "Pop 1"),
       "</data> <obsHapFreq pop=\"Pop 1\" time=\"05/03/24 at 14:22:10\">\n"},
      {TXmlTag("obsHapFreq", "", "Pop 1"), "</data> <obsHapFreq time=\"05/03/24 at 14:22:10\">\n"},
      {TXmlTag("obsHapFreq", "pop", ""), "</data> <obsHapFreq time=\"05/03/24 at 14:22:10\">\n"},
      {TXmlTag("absHapFreq", "samp", "A&B <x> \"q\""),
       "</data> <absHapFreq samp=\"A&amp;B &lt;x&gt; &quot;q&quot;\" time=\"05/03/24 at "
       "14:22:10\">\n"},
  };
  for (const TagCase& c : cases) {
    EXPECT_EQ(c.tag.open_text("05/03/24 at 14:22:10"), c.open) << c.tag.name;
  }
}

TEST(XmlTag, CloseStartAndEndTags) {
  const TXmlTag tag("tauMatrix");
  EXPECT_EQ(tag.close_text(), "</tauMatrix> <data>\n");
  EXPECT_EQ(tag.start_tag(), "<tauMatrix>\n");
  EXPECT_EQ(tag.end_tag(), "</tauMatrix>\n");
  EXPECT_EQ(root_tag().name, "Morvalin");
  EXPECT_EQ(data_tag().name, "data");
}

TEST(Anchors, HtmlAndXmlForms) {
  EXPECT_EQ(text_of([](std::ostream& os) { os << html_anchor{"05_03_24at14_22_10_x"}; }),
            "<A NAME=\"05_03_24at14_22_10_x\"></A>\n");
  EXPECT_EQ(text_of([](std::ostream& os) { os << xml_anchor{"a b"}; }),
            "</data>\n\n <A NAME=\"a b\"></A> \n<data>\n\n");
}

TEST(DocumentText, TitleIsTheSameInBothDresses) {
  EXPECT_EQ(text_of([](std::ostream& os) { result_title(os, "Morvalin results"); }),
            "\n</data>\n\n<header>\nMorvalin results\n</header>\n<data>\n\n");
}

TEST(DocumentText, HtmlHeadAndEnd) {
  EXPECT_EQ(text_of([](std::ostream& os) { write_document_head(os, false, "/core/"); }),
            "\n<html>\n<!--Morvalin results file-->\n\n<head>\n<style>\nBODY {background-color: "
            "white; font-size: 8pt; font-family: Courier New}\n</style>\n</head>\n\n<body "
            "bgcolor=white>\n\n<PRE>\n");
  // The body ends before the preformatted block does.
  EXPECT_EQ(text_of([](std::ostream& os) { write_document_end(os, false); }),
            "\n</body>\n</PRE>\n</html>\n\n");
  EXPECT_EQ(text_of([](std::ostream& os) { write_document_continuation(os, false); }), "\n<PRE>\n");
}

TEST(DocumentText, XmlHeadAndEnd) {
  EXPECT_EQ(text_of([](std::ostream& os) { write_document_head(os, true, "/core dir/"); }),
            "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<?xml-stylesheet type=\"text/xsl\" "
            "href=\"file:////core dir/MorvalinStyleSheet.xsl\"?>\n<!--Morvalin results "
            "file-->\n\n<Morvalin>\n\n<data>\n\n");
  EXPECT_EQ(text_of([](std::ostream& os) { write_document_end(os, true); }),
            "\n</data>\n\n</Morvalin>\n\n");
  EXPECT_EQ(text_of([](std::ostream& os) { write_document_continuation(os, true); }),
            "\n<data>\n\n");
  EXPECT_EQ(document_closing(), "</Morvalin>\n\n");
}

TEST(TreeScript, Head) {
  EXPECT_EQ(text_of([](std::ostream& os) {
              tree_head(os, "/my core/", "MORVALIN RESULTS (a b.mvp)", "");
            }),
            "\nUSETEXTLINKS = 1\nSTARTALLOPEN = 0\nWRAPTEXT = 1\nPRESERVESTATE = 0\nHIGHLIGHT = "
            "1\nICONPATH = 'file:////my%20core/'    //change if the gif's folder is a subfolder, "
            "for example: 'images/'\n\nfoldersTree = gFld(\"<i>MORVALIN RESULTS (a "
            "b.mvp)</i>\", \"\")\n");
}

struct TreeLineCase {
  bool folder;
  int level;
  const char* caption;
  const char* link;
  const char* line;
};

TEST(TreeScript, FolderAndLeafLines) {
  const TreeLineCase cases[] = {
      {true, 1, "Run of 05/03/24 at 14:22:10", "d.xml#05_03_24at14_22_10",
       "\taux1 = insFld(foldersTree, gFld(\"Run of 05/03/24 at 14:22:10\", "
       "\"d.xml#05_03_24at14_22_10\"))\n"},
      {true, 2, "Samples", "", "\t\taux2 = insFld(aux1, gFld(\"Samples\", \"\"))\n"},
      {true, 3, "x", "l", "\t\t\taux3 = insFld(aux2, gFld(\"x\", \"l\"))\n"},
      {false, 0, "Morvalin log file", "Morvalin_log.txt",
       "insDoc(foldersTree, gLnk(\"R\", \"Morvalin log file\", \"Morvalin_log.txt\"))\n"},
      {false, 1, "Settings", "d.htm#s_run_information",
       "\tinsDoc(aux1, gLnk(\"R\", \"Settings\", \"d.htm#s_run_information\"))\n"},
      // Blanks become %20 in the link, not in the caption; '\' becomes '/'.
      {false, 2, "Shared haplotypes", "my doc.htm#s_shared haplotypes",
       "\t\tinsDoc(aux2, gLnk(\"R\", \"Shared haplotypes\", "
       "\"my%20doc.htm#s_shared%20haplotypes\"))\n"},
      {false, 2, "pop 1", "a\\b.htm#x",
       "\t\tinsDoc(aux2, gLnk(\"R\", \"pop 1\", \"a/b.htm#x\"))\n"},
  };
  for (const TreeLineCase& c : cases) {
    const std::string line = text_of([&](std::ostream& os) {
      if (c.folder) {
        tree_folder(os, c.level, c.caption, c.link);
      } else {
        tree_leaf(os, c.level, c.caption, c.link);
      }
    });
    EXPECT_EQ(line, c.line) << c.caption;
  }
  EXPECT_EQ(text_of([](std::ostream& os) { tree_log_leaf(os, "/r/p.res/Morvalin_log.txt"); }),
            "insDoc(foldersTree, gLnk(\"R\", \"Morvalin log file\", \"Morvalin_log.txt\"))\n");
}

TEST(RunFiles, DerivedFromTheDocumentName) {
  const RunFiles f = RunFiles::derive("C:\\data\\p.res\\my proj.xml", "/opt/core/");
  EXPECT_EQ(f.document, "C:/data/p.res/my proj.xml");
  EXPECT_EQ(f.tree_script, "C:/data/p.res/my proj.js");
  EXPECT_EQ(f.tree_page, "C:/data/p.res/my proj_tree.htm");
  EXPECT_EQ(f.frame_page, "C:/data/p.res/my proj_main.htm");
  EXPECT_EQ(f.tree_style, "/opt/core/ftie4style.css");
  EXPECT_EQ(f.tree_code, "/opt/core/ftiens4.js");
  EXPECT_EQ(f.log, "C:/data/p.res/Morvalin_log.txt");
  EXPECT_EQ(RunFiles::derive("x.y/doc", "").tree_script, "x.y/doc.js");
}

constexpr const char* page_comment =
    "\n<!-- The menu on the left is built in the browser by the tree code (ftiens4.js in the"
    "\n     core directory) from the entries of the run's tree script. -->";

TEST(FramePages, FramePageByteExact) {
  const RunFiles f = RunFiles::derive("/r/my proj.res/my proj.xml", "/opt/core dir/");
  const std::string expected =
      std::string(
          "\n<html>\n<!--Morvalin results frame file-->\n\n<head>\n<title> Morvalin Result "
          "Browser - my%20proj.mvp\n</title>\n<script>\nfunction op() { //This function is used "
          "with folders that do not open pages themselves. See online "
          "docs.\n}\n</script>\n</head>") +
      page_comment +
      "\n<FRAMESET cols=\"200,*\">\n  <FRAME src=\"my%20proj_tree.htm\" "
      "name=\"treeframe\">\n  <FRAME SRC=\"my%20proj.xml\" "
      "name=\"basefrm\">\n</FRAMESET>\n\n\n</html>\n";
  EXPECT_EQ(text_of([&](std::ostream& os) { write_frame_page(os, f, "C:\\data\\my proj.mvp"); }),
            expected);
}

TEST(FramePages, TreePageByteExact) {
  const RunFiles f = RunFiles::derive("/r/my proj.res/my proj.xml", "/opt/core dir/");
  const std::string expected =
      std::string(page_comment) +
      "\n<html>\n<head>\n<style>\n   BODY {background-color: white}\n   TD {font-size: 8pt;\n  "
      "     font-family: verdana,helvetica;\n\t   text-decoration: none;}\n   A  "
      "{text-decoration: none;\n       color: black}\n    .specialClass "
      "{font-family:garamond; "
      "font-size:12pt;color:green;font-weight:bold;text-decoration:underline}\n</style>\n<!-- "
      "Code for browser detection -->\n<script "
      "src=\"file:////opt/core%20dir/ua.js\"></script>\n<!-- Infrastructure code for the tree "
      "-->\n<script src=\"file:////opt/core%20dir/ftiens4.js\"></script>\n<!-- Execution of the "
      "code that actually builds the specific tree.\n     The variable foldersTree creates its "
      "structure with calls to\n\t  gFld, insFld, and insDoc -->\n<script "
      "src=\"my%20proj.js\"></script>\n</head>\n<body topmargin=16 marginheight=16>\n<!-- "
      "Removing this link will make the script stop from working -->\n<div "
      "style=\"position:absolute; top:0; left:0;\"><a style=\"font-size:7pt; color:silver\" "
      "href=\"file:////opt/core%20dir/ftiens4.js\" target=\"_blank\">JavaScript Tree "
      "Menu</a></div>\n<!-- Build the browser's objects and display default view of the tree. "
      "-->\n<script>initializeDocument()</script>\n<noscript>\nA tree for site navigation will "
      "open here if you enable JavaScript in your browser.\n</noscript>\n</html>\n";
  EXPECT_EQ(text_of([&](std::ostream& os) { write_tree_page(os, f); }), expected);
}

TEST(References, TableHas74UniqueKeysOfTheKeyForm) {
  const auto table = References::table();
  ASSERT_EQ(table.size(), 74u);
  std::set<std::string_view> keys;
  for (const auto& row : table) {
    EXPECT_TRUE(keys.insert(row.key).second) << row.key;
    EXPECT_NE(row.key.find('_'), std::string_view::npos) << row.key;
    EXPECT_EQ(row.key.find(' '), std::string_view::npos) << row.key;
    // Citations go into both dresses as they stand.
    EXPECT_EQ(row.text.find_first_of("&<>\n"), std::string_view::npos) << row.key;
    EXPECT_FALSE(row.text.empty());
  }
}

TEST(References, LookupIsExactAndUnknownKeysGiveNothing) {
  const References references;
  EXPECT_NE(references.citation("Tajima_F").find("Tajima, F. 1989"), std::string::npos);
  EXPECT_EQ(references.citation("tajima_F"), "");
  EXPECT_EQ(references.citation("Tajima_F9"), "");
  EXPECT_EQ(references.citation(""), "");
}

struct CitationCase {
  bool xml;
  std::vector<std::string> texts;
  const char* expected;
};

TEST(References, CitationListsInBothDresses) {
  const CitationCase cases[] = {
      {false, {"A."}, "           <i>A.</i>\n"},
      {false, {"A.", "B."}, "           <i>A.</i>\n           <i>B.</i>\n"},
      {false, {""}, "           <i></i>\n"},
      {true, {"A."}, "</data>\n<Reference>A.</Reference>\n<data>\n"},
      {true, {""}, "</data>\n<Reference></Reference>\n<data>\n"},
      {true,
       {"A.", "B.", "C."},
       "</data>\n<Reference>A.</Reference>\n<Reference>B.</Reference>\n<Reference>C.</"
       "Reference>\n<data>\n"},
  };
  for (const CitationCase& c : cases) {
    EXPECT_EQ(text_of([&](std::ostream& os) { write_citations(os, c.xml, c.texts); }), c.expected);
  }
  EXPECT_EQ(labelled_citation(false, "A."), "Reference: <i>A.</i>");
  EXPECT_EQ(labelled_citation(true, "A."),
            "Reference: </data>\n<Reference>A.</Reference>\n<data>\n");
}

TEST(Names, EscapedInXmlOnly) {
  EXPECT_EQ(fmt::name("A&B <1>", true).text, "A&amp;B &lt;1&gt;");
  EXPECT_EQ(fmt::name("A&B <1>", false).text, "A&B <1>");
  EXPECT_EQ(fmt::xml_escape("plain"), "plain");
  EXPECT_EQ(fmt::xml_escape("&lt;"), "&amp;lt;");
}

TEST(Dates, RunDateAndEndDate) {
  std::tm t{};
  t.tm_year = 124;
  t.tm_mon = 2;
  t.tm_mday = 5;
  t.tm_hour = 14;
  t.tm_min = 2;
  t.tm_sec = 9;
  EXPECT_EQ(format_date(t), "05/03/24 at 14:02:09");
  // The end pattern carries its own parenthesis: the end-of-run line ends in "))".
  EXPECT_EQ("END OF RUN NUMBER 1 (" + format_end_date(t) + ")",
            "END OF RUN NUMBER 1 (05/03/24 at 14:02:09))");
}

}  // namespace
