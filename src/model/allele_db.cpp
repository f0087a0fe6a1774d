#include "model/allele_db.h"

#include <cmath>
#include <new>

#include "model/report.h"
#include "model/vectors.h"

TAllele::TAllele(const my_string& name, double initial_count)
    : allele_name(name), count(initial_count) {}

// --- TLocus ------------------------------------------------------------------

TLocus::TLocus(const my_string& name, int index_in_db)
    : locus_name(name), index_in_db_(index_in_db) {}

TAllele* TLocus::allele(int position) const {
  if (position < 0 || position >= nb_alleles()) return nullptr;
  return alleles_[static_cast<std::size_t>(position)].get();
}

int TLocus::position_of(std::string_view name) const {
  if (!index_.empty()) {
    const auto it = index_.find(name);
    return it == index_.end() ? -1 : it->second;
  }
  for (std::size_t i = 0; i < alleles_.size(); ++i) {
    if (alleles_[i]->allele_name.str() == name) return static_cast<int>(i);
  }
  return -1;
}

TAllele* TLocus::find(std::string_view name) const {
  return allele(position_of(name));
}

int TLocus::find_index(const TAllele& value) const {
  const int position = position_of(value.allele_name.str());
  return position < 0 ? kNotFound : position;
}

int TLocus::find_index(const TAllele* a) const {
  if (a == nullptr) return -1;
  // The allele knows its own place; the check keeps foreign alleles out.
  if (allele(a->pos_in_locus) == a) return a->pos_in_locus;
  for (std::size_t i = 0; i < alleles_.size(); ++i) {
    if (alleles_[i].get() == a) return static_cast<int>(i);
  }
  return -1;
}

int TLocus::add(std::string_view name, double count) {
  const int found = position_of(name);
  if (found >= 0) {
    alleles_[static_cast<std::size_t>(found)]->count += count;
    return found;
  }
  auto a = std::make_unique<TAllele>(my_string(name), count);
  const int position = nb_alleles();
  a->locus_index = index_in_db_;
  a->locus_id = index_in_db_;
  a->pos_in_locus = position;
  alleles_.push_back(std::move(a));
  if (!index_.empty()) {
    index_.emplace(std::string(name), position);
  } else if (alleles_.size() > kIndexFrom) {
    reindex();
  }
  return position;
}

void TLocus::clear() {
  alleles_.clear();
  index_.clear();
  min_allele = nullptr;
}

void TLocus::reindex() {
  index_.clear();
  if (alleles_.size() <= kIndexFrom) return;
  index_.reserve(alleles_.size());
  for (std::size_t i = 0; i < alleles_.size(); ++i) {
    // The first of two equal texts wins, as a linear search would find it.
    index_.emplace(alleles_[i]->allele_name.str(), static_cast<int>(i));
  }
}

// --- TAlleleDB ---------------------------------------------------------------

TLocus& TAlleleDB::locus_for(int locus) {
  if (locus < nb_loci()) return *loci_[static_cast<std::size_t>(locus)];
  const int index = nb_loci();
  loci_.push_back(
      std::make_unique<TLocus>(my_string("Locus ") + my_string(std::to_string(index)), index));
  return *loci_.back();
}

int TAlleleDB::add_allele(int& locus, const my_string& name, double count) {
  if (locus < 0) return -1;
  return locus_for(locus).add(name.str(), count);
}

TAllele* TAlleleDB::enter_allele(int locus, std::string_view name, double count) {
  if (locus < 0) return nullptr;
  TLocus& l = locus_for(locus);
  return l.allele(l.add(name, count));
}

int TAlleleDB::add_allele_selected(int& locus, const my_string& name, double& count) {
  if (locus < 0) return -1;
  TLocus& l = locus_for(locus);
  const int position = l.add(name.str(), count);
  TAllele* a = l.allele(position);
  a->locus_index = l.index_in_db();
  a->pos_in_locus = position;
  a->selected = 1;
  return position;
}

TAllele* TAlleleDB::find_allele(int locus, std::string_view name) const {
  const TLocus* l = this->locus(locus);
  return l ? l->find(name) : nullptr;
}

TLocus* TAlleleDB::locus(int index) const {
  if (index < 0 || index >= nb_loci()) return nullptr;
  return loci_[static_cast<std::size_t>(index)].get();
}

void TAlleleDB::clear() {
  for (auto& l : loci_) l->clear();
  loci_.clear();
  pop_freq_length_ = 0;
  pop_freq2_length_ = 0;
}

void TAlleleDB::reindex() {
  for (auto& l : loci_) l->reindex();
}

namespace {

// Replaces the chosen per-sample vector of every allele by n zeroes.
void fill_pop_freqs(const std::vector<std::unique_ptr<TLocus>>& loci,
                    std::vector<double> TAllele::*member, int n) {
  for (const auto& l : loci) {
    for (const auto& a : l->alleles()) {
      ((*a).*member).assign(static_cast<std::size_t>(n), 0.0);
    }
  }
}

}  // namespace

void TAlleleDB::create_pop_freq_vector(int& n) {
  const int length = n > 0 ? n : 0;
  try {
    fill_pop_freqs(loci_, &TAllele::pop_freq, length);
  } catch (const std::bad_alloc&) {
    delete_pop_freq_vector();
    report_error(report_kind::MEMORY, "TAlleleDB::create_pop_freq_vector()", 0);
    return;
  }
  pop_freq_length_ = length;
}

void TAlleleDB::create_pop_freq_vector2(int& n) {
  const int length = n > 0 ? n : 0;
  try {
    fill_pop_freqs(loci_, &TAllele::pop_freq2, length);
  } catch (const std::bad_alloc&) {
    delete_pop_freq_vector2();
    report_error(report_kind::MEMORY, "TAlleleDB::create_pop_freq_vector2()", 0);
    return;
  }
  pop_freq2_length_ = length;
}

void TAlleleDB::delete_pop_freq_vector() {
  for (const auto& l : loci_) {
    for (const auto& a : l->alleles()) std::vector<double>().swap(a->pop_freq);
  }
  pop_freq_length_ = 0;
}

void TAlleleDB::delete_pop_freq_vector2() {
  for (const auto& l : loci_) {
    for (const auto& a : l->alleles()) std::vector<double>().swap(a->pop_freq2);
  }
  pop_freq2_length_ = 0;
}

double TAlleleDB::update_allele_freqs(double denominator) {
  if (!(denominator > 0.0)) return -1.0;
  double change = 0.0;
  for (const auto& l : loci_) {
    for (const auto& a : l->alleles()) {
      if (a->pop_freq.size() < 2) continue;
      a->work_freq = (a->pop_freq[0] - a->work_sum) / denominator;
      change += std::fabs(a->work_freq - a->pop_freq[1]);
      a->pop_freq[1] = a->work_freq;
      a->work_sum = 0.0;
    }
  }
  return change;
}
