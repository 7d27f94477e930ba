# What is installed, by component:
#   library      libfilesharing.so.0
#   platform     our own platform libraries; a device that has them leaves these out
#   development  headers, pkg-config file, CMake package, pages of section 3
#   tools        fileshare with its page and completion, pages of section 5
#   adapters     what stands where the library calls the device's older tools
include(CMakePackageConfigHelpers)

install(TARGETS filesharing
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY include/filesharing DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development)

set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/filesharing)
configure_package_config_file(cmake/filesharing-config.cmake.in
  ${PROJECT_BINARY_DIR}/filesharing-config.cmake
  INSTALL_DESTINATION ${folder} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/filesharing-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/filesharing-config.cmake
  ${PROJECT_BINARY_DIR}/filesharing-config-version.cmake
  DESTINATION ${folder} COMPONENT development)

file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/filesharing.pc.in ${PROJECT_BINARY_DIR}/filesharing.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/filesharing.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
