// Comparison of the real block with the literal mesh.

#include <cstring>
#include <sstream>

#include "oracles/literal_mesh.h"
#include "support/validator.h"

namespace {

class Report {
 public:
  template <class A, class B>
  void compare(const char* what, int number, const A& real, const B& literal) {
    if (real == literal || !text_.str().empty()) return;
    text_ << what << " of " << number << ": ";
    print(real);
    text_ << ", not ";
    print(literal);
  }
  bool clean() const { return text_.str().empty(); }
  std::string text() const { return text_.str(); }

 private:
  template <class T>
  void print(const T& value) {
    text_ << value;
  }
  void print(const std::vector<int>& list) {
    for (int v : list) text_ << v << ' ';
  }
  std::ostringstream text_;
};

// Exact, but any two values that are not numbers are alike.
bool same_number(double a, double b) { return a == b || (a != a && b != b); }

bool same_point(const giPoint3& a, const giPoint3& b) {
  return same_number(a.x, b.x) && same_number(a.y, b.y) && same_number(a.z, b.z);
}

void compare_node(const trTriBlock& block, const LiteralMesh& literal, int i, Report& report) {
  const trNode& n = block.node(i);
  const LiteralMesh::Node& m = LiteralMesh::at(literal.nodes, i);
  report.compare("flag of node", i, n.invalid, m.invalid);
  report.compare("place of node", i, same_point(block.point(i), m.p), true);
  if (block.edges_built) report.compare("free edges of node", i, entries(n.a_edges), m.a_edges);
  if (block.elements_referenced) report.compare("elements of node", i, entries(n.elements), m.elements);
  if (literal.data_size == 0 || m.invalid) return;
  const trNodeDataTuple& tuple = const_cast<trTriBlock&>(block).node_data(i);
  const LiteralMesh::Tuple expected =
      static_cast<std::size_t>(i) < literal.tuples.size() ? LiteralMesh::at(literal.tuples, i) : LiteralMesh::Tuple();
  report.compare("weight of node", i, tuple.weight, expected.weight);
  for (std::size_t k = 0; k < 5; ++k) {
    report.compare("attribute of node", i, same_number(tuple.values[k], expected.values[k]), true);
  }
}

void compare_element(const trTriBlock& block, const LiteralMesh& literal, int e, Report& report) {
  for (int k = 0; k < 3; ++k) {
    report.compare("corner of element", e, block.element(e)[k],
                   LiteralMesh::at(literal.elements, e)[static_cast<std::size_t>(k)]);
  }
  report.compare("colour of element", e, block.get_element_colour(e), literal.element_colour(e));
}

}  // namespace

std::string difference(const trTriBlock& block, const LiteralMesh& literal) {
  Report report;
  report.compare("node count", 0, block.node_count(), literal.node_count);
  report.compare("element count", 0, block.element_count(), literal.element_count);
  report.compare("edges_built", 0, block.edges_built, literal.edges_built);
  report.compare("elements_referenced", 0, block.elements_referenced, literal.elements_referenced);
  report.compare("changed", 0, block.changed, literal.changed);
  report.compare("undup_tol", 0, block.undup_tol, literal.undup_tol);
  report.compare("attribute size", 0, block.node_data_size(), literal.data_size);
  for (int i = 0; i < literal.node_count && report.clean(); ++i) compare_node(block, literal, i, report);
  for (int e = 0; e < literal.element_count && report.clean(); ++e) compare_element(block, literal, e, report);
  return report.text();
}

LiteralMesh literal_of(const trTriBlock& block) {
  LiteralMesh literal;
  for (int i = 1; i < block.node_count(); ++i) {
    literal.set_node(i, block.point(i));
    if (block.node(i).invalid) literal.delete_node(i);
  }
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (t.valid()) literal.set_element(e, t[0], t[1], t[2]);
  }
  literal.changed = block.changed;
  literal.undup_tol = block.undup_tol;
  literal.reports.clear();
  return literal;
}
