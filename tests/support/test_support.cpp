#include "support/test_support.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace testing_support {

TempDir::TempDir() {
  std::random_device rd;
  for (int attempt = 0; attempt < 100; ++attempt) {
    fs::path p = fs::temp_directory_path() / ("mrvtest_" + std::to_string(rd()));
    if (fs::create_directory(p)) {
      path_ = p;
      return;
    }
  }
  throw std::runtime_error("cannot create a scratch folder");
}

TempDir::~TempDir() {
  std::error_code ec;
  fs::remove_all(path_, ec);
}

std::string read_file(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void write_file(const fs::path& file, const std::string& content) {
  if (file.has_parent_path()) fs::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out << content;
}

void copy_tree(const fs::path& from, const fs::path& to) {
  fs::create_directories(to);
  fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

namespace {
std::string shell_quote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += (c == '\'') ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}
}  // namespace

RunResult run_morvcore(const fs::path& cwd, const std::vector<std::string>& args,
                       const std::string& seed) {
  std::string cmd = "cd " + shell_quote(cwd.string()) + " && ";
  cmd += seed.empty() ? std::string("env -u MORVCORE_SEED ")
                      : "env MORVCORE_SEED=" + shell_quote(seed) + " ";
  cmd += shell_quote(MORVCORE_BINARY);
  for (const auto& a : args) cmd += " " + shell_quote(a);
  const fs::path out = cwd / ".stdout.capture";
  const fs::path err = cwd / ".stderr.capture";
  cmd += " </dev/null >" + shell_quote(out.string()) + " 2>" + shell_quote(err.string());
  RunResult r;
  const int status = std::system(cmd.c_str());
  r.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  r.out = read_file(out);
  r.err = read_file(err);
  fs::remove(out);
  fs::remove(err);
  return r;
}

std::string normalise(const std::string& text, const std::string& dir) {
  std::string s = text;
  if (!dir.empty()) {
    for (size_t pos = s.find(dir); pos != std::string::npos; pos = s.find(dir, pos)) {
      s.replace(pos, dir.size(), "<DIR>");
      pos += 5;
    }
  }
  static const std::regex date(R"(\d\d/\d\d/\d\d at \d\d:\d\d:\d\d)");
  // The run's stamp that anchors are named by: the date without blanks, '/' and ':' as '_'.
  static const std::regex anchor_date(R"(\d\d_\d\d_\d\dat\d\d_\d\d_\d\d)");
  static const std::regex done_in(R"(done in -?\d+ ms)");
  static const std::regex paren_ms(R"(\(-?\d+ ms\))");
  static const std::regex time_attr(R"(time="[^"]*")");
  static const std::regex total_ms(R"(computing time: -?\d+(\.\d+)? ms)");
  static const std::regex run_time(R"(Total computing time for this run : \d+h \d+m \d+s \d+ ms)");
  s = std::regex_replace(s, date, "DD/MM/YY at HH:MM:SS");
  s = std::regex_replace(s, anchor_date, "DD_MM_YYatHH_MM_SS");
  s = std::regex_replace(s, done_in, "done in # ms");
  s = std::regex_replace(s, paren_ms, "(# ms)");
  s = std::regex_replace(s, time_attr, "time=\"#\"");
  s = std::regex_replace(s, total_ms, "computing time: # ms");
  s = std::regex_replace(s, run_time, "Total computing time for this run : #h #m #s # ms");
  return s;
}

fs::path source_dir() {
  return fs::path(MORVCORE_SOURCE_DIR);
}
fs::path data_dir() {
  return source_dir() / "tests" / "data";
}

}  // namespace testing_support
