// The samples of a project: the [[Samples]] section and the list of sample
// objects read from it.
//
// Samples owns one object per sample, of the class of the project's data
// type (PopulDNA, PopulRFLP, PopulMicrosat or PopulStandard), in file order.
// Each sample holds PHaploDef entries over the project's Haplo_DB (haplotypic
// data) or the phenotypes of its individuals (genotypic data).
//
// Before a run analyses them, verify_data() checks the loci of all samples
// and drops the haplotypes (phenotypes) that are wholly missing. The run
// also calls convert_dna_upper() and rm_separators().
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "model/haplo_db.h"
#include "model/matrices.h"
#include "model/my_string.h"
#include "model/population.h"
#include "model/profile_settings.h"

class Samples : public ProfileSettings {
 public:
  Samples() = default;
  Samples(const Samples&) = delete;
  Samples& operator=(const Samples&) = delete;

  // --- The list ------------------------------------------------------------
  int size() const { return static_cast<int>(list_.size()); }
  bool empty() const { return list_.empty(); }
  // The sample at `index`, or null.
  PopGenetics* operator[](int index) const;
  const std::vector<std::unique_ptr<PopGenetics>>& list() const { return list_; }
  void add(std::unique_ptr<PopGenetics> sample) { list_.push_back(std::move(sample)); }
  void clear() { list_.clear(); }
  // Index of the sample with this name, or 2147483647.
  int find_by_name(std::string_view name) const;

  // Where EXTERN sample files are looked for: the project's folder with its
  // trailing '/', or empty.
  void set_project_directory(const my_string& directory) { project_directory_ = directory; }

  // --- Reading ---------------------------------------------------------------
  // Reads the section from the line behind [[Samples]] up to a line that
  // holds [STRUCTURE] or [MANTEL] (left in `line`) or the end of the stream.
  // The list is emptied first and takes the profile. A count of samples
  // that differs from NbSamples is a WARNING 95; at the end of the stream
  // NbSamples (here and in `profile`) becomes the count. The three flags
  // tell what the section held. 1, or 0 after an ERROR.
  int NewRead(std::istream& is, ProfileSettings& profile, Haplo_DB& haplo_db, int& line_number,
              my_string& line, unsigned char& name_seen, unsigned char& size_seen,
              unsigned char& data_seen);

  // Writes NbSamples of the profile, then the name of each announced sample,
  // one a line, to `file_name`. The stream stands inside [[Samples]]; it is
  // left behind the last name read. 0 with a WARNING if the stream ends
  // before every name was found.
  int explore(std::istream& is, ProfileSettings& profile,
              const std::string& file_name = "samples.txt");

  // --- Checks and preparation of the data ----------------------------------
  // Every sample has data (ERROR 68), its haplotypes (phenotypes) the same
  // number of loci (ERROR 70, 69), and all samples that of the first (ERROR
  // 71). Haplotypes whose loci are all missing leave their sample, which
  // shrinks accordingly (for genotypic data, phenotypes with both gametes
  // missing). 1, or 0 at the first ERROR.
  int verify_data();
  // DNA data: every definition and gamete text in upper case. An empty
  // sample is an ERROR 68 (the others are still converted). 1 if none was empty.
  int convert_dna_upper();
  // DNA and RFLP data whose first sample has a locus separator: blanks and
  // tabs leave every definition and gamete text, and every sample's separator
  // becomes 0 (none). Without samples only the separator of Samples is reset.
  void rm_separators();

  // --- Haplotype classes (redundant definitions) ----------------------------
  // Definitions at distance 0 from the first of a class join it, in the
  // order of `haplo_db`; `matrix` holds the distances between the
  // definitions (rows by mat_index, or by position where that is not set).
  // Writes the list of classes and the tables of their absolute and
  // relative frequencies in the samples. ERROR 135 when the matrix does not
  // have one row per definition.
  void print_out_haplo_cl(std::ostream& os, const DistMat& matrix, const Haplo_DB& haplo_db);
  // In each sample, the entries of one class at distance 0 from each other
  // are merged into the first of them; Nb_orig_haplo keeps the former number
  // of entries.
  void merge_haplotype_classes(const DistMat& matrix, const Haplo_DB& haplo_db);
  // Number of classes of the last report.
  int nb_haplo_classes = 0;

 private:
  int read_sample(std::istream& is, Haplo_DB& haplo_db, int& line_number, my_string& line,
                  const my_string& name, int size);
  void add_sample(Population& sample);

  std::vector<std::unique_ptr<PopGenetics>> list_;
  my_string project_directory_;
};
