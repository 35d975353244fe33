#!/bin/bash
# Installs a build into an empty prefix and uses it as a stranger would: through CMake and through
# pkg-config.
#   run.sh BUILD_DIR SOURCE_DIR C_COMPILER CXX_COMPILER
set -euo pipefail
build=$1 source=$2 cc=$3 cxx=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
mkdir "$work/consumer"
cp "$source/consumer.c" "$work/consumer/"
cp "$source/CMakeLists.consumer.txt" "$work/consumer/CMakeLists.txt"

echo "== through CMake"
cmake -S "$work/consumer" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" >/dev/null
cmake --build "$work/build" >/dev/null
ctest --test-dir "$work/build" --output-on-failure

echo "== through pkg-config"
pc=$(find "$prefix" -name lumora_filters.pc)
export PKG_CONFIG_PATH=${pc%/*}
flags=$(pkg-config --cflags --libs lumora_filters)
# shellcheck disable=SC2086
"$cc" "$source/consumer.c" -o "$work/direct" $flags
resources=$(pkg-config --variable=resourcedir lumora_filters)
libdir=$(pkg-config --variable=libdir lumora_filters)
LD_LIBRARY_PATH=$libdir "$work/direct" "$resources"

echo "== the static library through pkg-config"
flags=$(pkg-config --cflags --static --libs lumora_filters)
# shellcheck disable=SC2086
"$cc" "$source/consumer.c" -o "$work/direct_static" \
  ${flags/-llumora_filters/-l:liblumora_filters.a}
"$work/direct_static" "$resources"

if [[ -x $prefix/bin/lumora ]]; then
  echo "== the tool finds the installed resources"
  "$prefix/bin/lumora" sample "$work/scene.png"
  "$prefix/bin/lumora" apply --look earlybird "$work/scene.png" "$work/out.png"
  test -s "$work/out.png"
fi
