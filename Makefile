# Front door: `make run` builds and runs the command-line tool, `make test` runs the suite.
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

run: build
	$(BUILD)/bin/kalden help

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
