# A thin front: every target sets the machine up, configures and builds as far as it needs to.

JOBS := $(shell nproc)

.PHONY: all setup build demo test check format bench fuzz install locales clean

all: build

setup:
	@scripts/setup

build: setup
	@cmake --preset release >build.log 2>&1 || { cat build.log; exit 1; }; rm -f build.log
	@cmake --build --preset release -j $(JOBS)

demo: build
	@scripts/demo

test: build
	@ctest --preset release

check: build
	@scripts/check

format:
	@git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format -i

bench: build
	@scripts/bench

fuzz: setup
	@scripts/fuzz

install: build
	@cmake --install build $(if $(PREFIX),--prefix $(PREFIX))

locales: build
	@scripts/make-locales

clean:
	@rm -rf build build-asan build-clang
