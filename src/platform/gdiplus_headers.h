#pragma once
// <gdiplus.h> for every file of the project. The Windows SDK's GDI+ headers call min and max
// unqualified, and the project builds with NOMINMAX, so the standard ones are brought into the
// Gdiplus namespace first (mingw's headers do not need them and are not disturbed).
#include <windows.h>
#include <objidl.h>

#include <algorithm>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus

#include <gdiplus.h>
