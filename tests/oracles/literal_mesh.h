#pragma once

#include <array>
#include <string>
#include <vector>

#include "mesh/tri_block.h"

/// The mesh and its edits written down rule by rule on plain vectors, with no thought for speed: nodes, elements, both
/// kinds of lists in their order, attributes, colours, flags and the journal's reports. The real block is compared with
/// it entry by entry.
class LiteralMesh {
 public:
  struct Node {
    giPoint3 p;
    int invalid = 1;
    std::vector<int> a_edges;   // front first
    std::vector<int> elements;  // front first
    int side = 0;
  };
  struct Tuple {
    int weight = 0;
    std::array<double, 5> values{};
  };
  using Element = std::array<int, 3>;

  LiteralMesh();

  void set_node(int i, const giPoint3& p);
  void delete_node(int i);
  int generate_node(const giPoint3& p);
  int interpolate_node(int a, int b, double t);
  int generate(int a, int b, int c);
  int generate3(int a, int b, int c);
  int generate4(int a, int b, int c, int d);
  void set_element(int e, int a, int b, int c);
  void delete_element(int e);
  void reverse_element(int e);
  void split_element(int e);
  void delete_collapsed_elements();
  void reverse();

  void link(int a, int b);
  void build_edges();
  void reference_elements();
  void reference_new_nodes(const std::vector<int>& map);
  int remove_repeats(int same, int both);
  void renumber();
  void transform(const giXform3& x);
  int unduplicate_nodes(double tol);
  int slice(gi_Axis axis, int side, double value, double tol);

  void set_node_data(int i, const Tuple& tuple);
  void set_element_colour(int e, int colour);
  int element_colour(int e) const;

  bool valid(int e) const { return at(elements, e)[0] != 0; }
  template <class T>
  static T& at(std::vector<T>& v, int i) {
    return v[static_cast<std::size_t>(i)];
  }
  template <class T>
  static const T& at(const std::vector<T>& v, int i) {
    return v[static_cast<std::size_t>(i)];
  }

  // Counts may be lower than the vectors are long: cutting an array leaves what lies behind the cut.
  int node_count = 1;
  int element_count = 1;
  std::vector<Node> nodes;
  std::vector<Element> elements;
  std::vector<Tuple> tuples;
  std::vector<int> colours;
  int data_size = 0;
  int edges_built = 0;
  int elements_referenced = 1;
  int changed = 1;
  double undup_tol = 0.0;
  giWorkplane3 workplane;
  int use_workplane = 0;
  std::vector<int> reports;  // nodes as they are, elements negated

 private:
  void init_node(int i);
  void invalidate(int i);
  Tuple& tuple(int i);
  void average(int dst, int src);
  int find_match(int i, int same) const;
  giPoint3 to_work(const giPoint3& p) const;
  giPoint3 to_world(const giPoint3& p) const;
  void alter();
  int cut(int a, int b, gi_Axis axis, double value, double tol);
  bool slice_one(int e, gi_Axis axis, double value, double tol, std::vector<int>& plane_nodes);
  void merge_plane_nodes(const std::vector<int>& plane_nodes, double tol);
};

/// What differs between the block and the literal mesh, in words; empty when nothing does. Lists are compared in their
/// order, while their flags say that they are current.
std::string difference(const trTriBlock& block, const LiteralMesh& literal);

/// A literal mesh with the nodes, elements and flags of a block that was just filled and has a valid last element.
LiteralMesh literal_of(const trTriBlock& block);
