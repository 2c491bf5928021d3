# What "cmake --install" brings beside the programs, the starter library and the man pages of
# commands, which stand where those are made.

include(cmake/Metainfo.cmake)
set(GROMLIT_HOMEPAGE "" CACHE STRING "Address of the project's home page, where it has one")
set(metainfo ${CMAKE_BINARY_DIR}/metainfo/${gromlit_component}.metainfo.xml)
gromlit_metainfo(${metainfo} ${PROJECT_VERSION} "${GROMLIT_HOMEPAGE}")
install(FILES ${metainfo} DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

install(FILES share/applications/gromlit.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
# systemd looks here on every architecture, so not CMAKE_INSTALL_LIBDIR.
install(FILES share/systemd/gromlit.service DESTINATION lib/systemd/user)

set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(size 16 22 24 32 48 64 128 256)
  install(FILES images/icons/gromlit-${size}.png
    DESTINATION ${icons}/${size}x${size}/apps RENAME gromlit.png)
endforeach()
install(FILES images/icons/gromlit.svg DESTINATION ${icons}/scalable/apps)

# bash looks for a file of the command's name.
foreach(command gromlit gromlit-session gromlit-tool)
  install(FILES share/completion/gromlit.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${command})
endforeach()
install(FILES share/completion/gromlit.zsh
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions RENAME _gromlit)

# Arranged as in the sources, so that the links from one document to another lead somewhere.
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN man EXCLUDE)
