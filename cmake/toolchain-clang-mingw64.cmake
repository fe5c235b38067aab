# Second compiler for the same target: Debian's clang against the mingw-w64 headers and libraries.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CORVANE_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET   ${CORVANE_MINGW_TRIPLE})
set(CMAKE_CXX_COMPILER_TARGET ${CORVANE_MINGW_TRIPLE})
set(CMAKE_RC_COMPILER  ${CORVANE_MINGW_TRIPLE}-windres)
# clang picks the posix-thread flavour of the gcc runtime through this prefix.
set(CMAKE_CXX_FLAGS_INIT "-fuse-ld=bfd")
set(CMAKE_C_FLAGS_INIT "-fuse-ld=bfd")

set(CMAKE_FIND_ROOT_PATH /usr/${CORVANE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
