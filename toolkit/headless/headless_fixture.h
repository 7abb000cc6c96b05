// For the toolkit's own tests: a headless toolkit that finds the sample
// resources beside the catalogue, a handler that records its events, and
// failures collected instead of aborting.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/headless/headless_toolkit.h"
#include "toolkit/headless/sample_resources.h"

namespace px::tk::sample {

class HeadlessTest : public ::testing::Test {
 protected:
  HeadlessTest() : tk(lookup()) {
    tk.set_failure_handler([this](const std::string& what) { failures.push_back(what); });
  }
  void TearDown() override {
    tk.verify_scripts_used();
    EXPECT_TRUE(failures.empty()) << failures.front();
  }
  // Opens the sample dialog modally with the recorder as its handler (OK
  // and Cancel close it) and runs body on it as its script.
  void with_sample(const std::function<void(Window)>& body) {
    tk.on_dialog(kSampleDialog, [&](Window d) {
      body(d);
      if (d.exists()) d.destroy();
    });
    Handler record = rec.handler();
    ASSERT_TRUE(tk.run_modal_dialog(kSampleDialog, [record](const Event& e) {
      record(e);
      if (e.is_control(kOk, Notice::kClicked) || e.is_control(kCancel, Notice::kClicked)) {
        e.window.destroy();
      }
    }));
  }

  std::vector<std::string> failures;
  HeadlessToolkit tk;
  Recorder rec;
};

}  // namespace px::tk::sample
