#include "output/summary_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace fs = std::filesystem;
using testing_support::read_file;
using testing_support::TempDir;
using testing_support::write_file;

namespace {

const std::string kSeparator =
    "\n\n" + std::string(67, '-') + "\nMorvalin batch run summary file\"\n";

// Every head as a new batch writes it, separator excluded, typed from the list of heads.
struct ExpectedHead {
  std::string file;
  std::string after_separator;
};

const std::vector<ExpectedHead>& expected_heads() {
  static const std::vector<ExpectedHead> heads = {
      {"gen_div.sum",
       "Gene diversity indices:\nfile_name\tpop_name\tnb_gene_copies\tnb_haplotypes\t"
       "[orig_nb_haplotypes]\tnum_loci\t_nb_usable_loci\t_nb_pol_sites\tgene_diversity\n"},
      {"nucl_comp.sum", "Nucleotide composition\nfile_name\tpop_name\tC\tT\tA\tG\tsum(CTAG)\n"},
      {"mold_div.sum",
       "Molecular diversity indices\nfile_name\tpop_name\tindel_w\tts_w\ttv_w\tmiss_lev\t#ts_s\t"
       "#tv_s\t#subs_s\t#del_s\t#pol_s\t#nucl_s\t#usa_loci\tdist_met\tgamma_a\tmol_div\tnucl_"
       "div\n"},
      {"mismatch.sum",
       "Mismatch distribution\nfile_name\tpop_name\tDistance\tgamma_a\tmean\tvariance\ttheta0\t"
       "tau\tMismatch distribution starting from the zero difference class\n"},
      {"mismatch_sp3.sum",
       "Mismatch distribution\nfile_name\tpop_name\tDistance\tgamma_a\tmean\tvariance\ttau\t"
       "theta\tM\tMismatch distribution starting from the zero difference class\n"},
      {"mismatch_sp4.sum",
       "Mismatch distribution\nfile_name\tpop_name\tDistance\tgamma_a\tmean\tvariance\ttheta0\t"
       "tau\ttheta\tM\tMismatch distribution starting from the zero difference class\n"},
      {"only_mismatch_sp.txt", "Mismatch distributions\n\n"},
      {"theta.sum", "\tfile_name\n"},
      {"link_dis.sum", "Linkage disequilibrium indices\nalpha_lev\ty\t#usable_loci\n"},
      {"l_d_pro.sum",
       "Linkage disequilibrium probabilities\nfile_name\tpop_name\tloc_1\tloc_2\t#resampl\t"
       "l_d_proba\ts.d.\n"},
      {"l_d_proIBD.sum",
       "Linkage disequilibrium likelihood ration test with inbreeding\nfile_name\tpop_name\t"
       "Comp_inbreeding \tlnLHoodLDf \tf_coeff_LD \tlnLHoodLEf \tf_coeff_LE\tChi2f \tdf \t"
       "P_Chi2f\tComp_inbreeding \tlnLHoodLDf \tf_coeff_LD \tlnLHoodLE \tf_coeff_LE\tChi2 \t"
       "df \tP_Chi2\t\tP_Chi2_resamp\tnum_boot\n"},
      {"l_d_val.sum",
       "Linkage disequilibrium values\nfile_name\tpop_name\tloc_1\tloc_2\tD\tDprime\tD_hedrick\t"
       "R\tR2\tR2_hedrick\n"},
      {"hw.sum", "Hardy-Weinberg equilibrium indices\tfile_name\tpop_name\n"},
      {"tajima.sum",
       "Tajima's D indices:\nfile_name\tpop_name\tnum gene copies\tnum polym sites\ttheta_S\t"
       "theta_pi\tTajima's D\tP-value beta approx.\tP-value simul.\tProb(Simulated D <= 0)\t"
       "Num. simulations\n"},
      {"fu_fs.sum",
       "file_name\tpop_name\tNo. of Genes copies\tNo. of Haplotypes\tTheta\tFs\t"
       "Prob(sim_Fs <=obs_Fs)\tP( Fs <= 0\tNo. Simulations\n"},
      {"ewens.sum",
       "Ewens-Watterson neutrality test indices\nfile_name\tpop_name\tnb_genes\t[nb_orig_hapl]\t"
       "nb_#all\tobs_F\texp_F\tp_Ewens_Watt\tp_exact_Slatkin\n"},
      {"chakra.sum",
       "Chakraborty's neutrality test indices\nfile_name\tpop_name\tnb_genes\tnb_haplotypes\t"
       "homozygosity\texp_k(hom)\tp_k_all\tp_>=k_all\n"},
      {"pairdist.sum", "\tfile_name\n"},
      {"FSTdist.sum", "\tfile_name\n"},
      {"VCompdist.sum", ""},
      {"pairdiff.sum", "\tfile_name\n"},
      {"tau_uneq.sum", "\tfile_name\n"},
      {"coanst_c.sum", "\tfile_name\n"},
      {"slatkin.sum", "\tfile_name\n"},
      {"NM_value.sum", "\tfile_name\n"},
      {"amovares.sum", "\nAMOVA computations ...\nfile_name\n\n"},
      {"selectionDetection.sum",
       "\nDetection of loci under selection:\nfileName\tnumSims\tNumTestedLoci\t"
       "numLowFSTLociBelow_1e-3\tnumLowFSTLociBelow_5e-3\tnumLowFSTLociBelow_1e-2\t"
       "numLowFSTLociBelow_2.5e-2\tnumLociBelow_5e-2\tnumHighFCTLociBelow_1e-3\t"
       "numHighFCTLociBelow_5e-3\tnumHighFCTLociBelow_1e-2\tnumHighFCTLociBelow_2.5e-2\t"
       "numHighFCTLociBelow_5e-2\tnumLowFCTLociBelow_1e-3\tnumLowFCTLociBelow_5e-3\t"
       "numLowFCTLociBelow_1e-2\tnumLowFCTLociBelow_2.5e-2\tnumLociBelow_5e-2\t"
       "numHighFCTLociBelow_1e-3\tnumHighFCTLociBelow_5e-3\tnumHighFCTLociBelow_1e-2\t"
       "numHighFCTLociBelow_2.5e-2\tnumHighFCTLociBelow_5e-2\n\n"},
      {"allele_freqs.sum",
       "Allele frequencies\nfile_name\nPopulation 1 id\tFreq. all. 1\tFreq. all. 2\t...\t"
       "Population 2 id\tFreq. all. 1\tFreq. all. 2\t...\n"},
  };
  return heads;
}

const std::vector<std::string> kAllKeys = {
    "_GENE_DIVERSITY_", "_NUCLEOTIDE_COMPOSITION_", "_MOLECULAR_DIVERSITY_", "_MISMATCH_",
    "_THETA_",          "_LINKAGE_DISEQUILIBRIUM_", "_HARDY_WEINBERG_",      "_TAJIMA_",
    "_FU_FS_",          "_EWENS_WATTERSON_",        "_CHAKRABORTY_",         "_PAIRWISE_DIST_",
    "_AMOVA_RES_",      "_ALLELE_FREQS_",           "_DETECT_SELECTION_"};

// A start folder (with its control file) and a separate folder for the summary files.
struct Batch {
  TempDir dir;
  fs::path start() const { return dir.path() / "start"; }
  fs::path out() const { return dir.path() / "sums"; }
  std::string start_folder() const { return start().string() + "/"; }

