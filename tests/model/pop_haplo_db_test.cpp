#include "model/pop_haplo_db.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "dictionary_test_support.h"

using dictionary_test::Alleles;
using dictionary_test::ReplayGenerator;

namespace {

TEST(TPopHaploDB, AddMergesEqualAllelesAndKeepsOrder) {
  Alleles a;
  TPopHaploDB db;
  TPopHaplotype* ac = db.add(a.haplotype({"A", "C"}), 2.0);
  TPopHaplotype* bc = db.add(a.haplotype({"B", "C"}), 1.0);
  EXPECT_EQ(db.add(a.haplotype({"A", "C"}), 3.0), ac);
  EXPECT_EQ(db.size(), 2);
  EXPECT_EQ(ac->freq, 5.0);
  EXPECT_EQ(db[1], bc);
  EXPECT_EQ(db.find(a.haplotype({"B", "C"})), bc);
  EXPECT_EQ(db.find(a.haplotype({"B", "B"})), nullptr);
  EXPECT_EQ(db.find(a.haplotype({"B"})), nullptr);
  EXPECT_EQ(db.find_index(a.haplotype({"B", "C"})), 1);
  EXPECT_EQ(db.find_index(a.haplotype({"C", "C"})), 2147483647);
  TPopHaplotype outside;
  EXPECT_EQ(db.find_index(&outside), -1);
  EXPECT_EQ(db.find_index(static_cast<const TPopHaplotype*>(bc)), 1);
}

TEST(TPopHaploDB, EntriesStayAtTheirAddressAsTheTableGrows) {
  Alleles a;
  TPopHaploDB db;
  TPopHaplotype* first = db.add(a.haplotype({"x", "y"}), 1.0);
  for (int i = 0; i < 1000; ++i) {
    TPopHaplotype h = a.haplotype({"x"});
    h.alleles.push_back(a.db().enter_allele(1, std::to_string(i), 0));
    db.add(h, 0.0);
  }
  EXPECT_EQ(db.size(), 1001);
  EXPECT_EQ(db.find(a.haplotype({"x", "y"})), first);
  EXPECT_EQ(db[0], first);
}

TEST(TPopHaploDB, ANewEntryCopiesNameFrequenciesAllelesOnly) {
  Alleles a;
  TPopHaplotype h = a.haplotype({"A"});
  h.hapl_name = "mine";
  h.sd_freq = 0.5;
  h.fixed = 1;
  h.index = 7;
  TPopHaploDB db;
  const TPopHaplotype* entry = db.add(h, 2.0);
  EXPECT_EQ(entry->hapl_name, "mine");
  EXPECT_EQ(entry->freq, 2.0);
  EXPECT_EQ(entry->sd_freq, 0.5);
  EXPECT_EQ(entry->fixed, 0);
  EXPECT_EQ(entry->index, -1);
}

TEST(TPopHaplotype, RestrictedAssignmentKeepsSelectedLociAndRenumbersThem) {
  Alleles a;
  const TPopHaplotype full = a.haplotype({"A", "B", "C", "D"});
  TPopHaplotype part;
  const std::vector<int> mask = {0, 1, 0, 1};
  part.assign(full, mask);
  ASSERT_EQ(part.nb_loci(), 2);
  EXPECT_EQ(part.alleles[0], full.alleles[1]);
  EXPECT_EQ(part.alleles[1], full.alleles[3]);
  EXPECT_EQ(full.alleles[1]->locus_id, 0);
  EXPECT_EQ(full.alleles[3]->locus_id, 1);
  EXPECT_EQ(full.alleles[0]->locus_id, 0);  // untouched: its locus index
  EXPECT_EQ(full.alleles[2]->locus_id, 2);
}

TEST(TPopHaplotype, EqualityNeedsTheSameAllelesAndLength) {
  Alleles a;
  EXPECT_TRUE(a.haplotype({"A", "B"}) == a.haplotype({"A", "B"}));
  EXPECT_FALSE(a.haplotype({"A", "B"}) == a.haplotype({"A", "C"}));
  EXPECT_FALSE(a.haplotype({"A", "B"}) == a.haplotype({"A"}));
}

TEST(TPopHaplotype, DifferencesCompareTexts) {
  Alleles a;
  TAlleleDB other;  // alleles of the same texts but other objects
  TPopHaplotype foreign;
  for (const char* n : {"A", "B", "C"})
    foreign.alleles.push_back(other.enter_allele(foreign.nb_loci(), n, 0));
  EXPECT_EQ(a.haplotype({"A", "B", "C"}).nb_differences(foreign), 0);
  EXPECT_EQ(a.haplotype({"A", "X", "Y"}).nb_differences(foreign), 2);
  EXPECT_EQ(a.haplotype({"A"}).nb_differences(foreign), 2);
}

struct OrderCase {
  std::vector<std::string> left;
  std::vector<std::string> right;
  bool left_first;
};

TEST(TPopHaplotype, OrderComparesAlleleTextsLocusByLocus) {
  const std::vector<OrderCase> cases = {
      {{"A", "B"}, {"A", "C"}, true},  {{"A", "C"}, {"A", "B"}, false},
      {{"B", "A"}, {"A", "Z"}, false}, {{"A"}, {"A", "A"}, true},
      {{"A", "B"}, {"A", "B"}, false}, {{"10"}, {"9"}, true},
  };
  for (const OrderCase& c : cases) {
    Alleles a;
    EXPECT_EQ(a.haplotype(c.left) < a.haplotype(c.right), c.left_first)
        << c.left[0] << " vs " << c.right[0];
  }
}

TEST(TPopHaploDB, RemoveBelowKeepsTheOthersInOrder) {
  Alleles a;
  TPopHaploDB db;
  db.add(a.haplotype({"A"}), 0.5);
  db.add(a.haplotype({"B"}), 0.01);
  db.add(a.haplotype({"C"}), 0.2);
  db.add(a.haplotype({"D"}), 0.1);
  db.remove_below(0.1);
  ASSERT_EQ(db.size(), 3);
  EXPECT_EQ(db[1]->alleles[0]->allele_name, "C");
  EXPECT_EQ(db.find_index(a.haplotype({"D"})), 2);
  EXPECT_EQ(db.find(a.haplotype({"B"})), nullptr);
}

TEST(TPopHaploDB, RandomFrequenciesSkipFixedHaplotypes) {
  Alleles a;
  TPopHaploDB db;
  db.add(a.haplotype({"A"}), 0);
  db.add(a.haplotype({"B"}), 0)->fixed = 1;
  db.add(a.haplotype({"C"}), 0);
  ReplayGenerator g({0.5, 0.25});
  int idum = 1;
  // Raw values 4 * 0.5 + 1 = 3, 1 (fixed), 4 * 0.25 + 1 = 2; sum 6.
  EXPECT_EQ(db.set_random_freqs(4, g, idum), 1.0 / 6.0);
  EXPECT_EQ(g.draws(), 2u);
  EXPECT_EQ(db[0]->freq, 0.5);
  EXPECT_EQ(db[1]->freq, 1.0 / 6.0);
  EXPECT_EQ(db[2]->freq, 2.0 / 6.0);
  EXPECT_EQ(db[2]->old_freq, 2.0 / 6.0);
}

TEST(TPopHaploDB, DrawTakesTheFirstRunningSumAboveU) {
  Alleles a;
  TPopHaploDB db;
  db.add(a.haplotype({"A"}), 0.25);
  db.add(a.haplotype({"B"}), 0.5);
  db.add(a.haplotype({"C"}), 0.25);
  const std::vector<std::pair<double, int>> cases = {{0.0, 0},  {0.2499, 0}, {0.25, 1}, {0.74, 1},
                                                     {0.75, 2}, {0.99, 2},   {1.0, -1}};
  for (const auto& [u, expected] : cases) {
    EXPECT_EQ(db.draw(u), expected < 0 ? nullptr : db[expected]) << u;
  }
}

TEST(TPopHaploDB, ReferenceHaplotypeSkipsALeadingMissingCode) {
  Alleles a;
  a.at(0, "A");
  a.at(1, "?");
  a.at(1, "T");
  a.at(1, "C");
  a.at(2, "G");
  a.at(2, "C");
  TPopHaploDB db;
  char missing = '?';
  db.build_reference_haplotype(a.db(), missing);
  ASSERT_NE(db.reference, nullptr);
  EXPECT_EQ(db.reference->hapl_name, "UNKNOWN");
  EXPECT_EQ(db.reference->index, -1);
  EXPECT_EQ(db.reference->freq, 0.0);
  std::ostringstream os;
  os << *db.reference;
  EXPECT_EQ(os.str(), "A T G ");
  EXPECT_EQ(db.het_loci, (std::vector<int>{0, 1, 1}));
}

TEST(TPopHaploDB, NoReferenceWhenEveryLocusIsMonomorphic) {
  Alleles a;
  a.at(0, "A");
  a.at(1, "?");
  TPopHaploDB db;
  char missing = '?';
  db.build_reference_haplotype(a.db(), missing);
  EXPECT_EQ(db.reference, nullptr);
  EXPECT_TRUE(db.het_loci.empty());
}

TEST(TPopHaploDB, ListingSortsAndNumbersAboveTheThreshold) {
  Alleles a;
  TPopHaploDB db;
  db.add(a.haplotype({"C", "A"}), 0.5);
  db.add(a.haplotype({"A", "B"}), 0.25);
  db.add(a.haplotype({"B", "A"}), 0.125);
  db.add(a.haplotype({"A", "A"}), 0.125);
  db.sort_by_alleles();
  std::vector<std::string> order;
  for (const auto& h : db.haplotypes()) {
    std::ostringstream os;
    h->separator = 0;
    os << *h;
    order.push_back(os.str());
  }
  EXPECT_EQ(order, (std::vector<std::string>{"AA", "AB", "BA", "CA"}));
  const HaploListing listing = db.assign_print_indices(0.125);
  EXPECT_EQ(listing.nb_all, 4);
  EXPECT_EQ(listing.nb_listed, 2);
  EXPECT_EQ(listing.sum_all, 1.0);
  EXPECT_EQ(listing.sum_listed, 0.75);
  EXPECT_EQ(db[0]->index, -1);
  EXPECT_EQ(db[1]->index, 1);
  EXPECT_EQ(db[2]->index, -2);
  EXPECT_EQ(db[3]->index, 2);
  EXPECT_EQ(db.find_index(a.haplotype({"C", "A"})), 3);
}

TEST(TPopHaplotype, TheBiLocusConstructorNamesAfterTheIndex) {
  Alleles a;
  TPopHaplotype h(a.at(0, "A"), a.at(1, "B"), 12);
  EXPECT_EQ(h.hapl_name, "Hapl12");
  EXPECT_EQ(h.nb_loci(), 2);
  EXPECT_EQ(h.separator, ' ');
}

}  // namespace
