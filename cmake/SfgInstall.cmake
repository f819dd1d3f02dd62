# What `cmake --install` puts where, the CMake package and the pkg-config files.

include(CMakePackageConfigHelpers)

install(TARGETS sfg sfg_platform EXPORT sfg
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(TARGETS sfg_host EXPORT sfgHost
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(TARGETS sfg_command RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(DIRECTORY include/ platform/include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" FILES_MATCHING PATTERN "*.h")
install(DIRECTORY library/ DESTINATION "${CMAKE_INSTALL_DATADIR}/sfg/library"
  FILES_MATCHING PATTERN "*.fraglib" PATTERN "*.h" PATTERN "definitions.json")
install(DIRECTORY docs/schemas/ DESTINATION "${CMAKE_INSTALL_DATADIR}/sfg/schemas")
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")

# find_package(sfg) gives sfg::sfg and sfg::platform, with the component host sfg::host as well. The libraries under
# platform and host are their own business: they are linked privately, so a user of the package needs none of their
# headers.
set(library_folder "${CMAKE_INSTALL_DATADIR}/sfg/library")
set(command_file "${CMAKE_INSTALL_BINDIR}/sfg${CMAKE_EXECUTABLE_SUFFIX}")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/sfg")
install(EXPORT sfg NAMESPACE sfg:: FILE sfgTargets.cmake DESTINATION "${package_folder}")
install(EXPORT sfgHost NAMESPACE sfg:: FILE sfgHostTargets.cmake DESTINATION "${package_folder}")
configure_package_config_file(cmake/sfgConfig.cmake.in "${PROJECT_BINARY_DIR}/package/sfgConfig.cmake"
  INSTALL_DESTINATION "${package_folder}" PATH_VARS library_folder command_file)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/sfgConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_SOURCE_DIR}/cmake/SfgShaders.cmake"
  "${PROJECT_BINARY_DIR}/package/sfgConfig.cmake"
  "${PROJECT_BINARY_DIR}/package/sfgConfigVersion.cmake"
  DESTINATION "${package_folder}")

# pkg-config, relative to where the file lies, so that an installed tree may be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(SFG_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
    OUTPUT_VARIABLE up)
  set(SFG_PC_PREFIX "\${pcfiledir}/${up}")
endif()
foreach(folder IN ITEMS LIBDIR INCLUDEDIR DATADIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(SFG_PC_${folder} "${CMAKE_INSTALL_${folder}}")
  else()
    set(SFG_PC_${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()
foreach(name IN ITEMS sfg sfg-platform sfg-host)
  configure_file("cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/package/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/package/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()
