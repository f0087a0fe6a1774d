#include "model/population.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "model/report.h"

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

bool is_blank_text(const my_string& text) {
  for (const char c : text.str()) {
    if (c != ' ' && c != '\t') return false;
  }
  return true;
}

// The alleles of a gamete text: every character without a separator, else the
// texts between runs of separators.
void split_alleles(std::string_view text, char separator, std::vector<std::string_view>& out) {
  out.clear();
  if (separator == 0) {
    for (std::size_t i = 0; i < text.size(); ++i) out.push_back(text.substr(i, 1));
    return;
  }
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == separator) ++i;
    const std::size_t start = i;
    while (i < text.size() && text[i] != separator) ++i;
    if (i > start) out.push_back(text.substr(start, i - start));
  }
}

// The first allele of the locus of `a`: the recessive one for recessive data.
const TAllele* first_of_locus(const TAllele* a, const TAlleleDB& db) {
  const TLocus* locus = a ? db.locus(a->locus_index) : nullptr;
  return locus ? locus->allele(0) : nullptr;
}

std::vector<unsigned char>& site_flags() {
  static std::vector<unsigned char> flags;
  return flags;
}

}  // namespace

SampleKind sample_kind_of(unsigned char data_type) {
  switch (data_type) {
    case data_type_code::DNA:
      return SampleKind::dna;
    case data_type_code::RFLP:
      return SampleKind::rflp;
    case data_type_code::MICROSAT:
      return SampleKind::microsat;
    default:
      return SampleKind::standard;
  }
}

// --- Population --------------------------------------------------------------

Population::Population(const Population& other)
    : poly_flags(other.poly_flags),
      profile(other.profile),
      SampleName(other.SampleName),
      sample_index(other.sample_index),
      haplo_list(other.haplo_list),
      saved_haplo_list(other.saved_haplo_list),
      active_haplo_list(other.active_haplo_list == &other.saved_haplo_list ? &saved_haplo_list
                                                                           : &haplo_list),
      pheno_db(other.pheno_db),
      allele_db(other.allele_db),
      pop_haplo_db(other.pop_haplo_db),
      allele_work(other.allele_work),
      allele_work_int(other.allele_work_int),
      Nb_haplo(other.Nb_haplo),
      Nb_orig_haplo(other.Nb_orig_haplo),
      sample_size(other.sample_size),
      inv_sample_size(other.inv_sample_size),
      data_complete(other.data_complete),
      is_sample(other.is_sample),
      result_name(other.result_name),
      recessive(other.recessive) {
  // The copied genotypes still point into the other sample's table: move them
  // to the entries of this one, which stand at the same positions.
  std::unordered_map<const TPopHaplotype*, TPopHaplotype*> moved;
  for (int i = 0; i < other.pop_haplo_db.size(); ++i)
    moved.emplace(other.pop_haplo_db[i], pop_haplo_db[i]);
  for (const auto& p : pheno_db.phenotypes()) {
    for (TGenotype& g : p->genotypes) {
      const auto a = moved.find(g.hapl_a);
      const auto b = moved.find(g.hapl_b);
      g.hapl_a = a == moved.end() ? nullptr : a->second;
      g.hapl_b = b == moved.end() ? nullptr : b->second;
    }
  }
}

Population& Population::operator=(const Population& other) {
  if (this != &other) {
    Population copy(other);
    poly_flags = std::move(copy.poly_flags);
    profile = copy.profile;
    SampleName = copy.SampleName;
    sample_index = copy.sample_index;
    haplo_list = std::move(copy.haplo_list);
    saved_haplo_list = std::move(copy.saved_haplo_list);
    active_haplo_list =
        copy.active_haplo_list == &copy.saved_haplo_list ? &saved_haplo_list : &haplo_list;
    pheno_db = std::move(copy.pheno_db);
    allele_db = copy.allele_db;
    pop_haplo_db = std::move(copy.pop_haplo_db);
    allele_work = std::move(copy.allele_work);
    allele_work_int = std::move(copy.allele_work_int);
    Nb_haplo = copy.Nb_haplo;
    Nb_orig_haplo = copy.Nb_orig_haplo;
    sample_size = copy.sample_size;
    inv_sample_size = copy.inv_sample_size;
    data_complete = copy.data_complete;
    is_sample = copy.is_sample;
    result_name = copy.result_name;
    recessive = copy.recessive;
  }
  return *this;
}

