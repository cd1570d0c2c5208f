// Calls into the mesh engine that the document, the file reader and the
// summary use where the engine offers them. Each is checked at compile time,
// so callers build against every stage of the engine; where a call is not
// offered the helper does nothing and says so through its result.
#pragma once

#include <concepts>
#include <optional>

#include "AITypes.h"
#include "host/mesh/GradientMesh.h"

namespace lb::host::meshaccess {

template <class M = GradientMesh>
bool selectAll(M& m) {
  if constexpr (requires { m.selectAll(); }) {
    m.selectAll();
    return true;
  } else {
    return false;
  }
}

template <class M = GradientMesh>
bool clearSelection(M& m) {
  if constexpr (requires { m.clearSelection(); }) {
    m.clearSelection();
    return true;
  } else {
    return false;
  }
}

// nullopt when the engine cannot tell.
template <class M = GradientMesh>
std::optional<bool> isSelectionEmpty(const M& m) {
  if constexpr (requires { { m.isSelectionEmpty() } -> std::convertible_to<bool>; })
    return static_cast<bool>(m.isSelectionEmpty());
  else
    return std::nullopt;
}

template <class M = GradientMesh>
std::optional<AIRealRect> bounds(const M& m) {
  if constexpr (requires { { m.bounds() } -> std::convertible_to<AIRealRect>; })
    return AIRealRect(m.bounds());
  else if constexpr (requires { { m.bounds() } -> std::convertible_to<std::optional<AIRealRect>>; })
    return std::optional<AIRealRect>(m.bounds());
  else
    return std::nullopt;
}

template <class M = GradientMesh>
bool transform(M& m, const AIRealMatrix& matrix) {
  if constexpr (requires { m.transform(matrix); }) {
    m.transform(matrix);
    return true;
  } else {
    return false;
  }
}

// Number of vertices and of selected vertices, when the engine counts them.
template <class M = GradientMesh>
std::optional<long> vertexCount(const M& m) {
  if constexpr (requires { { m.vertexCount() } -> std::convertible_to<long>; })
    return static_cast<long>(m.vertexCount());
  else
    return std::nullopt;
}

template <class M = GradientMesh>
std::optional<long> selectedVertexCount(const M& m) {
  if constexpr (requires { { m.selectedVertexCount() } -> std::convertible_to<long>; })
    return static_cast<long>(m.selectedVertexCount());
  else if constexpr (requires { { m.selectedCount() } -> std::convertible_to<long>; })
    return static_cast<long>(m.selectedCount());
  else
    return std::nullopt;
}

}  // namespace lb::host::meshaccess
