// The checks and the preparation of the samples' data before a run.
#include <algorithm>
#include <string>

#include "input/line_reader.h"
#include "input/reader_support.h"
#include "input/samples.h"
#include "model/report.h"

namespace {

constexpr unsigned char ERROR = report_kind::ERROR;
constexpr const char* verify_routine = "Samples::verify_data()";

// Every locus of the text is the missing-data code, each as a single
// character; a text without loci is not missing.
bool wholly_missing(std::string_view text, char separator, char missing) {
  if (text.empty()) return false;
  if (separator == 0) return text.find_first_not_of(missing) == std::string_view::npos;
  bool any = false;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == separator) ++i;
    const std::size_t start = i;
    while (i < text.size() && text[i] != separator) ++i;
    if (i == start) continue;
    if (i - start != 1 || text[start] != missing) return false;
    any = true;
  }
  return any;
}

int loci_of(const my_string& text, const Population& sample) {
  return reader_support::count_loci(text.str(), sample.separator());
}

void shrink(Population& sample, double copies) {
  sample.sample_size -= copies;
  if (sample.sample_size > 0.0) sample.inv_sample_size = 1.0 / sample.sample_size;
}

// The number of loci of a haplotypic sample, or -1 after an ERROR. Wholly
// missing haplotypes leave the sample.
int verify_haplotypes(Population& sample) {
  std::vector<PHaploDef>& list = sample.haplo_list;
  if (list.empty()) {
    report_error(ERROR, verify_routine, 68);
    return -1;
  }
  const int loci = loci_of(list.front().hapl->hapl_content, sample);
  for (const PHaploDef& entry : list) {
    if (loci_of(entry.hapl->hapl_content, sample) != loci) {
      report_error(ERROR, verify_routine, 70);
      return -1;
    }
  }
  for (std::size_t i = 0; i < list.size();) {
    if (!wholly_missing(list[i].hapl->hapl_content.str(), sample.separator(), sample.missing())) {
      ++i;
      continue;
    }
    list[i].hapl->count = 0;
    shrink(sample, list[i].freq);
    --sample.Nb_haplo;
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
  }
  return loci;
}

// The same on the phenotypes of a genotypic sample.
int verify_phenotypes(Population& sample) {
  TPhenDB& table = sample.pheno_db;
  if (table.empty()) {
    report_error(ERROR, verify_routine, 68);
    return -1;
  }
  const int loci = loci_of(table[0]->line1, sample);
  for (const auto& p : table.phenotypes()) {
    if (loci_of(p->line1, sample) != loci || loci_of(p->line2, sample) != loci) {
      report_error(ERROR, verify_routine, 69);
      return -1;
    }
  }
  for (int i = 0; i < table.size();) {
    const TPhenotype& p = *table[i];
    if (!wholly_missing(p.line1.str(), sample.separator(), sample.missing()) ||
        !wholly_missing(p.line2.str(), sample.separator(), sample.missing())) {
      ++i;
      continue;
    }
    shrink(sample, 2.0 * p.freq);
    sample.Nb_haplo -= truncate_to_int(2.0 * p.freq);
    table.erase(i);
  }
  return loci;
}

bool has_no_data(const Population& sample) {
  return sample.haplo_list.empty() && sample.pheno_db.empty();
}

}  // namespace

int Samples::verify_data() {
  std::vector<int> loci;
  for (const auto& sample : list_) {
    const int n = sample->genotypic() ? verify_phenotypes(*sample) : verify_haplotypes(*sample);
    if (n < 0) return 0;
    loci.push_back(n);
  }
  if (std::any_of(loci.begin(), loci.end(), [&](int n) { return n != loci.front(); })) {
    report_error(ERROR, verify_routine, 71);
    return 0;
  }
  return 1;
}

int Samples::convert_dna_upper() {
  if (DataType != data_type_code::DNA) return 1;
  int result = 1;
  for (const auto& sample : list_) {
    if (has_no_data(*sample)) {
      report_error(ERROR, "Samples::convert_dna_upper()", 68);
      result = 0;
      continue;
    }
    for (PHaploDef& entry : sample->haplo_list) entry.hapl->hapl_content.to_upper();
    for (const auto& p : sample->pheno_db.phenotypes()) {
      p->line1.to_upper();
      p->line2.to_upper();
    }
  }
  return result;
}

void Samples::rm_separators() {
  if (DataType != data_type_code::DNA && DataType != data_type_code::RFLP) return;
  if (!list_.empty() && list_.front()->separator() == 0) return;
  for (const auto& sample : list_) {
    for (PHaploDef& entry : sample->haplo_list) {
      HaploDef& def = *entry.hapl;
      def.hapl_content.remove_blanks();
      def.nb_loci_used = def.hapl_content.length();
    }
    for (const auto& p : sample->pheno_db.phenotypes()) {
      p->line1.remove_blanks();
      p->line2.remove_blanks();
    }
    sample->profile.LocusSeparator = locus_separator_code::NONE;
  }
  LocusSeparator = locus_separator_code::NONE;
}
