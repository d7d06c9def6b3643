# SPDX-License-Identifier: MIT
#
# A thin front on CMake: see CMakePresets.json for the builds and scripts/deps.sh for what they need.

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
PREFIX ?= /usr/local

# The build people run needs no test library; the options are given each time, since CMake remembers them.
configure_plain = cmake --preset release -DTALLYQUILL_TESTS=OFF -DTALLYQUILL_BENCH=OFF
configure_tests = cmake --preset $(1) -DTALLYQUILL_TESTS=ON -DTALLYQUILL_BENCH=OFF
# Nothing is built for the linters, so precompiled headers would be missing.
configure_lint = $(call configure_tests,release) -B build/lint -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON $(unity)
unity = -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=16
compile = cmake --build --preset $(1) -j $(JOBS)

bundle = build/release/bin/Tallyquill.app
window = $(bundle)/$(if $(filter Darwin,$(shell uname -s)),Contents/MacOS/)Tallyquill

# Four tests of windows run at a time, and they wait more than they work.
test_jobs = $(shell expr $(JOBS) + 3)

define build_and_test
	$(call configure_tests,$(1)) </dev/null
	$(call compile,$(1)) </dev/null
	ctest --preset $(1) -j $(test_jobs) </dev/null
endef

# Seconds for each fuzz target, and the most bytes of an input without sanitizers: short ones run fast.
FUZZ_SECONDS ?= 60
FUZZ_LENGTH ?= 128
# Changes of sources that are tried; SEED=N draws those of an earlier run again.
MUTANTS ?= 200

.NOTPARALLEL:
.PHONY: help deps build terminal run test gcc sanitize fuzz fuzz-fast faults mutants coverage lint format bench bench-check \
    install uninstall dist dist-check package package-check clean

help: ## list the targets
	@awk -F ':.*## ' '/^[a-z-]+:.*## / { printf "  make %-13s %s\n", $$1, $$2 }' Makefile

deps: ## install what building and testing need (does nothing when all is there)
	@scripts/deps.sh test

build: ## build every program into build/release/bin
	@scripts/deps.sh run
	$(configure_plain) </dev/null
	$(call compile,release) </dev/null

terminal: ## build the program for terminals alone, which needs no window, into build/terminal/bin
	@scripts/deps.sh terminal
	$(configure_plain) -B build/terminal -DTALLYQUILL_WINDOW=OFF </dev/null
	cmake --build build/terminal -j $(JOBS) </dev/null

run: ## build and open the calculator: its window, or the console in this terminal where there is no display
	@scripts/deps.sh run
	@mkdir -p build
	@[ -x $(window) ] || echo "building the calculator, which takes minutes the first time; progress in build/run.log ..." >&2
	@{ $(configure_plain) && $(call compile,release); } </dev/null >build/run.log 2>&1 || { cat build/run.log >&2; exit 1; }
	@scripts/run.sh $(window) build/release/bin/tallyquill

test: deps ## build what people run and pass all its tests
	$(call build_and_test,release)

gcc: deps ## build with g++, without the window, and test
	$(call build_and_test,gcc)

sanitize: deps ## build with the address and undefined-behavior sanitizers and test
	$(call build_and_test,sanitize)

fuzz: deps ## run the fuzz targets with sanitizers, FUZZ_SECONDS each (60)
	cmake --preset fuzz </dev/null
	$(call compile,fuzz) </dev/null
	scripts/fuzz.sh $(FUZZ_SECONDS) build/fuzz/found build/fuzz/bin/fuzz_*

fuzz-fast: deps ## run them without sanitizers, which is several times as fast
	cmake --preset fuzz-fast </dev/null
	$(call compile,fuzz-fast) </dev/null
	FUZZ_LENGTH=$(FUZZ_LENGTH) scripts/fuzz.sh $(FUZZ_SECONDS) build/fuzz/found build/fuzz-fast/bin/fuzz_*

# Runs in which the program is killed, and runs of each other fault; entries of the long session.
FAULTS_KILLS ?= 1000
FAULTS_OTHERS ?= 20
SOAK_ENTRIES ?= 1000000
# The window: entries, kills, runs short of memory, and beside them seconds of previews and of use.
WINDOW_FAULTS ?= previews=3600 use=3600 entries=100000 kills=200 changes=20 memory=40
window_faults = tests/app/with_display.sh --wm --limit 90000 env PYTHONDONTWRITEBYTECODE=1 \
    TALLYQUILL_APP=$(CURDIR)/build/release/bin/Tallyquill.app/Tallyquill tests/faults/window.py

