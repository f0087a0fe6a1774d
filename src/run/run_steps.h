// Small pieces shared by the files of a project's run (project_run,
// make_run_possible, passes, gen_struct, calc_dist_matrix): the process clock
// in milliseconds, the rules of the document, and the log line of an analysis
// that this build does not contain.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "model/report.h"

namespace run_steps {

// Milliseconds of the process clock.
inline long long clock_ms() {
  return static_cast<long long>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

// A run of one character, the rules of the document and the log.
inline std::string rule(std::size_t length, char c = '=') {
  return std::string(length, c);
}

// The log line of a step whose analysis is not part of this build: the run
// goes on without it and writes nothing in its place.
inline void log_not_available(std::string_view what) {
  log_stream() << "\t" << what << " is not available in this build\n";
}

// The console program has no quiet runs; the test stays where the log is written.
inline constexpr bool quiet_run = false;

}  // namespace run_steps
