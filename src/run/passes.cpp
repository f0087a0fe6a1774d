// The two passes of a run over the data. The group pass pools the samples of
// each group of the structure into one sample and analyses the pooled
// samples as if they were the project's; the sample pass analyses the
// samples themselves. Each pass opens with its head (the within-sample
// analyses of every sample) and goes on with the structure analyses; the
// sample pass then looks for loci under selection. Beside them, the work
// estimate that the progress line's percentage is made of.
#include <filesystem>
#include <fstream>

#include "model/population.h"
#include "output/number_format.h"
#include "output/result_document.h"
#include "run/project.h"
#include "run/run_steps.h"
#include "run/settings_file.h"
#include "within/sample_tasks.h"

namespace {

// Tasks that analyse each sample on its own.
constexpr int kWithinSampleTasks =
    task_bit::STANDARD_INDICES | task_bit::MOLECULAR_DIVERSITY | task_bit::MISMATCH |
    task_bit::HAPLOTYPE_FREQUENCIES | task_bit::LINKAGE_DISEQUILIBRIUM | task_bit::HARDY_WEINBERG |
    task_bit::TAJIMA | task_bit::EWENS_WATTERSON | task_bit::CHAKRABORTY | task_bit::FU_FS;

// Which passes run. The batch statistics may ask for one pass or both; while
// they are not selected the group pass follows ComputeSumStatsWithinGroups
// and the sample pass always runs. This build selects no batch statistics.
struct PassSwitches {
  bool group = false;
  bool sample = true;
};

PassSwitches pass_switches(const settings& s) {
  const bool statistics_in_use = false;
  PassSwitches on;
  if (statistics_in_use) return on;
  on.group = s.ComputeSumStatsWithinGroups != 0;
  on.sample = true;
  return on;
}

// The batch statistics of a pass: a header line (first project of the batch
// only) and a value line of the selected statistics.
void write_batch_statistics() {
  run_steps::log_not_available("The computation of batch statistics");
}

}  // namespace

// The work estimate, then the passes that the settings ask for.
void Project::run_passes() {
  settings& s = run_settings;
  estimate_work();
  const bool haplotypic = GenotypicData == 0;
  const bool unknown_phase = GenotypicData != 0 && GameticPhase == 0;
  if (haplotypic || (unknown_phase && s.ComputeConventionalFST != 0)) s.IncludeIndividualLevel = 0;
  const PassSwitches passes = pass_switches(s);
  if (passes.group) group_pass();
  if (passes.sample) sample_pass();
}

void Project::estimate_work() {
  const settings& s = run_settings;
  ProgressState& p = progress();
  p.total = 0.0;
  p.done = 0.0;
  const std::vector<PopGenetics*> list = sample_list();
  for (const PopGenetics* sample : list) p.total += estimate_sample_work(*sample, s);
  const double loci = list.empty() ? 0.0 : static_cast<double>(list.front()->get_nb_loci());
  const double levels = s.IncludeIndividualLevel != 0 ? 4.0 : 3.0;
  const double permutations = s.NumPermutationsAMOVA;
  const double n = static_cast<double>(list.size());
  const double pairs = n * (n - 1.0) / 2.0;
  if (s.has_task(task_bit::AMOVA)) {
    if (s.HaplAMOVA != 0) p.total += 0.01 * permutations * levels;
    if (s.LocByLocAMOVA != 0) p.total += 0.01 * permutations * loci * levels;
  }
  if (s.has_task(task_bit::PAIRWISE_FST)) p.total += 0.01 * s.NumPermutationsFST * pairs;
  if (s.has_task(task_bit::EXACT_DIFFERENTIATION)) {
    const double share = s.NumPermutPopDiff < 20000 ? 0.002 : 0.001;
    p.total += share * s.NumPermutPopDiff * (pairs + 1.0);
  }
  if (s.DetectSelectedLoci != 0) {
    p.total += 3.0 * allele_db.nb_loci() + 10.0 * s.NumberOfSimsForFDist2;
  }
}

