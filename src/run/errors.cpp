#include "run/errors.h"

#include <array>

#include "numerics/numerics_report.h"
#include "output/number_format.h"

namespace {

// The message of each code; the index is the code.
constexpr std::array<const char*, Errors::message_count> kMessages = {
    /* 0 */ "not enough memory",
    /* 1 */ "array out of bounds",
    /* 2 */ "ill-defined genetic structure",
    /* 3 */ "too many elements to permute distance matrix",
    /* 4 */ "missing file (Var A null distribution)",
    /* 5 */ "missing file (Var B null distribution)",
    /* 6 */ "missing file (Var C null distribution)",
    /* 7 */ "missing file (Var D null distribution)",
    /* 8 */ "missing file (BNumMat)",
    /* 9 */ "invalid stream",
    /* 10 */ "invalid BNumMat file",
    /* 11 */ "missing haplotype label(s)",
    /* 12 */ "error while reading haplotype labels",
    /* 13 */ "error while reading distance matrix",
    /* 14 */ "no value assigned to \"MatrixSize\"",
    /* 15 */ "invalid value assigned to \"MatrixSize\"",
    /* 16 */ "invalid value assigned to \"LabelPosition\"",
    /* 17 */ "reading distance matrix in external file",
    /* 18 */ "error while reading distance matrix in external file",
    /* 19 */ "unexpected keyword after \"MatrixData\"",
    /* 20 */ "missing file name for external distance matrix",
    /* 21 */ "error while reading distance matrix data",
    /* 22 */ "\"MatrixData\" section not found",
    /* 23 */ "unexpected keyword in [DistanceMatrix] section",
    /* 24 */ "error while reading distance matrix",
    /* 25 */ "invalid RFLP data",
    /* 26 */ "invalid DNA data",
    /* 27 */ "invalid MICROSAT data",
    /* 28 */ "haplotype defined in distance matrix is not found in samples",
    /* 29 */ "warning, no labels defined for distance matrix",
    /* 30 */ "invalid distance matrix size",
    /* 31 */ "haplotype already defined",
    /* 32 */ "missing haplotype data",
    /* 33 */ "unable to read haplotype data",
    /* 34 */ "bad value assigned to \"HaplListName\"",
    /* 35 */ "reading haplotype list in external file",
    /* 36 */ "unable to open external haplotype file",
    /* 37 */ "error while reading external haplotype file",
    /* 38 */ "invalid keyword assigned to \"HaplList\"",
    /* 39 */ "missing braces after HaplList",
    /* 40 */ "error while reading haplotype list",
    /* 41 */ "invalid keyword in section [HaplotypeDefinition]",
    /* 42 */ "unable to open matrix file",
    /* 43 */ "error while reading matrix",
    /* 44 */ "attempt to operate on two matrices of different size",
    /* 45 */ "unable to open external structure file",
    /* 46 */ "invalid value assigned to \"StructureName\"",
    /* 47 */ "invalid value assigned to \"NbGroups\"",
    /* 48 */ "invalid value assigned to \"DistMatLabel\"",
    /* 49 */ "unknown number of groups",
    /* 50 */ "missing opening brace for group definition",
    /* 51 */ "unknown sample name",
    /* 52 */ "missing closing brace for group definition",
    /* 53 */ "too many groups defined in [Structure]",
    /* 54 */ "invalid keyword in section [Structure]",
    /* 55 */ "invalid value assigned to keyword",
    /* 56 */ "invalid value assigned to \"StructureName\"",
    /* 57 */ "invalid value assigned to \"DistMatLabel\"",
    /* 58 */ "unable to build haplotype table",
    /* 59 */ "invalid data or output",
    /* 60 */ "invalid index in contingency table",
    /* 61 */ "section [Samples] must begin with \"SampleName\"",
    /* 62 */ "invalid value assigned to \"SampleName\"",
    /* 63 */ "unable to read sample data",
    /* 64 */ "missing closing brace in sample definition",
    /* 65 */ "two samples have the same name: renaming second sample",
    /* 66 */ "invalid value assigned to \"SampleSize\"",
    /* 67 */ "invalid keyword in section [Samples]",
    /* 68 */ "a population has no defined data",
    /* 69 */ "phenotypes have different number of loci",
    /* 70 */ "haplotypes have different number of loci",
    /* 71 */ "samples do not have the same number of loci",
    /* 72 */ "no degrees of freedom left",
    /* 73 */ "missing value for \"GenotypicData\": setting to default",
    /* 74 */ "invalid value assigned to \"GenotypicData: setting to default\"",
    /* 75 */ "invalid value assigned to \"DataType\": setting to default",
    /* 76 */ "missing loci labels",
    /* 77 */ "missing value for \"UsedHaplList\": setting to default",
    /* 78 */ "missing value for \"MissingData\": setting to default",
    /* 79 */ "missing value for \"LocusListing\": setting to default",
    /* 80 */ "invalid value for \"LocusListing\": setting to default",
    /* 81 */ "invalid value for \"NbLoci\": setting to default",
    /* 82 */ "invalid value for \"LocusSeparator\": setting to default",
    /* 83 */ "missing value for \"IndividualLevel\"",
    /* 84 */ "invalid value for \"IndividualLevel\": setting to default",
    /* 85 */ "missing value for \"Interleave\": setting to default",
    /* 86 */ "invalid value for \"Interleave\": setting to default",
    /* 87 */ "invalid value for \"Frequency\": setting to default",
    /* 88 */ "missing value for \"GameticPhase\": setting to default",
    /* 89 */ "invalid value for \"GameticPhase\": setting to default",
    /* 90 */ "invalid recessive allele, switching off recessive data",
    /* 91 */ "invalid frequency threshold value, restoring default (1e-5)",
    /* 92 */ "invalid epsilon value, restoring default (1e-7)",
    /* 93 */ "unable to read project \"Title\"",
    /* 94 */ "missing value for \"NbSamples\"",
    /* 95 */ "invalid value for \"NbSamples\"",
    /* 96 */ "missing value for \"NbGroups\"",
    /* 97 */ "invalid value for \"NbGroups\"",
    /* 98 */ "invalid keyword in section [Profile]",
    /* 99 */ "unable to open Morvalin ini file",
    /* 100 */ "invalid character in input file",
    /* 101 */ "unable to read a character in input file",
    /* 102 */ "unable to find section in profile",
    /* 103 */ "unable to open Morvalin input file",
    /* 104 */ "unable to read subsection id",
    /* 105 */ "numerical error",
    /* 106 */ "haplotype frequencies are not absolute frequencies",
    /* 107 */ "allele index exceeds vector size",
    /* 108 */ "haplotype list is empty",
    /* 109 */ "number of haplotype is zero",
    /* 110 */ "sum of haplotype frequencies do not Add up to specified number",
    /* 111 */ "number of haplotypes does not correspond to initial value",
    /* 112 */ "invalid character while reading phenotype",
    /* 113 */ "invalid data type",
    /* 114 */ "too many heterozygous loci",
    /* 115 */ "attempt to do computation on non-selected alleles",
    /* 116 */ "unable to find specified allele",
    /* 117 */ "a phenotype has zero probability",
    /* 118 */ "invalid number of selected loci",
    /* 119 */ "number of alleles changed after permutation",
    /* 120 */ "number of phenotypes changed after DB expansion",
    /* 121 */ "microsatellite allele not coded as an integer value",
    /* 122 */ "distance matrix does not exist",
    /* 123 */ "no samples have been defined",
    /* 124 */ "no group(s) have been defined",
    /* 125 */ "invalid structure: only one population per group",
    /* 126 */ "unable to open project file",
    /* 127 */ "unable to read Profile Settings",
    /* 128 */ "no subsections found",
    /* 129 */ "distance matrix in project file is ignored",
    /* 130 */ "specified haplotype list was found empty",
    /* 131 */ "too many sub-sections found (max=4)",
    /* 132 */ "unable to write distance matrix output file",
    /* 133 */ "unable to write project back-up file",
    /* 134 */ "project contains invalid data after check",
    /* 135 */ "haplotype list incompatible with distance matrix",
    /* 136 */ "distance matrix could not be computed",
    /* 137 */ "haplotype distance matrix cannot be computed on genotypic data",
    /* 138 */ "incompatibility between known gametic phase and recessive data",
    /* 139 */ "RFLP haplotypes have different length",
    /* 140 */ "sample size is zero",
    /* 141 */
    "sum of haplotype frequencies do not match specified sample size : adjusting sample size",
    /* 142 */ "unable to read haplotype id",
    /* 143 */ "haplotype cannot be inserted into database",
    /* 144 */ "unable to read haplotype frequency",
    /* 145 */ "missing haplotype definition",
    /* 146 */ "data already defined",
    /* 147 */ "error while reading haplotypic data",
    /* 148 */
    "sum of genotype frequencies do not match specified sample size : adjusting sample size",
    /* 149 */ "unable to read genotype frequency",
    /* 150 */ "unable to read genotype data",
    /* 151 */ "error while reading genotypic data",
    /* 152 */ "phenotype data base is empty",
    /* 153 */ "recessive allele inserted at unspecified position in DB",
    /* 154 */ "invalid number of batches",
    /* 155 */ "unable to build contingency table",
    /* 156 */ "haplotype DB is not empty: flushing DB",
    /* 157 */ "suspicious haplotype DB transfer",
    /* 158 */ "sum of allele frequencies is zero",
    /* 159 */ "missing haplotype definition",
    /* 160 */ "allele not found in DB",
    /* 161 */ "DNA sequences have different lengths",
    /* 162 */ "sequences too divergent for Jukes and Cantor correction",
    /* 163 */ "sequences too divergent for Kimura-2P correction",
    /* 164 */ "a nucleotide is not found, impossible to apply Tajima-Nei correction ",
    /* 165 */ "sequences too divergent for Tajima-Nei correction",
    /* 166 */ "mismatch vector not available",
    /* 167 */ "linkage disequilibrium cannot be computed on a single locus",
    /* 168 */ "invalid number of pairwise linkage disequilibrium values",
    /* 169 */ "sum of haplotype frequencies do not match specified sample size",
    /* 170 */ "sum of haplotype frequencies is zero",
    /* 171 */ "nucleotide composition too unbalanced for Tamura correction",
    /* 172 */ "unable to read \"Structure\" section, no samples are defined",
    /* 173 */ "unable to associate Haplotype with a valid matrix LABEL",
    /* 174 */ "Sum of elements should be equal to 1",
    /* 175 */ "attempting to compute log(0)",
    /* 176 */ "nucleotide composition too unbalanced for Tamura-Nei correction",
    /* 177 */ "hits vector has a bad size ",
    /* 178 */ "negative S value, Fs cannot be computed ",
    /* 179 */ "too many alleles, or too large sample ",
    /* 180 */ "attempt to compute negative sqrt ",
    /* 181 */ "given seed is too large, initializing ran3 with random seed ",
    /* 182 */ "singular Jacobian",
    /* 183 */ "r singular in broydn",
    /* 184 */ "equation solving did not converge, too many iterations",
    /* 185 */ "Roundoff problem in lnsrch.",
    /* 186 */ "Unable to read specified number of Mantel Matrices",
    /* 187 */ "No molecular diversity within a sample while performing Fu's test",
    /* 188 */ "missing '=' sign in keyword definition in project file",
    /* 189 */ "missing keyword in project file",
    /* 190 */ "bad value assigned to keyword in project file",
    /* 191 */ "reading sample data in external file",
    /* 192 */ "unable to open external sample data file",
    /* 193 */ "error while reading external sample data file",
    /* 194 */ "missing closing brace in Sampledata definition",
    /* 195 */ "External definition of the \"Genetic Structure\" is not supported anymore in ver 3",
    /* 196 */ "unable to read \"Mantel\" section, no samples are defined",
    /* 197 */ "unable to read value in \"Mantel\" section",
    /* 198 */ "no value assigned to \"MatrixNumber\"",
    /* 199 */ "invalid value assigned to \"MatrixNumber\"",
    /* 200 */ "unable to read external distance matrix file",
    /* 201 */ "problem in reading labels in UsedYmatrixLabels section",
    /* 202 */ "unable to compute Genetic Structure with current settings",
    /* 203 */ "missing required keywords definition in project file",
    /* 204 */ "unable to make connections in minimum spanning tree",
    /* 205 */ "group does not contain any population sample",
    /* 206 */ "sample included twice in a group",
    /* 207 */ "\"SampleName\" keyword not found",
    /* 208 */ "A population does not contain any data for a given locus",
};

class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c; }
};

