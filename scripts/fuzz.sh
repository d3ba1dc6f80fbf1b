#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer on) and runs each for a bounded time.
#   scripts/fuzz.sh [SECONDS_PER_TARGET] [TARGET...]      (default 60 s, all)
#   scripts/fuzz.sh --ci [SECONDS_PER_TARGET]             (default 20 s, all)
# Long runs grow a corpus per target in build-fuzz/corpus/ beside the
# committed seeds of fuzz/seeds/TARGET/. With --ci each target starts from its
# committed seeds alone and keeps nothing. A crash, a sanitizer report, a
# broken property or an input slower than 5 s fails the run; the finding is
# kept in build-fuzz/findings/ and printed (hex and Base64) with the tail of
# the target's log.
set -euo pipefail
source "$(dirname "$0")/setup.sh"
ci=0
if [ "${1:-}" = "--ci" ]; then
  ci=1
  shift
fi
seconds=${1:-$([ $ci = 1 ] && echo 20 || echo 60)}
shift || true
build=$NYR_ROOT/build-fuzz
nyr_setup fuzz "$build" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNYR_BUILD_FUZZ=ON -DNYR_BUILD_WIDGETS=OFF -DNYR_BUILD_TESTS=OFF \
    -DNYR_BUILD_APPS=ON
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  mapfile -t targets < <(cd "$build/fuzz" && ls fuzz_* 2>/dev/null | grep -v '\.' || true)
fi
mkdir -p "$build/findings"
failed=()
for t in "${targets[@]}"; do
  if [ $ci = 1 ]; then
    corpus=$(mktemp -d)
  else
    corpus=$build/corpus/$t
    mkdir -p "$corpus"
  fi
  seeds=()
  [ -d "$NYR_ROOT/fuzz/seeds/$t" ] && seeds=("$NYR_ROOT/fuzz/seeds/$t")
  log=$build/findings/$t.log
  echo "== $t for ${seconds}s"
  status=0
  "$build/fuzz/$t" -max_total_time="$seconds" -timeout=5 -rss_limit_mb=2048 -print_final_stats=1 \
      -artifact_prefix="$build/findings/$t-" "$corpus" "${seeds[@]}" > "$log" 2>&1 || status=$?
  [ $ci = 1 ] && rm -rf "$corpus"
  grep -E '^stat::number_of_executed_units|^#[0-9]+.*DONE' "$log" | tail -n 2 || true
  if [ $status -ne 0 ]; then
    failed+=("$t")
    echo "!! $t failed (exit $status); the end of its log:"
    tail -n 60 "$log"
    for finding in $(grep -oE "Test unit written to [^ ]+" "$log" | awk '{print $5}'); do
      echo "!! reproducer $finding (run: $build/fuzz/$t $finding)"
      od -A x -t x1z -v "$finding" | head -n 64
      echo "base64: $(base64 -w0 "$finding")"
    done
  fi
done
if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzzing found problems in: ${failed[*]}"
  exit 1
fi
echo "fuzzing: ${#targets[@]} targets, no findings"
