#include "model/report.h"

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

void dropping_raise(unsigned char kind, std::string_view, int) {
  if (kind == report_kind::MEMORY) throw MEMORY_EXHAUSTED;
}

RaiseHook raise_hook = dropping_raise;
LogHook log_hook = discarding_log;

}  // namespace

void install_report_hooks(RaiseHook raise, LogHook log) {
  raise_hook = raise ? raise : dropping_raise;
  log_hook = log ? log : discarding_log;
}

void report_error(unsigned char kind, std::string_view function_name, int code) {
  raise_hook(kind, function_name, code);
}

std::ostream& log_stream() { return log_hook(); }
