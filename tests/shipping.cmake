# What leaves the house: the installed tree, the packages and the interface. An instrumented library
# is never shipped.
if(FILESHARING_SANITIZE)
  return()
endif()

foreach(shipped installed packages completion)
  add_test(NAME ${shipped} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/${shipped}/check
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR} ${PROJECT_VERSION})
  set_tests_properties(${shipped} PROPERTIES TIMEOUT 120)
endforeach()

# The description is of a 64-bit PC's interface; the layouts of the others are asserted in types.h.
set(compare_interface ${CMAKE_CURRENT_SOURCE_DIR}/interface/compare
  ${PROJECT_SOURCE_DIR} $<TARGET_FILE:filesharing>)
add_custom_target(interface COMMAND ${compare_interface} --renew)
add_dependencies(interface filesharing)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64 AND CMAKE_BUILD_TYPE STREQUAL Debug)
  add_test(NAME interface COMMAND ${compare_interface})
endif()
