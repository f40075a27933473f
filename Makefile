# One-word commands for contributors; `make` alone builds.
.PHONY: build check quick long format coverage windows windows-tests bench fuzz package run tour pictures clean

build:
	tools/setup.sh build
	tools/build.sh build all

check:
	./test

long:
	./test --long

quick:
	./test --quick

run:
	./run

tour:
	tools/setup.sh build
	tools/build.sh build program
	tools/tour/play.sh

pictures:
	tools/setup.sh build
	tools/build.sh build program
	tools/tour/pictures.sh

coverage:
	tools/setup.sh coverage
	tools/coverage.py

windows:
	tools/setup.sh windows
	tools/windows.sh

windows-tests:
	tools/setup.sh windows
	tools/windows.sh tests
	TARN_PLATFORM=windows tools/windows.sh tests

bench:
	tools/setup.sh bench
	tools/build.sh build-bench all -DTARN_BENCH=ON -DTARN_TESTS=OFF
	for program in build-bench/bin/*_bench; do "$$program" || exit 1; done

fuzz:
	tools/setup.sh test
	tools/fuzz.sh

format:
	python3 tools/gates/formatting.py --fix

clean:
	rm -rf build build-sanitize build-bench build-coverage build-fuzz build-threads build-package build-windows build-windows-program

package:
	packaging/build.sh
