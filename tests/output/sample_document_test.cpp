// A sample result in both dresses, written through the document's own API as
// a run and its analyses write it. The test checks it; with the environment
// variable MORVCORE_SAMPLE_RESULT_DIR set to a folder that holds the viewer
// files, it leaves the result there for the browser check
// (tools/browser_check.sh) to render.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "output/number_format.h"
#include "output/result_document.h"
#include "output/xml_checker.h"
#include "support/test_support.h"

namespace {

namespace fs = std::filesystem;

const std::string slashes(68, '/');

void heading(ResultDocument& doc, const std::string& date) {
  std::ostream& out = doc.stream();
  const TXmlTag run("run");
  if (doc.xml()) out << doc.open_text(run);
  out << "\n" << slashes << "\nRUN NUMBER 1 (" << date << ")\n" << slashes << "\n";
  if (doc.xml()) out << run.close_text();
}

void settings_section(ResultDocument& doc) {
  std::ostream& out = doc.stream();
  doc.open_tree_leaf(1, "_run_information", "Settings");
  const TXmlTag title("title");
  if (doc.xml()) out << doc.open_text(title);
  out << "==============================\nSettings used for Calculations\n"
         "==============================\n\n General settings:\n -----------------\n";
  if (doc.xml()) out << title.close_text();
}

void sample_section(ResultDocument& doc, int index, const std::string& name) {
  std::ostream& out = doc.stream();
  doc.open_sample_leaf(2, "samp", index, name);
  out << std::string(69, '=') << "\n== Sample : \t" << doc.name(name) << "\n"
      << std::string(69, '=') << "\n";
  doc.write_citations({"Ewens_W", "Watterson_G", "Slatkin_M"});
  out << "\nObserved haplotype frequencies\n";
  const TXmlTag table("obsHapFreq", "pop", name);
  if (doc.xml()) out << doc.open_text(table);
  out << "All.#\tRel. freq.\tAbs. Freq.\n";
  for (int h = 1; h <= 3; ++h) {
    out << fmt::integer(h) << "\t" << fmt::fixed(h / 6.0, 0, 5) << "\t" << fmt::integer(h) << "\n";
  }
  if (doc.xml()) out << table.close_text();
  out << "\nPr(rand F &lt;= obs F)                    :  0.41200\n";
}

void structure_section(ResultDocument& doc) {
  std::ostream& out = doc.stream();
  doc.open_tree_folder(2, "_pop_gen_struct", "Genetic structure (samp=pop)");
  out << std::string(79, '=') << "== GENETIC STRUCTURE ANALYSIS\n" << std::string(79, '=') << "\n";
  doc.open_tree_leaf(2, "_pop_amova", "AMOVA");
  out << "\n--------------------------\nAMOVA design and results :\n"
         "--------------------------\n\n";
  doc.write_citations({"Excoffier_L_and_Smouse_P", "Weir_B_and_Cockerham_C", "Weir_B"});
  out << "Vc and FST : P(rand. value &lt; obs. value)  =  0.00000+-0.00000\n";
  doc.open_tree_leaf(2, "_pop_pairw_diff", "Pairwise distances");
  const TXmlTag matrix("PairFstMat");
  if (doc.xml()) out << doc.open_text(matrix);
  out << "\t1\t2\n1\t0.00000\n2\t" << fmt::fixed(0.12345, 0, 5) << "\t0.00000\n";
  if (doc.xml()) out << matrix.close_text();
  doc.open_tree_folder(2, "_shared haplotypes", "Shared haplotypes");
  out << "\n" << std::string(66, '=') << "\n== Checking for haplotypes shared among populations:\n";
}

void write_sample_run(ResultDocument& doc, const fs::path& core, const std::string& base, bool xml,
                      bool append, const std::string& date) {
  const fs::path folder = core / (base + ".res");
  fs::create_directories(folder);
  ResultDocument::RunStart run;
  run.core_directory = core.string() + "/";
  run.files =
      RunFiles::derive((folder / (base + (xml ? ".xml" : ".htm"))).string(), run.core_directory);
  run.project_file = (folder / (base + ".mvp")).string();
  run.date = date;
  run.xml = xml;
  run.append = append;
  ASSERT_TRUE(doc.begin_run(run));
  std::ofstream(run.files.log, std::ios::app) << "Log file path: " << run.files.log << "\n";
  heading(doc, date);
  settings_section(doc);
  doc.tree_line_folder(2, "Samples");
  sample_section(doc, 1, "Pop 1");
  sample_section(doc, 2, "Pop&2 <north>");
  structure_section(doc);
  doc.stream() << "\n"
               << slashes << "\nEND OF RUN NUMBER 1 (" << date << "))"
               << "\nTotal computing time for this run : 0h 0m 0s 12 ms\n"
               << slashes;
  doc.close();
}

// Writes sample_html.res (one run) and sample_xml.res (two runs in one document) under `core`.
void write_samples(const fs::path& core) {
  ResultDocument doc;
  write_sample_run(doc, core, "sample_html", false, false, "05/03/24 at 14:22:10");
  write_sample_run(doc, core, "sample_xml", true, false, "05/03/24 at 14:22:10");
  write_sample_run(doc, core, "sample_xml", true, true, "05/03/24 at 14:25:31");
}

TEST(SampleDocument, BothDressesAreComplete) {
  const char* target = std::getenv("MORVCORE_SAMPLE_RESULT_DIR");
  testing_support::TempDir scratch;
  const fs::path core = target != nullptr ? fs::path(target) : scratch.path();
  write_samples(core);

  const std::string xml = testing_support::read_file(core / "sample_xml.res/sample_xml.xml");
  const XmlCheck check = check_xml(xml);
  ASSERT_EQ(check.error, "");
  EXPECT_EQ(std::count(check.elements.begin(), check.elements.end(), "run"), 2);
  // The fixed "&lt;" reads as a less-than sign; the names come back as they were.
  bool fixed_text = false;
  bool name = false;
  for (const std::string& text : check.texts) {
    fixed_text |= text.find("P(rand. value < obs. value)") != std::string::npos;
    name |= text.find("Pop&2 <north>") != std::string::npos;
  }
  EXPECT_TRUE(fixed_text);
  EXPECT_TRUE(name);

  const std::string html = testing_support::read_file(core / "sample_html.res/sample_html.htm");
  EXPECT_NE(html.find("== Sample : \tPop&2 <north>\n"), std::string::npos);
  EXPECT_NE(html.find("P(rand. value &lt; obs. value)"), std::string::npos);
  EXPECT_TRUE(fs::exists(core / "sample_html.res/sample_html_main.htm"));
  EXPECT_TRUE(fs::exists(core / "sample_xml.res/sample_xml_tree.htm"));
}

}  // namespace