// Where log lines go before the first log is opened.
std::ostream& discarding_stream() {
  static NullBuffer buffer;
  static std::ostream stream(&buffer);
  return stream;
}

void raise_through_errors(unsigned char kind, std::string_view function_name, int code) {
  errors().raise(kind, function_name, code);
}

std::ostream& log_of_errors() {
  return errors().log();
}

// Built before main so that reports of every layer reach the table.
[[maybe_unused]] const bool built_at_start = (errors(), true);

}  // namespace

Errors::Errors() {
  install_report_hooks(raise_through_errors, log_of_errors);
  install_numerics_report_hooks(raise_through_errors, log_of_errors);
}

Errors& errors() {
  static Errors instance;
  return instance;
}

std::string_view Errors::message(int code) {
  if (code < 0 || code >= message_count) return {};
  return kMessages[static_cast<std::size_t>(code)];
}

std::ostream& Errors::log() {
  if (!log_stream_) return discarding_stream();
  return *log_stream_;
}

void Errors::open_log(const std::string& file_name, bool append) {
  close_log();
  log_stream_ = std::make_unique<std::ofstream>(
      file_name, append ? std::ios::out | std::ios::app : std::ios::out | std::ios::trunc);
  log_open_ = log_stream_->is_open();
  log_name_ = file_name;
}

