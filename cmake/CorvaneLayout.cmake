# The build mirrors an installation: the client folder holds Halvex.exe and log\Corvane\,
# its subfolder "shell" holds Corvane.dll, CorvaneSkin\ and scalemend.exe.
# dist/ is what ships; testbed/ is the same shape with the test programs beside the DLL.
set(CORVANE_DIST_CLIENT_DIR    ${CMAKE_BINARY_DIR}/dist/Halvex)
set(CORVANE_DIST_DLL_DIR       ${CORVANE_DIST_CLIENT_DIR}/shell)
set(CORVANE_TESTBED_CLIENT_DIR ${CMAKE_BINARY_DIR}/testbed/Halvex)
set(CORVANE_TESTBED_DLL_DIR    ${CORVANE_TESTBED_CLIENT_DIR}/shell)
file(MAKE_DIRECTORY ${CORVANE_DIST_CLIENT_DIR}/log/Corvane ${CORVANE_DIST_DLL_DIR}/CorvaneSkin
                    ${CORVANE_TESTBED_CLIENT_DIR}/log/Corvane ${CORVANE_TESTBED_DLL_DIR}/CorvaneSkin)

# Places a built program in the distribution (relative folder "client" or "shell") and copies it
# into the same place of the test bed.
function(corvane_place target where)
  if(where STREQUAL "client")
    set(dist ${CORVANE_DIST_CLIENT_DIR})
    set(bed ${CORVANE_TESTBED_CLIENT_DIR})
  else()
    set(dist ${CORVANE_DIST_DLL_DIR})
    set(bed ${CORVANE_TESTBED_DLL_DIR})
  endif()
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${dist}$<0:>")
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${target}> ${bed}/)
endfunction()
