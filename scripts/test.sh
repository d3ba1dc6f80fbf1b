#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
# Extra arguments go to CMake, e.g. -DNYR_SANITIZE=ON (see README).
set -euo pipefail
source "$(dirname "$0")/setup.sh"
build=${NYR_BUILD_DIR:-$NYR_ROOT/build}
nyr_setup test "$build" -DNYR_BUILD_TESTS=ON "$@"
cd "$build"
ctest -j"$(nproc)" --output-on-failure
