# Two entry points: `make demo` and `make test`. Both install what is
# missing, configure and build first.
BUILD      ?= build
BUILD_ASAN ?= build-asan
BUILD_FUZZ ?= build-fuzz
FUZZ_SECONDS ?= 300
FUZZ_CI_SECONDS ?= 60
JOBS       ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: all deps build build-asan build-fuzz demo test test-fast test-asan fuzz fuzz-ci fuzz-seeds soak bench clean install-inkscape

all: build

deps:
	@bash scripts/install-deps.sh

# The main build uses clang: its code runs the mesh commands 5-30% faster
# than gcc 12's (docs/performance.md). The sanitizer build below uses gcc,
# so every change is compiled by both.
$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
	  -DCMAKE_CXX_COMPILER=clang++ $(CMAKE_FLAGS)

$(BUILD_ASAN)/build.ninja:
	cmake -S . -B $(BUILD_ASAN) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++ \
	  -DLB_SANITIZE=ON -DLB_BENCH=OFF $(CMAKE_FLAGS)

build: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

build-asan: deps $(BUILD_ASAN)/build.ninja
	cmake --build $(BUILD_ASAN) -j $(JOBS)

# The document fuzzer: clang with libFuzzer, ASan and UBSan, in its own
# build directory; only the reader and the host model are built.
$(BUILD_FUZZ)/build.ninja:
	cmake -S . -B $(BUILD_FUZZ) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
	  -DCMAKE_CXX_COMPILER=clang++ -DLB_FUZZ=ON -DLB_BENCH=OFF $(CMAKE_FLAGS)

build-fuzz: deps $(BUILD_FUZZ)/build.ninja
	cmake --build $(BUILD_FUZZ) -j $(JOBS) --target lbdoc_fuzz

# Seeds: the shipped examples, the hostile inputs and the demo documents.
fuzz-seeds: build
	rm -rf $(BUILD_FUZZ)/seeds $(BUILD_FUZZ)/demo-seeds
	mkdir -p $(BUILD_FUZZ)/seeds $(BUILD_FUZZ)/corpus $(BUILD_FUZZ)/demo-seeds
	./$(BUILD)/latticebender demo -o $(BUILD_FUZZ)/demo-seeds > /dev/null
	cp examples/*.lbdoc tests/io/hostile/*.lbdoc $(BUILD_FUZZ)/demo-seeds/*.lbdoc $(BUILD_FUZZ)/seeds/

# New inputs found go to $(BUILD_FUZZ)/corpus; a crash leaves crash-* files
# there and fails the target.
fuzz: build-fuzz fuzz-seeds
	cd $(BUILD_FUZZ) && ./lbdoc_fuzz -dict=../fuzz/lbdoc.dict -max_len=131072 -rss_limit_mb=2048 \
	  -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 corpus seeds

fuzz-ci: build-fuzz fuzz-seeds
	cd $(BUILD_FUZZ) && ./lbdoc_fuzz -dict=../fuzz/lbdoc.dict -max_len=131072 -rss_limit_mb=2048 \
	  -max_total_time=$(FUZZ_CI_SECONDS) -print_final_stats=1 corpus seeds

demo: build
	./$(BUILD)/latticebender demo -o demo-out

test-fast: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

test-asan: build-asan
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --test-dir $(BUILD_ASAN) --output-on-failure -j $(JOBS)

test: test-fast test-asan fuzz-ci

# A longer random-command soak than the tests run (LB_SOAK_SEED picks the seed).
soak: build-asan
	LB_SOAK_STEPS=$${LB_SOAK_STEPS:-50000} ASAN_OPTIONS=detect_leaks=1 ./$(BUILD_ASAN)/test_soak

bench: build
	@for b in $(BUILD)/bench_*; do echo "== $$b"; $$b --benchmark_min_time=0.05; done

clean:
	rm -rf $(BUILD) $(BUILD_ASAN) $(BUILD_FUZZ) demo-out

# The Inkscape extension for the current user: the .inx files and the
# script, and a link to the built program beside them.
INKSCAPE_EXT ?= $(shell inkscape --user-data-directory 2>/dev/null || echo $(HOME)/.config/inkscape)/extensions
install-inkscape: build
	mkdir -p "$(INKSCAPE_EXT)"
	cp extensions/inkscape/*.inx extensions/inkscape/latticebender.py "$(INKSCAPE_EXT)/"
	ln -sf "$(abspath $(BUILD))/latticebender" "$(INKSCAPE_EXT)/latticebender"
	@echo "installed into $(INKSCAPE_EXT); restart Inkscape and look under Extensions > LatticeBender"
