# Shaders as part of a CMake project; docs/cmake.md shows it at work.
#
#   sfg_add_shaders(TARGET name
#                   GRAPHS graph...              files
#                   [LIBRARIES folder...]        of fragments; behind the installed ones, which they override
#                   [INCLUDES folder...]         of include files; else LIBRARIES
#                   [ENVIRONMENT file]
#                   [TOOL default|lightloop]     with an environment lightloop, else default
#                   [TARGETS target...]          spirv hlsl glsl essl msl essl300 assembled; else spirv
#                   [STAGES stage...]            pixel vertex compute; else pixel
#                   [OUTPUT_DIRECTORY folder]    else a folder of the target's name in the binary folder
#                   [CACHE folder]               results by content, shared with others; else the user's own
#                   [EMBED])                     also C++ headers: link to the target and include "name.h"
#
# One command makes all shaders that are out of date, in one process. It runs when a graph, an environment, a library
# or an include file changes, comes or goes, and writes those results that become others, so that whatever depends on
# them is made again and nothing else. The files are in the target's property SFG_OUTPUTS.
#
# The command is sfg::command; cross-compiling projects set SFG_COMMAND to one that runs where they are built.

include_guard(GLOBAL)

# An absolute path of each, from the source folder.
function(_sfg_absolute variable)
  set(paths "")
  foreach(path IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    list(APPEND paths "${path}")
  endforeach()
  set(${variable} "${paths}" PARENT_SCOPE)
endfunction()

# A JSON list of texts.
function(_sfg_json_list variable)
  set(texts "")
  foreach(text IN LISTS ARGN)
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    list(APPEND texts "\"${text}\"")
  endforeach()
  list(JOIN texts ", " texts)
  set(${variable} "[${texts}]" PARENT_SCOPE)
endfunction()

function(_sfg_extension variable target)
  set(spirv spv)
  set(hlsl hlsl)
  set(glsl glsl)
  set(essl essl)
  set(essl300 essl)
  set(msl metal)
  set(assembled hlsl)
  if(NOT DEFINED ${target})
    message(FATAL_ERROR "sfg_add_shaders: TARGETS: `${target}` is none of spirv hlsl glsl essl msl essl300 assembled")
  endif()
  set(${variable} "${${target}}" PARENT_SCOPE)
endfunction()

function(sfg_add_shaders)
  cmake_parse_arguments(PARSE_ARGV 0 arg "EMBED" "TARGET;ENVIRONMENT;TOOL;OUTPUT_DIRECTORY;CACHE"
    "GRAPHS;LIBRARIES;INCLUDES;TARGETS;STAGES")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "sfg_add_shaders: does not know ${arg_UNPARSED_ARGUMENTS}")
  endif()
  foreach(needed IN ITEMS TARGET GRAPHS)
    if(NOT arg_${needed})
      message(FATAL_ERROR "sfg_add_shaders: needs ${needed}")
    endif()
  endforeach()
  if(NOT arg_TARGETS)
    set(arg_TARGETS spirv)
  endif()
  if(NOT arg_STAGES)
    set(arg_STAGES pixel)
  endif()
  if(NOT arg_INCLUDES)
    set(arg_INCLUDES ${arg_LIBRARIES})
  endif()
  if(NOT arg_TOOL)
    set(arg_TOOL default)
    if(arg_ENVIRONMENT)
      set(arg_TOOL lightloop)
    endif()
  endif()
  if(NOT arg_OUTPUT_DIRECTORY)
    set(arg_OUTPUT_DIRECTORY "${arg_TARGET}")
  endif()
  cmake_path(ABSOLUTE_PATH arg_OUTPUT_DIRECTORY BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}" NORMALIZE)
  set(work "${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${arg_TARGET}.shaders")

  # The names of the outputs say what there are several of.
  set(name "{graph}")
  set(stages ".")
  list(LENGTH arg_STAGES count)
  if(count GREATER 1)
    string(APPEND name ".{stage}")
    list(TRANSFORM arg_STAGES PREPEND "." OUTPUT_VARIABLE stages)
    list(TRANSFORM stages APPEND ".")
  endif()
  list(LENGTH arg_TARGETS count)
  if(count GREATER 1)
    string(APPEND name ".{target}")
  endif()
  string(APPEND name ".{extension}")
  _sfg_absolute(graphs ${arg_GRAPHS})
  set(outputs "")
  set(headers "")
  foreach(graph IN LISTS graphs)
    cmake_path(GET graph STEM LAST_ONLY stem)
    foreach(stage IN LISTS stages)
      foreach(target IN LISTS arg_TARGETS)
        _sfg_extension(extension "${target}")
        if(count GREATER 1)
          string(PREPEND extension "${target}.")
        endif()
        set(output "${stem}${stage}${extension}")
        if("${arg_OUTPUT_DIRECTORY}/${output}" IN_LIST outputs)
          message(FATAL_ERROR "sfg_add_shaders: two graphs are called `${stem}`")
        endif()
        list(APPEND outputs "${arg_OUTPUT_DIRECTORY}/${output}")
        list(APPEND headers "${work}/include/${arg_TARGET}/${output}.h")
      endforeach()
    endforeach()
  endforeach()

  _sfg_absolute(libraries ${arg_LIBRARIES})
  _sfg_absolute(includes ${arg_INCLUDES})
  _sfg_absolute(environments ${arg_ENVIRONMENT})
  _sfg_json_list(libraries ${libraries})
  _sfg_json_list(includes ${includes})
  _sfg_json_list(environments ${environments})
  _sfg_json_list(graphs ${graphs})
  _sfg_json_list(stages ${arg_STAGES})
  _sfg_json_list(targets ${arg_TARGETS})
  _sfg_json_list(folder "${arg_OUTPUT_DIRECTORY}")
  string(REGEX REPLACE "^\\[(.*)\\]$" "\\1" folder "${folder}")
  if(arg_ENVIRONMENT)
    set(environments "\n      \"environments\": ${environments},")
  else()
    set(environments "")
  endif()
  set(reflection false)
  if(arg_EMBED)
    set(reflection true)
  endif()
  set(manifest "${work}/manifest.json")
  file(CONFIGURE OUTPUT "${manifest}" @ONLY CONTENT [[{
  "libraries": @libraries@,
  "includes": @includes@,
  "output": @folder@,
  "shaders": [
    {
      "graphs": @graphs@,@environments@
      "tool": "@arg_TOOL@",
      "stages": @stages@,
      "targets": @targets@,
      "reflection": @reflection@,
      "name": "@name@"
    }
  ]
}
]])

  set(command sfg::command)
  set(program "$<TARGET_FILE:sfg::command>")
  if(SFG_COMMAND)
    set(command "${SFG_COMMAND}")
    set(program "${SFG_COMMAND}")
  endif()
  set(done "${work}/done")
  set(cache "")
  if(arg_CACHE)
    _sfg_absolute(cache "${arg_CACHE}")
    set(cache --cache "${cache}")
  endif()
  set(embed "")
  if(arg_EMBED)
    set(embed COMMAND "${command}" embed "${manifest}" --as "${arg_TARGET}" --to "${work}/include")
    list(APPEND headers "${work}/include/${arg_TARGET}.h")
  else()
    set(headers "")
  endif()
  add_custom_command(
    OUTPUT "${done}"
    BYPRODUCTS ${outputs} ${headers}
    COMMAND "${command}" build "${manifest}" ${cache} --MF "${work}/done.d" --MT "${done}"
    ${embed}
    COMMAND "${CMAKE_COMMAND}" -E touch "${done}"
    DEPENDS "${manifest}" "${program}"
    DEPFILE "${work}/done.d"
    COMMENT "Making the shaders of ${arg_TARGET}"
    VERBATIM)
  add_library(${arg_TARGET} INTERFACE "${done}")
  set_property(TARGET ${arg_TARGET} PROPERTY SFG_OUTPUTS "${outputs}")
  if(arg_EMBED)
    target_include_directories(${arg_TARGET} INTERFACE "${work}/include")
    target_compile_features(${arg_TARGET} INTERFACE cxx_std_20)
  endif()
endfunction()
