// The reports of minimum spanning trees and networks in the result document:
// one per sample, inside its molecular diversity section, over the matrix of
// distances between its haplotypes; and one over all haplotypes of the
// project, in the genetic structure step.
//
// Both print the tree's connections, the tree in NEXUS notation and the
// alternative links of equal length that make it a network (Prim 1957;
// Excoffier and Smouse 1994). A sample without a matrix prints nothing; a
// matrix of one haplotype gives a tree without connections.
#pragma once

#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "among/min_span_net.h"
#include "model/haplo_db.h"
#include "model/matrices.h"
#include "model/population.h"
#include "model/settings.h"

// The part of a sample's molecular diversity section that PrintHaplDistMat
// and PrintMinSpannNetworkPop ask for: the sample's distance matrix (s.d.
// above the diagonal) and its list of haplotypes; then, with
// PrintMinSpannNetworkPop set, the spanning network of its haplotypes. Writes
// to `out` in the dress of the result document (XML elements
// "interHapDistMatrix" and "interHapDistMatrixLabels" for the sample). Nothing
// is written when the sample holds no finished matrix of its haplotypes.
void PrintMinSpannNetworkPop(PopGenetics& sample, settings& s, std::ostream& out);

// The matrix and the list of haplotypes alone.
void print_haplotype_distance_matrix(const PopGenetics& sample, std::ostream& out, bool xml,
                                     std::string_view time_stamp);

// The network over all haplotypes of the project from its distance matrix:
// the menu leaf "Minimum Spanning Network" (anchor "_pop_glob_spann") unless
// the structure is one of groups, then the tree, its NEXUS text under the
// name "MST_AMOVA" and the alternative links. Labels are those of the matrix,
// or the haplotypes' when the matrix has none.
void PrintMinSpannNetworkGlob(std::ostream& out, const DistMat& matrix, const Haplo_DB& haplotypes,
                              bool group_structure);

// The text common to both reports, from "MINIMUM SPANNING TREE" to the list
// of alternative links, for a network already made. `reference` is the
// citation block as it stands; `labels` are the raw labels of the OTUs.
void write_spanning_network(std::ostream& out, const TMinSpaNet& net,
                            std::span<const std::string> labels, bool xml,
                            std::string_view reference, std::string_view tree_name);

// Installs what the among-sample analyses contribute to the within-sample
// ones: the printer of the haplotype distance matrix and network of the
// molecular diversity section. The run control calls it at start-up.
void install_among_hooks();
