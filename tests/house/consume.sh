#!/bin/sh
# Builds and runs a small program against the library in one of three ways.
# usage: consume.sh find_package|pkg_config|subdirectory CMAKE SOURCE-DIR BUILD-DIR COMPILER
set -e
way=$1 cmake=$2 source=$3 build=$4 compiler=$5
here=$(CDPATH= cd -- "$(dirname -- "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

case $way in
find_package)
  "$cmake" --install "$build" --prefix "$scratch/moved" >/dev/null
  mv "$scratch/moved" "$scratch/prefix"  # an installation may be moved
  "$cmake" -S "$here/consumer" -B "$scratch/b" -DCMAKE_PREFIX_PATH="$scratch/prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DWAY=find_package >/dev/null
  "$cmake" --build "$scratch/b" >/dev/null
  "$scratch/b/consumer" ;;
pkg_config)
  command -v pkg-config >/dev/null || exit 77
  "$cmake" --install "$build" --prefix "$scratch/prefix" >/dev/null
  pc=$(dirname "$(find "$scratch/prefix" -name vek0draw.pc)")
  # shellcheck disable=SC2046: flags are words
  "$compiler" -std=c++20 "$here/consumer/main.cpp" -o "$scratch/consumer" \
    $(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs vek0draw)
  lib=$(PKG_CONFIG_PATH=$pc pkg-config --variable=libdir vek0core)
  LD_LIBRARY_PATH=$lib "$scratch/consumer" ;;
subdirectory)
  "$cmake" -G Ninja -S "$here/consumer" -B "$scratch/b" -DVEK0_SOURCE="$source" \
    -DCMAKE_CXX_COMPILER="$compiler" -DWAY=subdirectory >/dev/null
  # Compiling the program suffices: find_package shows that it links and runs.
  "$cmake" --build "$scratch/b" --target CMakeFiles/consumer.dir/main.cpp.o >/dev/null ;;
esac
