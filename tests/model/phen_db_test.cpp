#include "model/phen_db.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "dictionary_test_support.h"

using dictionary_test::Alleles;
using dictionary_test::ReplayGenerator;
using dictionary_test::ReportCapture;
using dictionary_test::text_of;

namespace {

std::unique_ptr<TPhenotype> phenotype(Alleles& a, const std::string& h1, const std::string& h2,
                                      double freq = 1.0) {
  const TPopHaplotype first = a.chars(h1);
  const TPopHaplotype second = a.chars(h2);
  auto p = std::make_unique<TPhenotype>(&first, &second, 0);
  p->freq = freq;
  return p;
}

// The genotypes as "h1/h2" texts, in list order.
std::vector<std::string> pairs_of(const TPhenotype& p) {
  std::vector<std::string> out;
  for (const TGenotype& g : p.genotypes)
    out.push_back(text_of(*g.hapl_a) + "/" + text_of(*g.hapl_b));
  return out;
}

struct GenotypeCase {
  const char* hapl1;
  const char* hapl2;
  int nb_het;
  int nb_genotypes;
  int db_size;
  int homozygous;
};

TEST(TPhenotype, GenotypeCountsForZeroOneAndSeveralHeterozygousLoci) {
  const std::vector<GenotypeCase> cases = {
      {"AAA", "AAA", 0, 1, 1, 1},       {"ABA", "AAA", 1, 1, 2, 0}, {"AB", "BA", 2, 2, 4, 0},
      {"ABC", "CAB", 3, 4, 8, 0},       {"A?C", "AGC", 1, 1, 2, 0}, {"??", "??", 0, 1, 1, 1},
      {"ABCDE", "BCDEA", 5, 16, 32, 0},
  };
  for (const GenotypeCase& c : cases) {
    Alleles a;
    TPopHaploDB db;
    auto p = phenotype(a, c.hapl1, c.hapl2);
    int recessive = 0;
    ASSERT_EQ(p->build_genotypes(db, a.db(), recessive, 0), 1) << c.hapl1;
    EXPECT_EQ(p->nb_het, c.nb_het) << c.hapl1;
    EXPECT_EQ(p->nb_genotypes, c.nb_genotypes) << c.hapl1;
    EXPECT_EQ(static_cast<int>(p->genotypes.size()), c.nb_genotypes) << c.hapl1;
    EXPECT_EQ(db.size(), c.db_size) << c.hapl1;
    EXPECT_EQ(p->homozygous, c.homozygous) << c.hapl1;
    for (const auto& h : db.haplotypes()) EXPECT_EQ(h->freq, 0.0);
  }
}

TEST(TPhenotype, PairsFollowTheBitCounterAndNeverExchangeTheFirstHeterozygousLocus) {
  Alleles a;
  TPopHaploDB db;
  auto p = phenotype(a, "xACE", "xBDF");
  int recessive = 0;
  p->build_genotypes(db, a.db(), recessive, 0);
  EXPECT_EQ(pairs_of(*p),
            (std::vector<std::string>{"xACE/xBDF", "xADE/xBCF", "xACF/xBDE", "xADF/xBCE"}));
  EXPECT_EQ(text_of(*db[2]), "xADE");
}

TEST(TPhenotype, AHomozygoteIsOnePairOfTheSameEntry) {
  Alleles a;
  TPopHaploDB db;
  auto p = phenotype(a, "AB", "AB");
  int recessive = 0;
  p->build_genotypes(db, a.db(), recessive, 0);
  ASSERT_EQ(p->genotypes.size(), 1u);
  EXPECT_EQ(p->genotypes[0].hapl_a, p->genotypes[0].hapl_b);
}

TEST(TPhenotype, BuildingAgainOnTheSameTableAddsNoPair) {
  Alleles a;
  TPopHaploDB db;
  auto p = phenotype(a, "ABC", "CAB");
  int recessive = 0;
  p->build_genotypes(db, a.db(), recessive, 0);
  p->build_genotypes(db, a.db(), recessive, 0);
  EXPECT_EQ(p->genotypes.size(), 4u);
  EXPECT_EQ(p->nb_genotypes, 4);
  EXPECT_EQ(db.size(), 8);
}

TEST(TPhenotype, MoreThan32HeterozygousLociAreRefused) {
  EXPECT_EQ(TPhenotype::kMaxHetLoci, 32);
  ReportCapture capture;
  Alleles a;
  TPopHaploDB db;
  auto p = phenotype(a, std::string(33, 'A'), std::string(33, 'B'));
  int recessive = 0;
  EXPECT_EQ(p->build_genotypes(db, a.db(), recessive, 0), 0);
  EXPECT_TRUE(p->genotypes.empty());
  EXPECT_EQ(db.size(), 0);
  EXPECT_EQ(p->nb_het, 33);
  ASSERT_EQ(capture.all().size(), 1u);
  EXPECT_EQ(capture.all()[0],
            (dictionary_test::Report{report_kind::ERROR, "TPhenotype::build_genotypes()", 114}));
}

// The recessive allele is the first of its locus: enter "0" and "1" first.
struct RecessiveCase {
  const char* hapl1;
  const char* hapl2;
  std::vector<std::string> pairs;
};

TEST(TPhenotype, RecessiveDataTryEveryLocusBit) {
  const std::vector<RecessiveCase> cases = {
      {"A", "A", {"A/A", "A/0"}},
      {"0", "0", {"0/0"}},
      {"AB", "AC", {"AB/AC", "AB/0C", "AC/0B"}},
  };
  for (const RecessiveCase& c : cases) {
    Alleles a;
    a.at(0, "0");
    a.at(1, "1");
    TPopHaploDB db;
    auto p = phenotype(a, c.hapl1, c.hapl2);
    int recessive = 1;
    ASSERT_EQ(p->build_genotypes(db, a.db(), recessive, 0), 1);
    EXPECT_EQ(pairs_of(*p), c.pairs) << c.hapl1;
    EXPECT_EQ(p->nb_genotypes, static_cast<int>(c.pairs.size())) << c.hapl1;
    EXPECT_EQ(p->homozygous, 0) << c.hapl1;
  }
}

TEST(TPhenotype, CompatibleGenotypesNeedBothPartsInThePreviousTable) {
  Alleles a;
  TPopHaploDB previous;
  previous.add(a.chars("AC"), 0.5);
  previous.add(a.chars("BD"), 0.5);
  previous.add(a.chars("AD"), 0.0);
  previous.add(a.chars("BC"), 0.5);
  TPopHaploDB db;
  auto p = phenotype(a, "ACx", "BDy");
  const std::vector<int> mask = {1, 1, 0};
  int recessive = 0;
  ASSERT_EQ(p->build_compatible_genotypes(db, a.db(), recessive, 0, previous, mask), 1);
  EXPECT_EQ(pairs_of(*p), (std::vector<std::string>{"ACx/BDy", "ACy/BDx"}));
  EXPECT_EQ(p->nb_genotypes, 2);
  EXPECT_EQ(db.size(), 4);
}

TEST(TPhenotype, EqualityIgnoresWhichCopyCarriesWhichAllele) {
  Alleles a;
  auto p = phenotype(a, "AC", "BD");
  EXPECT_TRUE(*p == *phenotype(a, "BD", "AC"));
  EXPECT_TRUE(*p == *phenotype(a, "BC", "AD"));
  EXPECT_FALSE(*p == *phenotype(a, "AC", "AD"));
  EXPECT_FALSE(*p == *phenotype(a, "ACx", "BDx"));
  TPhenotype bare;
  bare.freq = 3.0;
  TPhenotype other;
  other.freq = 3.0;
  EXPECT_TRUE(bare == other);
  other.freq = 2.0;
  EXPECT_FALSE(bare == other);
}

TEST(TPhenDB, RedundantPhenotypesMergeIntoTheFirst) {
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "AC", "BD", 1.0));
  table.add(phenotype(a, "AC", "AD", 8.0));
  table.add(phenotype(a, "BD", "AC", 2.0));
  table.add(phenotype(a, "BC", "AD", 4.0));
  table.set_rel_freqs();
  table.check_pheno_redundancy();
  ASSERT_EQ(table.size(), 2);
  EXPECT_EQ(table[0]->freq, 7.0);
  EXPECT_EQ(table[0]->rel_freq, 1.0 / 15.0 + 2.0 / 15.0 + 4.0 / 15.0);
  EXPECT_EQ(table[1]->freq, 8.0);
  EXPECT_EQ(table[0]->merged, 0);
}

