# What a newcomer types. Every target installs what is missing first.
PRESET ?= mingw-release
BUILD  := build/$(PRESET)
JOBS   ?= 2

# The pure rules built natively with clang, each under libFuzzer with ASan and UBSan.
FUZZ_BUILD := build/linux-fuzz

.PHONY: setup configure build test test-clang demo bench clean fuzz-build fuzz

setup:
	@./scripts/setup.sh

configure: setup
	@[ -f $(BUILD)/build.ninja ] && [ -f $(BUILD)/compile_commands.json ] || cmake --preset $(PRESET)

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# Everything, through CTest, on a private headless display; the Wine server is stopped afterwards.
# Then every fuzzer for a few seconds, natively, and every source and test once through clang's
# front end (syntax and warnings only) as a second compiler.
test: build fuzz-build
	./scripts/run-tests.sh $(BUILD) $(JOBS)
	ctest --test-dir $(FUZZ_BUILD) -L short --output-on-failure -j $(JOBS)
	./scripts/clang-syntax.py $(BUILD) $(JOBS)

# The same DLL and tests built by clang for the mingw target, run under Wine: the second compiler.
# Kept out of `make test` because a second full build would double CI's time.
test-clang: setup
	@[ -f build/clang-mingw-debug/build.ninja ] || cmake --preset clang-mingw-debug
	cmake --build build/clang-mingw-debug -j $(JOBS)
	./scripts/run-tests.sh build/clang-mingw-debug $(JOBS)

fuzz-build: setup
	@[ -f $(FUZZ_BUILD)/build.ninja ] || cmake -S fuzz -B $(FUZZ_BUILD) -G Ninja -DCMAKE_CXX_COMPILER=clang++
	cmake --build $(FUZZ_BUILD) -j $(JOBS)

# Every fuzzer for a minute (CORVANE_FUZZ_LONG_SECONDS in the fuzz tree's cache).
fuzz: fuzz-build
	ctest --test-dir $(FUZZ_BUILD) -L long --output-on-failure -j $(JOBS)

demo: build
	./scripts/with-xvfb.sh ./scripts/demo.sh $(BUILD)

bench: build
	./scripts/with-xvfb.sh ./scripts/bench.sh $(BUILD)

clean:
	rm -rf build
