// The sample classes: one object per population sample of a project (and one
// per pooled group).
//
//   Population      the data of a sample as read: profile, haplotypes with
//                   their counts, unphased phenotypes, working tables
//   PopGenetics     adds the results of the within-sample analyses
//   PopulDNA        data type 0: sequences, nucleotide site classes
//   PopulRFLP       data type 1: binary strings of restriction sites
//   PopulMicrosat   data type 2: integer allele sizes
//   PopulStandard   data type 3 (named alleles), 4 (haplotype frequencies)
//                   and any other value
//
// A reader fills a local Population; make_sample() then makes the object of
// the class of the data type from it. Samples hold their haplotypes as
// PHaploDef entries over the project's Haplo_DB and alleles over the project's
// TAlleleDB, which outlive them.
//
// The classification of sites and loci (find_polymorphic_sites) fills
// usable_locus, missing_freq, poly_flags and the counts; the analyses read
// them. The dispatch of the analyses themselves lives in within/sample_tasks.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "model/allele_db.h"
#include "model/haplo_db.h"
#include "model/matrices.h"
#include "model/my_string.h"
#include "model/phen_db.h"
#include "model/pop_haplo_db.h"
#include "model/profile_settings.h"
#include "model/settings.h"

// The class of a sample object.
enum class SampleKind { dna, rflp, microsat, standard };

// The class that serves a data type: 0 DNA, 1 RFLP, 2 MICROSAT, any other
// value STANDARD.
SampleKind sample_kind_of(unsigned char data_type);

class Population {
 public:
  Population() = default;
  // Deep copies of the tables; genotypes of the copy point into its own
  // haplotype table. The definitions and alleles stay shared.
  Population(const Population& other);
  Population& operator=(const Population& other);
  virtual ~Population() = default;

  // --- Profile -------------------------------------------------------------
  unsigned char data_type() const { return profile.DataType; }
  bool genotypic() const { return profile.GenotypicData != 0; }
  bool phase_known() const { return profile.GameticPhase != 0; }
  // Genotypic data whose gametic phase is not known.
  bool unknown_phase() const { return genotypic() && !phase_known(); }
  bool haplotypic_or_phase_known() const { return !unknown_phase(); }
  bool frequency_data() const { return profile.DataType == data_type_code::FREQUENCY; }
  char separator() const { return profile.LocusSeparator; }
  char missing() const { return profile.MissingData; }

  // The number of gene copies, truncated.
  int gene_copies() const { return static_cast<int>(sample_size); }
  // Sets sample_size and inv_sample_size (1.0 for a size of 0).
  void set_sample_size(double size);

  // --- Data preparation (called by the run before the analyses) ------------
  // Allele texts of the allele data base that are empty or blank become the
  // missing-data code. The data base is shared, so one sample does it for all.
  void convert_blanks_to_missing();
  // Genotypic data: gives both gametes of every phenotype their allele
  // pointers, entering the alleles (weighted by the phenotype's frequency)
  // in allele_db. Gametes that have them already are left alone. With
  // recessive data the recessive allele is entered first at each locus. 1 on
  // success, 0 without an allele data base.
  int build_allele_vectors();
  // Genotypic data: the two gametes of each phenotype become haplotypes of
  // haplo_list (counted with the phenotype's frequency), over definitions of
  // `db` found by their text or added. Sets data_complete; Nb_haplo and
  // Nb_orig_haplo become the number of distinct gametes. Returns that number.
  int make_pseudo_haplotypes(Haplo_DB& db);
  // Recessive data: at a locus where one copy holds the recessive allele (the
  // first of its locus) and the other a dominant one, both show the dominant
  // allele, as the phenotype is seen.
  void make_all_blanks();
  // One phenotype per individual, for the AMOVA permutations. 1, or 0 when
  // the table did not expand as it should (error 120).
  int expand_phenotypes();

  // --- Data ----------------------------------------------------------------
  std::vector<int> poly_flags;  // per locus or site: 1 where polymorphic in this sample
  ProfileSettings profile;      // copy of the project's profile
  my_string SampleName = "noName";
  int sample_index = -1;
  std::vector<PHaploDef> haplo_list;  // distinct haplotypes with their counts
  std::vector<PHaploDef> saved_haplo_list;
  std::vector<PHaploDef>* active_haplo_list = &haplo_list;
  TPhenDB pheno_db;                 // unphased genotypes
  TAlleleDB* allele_db = nullptr;   // the project's, not owned
  TPopHaploDB pop_haplo_db;         // working table of EM and LD
  std::vector<double> allele_work;  // per-allele working arrays of the LD code
  std::vector<int> allele_work_int;
  int Nb_haplo = 0;          // haplotypes (lines) of the sample
  int Nb_orig_haplo = 0;     // before redundant definitions were merged
  double sample_size = 0.0;  // gene copies; two per individual for genotypic data
  double inv_sample_size = 1.0;
  int data_complete = 0;        // haplotypes stand in haplo_list for unphased data
  unsigned char is_sample = 1;  // 0 for a pooled group
  my_string result_name;
  int recessive = 0;  // RecessiveAllelesEM, taken as the dispatch starts
};

