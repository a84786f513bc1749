// The program without the importer of scenes.

#include "failure.h"
#include "scene_file.h"

bool has_scene_importer() { return false; }

bool is_scene_extension(const std::string&) { return false; }

SceneMesh read_scene(const SceneSource&, SceneCorners) {
  throw Failure(ExitCode::cannot_read, "this build of the program cannot read scenes");
}

void write_scene(const SceneMesh&, MeshFormat, std::FILE*) {
  throw Failure(ExitCode::cannot_write, "this build of the program cannot write scenes");
}
