// The dispatch of the within-sample analyses: for one sample, in a fixed
// order, what the bits of TaskNumber select.
//
//   step  bit     task
//   1             the sample's anchor and banner (when any task below is set)
//   2     0x1     standard diversity indices
//   3     0x2     molecular diversity (distance matrix with DistanceMethod)
//   4     0x4     mismatch distribution (distance matrix with MismatchDistanceMethod)
//   5     0x8     haplotype frequencies (phased data; else Gibbs, then EM)
//   6     0x10    linkage disequilibrium (exact test; likelihood ratio for unknown phase)
//   7     0x20    Hardy-Weinberg equilibrium
//   8     0x800   the distance matrix for the structure analyses
//   9     0x40    Tajima's test
//   10    0x4000  Fu's Fs test
//   11    0x80    Ewens-Watterson tests
//   12    0x100   Chakraborty's test
//   13    TaskNumber exactly 0x1000: phenotypes expanded for the AMOVA permutations
//
// The dispatch writes the titles of the sections and the sentences of the
// tasks that the data do not allow; the analyses write their own sections
// through the entries of sample_analyses(), which the module of each analysis
// fills. An entry left empty makes its step say in the log that the analysis
// is not available in this build, and write nothing into the document.
//
// Distance matrices: before calling an analysis that needs one, the dispatch
// sets the sample's dist_method (and GammaAValue for DNA) and calls the
// distance entry with per_site 0 for step 3 and step 8, 1 for step 4
// (differences per sequence, for the mismatch distribution). FREQUENCY data
// get no matrix.
#pragma once

#include <functional>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

#include "model/population.h"
#include "model/settings.h"

// One rank of the Ewens-Watterson tables: filled by step 11, read by step 12.
struct HitEntry {
  double sum = 0.0;
  double sum_sq = 0.0;
  double mean = 0.0;
  double sd = 0.0;
};

// What the steps of one dispatch share.
class SampleTaskContext {
 public:
  SampleTaskContext(PopGenetics& sample, settings& s) : sample_(sample), settings_(s) {}

  // check_data (slot 3), once per dispatch; its result (the dispatch goes on either way).
  int ensure_checked();
  // find_polymorphic_sites (slot 5), once per dispatch, after check_data.
  int ensure_polymorphic_sites();

  // The ranks of the neutrality tests, room for Nb_haplo entries; freed at the end.
  std::vector<HitEntry> hits;

 private:
  PopGenetics& sample_;
  settings& settings_;
  bool checked_ = false;
  int check_result_ = 0;
  bool classified_ = false;
  int classify_result_ = 0;
};

// An analysis of one sample. It writes its citations and its text into the
// result document (result_document()), below the title the dispatch wrote.
using SampleAnalysis = void (*)(PopGenetics& sample, settings& s, SampleTaskContext& context);
// Slot 4: fills sample.dist_mat by sample.dist_method. 1 on success.
using DistanceAnalysis = int (*)(PopGenetics& sample, std::ostream* out, int* stop, int per_site);

struct SampleAnalysisEntry {
  SampleAnalysis run = nullptr;
  const char* status = nullptr;  // the status line shown before the step; none when null
};

struct SampleAnalyses {
  SampleAnalysisEntry standard_indices;        // 0x1
  SampleAnalysisEntry molecular_diversity;     // 0x2
  SampleAnalysisEntry mismatch;                // 0x4
  SampleAnalysisEntry phased_haplotype_freqs;  // 0x8, haplotypic data or known phase
  SampleAnalysisEntry gibbs_phase;             // 0x8, GibbsInferGamPhase
  SampleAnalysisEntry em_haplotype_freqs;      // 0x8, EMEstimHaplFreqs or ComputeAllAllelesEM
  SampleAnalysisEntry ld_exact;                // 0x10, haplotypic data or known phase
  SampleAnalysisEntry ld_likelihood_ratio;     // 0x10, unknown phase
  SampleAnalysisEntry hardy_weinberg;          // 0x20
  SampleAnalysisEntry tajima;                  // 0x40
  SampleAnalysisEntry fu_fs;                   // 0x4000
  SampleAnalysisEntry ewens_watterson;         // 0x80
  SampleAnalysisEntry chakraborty;             // 0x100
  DistanceAnalysis distance_matrix = nullptr;  // slot 4
};

// The entries in use (process-wide).
SampleAnalyses& sample_analyses();

// Slot 1: runs the selected tasks on one sample. 1 when the dispatch ran to
// its end, 0 when a stop request ended it.
int test_methods(PopGenetics& sample, settings& s);

// What a pass does around the dispatch.
struct SampleRunHooks {
  std::function<void(PopGenetics&)> before_sample;  // the Gibbs output files
  std::function<void(PopGenetics&)> after_sample;
  std::function<void()> after_last;  // the within-sample summary
};

// Walks the samples in order: "\nPopulation '" + name + "' : " to the log,
// the dispatch, "done in " + ms + " ms"; after the last, the summary hook,
// then release_BMat of the first sample. A stop request ends the walk.
void run_sample_tasks(std::span<PopGenetics* const> samples, settings& s,
                      const SampleRunHooks& hooks = {});

// A share of the progress total for the selected tasks of one sample: one
// unit per selected step, as the dispatch adds one to the done counter per step.
double estimate_sample_work(const PopGenetics& sample, const settings& s);

// --- Texts of the dispatch, for the analyses --------------------------------

// The title of a section of a sample: a rule, "== " + title + " : (" + name +
// ")", a rule.
void write_sample_section_title(std::ostream& out, std::string_view title,
                                std::string_view sample_name);
// "\nNo. of sequences         : " (DNA) or "\nNo. haplotypes           : ".
const char* haplotype_count_label(const PopGenetics& sample);
// "\nNo. of polymorphic sites : " (DNA, RFLP) or "\nNo. of polymorphic loci  : ".
const char* polymorphism_label(const PopGenetics& sample);
// What the Ewens-Watterson step writes when the table of B numbers can't be had.
const char* bnum_missing_message(const PopGenetics& sample);

// The haplotypes that two samples share, by the distance matrix between the
// definitions of the project: once per call "\n   Haplotypes shared between
// \"a\" and \"b\":\n", then "\t\t" + id + " = " + id + "\n" per pair.
void print_shared_haplotypes(const Population& a, const Population& b, std::ostream& out,
                             const TriMat& matrix, bool xml);
