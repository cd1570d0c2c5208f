# Two entry points: `make demo` and `make test`. Both install what is
# missing, configure and build first.
BUILD      ?= build
BUILD_ASAN ?= build-asan
JOBS       ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: all deps build build-asan demo test test-fast test-asan bench clean install-inkscape

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

$(BUILD_ASAN)/build.ninja:
	cmake -S . -B $(BUILD_ASAN) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DLB_SANITIZE=ON -DLB_BENCH=OFF $(CMAKE_FLAGS)

build: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

build-asan: deps $(BUILD_ASAN)/build.ninja
	cmake --build $(BUILD_ASAN) -j $(JOBS)

demo: build
	./$(BUILD)/latticebender demo -o demo-out

test-fast: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

test-asan: build-asan
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --test-dir $(BUILD_ASAN) --output-on-failure -j $(JOBS)

test: test-fast test-asan

bench: build
	@for b in $(BUILD)/bench_*; do echo "== $$b"; $$b --benchmark_min_time=0.05; done

clean:
	rm -rf $(BUILD) $(BUILD_ASAN) demo-out

# The Inkscape extension for the current user: the .inx files and the
# script, and a link to the built program beside them.
INKSCAPE_EXT ?= $(shell inkscape --user-data-directory 2>/dev/null || echo $(HOME)/.config/inkscape)/extensions
install-inkscape: build
	mkdir -p "$(INKSCAPE_EXT)"
	cp extensions/inkscape/*.inx extensions/inkscape/latticebender.py "$(INKSCAPE_EXT)/"
	ln -sf "$(abspath $(BUILD))/latticebender" "$(INKSCAPE_EXT)/latticebender"
	@echo "installed into $(INKSCAPE_EXT); restart Inkscape and look under Extensions > LatticeBender"
