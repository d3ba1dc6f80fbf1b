#!/usr/bin/env bash
# Regenerates the screenshots of nyr-survey in docs/screenshots from its
# scripted tour (offscreen platform, the sample in central European time).
#   ./scripts/screenshots.sh [BUILD_DIR]     (default build-main, built first)
set -euo pipefail
source "$(dirname "$0")/setup.sh"
build=${1:-$NYR_ROOT/build-main}
nyr_setup main "$build" -DNYR_BUILD_TESTS=OFF
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
QT_QPA_PLATFORM=offscreen TZ=Europe/Berlin "$build/apps/nyr-survey/nyr-survey" --tour "$out/tour" >/dev/null
docs=$NYR_ROOT/docs/screenshots
rm -rf "$docs"
mkdir -p "$docs"
# The step number is dropped, so the names stay put when steps are added.
for shot in "$out"/tour/*.png; do
  name=$(basename "$shot")
  cp "$shot" "$docs/${name#*-}"
done
ls "$docs"
