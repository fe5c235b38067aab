# Windows programs built here run under Wine, in the build tree's own prefix: CTest runs the
# tests through this wrapper, and the build runs its own tools (the skin's rendered captions) with it.
if(CMAKE_CROSSCOMPILING)
  set(CORVANE_WINEPREFIX ${CMAKE_BINARY_DIR}/wineprefix CACHE PATH "Wine prefix of this build tree")
  set(CORVANE_WINE_RUN ${CMAKE_BINARY_DIR}/wine-run)
  file(WRITE ${CORVANE_WINE_RUN}
    "#!/bin/sh\nCORVANE_WINEPREFIX='${CORVANE_WINEPREFIX}' exec '${PROJECT_SOURCE_DIR}/scripts/wine-run.sh' \"$@\"\n")
  file(CHMOD ${CORVANE_WINE_RUN} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CORVANE_WINE_RUN})
endif()

# A build-tree path as the Windows program sees it (Wine maps / to drive Z:).
function(corvane_windows_path out path)
  if(CMAKE_CROSSCOMPILING)
    string(REPLACE "/" "\\" converted "Z:${path}")
  else()
    file(TO_NATIVE_PATH "${path}" converted)
  endif()
  set(${out} "${converted}" PARENT_SCOPE)
endfunction()
