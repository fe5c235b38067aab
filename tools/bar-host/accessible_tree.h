#pragma once
// The accessible tree of a window as a screen reader reads it through oleacc: each descendant
// window's client object, its role, name and states, one line each, indented by depth.
#include <windows.h>

#include <string>

std::wstring AccessibleTree(HWND root);
