// Classification of the sites of DNA and RFLP samples against a reference
// sequence: which sites are usable (not too much missing data), which are
// polymorphic, and of what kind the differences are (transitions,
// transversions, indels, restriction-site changes).
#include <cstddef>
#include <string>
#include <string_view>

#include "model/nucleotide.h"
#include "model/population.h"
#include "model/report.h"

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

// The character of a definition at a site; the missing-data code past its end.
char site_of(std::string_view text, std::size_t site, char missing) {
  return site < text.size() ? text[site] : missing;
}

// Error `code` when a definition's length differs from the first one's.
bool same_lengths(const std::vector<PHaploDef>& list, const char* routine, int code) {
  const int length = list.front().hapl->hapl_content.length();
  for (const PHaploDef& e : list) {
    if (e.hapl->hapl_content.length() != length) {
      report_error(report_kind::ERROR, routine, code);
      return false;
    }
  }
  return true;
}

// The reference that sites are classified against: the first definition,
// whose separator sites stay, and whose other sites take the character of
// the haplotypes from the second on, the first one that is neither missing
// nor a gap (the last one read when all are).
std::unique_ptr<HaploDef> arbitrary_reference(const std::vector<PHaploDef>& list, char separator,
                                              char missing) {
  auto reference = std::make_unique<HaploDef>(*list.front().hapl);
  reference->hapl_id = "Arbitrary reference haplotype";
  std::string text = reference->hapl_content.str();
  for (std::size_t site = 0; site < text.size(); ++site) {
    if (separator != 0 && text[site] == separator) continue;
    char c = text[site];
    for (std::size_t h = 1; h < list.size(); ++h) {
      c = site_of(list[h].hapl->hapl_content.str(), site, missing);
      if (c != missing && c != '-') break;
    }
    text[site] = c;
  }
  reference->hapl_content = text;
  return reference;
}

}  // namespace

// --- PopulDNA ----------------------------------------------------------------

int PopulDNA::check_data() {
  if (haplo_list.empty()) return 1;
  bool ok = check_counts("PopulDNA::check_data()");
  if (!same_lengths(haplo_list, "PopulDNA::check_data()", 161)) ok = false;
  return ok ? 1 : 0;
}

int PopulDNA::find_polymorphic_sites(settings& s) {
  allowed_missing = s.AllowedLevelOfMissingData;
  if (unknown_phase() && data_complete == 0) {
    compare_phenotypes();
    return 1;
  }
  if (build_arbitrary_haplotype() == 0) return 0;
  compare_DNA_sequences();
  return 1;
}

int PopulDNA::build_arbitrary_haplotype() {
  if (haplo_list.empty()) return 0;
  if (!reference) reference = arbitrary_reference(haplo_list, separator(), missing());
  return 1;
}

namespace {

// Sites where the reference holds a separator or missing data are out:
// unusable, with the sample size as their missing frequency. A separator is
// no nucleotide site. Returns the sites to compare.
template <class Sample>
std::vector<char> mark_reference_sites(Sample& sample, const std::string& ref) {
  const char sep = sample.separator();
  std::vector<char> compared(ref.size(), 1);
  for (std::size_t i = 0; i < ref.size(); ++i) {
    const bool is_separator = sep != 0 && ref[i] == sep;
    if (!is_separator && ref[i] != sample.missing()) continue;
    compared[i] = 0;
    sample.usable_locus[i] = 0;
    sample.missing_freq[i] = sample.sample_size;
    if (is_separator) --sample.counts.nucleotide_sites;
  }
  return compared;
}

// The missing frequency of each compared site from its tally of missing
// copies; above the allowed level the site is unusable.
template <class Sample>
void apply_missing_tally(Sample& sample, const std::vector<char>& compared,
                         const std::vector<double>& tally) {
  for (std::size_t i = 0; i < compared.size(); ++i) {
    if (!compared[i]) continue;
    sample.missing_freq[i] = sample.sample_size > 0.0 ? tally[i] / sample.sample_size : 0.0;
    if (sample.missing_freq[i] > sample.allowed_missing) sample.usable_locus[i] = 0;
  }
}

// A gap in the reference that no sequence contradicts is no site.
template <class Sample>
void drop_empty_gap_site(Sample& sample, const std::string& ref, std::size_t i, bool deletion) {
  ++sample.nb_usable_loci;
  if (ref[i] == '-' && !deletion) {
    sample.usable_locus[i] = 0;
    --sample.nb_usable_loci;
    --sample.counts.nucleotide_sites;
  }
}

// Marks what each haplotype shows against the reference at the compared sites.
void classify_differences(PopulDNA& sample, const std::string& ref,
                          const std::vector<char>& compared, std::vector<double>& tally) {
  const char miss = sample.missing();
  std::vector<char> first_transversion(ref.size(), 0);
  for (const PHaploDef& e : sample.haplo_list) {
    const std::string_view text = e.hapl->hapl_content.str();
    for (std::size_t i = 0; i < ref.size(); ++i) {
      if (!compared[i]) continue;
      const char c = site_of(text, i, miss);
      if (c == miss) {
        tally[i] += e.freq;
        continue;
      }
      if (c == ref[i]) continue;
      switch (compare_nucleotides(ref[i], c)) {
        case nucleotide_class::TRANSITION:
          sample.transition_seen[i] = 1;
          break;
        case nucleotide_class::TRANSVERSION:
          if (sample.transversion_seen[i] == 0) {
            sample.transversion_seen[i] = 1;
            first_transversion[i] = c;
          } else if (c != first_transversion[i]) {
            sample.transversion_seen[i] = 2;
          }
          break;
        case nucleotide_class::DELETION:
          sample.deletion_seen[i] = 1;
          break;
        case nucleotide_class::OTHER:
          sample.other_seen[i] = 1;
          break;
        default:
          break;
      }
    }
  }
}

// The counts of one usable site, by the classes seen there and the weights.
void count_dna_site(PopulDNA& sample, std::size_t i) {
  SiteCounts& n = sample.counts;
  int& poly = sample.poly_flags[i];
  const int site = static_cast<int>(i);
  if (sample.deletion_seen[i] && sample.DeletionWeight > 0.0) {
    ++n.indels;
    ++n.indel_sites;
    poly = 1;
  }
  bool transition_counted = false;
  bool transversion_counted = false;
  if (sample.transition_seen[i] && sample.TransitionWeight > 0.0) {
    ++n.transitions;
    ++n.transition_sites;
    ++n.substitutions;
    ++n.substitution_sites;
    poly = 1;
    set_usable_loci_flag(site);
    transition_counted = true;
  }
  if (sample.transversion_seen[i] && sample.TranversionWeight > 0.0) {
    ++n.transversions;
    ++n.transversion_sites;
    ++n.substitutions;
    // A second kind of transversion at the site; the test on the transition
    // weight is the one the counts have always used.
    if (sample.transversion_seen[i] == 2 && sample.TransitionWeight > 0.0) {
      ++n.transversions;
      ++n.substitutions;
    }
    if (!transition_counted) {
      ++n.substitution_sites;
      poly = 1;
      set_usable_loci_flag(site);
    }
    transversion_counted = true;
  }
  if (sample.other_seen[i] && !transition_counted && !transversion_counted) {
    ++n.substitutions;
    ++n.substitution_sites;
    poly = 1;
    set_usable_loci_flag(site);
  }
}

}  // namespace

