#include "among/min_span_net.h"

#include <limits>
#include <new>
#include <numeric>

#include "model/report.h"
#include "output/number_format.h"

namespace {

// The best distance of a node that no node of the tree reaches yet: the
// largest 32-bit float, which is also the mark of an infinite distance.
constexpr double kUnreached = 3.4028234663852886e38;
constexpr double kNothingCrossed = -std::numeric_limits<double>::infinity();

double larger(double a, double b) {
  return b > a ? b : a;
}

// The element after the subtree of `e` in preorder, within the subtree of `top`.
TListElem* next_after_subtree(TListElem* e, const TListElem* top) {
  while (e != top) {
    TListElem* p = e->parent;
    if (e == p->left && p->right) return p->right;
    e = p;
  }
  return nullptr;
}

}  // namespace

TListElem* TListElem::AddSon(int id, int new_id, double length, int& found, TListElemStore& store) {
  TListElem* e = this;
  while (e && e->id != id) {
    e = e->left ? e->left : next_after_subtree(e, this);
  }
  if (!e) return nullptr;
  // First sons keep the node of their parent: the chain of `id` ends in its leaf.
  while (e->left) e = e->left;
  try {
    store.emplace_back(e, id);
    e->left = &store.back();
    store.emplace_back(e, new_id);
    e->right = &store.back();
  } catch (const std::bad_alloc&) {
    e->left = e->right = nullptr;
    report_error(report_kind::MEMORY, "TListElem::AddSon", 0);
    return nullptr;
  }
  e->length = length;
  found = 1;
  return e;
}

std::span<const int> TMinSpaNet::alternatives(int node) const {
  if (node < 0 || node >= static_cast<int>(alt_count_.size())) return {};
  const auto x = static_cast<std::size_t>(node);
  return {alt_cells_.data() + alt_begin_[x], alt_count_[x]};
}

void TMinSpaNet::clear() {
  n_ = 0;
  from_list_.clear();
  to_list_.clear();
  length_list_.clear();
  alt_cells_.clear();
  alt_begin_.clear();
  alt_count_.clear();
  top_of_.clear();
  leaf_of_.clear();
  crossed_.clear();
  target_.clear();
  reached_.clear();
  walk_.clear();
  root_ = nullptr;
  store_.clear();
}

int TMinSpaNet::MakeNetwork() {
  try {
    clear();
    n_ = static_cast<int>(matrix_.size());
    const auto n = static_cast<std::size_t>(n_);
    store_.emplace_back(nullptr, 0);
    root_ = &store_.front();
    top_of_.assign(n, nullptr);
    leaf_of_.assign(n, nullptr);
    alt_begin_.assign(n, 0);
    alt_count_.assign(n, 0);
    if (n > 0) top_of_[0] = leaf_of_[0] = root_;
    if (!grow_tree()) return 0;
    remove_tree_links();
    make_links_one_way();
    keep_replacing_links();
    return 1;
  } catch (const std::bad_alloc&) {
    clear();
    report_error(report_kind::MEMORY, "TMinSpaNet::MakeNetwork()", 0);
  } catch (ExceptionType) {
    clear();
    report_error(report_kind::MEMORY, "TMinSpaNet::MakeNetwork()", 0);
  }
  return 0;
}

// Prim's algorithm over `order`, whose front holds the nodes of the tree.
bool TMinSpaNet::grow_tree() {
  if (n_ < 2) return true;
  const auto n = static_cast<std::size_t>(n_);
  std::vector<double> best(n, kUnreached);
  std::vector<int> parent(n, -1);
  std::vector<int> order(n);
  std::iota(order.begin(), order.end(), 0);
  // The root joins nothing: no distance equals NaN, so it gathers no alternative.
  std::vector<double> joined_at(n, std::numeric_limits<double>::quiet_NaN());
  from_list_.reserve(n - 1);
  to_list_.reserve(n - 1);
  length_list_.reserve(n - 1);
  int c = 0;          // the node joined last
  std::size_t p = 0;  // its position in `order`
  for (std::size_t i = 0; i + 1 < n; ++i) {
    order[p] = order[i];
    order[i] = c;
    const std::size_t f = i + 1;
    double best_here = best[static_cast<std::size_t>(order[f])];
    std::size_t best_pos = f;
    for (std::size_t k = f; k < n; ++k) {
      const auto v = static_cast<std::size_t>(order[k]);
      const double d = matrix_(static_cast<std::size_t>(c), v);
      if (d < best[v]) {
        best[v] = d;
        parent[v] = c;
      }
      if (best[v] < best_here) {  // strict: the first position keeps a tie
        best_here = best[v];
        best_pos = k;
      }
    }
    const int t = order[best_pos];
    const int from = parent[static_cast<std::size_t>(t)];
    int found = 0;
    TListElem* joint = nullptr;
    if (from >= 0) {
      joint = leaf_of_[static_cast<std::size_t>(from)]->AddSon(from, t, best_here, found, store_);
    }
    if (!found) {
      report_error(report_kind::ERROR, "TMinSpaNet::MakeNetwork()", 204);
      return false;
    }
    from_list_.push_back(from);
    to_list_.push_back(t);
    length_list_.push_back(best_here);
    leaf_of_[static_cast<std::size_t>(from)] = joint->left;
    top_of_[static_cast<std::size_t>(t)] = leaf_of_[static_cast<std::size_t>(t)] = joint->right;
    joined_at[static_cast<std::size_t>(t)] = best_here;
    c = t;
    p = best_pos;
  }
  gather_alternatives(joined_at, parent);
  return true;
}

