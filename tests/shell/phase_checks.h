// Checks shared by the tests of the phase commands and dialogs: the phases of a parameter
// file, their comparison within the digits of the writing layouts, and a file's lines.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "shell/phase_records.h"
#include "util/report.h"
#include "util/text.h"

namespace kaldena::testing {

inline ProjectPhases ReadPhases(const std::string& file) {
  RecordingReporter reporter;
  RecordStore store(reporter);
  EXPECT_GT(store.jReadRecFile(file), 0) << file;
  ProjectPhases project;
  std::string error;
  EXPECT_TRUE(ReadProjectPhases(store, project, error)) << error;
  return project;
}

// Equal within the digits of the writing layouts (f10.5, f9.5 and the four of e12.4).
template <size_t N>
void ExpectNear(const std::array<float, N>& a, const std::array<float, N>& b) {
  for (size_t i = 0; i < N; ++i) EXPECT_NEAR(a[i], b[i], 1e-4f * std::abs(b[i]) + 6e-6f) << i;
}

// Head, values and atoms alike; the codewords are the caller's to compare.
inline void ExpectSamePhase(const PhaseRecords& a, const PhaseRecords& b) {
  EXPECT_EQ(a.title, b.title);
  EXPECT_EQ(a.spaceGroup, b.spaceGroup);
  ExpectNear(a.cell, b.cell);
  ExpectNear(a.scale, b.scale);
  ExpectNear(a.widths, b.widths);
  ExpectNear(a.shape, b.shape);
  ASSERT_EQ(a.atoms.size(), b.atoms.size());
  for (size_t i = 0; i < a.atoms.size(); ++i) {
    EXPECT_EQ(a.atoms[i].label, b.atoms[i].label);
    EXPECT_EQ(a.atoms[i].type, b.atoms[i].type);
    EXPECT_EQ(a.atoms[i].siteFactor, b.atoms[i].siteFactor);
    ExpectNear(a.atoms[i].values, b.atoms[i].values);
  }
}

// The lines of a text, trailing blanks cut.
inline std::vector<std::string> TextLines(std::string_view text) {
  std::vector<std::string> lines;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    lines.emplace_back(StrippedText(text.substr(start, end - start)));
    start = end + 1;
  }
  return lines;
}

}  // namespace kaldena::testing
