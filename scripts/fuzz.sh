#!/usr/bin/env bash
# Builds the libFuzzer targets with clang, AddressSanitizer and UBSan, and runs one of them.
# Usage: scripts/fuzz.sh TARGET SECONDS   (TARGET: record_store)
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:-record_store}
seconds=${2:-60}
build=${FUZZ_BUILD:-build-fuzz}
flags="-fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=undefined -g -O1"
cmake -S . -B "$build" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_BUILD_TYPE=Debug -DKALDENA_FUZZ=ON -DKALDENA_TESTS=OFF -DKALDENA_BENCH=OFF \
  -DCMAKE_CXX_FLAGS="$flags" > /dev/null
cmake --build "$build" -j "$(nproc)" --target "${target}_fuzz"
corpus=$build/corpus/$target
mkdir -p "$corpus"
cp -n tests/data/main/*.rec tests/data/engine/input/*.rec tests/data/tools/*.cif \
  tests/data/tools/cif_import/*.cif "$corpus"/ 2>/dev/null || true
"$build"/bin/"${target}_fuzz" -max_total_time="$seconds" -max_len=65536 -timeout=10 "$corpus"
