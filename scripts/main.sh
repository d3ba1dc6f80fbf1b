#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: the nyr tool
# showing the library at work, one subsystem after the other.
set -euo pipefail
source "$(dirname "$0")/setup.sh"
# Its own build folder: the test build keeps its tests configured.
build=${NYR_BUILD_DIR:-$NYR_ROOT/build-main}
nyr_setup main "$build" -DNYR_BUILD_TESTS=OFF
nyr="$build/apps/nyr/nyr"
show() { echo "\$ nyr $*"; "$nyr" "$@"; echo; }

# A scratch settings file, so the tour leaves the user's own alone.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
ini=$scratch/Survey.Nyr240.INI

show requirements
show text --language "$NYR_ROOT/data/lang/de.lang" 26115
show ini set --file "$ini" ReportView ColWidth "120;80;-1;"
show ini vector --file "$ini" ReportView ColWidth
show angle format 0.2181661565 --unit dms --symbols --precision 5
show angle parse "12 30 15.5" --unit dms
show angle convert 12.5 --from dec --to dms --precision 4
show distance convert 1000 --from fts --to m
show time convert "2017-01-01 12:00"
show time format --row 24 "2026-11-21 14:05:09"
show time --settings "$ini" import-leap
show time --settings "$ini" leap "2017-01-01 12:00"
printf 'survey data\n' > "$scratch/data.txt"
show base64 encode "$scratch/data.txt"
