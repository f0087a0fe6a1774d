// The line helpers: equal sign, quoted and numeric values with their
// reports, and the text-to-number conversions with their quirks.
#include "input/line_reader.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "input/report_capture.h"

namespace {

using input_testing::ReportCapture;

TEST(EqualSign, PositionOrWarningWithLineNumber) {
  ReportCapture capture;
  EXPECT_EQ(checkForPresenceOfEqualSign("Title=\"x\"", "Title", 3), 5);
  EXPECT_EQ(capture.text(), "");
  EXPECT_EQ(checkForPresenceOfEqualSign("Title \"x\"", "Title", 7), 0);
  EXPECT_EQ(capture.text(),
            "!W188 checkForPresenceOfEqualSign(...)\n"
            "\tProject file, Line #7 : Missing equal sign after keyword 'Title'\n");
}

struct QuotedCase {
  const char* line;
  int result;
  const char* value;  // value after the call (starts as "old")
  const char* log;
};

TEST(ReadStringContent, QuotedText) {
  const QuotedCase cases[] = {
      {"Title=\"A title\"", 1, "A title", ""},
      {"Title='A title'", 1, "A title", ""},
      {"Title=\"\"", 1, "", ""},
      {"Title=\"it's\"", 1, "it's", ""},
      {"Title=\"a\" tail \"b\"", 1, "a", ""},
      {"Title=Abc", 0, "old",
       "!W190 readStringContent(...)\n"
       "\tProject file, Line #4 : No open quote after keyword 'Title'\n"},
      {"Title=\"Abc", 0, "old",
       "!W190 readStringContent(...)\n"
       "\tProject file, Line #4 : Opened quote not closed after keyword 'Title'. Unable to "
       "assign value to key...\n"},
      {"Title='Abc\"", 0, "old",
       "!W190 readStringContent(...)\n"
       "\tProject file, Line #4 : Opened quote not closed after keyword 'Title'. Unable to "
       "assign value to key...\n"},
  };
  for (const QuotedCase& c : cases) {
    ReportCapture capture;
    my_string value = "old";
    EXPECT_EQ(readStringContent(c.line, value, "Title", 4), c.result) << c.line;
    EXPECT_EQ(value, c.value) << c.line;
    EXPECT_EQ(capture.text(), c.log) << c.line;
  }
}

struct NumberCase {
  const char* line;
  int result;
  double value;  // value after the call (starts as -7)
};

TEST(ReadStringContent, NumberMustConvertWhole) {
  const NumberCase cases[] = {
      {"NbSamples=3", 1, 3.0},      {"NbSamples= 2.5", 1, 2.5},   {"NbSamples=1e-3", 1, 1e-3},
      {"NbSamples=", 1, 0.0},       {"NbSamples=3 ", 0, -7.0},    {"NbSamples=3a", 0, -7.0},
      {"NbSamples=inf", 0, -7.0},   {"NbSamples=1e999", 0, -7.0}, {"NbSamples 3", 0, -7.0},
      {"NbSamples=\"3\"", 0, -7.0},
  };
  for (const NumberCase& c : cases) {
    ReportCapture capture;
    double value = -7.0;
    EXPECT_EQ(readStringContent(c.line, value, "NbSamples", 9), c.result) << c.line;
    EXPECT_EQ(value, c.value) << c.line;
    const std::string expected_log =
        c.result ? ""
                 : "!W190 readStringContent(...)\n"
                   "\tProject file, Line #9 : Bad value after keyword 'NbSamples'\n";
    EXPECT_EQ(capture.text(), expected_log) << c.line;
  }
}

TEST(LineHelpers, ValueTextCommentAndAbsolutePath) {
  my_string value;
  EXPECT_EQ(read_value_text("a=b=c", value), 1);
  EXPECT_EQ(value, "b=c");
  read_value_text("no sign", value);
  EXPECT_EQ(value, "no sign");
  my_string line = "Title=\"x\" # a # b";
  strip_comment(line);
  EXPECT_EQ(line, "Title=\"x\" ");
  EXPECT_EQ(is_absolute_path("C:/data/x.mvp"), 1);
  EXPECT_EQ(is_absolute_path("data/x:1"), 1);
  EXPECT_EQ(is_absolute_path("/data/x.mvp"), 0);
}

TEST(AsciiToInt, RightToLeftDigitsWithMinus) {
  const std::pair<const char*, int> cases[] = {
      {"", 0},    {"abc", 0}, {"42", 42}, {"12a3", 123}, {"1.5", 15},
      {"-7", -7}, {"7-", 7},  {"1-2", 8}, {"  9 ", 9},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(ascii_to_int(text), expected) << text;
}

TEST(AsciiToDouble, DecimalWithLowerCaseExponent) {
  const std::pair<const char*, double> cases[] = {
      {"", 0.0},        {"3", 3.0},      {"-2.5", -2.5},  {"0.125", 0.125}, {"1.5e2", 150.0},
      {"1.5d-1", 0.15}, {"2e3", 2000.0}, {"1.5E3", 1.53},  // 'E' is no exponent: "5E3" are
                                                           // the fraction digits 53
  };
  for (const auto& [text, expected] : cases)
    EXPECT_NEAR(ascii_to_double(text), expected, 1e-12) << text;
}

// The scale of the fraction counts its digits, not its characters.
TEST(AsciiToDouble, FractionScaleCountsDigitsOnly) {
  const std::pair<const char*, double> cases[] = {
      {"0.05 ", 0.05}, {"0.05\t", 0.05}, {"1.2x5", 1.25}, {"-0.5 ", -0.5}, {"2. ", 2.0},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_NEAR(ascii_to_double(text), expected, 1e-12) << text;
}

TEST(TruncateToInt, SafeForAnyDouble) {
  EXPECT_EQ(truncate_to_int(2.9), 2);
  EXPECT_EQ(truncate_to_int(-2.9), -2);
  EXPECT_EQ(truncate_to_int(NAN), 0);
  EXPECT_EQ(truncate_to_int(1e300), INT_MAX);
  EXPECT_EQ(truncate_to_int(-1e300), INT_MIN);
}

}  // namespace
