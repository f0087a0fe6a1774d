#include "run/settings_file.h"

#include <array>
#include <fstream>
#include <optional>
#include <variant>

#include "input/line_reader.h"

namespace {

enum class KeyKind { Int, Double, Bool, Text, IntAsDouble };

using Field = std::variant<int CalculationKeys::*, double CalculationKeys::*,
                           bool CalculationKeys::*, std::string CalculationKeys::*>;

struct KeySpec {
  std::string_view name;
  KeyKind kind;
  Field field;
};

// Reader order; EMEstimHaplFreqs fills the same field as ComputeAllHaplotypesEM.
const std::array<KeySpec, settings_key_count> kKeys = {{
    {"TaskNumber", KeyKind::Int, &CalculationKeys::TaskNumber},
    {"XMLOutput", KeyKind::Int, &CalculationKeys::XMLOutput},
    {"DeletionWeight", KeyKind::Double, &CalculationKeys::DeletionWeight},
    {"TransitionWeight", KeyKind::Double, &CalculationKeys::TransitionWeight},
    {"TranversionWeight", KeyKind::Double, &CalculationKeys::TranversionWeight},
    {"ComputeSumStatsWithinGroups", KeyKind::Int, &CalculationKeys::ComputeSumStatsWithinGroups},
    {"InferHaplotypeDefinitionFromDistanceMatrix", KeyKind::Int,
     &CalculationKeys::InferHaplotypeDefinitionFromDistanceMatrix},
    {"EliminateRedondHaplodefs", KeyKind::Int, &CalculationKeys::EliminateRedondHaplodefs},
    {"AllowedLevelOfMissingData", KeyKind::Double, &CalculationKeys::AllowedLevelOfMissingData},
    {"GameticPhaseIsKnown", KeyKind::Int, &CalculationKeys::GameticPhaseIsKnown},
    {"HardyWeinbergTestType", KeyKind::Int, &CalculationKeys::HardyWeinbergTestType},
    {"MakeHWExactTest", KeyKind::Int, &CalculationKeys::MakeHWExactTest},
    {"MarkovChainStepsHW", KeyKind::Int, &CalculationKeys::MarkovChainStepsHW},
    {"MarkovChainDememorisationStepsHW", KeyKind::Int,
     &CalculationKeys::MarkovChainDememorisationStepsHW},
    {"PrecisionOnPValueHW", KeyKind::Double, &CalculationKeys::PrecisionOnPValueHW},
    {"SignificanceLevelHW", KeyKind::Double, &CalculationKeys::SignificanceLevelHW},
    {"TypeOfTestHW", KeyKind::Int, &CalculationKeys::TypeOfTestHW},
    {"LinkageDisequilibriumTestType", KeyKind::Int,
     &CalculationKeys::LinkageDisequilibriumTestType},
    {"MakeExactTestLD", KeyKind::Int, &CalculationKeys::MakeExactTestLD},
    {"MarkovChainStepsLD", KeyKind::Int, &CalculationKeys::MarkovChainStepsLD},
    {"MarkovChainDememorisationStepsLD", KeyKind::Int,
     &CalculationKeys::MarkovChainDememorisationStepsLD},
    {"PrecisionOnPValueLD", KeyKind::Double, &CalculationKeys::PrecisionOnPValueLD},
    {"SignificanceLevelLD", KeyKind::Double, &CalculationKeys::SignificanceLevelLD},
    {"PrintFlagHistogramLD", KeyKind::Int, &CalculationKeys::PrintFlagHistogramLD},
    {"InitialCondEMLD", KeyKind::Int, &CalculationKeys::InitialCondEMLD},
    {"ComputeDvalues", KeyKind::Int, &CalculationKeys::ComputeDvalues},
    {"ComputeStandardDiversityIndices", KeyKind::Int,
     &CalculationKeys::ComputeStandardDiversityIndices},
    {"ComputeAllAlleleFreqs", KeyKind::Bool, &CalculationKeys::ComputeAllAlleleFreqs},
    {"DistanceMethod", KeyKind::Int, &CalculationKeys::DistanceMethod},
    {"GammaAValue", KeyKind::Double, &CalculationKeys::GammaAValue},
    {"PrintHaplDistMat", KeyKind::Int, &CalculationKeys::PrintHaplDistMat},
    {"ComputeTheta", KeyKind::Int, &CalculationKeys::ComputeTheta},
    {"PrintPopDistMat", KeyKind::Int, &CalculationKeys::PrintPopDistMat},
    {"MismatchDistanceMethod", KeyKind::Int, &CalculationKeys::MismatchDistanceMethod},
    {"MismatchDemogExp", KeyKind::Bool, &CalculationKeys::MismatchDemogExp},
    {"MismatchSpatialExp", KeyKind::Bool, &CalculationKeys::MismatchSpatialExp},
    {"MismatchSpatialExpNumParams", KeyKind::Int, &CalculationKeys::MismatchSpatialExpNumParams},
    {"MismatchGammaAValue", KeyKind::Double, &CalculationKeys::MismatchGammaAValue},
    {"NumBootExpDem", KeyKind::Int, &CalculationKeys::NumBootExpDem},
    {"InitialConditionsEM", KeyKind::Int, &CalculationKeys::InitialConditionsEM},
    {"MaximumNumOfIterationsEM", KeyKind::Int, &CalculationKeys::MaximumNumOfIterationsEM},
    {"RecessiveAllelesEM", KeyKind::Int, &CalculationKeys::RecessiveAllelesEM},
    {"CompactHaplotypeDataBaseEM", KeyKind::Int, &CalculationKeys::CompactHaplotypeDataBaseEM},
    {"NumBootstrapReplicatesEM", KeyKind::Int, &CalculationKeys::NumBootstrapReplicatesEM},
    {"NumInitCondBootstrapEM", KeyKind::Int, &CalculationKeys::NumInitCondBootstrapEM},
    {"ComputeAllSubHaplotypesEM", KeyKind::Int, &CalculationKeys::ComputeAllSubHaplotypesEM},
    {"ComputeAllHaplotypesEM", KeyKind::Int, &CalculationKeys::ComputeAllHaplotypesEM},
    {"ComputeAllAllelesEM", KeyKind::Int, &CalculationKeys::ComputeAllAllelesEM},
    {"EpsilonValue", KeyKind::Double, &CalculationKeys::EpsilonValue},
    {"FrequencyThreshold", KeyKind::Double, &CalculationKeys::FrequencyThreshold},
    {"ComputeConventionalFST", KeyKind::Int, &CalculationKeys::ComputeConventionalFST},
    {"IncludeIndividualLevel", KeyKind::Int, &CalculationKeys::IncludeIndividualLevel},
    {"HaplAMOVA", KeyKind::Int, &CalculationKeys::HaplAMOVA},
    {"LocByLocAMOVA", KeyKind::Int, &CalculationKeys::LocByLocAMOVA},
    {"PopSpecificFST", KeyKind::Int, &CalculationKeys::PopSpecificFST},
    {"PopSpecificFIS", KeyKind::Int, &CalculationKeys::PopSpecificFIS},
    {"ComputeDistanceMatrixAMOVA", KeyKind::Int, &CalculationKeys::ComputeDistanceMatrixAMOVA},
    {"DistanceMethodAMOVA", KeyKind::Int, &CalculationKeys::DistanceMethodAMOVA},
    {"GammaAValueAMOVA", KeyKind::Double, &CalculationKeys::GammaAValueAMOVA},
    {"PrintDistanceMatrix", KeyKind::Int, &CalculationKeys::PrintDistanceMatrix},
    {"TestSignificancePairewiseFST", KeyKind::Int, &CalculationKeys::TestSignificancePairewiseFST},
    {"NumPermutationsFST", KeyKind::Int, &CalculationKeys::NumPermutationsFST},
    {"Divergencetime", KeyKind::Double, &CalculationKeys::Divergencetime},
    {"ComputePairwiseFST", KeyKind::Int, &CalculationKeys::ComputePairwiseFST},
    {"ComputeDeltaMuSqr", KeyKind::Int, &CalculationKeys::ComputeDeltaMuSqr},
    {"FSTSignifLevel", KeyKind::Double, &CalculationKeys::FSTSignifLevel},
    {"TestSignificanceAMOVA", KeyKind::Int, &CalculationKeys::TestSignificanceAMOVA},
    {"NumPermutationsAMOVA", KeyKind::Int, &CalculationKeys::NumPermutationsAMOVA},
    {"NumPermutPopDiff", KeyKind::Int, &CalculationKeys::NumPermutPopDiff},
    {"NumDememoPopDiff", KeyKind::Int, &CalculationKeys::NumDememoPopDiff},
    {"PrecProbPopDiff", KeyKind::IntAsDouble, &CalculationKeys::PrecProbPopDiff},
    {"PrintHistoPopDiff", KeyKind::Int, &CalculationKeys::PrintHistoPopDiff},
    {"SignLevelPopDiff", KeyKind::Double, &CalculationKeys::SignLevelPopDiff},
    {"DetectSelectedLoci", KeyKind::Int, &CalculationKeys::DetectSelectedLoci},
    {"UseHierarchicalIslandModel", KeyKind::Int, &CalculationKeys::UseHierarchicalIslandModel},
    {"NumberOfGroupsForFDist2", KeyKind::Int, &CalculationKeys::NumberOfGroupsForFDist2},
    {"NumberOfDemesForFDist2", KeyKind::Int, &CalculationKeys::NumberOfDemesForFDist2},
    {"NumberOfSimsForFDist2", KeyKind::Int, &CalculationKeys::NumberOfSimsForFDist2},
    {"UseSimFileForFDist2", KeyKind::Int, &CalculationKeys::UseSimFileForFDist2},
    {"SimFileNameForFDist2", KeyKind::Text, &CalculationKeys::SimFileNameForFDist2},
    {"TargetHetLowBound", KeyKind::Double, &CalculationKeys::TargetHetLowBound},
    {"TargetHetHighBound", KeyKind::Double, &CalculationKeys::TargetHetHighBound},
    {"MinDafFreq", KeyKind::Double, &CalculationKeys::MinDafFreq},
    {"IterativeProcForFDist2", KeyKind::Int, &CalculationKeys::IterativeProcForFDist2},
    {"EwensWattersonHomozygosityTest", KeyKind::Int,
     &CalculationKeys::EwensWattersonHomozygosityTest},
    {"NumIterationsNeutralityTests", KeyKind::Int, &CalculationKeys::NumIterationsNeutralityTests},
    {"NumSimulFuTest", KeyKind::Int, &CalculationKeys::NumSimulFuTest},
    {"NumPermMantel", KeyKind::Int, &CalculationKeys::NumPermMantel},
    {"IsFontKnown", KeyKind::Int, &CalculationKeys::IsFontKnown},
    {"NbFrontSegments", KeyKind::Int, &CalculationKeys::NbFrontSegments},
    {"SegmentLength", KeyKind::Double, &CalculationKeys::SegmentLength},
    {"NumOfGroups", KeyKind::Int, &CalculationKeys::NumOfGroups},
    {"DiffusionMode", KeyKind::Int, &CalculationKeys::DiffusionMode},
    {"NbFrontPerm", KeyKind::Int, &CalculationKeys::NbFrontPerm},
    {"PrintFstVals", KeyKind::Int, &CalculationKeys::PrintFstVals},
    {"PrintConcestryCoeff", KeyKind::Int, &CalculationKeys::PrintConcestryCoeff},
    {"PrintSlatkinsDist", KeyKind::Int, &CalculationKeys::PrintSlatkinsDist},
    {"PrintMissIntermatchs", KeyKind::Int, &CalculationKeys::PrintMissIntermatchs},
    {"UnequalPopSizeDiv", KeyKind::Int, &CalculationKeys::UnequalPopSizeDiv},
    {"PrintMinSpannNetworkPop", KeyKind::Int, &CalculationKeys::PrintMinSpannNetworkPop},
    {"PrintMinSpannNetworkGlob", KeyKind::Int, &CalculationKeys::PrintMinSpannNetworkGlob},
    {"KeepNullDistrib", KeyKind::Int, &CalculationKeys::KeepNullDistrib},
    {"EMEstimHaplFreqs", KeyKind::Int, &CalculationKeys::ComputeAllHaplotypesEM},
    {"EMEstimateInbreedingCoeff", KeyKind::Int, &CalculationKeys::EMEstimateInbreedingCoeff},
    {"EMInbreedingFixedVal", KeyKind::Double, &CalculationKeys::EMInbreedingFixedVal},
    {"EMUseZipper", KeyKind::Int, &CalculationKeys::EMUseZipper},
    {"EMWinSize", KeyKind::Int, &CalculationKeys::EMWinSize},
    {"EMLociRandOrder", KeyKind::Int, &CalculationKeys::EMLociRandOrder},
    {"EMInbreedingEachLocus", KeyKind::Int, &CalculationKeys::EMInbreedingEachLocus},
    {"EMCheckPhenRedundancy", KeyKind::Int, &CalculationKeys::EMCheckPhenRedundancy},
    {"EMCompGamPhaseForAllInitConds", KeyKind::Int,
     &CalculationKeys::EMCompGamPhaseForAllInitConds},
    {"EMNumZipRandOrders", KeyKind::Int, &CalculationKeys::EMNumZipRandOrders},
    {"GibbsInferGamPhase", KeyKind::Int, &CalculationKeys::GibbsInferGamPhase},
    {"GibbsBurnIn", KeyKind::Int, &CalculationKeys::GibbsBurnIn},
    {"GibbsSamplingInterval", KeyKind::Int, &CalculationKeys::GibbsSamplingInterval},
    {"GibbsNumSamples", KeyKind::Int, &CalculationKeys::GibbsNumSamples},
    {"GibbsAlphaInitValue", KeyKind::Double, &CalculationKeys::GibbsAlphaInitValue},
    {"GibbsEpsilonValue", KeyKind::Double, &CalculationKeys::GibbsEpsilonValue},
    {"GibbsGamma", KeyKind::Double, &CalculationKeys::GibbsGamma},
    {"GibbsHetSiteInfluenceZone", KeyKind::Int, &CalculationKeys::GibbsHetSiteInfluenceZone},
    {"GibbsPercentageOfRecSteps", KeyKind::Double, &CalculationKeys::GibbsPercentageOfRecSteps},
    {"GibbsOutputGamPhase", KeyKind::Int, &CalculationKeys::GibbsOutputGamPhase},
}};

// Longest line the reader takes; a longer one ends the reading as a failed stream would.
constexpr std::size_t kMaxLine = 149999;

// The lines of the file, or nothing when it cannot be opened.
std::optional<std::vector<std::string>> load_lines(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(in, line)) {
    if (line.size() > kMaxLine) break;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

bool lookup_in_lines(const std::vector<std::string>& lines, std::string_view key,
                     std::size_t column_limit, std::string& value) {
  for (const std::string& line : lines) {
    if (line.find(key) == std::string::npos) continue;
    const std::size_t equal = line.find('=');
    if (equal == std::string::npos) continue;
    std::size_t end = equal + 1;
    while (end < line.size() && end < column_limit && line[end] != '\0') ++end;
    if (end > equal + 1) {
      value = line.substr(equal + 1, end - equal - 1);
      return true;
    }
  }
  value.clear();
  return false;
}

void assign(settings& s, const KeySpec& spec, const std::string& value) {
  CalculationKeys& keys = s;
  switch (spec.kind) {
    case KeyKind::Int:
      keys.*std::get<int CalculationKeys::*>(spec.field) = ascii_to_int(value);
      break;
    case KeyKind::Double:
      keys.*std::get<double CalculationKeys::*>(spec.field) = ascii_to_double(value);
      break;
    case KeyKind::IntAsDouble:
      keys.*std::get<double CalculationKeys::*>(spec.field) = ascii_to_int(value);
      break;
    case KeyKind::Bool:
      keys.*std::get<bool CalculationKeys::*>(spec.field) = ascii_to_int(value) != 0;
      break;
    case KeyKind::Text:
      keys.*std::get<std::string CalculationKeys::*>(spec.field) = value;
      break;
  }
}

constexpr int kValueColumns = 99;

}  // namespace

std::vector<std::string_view> settings_key_names() {
  std::vector<std::string_view> names;
  names.reserve(kKeys.size());
  for (const KeySpec& spec : kKeys) names.push_back(spec.name);
  return names;
}

int lookup(std::string_view key, std::string& value, int column_limit, const std::string& path) {
  const auto lines = load_lines(path);
  if (!lines) {
    value.clear();
    return 0;
  }
  return lookup_in_lines(*lines, key, static_cast<std::size_t>(column_limit), value) ? 1 : 0;
}

void read_settings(settings& s, const std::string& path) {
  // One read of the file serves all keys; the file is not expected to change meanwhile.
  const std::vector<std::string> lines = load_lines(path).value_or(std::vector<std::string>{});
  std::string value;
  for (int i = 0; i < settings_key_count; ++i) {
    const KeySpec& spec = kKeys[static_cast<std::size_t>(i)];
    const bool found = lookup_in_lines(lines, spec.name, kValueColumns, value);
    if (found || i < first_kept_key) assign(s, spec, value);
  }
  s.haplotype_estimation_on =
      (s.ComputeAllAllelesEM == 0 && s.ComputeAllHaplotypesEM == 0 && s.GibbsInferGamPhase == 0)
          ? 0
          : 1;
  s.settings_path = path;
  if (s.list_append_results) s.append_results = *s.list_append_results;
  if (s.list_keep_null_distrib) s.KeepNullDistrib = *s.list_keep_null_distrib;
}
