# Front door: `make run` builds and refines the example project, `make test` runs the suite.
BUILD ?= build
JOBS  ?= $(shell nproc)

.PHONY: all deps configure build run test bench golden fuzz clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

# Refines the corundum example in a copy under the build directory, so the sources stay clean.
run: build
	@mkdir -p $(BUILD)/example
	@cp examples/corundum/corundum.rec examples/corundum/corundum.xy $(BUILD)/example/
	@cd $(BUILD)/example && ../bin/kalden run corundum.rec
	@cd $(BUILD)/example && ../bin/kalden plot corundum.rec --out corundum.png
	@echo "Results in $(BUILD)/example: %corundum.out (list file), %corundum.par (refined project), corundum.png (plot)"

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

bench: build
	$(BUILD)/bin/kaldena_bench

# Rewrites every golden file from the current build; review with `git diff --stat tests/data`.
golden: build
	@scripts/regenerate-golden.sh $(BUILD)

# One libFuzzer target for a while: make fuzz TARGET=record_store SECONDS=300
TARGET  ?= record_store
SECONDS ?= 60
fuzz:
	@scripts/fuzz.sh $(TARGET) $(SECONDS)

clean:
	rm -rf $(BUILD) build-fuzz