void PopulDNA::compare_DNA_sequences() {
  if (!reference) return;
  const std::string& ref = reference->hapl_content.str();
  const int n = static_cast<int>(ref.size());
  reset_locus_arrays(n);
  transition_seen.assign(at(n), 0);
  transversion_seen.assign(at(n), 0);
  deletion_seen.assign(at(n), 0);
  other_seen.assign(at(n), 0);
  counts = SiteCounts{};
  counts.nucleotide_sites = n;
  const std::vector<char> compared = mark_reference_sites(*this, ref);
  std::vector<double> tally(at(n), 0.0);
  classify_differences(*this, ref, compared, tally);
  apply_missing_tally(*this, compared, tally);
  for (std::size_t i = 0; i < ref.size(); ++i) {
    if (!usable_locus[i]) continue;
    count_dna_site(*this, i);
    drop_empty_gap_site(*this, ref, i, deletion_seen[i] != 0);
  }
  for (const int p : poly_flags) nb_poly_loci += p;
  counts.usable_nucleotide_sites = nb_usable_loci;
}

// --- PopulRFLP ---------------------------------------------------------------

int PopulRFLP::check_data() {
  if (haplo_list.empty()) return 1;
  bool ok = check_counts("PopulRFLP::check_data()");
  if (!same_lengths(haplo_list, "PopulRFLP::check_data()", 139)) ok = false;
  return ok ? 1 : 0;
}

int PopulRFLP::find_polymorphic_sites(settings& s) {
  allowed_missing = s.AllowedLevelOfMissingData;
  if (unknown_phase() && data_complete == 0) {
    compare_phenotypes();
    return 1;
  }
  if (build_arbitrary_haplotype() == 0) return 0;
  compare_RFLP_haplotypes();
  return 1;
}

int PopulRFLP::build_arbitrary_haplotype() {
  if (haplo_list.empty()) return 0;
  if (!reference) reference = arbitrary_reference(haplo_list, separator(), missing());
  return 1;
}

void PopulRFLP::compare_RFLP_haplotypes() {
  if (!reference) return;
  const std::string& ref = reference->hapl_content.str();
  const int n = static_cast<int>(ref.size());
  const char miss = missing();
  reset_locus_arrays(n);
  change_seen.assign(at(n), 0);
  deletion_seen.assign(at(n), 0);
  counts = SiteCounts{};
  counts.nucleotide_sites = n;
  const std::vector<char> compared = mark_reference_sites(*this, ref);
  std::vector<double> tally(at(n), 0.0);
  for (const PHaploDef& e : haplo_list) {
    const std::string_view text = e.hapl->hapl_content.str();
    for (std::size_t i = 0; i < ref.size(); ++i) {
      if (!compared[i]) continue;
      const char c = site_of(text, i, miss);
      if (c == miss) {
        tally[i] += e.freq;
      } else if (c != ref[i]) {
        (c == '-' || ref[i] == '-' ? deletion_seen : change_seen)[i] = 1;
      }
    }
  }
  apply_missing_tally(*this, compared, tally);
  for (std::size_t i = 0; i < ref.size(); ++i) {
    if (!usable_locus[i]) continue;
    if (deletion_seen[i] && DeletionWeight > 0.0) {
      ++counts.indels;
      ++counts.indel_sites;
      poly_flags[i] = 1;
    }
    if (change_seen[i]) {
      ++counts.substitutions;
      ++counts.substitution_sites;
      poly_flags[i] = 1;
      set_usable_loci_flag(static_cast<int>(i));
    }
    drop_empty_gap_site(*this, ref, i, deletion_seen[i] != 0);
  }
  for (const int p : poly_flags) nb_poly_loci += p;
  counts.usable_nucleotide_sites = nb_usable_loci;
}
