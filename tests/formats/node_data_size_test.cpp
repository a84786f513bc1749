#include <gtest/gtest.h>

#include "formats/stl_files.h"

namespace {

class OpenReader : public trTriRead {
 public:
  OpenReader(trTriBlock* mesh_in, int append_in, int read_node_data_in)
      : trTriRead(mesh_in, nullptr, append_in, read_node_data_in) {}
  using trTriRead::reset_node_data_size;
};

}  // namespace

// Every combination of what the mesh has, what the file carries and what is wanted.
TEST(NodeDataSize, IsReconciledWithTheFile) {
  struct Case {
    int append, wanted, in_mesh, in_file;
    int result;
    const char* text;
  };
  const Case cases[] = {
      {1, 0, 0, 0, 0, ""},
      {1, 0, 2, 2, 2, " Preserving node data (2 attributes per node).\n"},
      {1, 1, 3, 1, 1, " Insufficient node data in new triangles.\n There are now only 1 attributes per node.\n"},
      {1, 0, 3, 0, 0, " Insufficient node data in new triangles.\n Node attributes have been deleted.\n"},
      {1, 1, 1, 4, 1, " Ignoring 3 additional attributes per node.\n"},
      {1, 1, 0, 4, 0, " Ignoring 4 additional attributes per node.\n"},
      {0, 1, 0, 0, 0, " New triangles have no node attributes.\n"},
      {0, 1, 2, 0, 2, " New triangles have no node attributes.\n"},
      {0, 1, 0, 3, 3, " Reading 3 attributes per node.\n"},
      {0, 1, 5, 3, 3, " Reading 3 attributes per node.\n"},
      {0, 0, 0, 0, 0, ""},
      {0, 0, 0, 3, 0, " Ignoring node atrributes.\n"},  // the doubled letter is part of the text
      {0, 0, 2, 3, 2, " Ignoring node atrributes.\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "append " << c.append << " wanted " << c.wanted << " mesh " << c.in_mesh << " file " << c.in_file);
    trTriBlock mesh;
    mesh.set_node_data_size(c.in_mesh);
    const CapturedOutput out;
    OpenReader reader(&mesh, c.append, c.wanted);
    EXPECT_EQ(reader.reset_node_data_size(c.in_file), c.result);
    EXPECT_EQ(mesh.node_data_size(), c.result);
    EXPECT_EQ(out.text(), c.text);
  }
}
