// The character-based helpers: what each consumes, what it leaves in the
// stream, and what it reports.
#include "input/stream_reader.h"

#include <gtest/gtest.h>

#include <sstream>

#include "input/report_capture.h"

namespace {

using input_testing::ReportCapture;

int next_char(std::istream& is) {
  return is.peek();
}

TEST(SkipComments, StopsOnLegalCharacters) {
  const std::pair<const char*, char> cases[] = {
      {"   abc", 'a'},   {"\t\n[Data]", '['}, {"# note\n  }", '}'},
      {"#\n\"x\"", '"'}, {" 'c'", '\''},      {"\r\n9", '9'},
  };
  for (const auto& [text, expected] : cases) {
    ReportCapture capture;
    std::istringstream is(text);
    EXPECT_EQ(skip_comments(is), 1) << text;
    EXPECT_EQ(next_char(is), expected) << text;
    EXPECT_TRUE(capture.reports().empty()) << text;
  }
}

TEST(SkipComments, EndAndIllegalCharacter) {
  ReportCapture capture;
  std::istringstream empty("  # only a comment");
  EXPECT_EQ(skip_comments(empty), 0);
  EXPECT_EQ(skip_comments(empty), 1);  // the end flag is already set
  std::istringstream bad("  = 3");
  EXPECT_EQ(skip_comments(bad), 0);
  EXPECT_EQ(capture.text(),
            " ** a_public::skip_comments_l_253:the character is not the expected one c:=\n"
            "!E100 skip_comments(ifstream& ifs) (\"=\")\n");
}

struct QStringCase {
  const char* text;
  int result;
  const char* value;  // starts as "old"
  int next;           // next character left in the stream (-1: the end)
};

TEST(GetQString, ValueForms) {
  const QStringCase cases[] = {
      {" \"abc def\" x", 1, "abc def", ' '},
      {"\"no end\nnext", 1, "no end", 'n'},
      {"'a' x", 1, "a", ' '},
      {"'' x", 1, "", ' '},
      {"MICROSAT}\n", 1, "MICROSAT", '}'},
      {"dna/rflp rest", 1, "dna", ' '},
      {"  # comment\n\n  \"x\"", 1, "x", -1},
      {"\n\"x\"", 0, "old", '\n'},
      {"= x", 0, "old", '='},
      {"", 0, "old", -1},
      {"\"unclosed", 0, "old", -1},
  };
  for (const QStringCase& c : cases) {
    ReportCapture capture;
    std::istringstream is(c.text);
    my_string value = "old";
    EXPECT_EQ(get_qstring(is, value), c.result) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
    is.clear();
    EXPECT_EQ(next_char(is), c.next) << c.text;
    EXPECT_TRUE(capture.reports().empty()) << c.text;
  }
}

TEST(GetQString, SingleQuotesHoldOneCharacter) {
  ReportCapture capture;
  std::istringstream is("'ab'");
  my_string value;
  EXPECT_EQ(get_qstring(is, value), 0);
  EXPECT_EQ(capture.codes(), std::vector<int>{101});
  EXPECT_EQ(capture.reports()[0].function, "get_qstring(ifstream& ifs, my_string& s)");
}

TEST(ReadWord, LowerCaseWordOnTheLine) {
  std::istringstream is(" = NONE # x\n = ;\nABC");
  my_string word;
  EXPECT_EQ(read_word(is, word), 1);
  EXPECT_EQ(word, "none");
  is.ignore(100, '\n');
  EXPECT_EQ(read_word(is, word), 0);
  EXPECT_EQ(next_char(is), '\n');
}

TEST(NextKeyword, KeywordBeforeEqualSign) {
  std::istringstream is("# head\n  Title = \"x\"\n\tData Type=DNA\n[Data]\n");
  my_string keyword;
  ASSERT_EQ(next_keyword(is, keyword), 1);
  EXPECT_EQ(keyword, "title");
  EXPECT_EQ(next_char(is), ' ');  // right behind the '='
  is.ignore(100, '\n');
  ASSERT_EQ(next_keyword(is, keyword), 1);
  EXPECT_EQ(keyword, "data");  // cut at the first blank
  is.ignore(100, '\n');
  EXPECT_EQ(next_keyword(is, keyword), 0);
  EXPECT_EQ(next_char(is), '[');
}

TEST(NextKeyword, EndOfStream) {
  my_string keyword = "old";
  std::istringstream empty("   ");
  EXPECT_EQ(next_keyword(empty, keyword), 0);
  EXPECT_EQ(keyword, "*");
  std::istringstream unfinished("Title");
  EXPECT_EQ(next_keyword(unfinished, keyword), 0);
  EXPECT_EQ(keyword, "");
}

const char* const small_project =
    "[Profile]\n  Title=\"x\"\n[Data]\n[[Samples]]\n  SampleName=\"pop\"\n";

TEST(PositionAfter, SectionSubsectionKeyword) {
  ReportCapture capture;
  std::istringstream is(small_project);
  ASSERT_EQ(position_after(is, "DATA", "", ""), 1);
  my_string name;
  EXPECT_EQ(get_next_subsection(is, name), 3);

  std::istringstream again(small_project);
  ASSERT_EQ(position_after(again, "data", "Samples", "SampleName"), 1);
  my_string value;
  EXPECT_EQ(get_qstring(again, value), 1);
  EXPECT_EQ(value, "pop");
  EXPECT_TRUE(capture.reports().empty());
}

TEST(PositionAfter, MissingPlacesReport102) {
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"mantel", "", "", "position_after() (1)"},
      {"data", "structure", "", "position_after() (2)"},
      {"data", "samples", "samplesize", "position_after() (4)"},
      {"data", "samples", "samplesize!", "position_after() (5)"},
  };
  for (const auto& [section, subsection, keyword, where] : cases) {
    ReportCapture capture;
    // The last case's file ends without a line end, so the search stops at its end.
    std::string text = small_project;
    if (keyword[0] != 0 && keyword[10] == '!') text.pop_back();
    std::istringstream is(text);
    EXPECT_EQ(position_after(is, section, subsection, keyword), 0) << where;
    ASSERT_EQ(capture.codes(), std::vector<int>{102}) << where;
    EXPECT_EQ(capture.reports()[0].function, where);
    EXPECT_FALSE(is.fail()) << where;
  }
}

TEST(GetNextSubsection, WalksSectionsSkippingDataAndComments) {
  ReportCapture capture;
  std::istringstream is(
      "  # [[Mantel]] in a comment\n data line\n[[Structure]] rest\n  x 1\n[[mantel]]");
  my_string name;
  EXPECT_EQ(get_next_subsection(is, name), 4);
  EXPECT_EQ(name, "structure");
  EXPECT_EQ(get_next_subsection(is, name), 5);
  EXPECT_EQ(get_next_subsection(is, name), 0);
  EXPECT_TRUE(is.eof());
  EXPECT_FALSE(is.fail());
  EXPECT_TRUE(capture.reports().empty());
}

TEST(GetNextSubsection, UnknownOrUnclosedName) {
  ReportCapture capture;
  std::istringstream unknown("[[Unknown]]\n");
  my_string name;
  EXPECT_EQ(get_next_subsection(unknown, name), 0);
  std::istringstream unclosed("[[Samples");
  EXPECT_EQ(get_next_subsection(unclosed, name), 0);
  ASSERT_EQ(capture.codes(), (std::vector<int>{105, 104}));
  EXPECT_EQ(capture.reports()[0].function, "get_next_subsection() (\"unknown\"");
  EXPECT_EQ(capture.reports()[1].function, "get_next_subsection()");
}

}  // namespace
