// The calculation settings record: what a run computes and with which
// parameters, filled from a settings file (.mvs), passed to every analysis.
// Beside the keys of the file it carries the run-time links that analyses
// share: the result stream, the data type, the names of the run's files and
// the generator. Pointers held here are never owned.
//
// This header also holds the process-wide state of a batch that every layer
// reads (the names of the project and settings files in hand, the core
// directory, the project counter, the silent flag) and the progress line.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

class RandomGenerator;
class Samples;
class Structure;
class DistMat;
class Haplo_DB;
class TAlleleDB;

// Bits of TaskNumber.
namespace task_bit {
constexpr int STANDARD_INDICES = 0x1;
constexpr int MOLECULAR_DIVERSITY = 0x2;
constexpr int MISMATCH = 0x4;
constexpr int HAPLOTYPE_FREQUENCIES = 0x8;
constexpr int LINKAGE_DISEQUILIBRIUM = 0x10;
constexpr int HARDY_WEINBERG = 0x20;
constexpr int TAJIMA = 0x40;
constexpr int EWENS_WATTERSON = 0x80;
constexpr int CHAKRABORTY = 0x100;
constexpr int AMOVA = 0x200;
constexpr int PAIRWISE_FST = 0x400;
constexpr int DISTANCE_MATRIX = 0x800;
constexpr int AMOVA_PERMUTATIONS = 0x1000;
constexpr int EXACT_DIFFERENTIATION = 0x2000;
constexpr int FU_FS = 0x4000;
constexpr int GENOTYPE_ASSIGNMENT = 0x8000;
constexpr int MANTEL = 0x10000;
}  // namespace task_bit

// Data types of a project, as the profile codes them.
namespace data_type_code {
constexpr unsigned char DNA = 0;
constexpr unsigned char RFLP = 1;
constexpr unsigned char MICROSAT = 2;
constexpr unsigned char STANDARD = 3;
constexpr unsigned char FREQUENCY = 4;
}  // namespace data_type_code

// The keys of a settings file, one field each, with the defaults of a fresh
// record. ComputeAllHaplotypesEM is filled by two keys (ComputeAllHaplotypesEM
// and EMEstimHaplFreqs). The reader's table of keys is in run/settings_file.
struct CalculationKeys {
  int TaskNumber = 0;
  int XMLOutput = 1;
  double DeletionWeight = 0.0;
  double TransitionWeight = 0.0;
  double TranversionWeight = 0.0;
  int ComputeSumStatsWithinGroups = 0;
  int InferHaplotypeDefinitionFromDistanceMatrix = 0;
  int EliminateRedondHaplodefs = 0;
  double AllowedLevelOfMissingData = 0.05;
  int GameticPhaseIsKnown = 0;
  int HardyWeinbergTestType = 0;
  int MakeHWExactTest = 0;
  int MarkovChainStepsHW = 1000000;
  int MarkovChainDememorisationStepsHW = 100000;
  double PrecisionOnPValueHW = 0.0;
  double SignificanceLevelHW = 0.0;
  int TypeOfTestHW = 0;
  int LinkageDisequilibriumTestType = 0;
  int MakeExactTestLD = 0;
  int MarkovChainStepsLD = 1000;
  int MarkovChainDememorisationStepsLD = 1000;
  double PrecisionOnPValueLD = 0.0;
  double SignificanceLevelLD = 0.0;
  int PrintFlagHistogramLD = 0;
  int InitialCondEMLD = 0;
  int ComputeDvalues = 0;
  int ComputeStandardDiversityIndices = 0;
  bool ComputeAllAlleleFreqs = false;
  int DistanceMethod = 0;
  double GammaAValue = 0.0;
  int PrintHaplDistMat = 0;
  int ComputeTheta = 0;  // bit set: 1 Theta(Hom), 2 Theta(S), 4 Theta(k), 8 Theta(pi)
  int PrintPopDistMat = 0;
  int MismatchDistanceMethod = 0;
  bool MismatchDemogExp = false;
  bool MismatchSpatialExp = false;
  int MismatchSpatialExpNumParams = 3;
  double MismatchGammaAValue = 0.0;
  int NumBootExpDem = 100;
  int InitialConditionsEM = 50;
  int MaximumNumOfIterationsEM = 1000;
  int RecessiveAllelesEM = 0;
  int CompactHaplotypeDataBaseEM = 0;
  int NumBootstrapReplicatesEM = 0;
  int NumInitCondBootstrapEM = 10;
  int ComputeAllSubHaplotypesEM = 0;
  int ComputeAllHaplotypesEM = 0;
  int ComputeAllAllelesEM = 0;
  double EpsilonValue = 1e-07;
  double FrequencyThreshold = 1e-05;
  int ComputeConventionalFST = 0;
  int IncludeIndividualLevel = 0;
  int HaplAMOVA = 0;
  int LocByLocAMOVA = 0;
  int PopSpecificFST = 0;
  int PopSpecificFIS = 0;
  int ComputeDistanceMatrixAMOVA = 1;
  int DistanceMethodAMOVA = 0;
  double GammaAValueAMOVA = 0.0;
  int PrintDistanceMatrix = 0;
  int TestSignificancePairewiseFST = 0;
  int NumPermutationsFST = 100;
  double Divergencetime = 0.0;
  int ComputePairwiseFST = 0;
  int ComputeDeltaMuSqr = 0;
  double FSTSignifLevel = 0.05;
  int TestSignificanceAMOVA = 0;
  int NumPermutationsAMOVA = 1000;
  int NumPermutPopDiff = 100000;
  int NumDememoPopDiff = 10000;
  double PrecProbPopDiff = 0.0;  // read as an integer
  int PrintHistoPopDiff = 0;
  double SignLevelPopDiff = 0.05;
  int DetectSelectedLoci = 0;
  int UseHierarchicalIslandModel = 0;
  int NumberOfGroupsForFDist2 = 0;
  int NumberOfDemesForFDist2 = 100;
  int NumberOfSimsForFDist2 = 20000;
  int UseSimFileForFDist2 = 0;
  std::string SimFileNameForFDist2;
  double TargetHetLowBound = 0.0;
  double TargetHetHighBound = 0.0;
  double MinDafFreq = 0.0;
  int IterativeProcForFDist2 = 0;
  int EwensWattersonHomozygosityTest = 0;
  int NumIterationsNeutralityTests = 1000;
  int NumSimulFuTest = 1000;
  int NumPermMantel = 1000;
  int IsFontKnown = 0;
  int NbFrontSegments = 0;
  double SegmentLength = 0.0;
  int NumOfGroups = 1;
  int DiffusionMode = 2;
  int NbFrontPerm = 0;
  int PrintFstVals = 0;
  int PrintConcestryCoeff = 0;
  int PrintSlatkinsDist = 0;
  int PrintMissIntermatchs = 0;
  int UnequalPopSizeDiv = 0;
  int PrintMinSpannNetworkPop = 0;
  int PrintMinSpannNetworkGlob = 0;
  int KeepNullDistrib = 0;
  // Keys from here on keep their value when a file lacks them.
  int EMEstimateInbreedingCoeff = 0;
  double EMInbreedingFixedVal = 0.0;
  int EMUseZipper = 0;
  int EMWinSize = 1;
  int EMLociRandOrder = 0;
  int EMInbreedingEachLocus = 0;
  int EMCheckPhenRedundancy = 0;
  int EMCompGamPhaseForAllInitConds = 0;
  int EMNumZipRandOrders = 0;
  int GibbsInferGamPhase = 0;
  int GibbsBurnIn = 100000;
  int GibbsSamplingInterval = 500;
  int GibbsNumSamples = 2000;
  double GibbsAlphaInitValue = 0.01;
  double GibbsEpsilonValue = 0.01;
  double GibbsGamma = 0.0;
  int GibbsHetSiteInfluenceZone = 5;
  double GibbsPercentageOfRecSteps = 0.0;
  int GibbsOutputGamPhase = 0;
};

