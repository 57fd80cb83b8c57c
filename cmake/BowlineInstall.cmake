# The library as a package a hosting agent embeds: `cmake --install BUILD --prefix P` puts the
# headers (under P/include/bowline, in the folder layout of src/), the static libraries and a CMake
# package config in place. A consumer then writes
#   find_package(bowline REQUIRED)
#   target_link_libraries(agent PRIVATE bowline::bowline)   # or bowline::platform, bowline::host
# bowline::bowline is the library, bowline::platform the stand-ins for the agents around it and
# bowline::host the host program's library (scenarios, the switch, the output); each brings the
# ones below it and their public dependencies.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(BOWLINE_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/bowline)

set_target_properties(bowline PROPERTIES EXPORT_NAME bowline)
set_target_properties(bowline_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(bowline_host PROPERTIES EXPORT_NAME host)

# A library built with the sanitizers needs them at the consumer's link too.
if(BOWLINE_SANITIZE)
  target_link_options(bowline INTERFACE -fsanitize=address,undefined)
endif()

install(TARGETS bowline bowline_platform bowline_host
  EXPORT bowlineTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/bowline)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/src/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/bowline
  FILES_MATCHING PATTERN "*.h")
install(EXPORT bowlineTargets
  NAMESPACE bowline::
  DESTINATION ${BOWLINE_INSTALL_CMAKEDIR})

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/bowlineConfig.cmake.in
  ${CMAKE_BINARY_DIR}/bowlineConfig.cmake
  INSTALL_DESTINATION ${BOWLINE_INSTALL_CMAKEDIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/bowlineConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/bowlineConfig.cmake ${CMAKE_BINARY_DIR}/bowlineConfigVersion.cmake
  DESTINATION ${BOWLINE_INSTALL_CMAKEDIR})
