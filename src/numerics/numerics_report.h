// The numerics library reports its failures (codes 0, 105, 181-185) and its
// log lines through hooks that the run control installs; numerics itself
// depends on no other library of the program.
#pragma once

#include <ostream>
#include <string_view>

using NumericsRaiseHook = void (*)(unsigned char kind, std::string_view function_name, int code);
using NumericsLogHook = std::ostream& (*)();

void install_numerics_report_hooks(NumericsRaiseHook raise, NumericsLogHook log);
void numerics_report(unsigned char kind, std::string_view function_name, int code);
std::ostream& numerics_log();
