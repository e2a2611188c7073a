# Lists a real-engine suite's tests and writes one CTest test per GoogleTest
# test suite (webkitgtk/BridgeTest runs BridgeTest.*): starting the toolkit
# and the engine's first processes costs about as much as a test, so the
# tests of one suite share a process, and the suites run side by side.
#   cmake -DSUITE=<program> -DENGINE=<name> -DOUT=<file> -P SuitesAsTests.cmake
execute_process(COMMAND ${SUITE} --gtest_list_tests OUTPUT_VARIABLE listing RESULT_VARIABLE status TIMEOUT 60)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${SUITE} --gtest_list_tests failed: ${status}")
endif()
string(REPLACE "\n" ";" lines "${listing}")
set(script "")
foreach(line IN LISTS lines)
  # A suite's line is its name and a dot; its tests' lines are indented.
  if(line MATCHES "^([A-Za-z_][A-Za-z0-9_]*)\\.$")
    set(name "${ENGINE}/${CMAKE_MATCH_1}")
    string(APPEND script "add_test([==[${name}]==] [==[${SUITE}]==] [==[--gtest_filter=${CMAKE_MATCH_1}.*]==])\n"
                         "set_tests_properties([==[${name}]==] PROPERTIES LABELS \"e2e;e2e-${ENGINE}\" TIMEOUT 600)\n")
  endif()
endforeach()
file(WRITE ${OUT} "${script}")
