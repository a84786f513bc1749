// Scenes read through the Open Asset Import Library.

#include <assimp/DefaultIOSystem.h>
#include <assimp/MemoryIOWrapper.h>
#include <assimp/config.h>
#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <sys/stat.h>

#include <assimp/Importer.hpp>
#include <climits>
#include <cmath>
#include <stdexcept>

#include "failure.h"
#include "process_apart.h"
#include "scene_file.h"

namespace {

// The scene file from memory, and for what it names beside it only regular files: a device or a pipe would be waited for.
class SceneFiles : public Assimp::DefaultIOSystem {
 public:
  SceneFiles(std::string name, const std::string& contents) : name_(std::move(name)), contents_(contents) {}

  bool Exists(const char* path) const override { return path == name_ || is_regular(path); }
  Assimp::IOStream* Open(const char* path, const char* mode) override {
    if (mode[0] != 'r') return nullptr;
    if (path == name_) {
      return new Assimp::MemoryIOStream(reinterpret_cast<const std::uint8_t*>(contents_.data()), contents_.size());
    }
    return is_regular(path) ? DefaultIOSystem::Open(path, mode) : nullptr;
  }

 private:
  static bool is_regular(const char* path) {
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
  }

  std::string name_;
  const std::string& contents_;
};

// Rows of an affine map.
struct Placement {
  double rows[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};

  std::array<double, 3> apply(const aiVector3D& v) const {
    const double from[3] = {v.x, v.y, v.z};
    if (is_identity) return {from[0], from[1], from[2]};  // the others would make not-a-numbers of infinite values
    std::array<double, 3> to = {};
    for (std::size_t r = 0; r < 3; ++r) to[r] = rows[r][0] * from[0] + rows[r][1] * from[1] + rows[r][2] * from[2] + rows[r][3];
    return to;
  }

  Placement followed_by_inner(const aiMatrix4x4& inner) const {
    if (inner.IsIdentity()) return *this;
    const double m[4][4] = {{inner.a1, inner.a2, inner.a3, inner.a4},
                            {inner.b1, inner.b2, inner.b3, inner.b4},
                            {inner.c1, inner.c2, inner.c3, inner.c4},
                            {0.0, 0.0, 0.0, 1.0}};
    Placement product;
    product.is_identity = false;
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 4; ++c) {
        product.rows[r][c] = 0.0;
        for (int k = 0; k < 4; ++k) product.rows[r][c] += rows[r][k] * m[k][c];
      }
    }
    return product;
  }

  bool is_mirror() const {
    return rows[0][0] * (rows[1][1] * rows[2][2] - rows[1][2] * rows[2][1]) -
               rows[0][1] * (rows[1][0] * rows[2][2] - rows[1][2] * rows[2][0]) +
               rows[0][2] * (rows[1][0] * rows[2][1] - rows[1][1] * rows[2][0]) <
           0.0;
  }

  bool is_identity = true;
};

std::uint8_t component(double x) { return static_cast<std::uint8_t>(std::lround(std::fmin(std::fmax(x, 0.0), 1.0) * 255.0)); }

int packed(double red, double green, double blue, double alpha) {
  return tr_encode_colour(giColour(component(red), component(green), component(blue), component(alpha)));
}

// Joins the meshes of a scene into one.
class SceneFlattener {
 public:
  SceneFlattener(const aiScene& scene, MeshFormat format) : scene_(scene) {
    // Importers give surfaces without a material one of their own, which these formats always get.
    const bool has_materials = format != MeshFormat::ply && format != MeshFormat::off;
    for (unsigned k = 0; k < scene.mNumMaterials; ++k) {
      material_colours_.push_back(has_materials ? colour_of(*scene.mMaterials[k]) : NO_COLOUR);
    }
  }

  SceneMesh flatten() {
    struct Visit {
      const aiNode* node;
      Placement placement;
    };
    std::vector<Visit> open;
    if (scene_.mRootNode != nullptr) open.push_back({scene_.mRootNode, Placement()});
    while (!open.empty()) {
      const Visit visit = open.back();
      open.pop_back();
      const Placement placement = visit.placement.followed_by_inner(visit.node->mTransformation);
      for (unsigned k = 0; k < visit.node->mNumMeshes; ++k) {
        const unsigned number = visit.node->mMeshes[k];
        if (number < scene_.mNumMeshes) add(*scene_.mMeshes[number], placement);
      }
      for (unsigned k = visit.node->mNumChildren; k > 0; --k) open.push_back({visit.node->mChildren[k - 1], placement});
    }
    if (!has_colours_) mesh_.colours.clear();
    return std::move(mesh_);
  }

 private:
  static int colour_of(const aiMaterial& material) {
    aiString name;
    aiColor4D colour(1.0f, 1.0f, 1.0f, 1.0f);
    material.Get(AI_MATKEY_NAME, name);
    if (std::string(name.C_Str()) == AI_DEFAULT_MATERIAL_NAME) return NO_COLOUR;
    if (material.Get(AI_MATKEY_COLOR_DIFFUSE, colour) != aiReturn_SUCCESS) return NO_COLOUR;
    return packed(colour.r, colour.g, colour.b, colour.a);
  }