void Project::group_pass() {
  settings& s = run_settings;
  std::unique_ptr<Samples> own_samples = std::move(samples);
  std::unique_ptr<Structure> own_structure = std::move(structure);
  const ProfileSettings own_profile = *this;
  const int own_pseudo = pseudo_haplotypes_built;
  build_group_samples(*own_samples, *own_structure);
  is_group_level = true;
  pass_head(own_samples.get(), own_structure.get());
  GenStructCalculations(&result_document().stream());
  samples = std::move(own_samples);
  structure = std::move(own_structure);
  copy_profile(own_profile);
  // The file gives back every key that the run changed; the run list's
  // overrides are applied again.
  read_settings(s, s.settings_path);
  write_batch_statistics();
  pseudo_haplotypes_built = own_pseudo;
}

void Project::sample_pass() {
  is_group_level = false;
  vectors_built = 0;
  pass_head(nullptr, nullptr);
  GenStructCalculations(&result_document().stream());
  if (run_settings.DetectSelectedLoci != 0) {
    run_steps::log_not_available("The detection of loci under selection");
  }
  write_batch_statistics();
}

// In the group pass, `own_samples` and `own_structure` are the project's
// own, whose groups the banner lists.
void Project::pass_head(const Samples* own_samples, const Structure* own_structure) {
  settings& s = run_settings;
  if (s.has_task(task_bit::GENOTYPE_ASSIGNMENT)) {
    run_steps::log_not_available("The assignment of individual genotypes to populations");
  }
  if (s.has_task(kWithinSampleTasks)) {
    ResultDocument& doc = result_document();
    doc.tree_line_folder(2, is_group_level ? "Groups" : "Samples");
    const std::string rule = run_steps::rule(78);
    doc.stream() << "\n"
                 << rule
                 << (is_group_level ? "\n== ANALYSES AT THE INTRA-GROUP LEVEL\n"
                                    : "\n== ANALYSES AT THE INTRA-POPULATION LEVEL\n")
                 << rule << "\n";
    if (own_samples != nullptr && own_structure != nullptr) {
      write_group_definitions(*own_samples, *own_structure);
    }
  }
  // The list of linkage disequilibrium results starts empty in each pass.
  std::error_code ignored;
  if (std::filesystem::exists(s.ld_file_name, ignored)) {
    std::ofstream(s.ld_file_name, std::ios::trunc);
  }
  clear_usable_loci_flags();
  SampleRunHooks hooks;
  hooks.after_last = [&s]() {
    // The last sample's line is still open.
    log_stream() << "\n";
    if (s.has_task(kWithinSampleTasks)) {
      run_steps::log_not_available("The summary of computations over samples");
    }
  };
  const std::vector<PopGenetics*> list = sample_list();
  run_sample_tasks(list, s, hooks);
}

// The group pass's samples: one per group, named "Group" + its number from 1,
// holding the pooled data of the group's samples, in one flat structure.
void Project::build_group_samples(const Samples& own_samples, const Structure& own_structure) {
  auto pooled = std::make_unique<Samples>();
  pooled->copy_profile(*this);
  auto flat = std::make_unique<Structure>();
  flat->copy_profile(*this);
  flat->StructureName = "Pooled flat structure";
  TGroup all;
  for (int g = 0; g < own_structure.nb_groups(); ++g) {
    std::vector<const Population*> members;
    for (const int index : own_structure.groups[static_cast<std::size_t>(g)].members) {
      if (const PopGenetics* sample = own_samples[index]) members.push_back(sample);
    }
    const my_string name("Group" + fmt::integer(g + 1).text);
    pooled->add(make_group_sample(DataType, members, name, g, haplo_db));
    all.members.push_back(g);
  }
  pooled->NbSamples = pooled->size();
  flat->groups.push_back(std::move(all));
  flat->NbGroups = 1;
  samples = std::move(pooled);
  structure = std::move(flat);
  if (GenotypicData != 0) pseudo_haplotypes_built = 1;
}

// What each pooled group holds, under the banner of the group pass.
void Project::write_group_definitions(const Samples& own_samples, const Structure& own_structure) {
  ResultDocument& doc = result_document();
  std::ostream& out = doc.stream();
  out << "\nGroup definitions:\n";
  for (int g = 0; g < own_structure.nb_groups(); ++g) {
    out << "\tGroup" << fmt::integer(g + 1) << " :";
    for (const int index : own_structure.groups[static_cast<std::size_t>(g)].members) {
      if (const PopGenetics* sample = own_samples[index]) {
        out << " \"" << doc.name(sample->SampleName.str()) << "\"";
      }
    }
    out << "\n";
  }
}
