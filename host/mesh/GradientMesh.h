// The host's gradient-mesh engine: one mesh of I x J patches.
// (Skeleton; the engine fills this in.)
#pragma once

#include <memory>

#include "AIMeshSuites.h"

namespace lb::host {

class GradientMesh {
 public:
  GradientMesh();
  ~GradientMesh();
  GradientMesh(const GradientMesh&);
  GradientMesh& operator=(const GradientMesh&);

  // Fresh grid of i x j cells spanning the unit square.
  void initCartesian(int i, int j);
  int sizeI() const;
  int sizeJ() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace lb::host
