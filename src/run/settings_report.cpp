#include "run/settings_report.h"

#include <cmath>
#include <cstdlib>

#include "output/number_format.h"
#include "output/xml_tag.h"

namespace {

class ReportWriter {
 public:
  explicit ReportWriter(std::ostream& os) : os_(os) {}

  // A block's head, then a dashed line under its text, indented as it is.
  void head(std::string_view text) {
    os_ << text;
    if (text.empty() || text.back() != '\n') os_ << '\n';
    while (!text.empty() && text.front() == '\n') text.remove_prefix(1);
    while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    const std::size_t indent = text.find_first_not_of(' ');
    const std::size_t width = indent == std::string_view::npos ? 0 : text.size() - indent;
    os_ << std::string(indent == std::string_view::npos ? text.size() : indent, ' ')
        << std::string(width, '-') << '\n';
  }
  void line(std::string_view text) { os_ << text << '\n'; }
  void line_if(bool condition, std::string_view text) {
    if (condition) line(text);
  }
  void number(std::string_view label, int value) { os_ << label << fmt::integer(value) << '\n'; }
  void number(std::string_view label, double value) { os_ << label << fmt::general(value) << '\n'; }
  void text(std::string_view label, std::string_view value) { os_ << label << value << '\n'; }
  void yes_no(std::string_view label, int flag) {
    os_ << label << (flag ? ": Yes" : ": No") << '\n';
  }
  void raw(std::string_view text) { os_ << text; }

