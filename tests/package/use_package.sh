#!/usr/bin/env bash
# One test of the installed package: use_package.sh TEST BUILD_FOLDER PREFIX WORK_FOLDER VERSION
# CXX, CXXFLAGS and CMAKE say what to build with.
set -euo pipefail
test=$1 build=$2 prefix=$3 work=$4 version=$5
# The program is the example that the README shows, so that it is known to work.
sources=$(cd "$(dirname "$0")/../.." && pwd)
outside=$sources/examples/first
# A developer's own settings must not find another installation.
unset PKG_CONFIG_PATH CMAKE_PREFIX_PATH LD_LIBRARY_PATH
rm -rf "$work"
mkdir -p "$work"

fail() {
  echo "$*" >&2
  exit 1
}

# Runs a program and compares what it prints.
expect_output() {
  local expected=$1 printed
  shift
  printed=$("$@") || fail "$* failed, printing: $printed"
  [ "$printed" = "$expected" ] || fail "$* printed: $printed -- expected: $expected"
}

libdir() {
  dirname "$(find "$1" -name libsfg.so)"
}

by_pkg_config() {
  local installed=$1 flags
  flags=$(PKG_CONFIG_LIBDIR="$(libdir "$installed")/pkgconfig" pkg-config --cflags --libs sfg)
  case "$flags" in *"$installed"*) ;; *) fail "pkg-config says: $flags" ;; esac
  # shellcheck disable=SC2086
  "$CXX" -std=c++20 $CXXFLAGS "$outside/main.cpp" -o "$work/first" $flags
  LD_LIBRARY_PATH=$(libdir "$installed") expect_output "sfg $version on platform $version" "$work/first"
}

case "$test" in
  Installs)
    rm -rf "$prefix"
    "$CMAKE" --install "$build" --prefix "$prefix"
    find "$prefix" -name sfg.pc | grep -q .
    ;;
  IsFoundByCMake)
    "$CMAKE" -S "$outside" -B "$work" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" \
      -DCMAKE_PREFIX_PATH="$prefix"
    "$CMAKE" --build "$work"
    expect_output "sfg $version on platform $version" "$work/first"
    ;;
  IsFoundByPkgConfig)
    by_pkg_config "$prefix"
    ;;
  SurvivesAMove)
    cp -a "$prefix" "$work/elsewhere"
    by_pkg_config "$work/elsewhere"
    ;;
  HasACommandThatRuns)
    expect_output "sfg $version" "$prefix/bin/sfg" --version
    ;;
  HasEveryPublicHeader)
    diff <(cd "$sources" && find include platform/include -name '*.h' | sed -E 's,^(platform/)?include/,,' | sort) \
      <(cd "$prefix/include" && find . -name '*.h' | sed 's,^\./,,' | sort)
    ;;
  *)
    fail "no such test: $test"
    ;;
esac
