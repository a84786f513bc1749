// Reading and writing of STL files, and the plain loops that do the same with flat arrays.
#include <cstring>
#include <memory>

#include "formats/tri_read.h"
#include "formats/tri_write.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/files.h"
#include "support/floors.h"
#include "support/stl_bytes.h"
#include "support/timing.h"

namespace {

Cost read_whole(const std::filesystem::path& path) {
  Buffer<char> bytes = load_file(path);  // so that its memory has been touched
  const File file = open_file(path, "rb");
  std::size_t got = 0;
  const Cost cost = cost_of([&] { got = std::fread(bytes.data(), 1, bytes.size(), file.get()); });
  require(got == bytes.size(), "bytes read");
  return cost;
}

Cost time_fread(const Model& model) { return read_whole(model.binary_file()); }
Cost time_fread_ascii(const Model& model) { return read_whole(model.ascii_file()); }

Cost time_memcpy(const Model& model) {
  const Buffer<char> bytes = load_file(model.binary_file());
  Buffer<char> copy(bytes.size());
  std::memset(copy.data(), 1, copy.size());
  const Cost cost = cost_of([&] { std::memcpy(copy.data(), bytes.data(), bytes.size()); });
  require(std::memcmp(copy.data(), bytes.data(), bytes.size()) == 0, "bytes copied");
  return cost;
}

// As much new memory as a loaded block takes, a byte written on each page.
Cost time_new_pages(const Model& model) {
  const std::size_t bytes = 200 * model.facets();
  std::size_t touched = 0;
  const Cost cost = cost_of([&] {
    const std::unique_ptr<volatile char[]> memory(new volatile char[bytes]);
    for (std::size_t k = 0; k < bytes; k += 4096, ++touched) memory[k] = 1;
  });
  require(touched == (bytes + 4095) / 4096, "pages touched");
  return cost;
}

Cost time_flat_parse(const Model& model) {
  const auto& path = model.binary_file();
  FlatSoup soup;
  const Cost cost = cost_of([&] { soup = parse_flat(path); });
  require(soup.facets == model.facets(), "facets of the flat parse");
  require(std::memcmp(soup.corners.data(), model.soup().corners.data(), soup.facets * stl_corner_bytes) == 0,
          "coordinates of the flat parse");
  return cost;
}

FlatMesh merged_flat(const Model& model) {
  const Buffer<FlatPoint> points = corner_points(model.soup());
  return merge_flat(points.data(), model.facets());
}

Cost time_flat_write(const Model& model) {
  const FlatMesh mesh = merged_flat(model);
  File file = open_file(model.output_file(), "wb");
  const Cost cost = cost_of([&] {
    write_flat(mesh, file.get());
    file.reset();
  });
  check_written(model.output_file(), model);
  return cost;
}

Cost time_flat_write_ascii(const Model& model) {
  const FlatMesh mesh = merged_flat(model);
  File file = open_file(model.output_file(), "wb");
  return cost_of([&] {
    write_flat_ascii(mesh, file.get());
    file.reset();
  });
}

Cost time_read_stl(const Model& model) {
  trTriBlock block;
  trTriRead reader(&block, open_file(model.binary_file(), "rb").release(), 0, 0);
  int done = 0;
  const Cost cost = cost_of([&] { done = reader.read_stl(1, 0); });
  require(done == 1, "read_stl failed");
  check_loaded(block, model);
  return cost;
}

Cost time_read_ast(const Model& model) {
  trTriBlock block;
  trTriRead reader(&block, open_file(model.ascii_file(), "rb").release(), 0, 0);
  const Cost cost = cost_of([&] { reader.read_ast(1, 0); });
  check_loaded(block, model);
  return cost;
}

Cost time_write_stl(const Model& model) {
  const Block block = merged_block(model);
  auto writer = std::make_unique<trTriWrite>(block.get(), open_file(model.output_file(), "wb").release(), 1.0);
  int done = 0;
  const Cost cost = cost_of([&] {
    done = writer->write_stl(0);
    writer.reset();  // closes the file
  });
  require(done == 1, "write_stl failed");
  check_written(model.output_file(), model);
  return cost;
}

Cost time_write_ast(const Model& model) {
  const Block block = merged_block(model);
  auto writer = std::make_unique<trTriWrite>(block.get(), open_file(model.output_file(), "wb").release(), 1.0);
  int done = 0;
  const Cost cost = cost_of([&] {
    done = writer->write_ast(0);
    writer.reset();
  });
  require(done == 1, "write_ast failed");
  return cost;
}

}  // namespace

void add_stl_measures(std::vector<Measure>& list) {
  list.push_back({"fread", "", time_fread});
  list.push_back({"memcpy", "", time_memcpy});
  list.push_back({"new_pages", "", time_new_pages});
  list.push_back({"flat_parse", "", time_flat_parse});
  list.push_back({"read_stl", "flat_parse", time_read_stl});
  list.push_back({"fread_ascii", "", time_fread_ascii});
  list.push_back({"read_ast", "fread_ascii", time_read_ast});
  list.push_back({"flat_write", "", time_flat_write});
  list.push_back({"write_stl", "flat_write", time_write_stl});
  list.push_back({"flat_write_ascii", "", time_flat_write_ascii});
  list.push_back({"write_ast", "flat_write_ascii", time_write_ast});
}