TEST(TPhenDB, PhenotypesWithoutCopiesMergeByFrequency) {
  TPhenDB table;
  for (double f : {2.0, 3.0, 2.0}) {
    auto p = std::make_unique<TPhenotype>();
    p->freq = f;
    table.add(std::move(p));
  }
  table.check_pheno_redundancy();
  ASSERT_EQ(table.size(), 2);
  EXPECT_EQ(table[0]->freq, 4.0);
  EXPECT_EQ(table[1]->freq, 3.0);
}

TEST(TPhenDB, LikelihoodsAndCounts) {
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "A", "A", 1.4))->prob = 0.5;
  table.add(phenotype(a, "A", "B", 1.5))->prob = 0.25;
  table.add(phenotype(a, "B", "B", 2.6))->prob = 1.0;
  EXPECT_EQ(table.total_gene_copies(), 1 + 2 + 3);
  const double expected = 1.4 * std::log(0.5) + 1.5 * std::log(0.25) + 2.6 * std::log(1.0);
  EXPECT_EQ(table.log_likelihood(), expected);
  EXPECT_EQ(table.log_lik, expected);
  table[1]->prob = 0.0;
  EXPECT_EQ(table.log_likelihood(), -3.4028234663852886e+38);
}

TEST(TPhenotype, LinkageEquilibriumProbabilityDoublesHeterozygousLoci) {
  ReportCapture capture;
  Alleles a;
  auto p = phenotype(a, "AC", "BC");
  a.at(0, "A")->work_freq = 0.5;
  a.at(0, "B")->work_freq = 0.25;
  a.at(1, "C")->work_freq = 0.75;
  for (const char* n : {"A", "B"}) a.at(0, n)->selected = 1;
  a.at(1, "C")->selected = 1;
  EXPECT_EQ(p->link_equil_pheno_prob(), (2.0 * 0.5 * 0.25) * (0.75 * 0.75));
  EXPECT_TRUE(capture.all().empty());
  a.at(0, "B")->selected = 0;
  p->link_equil_pheno_prob();
  EXPECT_EQ(capture.all(),
            (std::vector<dictionary_test::Report>{
                {report_kind::WARNING, "TPhenotype::link_equil_pheno_prob()", 115}}));
}

