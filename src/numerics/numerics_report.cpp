#include "numerics/numerics_report.h"

#include <streambuf>

namespace {

class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c; }
};

std::ostream& discarding_log() {
  static NullBuffer buffer;
  static std::ostream stream(&buffer);
  return stream;
}

void dropping_raise(unsigned char, std::string_view, int) {}

NumericsRaiseHook raise_hook = dropping_raise;
NumericsLogHook log_hook = discarding_log;

}  // namespace

void install_numerics_report_hooks(NumericsRaiseHook raise, NumericsLogHook log) {
  raise_hook = raise ? raise : dropping_raise;
  log_hook = log ? log : discarding_log;
}

void numerics_report(unsigned char kind, std::string_view function_name, int code) {
  raise_hook(kind, function_name, code);
}

std::ostream& numerics_log() {
  return log_hook();
}