class PopGenetics : public Population {
 public:
  PopGenetics() = default;
  explicit PopGenetics(const Population& data) : Population(data) {}
  // A sample object is made once from its data; analyses share it by reference.
  PopGenetics(const PopGenetics&) = delete;
  PopGenetics& operator=(const PopGenetics&) = delete;
  ~PopGenetics() override = default;

  virtual SampleKind kind() const = 0;

  // Slot 2: shrinks the shared table of B numbers.
  void release_BMat();
  // Slot 3: checks and corrects the counts of the sample. 1 when nothing
  // failed (an empty sample passes).
  virtual int check_data() { return 0; }
  // Slot 5: classifies the loci or sites of the sample (usable, polymorphic,
  // site classes). 1 on success.
  virtual int find_polymorphic_sites(settings& s);

  // The number of loci, taken from the first haplotype's definition at first
  // use; 0 while the sample has no haplotypes.
  int get_nb_loci();

  // --- Results -------------------------------------------------------------
  int nb_poly_loci = 0;
  double sum_sq_freq = -1.0;
  double gene_homozygosity = -1.0;
  double gene_diversity = -1.0;
  double sd_gene_diversity = -1.0;
  double theta_Hom = -1.0;
  double sd_theta_Hom = -1.0;
  double theta_S = -1.0;
  double sd_theta_S = -1.0;
  double theta_k = -1.0;
  double theta_k_low = -1.0;
  double theta_k_high = -1.0;
  double theta_Pi = -1.0;
  double sd_theta_Pi = -1.0;
  std::vector<double> missing_freq;  // per locus
  double allowed_missing = 0.05;     // AllowedLevelOfMissingData
  std::vector<int> usable_locus;     // per locus: 1 when usable
  int nb_usable_loci = 0;
  int nb_loci = 0;
  int max_diff = 0;                   // largest distance of the current matrix, truncated
  int mm_max_class = 0;               // last class of the mismatch vector
  std::unique_ptr<RectMat> dist_mat;  // distances between the haplotypes
  unsigned char dist_method = 0;      // method of the current matrix
  double mean_pairwise_diff = -1.0;
  double sd_pairwise_diff = -1.0;
  double mm_mean = -1.0;
  double mm_variance = -1.0;
  double mm_theta0 = -1.0;
  double mm_tau = -1.0;
  double mm_raggedness = -1.0;
  double mm_chi2 = -1.0;
  double mm_P = -1.0;
  int mm_df = 0;
  std::vector<int> mm_counts;
  std::vector<double> mm_expected;
  // Per-locus table of the standard indices, one value per locus.
  std::vector<double> locus_gene_copies;
  std::vector<double> locus_nb_alleles;
  std::vector<double> locus_obs_het;
  std::vector<double> locus_exp_het;
  std::vector<double> locus_range;
  std::vector<double> locus_GW;
  std::vector<double> locus_mod_GW;
  std::vector<double> locus_min_size;
  std::vector<double> locus_max_size;
  std::vector<double> locus_mean_size;
  // Means and standard deviations over loci, for the summary files.
  struct LocusMeans {
    double mean = -1.0;
    double sd = -1.0;
  };
  LocusMeans mean_gene_copies, mean_nb_alleles, mean_obs_het, mean_exp_het, mean_range, mean_GW,
      mean_mod_GW;
  double avg_gene_diversity = -1.0;
  double sd_avg_gene_diversity = -1.0;
  // Neutrality tests.
  double tajima_D = -1.0;
  double tajima_P = -1.0;
  double fu_Fs = -1.0;
  double fu_P = -1.0;
  double ew_obs_F = -1.0;
  double ew_mean_F = -1.0;
  double ew_P = -1.0;
  double slatkin_P = -1.0;
  double chak_P = -1.0;
  int slatkin_flag = 1;  // compute Slatkin's exact test
  double slatkin_obs = -1.0;

 protected:
  // The common part of check_data, reported under `routine`: sample size
  // against the counts (error 110), Nb_haplo against the entries (error 111;
  // quietly corrected for genotypic data with known phase). True when
  // nothing failed.
  bool check_counts(const char* routine);
  // Microsatellite and standard data: per locus of the allele data base.
  void compare_haplotypes();
  // Genotypic data without haplotypes: per locus over both copies of every phenotype.
  void compare_phenotypes();
  // Sizes the per-locus arrays of the classification to n loci, all zero.
  void reset_locus_arrays(int n);
};

