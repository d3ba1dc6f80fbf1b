#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: nyr-survey, the
# survey-point application, on its sample project. Without a display it runs
# the application's scripted tour on Qt's offscreen platform instead, which
# writes a screenshot of every step and the files it exported.
#   ./scripts/main.sh [OUTDIR]     (OUTDIR: where the tour writes; default build-main/tour)
set -euo pipefail
source "$(dirname "$0")/setup.sh"
# Its own build folder: the test build keeps its tests configured.
build=${NYR_BUILD_DIR:-$NYR_ROOT/build-main}
nyr_setup main "$build" -DNYR_BUILD_TESTS=OFF
survey="$build/apps/nyr-survey/nyr-survey"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  out=${1:-$build/tour}
  rm -rf "$out"
  echo "No display: running the scripted tour of nyr-survey on the offscreen platform."
  # The sample's observation times run through the end of daylight saving
  # time in central Europe; the tour shows them in that zone.
  QT_QPA_PLATFORM=offscreen TZ=${TZ:-Europe/Berlin} "$survey" --tour "$out"
  echo "Screenshots (PNG), the exported files and tour.txt: $out"
else
  exec "$survey"
fi