void Population::set_sample_size(double size) {
  sample_size = size;
  inv_sample_size = size > 0.0 ? 1.0 / size : 1.0;
}

void Population::convert_blanks_to_missing() {
  if (allele_db == nullptr) return;
  bool renamed = false;
  for (const auto& locus : allele_db->loci()) {
    for (const auto& a : locus->alleles()) {
      if (!is_blank_text(a->allele_name)) continue;
      a->allele_name = missing();
      renamed = true;
    }
  }
  if (renamed) allele_db->reindex();
}

int Population::build_allele_vectors() {
  if (allele_db == nullptr) return 0;
  const char sep = separator();
  std::vector<std::string_view> tokens;
  if (profile.RecessiveData != 0 && !pheno_db.empty()) {
    const TPhenotype& first = *pheno_db.phenotypes().front();
    split_alleles(first.line1.str(), sep, tokens);
    for (int l = 0; l < static_cast<int>(tokens.size()); ++l) {
      allele_db->enter_allele(l, profile.RecessiveAllele.str(), 0.0);
      if (allele_db->locus(l)->position_of(profile.RecessiveAllele.str()) != 0) {
        report_error(report_kind::ERROR, "Population::build_allele_vectors()", 153);
      }
    }
  }
  for (const auto& p : pheno_db.phenotypes()) {
    for (int which = 0; which < 2; ++which) {
      std::unique_ptr<TPopHaplotype>& gamete = which == 0 ? p->hapl1 : p->hapl2;
      if (!gamete) gamete = std::make_unique<TPopHaplotype>();
      if (!gamete->alleles.empty()) continue;
      split_alleles((which == 0 ? p->line1 : p->line2).str(), sep, tokens);
      gamete->alleles.reserve(tokens.size());
      for (std::size_t l = 0; l < tokens.size(); ++l) {
        gamete->alleles.push_back(allele_db->enter_allele(static_cast<int>(l), tokens[l], p->freq));
      }
    }
  }
  return 1;
}

void Population::make_all_blanks() {
  if (allele_db == nullptr) return;
  for (const auto& p : pheno_db.phenotypes()) {
    if (!p->hapl1 || !p->hapl2) continue;
    const int n = std::min(p->hapl1->nb_loci(), p->hapl2->nb_loci());
    for (int l = 0; l < n; ++l) {
      TAllele*& a = p->hapl1->alleles[at(l)];
      TAllele*& b = p->hapl2->alleles[at(l)];
      if (a == b || a == nullptr || b == nullptr) continue;
      if (a == first_of_locus(a, *allele_db)) {
        a = b;
      } else if (b == first_of_locus(b, *allele_db)) {
        b = a;
      }
    }
  }
}

int Population::expand_phenotypes() {
  return pheno_db.explode_base();
}

// --- PopGenetics -------------------------------------------------------------

void PopGenetics::release_BMat() {
  release_bnum_mat();
}

int PopGenetics::get_nb_loci() {
  if (nb_loci == 0 && !haplo_list.empty() && haplo_list.front().hapl != nullptr) {
    const HaploDef& def = *haplo_list.front().hapl;
    nb_loci = def.nb_loci_used > 0 ? def.nb_loci_used : static_cast<int>(def.alleles.size());
  }
  return nb_loci;
}

bool PopGenetics::check_counts(const char* routine) {
  long long sum = 0;
  for (const PHaploDef& e : haplo_list) sum += e.freq;
  const int entries = static_cast<int>(haplo_list.size());
  bool ok = true;
  if (sample_size <= 0.0) {
    set_sample_size(static_cast<double>(sum));
  } else if (sample_size != static_cast<double>(sum)) {
    set_sample_size(static_cast<double>(sum));
    report_error(report_kind::ERROR, routine, 110);
    ok = false;
  }
  if (Nb_haplo == 0) {
    Nb_haplo = entries;
  } else if (Nb_haplo != entries) {
    if (genotypic() && phase_known()) {
      Nb_haplo = entries;
    } else {
      report_error(report_kind::ERROR, routine, 111);
      ok = false;
    }
  }
  return ok;
}

void PopGenetics::reset_locus_arrays(int n) {
  const std::size_t size = at(n < 0 ? 0 : n);
  poly_flags.assign(size, 0);
  usable_locus.assign(size, 1);
  missing_freq.assign(size, 0.0);
  nb_usable_loci = 0;
  nb_poly_loci = 0;
}

