# The libraries export the functions of their headers and nothing else; a function that disappears
# or a helper that becomes visible is a change of the interface, made here by hand.
function(add_exports_test library)
  add_test(NAME exports_${library} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/compare_exports
    ${CMAKE_NM} $<TARGET_FILE:${library}> ${ARGN})
endfunction()

file(GLOB lists CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/exports/*.txt)
add_exports_test(filesharing ${lists})
foreach(library profile utility samba)
  add_exports_test(${library} ${CMAKE_CURRENT_SOURCE_DIR}/exports/platform/${library}.txt)
endforeach()
