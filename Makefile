# The commands of the project. The presets in CMakePresets.json define the builds; this file only puts
# the steps in order.

.DEFAULT_GOAL := help
.PHONY: help build run test check bench screenshots fuzz trash-proof image-proof asan tsan
.PHONY: fleet-check format format-check tidy clean package package-check macos-check

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
BOOTSTRAP ?= scripts/bootstrap
FUZZ_SECONDS ?= 20
TRASH_ROUNDS ?= 100000
IMAGE_MEGABYTES ?= 2048

# The presets compile the same sources into different folders. Without the folder in the cache's
# key they share their results. A precompiled header is known to the cache by its content.
export CCACHE_NOHASHDIR := 1
export CCACHE_SLOPPINESS := pch_defines,time_macros

SOURCES = find src tests fuzz bench -name '*.h' -o -name '*.cpp'

# $(call prepare,PRESET,TARGETS): configures a preset and builds targets of it.
prepare = cmake --preset $(1) && cmake --build build/$(1) -j $(JOBS) --target $(2)

help:
	@echo 'make run           build the program and start it (without a display: --headless)'
	@echo 'make test          build everything, warnings being errors, and run all tests'
	@echo 'make check         build and run the unit tests alone'
	@echo ''
	@echo 'make build         build what is shipped: build/release/tallowcrest'
	@echo 'make package       build the Debian package: build/package/tallowcrest_*.deb'
	@echo 'make package-check build it twice, install it into a new Debian and remove it again'
	@echo 'make macos-check   compile and link for macOS, with a compiler of 400 MB that is downloaded once'
	@echo 'make bench         micro-benchmarks, then the whole program beside its neighbours'
	@echo 'make screenshots   take docs/screenshots/ anew'
	@echo 'make fuzz          run each fuzz target for FUZZ_SECONDS (now $(FUZZ_SECONDS))'
	@echo 'make trash-proof   move files to the Trash against a hostile thread, TRASH_ROUNDS (now $(TRASH_ROUNDS))'
	@echo 'make image-proof   download an update of IMAGE_MEGABYTES (now $(IMAGE_MEGABYTES)) within 16 MB of memory'
	@echo 'make asan          all tests under the address and undefined behaviour sanitizers'
	@echo 'make tsan          all tests under the thread sanitizer'
	@echo 'make fleet-check   collect from the program with the real exporter and server'
	@echo 'make format        lay out the source; make format-check only looks'
	@echo 'make tidy          static analysis of the source and the scripts'
	@echo 'make clean         remove build/'
	@echo ''
	@echo 'JOBS=N sets how many steps run at a time (now $(JOBS)). BOOTSTRAP=: leaves out the'
	@echo 'installation of missing packages. ARGS are handed to the program by make run.'

build:
	@$(BOOTSTRAP) --build
	$(call prepare,release,tallowcrest tallowcrest-desktop)

package:
	@$(BOOTSTRAP) --package
	rm -f build/package/tallowcrest_*.deb
	$(call prepare,package,package)

package-check: package
	scripts/package-check

run: build
	@if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then \
	    exec build/release/tallowcrest $(ARGS); \
	else \
	    echo 'No display here, so this runs without a window: build/release/tallowcrest --headless'; \
	    exec build/release/tallowcrest --headless $(ARGS); \
	fi

# The end-to-end programs mostly wait for the next sample, so more tests run at a time than there are
# cores. Configuring the preset without Qt is enough: its sources are those of dev, where the layers
# below the window do not see Qt's headers either.
test:
	@$(BOOTSTRAP)
	$(call prepare,dev,all)
	cmake --preset headless
	ctest --preset dev -j $$(($(JOBS) + 2))

check:
	@$(BOOTSTRAP)
	$(call prepare,dev,unit_tests)
	ctest --preset unit -j $$(($(JOBS) + 2))

macos-check:
	@$(BOOTSTRAP) --macos
	JOBS=$(JOBS) scripts/macos-check

bench:
	@$(BOOTSTRAP)
	cmake --preset release -DTALLOWCREST_BENCH=ON
	cmake --build build/release -j $(JOBS)
	scripts/each-program build/release/bench
	bench/whole_process
	bench/exchange

screenshots: build
	@$(BOOTSTRAP)
	scripts/screenshots

fuzz:
	@$(BOOTSTRAP)
	$(call prepare,fuzz,all)
	scripts/fuzz build/fuzz $(FUZZ_SECONDS)

trash-proof:
	@$(BOOTSTRAP)
	$(call prepare,dev,trash_proof)
	build/dev/tests/trash_proof $(TRASH_ROUNDS)

# The image is a sparse file on its server. The download takes its room in TMPDIR.
image-proof:
	@$(BOOTSTRAP)
	$(call prepare,dev,update_test)
	TALLOWCREST_IMAGE_MEGABYTES=$(IMAGE_MEGABYTES) build/dev/tests/update_test \
	    --gtest_filter=UpdateIntegration.ALargeImageTakesNoMemory

asan:
	@$(BOOTSTRAP)
	$(call prepare,asan,all)
	scripts/with-sanitizer-options ctest --test-dir build/asan --output-on-failure -j $(JOBS)

# The build runs the test programs too, to list their tests.
tsan:
	@$(BOOTSTRAP)
	cmake --preset tsan
	scripts/with-sanitizer-options cmake --build build/tsan -j $(JOBS)
	scripts/with-sanitizer-options ctest --test-dir build/tsan --output-on-failure -j $(JOBS)

fleet-check: build
	@$(BOOTSTRAP)
	scripts/fleet-check build/release

format:
	@$(BOOTSTRAP)
	$(SOURCES) | xargs clang-format -i

format-check:
	@$(BOOTSTRAP)
	$(SOURCES) | xargs clang-format --dry-run --Werror

tidy:
	@$(BOOTSTRAP)
	$(call prepare,dev,all)
	shellcheck scripts/bootstrap scripts/each-program scripts/fuzz scripts/package-check \
	    scripts/screenshots scripts/with-sanitizer-options scripts/macos-check .ci/run
	find src -name '*.cpp' -not -path 'src/platform/macos/*' -not -name '*_macos.cpp' | \
	    xargs -P $(JOBS) -n 1 clang-tidy -p build/dev --quiet

clean:
	rm -rf build
