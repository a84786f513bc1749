// A small host: a program that has its own mesh in its own arrays, and has it repaired.
//
// It hands its mesh over, repairs it as one operation that its user can take back and interrupt, undoes and redoes it, and takes the
// result into its arrays again. Copy what you need.
// usage: repair_host

#include <mendexlib.h>

#include <array>
#include <cstdio>
#include <sstream>
#include <vector>

namespace {

// The host's own mesh, which knows nothing of the library. Vertices and triangles count from 0, as in most programs.
struct HostMesh {
  std::vector<std::array<double, 3>> vertices;
  std::vector<std::array<int, 3>> triangles;
  std::vector<std::array<unsigned char, 3>> colours;  // one a triangle
};

constexpr double side_length = 10.0;
constexpr int cells = 4;  // of each side, along an edge

// A box as a careless exporter leaves it: each side has vertices of its own, one of them stands off by a little gap, one
// triangle looks inward, one is there twice, back to back, and four are missing.
HostMesh broken_box() {
  HostMesh mesh;
  for (int side = 0; side < 6; ++side) {
    const int first = static_cast<int>(mesh.vertices.size());
    const int axis = side / 2;
    const bool is_far = side % 2 == 1;
    const double gap = side == 5 ? 0.002 : 0.0;
    for (int j = 0; j <= cells; ++j) {
      for (int i = 0; i <= cells; ++i) {
        std::array<double, 3> vertex = {};
        vertex[static_cast<std::size_t>(axis)] = is_far ? side_length + gap : 0.0;
        vertex[static_cast<std::size_t>((axis + 1) % 3)] = side_length * i / cells;
        vertex[static_cast<std::size_t>((axis + 2) % 3)] = side_length * j / cells;
        mesh.vertices.push_back(vertex);
      }
    }
    const auto colour = static_cast<unsigned char>(40 * side);
    for (int cell = 0; cell < cells * cells; ++cell) {
      const int a = first + cell / cells * (cells + 1) + cell % cells;
      const int b = a + 1, c = a + cells + 2, d = a + cells + 1;
      if (side == 4 && (cell == 5 || cell == 6)) continue;  // a hole in the bottom
      mesh.triangles.push_back(is_far ? std::array<int, 3>{a, b, c} : std::array<int, 3>{a, c, b});
      mesh.triangles.push_back(is_far ? std::array<int, 3>{a, c, d} : std::array<int, 3>{a, d, c});
      mesh.colours.insert(mesh.colours.end(), 2, {200, colour, 0});
    }
  }
  std::swap(mesh.triangles[7][1], mesh.triangles[7][2]);
  const std::array<int, 3> t = mesh.triangles[40];
  mesh.triangles.push_back(t);
  mesh.triangles.push_back({t[0], t[2], t[1]});
  mesh.colours.insert(mesh.colours.end(), 2, {200, 0, 200});
  return mesh;
}

// Copies the host's mesh into a pool. The pool owns the copies: it may go as soon as the library has filled its own mesh from it.
// `check_out` makes an array in the pool, or finds the one that is there, and points the feature at it; the feature owns nothing.
void put_into_pool(const HostMesh& mesh, giTriBlock& pool) {
  giNodeXYZ points;
  pool.check_out(points);
  for (const std::array<double, 3>& v : mesh.vertices) {
    giPoint3coPageArr& list = points.data()->points;
    list[list.count()] = giPoint3(v[0], v[1], v[2]);  // an index at the count appends
  }
  giTriArrcoFeature triangles;
  pool.check_out(triangles);
  for (const std::array<int, 3>& t : mesh.triangles) {
    giTrianglecoPageArr& list = triangles.data()->triangles;
    giTriangle& added = list[list.count()];
    for (int k = 0; k < 3; ++k) added[k] = t[static_cast<std::size_t>(k)];  // still counted from 0: the library adds the 1
  }
  giTriCols colours;  // to be left out by a host without colours
  pool.check_out(colours);
  for (const std::array<unsigned char, 3>& c : mesh.colours) {
    (*colours.data())[colours.data()->count()] = giColour(c[0], c[1], c[2], 255);
  }
}

// The way back. `get_giTriBlock` appends to the pool, so that it has to start empty. What comes back is compact: deleted nodes and
// triangles are gone, node i of the library is vertex i - 1, element e is triangle e - 1. These are not the numbers that went in.
HostMesh take_back(trTriBlock& repaired) {
  giTriBlock pool;
  repaired.get_giTriBlock(pool);
  HostMesh mesh;
  giNodeXYZ points;
  giTriArrcoFeature triangles;
  giTriCols colours;
  if (!pool.find(points) || !pool.find(triangles)) return mesh;
  for (int k = 0; k < points.data()->points.count(); ++k) {
    const giPoint3& p = points.data()->points[k];
    mesh.vertices.push_back({p.x, p.y, p.z});
  }
  for (int k = 0; k < triangles.data()->triangles.count(); ++k) {
    const giTriangle& t = triangles.data()->triangles[k];
    mesh.triangles.push_back({t[0], t[1], t[2]});
  }
  // Only a mesh with colours has this array. Triangles without one, such as those that close a hole, are black and transparent in it.
  if (!pool.find(colours)) return mesh;
  for (int k = 0; k < colours.data()->count(); ++k) {
    const giColour& c = (*colours.data())[k];
    mesh.colours.push_back({c.red(), c.green(), c.blue()});
  }
  return mesh;
}

// What the user sees of a long operation, and his Cancel button. One object for one command: once it has answered that the user wants to
// stop, every later question is answered so.
class ProgressDialog : public trBreakHandler {
 public:
  void report_progress_callback(const char*, double) override { ++reports_; }  // a real host moves its bar here
  int interrupt_callback() override { return is_cancelled_; }
  int reports() const { return reports_; }

