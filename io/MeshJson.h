// Reading and writing the "mesh" art object of a .lbdoc file.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "host/mesh/GradientMesh.h"
#include "io/FormatError.h"
#include "io/JsonDom.h"
#include "io/JsonWriter.h"

namespace lb::io {

// Builds a mesh from the mesh keys of one art object ("size", "u", "v",
// "nodes", "runs"). `path` is the JSON path of the art object, used in
// error messages. Throws FormatError. Keys common to all art ("type",
// "id", "name", "selected", ...) are the caller's; they are ignored here.
std::unique_ptr<lb::host::GradientMesh> meshFromTree(const JsonRef& art, const std::string& path);
// The same on an nlohmann::json value (for tools and tests).
std::unique_ptr<lb::host::GradientMesh> meshFromJson(const nlohmann::json& art, const std::string& path);

// Writes the mesh keys (everything but the common art keys) as members of
// the object being written.
void writeMeshKeys(JsonWriter& w, const lb::host::GradientMesh& mesh);
// The same into an nlohmann::json object.
void meshToJson(const lb::host::GradientMesh& mesh, nlohmann::json& art);

// The mesh-specific keys meshFromJson reads, for unknown-key checks.
bool isMeshKey(std::string_view key);

}  // namespace lb::io
