#!/usr/bin/env bash
# install_test.sh BUILD_DIR CONSUMER_SOURCE WORK_DIR WITH_WIDGETS(0|1)
set -euo pipefail
build=$1 consumer=$2 work=$3 widgets=$4
rm -rf "$work"
mkdir -p "$work"
"$CMAKE" --install "$build" --prefix "$work/prefix" > "$work/install.log"
test -f "$work/prefix/include/nyr/frame/resource_module.h"
test ! -e "$work/prefix/include/nyr/frame/text_table_p.h"   # private headers stay private

"$CMAKE" -S "$consumer" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
         -DWITH_WIDGETS="$widgets" -DCMAKE_BUILD_TYPE=Release \
         -DCMAKE_CXX_FLAGS="${CONSUMER_FLAGS:-}" -DCMAKE_EXE_LINKER_FLAGS="${CONSUMER_FLAGS:-}" > "$work/configure.log"
"$CMAKE" --build "$work/build" -j2 > "$work/build.log"
LD_LIBRARY_PATH="$work/prefix/lib:$work/prefix/lib64" "$work/build/consumer" | grep -q '^Socket error.$'
if [ "$widgets" = 1 ]; then
  LD_LIBRARY_PATH="$work/prefix/lib:$work/prefix/lib64" "$work/build/consumer_widgets" | grep -q '^delivered$'
  LD_LIBRARY_PATH="$work/prefix/lib:$work/prefix/lib64" "$work/build/consumer_as_needed" | grep -q '^qt hooks$'
fi

# The same through pkg-config.
pcdir=$(dirname "$(find "$work/prefix" -name nyr240.pc | head -n1)")
PKG_CONFIG_PATH="$pcdir" "$CXX" ${CONSUMER_FLAGS:-} -o "$work/pc_consumer" "$consumer/main.cpp" \
    $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs nyr240)
LD_LIBRARY_PATH="$work/prefix/lib:$work/prefix/lib64" "$work/pc_consumer" | grep -q '^Socket error.$'
if [ "$widgets" = 1 ]; then
  PKG_CONFIG_PATH="$pcdir" "$CXX" ${CONSUMER_FLAGS:-} -fPIC -o "$work/pc_as_needed" -Wl,--as-needed \
      "$consumer/as_needed_main.cpp" $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs nyr240widgets)
  LD_LIBRARY_PATH="$work/prefix/lib:$work/prefix/lib64" "$work/pc_as_needed" | grep -q '^qt hooks$'
fi
echo "install test passed"
