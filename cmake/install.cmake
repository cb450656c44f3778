# The files of `cmake --install` and the packages of cpack. The programs look for their templates,
# stylesheets and documents in their own directory, so all of these are installed there together; on
# Unix the search path gets links to the programs.
include(GNUInstallDirs)

if(UNIX)
  set(program_dir lib/vrx2260)
else()
  set(program_dir .)
endif()

set(programs vrx2260 vrx2260ctl vrx2260sim)
if(TARGET vrx2260jet)
  list(APPEND programs vrx2260jet)
endif()

install(TARGETS ${programs} RUNTIME DESTINATION ${program_dir})
install(FILES
  ${VRX_BIN_DIR}/QXNULRDB.MDB ${VRX_BIN_DIR}/QXNULXDB.MDB
  ${VRX_BIN_DIR}/Readme.TXT ${VRX_BIN_DIR}/VRX2260_U.PDF
  DESTINATION ${program_dir})
install(DIRECTORY ${VRX_BIN_DIR}/XSL DESTINATION ${program_dir} FILES_MATCHING PATTERN "*.xsl")
install(DIRECTORY ${VRX_BIN_DIR}/sample_site DESTINATION ${program_dir}
  FILES_MATCHING PATTERN "*.qxt" PATTERN "*.RDB" PATTERN "*.TDB")
install(DIRECTORY ${VRX_BIN_DIR}/manual DESTINATION ${program_dir}
  FILES_MATCHING PATTERN "*.html" PATTERN "*.png")

if(UNIX)
  include(cmake/install_unix.cmake)
endif()

set(CPACK_PACKAGE_NAME vrx2260)
set(CPACK_PACKAGE_VENDOR "The VRX-2260 developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "transfer data software of a feed batching installation")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
