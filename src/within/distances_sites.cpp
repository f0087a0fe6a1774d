#include "within/distances_sites.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

const char* text_of(const PHaploDef& e) {
  return e.hapl != nullptr ? e.hapl->hapl_content.c_str() : "";
}

// Rows that hold at most this many pairs of different codes are compared by
// their planes (a pair costs a word per 64 sites); others byte by byte.
constexpr std::size_t kMostPlanePairs = 42;

// Set bits of words(0) .. words(n - 1), words(w) being a function of w. The
// bits are summed per byte (each word adds at most 8 to a byte), and the bytes
// folded through 16-bit lanes once per 31 words: a handful of operations a
// word, on any processor.
template <class Words>
int count_bits(std::size_t n, Words&& words) {
  constexpr std::uint64_t k55 = 0x5555555555555555ull;
  constexpr std::uint64_t k33 = 0x3333333333333333ull;
  constexpr std::uint64_t k0f = 0x0f0f0f0f0f0f0f0full;
  constexpr std::uint64_t k00ff = 0x00ff00ff00ff00ffull;
  constexpr std::uint64_t k0001 = 0x0001000100010001ull;
  int total = 0;
  for (std::size_t w = 0; w < n;) {
    const std::size_t end = std::min(n, w + 31);
    std::uint64_t bytes = 0;
    for (; w < end; ++w) {
      std::uint64_t v = words(w);
      v = v - ((v >> 1) & k55);
      v = (v & k33) + ((v >> 2) & k33);
      bytes += (v + (v >> 4)) & k0f;
    }
    const std::uint64_t lanes = (bytes & k00ff) + ((bytes >> 8) & k00ff);
    total += static_cast<int>((lanes * k0001) >> 48);
  }
  return total;
}

// Calls f(site) for every site where rows a and b differ, over `words` words
// of 8 sites.
template <class F>
void for_each_difference(const std::uint8_t* a, const std::uint8_t* b, std::size_t words, F&& f) {
  constexpr std::uint64_t kLowBits = 0x0101010101010101ull;
  for (std::size_t w = 0; w < words; ++w) {
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::memcpy(&x, a + 8 * w, 8);
    std::memcpy(&y, b + 8 * w, 8);
    std::uint64_t d = x ^ y;
    if (d == 0) continue;
    // The lowest bit of each byte that differs.
    d |= d >> 4;
    d |= d >> 2;
    d |= d >> 1;
    d &= kLowBits;
    while (d != 0) {
      const int byte = std::countr_zero(d) / 8;
      const int in_word = std::endian::native == std::endian::little ? byte : 7 - byte;
      f(8 * w + static_cast<std::size_t>(in_word));
      d &= d - 1;
    }
  }
}

}  // namespace

SiteCodes::SiteCodes(const std::vector<PHaploDef>& list, std::span<const int> usable_locus) {
  const std::size_t n = list.size();
  std::vector<std::size_t> lengths(n);
  std::size_t longest = 0;
  for (std::size_t h = 0; h < n; ++h) {
    lengths[h] = std::strlen(text_of(list[h]));
    longest = std::max(longest, lengths[h]);
  }
  // The sites kept, in order.
  std::vector<std::size_t> kept;
  kept.reserve(longest);
  for (std::size_t s = 0; s < longest; ++s) {
    if (s >= usable_locus.size() || usable_locus[s] != 0) kept.push_back(s);
  }
  stride_ = std::max<std::size_t>(8, (kept.size() + 7) / 8 * 8);
  plane_words_ = (kept.size() + 63) / 64;
  codes_.assign(n * stride_, 0);
  usable_sites_.assign(n, 0);
  characters_.assign(1, '\0');
  slot_begin_.assign(n + 1, 0);
  for (std::size_t h = 0; h < n; ++h) {
    const char* text = text_of(list[h]);
    std::uint8_t* row = codes_.data() + h * stride_;
    std::array<bool, 256> seen{};
    std::size_t k = 0;
    for (; k < kept.size() && kept[k] < lengths[h]; ++k) {
      std::uint8_t& code = code_of_[static_cast<unsigned char>(text[kept[k]])];
      if (code == 0) {
        code = static_cast<std::uint8_t>(characters_.size());
        characters_.push_back(text[kept[k]]);
      }
      row[k] = code;
      seen[code] = true;
    }
    usable_sites_[h] = static_cast<int>(k);
    for (std::size_t c = 1; c < seen.size(); ++c) {
      if (seen[c]) slot_code_.push_back(static_cast<std::uint8_t>(c));
    }
    slot_begin_[h + 1] = slot_code_.size();
  }
  planes_.assign(slot_code_.size() * plane_words_, 0);
  for (std::size_t h = 0; h < n; ++h) {
    std::array<std::size_t, 256> slot{};
    for (std::size_t s = slot_begin_[h]; s < slot_begin_[h + 1]; ++s) slot[slot_code_[s]] = s;
    const std::uint8_t* row = codes_.data() + h * stride_;
    for (std::size_t k = 0; k < at(usable_sites_[h]); ++k) {
      planes_[slot[row[k]] * plane_words_ + k / 64] |= std::uint64_t{1} << (k % 64);
    }
  }
}

