// For the web cockpit's tests: a server's fixed things, requests, and a mirror that knows a memory.
#pragma once
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "base/bytes.h"
#include "cockpit/answers.h"

namespace cockpit_tests {

inline ctl::Site SiteOf(const std::string& token = "") {
  static const std::string file = [] {
    std::ifstream stream(TAVRIX_SOURCE_DIR "/docs/offsets.json", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }();
  ctl::Site site;
  site.access = {{"localhost", "127.0.0.1", "[::1]", "simpc"}, 8440, token};
  site.panels = site.recordings = "/no/such/folder";
  site.names = ctl::KnownOffsets();
  EXPECT_TRUE(ctl::ReadOffsetsFile(file, &site.offsets));
  return site;
}

inline ctl::WebRequest RequestOf(const std::string& method, const std::string& target,
                                 const std::string& body = "") {
  ctl::WebRequest request = {method, target, {{"Host", "127.0.0.1:8440"}}, body};
  if (!body.empty()) request.headers.push_back({"Content-Type", "application/json; charset=utf-8"});
  return request;
}

// Connected at second 10, with these values in the memory.
inline ctl::Mirror MirrorOf(const std::vector<ctl::ByteChange>& bytes = {}) {
  ctl::Mirror mirror;
  ctl::Batch batch;
  batch.connected = batch.isNew = true;
  batch.source = "network 127.0.0.1";
  batch.changes = bytes;
  ctl::ApplyBatch(batch, 10, &mirror);
  return mirror;
}

inline ctl::Batch BatchOf(const std::vector<ctl::ByteChange>& bytes) {
  ctl::Batch batch;
  batch.connected = true;
  batch.changes = bytes;
  return batch;
}

inline std::vector<ctl::ByteChange> WordAt(uint32_t offset, uint16_t value) {
  return {{offset, static_cast<uint8_t>(value)}, {offset + 1, static_cast<uint8_t>(value >> 8)}};
}

}  // namespace cockpit_tests
