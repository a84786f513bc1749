// OBJ, PLY, OFF, 3MF, glTF, COLLADA: read and written by `mendex`.

#include "apps/reports.h"
#include "support/random.h"

namespace {

constexpr const char* scenes[] = {"obj", "ply", "off", "3mf", "gltf", "glb", "dae"};

// The program may have been built without the importer.
class MendexScene : public testing::Test {
 protected:
  void SetUp() override {
    if (run_mendex({"formats"}).output.find(".obj") == std::string::npos) GTEST_SKIP() << "no importer";
  }

  void convert(const std::string& from, const std::string& to) const {
    const ProcessResult result = run_mendex({"convert", from, to});
    EXPECT_EQ(result.exit_code, 0) << from << " to " << to << ": " << result.errors;
    EXPECT_EQ(result.errors, "");
  }

  // The mesh as text: triangles with their colours.
  std::string text_of(const std::string& path) const {
    convert(path, folder_.path("text.off"));
    return contents_of_file(folder_.path("text.off"));
  }

  const TestFolder folder_;
};

// A tetrahedron of two colours.
const char* const coloured_obj =
    "# two colours\n"
    "v 0 0 0 0 0.2 1\nv 1 0 0 0 0.2 1\nv 0 1 0 0 0.2 1\nv 0 0 1 0 0.2 1\n"
    "v 0 0 0 0.4 0 0\nv 1 0 0 0.4 0 0\nv 0 1 0 0.4 0 0\nv 0 0 1 0.4 0 0\n"
    "f 1 3 2\nf 1 4 3\nf 5 6 8\nf 6 7 8\n";

}  // namespace

// The bracket's corners lie on a grid that single precision and six digits hold exactly. Shared nodes stay shared. What can be told by its
// content is, whatever its name; and a mesh of STL by the name of a scene is STL.
TEST_F(MendexScene, WritesAndReadsEveryFormatByWhateverName) {
  const std::string welded = folder_.path("welded.mnx");
  ASSERT_EQ(run_mendex({"weld", sample("bracket_soup.stl"), "-o", welded}).exit_code, 0);
  for (const std::string format : scenes) {
    convert(welded, folder_.path("a." + format));
    std::filesystem::rename(folder_.path("a." + format), folder_.path("data.bin"));
    const Json report = info(folder_.path("data.bin"));
    EXPECT_EQ(report["elements"], 204) << format;
    EXPECT_EQ(report["nodes"], 100) << format;
    EXPECT_EQ(report["volume"].get<double>(), 4250.0) << format;
  }
  std::filesystem::copy_file(sample("bracket_soup.stl"), folder_.path("stl.ply"));
  EXPECT_EQ(info(folder_.path("stl.ply"))["elements"], 204);
}

// Colours of vertices become colours of triangles, and the nodes between two colours are one; on the way out they are repeated.
// The colours of OFF files are not looked at. Materials of OBJ files colour their triangles.
TEST_F(MendexScene, CarriesColours) {
  const std::string first = folder_.write("first.obj", coloured_obj);
  const std::string expected = text_of(first);
  EXPECT_EQ(expected, "OFF\n 4 4 0\n 0 0 0\n 0 1 0\n 1 0 0\n 0 0 1\n"
                      "3 0 1 2 0 51 255 255\n3 0 3 1 0 51 255 255\n3 0 2 3 102 0 0 255\n3 2 1 3 102 0 0 255\n");
  EXPECT_EQ(info(first)["nodes"], 4);
  for (const std::string to : scenes) {
    if (to == "off") continue;
    convert(first, folder_.path("b." + to));
    EXPECT_EQ(text_of(folder_.path("b." + to)), expected) << to;
  }
  folder_.write("paint.mtl", "newmtl green\nKd 0 1 0\n");
  expect_text(text_of(folder_.write("a.obj", "mtllib paint.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl green\nf 1 2 3\n")), "3 0 1 2 0 255 0 255\n");
}

// Two objects of a glTF scene: one moved, one mirrored, whose triangle is turned so that it still faces as its object does.
TEST_F(MendexScene, NodesMoveTheirMeshes) {
  convert(folder_.write("t.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"), folder_.path("t.gltf"));
  const Json scene = Json::parse(contents_of_file(folder_.path("t.gltf"))).merged_with(Json::parse(R"({"scenes": [{"nodes": [0, 1]}], "nodes": [
      {"mesh": 0, "translation": [5, 0, 0]}, {"mesh": 0, "scale": [1, 1, -1], "translation": [0, 0, 7]}]})"));
  EXPECT_EQ(text_of(folder_.write("moved.gltf", scene.dump())),
            "OFF\n 6 2 0\n 5 0 0\n 6 0 0\n 5 1 0\n 0 0 7\n 1 0 7\n 0 1 7\n3 0 1 2\n3 3 5 4\n");
}

