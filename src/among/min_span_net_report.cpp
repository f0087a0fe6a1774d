#include "among/min_span_net_report.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "output/matrix_print.h"
#include "output/number_format.h"
#include "output/references.h"
#include "output/result_document.h"
#include "output/xml_tag.h"
#include "within/diversity.h"

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

// A label right-aligned in `width`, escaped for an XML document.
fmt::Formatted column(const std::string& label, int width, bool xml) {
  return fmt::name(fmt::right(label, width).text, xml);
}

std::vector<std::string> sample_labels(const PopGenetics& sample) {
  std::vector<std::string> labels;
  labels.reserve(sample.haplo_list.size());
  for (const PHaploDef& e : sample.haplo_list) {
    labels.push_back(e.hapl != nullptr ? e.hapl->hapl_id.str() : std::string());
  }
  return labels;
}

// Whether the sample holds a finished matrix, one row and column per haplotype.
bool has_matrix(const PopGenetics& sample) {
  const int n = static_cast<int>(sample.haplo_list.size());
  const RectMat* m = sample.dist_mat.get();
  return n > 0 && m != nullptr && m->has_data() && !m->is_conventional() && m->nrows() == n &&
         m->ncols() == n;
}

// The cells of a RectMat, row after row.
std::vector<double> cells_of(const RectMat& m) {
  std::vector<double> cells;
  cells.reserve(at(m.nrows()) * at(m.ncols()));
  for (int i = 0; i < m.nrows(); ++i) cells.insert(cells.end(), m.row(i).begin(), m.row(i).end());
  return cells;
}

// Both triangles of a TriMat of n rows, row after row.
std::vector<double> cells_of(const TriMat& m, int n) {
  std::vector<double> cells(at(n) * at(n), 0.0);
  for (int i = 0; i < n; ++i) {
    const std::vector<double>& row = m.row(i);
    for (int j = 0; j <= i && at(j) < row.size(); ++j) {
      cells[at(i) * at(n) + at(j)] = row[at(j)];
      cells[at(j) * at(n) + at(i)] = row[at(j)];
    }
  }
  return cells;
}

void write_network(std::ostream& out, const std::vector<double>& cells, int n,
                   std::span<const std::string> labels, bool xml, std::string_view reference,
                   std::string_view tree_name) {
  TMinSpaNet net(DistanceTable{cells.data(), at(n), at(n)});
  net.MakeNetwork();
  write_spanning_network(out, net, labels, xml, reference, tree_name);
}

}  // namespace

namespace {

// The labels of the OTUs in columns as wide as the longest label and 4 more
// (8 at least), right-aligned.
class Columns {
 public:
  Columns(std::span<const std::string> labels, bool xml) : labels_(labels), xml_(xml) {
    std::size_t longest = 0;
    for (const std::string& label : labels) longest = std::max(longest, label.size());
    width_ = std::max(8, static_cast<int>(longest) + 4);
  }
  int width() const { return width_; }
  fmt::Formatted operator()(int node, int extra = 0) const {
    const std::string none;
    return column(at(node) < labels_.size() ? labels_[at(node)] : none, width_ + extra, xml_);
  }

