# Fills SKELETON from the JSON DOCUMENTS and the PLAIN files below SOURCE. STAMP lists what was made;
# what an earlier run made and this one does not is removed. Other files stay: somebody may be
# trying the program on this directory.

cmake_minimum_required(VERSION 3.25)

foreach(directory symbols plugins options)
  file(MAKE_DIRECTORY ${SKELETON}/${directory})
endforeach()

set(made)
foreach(document IN LISTS DOCUMENTS)
  if(document MATCHES "^symbols/")
    string(REGEX REPLACE "json$" "sls" packed ${document})
  else()
    string(REGEX REPLACE "json$" "sla" packed ${document})
  endif()
  execute_process(
    COMMAND ${TOOL} pack ${SOURCE}/${document} -o ${SKELETON}/${packed}
    COMMAND_ERROR_IS_FATAL ANY)
  list(APPEND made ${packed})
endforeach()

foreach(name IN LISTS PLAIN)
  cmake_path(GET name PARENT_PATH directory)
  file(COPY ${SOURCE}/${name} DESTINATION ${SKELETON}/${directory})
  list(APPEND made ${name})
endforeach()

# The help's cheat sheet shows what has been packed: the place for it in the page is a comment.
set(sheet help/cheat-sheet.html)
if(sheet IN_LIST PLAIN)
  execute_process(
    COMMAND ${TOOL} sheet ${SKELETON} -o ${STAMP}.html --part
    COMMAND_ERROR_IS_FATAL ANY)
  file(READ ${STAMP}.html gestures)
  file(READ ${SOURCE}/${sheet} page)
  string(REPLACE "<!-- gestures -->" "${gestures}" filled "${page}")
  if(filled STREQUAL page)
    message(FATAL_ERROR "${sheet} has no place for the gestures")
  endif()
  file(WRITE ${SKELETON}/${sheet} "${filled}")
endif()

if(EXISTS ${STAMP})
  file(STRINGS ${STAMP} former)
  list(REMOVE_ITEM former ${made})
  foreach(name IN LISTS former)
    file(REMOVE ${SKELETON}/${name})
  endforeach()
endif()
list(JOIN made "\n" lines)
file(WRITE ${STAMP} "${lines}\n")
