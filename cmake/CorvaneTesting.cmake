# GoogleTest built for the target, and CTest running every test program under Wine.
include(GoogleTest)

set(GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest sources (Debian's googletest package)")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
add_subdirectory(${GTEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/third_party/googletest EXCLUDE_FROM_ALL)

# corvane_add_gtest(<name> SOURCES ... [LIBS ...] [LOCKS ...] [LABELS ...])
# The program lands beside the DLL in the test bed; each test case becomes one CTest test.
function(corvane_add_gtest name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS;LOCKS;LABELS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE corvane_options GTest::gtest GTest::gtest_main ${T_LIBS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CORVANE_TESTBED_DLL_DIR}$<0:>")
  if(NOT MSVC)
    # gtest_main supplies main(), not wmain().
    target_link_options(${name} PRIVATE -mconsole)
  endif()
  set(props TIMEOUT 120)
  if(T_LABELS)
    list(APPEND props LABELS "${T_LABELS}")
  endif()
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 120
    WORKING_DIRECTORY ${CORVANE_TESTBED_DLL_DIR}
    PROPERTIES ${props})
  if(T_LOCKS)
    # Set after discovery from the discovered names: passed through gtest_discover_tests, a list of
    # several locks is split into separate arguments and only the first lock would be held.
    set(lock_script ${CMAKE_CURRENT_BINARY_DIR}/${name}_locks.cmake)
    file(WRITE ${lock_script} "set_tests_properties(\${${name}_TESTS} PROPERTIES RESOURCE_LOCK \"${T_LOCKS}\")\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${lock_script})
  endif()
  add_dependencies(${name} corvane_testbed)
endfunction()
