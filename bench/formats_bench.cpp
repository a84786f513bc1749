// Reading and writing of the formats other than STL, of the merged mesh.
#include <memory>
#include <string>

#include "formats/tri_read.h"
#include "formats/tri_write.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/files.h"
#include "support/timing.h"

namespace {

using Reading = int (trTriRead::*)();
using Writing = int (*)(trTriWrite& writer);

int write_native(trTriWrite& writer) { return writer.write_native(0); }
// Numbered anew: the file has eight columns for a number, and merging leaves gaps.
int write_mes(trTriWrite& writer) { return writer.write_mes(1); }
int write_flat_tri(trTriWrite& writer) { return writer.write_tri(); }
int write_smooth_tri(trTriWrite& writer) { return writer.write_smooth_tri(); }
int write_kvx(trTriWrite& writer) { return writer.write_kvx(); }

Cost time_writing(const Model& model, Writing write) {
  const Block block = merged_block(model);
  auto writer = std::make_unique<trTriWrite>(block.get(), open_file(model.output_file(), "wb").release(), 1.0);
  int done = 0;
  const Cost cost = cost_of([&] {
    done = write(*writer);
    writer.reset();  // closes the file
  });
  require(done == 1, "a writer failed");
  return cost;
}

template <Writing write>
Cost time_write(const Model& model) {
  return time_writing(model, write);
}

// Reads back what the writer makes of the mesh.
template <Writing write, Reading read>
Cost time_read(const Model& model) {
  time_writing(model, write);
  trTriBlock block;
  trTriRead reader(&block, open_file(model.output_file(), "rb").release(), 0, 0);
  int done = 0;
  const Cost cost = cost_of([&] { done = (reader.*read)(); });
  require(done == 1, "a reader failed");
  require(static_cast<std::size_t>(block.valid_elements()) == model.facets(), "elements that were read");
  return cost;
}

}  // namespace

void add_formats_measures(std::vector<Measure>& list) {
  list.push_back({"read_native", "flat_parse", time_read<write_native, &trTriRead::read_native>});
  list.push_back({"write_native", "flat_parse", time_write<write_native>});
  list.push_back({"read_kvx", "flat_parse", time_read<write_kvx, &trTriRead::read_kvx>});
  list.push_back({"write_kvx", "flat_parse", time_write<write_kvx>});
  list.push_back({"read_tri", "flat_parse", time_read<write_smooth_tri, &trTriRead::read_tri>});
  list.push_back({"write_smooth_tri", "flat_parse", time_write<write_smooth_tri>});
  list.push_back({"write_tri", "flat_parse", time_write<write_flat_tri>});
  list.push_back({"read_mes", "flat_parse", time_read<write_mes, &trTriRead::read_mes>});
  list.push_back({"write_mes", "flat_parse", time_write<write_mes>});
}
