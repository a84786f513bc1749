#!/bin/sh
# usage: pkg_config.sh COMPILER LIBDIR PROGRAM: builds the consumer with what pkg-config says about the tree installed at LIBDIR,
# and runs it.
set -eu
compiler=$1 libdir=$2 program=$3
here=${0%/*}
export PKG_CONFIG_PATH="$libdir/pkgconfig"
flags=$(pkg-config --cflags --libs mendexlib)
# The flags are words by design.
# shellcheck disable=SC2086
"$compiler" -std=c++17 "$here/main.cpp" -o "$program" $flags "-Wl,-rpath,$libdir"
"$program"
