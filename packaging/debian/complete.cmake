# Run by CPack on the tree that becomes the package: what a Debian package has and an installation
# elsewhere has not. Compressed files hold no name and no time, so that the same sources give the same
# files.

# The archive of the sources goes through here, too.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
set(doc ${usr}/share/doc/gromlit)

file(GLOB pages ${usr}/share/man/man1/*.1)
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip -9nf ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# gromlit_copy(FILE DIRECTORY NAME)
function(gromlit_copy file directory name)
  file(MAKE_DIRECTORY ${directory})
  configure_file(${file} ${directory}/${name} COPYONLY)
  file(CHMOD ${directory}/${name} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

gromlit_copy(${CMAKE_CURRENT_LIST_DIR}/copyright ${doc} copyright)
gromlit_copy(${CMAKE_CURRENT_LIST_DIR}/changelog ${doc} changelog.Debian)
file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
execute_process(COMMAND gzip -9nf ${doc}/changelog.Debian ${doc}/changelog COMMAND_ERROR_IS_FATAL ANY)
gromlit_copy(${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${usr}/share/lintian/overrides gromlit)

# Folders above have been made with the umask of who runs this.
foreach(folder ${usr}/share/lintian ${usr}/share/lintian/overrides)
  file(CHMOD ${folder} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endforeach()
