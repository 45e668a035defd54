# Set-up, build and test of skelvor on a Debian machine.
#   make run    install missing build packages, build, read the bundled example
#   make test   the same set-up, then the whole suite, plain and under sanitizers
#   make bench  build and run the benchmarks
#   make fuzz   build the fuzz targets with clang and run each FUZZ_SECONDS

BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
# Warnings stop these builds; WERROR=OFF for a compiler newer than the code.
WERROR     ?= ON
PACKAGES   := g++ make cmake flex bison libgtest-dev
BENCH_PACKAGES := libbenchmark-dev
FUZZ_PACKAGES := clang libclang-rt-dev
GENERATOR  := $(shell command -v ninja >/dev/null 2>&1 && echo "-G Ninja")

.PHONY: all deps build asan run test bench fuzz clean

all: build

# Installs what is missing when run as root; otherwise names it and stops.
deps:
	@missing=""; \
	for p in $(PACKAGES) $(EXTRA_PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "installing:$$missing"; \
	    export DEBIAN_FRONTEND=noninteractive; \
	    apt-get update -q && apt-get install -y -q $$missing; \
	  else \
	    echo "missing build packages:$$missing"; \
	    echo "install them with: sudo apt-get install$$missing"; \
	    exit 1; \
	  fi; \
	fi

$(BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo

$(ASAN_BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(ASAN_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=Debug -DSKELVOR_SANITIZE=ON

# WERROR is set on each build, so that it may change in a build folder.
build: deps $(BUILD)/CMakeCache.txt
	cmake -B $(BUILD) -DSKELVOR_WERROR=$(WERROR) > /dev/null
	cmake --build $(BUILD) -j $(JOBS)

asan: deps $(ASAN_BUILD)/CMakeCache.txt
	cmake -B $(ASAN_BUILD) -DSKELVOR_WERROR=$(WERROR) > /dev/null
	cmake --build $(ASAN_BUILD) -j $(JOBS)

run: build
	./$(BUILD)/skelvor examples/sample.bin -d=examples/sample

test: build asan
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS)

bench:
	$(MAKE) deps EXTRA_PACKAGES="$(BENCH_PACKAGES)"
	cmake -S . -B $(BENCH_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=Release -DSKELVOR_BENCH=ON -DSKELVOR_TESTS=OFF
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	./bench/run.sh $(BENCH_BUILD)

# Under ASan and UBSan; fails on any crash, leak, time-out or sanitizer report.
fuzz:
	$(MAKE) deps EXTRA_PACKAGES="$(FUZZ_PACKAGES)"
	test -f $(FUZZ_BUILD)/CMakeCache.txt || cmake -S . -B $(FUZZ_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_CXX_COMPILER=clang++ -DSKELVOR_FUZZ=ON -DSKELVOR_SANITIZE=ON -DSKELVOR_TESTS=OFF
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	./fuzz/run.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD)
