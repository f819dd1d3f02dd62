# Helpers that add tests and fuzz targets.

# What is undefined is looked for in what is shipped, not in the tests of it: they compile in half the time.
function(sfg_test_instrumentation target)
  if(SFG_SANITIZE MATCHES "undefined")
    target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
  endif()
endfunction()

# The headers nearly every test includes, compiled once for all of them.
function(sfg_use_test_headers target)
  if(NOT TARGET sfg_test_headers)
    file(WRITE "${PROJECT_BINARY_DIR}/sfg_test_headers.cpp.in" "int main() { return 0; }\n")
    configure_file("${PROJECT_BINARY_DIR}/sfg_test_headers.cpp.in" "${PROJECT_BINARY_DIR}/sfg_test_headers.cpp" COPYONLY)
    add_executable(sfg_test_headers "${PROJECT_BINARY_DIR}/sfg_test_headers.cpp")
    sfg_target_defaults(sfg_test_headers)
    sfg_test_instrumentation(sfg_test_headers)
    target_link_libraries(sfg_test_headers PRIVATE GTest::gtest GTest::gmock)
    target_precompile_headers(sfg_test_headers PRIVATE
      <gtest/gtest.h> <gmock/gmock.h>
      <algorithm> <array> <atomic> <cstddef> <cstdint> <filesystem> <fstream> <functional> <map> <memory> <optional>
      <set> <sstream> <stdexcept> <string> <string_view> <thread> <utility> <vector>)
    sfg_cache_precompiled(sfg_test_headers)
  endif()
  sfg_cache_precompiled(${target})
  target_precompile_headers(${target} REUSE_FROM sfg_test_headers)
endfunction()

# sfg_add_tests(NAME SOURCES a_test.cpp... [LINK library...] [LABELS label...] [TIMEOUT seconds])
#
# Adds one GoogleTest program and each of its tests to ctest. It is linked to the shared library, so that the tests
# prove the exports too (LINK adds to that). Sources include headers from the repository's root
# ("text/code_formatter.h"). Tests run with the repository's root as working folder.
function(sfg_add_tests name)
  if(NOT SFG_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  sfg_target_defaults(${name})
  sfg_test_instrumentation(${name})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE sfg ${arg_LINK} GTest::gtest_main GTest::gmock)
  sfg_use_test_headers(${name})
  gtest_discover_tests(${name}
    TEST_PREFIX "${name}."
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}")
endfunction()

# sfg_add_fuzz_target(NAME SOURCES a_fuzz.cpp... CORPUS folder... [LINK library...] [MUTATIONS n])
#
# The sources define LLVMFuzzerTestOneInput. By default the program replays its corpus folders, with MUTATIONS
# (default 200) reproducible mutations of their files, as a test; with SFG_LIBFUZZER it is linked with libFuzzer.
function(sfg_add_fuzz_target name)
  if(NOT SFG_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(arg "" "MUTATIONS" "SOURCES;CORPUS;LINK" ${ARGN})
  if(NOT arg_CORPUS)
    message(FATAL_ERROR "sfg_add_fuzz_target(${name}): a corpus folder is required")
  endif()
  if(NOT arg_MUTATIONS)
    set(arg_MUTATIONS 200)
  endif()
  set(corpora)
  foreach(folder IN LISTS arg_CORPUS)
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    list(APPEND corpora "${folder}")
  endforeach()
  add_executable(${name} ${arg_SOURCES})
  sfg_target_defaults(${name})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE sfg ${arg_LINK})
  if(SFG_LIBFUZZER)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    add_test(NAME ${name}.replay COMMAND ${name} -runs=0 ${corpora})
  else()
    target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/fuzz/replay_main.cpp")
    add_test(NAME ${name}.replay COMMAND ${name} --mutations ${arg_MUTATIONS} --seed 1 ${corpora})
  endif()
  set_tests_properties(${name}.replay PROPERTIES TIMEOUT 300 LABELS fuzz)
endfunction()
