#pragma once
// Where the code runs from: the module that contains this code (the DLL in Explorer, the program
// itself in tests), its folder and the client folder above it.
#include <windows.h>

#include <string>

namespace corvane {

HMODULE ThisModule() noexcept;

// Full path of ThisModule(), read into a 260-character buffer; empty on failure or when the path
// does not fit (registration must name the whole file).
std::wstring ThisModulePath();

// The module's folder, ending in a backslash: where Corvane.dll, CorvaneSkin\ and scalemend.exe lie.
// A path past 260 characters is cut there first, then after its last backslash.
std::wstring ThisModuleFolder();

// The parent of the module's folder: the client folder holding Halvex.exe and log\.
std::wstring ClientFolder();

}  // namespace corvane
