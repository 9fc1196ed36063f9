// The scripted toolkit for tests: a call on a dialog field that the dialog's resource lacks,
// or a scripted answer that the dialog on screen would refuse, fails the running test.
#pragma once

#include <gtest/gtest.h>

#include "toolkit/headless_toolkit.h"

namespace kaldena::testing {

class CheckedToolkit : public ScriptedToolkit {
 public:
  using ScriptedToolkit::ScriptedToolkit;
  ~CheckedToolkit() override {
    for (const std::string& problem : ResourceProblems()) ADD_FAILURE() << problem;
  }
};

}  // namespace kaldena::testing
