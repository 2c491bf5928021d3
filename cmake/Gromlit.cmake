# Settings that every target of the project shares, and the one way to declare a library.

add_library(gromlit_flags INTERFACE)
target_compile_options(gromlit_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${GROMLIT_WERROR}>:-Werror>)
target_include_directories(gromlit_flags INTERFACE ${CMAKE_SOURCE_DIR})
if(GROMLIT_SANITIZE)
  target_compile_options(gromlit_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(gromlit_flags INTERFACE -fsanitize=address,undefined)
endif()

# gromlit_library(NAME SOURCES file... DEPENDS target...)
# A static library of this folder's sources. The folder arrows that it may use are checked by
# scripts/check-layers; DEPENDS only has to make it link.
function(gromlit_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC gromlit_flags ${ARG_DEPENDS})
endfunction()
