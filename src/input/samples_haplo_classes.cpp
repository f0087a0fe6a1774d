// Classes of haplotype definitions that lie at distance 0 from each other:
// the report of their frequencies in the samples, and the merging of the
// entries of one class within each sample.
#include <algorithm>
#include <climits>
#include <string>

#include "input/samples.h"
#include "model/report.h"
#include "model/vectors.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "output/xml_tag.h"

namespace {

// Counts from a file may be absurd; their sums must stay defined.
int clamped_sum(int a, int b) {
  const long long sum = static_cast<long long>(a) + b;
  return static_cast<int>(std::clamp<long long>(sum, INT_MIN, INT_MAX));
}

// The row of a definition in the matrix: its mat_index once associated, else its position.
int row_of(const HaploDef& def, int position) {
  return def.mat_index >= 0 ? def.mat_index : position;
}

struct HaplotypeClasses {
  std::vector<std::vector<int>> members;  // definition positions, the first opens the class
  std::vector<int> class_of;              // per definition position
};

// In definition order, each definition not yet in a class opens one, and
// every later unclassed definition at distance exactly 0 from it joins it.
HaplotypeClasses find_classes(const DistMat& matrix, const Haplo_DB& db) {
  HaplotypeClasses classes;
  const int n = db.size();
  classes.class_of.assign(static_cast<std::size_t>(n), -1);
  for (int i = 0; i < n; ++i) {
    if (classes.class_of[static_cast<std::size_t>(i)] >= 0) continue;
    const int c = static_cast<int>(classes.members.size());
    classes.members.push_back({i});
    classes.class_of[static_cast<std::size_t>(i)] = c;
    const int row_i = row_of(*db[i], i);
    for (int j = i + 1; j < n; ++j) {
      if (classes.class_of[static_cast<std::size_t>(j)] >= 0) continue;
      if (matrix(row_i, row_of(*db[j], j)) != 0.0) continue;
      classes.members.back().push_back(j);
      classes.class_of[static_cast<std::size_t>(j)] = c;
    }
  }
  return classes;
}

// The position of an entry's definition in the data base, or -1.
int position_of(const Haplo_DB& db, const PHaploDef& entry) {
  const int index = entry.hapl != nullptr ? db.find_by_id(*entry.hapl) : kNotFound;
  return index == kNotFound ? -1 : index;
}

// Counts[class][sample]: the copies of the entries of the sample at distance
// 0 from the first member of the class.
std::vector<std::vector<double>> class_counts(const Samples& samples, const DistMat& matrix,
                                              const Haplo_DB& db, const HaplotypeClasses& classes) {
  std::vector<std::vector<double>> counts(classes.members.size(),
                                          std::vector<double>(samples.list().size(), 0.0));
  for (std::size_t c = 0; c < classes.members.size(); ++c) {
    const int first = classes.members[c].front();
    const int first_row = row_of(*db[first], first);
    for (std::size_t s = 0; s < samples.list().size(); ++s) {
      for (const PHaploDef& entry : samples.list()[s]->haplo_list) {
        const int position = position_of(db, entry);
        if (position < 0) continue;
        if (matrix(first_row, row_of(*entry.hapl, position)) == 0.0) counts[c][s] += entry.freq;
      }
    }
  }
  return counts;
}

// The table of the classes' frequencies, inside the element `tag` of an XML document.
class FrequencyTable {
 public:
  FrequencyTable(std::ostream& os, const Samples& samples, const Haplo_DB& db,
                 const HaplotypeClasses& classes)
      : os_(os), samples_(samples), db_(db), classes_(classes) {
    for (const auto& sample : samples.list()) {
      widths_.push_back(std::max(10, sample->SampleName.length() + 2));
      total_width_ += widths_.back();
    }
  }

  void write(const char* tag_name, const std::vector<std::vector<double>>& values, bool relative) {
    ResultDocument& doc = result_document();
    const TXmlTag tag(tag_name, "samp", "whatever");
    if (doc.xml()) os_ << doc.open_text(tag);
    const std::string rule(static_cast<std::size_t>(total_width_), '-');
    os_ << rule << "\nHaplotype:";
    for (std::size_t s = 0; s < widths_.size(); ++s)
      os_ << doc.name(fmt::right(samples_.list()[s]->SampleName.str(), widths_[s]).text);
    os_ << '\n' << std::string(10, ' ');
    for (std::size_t s = 0; s < widths_.size(); ++s)
      os_ << fmt::right("(" + fmt::integer(static_cast<long long>(s) + 1).text + ")", widths_[s]);
    os_ << '\n' << rule << '\n';
    for (std::size_t c = 0; c < classes_.members.size(); ++c) {
      const std::vector<int>& members = classes_.members[c];
      // The members one a line; the values stand on the line of the last.
      for (std::size_t k = 0; k + 1 < members.size(); ++k)
        os_ << doc.name(db_[members[k]]->hapl_id.str()) << '\n';
      os_ << doc.name(fmt::left(db_[members.back()]->hapl_id.str(), 10).text);
      for (std::size_t s = 0; s < widths_.size(); ++s) {
        if (relative) {
          os_ << fmt::fixed(values[c][s], widths_[s], 5);
        } else {
          os_ << fmt::integer(static_cast<long long>(values[c][s]), widths_[s]);
        }
      }
      os_ << '\n' << rule << '\n';
    }
    if (doc.xml()) os_ << tag.close_text();
  }

