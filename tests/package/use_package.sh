#!/usr/bin/env bash
# One test of the installed package: use_package.sh TEST BUILD_FOLDER PREFIX WORK_FOLDER VERSION
# CXX, CXXFLAGS and CMAKE say what to build with, COMPILERS (ON or OFF) what the host library was built with, DRAW
# (ON or OFF) whether Vulkan is there to draw with, PICTURES whether the command draws.
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

# The example programs and what they read, away from the source tree; the renderer lies beside the examples.
copy_examples() {
  mkdir "$work/examples"
  cp -a "$sources/examples/draw_triangles" "$work/examples"
  cp -a "$sources/render" "$work"
  cp -a "$sources/examples/own_graph" "$sources/examples/compile_material" "$sources/examples/embedding" "$work"
  cp "$sources/examples/materials/brick.json" "$sources/examples/environments/studio.json" "$work"
}

# Runs both programs with the installed library; the last line tells how far they came.
expect_examples() {
  local own_graph=$1 compile_material=$2 library=$prefix/share/sfg/library last printed
  cd "$work"
  last='// sfg_Uniforms\+[0-9]+: float3 ramp\.high'
  if [ "$COMPILERS" = ON ]; then last='// [0-9]+ words of SPIR-V'; fi
  printed=$("$own_graph" "$library") || fail "own_graph failed, printing: $printed"
  [[ $(tail -1 <<<"$printed") =~ ^$last$ ]] || fail "own_graph printed at its end: $(tail -1 <<<"$printed")"
  last='material\.hlsl: [0-9]+ bytes'
  if [ "$COMPILERS" = ON ]; then last='material\.glsl: [0-9]+ bytes'; fi
  printed=$("$compile_material" "$library" brick.json studio.json out) || fail "compile_material failed: $printed"
  [[ $(tail -1 <<<"$printed") =~ ^$last$ ]] || fail "compile_material printed at its end: $printed"
}

# Runs the programs of the guide; they end well where the last says so.
expect_guide() {
  local printed
  printed=$("$1" "$prefix/share/sfg/library" "$work") || fail "embedding failed, printing: $printed"
  [[ $printed == 'entry point main, uniforms '* ]] || fail "embedding printed: $printed"
  [ "$COMPILERS" != ON ] || [ "$(tail -1 <<<"$printed")" = '4 bytes change with tiles.count' ] || fail "embedding printed: $printed"
  grep -q '"nodes"' "$work/graph.schema.json"
}

