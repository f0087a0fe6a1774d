#include "model/allele_db.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dictionary_test_support.h"

using dictionary_test::ReplayGenerator;
using dictionary_test::ReportCapture;

namespace {

std::vector<std::string> names_of(const TLocus& locus) {
  std::vector<std::string> names;
  for (const auto& a : locus.alleles()) names.push_back(a->allele_name.str());
  return names;
}

struct Addition {
  int locus;
  const char* name;
  double count;
  int expected_position;
};

TEST(TAlleleDB, AllelesKeepTheOrderOfFirstAppearanceAndAddUpCounts) {
  const std::vector<Addition> additions = {
      {0, "A", 1, 0}, {0, "C", 2, 1}, {1, "?", 1, 0}, {0, "A", 3, 0},
      {1, "T", 1, 1}, {0, "?", 1, 2}, {1, "?", 4, 0}, {0, "c", 1, 3},
  };
  TAlleleDB db;
  for (const Addition& a : additions) {
    int locus = a.locus;
    EXPECT_EQ(db.add_allele(locus, a.name, a.count), a.expected_position) << a.name;
  }
  ASSERT_EQ(db.nb_loci(), 2);
  EXPECT_EQ(names_of(*db.locus(0)), (std::vector<std::string>{"A", "C", "?", "c"}));
  EXPECT_EQ(names_of(*db.locus(1)), (std::vector<std::string>{"?", "T"}));
  EXPECT_EQ(db.find_allele(0, "A")->count, 4.0);
  EXPECT_EQ(db.find_allele(1, "?")->count, 5.0);
  const TAllele* c = db.find_allele(0, "c");
  EXPECT_EQ(c->locus_index, 0);
  EXPECT_EQ(c->pos_in_locus, 3);
  EXPECT_EQ(c->selected, 0);
  EXPECT_EQ(db.locus(0)->locus_name, "Locus 0");
  EXPECT_EQ(db.locus(1)->locus_name, "Locus 1");
}

TEST(TAlleleDB, ALocusFarPastTheEndAppendsOneLocusOnly) {
  TAlleleDB db;
  int first = 0;
  db.add_allele(first, "A", 1);
  int far = 3;
  EXPECT_EQ(db.add_allele(far, "G", 1), 0);
  ASSERT_EQ(db.nb_loci(), 2);
  EXPECT_EQ(db.locus(1)->locus_name, "Locus 1");
  EXPECT_EQ(db.find_allele(1, "G")->locus_index, 1);
  EXPECT_EQ(far, 3);
}

TEST(TAlleleDB, AbsentItemsAreNotFound) {
  TAlleleDB db;
  int locus = 0;
  db.add_allele(locus, "120", 1);
  EXPECT_EQ(db.find_allele(0, "12"), nullptr);
  EXPECT_EQ(db.find_allele(1, "120"), nullptr);
  EXPECT_EQ(db.find_allele(-1, "120"), nullptr);
  EXPECT_EQ(db.locus(5), nullptr);
  int negative = -1;
  EXPECT_EQ(db.add_allele(negative, "A", 1), -1);
  EXPECT_EQ(db.nb_loci(), 1);
}

// Small loci are searched linearly, large ones through the index: both must
// give the same answers.
TEST(TLocus, FindIndexByValueAndByPointerForSmallAndLargeLoci) {
  for (int size : {3, 40}) {
    TAlleleDB db;
    for (int i = 0; i < size; ++i) {
      int locus = 0;
      db.add_allele(locus, my_string(std::to_string(100 + i)), 1);
    }
    const TLocus& locus = *db.locus(0);
    const int last = size - 1;
    TAllele probe(my_string(std::to_string(100 + last)), 0);
    EXPECT_EQ(locus.find_index(probe), last) << size;
    EXPECT_EQ(locus.find_index(locus.allele(last)), last) << size;
    TAllele absent(my_string("99"), 0);
    EXPECT_EQ(locus.find_index(absent), 2147483647) << size;
    EXPECT_EQ(locus.find_index(&absent), -1) << size;
    EXPECT_EQ(locus.find_index(static_cast<const TAllele*>(nullptr)), -1) << size;
  }
}

TEST(TAlleleDB, AllelePointersStayValidWhileTheDictionaryGrows) {
  TAlleleDB db;
  int locus = 0;
  db.add_allele(locus, "first", 1);
  const TAllele* first = db.find_allele(0, "first");
  for (int i = 0; i < 500; ++i) {
    int l = i % 7;
    db.add_allele(l, my_string("a" + std::to_string(i)), 1);
  }
  EXPECT_EQ(db.find_allele(0, "first"), first);
  EXPECT_EQ(db.find_allele(3, "a3")->pos_in_locus, 0);
  EXPECT_EQ(db.find_allele(6, "a496")->pos_in_locus, 70);
}

TEST(TAlleleDB, SelectedOverloadFillsThePlaceAndSelects) {
  TAlleleDB db;
  int locus = 0;
  db.add_allele(locus, "A", 1);
  double count = 2.0;
  EXPECT_EQ(db.add_allele_selected(locus, "A", count), 0);
  const TAllele* a = db.find_allele(0, "A");
  EXPECT_EQ(a->selected, 1);
  EXPECT_EQ(a->count, 3.0);
  EXPECT_EQ(a->pos_in_locus, 0);
  EXPECT_EQ(a->locus_index, 0);
}

TEST(TAlleleDB, RenamedAllelesAreFoundAfterReindex) {
  TAlleleDB db;
  for (int i = 0; i < 30; ++i) {
    int locus = 0;
    db.add_allele(locus, my_string("x" + std::to_string(i)), 1);
  }
  db.find_allele(0, "x7")->allele_name = "X7";
  db.reindex();
  EXPECT_EQ(db.find_allele(0, "X7")->pos_in_locus, 7);
  EXPECT_EQ(db.find_allele(0, "x7"), nullptr);
}

TEST(TAlleleDB, ClearEmptiesEverything) {
  TAlleleDB db;
  int locus = 1;
  db.add_allele(locus, "A", 1);
  db.clear();
  EXPECT_EQ(db.nb_loci(), 0);
  EXPECT_EQ(db.find_allele(0, "A"), nullptr);
}

TEST(TAlleleDB, RandomFrequenciesDrawOncePerAlleleLocusByLocus) {
  TAlleleDB db;
  for (const char* name : {"A", "C", "G"}) {
    int locus = 0;
    db.add_allele(locus, name, 1);
  }
  for (const char* name : {"1", "2"}) {
    int locus = 1;
    db.add_allele(locus, name, 1);
  }
  ReplayGenerator g({0.25, 0.5, 0.25, 0.125, 0.375});
  int idum = 1;
  db.set_random_freqs(g, idum);
  EXPECT_EQ(g.draws(), 5u);
  EXPECT_EQ(db.find_allele(0, "A")->work_freq, 0.25);
  EXPECT_EQ(db.find_allele(0, "C")->work_freq, 0.5);
  EXPECT_EQ(db.find_allele(0, "G")->work_freq, 0.25);
  EXPECT_EQ(db.find_allele(1, "1")->work_freq, 0.25);
  EXPECT_EQ(db.find_allele(1, "2")->work_freq, 0.75);
}

TEST(TAlleleDB, PopulationVectorsAreCreatedZeroedAndFreed) {
  TAlleleDB db;
  int locus = 0;
  db.add_allele(locus, "A", 1);
  locus = 1;
  db.add_allele(locus, "B", 1);
  int n = 3;
  db.create_pop_freq_vector(n);
  int n2 = 2;
  db.create_pop_freq_vector2(n2);
  EXPECT_EQ(db.pop_freq_length(), 3);
  EXPECT_EQ(db.find_allele(1, "B")->pop_freq, (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(db.find_allele(1, "B")->pop_freq2, (std::vector<double>{0, 0}));
  db.delete_pop_freq_vector();
  EXPECT_TRUE(db.find_allele(0, "A")->pop_freq.empty());
  EXPECT_EQ(db.find_allele(0, "A")->pop_freq2.size(), 2u);
  EXPECT_EQ(db.pop_freq_length(), 0);
}

TEST(TAlleleDB, UpdateAlleleFreqsSumsAbsoluteChanges) {
  TAlleleDB db;
  int locus = 0;
  db.add_allele(locus, "A", 1);
  db.add_allele(locus, "B", 1);
  int n = 2;
  db.create_pop_freq_vector(n);
  TAllele* a = db.find_allele(0, "A");
  TAllele* b = db.find_allele(0, "B");
  a->pop_freq = {6.0, 0.25};
  a->work_sum = 2.0;
  b->pop_freq = {2.0, 0.5};

  EXPECT_EQ(db.update_allele_freqs(0.0), -1.0);
  EXPECT_EQ(a->pop_freq[1], 0.25);
  EXPECT_EQ(a->work_sum, 2.0);

  // A: (6 - 2) / 8 = 0.5, change 0.25; B: 2 / 8 = 0.25, change 0.25.
  EXPECT_EQ(db.update_allele_freqs(8.0), 0.5);
  EXPECT_EQ(a->work_freq, 0.5);
  EXPECT_EQ(a->pop_freq[1], 0.5);
  EXPECT_EQ(a->work_sum, 0.0);
  EXPECT_EQ(b->pop_freq[1], 0.25);
}

TEST(TAllele, MissingDataTestComparesTheWholeText) {
  EXPECT_TRUE(TAllele("?", 0).is('?'));
  EXPECT_FALSE(TAllele("??", 0).is('?'));
  EXPECT_FALSE(TAllele("A", 0).is('?'));
}

}  // namespace
