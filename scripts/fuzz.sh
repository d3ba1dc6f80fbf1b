#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer on) and runs each for a bounded time.
#   scripts/fuzz.sh [SECONDS_PER_TARGET] [TARGET...]      (default 60 s, all)
# A crash, a sanitizer report or an input slower than 5 s fails the run;
# findings land in build-fuzz/findings/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
shift || true
build=$root/build-fuzz
command -v clang++ >/dev/null || { echo "fuzz.sh needs clang (apt-get install clang)"; exit 2; }
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
      -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNYR_BUILD_FUZZ=ON -DNYR_BUILD_WIDGETS=OFF -DNYR_BUILD_TESTS=OFF \
      -DNYR_BUILD_APPS=OFF >/dev/null
cmake --build "$build" -j"$(nproc)"
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  mapfile -t targets < <(cd "$build/fuzz" && ls fuzz_* 2>/dev/null | grep -v '\.' || true)
fi
mkdir -p "$build/findings"
for t in "${targets[@]}"; do
  corpus=$build/corpus/$t
  mkdir -p "$corpus"
  seeds=()
  [ -d "$root/fuzz/seeds/$t" ] && seeds=("$root/fuzz/seeds/$t")
  echo "== $t for ${seconds}s"
  "$build/fuzz/$t" -max_total_time="$seconds" -timeout=5 -rss_limit_mb=2048 \
      -artifact_prefix="$build/findings/$t-" "$corpus" "${seeds[@]}" 2>&1 | tail -n 3
done
