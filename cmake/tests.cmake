# Precompiles the headers that nearly every test includes. GCC uses them only with equal options, so
# all test code is position independent and not optimized: a clean build spends most of its time on
# compiling the tests, and few of them run faster when optimized. SQLiteCpp is not included, because
# it defines macros.
# ccache needs the preprocessed text.
set(VRX_TEST_OPTIONS $<$<AND:$<BOOL:${VRX_UNITY}>,$<CXX_COMPILER_ID:GNU>>:-fpch-preprocess>)
add_library(vrx_test_headers OBJECT ${CMAKE_SOURCE_DIR}/cmake/test_headers.cpp)
target_link_libraries(vrx_test_headers PRIVATE vrx_compiler GTest::gmock)
target_compile_options(vrx_test_headers PRIVATE -O0 -fPIC ${VRX_TEST_OPTIONS})
target_precompile_headers(vrx_test_headers PRIVATE
  <gmock/gmock.h> <gtest/gtest.h>
  <algorithm> <array> <chrono> <cstdint> <filesystem> <fstream> <functional> <map> <memory>
  <optional> <set> <sstream> <string> <string_view> <utility> <vector>)

# vrx_tests_code(TARGET): compiles a target of the tests with these options.
function(vrx_tests_code target)
  target_compile_options(${target} PRIVATE -O0 -fPIC ${VRX_TEST_OPTIONS})
  target_link_libraries(${target} PRIVATE GTest::gmock)
  target_precompile_headers(${target} REUSE_FROM vrx_test_headers)
  set_target_properties(${target} PROPERTIES UNITY_BUILD_BATCH_SIZE 4)
endfunction()

set(VRX_SLOTS_OF_A_PROCESSOR 3)  # CMakePresets.json counts on it: two processors, six jobs

# A test program with the name of its library; each suite is a ctest case. WAITING lists the suites
# that mostly wait for a serial line or a program: more of them run in parallel.
#
#   vrx_test(link SOURCES krmcomm_test.cpp ... LIBRARIES vrx_link ... [DEPENDS target ...]
#     [WAITING suite ...])
function(vrx_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES;DEPENDS;WAITING" ${ARGN})
  add_executable(${name}_test ${TEST_SOURCES})
  set_target_properties(${name}_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name}_test PRIVATE
    vrx_compiler vrx_test_support ${TEST_LIBRARIES} GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name}_test PRIVATE
    VRX_BIN_DIR="${VRX_BIN_DIR}" VRX_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  vrx_tests_code(${name}_test)
  if(TEST_DEPENDS)
    add_dependencies(${name}_test ${TEST_DEPENDS})
  endif()
  vrx_discover_suites(${name} "${TEST_WAITING}")
endfunction()

# Registers the suites of a test program with ctest after it is built. ctest includes the file that
# the build writes; without a build the program is registered as a failing case.
function(vrx_discover_suites name waiting)
  set(suites ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
  add_custom_command(TARGET ${name}_test POST_BUILD
    COMMAND ${CMAKE_COMMAND}
      -DPROGRAM=$<TARGET_FILE:${name}_test> -DNAME=${name} "-DWAITING=${waiting}"
      -DSLOTS=${VRX_SLOTS_OF_A_PROCESSOR} -DFOLDER=${CMAKE_CURRENT_BINARY_DIR} -DOUT=${suites}
      -P ${CMAKE_SOURCE_DIR}/cmake/discover_suites.cmake
    VERBATIM)
  file(WRITE ${suites}.in
    "if(EXISTS \"${suites}\")\n  include(\"${suites}\")\n"
    "else()\n  add_test(${name}_NOT_BUILT ${name}_NOT_BUILT)\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${suites}.in)
endfunction()
