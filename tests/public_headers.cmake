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

# Of the C library's types only those cross the interface that are the same for callers that are
# built with other widths of its offsets and dates.
set(unit ${CMAKE_CURRENT_BINARY_DIR}/types_of_one_width.c)
file(CONFIGURE OUTPUT ${unit} CONTENT "
#include <stdio.h>
#pragma GCC poison off_t off64_t fpos_t ino_t dev_t stat dirent DIR time_t timespec timeval tm
#include \"filesharing/filesharing.h\"
#include \"platform/profile/profile.h\"
#include \"platform/samba/samba.h\"
#include \"platform/utility/utility.h\"
")
set_source_files_properties(${unit} PROPERTIES INCLUDE_DIRECTORIES ${PROJECT_SOURCE_DIR})
list(APPEND units ${unit})

add_library(public_headers OBJECT ${units})
set_target_properties(public_headers PROPERTIES C_EXTENSIONS OFF)
target_include_directories(public_headers PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_options(public_headers PRIVATE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion ${werror} $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)
