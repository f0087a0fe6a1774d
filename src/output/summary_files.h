// The summary files of a batch: up to 28 tab-separated text files that
// collect one row per project and sample over every project of a batch, so
// that many projects can be compared side by side in a spreadsheet.
//
// A control file, glbstreams.txt, names the folder of the files on its first
// line and, on each further line, a key that switches a group of files on.
// The batch driver reads it and opens the files before the run list is read
// and closes them at the end of the batch; every analysis writes its rows in
// between, with one call:
//
//   SummaryRow(sum_stream(SumFile::gen_div))
//       .names(project_file_name, sample_name)
//       .cell(fmt::general(copies))
//       .put(fmt::general(diversity))
//       .end_line();
//
// A file that is switched off hands out a stream that discards; a file that
// could not be opened loses its writes in silence; neither stops the run.
#pragma once

#include <array>
#include <cstddef>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "output/number_format.h"

// The fifteen switches, one per key of glbstreams.txt, in the order of the keys.
enum class SumSwitch {
  gene_diversity,          // _GENE_DIVERSITY_
  nucleotide_composition,  // _NUCLEOTIDE_COMPOSITION_
  molecular_diversity,     // _MOLECULAR_DIVERSITY_
  mismatch,                // _MISMATCH_
  theta,                   // _THETA_
  linkage_disequilibrium,  // _LINKAGE_DISEQUILIBRIUM_
  hardy_weinberg,          // _HARDY_WEINBERG_
  tajima,                  // _TAJIMA_
  fu_fs,                   // _FU_FS_
  ewens_watterson,         // _EWENS_WATTERSON_
  chakraborty,             // _CHAKRABORTY_
  pairwise_dist,           // _PAIRWISE_DIST_
  amova_res,               // _AMOVA_RES_
  allele_freqs,            // _ALLELE_FREQS_
  detect_selection,        // _DETECT_SELECTION_
};
inline constexpr std::size_t sum_switch_count = 15;

// The 28 files, one stream each.
enum class SumFile {
  gen_div,
  nucl_comp,
  mold_div,
  mismatch,
  mismatch_sp3,
  mismatch_sp4,
  only_mismatch_sp,
  theta,
  link_dis,
  l_d_pro,
  l_d_proIBD,
  l_d_val,
  hw,
  tajima,
  fu_fs,
  ewens,
  chakra,
  pairdist,
  FSTdist,
  VCompdist,
  pairdiff,
  tau_uneq,
  coanst_c,
  slatkin,
  NM_value,
  amovares,
  selectionDetection,
  allele_freqs,
};
inline constexpr std::size_t sum_file_count = 28;

// The key of a switch in glbstreams.txt, e.g. "_THETA_".
std::string_view sum_switch_key(SumSwitch s);
// The file name of a summary file, e.g. "theta.sum".
std::string_view sum_file_name(SumFile f);
// The switch that turns a file on.
SumSwitch sum_file_switch(SumFile f);

// Names of the distance methods, indexed by distance code 0..8.
inline constexpr std::array<std::string_view, 9> distance_method_names = {
    "Pairwise difference",
    "Jukes and Cantor",
    "Kimura 2P",
    "Proportion of difference",
    "Tajima and Nei",
    "Tamura",
    "Tamura and Nei",
    "No. of different alleles (FST)",
    "Sum of squared size difference (RST)",
};

// The short code of a distance method in mold_div.sum: "#Diff" for 0 and for
// any code outside 0..6.
std::string_view summary_distance_code(int distance_code);

// The text that opens every head: two line ends, 67 dashes and the title line
// (whose trailing double quote belongs to it).
const std::string& run_separator();

// The head of a file as a new batch writes it, run separator included.
std::string summary_head(SumFile f);

// The switches, the folder and the open streams of one batch.
class SummaryFiles {
 public:
  SummaryFiles();
  ~SummaryFiles();
  SummaryFiles(const SummaryFiles&) = delete;
  SummaryFiles& operator=(const SummaryFiles&) = delete;

  // Reads folder + "glbstreams.txt": all switches go off first; a folder of
  // 351 characters or more, or a missing file, leaves them off without a word.
  // The first line (at most 800 characters) is the folder of the summary files,
  // used as a plain prefix; each further line (at most 99 characters) that
  // equals a key exactly switches it on; other lines are skipped.
  void read_global_flags(std::string_view folder);

  // Opens every file whose switch is on, in append mode, and writes its head
  // when project_index is 0 (the first project of the batch).
  void initialize(int project_index);

  // Closes every open file; the folder is forgotten, the switches stay.
  void close();

  bool is_on(SumSwitch s) const { return switches_[static_cast<std::size_t>(s)]; }
  // Whether the file has a stream (its switch was on when the files were opened).
  bool has_stream(SumFile f) const { return streams_[static_cast<std::size_t>(f)] != nullptr; }
  // The stream of a file; one that discards everything when the file has none.
  std::ostream& stream(SumFile f);
  const std::string& sum_path() const { return sum_path_; }

 private:
  std::array<bool, sum_switch_count> switches_{};
  std::string sum_path_;
  std::array<std::unique_ptr<std::ofstream>, sum_file_count> streams_;
};

// The one registry of the process and shortcuts to it.
SummaryFiles& summary_files();
void read_global_flags(std::string_view folder);
void initialize_mrv_global_objects(int project_index);
void close_mrv_global_objects();
inline bool sum_switch(SumSwitch s) {
  return summary_files().is_on(s);
}
inline std::ostream& sum_stream(SumFile f) {
  return summary_files().stream(f);
}

// Builds one row of a summary file in steps. Nothing ends the line but end_line(),
// so several analyses can add to the same row.
class SummaryRow {
 public:
  explicit SummaryRow(std::ostream& os) : os_(os) {}
  // The two quoted names that open a row: "project"<tab>"sample"<tab>.
  SummaryRow& names(std::string_view project, std::string_view sample) {
    return quoted(project).quoted(sample);
  }
  // A quoted text and a tab.
  SummaryRow& quoted(std::string_view text) {
    os_ << '"' << text << "\"\t";
    return *this;
  }
  // A formatted number or a text, then a tab.
  SummaryRow& cell(const fmt::Formatted& value) { return put(value).put("\t"); }
  SummaryRow& cell(std::string_view text) { return put(text).put("\t"); }
  // A formatted number or a text as it stands.
  SummaryRow& put(const fmt::Formatted& value) {
    os_ << value;
    return *this;
  }
  SummaryRow& put(std::string_view text) {
    os_ << text;
    return *this;
  }
  void end_line() { os_ << '\n'; }

 private:
  std::ostream& os_;
};
