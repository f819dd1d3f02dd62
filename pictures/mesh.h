#pragma once

// Triangles to show a material on.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "pictures/matrix.h"

namespace pictures {

/// Three vertices for each triangle, counter-clockwise from outside. Texture coordinates run to the right and
/// down, v 0 at the top. Its parts are those of a host::MeshLayout, and "position".
struct Mesh {
  std::map<std::string, std::vector<float>> parts;

  std::size_t vertices() const { return parts.at("position").size() / 3; }
  /// The middle of the box around it.
  Vector middle() const;
  /// From there to the farthest vertex.
  double radius() const;
  void scaleTexCoords(double u, double v);
};

/// The names of shapes, each within a sphere of radius 1 around the origin.
const std::vector<std::string>& shapeNames();
/// Throws std::runtime_error for an unknown one.
Mesh makeShape(const std::string& name);

/// All meshes of a file (OBJ, glTF), in one; tangents and normals are made where the file has none. Throws
/// std::runtime_error, whose text names the file.
Mesh readMesh(const std::filesystem::path& file);

}  // namespace pictures
