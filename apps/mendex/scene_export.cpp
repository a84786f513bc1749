// Scenes written: by ourselves where the Open Asset Import Library would lose digits or colours, the others through it.

#include <assimp/material.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Exporter.hpp>
#include <memory>

#include "failure.h"
#include "json_values.h"
#include "scene_3mf.h"
#include "scene_file.h"
#include "scene_polygon_files.h"

namespace {

aiColor4D colour_of(int packed) {
  const giColour c = tr_decode_colour(packed);
  const auto part = [](std::uint8_t x) { return static_cast<float>(x) / 255.0f; };
  return aiColor4D(part(c.red()), part(c.green()), part(c.blue()), part(c.alpha()));
}

aiVector3D narrowed(const std::array<double, 3>& p) {
  return aiVector3D(static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]));
}

// Triangles from `first` up to `last` of a mesh as a part of a scene, with the vertices that they use.
aiMesh* make_part(const SceneMesh& mesh, std::size_t first, std::size_t last, std::vector<int>& numbers) {
  auto part = std::make_unique<aiMesh>();
  part->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
  part->mNumFaces = static_cast<unsigned>(last - first);
  part->mFaces = new aiFace[last - first];
  std::vector<int> used;
  for (std::size_t k = first; k < last; ++k) {
    aiFace& face = part->mFaces[k - first];
    face.mNumIndices = 3;
    face.mIndices = new unsigned[3];
    for (std::size_t c = 0; c < 3; ++c) {
      int& number = numbers[static_cast<std::size_t>(mesh.triangles[k][c])];
      if (number < 0) {
        number = static_cast<int>(used.size());
        used.push_back(mesh.triangles[k][c]);
      }
      face.mIndices[c] = static_cast<unsigned>(number);
    }
  }
  part->mNumVertices = static_cast<unsigned>(used.size());
  part->mVertices = new aiVector3D[used.size()];
  for (std::size_t k = 0; k < used.size(); ++k) {
    part->mVertices[k] = narrowed(mesh.points[static_cast<std::size_t>(used[k])]);
    numbers[static_cast<std::size_t>(used[k])] = -1;  // free for the next part
  }
  return part.release();
}

// A part for each colour; the triangles are sorted by it.
void add_part_of_each_colour(const SceneMesh& mesh, std::vector<aiMesh*>& parts, std::vector<aiMaterial*>& materials) {
  std::vector<int> numbers(mesh.points.size(), -1);
  const std::size_t count = mesh.triangles.size();
  for (std::size_t first = 0, last = 0; first < count; first = last) {
    while (last < count && (mesh.colours.empty() || mesh.colours[last] == mesh.colours[first])) ++last;
    aiMesh* const part = make_part(mesh, first, last, numbers);
    part->mMaterialIndex = static_cast<unsigned>(materials.size());
    parts.push_back(part);
    auto* const material = new aiMaterial;
    const aiString name(mesh.colours.empty() ? std::string(AI_DEFAULT_MATERIAL_NAME) : "colour" + std::to_string(materials.size() + 1));
    material->AddProperty(&name, AI_MATKEY_NAME);
    const aiColor4D colour = colour_of(mesh.colours.empty() ? NO_COLOUR : mesh.colours[first]);
    material->AddProperty(&colour, 1, AI_MATKEY_COLOR_DIFFUSE);
    materials.push_back(material);
  }
}

template <class T>
T* copy_of(const std::vector<T>& list) {
  T* const copy = new T[list.size()];
  std::copy(list.begin(), list.end(), copy);
  return copy;
}

// A root with one node that holds all parts.
std::unique_ptr<aiScene> make_scene(const SceneMesh& mesh) {
  std::vector<aiMesh*> parts;
  std::vector<aiMaterial*> materials;
  add_part_of_each_colour(mesh, parts, materials);
  auto scene = std::make_unique<aiScene>();
  scene->mMetaData = new aiMetadata;
  scene->mNumMeshes = static_cast<unsigned>(parts.size());
  scene->mMeshes = copy_of(parts);
  scene->mNumMaterials = static_cast<unsigned>(materials.size());
  scene->mMaterials = copy_of(materials);
  scene->mRootNode = new aiNode("scene");
  auto* node = new aiNode("mesh");
  std::vector<unsigned> numbers;
  for (unsigned k = 0; k < scene->mNumMeshes; ++k) numbers.push_back(k);
  node->mNumMeshes = scene->mNumMeshes;
  node->mMeshes = copy_of(numbers);
  scene->mRootNode->addChildren(1, &node);
  return scene;
}

[[noreturn]] void fail(const std::string& why) { throw Failure(ExitCode::cannot_write, "cannot be written: " + why); }

std::string base64(const void* data, std::size_t size) {
  constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const auto* const bytes = static_cast<const unsigned char*>(data);
  std::string text;
  text.reserve((size + 2) / 3 * 4);
  for (std::size_t at = 0; at < size; at += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (at + k < size ? bytes[at + k] : 0u);
    for (std::size_t k = 0; k < 4; ++k) text += at + k > size ? '=' : digits[group >> (18 - 6 * k) & 63u];
  }
  return text;
}

// The buffer goes into the file itself: two files could not take their targets' places at once.
std::string with_own_buffer(const aiExportDataBlob& blob) {
  std::string scene;
  if (blob.next != nullptr) {
    scene = with_buffer(std::string(static_cast<const char*>(blob.data), blob.size),
                        "data:application/octet-stream;base64," + base64(blob.next->data, blob.next->size));
  }
  if (scene.empty()) fail("the exporter gave no buffer");
  return scene;
}

std::string exported_bytes(const aiScene& scene, MeshFormat format) {
  const char* const id = format == MeshFormat::gltf ? "gltf2" : (format == MeshFormat::glb ? "glb2" : "collada");
  Assimp::Exporter exporter;
  const aiExportDataBlob* const blob = exporter.ExportToBlob(&scene, id);
  if (blob == nullptr) fail(exporter.GetErrorString());
  if (format == MeshFormat::gltf) return with_own_buffer(*blob);
  return std::string(static_cast<const char*>(blob->data), blob->size);
}

}  // namespace

void write_scene(const SceneMesh& mesh, MeshFormat format, std::FILE* stream) {
  bool is_written = false;
  switch (format) {
    case MeshFormat::obj: is_written = write_obj(mesh, stream); break;
    case MeshFormat::ply: is_written = write_ply(mesh, stream); break;
    case MeshFormat::off: is_written = write_off(mesh, stream); break;
    case MeshFormat::three_mf: is_written = write_3mf(mesh, stream); break;
    default: {
      const std::string bytes = exported_bytes(*make_scene(mesh), format);
      is_written = std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
    }
  }
  if (!is_written) throw Failure(ExitCode::cannot_write, "cannot be written");
}
