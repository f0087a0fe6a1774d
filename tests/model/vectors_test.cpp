#include "model/vectors.h"

#include <gtest/gtest.h>

#include <vector>

#include "model/my_string.h"

namespace {

// An element that counts how many of its kind are alive.
struct Tracked {
  static int alive;
  int value;
  explicit Tracked(int v = 0) : value(v) { ++alive; }
  Tracked(const Tracked& o) : value(o.value) { ++alive; }
  ~Tracked() { --alive; }
  bool operator<(const Tracked& o) const { return value < o.value; }
};
int Tracked::alive = 0;

// Descending frequency, ties keep their order of arrival.
struct Freq {
  double frequency;
  int arrival;
};
struct ByDescendingFrequency {
  bool operator()(const Freq& a, const Freq& b) const { return a.frequency > b.frequency; }
};

TEST(Vectors, ConstructionFromUpperAndDelta) {
  struct Case {
    int upper, delta;
  };
  for (const Case c : std::vector<Case>{{0, 5}, {10, 10}, {3, 1}}) {
    MY_TArrayAsVector<int> v(c.upper, c.delta);
    EXPECT_EQ(v.capacity(), c.upper + 1);
    EXPECT_EQ(v.initial_size(), c.upper + 1);
    EXPECT_EQ(v.count(), 0);
    EXPECT_EQ(v.lower_bound(), 0);
    EXPECT_EQ(v.delta(), c.delta);
    MY_TIArrayAsVector<Tracked> p(c.upper, c.delta);
    EXPECT_EQ(p.capacity(), c.upper + 1);
    EXPECT_TRUE(p.owns_elements());
  }
}

TEST(Vectors, AddGrowsByConstantDelta) {
  MY_TArrayAsVector<double> v(0, 5);
  std::vector<int> capacities;
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(v.Add(i * 0.5), i + 1);
    capacities.push_back(v.capacity());
  }
  EXPECT_EQ(capacities, (std::vector<int>{1, 6, 6, 6, 6, 6, 11, 11, 11, 11, 11, 16}));
  for (int i = 0; i < 12; ++i) EXPECT_EQ(v[i], i * 0.5);

  MY_TIArrayAsVector<Tracked> p(99, 5);
  for (int i = 0; i < 100; ++i) p.Add(new Tracked(i));
  p.Add(new Tracked(100));
  EXPECT_EQ(p.capacity(), 105);
}

TEST(Vectors, IndexingPastCountExtendsByOneGap) {
  MY_TArrayAsVector<int> v(9, 5);
  v.Add(7);
  EXPECT_EQ(v[1], 0);  // a gap reads as a default value
  EXPECT_EQ(v.count(), 2);
  v[5] = 3;
  EXPECT_EQ(v.count(), 6);
  EXPECT_EQ(v[5], 3);
  v[10] = 99;  // at capacity: the error cell
  EXPECT_EQ(v.count(), 6);
  EXPECT_EQ(v.capacity(), 10);
  EXPECT_EQ(v[-1], 0);
  EXPECT_EQ(v[10], 0);  // the write went nowhere

  MY_TIArrayAsVector<Tracked> p(4, 5);
  p.Add(new Tracked(1));
  EXPECT_EQ(p[1], nullptr);
  EXPECT_EQ(p.count(), 2);
  EXPECT_EQ(p[5], nullptr);
  EXPECT_EQ(p.count(), 2);
}

TEST(Vectors, ConstAccessDoesNotExtend) {
  MY_TArrayAsVector<int> v(4, 5);
  v.Add(1);
  const auto& cv = v;
  EXPECT_EQ(cv[3], 0);
  EXPECT_EQ(cv[7], 0);
  EXPECT_EQ(v.count(), 1);
}

TEST(Vectors, FlushRestoresInitialSize) {
  MY_TArrayAsVector<my_string> v(2, 5);
  for (int i = 0; i < 8; ++i) v.Add(my_string("x"));
  EXPECT_EQ(v.capacity(), 8);
  v.flush();
  EXPECT_EQ(v.capacity(), 3);
  EXPECT_EQ(v.count(), 0);
  EXPECT_TRUE(v[0].is_empty());
}

