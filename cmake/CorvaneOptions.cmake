# Compiler settings shared by every target of the project.
add_library(corvane_options INTERFACE)
target_compile_definitions(corvane_options INTERFACE
  UNICODE _UNICODE NOMINMAX STRICT _WIN32_WINNT=0x0A00 WINVER=0x0A00 NTDDI_VERSION=0x0A000000)

if(MSVC)
  # The sources hold Chinese literals; the runtime is linked statically like the mingw build.
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>" CACHE STRING "" FORCE)
  target_compile_options(corvane_options INTERFACE /utf-8 /W4 /WX /permissive- /Zc:__cplusplus /EHsc)
else()
  target_compile_options(corvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wno-missing-field-initializers)
  # Self-contained binaries: no libgcc, libstdc++ or winpthread DLLs beside them.
  target_link_options(corvane_options INTERFACE -static
    $<$<CONFIG:Release>:-s>)
endif()

# Adds a console program whose entry point is wmain.
function(corvane_console_exe target)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE corvane_options)
  if(NOT MSVC)
    target_link_options(${target} PRIVATE -municode -mconsole)
  endif()
endfunction()
