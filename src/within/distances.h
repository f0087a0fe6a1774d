// Distances between the haplotypes of a sample: the matrix that molecular
// diversity, the mismatch distribution, AMOVA and the spanning networks read.
//
// compute_distance_matrix fills sample.dist_mat (Nb_haplo by Nb_haplo) by
// sample.dist_method:
//   below the diagonal  [i][j], j < i: the distance times the scale
//   above the diagonal  [j][i]: the standard deviation times the scale, or 0
//                       when the variance is negative (always 0 for
//                       microsatellite and standard data)
// The scale is nb_usable_loci when per_site is non-zero and the method gives
// a distance per site (DNA and RFLP methods other than the plain count), so
// that the matrix holds differences per sequence; 1 otherwise.
//
// Methods by data type (values that a type does not know fall back as shown):
//   DNA        0 pairwise differences, 1 Jukes and Cantor, 2 Kimura 2P,
//              3 proportion of differences, 4 Tajima and Nei, 5 Tamura,
//              6 Tamura and Nei; any other value: 0. Jukes and Cantor, Kimura
//              and Tamura-Nei take the gamma shape GammaAValue (0: none).
//   RFLP       0 pairwise differences, 1 proportion; any other value: 0
//   MICROSAT   0 number of different allele sizes; any other value: the sum
//              of squared size differences
//   STANDARD   number of different alleles, whatever the method
//
// Only usable sites (loci) are compared. A pair that a corrected method cannot
// handle (too divergent, a base missing from the sample, a composition too
// unbalanced) reports its error (162-176), then error 136 under the matrix's
// name, and ends the whole matrix with 0; so does a stop request, after a row.
#pragma once

#include <ostream>

#include "model/population.h"

namespace distance_method {
// DNA
constexpr int DIFF = 0;
constexpr int JUKES_CANTOR = 1;
constexpr int KIMURA_2P = 2;
constexpr int P_DIST = 3;
constexpr int TAJIMA_NEI = 4;
constexpr int TAMURA = 5;
constexpr int TAMURA_NEI = 6;
// RFLP
constexpr int RFLP_DIFF = 0;
constexpr int RFLP_P_DIST = 1;
// MICROSAT
constexpr int COUNT_DIFF = 0;
constexpr int MICRO_SQR_DIFF = 1;
}  // namespace distance_method

// Slot 4 of every sample class: fills sample.dist_mat by sample.dist_method
// (and GammaAValue for DNA). 1 on success; 0 for an empty sample (error 108),
// a failed pair or a stop request (*stop non-zero after a row; stop may be
// null). With a non-null `out` the lower triangle is printed there under
// "\nInter-haplotypic distance matrix:\n", between two lines of the log.
int compute_distance_matrix(PopGenetics& sample, std::ostream* out, int* stop, int per_site);

// The same entry, one per sample class.
int compute_distance_matrix(PopulDNA& sample, std::ostream* out, int* stop, int per_site);
int compute_distance_matrix(PopulRFLP& sample, std::ostream* out, int* stop, int per_site);
int compute_distance_matrix(PopulMicrosat& sample, std::ostream* out, int* stop, int per_site);
int compute_distance_matrix(PopulStandard& sample, std::ostream* out, int* stop, int per_site);

// Makes compute_distance_matrix the distance entry of the dispatch
// (sample_analyses().distance_matrix). The run control calls it at start-up.
void install_distance_analysis();

// Nucleotide frequencies of a DNA sample, C, T, A, G, into freq_nucl, and
// gc_content = C + G: bases counted over all sites of all definitions,
// weighted by the haplotype counts, divided by the number of characters, then
// scaled to sum to 1. Computed once: nothing happens while one of the four is
// positive. An empty sample reports error 108 and gives 0; a sample of no
// sites (or without a single base) keeps four zeros.
int comp_nucl_freq(PopulDNA& sample);

// The name of a method as the molecular diversity report prints it
// ("Pairwise difference", "Jukes and Cantor", ...); empty for standard data.
const char* distance_method_label(SampleKind kind, int method);

// The scale of a matrix computed with `method` (see above).
double distance_scale(const PopGenetics& sample, int method, int per_site);
