// Test helpers of the numerics tests: a capture of the reports and log lines
// that numerics emits, the MORVCORE_SEED variable set for one scope, and a
// generator seeded the way a caller of ran3 seeds it.
#pragma once

#include <cstdlib>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "numerics/numerics_report.h"
#include "numerics/random.h"

namespace numerics_testing {

struct Report {
  unsigned char kind;
  std::string function;
  int code;
};

// Installs hooks that record every report and log line; restores the
// default (discarding) hooks on destruction.
class ReportCapture {
 public:
  ReportCapture() {
    reports().clear();
    log_buffer().str("");
    install_numerics_report_hooks(&record, &log);
  }
  ~ReportCapture() { install_numerics_report_hooks(nullptr, nullptr); }
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;

  static std::vector<Report>& reports() {
    static std::vector<Report> list;
    return list;
  }
  static std::string log_text() { return log_buffer().str(); }

 private:
  static std::ostringstream& log_buffer() {
    static std::ostringstream buffer;
    return buffer;
  }
  static void record(unsigned char kind, std::string_view function, int code) {
    reports().push_back({kind, std::string(function), code});
  }
  static std::ostream& log() { return log_buffer(); }
};

// MORVCORE_SEED holds `value` (or is unset) for the scope; restored after.
class SeedVariable {
 public:
  explicit SeedVariable(std::optional<std::string> value) {
    if (const char* old = std::getenv("MORVCORE_SEED")) saved_ = old;
    set(value);
  }
  ~SeedVariable() { set(saved_); }
  SeedVariable(const SeedVariable&) = delete;
  SeedVariable& operator=(const SeedVariable&) = delete;

 private:
  static void set(const std::optional<std::string>& value) {
    if (value) {
      setenv("MORVCORE_SEED", value->c_str(), 1);
    } else {
      unsetenv("MORVCORE_SEED");
    }
  }
  std::optional<std::string> saved_;
};

// Seeds through ran3 itself, discarding the first number as every seeding does.
inline void seed_with(RandomGenerator& generator, int seed) {
  int idum = seed;
  generator.ran3(&idum);
}

inline double draw(RandomGenerator& generator) {
  int idum = 1;
  return generator.ran3(&idum);
}

// Number of uniforms that `used` consumed since it stood where `twin`
// stands: the twin is advanced until it yields the next number of `used`.
inline int draws_consumed(RandomGenerator& used, RandomGenerator& twin) {
  const double next = draw(used);
  for (int count = 0; count < 1000000; ++count) {
    if (draw(twin) == next) return count;
  }
  return -1;  // the streams never met: not twins
}

}  // namespace numerics_testing
