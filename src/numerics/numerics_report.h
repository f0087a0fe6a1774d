// The numerics library reports its failures (codes 0, 105, 181-185) and its
// log lines through hooks that the run control installs; numerics itself
// depends on no other library of the program.
#pragma once

#include <ostream>
#include <string_view>

// Kinds of report, the same byte values as the run control's reporter uses.
namespace numerics_kind {
constexpr unsigned char WARNING = 0;
constexpr unsigned char ERROR = 1;
constexpr unsigned char MEMORY = 2;
}  // namespace numerics_kind

// Codes of the message table that numerics raises.
namespace numerics_code {
constexpr int NOT_ENOUGH_MEMORY = 0;
constexpr int NUMERICAL_ERROR = 105;
constexpr int SEED_TOO_LARGE = 181;
constexpr int SINGULAR_JACOBIAN = 182;
constexpr int R_SINGULAR = 183;
constexpr int TOO_MANY_ITERATIONS = 184;
constexpr int ROUNDOFF_IN_LNSRCH = 185;
}  // namespace numerics_code

using NumericsRaiseHook = void (*)(unsigned char kind, std::string_view function_name, int code);
using NumericsLogHook = std::ostream& (*)();

// A null hook restores the default: reports dropped, log lines discarded.
void install_numerics_report_hooks(NumericsRaiseHook raise, NumericsLogHook log);
void numerics_report(unsigned char kind, std::string_view function_name, int code);
std::ostream& numerics_log();