void Errors::close_log() {
  if (log_stream_ && log_stream_->is_open()) log_stream_->close();
}

void Errors::raise(unsigned char kind, std::string_view function_name, int code) {
  if (!log_open_) return;
  if (code == -1) {
    total_ = errors_ = warnings_ = infos_ = memories_ = 1;
    return;
  }
  const char* prefix = " #[ERROR # ";
  int* counter = &errors_;
  switch (kind) {
    case report_kind::WARNING:
      prefix = " #[WARNING # ";
      counter = &warnings_;
      break;
    case report_kind::MEMORY:
      prefix = " #[MEMORY # ";
      counter = &memories_;
      break;
    case report_kind::INFO:
      prefix = " #[INFO # ";
      counter = &infos_;
      break;
    case report_kind::DEBUG:
      prefix = " #[DEBUG # ";
      break;
    default:
      break;
  }
  const int number = (*counter)++;
  std::ostream& out = log();
  out << fmt::integer(total_++, 4) << prefix << fmt::integer(number) << "] ";
  if (kind == report_kind::DEBUG)
    out << function_name;
  else
    out << "from function \"" << function_name << "\" : " << message(code);
  out << '\n' << std::flush;
  if (result_stream_ && kind != report_kind::DEBUG)
    *result_stream_ << prefix << fmt::integer(number) << "] : " << message(code) << '\n';
  if (kind == report_kind::MEMORY) throw MEMORY_EXHAUSTED;
}
