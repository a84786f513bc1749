#include "mesh/point_tree.h"

#include <new>

#include "platform/containers/dyn_arr.h"

namespace {

// Turns left children up until the top has none, then takes the top off: every entry is lifted at most once.
void delete_tree(trPointTree* top) {
  while (top != nullptr) {
    if (trPointTree* lifted = top->left) {
      top->left = lifted->right;
      lifted->right = top;
      top = lifted;
    } else {
      trPointTree* rest = top->right;
      top->right = nullptr;
      delete top;
      top = rest;
    }
  }
}

}  // namespace

trPointTree::~trPointTree() {
  delete_tree(left);
  delete_tree(right);
}

int trPointTree::add_node(trPointTree*& root, int index, const giPoint3* p, double tol) {
  const int found = root == nullptr ? -1 : root->find(p, tol);
  if (found == -1) insert_node(root, index, p);
  return found;
}

void trPointTree::insert_node(trPointTree*& root, int index, const giPoint3* p) {
  trPointTree** place = &root;
  while (*place != nullptr) place = (*place)->point->x > p->x ? &(*place)->left : &(*place)->right;
  *place = new (std::nothrow) trPointTree(index, p);
  if (*place == nullptr) co_entry_lost();
}

int trPointTree::find(const giPoint3* p, double tol) const {
  coDynArr<const trPointTree*> waiting;  // right subtrees still to be searched, the next one last
  const trPointTree* e = this;
  for (;;) {
    if (tol * tol >= e->point->distance_sq(*p)) return e->index;
    const bool go_left = e->left != nullptr && e->point->x + tol >= p->x;
    const bool go_right = e->right != nullptr && p->x >= e->point->x - tol;
    if (go_left && go_right) waiting[waiting.count()] = e->right;
    if (go_left || go_right) {
      e = go_left ? e->left : e->right;
      continue;
    }
    if (waiting.count() == 0) return -1;
    e = waiting[waiting.count() - 1];
    waiting.shrink(waiting.count() - 1, 0);
  }
}
