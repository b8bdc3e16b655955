# Entry points for people and CI. Every target that builds first makes sure the Debian packages are there.
JOBS ?= $(shell nproc)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
PACKAGES := build-essential cmake pkg-config libpugixml-dev libgdal-dev libgtest-dev libgmock-dev \
            libbenchmark-dev libcli11-dev clang-format
EXAMPLE ?= examples/city_centre.xml
ORVIA := build/dev/tools/orvia/orvia

.PHONY: deps configure build run test test-asan bench docs format install-test clean

deps:
	@missing=""; \
	for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing missing packages:$$missing"; \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get update -q && \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $$missing; \
	fi

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

clean:
	rm -rf build