 private:
  std::span<const std::string> labels_;
  bool xml_;
  int width_ = 8;
};

void write_connections(std::ostream& out, const TMinSpaNet& net, const Columns& otu,
                       std::string_view reference) {
  const std::string rule(43, '=');
  out << "\n\n"
      << rule << "\nMINIMUM SPANNING TREE between " << fmt::integer(net.size()) << " OTUs\n"
      << rule << "\n"
      << reference;
  out << fmt::right("OTU 1  ", otu.width()) << fmt::right("OTU 2  ", otu.width())
      << "  Connection length\n"
      << "=====  "
      << "====="
      << "    =================\n";
  for (std::size_t i = 0; i < net.to_list().size(); ++i) {
    out << otu(net.from_list()[i]) << otu(net.to_list()[i]) << fmt::general(net.length_list()[i])
        << "\n";
  }
}

void write_nexus(std::ostream& out, const TMinSpaNet& net, std::span<const std::string> labels,
                 bool xml, std::string_view tree_name) {
  const std::string rule(43, '-');
  out << "\n" << rule << "\nNEXUS notation for MST\n" << rule << "\n\n";
  std::vector<std::string> shown;
  shown.reserve(labels.size());
  for (const std::string& label : labels) shown.push_back(fmt::name(label, xml).text);
  net.print_nexus(out, fmt::name(tree_name, xml).text, shown);
}

void write_alternatives(std::ostream& out, const TMinSpaNet& net, const Columns& otu) {
  const std::string rule(67, '=');
  out << "\n\n"
      << rule << "\nAlternative connections between OTUs\n"
      << "to extend the minimum spanning tree into a MINIMUM SPANNING NETWORK\n"
      << rule << "\n\n";
  out << std::string(at(otu.width() - 3), ' ') << "OTU"
      << "List of alternative links\n"
      << "==="
      << "=========================\n";
  for (int a = 0; a < net.size(); ++a) {
    const std::span<const int> links = net.alternatives(a);
    if (links.empty()) continue;
    out << otu(a);
    for (const int b : links) out << otu(b, 1) << " (" << fmt::general(net.distance(a, b)) << ") ";
    out << "\n";
  }
}

}  // namespace

void write_spanning_network(std::ostream& out, const TMinSpaNet& net,
                            std::span<const std::string> labels, bool xml,
                            std::string_view reference, std::string_view tree_name) {
  const Columns otu(labels, xml);
  write_connections(out, net, otu, reference);
  write_nexus(out, net, labels, xml, tree_name);
  write_alternatives(out, net, otu);
}

void print_haplotype_distance_matrix(const PopGenetics& sample, std::ostream& out, bool xml,
                                     std::string_view time_stamp) {
  if (!has_matrix(sample)) return;
  const std::string& name = sample.SampleName.str();
  out << "\nInter-haplotypic distance matrix (s.d. above diagonal):\n\n";
  const TXmlTag matrix_tag("interHapDistMatrix", "pop", name);
  if (xml) out << matrix_tag.open_text(time_stamp);
  print_matrix(out, *sample.dist_mat);
  out << "\n";
  if (xml) out << matrix_tag.close_text();
  out << "\nList of Haplotypes:\n\n";
  const TXmlTag labels_tag("interHapDistMatrixLabels", "pop", name);
  if (xml) out << labels_tag.open_text(time_stamp);
  for (const std::string& label : sample_labels(sample)) out << fmt::name(label, xml) << "\n";
  if (xml) out << labels_tag.close_text();
}

void PrintMinSpannNetworkPop(PopGenetics& sample, settings& s, std::ostream& out) {
  if (!has_matrix(sample)) return;
  const ResultDocument& doc = result_document();
  const bool xml = doc.xml();
  print_haplotype_distance_matrix(sample, out, xml, doc.time_stamp());
  if (s.PrintMinSpannNetworkPop == 0) return;
  std::string reference = labelled_citation(xml, References().citation("Prim_R"));
  if (!xml) reference += "\n";
  const std::vector<std::string> labels = sample_labels(sample);
  write_network(out, cells_of(*sample.dist_mat), static_cast<int>(labels.size()), labels, xml,
                reference, sample.SampleName.str());
}

void PrintMinSpannNetworkGlob(std::ostream& out, const DistMat& matrix, const Haplo_DB& haplotypes,
                              bool group_structure) {
  ResultDocument& doc = result_document();
  if (!group_structure && doc.print_sections()) {
    doc.open_tree_leaf(2, "_pop_glob_spann", "Minimum Spanning Network");
  }
  const int n = matrix.dim();
  std::vector<std::string> labels(at(n));
  for (int i = 0; i < n; ++i) {
    if (matrix.has_labels() && i < matrix.label_count()) {
      labels[at(i)] = matrix.label(i).str();
    } else if (const HaploDef* def = haplotypes[i]) {
      labels[at(i)] = def->hapl_id.str();
    }
  }
  std::ostringstream reference;
  write_citations(reference, doc.xml(), {References().citation("Prim_R")});
  write_network(out, cells_of(matrix, n), n, labels, doc.xml(), reference.str(), "MST_AMOVA");
}

void install_among_hooks() {
  haplotype_matrix_printer() = &PrintMinSpannNetworkPop;
}
