// The reporter: the log line of each kind, its counters, the short form in
// the result document, and the hooks through which lower layers report.
#include "run/errors.h"

#include <gtest/gtest.h>

#include <sstream>

#include "model/report.h"
#include "numerics/numerics_report.h"
#include "support/test_support.h"

using namespace testing_support;

namespace {

// A fresh log with the counters back at 1.
class ErrorsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    errors().open_log(log_path(), false);
    errors().raise(report_kind::ERROR, "", -1);
  }
  void TearDown() override {
    errors().set_result_stream(nullptr);
    errors().close_log();
  }
  std::string log_path() const { return (dir_.path() / "log.txt").string(); }
  std::string log_text() {
    errors().log().flush();
    return read_file(log_path());
  }
  TempDir dir_;
};

struct RaiseCase {
  unsigned char kind;
  const char* function;
  int code;
  const char* log_line;
  const char* document_line;
};

TEST_F(ErrorsTest, EachKindWritesItsLineWithRunningAndPerKindNumbers) {
  const RaiseCase cases[] = {
      {report_kind::WARNING, "Project::AMOVA()", 134,
       "   1 #[WARNING # 1] from function \"Project::AMOVA()\" : project contains invalid data "
       "after check\n",
       " #[WARNING # 1] : project contains invalid data after check\n"},
      {report_kind::ERROR, "Project::explore()", 126,
       "   2 #[ERROR # 1] from function \"Project::explore()\" : unable to open project file\n",
       " #[ERROR # 1] : unable to open project file\n"},
      {report_kind::WARNING, "Project::AMOVA()", 134,
       "   3 #[WARNING # 2] from function \"Project::AMOVA()\" : project contains invalid data "
       "after check\n",
       " #[WARNING # 2] : project contains invalid data after check\n"},
      {report_kind::INFO, "f()", 29,
       "   4 #[INFO # 1] from function \"f()\" : warning, no labels defined for distance matrix\n",
       " #[INFO # 1] : warning, no labels defined for distance matrix\n"},
      // DEBUG counts with the errors and shows only its text, and nothing in the document.
      {report_kind::DEBUG, "a debugging note", 0, "   5 #[DEBUG # 2] a debugging note\n", ""},
      // An unknown kind is an ERROR.
      {9, "g()", 105, "   6 #[ERROR # 3] from function \"g()\" : numerical error\n",
       " #[ERROR # 3] : numerical error\n"},
  };
  std::ostringstream document;
  errors().set_result_stream(&document);
  std::string expected_log, expected_document;
  for (const RaiseCase& c : cases) {
    errors().raise(c.kind, c.function, c.code);
    expected_log += c.log_line;
    expected_document += c.document_line;
  }
  EXPECT_EQ(log_text(), expected_log);
  EXPECT_EQ(document.str(), expected_document);
}

TEST_F(ErrorsTest, RunningNumberTakesFourColumnsAndThenGrows) {
  for (int i = 0; i < 10000; ++i) errors().raise(report_kind::INFO, "f()", 105);
  const std::string text = log_text();
  EXPECT_NE(text.find("\n   9 #[INFO # 9] "), std::string::npos);
  EXPECT_NE(text.find("\n  10 #[INFO # 10] "), std::string::npos);
  EXPECT_NE(text.find("\n9999 #[INFO # 9999] "), std::string::npos);
  EXPECT_NE(text.find("\n10000 #[INFO # 10000] "), std::string::npos);
}

TEST_F(ErrorsTest, MemoryReportIsWrittenAndThenThrows) {
  EXPECT_THROW(errors().raise(report_kind::MEMORY, "Project::calc_dist_matrix()", 0),
               ExceptionType);
  EXPECT_EQ(log_text(),
            "   1 #[MEMORY # 1] from function \"Project::calc_dist_matrix()\" : not enough "
            "memory\n");
}

TEST_F(ErrorsTest, CodeMinusOneSetsAllCountersBack) {
  errors().raise(report_kind::WARNING, "f()", 1);
  errors().raise(report_kind::ERROR, "f()", 1);
  errors().raise(report_kind::WARNING, "f()", -1);
  errors().raise(report_kind::ERROR, "f()", 1);
  EXPECT_EQ(log_text(),
            "   1 #[WARNING # 1] from function \"f()\" : array out of bounds\n"
            "   2 #[ERROR # 1] from function \"f()\" : array out of bounds\n"
            "   1 #[ERROR # 1] from function \"f()\" : array out of bounds\n");
}

TEST_F(ErrorsTest, ReportsAreDroppedWhileNoLogCouldBeOpened) {
  errors().open_log((dir_.path() / "missing_folder" / "log.txt").string(), false);
  EXPECT_FALSE(errors().log_open());
  errors().raise(report_kind::WARNING, "f()", 1);
  errors().open_log(log_path(), false);
  errors().raise(report_kind::WARNING, "f()", 1);
  EXPECT_EQ(log_text(), "   1 #[WARNING # 1] from function \"f()\" : array out of bounds\n");
}

TEST_F(ErrorsTest, LinesWrittenAfterCloseGoNowhere) {
  log_stream() << "before\n";
  errors().close_log();
  log_stream() << "after\n";
  errors().raise(report_kind::WARNING, "f()", 1);
  EXPECT_EQ(read_file(log_path()), "before\n");
}

TEST_F(ErrorsTest, OpeningTruncatesUnlessAppending) {
  log_stream() << "first\n";
  errors().open_log(log_path(), true);
  log_stream() << "second\n";
  EXPECT_EQ(log_text(), "first\nsecond\n");
  errors().open_log(log_path(), false);
  EXPECT_EQ(log_text(), "");
  EXPECT_EQ(errors().log_name(), log_path());
}

TEST_F(ErrorsTest, LowerLayersReportThroughTheHooks) {
  report_error(report_kind::WARNING, "Samples::verify_data()", 123);
  numerics_report(report_kind::ERROR, "factln(int n)", 105);
  numerics_log() << "numerics line\n";
  log_stream() << "model line\n";
  EXPECT_EQ(log_text(),
            "   1 #[WARNING # 1] from function \"Samples::verify_data()\" : no samples have been "
            "defined\n"
            "   2 #[ERROR # 1] from function \"factln(int n)\" : numerical error\n"
            "numerics line\nmodel line\n");
  EXPECT_THROW(numerics_report(report_kind::MEMORY, "vector()", 0), ExceptionType);
}

TEST(ErrorMessages, TableHoldsTwoHundredNineMessagesByCode) {
  const std::pair<int, const char*> samples[] = {
      {0, "not enough memory"},
      {14, "no value assigned to \"MatrixSize\""},
      {74, "invalid value assigned to \"GenotypicData: setting to default\""},
      {164, "a nucleotide is not found, impossible to apply Tajima-Nei correction "},
      {181, "given seed is too large, initializing ran3 with random seed "},
      {207, "\"SampleName\" keyword not found"},
      {208, "A population does not contain any data for a given locus"},
  };
  for (const auto& [code, text] : samples) EXPECT_EQ(Errors::message(code), text) << code;
  EXPECT_EQ(Errors::message_count, 209);
  EXPECT_EQ(Errors::message(209), "");
  EXPECT_EQ(Errors::message(-1), "");
}

}  // namespace
