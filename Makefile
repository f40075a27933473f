# One-word commands for contributors; `make` alone builds.
.PHONY: build check quick format bench fuzz package run tour clean

build:
	tools/setup.sh build
	tools/build.sh build all

check:
	./test

quick:
	./test --quick

run:
	./run

tour:
	tools/setup.sh build
	tools/build.sh build program
	tools/tour/play.sh

format:
	python3 tools/gates/formatting.py --fix

clean:
	rm -rf build build-sanitize build-bench build-fuzz build-package

package:
	packaging/build.sh