  Batch() {
    fs::create_directories(start());
    fs::create_directories(out());
  }
  void control(const std::vector<std::string>& keys, const std::string& eol = "\n") const {
    std::string text = out().string() + "/" + eol;
    for (const auto& k : keys) text += k + eol;
    write_file(start() / "glbstreams.txt", text);
  }
  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(out())) names.insert(e.path().filename().string());
    return names;
  }
};

std::set<std::string> switches_on(const SummaryFiles& sums) {
  std::set<std::string> on;
  for (std::size_t s = 0; s < sum_switch_count; ++s) {
    if (sums.is_on(static_cast<SumSwitch>(s)))
      on.insert(std::string(sum_switch_key(static_cast<SumSwitch>(s))));
  }
  return on;
}

struct KeyCase {
  std::string key;
  std::set<std::string> files;
};

TEST(SummaryFiles, EachKeyOpensExactlyItsFiles) {
  const std::vector<KeyCase> cases = {
      {"_GENE_DIVERSITY_", {"gen_div.sum"}},
      {"_NUCLEOTIDE_COMPOSITION_", {"nucl_comp.sum"}},
      {"_MOLECULAR_DIVERSITY_", {"mold_div.sum"}},
      {"_MISMATCH_",
       {"mismatch.sum", "mismatch_sp3.sum", "mismatch_sp4.sum", "only_mismatch_sp.txt"}},
      {"_THETA_", {"theta.sum"}},
      {"_LINKAGE_DISEQUILIBRIUM_",
       {"link_dis.sum", "l_d_pro.sum", "l_d_proIBD.sum", "l_d_val.sum"}},
      {"_HARDY_WEINBERG_", {"hw.sum"}},
      {"_TAJIMA_", {"tajima.sum"}},
      {"_FU_FS_", {"fu_fs.sum"}},
      {"_EWENS_WATTERSON_", {"ewens.sum"}},
      {"_CHAKRABORTY_", {"chakra.sum"}},
      {"_PAIRWISE_DIST_",
       {"pairdist.sum", "FSTdist.sum", "VCompdist.sum", "pairdiff.sum", "tau_uneq.sum",
        "coanst_c.sum", "slatkin.sum", "NM_value.sum"}},
      {"_AMOVA_RES_", {"amovares.sum"}},
      {"_ALLELE_FREQS_", {"allele_freqs.sum"}},
      {"_DETECT_SELECTION_", {"selectionDetection.sum"}},
  };
  ASSERT_EQ(cases.size(), sum_switch_count);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.key);
    Batch batch;
    batch.control({c.key});
    SummaryFiles sums;
    sums.read_global_flags(batch.start_folder());
    EXPECT_EQ(switches_on(sums), std::set<std::string>{c.key});
    sums.initialize(0);
    for (std::size_t f = 0; f < sum_file_count; ++f) {
      const auto file = static_cast<SumFile>(f);
      EXPECT_EQ(sums.has_stream(file), c.files.count(std::string(sum_file_name(file))) == 1);
    }
    sums.close();
    EXPECT_EQ(batch.files(), c.files);
  }
}

