// A Reporter for tests: keeps every message and trace text in order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jmd/jmd_report.h"

namespace px::jmd {

class RecordingReporter : public Reporter {
 public:
  struct Entry {
    int number;
    std::vector<std::string> args;
    bool operator==(const Entry&) const = default;
  };

  void message(int n, const std::vector<std::string>& args) override {
    entries.push_back({n, args});
  }
  void trace(std::string_view text) override { entries.push_back({kMsgTrace, {std::string(text)}}); }

  // The numbered messages only, traces left out.
  std::vector<Entry> messages() const {
    std::vector<Entry> found;
    for (const Entry& e : entries) {
      if (e.number != kMsgTrace) found.push_back(e);
    }
    return found;
  }
  std::vector<std::string> traces() const {
    std::vector<std::string> found;
    for (const Entry& e : entries) {
      if (e.number == kMsgTrace) found.push_back(e.args.at(0));
    }
    return found;
  }

  std::vector<Entry> entries;
};

}  // namespace px::jmd
