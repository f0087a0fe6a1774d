// The profile of a project: what its [Profile] section says about the data
// (type, genotypic or not, separators, missing-data code ...). The project,
// its haplotype list, its samples and structure each carry one, and every
// sample keeps its own copy, so that a sample can be read and analysed alone.
#pragma once

#include <vector>

#include "model/my_string.h"
#include "model/settings.h"  // data_type_code

// Codes of the locus separator that have a name in project files.
namespace locus_separator_code {
constexpr char NONE = 0;
constexpr char TAB = 9;
constexpr char WHITESPACE = 32;
}  // namespace locus_separator_code

class ProfileSettings {
 public:
  // Copies (construction and assignment) are whole and deep, the loci labels included.

  // Back to the defaults of a fresh record; the link to the settings in use stays.
  void reset_profile();
  // The profile part alone, taken from another record (for the classes built on it).
  void copy_profile(const ProfileSettings& other) { ProfileSettings::operator=(other); }

  bool is_frequency_data() const { return DataType == data_type_code::FREQUENCY; }

  my_string Title;
  int NbSamples = 0;
  int NbGroups = 0;
  int GenotypicData = 0;  // 1 genotypes, 0 haplotypes
  int GameticPhase = 1;   // 1 phase known
  unsigned char DataType = data_type_code::STANDARD;
  unsigned char reserved_type = 0;    // filled by no reader
  int NbLoci = 0;                     // older reader only
  std::vector<my_string> LociLabels;  // older reader only
  char LocusSeparator = locus_separator_code::WHITESPACE;
  char MissingData = '?';
  my_string DistMatLabel;
  my_string UsedHaplList = "NONE";  // "NONE", "EXTERN" or the list's name
  my_string ExtHaplFile;
  int Interleave = 0;  // older reader only
  int IndividualLevel = 0;
  unsigned char Frequency = 0;  // 0 "ABS", 1 "REL"
  int RecessiveData = 0;
  my_string RecessiveAllele = "null";
  int GivenDistMat = 1;  // older reader only
  double EpsilonValue = 1e-7;
  double FrequencyThreshold = 1e-5;
  settings* calculation_settings = nullptr;  // the record in use, not owned
};

// "DNA", "RFLP", "MICROSAT", "STANDARD" or "FREQUENCY"; "STANDARD" for a code out of range.
const char* data_type_name(unsigned char data_type);
