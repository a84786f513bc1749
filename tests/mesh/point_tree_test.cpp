#include "mesh/point_tree.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "oracles/point_tree_literal.h"
#include "support/random.h"

namespace {

class Tree {
 public:
  explicit Tree(double tol) : tol_(tol) {}
  Tree(const Tree&) = delete;
  ~Tree() { delete root; }
  int add(int index, const giPoint3* p) { return trPointTree::add_node(root, index, p, tol_); }

  trPointTree* root = nullptr;

 private:
  double tol_;
};

double coordinate(Random& random, bool odd) {
  const double odd_values[] = {INFINITY, -INFINITY, std::nan(""), DBL_MAX, -0.0};
  if (odd && random.one_in(10)) return odd_values[random.below(5)];
  const double x = 0.5 * random.below(9);
  return random.one_in(3) ? std::nextafter(x, random.one_in(2) ? 9.0 : -9.0) : x;
}

TEST(PointTree, AnswersAsTheRuleIsWorded) {
  const double tolerances[] = {1.0, 0.5, 0.0, 3.0, -1.0, INFINITY, std::nan("")};
  Random random(61);
  int found = 0;
  for (int round = 0; round < 2000; ++round) {
    const double tol = tolerances[round % 7];
    std::vector<giPoint3> points(40);
    for (giPoint3& p : points) {
      p.x = coordinate(random, round % 2);
      p.y = random.one_in(2) ? coordinate(random, round % 2) : 0.0;
    }
    Tree tree(tol);
    PointTreeLiteral literal(tol, true);
    for (int k = 0; k < 40; ++k) {
      const int expected = literal.add(points[k], k);
      ASSERT_EQ(tree.add(k, &points[k]), expected) << "round " << round << " point " << k;
      found += expected >= 0;
    }
  }
  EXPECT_GT(found, 5000);
}

// Sorted points make one branch of a million entries. Here it is linked by hand, as inserting them takes 5 * 10^11 steps.
TEST(PointTree, ABranchOfAMillionEntriesNeedsNoDeepStack) {
  const int n = 1000000;
  for (int shape = 0; shape < 3; ++shape) {  // to the right, to the left, and by turns
    std::vector<giPoint3> points(n);
    Tree tree(0.25);
    trPointTree** end = &tree.root;
    for (int k = 0; k < n; ++k) {
      const bool right = shape == 0 || (shape == 2 && k % 2 == 0);
      const double previous = k == 0 ? 0.0 : points[k - 1].x;
      points[k].x = shape == 2 ? (k % 2 ? n - k : k - n) : right ? previous + 1 : previous - 1;
      *end = new trPointTree(k, &points[k]);
      const bool next_right = shape == 2 ? points[k].x < 0 : right;
      end = next_right ? &(*end)->right : &(*end)->left;
    }
    giPoint3 last = points[n - 1];
    EXPECT_EQ(tree.root->find(&last, 0.25), n - 1);
    last.y = 1.0;
    EXPECT_EQ(tree.add(n, &last), -1);
  }
}

}  // namespace
