# Settings that every target of the project shares, and the one way to declare a library.

add_library(gromlit_flags INTERFACE)
target_compile_options(gromlit_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # In a unit, a variable of one file would be shadowed by those of the next.
  $<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow>
  # Clang counts it in with -Wconversion, gcc does not.
  $<$<BOOL:${GROMLIT_TESTS_CLANG}>:-Wno-sign-conversion>
  $<$<BOOL:${GROMLIT_WERROR}>:-Werror>)
target_include_directories(gromlit_flags INTERFACE ${CMAKE_SOURCE_DIR})
# The tests' own code is compiled without optimisation and is not what is looked at.
set(tests_own "$<BOOL:$<TARGET_PROPERTY:GROMLIT_TESTS_OWN>>")
if(GROMLIT_HARDEN)
  # Each of these costs an attacker a way from a fault to more. scripts/check-hardening looks for every
  # one of them in the built programs.
  include(CheckCXXCompilerFlag)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  # A call may only land where a call is expected, and return only to where it came from: of some
  # processors only. Not beside the guards of GROMLIT_CFI: where both are wanted, clang 14 lays out the
  # table of a guarded pointer's functions with larger entries than those that it computes with.
  if(NOT GROMLIT_CFI)
    check_cxx_compiler_flag(-fcf-protection=full GROMLIT_HAS_CF_PROTECTION)
  endif()
  set(hardening
    -fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security
    -D_GLIBCXX_ASSERTIONS -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3
    $<$<BOOL:${GROMLIT_HAS_CF_PROTECTION}>:-fcf-protection=full>
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
  target_compile_options(gromlit_flags INTERFACE "$<$<NOT:${tests_own}>:${hardening}>")
  target_link_options(gromlit_flags INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
if(GROMLIT_CFI)
  # A call by a pointer ends the program when the function is of another type than the pointer, and it
  # is said which; exceptions stand in display/calls_xlib.h. All of the program is seen at once for that.
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "GROMLIT_CFI is built by clang")
  endif()
  set(cfi -flto=thin -fvisibility=hidden -fsanitize=cfi -fno-sanitize-trap=cfi
      -fno-sanitize-recover=all)
  target_compile_options(gromlit_flags INTERFACE "$<$<NOT:${tests_own}>:${cfi}>")
  # The standard library names memory by the type that is about to be made in it, of which the readers
  # of documents and of options make some with virtual functions. Such a cast calls nothing.
  target_compile_options(gromlit_flags INTERFACE
    $<$<IN_LIST:$<TARGET_PROPERTY:NAME>,tools$<SEMICOLON>gromlit-tool>:-fno-sanitize=cfi-unrelated-cast>)
  target_link_options(gromlit_flags INTERFACE -fuse-ld=lld ${cfi})
endif()
if(GROMLIT_UNITS)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
endif()
if(GROMLIT_SANITIZE)
  # The tests' own code is not what is looked at: half of the time that it takes to compile would go
  # into checks of undefined behaviour.
  target_compile_options(gromlit_flags INTERFACE
    -fsanitize=address $<$<NOT:${tests_own}>:-fsanitize=undefined>
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(gromlit_flags INTERFACE -fsanitize=address,undefined)
endif()

# The table of rooms: gromlit_uses_ROOM lists the rooms that a room may use. Code that is compiled
# into nothing of its own, such as images/, has no library.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/rooms.txt)
file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/rooms.txt gromlit_rooms REGEX "^[a-z]")
foreach(line IN LISTS gromlit_rooms)
  string(REGEX MATCH "^([a-z_/]+):(.*)$" unused "${line}")
  string(REPLACE "/" "_" room "${CMAKE_MATCH_1}")
  string(REPLACE "/" "_" uses "${CMAKE_MATCH_2}")
  separate_arguments(gromlit_uses_${room} UNIX_COMMAND "${uses}")
  list(REMOVE_ITEM gromlit_uses_${room} images)
endforeach()

# gromlit_room([LIBRARIES target...])
# The static library of this folder's sources, main.cc left out, named as its folder with "_" for
# "/". It links the rooms that the table lets it use, and LIBRARIES from outside the project.
function(gromlit_room)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${CMAKE_SOURCE_DIR}
             OUTPUT_VARIABLE folder)
  string(REPLACE "/" "_" room "${folder}")
  if(NOT DEFINED gromlit_uses_${room})
    message(FATAL_ERROR "${folder} is no room of cmake/rooms.txt")
  endif()
  file(GLOB sources CONFIGURE_DEPENDS *.cc)
  list(FILTER sources EXCLUDE REGEX "/main\\.cc$")
  add_library(${room} ${sources})
  target_link_libraries(${room} PUBLIC gromlit_flags ${gromlit_uses_${room}} ${ARG_LIBRARIES})
  gromlit_units(${room})
endfunction()

# gromlit_units(TARGET)
# With GROMLIT_UNITS, compiles the target's sources some at a time, in units that include them
# (cmake/units.py says which): in half of the time, for builds that are made as a whole, such as those
# with instruments. A source with settings of its own stays by itself. Which files go together depends
# on the names in them, so a change of any makes CMake look again.
set(gromlit_unit_bytes 24000)
function(gromlit_units target)
  if(NOT GROMLIT_UNITS)
    return()
  endif()
  get_target_property(sources ${target} SOURCES)
  list(TRANSFORM sources PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ REGEX "^[^/]")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
               ${CMAKE_SOURCE_DIR}/cmake/units.py ${sources})
  execute_process(
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/cmake/units.py ${gromlit_unit_bytes} ${sources}
    OUTPUT_VARIABLE lines OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\n" ";" lines "${lines}")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "^([0-9]+) (.*)$" unused "${line}")
    set_source_files_properties(${CMAKE_MATCH_2} PROPERTIES UNITY_GROUP unit_${CMAKE_MATCH_1})
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
endfunction()

# gromlit_tests_library(NAME file...) and gromlit_tests_program(NAME file...)
# A static library and a program of code that the tests are made of, not of what they test. With
# GROMLIT_TESTS_FROM, their objects are those of that other build: nothing in them depends on the
# build, so one that only instruments what is tested need not compile them again.
function(gromlit_tests_library name)
  gromlit_tests_sources(sources ${name} ${ARGN})
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()

function(gromlit_tests_program name)
  gromlit_tests_sources(sources ${name} ${ARGN})
  add_executable(${name} ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX
                        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
endfunction()

function(gromlit_tests_sources result name)
  set(sources ${ARGN})
  if(GROMLIT_TESTS_FROM)
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${CMAKE_SOURCE_DIR}
               OUTPUT_VARIABLE folder)
    set(objects "")
    foreach(source IN LISTS sources)
      cmake_path(ABSOLUTE_PATH source)
      cmake_path(RELATIVE_PATH source)
      list(APPEND objects
           "${GROMLIT_TESTS_FROM}/${folder}/CMakeFiles/${name}.dir/${source}${CMAKE_CXX_OUTPUT_EXTENSION}")
    endforeach()
    # Generated: of a build that holds a part of the tests, that part can be linked.
    set_source_files_properties(${objects} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
    set(sources ${objects})
  endif()
  set(${result} ${sources} PARENT_SCOPE)
endfunction()
