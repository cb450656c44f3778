# The parts of an installation that only a Unix desktop has, and the Debian package.
set(VRX_MAINTAINER "The VRX-2260 developers <vrx2260@example.org>" CACHE STRING
  "Name and address in the Debian package")

set(packaging ${CMAKE_SOURCE_DIR}/packaging)
set(made ${CMAKE_BINARY_DIR}/packaging)
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/vrx2260)

foreach(program vrx2260 vrx2260ctl vrx2260sim)
  file(MAKE_DIRECTORY ${made}/links)
  file(CREATE_LINK ../${program_dir}/${program} ${made}/links/${program} SYMBOLIC)
  install(FILES ${made}/links/${program} DESTINATION bin)
endforeach()

install(FILES ${packaging}/vrx2260.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${packaging}/vrx2260-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
  RENAME vrx2260.xml)
install(FILES ${CMAKE_SOURCE_DIR}/data/icons/logo.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME vrx2260.svg)
install(FILES ${packaging}/70-vrx2260.rules DESTINATION lib/udev/rules.d)

# Debian's format of the license: indented, a period for an empty line.
file(READ ${CMAKE_SOURCE_DIR}/LICENSE licence)
string(REGEX MATCH "Copyright \\(c\\) [^\n]+" COPYRIGHT_LINE "${licence}")
string(REPLACE "Copyright (c)" "Copyright:" COPYRIGHT_LINE "${COPYRIGHT_LINE}")
string(REGEX REPLACE "^.*Copyright \\(c\\)[^\n]+\n+" "" LICENSE_TEXT "${licence}")
string(REGEX REPLACE "\n+$" "" LICENSE_TEXT "${LICENSE_TEXT}")
string(REGEX REPLACE "\n\n" "\n.\n" LICENSE_TEXT "${LICENSE_TEXT}")
string(REGEX REPLACE "\n" "\n " LICENSE_TEXT " ${LICENSE_TEXT}")
configure_file(${packaging}/copyright.in ${made}/copyright @ONLY)
install(FILES ${made}/copyright DESTINATION ${doc_dir})

set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(DEBIAN_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
# Respects SOURCE_DATE_EPOCH, for reproducible builds.
string(TIMESTAMP DEBIAN_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${packaging}/changelog.Debian.in ${made}/changelog.Debian @ONLY)

# vrx_install_compressed(SOURCE NAME DESTINATION): installs SOURCE as NAME.gz, the same bytes in every
# build.
find_program(VRX_GZIP gzip REQUIRED)
set(compressed)
function(vrx_install_compressed source name destination)
  set(output ${made}/${name}.gz)
  add_custom_command(OUTPUT ${output}
    COMMAND sh -c "'${VRX_GZIP}' -9nc '${source}' > '${output}'"
    DEPENDS ${source}
    VERBATIM)
  set(compressed ${compressed} ${output} PARENT_SCOPE)
  install(FILES ${output} DESTINATION ${destination})
endfunction()
vrx_install_compressed(${made}/changelog.Debian changelog.Debian ${doc_dir})
vrx_install_compressed(${CMAKE_SOURCE_DIR}/CHANGELOG.md changelog ${doc_dir})

# Manual pages and completion are generated from the programs' own help.
add_custom_command(OUTPUT ${made}/vrx2260ctl.1
  COMMAND make_command_docs ${packaging}/vrx2260ctl.1.in ${made}/vrx2260ctl.1
  DEPENDS make_command_docs ${packaging}/vrx2260ctl.1.in
  VERBATIM)
add_custom_command(OUTPUT ${made}/vrx2260ctl.bash
  COMMAND make_command_docs ${packaging}/vrx2260ctl.bash.in ${made}/vrx2260ctl.bash
  DEPENDS make_command_docs ${packaging}/vrx2260ctl.bash.in
  VERBATIM)
add_custom_command(OUTPUT ${made}/vrx2260sim.1
  COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:vrx2260sim> "-DCOMMANDS=module;indicator"
    -DTEMPLATE=${packaging}/vrx2260sim.1.in -DOUT=${made}/vrx2260sim.1
    -P ${CMAKE_SOURCE_DIR}/cmake/man_page_of_help.cmake
  DEPENDS vrx2260sim ${packaging}/vrx2260sim.1.in ${CMAKE_SOURCE_DIR}/cmake/man_page_of_help.cmake
  VERBATIM)
vrx_install_compressed(${packaging}/vrx2260.1 vrx2260.1 ${CMAKE_INSTALL_MANDIR}/man1)
vrx_install_compressed(${made}/vrx2260ctl.1 vrx2260ctl.1 ${CMAKE_INSTALL_MANDIR}/man1)
vrx_install_compressed(${made}/vrx2260sim.1 vrx2260sim.1 ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${made}/vrx2260ctl.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vrx2260ctl)
add_custom_target(package_documents ALL DEPENDS ${compressed} ${made}/vrx2260ctl.bash)

set(CPACK_GENERATOR DEB)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${VRX_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The client library of the central database is loaded, not linked.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libpq5")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, udev")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "okular | pdf-viewer, bash-completion")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_DESCRIPTION
"VRX-2260 keeps the ingredients, recipes and pens of a feedlot, sends them to
the K-2260 weighing indicator by the data module, takes its batch and feed
records back, and stores, shows, prints and exports them.

The package holds the desktop program, the command line tool vrx2260ctl and
vrx2260sim, which plays the module and the indicator on a pseudo-terminal.")