class settings : public CalculationKeys {
 public:
  settings() = default;

  // Back to the defaults of every key; clears stop_run.
  void reset();

  // Derives the document name (project path without extension + ".htm"),
  // the back-up name (+ ".bac") and the project's directory.
  void set_project_names(std::string_view project_path);

  // The console's progress line (see progress()); prints nothing in silent
  // mode or when the line would repeat the last one shown.
  static void show_progress();
  // Sets the progress text, then shows the line.
  static void show_progress(std::string_view text);

  bool has_task(int bit) const { return (TaskNumber & bit) != 0; }
  bool is_haplotypic_or_phase_known() const { return genotypic == 0 || phase_known != 0; }

  // Tested by every long task; a set flag ends the batch after the project in hand.
  int stop_run = 0;
  std::ostream* result_stream = nullptr;
  unsigned char data_type = data_type_code::FREQUENCY;
  int genotypic = 0;    // copy of the profile's GenotypicData
  int phase_known = 0;  // copy of the profile's GameticPhase
  // 0 if none of ComputeAllAllelesEM, ComputeAllHaplotypesEM, GibbsInferGamPhase is set.
  int haplotype_estimation_on = 0;

  // Set by the project run before structure analyses.
  Samples* samples = nullptr;
  Structure* structure = nullptr;
  DistMat* dist_mat = nullptr;
  Haplo_DB* haplo_list = nullptr;
  TAlleleDB* allele_db = nullptr;
  // The one generator of the process, owned by the batch driver.
  RandomGenerator* generator = nullptr;

  // Names of the run's files.
  std::string result_folder;         // project path without extension + ".res/"
  std::string result_document_name;  // the result document (".htm" or ".xml")
  std::string backup_name;
  std::string project_directory;  // up to and including the last '/' or '\'; else empty
  std::string settings_path;      // the settings file in use, read again by the group pass
  std::string tree_page_name;
  std::string tree_script_name;
  std::string frame_page_name;
  std::string tree_style_name;
  std::string tree_code_name;
  std::string run_stamp;  // the run's date text without blanks and tabs
  std::string ld_file_name = "ld_dis.xl";

  int append_results = 1;
  // The run list's two number lines; applied after every read of the file,
  // so that a re-read keeps them.
  std::optional<int> list_append_results;
  std::optional<int> list_keep_null_distrib;
};

// The process-wide progress of the run in hand. The total and the done
// counter only feed the percentage; analyses add to done.
struct ProgressState {
  double total = 0.0;
  double done = 0.0;
  std::string text;
  std::string last_line;  // the line last written to the console
};
ProgressState& progress();

// Name cutting shared by the driver and the project run: everything from the
// last '.' on is the extension, and the name is cut at the first place where
// that text occurs. A name without '.' is kept.
std::string cut_extension(std::string_view name);

// --- Process-wide state of a batch -----------------------------------------
// Set by the entry point and the batch driver, read by every layer.
extern unsigned char silent_mode;       // 1: the progress line prints nothing
extern std::string core_directory;      // the run list's first line, with a trailing '/'
extern std::string project_file_name;   // the project in hand
extern std::string settings_file_name;  // the settings file in use
extern int project_index;               // projects finished in this batch; 0 during the first
