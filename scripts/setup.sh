#!/usr/bin/env bash
# Sourced by the other scripts: installs the Debian packages that are
# missing (through sudo when not root), then configures and builds.
#   nyr_setup KIND BUILD_DIR [cmake options...]     KIND: main, test or bench
set -euo pipefail

NYR_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

nyr_packages() {
  # locales: the tests generate tr_TR.UTF-8 from its data. fonts-dejavu-core:
  # the offscreen tour and the tests draw text in a font known to be there.
  local common="build-essential cmake ninja-build pkg-config qt6-base-dev libgl-dev libssl-dev tzdata locales"
  case "$1" in
    main)  echo "$common libgeographiclib-dev fonts-dejavu-core" ;;
    test)  echo "$common libgtest-dev libgmock-dev libssl-dev libgeographiclib-dev python3 python3-aiosmtpd xdg-utils postfix poppler-utils fonts-dejavu-core" ;;
    bench) echo "$common libgtest-dev libssl-dev libbenchmark-dev libgeographiclib-dev python3 python3-aiosmtpd python3-pandas clang postfix" ;;
    fuzz)  echo "$common clang libclang-rt-14-dev" ;;
    tidy)  echo "clang-tidy" ;;
  esac
}

nyr_install_packages() {
  local missing=()
  for p in $(nyr_packages "$1"); do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing Debian packages: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  # postfix only for its smtp-sink test and benchmark peer: no mail system configured, no daemon.
  echo "postfix postfix/main_mailer_type select No configuration" | $sudo debconf-set-selections
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

nyr_setup() {
  local kind=$1 build=$2
  shift 2
  nyr_install_packages "$kind"
  local launcher=()
  if command -v ccache >/dev/null 2>&1; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
  fi
  cmake -S "$NYR_ROOT" -B "$build" -G Ninja "${launcher[@]}" "$@" >/dev/null
  cmake --build "$build" -j"$(nproc)"
}