TEST(TPhenDB, ExplodeBaseMakesOneEntryPerIndividual) {
  Alleles a;
  TPhenDB ones;
  ones.add(phenotype(a, "A", "B", 1.0));
  ones.add(phenotype(a, "B", "B", 1.0));
  EXPECT_EQ(ones.explode_base(), 1);
  EXPECT_EQ(ones.size(), 2);

  TPhenDB table;
  for (auto [h, f] :
       std::vector<std::pair<const char*, double>>{{"A", 2.0}, {"B", 1.0}, {"C", 3.0}}) {
    table.add(phenotype(a, h, h, f))->rel_freq = f / 6.0;
  }
  EXPECT_EQ(table.explode_base(), 1);
  std::vector<std::string> order;
  for (const auto& p : table.phenotypes()) {
    order.push_back(text_of(*p->hapl1));
    EXPECT_EQ(p->freq, 1.0);
    EXPECT_EQ(p->rel_freq, 1.0 / 6.0);
  }
  EXPECT_EQ(order, (std::vector<std::string>{"A", "B", "C", "A", "C", "C"}));
}

TEST(TPhenDB, ExplodeBaseReportsAnEntryOfCountZero) {
  ReportCapture capture;
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "A", "B", 0.0));
  EXPECT_EQ(table.explode_base(), 0);
  EXPECT_EQ(capture.count(120), 1);
}

