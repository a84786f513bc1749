#include "formats/tri_write.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/kvx/kvx_file_write.h"
#include "progress/output.h"
#include "progress/progress.h"

int trTriWrite::write_kvx() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_kvx(); });
  tr_report_progress(tr_brnknls("Writing KVX file (no normals)..."), 0.0);
  const int triangles = mesh->valid_elements();
  vrpKVXFileWrite out(file, 0);
  if (out.write_header("Created by MendEX2410") || out.new_block(3 * triangles, triangles, 0)) return 0;
  const int count = mesh->element_count();
  for (int e = 1; e < count; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, count, 0.0, 50.0);
    mesh->prefetch_corners(e + trTriBlock::corners_ahead);
    const trElement& t = mesh->element(e);
    if (!t.valid()) continue;
    for (int k = 0; k < 3; ++k) {
      if (out.write_node(mesh->point(t[k]), vrp_kvx_exact_nodes)) return 0;
    }
  }
  for (int k = 1; k <= triangles; ++k) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(k, triangles, 50.0, 100.0);
    if (out.write_tri(3 * k - 3, 3 * k - 2, 3 * k - 1)) return 0;
  }
  if (out.write_end()) return 0;
  tr_report_progress(tr_brnknls("Finished writing KVX file (no normals)..."), 100.0);
  return 1;
}