 private:
  std::ostream& os_;
};

// The chain lines shared by the linkage, Hardy-Weinberg and differentiation blocks.
void markov_lines(ReportWriter& w, int steps, int dememorisation, double precision) {
  w.number("        No. of steps in Markov chain      = ", steps);
  w.number("        No. of Dememorisation Steps       = ", dememorisation);
  w.number("        Required precision on Probability = ", precision);
}

void general_settings(const settings& s, ReportWriter& w) {
  w.raw(
      "==============================\n"
      "Settings used for Calculations\n"
      "==============================\n"
      "\n"
      " General settings:\n"
      " -----------------\n");
  w.number("        Deletion Weight                = ", s.DeletionWeight);
  w.number("        Transition Weight Weight       = ", s.TransitionWeight);
  w.number("        Tranversion Weight Weight      = ", s.TranversionWeight);
  w.number("        Epsilon Value                  = ", s.EpsilonValue);
  if (s.FrequencyThreshold > 0.0) {
    const int digits = std::abs(static_cast<int>(-std::log10(s.FrequencyThreshold)));
    w.number("        Significant digits for output  = ", digits);
  } else {
    w.raw("        Significant digits for output  = unspecified\n");
  }
  w.line(s.InferHaplotypeDefinitionFromDistanceMatrix
             ? "        Infer haplotype definition from distance matrix"
             : "        Use original haplotype definition");
  w.number("        Alllowed level of missing data = ", s.AllowedLevelOfMissingData);
  w.raw(" Active Tasks:\n -------------\n\n");
}

void molecular_diversity(const settings& s, ReportWriter& w) {
  w.head("    Molecular Diversity:\n");
  w.text("        Molecular Distance :", distance_method_label(s.data_type, s.DistanceMethod));
  w.number("        GammaA Value       = ", s.GammaAValue);
  w.raw("        Theta estimators   : \n");
  if (s.ComputeTheta & 1) w.raw("            Theta(Hom)\n");
  if (s.ComputeTheta & 2) w.raw("            Theta(S)\n");
  if (s.ComputeTheta & 4) w.raw("            Theta(k)\n");
  if (s.ComputeTheta & 8) w.raw("            Theta(Pi)\n");
  w.line_if(s.PrintMinSpannNetworkPop,
            "        Compute minimum spanning network between haplotypes");
  w.line_if(s.PrintHaplDistMat, "        Print out inter-haplotypic distance matrix");
}

void mismatch(const settings& s, ReportWriter& w) {
  w.head("    Mismatch Distribution:\n");
  if (!s.is_haplotypic_or_phase_known()) return;
  w.text("        Molecular Distance             : ",
         distance_method_label(s.data_type, s.MismatchDistanceMethod));
  w.number("        GammaA Value                   = ", s.MismatchGammaAValue);
  w.number("        Number of bootstrap replicates : ", s.NumBootExpDem);
}

void haplotype_frequencies(const settings& s, ReportWriter& w) {
  w.head("    Haplotypic Frequency estimation:\n");
  w.line("        Make estimations at the:");
  w.line_if(s.ComputeAllHaplotypesEM, "            Haplotypic level");
  w.line_if(s.ComputeAllSubHaplotypesEM, "            Pairs of loci");
  w.line_if(s.ComputeAllAllelesEM, "            Locus level");
  w.line_if(!s.ComputeAllHaplotypesEM && !s.ComputeAllSubHaplotypesEM && !s.ComputeAllAllelesEM,
            "            no Estimation selected");
  w.number("        Initial Conditions               = ", s.InitialConditionsEM);
  w.number("        Maximum No. Of Iterations        = ", s.MaximumNumOfIterationsEM);
  w.number("        Bootstrap Replicates             = ", s.NumBootstrapReplicatesEM);
  w.number("        Initial Conditions for Bootstrap = ", s.NumInitCondBootstrapEM);
  w.line(s.RecessiveAllelesEM ? "        Recessive Data" : "        No recessive Data");
  w.line(s.CompactHaplotypeDataBaseEM ? "        Compact Haplotypes"
                                      : "        Do not Compact Haplotypes");
}

void linkage(const settings& s, ReportWriter& w) {
  w.head("    Linkage disequilibrium test:\n");
  if (s.is_haplotypic_or_phase_known()) {
    markov_lines(w, s.MarkovChainStepsLD, s.MarkovChainDememorisationStepsLD,
                 s.PrecisionOnPValueLD);
    w.yes_no("        D and D' coefficients for all pairs of alleles ", s.ComputeDvalues);
  } else {
    w.number("        No. of permutations          = ", s.MarkovChainStepsLD);
    w.number("        No. of Initial conditions    = ", s.InitialCondEMLD);
  }
  w.yes_no("        Print Histogram and table ", s.PrintFlagHistogramLD);
  w.number("        Significance level        = ", s.SignificanceLevelLD);
}

void hardy_weinberg(const settings& s, ReportWriter& w) {
  w.head("    Hardy-Weinberg equilibrium test:\n");
  markov_lines(w, s.MarkovChainStepsHW, s.MarkovChainDememorisationStepsHW, s.PrecisionOnPValueHW);
  w.line_if(s.TypeOfTestHW == 0, "        Test association at the Locus level");
  w.line_if(s.TypeOfTestHW == 1, "        Test association at the Haplotype level");
  w.line_if(s.TypeOfTestHW == 2, "        Test association at the Locus and Haplotype levels");
}

void neutrality(const settings& s, ReportWriter& w) {
  if (s.has_task(task_bit::TAJIMA)) w.head("    Tajima's selective neutrality test\n");
  if (s.has_task(task_bit::EWENS_WATTERSON)) {
    w.head("    Ewens-Watterson neutrality test\n");
    if (s.is_haplotypic_or_phase_known())
      w.number("        No. of Simultated Samples = ", s.NumIterationsNeutralityTests);
  }
  if (s.has_task(task_bit::CHAKRABORTY)) w.head("    Chakraborty's amalgammation test\n");
  if (s.has_task(task_bit::FU_FS)) {
    w.head("    Fu's Neutraliy test:\n");
    if (s.is_haplotypic_or_phase_known())
      w.number("        No. of Simultated Samples = ", s.NumSimulFuTest);
  }
}

bool amova_asked(const settings& s) {
  return s.has_task(task_bit::AMOVA) && (s.HaplAMOVA || s.LocByLocAMOVA);
}

void amova(const settings& s, ReportWriter& w) {
  w.head("    Analysis of Molecular Variance:\n");
  w.number("        No. of Permutations = ", s.NumPermutationsAMOVA);
  w.line_if(s.genotypic && s.phase_known && s.IncludeIndividualLevel,
            "        Include Individual level");
  w.line_if(s.PrintMinSpannNetworkGlob,
            "        Compute minimum spanning network between all haplotypes in the sample");
  w.line_if(s.PrintDistanceMatrix, "        Print out inter-haplotypic distance matrix");
}

void pairwise_fst(const settings& s, ReportWriter& w) {
  w.head("    Population pairwise Fst values:\n");
  if (s.PrintMissIntermatchs) w.raw("        Compute pairwise differences\n");
  if (s.UnequalPopSizeDiv) w.raw("        Compute relative population sizes\n");
  if (s.PrintConcestryCoeff) w.raw("        Compute coancestry coefficients\n");
  if (s.PrintSlatkinsDist) w.raw("        Compute Slatkin's distances\n");
  w.number("        No. of permutations for significance = ", s.NumPermutationsFST);
  w.number("        No. of permutations for Mantel test  = ", s.NumPermMantel);
}

void distance_matrix(const settings& s, ReportWriter& w) {
  w.head("       Distance matrix:");
  if (s.ComputeConventionalFST) {
    w.line("            Compute F-statistics on haplotype frequencies only");
  } else if (!s.ComputeDistanceMatrixAMOVA) {
    w.line("            Use pre-defined distance matrix");
  } else {
    w.line("            Compute distance matrix");
    w.text("            Molecular distance : ",
           distance_method_label(s.data_type, s.DistanceMethodAMOVA));
    w.number("            Gamma a value      = ", s.GammaAValueAMOVA);
  }
}

void structure_tasks(const settings& s, ReportWriter& w) {
  if (amova_asked(s)) amova(s, w);
  if (s.has_task(task_bit::PAIRWISE_FST)) pairwise_fst(s, w);
  if (amova_asked(s) || s.has_task(task_bit::PAIRWISE_FST)) distance_matrix(s, w);
  if (s.has_task(task_bit::EXACT_DIFFERENTIATION)) {
    w.head("    Exact test of population differentiation:\n");
    markov_lines(w, s.NumPermutPopDiff, s.NumDememoPopDiff, s.PrecProbPopDiff);
    w.yes_no("        Print Histogram and table ", s.PrintHistoPopDiff);
    w.number("        Significance level        = ", s.SignLevelPopDiff);
  }
  if (s.has_task(task_bit::GENOTYPE_ASSIGNMENT)) {
    w.head("\n    Assignement of individual genotypes to populations\n");
    if (s.is_haplotypic_or_phase_known())
      w.raw(
          "\n      Test is only possible for genotypic data with unknown gametic phase, skipping "
          "task...\n\n");
  }
  if (s.has_task(task_bit::MANTEL)) {
    w.head("\n    Correlation between distance matrices.\n");
    w.number("        No. of Permutations for significance = ", s.NumPermMantel);
  }
}

}  // namespace

