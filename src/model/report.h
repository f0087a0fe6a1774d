// The reporting seam of the data model and of every layer built on it.
// The run control installs its error table and log behind these hooks at
// start-up; until then reports are dropped and log lines go nowhere, which
// is also what happens to reports made before the first log is open.
#pragma once

#include <ostream>
#include <string_view>

// Kinds of report, as the byte argument of a report.
namespace report_kind {
constexpr unsigned char WARNING = 0;
constexpr unsigned char ERROR = 1;
constexpr unsigned char MEMORY = 2;
constexpr unsigned char INFO = 3;
constexpr unsigned char DEBUG = 4;
}  // namespace report_kind

// The one exception type: thrown by a report of kind MEMORY, nothing else.
enum ExceptionType { MEMORY_EXHAUSTED = 0 };

using RaiseHook = void (*)(unsigned char kind, std::string_view function_name, int code);
using LogHook = std::ostream& (*)();

void install_report_hooks(RaiseHook raise, LogHook log);

// Reports through the installed error table (a MEMORY report throws ExceptionType).
void report_error(unsigned char kind, std::string_view function_name, int code);

// The log stream of the project in hand; a stream that discards when none is open.
std::ostream& log_stream();
