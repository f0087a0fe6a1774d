#include "model/nucleotide.h"

#include <array>
#include <cstddef>

namespace {

// The bases a code stands for, as bits A 1, C 2, G 4, T 8; 0 for a character
// that is no nucleotide code.
constexpr unsigned bases_of(char c) {
  switch (c) {
    case 'A':
      return 1;
    case 'C':
      return 2;
    case 'G':
      return 4;
    case 'T':
      return 8;
    case 'R':
      return 1 | 4;
    case 'Y':
      return 2 | 8;
    case 'M':
      return 1 | 2;
    case 'K':
      return 4 | 8;
    case 'S':
      return 2 | 4;
    case 'W':
      return 1 | 8;
    case 'H':
      return 1 | 2 | 8;
    case 'B':
      return 2 | 4 | 8;
    case 'V':
      return 1 | 2 | 4;
    case 'D':
      return 1 | 4 | 8;
    case 'N':
      return 1 | 2 | 4 | 8;
    default:
      return 0;
  }
}

// What a gap stands against as a deletion.
constexpr bool deletable(char c) {
  return bases_of(c) != 0 || c == '0' || c == '1';
}

// Purines A, G; pyrimidines C, T. Two bases differ by a transition when both
// are of the same kind.
constexpr unsigned kPurines = 1 | 4;
constexpr unsigned kPyrimidines = 2 | 8;

constexpr int classify(char a, char b) {
  if (a == b) return nucleotide_class::NONE;
  if (a == '-' || b == '-') {
    return deletable(a == '-' ? b : a) ? nucleotide_class::DELETION : nucleotide_class::NONE;
  }
  if ((a == '0' && b == '1') || (a == '1' && b == '0')) return nucleotide_class::OTHER;
  const unsigned x = bases_of(a);
  const unsigned y = bases_of(b);
  if (x == 0 || y == 0 || (x & y) != 0) return nucleotide_class::NONE;  // compatible or no code
  // Codes that share no base: look at every pair of bases they stand for.
  bool transition = false;
  bool transversion = false;
  for (unsigned i = 1; i <= 8; i <<= 1) {
    if ((x & i) == 0) continue;
    for (unsigned j = 1; j <= 8; j <<= 1) {
      if ((y & j) == 0) continue;
      const bool same_kind =
          ((i & kPurines) && (j & kPurines)) || ((i & kPyrimidines) && (j & kPyrimidines));
      (same_kind ? transition : transversion) = true;
    }
  }
  if (transition && transversion) return nucleotide_class::OTHER;
  return transition ? nucleotide_class::TRANSITION : nucleotide_class::TRANSVERSION;
}

// The classes of all pairs of characters, made once: the site loops look a
// pair up with one load.
struct ClassTable {
  std::array<unsigned char, 256 * 256> cell{};
  ClassTable() {
    for (int a = 0; a < 256; ++a) {
      for (int b = 0; b < 256; ++b) {
        cell[static_cast<std::size_t>(a * 256 + b)] =
            static_cast<unsigned char>(classify(static_cast<char>(a), static_cast<char>(b)));
      }
    }
  }
};

const ClassTable& table() {
  static const ClassTable t;
  return t;
}

}  // namespace

int compare_nucleotides(char a, char b) {
  const auto i = static_cast<unsigned char>(a);
  const auto j = static_cast<unsigned char>(b);
  return table().cell[static_cast<std::size_t>(i) * 256 + j];
}

bool is_base(char c) {
  return c == 'A' || c == 'C' || c == 'G' || c == 'T';
}