std::string distance_method_label(unsigned char data_type, int method) {
  switch (data_type) {
    case data_type_code::DNA: {
      static constexpr const char* kDna[] = {
          "Pairwise difference", "Jukes and Cantor", "Kimura 2P",     "Proportion of difference",
          "Tajima and Nei",      "Tamura",           "Tamura and Nei"};
      return method >= 0 && method <= 6 ? kDna[method] : kDna[0];
    }
    case data_type_code::RFLP:
      return method == 1 ? "Proportion of difference" : "Pairwise difference";
    case data_type_code::MICROSAT:
      return method == 1 ? "Sum of squared size difference" : "No. of different alleles";
    default:
      return "Pairwise differences";
  }
}

void print_settings_report(const settings& s, std::ostream& os, bool xml,
                           std::string_view time_stamp) {
  const TXmlTag title("title");
  if (xml) os << title.open_text(time_stamp);
  ReportWriter w(os);
  general_settings(s, w);
  if (s.has_task(task_bit::STANDARD_INDICES)) w.head("    Standard indices:\n");
  if (s.has_task(task_bit::MOLECULAR_DIVERSITY)) molecular_diversity(s, w);
  if (s.has_task(task_bit::MISMATCH)) mismatch(s, w);
  if (s.has_task(task_bit::HAPLOTYPE_FREQUENCIES)) haplotype_frequencies(s, w);
  if (s.has_task(task_bit::LINKAGE_DISEQUILIBRIUM)) linkage(s, w);
  if (s.has_task(task_bit::HARDY_WEINBERG)) hardy_weinberg(s, w);
  neutrality(s, w);
  structure_tasks(s, w);
  if (xml) os << title.close_text();
}
