#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: the nyr tool
# showing the library at work.
set -euo pipefail
source "$(dirname "$0")/setup.sh"
build=${NYR_BUILD_DIR:-$NYR_ROOT/build}
nyr_setup main "$build" -DNYR_BUILD_TESTS=OFF
nyr="$build/apps/nyr/nyr"
show() { echo "\$ nyr $*"; "$nyr" "$@"; echo; }
show requirements
show text 26000
show text --language "$NYR_ROOT/data/lang/de.lang" 26115
show messages