TEST(SummaryFiles, HeadsAreWrittenWordForWord) {
  Batch batch;
  batch.control(kAllKeys);
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  sums.initialize(0);
  sums.close();
  ASSERT_EQ(expected_heads().size(), sum_file_count);
  for (const auto& head : expected_heads()) {
    SCOPED_TRACE(head.file);
    EXPECT_EQ(read_file(batch.out() / head.file), kSeparator + head.after_separator);
  }
}

TEST(SummaryFiles, SecondBatchAppendsSeparatorAndHeadAgain) {
  Batch batch;
  batch.control({"_THETA_", "_HARDY_WEINBERG_"});
  for (const char* value : {"1.5", "2.5"}) {
    SummaryFiles sums;
    sums.read_global_flags(batch.start_folder());
    sums.initialize(0);
    SummaryRow(sums.stream(SumFile::theta)).names("p.mvp", "pop 1").put(value).end_line();
    sums.close();
  }
  const std::string theta_head = kSeparator + "\tfile_name\n";
  EXPECT_EQ(read_file(batch.out() / "theta.sum"), theta_head + "\"p.mvp\"\t\"pop 1\"\t1.5\n" +
                                                      theta_head + "\"p.mvp\"\t\"pop 1\"\t2.5\n");
  const std::string hw_head =
      kSeparator + "Hardy-Weinberg equilibrium indices\tfile_name\tpop_name\n";
  EXPECT_EQ(read_file(batch.out() / "hw.sum"), hw_head + hw_head);
}

TEST(SummaryFiles, NoHeadOnceAProjectHasFinished) {
  Batch batch;
  batch.control({"_TAJIMA_"});
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  sums.initialize(1);
  sums.close();
  EXPECT_EQ(read_file(batch.out() / "tajima.sum"), "");
}

TEST(SummaryFiles, LinesThatAreNotKeysAreSkipped) {
  Batch batch;
  batch.control({"_THETA_ ", "_theta_", "THETA", "", "anything else", "_TAJIMA_", "_TAJIMA_"});
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  EXPECT_EQ(switches_on(sums), std::set<std::string>{"_TAJIMA_"});
}

TEST(SummaryFiles, CarriageReturnLineEndsAreAccepted) {
  Batch batch;
  batch.control({"_FU_FS_"}, "\r\n");
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  EXPECT_EQ(sums.sum_path(), batch.out().string() + "/");
  sums.initialize(0);
  sums.close();
  EXPECT_EQ(batch.files(), std::set<std::string>{"fu_fs.sum"});
}

TEST(SummaryFiles, MissingControlFileTurnsEverythingOff) {
  Batch batch;
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  EXPECT_TRUE(switches_on(sums).empty());
  sums.initialize(0);
  SummaryRow(sums.stream(SumFile::gen_div)).names("p", "s").put("lost").end_line();
  sums.close();
  EXPECT_TRUE(batch.files().empty());
  EXPECT_TRUE(fs::is_empty(batch.start()));
}

TEST(SummaryFiles, PathLineAloneMakesNoFile) {
  Batch batch;
  batch.control({});
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  EXPECT_EQ(sums.sum_path(), batch.out().string() + "/");
  sums.initialize(0);
  sums.close();
  EXPECT_TRUE(batch.files().empty());
}

// The start folder padded with "./" to a given length: the same folder on disk.
std::string padded_folder(const Batch& batch, std::size_t length) {
  std::string folder = batch.start().string() + "/";
  while (folder.size() + 2 <= length) folder += "./";
  if (folder.size() < length) folder.insert(folder.size() - 1, "/");  // "//" keeps the folder
  EXPECT_EQ(folder.size(), length);
  return folder;
}

