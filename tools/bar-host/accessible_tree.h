#pragma once
// The accessible tree of a window as a screen reader reads it through oleacc: each descendant
// window's client object, its role, name and states, one line each, indented by depth.
#include <windows.h>

#include <string>

std::wstring AccessibleTree(HWND root);
// The same, written to a file as UTF-8; false when the file cannot be written.
bool WriteAccessibleTree(HWND root, const std::wstring& path);