 private:
  int reports_ = 0;
  int is_cancelled_ = 0;  // set by the button
};

// The host's controller is told of every change, to redraw. It lives as long as the host's document.
class Document : public trControl {
 public:
  void control_update(int) override { ++redraws; }
  // What is taken back is told to nobody, and lists of defects stay as the edit left them: see to both.
  void close_edit(bool is_done) {
    finish_undo(is_done);
    if (!is_done) triangle_update(1);
  }
  int redraws = 0;
};

void fill_all_holes(trControl& control) {
  trCycleArray& boundaries = control.cycles();
  if (boundaries.num_boundaries() == 0) return;  // this also finds them
  intcoSet all;
  for (int k = 0; k < boundaries.cycles.count(); ++k) all.add(k);
  double average_length = 0.0;
  control.select_cycles(all, average_length, -1, intcoSet(), -1, -1);
  control.action_fill(0);
}

// One operation for the user, one record in the history. Whatever was done when it was interrupted is taken back by closing the record with
// 0; that is not optional, for some operations leave the mesh half-done.
bool repair(Document& control) {
  ProgressDialog dialog;
  control.start_undo("repair");
  control.action_undup(1e-6);      // one node of those at the same place
  control.action_cancelling(1);    // triangles back to back, and repeated ones
  control.action_auto_stitch(Repeat, 0.01, 0.01, 1.0, 10, 0, 1, 0, 0);  // close gaps of up to 0.01, in at most 10 passes
  fill_all_holes(control);
  control.action_orient();         // all look outward
  const bool is_done = tr_interrupt() == 0;
  control.close_edit(is_done);
  std::printf("repaired, with %s\n", dialog.reports() > 0 ? "progress shown" : "no progress shown");
  return is_done;
}

void print(const char* when, trControl& control) {
  double volume = control.triblock().volume();
  std::printf("%-12s %4d nodes, %4d triangles, %d boundaries, volume %.3f\n", when, control.triblock().valid_nodes(),
              control.triblock().valid_elements(), control.cycles().num_boundaries(), volume);
}

}  // namespace

int main() {
  std::ostringstream messages;  // the library's texts; a host shows them where it likes. It outlives the controller.
  tr_set_output(&messages);
  bool is_good = true;
  {
    HostMesh mesh = broken_box();
    Document document;
    {
      giTriBlock pool;
      put_into_pool(mesh, pool);
      document.action_fill_triblock(pool);  // replaces the mesh; the history starts anew
    }
    print("taken over", document);
    const int nodes_before = document.triblock().valid_nodes();

    is_good = repair(document) && document.cycles().num_boundaries() == 0;
    print("repaired", document);
    document.action_undo(1);
    print("undone", document);
    is_good = is_good && document.triblock().valid_nodes() == nodes_before;
    document.action_redo(1);
    print("redone", document);

    // Giving the mesh back closes the gaps in its numbers, which no record knows of: forget the history.
    mesh = take_back(document.triblock());
    document.undo_hist().reset("");
    std::printf("taken back: %zu vertices, %zu triangles, %zu colours; redrawn %d times\n", mesh.vertices.size(),
                mesh.triangles.size(), mesh.colours.size(), document.redraws);
    is_good = is_good && mesh.colours.size() == mesh.triangles.size() && document.cycles().num_boundaries() == 0;
  }
  tr_set_output(nullptr);
  return is_good ? 0 : 1;
}