# Runs the program that draws, and looks for a picture.
expect_picture() {
  rm -f "$work/brick.png"
  # Graphics drivers keep some memory to the end.
  ASAN_OPTIONS=detect_leaks=0 "$1" "$prefix/share/sfg/library" "$work/brick.json" "$work/studio.json" "$work/brick.png"
  [ "$(head -c 4 "$work/brick.png" | tail -c 3)" = PNG ] || fail 'draw_triangles wrote no picture'
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
  ExamplesAreBuiltByCMake)
    copy_examples
    for example in own_graph compile_material embedding; do
      "$CMAKE" -S "$work/$example" -B "$work/$example/build" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" \
        -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_PREFIX_PATH="$prefix"
      "$CMAKE" --build "$work/$example/build"
    done
    expect_examples "$work/own_graph/build/own_graph" "$work/compile_material/build/compile_material"
    expect_guide "$work/embedding/build/embedding"
    if [ "$DRAW" = ON ]; then
      "$CMAKE" -S "$work/examples/draw_triangles" -B "$work/draw" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" \
        -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_PREFIX_PATH="$prefix"
      "$CMAKE" --build "$work/draw"
      expect_picture "$work/draw/draw_triangles"
    fi
    ;;
  ExamplesAreBuiltByPkgConfig)
    copy_examples
    flags=$(PKG_CONFIG_LIBDIR="$(libdir "$prefix")/pkgconfig" pkg-config --cflags --libs sfg-host)
    for example in own_graph compile_material; do
      # shellcheck disable=SC2086
      "$CXX" -std=c++20 $CXXFLAGS "$work/$example/main.cpp" -o "$work/$example/program" $flags \
        -Wl,-rpath-link,"$(libdir "$prefix")"
    done
    # shellcheck disable=SC2086
    (cd "$work/embedding" && "$CXX" -std=c++20 $CXXFLAGS -pthread *.cpp -o program $flags -Wl,-rpath-link,"$(libdir "$prefix")")
    LD_LIBRARY_PATH=$(libdir "$prefix")
    export LD_LIBRARY_PATH
    expect_examples "$work/own_graph/program" "$work/compile_material/program"
    expect_guide "$work/embedding/program"
    if [ "$DRAW" = ON ]; then
      # shellcheck disable=SC2046,SC2086
      "$CXX" -std=c++20 $CXXFLAGS -I "$work/render" "$work/examples/draw_triangles/main.cpp" \
        "$work/render/renderer.cpp" -o "$work/draw_triangles" $flags -Wl,-rpath-link,"$(libdir "$prefix")" \
        $(pkg-config --cflags --libs vulkan libpng)
      expect_picture "$work/draw_triangles"
    fi
    ;;
  AddsShaders)
    target=assembled extension=hlsl
    if [ "$COMPILERS" = ON ]; then target=spirv extension=spv; fi
    for generator in Ninja 'Unix Makefiles'; do
      mkdir "$work/${generator% *}"
      "$sources/tests/package/shaders/count_rebuilds.sh" "$work/${generator% *}" "$prefix" "$generator" $target $extension
      target=assembled extension=hlsl
    done
    if [ "$COMPILERS" = ON ]; then
      mkdir "$work/examples"
      cp -a "$sources/examples/embed_shaders" "$sources/examples/materials" "$sources/examples/environments" "$work/examples"
      "$CMAKE" -S "$work/examples/embed_shaders" -B "$work/embed" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" \
        -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_PREFIX_PATH="$prefix"
      "$CMAKE" --build "$work/embed"
      [ "$("$work/embed/embed_shaders" | grep -cE '^(brick|wood)\.(vertex|pixel)\.spv: [0-9]+ bytes, [0-9a-f]{40}$')" = 4 ] ||
        fail "embed_shaders printed: $("$work/embed/embed_shaders")"
    fi
    ;;
  SurvivesAMove)
    cp -a "$prefix" "$work/elsewhere"
    by_pkg_config "$work/elsewhere"
    ;;
  HasACommandThatRuns)
    expect_output "sfg $version" "$prefix/bin/sfg" --version
    if [ "$PICTURES" = ON ]; then
      # What draws is loaded from where it was installed.
      ASAN_OPTIONS=detect_leaks=0 "$prefix/bin/sfg" render "$sources/examples/materials/brick.json" \
        --size 16 --samples 1 -o "$work/brick.png"
      [ "$(head -c 4 "$work/brick.png" | tail -c 3)" = PNG ] || fail 'sfg render wrote no picture'
    fi
    ;;
  FindsItsLibrary)
    cp -a "$prefix" "$work/elsewhere"
    cd "$work"
    "$work/elsewhere/bin/sfg" new graph wall
    for from in "$prefix" "$work/elsewhere"; do
      "$from/bin/sfg" collapse wall.json -v >"$work/wall.hlsl" 2>"$work/said"
      printf 'sfg: note: %s are read from `%s` [folders-read]\n' fragments "$from/share/sfg/library" \
        'include files' "$from/share/sfg/library" | diff "$work/said" -
      grep -q 'void checkerPattern1(' "$work/wall.hlsl"
    done
    ! "$prefix/bin/sfg" collapse wall.json --no-standard-library 2>"$work/said"
    grep -q 'checkerPattern' "$work/said"
    # Hosts ask the package.
    folder=$(PKG_CONFIG_LIBDIR="$(libdir "$prefix")/pkgconfig" pkg-config --variable=librarydir sfg-host)
    [ -f "$folder/patterns.fraglib" ] || fail "pkg-config says: $folder"
    printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(asks LANGUAGES CXX)' 'find_package(sfg REQUIRED)' \
      'if(NOT EXISTS "${sfg_LIBRARY_DIR}/patterns.fraglib")' '  message(FATAL_ERROR "${sfg_LIBRARY_DIR}")' 'endif()' \
      >CMakeLists.txt
    "$CMAKE" -S . -B build -G Ninja -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_PREFIX_PATH="$prefix"
    ;;
  DescribesTheCommand)
    "$prefix/bin/sfg" manual | diff "$prefix/share/man/man1/sfg.1" -
    "$prefix/bin/sfg" completion bash | diff "$prefix/share/bash-completion/completions/sfg" -
    "$prefix/bin/sfg" completion zsh | diff "$prefix/share/zsh/site-functions/_sfg" -
    "$prefix/bin/sfg" completion fish | diff "$prefix/share/fish/vendor_completions.d/sfg.fish" -
    ;;
  HasEveryPublicHeader)
    diff <(cd "$sources" && find include platform/include -name '*.h' | sed -E 's,^(platform/)?include/,,' | sort) \
      <(cd "$prefix/include" && find . -name '*.h' | sed 's,^\./,,' | sort)
    ;;
  *)
    fail "no such test: $test"
    ;;
esac
