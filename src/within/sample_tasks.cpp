#include "within/sample_tasks.h"

#include <ctime>
#include <string>

#include "model/report.h"
#include "output/number_format.h"
#include "output/result_document.h"

namespace {

// Tasks that open the sample's part of the document.
constexpr int kBannerTasks =
    task_bit::STANDARD_INDICES | task_bit::MOLECULAR_DIVERSITY | task_bit::MISMATCH |
    task_bit::HAPLOTYPE_FREQUENCIES | task_bit::LINKAGE_DISEQUILIBRIUM | task_bit::HARDY_WEINBERG |
    task_bit::TAJIMA | task_bit::EWENS_WATTERSON | task_bit::CHAKRABORTY | task_bit::FU_FS;

const std::string& rule() {
  static const std::string text(69, '=');
  return text;
}

long long clock_ms() {
  return static_cast<long long>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

void log_unavailable(std::string_view what) {
  log_stream() << "\t" << what << " is not available in this build\n";
}

// The sentence that replaces a section for genotypic data of unknown phase.
std::string unknown_phase_text(std::string_view task) {
  return std::string(task) +
         " cannot be computed \nin case of genotypic data with unknown gametic phase\n\n"
         "We hope to change it in a future release...\n";
}

class Dispatch {
 public:
  Dispatch(PopGenetics& sample, settings& s)
      : sample_(sample), s_(s), context_(sample, s), tasks_(s.TaskNumber) {}

  int run();

 private:
  bool has(int bit) const { return (tasks_ & bit) != 0; }
  bool stopped() const { return s_.stop_run != 0; }
  bool printing() const { return result_document().print_sections(); }
  std::ostream& out() { return result_document().stream(); }
  SampleAnalyses& analyses() { return sample_analyses(); }

  void prepare();
  void banner();
  void title(std::string_view text);
  void print(std::string_view text);
  // The title, then `text`, for a task that the data type does not allow.
  void refuse(std::string_view section, std::string_view text);
  void run_entry(const SampleAnalysisEntry& entry, std::string_view section, std::string_view what);
  void start(const SampleAnalysisEntry& entry);
  void classify();
  void compute_distances(int method, double gamma, int per_site);

  void standard_indices();
  void molecular_diversity();
  void mismatch();
  void haplotype_frequencies();
  void linkage_disequilibrium();
  void hardy_weinberg();
  void structure_matrix();
  void tajima();
  void fu_fs();
  void ewens_watterson();
  void chakraborty();
  void expand_for_permutations();

  PopGenetics& sample_;
  settings& s_;
  SampleTaskContext context_;
  int tasks_;
};

int Dispatch::run() {
  prepare();
  if (has(kBannerTasks) && printing()) banner();
  using Step = void (Dispatch::*)();
  static constexpr Step steps[] = {&Dispatch::standard_indices,
                                   &Dispatch::molecular_diversity,
                                   &Dispatch::mismatch,
                                   &Dispatch::haplotype_frequencies,
                                   &Dispatch::linkage_disequilibrium,
                                   &Dispatch::hardy_weinberg,
                                   &Dispatch::structure_matrix,
                                   &Dispatch::tajima,
                                   &Dispatch::fu_fs,
                                   &Dispatch::ewens_watterson,
                                   &Dispatch::chakraborty};
  int result = 1;
  for (const Step step : steps) {
    (this->*step)();
    if (stopped()) {
      result = 0;
      break;
    }
  }
  if (result == 1) expand_for_permutations();
  context_.hits.clear();
  context_.hits.shrink_to_fit();
  return result;
}

void Dispatch::prepare() {
  sample_.recessive = s_.RecessiveAllelesEM;
  if (auto* dna = dynamic_cast<PopulDNA*>(&sample_)) {
    dna->DeletionWeight = s_.DeletionWeight;
    dna->TransitionWeight = s_.TransitionWeight;
    dna->TranversionWeight = s_.TranversionWeight;
  } else if (auto* rflp = dynamic_cast<PopulRFLP*>(&sample_)) {
    rflp->DeletionWeight = s_.DeletionWeight;
  }
  // Fu's test refuses these data whether it was asked for or not.
  if (sample_.unknown_phase()) {
    sample_.fu_P = -1.0;
    sample_.fu_Fs = 0.0;
  }
  context_.hits.reserve(static_cast<std::size_t>(sample_.Nb_haplo > 0 ? sample_.Nb_haplo : 0));
}

void Dispatch::banner() {
  ResultDocument& doc = result_document();
  doc.open_sample_leaf(2, sample_.is_sample ? "samp" : "group", sample_.sample_index,
                       sample_.SampleName.str());
  out() << "\n"
        << rule() << "\n== Sample : \t" << doc.name(sample_.SampleName.str()) << "\n"
        << rule() << "\n";
}

void Dispatch::title(std::string_view text) {
  if (printing()) write_sample_section_title(out(), text, sample_.SampleName.str());
}

void Dispatch::print(std::string_view text) {
  if (printing()) out() << text;
}

void Dispatch::refuse(std::string_view section, std::string_view text) {
  classify();
  title(section);
  print(text);
}

void Dispatch::classify() {
  context_.ensure_checked();
  context_.ensure_polymorphic_sites();
}

void Dispatch::start(const SampleAnalysisEntry& entry) {
  if (entry.status != nullptr) settings::show_progress(entry.status);
}

void Dispatch::run_entry(const SampleAnalysisEntry& entry, std::string_view section,
                         std::string_view what) {
  classify();
  if (entry.run == nullptr) {
    log_unavailable(what);
    return;
  }
  title(section);
  start(entry);
  entry.run(sample_, s_, context_);
  progress().done += 1.0;
}

void Dispatch::compute_distances(int method, double gamma, int per_site) {
  sample_.dist_method = static_cast<unsigned char>(method);
  if (auto* dna = dynamic_cast<PopulDNA*>(&sample_)) dna->GammaAValue = gamma;
  const DistanceAnalysis distances = analyses().distance_matrix;
  if (distances == nullptr) {
    log_unavailable("The computation of distance matrices");
    return;
  }
  distances(sample_, nullptr, &s_.stop_run, per_site);
}

void Dispatch::standard_indices() {
  if (!has(task_bit::STANDARD_INDICES)) return;
  if (sample_.recessive != 0) {
    if (sample_.kind() == SampleKind::microsat) return;
    context_.ensure_checked();
    title("Standard diversity indices");
    if (printing()) {
      out() << "Most standard diversity indices cannot be computed \nfor recessive data\n\n"
            << "No. of gene copies in sample       : " << fmt::integer(sample_.gene_copies())
            << "\n";
    }
    return;
  }
  run_entry(analyses().standard_indices, "Standard diversity indices",
            "The computation of standard diversity indices");
}

void Dispatch::molecular_diversity() {
  if (!has(task_bit::MOLECULAR_DIVERSITY)) return;
  const SampleAnalysisEntry& entry = analyses().molecular_diversity;
  classify();
  if (entry.run == nullptr) {
    log_unavailable("The computation of molecular diversity indices");
    return;
  }
  title("Molecular diversity indices");
  start(entry);
  if (!sample_.frequency_data()) {
    const SampleKind kind = sample_.kind();
    const bool sequences = kind == SampleKind::dna || kind == SampleKind::rflp;
    compute_distances(sequences ? s_.DistanceMethod : 0, s_.GammaAValue, 0);
  }
  entry.run(sample_, s_, context_);
  progress().done += 1.0;
}

void Dispatch::mismatch() {
  if (!has(task_bit::MISMATCH)) return;
  if (sample_.unknown_phase()) {
    print(unknown_phase_text("Mismatch distribution"));
    return;
  }
  if (sample_.frequency_data()) {
    refuse("Mismatch distribution",
           "Mismatch distribution cannot be computed \nin case of FREQUENCY data type.");
    return;
  }
  const SampleAnalysisEntry& entry = analyses().mismatch;
  classify();
  if (entry.run == nullptr) {
    log_unavailable("The mismatch distribution");
    return;
  }
  title("Mismatch distribution");
  start(entry);
  const bool standard = sample_.kind() == SampleKind::standard;
  compute_distances(standard ? 0 : s_.MismatchDistanceMethod, s_.MismatchGammaAValue, 1);
  entry.run(sample_, s_, context_);
  progress().done += 1.0;
}

void Dispatch::haplotype_frequencies() {
  if (!has(task_bit::HAPLOTYPE_FREQUENCIES)) return;
  struct Part {
    const SampleAnalysisEntry* entry;
    const char* what;
  };
  std::vector<Part> parts;
  SampleAnalyses& a = analyses();
  if (sample_.haplotypic_or_phase_known()) {
    parts.push_back({&a.phased_haplotype_freqs, "The estimation of haplotype frequencies"});
  } else {
    if (s_.GibbsInferGamPhase != 0) {
      parts.push_back({&a.gibbs_phase, "The Gibbs inference of gametic phase"});
    }
    if (s_.ComputeAllHaplotypesEM != 0 || s_.ComputeAllAllelesEM != 0) {
      parts.push_back({&a.em_haplotype_freqs, "The EM estimation of haplotype frequencies"});
    }
  }
  bool any = false;
  for (const Part& p : parts) {
    if (p.entry->run == nullptr) log_unavailable(p.what);
    any = any || p.entry->run != nullptr;
  }
  if (!any) return;
  classify();
  title("Haplotypes frequency estimation");
  for (const Part& p : parts) {
    if (p.entry->run == nullptr) continue;
    start(*p.entry);
    p.entry->run(sample_, s_, context_);
    if (stopped()) return;
  }
  progress().done += 1.0;
}

void Dispatch::linkage_disequilibrium() {
  if (!has(task_bit::LINKAGE_DISEQUILIBRIUM)) return;
  if (sample_.haplotypic_or_phase_known()) {
    run_entry(analyses().ld_exact, "Pairwise linkage disequilibrium",
              "The exact test of linkage disequilibrium");
  } else {
    run_entry(analyses().ld_likelihood_ratio, "Pairwise linkage disequilibrium",
              "The likelihood-ratio test of linkage disequilibrium");
  }
}

void Dispatch::hardy_weinberg() {
  if (!has(task_bit::HARDY_WEINBERG)) return;
  run_entry(analyses().hardy_weinberg, "Hardy-Weinberg equilibrium",
            "The exact test of Hardy-Weinberg equilibrium");
}

void Dispatch::structure_matrix() {
  if (!has(task_bit::DISTANCE_MATRIX)) return;
  classify();
  if (s_.ComputeConventionalFST != 0) {
    // Conventional F-statistics: 0 within a haplotype, 1 between two. The
    // matrix holds only the two values; the haplotypes stand in haplo_list.
    sample_.dist_mat = std::make_unique<RectMat>(2, 2);
    sample_.dist_mat->set_conventional(true);
    return;
  }
  compute_distances(s_.DistanceMethodAMOVA, s_.GammaAValueAMOVA, 0);
}

void Dispatch::tajima() {
  if (!has(task_bit::TAJIMA)) return;
  const char* section = "Tajima's test of selective neutrality";
  if (sample_.unknown_phase()) {
    print(unknown_phase_text("Tajima's test"));
  } else if (sample_.kind() == SampleKind::microsat) {
    refuse(section, "\n\n Tajima's test is not possible for Microsatellite data\n\n\n");
  } else if (sample_.kind() == SampleKind::standard) {
    refuse(section, "\n\nTajima's test is not possible for standard data type\n\n");
  } else {
    run_entry(analyses().tajima, section, "Tajima's test of selective neutrality");
  }
}

void Dispatch::fu_fs() {
  if (!has(task_bit::FU_FS)) return;
  const char* section = "Fu's Fs test of selective neutrality";
  if (sample_.unknown_phase()) {
    print(unknown_phase_text("Fu's Fs test"));
  } else if (sample_.kind() == SampleKind::microsat) {
    refuse(section, "\n\n Fu's Fs test is not possible for Microsatellite data\n\n\n");
  } else if (sample_.kind() == SampleKind::standard) {
    refuse(section, "\n Fu's Fs test is not possible for standard data type\n\n");
  } else {
    run_entry(analyses().fu_fs, section, "Fu's Fs test of selective neutrality");
  }
}

void Dispatch::ewens_watterson() {
  if (!has(task_bit::EWENS_WATTERSON)) return;
  if (sample_.unknown_phase()) {
    print(unknown_phase_text("Ewens-Watterson test"));
    return;
  }
  run_entry(analyses().ewens_watterson, "Ewens-Watterson tests of selective neutrality",
            "The Ewens-Watterson tests of selective neutrality");
}

void Dispatch::chakraborty() {
  if (!has(task_bit::CHAKRABORTY)) return;
  if (sample_.unknown_phase()) {
    print(unknown_phase_text("Chakraborty's test"));
    return;
  }
  run_entry(analyses().chakraborty, "Chakraborty's test of selective neutrality",
            "Chakraborty's test of selective neutrality");
}

void Dispatch::expand_for_permutations() {
  if (tasks_ != task_bit::AMOVA_PERMUTATIONS) return;
  if (sample_.recessive != 0) sample_.make_all_blanks();
  sample_.expand_phenotypes();
}

}  // namespace

// --- SampleTaskContext -------------------------------------------------------

int SampleTaskContext::ensure_checked() {
  if (!checked_) {
    check_result_ = sample_.check_data();
    checked_ = true;
  }
  return check_result_;
}

int SampleTaskContext::ensure_polymorphic_sites() {
  ensure_checked();
  if (!classified_) {
    classify_result_ = sample_.find_polymorphic_sites(settings_);
    classified_ = true;
  }
  return classify_result_;
}

// --- Dispatch and pass -------------------------------------------------------

SampleAnalyses& sample_analyses() {
  static SampleAnalyses entries;
  return entries;
}

int test_methods(PopGenetics& sample, settings& s) {
  return Dispatch(sample, s).run();
}

void run_sample_tasks(std::span<PopGenetics* const> samples, settings& s,
                      const SampleRunHooks& hooks) {
  for (PopGenetics* sample : samples) {
    if (sample == nullptr) continue;
    if (hooks.before_sample) hooks.before_sample(*sample);
    log_stream() << "\nPopulation '" << sample->SampleName << "' : ";
    const long long start = clock_ms();
    test_methods(*sample, s);
    log_stream() << "done in " << fmt::integer(clock_ms() - start) << " ms";
    if (hooks.after_sample) hooks.after_sample(*sample);
    if (s.stop_run != 0) return;
  }
  if (hooks.after_last) hooks.after_last();
  if (!samples.empty() && samples.front() != nullptr) samples.front()->release_BMat();
}

double estimate_sample_work(const PopGenetics& /*sample*/, const settings& s) {
  static constexpr int kSteps[] = {task_bit::STANDARD_INDICES,
                                   task_bit::MOLECULAR_DIVERSITY,
                                   task_bit::MISMATCH,
                                   task_bit::HAPLOTYPE_FREQUENCIES,
                                   task_bit::LINKAGE_DISEQUILIBRIUM,
                                   task_bit::HARDY_WEINBERG,
                                   task_bit::TAJIMA,
                                   task_bit::FU_FS,
                                   task_bit::EWENS_WATTERSON,
                                   task_bit::CHAKRABORTY};
  double work = 0.0;
  for (const int bit : kSteps) work += s.has_task(bit) ? 1.0 : 0.0;
  return work;
}

// --- Texts -------------------------------------------------------------------

void write_sample_section_title(std::ostream& out, std::string_view title,
                                std::string_view sample_name) {
  const bool xml = result_document().xml();
  out << "\n"
      << rule() << "\n== " << title << " : (" << fmt::name(sample_name, xml) << ")\n"
      << rule() << "\n";
}

const char* haplotype_count_label(const PopGenetics& sample) {
  return sample.kind() == SampleKind::dna ? "\nNo. of sequences         : "
                                          : "\nNo. haplotypes           : ";
}

const char* polymorphism_label(const PopGenetics& sample) {
  const SampleKind kind = sample.kind();
  return kind == SampleKind::dna || kind == SampleKind::rflp ? "\nNo. of polymorphic sites : "
                                                             : "\nNo. of polymorphic loci  : ";
}

const char* bnum_missing_message(const PopGenetics& sample) {
  return sample.kind() == SampleKind::standard
             ? "\t\t\tFile *.bnb not found... skipping task !\n"
             : "\t\tFile 500k100.bnb not found... skipping task !\n";
}

void print_shared_haplotypes(const Population& a, const Population& b, std::ostream& out,
                             const TriMat& matrix, bool xml) {
  const auto pairs = shared_haplotypes(a, b, matrix);
  if (pairs.empty()) return;
  out << "\n   Haplotypes shared between \"" << fmt::name(a.SampleName.str(), xml) << "\" and \""
      << fmt::name(b.SampleName.str(), xml) << "\":\n";
  for (const auto& [x, y] : pairs) {
    out << "\t\t" << fmt::name(x->hapl_id.str(), xml) << " = " << fmt::name(y->hapl_id.str(), xml)
        << "\n";
  }
}
