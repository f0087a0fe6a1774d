// Diversity indices and theta estimators of one sample: the standard task
// (task bit 0x1: gene copies, loci, the per-locus table, gene diversity) and
// the molecular task (task bit 0x2: site counts, nucleotide composition,
// mean number of pairwise differences, nucleotide or gene diversity per
// locus, and the estimators of theta selected by ComputeTheta).
//
// The numbers stand in the sample's result fields (model/population.h); the
// neutrality tests read them, and read the Ewens sampling probabilities
// below. Each task writes its own rows of the summary files gen_div.sum,
// nucl_comp.sum, mold_div.sum and theta.sum.
//
// install_diversity_analyses() puts the two tasks into the dispatch of the
// within-sample analyses; the run calls it once at start-up.
#pragma once

#include <ostream>

#include "model/matrices.h"
#include "model/phen_db.h"
#include "model/population.h"
#include "model/settings.h"

class SampleTaskContext;

// --- Gene diversity ----------------------------------------------------------

// Sum of squared haplotype frequencies (a count below 1 stands for a stored
// relative frequency and is taken as it is). Stored in sum_sq_freq.
double& sum_sq_freqs(PopGenetics& sample);
// Fills gene_diversity and gene_homozygosity (n/(n-1)(1 - sum p^2), at most
// 1; 1 when every copy differs, 0 for one copy). Returns gene_diversity.
double& gene_diversity_value(PopGenetics& sample);
// Sampling standard deviation of the gene diversity; 0 for one copy.
double& sd_gene_div(PopGenetics& sample);

// --- Theta estimators --------------------------------------------------------

// Theta from the homozygosity, by regula falsi; needs gene_homozygosity and
// sd_gene_diversity. 3.4028234663852886e+38 when every copy differs.
double& theta_Hom_value(PopGenetics& sample);
// Watterson's estimator from S segregating sites in n copies.
double& theta_S_value(PopGenetics& sample, int n, int S);
// Tajima's estimator from the mean number of pairwise differences.
double& theta_Pi_value(PopGenetics& sample, double pi);
// Ewens' estimator from k alleles in n copies, with the limits of the
// (1 - alpha) interval. A cell of the table of B numbers that is not finite
// refuses the interval with a WARNING that names the sample and the cell.
double& theta_k_value(PopGenetics& sample, int n, int k, double alpha);

// The expected number of alleles in n copies: sum over i < n of t / (t + i);
// 1 for t not above 0.
double expected_k(double theta, int n);

// 1 when the shared table of B numbers is available (asked for once, 200 by 80).
int load_BMat();

// Ewens sampling probabilities over the B numbers of `table` (row n):
// P(K = j | t) for j < n (0 for j >= n; for t <= 0, 1 for j = 1 only; 0 above
// t = 10000), and P(K < k | t), held in [0, 1] (1 for t <= 0, 0 above
// t = 10000). The caller makes sure the cells exist.
double ewens_prob_exactly(const BnumMat& table, double t, int n, int j);
double ewens_prob_below(const BnumMat& table, double t, int n, int k);

// How the interval of Ewens' estimator came out.
enum class ThetaKInterval {
  computed,       // both limits found
  beyond_limits,  // n >= 5000 or k >= 1000: limits 0 and 100000000
  no_table,       // the table could not grow: the same limits
  not_finite,     // a needed cell is not finite: the same limits
};

struct ThetaKResult {
  double theta = 0.0;
  double low = 0.0;
  double high = 0.0;
  ThetaKInterval interval = ThetaKInterval::computed;
  int bad_row = 0;  // the first cell that was not finite
  int bad_column = 0;
};

// Ewens' estimator and its interval, over the shared table (grown as needed).
ThetaKResult ewens_theta_k(int n, int k, double alpha);
// The same, stored in the sample's theta_k, theta_k_low, theta_k_high, with
// the WARNING of a cell that is not finite.
ThetaKResult theta_k_with_interval(PopGenetics& sample, int n, int k, double alpha);

// --- Pairwise differences ----------------------------------------------------

// The mean number of pairwise differences and the diversity per locus from
// the sample's distance matrix (computed first when it does not fit the
// haplotypes). Fills mean_pairwise_diff, sd_pairwise_diff,
// avg_gene_diversity, sd_avg_gene_diversity. 1 on success; 0 with an error
// under "<class>::compute_molecular_diversity()" otherwise.
int compute_pairwise_diversity(PopGenetics& sample, settings& s);

// --- Per-locus table ---------------------------------------------------------

// Per locus (all loci): gene copies, number of alleles, expected
// heterozygosity and, for microsatellites, sizes, range and the
// Garza-Williamson index; the sample's allele frequencies at its slot of
// pop_freq. Haplotypic data walk haplo_list; genotypic data walk the
// phenotypes and add the observed heterozygosity. The table of polymorphic
// usable loci goes to `out` when it is not null.
void locus_table_hapl(PopGenetics& sample, std::ostream* out, settings& s);
void locus_table_geno(PopGenetics& sample, const TPhenDB& pheno_db, std::ostream* out, settings& s,
                      bool print_range, bool print_gw, bool print);

// --- The two tasks -----------------------------------------------------------

// Task bit 0x1 (the dispatch handles recessive data before it).
void standard_diversity_task(PopGenetics& sample, settings& s, SampleTaskContext& context);
// Task bit 0x2; the dispatch has computed the distance matrix.
void molecular_diversity_task(PopGenetics& sample, settings& s, SampleTaskContext& context);

// Prints the haplotype distance matrix and the spanning network inside the
// molecular section when PrintHaplDistMat or PrintMinSpannNetworkPop is set;
// filled by the module of spanning networks. Nothing is printed while it is null.
using HaplotypeMatrixPrinter = void (*)(PopGenetics& sample, settings& s, std::ostream& out);
HaplotypeMatrixPrinter& haplotype_matrix_printer();

// Fills the dispatch's entries of the standard and molecular tasks.
void install_diversity_analyses();
