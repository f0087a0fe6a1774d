// Helpers of the diversity tests: small samples made ready for the tasks
// (checked, classified, distance matrix filled), and a result document in a
// string.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "model/population_test_support.h"
#include "output/result_document.h"
#include "within/distances.h"
#include "within/diversity.h"
#include "within/sample_tasks.h"

namespace diversity_test {

using Entries = std::vector<std::pair<std::string, int>>;

// A sample of `type` from (definition, count) entries, checked and classified
// with the settings given.
inline std::unique_ptr<PopGenetics> ready_sample(population_test::Project& project,
                                                 unsigned char type, const Entries& entries,
                                                 settings& s, char separator = 0,
                                                 const char* name = "pop") {
  Population data = project.sample(type, entries, separator);
  data.SampleName = name;
  data.sample_index = 0;
  std::unique_ptr<PopGenetics> sample = make_sample(type, data);
  if (auto* dna = dynamic_cast<PopulDNA*>(sample.get())) {
    dna->DeletionWeight = s.DeletionWeight;
    dna->TransitionWeight = s.TransitionWeight;
    dna->TranversionWeight = s.TranversionWeight;
  }
  sample->check_data();
  sample->find_polymorphic_sites(s);
  return sample;
}

// Settings with unit weights (the record's defaults are 0).
inline settings unit_weights() {
  settings s;
  s.DeletionWeight = 1.0;
  s.TransitionWeight = 1.0;
  s.TranversionWeight = 1.0;
  return s;
}

// Fills the sample's matrix by `method`, as the dispatch does for the task.
inline int distances(PopGenetics& sample, int method) {
  sample.dist_method = static_cast<unsigned char>(method);
  return compute_distance_matrix(sample, nullptr, nullptr, 0);
}

// A square matrix of the given lower triangle (row by row, j < i).
inline void fill_matrix(PopGenetics& sample, const std::vector<std::vector<double>>& lower) {
  const int n = static_cast<int>(lower.size());
  sample.dist_mat = std::make_unique<RectMat>(n, n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) (*sample.dist_mat)(i, j) = lower[i][j];
  }
}

// The result document in a string, HTML or XML, sections printed.
class Document {
 public:
  explicit Document(bool xml = false) {
    result_document().use_stream(text_, xml);
    result_document().set_print_sections(true);
  }
  ~Document() { result_document().close(); }
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  std::string str() const { return text_.str(); }
  void clear() { text_.str(""); }

 private:
  std::ostringstream text_;
};

inline std::string fixed6(double x) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", x);
  return buffer;
}

}  // namespace diversity_test
