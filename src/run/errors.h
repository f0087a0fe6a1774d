// The one reporter of the process: the table of messages by code, the log of
// the project in hand, and the counters of what was reported. A report never
// stops a run, except one of kind MEMORY, which throws ExceptionType after
// it is written. Lower layers report through the hooks of model/report.h and
// numerics/numerics_report.h, which this object installs when it is built.
#pragma once

#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "model/report.h"

class Errors {
 public:
  static constexpr int message_count = 209;

  Errors();
  Errors(const Errors&) = delete;
  Errors& operator=(const Errors&) = delete;

  // Writes the report to the log and, in short form, to the result stream.
  // Dropped while no log is open. Code -1 sets the counters back to 1.
  void raise(unsigned char kind, std::string_view function_name, int code);

  // Opens the log (truncating unless `append`), closing one that is open.
  void open_log(const std::string& file_name, bool append);
  // Closes the log; lines written until the next open_log go nowhere.
  void close_log();
  // The stream every subsystem writes its log lines to.
  std::ostream& log();
  bool log_open() const { return log_open_; }
  const std::string& log_name() const { return log_name_; }

  // The result document of the run in hand (not owned); null outside a run.
  void set_result_stream(std::ostream* stream) { result_stream_ = stream; }
  std::ostream* result_stream() const { return result_stream_; }

  // The text of a code; empty for a code outside the table.
  static std::string_view message(int code);

 private:
  bool log_open_ = false;
  std::unique_ptr<std::ofstream> log_stream_;
  std::string log_name_;
  std::ostream* result_stream_ = nullptr;

  // Numbers of the next report: of all, and of each kind (DEBUG counts with ERROR).
  int total_ = 1;
  int errors_ = 1;
  int warnings_ = 1;
  int infos_ = 1;
  int memories_ = 1;
};

// The process-wide reporter, built before main runs.
Errors& errors();
