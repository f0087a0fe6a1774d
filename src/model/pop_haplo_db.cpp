#include "model/pop_haplo_db.h"

#include <algorithm>
#include <functional>
#include <new>
#include <string>

#include "model/report.h"
#include "model/vectors.h"

namespace {

std::string_view text_of(const TAllele* a) {
  return a ? std::string_view(a->allele_name.str()) : std::string_view();
}

}  // namespace

// --- TPopHaplotype -----------------------------------------------------------

TPopHaplotype::TPopHaplotype(TAllele* first, TAllele* second, int index)
    : hapl_name(my_string("Hapl") + my_string(std::to_string(index))), alleles{first, second} {}

void TPopHaplotype::copy_numbers(const TPopHaplotype& other) {
  hapl_name = other.hapl_name;
  freq = other.freq;
  old_freq = other.old_freq;
  sd_freq = other.sd_freq;
  sum_freq = other.sum_freq;
}

TPopHaplotype& TPopHaplotype::operator=(const TPopHaplotype& other) {
  if (this == &other) return *this;
  copy_numbers(other);
  try {
    alleles = other.alleles;
  } catch (const std::bad_alloc&) {
    alleles.clear();
    report_error(report_kind::MEMORY, "TPopHaplotype::operator=()", 0);
  }
  return *this;
}

void TPopHaplotype::assign(const TPopHaplotype& other, std::span<const int> selected_loci) {
  // Read the source first: it may be this very haplotype.
  std::vector<TAllele*> kept;
  try {
    for (std::size_t l = 0; l < other.alleles.size() && l < selected_loci.size(); ++l) {
      if (selected_loci[l] == 0) continue;
      TAllele* a = other.alleles[l];
      if (a) a->locus_id = static_cast<int>(kept.size());
      kept.push_back(a);
    }
  } catch (const std::bad_alloc&) {
    report_error(report_kind::MEMORY, "TPopHaplotype::operator=()", 0);
    return;
  }
  if (this != &other) copy_numbers(other);
  alleles = std::move(kept);
}

int TPopHaplotype::nb_differences(const TPopHaplotype& other) const {
  const std::size_t common = std::min(alleles.size(), other.alleles.size());
  int differences = 0;
  for (std::size_t l = 0; l < common; ++l) {
    if (text_of(alleles[l]) != text_of(other.alleles[l])) ++differences;
  }
  const std::size_t longer = std::max(alleles.size(), other.alleles.size());
  return differences + static_cast<int>(longer - common);
}

bool operator<(const TPopHaplotype& a, const TPopHaplotype& b) {
  return std::lexicographical_compare(
      a.alleles.begin(), a.alleles.end(), b.alleles.begin(), b.alleles.end(),
      [](const TAllele* x, const TAllele* y) { return text_of(x) < text_of(y); });
}

std::ostream& operator<<(std::ostream& os, const TPopHaplotype& h) {
  for (const TAllele* a : h.alleles) {
    os << text_of(a);
    if (h.separator != 0) os << h.separator;
  }
  return os;
}

// --- TPopHaploDB -------------------------------------------------------------

TPopHaploDB::TPopHaploDB(const TPopHaploDB& other) : het_loci(other.het_loci) {
  list_.reserve(other.list_.size());
  for (const auto& h : other.list_) list_.push_back(std::make_unique<TPopHaplotype>(*h));
  if (other.reference) reference = std::make_unique<TPopHaplotype>(*other.reference);
  index_ = other.index_;
}

TPopHaploDB& TPopHaploDB::operator=(const TPopHaploDB& other) {
  if (this != &other) {
    TPopHaploDB copy(other);
    *this = std::move(copy);
  }
  return *this;
}

TPopHaplotype* TPopHaploDB::operator[](int i) const {
  if (i < 0 || i >= size()) return nullptr;
  return list_[static_cast<std::size_t>(i)].get();
}

