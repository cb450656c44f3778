# A room is a folder of src/ built as one static library. It is included as "room/header.h", and
# only by who names it: each room has an include root of its own that holds nothing but itself, so
# an include that is not allowed does not compile.
#
#   vrx_room(link SOURCES krmcomm.cpp ... MAY_INCLUDE platform frame [LIBRARIES lib ...])
function(vrx_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;MAY_INCLUDE;LIBRARIES" ${ARGN})
  set(root ${CMAKE_BINARY_DIR}/rooms/${name})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${name} SYMBOLIC)
  if(ROOM_SOURCES)
    add_library(vrx_${name} STATIC ${ROOM_SOURCES})
    set(scope PUBLIC)
    target_link_libraries(vrx_${name} PRIVATE vrx_compiler)
  else()
    add_library(vrx_${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(vrx_${name} ${scope} ${root})
  foreach(room IN LISTS ROOM_MAY_INCLUDE)
    target_link_libraries(vrx_${name} ${scope} vrx_${room})
  endforeach()
  target_link_libraries(vrx_${name} ${scope} ${ROOM_LIBRARIES})
endfunction()

set(VRX_SLOTS_OF_A_PROCESSOR 3)  # CMakePresets.json counts on it: two processors, six jobs

# A test program named after the room it tests; each of its cases is a ctest case. WAITING names the
# suites that spend their time waiting for a serial line or a program: more of them run at once than
# of those that compute.
#
#   vrx_test(link SOURCES krmcomm_test.cpp ... ROOMS link adapters [LIBRARIES lib ...]
#     [DEPENDS target ...] [WAITING suite ...])
function(vrx_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;ROOMS;LIBRARIES;DEPENDS;WAITING" ${ARGN})
  add_executable(${name}_test ${TEST_SOURCES})
  set_target_properties(${name}_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name}_test PRIVATE
    vrx_compiler vrx_test_support ${TEST_LIBRARIES} GTest::gmock GTest::gtest_main)
  foreach(room IN LISTS TEST_ROOMS)
    target_link_libraries(${name}_test PRIVATE vrx_${room})
  endforeach()
  target_compile_definitions(${name}_test PRIVATE
    VRX_BIN_DIR="${VRX_BIN_DIR}" VRX_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  # A build from nothing spends most of its time on the tests, and hardly any gains by being fast.
  target_compile_options(${name}_test PRIVATE -O0)
  if(TEST_DEPENDS)
    add_dependencies(${name}_test ${TEST_DEPENDS})
  endif()
  set(discovery TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60)
  set(computing "*")
  if(TEST_WAITING)
    list(TRANSFORM TEST_WAITING APPEND ".*")
    list(JOIN TEST_WAITING ":" waiting)
    set(computing "-${waiting}")
    gtest_discover_tests(${name}_test ${discovery} TEST_FILTER "${waiting}"
      TEST_LIST ${name}_test_waiting PROPERTIES TIMEOUT 300 COST 100)
  endif()
  gtest_discover_tests(${name}_test ${discovery} TEST_FILTER "${computing}"
    PROPERTIES TIMEOUT 300 PROCESSORS ${VRX_SLOTS_OF_A_PROCESSOR})
endfunction()