// Polygons are cut into triangles; lines and points, and triangles that name a vertex twice, are left out with a warning. Vertices stay apart
// that the file has apart.
TEST_F(MendexScene, TakesTrianglesOnly) {
  const std::string path = folder_.write("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\nf 1 1 3\nl 1 2\n");
  const ProcessResult result = run_mendex({"info", "--json", path});
  EXPECT_EQ(Json::parse(result.output)["elements"], 2);
  expect_text(result.errors, "left out");
  EXPECT_EQ(info(folder_.write("a.off", "OFF\n6 2 0\n0 0 0\n1 0 0\n0 1 0\n0 0 0\n0 1 0\n-1 0 0\n3 0 1 2\n3 3 4 5\n"))["nodes"], 6);
}

TEST_F(MendexScene, OtherVerbsTakeThem) {
  const std::string obj = folder_.path("box.obj"), closed = folder_.path("closed.glb"), both = folder_.path("both.ply");
  convert(sample("open_box.ast"), obj);
  EXPECT_EQ(run_mendex({"check", obj}).exit_code, 1);
  ASSERT_EQ(run_mendex({"fill", obj, "-o", closed}).exit_code, 0);
  EXPECT_EQ(run_mendex({"check", closed}).exit_code, 0);
  ASSERT_EQ(run_mendex({"convert", closed, both, "--append", obj}).exit_code, 0);
  EXPECT_EQ(info(both)["elements"].get<int>(), info(closed)["elements"].get<int>() + 32);
}

// The target stays as it was when the mesh does not fit the format.
TEST_F(MendexScene, RefusesWhatDoesNotReadBack) {
  const std::string far = folder_.write("far.ast", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 1e200 0 0\nvertex 0 1 0\nvertex 0 0 1\n"
                                                    "endloop\nendfacet\nendsolid\n");
  for (const std::string to : scenes) {
    const std::string target = folder_.write("target." + to, "precious");
    const ProcessResult result = run_mendex({"convert", far, target});
    EXPECT_EQ(result.exit_code, 4) << to;
    EXPECT_NE(result.errors, "") << to;
    EXPECT_EQ(contents_of_file(target), "precious") << to;
  }
}

TEST_F(MendexScene, RefusesFilesWithoutAMesh) {
  const std::string cases[] = {folder_.write("a.obj", "v 0 0 0\n"), folder_.write("b.ply", "ply\nformat ascii 1.0\n"),
                               folder_.write("c.3mf", std::string("PK\x03\x04 3D/", 8)), folder_.write("d.fbx", "nothing"),
                               folder_.write("e.obj", "v 0 0 0\nv 1 0 0\nf 1 2 99999999\n"), folder_.write("f.gltf", "")};
  for (const std::string& path : cases) expect_refused({"info", path}, {}, 3, "mendex: ");
}

// Files with bytes changed, taken out and repeated end in an orderly way, soon: the importer breaks down on some of them.
TEST_F(MendexScene, DamagedFilesEndInAnOrderlyWay) {
  Random random(7);
  int refused = 0, read = 0;
  for (const std::string format : scenes) {
    convert(sample("open_box.ast"), folder_.path("a." + format));
    const std::string whole = contents_of_file(folder_.path("a." + format));
    for (int round = 0; round < 8; ++round) {
      std::string bytes = whole;
      for (int changes = random.between(1, 2); changes > 0; --changes) {
        const auto at = static_cast<std::size_t>(random.below(static_cast<int>(bytes.size())));
        switch (random.below(3)) {
          case 0: bytes[at] = static_cast<char>(random.below(256)); break;
          case 1: bytes.erase(at, static_cast<std::size_t>(1 + random.below(20))); break;
          default: bytes.insert(at, bytes.substr(at / 2, 30));
        }
      }
      const ProcessResult result = run_mendex({"info", folder_.write("damaged." + format, bytes)});
      EXPECT_TRUE(result.exit_code == 0 || result.exit_code == 3) << format << " " << round << ": " << result.exit_code << result.errors;
      ++(result.exit_code == 0 ? read : refused);
    }
  }
  EXPECT_GE(refused, 10);
  EXPECT_GE(read, 5);
}
