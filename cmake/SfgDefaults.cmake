# What every target of this project shares: the language, warnings, visibility, sanitizers, the compiler cache.

# Compilations are cached across checkouts; precompiled headers need the two sloppiness flags.
find_program(SFG_CCACHE ccache)
if(SFG_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    "${CMAKE_COMMAND}" -E env
    "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime"
    "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}"
    CCACHE_NOHASHDIR=1
    "${SFG_CCACHE}")
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

# Everything built here finds its libraries in the build tree and, once installed, beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# Applies the project's language level, warnings, visibility and instrumentation to `target`.
function(sfg_target_defaults target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 sees overlapping copies, or copies of more than all memory, in std::string's own operator+ at -O3 (its
    # bugs 105651 and 105329).
    target_compile_options(${target} PRIVATE -Wno-restrict)
    if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${target} PRIVATE -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds)
    endif()
  endif()
  if(SFG_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(SFG_HARDEN AND NOT SFG_SANITIZE)
    # The source folder stays out of what is shipped: builds in two folders give the same bytes.
    target_compile_options(${target} PRIVATE "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:\
-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3;-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
    target_link_options(${target} PRIVATE "$<$<PLATFORM_ID:Linux>:LINKER:-z,relro,-z,now>")
  endif()
  # Some compilers ask this of the linker by themselves: a library of which nothing is used is not needed.
  target_link_options(${target} PRIVATE "$<$<PLATFORM_ID:Linux>:LINKER:--as-needed>")
  if(SFG_SANITIZE)
    target_compile_options(${target} PRIVATE
      "-fsanitize=${SFG_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE "-fsanitize=${SFG_SANITIZE}")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # Instrumented code confuses this warning: GCC 12 finds one in every use of its own <regex>.
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    else()
      target_compile_options(${target} PRIVATE
        "-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/tests/sanitizers/foreign.ignorelist")
    endif()
  endif()
  if(SFG_LIBFUZZER)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  if(SFG_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# Makes `target` an installable shared library. `building` is the macro that tells its export header that the
# library itself is being compiled. Only names of the project's namespaces leave it.
function(sfg_shared_library target building)
  sfg_target_defaults(${target})
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  target_compile_definitions(${target} PRIVATE ${building} "SFG_VERSION=\"${PROJECT_VERSION}\"")
  if(WIN32)
    return()  # The export macros alone say what leaves it.
  endif()
  set(script "${PROJECT_SOURCE_DIR}/cmake/exports.map")
  # Nobody replaces single functions of the library, so that its own calls of them need not ask who does.
  target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" LINKER:-Bsymbolic-functions)
  if(NOT SFG_SANITIZE)
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()

# Lets the compiler cache keep what is compiled with a precompiled header.
function(sfg_cache_precompiled target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
endfunction()

# sfg_unity(TARGET..): with SFG_UNITY, the sources of a target are compiled several at a time, each batch as one file. From
# nothing that takes a third of the time, and after a change more; scripts/test does it in new build folders.
option(SFG_UNITY "Compile the sources of large targets in batches" OFF)
function(sfg_unity)
  if(NOT SFG_UNITY)
    return()
  endif()
  foreach(target IN LISTS ARGN)
    if(TARGET ${target})
      set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
      # Types of one source file are those of a header to its batch.
      target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    endif()
  endforeach()
endfunction()