int PopGenetics::find_polymorphic_sites(settings& s) {
  allowed_missing = s.AllowedLevelOfMissingData;
  if (unknown_phase() && data_complete == 0) {
    compare_phenotypes();
  } else {
    compare_haplotypes();
  }
  return 1;
}

namespace {

// What one locus has shown so far: the missing copies and whether two
// different alleles were seen.
struct LocusTally {
  double missing = 0.0;
  const TAllele* first = nullptr;
  bool polymorphic = false;

  void see(const TAllele* a, char missing_code, double weight) {
    if (a == nullptr || a->is(missing_code)) {
      missing += weight;
    } else if (first == nullptr) {
      first = a;
    } else if (a != first) {
      polymorphic = true;
    }
  }
};

}  // namespace

void PopGenetics::compare_haplotypes() {
  const int n = allele_db != nullptr ? allele_db->nb_loci() : get_nb_loci();
  reset_locus_arrays(n);
  std::vector<LocusTally> tally(at(n));
  const char miss = missing();
  for (const PHaploDef& e : haplo_list) {
    if (e.hapl == nullptr) continue;
    const std::vector<TAllele*>& alleles = e.hapl->alleles;
    const double w = e.freq;
    for (int l = 0; l < n; ++l) {
      tally[at(l)].see(l < static_cast<int>(alleles.size()) ? alleles[at(l)] : nullptr, miss, w);
    }
  }
  for (int l = 0; l < n; ++l) {
    const LocusTally& t = tally[at(l)];
    missing_freq[at(l)] = sample_size > 0.0 ? t.missing / sample_size : 0.0;
    const bool usable = missing_freq[at(l)] <= allowed_missing;
    usable_locus[at(l)] = usable ? 1 : 0;
    poly_flags[at(l)] = usable && t.polymorphic ? 1 : 0;
    nb_usable_loci += usable_locus[at(l)];
    nb_poly_loci += poly_flags[at(l)];
  }
}

void PopGenetics::compare_phenotypes() {
  const int n = allele_db != nullptr ? allele_db->nb_loci()
                : pheno_db.empty()   ? 0
                                     : pheno_db[0]->nb_loci();
  reset_locus_arrays(n);
  std::vector<LocusTally> tally(at(n));
  const char miss = missing();
  for (const auto& p : pheno_db.phenotypes()) {
    for (const TPopHaplotype* copy : {p->hapl1.get(), p->hapl2.get()}) {
      for (int l = 0; l < n; ++l) {
        tally[at(l)].see(copy ? copy->allele(l) : nullptr, miss, p->freq);
      }
    }
  }
  for (int l = 0; l < n; ++l) {
    const LocusTally& t = tally[at(l)];
    missing_freq[at(l)] = sample_size > 0.0 ? t.missing / sample_size : 0.0;
    const bool usable = missing_freq[at(l)] <= allowed_missing;
    usable_locus[at(l)] = usable ? 1 : 0;
    poly_flags[at(l)] = usable && t.polymorphic ? 1 : 0;
    nb_usable_loci += usable_locus[at(l)];
    nb_poly_loci += poly_flags[at(l)];
  }
}

int PopulMicrosat::check_data() {
  if (haplo_list.empty()) return 1;
  return check_counts("PopulMicrosat::check_data()") ? 1 : 0;
}

int PopulStandard::check_data() {
  if (haplo_list.empty()) return 1;
  return check_counts("PopulStandard::check_data()") ? 1 : 0;
}

// --- Making sample objects ---------------------------------------------------

std::unique_ptr<PopGenetics> make_sample(unsigned char data_type, const Population& data) {
  switch (sample_kind_of(data_type)) {
    case SampleKind::dna:
      return std::make_unique<PopulDNA>(data);
    case SampleKind::rflp:
      return std::make_unique<PopulRFLP>(data);
    case SampleKind::microsat:
      return std::make_unique<PopulMicrosat>(data);
    case SampleKind::standard:
      break;
  }
  return std::make_unique<PopulStandard>(data);
}

// --- Shared flags of substitution sites --------------------------------------

std::vector<unsigned char>& usable_loci_flags() {
  return site_flags();
}

void clear_usable_loci_flags() {
  site_flags().clear();
}

void set_usable_loci_flag(int site) {
  if (site < 0) return;
  std::vector<unsigned char>& flags = site_flags();
  if (flags.size() <= at(site)) flags.resize(at(site) + 1, 0);
  flags[at(site)] = 1;
}
