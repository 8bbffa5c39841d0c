# Thin wrapper over CMake presets. `make demo` and `make test` work on a fresh Debian machine.
JOBS ?= $(shell nproc)
DEMO_DIR ?= demo-output
PREFIX ?= $(HOME)/.local

FUZZ_SECONDS ?= 60

.PHONY: deps build release test demo install bench fuzz format clean

deps:
	./scripts/install-deps.sh

build: deps
	cmake --preset dev >/dev/null
	cmake --build --preset dev -j $(JOBS)

release: deps
	cmake --preset release >/dev/null
	cmake --build --preset release -j $(JOBS)

test: deps
	cmake --preset ci >/dev/null
	cmake --build --preset ci -j $(JOBS)
	ctest --preset ci -j $(JOBS)

# The demo needs only the two programs, not the tests and benchmarks.
demo: deps
	cmake --preset release >/dev/null
	cmake --build --preset release -j $(JOBS) --target varo varo-gui
	./build/release/src/cli/varo demo $(DEMO_DIR)

# Puts varo and varo-gui in $(PREFIX)/bin, with a desktop entry and an icon for varo-gui.
install: deps
	cmake --preset release -DCMAKE_INSTALL_PREFIX="$(PREFIX)" >/dev/null
	cmake --build --preset release -j $(JOBS) --target varo varo-gui
	cmake --install build/release --prefix "$(PREFIX)"
	@case ":$$PATH:" in *":$(PREFIX)/bin:"*) ;; \
	  *) echo "Note: $(PREFIX)/bin is not on your PATH; add it to run varo and varo-gui by name." ;; esac

bench: release
	./bench/run-all.sh build/release

# The libFuzzer targets of the file readers, FUZZ_SECONDS each; not part of `make test`.
fuzz: deps
	cmake --preset fuzz >/dev/null
	cmake --build --preset fuzz -j $(JOBS)
	./scripts/run-fuzzers.sh build/fuzz $(FUZZ_SECONDS)

format: deps
	find src tests bench -name '*.cpp' -o -name '*.hpp' | xargs clang-format -i

clean:
	rm -rf build
