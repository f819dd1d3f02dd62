#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <cmath>
#include <stdexcept>
#include <string>

#include "pictures/mesh.h"

namespace pictures {

namespace {

void add(std::vector<float>& to, std::initializer_list<float> values) { to.insert(to.end(), values); }

void addVertex(Mesh& mesh, const aiMesh& from, unsigned i) {
  const aiVector3D position = from.mVertices[i];
  const aiVector3D normal = from.HasNormals() ? from.mNormals[i] : aiVector3D(0, 0, 1);
  // Without texture coordinates there is no direction to follow: any across the normal.
  aiVector3D tangent = normal ^ (std::abs(normal.y) < 0.9f ? aiVector3D(0, -1, 0) : aiVector3D(1, 0, 0));
  aiVector3D down = tangent ^ normal;
  if (from.HasTangentsAndBitangents()) {
    tangent = from.mTangents[i];
    down = from.mBitangents[i];
  }
  tangent.NormalizeSafe();
  const float handedness = (normal ^ tangent) * down < 0 ? -1.0f : 1.0f;
  add(mesh.parts["position"], {position.x, position.y, position.z});
  add(mesh.parts["normal"], {normal.x, normal.y, normal.z});
  add(mesh.parts["tangent"], {tangent.x, tangent.y, tangent.z, handedness});
  for (unsigned set = 0; set < 4; ++set) {
    // Sets that the file does not have are like the first.
    const unsigned given = from.HasTextureCoords(set) ? set : 0;
    const aiVector3D uv = from.HasTextureCoords(given) ? from.mTextureCoords[given][i] : aiVector3D();
    add(mesh.parts["texCoord" + std::to_string(set)], {uv.x, uv.y});
  }
  const aiColor4D color = from.HasVertexColors(0) ? from.mColors[0][i] : aiColor4D(1, 1, 1, 1);
  add(mesh.parts["color"], {color.r, color.g, color.b, color.a});
}

[[noreturn]] void cannotRead(const std::filesystem::path& file, const std::string& reason) {
  throw std::runtime_error("cannot read `" + file.string() + "`: " + reason);
}

}  // namespace

Mesh readMesh(const std::filesystem::path& file) {
  Assimp::Importer importer;
  importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
  // Texture coordinates of the library run up.
  constexpr unsigned kSteps = aiProcess_Triangulate | aiProcess_SortByPType | aiProcess_PreTransformVertices |
                              aiProcess_GenSmoothNormals | aiProcess_FlipUVs | aiProcess_CalcTangentSpace;
  const aiScene* const scene = importer.ReadFile(file.string(), kSteps);
  if (scene == nullptr) cannotRead(file, importer.GetErrorString());
  Mesh mesh;
  for (unsigned m = 0; m < scene->mNumMeshes; ++m) {
    const aiMesh& part = *scene->mMeshes[m];
    for (unsigned f = 0; f < part.mNumFaces; ++f) {
      const aiFace& face = part.mFaces[f];
      for (unsigned k = 0; k < face.mNumIndices && face.mNumIndices == 3; ++k)
        addVertex(mesh, part, face.mIndices[k]);
    }
  }
  if (mesh.parts.empty()) cannotRead(file, "it holds no triangles");
  for (const float number : mesh.parts.at("position"))
    if (!std::isfinite(number)) cannotRead(file, "a position of it is not finite");
  return mesh;
}

}  // namespace pictures
