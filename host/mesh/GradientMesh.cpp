#include "host/mesh/GradientMesh.h"

namespace lb::host {

struct GradientMesh::Impl {
  int i = 1;
  int j = 1;
};

GradientMesh::GradientMesh() : impl_(std::make_unique<Impl>()) {}
GradientMesh::~GradientMesh() = default;
GradientMesh::GradientMesh(const GradientMesh& o) : impl_(std::make_unique<Impl>(*o.impl_)) {}
GradientMesh& GradientMesh::operator=(const GradientMesh& o) {
  *impl_ = *o.impl_;
  return *this;
}
void GradientMesh::initCartesian(int i, int j) {
  impl_->i = i;
  impl_->j = j;
}
int GradientMesh::sizeI() const { return impl_->i; }
int GradientMesh::sizeJ() const { return impl_->j; }

}  // namespace lb::host
