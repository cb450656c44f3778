# A library is a folder of src/, built as one static library. Its headers are included as
# "library/header.h", and only by libraries that list it in MAY_INCLUDE: each library has a separate
# include root, so any other include does not compile.
#
#   vrx_library(link SOURCES krmcomm.cpp ... MAY_INCLUDE platform base [LIBRARIES lib ...])
function(vrx_library name)
  cmake_parse_arguments(LIBRARY "" "" "SOURCES;MAY_INCLUDE;LIBRARIES" ${ARGN})
  set(root ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${name} SYMBOLIC)
  if(LIBRARY_SOURCES)
    add_library(vrx_${name} STATIC ${LIBRARY_SOURCES})
    set(scope PUBLIC)
    target_link_libraries(vrx_${name} PRIVATE vrx_compiler)
  else()
    add_library(vrx_${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(vrx_${name} ${scope} ${root})
  foreach(library IN LISTS LIBRARY_MAY_INCLUDE)
    target_link_libraries(vrx_${name} ${scope} vrx_${library})
  endforeach()
  target_link_libraries(vrx_${name} ${scope} ${LIBRARY_LIBRARIES})
endfunction()
