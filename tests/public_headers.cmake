# Each public header compiles by itself, as C11 and as C++20, with every warning on.
file(GLOB headers RELATIVE ${PROJECT_SOURCE_DIR}/include CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/include/filesharing/*.h)
set(units)
foreach(header ${headers})
  foreach(language c cpp)
    set(unit ${CMAKE_CURRENT_BINARY_DIR}/${header}.${language})
    file(CONFIGURE OUTPUT ${unit} CONTENT "#include \"${header}\" /* by itself */\ntypedef int not_empty;\n")
    list(APPEND units ${unit})
  endforeach()
endforeach()
add_library(public_headers OBJECT ${units})
set_target_properties(public_headers PROPERTIES C_EXTENSIONS OFF)
target_include_directories(public_headers PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_options(public_headers PRIVATE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion ${werror} $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)
