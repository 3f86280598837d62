# Wraps the CMake presets, so that nobody has to know them. `make help` lists what there is.

BOOK := examples/workbooks/plan.xlsx
QTO := build/release/bin/qto
SOURCE_DIRS := $(wildcard qto cli examples tests benchmarks)
SOURCES = $(shell find $(SOURCE_DIRS) -name '*.hpp' -o -name '*.cpp')

.PHONY: help demo build test benchmarks headers sanitize tsan windows fuzz tidy bench format check packages dev-packages clean
.DEFAULT_GOAL := help

help: ## list the targets
	@sed -n 's/^\([a-z-]*\):.*## /\1\t/p' $(MAKEFILE_LIST) | expand -t 14

demo: build ## build the command and ask its three questions of the shipped example
	@printf '\n== What feeds the net debt of 2026? (tree, three levels) ==\n\n'
	$(QTO) tree $(BOOK) 'Summary!C7' --depth 3
	@printf '\n== Which input cells does it rest on? (inputs) ==\n\n'
	$(QTO) inputs $(BOOK) 'Summary!C7'
	@printf '\n== Where does the #DIV/0! of the covenant come from? (errors) ==\n\n'
	$(QTO) errors $(BOOK) 'Summary!B15'

build: packages ## build the command: build/release/bin/qto
	cmake --preset release
	cmake --build --preset release --target qto

test: packages ## build everything and run every test
	cmake --preset release
	cmake --build --preset release
	ctest --preset release

headers: packages ## every installed header compiles on its own
	cmake --preset release
	cmake --build --preset headers

sanitize: packages ## the tests under AddressSanitizer and UndefinedBehaviorSanitizer
	cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize

tsan: packages ## the tests of threads under ThreadSanitizer
	cmake --preset tsan
	cmake --build --preset tsan
	ctest --preset tsan

windows: ## the same libraries and command for Windows, tests under Wine; left out where that cannot be
	tools/windows/check.sh x64
	tools/windows/check.sh x86

FUZZ_SECONDS ?= 10
fuzz: ## each fuzzer for FUZZ_SECONDS (10) from its seeds; what fails is kept in build/fuzz/findings
	tools/install_packages.sh --fuzz
	cmake --preset fuzz
	cmake --build --preset fuzz
	python3 tools/run_fuzzers.py --seconds $(FUZZ_SECONDS)

tidy: dev-packages ## every source compiles alone, clang-tidy looks at those of the product
	cmake --preset dev
	cmake --preset release
	cmake --build --preset dev --target uno_headers
	cmake --build --preset release --target uno_headers
	python3 tools/compile_alone.py --tidy build/release build/dev

benchmarks: packages ## build the programs that measure
	cmake --preset bench
	cmake --build --preset bench

bench: benchmarks ## generate the benchmark books and measure
	python3 tools/bench.py

format: dev-packages ## format the sources in place
	clang-format -i $(SOURCES)

check: dev-packages ## formatting, the direction of includes, names of files
	@echo "clang-format: every source file"
	@clang-format --dry-run --Werror $(SOURCES)
	python3 tools/check_includes.py
	python3 tools/check_names.py

packages:
	@tools/install_packages.sh

dev-packages:
	@tools/install_packages.sh --dev

clean: ## remove everything that was built
	rm -rf build