TEST(TPhenDB, RandomListDrawsTwoUniformsPerIndividual) {
  Alleles a;
  TPopHaploDB db;
  db.add(a.chars("A"), 0.25);
  db.add(a.chars("B"), 0.75);
  ReplayGenerator g({0.1, 0.9, 0.3, 0.2});
  int idum = 1;
  TPhenDB table;
  table.create_random_list(2, db, g, idum);
  ASSERT_EQ(table.size(), 2);
  EXPECT_EQ(text_of(*table[0]->hapl1) + text_of(*table[0]->hapl2), "AB");
  EXPECT_EQ(text_of(*table[1]->hapl1) + text_of(*table[1]->hapl2), "BA");
  EXPECT_EQ(table[1]->pheno_name, "1");
  EXPECT_EQ(table[1]->freq, 1.0);
}

TEST(TPhenDB, RandomListRedrawsAfterAFailedDrawAndGivesUpAtTheHundredth) {
  ReportCapture capture;
  Alleles a;
  TPopHaploDB db;
  db.add(a.chars("A"), 0.25);
  db.add(a.chars("B"), 0.25);
  ReplayGenerator g({0.9, 0.1, 0.1, 0.3});
  int idum = 1;
  TPhenDB table;
  table.create_random_list(1, db, g, idum);
  ASSERT_EQ(table.size(), 1);
  EXPECT_EQ(table[0]->pheno_name, "0");
  EXPECT_EQ(capture.all(), (std::vector<dictionary_test::Report>{
                               {report_kind::ERROR, "TPhenDB::create_random_list()", 116}}));

  ReplayGenerator always_out(std::vector<double>(200, 0.9));
  table.create_random_list(3, db, always_out, idum);
  EXPECT_EQ(table.size(), 0);
  EXPECT_EQ(always_out.draws(), 200u);
  EXPECT_EQ(capture.count(116), 101);
}

TEST(TPhenDB, PermutationShufflesTheSecondLocusAmongAllCopies) {
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "Aa", "Bb"));
  table.add(phenotype(a, "Cc", "Dd"));
  // n = 4: j = trunc(u (4 - i) + i): 2, 1, 3, 3.
  ReplayGenerator g({0.5, 0.0, 0.75, 0.3});
  int count = 1;
  int seed = 1;
  ASSERT_EQ(table.permute_alleles(count, seed, g), 1);
  EXPECT_EQ(text_of(*table[0]->hapl1) + text_of(*table[0]->hapl2), "AcBb");
  EXPECT_EQ(text_of(*table[1]->hapl1) + text_of(*table[1]->hapl2), "CdDa");
  EXPECT_EQ(g.draws(), 4u);
}

TEST(TPhenDB, PermutationOfBothLociStartsWithTheFirst) {
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "Aa", "Bb"));
  ReplayGenerator g({0.5, 0.0, 0.0, 0.0});
  int count = 2;
  int seed = 1;
  ASSERT_EQ(table.permute_alleles(count, seed, g), 1);
  EXPECT_EQ(text_of(*table[0]->hapl1) + text_of(*table[0]->hapl2), "BaAb");
}

TEST(TPhenDB, PermutationRefusesAnInvalidLocusCount) {
  ReportCapture capture;
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "Aa", "Bb"));
  ReplayGenerator g({});
  int count = 3;
  int seed = 1;
  EXPECT_EQ(table.permute_alleles(count, seed, g), 0);
  EXPECT_EQ(capture.count(118), 1);
  EXPECT_EQ(g.draws(), 0u);
}

// Locus 1 alleles "0" (recessive) and "A", locus 2 "1" (recessive) and "B".
class Resample : public ::testing::Test {
 protected:
  void SetUp() override {
    db1.add(a.haplotype({"0"}), 0.5);
    db1.add(a.haplotype({"A"}), 0.5);
    TPopHaplotype one;
    one.alleles.push_back(a.at(1, "1"));
    db2.add(one, 0.25);
    TPopHaplotype b;
    b.alleles.push_back(a.at(1, "B"));
    db2.add(b, 0.75);
  }
  Alleles a;
  TPopHaploDB db1;
  TPopHaploDB db2;
};

