# cmake -DPROGRAM=... -DNAME=... -DWAITING=... -DSLOTS=... -DFOLDER=... -DOUT=... -P discover_suites.cmake
# Writes one ctest case for each suite of a GoogleTest program.
cmake_minimum_required(VERSION 3.22)

execute_process(COMMAND ${PROGRAM} --gtest_list_tests
  OUTPUT_VARIABLE list RESULT_VARIABLE code TIMEOUT 60)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} --gtest_list_tests: ${code}")
endif()
string(REGEX MATCHALL "[^\n]+" lines "${list}")
set(suites)
foreach(line IN LISTS lines)
  if(line MATCHES "^([A-Za-z0-9_/]+)\\.")
    # All instances of a parameterized suite are one case.
    string(REGEX REPLACE "^[A-Za-z0-9_]+/([A-Za-z0-9_]+).*" "\\1" suite "${CMAKE_MATCH_1}")
    list(APPEND suites ${suite})
  endif()
endforeach()
list(REMOVE_DUPLICATES suites)
set(text "")
foreach(suite IN LISTS suites)
  string(APPEND text "add_test([=[${NAME}.${suite}]=] [=[${PROGRAM}]=]"
    " [=[--gtest_filter=${suite}.*:*/${suite}.*:*/${suite}/*]=])\n")
  if(suite IN_LIST WAITING OR WAITING STREQUAL "*")
    set(properties "COST 100")
  else()
    set(properties "PROCESSORS ${SLOTS}")
  endif()
  string(APPEND text
    "set_tests_properties([=[${NAME}.${suite}]=] PROPERTIES"
    " TIMEOUT 900 WORKING_DIRECTORY [=[${FOLDER}]=] ${properties})\n")
endforeach()
file(WRITE ${OUT} "${text}")
