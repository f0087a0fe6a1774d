// End-to-end golden cases. tests/data/cases.tsv lists them: case name,
// expected exit code, provenance of the expected files. Each case folder has
//   input/     copied into a fresh scratch folder, which is the working folder
//   args       optional, one command-line argument a line
//   expected/  files compared byte for byte (after normalisation) with the
//              same paths in the scratch folder; expected/stdout is the console
// MORVCORE_UPDATE_GOLDEN=1 rewrites the expected files from the program's
// output; it is for deliberate updates only and never set in CI.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "support/test_support.h"

namespace fs = std::filesystem;
using namespace testing_support;

namespace {

struct GoldenCase {
  std::string name;
  int exit_code = 0;
  std::string provenance;
};

// Names the case in test listings instead of dumping its bytes.
void PrintTo(const GoldenCase& c, std::ostream* os) { *os << c.name; }

std::vector<GoldenCase> load_cases() {
  std::vector<GoldenCase> cases;
  std::ifstream in(data_dir() / "cases.tsv");
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    GoldenCase c;
    std::string code;
    std::getline(fields, c.name, '\t');
    std::getline(fields, code, '\t');
    std::getline(fields, c.provenance);
    c.exit_code = std::atoi(code.c_str());
    cases.push_back(c);
  }
  return cases;
}

std::vector<std::string> load_args(const fs::path& file) {
  std::vector<std::string> args;
  std::ifstream in(file);
  std::string line;
  while (std::getline(in, line)) args.push_back(line);
  return args;
}

class Golden : public ::testing::TestWithParam<GoldenCase> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Golden);

TEST_P(Golden, OutputMatchesExpectedFiles) {
  const GoldenCase& c = GetParam();
  const fs::path case_dir = data_dir() / c.name;
  ASSERT_TRUE(fs::is_directory(case_dir / "expected")) << c.name;
  TempDir work;
  if (fs::exists(case_dir / "input")) copy_tree(case_dir / "input", work.path());
  const RunResult r = run_morvcore(work.path(), load_args(case_dir / "args"));
  const bool update = std::getenv("MORVCORE_UPDATE_GOLDEN") != nullptr;
  EXPECT_EQ(r.exit_code, c.exit_code) << r.err;
  for (const auto& entry : fs::recursive_directory_iterator(case_dir / "expected")) {
    if (!entry.is_regular_file()) continue;
    const fs::path rel = fs::relative(entry.path(), case_dir / "expected");
    const bool console = rel == "stdout";
    const fs::path produced = work.path() / rel;
    if (!console && !fs::exists(produced)) {
      ADD_FAILURE() << c.name << ": missing output " << rel;
      continue;
    }
    const std::string actual = normalise(console ? r.out : read_file(produced), work.str());
    if (update) {
      write_file(entry.path(), actual);
      continue;
    }
    EXPECT_EQ(read_file(entry.path()), actual) << c.name << ": " << rel;
  }
}

std::string case_name(const ::testing::TestParamInfo<GoldenCase>& info) {
  std::string n = info.param.name;
  for (char& ch : n)
    if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
  return n;
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(load_cases()), case_name);

}  // namespace