std::size_t SiteCodes::plane_words(int h) const {
  return (at(usable_sites_[at(h)]) + 63) / 64;
}

std::size_t SiteCodes::find_slot(int h, std::uint8_t c) const {
  const std::size_t end = slot_begin_[at(h) + 1];
  for (std::size_t s = slot_begin_[at(h)]; s < end; ++s) {
    if (slot_code_[s] == c) return s;
  }
  return end;
}

int SiteCodes::both(int a, int b, char c) const {
  const std::uint8_t code = code_of_[static_cast<unsigned char>(c)];
  if (code == 0) return 0;
  const std::size_t sa = find_slot(a, code);
  const std::size_t sb = find_slot(b, code);
  if (sa == slot_begin_[at(a) + 1] || sb == slot_begin_[at(b) + 1]) return 0;
  const std::uint64_t* x = plane(sa);
  const std::uint64_t* y = plane(sb);
  return count_bits(std::min(plane_words(a), plane_words(b)),
                    [&](std::size_t w) { return x[w] & y[w]; });
}

void SiteCodes::count_differences(int a, int b, const PairTable& table, int* counts) const {
  if (slots_of(a) * slots_of(b) <= kMostPlanePairs) {
    count_by_planes(a, b, table, counts);
  } else {
    count_by_bytes(a, b, table, counts);
  }
}

void SiteCodes::count_by_planes(int a, int b, const PairTable& table, int* counts) const {
  const std::size_t words = std::min(plane_words(a), plane_words(b));
  const std::size_t a_end = slot_begin_[at(a) + 1];
  const std::size_t b_end = slot_begin_[at(b) + 1];
  for (std::size_t sa = slot_begin_[at(a)]; sa < a_end; ++sa) {
    const std::uint8_t x = slot_code_[sa];
    const std::uint64_t* xa = plane(sa);
    for (std::size_t sb = slot_begin_[at(b)]; sb < b_end; ++sb) {
      const std::uint8_t y = slot_code_[sb];
      if (x == y) continue;
      const std::uint64_t* yb = plane(sb);
      // A symmetric table takes the pairs (x, y) and (y, x) at once, from x < y.
      const std::size_t xb = table.symmetric() ? find_slot(b, x) : b_end;
      const std::size_t ya = table.symmetric() ? find_slot(a, y) : a_end;
      if (table.symmetric() && x > y && xb != b_end && ya != a_end) continue;
      const std::uint64_t* pa = ya != a_end ? plane(ya) : nullptr;
      const std::uint64_t* pb = xb != b_end ? plane(xb) : nullptr;
      int count = 0;
      if (pa != nullptr && pb != nullptr) {
        count = count_bits(words, [&](std::size_t w) { return (xa[w] & yb[w]) | (pa[w] & pb[w]); });
      } else {
        count = count_bits(words, [&](std::size_t w) { return xa[w] & yb[w]; });
      }
      counts[table(x, y)] += count;
    }
  }
}

void SiteCodes::count_by_bytes(int a, int b, const PairTable& table, int* counts) const {
  const std::uint8_t* x = row(a);
  const std::uint8_t* y = row(b);
  for_each_difference(x, y, stride_ / 8, [&](std::size_t s) { ++counts[table(x[s], y[s])]; });
}