// Every node j at exactly the joining distance from t, but t's parent, is an
// alternative of t, in increasing order of j. The lower triangle is read row by
// row, twice (count, then fill), rather than a column per node.
void TMinSpaNet::gather_alternatives(const std::vector<double>& joined_at,
                                     const std::vector<int>& parent) {
  const auto n = static_cast<std::size_t>(n_);
  auto scan = [&](auto&& take) {
    for (std::size_t a = 1; a < n; ++a) {
      const double* row = matrix_.cells + a * matrix_.cols;
      const double ja = joined_at[a];
      const int pa = parent[a];
      for (std::size_t b = 0; b < a; ++b) {
        const double d = row[b];
        if (d == ja && static_cast<int>(b) != pa) take(a, b);
        if (d == joined_at[b] && static_cast<int>(a) != parent[b]) take(b, a);
      }
    }
  };
  scan([&](std::size_t t, std::size_t) { ++alt_count_[t]; });
  std::size_t total = 0;
  for (std::size_t x = 0; x < n; ++x) {
    alt_begin_[x] = total;
    total += alt_count_[x];
    alt_count_[x] = 0;
  }
  alt_cells_.assign(total, 0);
  scan([&](std::size_t t, std::size_t j) {
    alt_cells_[alt_begin_[t] + alt_count_[t]++] = static_cast<int>(j);
  });
}

// Takes `value` out of the list of `node`, the last cell filling its place.
void TMinSpaNet::remove_from(int node, int value) {
  const auto x = static_cast<std::size_t>(node);
  int* cells = alt_cells_.data() + alt_begin_[x];
  std::size_t& count = alt_count_[x];
  for (std::size_t k = 0; k < count; ++k) {
    if (cells[k] != value) continue;
    cells[k] = cells[count - 1];
    --count;
    return;
  }
}

void TMinSpaNet::remove_tree_links() {
  for (std::size_t i = 0; i < to_list_.size(); ++i) {
    remove_from(from_list_[i], to_list_[i]);
    remove_from(to_list_[i], from_list_[i]);
  }
}

// Node a, in increasing order, leaves the list of every node on its own list.
// Only a link held by both ends changes anything: its higher end loses the
// lower one. The removals from one list thus come in increasing order of the
// removed node, which is how they are replayed here, each found through a
// table of positions instead of a search.
void TMinSpaNet::make_links_one_way() {
  const auto n = static_cast<std::size_t>(n_);
  std::vector<std::size_t> in_begin(n + 1, 0);
  for (std::size_t y = 0; y < n; ++y) {
    for (const int b : alternatives(static_cast<int>(y))) {
      if (static_cast<std::size_t>(b) > y) ++in_begin[static_cast<std::size_t>(b) + 1];
    }
  }
  std::partial_sum(in_begin.begin(), in_begin.end(), in_begin.begin());
  std::vector<int> lower_holders(in_begin[n]);  // for each b, the y < b holding b, increasing
  std::vector<std::size_t> fill(in_begin.begin(), in_begin.end() - 1);
  for (std::size_t y = 0; y < n; ++y) {
    for (const int b : alternatives(static_cast<int>(y))) {
      const auto bb = static_cast<std::size_t>(b);
      if (bb > y) lower_holders[fill[bb]++] = static_cast<int>(y);
    }
  }
  constexpr std::size_t absent = static_cast<std::size_t>(-1);
  std::vector<std::size_t> slot(n, absent);
  for (std::size_t b = 0; b < n; ++b) {
    if (alt_count_[b] == 0 || in_begin[b] == in_begin[b + 1]) continue;
    int* cells = alt_cells_.data() + alt_begin_[b];
    std::size_t& count = alt_count_[b];
    for (std::size_t k = 0; k < count; ++k) slot[static_cast<std::size_t>(cells[k])] = k;
    for (std::size_t h = in_begin[b]; h < in_begin[b + 1]; ++h) {
      const auto y = static_cast<std::size_t>(lower_holders[h]);
      const std::size_t k = slot[y];
      if (k == absent) continue;
      const int last = cells[count - 1];
      cells[k] = last;
      slot[static_cast<std::size_t>(last)] = k;
      slot[y] = absent;
      --count;
    }
    for (std::size_t k = 0; k < count; ++k) slot[static_cast<std::size_t>(cells[k])] = absent;
  }
}

