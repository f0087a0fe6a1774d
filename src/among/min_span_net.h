// Minimum spanning tree and minimum spanning network of a set of OTUs
// (haplotypes) from their matrix of distances.
//
// The tree is grown by Prim's algorithm (Prim 1957, Bell Syst. Tech. J. 36:
// 1389-1401) and kept as a binary tree of connections that prints in NEXUS
// notation. The links of equal length that could replace a connection of the
// tree are gathered as alternatives; with the tree they make the minimum
// spanning network of Excoffier and Smouse (1994, Genetics 136:343-359).
//
// Ties: among candidates at the same distance the one nearest the front of
// the candidate order is joined; lengths are compared for exact equality.
// Degenerate input: one OTU gives the root alone and no connection; zero
// distances join equal OTUs with connections of length 0; an OTU that no
// finite distance (below 3.4028234663852886e38) reaches cannot be joined,
// which is error 204 and leaves the tree built so far without alternatives.
#pragma once

#include <cstddef>
#include <deque>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A row-major table of distances between OTUs. Only the lower triangle is
// read (row above column), so the upper one may hold anything, such as the
// standard deviations of a sample's matrix. n is the smaller of rows and columns.
struct DistanceTable {
  const double* cells = nullptr;
  std::size_t rows = 0;
  std::size_t cols = 0;

  std::size_t size() const { return rows < cols ? rows : cols; }
  double operator()(std::size_t a, std::size_t b) const {
    return a >= b ? cells[a * cols + b] : cells[b * cols + a];
  }
};

class TListElem;
using TListElemStore = std::deque<TListElem>;

// An element of the tree of connections. An inner element and its first son
// bear the same node; the second son bears the node joined at this point, and
// `length` is the length of that connection. Leaves have no sons. Elements
// live in the store of their network, which owns them all.
class TListElem {
 public:
  TListElem(TListElem* parent, int id) : parent(parent), id(id) {}

  // Joins new_id to the leaf of the chain of `id` in the subtree of this
  // element, searching first sons before second sons; sets found to 1 when it
  // joined. Returns the element that took the connection, or null.
  TListElem* AddSon(int id, int new_id, double length, int& found, TListElemStore& store);

  bool has_sons() const { return left != nullptr; }

  TListElem* parent = nullptr;
  TListElem* left = nullptr;
  TListElem* right = nullptr;
  int id = 0;
  double length = 0.0;
};

class TMinSpaNet {
 public:
  explicit TMinSpaNet(DistanceTable matrix) : matrix_(matrix) {}
  TMinSpaNet(const TMinSpaNet&) = delete;
  TMinSpaNet& operator=(const TMinSpaNet&) = delete;

  // Builds the tree and its alternative links: 1, or 0 after error 204.
  int MakeNetwork();

  // Number of OTUs.
  int size() const { return n_; }
  // Connection i joins to_list()[i] to from_list()[i], already in the tree.
  const std::vector<int>& from_list() const { return from_list_; }
  const std::vector<int>& to_list() const { return to_list_; }
  const std::vector<double>& length_list() const { return length_list_; }
  // The alternative links of a node, one way only (each link under one of its ends).
  std::span<const int> alternatives(int node) const;
  const TListElem* root() const { return root_; }
  double distance(int a, int b) const {
    return matrix_(static_cast<std::size_t>(a), static_cast<std::size_t>(b));
  }

  // Writes the tree in NEXUS notation; `labels` holds the label of each node.
  // Blanks and tabs are taken out of `name`.
  void print_nexus(std::ostream& os, std::string_view name,
                   std::span<const std::string> labels) const;

 private:
  void clear();
  bool grow_tree();
  void gather_alternatives(const std::vector<double>& joined_at, const std::vector<int>& parent);
  void remove_tree_links();
  void make_links_one_way();
  void keep_replacing_links();
  void longest_on_the_way(int a);
  void remove_from(int node, int value);
  void write_tree(std::ostream& os, std::span<const std::string> labels) const;

  DistanceTable matrix_;
  int n_ = 0;
  std::vector<int> from_list_;
  std::vector<int> to_list_;
  std::vector<double> length_list_;
  // Alternatives of node x: alt_cells_[alt_begin_[x] .. alt_begin_[x] + alt_count_[x]);
  // removals shorten a node's block.
  std::vector<int> alt_cells_;
  std::vector<std::size_t> alt_begin_;
  std::vector<std::size_t> alt_count_;
  TListElemStore store_;
  TListElem* root_ = nullptr;
  std::vector<TListElem*> top_of_;   // the element that introduced each node
  std::vector<TListElem*> leaf_of_;  // the last element of each node's chain
  // Scratch of the link check: the longest connection crossed on the way to each node.
  struct WalkStep {
    const TListElem* elem;
    const TListElem* came_from;
    double longest;
  };
  std::vector<double> crossed_;
  std::vector<int> target_;   // a + 1 on the nodes of a's list
  std::vector<int> reached_;  // a + 1 on the nodes reached from a
  std::vector<WalkStep> walk_;
};