// Counts of the site classification of DNA and RFLP samples. For RFLP data
// a restriction-site change counts as a substitution.
struct SiteCounts {
  int transitions = 0;
  int transversions = 0;
  int substitutions = 0;
  int indels = 0;
  int transition_sites = 0;
  int transversion_sites = 0;
  int substitution_sites = 0;
  int indel_sites = 0;
  int nucleotide_sites = 0;  // sites of the reference, less separators and empty gap sites
  int usable_nucleotide_sites = 0;
};

// The results of one pair of sequences, left by the distance routines.
struct PairResults {
  double pair_dist = 0.0;
  double pair_var = 0.0;
  double pair_ts_dist = 0.0;
  double pair_tv_dist = 0.0;
  double prop_ts = 0.0;  // P
  double prop_tv = 0.0;  // Q
  double ts_tv_ratio = 0.0;
  double ts_tv_ratio_var = 0.0;
  int nb_sites_compared = 0;  // L
  int nb_diffs = 0;
  int nb_ts = 0;
  int nb_tv = 0;
};

class PopulDNA : public PopGenetics {
 public:
  PopulDNA() = default;
  explicit PopulDNA(const Population& data) : PopGenetics(data) {}
  SampleKind kind() const override { return SampleKind::dna; }

  int check_data() override;
  int find_polymorphic_sites(settings& s) override;
  // Slot 6: the reference sequence that sites are classified against. 0
  // without haplotypes.
  int build_arbitrary_haplotype();
  void compare_DNA_sequences();

  double DeletionWeight = 1.0;
  double TransitionWeight = 1.0;
  double TranversionWeight = 1.0;
  SiteCounts counts;
  std::array<double, 4> freq_nucl{};  // C, T, A, G
  std::array<std::array<double, 4>, 4> pair_freq{};
  double gc_content = -1.0;
  PairResults pair;
  double GammaAValue = 0.0;  // 0: no gamma correction
  std::unique_ptr<HaploDef> reference;
  // Per site: 1 when a transition (deletion, other difference) was seen;
  // transversion 1, or 2 once two different non-reference bases were seen.
  std::vector<int> transition_seen;
  std::vector<int> transversion_seen;
  std::vector<int> deletion_seen;
  std::vector<int> other_seen;
};

class PopulRFLP : public PopGenetics {
 public:
  PopulRFLP() = default;
  explicit PopulRFLP(const Population& data) : PopGenetics(data) {}
  SampleKind kind() const override { return SampleKind::rflp; }

  int check_data() override;
  int find_polymorphic_sites(settings& s) override;
  int build_arbitrary_haplotype();
  void compare_RFLP_haplotypes();

  double DeletionWeight = 1.0;
  SiteCounts counts;
  PairResults pair;
  std::unique_ptr<HaploDef> reference;
  std::vector<int> change_seen;  // per site: a restriction-site change was seen
  std::vector<int> deletion_seen;
};

class PopulMicrosat : public PopGenetics {
 public:
  PopulMicrosat() = default;
  explicit PopulMicrosat(const Population& data) : PopGenetics(data) {}
  SampleKind kind() const override { return SampleKind::microsat; }
  int check_data() override;
};

class PopulStandard : public PopGenetics {
 public:
  PopulStandard() = default;
  explicit PopulStandard(const Population& data) : PopGenetics(data) {}
  SampleKind kind() const override { return SampleKind::standard; }
  int check_data() override;
};

// The object of the class of `data_type`, copy-constructed from `data`.
std::unique_ptr<PopGenetics> make_sample(unsigned char data_type, const Population& data);

// Genotypic data of several samples pooled into one object of the class of
// `data_type`: haplotype counts added per definition (in order of first
// appearance), phenotypes appended, sizes summed. is_sample is 0. Genotypic
// data get their pseudo-haplotypes over `db`.
std::unique_ptr<PopGenetics> make_group_sample(unsigned char data_type,
                                               std::span<const Population* const> members,
                                               const my_string& name, int index, Haplo_DB& db);

// Gives every definition of `db` its allele pointers (associate, with the
// definition's count). 1 on success.
int build_allele_vectors(Haplo_DB& db, TAlleleDB& alleles);

// The shared flags of substitution sites: one byte per site, set where a
// site showed a counted substitution in a sample of the pass. The array only
// grows; the run empties it before each pass. Read by Tajima's test.
std::vector<unsigned char>& usable_loci_flags();
void clear_usable_loci_flags();
void set_usable_loci_flag(int site);

// Pairs of entries of two samples whose definitions lie at distance 0 in
// `matrix` (indexed by mat_index): for each entry i of `a`, the entries of `b`
// from i + 1 on when b is a, from 0 otherwise.
std::vector<std::pair<const HaploDef*, const HaploDef*>> shared_haplotypes(const Population& a,
                                                                           const Population& b,
                                                                           const TriMat& matrix);
