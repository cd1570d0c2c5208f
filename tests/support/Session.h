// Tests: a document in the stand-in host with the plug-in running, driven command by command.
//
// Usage, modes and the live-object checks: tests/support/README.md. One
// Session at a time: the host's suites are process-wide.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "AIMeshSuites.h"
#include "LBModule.h"
#include "host/Host.h"
#include "host/mesh/GradientMesh.h"
#include "support/MeshRead.h"
#include "support/MeshRecipe.h"

namespace lbtest {

class Session {
 public:
  enum Mode { Module, Linked, Bare };
  explicit Session(const json& doc, Mode mode = Module);
  explicit Session(const MeshRecipe& m, Mode mode = Module) : Session(DocJson(m), mode) {}
  explicit Session(const std::vector<MeshRecipe>& ms, Mode mode = Module) : Session(DocJson(MeshJsons(ms)), mode) {}
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Runs panel command `id` with the modifier keys and the two checkboxes.
  AIErr run(int id, bool alt = false, bool ctrl = false, bool useColor = true, bool useOpacity = true);

  // run(), then the document as written.
  json runWritten(int id, bool alt = false, bool ctrl = false, bool useColor = true, bool useOpacity = true);
  json written();                    // the document as the host writes it
  // run(), then the first layer's children as written, after checking
  // that the written document reads back to the same text.
  json runLayer(int id, bool alt = false, bool ctrl = false);
  MeshState mesh(size_t k);          // k-th art of the first layer, written
  MeshContent content(size_t k);
  // The k-th art of the first layer in the host.
  ArtObject* art(size_t k);
  size_t artCount();
  lb::host::GradientMesh& engine(size_t k = 0);
  lb::host::Host& host() { return *host_; }
  // The host's counters are back at the session's start.
  bool balanced() const;

  // Linked mode only: the tables the plug-in's lb::s::sMesh and
  // lb::s::sMeshVertexIterator point at.
  AIMeshSuite& meshTable() { return mesh_; }
  AIMeshVertexIteratorSuite& vertexTable() { return vertex_; }

 private:
  std::unique_ptr<lb::host::Host> host_;
  Mode mode_;
  lb::host::Counters start_;
  AIMeshSuite mesh_{};
  AIMeshVertexIteratorSuite vertex_{};
  std::array<int, 3> saved_{};  // paint switches before a Linked session
};

// Names the cases of a parameterised test by their `name` field.
struct ByName {
  template <class T>
  std::string operator()(const ::testing::TestParamInfo<T>& info) const {
    return info.param.name;
  }
};

// A test of plug-in code linked in: one Linked session at a time, made
// by Load() and ended before the next one and at TearDown.
class LinkedTest : public ::testing::Test {
 protected:
  void Load(const json& doc) {
    session.reset();
    session = std::make_unique<Session>(doc, Session::Linked);
  }
  void Load(const std::vector<MeshRecipe>& meshes) { Load(DocJson(MeshJsons(meshes))); }
  void Load(const MeshRecipe& m) { Load(DocJson(m)); }
  void TearDown() override { session.reset(); }
  AIArtHandle Mesh(size_t k) { return session->art(k); }
  MeshState State(size_t k) { return session->mesh(k); }
  bool NoLeaks() const { return session->balanced(); }
  AIMeshSuite& mesh() { return session->meshTable(); }
  AIMeshVertexIteratorSuite& vertex() { return session->vertexTable(); }

  std::unique_ptr<Session> session;
};

}  // namespace lbtest