  void add(const aiMesh& part, const Placement& placement) {
    if (part.mVertices == nullptr) return;
    if (mesh_.points.size() + part.mNumVertices > most_entries || mesh_.triangles.size() + part.mNumFaces > most_entries) {
      throw std::runtime_error("has more triangles than can be numbered");
    }
    const auto first = static_cast<int>(mesh_.points.size());
    for (unsigned k = 0; k < part.mNumVertices; ++k) mesh_.points.push_back(placement.apply(part.mVertices[k]));
    const bool is_mirrored = placement.is_mirror();
    for (unsigned k = 0; k < part.mNumFaces; ++k) {
      const aiFace& face = part.mFaces[k];
      if (!is_triangle(part, face)) {
        ++mesh_.other_faces;
        continue;
      }
      const auto corner = [&](unsigned c) { return first + static_cast<int>(face.mIndices[c]); };
      mesh_.triangles.push_back({corner(0), corner(is_mirrored ? 2 : 1), corner(is_mirrored ? 1 : 2)});
      const int colour = colour_of_face(part, face);
      has_colours_ |= colour != NO_COLOUR;
      mesh_.colours.push_back(colour);
    }
  }

  static bool is_triangle(const aiMesh& part, const aiFace& face) {
    if (face.mNumIndices != 3) return false;
    for (unsigned c = 0; c < 3; ++c) {
      if (face.mIndices[c] >= part.mNumVertices) return false;
    }
    return true;
  }

  // The mean of its corners' colours, else its material's.
  int colour_of_face(const aiMesh& part, const aiFace& face) const {
    const aiColor4D* const of_vertices = part.mColors[0];
    if (of_vertices == nullptr) {
      return part.mMaterialIndex < material_colours_.size() ? material_colours_[part.mMaterialIndex] : NO_COLOUR;
    }
    double sum[4] = {};
    for (unsigned c = 0; c < 3; ++c) {
      const aiColor4D& colour = of_vertices[face.mIndices[c]];
      const double parts[4] = {colour.r, colour.g, colour.b, colour.a};
      for (int k = 0; k < 4; ++k) sum[k] += parts[k];
    }
    return packed(sum[0] / 3, sum[1] / 3, sum[2] / 3, sum[3] / 3);
  }

  static constexpr std::size_t most_entries = INT_MAX / 2;

  const aiScene& scene_;
  std::vector<int> material_colours_;
  SceneMesh mesh_;
  bool has_colours_ = false;
};

// Whether the importer keeps vertices shared as they are in the file; the others repeat them for each triangle, or the format does so for
// each normal, and formats without colours of triangles for each colour.
bool keeps_sharing(const SceneMesh& mesh, MeshFormat format) {
  return mesh.colours.empty() && (format == MeshFormat::ply || format == MeshFormat::off || format == MeshFormat::three_mf);
}

// The importer goes by the extension where it cannot go by a signature.
std::string telling_name(const SceneSource& source) {
  if (source.format == MeshFormat::other_scene) return source.path;
  const std::string extension = extension_of(source.format);
  return extension_in(source.path) == extension ? source.path : source.path + "." + extension;
}

// Nothing is given back: the process ends.
std::string import(const SceneSource& source, SceneCorners corners) {
  auto& importer = *new Assimp::Importer;
  const std::string name = telling_name(source);
  importer.SetIOHandler(new SceneFiles(name, source.contents));
  importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, true);
  const aiScene* const scene = importer.ReadFile(name, aiProcess_Triangulate);
  if (scene == nullptr) throw std::runtime_error(std::string("the importer cannot read it: ") + importer.GetErrorString());
  SceneMesh mesh = SceneFlattener(*scene, source.format).flatten();
  if (corners == SceneCorners::joined) {
    if (!keeps_sharing(mesh, source.format)) mesh.join_vertices();
    mesh.drop_collapsed();
  }
  return mesh.bytes();
}

}  // namespace

bool has_scene_importer() { return true; }

bool is_scene_extension(const std::string& extension) {
  return !extension.empty() && extension != "stl" && Assimp::Importer().IsExtensionSupported("." + extension);
}

SceneMesh read_scene(const SceneSource& source, SceneCorners corners) {
  const std::uint64_t size = source.contents.size();
  WorkLimits limits;
  limits.seconds = static_cast<int>(5 + size / 200'000);
  limits.bytes = (std::uint64_t{2} << 30) + 256 * size;
  SceneMesh mesh;
  if (!mesh.take_bytes(run_apart([&] { return import(source, corners); }, limits))) {
    throw Failure(ExitCode::cannot_read, "is damaged: the importer of its format broke down");
  }
  return mesh;
}