 private:
  std::ostream& os_;
  const Samples& samples_;
  const Haplo_DB& db_;
  const HaplotypeClasses& classes_;
  std::vector<int> widths_;
  int total_width_ = 10;  // the column of the haplotypes
};

void write_class_list(std::ostream& os, const Haplo_DB& db, const HaplotypeClasses& classes) {
  ResultDocument& doc = result_document();
  os << "\n\nHaplotype frequency distribution among the samples:\n"
     << "===================================================\n\n"
     << "\nHaplotype list"
     << "\n==============\n";
  const std::string rule(40, '-');
  os << rule << '\n' << fmt::left("Haplotype id", 20) << "Haplotype definition\n" << rule << '\n';
  for (const std::vector<int>& members : classes.members) {
    for (std::size_t k = 0; k < members.size(); ++k) {
      const HaploDef& def = *db[members[k]];
      os << "   ";
      if (k + 1 < members.size()) {
        os << doc.name(def.hapl_id.str()) << '\n';
        continue;
      }
      os << doc.name(fmt::left(def.hapl_id.str(), 17).text) << doc.name(def.hapl_content.str())
         << '\n';
    }
  }
  os << "\n\n";
}

}  // namespace

void Samples::print_out_haplo_cl(std::ostream& os, const DistMat& matrix,
                                 const Haplo_DB& haplo_db) {
  if (matrix.dim() != haplo_db.size()) {
    report_error(report_kind::ERROR, " Samples::print_out_haplo_cl()", 135);
    return;
  }
  const HaplotypeClasses classes = find_classes(matrix, haplo_db);
  std::vector<std::vector<double>> counts = class_counts(*this, matrix, haplo_db, classes);
  write_class_list(os, haplo_db, classes);
  os << "\nHaplotype frequencies in populations"
     << "\n====================================\n\n";
  FrequencyTable table(os, *this, haplo_db, classes);
  table.write("absHapFreq", counts, false);
  nb_haplo_classes = static_cast<int>(classes.members.size());
  for (std::size_t s = 0; s < list_.size(); ++s) {
    double sum = 0.0;
    for (const auto& row : counts) sum += row[s];
    if (sum <= 0.0) continue;
    for (auto& row : counts) row[s] /= sum;
  }
  os << "\n\nRelative frequencies:\n\n";
  table.write("relHapFreq", counts, true);
}

void Samples::merge_haplotype_classes(const DistMat& matrix, const Haplo_DB& haplo_db) {
  if (matrix.dim() != haplo_db.size()) return;
  const HaplotypeClasses classes = find_classes(matrix, haplo_db);
  for (const auto& sample : list_) {
    std::vector<PHaploDef>& list = sample->haplo_list;
    for (std::size_t i = 0; i < list.size(); ++i) {
      const int a = position_of(haplo_db, list[i]);
      for (std::size_t j = i + 1; j < list.size() && a >= 0; ++j) {
        const int b = position_of(haplo_db, list[j]);
        if (b < 0 || classes.class_of[static_cast<std::size_t>(a)] !=
                         classes.class_of[static_cast<std::size_t>(b)])
          continue;
        if (matrix(row_of(*list[i].hapl, a), row_of(*list[j].hapl, b)) != 0.0) continue;
        list[i].freq = clamped_sum(list[i].freq, list[j].freq);
        list[j].freq = 0;
        if (list[i].hapl != list[j].hapl) {
          list[i].hapl->count = clamped_sum(list[i].hapl->count, list[j].hapl->count);
          list[j].hapl->count = 0;
        }
      }
    }
    sample->Nb_orig_haplo = static_cast<int>(list.size());
    std::erase_if(list, [](const PHaploDef& e) { return e.freq == 0; });
    sample->Nb_haplo = static_cast<int>(list.size());
  }
}