faults: deps ## kill the program at random moments, take its files away, have it in other places, and long sessions
	$(call configure_tests,release) </dev/null
	$(call compile,release) </dev/null
	tests/faults/faults.py build/release/bin/tallyquill --kills $(FAULTS_KILLS) --others $(FAULTS_OTHERS)
	tests/faults/places.py build/release/bin
	nice tests/faults/soak.py build/release/bin/tallyquill $(SOAK_ENTRIES)
	nice tests/faults/soak.py build/release/bin/tallyquill $(SOAK_ENTRIES) editor
	printf '%s\n' $(WINDOW_FAULTS) | xargs -n 1 -P 3 $(window_faults)

mutants: deps ## change one operator or constant at a time: do the tests notice? (MUTANTS=200, SEED=)
	scripts/mutants.py --jobs $(JOBS) --count $(MUTANTS) $(if $(SEED),--seed $(SEED))

profiles = $(CURDIR)/build/coverage/profiles
# A program that is killed has its counts too when it keeps them in a file of its own (%c%p).
killing = ^(screen|plain|app)\.
# Not the installed library: counting adds symbols that its headers do not declare.
coverage: deps ## count what the tests run of each file; those below the bar are printed
	cmake --preset coverage </dev/null
	$(call compile,coverage) </dev/null
	rm -rf $(profiles)
	LLVM_PROFILE_FILE='$(profiles)/%2m.profraw' ctest --preset coverage -j $(test_jobs) -E '$(killing)|^library\.' </dev/null
	LLVM_PROFILE_FILE='$(profiles)/%c%p.profraw' ctest --preset coverage -j $(test_jobs) -R '$(killing)' </dev/null
	scripts/coverage.py build/coverage

lint: deps ## check format and license lines, run cppcheck and clang-tidy
	$(configure_lint) </dev/null
	scripts/lint.sh build/lint $(JOBS)

format: deps ## rewrite the sources in the project's format
	git ls-files '*.cpp' '*.mm' '*.h' | xargs clang-format -i

bench: deps ## build and run the benchmarks, also against other calculators
	cmake --preset release -DTALLYQUILL_TESTS=OFF -DTALLYQUILL_BENCH=ON </dev/null
	$(call compile,release) </dev/null
	build/release/bin/tallyquill_bench
	build/release/bin/preview_bench
	[ ! -x build/release/bin/key_press_bench ] || tests/app/with_display.sh --limit 600 build/release/bin/key_press_bench
	bench/peers.py build/release/bin/tallyquill

bench-check: deps ## count instructions: more than 3 % above bench/instructions.txt fails
	cmake --preset release -DTALLYQUILL_TESTS=OFF -DTALLYQUILL_BENCH=ON </dev/null
	$(call compile,release) </dev/null
	bench/instructions.py build/release/bin

install: ## build and install below PREFIX (/usr/local); DESTDIR goes before it
	@scripts/deps.sh run
	$(configure_plain) -DCMAKE_INSTALL_PREFIX=$(PREFIX) </dev/null # which the library on macOS names
	$(call compile,release) </dev/null
	cmake --install build/release
	cp build/release/install_manifest.txt build/installed.txt
	@[ -n "$(DESTDIR)" ] || packaging/refresh.sh $(PREFIX)

uninstall: ## remove what make install has installed, with the same PREFIX and DESTDIR
	packaging/uninstall.sh build/installed.txt $(PREFIX)
	@[ -n "$(DESTDIR)" ] || packaging/refresh.sh $(PREFIX)

dist: ## pack the last commit into build/dist: the same commit, the same bytes
	packaging/source.sh build/dist

dist-check: deps dist ## as root: build and test the source archive where there is no network
	packaging/check_source.sh build/dist

package: ## build Debian packages of the last commit into build/packages
	@scripts/deps.sh package
	packaging/package.sh build/packages

package-check: package ## as root: install the packages in a fresh system, use them, upgrade, remove
	packaging/check.sh build/packages

clean: ## remove everything that was built
	rm -rf build
