#include "output/matrix_print.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "model/report.h"

namespace {

std::vector<int> raised_codes;
std::string raised_function;
void capture_raise(unsigned char, std::string_view function, int code) {
  raised_codes.push_back(code);
  raised_function = std::string(function);
}

template <class M>
std::string printed(const M& m) {
  std::ostringstream os;
  print_matrix(os, m);
  return os.str();
}

TEST(MatrixPrint, TriangleRowsOfFixedWidthValues) {
  TriMat m(3);
  m(1, 0) = 1.5;
  m(2, 1) = -12.345678;
  m(2, 2) = 123456.5;
  EXPECT_EQ(printed(m),
            "   0.00000\n"
            "   1.50000   0.00000\n"
            "   0.00000 -12.34568123456.50000");
  EXPECT_EQ(printed(TriMat()), "");
}

TEST(MatrixPrint, RectangleRowsAndEmptyMatrix) {
  RectMat m(2, 3);
  m(0, 2) = 0.125;
  m(1, 0) = 2.0;
  EXPECT_EQ(printed(m),
            "   0.00000   0.00000   0.12500\n"
            "   2.00000   0.00000   0.00000");
  m.free_matrix();
  EXPECT_EQ(printed(m), "Matrix contains no data");
}

DistMat sample_matrix(const char* first_label) {
  DistMat d;
  d.set_size(2);
  d.name() = "dm";
  d.label(0) = first_label;
  d.label(1) = "h2";
  d(1, 0) = 1.5;
  return d;
}

const char* const kHead =
    "\t[[DistanceMatrix]]\n\n"
    "\t\tMatrixName= \"dm\"\n"
    "\t\tMatrixSize= 2\n"
    "\t\tLabelPosition=LINE\n"
    "\t\tMatrixData={\n";

TEST(MatrixPrint, DistMatSectionInEachDress) {
  struct Case {
    const char* what;
    MatrixDocument doc;
    bool conventional;
    std::string want;
  };
  const std::string triangle = "   0.00000\n   1.50000   0.00000";
  const std::vector<Case> cases = {
      {"plain text", {}, false, std::string(kHead) + "a&b\th2\t\n" + triangle + "\n\t\t}"},
      {"html document",
       {true, false, "T"},
       false,
       std::string(kHead) + "a&b\th2\t\n" + triangle + "\n\t\t}"},
      {"xml document",
       {true, true, "T"},
       false,
       std::string(kHead) + "a&amp;b\th2\t\n</data> <hapDistMatrix time=\"T\">\n" + triangle +
           "\n</hapDistMatrix> <data>\n\n\t\t}"},
      {"conventional",
       {true, true, "T"},
       true,
       std::string(kHead) + "a&amp;b\th2\t\nConventional FST Matrix: Dij=1 if i!=j and O else:\n" +
           "\n\t\t}"},
  };
  for (const auto& c : cases) {
    DistMat d = sample_matrix("a&b");
    d.set_conventional(c.conventional);
    std::ostringstream os;
    write_dist_mat(os, d, c.doc);
    EXPECT_EQ(os.str(), c.want) << c.what;
  }
}

TEST(MatrixPrint, DistMatWithoutSizeWritesNothing) {
  std::ostringstream os;
  write_dist_mat(os, DistMat());
  EXPECT_EQ(os.str(), "");
}

TEST(MatrixPrint, DistMatWithoutLabelsIsReported) {
  raised_codes.clear();
  install_report_hooks(capture_raise, nullptr);
  DistMat d = sample_matrix("h1");
  d.drop_labels();
  std::ostringstream os;
  write_dist_mat(os, d);
  install_report_hooks(nullptr, nullptr);
  EXPECT_EQ(os.str(), "");
  EXPECT_EQ(raised_codes, std::vector<int>{11});
  EXPECT_EQ(raised_function, "operator <<(ostream& os, DistMat& DM)");
}

}  // namespace
