// Helpers of the dictionary and table tests: a capture of reports and log
// lines, and a generator that replays fixed numbers.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "model/allele_db.h"
#include "model/pop_haplo_db.h"
#include "model/report.h"

namespace dictionary_test {

struct Report {
  unsigned char kind;
  std::string function_name;
  int code;
  bool operator==(const Report&) const = default;
};

// Installs hooks that record every report and the log for the life of the
// object; the default hooks come back afterwards.
class ReportCapture {
 public:
  ReportCapture() {
    reports().clear();
    log().str("");
    install_report_hooks(&raise, &log_hook);
  }
  ~ReportCapture() { install_report_hooks(nullptr, nullptr); }
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;

  const std::vector<Report>& all() const { return reports(); }
  std::string log_text() const { return log().str(); }
  int count(int code) const {
    int n = 0;
    for (const Report& r : reports()) n += r.code == code ? 1 : 0;
    return n;
  }

 private:
  static std::vector<Report>& reports() {
    static std::vector<Report> list;
    return list;
  }
  static std::ostringstream& log() {
    static std::ostringstream stream;
    return stream;
  }
  static void raise(unsigned char kind, std::string_view name, int code) {
    reports().push_back(Report{kind, std::string(name), code});
    if (kind == report_kind::MEMORY) throw MEMORY_EXHAUSTED;
  }
  static std::ostream& log_hook() { return log(); }
};

// Hands out the given uniforms in order; counts the draws and the seeds seen.
class ReplayGenerator {
 public:
  explicit ReplayGenerator(std::vector<double> values) : values_(std::move(values)) {}

  double ran3(int* idum) {
    seeds_.push_back(idum ? *idum : 0);
    if (next_ >= values_.size()) {
      ADD_FAILURE() << "more draws than the test foresaw";
      return 0.0;
    }
    return values_[next_++];
  }
  int uniform_index(int n) {
    const int k = static_cast<int>(n * ran3(nullptr));
    return k < n ? k : n - 1;
  }
  std::size_t draws() const { return next_; }

 private:
  std::vector<double> values_;
  std::size_t next_ = 0;
  std::vector<int> seeds_;
};

// An allele dictionary filled on demand, and haplotypes made from texts.
class Alleles {
 public:
  TAllele* at(int locus, const std::string& name) {
    TAllele* known = db_.find_allele(locus, name);
    return known ? known : db_.enter_allele(locus, name, 0);
  }
  // One allele per locus, from the texts in order.
  TPopHaplotype haplotype(const std::vector<std::string>& names) {
    TPopHaplotype h;
    for (std::size_t l = 0; l < names.size(); ++l) {
      h.alleles.push_back(at(static_cast<int>(l), names[l]));
    }
    return h;
  }
  // One single-character allele per locus: "ACG" is A, C, G at loci 0, 1, 2.
  TPopHaplotype chars(const std::string& text) {
    std::vector<std::string> names;
    for (char c : text) names.emplace_back(1, c);
    return haplotype(names);
  }
  TAlleleDB& db() { return db_; }

 private:
  TAlleleDB db_;
};

// The alleles of a haplotype without separators.
inline std::string text_of(const TPopHaplotype& h) {
  std::string out;
  for (const TAllele* a : h.alleles) out += a ? a->allele_name.str() : std::string("_");
  return out;
}

}  // namespace dictionary_test
