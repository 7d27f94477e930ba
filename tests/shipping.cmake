# What leaves the house: the installed tree, the packages and the interface. An instrumented library
# is never shipped.
if(FILESHARING_SANITIZE)
  return()
endif()

add_test(NAME installed COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/installed/check
  ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR} ${PROJECT_VERSION})
set_tests_properties(installed PROPERTIES TIMEOUT 120)