TEST(SummaryFiles, FolderOf351CharactersIsRefused) {
  struct Case {
    std::size_t length;
    bool read;
  };
  for (const Case c : {Case{350, true}, Case{351, false}, Case{352, false}}) {
    SCOPED_TRACE(c.length);
    Batch batch;
    batch.control({"_THETA_"});
    SummaryFiles sums;
    sums.read_global_flags(padded_folder(batch, c.length));
    EXPECT_EQ(sums.is_on(SumSwitch::theta), c.read);
  }
}

TEST(SummaryFiles, OverlongLineEndsTheReading) {
  struct Case {
    std::size_t length;
    bool theta_on;
  };
  for (const Case c : {Case{99, true}, Case{100, false}}) {
    SCOPED_TRACE(c.length);
    Batch batch;
    batch.control({"_TAJIMA_", std::string(c.length, 'x'), "_THETA_"});
    SummaryFiles sums;
    sums.read_global_flags(batch.start_folder());
    EXPECT_TRUE(sums.is_on(SumSwitch::tajima));
    EXPECT_EQ(sums.is_on(SumSwitch::theta), c.theta_on);
  }
}

TEST(SummaryFiles, OverlongPathLineReadsNoKey) {
  Batch batch;
  write_file(batch.start() / "glbstreams.txt", std::string(801, 'p') + "\n_THETA_\n");
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  EXPECT_EQ(sums.sum_path(), std::string(800, 'p'));
  EXPECT_FALSE(sums.is_on(SumSwitch::theta));
}

TEST(SummaryFiles, FileThatCannotBeOpenedLosesItsRowsQuietly) {
  Batch batch;
  write_file(batch.start() / "glbstreams.txt",
             (batch.dir.path() / "no_such_folder").string() + "/\n_THETA_\n_TAJIMA_\n");
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  sums.initialize(0);
  EXPECT_TRUE(sums.has_stream(SumFile::theta));
  SummaryRow(sums.stream(SumFile::theta)).names("p", "s").put("1").end_line();
  sums.close();
  EXPECT_FALSE(fs::exists(batch.dir.path() / "no_such_folder"));
}

TEST(SummaryFiles, ClosingDropsStreamsAndFolderButKeepsSwitches) {
  Batch batch;
  batch.control({"_AMOVA_RES_"});
  SummaryFiles sums;
  sums.read_global_flags(batch.start_folder());
  sums.initialize(0);
  sums.close();
  EXPECT_FALSE(sums.has_stream(SumFile::amovares));
  EXPECT_TRUE(sums.is_on(SumSwitch::amova_res));
  EXPECT_EQ(sums.sum_path(), "");
  sums.stream(SumFile::amovares) << "after close";
  EXPECT_EQ(read_file(batch.out() / "amovares.sum"),
            kSeparator + "\nAMOVA computations ...\nfile_name\n\n");
}

TEST(SummaryFiles, ProcessWideRegistryServesTheShortcuts) {
  Batch batch;
  batch.control({"_CHAKRABORTY_"});
  read_global_flags(batch.start_folder());
  initialize_mrv_global_objects(0);
  EXPECT_TRUE(sum_switch(SumSwitch::chakraborty));
  EXPECT_FALSE(sum_switch(SumSwitch::tajima));
  SummaryRow(sum_stream(SumFile::chakra))
      .names("a.mvp", "s1")
      .cell(fmt::general(0.25))
      .cell(fmt::integer(7))
      .cell("none")
      .put(fmt::fixed(1.0, 0, 3))
      .end_line();
  sum_stream(SumFile::tajima) << "discarded";
  close_mrv_global_objects();
  read_global_flags(batch.dir.path().string() + "/missing/");
  EXPECT_EQ(read_file(batch.out() / "chakra.sum"),
            kSeparator +
                "Chakraborty's neutrality test indices\nfile_name\tpop_name\tnb_genes\t"
                "nb_haplotypes\thomozygosity\texp_k(hom)\tp_k_all\tp_>=k_all\n"
                "\"a.mvp\"\t\"s1\"\t0.25\t7\tnone\t1.000\n");
}

TEST(SummaryFiles, DistanceCodesOfMolecularDiversity) {
  const std::vector<std::pair<int, std::string>> cases = {
      {0, "#Diff"}, {1, "JC"},     {2, "K2P"},   {3, "%Diff"}, {4, "TajNei"},
      {5, "Tam"},   {6, "TamNei"}, {7, "#Diff"}, {8, "#Diff"}, {-1, "#Diff"}};
  for (const auto& [code, text] : cases) EXPECT_EQ(summary_distance_code(code), text) << code;
  EXPECT_EQ(distance_method_names[3], "Proportion of difference");
  EXPECT_EQ(distance_method_names[8], "Sum of squared size difference (RST)");
}

}  // namespace
