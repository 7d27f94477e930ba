# Debian packages, one for each component of install.cmake: cpack -G DEB --config BUILD/CPackConfig.cmake
set(CPACK_PACKAGE_NAME libfilesharing)
set(CPACK_PACKAGE_CONTACT "The developers of libfilesharing <developers@libfilesharing.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library platform development adapters)
if(FILESHARING_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)

# cpack would take the architecture of the machine that it runs on, and so does what it asks for
# dependencies: DEB_HOST_ARCH=armhf cpack ...
if(CMAKE_CROSSCOMPILING)
  execute_process(COMMAND ${CMAKE_C_COMPILER} -dumpmachine
    OUTPUT_VARIABLE triplet OUTPUT_STRIP_TRAILING_WHITESPACE)
  execute_process(COMMAND dpkg-architecture -f -t ${triplet} -q DEB_HOST_ARCH
    OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()

# What else a package needs is looked up from what its programs are linked with, besides our own
# libraries, which are in no package yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

function(debian_package component name section description)
  cmake_parse_arguments(PARSE_ARGV 4 with "" "" "DEPENDS;RECOMMENDS")
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${description}" PARENT_SCOPE)
  list(JOIN with_DEPENDS ", " depends)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  list(JOIN with_RECOMMENDS ", " recommends)
  set(CPACK_DEBIAN_${key}_PACKAGE_RECOMMENDS "${recommends}" PARENT_SCOPE)
endfunction()

set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
debian_package(library libfilesharing0 libs
  "file-sharing management of a network disk server
Keeps the accounts, groups and shared folders of a server, and the settings of
its services, in the plain-text files that the daemons read."
  DEPENDS libfilesharing-platform)
debian_package(platform libfilesharing-platform libs
  "platform libraries for libfilesharing
Stand-alone replacements of the libraries that a device's firmware brings.
A firmware with its own provides a package of this name instead.")
debian_package(development libfilesharing-dev libdevel
  "file-sharing management of a network disk server, development files
Headers, manual page, pkg-config file and CMake package."
  DEPENDS "libfilesharing0 ${same_version}")
debian_package(tools fileshare admin
  "manage the users, groups, shares and services of a file server
libfilesharing on the command line."
  DEPENDS "libfilesharing0 ${same_version}" libfilesharing-platform)
debian_package(adapters fileshare-adapters admin
  "today's daemons and tools for libfilesharing
What lets Samba, vsftpd and the quota tools of today stand where the library
knows older ones."
  RECOMMENDS quota samba samba-vfs-modules vsftpd)

include(CPack)
