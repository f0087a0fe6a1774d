#include "output/summary_files.h"

#include <istream>
#include <streambuf>

namespace {

constexpr std::array<std::string_view, sum_switch_count> switch_keys = {{
    "_GENE_DIVERSITY_",
    "_NUCLEOTIDE_COMPOSITION_",
    "_MOLECULAR_DIVERSITY_",
    "_MISMATCH_",
    "_THETA_",
    "_LINKAGE_DISEQUILIBRIUM_",
    "_HARDY_WEINBERG_",
    "_TAJIMA_",
    "_FU_FS_",
    "_EWENS_WATTERSON_",
    "_CHAKRABORTY_",
    "_PAIRWISE_DIST_",
    "_AMOVA_RES_",
    "_ALLELE_FREQS_",
    "_DETECT_SELECTION_",
}};

// A head is the run separator, then `text`, then a line end unless the file
// takes the separator alone.
struct FileEntry {
  std::string_view name;
  SumSwitch on;
  std::string_view text;
  bool separator_only = false;
};

// clang-format off
const std::array<FileEntry, sum_file_count> file_table = {{
    {"gen_div.sum", SumSwitch::gene_diversity,
     "Gene diversity indices:\n"
     "file_name\tpop_name\tnb_gene_copies\tnb_haplotypes\t[orig_nb_haplotypes]\tnum_loci\t"
     "_nb_usable_loci\t_nb_pol_sites\tgene_diversity"},
    {"nucl_comp.sum", SumSwitch::nucleotide_composition,
     "Nucleotide composition\n"
     "file_name\tpop_name\tC\tT\tA\tG\tsum(CTAG)"},
    {"mold_div.sum", SumSwitch::molecular_diversity,
     "Molecular diversity indices\n"
     "file_name\tpop_name\tindel_w\tts_w\ttv_w\tmiss_lev\t#ts_s\t#tv_s\t#subs_s\t#del_s\t"
     "#pol_s\t#nucl_s\t#usa_loci\tdist_met\tgamma_a\tmol_div\tnucl_div"},
    {"mismatch.sum", SumSwitch::mismatch,
     "Mismatch distribution\n"
     "file_name\tpop_name\tDistance\tgamma_a\tmean\tvariance\ttheta0\ttau\t"
     "Mismatch distribution starting from the zero difference class"},
    {"mismatch_sp3.sum", SumSwitch::mismatch,
     "Mismatch distribution\n"
     "file_name\tpop_name\tDistance\tgamma_a\tmean\tvariance\ttau\ttheta\tM\t"
     "Mismatch distribution starting from the zero difference class"},
    {"mismatch_sp4.sum", SumSwitch::mismatch,
     "Mismatch distribution\n"
     "file_name\tpop_name\tDistance\tgamma_a\tmean\tvariance\ttheta0\ttau\ttheta\tM\t"
     "Mismatch distribution starting from the zero difference class"},
    {"only_mismatch_sp.txt", SumSwitch::mismatch, "Mismatch distributions\n"},
    {"theta.sum", SumSwitch::theta, "\tfile_name"},
    {"link_dis.sum", SumSwitch::linkage_disequilibrium,
     "Linkage disequilibrium indices\n"
     "alpha_lev\ty\t#usable_loci"},
    {"l_d_pro.sum", SumSwitch::linkage_disequilibrium,
     "Linkage disequilibrium probabilities\n"
     "file_name\tpop_name\tloc_1\tloc_2\t#resampl\tl_d_proba\ts.d."},
    {"l_d_proIBD.sum", SumSwitch::linkage_disequilibrium,
     "Linkage disequilibrium likelihood ration test with inbreeding\n"
     "file_name\tpop_name\tComp_inbreeding \tlnLHoodLDf \tf_coeff_LD \tlnLHoodLEf \tf_coeff_LE\tChi2f \tdf \tP_Chi2f\t"
     "Comp_inbreeding \tlnLHoodLDf \tf_coeff_LD \tlnLHoodLE \tf_coeff_LE\tChi2 \tdf \tP_Chi2\t"
     "\tP_Chi2_resamp\tnum_boot"},
    {"l_d_val.sum", SumSwitch::linkage_disequilibrium,
     "Linkage disequilibrium values\n"
     "file_name\tpop_name\tloc_1\tloc_2\tD\tDprime\tD_hedrick\tR\tR2\tR2_hedrick"},
    {"hw.sum", SumSwitch::hardy_weinberg,
     "Hardy-Weinberg equilibrium indices\tfile_name\tpop_name"},
    {"tajima.sum", SumSwitch::tajima,
     "Tajima's D indices:\n"
     "file_name\tpop_name\tnum gene copies\tnum polym sites\ttheta_S\ttheta_pi\tTajima's D\t"
     "P-value beta approx.\tP-value simul.\tProb(Simulated D <= 0)\tNum. simulations"},
    {"fu_fs.sum", SumSwitch::fu_fs,
     "file_name\tpop_name\tNo. of Genes copies\tNo. of Haplotypes\tTheta\tFs\t"
     "Prob(sim_Fs <=obs_Fs)\tP( Fs <= 0\tNo. Simulations"},
    {"ewens.sum", SumSwitch::ewens_watterson,
     "Ewens-Watterson neutrality test indices\n"
     "file_name\tpop_name\tnb_genes\t[nb_orig_hapl]\tnb_#all\tobs_F\texp_F\tp_Ewens_Watt\tp_exact_Slatkin"},
    {"chakra.sum", SumSwitch::chakraborty,
     "Chakraborty's neutrality test indices\n"
     "file_name\tpop_name\tnb_genes\tnb_haplotypes\thomozygosity\texp_k(hom)\tp_k_all\tp_>=k_all"},
    {"pairdist.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"FSTdist.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"VCompdist.sum", SumSwitch::pairwise_dist, "", true},
    {"pairdiff.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"tau_uneq.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"coanst_c.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"slatkin.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"NM_value.sum", SumSwitch::pairwise_dist, "\tfile_name"},
    {"amovares.sum", SumSwitch::amova_res,
     "\nAMOVA computations ..."
     "\nfile_name\n"},
    {"selectionDetection.sum", SumSwitch::detect_selection,
     "\nDetection of loci under selection:"
     "\nfileName\tnumSims\tNumTestedLoci\tnumLowFSTLociBelow_1e-3\tnumLowFSTLociBelow_5e-3\t"
     "numLowFSTLociBelow_1e-2\tnumLowFSTLociBelow_2.5e-2\tnumLociBelow_5e-2"
     "\tnumHighFCTLociBelow_1e-3\tnumHighFCTLociBelow_5e-3\tnumHighFCTLociBelow_1e-2\t"
     "numHighFCTLociBelow_2.5e-2\tnumHighFCTLociBelow_5e-2"
     "\tnumLowFCTLociBelow_1e-3\tnumLowFCTLociBelow_5e-3\tnumLowFCTLociBelow_1e-2\t"
     "numLowFCTLociBelow_2.5e-2\tnumLociBelow_5e-2"
     "\tnumHighFCTLociBelow_1e-3\tnumHighFCTLociBelow_5e-3\tnumHighFCTLociBelow_1e-2\t"
     "numHighFCTLociBelow_2.5e-2\tnumHighFCTLociBelow_5e-2\n"},
    {"allele_freqs.sum", SumSwitch::allele_freqs,
     "Allele frequencies\nfile_name\n"
     "Population 1 id\tFreq. all. 1\tFreq. all. 2\t...\tPopulation 2 id\tFreq. all. 1\tFreq. all. 2\t..."},
}};
// clang-format on

// Folders this long are refused before the control file is looked for.
constexpr std::size_t folder_limit = 351;
constexpr std::size_t path_line_limit = 800;
constexpr std::size_t key_line_limit = 99;

class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

std::ostream& discarding_stream() {
  static NullBuffer buffer;
  static std::ostream stream(&buffer);
  return stream;
}

// Reads one line as a bounded line read does: a line longer than `limit`
// keeps its first `limit` characters and ends the reading (false from then
// on). A trailing carriage return is dropped before the length is judged.
bool read_bounded_line(std::istream& in, std::string& line, std::size_t limit, bool& too_long) {
  too_long = false;
  if (!std::getline(in, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  if (line.size() > limit) {
    line.resize(limit);
    too_long = true;
  }
  return true;
}

}  // namespace

std::string_view sum_switch_key(SumSwitch s) {
  return switch_keys[static_cast<std::size_t>(s)];
}

std::string_view sum_file_name(SumFile f) {
  return file_table[static_cast<std::size_t>(f)].name;
}

SumSwitch sum_file_switch(SumFile f) {
  return file_table[static_cast<std::size_t>(f)].on;
}

std::string_view summary_distance_code(int distance_code) {
  static constexpr std::array<std::string_view, 7> codes = {"#Diff",  "JC",  "K2P",   "%Diff",
                                                            "TajNei", "Tam", "TamNei"};
  if (distance_code < 0 || distance_code > 6) return codes[0];
  return codes[static_cast<std::size_t>(distance_code)];
}

const std::string& run_separator() {
  static const std::string separator =
      "\n\n" + std::string(67, '-') + "\nMorvalin batch run summary file\"\n";
  return separator;
}

std::string summary_head(SumFile f) {
  const FileEntry& entry = file_table[static_cast<std::size_t>(f)];
  std::string head = run_separator();
  if (entry.separator_only) return head;
  head += entry.text;
  head += '\n';
  return head;
}

SummaryFiles::SummaryFiles() = default;

SummaryFiles::~SummaryFiles() {
  close();
}

void SummaryFiles::read_global_flags(std::string_view folder) {
  switches_.fill(false);
  sum_path_.clear();
  if (folder.size() >= folder_limit) return;
  std::ifstream in(std::string(folder) + "glbstreams.txt");
  if (!in) return;
  std::string line;
  bool too_long = false;
  if (!read_bounded_line(in, line, path_line_limit, too_long)) return;
  sum_path_ = line;
  if (too_long) return;
  while (read_bounded_line(in, line, key_line_limit, too_long) && !too_long) {
    for (std::size_t s = 0; s < sum_switch_count; ++s) {
      if (line == switch_keys[s]) switches_[s] = true;
    }
  }
}

void SummaryFiles::initialize(int project_index) {
  for (auto& stream : streams_) stream.reset();
  for (std::size_t f = 0; f < sum_file_count; ++f) {
    const FileEntry& entry = file_table[f];
    if (!switches_[static_cast<std::size_t>(entry.on)]) continue;
    const std::string path = sum_path_ + std::string(entry.name);
    streams_[f] = std::make_unique<std::ofstream>(path, std::ios::out | std::ios::app);
    if (project_index == 0) *streams_[f] << summary_head(static_cast<SumFile>(f));
  }
}

void SummaryFiles::close() {
  sum_path_.clear();
  for (auto& stream : streams_) {
    if (!stream) continue;
    stream->close();
    stream.reset();
  }
}

std::ostream& SummaryFiles::stream(SumFile f) {
  const auto& s = streams_[static_cast<std::size_t>(f)];
  return s ? static_cast<std::ostream&>(*s) : discarding_stream();
}

SummaryFiles& summary_files() {
  static SummaryFiles registry;
  return registry;
}

void read_global_flags(std::string_view folder) {
  summary_files().read_global_flags(folder);
}

void initialize_mrv_global_objects(int project_index) {
  summary_files().initialize(project_index);
}

void close_mrv_global_objects() {
  summary_files().close();
}
