# The entry points of the project. Every target first installs whatever packages are missing.
.PHONY: setup demo test bench sanitize tsan fuzz clean x3d-catalog

CMAKE_BUILD = flock /tmp/orvane-build.lock cmake --build

setup:
	@scripts/setup

demo: setup
	cmake --preset default >/dev/null
	$(CMAKE_BUILD) --preset default --target demo orvane-tool
	./build/default/examples/demo
	@echo; echo "orvane convert examples/scenes/lamps.wrl:"
	./build/default/tools/orvane/orvane convert examples/scenes/lamps.wrl
	@echo; echo "orvane convert examples/scenes/lamps.x3d --to x3dv:"
	./build/default/tools/orvane/orvane convert examples/scenes/lamps.x3d --to x3dv

test: setup
	cmake --preset default
	$(CMAKE_BUILD) --preset default
	ctest --preset default

bench: setup
	cmake --preset release
	$(CMAKE_BUILD) --preset release
	scripts/run-benchmarks build/release/bench

sanitize: setup
	cmake --preset sanitize
	$(CMAKE_BUILD) --preset sanitize
	ctest --preset sanitize

tsan: setup
	cmake --preset tsan
	$(CMAKE_BUILD) --preset tsan
	ctest --preset tsan

fuzz:
	@scripts/setup --fuzz
	cmake --preset fuzz
	$(CMAKE_BUILD) --preset fuzz
	scripts/run-fuzzers build/fuzz/fuzz

# Regenerates modules/x3d/X3DCatalogTable.cpp from the X3D Unified Object Model in ../shared/x3duom/.
x3d-catalog:
	scripts/generate-x3d-catalog

clean:
	rm -rf build
