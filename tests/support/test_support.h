// Shared helpers of the test programs: scratch folders, files, running the
// built program, and the one normaliser of golden comparisons.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace testing_support {

// A fresh folder under the system's temporary folder, removed on destruction.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::string str() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

std::string read_file(const std::filesystem::path& file);
void write_file(const std::filesystem::path& file, const std::string& content);
void copy_tree(const std::filesystem::path& from, const std::filesystem::path& to);

struct RunResult {
  int exit_code = -1;
  std::string out;  // standard output
  std::string err;  // standard error
};

// Runs the built morvcore in `cwd` with `args`; `seed` sets MORVCORE_SEED
// (empty leaves it unset).
RunResult run_morvcore(const std::filesystem::path& cwd, const std::vector<std::string>& args,
                       const std::string& seed = "-12345");

// Replaces what varies between runs: dates and times, millisecond counts,
// time attributes, and the scratch folder's path (given as `dir`).
std::string normalise(const std::string& text, const std::string& dir = "");

std::filesystem::path source_dir();
std::filesystem::path data_dir();

}  // namespace testing_support
