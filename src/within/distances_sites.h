// Internal to the distance modules: the sequences of a DNA or RFLP sample
// reduced to their usable sites, and the counting of the sites where two of
// them differ, by kind.
//
// Each definition becomes one row of small codes in one contiguous block,
// built once per matrix: code 0 marks the end of a sequence (and pads the
// rows to whole words), codes 1 .. K stand for the characters that occur.
// Beside the rows stand bit planes: for each row and each code that occurs in
// it, one bit per site. The sites where row a holds code x and row b code y
// are then counted a word (64 sites) at a time; a pair table, indexed by the
// two codes, gives the category of such a site. Rows that use many codes are
// compared byte by byte instead, looking only at the sites that differ. Equal
// sites are counted, not visited. Everything counted is a whole number, so the
// counts do not depend on the order of the sites, nor on the way taken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "model/haplo_db.h"

class PairTable;

class SiteCodes {
 public:
  // Rows of the definitions of `list` over the sites whose usable_locus entry
  // is non-zero (sites beyond the array are usable). A sequence ends at its
  // terminating zero.
  SiteCodes(const std::vector<PHaploDef>& list, std::span<const int> usable_locus);

  int rows() const { return static_cast<int>(usable_sites_.size()); }
  // Codes 0 .. alphabet() - 1; code 0 is the end.
  int alphabet() const { return static_cast<int>(characters_.size()); }
  char character(int code) const { return characters_[static_cast<std::size_t>(code)]; }
  const std::uint8_t* row(int h) const {
    return codes_.data() + static_cast<std::size_t>(h) * stride_;
  }
  // Usable sites of row h (those before its end).
  int usable_sites(int h) const { return usable_sites_[static_cast<std::size_t>(h)]; }

  // For every site where rows a and b differ and both go on: counts[table(x,
  // y)] += 1, x and y being their codes. Sites where one row has ended may be
  // counted under table(x, 0) or table(0, y), or not at all.
  void count_differences(int a, int b, const PairTable& table, int* counts) const;
  // Sites where both rows hold the character c.
  int both(int a, int b, char c) const;

 private:
  std::size_t slots_of(int h) const {
    return slot_begin_[static_cast<std::size_t>(h) + 1] - slot_begin_[static_cast<std::size_t>(h)];
  }
  const std::uint64_t* plane(std::size_t slot) const {
    return planes_.data() + slot * plane_words_;
  }
  std::size_t plane_words(int h) const;
  // The slot of code c in row h, or a value past its slots.
  std::size_t find_slot(int h, std::uint8_t c) const;
  void count_by_planes(int a, int b, const PairTable& table, int* counts) const;
  void count_by_bytes(int a, int b, const PairTable& table, int* counts) const;

  std::vector<char> characters_;
  std::vector<std::uint8_t> code_of_ = std::vector<std::uint8_t>(256, 0);
  std::vector<std::uint8_t> codes_;
  std::size_t stride_ = 8;  // bytes per row, a multiple of 8
  std::vector<int> usable_sites_;
  // Planes of row h: slots slot_begin_[h] .. slot_begin_[h + 1], one per code
  // that occurs in the row, of plane_words_ words each.
  std::size_t plane_words_ = 0;
  std::vector<std::size_t> slot_begin_;
  std::vector<std::uint8_t> slot_code_;
  std::vector<std::uint64_t> planes_;
};

// A table over pairs of codes, filled once per matrix by `category`, a
// function of the two characters (called for different characters only).
class PairTable {
 public:
  template <class Category>
  PairTable(const SiteCodes& codes, Category&& category)
      : k_(static_cast<std::size_t>(codes.alphabet())), cells_(k_ * k_, 0) {
    for (std::size_t a = 0; a < k_; ++a) {
      for (std::size_t b = 0; b < k_; ++b) {
        if (a == b) continue;
        cells_[a * k_ + b] = static_cast<std::uint8_t>(
            category(codes.character(static_cast<int>(a)), codes.character(static_cast<int>(b))));
      }
    }
    for (std::size_t a = 0; a < k_; ++a) {
      for (std::size_t b = 0; b < a; ++b)
        symmetric_ = symmetric_ && cells_[a * k_ + b] == cells_[b * k_ + a];
    }
  }
  std::uint8_t operator()(std::uint8_t a, std::uint8_t b) const { return cells_[a * k_ + b]; }
  // Whether (a, b) and (b, a) fall in the same category, for all codes.
  bool symmetric() const { return symmetric_; }

 private:
  std::size_t k_;
  std::vector<std::uint8_t> cells_;
  bool symmetric_ = true;
};
