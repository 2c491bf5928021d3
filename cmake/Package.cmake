# The Debian package (cpack -G DEB) and the archive of the sources (cpack --config
# CPackSourceConfig.cmake -G TGZ). scripts/package makes and checks both.

set(CPACK_PACKAGE_NAME gromlit)
set(CPACK_PACKAGE_CONTACT "The Gromlit developers <gromlit@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "mouse gestures for the X Window System")
set(CPACK_PACKAGE_DESCRIPTION
"Hold the right mouse button, draw a stroke over any application's window, let
go: the action that the stroke stands for in that application runs. It can
send a hot key, type a text or a file, play a sound, run a program or open a
web page. A press that does not move reaches the application as an ordinary
click.
.
A library of gestures comes with it; own ones are drawn and bound to actions
in its windows. Windows of X11 only: those of Wayland are out of reach.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# Whatever the umask of who builds it.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_GENERATOR DEB)
set(GROMLIT_DEBIAN_REVISION 1 CACHE STRING "Revision of the Debian package")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${GROMLIT_DEBIAN_REVISION})
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# xdg-open shows the help; one of the players plays the sounds.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "pipewire-bin | pulseaudio-utils | alsa-utils | sox")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${GROMLIT_HOMEPAGE}")
# What only a Debian package has, put into it when all else is there.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/debian/complete.cmake)

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME gromlit-${PROJECT_VERSION})
# Below the sources only: they may lie in a folder that has one of these names itself.
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" top "${CMAKE_SOURCE_DIR}")
set(CPACK_SOURCE_IGNORE_FILES
  "^${top}/build/" "^${top}/\\.git(/|$)" "^${top}/\\.cache/" "^${top}/compile_commands\\.json$"
  "\\.swp$" "/__pycache__/")

include(CPack)
