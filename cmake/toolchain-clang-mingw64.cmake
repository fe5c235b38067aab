# Second compiler for the same target: Debian's clang with the mingw-w64 headers, libstdc++ and
# the posix-thread gcc runtime (clang does not find the "12-posix" runtime folder on its own).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CORVANE_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET   ${CORVANE_MINGW_TRIPLE})
set(CMAKE_CXX_COMPILER_TARGET ${CORVANE_MINGW_TRIPLE})
set(CMAKE_RC_COMPILER  ${CORVANE_MINGW_TRIPLE}-windres)

file(GLOB corvane_gcc_runtime LIST_DIRECTORIES true /usr/lib/gcc/${CORVANE_MINGW_TRIPLE}/*-posix)
list(GET corvane_gcc_runtime 0 corvane_gcc_runtime)
set(CMAKE_C_FLAGS_INIT "-fuse-ld=bfd")
# Matching gcc's own build of libstdc++: gcc keeps thread-locals (std::call_once's) in emulated TLS,
# and does not define __GXX_WEAK__ for this target, so std::type_info::operator== lives in the
# library; clang must agree on both or the static link fails.
set(CMAKE_CXX_FLAGS_INIT "-fuse-ld=bfd -femulated-tls -D__GXX_TYPEINFO_EQUALITY_INLINE=0 -isystem ${corvane_gcc_runtime}/include/c++ -isystem ${corvane_gcc_runtime}/include/c++/${CORVANE_MINGW_TRIPLE}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${corvane_gcc_runtime}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-L${corvane_gcc_runtime}")
# Cache entries: the platform module creates these entries from its own defaults, and on a fresh
# configure creating the entry drops a plain variable of the same name.
set(CMAKE_CXX_STANDARD_LIBRARIES "-Wl,--start-group -lstdc++ -lgcc -lgcc_eh -lwinpthread -lmingw32 -lmoldname -lmingwex -lmsvcrt -lkernel32 -Wl,--end-group" CACHE STRING "" FORCE)
set(CMAKE_C_STANDARD_LIBRARIES "-Wl,--start-group -lgcc -lgcc_eh -lwinpthread -lmingw32 -lmoldname -lmingwex -lmsvcrt -lkernel32 -Wl,--end-group" CACHE STRING "" FORCE)

set(CMAKE_FIND_ROOT_PATH /usr/${CORVANE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
