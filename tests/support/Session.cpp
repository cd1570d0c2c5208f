// Tests: the session — host, document, plug-in and counter checks.
#include "support/Session.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "Suites.h"
#include "color/ColorOpacity.h"
#include "host/Document.h"
#include "host/SuiteRegistry.h"
#include "io/Lbdoc.h"

namespace lbtest {

Session::Session(const json& doc, Mode mode)
    : host_(std::make_unique<lb::host::Host>(lb::io::readDocument(doc.dump()))), mode_(mode) {
  if (mode_ == Module) host_->loadPlugin();
  if (mode_ == Linked) {
    gsSPBasic = const_cast<SPBasicSuite*>(
        static_cast<const SPBasicSuite*>(lb::host::findSuite(kSPBasicSuite, kSPBasicSuiteVersion)));
    if (!gsSPBasic || lb::s::AcquireSuites() != kNoErr) throw std::runtime_error("cannot acquire the command suites");
    // The paint switches are the plug-in's globals: start from their
    // initial state whatever an earlier test left.
    saved_ = {CColorOpacity::sm_bUseColor, CColorOpacity::sm_bUseOpacity, CColorOpacity::sm_bUseAll};
    CColorOpacity::sm_bUseColor = 1, CColorOpacity::sm_bUseOpacity = 0, CColorOpacity::sm_bUseAll = 0;
    mesh_ = *lb::s::sMesh;
    vertex_ = *lb::s::sMeshVertexIterator;
    lb::s::sMesh = &mesh_;
    lb::s::sMeshVertexIterator = &vertex_;
  }
  start_ = host_->counters();
}

Session::~Session() {
  EXPECT_TRUE(balanced()) << "the session left a host object alive";
  if (mode_ == Linked) {
    lb::s::ReleaseSuites();
    gsSPBasic = nullptr;
    CColorOpacity::sm_bUseColor = saved_[0], CColorOpacity::sm_bUseOpacity = saved_[1], CColorOpacity::sm_bUseAll = saved_[2];
  }
}

AIErr Session::run(int id, bool alt, bool ctrl, bool useColor, bool useOpacity) {
  const lb::host::Counters before = host_->counters();
  const AIErr err = host_->runCommand(id, alt, ctrl, useColor, useOpacity);
  EXPECT_EQ(host_->counters(), before) << "command " << id << " left a host object alive";
  return err;
}

json Session::runWritten(int id, bool alt, bool ctrl, bool useColor, bool useOpacity) {
  run(id, alt, ctrl, useColor, useOpacity);
  return written();
}

bool Session::balanced() const { return host_->counters() == start_; }

json Session::runLayer(int id, bool alt, bool ctrl) {
  run(id, alt, ctrl);
  const std::string text = lb::io::writeDocument(host_->document());
  EXPECT_EQ(lb::io::writeDocument(*lb::io::readDocument(text)), text) << "command " << id;
  const json doc = json::parse(text);
  return Children(doc);
}

json Session::written() { return json::parse(lb::io::writeDocument(host_->document())); }
MeshState Session::mesh(size_t k) { return MeshState(Children(written()).at(k)); }
MeshContent Session::content(size_t k) { return ReadMesh(Children(written()).at(k)); }

ArtObject* Session::art(size_t k) { return host_->document().layers().at(0)->children.at(k).get(); }
size_t Session::artCount() { return host_->document().layers().at(0)->children.size(); }

lb::host::GradientMesh& Session::engine(size_t k) {
  ArtObject* a = art(k);
  if (!a->mesh) throw std::runtime_error("art " + std::to_string(k) + " is not a mesh");
  return *a->mesh;
}

}  // namespace lbtest