TEST(Vectors, OwningVectorDeletesOnFlushAndDestruction) {
  Tracked::alive = 0;
  {
    MY_TIArrayAsVector<Tracked> p(0, 5);
    for (int i = 0; i < 7; ++i) p.Add(new Tracked(i));
    EXPECT_EQ(Tracked::alive, 7);
    p.flush();
    EXPECT_EQ(Tracked::alive, 0);
    EXPECT_EQ(p.capacity(), 1);
    EXPECT_EQ(p.count(), 0);
    p.Add(new Tracked(1));
    p.Add(new Tracked(2));
  }
  EXPECT_EQ(Tracked::alive, 0);
}

TEST(Vectors, NonOwningVectorLeavesElementsAlive) {
  Tracked::alive = 0;
  std::vector<Tracked> storage(3);
  {
    MY_TIArrayAsVector<Tracked> p(0, 5);
    p.owns_elements(false);
    for (auto& t : storage) p.Add(&t);
    p.flush();
    p.Add(&storage[0]);
  }
  EXPECT_EQ(Tracked::alive, 3);
  MY_TArrayAsVector<Tracked*> values(0, 5);
  values.Add(&storage[1]);
  values.flush();
  EXPECT_EQ(Tracked::alive, 3);
}

TEST(Vectors, CopyClonesElements) {
  Tracked::alive = 0;
  {
    MY_TIArrayAsVector<Tracked> a(0, 5);
    a.Add(new Tracked(1));
    a.Add(new Tracked(2));
    MY_TIArrayAsVector<Tracked> b(a);
    ASSERT_EQ(b.count(), 2);
    EXPECT_NE(b[0], a[0]);
    EXPECT_EQ(b[1]->value, 2);
    MY_TIArrayAsVector<Tracked> c(0, 5);
    c.Add(new Tracked(9));
    c = a;
    ASSERT_EQ(c.count(), 2);
    EXPECT_EQ(c[0]->value, 1);
    Tracked* first = a[0];
    a = a;  // self-assignment does nothing
    EXPECT_EQ(a[0], first);
    EXPECT_EQ(Tracked::alive, 6);
  }
  EXPECT_EQ(Tracked::alive, 0);
}

TEST(Vectors, SortedAddMovesElementForwardStably) {
  MY_TISArrayAsVector<Freq, ByDescendingFrequency> v(0, 5);
  struct Step {
    double frequency;
    int want_index;
  };
  const std::vector<Step> steps = {{0.2, 0}, {0.5, 0}, {0.2, 2}, {0.9, 0}, {0.2, 4}, {0.5, 2}};
  int arrival = 0;
  for (const Step s : steps) {
    EXPECT_EQ(v.Add(new Freq{s.frequency, arrival++}), s.want_index) << s.frequency;
  }
  std::vector<int> order;
  for (const Freq* f : v) order.push_back(f->arrival);
  EXPECT_EQ(order, (std::vector<int>{3, 1, 5, 0, 2, 4}));
  EXPECT_EQ(v.capacity(), 6);

  MY_TISArrayAsVector<Tracked> by_value(0, 5);
  by_value.Add(new Tracked(3));
  by_value.Add(new Tracked(1));
  EXPECT_EQ(by_value.Add(new Tracked(2)), 1);
}

TEST(Vectors, SearchesReturnTheirNotFoundMarks) {
  MY_TArrayAsVector<int> v(0, 5);
  v.Add(4);
  v.Add(8);
  EXPECT_EQ(v.find(8), 1);
  EXPECT_EQ(v.find(5), 2147483647);
  MY_TIArrayAsVector<Tracked> p(0, 5);
  Tracked* t = new Tracked(1);
  p.Add(new Tracked(0));
  p.Add(t);
  Tracked other(1);
  EXPECT_EQ(p.find(t), 1);
  EXPECT_EQ(p.find(&other), -1);
}

TEST(Vectors, BoolElements) {
  MY_TArrayAsVector<bool> v(4, 5);
  v.Add(true);
  v[2] = true;
  EXPECT_EQ(v.count(), 3);
  EXPECT_TRUE(v[0]);
  EXPECT_FALSE(v[1]);
  EXPECT_TRUE(v[2]);
}

}  // namespace
