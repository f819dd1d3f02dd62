# The shader compilers, found once: linked into the host, and read by tests of what it tells of a shader.
find_package(Threads REQUIRED)
find_package(glslang REQUIRED)
find_package(SPIRV-Tools REQUIRED)
find_package(SPIRV-Tools-opt REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(spirv_cross REQUIRED IMPORTED_TARGET GLOBAL spirv-cross-c-shared)

set(SFG_COMPILER_LIBRARIES
  glslang::glslang glslang::SPIRV glslang::HLSL glslang::glslang-default-resource-limits
  SPIRV-Tools-opt SPIRV-Tools PkgConfig::spirv_cross)

# sfg_includes_glslang(FILE TARGET): a source that includes glslang's headers.
function(sfg_includes_glslang file target)
  set_source_files_properties("${file}" TARGET_DIRECTORY "${target}" PROPERTIES COMPILE_DEFINITIONS ENABLE_HLSL)
  if(SFG_SANITIZE MATCHES "undefined")
    # glslang's packages are built without type information, which this check asks of its classes.
    set_source_files_properties("${file}" TARGET_DIRECTORY "${target}"
      PROPERTIES COMPILE_OPTIONS -fno-sanitize=vptr)
  endif()
endfunction()
