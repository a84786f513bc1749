// Merges a model under the journal, looks at its boundaries and takes the merge back.
// usage: undo IN.stl

#include <mendexlib.h>

#include <cstdio>

namespace {

// A host that counts how often its views would have to be redrawn.
class Host : public trControl {
 public:
  void control_update(int) override { ++updates; }
  int updates = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::FILE* const file = argc == 2 ? std::fopen(argv[1], "rb") : nullptr;
  if (file == nullptr) {
    std::fprintf(stderr, "usage: undo IN.stl\n");
    return 2;
  }
  Host host;
  trTriBlock& mesh = host.triblock();
  trTriRead(&mesh, file, 0, 0).read_stl(1, 0);
  const int nodes = mesh.valid_nodes();

  host.start_undo("merge");
  const int merged = mesh.unduplicate_nodes(1e-6);
  host.finish_undo(merged);
  std::printf("%d nodes became %d; boundaries: %d\n", nodes, mesh.valid_nodes(), host.cycles().num_boundaries());

  host.action_undo(1);
  std::printf("taken back: %d nodes, views redrawn %d times\n", mesh.valid_nodes(), host.updates);
  return mesh.valid_nodes() == nodes ? 0 : 1;
}
