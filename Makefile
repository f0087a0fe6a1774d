# Front door: `make demo` and `make test` work on a fresh Debian machine
# (after .ci/run or `make deps` has installed the packages).
BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc)
FUZZ_SECONDS ?= 60
DEMO_DIR   ?= demo-run
export MORVCORE_SEED ?= -12345

.PHONY: all build asan test test-fast demo bench fuzz format deps browser-check clean

all: build

deps:
	bash .ci/install-deps

build:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	cmake --build $(BUILD) -j $(JOBS)

asan:
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DMORVCORE_SANITIZE=ON >/dev/null
	cmake --build $(ASAN_BUILD) -j $(JOBS)

# Every test, once in the optimised build and once under ASan+UBSan.
test: build asan
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

test-fast: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

demo: build
	bash tools/demo.sh $(BUILD)/morvcore $(DEMO_DIR)

bench:
	cmake -S . -B $(BENCH_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release -DMORVCORE_TESTS=OFF -DMORVCORE_BENCH=ON >/dev/null
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	for b in $(BENCH_BUILD)/bench/bench_*; do $$b --benchmark_min_time=0.2; done

fuzz:
	CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMORVCORE_TESTS=OFF -DMORVCORE_FUZZ=ON >/dev/null
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	bash tools/fuzz.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

browser-check: build
	bash tools/browser_check.sh $(BUILD)/morvcore

format:
	find src tests bench fuzz -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD) $(DEMO_DIR)
