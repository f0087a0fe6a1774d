// The rows of the diversity indices in the summary files: one row per
// sample (or pooled group) and file, the project's and the sample's names in
// double quotes first, tab-separated, "none" where a value does not apply.
#pragma once

#include "model/population.h"
#include "model/settings.h"

// gen_div.sum: gene copies, haplotypes, [original haplotypes], loci, usable
// loci, polymorphic loci or sites, gene diversity.
void write_gene_diversity_row(PopGenetics& sample, const settings& s);

// mold_div.sum: weights, missing level, site counts, usable loci, distance
// code, gamma, mean pairwise differences and diversity per locus ("none" for
// the last two when `pairwise` is false).
void write_molecular_diversity_row(PopGenetics& sample, const settings& s, bool pairwise);

// nucl_comp.sum: the shares of C, T, A, G and their sum (DNA).
void write_nucleotide_composition_row(const PopulDNA& sample);

// Which estimators of theta a row holds.
struct ThetaRow {
  bool hom = false;
  bool k = false;
  bool s = false;
  bool pi = false;
};
// theta.sum: each computed value followed by its label.
void write_theta_row(const PopGenetics& sample, const ThetaRow& which);
