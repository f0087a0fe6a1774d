// The cleaner: the tidying of lines, the EXTERN copies and the locus
// separator line, and the removal of every copy at the end of a run.
#include "run/cleaner.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/test_support.h"

namespace fs = std::filesystem;
using namespace testing_support;

namespace {

struct TidyCase {
  const char* line;
  char separator;
  const char* expected;
};

TEST(Cleaner, TidiesALine) {
  const TidyCase cases[] = {
      {"SampleName=\"a\"", ' ', "SampleName=\"a\""},
      {"  CR01   9  ", ' ', " CR01 9"},                   // one leading blank stays
      {"\tCR01\t\t9\r", ' ', " CR01 9"},                  // tabs and CR are blanks
      {"Title=\"a # b\" # note", ' ', "Title=\"a"},       // '#' ends the line, even in quotes
      {"# a comment", ' ', ""},                           // a whole-line comment empties it
      {"1;2;3  ;4", ';', "1 2 3 4"},                      // the separator is a blank
      {"1;2;3", 0, "1;2;3"},                              // no separator in force
      {"a\tb", 0, "a b"},                                 // tabs are blanks without one too
      {"LocusSeparator=';'", ';', "LocusSeparator=' '"},  // also in the profile's own line
  };
  for (const TidyCase& c : cases) {
    EXPECT_EQ(cleaner::tidy(c.line, c.separator), c.expected) << c.line;
  }
}

TEST(Cleaner, LeavesALongLineAsItIs) {
  const std::string longest(cleaner::kLongestTidiedLine, 'x');
  EXPECT_EQ(cleaner::tidy(longest + "  ", ' '), longest + "  ");
  EXPECT_EQ(cleaner::tidy(longest.substr(2) + " #", ' '), longest.substr(2));
}

TEST(Cleaner, RewritesTheSeparatorLineWhileASeparatorIsInForce) {
  struct Case {
    const char* line;
    char separator;
    const char* expected;
  };
  const Case cases[] = {
      {"LocusSeparator=TAB", '\t', "LocusSeparator=WHITESPACE"},
      {"locusseparator=' '", ' ', "LocusSeparator=WHITESPACE"},
      {"LocusSeparator=NONE", ' ', "LocusSeparator=NONE"},
      {"LocusSeparator=TAB", 0, "LocusSeparator=TAB"},  // none in force: as it stands
      {"NbSamples=3", ' ', "NbSamples=3"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(cleaner::separator_line(c.line, c.separator), c.expected) << c.line;
  }
}

TEST(Cleaner, TakesTheNameBetweenTheFirstTwoQuotes) {
  EXPECT_EQ(cleaner::extern_name("SampleData=EXTERN \"pop1.txt\""), "pop1.txt");
  EXPECT_EQ(cleaner::extern_name("HaplList=EXTERN \"a b\" \"c\""), "a b");
  EXPECT_EQ(cleaner::extern_name("HaplList=EXTERN \"open"), "");
  EXPECT_EQ(cleaner::extern_name("HaplList=EXTERN"), "");
}

TEST(Cleaner, CopiesTheProjectAndItsExternFilesIntoTheResultFolder) {
  TempDir dir;
  write_file(dir.path() / "p.mvp",
             "[Profile]\r\n\tTitle=\"t\"  # the title\r\nLocusSeparator=TAB\r\n"
             "[[Samples]]\r\nSampleData=EXTERN \"pop1.txt\"\r\n"
             "HaplList=EXTERN \"missing.txt\"\r\nMatrixData=EXTERN \"../p.mvp\"\r\n");
  write_file(dir.path() / "pop1.txt", "h1\t2\tA\tB # c\r\n\r\nh2  1  A  A\n");
  cleaner c;
  ASSERT_TRUE(c.clean_project((dir.path() / "p.mvp").string(), '\t'));
  EXPECT_EQ(c.folder(), (dir.path() / "p.res/").string());
  EXPECT_EQ(c.clean_project_name(), (dir.path() / "p.res/p.mvp").string());
  EXPECT_EQ(read_file(dir.path() / "p.res/p.mvp"),
            "[Profile]\n Title=\"t\"\nLocusSeparator=WHITESPACE\n[[Samples]]\n"
            "SampleData=EXTERN \"pop1.txt\"\nHaplList=EXTERN \"missing.txt\"\n"
            "MatrixData=EXTERN \"../p.mvp\"\n\n");
  EXPECT_EQ(read_file(dir.path() / "p.res/pop1.txt"), "h1 2 A B\n\nh2 1 A A\n");
  // The project and the one EXTERN file that could be copied; a name that
  // leads out of the folder is read where it stands and never overwritten.
  ASSERT_EQ(c.files().size(), 2u);
  EXPECT_EQ(c.files()[1].kind, cleaner::Kind::external);
  EXPECT_NE(read_file(dir.path() / "p.mvp").find("the title"), std::string::npos);

  c.remove_copies();
  EXPECT_FALSE(fs::exists(dir.path() / "p.res/p.mvp"));
  EXPECT_FALSE(fs::exists(dir.path() / "p.res/pop1.txt"));
  EXPECT_TRUE(fs::exists(dir.path() / "p.mvp"));
  EXPECT_TRUE(fs::exists(dir.path() / "pop1.txt"));
}

TEST(Cleaner, FailsWithoutTheProject) {
  TempDir dir;
  cleaner c;
  EXPECT_FALSE(c.clean_project((dir.path() / "absent.mvp").string(), ' '));
  EXPECT_TRUE(c.files().empty());
  c.remove_copies();
}

}  // namespace