std::size_t TPopHaploDB::key_of(std::span<TAllele* const> alleles) {
  std::size_t key = alleles.size();
  for (const TAllele* a : alleles) {
    key = key * 1000003u ^ std::hash<const TAllele*>()(a);
  }
  return key;
}

int TPopHaploDB::position_of(std::span<TAllele* const> alleles) const {
  const auto [first, last] = index_.equal_range(key_of(alleles));
  int position = -1;
  for (auto it = first; it != last; ++it) {
    const auto& candidate = list_[static_cast<std::size_t>(it->second)]->alleles;
    if (std::equal(candidate.begin(), candidate.end(), alleles.begin(), alleles.end()) &&
        (position < 0 || it->second < position)) {
      position = it->second;
    }
  }
  return position;
}

TPopHaplotype* TPopHaploDB::add(const TPopHaplotype& h, double count) {
  const int found = position_of(h.alleles);
  if (found >= 0) {
    TPopHaplotype* entry = list_[static_cast<std::size_t>(found)].get();
    entry->freq += count;
    return entry;
  }
  auto entry = std::make_unique<TPopHaplotype>();
  *entry = h;
  entry->freq = count;
  index_.emplace(key_of(entry->alleles), size());
  list_.push_back(std::move(entry));
  return list_.back().get();
}

TPopHaplotype* TPopHaploDB::find(std::span<TAllele* const> alleles) const {
  return (*this)[position_of(alleles)];
}

int TPopHaploDB::find_index(const TPopHaplotype& h) const {
  const int position = position_of(h.alleles);
  return position < 0 ? kNotFound : position;
}

int TPopHaploDB::find_index(const TPopHaplotype* h) const {
  for (std::size_t i = 0; i < list_.size(); ++i) {
    if (list_[i].get() == h) return static_cast<int>(i);
  }
  return -1;
}

void TPopHaploDB::remove_below(double threshold) {
  std::erase_if(list_, [threshold](const auto& h) { return h->freq < threshold; });
  reindex();
}

TPopHaplotype* TPopHaploDB::draw(double u) const {
  double running = 0.0;
  for (const auto& h : list_) {
    running += h->freq;
    if (running > u) return h.get();
  }
  return nullptr;
}

void TPopHaploDB::build_reference_haplotype(const TAlleleDB& loci, char& missing) {
  const auto& all = loci.loci();
  const bool polymorphic =
      std::any_of(all.begin(), all.end(), [](const auto& l) { return l->nb_alleles() > 1; });
  if (!polymorphic) return;
  reference = std::make_unique<TPopHaplotype>();
  het_loci.assign(all.size(), 0);
  for (std::size_t l = 0; l < all.size(); ++l) {
    const TLocus& locus = *all[l];
    if (locus.nb_alleles() == 0) continue;
    if (locus.nb_alleles() < 2) {
      reference->alleles.push_back(locus.allele(0));
      continue;
    }
    het_loci[l] = 1;
    // A missing-data code seen first is no allele to stand for the locus.
    reference->alleles.push_back(locus.allele(0)->is(missing) ? locus.allele(1) : locus.allele(0));
  }
}

void TPopHaploDB::sort_by_alleles() {
  std::stable_sort(list_.begin(), list_.end(),
                   [](const auto& a, const auto& b) { return *a < *b; });
  reindex();
}

HaploListing TPopHaploDB::assign_print_indices(double threshold) {
  HaploListing listing;
  int unlisted = 0;
  for (const auto& h : list_) {
    ++listing.nb_all;
    listing.sum_all += h->freq;
    if (h->freq > threshold) {
      h->index = ++listing.nb_listed;
      listing.sum_listed += h->freq;
    } else {
      h->index = -(++unlisted);
    }
  }
  return listing;
}

void TPopHaploDB::clear() {
  list_.clear();
  index_.clear();
  reference.reset();
  het_loci.clear();
}

void TPopHaploDB::reindex() {
  index_.clear();
  index_.reserve(list_.size());
  for (std::size_t i = 0; i < list_.size(); ++i) {
    index_.emplace(key_of(list_[i]->alleles), static_cast<int>(i));
  }
}
