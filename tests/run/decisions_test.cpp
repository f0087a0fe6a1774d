// Behaviours fixed by design decisions that no other test pins down: the
// values shown by the settings report where its lines name no key, names
// holding XML's special characters in a whole run's XML document, and the
// append to an XML document that lost its closing tag.
#include <gtest/gtest.h>

#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "model/settings.h"
#include "run/settings_report.h"
#include "support/test_support.h"

namespace {

std::string report(const settings& s) {
  std::ostringstream os;
  print_settings_report(s, os, false, "01/02/03 at 04:05:06");
  return os.str();
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Each task shows the key of its own: a value set to a distinct number must
// come out in the line of its task, in the line's place.
TEST(Decisions, SettingsReportShowsTheKeyOfEachTask) {
  settings s;
  s.data_type = data_type_code::DNA;
  s.NumIterationsNeutralityTests = 111;
  s.NumSimulFuTest = 222;
  s.MarkovChainStepsHW = 31;
  s.MarkovChainDememorisationStepsHW = 32;
  s.PrecisionOnPValueHW = 33;
  s.NumPermutPopDiff = 41;
  s.NumDememoPopDiff = 42;
  s.PrecProbPopDiff = 43;
  s.TaskNumber = 0x80 | 0x4000 | 0x20 | 0x2000;
  const std::string text = report(s);
  const std::vector<std::string> blocks = {
      "    Hardy-Weinberg equilibrium test:\n"
      "    --------------------------------\n"
      "        No. of steps in Markov chain      = 31\n"
      "        No. of Dememorisation Steps       = 32\n"
      "        Required precision on Probability = 33\n",
      "    Ewens-Watterson neutrality test\n"
      "    -------------------------------\n"
      "        No. of Simultated Samples = 111\n",
      "    Fu's Neutraliy test:\n"
      "    --------------------\n"
      "        No. of Simultated Samples = 222\n",
      "    Exact test of population differentiation:\n"
      "    -----------------------------------------\n"
      "        No. of steps in Markov chain      = 41\n"
      "        No. of Dememorisation Steps       = 42\n"
      "        Required precision on Probability = 43\n",
  };
  std::size_t at = 0;
  for (const std::string& block : blocks) {
    const std::size_t found = text.find(block, at);
    ASSERT_NE(found, std::string::npos) << block << "\nin\n" << text;
    at = found + block.size();
  }
}

// The four optional lines of pairwise FST, each by its own key, in this order.
TEST(Decisions, PairwiseFstLinesEachByItsKey) {
  const char* const lines[] = {
      "        Compute pairwise differences\n",
      "        Compute relative population sizes\n",
      "        Compute coancestry coefficients\n",
      "        Compute Slatkin's distances\n",
  };
  for (int mask = 0; mask < 16; ++mask) {
    settings s;
    s.data_type = data_type_code::DNA;
    s.TaskNumber = 0x400;
    s.PrintMissIntermatchs = mask & 1;
    s.UnequalPopSizeDiv = (mask >> 1) & 1;
    s.PrintConcestryCoeff = (mask >> 2) & 1;
    s.PrintSlatkinsDist = (mask >> 3) & 1;
    std::string expected =
        "    Population pairwise Fst values:\n"
        "    -------------------------------\n";
    for (int i = 0; i < 4; ++i)
      if (mask & (1 << i)) expected += lines[i];
    expected += "        No. of permutations for significance = ";
    EXPECT_TRUE(holds(report(s), expected)) << "mask " << mask;
  }
}

// Every '&' opens an entity and every '<' a markup item; tags balance.
std::string xml_problem(const std::string& doc) {
  std::vector<std::string> open;
  for (std::size_t i = 0; i < doc.size(); ++i) {
    if (doc[i] == '&') {
      const std::size_t end = doc.find(';', i);
      const std::string entity = end == std::string::npos ? "" : doc.substr(i, end - i + 1);
      if (entity != "&amp;" && entity != "&lt;" && entity != "&gt;" && entity != "&quot;" &&
          entity != "&apos;")
        return "bare '&' at " + std::to_string(i);
    }
    if (doc[i] != '<') continue;
    const std::size_t close = doc.find('>', i);
    if (close == std::string::npos) return "unclosed '<' at " + std::to_string(i);
    const std::string tag = doc.substr(i + 1, close - i - 1);
    if (tag.empty() || tag.front() == '?' || tag.front() == '!') continue;
    const bool closing = tag.front() == '/';
    const std::size_t from = closing ? 1 : 0;
    const std::string name = tag.substr(from, tag.find_first_of(" \t\n/", from) - from);
    if (name.empty() || !std::isalpha(static_cast<unsigned char>(name.front())))
      return "'<' in text at " + std::to_string(i);
    if (closing) {
      if (open.empty() || open.back() != name) return "unbalanced </" + name + ">";
      open.pop_back();
    } else if (tag.back() != '/') {
      open.push_back(name);
    }
  }
  return open.empty() ? "" : "unclosed <" + open.back() + ">";
}

TEST(Decisions, XmlCheckCatchesWhatBreaksADocument) {
  const std::pair<const char*, bool> cases[] = {
      {"<?x?><a b=\"1\"><c/>t &amp; &lt;u&gt;</a>", true},
      {"<a>A&B</a>", false},
      {"<a>A<x></a>", false},
      {"<a>x < y</a>", false},
      {"<a><b></a></b>", false},
  };
  for (const auto& [doc, ok] : cases) EXPECT_EQ(xml_problem(doc).empty(), ok) << doc;
}

// A sample and a haplotype named with '&', '<' and '>' in a whole XML run:
// the document stays well-formed and shows the names escaped.
TEST(Decisions, NamesAreEscapedInTheXmlDocumentOfARun) {
  using testing_support::read_file;
  testing_support::TempDir dir;
  testing_support::copy_tree(testing_support::data_dir() / "run_dna_groups" / "input", dir.path());
  const auto project = dir.path() / "dna_groups.mvp";
  std::string text = read_file(project);
  for (const auto& [from, to] :
       {std::pair<std::string, std::string>{"Lake_Arvi", "A&B<x>"}, {"CR01", "H&1"}}) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
      text.replace(at, from.size(), to);
  }
  testing_support::write_file(project, text);
  // Within-sample tasks print the sample's name and its haplotypes' labels.
  const auto settings_file = dir.path() / "mrv_run.mvs";
  std::string keys = read_file(settings_file);
  keys.replace(keys.find("TaskNumber=1536"), 15, "TaskNumber=1539");
  testing_support::write_file(settings_file, keys + "PrintMinSpannNetworkPop=1\n");
  const auto run = testing_support::run_morvcore(dir.path(), {});
  ASSERT_EQ(run.exit_code, 0) << run.out << run.err;
  const std::string xml = read_file(dir.path() / "dna_groups.res" / "dna_groups.xml");
  EXPECT_EQ(xml_problem(xml), "");
  EXPECT_TRUE(holds(xml, "A&amp;B&lt;x&gt;"));
  EXPECT_TRUE(holds(xml, "H&amp;1"));
  EXPECT_FALSE(holds(xml, "A&B<x>"));
}

// An appended XML run whose document no longer ends with the root's closing
// tag gets a body of its own behind it, and the log says so.
TEST(Decisions, AppendToADocumentWithoutItsClosingStartsANewBody) {
  using testing_support::read_file;
  testing_support::TempDir dir;
  testing_support::copy_tree(testing_support::data_dir() / "run_append_xml" / "input", dir.path());
  const auto list = dir.path() / "mrv_run.txt";
  std::string runs = read_file(list);
  runs.erase(runs.find("rflp.mvp\n1\n0\n"), 13);  // one project in the list
  testing_support::write_file(list, runs);
  ASSERT_EQ(testing_support::run_morvcore(dir.path(), {}).exit_code, 0);
  const auto doc_path = dir.path() / "rflp.res" / "rflp.xml";
  std::string doc = read_file(doc_path);
  ASSERT_TRUE(doc.ends_with("</Morvalin>\n\n"));
  doc.pop_back();
  testing_support::write_file(doc_path, doc);
  ASSERT_EQ(testing_support::run_morvcore(dir.path(), {}).exit_code, 0);
  doc = read_file(doc_path);
  const auto count = [&doc](const std::string& part) {
    int n = 0;
    for (auto at = doc.find(part); at != std::string::npos; at = doc.find(part, at + 1)) ++n;
    return n;
  };
  EXPECT_EQ(count("\n<Morvalin>\n"), 2);
  EXPECT_EQ(count("</Morvalin>\n"), 2);
  EXPECT_TRUE(holds(read_file(dir.path() / "rflp.res" / "Morvalin_log.txt"),
                    "does not end with the closing tag of its root element;"));
}

}  // namespace
