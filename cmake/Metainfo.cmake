# Makes the AppStream document out of share/metainfo.
#
# The project has no published home page. Who publishes it names one with GROMLIT_HOMEPAGE, below
# which docs/pictures are then: only with it the document has a link and screenshots, since a picture
# can only be named by an address there. Its name is a host name backwards and stands below the domain
# that is reserved for examples, for the same reason.
#
# Included, it gives the function gromlit_metainfo. By itself:
#   cmake -DVERSION=1.0.0 -DHOMEPAGE=... -DOUTPUT=FILE -P cmake/Metainfo.cmake

set(gromlit_component org.example.gromlit)
set(gromlit_metainfo_source ${CMAKE_CURRENT_LIST_DIR}/../share/metainfo/gromlit.metainfo.xml.in)

# gromlit_metainfo(FILE VERSION HOMEPAGE): writes FILE; HOMEPAGE may be empty.
function(gromlit_metainfo output version homepage)
  set(GROMLIT_RELEASE ${version})
  set(GROMLIT_COMPONENT ${gromlit_component})
  set(GROMLIT_WEB "")
  if(homepage)
    string(REGEX REPLACE "/$" "" homepage "${homepage}")
    set(GROMLIT_WEB "  <url type=\"homepage\">${homepage}/</url>
  <screenshots>
    <screenshot type=\"default\">
      <caption>A stroke is drawn over a text editor</caption>
      <image>${homepage}/docs/pictures/stroke.png</image>
    </screenshot>
    <screenshot>
      <caption>The actions of a plug-in in the main window</caption>
      <image>${homepage}/docs/pictures/main-window.png</image>
    </screenshot>
    <screenshot>
      <caption>An action and its hot key</caption>
      <image>${homepage}/docs/pictures/action-editor-hotkey.png</image>
    </screenshot>
  </screenshots>
")
  endif()
  configure_file(${gromlit_metainfo_source} ${output} @ONLY)
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  gromlit_metainfo(${OUTPUT} ${VERSION} "${HOMEPAGE}")
endif()
