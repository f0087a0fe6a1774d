// The entry point and the batch driver, seen from outside: each case runs the
// built program in a fresh folder and looks at the console, the exit code and
// the files that it leaves.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/test_support.h"

namespace fs = std::filesystem;
using namespace testing_support;

namespace {

const std::string& usage() {
  static const std::string text = read_file(data_dir() / "cli_help" / "expected" / "stdout");
  return text;
}

const char* const kEnd = "Morvcore terminated gracefully";
// The console of a batch whose one project was opened: the run's progress
// line, then the end line.
const std::string kOpenedThenEnd = std::string("Opening Project...\n") + kEnd;

// A folder with the given files, and the program run in it.
class Cli : public ::testing::Test {
 protected:
  void put(const std::string& name, const std::string& content) {
    write_file(dir_.path() / name, content);
  }
  RunResult run(const std::vector<std::string>& args) {
    RunResult r = run_morvcore(dir_.path(), args);
    EXPECT_EQ(r.exit_code, 0) << r.err;
    return r;
  }
  bool exists(const std::string& name) const { return fs::exists(dir_.path() / name); }
  static std::string cut(const std::string& name) { return name.substr(0, name.rfind('.')); }
  std::string file(const std::string& name) const { return read_file(dir_.path() / name); }
  std::string dir() const { return dir_.str(); }
  // A run list naming the projects, each with the two number lines.
  void list(const std::string& mode, const std::vector<std::string>& projects,
            const std::string& core = "") {
    std::string text = core + "\n" + mode + "\n";
    for (const auto& p : projects) text += p + "\n0\n0\n";
    put("mrv_run.txt", text + "end\n");
  }
  TempDir dir_;
};

TEST_F(Cli, HelpPrintsTheUsageAndTouchesNoFile) {
  const std::vector<std::vector<std::string>> cases = {
      {"-help"}, {"-HELP"}, {"x.mvp", "-help"}, {"-help", "x.mvp", "s.mvs"}, {"my-help.mvp"}};
  for (const auto& args : cases) {
    const RunResult r = run(args);
    EXPECT_EQ(r.out, usage()) << args[0];
    EXPECT_TRUE(fs::is_empty(dir_.path())) << args[0];
  }
}

TEST_F(Cli, ProjectOnTheCommandLineBecomesARunListOfOne) {
  put("a.MVP", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  const RunResult r = run({"a.MVP"});
  EXPECT_EQ(r.out, kOpenedThenEnd);
  EXPECT_EQ(file("mrv_run.txt"), dir() + "\nuse_interf_settings\na.MVP\n0\n0\nend\n");
  // Compared in lower case, opened as spelled: the run reached the project.
  EXPECT_NE(file("a.res/Morvalin_log.txt").find("Opening next project...\na.MVP\n"),
            std::string::npos);
}

TEST_F(Cli, IniFileIsWrittenAtEveryStart) {
  put("a.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  run({"a.mvp"});
  std::string expected = "false\ntrue\nfalse\nfalse\nWeb browser\nText editor\n" +
                         std::string(MORVCORE_BINARY) + "\nRcmd\n" + dir() + "\n";
  for (int i = 0; i < 13; ++i) expected += "false\n";
  EXPECT_EQ(file("morvalin.ini"), expected + "\n");
}

TEST_F(Cli, SettingsArgumentReplacesTheDefaultFile) {
  put("a.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  put("mine.mvs", "TaskNumber=2\r\nXMLOutput=0\r\n");
  run({"mine.mvs", "a.mvp"});
  EXPECT_EQ(file("mrv_run.mvs"), "TaskNumber=2\r\nXMLOutput=0\r\n");
  EXPECT_EQ(file("mine.mvs"), "TaskNumber=2\r\nXMLOutput=0\r\n");
}

TEST_F(Cli, DefaultFileNamedOnTheCommandLineStaysAsItIs) {
  put("a.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  run({"a.mvp", "mrv_run.mvs"});
  EXPECT_EQ(file("mrv_run.mvs"), "TaskNumber=1\n");
  // Another spelling of the same file is copied onto itself without loss.
  run({"a.mvp", "./mrv_run.mvs"});
  EXPECT_EQ(file("mrv_run.mvs"), "TaskNumber=1\n");
}

TEST_F(Cli, OnlyTheFirstListedProjectIsCheckedBeforeTheBatch) {
  put("first.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  list("use_interf_settings", {"first.mvp", "second.mvp", "third.mvp"});
  const RunResult r = run({});
  EXPECT_EQ(r.out, kOpenedThenEnd);
  EXPECT_EQ(file("mrv_pro.txt"), "error\n");
  EXPECT_TRUE(exists("first.res/Morvalin_log.txt"));
  EXPECT_NE(file("first.res/Morvalin_log.txt").find("Error during run of first.mvp\n"),
            std::string::npos);
  EXPECT_FALSE(exists("second.res"));
  EXPECT_FALSE(exists("third.res"));
}

TEST_F(Cli, LogOfAProjectBeginsWithItsPathAndTheCoreDirectory) {
  fs::create_directory(dir_.path() / "p");
  put("p/one.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  list("use_interf_settings", {dir() + "/p/one.mvp"}, dir());
  run({});
  const std::string log = file("p/one.res/Morvalin_log.txt");
  const std::string head = "Log file path: " + dir() + "/p/one.res/Morvalin_log.txt\n" +
                           "Core Routine Directory: " + dir() + "/\n" +
                           "Random number generator initialized with lidum=-12345\n" +
                           "Reading project profile section...\ndone !\n" +
                           "Opening next project...\n" + dir() + "/p/one.mvp\n";
  EXPECT_EQ(log.substr(0, head.size()), head);
  const std::string tail = "Error during run of " + dir() + "/p/one.mvp\n";
  ASSERT_GE(log.size(), tail.size());
  EXPECT_EQ(log.substr(log.size() - tail.size()), tail);
}

struct SettingsCase {
  const char* mode;
  std::vector<std::string> present;  // settings files in the folder
  const char* log_text;              // expected in the project's log
  bool runs;                         // the project reaches its run
};

TEST_F(Cli, SettingsFileChosenByTheModeMustExist) {
  const SettingsCase cases[] = {
      {"use_interf_settings",
       {},
       "Core Routine did not find its settings in:\n    mrv_run.mvs\n",
       false},
      {"use_interf_settings", {"mrv_run.mvs"}, "Opening next project...", true},
      // The associated file is tested only after the default one.
      {"use_ass_settings",
       {},
       "Core Routine did not find its settings in:\n    mrv_run.mvs\n",
       false},
      {"use_ass_settings",
       {"mrv_run.mvs"},
       "The Core Routine did not find the associated settings:\n    p.mvs\n",
       false},
      {"use_ass_settings", {"mrv_run.mvs", "p.mvs"}, "Opening next project...", true},
      // Exploring tolerates a missing file.
      {"explore", {}, "Exploring  p.mvp ...\n", false},
  };
  for (const SettingsCase& c : cases) {
    TempDir scratch;
    write_file(scratch.path() / "p.mvp", "[Profile]\n");
    write_file(scratch.path() / "mrv_run.txt", std::string("\n") + c.mode + "\np.mvp\n0\n0\nend\n");
    for (const auto& name : c.present) write_file(scratch.path() / name, "TaskNumber=1\n");
    const RunResult r = run_morvcore(scratch.path(), {});
    EXPECT_EQ(r.exit_code, 0);
    EXPECT_EQ(r.out, c.runs ? kOpenedThenEnd : std::string(kEnd)) << c.mode;
    const std::string log = read_file(scratch.path() / "p.res" / "Morvalin_log.txt");
    EXPECT_NE(log.find(c.log_text), std::string::npos) << c.mode << "\n" << log;
    EXPECT_EQ(log.find("Opening next project...") != std::string::npos, c.runs) << c.mode;
  }
}

TEST_F(Cli, SpecificSettingsFileIsNamedOnTheThirdLine) {
  put("p.mvp", "[Profile]\n");
  put("mrv_run.txt", "\nuse_spe_settings\nmissing.mvs\np.mvp\n0\n0\nend\n");
  run({});
  EXPECT_NE(file("p.res/Morvalin_log.txt")
                .find("Core Routine did not find its settings in:\n    missing.mvs\n"),
            std::string::npos);
  put("special.mvs", "TaskNumber=1\n");
  put("mrv_run.txt", "\nuse_spe_settings\nspecial.mvs\np.mvp\n0\n0\nend\n");
  run({});
  EXPECT_NE(file("p.res/Morvalin_log.txt").find("Opening next project..."), std::string::npos);
}

TEST_F(Cli, ExploreFailureLeavesErrorInTheStatusFile) {
  put("p.mvp", "");  // nothing to explore
  list("explore", {"p.mvp"});
  run({});
  EXPECT_EQ(file("mrv_pro.txt"), "error\n");
  const std::string log = file("p.res/Morvalin_log.txt");
  EXPECT_NE(log.find("Exploring  p.mvp ...\n"), std::string::npos);
  EXPECT_EQ(log.substr(log.size() - 6), "done!\n");
}

TEST_F(Cli, OnlyEndInLowerOrUpperCaseEndsTheList) {
  put("p.mvp", "[Profile]\n");
  put("End", "[Profile]\n");
  put("q.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  list("use_interf_settings", {"p.mvp", "End"});
  run({});
  EXPECT_TRUE(exists("End.res/Morvalin_log.txt"));  // "End" was taken as a project
  put("mrv_run.txt", "\nuse_interf_settings\np.mvp\n0\n0\nEND\nq.mvp\n0\n0\n");
  run({});
  EXPECT_FALSE(exists("q.res"));
  put("mrv_run.txt", "\nuse_interf_settings\np.mvp\n0\n0\nend\nq.mvp\n0\n0\n");
  run({});
  EXPECT_FALSE(exists("q.res"));
  // A list that stops right after a number line ends as "end" does.
  put("mrv_run.txt", "\nuse_interf_settings\nq.mvp\n0\n0");
  EXPECT_EQ(run({}).out, kOpenedThenEnd);
  EXPECT_TRUE(exists("q.res"));
}

TEST_F(Cli, RunListWithCarriageReturnsIsRead) {
  put("p.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  put("mrv_run.txt", "\r\nuse_interf_settings\r\np.mvp\r\n0\r\n0\r\nend\r\n");
  EXPECT_EQ(run({}).out, kOpenedThenEnd);
  EXPECT_NE(file("p.res/Morvalin_log.txt").find("Opening next project...\np.mvp\n"),
            std::string::npos);
}

TEST_F(Cli, OverlongPathEndsTheList) {
  // Folder names stay within the file system's limit; the paths are 399 and 398 long.
  const std::string folder(200, 'd');
  fs::create_directory(dir_.path() / folder);
  const std::string too_long = folder + "/" + std::string(194, 'p') + ".MVP";
  const std::string longest = folder + "/" + std::string(193, 'q') + ".MVP";
  ASSERT_EQ(too_long.size(), 399u);
  put(too_long, "[Profile]\n");
  put(longest, "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  list("use_interf_settings", {too_long});
  EXPECT_EQ(run({}).out, kEnd);
  EXPECT_FALSE(exists(cut(too_long) + ".res"));
  list("use_interf_settings", {longest});
  run({});
  EXPECT_TRUE(exists(cut(longest) + ".res"));
}

TEST_F(Cli, SilentModeIsAnnouncedOnce) {
  put("p.mvp", "[Profile]\n");
  put("mrv_run.mvs", "TaskNumber=1\n");
  EXPECT_EQ(run({"p.mvp", "RUN_SILENT"}).out,
            std::string("Running morvcore in silent mode ...") + kEnd);
}

TEST_F(Cli, TranslationIsRefusedInWordsAndWritesNoTarget) {
  // The entry point checks the first line naming a ".mvp" file even here, so
  // the target is given another extension.
  put("src.txt", "data\n");
  put("mrv_run.txt", "\ntranslate\nGenepop\nMorvalin\nsrc.txt\nout.dat\n1\n");
  EXPECT_EQ(run({}).out, kEnd);
  EXPECT_FALSE(exists("out.dat"));
  EXPECT_FALSE(exists("dum_mrv.mvp"));
  const std::string log = file("Morvalin_log.txt");
  EXPECT_EQ(log.substr(0, 15), "Log file path: ");
  EXPECT_NE(log.find("translation is not available in this build"), std::string::npos);
  // The same format on both sides ends the translation without a word.
  put("mrv_run.txt", "\ntranslate\nMega\nMega\nsrc.txt\nout.dat\n");
  run({});
  EXPECT_EQ(file("Morvalin_log.txt").find("not available"), std::string::npos);
}

}  // namespace
