#!/usr/bin/env bash
# Runs clang-tidy (the checks in .clang-tidy) on the C++ sources changed
# against a base revision, through the build's compile_commands.json.
#   scripts/tidy.sh [BASE]      BASE: a revision, or "all" for every source.
# Without BASE: the merge base with origin/main, else with main, so a branch
# is checked for what it changes. Where that is HEAD itself (CI on main, a
# fresh clone) or there is no main, the last commit's changes instead (base
# HEAD~1, a merge's first parent: all the merge brought in); in a repository
# of one commit every source.
# Headers are checked through the sources that include them. A finding fails
# the run. NYR_BUILD_DIR names the build (default build/; built first when it
# has no compile_commands.json). NYR_TIDY_TIMEOUT bounds each file (s, 300).
set -euo pipefail
source "$(dirname "$0")/setup.sh"
cd "$NYR_ROOT"
build=${NYR_BUILD_DIR:-$NYR_ROOT/build}
per_file=${NYR_TIDY_TIMEOUT:-300}

nyr_install_packages tidy
# Generated headers (moc, resources) must exist too, so a configure alone is not enough.
[ -f "$build/compile_commands.json" ] || nyr_setup test "$build" -DNYR_BUILD_TESTS=ON

base=${1:-}
if [ -z "$base" ]; then
  for ref in origin/main main; do
    if git rev-parse -q --verify "$ref^{commit}" >/dev/null; then
      base=$(git merge-base HEAD "$ref" || true)
      break
    fi
  done
  if [ -z "$base" ] || [ "$base" = "$(git rev-parse HEAD)" ]; then
    base=$(git rev-parse -q --verify HEAD~1) || base=all
  fi
fi

if [ "$base" = all ]; then
  mapfile -t files < <(git ls-files '*.cpp')
else
  # Sources changed since the base, committed or not, that still exist; a
  # changed header brings in the sources of its folder.
  mapfile -t changed < <({ git diff --name-only --diff-filter=d "$base" -- '*.cpp' '*.h'
                           git ls-files --others --exclude-standard -- '*.cpp' '*.h'; } | sort -u)
  files=()
  for f in "${changed[@]}"; do
    case "$f" in
      *.cpp) files+=("$f") ;;
      *.h) mapfile -t -O "${#files[@]}" files < <(git ls-files "$(dirname "$f")/*.cpp") ;;
    esac
  done
  mapfile -t files < <(printf '%s\n' "${files[@]}" | sort -u | sed '/^$/d')
fi
# Only files the build compiles (fuzz targets need clang, benchmarks their option).
mapfile -t files < <(printf '%s\n' "${files[@]}" | while read -r f; do
  grep -q "\"file\": \"$NYR_ROOT/$f\"" "$build/compile_commands.json" && echo "$f"; done)

echo "clang-tidy on ${#files[@]} file(s) against ${base:0:12}"
[ ${#files[@]} -eq 0 ] && exit 0
printf '%s\n' "${files[@]}" |
  xargs -P"$(nproc)" -n1 timeout "$per_file" clang-tidy -p "$build" --quiet --warnings-as-errors='*' 2>/dev/null
