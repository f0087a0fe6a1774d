#include "model/haplo_db.h"

#include <sstream>
#include <string>
#include <string_view>

#include "model/matrices.h"
#include "model/report.h"
#include "model/vectors.h"

namespace {

bool is_letter(int c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool is_digit(int c) {
  return c >= '0' && c <= '9';
}

// Whether a definition of this data type may hold the character.
bool accepted(unsigned char data_type, int c, char separator, char missing) {
  if (separator != 0 && c == static_cast<unsigned char>(separator)) return true;
  if (c == static_cast<unsigned char>(missing)) return true;
  switch (data_type) {
    case data_type_code::DNA:
      return is_letter(c) || c == '-';
    case data_type_code::RFLP:
      return c == '0' || c == '1' || c == '-';
    case data_type_code::MICROSAT:
      return is_digit(c);
    default:
      return true;
  }
}

int invalid_data_code(unsigned char data_type) {
  switch (data_type) {
    case data_type_code::DNA:
      return 26;
    case data_type_code::RFLP:
      return 25;
    default:
      return 27;
  }
}

// The alleles of a definition: every character without a separator, else the
// texts between runs of separators.
std::vector<std::string_view> split_loci(std::string_view content, char separator) {
  std::vector<std::string_view> loci;
  if (separator == 0) {
    for (std::size_t i = 0; i < content.size(); ++i) loci.push_back(content.substr(i, 1));
    return loci;
  }
  std::size_t i = 0;
  while (i < content.size()) {
    while (i < content.size() && content[i] == separator) ++i;
    const std::size_t start = i;
    while (i < content.size() && content[i] != separator) ++i;
    if (i > start) loci.push_back(content.substr(start, i - start));
  }
  return loci;
}

void skip_to_line_end(std::istream& is) {
  for (int c = is.get(); c != EOF && c != '\n'; c = is.get()) {
  }
}

}  // namespace

// --- HaploDef ----------------------------------------------------------------

int HaploDef::read_data(std::istream& is, const ProfileSettings& profile) {
  return read_data(is, profile.DataType, profile.LocusSeparator, profile.MissingData);
}

int HaploDef::read_data(const my_string& text, const ProfileSettings& profile) {
  std::istringstream is(text.str());
  return read_data(is, profile);
}

int HaploDef::read_data(std::istream& is, unsigned char data_type, char separator, char missing) {
  if (!is.good()) return 0;
  std::string text;
  const bool frequency = data_type == data_type_code::FREQUENCY;
  const bool verbatim = data_type > data_type_code::MICROSAT && !frequency;
  for (int c = is.get(); c != EOF && c != '\n'; c = is.get()) {
    if (c == '\r') continue;
    if (frequency || (!verbatim && c == '#')) {
      skip_to_line_end(is);
      break;
    }
    if (verbatim || accepted(data_type, c, separator, missing)) {
      text.push_back(static_cast<char>(c));
    } else if (c != ' ') {
      report_error(report_kind::ERROR, "HaploDef::read_data()", invalid_data_code(data_type));
      return 0;
    }
  }
  if (!text.empty() && text.back() == ' ') {
    text.erase(text.find_last_not_of(" \t") + 1);
  }
  if (text.empty() && !frequency) return 0;
  // Alleles associated with an earlier text no longer stand for this one.
  if (hapl_content.str() != text) alleles.clear();
  hapl_content = text;
  nb_loci_used = static_cast<int>(split_loci(text, separator).size());
  return 1;
}

int HaploDef::associate(TAlleleDB& db, char& separator, int& locus_count, double count) {
  const std::vector<std::string_view> loci = split_loci(hapl_content.str(), separator);
  const bool complete = alleles.size() == loci.size();
  if (!complete) alleles.clear();
  for (std::size_t l = 0; l < loci.size(); ++l) {
    TAllele* a = db.enter_allele(static_cast<int>(l), loci[l], count);
    if (!complete) alleles.push_back(a);
  }
  nb_loci_used = static_cast<int>(loci.size());
  locus_count = nb_loci_used;
  return locus_count;
}

bool HaploDef::same_alleles(const HaploDef& other) const {
  return alleles == other.alleles;
}

std::ostream& operator<<(std::ostream& os, const HaploDef& def) {
  if (def.hapl_content.is_empty()) return os << ' ' << def.hapl_id;
  return os << def.hapl_id << '\t' << def.hapl_content;
}

// --- Haplo_DB ----------------------------------------------------------------

Haplo_DB& Haplo_DB::operator=(const ProfileSettings& profile) {
  copy_profile(profile);
  return *this;
}

HaploDef* Haplo_DB::operator[](int index) const {
  if (index < 0 || index >= size()) return nullptr;
  return defs_[static_cast<std::size_t>(index)].get();
}

HaploDef* Haplo_DB::add(std::unique_ptr<HaploDef> def) {
  if (!def || find(def->hapl_id.str()) != nullptr) return nullptr;
  by_id_.emplace(def->hapl_id.str(), size());
  defs_.push_back(std::move(def));
  return defs_.back().get();
}

void Haplo_DB::erase(int index) {
  if (index < 0 || index >= size()) return;
  defs_.erase(defs_.begin() + index);
  rebuild_index();
}

int Haplo_DB::find_by_id(const HaploDef& def) const {
  return find_by_id(def.hapl_id.str());
}

int Haplo_DB::find_by_id(std::string_view id) const {
  const auto it = by_id_.find(id);
  return it == by_id_.end() ? kNotFound : it->second;
}

HaploDef* Haplo_DB::find(std::string_view id) const {
  const int index = find_by_id(id);
  return index == kNotFound ? nullptr : (*this)[index];
}

HaploDef* Haplo_DB::find_by_content(const my_string& content) const {
  for (const auto& d : defs_) {
    if (d->hapl_content == content) return d.get();
  }
  return nullptr;
}

void Haplo_DB::clear() {
  defs_.clear();
  by_id_.clear();
}

void Haplo_DB::reset() {
  HaplListName = "no_name";
  clear();
}

void Haplo_DB::write(std::ostream& os) const {
  if (defs_.empty()) return;
  os << "\t[[HaplotypeDefinition]]\n\n";
  os << "\t\tHaplListName=\"";
  if (HaplListName == "UNKNOWN") {
    os << "generated by morvcore";
  } else {
    os << HaplListName;
  }
  os << "\"\n\t\tHaplList={\n";
  for (const auto& d : defs_) os << *d << '\n';
  os << "\t\t}\n";
}

int Haplo_DB::associate_with1(DistMat& matrix) {
  for (const auto& d : defs_) d->mat_index = -1;
  if (!matrix.has_labels() || matrix.label_count() == 0) {
    report_error(report_kind::ERROR, "Haplo_DB::associate_with1()", 29);
    return 0;
  }
  int unmatched = 0;
  for (int i = 0; i < matrix.label_count(); ++i) {
    HaploDef* d = find(matrix.label(i).str());
    if (d == nullptr) {
      report_error(report_kind::ERROR, "Haplo_DB::associate_with1()", 28);
      log_stream() << "\tHaplotype \"" << matrix.label(i)
                   << "\" defined in the labels of the user-defined "
                      "distance matrix was not found in any population sample\n";
      ++unmatched;
      continue;
    }
    d->mat_index = i;
  }
  log_stream() << "      During the association of the Distance matrix LABELS and "
                  "the haplotype list, "
               << std::to_string(unmatched) << " label(s) were not found in any sample\n";
  for (const auto& d : defs_) {
    if (d->mat_index < 0) {
      report_error(report_kind::ERROR, "Haplo_DB::associate_with1()", 173);
      return 0;
    }
  }
  return 1;
}

int Haplo_DB::associate_with2(DistMat& matrix) {
  if (size() != matrix.matrix_size()) {
    report_error(report_kind::ERROR, "Haplo_DB::associate_with2()", 135);
    return 0;
  }
  for (int i = 0; i < size(); ++i) defs_[static_cast<std::size_t>(i)]->mat_index = i;
  return 1;
}

void Haplo_DB::rebuild_index() {
  by_id_.clear();
  by_id_.reserve(defs_.size());
  for (std::size_t i = 0; i < defs_.size(); ++i) {
    by_id_.emplace(defs_[i]->hapl_id.str(), static_cast<int>(i));
  }
}
