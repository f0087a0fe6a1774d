// Classes of a difference between two nucleotide codes (IUPAC letters, the
// gap '-', and the RFLP states '0' and '1'), shared by the site classification
// of a sample and by the distance routines.
//
//   1  transition: A-G, C-T
//   2  transversion: the other pairs of bases, and a base or code against a
//      code all of whose bases differ from it by transversions (C or T
//      against R, A or G against Y, R against Y)
//   3  deletion: '-' against a base, an ambiguity code, '0' or '1'
//   4  a difference of unsure kind: two codes that share no base but differ
//      both by transitions and transversions (A against B, K, S; C against D,
//      K, W; G against H, M, W; T against M, S, V; K against M; S against W),
//      and '0' against '1'
//   0  anything else: equal or compatible codes, the missing-data character,
//      lower-case letters and every other character
//
// The relation is symmetric. Codes are upper case: sequences are turned to
// upper case before any analysis.
#pragma once

namespace nucleotide_class {
constexpr int NONE = 0;
constexpr int TRANSITION = 1;
constexpr int TRANSVERSION = 2;
constexpr int DELETION = 3;
constexpr int OTHER = 4;
}  // namespace nucleotide_class

// The class of the pair (a, b); 0 when a == b.
int compare_nucleotides(char a, char b);

// Whether c is one of the four bases A, C, G, T.
bool is_base(char c);
