# A thin front over CMake and scripts/. demo, test, check and bench set the machine up first; the other
# targets say what to run when a tool is missing.

JOBS := $(shell nproc)
need = @command -v $(1) >/dev/null || { echo "$(1) is missing; run: scripts/setup"; exit 1; }

.PHONY: all setup build demo test check tidy format bench fuzz install locales clean

all: build

setup:
	@scripts/setup

build:
	$(call need,cmake)
	$(call need,ninja)
	@scripts/quietly cmake --preset release
	@cmake --build --preset release -j $(JOBS)

demo: setup
	@$(MAKE) --no-print-directory build
	@scripts/demo

test: setup
	@$(MAKE) --no-print-directory build
	@ctest --preset release

check: setup
	@$(MAKE) --no-print-directory build
	@scripts/check

bench: setup
	@$(MAKE) --no-print-directory build
	@scripts/bench

tidy: build
	$(call need,clang-tidy)
	@scripts/tidy

format:
	$(call need,clang-format)
	@git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format -i

fuzz:
	$(call need,clang)
	@scripts/fuzz

install: build
	@cmake --install build $(if $(PREFIX),--prefix $(PREFIX))

locales: build
	@scripts/make-locales

clean:
	@rm -rf build build-asan build-clang