// A link is kept when a connection of the tree on the way between its ends
// has exactly its length, so that the link could replace that connection.
void TMinSpaNet::keep_replacing_links() {
  const auto n = static_cast<std::size_t>(n_);
  crossed_.assign(n, kNothingCrossed);
  target_.assign(n, 0);
  reached_.assign(n, 0);
  walk_.reserve(store_.size());
  for (int a = 0; a < n_; ++a) {
    const auto x = static_cast<std::size_t>(a);
    if (alt_count_[x] == 0) continue;
    longest_on_the_way(a);
    int* cells = alt_cells_.data() + alt_begin_[x];
    std::size_t& count = alt_count_[x];
    std::size_t k = 0;
    while (k < count) {
      const int b = cells[k];
      if (crossed_[static_cast<std::size_t>(b)] == distance(a, b)) {
        ++k;
      } else {
        cells[k] = cells[count - 1];  // the moved link is checked next
        --count;
      }
    }
  }
}

// Walks the tree of connections breadth first from the element of node a
// until every node on a's list is reached, leaving in crossed_[x] the longest
// connection on the way from a to x. Passing between an element and its second
// son crosses the element's connection; passing between an element and its
// first son crosses none, so every element of a node's chain gets one value.
void TMinSpaNet::longest_on_the_way(int a) {
  const auto x = static_cast<std::size_t>(a);
  const int stamp = a + 1;
  std::size_t remaining = alt_count_[x];
  for (std::size_t k = 0; k < remaining; ++k) {
    target_[static_cast<std::size_t>(alt_cells_[alt_begin_[x] + k])] = stamp;
  }
  walk_.clear();
  walk_.push_back({top_of_[x], nullptr, kNothingCrossed});
  for (std::size_t head = 0; head < walk_.size() && remaining > 0; ++head) {
    const WalkStep step = walk_[head];
    const TListElem* e = step.elem;
    const auto id = static_cast<std::size_t>(e->id);
    if (reached_[id] != stamp) {
      reached_[id] = stamp;
      crossed_[id] = step.longest;
      if (target_[id] == stamp) --remaining;
    }
    if (e->left && e->left != step.came_from) walk_.push_back({e->left, e, step.longest});
    if (e->right && e->right != step.came_from) {
      walk_.push_back({e->right, e, larger(step.longest, e->length)});
    }
    const TListElem* up = e->parent;
    if (up && up != step.came_from) {
      const double longest = e == up->right ? larger(step.longest, up->length) : step.longest;
      walk_.push_back({up, e, longest});
    }
  }
}

void TMinSpaNet::print_nexus(std::ostream& os, std::string_view name,
                             std::span<const std::string> labels) const {
  std::string tree_name;
  for (const char ch : name) {
    if (ch != ' ' && ch != '\t') tree_name += ch;
  }
  os << "#NEXUS\n"
     << "begin trees;  [NEXUS Treefile section generated by Morvalin]\n"
     << "tree " << tree_name << "_MST = [&amp;U] ";
  write_tree(os, labels);
  os << "end;\n"
     << "\n";
}

// The recursive form of the tree, unrolled over parent pointers so that a
// long chain cannot exhaust the stack. For an element: "(" if it has sons,
// the first son, its label if a leaf or ", ", the second son, ")", then ";\n"
// at the root, or the branch: 0 under a parent of the same node, else the
// parent's connection length.
void TMinSpaNet::write_tree(std::ostream& os, std::span<const std::string> labels) const {
  enum class Came { down, from_first, from_second };
  const TListElem* e = root_;
  if (!e) return;
  Came came = Came::down;
  while (true) {
    if (came == Came::down && e->has_sons()) {
      os << '(';
      e = e->left;
      continue;
    }
    if (came == Came::from_first) {
      os << ", ";
      e = e->right;
      came = Came::down;
      continue;
    }
    if (came == Came::down) {
      const auto id = static_cast<std::size_t>(e->id);
      if (id < labels.size()) os << labels[id];
    } else {
      os << ')';
    }
    const TListElem* up = e->parent;
    if (!up) {
      os << ";\n";
      return;
    }
    if (e->id == up->id) {
      os << ":0";
    } else {
      os << ':' << fmt::general(up->length);
    }
    came = e == up->left ? Came::from_first : Came::from_second;
    e = up;
  }
}
