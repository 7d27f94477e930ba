# What leaves the house: the installed tree, the packages and the interface. An instrumented library
# is never shipped.
if(FILESHARING_SANITIZE)
  return()
endif()

foreach(shipped installed packages)
  add_test(NAME ${shipped} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/${shipped}/check
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR} ${PROJECT_VERSION})
  set_tests_properties(${shipped} PROPERTIES TIMEOUT 120)
endforeach()
