// Runs plug-in code linked into the test against the host's own suite
// tables, some of whose members a test may swap for failing ones.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "MeshDoc.h"
#include "Suites.h"
#include "host/SuiteRegistry.h"

namespace sctest {

class SuiteFixture : public ::testing::Test {
 protected:
  void Load(const std::vector<MeshPlan>& meshes) {
    host.reset();  // one host at a time
    host = std::make_unique<lb::host::Host>(lb::io::readDocument(DocText(meshes)));
    mesh = *static_cast<const AIMeshSuite*>(lb::host::findSuite(kAIMeshSuite, kAIMeshSuiteVersion));
    vertex = *static_cast<const AIMeshVertexIteratorSuite*>(
        lb::host::findSuite(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion));
    lb::s::sMesh = &mesh;
    lb::s::sMeshVertexIterator = &vertex;
    lb::s::sMeshSelection = static_cast<const AIMeshSelectionSuite*>(
        lb::host::findSuite(kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion));
    lb::s::sMeshSegmentIterator = static_cast<const AIMeshSegmentIteratorSuite*>(
        lb::host::findSuite(kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion));
    lb::s::sMeshPatchIterator = static_cast<const AIMeshPatchIteratorSuite*>(
        lb::host::findSuite(kAIMeshPatchIteratorSuite, kAIMeshPatchIteratorSuiteVersion));
    lb::s::sArt = static_cast<const AIArtSuite*>(lb::host::findSuite(kAIArtSuite, kAIArtSuiteVersion));
    lb::s::sAIMatchingArt = static_cast<const AIMatchingArtSuite*>(
        lb::host::findSuite(kAIMatchingArtSuite, kAIMatchingArtSuiteVersion));
    lb::s::sMdMemory =
        static_cast<const AIMdMemorySuite*>(lb::host::findSuite(kAIMdMemorySuite, kAIMdMemorySuiteVersion));
    ASSERT_NE(lb::s::sMeshSelection, nullptr);
    ASSERT_NE(lb::s::sArt, nullptr);
    ASSERT_NE(lb::s::sAIMatchingArt, nullptr);
    ASSERT_NE(mesh.GetSize, nullptr);
    before = host->counters();
  }
  void TearDown() override {
    lb::s::sMesh = nullptr;
    lb::s::sMeshVertexIterator = nullptr;
    lb::s::sMeshSelection = nullptr;
    lb::s::sMeshSegmentIterator = nullptr;
    lb::s::sMeshPatchIterator = nullptr;
    lb::s::sArt = nullptr;
    lb::s::sAIMatchingArt = nullptr;
    lb::s::sMdMemory = nullptr;
    host.reset();
  }
  // The k-th mesh of the first layer (topmost first).
  AIArtHandle Mesh(size_t k) const { return host->document().layers()[0]->children[k].get(); }
  MeshState State(size_t k) const {
    const auto doc = nlohmann::json::parse(lb::io::writeDocument(host->document()));
    return MeshState(doc.at("layers").at(0).at("children").at(k));
  }
  bool NoLeaks() const { return host->counters() == before; }

  std::unique_ptr<lb::host::Host> host;
  AIMeshSuite mesh{};                 // editable copies of the host's tables
  AIMeshVertexIteratorSuite vertex{};
  lb::host::Counters before;
};

}  // namespace sctest
