#include "output/matrix_print.h"

#include "model/report.h"
#include "output/number_format.h"
#include "output/xml_tag.h"

namespace {

void print_row(std::ostream& os, const std::vector<double>& row) {
  for (double v : row) os << fmt::fixed(v, 10, 5);
}

}  // namespace

void print_matrix(std::ostream& os, const TriMat& m) {
  for (int i = 0; i < m.dim(); ++i) {
    if (i > 0) os << '\n';
    print_row(os, m.row(i));
  }
}

void print_matrix(std::ostream& os, const RectMat& m) {
  if (!m.has_data()) {
    os << "Matrix contains no data";
    return;
  }
  for (int i = 0; i < m.nrows(); ++i) {
    if (i > 0) os << '\n';
    print_row(os, m.row(i));
  }
}

void write_dist_mat(std::ostream& os, const DistMat& dm, const MatrixDocument& doc) {
  if (dm.matrix_size() == 0) return;
  if (!dm.has_labels()) {
    report_error(report_kind::ERROR, "operator <<(ostream& os, DistMat& DM)", 11);
    return;
  }
  const bool xml = doc.in_use && doc.xml;
  os << "\t[[DistanceMatrix]]\n\n";
  os << "\t\tMatrixName= \"" << fmt::name(dm.name().str(), xml) << "\"\n";
  os << "\t\tMatrixSize= " << fmt::integer(dm.matrix_size()) << '\n';
  os << "\t\tLabelPosition="
     << "LINE" << '\n';
  os << "\t\tMatrixData={\n";
  for (int i = 0; i < dm.matrix_size(); ++i) os << fmt::name(dm.label(i).str(), xml) << '\t';
  if (dm.is_conventional()) {
    os << "\nConventional FST Matrix: Dij=1 if i!=j and O else:\n";
  } else if (xml) {
    const TXmlTag element("hapDistMatrix");
    os << '\n' << element.open_text(doc.time_stamp);
    print_matrix(os, static_cast<const TriMat&>(dm));
    os << '\n' << element.close_text();
  } else {
    os << '\n';
    print_matrix(os, static_cast<const TriMat&>(dm));
  }
  os << "\n\t\t}";
}
