// Placeholder until the mesh engine's reader lands: accepts the size only.
#include "io/MeshJson.h"

namespace lb::io {

std::unique_ptr<lb::host::GradientMesh> meshFromJson(const nlohmann::json& art, const std::string& path) {
  auto mesh = std::make_unique<lb::host::GradientMesh>();
  if (!art.contains("size")) throw FormatError(path + ".size", "missing required key");
  const auto& size = art.at("size");
  mesh->initCartesian(size.at(0).get<int>(), size.at(1).get<int>());
  return mesh;
}

void meshToJson(const lb::host::GradientMesh& mesh, nlohmann::json& art) {
  art["size"] = {mesh.sizeI(), mesh.sizeJ()};
}

bool isMeshKey(const std::string& key) {
  return key == "size" || key == "u" || key == "v" || key == "nodes" || key == "runs";
}

}  // namespace lb::io