TEST_F(Resample, DrawsFourUniformsAndHidesRecessiveAlleles) {
  // Locus 1: "0" then "A"; locus 2: "B" then "1".
  ReplayGenerator g({0.4, 0.5, 0.6, 0.2});
  int seed = 1;
  TPhenDB table;
  ASSERT_EQ(table.resample(1, db1, db2, seed, a.db(), g), 1);
  ASSERT_EQ(table.size(), 1);
  EXPECT_EQ(text_of(*table[0]->hapl1), "AB");
  EXPECT_EQ(text_of(*table[0]->hapl2), "AB");
  EXPECT_EQ(table[0]->rel_freq, 1.0);
  EXPECT_EQ(g.draws(), 4u);
}

TEST_F(Resample, FrequencySumsMustBeOneWithinAThousandth) {
  ReportCapture capture;
  db1[1]->freq = 0.4995;
  ReplayGenerator g({0.1, 0.1, 0.1, 0.1, 0.3, 0.3, 0.3, 0.3});
  int seed = 1;
  TPhenDB table;
  EXPECT_EQ(table.resample(2, db1, db2, seed, a.db(), g), 1);
  EXPECT_EQ(table.size(), 2);
  EXPECT_EQ(table[1]->rel_freq, 0.5);
  EXPECT_EQ(text_of(*table[0]->hapl1) + text_of(*table[0]->hapl2), "0101");

  db1[1]->freq = 0.49;
  EXPECT_EQ(table.resample(2, db1, db2, seed, a.db(), g), 0);
  EXPECT_EQ(table.size(), 0);
  EXPECT_EQ(capture.log_text(), "     TPhenDB::resample:  summ of freqs is not 1\n");
}

TEST(TPhenDB, DegreesOfFreedomCountDistinctAllelesOfBothLoci) {
  Alleles a;
  TPhenDB table;
  table.add(phenotype(a, "AD", "BD"));
  table.add(phenotype(a, "CE", "AD"));
  EXPECT_EQ(table.degrees_of_freedom(), (3 - 1) * (2 - 1));
  table.add(phenotype(a, "A", "B"));
  EXPECT_EQ(table.degrees_of_freedom(), 1);
}

TEST(TPhenDB, TemporaryTableKeepsSelectedLociAndLikelihoods) {
  Alleles a;
  TPhenDB table;
  TPhenotype* p = table.add(phenotype(a, "ACE", "BDF", 3.0));
  p->line1 = "line one";
  int recessive = 0;
  TPopHaploDB db;
  p->build_genotypes(db, a.db(), recessive, 0);
  table.log_lik = -12.5;
  table.inbreeding = 0.125;
  TPhenDB part;
  const std::vector<int> mask = {0, 1, 1};
  part.create_temp_PhenDB(mask, table);
  ASSERT_EQ(part.size(), 1);
  EXPECT_EQ(text_of(*part[0]->hapl1), "CE");
  EXPECT_EQ(text_of(*part[0]->hapl2), "DF");
  EXPECT_EQ(part[0]->freq, 3.0);
  EXPECT_EQ(part[0]->line1, "line one");
  EXPECT_EQ(part[0]->nb_genotypes, 0);
  EXPECT_TRUE(part[0]->genotypes.empty());
  EXPECT_EQ(part.log_lik, -12.5);
  EXPECT_EQ(part.inbreeding, 0.125);
  EXPECT_EQ(a.at(2, "F")->locus_id, 1);
  EXPECT_EQ(text_of(*table[0]->hapl1), "ACE");
}

TEST(TPhenotype, SubPhenotypeAndPseudoHaplotypes) {
  Alleles a;
  auto source = phenotype(a, "ACE", "BDF");
  TPhenotype sub;
  sub.build_sub_phenotype(2, 0, *source);
  EXPECT_EQ(text_of(*sub.hapl1), "AE");
  EXPECT_EQ(text_of(*sub.hapl2), "BF");
  sub.set_pseudo_hapl(a.chars("BD"), 1);
  EXPECT_EQ(text_of(*sub.hapl2), "BD");
  sub.clear();
  EXPECT_EQ(sub.hapl1->nb_loci(), 0);
  EXPECT_TRUE(sub.pheno_name.is_empty());
}

}  // namespace
