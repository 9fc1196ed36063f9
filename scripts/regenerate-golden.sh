#!/usr/bin/env bash
# Rewrites the golden files from the current build. Review the result with
#   git diff --stat tests/data
# The column-format tables come from gfortran instead:
#   tests/data/column_format/make_cases.sh
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
kalden=$build/bin/kalden

"$kalden" records tests/data/main/hand_edited.rec TITL cell xyz CXYZ XYZ LRES ZZZZ \
  > tests/data/main/hand_edited.records

# List-file heads of the engine's input stage.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/engine_input_stage_test" \
  --gtest_filter='Projects/InputGolden.*' > /dev/null

# Files of whole runs.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/engine_output_golden_test" \
  > /dev/null

# The result table of the refined corundum example.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/tools_table_test" > /dev/null

# Distance lists of the refined corundum example.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/tools_distances_test" > /dev/null

# Fourier plot and peak files of the small example.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/tools_fourier_files_test" \
  > /dev/null

# CIF and raw data report of the refined corundum example.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/tools_cif_writer_test" > /dev/null

# The drawing commands of the pattern plot of the refined corundum example.
KALDENA_UPDATE_GOLDEN=1 KALDENA_TEST_DATA=tests/data "$build/bin/shell_pattern_plot_test" > /dev/null

# The refined parameter files of the first-run examples.
cmake -DKALDEN="$PWD/$kalden" -DEXAMPLES=examples -DDATA=tests/data -DWORK="$build/examples" \
  -DUPDATE=1 -P tests/main/examples_test.cmake
