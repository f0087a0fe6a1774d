// Captures what the readers report while a test runs: each report, and the
// log with every report marked in its place as "!<kind><code> <function>\n"
// (kind W, E, M, I or D), so that a test can check the order of both.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "model/report.h"

namespace input_testing {

struct Report {
  unsigned char kind;
  std::string function;
  int code;
};

class ReportCapture {
 public:
  ReportCapture() {
    active() = this;
    install_report_hooks(&raise, &log);
  }
  ~ReportCapture() {
    install_report_hooks(nullptr, nullptr);
    active() = nullptr;
  }
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;

  std::string text() const { return log_.str(); }
  const std::vector<Report>& reports() const { return reports_; }
  // The codes reported, in order.
  std::vector<int> codes() const {
    std::vector<int> result;
    for (const Report& r : reports_) result.push_back(r.code);
    return result;
  }
  bool has(int code) const {
    for (const Report& r : reports_)
      if (r.code == code) return true;
    return false;
  }

 private:
  static ReportCapture*& active() {
    static ReportCapture* capture = nullptr;
    return capture;
  }
  static void raise(unsigned char kind, std::string_view function, int code) {
    ReportCapture* c = active();
    c->reports_.push_back({kind, std::string(function), code});
    c->log_ << '!' << "WEMID"[kind < 5 ? kind : 1] << code << ' ' << function << '\n';
    if (kind == report_kind::MEMORY) throw MEMORY_EXHAUSTED;
  }
  static std::ostream& log() { return active()->log_; }

  std::ostringstream log_;
  std::vector<Report> reports_;
};

}  // namespace input_testing
