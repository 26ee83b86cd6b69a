# mqrig_add_gtest(NAME target SOURCES files... [LIBRARIES targets...] [LABELS labels...])
#
# Builds one GoogleTest executable under tests/bin and registers every test in it with ctest. LABELS says which
# runs take it: unit, client, qmgr, end_to_end, threads, long.
#
# GoogleTest is built here from the sources of Debian's package, so that it has the width and the sanitizer of the build.

if(MQRIG_TESTS)
  enable_testing()
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  include(GoogleTest)
  # The programs of the tests labelled threads, which the thread sanitizer runs.
  add_custom_target(thread_tests)
endif()

function(mqrig_add_gtest)
  cmake_parse_arguments(arg "" "NAME" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${arg_NAME} ${arg_SOURCES})
  target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} mqrig_warnings GTest::gtest GTest::gmock GTest::gtest_main
    Threads::Threads)
  set_target_properties(${arg_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/bin)
  if("threads" IN_LIST arg_LABELS)
    add_dependencies(thread_tests ${arg_NAME})
  endif()
  # One label for all of them, unit+threads: a list would not outlive the discovery, and ctest -L looks for a part.
  string(JOIN "+" label ${arg_LABELS})
  gtest_discover_tests(${arg_NAME} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${label}" TIMEOUT 120)
endfunction()
