# Entry points for people and CI. Every target that builds first makes sure the Debian packages are there.
JOBS ?= $(shell nproc)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
PACKAGES := build-essential cmake pkg-config libpugixml-dev libgdal-dev libgtest-dev libgmock-dev \
            libbenchmark-dev libcli11-dev clang-format libexpat1-dev
# Only the fuzz smoke run needs them.
FUZZ_PACKAGES := clang libclang-rt-14-dev
FUZZ_SECONDS ?= 60
# A fixed seed and a run count make the smoke run the same inputs on every machine, so a clean local run of
# `make fuzz-smoke` says what CI will see; FUZZ_SECONDS only caps a slow machine. Raise FUZZ_RUNS or change
# FUZZ_SEED to explore further.
FUZZ_SEED ?= 1
FUZZ_RUNS ?= 150000
FUZZ_BUILD := build/fuzz
EXAMPLE ?= examples/city_centre.xml
ORVIA := build/dev/tools/orvia/orvia

.PHONY: deps fuzz-deps configure build run test test-asan bench docs format install-test fuzz-smoke fuzz-merge clean

# Installs those of the given Debian packages that are missing; does nothing when all are there.
define install_packages
	@missing=""; \
	for p in $(1); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing missing packages:$$missing"; \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get update -q && \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $$missing; \
	fi
endef

deps:
	$(call install_packages,$(PACKAGES))

fuzz-deps:
	$(call install_packages,$(FUZZ_PACKAGES))

build: deps
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)

run: build
	@./tools/run-demo.sh $(ORVIA) $(EXAMPLE)

test: build
	ctest --preset dev -j $(JOBS)

test-asan: deps
	cmake --preset asan
	cmake --build --preset asan -j $(JOBS)
	ctest --preset asan -j $(JOBS)

bench: deps
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	./tools/run-bench.sh build/release/bench

docs: build
	./build/dev/tools/format-doc/orvia-format-doc > docs/format.md.new && mv docs/format.md.new docs/format.md
	@echo "docs/format.md regenerated"

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

# The load fuzzer (clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer) for FUZZ_SECONDS on a copy
# of the seed corpora: load, post-load, queries of the curves, axes and pieces, save and reload. A crash, a leak,
# a query answering NaN or a round trip that does not settle fails the target; the input that did it is left in
# $(FUZZ_BUILD)/ as crash-*. Inputs are cut at FUZZ_MAX_LEN bytes, which keeps a run at thousands of inputs per
# second; allocation stacks are kept short for the same reason. `make fuzz-merge` minimises fuzz/corpus with
# what a run grew.
FUZZ_MAX_LEN ?= 2048
FUZZ_OPTIONS = -dict=$(FUZZ_BUILD)/ruvex.dict -max_len=$(FUZZ_MAX_LEN) -timeout=10 -rss_limit_mb=2048
FUZZ_ENV = ASAN_OPTIONS=malloc_context_size=2:detect_leaks=1
fuzz-smoke: deps fuzz-deps
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORVIA_FUZZ=ON \
	  -DORVIA_BUILD_TESTS=OFF -DORVIA_BUILD_TOOLS=OFF
	cmake --build $(FUZZ_BUILD) --target orvia_load_fuzz -j $(JOBS)
	rm -rf $(FUZZ_BUILD)/corpus && mkdir -p $(FUZZ_BUILD)/corpus
	find fuzz/corpus tests/data -type f -exec cp {} $(FUZZ_BUILD)/corpus/ \;
	./fuzz/dictionary.sh docs/format.md > $(FUZZ_BUILD)/ruvex.dict
	$(FUZZ_ENV) $(FUZZ_BUILD)/fuzz/orvia_load_fuzz $(FUZZ_BUILD)/corpus $(FUZZ_OPTIONS) \
	  -seed=$(FUZZ_SEED) -runs=$(FUZZ_RUNS) -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/

fuzz-merge:
	rm -rf $(FUZZ_BUILD)/merged && mkdir -p $(FUZZ_BUILD)/merged
	$(FUZZ_ENV) $(FUZZ_BUILD)/fuzz/orvia_load_fuzz -merge=1 $(FUZZ_OPTIONS) $(FUZZ_BUILD)/merged fuzz/corpus \
	  $(FUZZ_BUILD)/corpus
	rm -f fuzz/corpus/* && cp $(FUZZ_BUILD)/merged/* fuzz/corpus/

clean:
	rm -rf build
