// A document loaded into the host with the plug-in running, driven the way
// a click on the panel drives it.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <nlohmann/json.hpp>

#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace dirtest {

constexpr int kUvReset = 166;
constexpr int kDirRotate = 167;

class Session {
 public:
  explicit Session(const nlohmann::json& doc) : host_(lb::io::readDocument(doc.dump())) { host_.loadPlugin(); }

  // Runs one command, checks that it left no host object alive, and
  // returns the document as written.
  nlohmann::json run(int id, bool alt, bool ctrl, bool useColor = true, bool useOpacity = true) {
    const lb::host::Counters before = host_.counters();
    host_.runCommand(id, alt, ctrl, useColor, useOpacity);
    EXPECT_EQ(host_.counters(), before) << "command " << id << " leaked a host object";
    return written();
  }

  nlohmann::json written() { return nlohmann::json::parse(lb::io::writeDocument(host_.document())); }
  lb::host::Host& host() { return host_; }

 private:
  lb::host::Host host_;
};

inline const nlohmann::json& Children(const nlohmann::json& doc) { return doc.at("layers")[0].at("children"); }

}  // namespace dirtest
