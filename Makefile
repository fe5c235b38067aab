# What a newcomer types. Every target installs what is missing first.
PRESET ?= mingw-release
BUILD  := build/$(PRESET)
JOBS   ?= 2

.PHONY: setup configure build test demo bench clean

setup:
	@./scripts/setup.sh

configure: setup
	@[ -f $(BUILD)/build.ninja ] || cmake --preset $(PRESET)

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# Everything, through CTest, on a private headless display; the Wine server is stopped afterwards.
test: build
	./scripts/run-tests.sh $(BUILD) $(JOBS)

demo: build
	./scripts/with-xvfb.sh ./scripts/demo.sh $(BUILD)

bench: build
	./scripts/with-xvfb.sh ./scripts/bench.sh $(BUILD)

clean:
	rm -rf build
