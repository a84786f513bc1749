// Triangles as a drawing of the surface modeller.

#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

constexpr int outline[] = {0, 1, 2, 0};  // corners; a line goes from each to the next

}  // namespace

void trTriBlock::picture_elements(std::FILE* file, const intcoPageArr& list) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { picture_elements(file, list); });
  if (file == nullptr) return;
  print_message(" Writing Karn command file ...");
  write_text(file, "UNSET ECHO#EDIT PLEV -1\n");
  write_text(file, "DELETE PICTURE\n");
  int picture_point = 0;
  for (int k = 0; k < list.count() && !tr_interrupt(); ++k) {
    write_text(file, "$$ element %d\n", list[k]);
    for (int step = 0; step < 4; ++step) {
      const int i = element(list[k])[outline[step]];
      const giPoint3& p = point(i);
      write_text(file, "INPUT PIX %d %lf %lf %lf $$ = NODE %d\n", ++picture_point, p.x, p.y, p.z, i);
      if (step == 0)
        write_text(file, "EDIT PIX %d INV\n", picture_point);  // the move to the outline's start is not drawn
    }
  }
}
